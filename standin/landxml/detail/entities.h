#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Characters as the text of a file spells them.
namespace lvx::landxml::detail {

/// UTF-8 of the character that an entity names: the five of XML, "#38" and "#x26". `text` stands behind the '&', and
/// `length` becomes the count of its bytes up to and with the ';'. Empty for an entity that isn't defined, that is longer
/// than 12 bytes, or that is no character.
[[nodiscard]] std::string entityText(std::string_view text, std::size_t& length);

/// Bytes of the UTF-8 character at the start of `text`, which isn't empty: 1 to 4; 0 where none stands (overlong forms,
/// surrogates and what lies beyond Unicode are none).
[[nodiscard]] std::size_t utf8Length(std::string_view text);

}  // namespace lvx::landxml::detail
