#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "points/tpoint.h"

namespace lvx::points {

/// Texts held once and packed: a character takes a byte where it is below 128, and at most five. What comes out is what
/// went in, whatever the characters are. A text is looked for among those that came lately, so one that comes again
/// after thousands of others may be held twice.
class TextPool {
 public:
  /// Where a text lies.
  using Place = std::uint64_t;

  [[nodiscard]] Place keep(std::wstring_view text);
  /// Puts the text in place of what `text` held.
  void read(Place place, CString& text) const;

  /// A few places as one.
  [[nodiscard]] Place keepPlaces(std::span<const Place> places);
  void readPlaces(Place place, std::span<Place> places) const;

 private:
  [[nodiscard]] Place keepPacked();
  [[nodiscard]] const char* packedAt(Place place) const;

  std::vector<std::string> blocks_;
  /// What is being packed: its length, then its bytes.
  std::string packed_;
  /// By hash of the bytes: the place of the last such, counted from 1.
  std::vector<Place> lately_;
};

/// The rows of one report, packed: 56 bytes each beside their texts, since a drawing may have millions of points.
///
///     PointList rows;
///     rows.add(row);
///     tpoint row;
///     for (framework::ArrayIndex i = 0; i < rows.size(); ++i) rows.read(i, row);
class PointList {
 public:
  /// Stands in the list for a row: its station and number, and its other contents by the order in which it was added.
  struct Entry {
    double station = 0.0;
    std::uint32_t added = 0;
    std::int32_t number = 0;
  };

  [[nodiscard]] framework::ArrayIndex size() const noexcept {
    return static_cast<framework::ArrayIndex>(entries_.size());
  }
  [[nodiscard]] bool isEmpty() const noexcept { return entries_.empty(); }

  /// Makes room for `count` rows in all, so that adding them moves nothing.
  void reserve(framework::ArrayIndex count);
  /// Raises std::length_error beyond 4,294,967,295 rows.
  void add(const tpoint& row);

  /// Puts a copy of the row at `index` in place of what `row` held; its texts keep their storage. An index outside
  /// [0, size) raises framework::InvalidArgumentException.
  void read(framework::ArrayIndex index, tpoint& row) const;
  [[nodiscard]] tpoint operator[](framework::ArrayIndex index) const;

  /// The rows in their order: whoever exchanges entries exchanges rows.
  [[nodiscard]] std::span<Entry> entries() noexcept { return entries_; }

 private:
  struct Contents {
    double easting = 0.0;
    double northing = 0.0;
    double elevation = 0.0;
    double offset = 0.0;
    TextPool::Place texts = 0;
  };

  std::vector<Entry> entries_;
  std::vector<Contents> contents_;
  TextPool texts_;
};

}  // namespace lvx::points
