#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <vector>

#include "civil/alignment.h"

/// Alignments by other means than the product's: positions by long double quadrature from node to node, the nearest
/// point by looking everywhere. Slow and plain.
namespace lvx::civil::test {

using Real = long double;

struct RealPoint {
  Real x = 0.0L;
  Real y = 0.0L;
};

/// Ten Gauss-Legendre nodes over [from, to] of the tangent of a curve, given its direction by the distance.
template <class Direction>
RealPoint integrateTangent(const Direction& directionAt, Real from, Real to) {
  static constexpr Real node[5] = {0.148874338981631210884826001129719985L, 0.433395394129247190799265943165784162L,
                                   0.679409568299024406234327365114873576L, 0.865063366688984510732096688423493049L,
                                   0.973906528517171720077964012084452053L};
  static constexpr Real weight[5] = {0.295524224714752870173815619188769033L, 0.269266719309996355091226921569469353L,
                                     0.219086362515982043995534934228163192L, 0.149451349150580593145863396957697332L,
                                     0.066671344308688137593568809893331793L};
  const Real middle = (from + to) / 2;
  const Real half = (to - from) / 2;
  RealPoint sum;
  for (int i = 0; i < 5; ++i) {
    for (const Real side : {-1.0L, 1.0L}) {
      const Real s = middle + side * half * node[i];
      const Real angle = directionAt(s);
      sum.x += weight[i] * std::cos(angle);
      sum.y += weight[i] * std::sin(angle);
    }
  }
  return {half * sum.x, half * sum.y};
}

/// Curvature's share of its change at t, and the integral of that from 0.
struct RealShare {
  Real curvature = 0.0L;
  Real heading = 0.0L;
};
inline RealShare shareOf(ElementKind law, Real t) {
  constexpr Real pi = std::numbers::pi_v<Real>;
  switch (law) {
    case ElementKind::Bloss:
      return {3 * t * t - 2 * t * t * t, t * t * t - t * t * t * t / 2};
    case ElementKind::Cosine:
      return {(1 - std::cos(pi * t)) / 2, t / 2 - std::sin(pi * t) / (2 * pi)};
    case ElementKind::Biquadratic:
      if (t <= 0.5L) return {2 * t * t, 2 * t * t * t / 3};
      return {4 * t - 2 * t * t - 1, 2 * t * t - 2 * t * t * t / 3 - t + 1.0L / 6};
    case ElementKind::Sinusoid:
      return {t - std::sin(2 * pi * t) / (2 * pi), t * t / 2 + (std::cos(2 * pi * t) - 1) / (4 * pi * pi)};
    default:
      return {t, t * t / 2};
  }
}

class ReferenceElement {
 public:
  explicit ReferenceElement(const Element& element)
      : law_(element.kind),
        direction_(element.direction),
        length_(element.length),
        curvature_(element.startCurvature),
        rate_(element.length > 0.0 ? (static_cast<Real>(element.endCurvature) - element.startCurvature) / length_
                                   : 0.0L) {
    const Real turn = std::max(std::abs(curvature_), std::abs(curvature_ + rate_ * length_)) * length_;
    const auto half = static_cast<std::size_t>(std::max<Real>(4, std::ceil(turn / 0.04L)));
    const std::size_t count = 2 * half;  // a node in the middle, where a biquadratic's law changes
    step_ = length_ / static_cast<Real>(count);
    nodes_.push_back({element.start.x, element.start.y});
    for (std::size_t i = 0; i < count; ++i) {
      const Real from = static_cast<Real>(i) * step_;
      const RealPoint d = integrateTangent([&](Real s) { return angleAt(s); }, from, from + step_);
      nodes_.push_back({nodes_.back().x + d.x, nodes_.back().y + d.y});
    }
  }

  [[nodiscard]] Real length() const { return length_; }
  [[nodiscard]] Real step() const { return step_; }
  [[nodiscard]] std::size_t steps() const { return nodes_.size() - 1; }
  [[nodiscard]] Real angleAt(Real s) const {
    if (law_ <= ElementKind::Clothoid) return direction_ + s * (curvature_ + rate_ * s / 2);
    return direction_ + s * curvature_ + rate_ * length_ * length_ * shareOf(law_, s / length_).heading;
  }
  [[nodiscard]] Real curvatureAt(Real s) const {
    if (law_ <= ElementKind::Clothoid) return curvature_ + rate_ * s;
    return curvature_ + rate_ * length_ * shareOf(law_, s / length_).curvature;
  }
  [[nodiscard]] RealPoint pointAt(Real s) const {
    if (!(length_ > 0)) return nodes_.front();
    const auto last = static_cast<Real>(nodes_.size() - 1);
    const Real i = std::clamp<Real>(std::floor(s / step_), 0, last);
    const RealPoint& from = nodes_[static_cast<std::size_t>(i)];
    // Distances outside continue the curve, in steps of the same length.
    RealPoint at = from;
    Real reached = i * step_;
    while (std::abs(s - reached) > step_) {
      const Real next = reached + std::copysign(step_, s - reached);
      const RealPoint d = integrateTangent([&](Real place) { return angleAt(place); }, reached, next);
      at = {at.x + d.x, at.y + d.y};
      reached = next;
    }
    const RealPoint d = integrateTangent([&](Real place) { return angleAt(place); }, reached, s);
    return {at.x + d.x, at.y + d.y};
  }

