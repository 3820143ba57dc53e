// pugixml: the file read whole, then parsed in place.
//
//   peer_read_pugixml file=DRAWING
#include <pugixml.hpp>

#include "reading.h"

namespace lvx::peers {
namespace {

void take(pugi::xml_node parent, SurfaceNumbers& numbers) {
  for (const pugi::xml_node node : parent.children()) {
    if (node.type() != pugi::node_element) continue;
    const std::string_view name = node.name();
    if (name == "P")
      numbers.addPoint(node.attribute("id").value(), node.child_value());
    else if (name == "F")
      numbers.addFace(node.attribute("i").as_int() == 1, node.child_value());
    else
      take(node, numbers);
  }
}

void read(const std::string& path, SurfaceNumbers& numbers) {
  std::vector<char> text = readItems<char>(path);
  pugi::xml_document document;
  const pugi::xml_parse_result result =
      document.load_buffer_inplace(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result) throw std::runtime_error(result.description());
  take(document, numbers);
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::runReader(argc, argv, "pugixml", lvx::peers::read); }
