#include "civil/alignment.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

#include "civil/detail/alignment_index.h"

namespace lvx::civil {

namespace {

/// The station behind an element that starts at `station`.
double behind(double station, double length) {
  const double next = station + length;
  return length > 0.0 && std::isfinite(next) ? next : station;
}

}  // namespace

Alignment::Alignment() : Alignment(0.0, ElementList()) {}

Alignment::Alignment(double startStation, ElementList elements)
    : startStation_(std::isfinite(startStation) ? startStation : 0.0), elements_(std::move(elements)) {
  elements_.shrinkToFit();
  const std::size_t count = elements_.size();
  if (count > kStationStep) stations_.made().reserve((count - 1) / kStationStep);
  double station = startStation_;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0 && i % kStationStep == 0) stations_->push_back(station);
    station = behind(station, elements_.lengthAt(i));
  }
  endStation_ = station;
}

Alignment::Alignment(const Alignment& other)
    : startStation_(other.startStation_),
      endStation_(other.endStation_),
      elements_(other.elements_),
      stations_(other.stations_) {}

Alignment::Alignment(Alignment&& other) noexcept
    : startStation_(other.startStation_),
      endStation_(other.endStation_),
      elements_(std::move(other.elements_)),
      stations_(std::move(other.stations_)),
      index_(other.index_.exchange(nullptr)) {}

Alignment& Alignment::operator=(Alignment other) noexcept {
  std::swap(startStation_, other.startStation_);
  std::swap(endStation_, other.endStation_);
  std::swap(elements_, other.elements_);
  std::swap(stations_, other.stations_);
  other.index_ = index_.exchange(other.index_);
  return *this;
}

Alignment::~Alignment() { delete index_.load(); }

/// Made by the first question: it takes several times the memory of the elements, and of the alignments of a drawing
/// few are ever asked.
const detail::AlignmentIndex& Alignment::index() const {
  if (const auto* const made = index_.load(std::memory_order_acquire)) return *made;
  // One lock for all alignments: a lock each would take memory in those that nobody asks.
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  if (const auto* const made = index_.load(std::memory_order_relaxed)) return *made;
  std::vector<Element> elements;
  elements.reserve(elements_.size());
  std::vector<double> stations{startStation_};
  stations.reserve(elements_.size() + 1);
  for (const Element& element : this->elements()) {
    elements.push_back(element);
    stations.push_back(behind(stations.back(), element.length));
  }
  auto made = std::make_unique<const detail::AlignmentIndex>(elements, stations);
  index_.store(made.get(), std::memory_order_release);
  return *made.release();
}

/// Station where elements begin that come in a stretch of kStationStep.
double Alignment::stationOfStretch(std::size_t stretch) const {
  return stretch == 0 ? startStation_ : (*stations_)[stretch - 1];
}

std::optional<Pose> Alignment::poseAt(double station, double tolerance) const {
  const double reach = std::max(kEndTolerance, tolerance);
  if (!(endStation_ > startStation_) || !(station >= startStation_ - reach && station <= endStation_ + reach)) {
    return std::nullopt;
  }
  const double within = std::clamp(station, startStation_, endStation_);
  // The last element that starts at or before the station and has a length: in the last of the stretches between known
  // stations that starts there, or, where that has no such element, in one before.
  std::size_t found = 0;
  double start = startStation_;
  const std::vector<double>& stations = stations_.orNone();
  auto stretch =
      static_cast<std::size_t>(std::upper_bound(stations.begin(), stations.end(), within) - stations.begin());
  for (bool isFound = false; !isFound; --stretch) {
    double at = stationOfStretch(stretch);
    const std::size_t end = std::min((stretch + 1) * kStationStep, elements_.size());
    for (std::size_t i = stretch * kStationStep; i < end && at <= within; ++i) {
      const double next = behind(at, elements_.lengthAt(i));
      if (next > at) {
        isFound = true;
        found = i;
        start = at;
      }
      at = next;
    }
    if (stretch == 0) break;
  }
  const Element element = elements_.at(found);
  return element.poseAt(std::min(within - start, element.length));
}

double Alignment::stationOfElement(std::size_t index) const {
  if (index >= elements_.size()) return endStation_;
  const std::size_t stretch = index / kStationStep;
  double station = stationOfStretch(stretch);
  for (std::size_t i = stretch * kStationStep; i < index; ++i) station = behind(station, elements_.lengthAt(i));
  return station;
}

Alignment Alignment::scaled(double factor) const {
  ElementList elements = elements_;
  elements.scale(factor);
  return {startStation_ * factor, std::move(elements)};
}

std::optional<Pose> Alignment::pointLocation(double station, double offset, double tolerance) const {
  std::optional<Pose> pose = poseAt(station, tolerance);
  if (pose) {
    const Vec2 along = unit(pose->direction);
    pose->point = pose->point + offset * Vec2{along.y, -along.x};
  }
  return pose;
}

