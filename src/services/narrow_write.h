#pragma once

#include <cstdio>

#include "framework/text.h"

namespace lvx::services {

using framework::CString;

/// Writes a wide text to an open stream and gives its number of wide characters. The text is narrowed in the report code
/// page and then read as a format without arguments: users' message files and names rely on `%%` being one percent sign
/// and on the tables' `% R` reaching the file as `R`. Write errors are the stream's; nobody looks at them here.
std::size_t writeNarrow(std::FILE* stream, const CString& text);

}  // namespace lvx::services
