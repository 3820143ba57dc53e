#include "sheets/profile_figure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <span>

#include "sheets/pens.h"
#include "sheets/section_figure.h"
#include "sheets/value_band.h"
#include "text/number_text.h"
#include "view/contours.h"

namespace lvx::sheets {

using canvas::Place;
using civil::Vec2;

namespace {

constexpr double kPad = 4.0;
constexpr double kHeadRoom = 21.0;
constexpr double kFootRoom = 7.0;
constexpr double kCurvatureHeight = 22.0;
constexpr int kStationDecimals = 2;

void take(std::optional<ElevationRange>& range, double elevation) {
  if (!std::isfinite(elevation)) return;
  if (!range) range = ElevationRange{elevation, elevation};
  range->low = std::min(range->low, elevation);
  range->high = std::max(range->high, elevation);
}

/// Lines run by ascending x.
void takeLine(std::optional<ElevationRange>& range, const view::Line& line, double start, double end) {
  if (line.empty() || line.back().x < start || line.front().x > end) return;
  const auto at = [&](std::size_t i, double x) {
    const Vec2 a = line[i - 1];
    const Vec2 b = line[i];
    return b.x > a.x ? a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x) : b.y;
  };
  auto first = static_cast<std::size_t>(
      std::lower_bound(line.begin(), line.end(), start, [](Vec2 place, double x) { return place.x < x; }) -
      line.begin());
  if (first > 0 && first < line.size()) take(range, at(first, start));
  for (; first < line.size() && line[first].x <= end; ++first) take(range, line[first].y);
  if (first > 0 && first < line.size()) take(range, at(first, end));
}

std::size_t groundBands(const ProfileContent& content) { return std::min(content.grounds.size(), kMostGroundBands); }

std::string signedText(double value, int decimals) {
  std::string text = text::fixedText(value, decimals);
  const bool isNothing = text.find_first_not_of("0.") == std::string::npos;
  if (!isNothing && text.front() != '-') text.insert(text.begin(), '+');
  return text;
}

/// A text with what it covers, so that no two lie on each other.
class TextRoom {
 public:
  bool take(const Area& area) {
    for (const Area& taken : taken_)
      if (area.left < taken.right && taken.left < area.right && area.top < taken.bottom && taken.top < area.bottom)
        return false;
    taken_.push_back(area);
    return true;
  }

 private:
  std::vector<Area> taken_;
};

/// One sheet's drawing.
class StripPainter {
 public:
  StripPainter(canvas::Canvas& canvas, canvas::TextMeasure& measure, const ProfileLayout& layout,
               const ProfileContent& content, const ProfileStrip& strip, const Words& words)
      : canvas_(canvas), measure_(measure), layout_(layout), content_(content), strip_(strip), words_(words) {
    const double bands = std::accumulate(layout.bandHeights.begin(), layout.bandHeights.end(), 0.0);
    foot_ = layout.area.bottom - bands;
    datum_ = datumBelow(strip.range.low, layout.perElevation, kFootRoom);
    drawing_ = {layout.area.left + kHeadingWidth, layout.area.top, layout.area.right, foot_};
    end_ = xOf(strip.end) + kPad;
  }

  void draw(bool hasGrid) {
    if (hasGrid) drawGrid();
    chooseStations();
    for (const double station : stations_) drawOrdinate(station);
    drawLines();
    drawDatum();
    drawBands();
    drawCurvature();
    if (content_.design != nullptr) drawDesignTexts();
  }

 private:
  [[nodiscard]] double xOf(double station) const {
    return drawing_.left + kPad + (station - strip_.start) * layout_.perStation;
  }
  [[nodiscard]] double yOf(double elevation) const { return foot_ - (elevation - datum_) * layout_.perElevation; }
  [[nodiscard]] Place at(Vec2 place) const { return {xOf(place.x), yOf(place.y)}; }
  [[nodiscard]] bool isOnStrip(double station) const { return station >= strip_.start && station <= strip_.end; }

