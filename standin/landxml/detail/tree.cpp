#include "landxml/detail/tree.h"

#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

Node child(Node parent, std::string_view name) {
  for (const Node node : parent.children()) {
    if (isNamed(node, name)) return node;
  }
  return {};
}

std::vector<Node> childrenNamed(Node parent, std::string_view name) {
  std::vector<Node> nodes;
  eachChild(parent, name, [&](Node node) { nodes.push_back(node); });
  return nodes;
}

std::string_view attribute(Node node, const char* name) { return trimmed(node.attribute(name).value()); }

std::string attributeText(Node node, const char* name) { return node.attribute(name).value(); }

std::size_t countWords(Node node) {
  std::size_t count = 0;
  bool isInWord = false;
  node.eachText([&](std::string_view piece) {
    for (const char c : piece) {
      const bool isPart = !isBlank(c);
      if (isPart && !isInWord) ++count;
      isInWord = isPart;
    }
  });
  return count;
}

NumberList readNumbersOf(Node node, const std::function<void(double)>& use) {
  NumberReader reader(use);
  node.eachText([&](std::string_view piece) { reader.add(piece); });
  return reader.finish();
}

Node feature(Node parent, std::string_view code) {
  for (const Node node : parent.children()) {
    if (isNamed(node, "Feature") && attribute(node, "code") == code) return node;
  }
  return {};
}

std::optional<std::string> property(Node feature, std::string_view label) {
  for (const Node node : feature.children()) {
    if (isNamed(node, "Property") && attribute(node, "label") == label) {
      return attributeText(node, "value");
    }
  }
  return std::nullopt;
}

std::string featureName(Node feature) {
  std::string name = attributeText(feature, "name");
  return name.empty() ? property(feature, "name").value_or("") : name;
}

}  // namespace lvx::landxml::detail
