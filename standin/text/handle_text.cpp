#include "text/handle_text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace lvx::text {

std::string handleText(std::uint64_t handle) {
  if (handle == 0) return {};
  constexpr int kHexadecimal = 16;
  std::array<char, 16> digits{};
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), handle, kHexadecimal).ptr;
  std::transform(digits.data(), end, digits.data(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return {digits.data(), end};
}

}  // namespace lvx::text