  void drawGrid() {
    constexpr double kStepOnPaper = 10.0;
    const double step = view::roundInterval(kStepOnPaper / layout_.perElevation);
    const canvas::TextStyle style{.height = 1.6, .colour = {0.35, 0.35, 0.35}, .anchor = canvas::Anchor::Right};
    const double top = yOf(strip_.range.high) - kHeadRoom / 2.0;
    const double highest = datum_ + (foot_ - top) / layout_.perElevation;
    for (const double elevation : roundPlaces(datum_ + step / 10.0, highest, step)) {
      const std::array<Place, 2> line{{{drawing_.left, yOf(elevation)}, {end_, yOf(elevation)}}};
      canvas_.line(line, kGridPen);
      canvas_.text({drawing_.left - 1.5, yOf(elevation) + 0.8}, text::fixedText(elevation, 2), style);
    }
    const double along = view::roundInterval(kStepOnPaper / layout_.perStation);
    for (const double station : roundPlaces(strip_.start, strip_.end, along)) {
      const std::array<Place, 2> line{{{xOf(station), top}, {xOf(station), foot_}}};
      canvas_.line(line, kGridPen);
    }
  }

  /// Stations that get values: both ends, points of intersection, ends of elements and curves, a regular step, and where
  /// the ground breaks, as far as there is room.
  void chooseStations() {
    constexpr double kEnds = 100.0;
    constexpr double kIntersection = 50.0;
    constexpr double kElement = 40.0;
    constexpr double kCurve = 30.0;
    constexpr double kRegular = 20.0;
    constexpr double kGround = 10.0;
    std::vector<BandPlace> places;
    std::vector<double> stations;
    const auto add = [&](double station, double weight) {
      if (!isOnStrip(station)) return;
      places.push_back({xOf(station), weight});
      stations.push_back(station);
    };
    add(strip_.start, kEnds);
    add(strip_.end, kEnds);
    if (content_.design != nullptr)
      for (const view::ProfileMark& mark : content_.design->marks) {
        add(mark.place.x, kIntersection);
        if (mark.kind == civil::VerticalCurveKind::None) continue;
        add(mark.curveStart.x, kCurve);
        add(mark.curveEnd.x, kCurve);
      }
    for (const view::AxisElement& element : content_.model->elements) {
      add(element.startStation, kElement);
      add(element.endStation, kElement);
    }
    constexpr double kStepOnPaper = 10.0;
    const double step = view::roundInterval(kStepOnPaper / layout_.perStation);
    for (const double station : roundPlaces(strip_.start, strip_.end, step)) add(station, kRegular);
    if (!content_.grounds.empty()) {
      const double height = std::max(strip_.range.high - strip_.range.low, 1e-6);
      for (const view::Line& line : content_.grounds.front().lines) {
        const auto first =
            std::lower_bound(line.begin(), line.end(), strip_.start, [](Vec2 place, double x) { return place.x < x; });
        const auto last =
            std::upper_bound(first, line.end(), strip_.end, [](double x, Vec2 place) { return x < place.x; });
        const std::span<const Vec2> part(first, last);
        const std::vector<double> weights = shapeWeights(part);
        for (std::size_t i = 0; i < part.size(); ++i) add(part[i].x, kGround * std::min(1.0, weights[i] / height));
      }
    }
    stations_.clear();
    for (const std::size_t i : thinned(places)) stations_.push_back(stations[i]);
  }

  [[nodiscard]] std::optional<double> groundAt(std::size_t index, double station) const {
    return view::elevationAt(content_.grounds[index].lines, station);
  }

  void drawOrdinate(double station) {
    std::optional<ElevationRange> range;
    for (std::size_t i = 0; i < content_.grounds.size(); ++i)
      if (const auto elevation = groundAt(i, station)) take(range, *elevation);
    if (const auto elevation = content_.designAt(station)) take(range, *elevation);
    if (!range) return;
    const std::array<Place, 2> line{{{xOf(station), yOf(range->high)}, {xOf(station), foot_}}};
    canvas_.line(line, kOrdinatePen);
  }

