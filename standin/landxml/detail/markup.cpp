#include "landxml/detail/markup.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace lvx::landxml::detail {

std::string numberText(double value) {
  if (value == 0.0) return "0";
  const double size = std::abs(value);
  const bool isPlain = size >= 1e-4 && size < 1e15;
  char buffer[64];
  const auto [end, error] = isPlain ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
                                    : std::to_chars(buffer, buffer + sizeof buffer, value);
  return error == std::errc() ? std::string(buffer, end) : "0";
}

std::string escapedAttribute(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\t':
        result += "&#9;";
        break;
      case '\n':
        result += "&#10;";
        break;
      case '\r':
        result += "&#13;";
        break;
      default:
        // No XML has these, but files do, and the reader takes them as they come.
        if (c > '\0' && c < ' ')
          result += "&#" + std::to_string(static_cast<int>(c)) + ';';
        else
          result += c == '\0' ? ' ' : c;
    }
  }
  return result;
}

void Markup::print(const Layout& layout, std::string& to) const {
  to += '<' + name;
  for (const auto& [label, value] : attributes) to += ' ' + label + "=\"" + escapedAttribute(value) + '"';
  if (children.empty()) {
    to += "/>";
    return;
  }
  to += '>';
  const Layout inner = layout.inner();
  for (const Markup& child : children) {
    if (!child.isInline) to += inner.lead;
    child.print(inner, to);
  }
  if (std::any_of(children.begin(), children.end(), [](const Markup& child) { return !child.isInline; })) {
    to += layout.lead;
  }
  to += "</" + name + '>';
}

}  // namespace lvx::landxml::detail
