#include "sheets/settings.h"

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

#include "civil/sample_line_rules.h"
#include "text/number_text.h"
#include "view/contours.h"

namespace lvx::sheets {

std::string scaleText(double scale) { return "1:" + text::shortText(scale); }

std::optional<double> scaleOf(const std::string& text) {
  constexpr double kLeast = 0.01;
  constexpr double kMost = 1e7;
  const std::string_view digits = std::string_view(text).substr(text.starts_with("1:") ? 2 : 0);
  double scale = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), scale);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return scale >= kLeast && scale <= kMost ? std::optional(scale) : std::nullopt;
}

std::optional<double> stationOf(const std::string& text) {
  if (text.empty() || text.find_first_of(",'\"") != std::string::npos) return std::nullopt;
  try {
    return civil::parseSampleLineRules("ends,from=" + text).from;
  } catch (const civil::SampleLineError&) {
    return std::nullopt;
  }
}

std::vector<double> roundPlaces(double from, double to, double step) {
  constexpr double kMost = 2000.0;
  constexpr double kSlack = 1e-9;
  const double first = std::ceil(from / step);
  const double count = std::floor(to / step + kSlack) - first + 1.0;
  std::vector<double> places;
  if (!(count <= kMost)) return places;
  // Counted: far from 0 a place and the next one may be the same number.
  for (double i = 0.0; i < count; i += 1.0) places.push_back((first + i) * step);
  return places;
}

double datumBelow(double low, double perUnit, double space) {
  constexpr double kStepOnPaper = 5.0;
  const double step = view::roundInterval(kStepOnPaper / perUnit);
  return std::floor((low - space / perUnit) / step) * step;
}

}  // namespace lvx::sheets
