#include "standin_platform/text_converter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>

#include <windows.h>

namespace lvx::standin_platform {

namespace {

using End = TextConverter::End;

/// How an encoding puts characters into bytes.
enum class Form { Utf8, Utf16, Utf32, OneByte, SeveralBytes };

struct Encoding {
  Form form = Form::OneByte;
  UINT page = 0;             ///< the system's number
  bool isBigEndian = false;  ///< UTF-16 and UTF-32
  bool takesOrderFromMark = false;
};

struct PageName {
  std::string_view name;
  UINT page;
};

// Names of the internet, in capitals, for the pages that the system has. Of the ISO-8859 family and of Windows' own the
// number follows from the name.
constexpr std::array kPageNames{PageName{"US-ASCII", 20127}, PageName{"ASCII", 20127},     PageName{"LATIN1", 28591},
                                PageName{"LATIN2", 28592},   PageName{"KOI8-R", 20866},    PageName{"KOI8-U", 21866},
                                PageName{"IBM437", 437},     PageName{"CP437", 437},       PageName{"IBM850", 850},
                                PageName{"CP850", 850},      PageName{"IBM852", 852},      PageName{"CP852", 852},
                                PageName{"IBM866", 866},     PageName{"CP866", 866},       PageName{"MACINTOSH", 10000},
                                PageName{"TIS-620", 874},    PageName{"CP874", 874},       PageName{"WINDOWS-874", 874},
                                PageName{"SHIFT_JIS", 932},  PageName{"SHIFT-JIS", 932},   PageName{"SJIS", 932},
                                PageName{"CP932", 932},      PageName{"WINDOWS-31J", 932}, PageName{"GB2312", 936},
                                PageName{"GBK", 936},        PageName{"CP936", 936},       PageName{"EUC-KR", 949},
                                PageName{"CP949", 949},      PageName{"BIG5", 950},        PageName{"CP950", 950},
                                PageName{"EUC-JP", 20932},   PageName{"GB18030", 54936}};

std::string capitals(std::string_view text) {
  std::string result(text);
  for (char& c : result)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return result;
}

/// The number behind `begin`; empty where anything else stands there.
std::optional<UINT> numberBehind(std::string_view name, std::string_view begin) {
  if (!name.starts_with(begin) || name.size() == begin.size() || name.size() > begin.size() + 4) return std::nullopt;
  UINT number = 0;
  for (const char c : name.substr(begin.size())) {
    if (c < '0' || c > '9') return std::nullopt;
    number = 10 * number + static_cast<UINT>(c - '0');
  }
  return number;
}

UINT pageOf(std::string_view name) {
  for (const std::string_view begin : {"WINDOWS-", "CP"})
    if (const auto number = numberBehind(name, begin); number && *number >= 1250 && *number <= 1258) return *number;
  for (const std::string_view begin : {"ISO-8859-", "ISO_8859-", "ISO8859-"})
    if (const auto number = numberBehind(name, begin); number && *number >= 1 && *number <= 16) return 28590 + *number;
  const auto* const found =
      std::find_if(kPageNames.begin(), kPageNames.end(), [name](const PageName& row) { return row.name == name; });
  return found == kPageNames.end() ? 0 : found->page;
}

std::optional<Encoding> encodingOf(const std::string& given) {
  const std::string name = capitals(given);
  if (name == "UTF-8" || name == "UTF8") return Encoding{Form::Utf8};
  for (const auto& [begin, form] : {std::pair("UTF-16", Form::Utf16), std::pair("UTF-32", Form::Utf32)}) {
    if (name == begin) return Encoding{form, 0, false, true};
    if (name == std::string(begin) + "LE") return Encoding{form, 0, false, false};
    if (name == std::string(begin) + "BE") return Encoding{form, 0, true, false};
  }
  const UINT page = pageOf(name);
  CPINFO facts{};
  if (page == 0 || GetCPInfo(page, &facts) == 0) return std::nullopt;
  return Encoding{facts.MaxCharSize == 1 ? Form::OneByte : Form::SeveralBytes, page, false, false};
}

constexpr char32_t kLastPoint = 0x10FFFF;
bool isSurrogate(char32_t point) { return point >= 0xD800 && point <= 0xDFFF; }

/// The character of one or two units of 16 bits.
char32_t pointOf(const wchar_t* units, int count) {
  const auto first = static_cast<char32_t>(units[0]);
  if (count < 2) return first;
  return 0x10000 + ((first - 0xD800) << 10U) + (static_cast<char32_t>(units[1]) - 0xDC00);
}

void appendUtf8(char32_t point, std::string& to) {
  const auto put = [&to](char32_t byte) { to += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (point < 0x80) return put(point);
  if (point < 0x800) {
    put(0xC0 | (point >> 6U));
  } else {
    if (point < 0x10000) {
      put(0xE0 | (point >> 12U));
    } else {
      put(0xF0 | (point >> 18U));
      put(0x80 | ((point >> 12U) & 0x3FU));
    }
    put(0x80 | ((point >> 6U) & 0x3FU));
  }
  put(0x80 | (point & 0x3FU));
}

void appendUnit(std::uint32_t unit, std::size_t size, bool isBigEndian, std::string& to) {
  for (std::size_t i = 0; i < size; ++i)
    to += static_cast<char>(static_cast<unsigned char>(unit >> (8 * (isBigEndian ? size - 1 - i : i))));
}

std::uint32_t unitAt(std::string_view from, std::size_t size, bool isBigEndian) {
  std::uint32_t unit = 0;
  for (std::size_t i = 0; i < size; ++i)
    unit |= std::uint32_t{static_cast<unsigned char>(from[i])} << (8 * (isBigEndian ? size - 1 - i : i));
  return unit;
}

/// A character with the bytes that it takes; 0 bytes where there is none.
struct Read {
  char32_t point = 0;
  std::size_t size = 0;
  End end = End::Invalid;
};

Read readUtf8(std::string_view from) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(from[i])); };
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) return {lead, 1, End::Complete};
  const std::size_t size = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (size == 0) return {};
  char32_t point = lead & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if (i == from.size()) return {0, 0, End::Incomplete};
    if ((byte(i) & 0xC0U) != 0x80) return {};
    if (i == 1 && ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                   (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F)))
      return {};
    point = (point << 6U) | (byte(i) & 0x3FU);
  }
  return {point, size, End::Complete};
}

