#include "sheets/value_band.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>
#include <utility>

namespace lvx::sheets {

using canvas::Place;

namespace {

constexpr double kTitleShare = 0.62;  ///< of the heading's width

}  // namespace

std::vector<std::size_t> thinned(std::span<const BandPlace> places, double spacing) {
  std::vector<std::size_t> order(places.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    if (places[a].weight != places[b].weight) return places[a].weight > places[b].weight;
    return places[a].x < places[b].x;
  });
  std::set<std::pair<double, std::size_t>> taken;
  for (const std::size_t i : order) {
    const double x = places[i].x;
    const auto right = taken.lower_bound({x, 0});
    if (right != taken.end() && right->first - x < spacing) continue;
    if (right != taken.begin() && x - std::prev(right)->first < spacing) continue;
    taken.emplace(x, i);
  }
  std::vector<std::size_t> left;
  left.reserve(taken.size());
  for (const auto& [x, i] : taken) left.push_back(i);
  return left;
}

std::vector<double> shapeWeights(std::span<const civil::Vec2> line) {
  std::vector<double> weights(line.size(), 0.0);
  if (line.empty()) return weights;
  constexpr double kMost = std::numeric_limits<double>::max();
  weights.front() = weights.back() = kMost;
  struct Stretch {
    std::size_t first;
    std::size_t last;
    double above;
  };
  std::vector<Stretch> open{{0, line.size() - 1, kMost}};
  while (!open.empty()) {
    const Stretch stretch = open.back();
    open.pop_back();
    if (stretch.last - stretch.first < 2) continue;
    const civil::Vec2 a = line[stretch.first];
    const civil::Vec2 b = line[stretch.last];
    const double slope = b.x != a.x ? (b.y - a.y) / (b.x - a.x) : 0.0;
    std::size_t farthest = stretch.first + 1;
    double most = -1.0;
    for (std::size_t i = stretch.first + 1; i < stretch.last; ++i) {
      const double miss = std::abs(line[i].y - (a.y + slope * (line[i].x - a.x)));
      if (miss > most) {
        most = miss;
        farthest = i;
      }
    }
    // Never more than what it was found by, so that weights fall from the ends inward.
    most = std::min(std::max(most, 0.0), stretch.above);
    weights[farthest] = most;
    open.push_back({stretch.first, farthest, most});
    open.push_back({farthest, stretch.last, most});
  }
  return weights;
}

canvas::TextStyle bandStyle() { return {.height = 1.8, .anchor = canvas::Anchor::Middle, .isUpright = true}; }

double rowHeight(double width) { return std::max(width + 2.4, 6.0); }

void drawBand(canvas::Canvas& canvas, canvas::TextMeasure& measure, const Area& area, const Band& band,
              std::span<const double> heights) {
  const double bottom = area.top + std::accumulate(heights.begin(), heights.end(), 0.0);
  const double headingEnd = area.left + kHeadingWidth;
  const double titleEnd = area.left + kHeadingWidth * kTitleShare;
  constexpr double kSpace = 1.5;
  constexpr canvas::Pen kThin{.width = 0.18};

  // The title, in two lines where it is long and the rows leave room.
  const canvas::TextStyle titleStyle{.height = 2.0};
  const double titleRoom = titleEnd - area.left - 2.0 * kSpace;
  std::vector<std::string> lines{band.title};
  const std::size_t blank = band.title.rfind(' ');
  if (measure.widthOf(band.title, titleStyle) > titleRoom && blank != std::string::npos)
    lines = {band.title.substr(0, blank), band.title.substr(blank + 1)};
  constexpr double kLineStep = 3.4;
  const double textHeight = 2.0 + kLineStep * (static_cast<double>(lines.size()) - 1.0);
  const double penHeight = band.pens.empty() ? 0.0 : 3.0;
  double y = (area.top + bottom - textHeight - penHeight) / 2.0 + 2.0;
  for (const std::string& line : lines) {
    canvas.text({area.left + kSpace, y}, fitted(measure, line, titleStyle, titleRoom), titleStyle);
    y += kLineStep;
  }
  if (!band.pens.empty()) {
    const std::array<Place, 2> sample{{{area.left + kSpace, y - 0.6}, {titleEnd - kSpace, y - 0.6}}};
    canvas.line(sample, band.pens.front());
  }

  double top = area.top;
  for (std::size_t i = 0; i < band.rows.size(); ++i) {
    const BandRow& row = band.rows[i];
    const double end = top + heights[i];
    const canvas::TextStyle headingStyle{.height = 1.7, .colour = {0.25, 0.25, 0.25}};
    canvas.text({titleEnd + kSpace, (top + end) / 2.0 + 0.85},
                fitted(measure, row.heading, headingStyle, headingEnd - titleEnd - 2.0 * kSpace), headingStyle);
    canvas::TextStyle style = bandStyle();
    // Upright texts stand with their middle at the place, so that the base line lies half a letter to the right.
    for (const BandValue& value : row.values)
      canvas.text({headingEnd + value.x + style.height / 2.0, (top + end) / 2.0}, value.text, style);
    const std::array<Place, 2> line{{{i + 1 < band.rows.size() ? titleEnd : area.left, end}, {area.right, end}}};
    canvas.line(line, kThin);
    top = end;
  }
  for (const double x : {area.left, titleEnd, headingEnd, area.right}) {
    if (x == titleEnd && band.rows.size() == 1 && band.rows.front().heading.empty()) continue;
    const std::array<Place, 2> line{{{x, area.top}, {x, bottom}}};
    canvas.line(line, kThin);
  }
}

}  // namespace lvx::sheets
