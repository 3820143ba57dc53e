// The conversion engine over any format: it ends, stays within its caps, and its wide and narrow halves agree.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "services/formatted_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using lvx::services::formatNarrowText;
  using lvx::services::formatText;
  // A conversion takes two bytes at least, and each may fill the largest field.
  if (size > 512) return 0;
  const std::string narrow(reinterpret_cast<const char*>(data), size);
  std::wstring wide;
  for (std::size_t i = 0; i < size; ++i) wide += static_cast<wchar_t>(data[i]);

  const std::string bytes = formatNarrowText(narrow);
  const std::wstring text = formatText(wide, {});
  if (bytes.size() != text.size()) std::abort();
  for (std::size_t i = 0; i < bytes.size(); ++i)
    if (static_cast<wchar_t>(static_cast<unsigned char>(bytes[i])) != text[i]) std::abort();
  if (bytes.size() > size * (lvx::services::kLargestField + 400U)) std::abort();
  // Only a percent sign makes a text other than itself.
  const std::size_t end = std::min(narrow.find('\0'), narrow.size());
  if (narrow.find('%') == std::string::npos && bytes != narrow.substr(0, end)) std::abort();

  // The same with arguments of each kind, made of the input.
  std::uint64_t word = 0x9E37'79B9'7F4A'7C15;
  std::memcpy(&word, data == nullptr ? narrow.data() : static_cast<const void*>(data), std::min(size, sizeof word));
  const auto number = static_cast<std::int64_t>(word);
  const double real = std::bit_cast<double>(word);
  static_cast<void>(formatText(wide, {number, real, wide.substr(0, 8), number, real}));
  static_cast<void>(formatText(wide, {wide, number, number, number, number}));
  static_cast<void>(formatText(wide, {real, real, real, real}));
  return 0;
}
