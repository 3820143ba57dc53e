#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/platform.h"

/// Single-byte code pages as tables, and the registry key of the host where settings stand in for it.
namespace lvx::platform::detail {

/// The character of each byte, and which bytes the page really defines. A byte that it leaves open stands for the code
/// point of the same value.
struct CodePage {
  std::array<wchar_t, 256> characters{};
  std::array<bool, 256> isDefined{};
};

/// Wide text as bytes of a page, or by the rule of equal values.
class ReportBytes {
 public:
  /// U+0001 to U+00FF become the byte of the same value.
  ReportBytes() = default;
  explicit ReportBytes(const CodePage& page);

  /// Up to the first character that has no byte.
  [[nodiscard]] std::string of(const CString& text) const;

 private:
  std::unordered_map<wchar_t, char> bytes_;
};

[[nodiscard]] CString widen(const CodePage& page, std::string_view bytes);

/// A name that holds a zero would reach the system cut short and mean another file.
[[nodiscard]] inline bool isSystemName(const CString& path) { return path.find(L'\0') == CString::npos; }

/// Answers for a registry that holds the host's release and nothing else; an empty release isn't there.
RegistryAnswer registryOfRelease(const CString& release, const CString& subKey, const CString& valueName,
                                 CString& text);

/// Last second of the year 3000: where the host's own calendar ends.
inline constexpr std::int64_t kLastMoment = 32535215999;

}  // namespace lvx::platform::detail
