#include "civil/element.h"

#include <algorithm>
#include <complex>
#include <limits>

#include "civil/detail/clothoid_series.h"
#include "civil/detail/transition_law.h"

namespace lvx::civil {

double normalizedAngle(double angle) {
  double reduced = std::fmod(angle, kTwoPi);
  if (reduced < 0.0) reduced += kTwoPi;
  // A hair below 0 rounds up to the full turn; and -0.0 counts as 0.
  return reduced >= kTwoPi || reduced == 0.0 ? 0.0 : reduced;
}

double azimuthOf(double direction) { return normalizedAngle(0.5 * kPi - direction); }

const char* kindName(ElementKind kind) {
  switch (kind) {
    case ElementKind::Line:
      return "line";
    case ElementKind::Arc:
      return "arc";
    case ElementKind::Clothoid:
      return "clothoid";
    case ElementKind::Bloss:
      return "bloss";
    case ElementKind::Cosine:
      return "cosine";
    case ElementKind::Biquadratic:
      return "biquadratic";
    case ElementKind::Sinusoid:
      return "sinusoid";
  }
  return "";
}

namespace detail {
namespace {

using Complex = std::complex<double>;

// i (a f + b g) / n: the step of the recurrence for the tangent's coefficients.
Complex nextTerm(double a, Complex f, double b, Complex g, double n) {
  const Complex sum = a * f + b * g;
  return {-sum.imag() / n, sum.real() / n};
}

}  // namespace

ClothoidSeries::ClothoidSeries(double curvature, double rate, double half)
    : inverseHalf_(half > 0.0 ? 1.0 / half : 0.0) {
  const double a = curvature * half;
  const double b = rate * half * half;
  Complex before = 0.0;
  Complex tangent = 1.0;
  for (std::size_t n = 0; n < kTerms; ++n) {
    const double power = static_cast<double>(n + 1);
    terms_[n] = {half * tangent.real() / power, half * tangent.imag() / power};
    const Complex next = nextTerm(a, tangent, b, before, power);
    before = tangent;
    tangent = next;
  }
}

bool ClothoidSeries::isAccurate(double curvature, double rate, double half) {
  const double a = std::abs(curvature) * half;
  const double b = std::abs(rate) * half * half;
  if (!(a + 0.5 * b < 1.0)) return false;
  double before = 0.0;
  double term = 1.0;
  double tail = 0.0;
  for (int n = 0; n < 40; ++n) {
    if (n >= static_cast<int>(kTerms)) tail += term / (n + 1);
    const double next = (a * term + b * before) / (n + 1);
    before = term;
    term = next;
  }
  return tail < 0.5 * std::numeric_limits<double>::epsilon();
}

ClothoidSeries::ClothoidSeries(std::span<const double> curvature, double half)
    : inverseHalf_(half > 0.0 ? 1.0 / half : 0.0) {
  std::array<Complex, kTerms> tangent{};
  tangent[0] = 1.0;
  for (std::size_t n = 0; n < kTerms; ++n) {
    const double power = static_cast<double>(n + 1);
    terms_[n] = {half * tangent[n].real() / power, half * tangent[n].imag() / power};
    if (n + 1 == kTerms) break;
    Complex sum = 0.0;
    for (std::size_t j = 0; j <= n && j < curvature.size(); ++j) sum += half * curvature[j] * tangent[n - j];
    tangent[n + 1] = {-sum.imag() / power, sum.real() / power};
  }
}

bool ClothoidSeries::isAccurate(std::span<const double> curvature, double half) {
  // The majorant's own recurrence, over the sizes of the coefficients.
  constexpr std::size_t kMajorantTerms = 40;
  double turn = 0.0;
  for (std::size_t j = 0; j < curvature.size(); ++j) turn += std::abs(curvature[j]) * half / static_cast<double>(j + 1);
  if (!(turn < 1.0)) return false;
  std::array<double, kMajorantTerms + 1> term{};
  term[0] = 1.0;
  double tail = 0.0;
  for (std::size_t n = 0; n < kMajorantTerms; ++n) {
    const double power = static_cast<double>(n + 1);
    if (n >= kTerms) tail += term[n] / power;
    double sum = 0.0;
    for (std::size_t j = 0; j <= n && j < curvature.size(); ++j) sum += std::abs(curvature[j]) * half * term[n - j];
    term[n + 1] = sum / power;
  }
  return tail < 0.5 * std::numeric_limits<double>::epsilon();
}

Vec2 clothoidPoint(double curvature, double rate, double distance) {
  // Panels so short that 24 terms of the series leave less than a rounding.
  constexpr double kTurnOfHalfPanel = 0.25;
  constexpr double kMostPanels = 1 << 12;
  constexpr int kTerms = 24;
  const double endCurvature = curvature + rate * distance;
  const double turn = std::max(std::abs(curvature), std::abs(endCurvature)) * std::abs(distance);
  if (!std::isfinite(turn) || !std::isfinite(rate)) return {};
  const auto panels = static_cast<int>(std::clamp(std::ceil(0.5 * turn / kTurnOfHalfPanel), 1.0, kMostPanels));
  const double half = 0.5 * distance / panels;
  const double b = rate * half * half;
  Vec2 point;
  for (int panel = 0; panel < panels; ++panel) {
    const double middle = (2.0 * panel + 1.0) * half;
    const double a = (curvature + rate * middle) * half;
    Complex before = 0.0;
    Complex tangent = 1.0;
    Complex sum = 0.0;
    for (int n = 0; n < kTerms; ++n) {
      if (n % 2 == 0) sum += tangent / static_cast<double>(n + 1);
      const Complex next = nextTerm(a, tangent, b, before, n + 1);
      before = tangent;
      tangent = next;
    }
    const Vec2 along = unit(middle * (curvature + 0.5 * rate * middle));
    const double x = 2.0 * half * sum.real();
    const double y = 2.0 * half * sum.imag();
    point = point + Vec2{along.x * x - along.y * y, along.y * x + along.x * y};
  }
  return point;
}

}  // namespace detail

namespace {

Vec2 rotated(Vec2 a, double angle) {
  const Vec2 along = unit(angle);
  return {along.x * a.x - along.y * a.y, along.y * a.x + along.x * a.y};
}

double directionTo(Vec2 from, Vec2 to) { return from == to ? 0.0 : std::atan2(to.y - from.y, to.x - from.x); }

double rateOf(const Element& element) {
  return element.length > 0.0 ? (element.endCurvature - element.startCurvature) / element.length : 0.0;
}

double usable(double length) { return std::isfinite(length) && length > 0.0 ? length : 0.0; }

double unsignedCurvature(std::optional<double> radius) {
  if (!radius || *radius == 0.0 || std::isnan(*radius)) return 0.0;
  const double curvature = 1.0 / std::abs(*radius);
  return std::isfinite(curvature) ? curvature : 0.0;
}

}  // namespace

namespace {

// A clothoid has closed forms of its own, and goes on beyond its ends.
bool hasLaw(const Element& element) {
  return element.kind > ElementKind::Clothoid && element.startCurvature != element.endCurvature;
}

}  // namespace

double Element::curvatureAt(double distance) const {
  if (hasLaw(*this) && length > 0.0) {
    return startCurvature + (endCurvature - startCurvature) * curvatureShare(kind, distance / length);
  }
  return startCurvature + rateOf(*this) * distance;
}

double Element::directionAt(double distance) const {
  if (kind == ElementKind::Line) return direction;
  if (hasLaw(*this)) return direction + detail::turnOf(*this, distance);
  const double rate = kind == ElementKind::Arc ? 0.0 : rateOf(*this);
  return direction + distance * (startCurvature + 0.5 * rate * distance);
}

std::optional<double> Element::inflection() const {
  if (!isTransition(kind) || !(startCurvature * endCurvature < 0.0) || !(length > 0.0)) return std::nullopt;
  if (kind == ElementKind::Clothoid) return length * (startCurvature / (startCurvature - endCurvature));
  return detail::inflectionOf(*this);
}

Pose Element::poseAt(double distance) const {
  if (kind == ElementKind::Line) return {start + distance * unit(direction), direction};
  if (hasLaw(*this)) {
    return {start + rotated(detail::transitionPoint(*this, distance), direction),
            direction + detail::turnOf(*this, distance)};
  }
  const double rate = kind == ElementKind::Arc ? 0.0 : rateOf(*this);
  const double turn = distance * (startCurvature + 0.5 * rate * distance);
  if (rate == 0.0) {
    // The chord of an arc, in a form that passes into that of a line as the radius grows.
    const double halfTurn = 0.5 * turn;
    const double chord = std::abs(halfTurn) < 1e-9 ? distance : distance * (std::sin(halfTurn) / halfTurn);
    return {start + chord * unit(direction + halfTurn), direction + turn};
  }
  return {start + rotated(detail::clothoidPoint(startCurvature, rate, distance), direction), direction + turn};
}

Element makeLine(Vec2 start, Vec2 end) {
  Element line;
  line.start = start;
  line.givenEnd = end;
  line.length = length(end - start);
  line.direction = directionTo(start, end);
  return line;
}

Element makeArc(Vec2 start, Vec2 center, Vec2 end, Turn turn) {
  Element arc;
  arc.kind = ElementKind::Arc;
  arc.start = start;
  arc.givenEnd = end;
  const double sense = turn == Turn::Left ? 1.0 : -1.0;
  const Vec2 toStart = start - center;
  const Vec2 toEnd = end - center;
  const double radius = length(toStart);
  if (!(radius > 0.0) || !std::isfinite(radius)) return arc;
  arc.direction = sense > 0.0 ? std::atan2(toStart.x, -toStart.y) : std::atan2(-toStart.x, toStart.y);
  arc.startCurvature = arc.endCurvature = sense / radius;
  if (length(end - start) <= kSamePoint) return arc;
  double angle = std::atan2(sense * cross(toStart, toEnd), dot(toStart, toEnd));
  if (angle < 0.0) angle += kTwoPi;
  arc.length = usable(radius * angle);
  return arc;
}

Element makeTransition(ElementKind law, Vec2 start, std::optional<Vec2> pi, Vec2 end, double length,
                       std::optional<double> startRadius, std::optional<double> endRadius, Turn turn) {
  Element element;
  const double sense = turn == Turn::Left ? 1.0 : -1.0;
  element.start = start;
  element.givenEnd = end;
  element.length = usable(length);
  element.startCurvature = sense * unsignedCurvature(startRadius);
  element.endCurvature = sense * unsignedCurvature(endRadius);
  if (element.startCurvature != element.endCurvature) {
    element.kind = law;
  } else {
    element.kind = element.startCurvature == 0.0 ? ElementKind::Line : ElementKind::Arc;
    if (element.kind == ElementKind::Line)
      element.startCurvature = element.endCurvature = 0.0;  // no -0 of a right turn
  }
  // The shape alone, from the origin along the x axis.
  Element shape = element;
  shape.start = {};
  const Pose shapeEnd = shape.endPose();
  if (pi && civil::length(*pi - start) > kSamePoint) {
    element.direction = directionTo(start, *pi);
    // Turned by more than half a circle, the end tangents cross behind the start.
    const double crossing =
        shapeEnd.point.x * std::sin(shapeEnd.direction) - shapeEnd.point.y * std::cos(shapeEnd.direction);
    if (crossing * std::sin(shapeEnd.direction) < 0.0) element.direction = directionTo(*pi, start);
  } else {
    element.direction = directionTo(start, end) - directionTo({}, shapeEnd.point);
  }
  return element;
}

}  // namespace lvx::civil
