#include "civil/detail/transition_law.h"

#include <algorithm>
#include <limits>

namespace lvx::civil {

double curvatureShare(ElementKind law, double t) {
  const double within = std::clamp(t, 0.0, 1.0);
  const double rest = 1.0 - within;
  switch (law) {
    case ElementKind::Bloss:
      return within * within * (3.0 - 2.0 * within);
    case ElementKind::Cosine:
      return 0.5 * (1.0 - std::cos(kPi * within));
    case ElementKind::Biquadratic:
      return within <= 0.5 ? 2.0 * within * within : 1.0 - 2.0 * rest * rest;
    case ElementKind::Sinusoid:
      return within - std::sin(kTwoPi * within) / kTwoPi;
    case ElementKind::Line:
    case ElementKind::Arc:
    case ElementKind::Clothoid:
      break;
  }
  return within;
}

namespace detail {
namespace {

/// Eight Gauss-Legendre nodes of [0, 1], half of them: they lie symmetrically about the middle.
struct Node {
  double place;
  double weight;
};
constexpr std::array<Node, 4> kNodes{{{0.1834346424956498049394761, 0.3626837833783619829651504},
                                      {0.5255324099163289858177390, 0.3137066458778872873379622},
                                      {0.7966664774136267395915539, 0.2223810344533744705443560},
                                      {0.9602898564975362316835609, 0.1012285362903762591525314}}};

double sharpestOf(const Element& element) {
  return std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
}

/// The integral of the tangent between two distances on the curve, within one half of it.
Vec2 integrated(const Element& element, double from, double to) {
  constexpr double kTurnOfPanel = 0.5;
  constexpr double kMostPanels = 1 << 12;
  const double turn = sharpestOf(element) * (to - from);
  const auto panels = static_cast<int>(std::clamp(std::ceil(turn / kTurnOfPanel), 1.0, kMostPanels));
  const double half = 0.5 * (to - from) / panels;
  Vec2 sum;
  for (int panel = 0; panel < panels; ++panel) {
    const double middle = from + (2.0 * panel + 1.0) * half;
    for (const Node& node : kNodes) {
      const Vec2 before = unit(turnOf(element, middle - half * node.place));
      const Vec2 behind = unit(turnOf(element, middle + half * node.place));
      sum = sum + node.weight * (before + behind);
    }
  }
  return half * sum;
}

/// The chord of an arc that leaves the origin in `direction`.
Vec2 arcChord(double direction, double curvature, double distance) {
  const double halfTurn = 0.5 * curvature * distance;
  const double chord = std::abs(halfTurn) < 1e-9 ? distance : distance * (std::sin(halfTurn) / halfTurn);
  return chord * unit(direction + halfTurn);
}

/// The nth derivative of the sine at `x`.
double sineDerivative(std::size_t n, double x) {
  switch (n % 4) {
    case 0:
      return std::sin(x);
    case 1:
      return std::cos(x);
    case 2:
      return -std::sin(x);
    default:
      return -std::cos(x);
  }
}

}  // namespace

double headingShare(ElementKind law, double t) {
  const double rest = 1.0 - t;
  switch (law) {
    case ElementKind::Bloss:
      return t * t * t * (1.0 - 0.5 * t);
    case ElementKind::Cosine:
      return 0.5 * t - std::sin(kPi * t) / kTwoPi;
    case ElementKind::Biquadratic:
      return t <= 0.5 ? t * t * t * (2.0 / 3.0) : t - 0.5 + rest * rest * rest * (2.0 / 3.0);
    case ElementKind::Sinusoid: {
      const double sine = std::sin(kPi * t);
      return 0.5 * (t * t - sine * sine / (kPi * kPi));
    }
    case ElementKind::Line:
    case ElementKind::Arc:
    case ElementKind::Clothoid:
      break;
  }
  return 0.5 * t * t;
}

std::array<double, kLawTerms> lawSeries(ElementKind law, double t, double step) {
  std::array<double, kLawTerms> series{};
  series[0] = curvatureShare(law, t);
  switch (law) {
    case ElementKind::Bloss:
      series[1] = 6.0 * t * (1.0 - t) * step;
      series[2] = (3.0 - 6.0 * t) * step * step;
      series[3] = -2.0 * step * step * step;
      break;
    case ElementKind::Biquadratic:
      series[1] = 4.0 * (t <= 0.5 ? t : 1.0 - t) * step;
      series[2] = (t <= 0.5 ? 2.0 : -2.0) * step * step;
      break;
    case ElementKind::Cosine: {
      // cos(x) is the first derivative of sin(x).
      double power = 1.0;
      for (std::size_t n = 1; n < kLawTerms; ++n) {
        power *= kPi * step / static_cast<double>(n);
        series[n] = -0.5 * power * sineDerivative(n + 1, kPi * t);
      }
      break;
    }
    case ElementKind::Sinusoid: {
      double power = 1.0;
      for (std::size_t n = 1; n < kLawTerms; ++n) {
        power *= kTwoPi * step / static_cast<double>(n);
        series[n] = -power * sineDerivative(n, kTwoPi * t) / kTwoPi;
      }
      series[1] += step;
      break;
    }
    case ElementKind::Line:
    case ElementKind::Arc:
    case ElementKind::Clothoid:
      series[1] = step;
      break;
  }
  return series;
}

double largestStep(ElementKind law) {
  // 0.8^16 / 16! is a rounding.
  constexpr double kReach = 0.8;
  if (law == ElementKind::Cosine) return kReach / kPi;
  if (law == ElementKind::Sinusoid) return kReach / kTwoPi;
  return 1.0;
}

double largestBend(ElementKind law) {
  switch (law) {
    case ElementKind::Bloss:
      return 6.0;
    case ElementKind::Cosine:
      return 0.5 * kPi * kPi;
    case ElementKind::Biquadratic:
      return 4.0;
    case ElementKind::Sinusoid:
      return kTwoPi;
    case ElementKind::Line:
    case ElementKind::Arc:
    case ElementKind::Clothoid:
      break;
  }
  return 0.0;
}

double turnOf(const Element& element, double distance) {
  if (!(element.length > 0.0) || distance < 0.0) return distance * element.startCurvature;
  const double rise = element.endCurvature - element.startCurvature;
  if (distance > element.length) {
    return 0.5 * element.length * (element.startCurvature + element.endCurvature) +
           (distance - element.length) * element.endCurvature;
  }
  return distance * element.startCurvature +
         element.length * rise * headingShare(element.kind, distance / element.length);
}

Vec2 transitionPoint(const Element& element, double distance) {
  if (!std::isfinite(sharpestOf(element) * distance) || !std::isfinite(element.length)) return {};
  if (!(element.length > 0.0) || distance < 0.0) return arcChord(0.0, element.startCurvature, distance);
  // In two halves: a biquadratic's law is another one behind its middle, and the others' waves stay short.
  const double within = std::min(distance, element.length);
  const double middle = std::min(0.5 * element.length, within);
  Vec2 point = integrated(element, 0.0, middle);
  if (within > middle) point = point + integrated(element, middle, within);
  if (distance > element.length) {
    point = point + arcChord(turnOf(element, element.length), element.endCurvature, distance - element.length);
  }
  return point;
}

double inflectionOf(const Element& element) {
  if (!(element.startCurvature * element.endCurvature < 0.0)) return 0.0;
  const double share = element.startCurvature / (element.startCurvature - element.endCurvature);
  double low = 0.0;
  double high = 1.0;
  while (high - low > std::numeric_limits<double>::epsilon() * high) {
    const double middle = 0.5 * (low + high);
    if (!(middle > low && middle < high)) break;
    (curvatureShare(element.kind, middle) < share ? low : high) = middle;
  }
  return element.length * 0.5 * (low + high);
}

}  // namespace detail
}  // namespace lvx::civil
