#include "landxml/detail/tree.h"

#include "landxml/detail/numbers.h"

namespace lvx::landxml::detail {

pugi::xml_node child(pugi::xml_node parent, std::string_view name) {
  for (const pugi::xml_node node : parent.children()) {
    if (isNamed(node, name)) return node;
  }
  return {};
}

std::vector<pugi::xml_node> childrenNamed(pugi::xml_node parent, std::string_view name) {
  std::vector<pugi::xml_node> nodes;
  eachChild(parent, name, [&](pugi::xml_node node) { nodes.push_back(node); });
  return nodes;
}

std::string_view attribute(pugi::xml_node node, const char* name) { return trimmed(node.attribute(name).value()); }

std::string attributeText(pugi::xml_node node, const char* name) { return node.attribute(name).value(); }

pugi::xml_node feature(pugi::xml_node parent, std::string_view code) {
  for (const pugi::xml_node node : parent.children()) {
    if (isNamed(node, "Feature") && attribute(node, "code") == code) return node;
  }
  return {};
}

std::optional<std::string> property(pugi::xml_node feature, std::string_view label) {
  for (const pugi::xml_node node : feature.children()) {
    if (isNamed(node, "Property") && attribute(node, "label") == label) {
      return attributeText(node, "value");
    }
  }
  return std::nullopt;
}

std::string featureName(pugi::xml_node feature) {
  std::string name = attributeText(feature, "name");
  return name.empty() ? property(feature, "name").value_or("") : name;
}

}  // namespace lvx::landxml::detail
