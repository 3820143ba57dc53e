#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "landxml/detail/document.h"
#include "landxml/detail/numbers.h"

/// The document's tree by local names: prefixes and namespaces differ from program to program and mean nothing here.
namespace lvx::landxml::detail {

[[nodiscard]] inline std::string_view localName(Node node) { return node.localName(); }
[[nodiscard]] inline bool isNamed(Node node, std::string_view name) { return localName(node) == name; }

/// The first child element of that name; empty if there is none.
[[nodiscard]] Node child(Node parent, std::string_view name);

/// Calls `use(node)` for every child element of that name, in order.
template <class Use>
void eachChild(Node parent, std::string_view name, Use use) {
  for (const Node node : parent.children()) {
    if (isNamed(node, name)) use(node);
  }
}
/// Those elements.
[[nodiscard]] std::vector<Node> childrenNamed(Node parent, std::string_view name);
template <class Use>
void eachElement(Node parent, Use use) {
  for (const Node node : parent.children()) use(node);
}

/// Attribute value without blanks around it; empty where it is absent or empty, which mean the same in these files.
[[nodiscard]] std::string_view attribute(Node node, const char* name);
/// A name or description as it stands, blanks and all.
[[nodiscard]] std::string attributeText(Node node, const char* name);

/// All text directly inside the element, joined.
[[nodiscard]] inline std::string text(Node node) { return node.text(); }

/// About how many words the element's text has: at least as many as numbers.
[[nodiscard]] std::size_t countWords(Node node);
/// The text as numbers, each given to `use`; what was found beside them.
[[nodiscard]] NumberList readNumbersOf(Node node, const std::function<void(double)>& use);

/// Our own extension: the child Feature of that code.
[[nodiscard]] Node feature(Node parent, std::string_view code);
/// Value of the first Property of that label; null where there is none.
[[nodiscard]] std::optional<std::string> property(Node feature, std::string_view label);
/// Name of a Feature: its attribute, or the Property "name" that takes its place in the old versions.
[[nodiscard]] std::string featureName(Node feature);

}  // namespace lvx::landxml::detail
