#include "sheets/section_figure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "sheets/pens.h"
#include "text/number_text.h"
#include "view/code_fill.h"
#include "view/contours.h"
#include "view/cut_fill.h"

namespace lvx::sheets {

using canvas::Place;
using civil::Vec2;

namespace {

/// Beside the outermost points, so that their texts have room.
constexpr double kPad = 3.0;
constexpr double kTitleHeight = 8.0;
/// Above the highest point, and between the lowest one and the datum.
constexpr double kHeadRoom = 3.0;
constexpr double kFootRoom = 6.0;
constexpr double kEmptyHeight = 12.0;
constexpr int kGroundDecimals = 2;
constexpr int kDesignDecimals = 3;

/// The values of a line of points.
struct ValueLine {
  std::string title;
  std::vector<canvas::Pen> pens;
  std::vector<std::vector<Vec2>> lines;
  int decimals = kGroundDecimals;
};

std::vector<ValueLine> valueLines(const view::SectionModel& section, std::string_view designTitle) {
  std::vector<ValueLine> all;
  std::size_t index = 0;
  for (const view::SectionGround& ground : section.grounds) {
    const std::size_t pen = index++;
    if (all.size() == kMostGroundBands) continue;
    ValueLine line{ground.name, {groundPen(pen)}, {}, kGroundDecimals};
    for (const view::Line& piece : ground.lines) {
      std::vector<Vec2>& points = line.lines.emplace_back();
      std::copy_if(piece.begin(), piece.end(), std::back_inserter(points), civil::isFinite);
      if (points.empty()) line.lines.pop_back();
    }
    if (!line.lines.empty()) all.push_back(std::move(line));
  }
  std::vector<Vec2> design = designTop(section);
  if (!design.empty()) all.push_back({std::string(designTitle), {kDesignPen}, {std::move(design)}, kDesignDecimals});
  return all;
}

std::string offsetText(double offset, int decimals) { return text::fixedText(offset, decimals); }

/// Digits are as wide as each other, so that the longest text is the widest.
double widestText(const ValueLine& line, bool isElevation, canvas::TextMeasure& measure) {
  double least = std::numeric_limits<double>::max();
  double most = std::numeric_limits<double>::lowest();
  for (const auto& piece : line.lines)
    for (const Vec2 point : piece) {
      const double value = isElevation ? point.y : point.x;
      least = std::min(least, value);
      most = std::max(most, value);
    }
  const canvas::TextStyle style = bandStyle();
  const auto width = [&](double value) { return measure.widthOf(offsetText(value, line.decimals), style); };
  return std::max(width(least), width(most));
}

std::array<double, 2> rowHeights(const ValueLine& line, canvas::TextMeasure& measure) {
  return {rowHeight(widestText(line, true, measure)), rowHeight(widestText(line, false, measure))};
}

/// Points of a line that get values: ends, the axis, and what matters most for the shape, as far as there is room.
std::vector<Vec2> valuedPoints(const ValueLine& line, double perOffset) {
  constexpr double kEnd = 1e300;
  constexpr double kAxis = 1e299;
  std::vector<Vec2> points;
  std::vector<BandPlace> places;
  for (const auto& piece : line.lines) {
    std::vector<double> weights = shapeWeights(piece);
    for (std::size_t i = 0; i < piece.size(); ++i) {
      points.push_back(piece[i]);
      places.push_back({piece[i].x * perOffset, std::min(weights[i], kEnd / 10.0)});
    }
    weights.clear();
    // On the axis too, where the line passes it between two points.
    for (std::size_t i = 1; i < piece.size(); ++i) {
      const Vec2 a = piece[i - 1];
      const Vec2 b = piece[i];
      if (!(a.x < 0.0 && b.x > 0.0)) continue;
      points.push_back({0.0, a.y + (b.y - a.y) * (-a.x / (b.x - a.x))});
      places.push_back({0.0, kAxis});
    }
  }
  if (points.empty()) return points;
  const auto byOffset = [&](const BandPlace& a, const BandPlace& b) { return a.x < b.x; };
  std::min_element(places.begin(), places.end(), byOffset)->weight = kEnd;
  std::max_element(places.begin(), places.end(), byOffset)->weight = kEnd;
  for (BandPlace& place : places)
    if (place.x == 0.0) place.weight = std::max(place.weight, kAxis);
  std::vector<Vec2> valued;
  for (const std::size_t i : thinned(places)) valued.push_back(points[i]);
  return valued;
}

/// From offsets and elevations to the sheet.
struct Mapping {
  double axis = 0.0;  ///< x of the alignment
  double foot = 0.0;  ///< y of the datum
  double datum = 0.0;
  double perOffset = 1.0;
  double perElevation = 1.0;
  [[nodiscard]] Place operator()(Vec2 place) const {
    return {axis + place.x * perOffset, foot - (place.y - datum) * perElevation};
  }
};

template <class Points, class PlaceOf>
std::vector<Place> mapped(const Points& points, const Mapping& map, PlaceOf placeOf) {
  std::vector<Place> places;
  for (const auto& point : points)
    if (isFinite(placeOf(point))) places.push_back(map(placeOf(point)));
  return places;
}

/// Dots that show a point where a line would have no length.
void drawLine(canvas::Canvas& canvas, const std::vector<Place>& places, const canvas::Pen& pen) {
  if (places.size() == 1) {
    constexpr double kDot = 0.4;
    const Place at = places.front();
    const std::array<Place, 2> dot{{{at.x - kDot, at.y}, {at.x + kDot, at.y}}};
    canvas.line(dot, pen);
    return;
  }
  canvas.line(places, pen);
}

Vec2 samePlace(Vec2 place) { return place; }

canvas::Colour colourOf(view::Colour colour) {
  constexpr double kMost = 255.0;
  return {colour.red / kMost, colour.green / kMost, colour.blue / kMost};
}

/// Between the design and the first ground that the section meets; nothing where either is missing.
view::CutFill cutFillOf(const view::SectionModel& section) {
  view::Lines design;
  for (const view::SectionCorridor& corridor : section.corridors)
    for (view::Line& line : corridor.top()) design.push_back(std::move(line));
  for (const view::SectionGround& ground : section.grounds)
    if (!ground.lines.empty()) return view::cutFillBetween(design, ground.lines);
  return {};
}

void drawShapes(canvas::Canvas& canvas, const view::SectionModel& section, const Mapping& map) {
  const auto placeOf = [](const view::SectionPlace& point) { return point.place; };
  for (const view::CodeFill& fill : view::fillsOf(section.corridors))
    for (const view::Line& outline : fill.areas)
      canvas.area(mapped(outline, map, samePlace), colourOf(fill.look.light));
  for (const view::SectionCorridor& corridor : section.corridors)
    for (const view::SectionShape& part : corridor.parts) {
      std::vector<Place> places = mapped(part.points, map, placeOf);
      if (part.isClosed && places.size() > 2) places.push_back(places.front());
      drawLine(canvas, places, part.isClosed ? kShapePen : kDesignPen);
    }
}

void drawGrid(canvas::Canvas& canvas, const Area& area, const Mapping& map, double left, double right) {
  constexpr double kStepOnPaper = 10.0;
  const double acrossStep = view::roundInterval(kStepOnPaper / map.perOffset);
  for (const double offset : roundPlaces(left, right, acrossStep)) {
    const double x = map.axis + offset * map.perOffset;
    const std::array<Place, 2> line{{{x, area.top}, {x, area.bottom}}};
    canvas.line(line, kGridPen);
  }
  const double upStep = view::roundInterval(kStepOnPaper / map.perElevation);
  const double top = map.datum + (area.bottom - area.top) / map.perElevation;
  const canvas::TextStyle style{.height = 1.6, .colour = {0.35, 0.35, 0.35}, .anchor = canvas::Anchor::Right};
  for (const double elevation : roundPlaces(map.datum + upStep / 2.0, top, upStep)) {
    const double y = map.foot - (elevation - map.datum) * map.perElevation;
    const std::array<Place, 2> line{{{area.left, y}, {area.right, y}}};
    canvas.line(line, kGridPen);
    canvas.text({area.left - 1.5, y + 0.8}, text::fixedText(elevation, 2), style);
  }
}

std::string titleOf(const view::SectionModel& section, const Words& words) {
  std::string title = std::string(words.station) + " " + text::stationText(section.station);
  // A name that is the station, with whatever decimals, tells nothing.
  bool isStation = section.name.empty();
  for (int decimals = 0; decimals <= 3; ++decimals)
    isStation = isStation || section.name == text::stationText(section.station, decimals);
  return isStation ? title : title + "   " + section.name;
}

}  // namespace

double SectionCell::width() const { return kHeadingWidth + 2.0 * kPad + (right - left) * perOffset; }

double SectionCell::height(const SectionExtent& extent) const {
  if (extent.isEmpty) return kTitleHeight + kEmptyHeight;
  const double datum = datumBelow(extent.low, perElevation, kFootRoom);
  return kTitleHeight + kHeadRoom + (extent.high - datum) * perElevation + extent.bandHeight;
}

std::vector<Vec2> designTop(const view::SectionModel& section) {
  // A part may be covered by another one; parts of thousands of points are taken as they are, since each point is held
  // against every part.
  constexpr std::size_t kMostPoints = 3000;
  constexpr double kSame = 0.0005;
  std::vector<Vec2> points;
  view::Lines lines;
  for (const view::SectionCorridor& corridor : section.corridors)
    for (view::Line& line : corridor.lines()) {
      std::erase_if(line, [](Vec2 place) { return !isFinite(place); });
      points.insert(points.end(), line.begin(), line.end());
      lines.push_back(std::move(line));
    }
  if (points.size() <= kMostPoints) {
    const auto isCovered = [&](Vec2 point) {
      for (const view::Line& line : lines)
        for (std::size_t i = 1; i < line.size(); ++i) {
          const auto [left, right] = std::minmax(line[i - 1], line[i], [](Vec2 a, Vec2 b) { return a.x < b.x; });
          if (point.x < left.x - kSame || point.x > right.x + kSame) continue;
          const double width = right.x - left.x;
          const double above =
              width > kSame ? left.y + (right.y - left.y) * (point.x - left.x) / width : std::max(left.y, right.y);
          if (above > point.y + kSame) return true;
        }
      return false;
    };
    std::erase_if(points, isCovered);
  }
  std::sort(points.begin(), points.end(), [](Vec2 a, Vec2 b) { return a.x != b.x ? a.x < b.x : a.y > b.y; });
  const auto isSame = [](Vec2 a, Vec2 b) { return std::abs(a.x - b.x) < kSame; };
  points.erase(std::unique(points.begin(), points.end(), isSame), points.end());
  return points;
}

SectionExtent extentOf(const view::SectionModel& section, canvas::TextMeasure& measure) {
  SectionExtent extent;
  const civil::Box box = section.box();
  extent.isEmpty = box.isEmpty();
  if (extent.isEmpty) return extent;
  extent.left = std::min(0.0, box.minX);
  extent.right = std::max(0.0, box.maxX);
  extent.low = box.minY;
  extent.high = box.maxY;
  for (const ValueLine& line : valueLines(section, "")) {
    const auto heights = rowHeights(line, measure);
    extent.bandHeight += heights[0] + heights[1];
  }
  return extent;
}

void drawSection(canvas::Canvas& canvas, canvas::TextMeasure& measure, Place corner, const SectionCell& cell,
                 const view::SectionModel& section, bool hasGrid, const Words& words) {
  const SectionExtent extent = extentOf(section, measure);
  const double zero = kHeadingWidth + kPad - cell.left * cell.perOffset;  // from the cell's left edge to the axis
  const canvas::TextStyle titleStyle{.height = 3.0, .isBold = true, .anchor = canvas::Anchor::Middle};
  const std::string title = fitted(measure, titleOf(section, words), titleStyle, cell.width());
  const double halfTitle = measure.widthOf(title, titleStyle) / 2.0;
  const double titleX = std::clamp(corner.x + zero, corner.x + halfTitle,
                                   std::max(corner.x + halfTitle, corner.x + cell.width() - halfTitle));
  canvas.text({titleX, corner.y + 4.4}, title, titleStyle);
  if (extent.isEmpty) {
    canvas.text({titleX, corner.y + kTitleHeight + kEmptyHeight / 2.0}, words.nothingHere,
                {.height = 2.0, .colour = {0.35, 0.35, 0.35}, .anchor = canvas::Anchor::Middle});
    return;
  }
  Mapping map;
  map.datum = datumBelow(extent.low, cell.perElevation, kFootRoom);
  map.perOffset = cell.perOffset;
  map.perElevation = cell.perElevation;
  map.axis = corner.x + zero;
  map.foot = corner.y + kTitleHeight + kHeadRoom + (extent.high - map.datum) * cell.perElevation;
  const Area area{corner.x + kHeadingWidth, corner.y + kTitleHeight, corner.x + cell.width(), map.foot};

  if (hasGrid) drawGrid(canvas, area, map, cell.left - kPad / cell.perOffset, cell.right + kPad / cell.perOffset);
  const std::vector<ValueLine> lines = valueLines(section, words.design);
  std::vector<std::vector<Vec2>> valued;
  for (const ValueLine& line : lines) {
    valued.push_back(valuedPoints(line, cell.perOffset));
    for (const Vec2 point : valued.back()) {
      const Place at = map(point);
      const std::array<Place, 2> ordinate{{at, {at.x, map.foot}}};
      canvas.line(ordinate, kOrdinatePen);
    }
  }
  const view::CutFill cutFill = cutFillOf(section);
  for (const view::CutFillArea& part : cutFill.areas)
    canvas.area(mapped(part.outline, map, samePlace), colourOf(view::cutFillLook(part.isFill).light));
  if (!cutFill.isEmpty()) {
    const canvas::TextStyle style{.height = 1.8, .anchor = canvas::Anchor::Right};
    const std::string areas = std::string(words.cut) + " " + text::fixedText(cutFill.cut, 2) + "   " +
                              std::string(words.fill) + " " + text::fixedText(cutFill.fill, 2);
    const double right = corner.x + cell.width();
    if (right - measure.widthOf(areas, style) > titleX + halfTitle + 3.0)
      canvas.text({right, corner.y + 4.4}, areas, style);
  }
  drawShapes(canvas, section, map);
  std::size_t pen = 0;
  for (const view::SectionGround& ground : section.grounds) {
    for (const view::Line& line : ground.lines) drawLine(canvas, mapped(line, map, samePlace), groundPen(pen));
    ++pen;
  }
  const std::array<Place, 2> axis{{{map.axis, area.top - 2.0}, {map.axis, map.foot}}};
  canvas.line(axis, axisPen());

  // The datum with its elevation, then the bands.
  const std::array<Place, 2> foot{{{corner.x, map.foot}, {area.right, map.foot}}};
  canvas.line(foot, kDatumPen);
  const canvas::TextStyle datumStyle{.height = 2.2};
  canvas.text(
      {corner.x + 1.5, map.foot - 1.4},
      fitted(measure, std::string(words.datum) + " " + text::fixedText(map.datum, 2), datumStyle, kHeadingWidth - 3.0),
      datumStyle);
  double top = map.foot;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const ValueLine& line = lines[i];
    const auto heights = rowHeights(line, measure);
    Band band{line.title, line.pens, {{std::string(words.elevation), {}}, {std::string(words.offset), {}}}};
    for (const Vec2 point : valued[i]) {
      const double x = map(point).x - area.left;
      band.rows[0].values.push_back({x, text::fixedText(point.y, line.decimals)});
      band.rows[1].values.push_back({x, offsetText(point.x, line.decimals)});
    }
    drawBand(canvas, measure, {corner.x, top, area.right, top}, band, heights);
    top += heights[0] + heights[1];
  }
}

}  // namespace lvx::sheets
