#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "civil/element.h"
#include "civil/rare.h"

namespace lvx::civil {

/// The elements of an alignment, in order. Those of a polyline are kept as its points alone and made when they are asked
/// for, since files hold lines of thousands of points: 16 bytes an element instead of 72.
class ElementList {
 public:
  ElementList() = default;
  ElementList(std::initializer_list<Element> elements) : whole_(elements) {}
  ElementList(std::vector<Element> elements) : whole_(std::move(elements)) {}

  void reserve(std::size_t count) { whole_.reserve(count); }
  void add(const Element& element);
  /// Lines from point to point as makeLine gives them, to the bit.
  void addPolyline(std::vector<Vec2> points);
  /// Gives back what was reserved in vain.
  void shrinkToFit();

  [[nodiscard]] std::size_t size() const { return whole_.size() + inPolylines(); }
  [[nodiscard]] bool isEmpty() const { return size() == 0; }
  /// Element `index`. O(log n) of the polylines, O(1) where there is none.
  [[nodiscard]] Element at(std::size_t index) const;
  /// Its length; costs less than the element.
  [[nodiscard]] double lengthAt(std::size_t index) const;
  /// How many elements are of that kind.
  [[nodiscard]] std::size_t count(ElementKind kind) const;

  /// Multiplies all lengths. Directions stay as they are, to the bit.
  void scale(double factor);

 private:
  /// A polyline: the elements from `first` on.
  struct Run {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::uint32_t firstPoint = 0;
    std::uint32_t before = 0;  ///< elements in the polylines in front of it
  };
  struct Polylines {
    std::vector<Vec2> points;
    std::vector<Run> runs;
    double factor = 1.0;  ///< of their elements' lengths
  };
  /// Where an element is: a line from a point, or one that is kept whole.
  struct Place {
    bool isInPolyline = false;
    std::size_t index = 0;
  };

  [[nodiscard]] std::size_t inPolylines() const {
    return polylines_ ? std::size_t{polylines_->runs.back().before} + polylines_->runs.back().count : 0;
  }
  [[nodiscard]] Place placeOf(std::size_t index) const;

  std::vector<Element> whole_;
  Rare<Polylines> polylines_;  ///< holds a run where it is there
};

}  // namespace lvx::civil