Read readWide(std::string_view from, const Encoding& encoding) {
  const std::size_t size = encoding.form == Form::Utf16 ? 2 : 4;
  if (from.size() < size) return {0, 0, End::Incomplete};
  const char32_t first = unitAt(from, size, encoding.isBigEndian);
  if (size == 2 && first >= 0xD800 && first <= 0xDBFF) {
    if (from.size() < 2 * size) return {0, 0, End::Incomplete};
    const char32_t second = unitAt(from.substr(size), size, encoding.isBigEndian);
    if (second < 0xDC00 || second > 0xDFFF) return {};
    return {0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00), 2 * size, End::Complete};
  }
  if (isSurrogate(first) || first > kLastPoint) return {};
  return {first, size, End::Complete};
}

Read readBySystem(std::string_view from, UINT page) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t size = 1; size <= std::min(kLongest, from.size()); ++size) {
    if (size == 1 && IsDBCSLeadByteEx(page, static_cast<BYTE>(from[0])) != 0) continue;
    std::array<wchar_t, 4> units{};
    const int count = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, from.data(), static_cast<int>(size), units.data(),
                                          static_cast<int>(units.size()));
    if (count == 1 || (count == 2 && isSurrogate(static_cast<char32_t>(units[0]))))
      return {pointOf(units.data(), count), size, End::Complete};
  }
  const bool isCut = from.size() < 2 && IsDBCSLeadByteEx(page, static_cast<BYTE>(from[0])) != 0;
  return {0, 0, isCut ? End::Incomplete : End::Invalid};
}

}  // namespace

struct TextConverter::State {
  std::optional<Encoding> from;
  std::optional<Encoding> to;
  /// Of an encoding of one byte a character; kNothing where a byte means none.
  std::array<char32_t, 256> points{};
  std::unordered_map<char32_t, char> bytes;

  static constexpr char32_t kNothing = 0xFFFFFFFF;

