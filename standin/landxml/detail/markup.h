#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// New markup for a drawing, in UTF-8.
namespace lvx::landxml::detail {

/// The shortest decimal that reads back as the same number; no exponent from 1e-4 to 1e15, where people read them.
/// Minus zero is "0".
[[nodiscard]] std::string numberText(double value);

/// `text` for an attribute between double quotes. Characters that XML can't hold become blanks.
[[nodiscard]] std::string escapedAttribute(std::string_view text);

/// Indentation: what stands between two lines, and how much a level adds.
struct Layout {
  /// Line end and blanks in front of the element ("\r\n    "); empty where elements follow each other on one line.
  std::string lead;
  std::string unit;
  [[nodiscard]] Layout inner() const { return {lead.empty() ? lead : lead + unit, unit}; }
};

struct Markup {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Markup> children;
  /// Stays on its parent's line, as the properties of a Feature do.
  bool isInline = false;

  /// Appends the element; its own lead isn't printed.
  void print(const Layout& layout, std::string& to) const;
};

}  // namespace lvx::landxml::detail
