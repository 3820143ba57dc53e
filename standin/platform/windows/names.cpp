#include "standin_platform/windows/detail/names.h"

#include <algorithm>
#include <array>
#include <cwctype>

#include <windows.h>

#include "standin_platform/windows/detail/utf8_names.h"

namespace lvx::standin_platform {

namespace fs = std::filesystem;

namespace {

enum class Forbidden { Device = 1, End, Character };

class NameCategory final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "name"; }
  [[nodiscard]] std::string message(int value) const override {
    switch (static_cast<Forbidden>(value)) {
      case Forbidden::Device:
        return "the name means a device of Windows, no file";
      case Forbidden::End:
        return "a name may not end with a dot or a blank on Windows";
      case Forbidden::Character:
        return "a name may hold none of < > : \" | ? * on Windows";
    }
    return {};
  }
};

bool isDevice(std::wstring_view part) {
  std::wstring stem(part.substr(0, part.find_first_of(L".:")));
  while (!stem.empty() && stem.back() == L' ') stem.pop_back();
  std::transform(stem.begin(), stem.end(), stem.begin(),
                 [](wchar_t c) { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c; });
  constexpr std::array kDevices{L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
  if (std::any_of(kDevices.begin(), kDevices.end(), [&](const wchar_t* device) { return stem == device; })) return true;
  constexpr std::wstring_view kDigits = L"123456789\u00B9\u00B2\u00B3";
  return stem.size() == 4 && (stem.starts_with(L"COM") || stem.starts_with(L"LPT")) &&
         kDigits.find(stem[3]) != std::wstring_view::npos;
}

bool isSystemForm(std::wstring_view path) {
  return path.starts_with(LR"(\\?\)") || path.starts_with(LR"(\\.\)") || path.starts_with(LR"(\??\)");
}

}  // namespace

std::string narrowed(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

std::wstring widened(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), size);
  return wide;
}

std::wstring systemName(const fs::path& path) {
  haveUtf8Names();
  const std::wstring& given = path.native();
  if (isSystemForm(given)) return given;
  const DWORD needed = GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
  std::wstring whole(needed, L'\0');
  const DWORD size = needed == 0 ? 0 : GetFullPathNameW(given.c_str(), needed, whole.data(), nullptr);
  if (size == 0 || size >= needed) return given;
  whole.resize(size);
  if (isSystemForm(whole)) return whole;
  if (whole.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + whole.substr(2);
  return L"\\\\?\\" + whole;
}

std::error_code whyForbidden(const fs::path& path) {
  static const NameCategory category;
  const auto because = [](Forbidden reason) { return std::error_code(static_cast<int>(reason), category); };
  if (isSystemForm(path.native())) return {};
  for (const fs::path& part : path.relative_path()) {
    const std::wstring& name = part.native();
    if (name.empty() || name == L"." || name == L"..") continue;
    if (isDevice(name)) return because(Forbidden::Device);
    if (name.find_first_of(L"<>:\"|?*") != std::wstring::npos ||
        std::any_of(name.begin(), name.end(), [](wchar_t c) { return c < 0x20; }))
      return because(Forbidden::Character);
    if (name.back() == L'.' || name.back() == L' ') return because(Forbidden::End);
  }
  return {};
}

}  // namespace lvx::standin_platform