  void drawPieces(const view::Lines& lines, const canvas::Pen& pen) {
    civil::Box box;
    view::extend(box, Vec2{strip_.start, strip_.range.low - 1.0});
    view::extend(box, Vec2{strip_.end, strip_.range.high + 1.0});
    for (const view::Line& line : view::clipped(lines, box)) {
      std::vector<Place> places;
      for (const Vec2 place : line)
        if (isFinite(place)) places.push_back(at(place));
      canvas_.line(places, pen);
    }
  }

  void drawLines() {
    for (std::size_t i = 0; i < content_.grounds.size(); ++i) drawPieces(content_.grounds[i].lines, groundPen(i));
    if (content_.design != nullptr) drawPieces(content_.design->lines, kDesignPen);
  }

  void drawDatum() {
    const std::array<Place, 2> line{{{layout_.area.left, foot_}, {end_, foot_}}};
    canvas_.line(line, kDatumPen);
    const canvas::TextStyle style{.height = 2.2};
    canvas_.text(
        {layout_.area.left + 1.5, foot_ - 1.4},
        fitted(measure_, std::string(words_.datum) + " " + text::fixedText(datum_, 2), style, kHeadingWidth - 3.0),
        style);
    const std::array<Place, 2> edge{{{drawing_.left, yOf(strip_.range.high) - 3.0}, {drawing_.left, foot_}}};
    canvas_.line(edge, {.width = 0.18});
  }

  void drawBands() {
    double top = foot_;
    std::size_t row = 0;
    const auto draw = [&](Band band) {
      const double height = layout_.bandHeights[row++];
      const std::array<double, 1> heights{height};
      drawBand(canvas_, measure_, {layout_.area.left, top, end_, top + height}, band, heights);
      top += height;
    };
    for (std::size_t i = 0; i < groundBands(content_); ++i) {
      Band band{content_.grounds[i].name, {groundPen(i)}, {{std::string(words_.elevation), {}}}};
      for (const double station : stations_)
        if (const auto elevation = groundAt(i, station))
          band.rows[0].values.push_back({xOf(station) - drawing_.left, text::fixedText(*elevation, 2)});
      draw(std::move(band));
    }
    if (content_.design != nullptr) {
      Band band{content_.design->name, {kDesignPen}, {{std::string(words_.elevation), {}}}};
      Band differences{std::string(words_.difference), {}, {{std::string(), {}}}};
      for (const double station : stations_) {
        const auto design = content_.designAt(station);
        if (!design) continue;
        const double x = xOf(station) - drawing_.left;
        band.rows[0].values.push_back({x, text::fixedText(*design, 3)});
        if (content_.grounds.empty()) continue;
        if (const auto ground = groundAt(0, station))
          differences.rows[0].values.push_back({x, signedText(*design - *ground, 2)});
      }
      draw(std::move(band));
      if (!content_.grounds.empty()) draw(std::move(differences));
    }
    Band stationBand{std::string(words_.station), {}, {{std::string(), {}}}};
    for (const double station : stations_)
      stationBand.rows[0].values.push_back(
          {xOf(station) - drawing_.left, text::stationText(station, kStationDecimals)});
    draw(std::move(stationBand));
  }

  void drawCurvature() {
    const double top = layout_.area.bottom - layout_.bandHeights.back();
    const Area area{layout_.area.left, top, end_, layout_.area.bottom};
    const std::array<double, 1> heights{layout_.bandHeights.back()};
    drawBand(canvas_, measure_, area, {std::string(words_.curvature), {}, {{std::string(), {}}}}, heights);
    const double middle = (area.top + area.bottom) / 2.0;
    constexpr double kSwing = 5.5;
    const canvas::Pen pen{.width = 0.3};
    const std::array<Place, 2> axis{{{xOf(strip_.start), middle}, {xOf(strip_.end), middle}}};
    canvas_.line(axis, {.width = 0.1, .colour = {0.5, 0.5, 0.5}});
    constexpr double kStraight = 1e-9;
    const auto side = [&](double curvature) {
      return std::abs(curvature) < kStraight ? 0.0 : curvature > 0.0 ? kSwing : -kSwing;
    };
    std::optional<double> last;
    for (const view::AxisElement& element : content_.model->elements) {
      const double from = std::max(element.startStation, strip_.start);
      const double to = std::min(element.endStation, strip_.end);
      if (!(to > from)) continue;
      const double begin = side(element.startCurvature);
      const double end = side(element.endCurvature);
      const int steps = civil::isTransition(element.kind) ? 24 : 1;
      std::vector<Place> places;
      if (last) places.push_back({xOf(from), middle - *last});
      for (int i = 0; i <= steps; ++i) {
        const double station = from + (to - from) * i / steps;
        const double share = civil::isTransition(element.kind) ? element.curvatureShareAt(station) : 0.0;
        last = begin + (end - begin) * share;
        places.push_back({xOf(station), middle - *last});
      }
      canvas_.line(places, pen);
      drawElementText(element, xOf(from), xOf(to), middle, begin + end);
    }
  }

