#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <utility>

#include "civil/rare.h"

namespace lvx::civil {

/// A text that few objects have, in no more memory than a pointer where it is empty. UTF-8.
class RareText {
 public:
  RareText() = default;
  RareText(std::string text) {
    if (!text.empty()) text_ = std::move(text);
  }
  RareText(const char* text) : RareText(std::string(text)) {}

  [[nodiscard]] bool empty() const { return !text_; }
  operator const std::string&() const { return text_.orNone(); }
  operator std::string_view() const { return text_.orNone(); }

  friend bool operator==(const RareText&, const RareText&) = default;
  template <std::convertible_to<std::string_view> Text>
  requires(!std::same_as<Text, RareText>) friend bool operator==(const RareText& a, const Text& b) {
    return std::string_view(a) == std::string_view(b);
  }

 private:
  Rare<std::string> text_;
};

}  // namespace lvx::civil
