#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "canvas/canvas.h"
#include "civil/geometry.h"

namespace lvx::sheets {

/// How the sheets of a book look.
struct SheetSettings {
  canvas::Size paper{420.0, 297.0};
  /// The 200 of 1:200; none: the largest usual one that fits.
  std::optional<double> scale{};
  /// Heights over lengths.
  double exaggeration = 1.0;
  /// Cross sections on a sheet at most; 0: as many as fit.
  std::size_t perSheet = 0;
  bool hasGrid = false;
  /// "en" or "de"
  std::string language = "en";
  /// As the title block shows it.
  std::string date{};
};

/// Told how much of the work is done; false stops it (SheetError, Stopped).
using Progress = std::function<bool(std::size_t done, std::size_t total)>;

/// The scales that are used, from the largest on.
inline constexpr std::array<double, 19> kUsualScales{1,   2,    5,    10,   20,   25,    50,    100,   200,   250,
                                                     500, 1000, 2000, 2500, 5000, 10000, 20000, 50000, 100000};

/// The largest of them, not larger than 1:`notBelow`, that `fits`; 0 where none does.
template <class Fits>
[[nodiscard]] double firstFitting(double notBelow, const Fits& fits) {
  for (const double scale : kUsualScales)
    if (scale >= notBelow && fits(scale)) return scale;
  return 0.0;
}

/// "1:200"
[[nodiscard]] std::string scaleText(double scale);

/// The scale that "200" or "1:200" means; none for any other text.
[[nodiscard]] std::optional<double> scaleOf(const std::string& text);

/// The station that "1+200.5" or "1200.5" means; none for any other text.
[[nodiscard]] std::optional<double> stationOf(const std::string& text);

/// The multiples of `step`, which is above 0, from `from` to `to`, ascending. None where there would be more than 2000: no
/// sheet has room for so many.
[[nodiscard]] std::vector<double> roundPlaces(double from, double to, double step);

/// A datum below `low`: a multiple of a round step that is at least 5 millimetres on paper, with at least `space`
/// millimetres between the two. `perUnit` is millimetres of paper for a unit of elevation.
[[nodiscard]] double datumBelow(double low, double perUnit, double space);

}  // namespace lvx::sheets
