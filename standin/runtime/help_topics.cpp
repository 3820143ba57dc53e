#include "runtime/help_topics.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <system_error>

namespace lvx::runtime {

namespace fs = std::filesystem;

namespace {

constexpr std::wstring_view kHelpFile = L"Vantor Lorvix Extension.chm";
constexpr std::wstring_view kPageMark = L"::/";

bool isPlain(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'_' || c == L'-' ||
         c == L'.';
}

/// A name that stays in its folder: no part that is empty or begins with a dot, nothing that a file system reads anew.
bool isSafePart(std::wstring_view part) {
  return !part.empty() && part.front() != L'.' && std::all_of(part.begin(), part.end(), isPlain);
}

}  // namespace

fs::path helpPage(const framework::CString& topic, const fs::path& folder) {
  const std::wstring_view text = topic;
  const std::size_t mark = text.find(kPageMark);
  if (mark == std::wstring_view::npos) return {};

  std::wstring_view file = text.substr(0, mark);
  if (const std::size_t slash = file.find_last_of(L"/\\"); slash != std::wstring_view::npos)
    file.remove_prefix(slash + 1);
  if (file != kHelpFile) return {};

  const std::wstring_view page = text.substr(mark + kPageMark.size());
  if (!page.ends_with(L".html")) return {};
  fs::path found = folder;
  for (std::size_t begin = 0; begin <= page.size();) {
    const std::size_t end = std::min(page.find(L'/', begin), page.size());
    const std::wstring_view part = page.substr(begin, end - begin);
    if (!isSafePart(part)) return {};
    found /= std::string(part.begin(), part.end());
    begin = end + 1;
  }

  std::error_code error;
  return fs::is_regular_file(found, error) ? found : fs::path();
}

}  // namespace lvx::runtime
