#include "civil/detail/pair_text.h"

namespace lvx::civil::detail {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace lvx::civil::detail
