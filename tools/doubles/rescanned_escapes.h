#pragma once

#include <array>
#include <utility>

#include "framework/text.h"

namespace lvx::test {

/// The escapes by their rule as message files know it: the first sequence of the list that occurs anywhere, at its
/// leftmost place, then all over again. Slow; what the module does in one pass is compared with it.
inline framework::CString replaceEscapesByRescanning(framework::CString text) {
  static constexpr std::array<std::pair<const wchar_t*, wchar_t>, 11> kList{{{L"\\a", L'\a'},
                                                                             {L"\\b", L'\b'},
                                                                             {L"\\f", L'\f'},
                                                                             {L"\\n", L'\n'},
                                                                             {L"\\r", L'\r'},
                                                                             {L"\\t", L'\t'},
                                                                             {L"\\v", L'\v'},
                                                                             {L"\\'", L'\''},
                                                                             {L"\\\"", L'"'},
                                                                             {L"\\\\", L'\\'},
                                                                             {L"\\?", L'?'}}};
  for (std::size_t i = 0; i < kList.size();) {
    const std::size_t place = text.find(kList[i].first);
    if (place == framework::CString::npos) {
      ++i;
      continue;
    }
    text.replace(place, 2, 1, kList[i].second);
    i = 0;
  }
  return text;
}

}  // namespace lvx::test
