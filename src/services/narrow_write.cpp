#include "services/narrow_write.h"

#include <algorithm>
#include <string>

#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"

namespace lvx::services {

std::size_t writeNarrow(std::FILE* stream, const CString& text) {
  const std::string bytes = formatNarrowText(vnrxHost()->platform().narrow(text));
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
  return std::min(text.find(L'\0'), text.size());
}

}  // namespace lvx::services