std::optional<StationOffset> Alignment::stationOffset(Vec2 point) const {
  const auto answer = index().stationOffset(point);
  if (!answer) return std::nullopt;
  return StationOffset{answer->station, answer->offset};
}

// ---------------------------------------------------------------- from text

namespace {

class AlignmentText {
 public:
  explicit AlignmentText(std::string_view text) : rest_(text) {}

  Alignment read() {
    while (skipBlanks(), !rest_.empty()) {
      if (rest_.front() == ';') {
        rest_.remove_prefix(1);
        continue;
      }
      readItem();
    }
    return {startStation_, std::move(elements_)};
  }

 private:
  [[noreturn]] static void fail(const std::string& what, std::string_view word) {
    throw std::invalid_argument("alignment text: " + what + " at '" + std::string(word) + "'");
  }

  void skipBlanks() {
    while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t' || rest_.front() == '\n'))
      rest_.remove_prefix(1);
  }

  std::string_view word() {
    skipBlanks();
    const std::string_view taken = rest_.substr(0, std::min(rest_.find_first_of(" \t\n;"), rest_.size()));
    rest_.remove_prefix(taken.size());
    return taken;
  }

  static double parsed(std::string_view digits, std::string_view word) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size() || !std::isfinite(value)) {
      fail("a number is wanted", word);
    }
    return value;
  }

  double number() {
    const std::string_view taken = word();
    return parsed(taken, taken);
  }

  double size() {
    const std::string_view taken = word();
    const double value = parsed(taken, taken);
    if (!(value >= 0.0)) fail("a length can't be negative", taken);
    return value;
  }

  static double curvature(std::string_view radius, std::string_view word) {
    if (radius == "inf") return 0.0;
    const double value = parsed(radius, word);
    if (!(value > 0.0)) fail("a radius is wanted", word);
    return 1.0 / value;
  }

  // A line where no transition is named so.
  static ElementKind transitionNamed(std::string_view name) {
    for (const ElementKind law : {ElementKind::Clothoid, ElementKind::Bloss, ElementKind::Cosine,
                                  ElementKind::Biquadratic, ElementKind::Sinusoid}) {
      if (name == kindName(law)) return law;
    }
    return ElementKind::Line;
  }

  void expectR() {
    if (const std::string_view taken = word(); taken != "R") fail("R is wanted", taken);
  }

  double sense() {
    const std::string_view taken = word();
    if (taken == "left") return 1.0;
    if (taken == "right") return -1.0;
    fail("left or right is wanted", taken);
  }

  void readItem() {
    const std::string_view item = word();
    if (item == "start") {
      startStation_ = number();
    } else if (item == "at") {
      pen_.point.x = number();
      pen_.point.y = number();
    } else if (item == "heading") {
      pen_.direction = (90.0 - number()) * (kPi / 180.0);
    } else if (item == "line") {
      add(continued(ElementKind::Line, size()));
    } else if (item == "arc") {
      Element element = continued(ElementKind::Arc, size());
      expectR();
      const std::string_view radius = word();
      if (radius == "inf") fail("an arc's radius is wanted", radius);
      const double bend = curvature(radius, radius);
      element.startCurvature = element.endCurvature = sense() * bend;
      add(element);
    } else if (const ElementKind law = transitionNamed(item); isTransition(law)) {
      Element element = continued(law, size());
      expectR();
      const std::string_view radii = word();
      const std::size_t dots = radii.find("..");
      if (dots == std::string_view::npos) fail("two radii as in inf..300 are wanted", radii);
      const double first = curvature(radii.substr(0, dots), radii);
      const double second = curvature(radii.substr(dots + 2), radii);
      const double side = sense();
      element.startCurvature = side * first;
      element.endCurvature = side * second;
      add(element);
    } else if (item == "to") {
      const double x = number();
      const Element element = makeLine(pen_.point, {x, number()});
      add(element);
      pen_.point = elements_.back().givenEnd = element.givenEnd;  // exactly there
    } else {
      fail("no such word", item);
    }
  }

  [[nodiscard]] Element continued(ElementKind kind, double length) const {
    Element element;
    element.kind = kind;
    element.start = pen_.point;
    element.direction = pen_.direction;
    element.length = length;
    return element;
  }

  void add(Element element) {
    pen_ = element.endPose();
    element.givenEnd = pen_.point;
    elements_.push_back(element);
  }

  std::string_view rest_;
  double startStation_ = 0.0;
  Pose pen_{{}, 0.5 * kPi};
  std::vector<Element> elements_;
};

}  // namespace

Alignment Alignment::fromText(std::string_view text) { return AlignmentText(text).read(); }

}  // namespace lvx::civil