 private:
  ElementKind law_;
  Real direction_;
  Real length_;
  Real curvature_;
  Real rate_;
  Real step_ = 0;
  std::vector<RealPoint> nodes_;
};

/// The nearest place, and how far one may trust its station.
struct ReferenceFoot {
  Real distance = std::numeric_limits<Real>::infinity();
  Real station = 0;
  Real offset = 0;
  /// |1 - curvature * left|: 0 at a centre of curvature, where a hair in place is a long way in station.
  Real conditioning = 1;
  /// Distance of the next best local minimum at another station, less the best.
  Real margin = std::numeric_limits<Real>::infinity();
  /// The same for places up to a millimetre away: elements that meet but for a rounding offer two feet at their joint.
  Real marginBeside = std::numeric_limits<Real>::infinity();
  /// The offset may have either sign.
  bool isSideOpen = false;
};

class ReferenceAxis {
 public:
  explicit ReferenceAxis(const Alignment& axis) {
    Real station = axis.startStation();
    for (const Element& element : axis.elements()) {
      if (element.length > 0.0) {
        elements_.emplace_back(element);
        stations_.push_back(station);
      }
      station += element.length;
    }
  }

  [[nodiscard]] ReferenceFoot nearest(Vec2 p) const {
    std::vector<ReferenceFoot> feet;
    for (std::size_t e = 0; e < elements_.size(); ++e) {
      const ReferenceElement& element = elements_[e];
      const auto slope = [&](Real s) { return -along(element, s, p); };
      addEnd(feet, e, 0, p);
      Real before = slope(0);
      for (std::size_t i = 0; i < element.steps(); ++i) {
        Real low = static_cast<Real>(i) * element.step();
        Real high = i + 1 == element.steps() ? element.length() : low + element.step();
        const Real after = slope(high);
        if (before < 0 && after >= 0) {
          for (int k = 0; k < 70; ++k) {
            const Real middle = (low + high) / 2;
            (slope(middle) < 0 ? low : high) = middle;
          }
          addInside(feet, e, (low + high) / 2, p);
        }
        before = after;
      }
      addEnd(feet, e, element.length(), p);
    }
    ReferenceFoot best;
    for (const ReferenceFoot& foot : feet) {
      if (foot.distance < best.distance) best = foot;
    }
    for (const ReferenceFoot& foot : feet) {
      const Real apart = std::abs(foot.station - best.station);
      Real& margin = apart > 1e-3L ? best.margin : best.marginBeside;
      if (apart > 1e-9L) margin = std::min(margin, foot.distance - best.distance);
    }
    return best;
  }

 private:
  struct Rest {
    Real x, y, cosine, sine;
  };
  static Rest restOf(const ReferenceElement& element, Real s, Vec2 p) {
    const RealPoint at = element.pointAt(s);
    const Real angle = element.angleAt(s);
    return {p.x - at.x, p.y - at.y, std::cos(angle), std::sin(angle)};
  }
  static Real along(const ReferenceElement& element, Real s, Vec2 p) {
    const Rest r = restOf(element, s, p);
    return r.x * r.cosine + r.y * r.sine;
  }

  void addInside(std::vector<ReferenceFoot>& feet, std::size_t e, Real s, Vec2 p) const {
    const Rest r = restOf(elements_[e], s, p);
    const Real left = r.y * r.cosine - r.x * r.sine;
    feet.push_back({std::abs(left), stations_[e] + s, -left, std::abs(1 - elements_[e].curvatureAt(s) * left)});
  }

  void addEnd(std::vector<ReferenceFoot>& feet, std::size_t e, Real s, Vec2 p) const {
    const Rest r = restOf(elements_[e], s, p);
    const Real distance = std::hypot(r.x, r.y);
    const Real ahead = r.x * r.cosine + r.y * r.sine;
    const Real left = r.y * r.cosine - r.x * r.sine;
    const Real conditioning = std::abs(1 - elements_[e].curvatureAt(s) * left);
    const bool isFirst = e == 0 && s == 0;
    const bool isLast = e + 1 == elements_.size() && s != 0;
    if (isFirst || isLast) {
      const Real beyond = isFirst ? std::min<Real>(ahead, 0) : std::max<Real>(ahead, 0);
      feet.push_back({distance, stations_[e] + s + beyond, -left, conditioning});
      return;
    }
    const std::size_t other = s == 0 ? e - 1 : e + 1;
    const Real otherAngle = elements_[other].angleAt(s == 0 ? elements_[other].length() : 0);
    const Real bx = r.cosine + std::cos(otherAngle);
    const Real by = r.sine + std::sin(otherAngle);
    feet.push_back({distance, stations_[e] + s, -std::copysign(distance, bx * r.y - by * r.x), conditioning});
    // Where the road turns back on itself both sides are as good.
    feet.back().isSideOpen = std::hypot(bx, by) < 1e-9L;
  }

  std::vector<ReferenceElement> elements_;
  std::vector<Real> stations_;
};

}  // namespace lvx::civil::test
