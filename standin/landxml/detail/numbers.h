#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
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
