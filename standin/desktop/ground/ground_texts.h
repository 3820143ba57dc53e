#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <optional>

#include "view/ground_place.h"
#include "view/measurement.h"
#include "view/snap.h"

namespace lvx::desktop {

/// The ground and what is measured on it, in words. Lengths with three decimals, slopes in per cent and as 1:n, azimuths
/// in degrees clockwise from north.
class GroundTexts {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::GroundTexts)
 public:
  /// "5.2 % (1:19.2)"; level ground is "0.0 %".
  [[nodiscard]] static QString slope(double riseOverRun);
  /// "123.4°"
  [[nodiscard]] static QString azimuth(double radians);
  /// "Z 412.345   5.2 % to 123°"; "no ground here".
  [[nodiscard]] static QString ground(const std::optional<view::GroundPlace>& ground);
  /// "Vertex of Existing ground", "Axis Valley road, station 1+234.500"
  [[nodiscard]] static QString snap(const view::Snap& snap);
  /// What stands beside the mouse: the last leg, then the sums. `hasGround` where its last point has an elevation.
  [[nodiscard]] static QStringList readout(const view::Measurement& all, bool hasGround);
  /// All of it, a line each: for the console and for other programs.
  [[nodiscard]] static QStringList report(const view::Measurement& all);
};

}  // namespace lvx::desktop
