#pragma once

#include <string>

#include "civil/drawing.h"

namespace lvx::landxml::detail {

/// How one of a drawing's files says what the drawing holds: lengths in the file's own unit, its order of axes, its own
/// handles. Numbers come out such that reading gives the drawing's again, bit for bit where the file's unit has such a
/// number: a length that was made here may fall between two of them, and then comes back by one unit of its last binary
/// digit beside.
struct FileTerms {
  /// Those of the drawing's file of that number.
  static FileTerms of(const civil::Drawing& drawing, civil::FileNumber file);

  civil::FileNumber file = 0;
  civil::Handle handleBase = 0;
  double lengthFactor = 1.0;
  bool areAxesSwapped = false;

  /// The number that stands for a length of the drawing.
  [[nodiscard]] double fileLength(double length) const;
  /// The shortest decimal that reads back as that length.
  [[nodiscard]] std::string lengthText(double length) const;
  /// Two numbers in the file's order of axes.
  [[nodiscard]] std::string placeText(civil::Vec2 place) const;
  [[nodiscard]] std::string handleText(civil::Handle handle) const;
  /// Whether the file would hold the same for both.
  [[nodiscard]] bool isSameLength(double a, double b) const { return a == b || fileLength(a) == fileLength(b); }
};

}  // namespace lvx::landxml::detail
