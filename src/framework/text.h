#pragma once

#include <string>

namespace lvx::framework {

/// Text in memory: wide, one wchar_t a character. Bytes arise only where a file is written.
using CString = std::wstring;

}  // namespace lvx::framework
