// expat: its event reader over blocks of a megabyte.
//
//   peer_read_expat file=DRAWING
#include <memory>

#include <expat.h>

#include "reading.h"

namespace lvx::peers {
namespace {

constexpr int kBlock = 1 << 20;

void beginElement(void* user, const XML_Char* name, const XML_Char** attributes) {
  auto& numbers = *static_cast<SurfaceNumbers*>(user);
  numbers.begin(name);
  if (!numbers.isOpen()) return;
  for (; *attributes != nullptr; attributes += 2) numbers.attribute(attributes[0], attributes[1]);
}

void endElement(void* user, const XML_Char*) { static_cast<SurfaceNumbers*>(user)->end(); }

void characters(void* user, const XML_Char* text, int size) {
  static_cast<SurfaceNumbers*>(user)->characters({text, static_cast<std::size_t>(size)});
}

void read(const std::string& path, SurfaceNumbers& numbers) {
  std::ifstream in(path, std::ios::binary);
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
  if (!in || !parser) throw std::runtime_error("can't read " + path);
  XML_SetUserData(parser.get(), &numbers);
  XML_SetElementHandler(parser.get(), beginElement, endElement);
  XML_SetCharacterDataHandler(parser.get(), characters);
  for (int size = kBlock; size > 0;) {
    void* const block = XML_GetBuffer(parser.get(), kBlock);
    if (block == nullptr) throw std::bad_alloc();
    in.read(static_cast<char*>(block), kBlock);
    size = static_cast<int>(in.gcount());
    if (XML_ParseBuffer(parser.get(), size, size == 0 ? 1 : 0) != XML_STATUS_OK)
      throw std::runtime_error(XML_ErrorString(XML_GetErrorCode(parser.get())));
  }
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::runReader(argc, argv, "expat", lvx::peers::read); }
