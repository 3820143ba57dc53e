#include "workbook/detail/sheet_check.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include <pugixml.hpp>

#include "workbook/detail/sheet_text.h"

namespace lvx::workbook::detail {

namespace {

constexpr std::string_view kBegin = "<sheetData>";
constexpr std::string_view kEnd = "</sheetData>";
constexpr std::string_view kEmpty = "<sheetData/>";

/// Reads fixed words from a piece of text. At its end `ranOut` tells that more may come.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

  [[nodiscard]] bool skip(std::string_view word) {
    const std::size_t size = std::min(word.size(), static_cast<std::size_t>(end_ - at_));
    if (std::memcmp(at_, word.data(), size) != 0) return false;
    ranOut = size < word.size();
    at_ += size;
    return !ranOut;
  }
  /// What stands before the next `mark`, which is left behind too.
  [[nodiscard]] bool upTo(char mark, std::string_view& text) {
    const auto* const found = static_cast<const char*>(std::memchr(at_, mark, static_cast<std::size_t>(end_ - at_)));
    ranOut = found == nullptr;
    if (ranOut) return false;
    text = {at_, static_cast<std::size_t>(found - at_)};
    at_ = found + 1;
    return true;
  }
  [[nodiscard]] const char* at() const { return at_; }

  bool ranOut = false;

 private:
  const char* at_;
  const char* end_;
};

bool isPlain(char character) {
  return static_cast<unsigned char>(character) >= 0x20 && character != '&' && character != '<' && character != '>' &&
         character != '"';
}

/// Takes the character `wanted` off the begin of `markup`, as it is or in one of the forms that stand for it.
bool takeCharacter(std::string_view& markup, char wanted) {
  const auto takeWord = [&markup](std::string_view word) {
    if (!markup.starts_with(word)) return false;
    markup.remove_prefix(word.size());
    return true;
  };
  switch (wanted) {
    case '&':
      return takeWord("&amp;");
    case '<':
      return takeWord("&lt;");
    case '>':
      return takeWord("&gt;") || takeWord(">");
    case '"':
      return takeWord("&quot;") || takeWord("\"");
    case '\t':
    case '\n':
      if (takeWord({&wanted, 1})) return true;
      break;
    default:
      break;
  }
  if (isPlain(wanted)) return takeWord({&wanted, 1});
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto value = static_cast<unsigned char>(wanted);
  const std::array<char, 7> escape{'_', 'x', '0', '0', kDigits[value / 16], kDigits[value % 16], '_'};
  return takeWord({escape.data(), escape.size()});
}

/// True where `markup` stands for `text`.
bool standsFor(std::string_view markup, std::string_view text) {
  if (markup == text && std::all_of(text.begin(), text.end(), isPlain)) return true;
  return std::all_of(text.begin(), text.end(), [&markup](char wanted) { return takeCharacter(markup, wanted); }) &&
         markup.empty();
}

bool standsFor(std::string_view markup, double number) {
  constexpr double kSixteenDigits = 1e-15;
  double value = 0;
  const auto [rest, error] = std::from_chars(markup.data(), markup.data() + markup.size(), value);
  return error == std::errc() && rest == markup.data() + markup.size() &&
         std::abs(value - number) <= kSixteenDigits * std::abs(number);
}

bool takeValue(Cursor& cursor, const CellValue& value) {
  std::string_view markup;
  switch (value.kind) {
    case CellKind::Number:
      return cursor.skip("><v>") && cursor.upTo('<', markup) && standsFor(markup, value.number) &&
             cursor.skip("/v></c>");
    case CellKind::Text:
      if (!cursor.skip(" t=\"inlineStr\"><is><t")) return false;
      if (hasOuterBlank(value.text) && !cursor.skip(" xml:space=\"preserve\"")) return false;
      return cursor.skip(">") && cursor.upTo('<', markup) && standsFor(markup, value.text) &&
             cursor.skip("/t></is></c>");
    case CellKind::Kept:
    case CellKind::Empty:
      break;
  }
  return cursor.skip("/>");
}

bool takeCell(Cursor& cursor, std::string_view name, const CellValue& value) {
  if (!cursor.skip("<c r=\"") || !cursor.skip(name) || !cursor.skip("\"")) return false;
  // The sheet has one format beside the usual one.
  if (value.threeDecimals && !cursor.skip(" s=\"1\"")) return false;
  return takeValue(cursor, value);
}

}  // namespace

