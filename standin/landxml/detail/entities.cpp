#include "landxml/detail/entities.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace lvx::landxml::detail {

std::string entityText(std::string_view text, std::size_t& length) {
  const auto semicolon = text.substr(0, 12).find(';');
  if (semicolon == std::string_view::npos) return {};
  const std::string_view name = text.substr(0, semicolon);
  length = semicolon + 1;
  if (name == "amp") return "&";
  if (name == "lt") return "<";
  if (name == "gt") return ">";
  if (name == "quot") return "\"";
  if (name == "apos") return "'";
  if (name.size() < 2 || name[0] != '#') return {};
  const bool hex = name[1] == 'x';
  std::uint32_t code = 0;
  const char* const last = name.data() + name.size();
  const auto [next, error] = std::from_chars(name.data() + (hex ? 2 : 1), last, code, hex ? 16 : 10);
  if (error != std::errc() || next != last || code == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
    return {};
  std::string bytes;
  if (code < 0x80) {
    bytes += static_cast<char>(code);
  } else if (code < 0x800) {
    bytes += static_cast<char>(0xC0U | (code >> 6U));
    bytes += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    if (code < 0x10000) {
      bytes += static_cast<char>(0xE0U | (code >> 12U));
    } else {
      bytes += static_cast<char>(0xF0U | (code >> 18U));
      bytes += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
    }
    bytes += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    bytes += static_cast<char>(0x80U | (code & 0x3FU));
  }
  return bytes;
}

std::size_t utf8Length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
  }
  // Overlong forms, surrogates and what lies beyond Unicode.
  if ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) >= 0xA0) || (first == 0xF0 && byte(1) < 0x90) ||
      (first == 0xF4 && byte(1) >= 0x90)) {
    return 0;
  }
  return length;
}

}  // namespace lvx::landxml::detail
