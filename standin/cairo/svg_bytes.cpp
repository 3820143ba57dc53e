#include "cairo/svg_bytes.h"

#include <cctype>
#include <cstddef>
#include <map>
#include <string_view>

namespace lvx::cairo {

void renumberSurfaces(std::string& svg) {
  constexpr std::string_view kMark = "surface";
  std::map<std::string, std::string, std::less<>> numbers;
  std::string renumbered;
  renumbered.reserve(svg.size());
  std::size_t from = 0;
  for (std::size_t at = svg.find(kMark); at != std::string::npos; at = svg.find(kMark, at)) {
    const char before = at == 0 ? ' ' : svg[at - 1];
    at += kMark.size();
    std::size_t end = at;
    while (end < svg.size() && std::isdigit(static_cast<unsigned char>(svg[end])) != 0) ++end;
    if (end == at || (before != '"' && before != '#')) continue;
    const auto [number, isNew] = numbers.try_emplace(svg.substr(at, end - at), std::to_string(numbers.size() + 1));
    renumbered.append(svg, from, at - from).append(number->second);
    from = at = end;
  }
  svg = renumbered.append(svg, from, std::string::npos);
}

}  // namespace lvx::cairo
