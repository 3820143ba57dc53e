#include "workbook/detail/sheet_check.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::workbook::detail {
namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<worksheet xmlns=\"s\"><dimension ref=\"A1\"/>";
constexpr std::string_view kTail = "<pageMargins left=\"0.7\"/></worksheet>";

/// Cells of every kind, in an order in which no file has them.
void fill(SheetCells& cells) {
  cells.put({0, 1}, {CellKind::Number, true, -12.5, {}});
  cells.put({0, 0}, {CellKind::Text, false, 0.0, "Road & <bridge>"});
  cells.put({4, 27}, {CellKind::Text, true, 0.0, " a\r\n\x01"});
  cells.put({9, 0}, {CellKind::Number, true, 480012345.678, {}});
  cells.put({2, 2}, {CellKind::Empty, true, 0.0, {}});
  cells.put({3, 0}, {CellKind::Empty, false, 0.0, {}});  // shows nowhere
}

std::string rows() {
  return "<row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>Road &amp; &lt;bridge&gt;</t></is></c>"
         "<c r=\"B1\" s=\"1\"><v>-12.5</v></c></row>"
         "<row r=\"3\"><c r=\"C3\" s=\"1\"/></row>"
         "<row r=\"5\"><c r=\"AB5\" s=\"1\" t=\"inlineStr\"><is><t xml:space=\"preserve\"> "
         "a_x000D_\n_x0001_</t></is></c></row>"
         "<row r=\"10\"><c r=\"A10\" s=\"1\"><v>480012345.678</v></c></row>";
}

std::string sheet(const std::string& rows) {
  return std::string(kHead) + "<sheetData>" + rows + "</sheetData>" + std::string(kTail);
}

bool isSound(const std::string& markup, std::size_t pieceSize = 1 << 16) {
  SheetCells cells;
  fill(cells);
  SheetCheck check(cells);
  for (std::size_t at = 0; at < markup.size(); at += pieceSize)
    if (!check.take(std::string_view(markup).substr(at, pieceSize))) return false;
  return check.finish();
}

TEST(SheetCheck, TakesTheMarkupOfItsCellsInPiecesOfAnySize) {
  for (const std::size_t size : {1U, 2U, 3U, 7U, 50U, 1000U}) EXPECT_TRUE(isSound(sheet(rows()), size)) << size;
}

TEST(SheetCheck, FindsEveryByteThatIsMissingOrDoubled) {
  const std::string whole = sheet(rows());
  ASSERT_TRUE(isSound(whole));
  const std::size_t begin = whole.find("<sheetData>");
  std::size_t tried = 0;
  for (std::size_t at = begin; at < whole.size() - kTail.size(); ++at) {
    std::string one = whole;
    one.erase(at, 1);
    EXPECT_FALSE(isSound(one)) << one;
    one = whole;
    one.insert(at, 1, whole[at]);
    // A loose ">" behind the rows is a text that XML allows.
    if (at + 1 == whole.size() - kTail.size()) continue;
    EXPECT_FALSE(isSound(one)) << one;
    ++tried;
  }
  EXPECT_GT(tried, 300U);
}

TEST(SheetCheck, FindsEveryStretchThatIsMissing) {
  const std::string whole = sheet(rows());
  for (std::size_t begin = 0; begin < whole.size(); begin += 3)
    for (std::size_t size = 1; begin + size <= whole.size(); size += 5) {
      std::string cut = whole;
      cut.erase(begin, size);
      // What stands around the rows is only asked to be XML.
      if (begin + size <= whole.find("<sheetData>") || begin > whole.find("<pageMargins") ||
          cut.find("<sheetData>" + rows() + "</sheetData>") != std::string::npos)
        continue;
      ASSERT_FALSE(isSound(cut)) << cut;
    }
}

TEST(SheetCheck, RefusesOtherCellsThanItsOwn) {
  const auto with = [](const std::string& what, const std::string& by) {
    std::string changed = rows();
    return sheet(changed.replace(changed.find(what), what.size(), by));
  };
  EXPECT_FALSE(isSound(sheet("")));
  EXPECT_FALSE(isSound(std::string(kHead) + "<sheetData/>" + std::string(kTail)));
  EXPECT_FALSE(isSound(sheet(rows() + "<row r=\"11\"><c r=\"A11\" s=\"1\"/></row>")));
  EXPECT_FALSE(isSound(with("-12.5", "-12.6")));
  EXPECT_FALSE(isSound(with("-12.5", "")));
  EXPECT_FALSE(isSound(with(" s=\"1\"", "")));
  EXPECT_TRUE(isSound(with("<row r=\"3\">", "<row r=\"3\" ht=\"15\">")));
  EXPECT_FALSE(isSound(with("<row r=\"3\">", "<row r=\"3\" ht=\"15>")));
  EXPECT_FALSE(isSound(with("&amp;", "&")));
  EXPECT_FALSE(isSound(with("_x0001_", "\x01")));
  EXPECT_FALSE(isSound(with("480012345.678", "480012345.679")));
  EXPECT_TRUE(isSound(with("480012345.678", "4.80012345678E+08")));
}

TEST(SheetCheck, TakesAnEmptySheetForNoCells) {
  for (const std::string& rows : {std::string("<sheetData/>"), std::string("<sheetData></sheetData>")}) {
    SheetCells none;
    SheetCheck check(none);
    EXPECT_TRUE(check.take(std::string(kHead) + rows + std::string(kTail)));
    EXPECT_TRUE(check.finish()) << rows;
  }
}

TEST(SheetCheck, NeedsTheMarkupAroundTheRowsToBeWhole) {
  const std::string whole = sheet(rows());
  EXPECT_FALSE(isSound(whole.substr(0, whole.size() - 1)));
  EXPECT_FALSE(isSound(whole.substr(0, whole.find("</sheetData>") + 12)));
  EXPECT_FALSE(isSound(whole.substr(10)));
  EXPECT_FALSE(isSound(""));
}

TEST(SheetCells, GivesItsRowsAsOftenAsWanted) {
  SheetCells cells;
  const std::string text(3000, 'x');
  // Beyond what stays in memory.
  for (std::uint32_t row = 0; row < 1000; ++row) cells.put({row * 2, 0}, {CellKind::Text, false, 0.0, text});
  cells.put({101, 3}, {CellKind::Text, false, 0.0, "late"});
  for (int round = 0; round < 3; ++round) {
    cells.rewind();
    std::vector<std::uint32_t> numbers;
    std::uint32_t number = 0;
    Row row;
    while (cells.next(number, row)) {
      numbers.push_back(number);
      EXPECT_EQ(row.size(), 1U);
      if (round == 1 && numbers.size() == 500) break;  // the next round begins anew all the same
    }
    if (round == 1) continue;
    ASSERT_EQ(numbers.size(), 1001U);
    EXPECT_EQ(numbers[51], 101U);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
  }
}

}  // namespace
}  // namespace lvx::workbook::detail