SheetCheck::SheetCheck(SheetCells& cells) : cells_(cells) {
  cells_.rewind();
  expectNextRow();
}

bool SheetCheck::take(std::string_view piece) {
  if (phase_ == Phase::Tail) {
    frame_ += piece;
    return true;
  }
  buffer_.erase(0, at_);
  at_ = 0;
  buffer_ += piece;
  if (phase_ == Phase::Head) readHead();
  if (phase_ == Phase::Rows) readRows();
  return phase_ != Phase::Unsound;
}

bool SheetCheck::finish() {
  wanted_ = 0;
  if (phase_ == Phase::Rows) readRows();
  return phase_ == Phase::Tail && isWellFormed(frame_);
}

void SheetCheck::readHead() {
  const std::size_t rows = buffer_.find("<sheetData");
  if (rows == std::string::npos || buffer_.size() - rows < kEmpty.size()) return;
  frame_ = buffer_.substr(0, rows);
  at_ = rows;
  if (std::string_view(buffer_).substr(rows).starts_with(kEmpty)) {
    phase_ = expected_.empty() ? Phase::Tail : Phase::Unsound;
    frame_ += std::string_view(buffer_).substr(rows);
    return;
  }
  frame_ += kBegin;
  at_ += kBegin.size();
  phase_ = Phase::Rows;
}

void SheetCheck::readRows() {
  if (buffer_.size() - at_ < wanted_) return;
  wanted_ = 0;
  while (!expected_.empty()) {
    switch (rowAt(at_)) {
      case Answer::Yes:
        expectNextRow();
        break;
      case Answer::No:
        phase_ = Phase::Unsound;
        return;
      case Answer::NeedsMore:
        // Twice as much each time, so that a row of any length is tried a few times only.
        wanted_ = 2 * (buffer_.size() - at_);
        return;
    }
  }
  const std::string_view rest = std::string_view(buffer_).substr(at_);
  if (!rest.starts_with(kEnd)) {
    if (rest.size() >= kEnd.size()) phase_ = Phase::Unsound;
    return;
  }
  frame_ += rest;
  phase_ = Phase::Tail;
}

SheetCheck::Answer SheetCheck::rowAt(std::size_t& at) const {
  Cursor cursor(std::string_view(buffer_).substr(at));
  CellNames name(expectedRow_);
  std::string_view layout;  // heights and the like
  bool isSound = cursor.skip("<row r=\"") && cursor.skip(name.digits()) && cursor.skip("\"") &&
                 cursor.upTo('>', layout) && (layout.empty() || isWellFormed("<row" + std::string(layout) + "/>"));
  for (const auto& [column, value] : expected_) {
    if (!isSound) break;
    isSound = takeCell(cursor, name.of(column), value);
  }
  isSound = isSound && cursor.skip("</row>");
  if (!isSound) return cursor.ranOut ? Answer::NeedsMore : Answer::No;
  at = static_cast<std::size_t>(cursor.at() - buffer_.data());
  return Answer::Yes;
}

void SheetCheck::expectNextRow() {
  expected_.clear();
  while (expected_.empty() && cells_.next(expectedRow_, row_)) shownCells(row_, expected_);
}

bool readDocument(std::string_view text, pugi::xml_document& document) {
  // As a fragment, which keeps texts outside of the document element: a cut may leave some.
  if (!document.load_buffer(text.data(), text.size(), pugi::parse_full | pugi::parse_fragment)) return false;
  int elements = 0;
  for (const pugi::xml_node& node : document) {
    if (node.type() == pugi::node_element) ++elements;
    if (node.type() == pugi::node_pcdata &&
        std::string_view(node.value()).find_first_not_of(" \t\r\n") != std::string_view::npos)
      return false;
  }
  return elements == 1;
}

bool isWellFormed(std::string_view text) {
  pugi::xml_document document;
  return readDocument(text, document);
}

}  // namespace lvx::workbook::detail
