#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "sheets/settings.h"
#include "sheets/sheet_frame.h"
#include "sheets/words.h"
#include "view/profile_model.h"

namespace lvx::sheets {

/// Ground under an alignment, over its stations.
struct ProfileGround {
  std::string name;
  view::Lines lines;
};

/// What a long section shows.
struct ProfileContent {
  const view::ProfileModel* model = nullptr;
  const view::ProfileLine* design = nullptr;  ///< may be null
  std::vector<ProfileGround> grounds;

  /// The design's elevation where it is its own.
  [[nodiscard]] std::optional<double> designAt(double station) const;
};

struct ElevationRange {
  double low = 0.0;
  double high = 0.0;
};

/// Least and greatest elevation of all lines between two stations; none where there are none. O(log n) and what lies
/// between.
[[nodiscard]] std::optional<ElevationRange> rangeBetween(const ProfileContent& content, double start, double end);

/// The part of a long section on one sheet.
struct ProfileStrip {
  double start = 0.0;
  double end = 0.0;
  ElevationRange range;
};

/// How strips lie on a sheet.
struct ProfileLayout {
  Area area;
  double perStation = 1.0;    ///< millimetres of paper for a unit along
  double perElevation = 1.0;  ///< and up
  std::vector<double> bandHeights;

  /// Units of stations that a sheet takes.
  [[nodiscard]] double length() const;
  [[nodiscard]] bool takes(const ElevationRange& range) const { return height(range) <= area.height(); }
  /// What a drawing of that range takes with its bands, millimetres.
  [[nodiscard]] double height(const ElevationRange& range) const;
};

/// The bands' heights for a whole book.
[[nodiscard]] std::vector<double> profileBandHeights(const ProfileContent& content, canvas::TextMeasure& measure,
                                                     double start, double end);

void drawStrip(canvas::Canvas& canvas, canvas::TextMeasure& measure, const ProfileLayout& layout,
               const ProfileContent& content, const ProfileStrip& strip, bool hasGrid, const Words& words);

}  // namespace lvx::sheets
