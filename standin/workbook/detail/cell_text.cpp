#include "workbook/detail/cell_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace lvx::workbook::detail {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kEscapeLength = 7;  // _xHHHH_

bool isHex(wchar_t c) { return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'F') || (c >= L'a' && c <= L'f'); }

bool looksLikeEscape(std::wstring_view text, std::size_t at) {
  return at + kEscapeLength <= text.size() && text[at + 1] == L'x' && isHex(text[at + 2]) && isHex(text[at + 3]) &&
         isHex(text[at + 4]) && isHex(text[at + 5]) && text[at + 6] == L'_';
}

void appendUtf8(char32_t c, std::string& out) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (c < 0x800) {
    put(0xC0 | (c >> 6));
  } else {
    if (c < 0x10000) {
      put(0xE0 | (c >> 12));
    } else {
      put(0xF0 | (c >> 18));
      put(0x80 | ((c >> 12) & 0x3F));
    }
    put(0x80 | ((c >> 6) & 0x3F));
  }
  put(0x80 | (c & 0x3F));
}

/// The character at `at`, which moves past it.
char32_t nextCharacter(std::wstring_view text, std::size_t& at) {
  const auto c = static_cast<char32_t>(text[at++]);
  if (c < 0xD800 || (c > 0xDFFF && c <= 0x10FFFF)) return c;
  if (c <= 0xDBFF && at < text.size()) {
    const auto low = static_cast<char32_t>(text[at]);
    if (low >= 0xDC00 && low <= 0xDFFF) {
      ++at;
      return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
    }
  }
  return kReplacement;
}

constexpr std::size_t kMostRowDigits = 9;

}  // namespace

std::optional<CellPlace> parseCellName(std::wstring_view name) {
  std::size_t at = 0;
  std::uint32_t column = 0;
  for (; at < name.size() && at < 3; ++at) {
    const wchar_t letter = name[at] >= L'a' && name[at] <= L'z' ? name[at] - L'a' + L'A' : name[at];
    if (letter < L'A' || letter > L'Z') break;
    column = column * 26 + static_cast<std::uint32_t>(letter - L'A') + 1;
  }
  const std::size_t digits = name.size() - at;
  if (at == 0 || column > kColumnLimit || digits == 0 || digits > kMostRowDigits || name[at] == L'0')
    return std::nullopt;
  std::uint32_t row = 0;
  for (; at < name.size(); ++at) {
    if (name[at] < L'0' || name[at] > L'9') return std::nullopt;
    row = row * 10 + static_cast<std::uint32_t>(name[at] - L'0');
  }
  return CellPlace{row - 1, static_cast<std::uint16_t>(column - 1)};
}

void appendCellText(std::wstring_view text, std::string& out) {
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const wchar_t plain = text[at];
    if (plain > 0 && plain < 0x80 && plain != L'_') {
      if (++units > kTextLimit) return;
      out.push_back(static_cast<char>(plain));
      ++at;
      continue;
    }
    if (plain == 0) return;
    if (plain == L'_' && looksLikeEscape(text, at)) {
      if ((units += kEscapeLength) > kTextLimit) return;
      out += "_x005F_";
      ++at;
      continue;
    }
    const char32_t c = nextCharacter(text, at);
    if (c == 0xFFFE || c == 0xFFFF) {
      if ((units += kEscapeLength) > kTextLimit) return;
      out += c == 0xFFFE ? "_xFFFE_" : "_xFFFF_";
      continue;
    }
    if ((units += c > 0xFFFF ? 2 : 1) > kTextLimit) return;
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else {
      appendUtf8(c, out);
    }
  }
}

std::optional<double> parseNumber(std::wstring_view text) {
  // The longest text of a double with three decimals has 309 digits before them.
  std::array<char, 400> narrow;
  if (text.empty() || text.size() > narrow.size()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] <= 0 || text[i] >= 0x80) return std::nullopt;
    narrow[i] = static_cast<char>(text[i]);
  }
  double value = 0.0;
  const char* end = narrow.data() + text.size();
  const auto [rest, error] = std::from_chars(narrow.data(), end, value);
  if (error != std::errc() || rest != end || !std::isfinite(value)) return std::nullopt;
  return value + 0.0;
}

}  // namespace lvx::workbook::detail
