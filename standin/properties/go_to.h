#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "civil/drawing.h"

namespace lvx::properties {

/// A place that a user may mean by a line of text.
struct GoTo {
  enum class Kind : std::uint8_t { Point, Station, Coordinates, Object };
  Kind kind = Kind::Object;
  /// The text that means this alone, as far as there is one; what completion puts in.
  std::string text;
  /// Of a point and another object; else 0.
  civil::Handle handle = 0;
  /// Of a station: its alignment; else null.
  const civil::AlignmentObject* alignment = nullptr;
  double station = 0.0;
  double offset = 0.0;  ///< negative: left
  /// Of all but other objects.
  civil::Vec2 place;
};

/// Why nothing fits, where that can be told.
enum class GoToTrouble : std::uint8_t {
  None,
  Empty,           ///< nothing was typed
  NothingFits,     ///< no object is called so, and it is neither a station nor coordinates
  NoAlignment,     ///< a station, and there is no alignment
  OutsideStation,  ///< a station beyond the ends of `alignment`
};

struct GoToAnswer {
  /// The likeliest first.
  std::vector<GoTo> places;
  GoToTrouble trouble = GoToTrouble::None;
  /// Of a station: the alignment that was asked.
  const civil::AlignmentObject* alignment = nullptr;
};

/// What a line of text may mean in a drawing:
///
/// - a point by its number or name: `17`, `GP3`
/// - a station, with the offset behind it if wanted (negative: left): `1+020.5`, `1+020.5, -3`, `120.5 / -3`; of
///   `chosen`, or of the alignment whose name stands before or behind it: `Mill lane 0+040`
/// - easting and northing, in this order: `4500123.4, 5400456.7`, `4500123,4; 5400456,7`, with spaces or tabs between
///   them too; a third number, the elevation, is passed over. A comma is the decimal sign where a semicolon, a space or a
///   point stands as well, else it parts the two
/// - an object by its name: the whole name before its beginning, that before a part of it, in any case
///
/// A lone number is a point before it is a station. At most `most` places are given. O(objects + points).
[[nodiscard]] GoToAnswer understand(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                                    const civil::AlignmentObject* chosen, std::string_view text, std::size_t most = 12);

/// Easting and northing as described above; empty for anything else.
[[nodiscard]] std::optional<civil::Vec2> coordinatesOf(std::string_view text);
/// A station as it is written, `1+020.5` or `1020.5` or with a decimal comma, and the offset behind it; empty for
/// anything else.
[[nodiscard]] std::optional<civil::StationOffset> stationOf(std::string_view text);

}  // namespace lvx::properties
