#include "desktop/ground/ground_texts.h"

#include <cmath>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

QString number(double value, int decimals = 3) { return toQt(text::fixedText(value, decimals)); }

/// Steeper than this is no slope but a wall; flatter is level.
constexpr double kFlattest = 1e-5;

}  // namespace

QString GroundTexts::slope(double riseOverRun) {
  const QString percent = tr("%1 %").arg(number(100.0 * riseOverRun, 1));
  if (std::abs(riseOverRun) < kFlattest) return percent;
  return tr("%1 (1:%2)").arg(percent, number(1.0 / std::abs(riseOverRun), 1));
}

QString GroundTexts::azimuth(double radians) {
  // Rounded before it is compared, so that nothing reads 360.0°.
  const double degrees = std::round(radians * 1800.0 / civil::kPi) / 10.0;
  return tr("%1°").arg(number(degrees >= 360.0 ? 0.0 : degrees, 1));
}

QString GroundTexts::ground(const std::optional<view::GroundPlace>& ground) {
  if (!ground) return tr("no ground here");
  const QString elevation = tr("Z %1").arg(number(ground->elevation));
  if (ground->slope < kFlattest) return tr("%1   level").arg(elevation);
  //: Elevation, slope in per cent, azimuth downhill.
  return tr("%1   %2 % to %3").arg(elevation, number(100.0 * ground->slope, 1), azimuth(ground->downhill));
}

QString GroundTexts::snap(const view::Snap& snap) {
  const QString name = toQt(snap.name);
  const QString station = snap.station ? toQt(text::stationText(*snap.station)) : QString();
  switch (snap.kind) {
    case view::SnapKind::Point:
      return tr("Point %1").arg(name);
    case view::SnapKind::Vertex:
      return tr("Vertex of %1").arg(name);
    case view::SnapKind::End:
      return station.isEmpty() ? tr("End of %1").arg(name) : tr("End on %1, station %2").arg(name, station);
    case view::SnapKind::Axis:
      return tr("Axis %1, station %2").arg(name, station);
  }
  return name;
}

QStringList GroundTexts::readout(const view::Measurement& all, bool hasGround) {
  QStringList lines;
  if (!hasGround) lines << tr("no ground here");
  if (all.legs.empty()) return lines;
  const view::MeasuredLeg& leg = all.legs.back();
  lines << tr("Distance %1").arg(number(leg.horizontal));
  if (leg.azimuth) lines.back() += QStringLiteral("   ") + azimuth(*leg.azimuth);
  if (leg.rise) {
    lines << tr("Height %1   along the slope %2").arg(number(*leg.rise), number(*leg.slopeDistance));
    if (leg.slope) lines << tr("Slope %1").arg(slope(*leg.slope));
  }
  if (all.legs.size() < 2) return lines;
  lines << tr("In all %1").arg(number(all.horizontal));
  if (all.slopeDistance)
    lines.back() += QStringLiteral("   ") + tr("along the slope %1").arg(number(*all.slopeDistance));
  if (all.area) lines << tr("Area %1   perimeter %2").arg(number(*all.area), number(*all.perimeter));
  return lines;
}

QStringList GroundTexts::report(const view::Measurement& all) {
  QStringList lines;
  if (all.legs.empty()) return lines;
  int count = 0;
  for (const view::MeasuredLeg& leg : all.legs) {
    QString line = tr("%1: distance %2").arg(++count).arg(number(leg.horizontal));
    if (leg.azimuth) line += tr(", azimuth %1").arg(azimuth(*leg.azimuth));
    if (leg.rise) line += tr(", height %1, along the slope %2").arg(number(*leg.rise), number(*leg.slopeDistance));
    if (leg.slope) line += tr(", slope %1").arg(slope(*leg.slope));
    if (!leg.rise) line += tr(", no ground at an end");
    lines << line;
  }
  if (all.legs.size() > 1) {
    QString line = tr("In all: distance %1").arg(number(all.horizontal));
    if (all.rise) line += tr(", height %1").arg(number(*all.rise));
    if (all.slopeDistance) line += tr(", along the slope %1").arg(number(*all.slopeDistance));
    lines << line;
  }
  if (all.area) lines << tr("Closed: area %1, perimeter %2").arg(number(*all.area), number(*all.perimeter));
  return lines;
}

}  // namespace lvx::desktop
