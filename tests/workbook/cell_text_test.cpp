#include "workbook/detail/cell_text.h"

#include <cmath>
#include <string>

#include <gtest/gtest.h>

namespace {

using lvx::workbook::detail::appendCellText;
using lvx::workbook::detail::CellPlace;
using lvx::workbook::detail::kTextLimit;
using lvx::workbook::detail::parseCellName;
using lvx::workbook::detail::parseNumber;

std::string cellText(std::wstring_view text) {
  std::string out;
  appendCellText(text, out);
  return out;
}

TEST(CellName, ReadsEveryCornerOfTheSheet) {
  EXPECT_EQ(parseCellName(L"A1"), (CellPlace{0, 0}));
  EXPECT_EQ(parseCellName(L"B12"), (CellPlace{11, 1}));
  EXPECT_EQ(parseCellName(L"z9"), (CellPlace{8, 25}));
  EXPECT_EQ(parseCellName(L"AA10"), (CellPlace{9, 26}));
  EXPECT_EQ(parseCellName(L"XFD1048576"), (CellPlace{1048575, 16383}));
}

TEST(CellName, ReadsRowsBelowTheSheetSoThatTheyCanBeCounted) {
  EXPECT_EQ(parseCellName(L"A1048577"), (CellPlace{1048576, 0}));
  EXPECT_EQ(parseCellName(L"B999999999"), (CellPlace{999999998, 1}));
}

TEST(CellName, RefusesWhatNoSheetHas) {
  for (const wchar_t* name : {L"", L"A", L"1", L"A0", L"A01", L"A-1", L"A1B", L"$A$1", L"A 1", L"XFE1", L"AAAA1",
                              L"A1234567890", L"A1:B2", L"\u00C41"})
    EXPECT_FALSE(parseCellName(name)) << testing::PrintToString(std::wstring(name));
}

TEST(CellText, KeepsLettersOfAllLengths) {
  EXPECT_EQ(cellText(L"a\u00E4\u20AC\U0001F6E3"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9B\xA3");
}

TEST(CellText, JoinsSurrogatePairsAndReplacesLoneOnes) {
  EXPECT_EQ(cellText(std::wstring{L'\xD83D', L'\xDEE3'}), "\xF0\x9F\x9B\xA3");
  const std::wstring_view lone[] = {{L"\xD83D", 1}, {L"\xDEE3", 1}};
  for (const auto text : lone) EXPECT_EQ(cellText(text), "\xEF\xBF\xBD");
  EXPECT_EQ(cellText(std::wstring{L'\xD83D', L'x'}), "\xEF\xBF\xBDx");
  EXPECT_EQ(cellText(std::wstring{static_cast<wchar_t>(0x110000)}), "\xEF\xBF\xBD");
}

TEST(CellText, EndsAtAZero) { EXPECT_EQ(cellText(std::wstring_view(L"ab\0c", 4)), "ab"); }

TEST(CellText, EscapesWhatLooksLikeAnEscapeAndWhatXmlCannotHold) {
  EXPECT_EQ(cellText(L"_x0041_"), "_x005F_x0041_");
  EXPECT_EQ(cellText(L"_x0041"), "_x0041");
  EXPECT_EQ(cellText(L"_xyz1_ _"), "_xyz1_ _");
  EXPECT_EQ(cellText(L"\xFFFE\xFFFF"), "_xFFFE__xFFFF_");
}

TEST(CellText, CutsAtTheCellsLimitInUtf16Units) {
  EXPECT_EQ(cellText(std::wstring(kTextLimit, L'a')).size(), kTextLimit);
  EXPECT_EQ(cellText(std::wstring(kTextLimit + 1, L'a')).size(), kTextLimit);
  EXPECT_EQ(cellText(std::wstring(kTextLimit, L'\U0001F6E3')).size(), kTextLimit / 2 * 4);
  EXPECT_EQ(cellText(std::wstring(kTextLimit, L'\xFFFF')).size(), kTextLimit / 7 * 7);
}

TEST(CellNumber, TakesFiniteNumbersWhole) {
  EXPECT_EQ(parseNumber(L"-12.500"), -12.5);
  EXPECT_EQ(parseNumber(L"4810000.123"), 4810000.123);
  EXPECT_EQ(parseNumber(L"1" + std::wstring(300, L'0') + L".000"), 1e300);
  const auto zero = parseNumber(L"-0.000");
  ASSERT_TRUE(zero);
  EXPECT_FALSE(std::signbit(*zero));
}

TEST(CellNumber, RefusesEverythingElse) {
  for (const wchar_t* text :
       {L"", L"nan", L"-nan", L"inf", L"-inf", L"1,5", L"1.5 ", L" 1.5", L"+1", L"---", L"1e999", L"\u0661"})
    EXPECT_FALSE(parseNumber(text)) << testing::PrintToString(std::wstring(text));
  EXPECT_FALSE(parseNumber(std::wstring(100000, L'1')));
}

}  // namespace
