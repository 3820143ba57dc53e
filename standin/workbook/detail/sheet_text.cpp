#include "workbook/detail/sheet_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace lvx::workbook::detail {

namespace {

constexpr int kDigits = 16;

/// From 10^-18 on.
constexpr int kLeastPower = -18;
constexpr std::array<double, 17> kPowers{1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10,
                                         1e-9,  1e-8,  1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2};

/// The shortest digits that give `number` back, where they are what printing 16 digits gives as well; else nothing. They are
/// where they are at most 16 and doubles near `number` lie closer than numbers of 16 digits do: the shortest differ from the
/// number by half the distance of two doubles at most, so no other number of 16 digits lies as near.
bool appendShortest(double number, std::string& out) {
  const double size = std::abs(number);
  if (!(size >= 1e-3 && size < 1e14)) return false;
  std::array<char, 32> text;
  char* const end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
  // Places before the decimal sign; minus those that are zeros behind it.
  const char* const first = text.data() + (number < 0.0 ? 1 : 0);
  const char* const point = std::find(first, static_cast<const char*>(end), '.');
  auto places = static_cast<int>(point - first);
  auto digits = static_cast<int>(end - first) - (point == end ? 0 : 1);
  if (*first == '0') {
    const char* const leading = std::find_if(point + 1, static_cast<const char*>(end), [](char c) { return c != '0'; });
    places = static_cast<int>(point + 1 - leading);
    digits = static_cast<int>(end - leading);
  }
  const double spacing = kPowers[static_cast<std::size_t>(places - kDigits - kLeastPower)];
  const double distance = std::nextafter(size, std::numeric_limits<double>::infinity()) - size;
  if (digits > kDigits || !(distance < 0.999 * spacing)) return false;
  out.append(text.data(), end);
  return true;
}

void appendEscaped(std::string_view text, std::string& out) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '&' && c != '<' && c != '>'; };
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    while (at < text.size() && isPlain(text[at])) ++at;
    out.append(text, begin, at - begin);
    if (at == text.size()) break;
    const char c = text[at++];
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '\t':
      case '\n':
        out += c;
        break;
      default: {
        const auto value = static_cast<unsigned char>(c);
        (out += "_x00") += kHex[value / 16];
        (out += kHex[value % 16]) += '_';
      }
    }
  }
}

}  // namespace

CellNames::CellNames(std::uint32_t row) {
  char* const digits = name_.data() + kMostLetters;
  size_ = static_cast<std::size_t>(std::to_chars(digits, name_.data() + name_.size(), row + 1).ptr - digits);
}

std::string_view CellNames::of(std::uint16_t column) {
  constexpr unsigned kLetters = 26;
  std::size_t begin = kMostLetters;
  for (unsigned rest = column + 1U; rest > 0 && begin > 0; rest = (rest - 1) / kLetters)
    name_[--begin] = static_cast<char>('A' + (rest - 1) % kLetters);
  return {name_.data() + begin, kMostLetters - begin + size_};
}

void shownCells(const Row& row, std::vector<ShownCell>& cells) {
  cells.clear();
  row.forEach([&cells](std::uint16_t column, const CellValue& value) {
    const bool isEmpty = value.kind == CellKind::Empty || value.kind == CellKind::Kept;
    if (!isEmpty || value.threeDecimals) cells.emplace_back(column, value);
  });
  const auto byColumn = [](const ShownCell& a, const ShownCell& b) { return a.first < b.first; };
  if (!std::is_sorted(cells.begin(), cells.end(), byColumn)) std::sort(cells.begin(), cells.end(), byColumn);
}

bool hasOuterBlank(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n";
  return !text.empty() &&
         (kBlanks.find(text.front()) != std::string_view::npos || kBlanks.find(text.back()) != std::string_view::npos);
}

void appendNumber(double number, std::string& out) {
  if (appendShortest(number, out)) return;
  std::array<char, 32> text;
  char* const end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, kDigits).ptr;
  std::replace(text.data(), end, 'e', 'E');
  out.append(text.data(), end);
}

void appendRow(std::uint32_t number, const std::vector<ShownCell>& cells, std::string& out) {
  if (cells.empty()) return;
  CellNames names(number);
  ((out += "<row r=\"") += names.digits()) += "\">";
  for (const auto& [column, value] : cells) {
    ((out += "<c r=\"") += names.of(column)) += '"';
    if (value.threeDecimals) out += " s=\"1\"";
    switch (value.kind) {
      case CellKind::Number:
        out += "><v>";
        appendNumber(value.number, out);
        out += "</v></c>";
        break;
      case CellKind::Text:
        out += " t=\"inlineStr\"><is><t";
        if (hasOuterBlank(value.text)) out += " xml:space=\"preserve\"";
        out += '>';
        appendEscaped(value.text, out);
        out += "</t></is></c>";
        break;
      case CellKind::Kept:
      case CellKind::Empty:
        out += "/>";
        break;
    }
  }
  out += "</row>";
}

}  // namespace lvx::workbook::detail
