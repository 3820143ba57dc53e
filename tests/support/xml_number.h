#pragma once

#include <charconv>
#include <string_view>

#include <pugixml.hpp>

namespace lvx::test {

/// An attribute's number, read without the locale's say (pugixml's own reading follows it); 0 where it is none.
inline double numberIn(const pugi::xml_attribute& attribute) {
  const std::string_view text = attribute.value();
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace lvx::test