  void drawElementText(const view::AxisElement& element, double left, double right, double middle, double swing) {
    const canvas::TextStyle style{.height = 1.7, .anchor = canvas::Anchor::Middle};
    std::vector<std::string> lines;
    if (element.kind == civil::ElementKind::Arc && element.startCurvature != 0.0)
      lines.push_back("R = " + text::fixedText(1.0 / std::abs(element.startCurvature), 2));
    if (element.kind == civil::ElementKind::Clothoid) lines.push_back("A = " + text::fixedText(element.parameter(), 2));
    lines.push_back("L = " + text::fixedText(element.length(), 2));
    // On the other side of the middle than the line itself; what goes straight has its text above.
    double y = swing > 0.0 ? middle + 4.0 : middle - 2.0 - 3.2 * (static_cast<double>(lines.size()) - 1.0);
    for (const std::string& line : lines) {
      constexpr double kBeside = 1.0;
      if (measure_.widthOf(line, style) <= right - left - kBeside) canvas_.text({(left + right) / 2.0, y}, line, style);
      y += 3.2;
    }
  }

  /// Points of intersection in a row above the drawing, grades along the straight stretches.
  void drawDesignTexts() {
    TextRoom room;
    const canvas::TextStyle style{.height = 1.8, .anchor = canvas::Anchor::Middle};
    constexpr double kLine = 3.0;
    const double base = yOf(strip_.range.high) - kHeadRoom + 1.0;
    for (const view::ProfileMark& mark : content_.design->marks) {
      if (!isOnStrip(mark.place.x)) continue;
      const Place peak = at(mark.place);
      drawTriangle(peak);
      std::vector<std::string> lines{text::stationText(mark.place.x, kStationDecimals) + "  " +
                                     text::fixedText(mark.place.y, 3)};
      if (mark.kind != civil::VerticalCurveKind::None) {
        std::string curve;
        if (mark.radius > 0.0) curve = "R = " + text::fixedText(mark.radius, 0) + "  ";
        lines.push_back(curve + "L = " + text::fixedText(mark.length + mark.lengthOut, 2));
      }
      double width = 0.0;
      for (const std::string& line : lines) width = std::max(width, measure_.widthOf(line, style));
      const double x = std::clamp(peak.x, drawing_.left + width / 2.0 + 1.0,
                                  std::max(drawing_.left + width / 2.0 + 1.0, drawing_.right - width / 2.0));
      for (const double top : {base, base + 2.0 * kLine + 1.5}) {
        const Area area{x - width / 2.0 - 1.0, top, x + width / 2.0 + 1.0, top + 2.0 * kLine + 1.0};
        if (!room.take(area)) continue;
        double y = top + 2.2;
        for (const std::string& line : lines) {
          canvas_.text({x, y}, line, style);
          y += kLine;
        }
        const double end = top + kLine * static_cast<double>(lines.size()) + 0.4;
        if (peak.y > end) {
          const std::array<Place, 2> leader{{{peak.x, end}, {peak.x, peak.y - 1.6}}};
          canvas_.line(leader, kOrdinatePen);
        }
        break;
      }
    }
    for (const view::ProfileTangent& tangent : content_.design->tangents) {
      const double from = std::max(tangent.start.x, strip_.start);
      const double to = std::min(tangent.end.x, strip_.end);
      const std::string grade = signedText(tangent.grade * 100.0, 2) + " %";
      const double width = measure_.widthOf(grade, style);
      if (!((to - from) * layout_.perStation > width + 3.0)) continue;
      const double middle = (from + to) / 2.0;
      const double rise = std::abs(tangent.grade) * layout_.perElevation / layout_.perStation * width / 2.0;
      const Place place{xOf(middle), yOf(tangent.start.y + (middle - tangent.start.x) * tangent.grade) - 1.4 - rise};
      if (room.take({place.x - width / 2.0, place.y - 2.2, place.x + width / 2.0, place.y + 0.4}))
        canvas_.text(place, grade, {.height = 1.8, .colour = kDesignColour, .anchor = canvas::Anchor::Middle});
    }
  }

