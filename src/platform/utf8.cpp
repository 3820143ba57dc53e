#include "platform/utf8.h"

#include <cstdint>

namespace lvx::platform {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kFirstPlane = 0x10000;  // what needs two units of 16 bits begins here
constexpr bool kHasShortUnits = sizeof(wchar_t) == 2;

[[nodiscard]] constexpr bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
[[nodiscard]] constexpr bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
[[nodiscard]] constexpr bool isEscapedByte(std::uint32_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

[[nodiscard]] std::uint32_t unitOf(wchar_t character) {
  // By way of a wide signed type, so that a negative character isn't taken for a valid one.
  const auto value = static_cast<std::int64_t>(character);
  return value < 0 || value > 0x10FFFF ? kReplacement : static_cast<std::uint32_t>(value);
}

/// Length of the well-formed UTF-8 sequence at the head of `bytes` (no overlong forms, no surrogates); 0 for none.
std::size_t sequenceLength(std::string_view bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || length > bytes.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  if (length >= 3) {
    const unsigned second = byte(1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
      return 0;
  }
  return length;
}

void append(CString& text, std::uint32_t point) {
  if (kHasShortUnits && point >= kFirstPlane) {
    text += static_cast<wchar_t>(0xD800 + ((point - kFirstPlane) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((point - kFirstPlane) & 0x3FF));
  } else {
    text += static_cast<wchar_t>(point);
  }
}

}  // namespace

std::string toUtf8(const CString& text) {
  std::string bytes;
  bytes.reserve(text.size());
  const auto put = [&](std::uint32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t point = unitOf(text[i]);
    if (kHasShortUnits && isHighSurrogate(point) && i + 1 < text.size() && isLowSurrogate(unitOf(text[i + 1])))
      point = kFirstPlane + ((point - 0xD800) << 10) + (unitOf(text[++i]) - 0xDC00);
    if (isEscapedByte(point)) {
      put(point - 0xDC00);
      continue;
    }
    if (isHighSurrogate(point) || isLowSurrogate(point)) point = kReplacement;
    if (point < 0x80) {
      put(point);
    } else if (point < 0x800) {
      put(0xC0 | (point >> 6));
      put(0x80 | (point & 0x3F));
    } else if (point < kFirstPlane) {
      put(0xE0 | (point >> 12));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    } else {
      put(0xF0 | (point >> 18));
      put(0x80 | ((point >> 12) & 0x3F));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    }
  }
  return bytes;
}

CString fromUtf8(std::string_view bytes) {
  CString text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = sequenceLength(bytes);
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])); };
    if (length == 0) {
      text += static_cast<wchar_t>(0xDC00 + byte(0));
      bytes.remove_prefix(1);
      continue;
    }
    std::uint32_t point = length == 1 ? byte(0) : byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) point = (point << 6) | (byte(i) & 0x3F);
    append(text, point);
    bytes.remove_prefix(length);
  }
  return text;
}

}  // namespace lvx::platform
