#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "civil/element.h"
#include "civil/element_list.h"
#include "civil/rare.h"
#include "civil/value_list.h"

namespace lvx::civil {

namespace detail {
class AlignmentIndex;
}

/// Where a point lies against an alignment; a negative offset lies on the left of the direction of travel.
struct StationOffset {
  double station = 0.0;
  double offset = 0.0;
};

/// A horizontal alignment: a chain of elements measured by station. Lengths, stations and offsets in drawing units,
/// angles in radians. Stations add up the elements' lengths from the start station; station equations play no part.
/// Immutable once built; its queries may run in several threads at once. Copies share nothing.
/// Memory: 73 bytes an element, 17 in a polyline. What the nearest foot is searched in, O(n log n) to build and a multiple
/// of the elements in memory (some 800 bytes for each of their pieces), is made when the first one is asked for.
///
///     auto axis = Alignment::fromText(
///         "start 1000 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right");
///     axis.poseAt(1120.0);                // somewhere on the clothoid
///     axis.stationOffset({12.5, -4.0});   // station 1012.5, offset 4 to the right; exact on curves too
class Alignment {
 public:
  /// A station this little beyond an end still counts as the end, since files round their last stations.
  static constexpr double kEndTolerance = 0.001;
  using Elements = ValueList<ElementList, Element, &ElementList::at>;

  Alignment();
  Alignment(double startStation, ElementList elements);
  Alignment(const Alignment&);
  Alignment(Alignment&&) noexcept;
  Alignment& operator=(Alignment) noexcept;
  ~Alignment();

  /// An alignment in one line of text, for tests and tools: `start S` and `at X Y heading AZIMUTH-DEGREES`, then
  /// elements that continue one another: `line L`, `arc L R r left|right`, `clothoid L R r1..r2 left|right` (`inf` for
  /// straight; `bloss`, `cosine`, `biquadratic` and `sinusoid` alike), and `to X Y` for a line to a point (which may make a corner). `at` and `heading` between elements make
  /// gaps and corners. Without them it starts at 0 0 to the north. Throws std::invalid_argument that names the word.
  [[nodiscard]] static Alignment fromText(std::string_view text);

  [[nodiscard]] bool isEmpty() const { return elements_.isEmpty(); }
  [[nodiscard]] double startStation() const { return startStation_; }
  [[nodiscard]] double endStation() const { return endStation_; }
  [[nodiscard]] double length() const { return endStation_ - startStation_; }
  [[nodiscard]] Elements elements() const { return {elements_, elements_.size()}; }
  /// How many elements are of that kind.
  [[nodiscard]] std::size_t countOf(ElementKind kind) const { return elements_.count(kind); }
  /// Station at the start of element `index`; at `elements().size()` the end station.
  [[nodiscard]] double stationOfElement(std::size_t index) const;

  /// Position and direction of travel at `station`. A station outside [startStation, endStation] by kEndTolerance or
  /// `tolerance` at most, whichever is larger, gives the end; further out it is empty, as for an alignment without
  /// length. At a joint the later element answers, passing over elements without length. Position error below 1e-9 on
  /// elements up to 1 km. O(log n).
  [[nodiscard]] std::optional<Pose> poseAt(double station, double tolerance = 0.0) const;

  /// The point at `offset` square to the alignment at `station` (positive: right), with the direction of travel there.
  [[nodiscard]] std::optional<Pose> pointLocation(double station, double offset, double tolerance = 0.0) const;

  /// The nearest foot of a perpendicular; at equal distances the smaller station. Beyond an end, where no foot lies
  /// nearer than the end itself: station and offset against the end's tangent drawn on, so the station lies outside the
  /// range. At a corner, where neither side has a foot: the corner's station and distance, signed by the side of the
  /// bisector of the two directions (straight back counts as a turn to the left). Where an element's end misses the
  /// next start, the nearer of the two is the corner. Distances are equal within 1e-10 and the rounding of the
  /// coordinates; an offset within that rounding of the axis is 0. Exact to 1e-8. Empty for an alignment without length
  /// and for a point that isn't finite. About 0.1 us on a road of 300 elements, 0.2 us at corners and far away: O(log n).
  [[nodiscard]] std::optional<StationOffset> stationOffset(Vec2 point) const;

  /// The same in another unit: all lengths and stations multiplied.
  [[nodiscard]] Alignment scaled(double factor) const;

 private:
  [[nodiscard]] const detail::AlignmentIndex& index() const;
  [[nodiscard]] double stationOfStretch(std::size_t stretch) const;

  /// Stations are kept of one element in so many; between them the lengths are added up again.
  static constexpr std::size_t kStationStep = 8;

  double startStation_ = 0.0;
  double endStation_ = 0.0;
  ElementList elements_;
  Rare<std::vector<double>> stations_;  ///< of the elements kStationStep, 2 kStationStep, ...; none where there is none
  mutable std::atomic<const detail::AlignmentIndex*> index_ = nullptr;  ///< made by the first question for a foot
};

}  // namespace lvx::civil
