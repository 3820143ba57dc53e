#include "view/sample_line_edit.h"

#include <algorithm>
#include <cmath>

#include "text/number_text.h"

namespace lvx::view {

using civil::SampleLine;
using civil::Vec2;

namespace {

/// The end moved along the ray from `anchor` through it.
Vec2 along(Vec2 anchor, Vec2 end, double distance) {
  const double whole = length(end - anchor);
  return whole > 0.0 ? anchor + (std::max(distance, kLeastWidth) / whole) * (end - anchor) : end;
}

/// What the end is pulled against.
std::optional<Vec2> anchorOf(const SampleLine& line, const civil::Alignment& alignment, bool isFirst) {
  if (line.vertices.size() > 2) return isFirst ? line.vertices[1] : line.vertices[line.vertices.size() - 2];
  const auto pose = alignment.poseAt(line.station);
  return pose ? std::optional(pose->point) : std::nullopt;
}

/// How a line stands: widths and the angle by which it turns clockwise against square.
struct Stance {
  LineWidths widths;
  double turn = 0.0;
};

std::optional<Stance> stanceOf(const SampleLine& line, const civil::Alignment& alignment) {
  const auto widths = widthsOf(line, alignment);
  const auto pose = alignment.poseAt(line.station);
  if (!widths || !pose) return std::nullopt;
  const Vec2 across = line.vertices.back() - line.vertices.front();
  const Vec2 square = civil::unit(pose->direction - 0.5 * civil::kPi);
  return Stance{*widths, std::atan2(cross(across, square), dot(across, square))};
}

}  // namespace

std::optional<LineWidths> widthsOf(const SampleLine& line, const civil::Alignment& alignment) {
  const auto pose = alignment.poseAt(line.station);
  if (line.vertices.size() < 2 || !pose) return std::nullopt;
  return LineWidths{length(line.vertices.front() - pose->point), length(line.vertices.back() - pose->point)};
}

std::vector<Vec2> pulledTo(const SampleLine& line, const civil::Alignment& alignment, bool isFirst, Vec2 place) {
  std::vector<Vec2> vertices = line.vertices;
  const std::optional<Vec2> anchor = vertices.size() < 2 ? std::nullopt : anchorOf(line, alignment, isFirst);
  if (!anchor) return vertices;
  Vec2& end = isFirst ? vertices.front() : vertices.back();
  const double before = length(end - *anchor);
  if (before > 0.0) end = along(*anchor, end, dot(place - *anchor, end - *anchor) / before);
  return vertices;
}

std::vector<Vec2> withWidths(const SampleLine& line, const civil::Alignment& alignment, std::optional<double> left,
                             std::optional<double> right) {
  std::vector<Vec2> vertices = line.vertices;
  const auto widths = widthsOf(line, alignment);
  if (!widths) return vertices;
  const Vec2 center = alignment.poseAt(line.station)->point;
  const auto pull = [&](bool isFirst, double wanted) {
    const std::optional<Vec2> anchor = anchorOf(line, alignment, isFirst);
    Vec2& end = isFirst ? vertices.front() : vertices.back();
    const double whole = anchor ? length(end - *anchor) : 0.0;
    if (!(whole > 0.0)) return;
    // Where the last piece, lengthened, is that far from the alignment; of a bent line the piece points past it.
    const Vec2 direction = (1.0 / whole) * (end - *anchor);
    const double across = dot(direction, *anchor - center);
    const double square = across * across + wanted * wanted - dot(*anchor - center, *anchor - center);
    end = along(*anchor, end, square > 0.0 ? std::sqrt(square) - across : 0.0);
  };
  if (left) pull(true, *left);
  if (right) pull(false, *right);
  return vertices;
}

std::optional<SampleLine> lineAmong(const civil::SampleLineGroup& group, const civil::Alignment& alignment,
                                    double station, double otherwise) {
  const auto pose = alignment.poseAt(station);
  if (!pose) return std::nullopt;
  const SampleLine* before = nullptr;
  const SampleLine* behind = nullptr;
  for (const SampleLine& line : group.lines) {
    if (line.station <= station && (before == nullptr || line.station > before->station)) before = &line;
    if (line.station > station && (behind == nullptr || line.station < behind->station)) behind = &line;
  }
  const auto stance = [&](const SampleLine* line) {
    return line == nullptr ? std::optional<Stance>() : stanceOf(*line, alignment);
  };
  std::optional<Stance> own = stance(before);
  const std::optional<Stance> next = stance(behind);
  if (own && next) {
    const double part = (station - before->station) / (behind->station - before->station);
    const auto between = [&](double a, double b) { return a + part * (b - a); };
    own = Stance{{between(own->widths.left, next->widths.left), between(own->widths.right, next->widths.right)},
                 between(own->turn, next->turn)};
  } else if (!own) {
    own = next ? *next : Stance{{otherwise, otherwise}, 0.0};
  }
  const Vec2 right = civil::unit(pose->direction - 0.5 * civil::kPi - own->turn);
  return SampleLine{0,
                    text::stationText(station),
                    station,
                    {pose->point - own->widths.left * right, pose->point, pose->point + own->widths.right * right}};
}

}  // namespace lvx::view