  void drawTriangle(Place peak) {
    constexpr double kHalf = 0.9;
    const std::array<Place, 3> corners{
        {{peak.x, peak.y}, {peak.x - kHalf, peak.y - 1.6}, {peak.x + kHalf, peak.y - 1.6}}};
    canvas_.area(corners, kDesignColour);
  }

  canvas::Canvas& canvas_;
  canvas::TextMeasure& measure_;
  const ProfileLayout& layout_;
  const ProfileContent& content_;
  const ProfileStrip& strip_;
  const Words& words_;
  double foot_ = 0.0;
  double datum_ = 0.0;
  double end_ = 0.0;
  Area drawing_;
  std::vector<double> stations_;
};

}  // namespace

std::optional<double> ProfileContent::designAt(double station) const {
  if (design == nullptr || !design->covers(station)) return std::nullopt;
  return design->profile->elevationAt(station);
}

std::optional<ElevationRange> rangeBetween(const ProfileContent& content, double start, double end) {
  std::optional<ElevationRange> range;
  for (const ProfileGround& ground : content.grounds)
    for (const view::Line& line : ground.lines) takeLine(range, line, start, end);
  if (content.design != nullptr) {
    for (const view::Line& line : content.design->lines) takeLine(range, line, start, end);
    for (const view::ProfileMark& mark : content.design->marks)
      if (mark.place.x >= start && mark.place.x <= end) take(range, mark.place.y);
  }
  return range;
}

double ProfileLayout::length() const { return (area.width() - kHeadingWidth - 2.0 * kPad) / perStation; }

double ProfileLayout::height(const ElevationRange& range) const {
  const double bands = std::accumulate(bandHeights.begin(), bandHeights.end(), 0.0);
  const double datum = datumBelow(range.low, perElevation, kFootRoom);
  return (range.high - datum) * perElevation + kHeadRoom + bands;
}

std::vector<double> profileBandHeights(const ProfileContent& content, canvas::TextMeasure& measure, double start,
                                       double end) {
  const canvas::TextStyle style = bandStyle();
  const ElevationRange range = rangeBetween(content, start, end).value_or(ElevationRange{});
  const auto widest = [&](const std::string& a, const std::string& b) {
    return rowHeight(std::max(measure.widthOf(a, style), measure.widthOf(b, style)));
  };
  std::vector<double> heights(groundBands(content),
                              widest(text::fixedText(range.low, 2), text::fixedText(range.high, 2)));
  if (content.design != nullptr) {
    heights.push_back(widest(text::fixedText(range.low, 3), text::fixedText(range.high, 3)));
    const double most = range.high - range.low;
    if (!content.grounds.empty()) heights.push_back(widest(signedText(-most, 2), signedText(most, 2)));
  }
  heights.push_back(widest(text::stationText(start, kStationDecimals), text::stationText(end, kStationDecimals)));
  heights.push_back(kCurvatureHeight);
  return heights;
}

void drawStrip(canvas::Canvas& canvas, canvas::TextMeasure& measure, const ProfileLayout& layout,
               const ProfileContent& content, const ProfileStrip& strip, bool hasGrid, const Words& words) {
  StripPainter(canvas, measure, layout, content, strip, words).draw(hasGrid);
}

}  // namespace lvx::sheets
