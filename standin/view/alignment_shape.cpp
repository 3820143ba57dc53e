#include "view/alignment_shape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "text/number_text.h"

namespace lvx::view {

using civil::Alignment;
using civil::Box;
using civil::Element;
using civil::ElementKind;
using civil::Pose;
using civil::Vec2;

namespace {

constexpr double kLeastTickPixels = 8.0;
constexpr double kLeastLabelPixels = 70.0;
// More lines than any window can show; a guard against a window around the whole world at a scale for ants.
constexpr std::size_t kMostTicks = 20'000;
constexpr int kMostHalvings = 40;

/// The elements that the alignment goes by: those with a length, on finite ground.
bool isUsable(const Alignment& alignment, std::size_t index) {
  const Element& element = alignment.elements()[index];
  if (!(alignment.stationOfElement(index + 1) > alignment.stationOfElement(index))) return false;
  const Vec2 end = element.endPose().point;
  return std::isfinite(element.start.x) && std::isfinite(element.start.y) && std::isfinite(end.x) &&
         std::isfinite(end.y) && std::isfinite(element.startCurvature) && std::isfinite(element.endCurvature);
}

/// Distances along an element.
struct Part {
  double from = 0.0;
  double to = 0.0;
};

/// The curve between two distances lies within half their difference of the point between them.
Box reachOf(const Element& element, Part part) {
  const Vec2 middle = element.poseAt(0.5 * (part.from + part.to)).point;
  return grown({middle.x, middle.y, middle.x, middle.y}, 0.5 * (part.to - part.from));
}

/// Appends the parts of `part` that may be seen, joined where they follow one another. Cut until a part is as short as
/// the box is wide: beyond that nothing is gained.
void addVisible(const Element& element, Part part, const Box& visible, double shortest, int halvings,
                std::vector<Part>& parts) {
  if (!meet(reachOf(element, part), visible)) return;
  if (part.to - part.from <= shortest || halvings == 0) {
    if (!parts.empty() && parts.back().to == part.from)
      parts.back().to = part.to;
    else
      parts.push_back(part);
    return;
  }
  const double middle = 0.5 * (part.from + part.to);
  addVisible(element, {part.from, middle}, visible, shortest, halvings - 1, parts);
  addVisible(element, {middle, part.to}, visible, shortest, halvings - 1, parts);
}

std::vector<Part> visibleParts(const Element& element, Part whole, const Box& visible) {
  std::vector<Part> parts;
  const double shortest = std::max(visible.maxX - visible.minX, visible.maxY - visible.minY);
  addVisible(element, whole, visible, shortest, kMostHalvings, parts);
  return parts;
}

/// How far the curve between two distances strays from its chord, from above: with the largest curvature k in the
/// part, no farther than an arc of it, k length^2 / 8.
double strayOf(const Element& element, Part part) {
  const double curvature = std::max(std::abs(element.curvatureAt(part.from)), std::abs(element.curvatureAt(part.to)));
  const double span = part.to - part.from;
  return curvature * span * span / 8.0;
}

/// Appends the points after the part's start, to its end.
void addCurve(const Element& element, Part part, double tolerance, int halvings, Line& line) {
  const double span = part.to - part.from;
  const double curvature = std::max(std::abs(element.curvatureAt(part.from)), std::abs(element.curvatureAt(part.to)));
  // A chord over more than a third of a circle says nothing about the arc, however coarse the tolerance.
  if (halvings > 0 && (strayOf(element, part) > tolerance || curvature * span > 2.0)) {
    const double middle = 0.5 * (part.from + part.to);
    addCurve(element, {part.from, middle}, tolerance, halvings - 1, line);
    addCurve(element, {middle, part.to}, tolerance, halvings - 1, line);
    return;
  }
  line.push_back(element.poseAt(part.to).point);
}

void addPart(const Element& element, Part part, double tolerance, Line& line) {
  if (element.kind == ElementKind::Line) {
    line.push_back(element.poseAt(part.to).point);
  } else if (element.kind == ElementKind::Arc) {
    const double curvature = std::abs(element.startCurvature);
    const double span = part.to - part.from;
    // Sagitta of a chord over the angle a: (1 - cos(a / 2)) / k.
    const double angle = 2.0 * std::acos(std::clamp(1.0 - tolerance * curvature, std::cos(0.5), 1.0));
    const double wanted = angle > 0.0 ? std::ceil(curvature * span / angle) : 1.0;
    const auto count = static_cast<int>(std::clamp(wanted, 1.0, 100'000.0));
    for (int i = 1; i <= count; ++i)
      line.push_back(element.poseAt(i == count ? part.to : part.from + span * i / count).point);
  } else {
    addCurve(element, part, tolerance, 16, line);
  }
}

}  // namespace

TickSteps tickSteps(double scale) {
  if (!(scale > 0.0) || !std::isfinite(scale)) return {};
  // In thousandths, the finest that stations are told in, so that steps are whole numbers.
  constexpr std::array<double, 3> kMantissas{1.0, 2.0, 5.0};
  const auto leastStep = [&](double pixels, double divides) {
    double power = 1.0;
    for (int exponent = 0; exponent < 18; ++exponent, power *= 10.0)
      for (const double mantissa : kMantissas) {
        const double step = mantissa * power;
        if (step * 0.001 * scale >= pixels && std::fmod(divides, step) == 0.0) return step;
      }
    return divides > 0.0 ? divides : 5.0 * power;
  };
  const double major = leastStep(kLeastLabelPixels, 0.0);
  const double minor = leastStep(kLeastTickPixels, major);
  const auto isWhole = [&](double unit) { return std::fmod(major, unit) == 0.0; };
  return {minor / 1000.0, major / 1000.0, isWhole(1000.0) ? 0 : isWhole(100.0) ? 1 : isWhole(10.0) ? 2 : 3};
}

namespace {

/// Where in `part`, along which the direction rises or else falls, an element runs in `direction`.
double distanceOfDirection(const Element& element, Part part, bool rises, double direction) {
  for (int i = 0; i < 60; ++i) {
    const double middle = 0.5 * (part.from + part.to);
    ((element.directionAt(middle) < direction) == rises ? part.from : part.to) = middle;
  }
  return 0.5 * (part.from + part.to);
}

}  // namespace

Box boxAround(const Alignment& alignment) {
  Box box;
  for (std::size_t i = 0; i < alignment.elements().size(); ++i) {
    if (!isUsable(alignment, i)) continue;
    const Element& element = alignment.elements()[i];
    extend(box, element.start);
    extend(box, element.endPose().point);
    if (element.kind == ElementKind::Line) continue;
    // Where the curve runs along an axis: direction + k0 s + rate s^2 / 2 = a quarter turn's multiple.
    const double half = 0.5 * (element.endCurvature - element.startCurvature) / element.length;
    const double bend = element.startCurvature;
    const double turn = std::max(std::abs(bend), std::abs(element.endCurvature)) * element.length;
    if (!(turn < 1e4)) {
      // A curl of thousands of turns: its reach is good enough.
      extend(box, reachOf(element, {0.0, element.length}));
      continue;
    }
    const auto tryDistance = [&](double distance) {
      if (distance > 0.0 && distance < element.length) extend(box, element.poseAt(distance).point);
    };
    const double quarter = 0.5 * civil::kPi;
    if (element.kind > ElementKind::Clothoid) {
      // No closed form: the direction rises or falls up to the inflection, and the other way behind it.
      const double inflection = element.inflection().value_or(0.0);
      for (const Part part : {Part{0.0, inflection}, Part{inflection, element.length}}) {
        if (!(part.to > part.from)) continue;
        const double start = element.directionAt(part.from);
        const double end = element.directionAt(part.to);
        const auto [least, most] = std::minmax(start, end);
        for (double k = std::ceil(least / quarter); k * quarter <= most; ++k)
          tryDistance(distanceOfDirection(element, part, end > start, k * quarter));
      }
      continue;
    }
    const auto first = static_cast<long>(std::floor((element.direction - turn) / quarter));
    const auto last = static_cast<long>(std::ceil((element.direction + turn) / quarter));
    for (long k = first; k <= last; ++k) {
      const double rest = element.direction - static_cast<double>(k) * quarter;
      if (half == 0.0) {
        if (bend != 0.0) tryDistance(-rest / bend);
        continue;
      }
      const double root = bend * bend - 4.0 * half * rest;
      if (root < 0.0) continue;
      // Both roots without cancellation.
      const double q = -0.5 * (bend + std::copysign(std::sqrt(root), bend));
      tryDistance(q / half);
      if (q != 0.0) tryDistance(rest / q);
    }
  }
  return box;
}

Lines polylines(const Alignment& alignment, const Box& visible, double tolerance, double from, double to) {
  Lines result;
  if (visible.isEmpty() || !(tolerance > 0.0)) return result;
  bool isOpen = false;  // whether the last line goes on to the end of the element before
  for (std::size_t i = 0; i < alignment.elements().size(); ++i) {
    if (!isUsable(alignment, i)) continue;
    const Element& element = alignment.elements()[i];
    const double start = alignment.stationOfElement(i);
    const Part wanted{std::max(0.0, from - start), std::min(element.length, to - start)};
    const bool wasOpen = std::exchange(isOpen, false);
    if (!(wanted.to > wanted.from)) continue;
    for (const Part part : visibleParts(element, wanted, visible)) {
      const Vec2 begin = element.poseAt(part.from).point;
      // Drawings round their coordinates: a gap that can't be seen is none.
      const bool continues = wasOpen && part.from == wanted.from && length(begin - result.back().back()) <= tolerance;
      if (!continues) result.push_back({begin});
      addPart(element, part, tolerance, result.back());
      isOpen = part.to == wanted.to;
    }
  }
  return result;
}

Lines polylines(const Alignment& alignment, const Box& visible, double tolerance) {
  return polylines(alignment, visible, tolerance, alignment.startStation(), alignment.endStation());
}

std::vector<Tick> ticks(const Alignment& alignment, const Box& visible, double scale) {
  std::vector<Tick> result;
  if (visible.isEmpty() || !(scale > 0.0)) return result;
  const TickSteps steps = tickSteps(scale);
  const double perMajor = std::round(steps.major / steps.minor);
  // A mark and its label reach into the window from a little outside.
  const Box reach = grown(visible, kLeastLabelPixels / scale);
  double done = -HUGE_VAL;  // number of the last mark, so that a joint has one
  for (std::size_t i = 0; i < alignment.elements().size(); ++i) {
    if (!isUsable(alignment, i)) continue;
    const Element& element = alignment.elements()[i];
    const double start = alignment.stationOfElement(i);
    for (const Part part : visibleParts(element, {0.0, element.length}, reach)) {
      const double last = std::floor((start + part.to) / steps.minor + 1e-9);
      const double first = std::max(std::ceil((start + part.from) / steps.minor - 1e-9), done + 1.0);
      for (std::int64_t mark = 0; first + static_cast<double>(mark) <= last; ++mark) {
        if (result.size() >= kMostTicks) return result;
        const double number = first + static_cast<double>(mark);
        const double station = number * steps.minor;
        const Pose pose = element.poseAt(std::clamp(station - start, 0.0, element.length));
        done = number;
        if (!holds(reach, pose.point)) continue;
        const bool isMajor = std::fmod(number, perMajor) == 0.0;
        result.push_back({station, pose.point, pose.direction, isMajor,
                          isMajor ? text::stationText(station, steps.decimals) : std::string()});
      }
    }
  }
  return result;
}

}  // namespace lvx::view
