#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Numbers out of a drawing's text: std::from_chars, so no locale has a say, and nothing is guessed.
namespace lvx::landxml::detail {

/// No road lies farther out than this in any unit; beyond it a number is a fault of the file, not a place.
inline constexpr double kLargestNumber = 1e12;

[[nodiscard]] constexpr bool isBlank(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// Reads the number that starts at `at`; returns the place after it, or null where none stands or where it is not
/// finite or beyond kLargestNumber.
[[nodiscard]] inline const char* readNumber(const char* at, const char* end, double& value) {
  if (at != end && *at == '+') {
    ++at;
    if (at != end && *at == '-') return nullptr;
  }
  const auto [next, error] = std::from_chars(at, end, value);
  // Written so that NaN fails too.
  return error == std::errc() && std::abs(value) <= kLargestNumber ? next : nullptr;
}

/// Reads what nearly all numbers of a drawing look like, "-1234.567": digits on both sides of the point, together few enough
/// that the nearest double is one division of two numbers that doubles hold exactly. Null for any other number, which
/// `readNumber` may still read; where both read one they agree to the last bit. A byte that isn't part of a number must
/// stand somewhere behind `at`.
[[nodiscard]] inline const char* readPlainNumber(const char* at, double& value) {
  constexpr std::array<double, 16> kPowers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const bool isNegative = *at == '-';
  if (isNegative) ++at;
  std::uint64_t digits = 0;
  const char* const first = at;
  const auto isDigit = [](char c) { return static_cast<unsigned char>(c - '0') <= 9; };
  while (isDigit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  const auto before = at - first;
  if (before == 0 || before > 12 || *at != '.') return nullptr;
  const char* const point = at++;
  while (isDigit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  const auto behind = at - point - 1;
  if (behind == 0 || before + behind > 15 || *at == 'e' || *at == 'E') return nullptr;
  const double size = static_cast<double>(digits) / kPowers[static_cast<std::size_t>(behind)];
  value = isNegative ? -size : size;
  return at;
}

/// What a text of blank-separated numbers gave.
struct NumberList {
  std::vector<double> values;
  /// Empty, or what is wrong ("'1,5' is not a number"); the values before it stand.
  std::string problem;
  /// Signs that stood apart from their numbers ("- 1.2", as one exporter breaks its lines) and were put back.
  std::size_t repairedSigns = 0;
  /// The first of those numbers.
  double firstRepaired = 0.0;
};

/// What was done with the signs of a list that has repaired ones, for a message.
[[nodiscard]] std::string repairedSignsText(const NumberList& list);

[[nodiscard]] NumberList readNumbers(std::string_view text);

/// Numbers out of a text that comes in pieces, each given away as it is read: a list of a million takes no memory.
/// Reads what readNumbers reads, wherever the pieces part.
class NumberReader {
 public:
  explicit NumberReader(std::function<void(double)> use) : use_(std::move(use)) {}
  void add(std::string_view piece);
  /// Behind the last piece: what was found, without values.
  [[nodiscard]] NumberList finish();

 private:
  std::function<void(double)> use_;
  std::string rest_;  // not read yet, since it may go on
  NumberList list_;
};

/// The one number that the text holds; empty text, text with more in it and NaN give no number.
[[nodiscard]] bool readSingleNumber(std::string_view text, double& value);

/// "'Cant' isn't read (7 elements in it)", "3 'Superelevation' aren't read".
[[nodiscard]] std::string unreadText(std::string_view name, std::size_t count, std::size_t content);

/// `text` cut to what a message can hold on one line, control characters as blanks.
[[nodiscard]] std::string shown(std::string_view text);

}  // namespace lvx::landxml::detail
