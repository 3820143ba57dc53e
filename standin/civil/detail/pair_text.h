#pragma once

#include <string>
#include <string_view>

/// Texts of "key=value" pairs between commas, as people type them for rules and conditions.
namespace lvx::civil::detail {

[[nodiscard]] inline std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

/// Without the blanks around it.
[[nodiscard]] std::string_view trimmed(std::string_view text);

[[nodiscard]] inline bool beginsWithQuote(std::string_view text) {
  return !text.empty() && (text.front() == '\'' || text.front() == '"');
}

/// What stands within the quotes at the begin of `rest`, which then begins behind them, blanks passed over, at one of
/// `ends` or its end. `fail` is told what is wrong, and throws.
template <class Fail>
[[nodiscard]] std::string_view takeQuoted(std::string_view& rest, std::string_view ends, Fail fail) {
  const std::size_t close = rest.find(rest.front(), 1);
  if (close == std::string_view::npos) fail("the quote isn't closed");
  const std::string_view inside = rest.substr(1, close - 1);
  rest = trimmed(rest.substr(close + 1));
  if (!rest.empty() && ends.find(rest.front()) == std::string_view::npos)
    fail("a comma is wanted behind the quote, at " + quoted(rest));
  return inside;
}

}  // namespace lvx::civil::detail
