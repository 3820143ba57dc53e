#include "standin_platform/windows/detail/utf8_names.h"

#include <cstddef>
#include <cstdint>
#include <locale>

// The C++ library asks std::codecvt<wchar_t, char, std::mbstate_t> for these conversions. It comes as a static library whose
// own members for that are alone in their object file, so that what stands here takes their place.

namespace lvx::standin_platform {

void haveUtf8Names() {}

namespace {

/// Stands for what is no UTF-8, and for half of a pair without the other.
constexpr std::uint32_t kReplacement = 0xFFFD;

constexpr bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// A letter and how many bytes or units it takes.
struct Letter {
  std::uint32_t code = 0;
  int size = 1;
};

Letter letterAt(const char* at, const char* end) {
  const auto byte = [&](int i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(at[i])); };
  const std::uint32_t first = byte(0);
  if (first < 0x80) return {first, 1};
  const int size = first >= 0xC2 && first < 0xE0   ? 2
                   : first >= 0xE0 && first < 0xF0 ? 3
                   : first >= 0xF0 && first < 0xF5 ? 4
                                                   : 0;
  if (size == 0 || end - at < size) return {kReplacement, 1};
  std::uint32_t code = first & (0xFFU >> static_cast<unsigned>(size + 1));
  for (int i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {kReplacement, 1};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  const bool isTooLong = (size == 3 && code < 0x800) || (size == 4 && code < 0x10000);
  const bool isHalf = isHigh(code) || isLow(code);
  if (isTooLong || isHalf || code > 0x10FFFF) return {kReplacement, 1};
  return {code, size};
}

Letter letterAt(const wchar_t* at, const wchar_t* end) {
  const std::uint32_t first = at[0];
  if (!isHigh(first)) return {isLow(first) ? kReplacement : first, 1};
  if (end - at < 2 || !isLow(at[1])) return {kReplacement, 1};
  return {0x10000 + ((first - 0xD800) << 10U) + (std::uint32_t{at[1]} - 0xDC00), 2};
}

constexpr std::ptrdiff_t unitsOf(std::uint32_t code) { return code < 0x10000 ? 1 : 2; }
constexpr std::ptrdiff_t bytesOf(std::uint32_t code) {
  return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

void put(std::uint32_t code, wchar_t*& to) {
  if (unitsOf(code) == 1) {
    *to++ = static_cast<wchar_t>(code);
    return;
  }
  *to++ = static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10U));
  *to++ = static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FFU));
}

void put(std::uint32_t code, char*& to) {
  const std::ptrdiff_t size = bytesOf(code);
  if (size == 1) {
    *to++ = static_cast<char>(code);
    return;
  }
  const auto marks = static_cast<std::uint32_t>(size == 2 ? 0xC0 : size == 3 ? 0xE0 : 0xF0);
  *to++ = static_cast<char>(marks | code >> static_cast<unsigned>(6 * (size - 1)));
  for (std::ptrdiff_t left = size - 2; left >= 0; --left)
    *to++ = static_cast<char>(0x80U | (code >> static_cast<unsigned>(6 * left) & 0x3FU));
}

std::ptrdiff_t roomOf(std::uint32_t code, const wchar_t* /*to*/) { return unitsOf(code); }
std::ptrdiff_t roomOf(std::uint32_t code, const char* /*to*/) { return bytesOf(code); }

/// Letter by letter, as long as there is room for a whole one.
template <class From, class To>
std::codecvt_base::result convert(const From* from, const From* end, const From*& next, To* to, const To* toEnd,
                                  To*& toNext) {
  for (next = from, toNext = to; next < end;) {
    const Letter letter = letterAt(next, end);
    if (toEnd - toNext < roomOf(letter.code, toNext)) return std::codecvt_base::partial;
    put(letter.code, toNext);
    next += letter.size;
  }
  return std::codecvt_base::ok;
}

}  // namespace
}  // namespace lvx::standin_platform

namespace std {

using lvx::standin_platform::convert;
using lvx::standin_platform::letterAt;
using lvx::standin_platform::unitsOf;

codecvt_base::result codecvt<wchar_t, char, mbstate_t>::do_in(state_type& /*state*/, const extern_type* from,
                                                              const extern_type* end, const extern_type*& next,
                                                              intern_type* to, intern_type* toEnd,
                                                              intern_type*& toNext) const {
  return convert(from, end, next, to, toEnd, toNext);
}

codecvt_base::result codecvt<wchar_t, char, mbstate_t>::do_out(state_type& /*state*/, const intern_type* from,
                                                               const intern_type* end, const intern_type*& next,
                                                               extern_type* to, extern_type* toEnd,
                                                               extern_type*& toNext) const {
  return convert(from, end, next, to, toEnd, toNext);
}

int codecvt<wchar_t, char, mbstate_t>::do_length(state_type& /*state*/, const extern_type* from, const extern_type* end,
                                                 size_t most) const {
  const extern_type* at = from;
  while (at < end) {
    const auto letter = letterAt(at, end);
    const auto units = static_cast<size_t>(unitsOf(letter.code));
    if (units > most) break;
    most -= units;
    at += letter.size;
  }
  return static_cast<int>(at - from);
}

int codecvt<wchar_t, char, mbstate_t>::do_encoding() const noexcept { return 0; }
int codecvt<wchar_t, char, mbstate_t>::do_max_length() const noexcept { return 4; }

}  // namespace std
