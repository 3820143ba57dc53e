#pragma once

#include <cstdio>

#include "framework/text.h"

namespace lvx::services {

using framework::CString;

/// Writes a wide text to an open stream and gives its number of wide characters. The text is narrowed in the report code
/// page and then read as a format without arguments: users' message files and names rely on `%%` being one percent sign
/// and on the tables' `% R` reaching the file as `R`. Write errors are the stream's; nobody looks at them here.
std::size_t writeNarrow(std::FILE* stream, const CString& text);

/// One narrow write whose text comes in parts, for texts that are too long to hold at once: what reaches the stream is
/// what writeNarrow makes of all parts joined. So the first letter that the report code page can't express ends not just
/// its part but all that follows. No part may end within a conversion (behind a `%`, or flags, width or size of one).
class NarrowPiece {
 public:
  explicit NarrowPiece(std::FILE* stream) : stream_(stream) {}
  void add(const CString& part);

 private:
  std::FILE* stream_;
  bool ended_ = false;
};

}  // namespace lvx::services
