#include "platform/detail/code_page.h"

#include <algorithm>

namespace lvx::platform::detail {

namespace {

bool equalIgnoringCase(std::wstring_view left, std::wstring_view right) {
  const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; };
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    if (lower(left[i]) != lower(right[i])) return false;
  return true;
}

}  // namespace

ReportBytes::ReportBytes(const CodePage& page) {
  // A byte that the page defines goes before one that only stands in for its own value.
  // But in a page of seven bits no byte stands in for itself above them.
  constexpr std::size_t kSevenBits = 128;
  const bool isSevenBit =
      std::none_of(page.isDefined.begin() + kSevenBits, page.isDefined.end(), [](bool isDefined) { return isDefined; });
  const std::size_t end = isSevenBit ? kSevenBits : page.characters.size();
  for (const bool wanted : {true, false})
    for (std::size_t value = 1; value < end; ++value)
      if (page.isDefined[value] == wanted)
        bytes_.try_emplace(page.characters[value], static_cast<char>(static_cast<unsigned char>(value)));
  bytes_.erase(L'\0');
}

std::string ReportBytes::of(const CString& text) const {
  std::string bytes;
  bytes.reserve(text.size());
  if (bytes_.empty()) {
    for (const wchar_t character : text) {
      if (character < 0x01 || character > 0xFF) break;
      bytes += static_cast<char>(static_cast<unsigned char>(character));
    }
    return bytes;
  }
  for (const wchar_t character : text) {
    const auto found = bytes_.find(character);
    if (found == bytes_.end()) break;
    bytes += found->second;
  }
  return bytes;
}

CString widen(const CodePage& page, std::string_view bytes) {
  CString text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += page.characters[static_cast<unsigned char>(byte)];
  return text;
}

RegistryAnswer registryOfRelease(const CString& release, const CString& subKey, const CString& valueName,
                                 CString& text) {
  if (!equalIgnoringCase(subKey, L"Software\\Kelbrin\\Vantor")) return RegistryAnswer::NoKey;
  if (!equalIgnoringCase(valueName, L"CurVer") || release.empty()) return RegistryAnswer::NoValue;
  text = release;
  return RegistryAnswer::Found;
}

}  // namespace lvx::platform::detail
