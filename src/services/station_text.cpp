#include "services/station_text.h"

#include <array>
#include <charconv>
#include <cmath>

#include "services/decimal_rounding.h"
#include "services/formatted_text.h"

namespace lvx::services {

namespace {

/// The value that its own text with three decimals stands for. Taking it from the text, not by arithmetic, is what
/// keeps 999.9996 from splitting into 0 kilometres and 1000.000 metres.
double roundedToMillimetre(double value) {
  // The division rounds to the double nearest to that text.
  if (const auto rounded = roundedToDecimals(value, 3))
    return std::copysign(static_cast<double>(*rounded) / 1000.0, value);
  std::array<char, 330> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 3).ptr;
  double rounded = 0.0;
  std::from_chars(digits.data(), end, rounded);
  return rounded;
}

}  // namespace

CString stationText(double value) {
  constexpr std::size_t kMetresLength = 7;
  const double rounded = std::isfinite(value) ? roundedToMillimetre(value) : value;
  // What is no number or has no end has no kilometres: the metres then say so.
  const double kilometres = std::isfinite(rounded) ? std::trunc(rounded / 1000.0) : 0.0;
  CString metres = lengthText(std::abs(rounded - kilometres * 1000.0));
  if (metres.size() < kMetresLength) metres.insert(0, kMetresLength - metres.size(), L'0');
  const CString kilometresText = fixedText(std::abs(kilometres), 0);
  if (rounded >= 0.0) return kilometresText + L"+" + metres;
  return L"-" + kilometresText + L"-" + metres;
}

}  // namespace lvx::services
