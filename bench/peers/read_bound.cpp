// The bound of reading: the file read whole, and a scan that knows nothing but a plain <P> and <F>.
//
//   peer_read_bound file=DRAWING
#include <cstring>

#include "reading.h"

namespace lvx::peers {
namespace {

void read(const std::string& path, SurfaceNumbers& numbers) {
  const std::vector<char> text = readItems<char>(path);
  const char* const end = text.data() + text.size();
  const auto find = [end](const char* from, char mark) {
    const void* const found = std::memchr(from, mark, static_cast<std::size_t>(end - from));
    return found == nullptr ? end : static_cast<const char*>(found);
  };
  for (const char* at = find(text.data(), '<'); end - at > 8; at = find(at + 1, '<')) {
    if (at[1] == 'P' && at[2] == ' ') {
      const char* const id = at + std::strlen("<P id=\"");
      const char* const content = find(id, '>') + 1;
      at = find(content, '<');
      numbers.addPoint({id, static_cast<std::size_t>(content - id)}, {content, static_cast<std::size_t>(at - content)});
    } else if (at[1] == 'F' && (at[2] == '>' || at[2] == ' ')) {
      const char* const content = find(at, '>') + 1;
      const bool isHidden = at[2] == ' ';
      at = find(content, '<');
      numbers.addFace(isHidden, {content, static_cast<std::size_t>(at - content)});
    }
  }
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::runReader(argc, argv, "plain scan", lvx::peers::read); }
