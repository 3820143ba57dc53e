#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

/// Names in a blank-separated list may hold blanks themselves ("CL-1 Side road"): at each place the longest run of
/// words that is a known name is taken. Calls `use(name)` for each; returns the first word that begins no known name.
template <class IsKnown, class Use>
std::optional<std::string> eachKnownName(std::string_view list, IsKnown isKnown, Use use) {
  constexpr std::size_t kLongestRun = 16;
  std::vector<std::string> words;
  for (std::size_t i = 0; i < list.size();) {
    while (i < list.size() && isBlank(list[i])) ++i;
    const std::size_t from = i;
    while (i < list.size() && !isBlank(list[i])) ++i;
    if (i > from) words.emplace_back(list.substr(from, i - from));
  }
  for (std::size_t i = 0; i < words.size();) {
    std::size_t taken = 0;
    std::string name;
    std::string longest;
    for (std::size_t n = 0; n < kLongestRun && i + n < words.size(); ++n) {
      name += (n ? " " : "") + words[i + n];
      if (isKnown(name)) {
        taken = n + 1;
        longest = name;
      }
    }
    if (taken == 0) return words[i];
    use(longest);
    i += taken;
  }
  return std::nullopt;
}

}  // namespace lvx::landxml::detail