  /// The character of each byte.
  static std::array<char32_t, 256> pointsOf(UINT page) {
    std::array<char32_t, 256> points{};
    for (unsigned value = 0; value < points.size(); ++value) {
      const char byte = static_cast<char>(static_cast<unsigned char>(value));
      wchar_t unit = 0;
      const int count = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &byte, 1, &unit, 1);
      const auto point = static_cast<char32_t>(unit);
      // For a byte that means nothing the system gives a control character or one for private use.
      const bool isStandIn = (page < 2000 && value >= 0x80 && point >= 0x80 && point <= 0x9F) ||
                             (point >= 0xE000 && point <= 0xF8FF) || (page == 20127 && value >= 0x80);
      points[value] = count == 1 && !isStandIn ? point : kNothing;
    }
    return points;
  }

  [[nodiscard]] Read read(std::string_view text, const Encoding& encoding) const {
    switch (encoding.form) {
      case Form::Utf8:
        return readUtf8(text);
      case Form::Utf16:
      case Form::Utf32:
        return readWide(text, encoding);
      case Form::OneByte: {
        const char32_t point = points[static_cast<unsigned char>(text[0])];
        if (point == kNothing) return {};
        return {point, 1, End::Complete};
      }
      case Form::SeveralBytes:
        break;
    }
    return readBySystem(text, encoding.page);
  }

  /// False where the encoding hasn't got the character.
  [[nodiscard]] bool write(char32_t point, std::string& text) const {
    switch (to->form) {
      case Form::Utf8:
        appendUtf8(point, text);
        return true;
      case Form::Utf16:
        if (point >= 0x10000) {
          appendUnit(0xD800 + ((point - 0x10000) >> 10U), 2, to->isBigEndian, text);
          appendUnit(0xDC00 + ((point - 0x10000) & 0x3FFU), 2, to->isBigEndian, text);
        } else {
          appendUnit(point, 2, to->isBigEndian, text);
        }
        return true;
      case Form::Utf32:
        appendUnit(point, 4, to->isBigEndian, text);
        return true;
      case Form::OneByte: {
        const auto found = bytes.find(point);
        if (found != bytes.end()) text += found->second;
        return found != bytes.end();
      }
      case Form::SeveralBytes:
        break;
    }
    return writeBySystem(point, text);
  }

  [[nodiscard]] bool writeBySystem(char32_t point, std::string& text) const {
    std::array<wchar_t, 2> units{static_cast<wchar_t>(point)};
    int count = 1;
    if (point >= 0x10000) {
      units = {static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10U)),
               static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FFU))};
      count = 2;
    }
    std::array<char, 8> made{};
    const int size = WideCharToMultiByte(to->page, 0, units.data(), count, made.data(), static_cast<int>(made.size()),
                                         nullptr, nullptr);
    if (size <= 0) return false;
    // The system puts something alike or a question mark for what the encoding hasn't got.
    const Read back = readBySystem({made.data(), static_cast<std::size_t>(size)}, to->page);
    if (back.point != point) return false;
    text.append(made.data(), static_cast<std::size_t>(size));
    return true;
  }
};

TextConverter::TextConverter(const std::string& encoding, const std::string& to) : state_(std::make_unique<State>()) {
  state_->from = encodingOf(encoding);
  state_->to = encodingOf(to);
  if (state_->from && state_->from->form == Form::OneByte) state_->points = State::pointsOf(state_->from->page);
  if (state_->to && state_->to->form == Form::OneByte) {
    const auto points = State::pointsOf(state_->to->page);
    for (unsigned value = 0; value < points.size(); ++value)
      if (points[value] != State::kNothing)
        state_->bytes.try_emplace(points[value], static_cast<char>(static_cast<unsigned char>(value)));
  }
}

TextConverter::~TextConverter() = default;

bool TextConverter::isKnown() const { return state_->from && state_->to; }

TextConverter::End TextConverter::convert(std::string_view from, std::string& to, std::size_t& done) {
  Encoding encoding = *state_->from;
  done = 0;
  if (encoding.takesOrderFromMark) {
    const std::size_t size = encoding.form == Form::Utf16 ? 2 : 4;
    constexpr std::uint32_t kMark = 0xFEFF;
    for (const bool isBigEndian : {true, false})
      if (from.size() >= size && unitAt(from, size, isBigEndian) == kMark) {
        encoding.isBigEndian = isBigEndian;
        done = size;
        break;
      }
  }
  if (state_->to->takesOrderFromMark && !from.empty())
    appendUnit(0xFEFF, state_->to->form == Form::Utf16 ? 2 : 4, false, to);
  while (done < from.size()) {
    const Read read = state_->read(from.substr(done), encoding);
    if (read.end != End::Complete) return read.end;
    if (!state_->write(read.point, to)) return End::Invalid;
    done += read.size;
  }
  return End::Complete;
}

}  // namespace lvx::standin_platform
