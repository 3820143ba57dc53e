#include "services/narrow_write.h"

#include <algorithm>
#include <string>

#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"

namespace lvx::services {

namespace {

/// True where all of the text went into the stream, nothing of it lost in narrowing.
bool writeFormatted(std::FILE* stream, const CString& text) {
  const std::string narrow = vnrxHost()->platform().narrow(text);
  const std::string bytes = formatNarrowText(narrow);
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
  // Report code pages have one byte for each character, so bytes are missing exactly where the text was ended.
  return narrow.size() == text.size();
}

}  // namespace

std::size_t writeNarrow(std::FILE* stream, const CString& text) {
  writeFormatted(stream, text);
  return std::min(text.find(L'\0'), text.size());
}

void NarrowPiece::add(const CString& part) {
  if (!ended_) ended_ = !writeFormatted(stream_, part);
}

}  // namespace lvx::services
