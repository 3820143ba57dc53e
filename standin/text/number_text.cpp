#include "text/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace lvx::text {

namespace {

std::string digitsOf(double value, int decimals) {
  std::array<char, 340> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals).ptr;
  return {text.data(), end};
}

}  // namespace

std::string fixedText(double value, int decimals) {
  if (!std::isfinite(value)) return "-";
  std::string text = digitsOf(value, std::clamp(decimals, 0, 9));
  if (text.front() == '-' && text.find_first_of("123456789") == std::string::npos) text.erase(0, 1);
  return text;
}

std::string shortText(double value, int decimals) {
  std::string text = fixedText(value, decimals);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string stationText(double station, int decimals) {
  if (!std::isfinite(station)) return "-";
  // Split as text: 999.9996 is 1+000.000, never 0+1000.000.
  std::string digits = fixedText(station, decimals);
  const bool isNegative = digits.front() == '-';
  if (isNegative) digits.erase(0, 1);
  const std::size_t whole = std::min(digits.find('.'), digits.size());
  constexpr std::size_t kMetreDigits = 3;
  if (whole <= kMetreDigits) digits.insert(0, kMetreDigits + 1 - whole, '0');
  const std::size_t split = std::min(digits.find('.'), digits.size()) - kMetreDigits;
  return (isNegative ? "-" : "") + digits.substr(0, split) + (isNegative ? "-" : "+") + digits.substr(split);
}

std::string countText(std::size_t count, std::string_view one) {
  std::string text = std::to_string(count) + " ";
  text += one;
  if (count != 1) text += 's';
  return text;
}

}  // namespace lvx::text
