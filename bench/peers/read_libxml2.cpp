// libxml2: its event reader over a file.
//
//   peer_read_libxml2 file=DRAWING
#include <libxml/parser.h>

#include "reading.h"

namespace lvx::peers {
namespace {

std::string_view textOf(const xmlChar* begin) { return reinterpret_cast<const char*>(begin); }
std::string_view textOf(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

void beginElement(void* user, const xmlChar* name, const xmlChar*, const xmlChar*, int, const xmlChar**, int count, int,
                  const xmlChar** attributes) {
  auto& numbers = *static_cast<SurfaceNumbers*>(user);
  numbers.begin(textOf(name));
  if (!numbers.isOpen()) return;
  for (int i = 0; i < count; ++i, attributes += 5)
    numbers.attribute(textOf(attributes[0]), textOf(attributes[3], attributes[4]));
}

void endElement(void* user, const xmlChar*, const xmlChar*, const xmlChar*) {
  static_cast<SurfaceNumbers*>(user)->end();
}

void characters(void* user, const xmlChar* text, int size) {
  static_cast<SurfaceNumbers*>(user)->characters(textOf(text, text + size));
}

void read(const std::string& path, SurfaceNumbers& numbers) {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = beginElement;
  handler.endElementNs = endElement;
  handler.characters = characters;
  if (xmlSAXUserParseFile(&handler, &numbers, path.c_str()) != 0) throw std::runtime_error("can't read " + path);
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::runReader(argc, argv, "libxml2", lvx::peers::read); }
