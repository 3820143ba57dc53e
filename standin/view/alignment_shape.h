#pragma once

#include <string>
#include <vector>

#include "civil/alignment.h"
#include "view/plan_shapes.h"

/// How an alignment looks in the plan: what shows of it, fine enough for the eye, and its stations. Lengths and stations in
/// drawing units, directions in radians.
namespace lvx::view {

/// A mark at a round station.
struct Tick {
  double station = 0.0;
  civil::Vec2 place;
  /// Of travel, counter-clockwise from east; the mark stands square to it.
  double direction = 0.0;
  bool isMajor = false;
  /// "1+020" at major marks, as text::stationText() has it; empty at minor ones.
  std::string text;
};

/// Distances of minor and major marks in drawing units, each 1, 2 or 5 times a power of ten, the major a multiple of the
/// minor.
struct TickSteps {
  double minor = 1.0;
  double major = 10.0;
  /// Of the major marks' text.
  int decimals = 0;
};

/// Minor marks at least 8 pixels apart, labels at least 70, down to a thousandth. `scale`: pixels a drawing unit, above 0.
[[nodiscard]] TickSteps tickSteps(double scale);

/// The smallest box around the alignment; empty where it has no element with a length.
/// O(elements).
[[nodiscard]] civil::Box boxAround(const civil::Alignment& alignment);

/// The parts of the alignment that may be seen in `visible`, as lines that keep within `tolerance` of it, between the
/// stations `from` and `to`. Lines have their ends only. What lies outside is cut off near the box, so that no vertex
/// is farther from it than about its diagonal. Gaps between elements stay gaps. Without a positive tolerance, and for
/// an empty box, nothing. O(elements + vertices), and an arc has as many vertices as its part in the box needs, however
/// large it is.
[[nodiscard]] Lines polylines(const civil::Alignment& alignment, const civil::Box& visible, double tolerance,
                              double from, double to);
[[nodiscard]] Lines polylines(const civil::Alignment& alignment, const civil::Box& visible, double tolerance);

/// The marks of what may be seen, ascending by station. `scale`: pixels a drawing unit, above 0. O(elements + marks).
[[nodiscard]] std::vector<Tick> ticks(const civil::Alignment& alignment, const civil::Box& visible, double scale);

}  // namespace lvx::view
