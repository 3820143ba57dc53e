#include "services/formatted_text.h"

#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::services {
namespace {

using I = std::int64_t;

struct Row {
  const wchar_t* format;
  FormatArgument argument;
  const wchar_t* expected;
};

void expectAll(const std::vector<Row>& rows) {
  for (const Row& row : rows) EXPECT_EQ(formatText(row.format, {row.argument}), row.expected) << row.format;
}

TEST(FormattedText, SignedIntegers) {
  expectAll({
      {L"%d", I{0}, L"0"},
      {L"%d", I{-42}, L"-42"},
      {L"%i", I{42}, L"42"},
      {L"%5d|", I{42}, L"   42|"},
      {L"%-5d|", I{42}, L"42   |"},
      {L"%05d", I{42}, L"00042"},
      {L"%05d", I{-42}, L"-0042"},
      {L"%-05d|", I{42}, L"42   |"},
      {L"%+d", I{42}, L"+42"},
      {L"%+d", I{-42}, L"-42"},
      {L"% d", I{42}, L" 42"},
      {L"%+ d", I{42}, L"+42"},
      {L"% +05d", I{42}, L"+0042"},
      {L"%.3d", I{7}, L"007"},
      {L"%.3d", I{-7}, L"-007"},
      {L"%6.3d", I{-7}, L"  -007"},
      // A precision takes the zeros' place.
      {L"%06.3d", I{7}, L"   007"},
      {L"%-6.3d|", I{7}, L"007   |"},
      {L"%.0d", I{0}, L""},
      {L"%.d", I{0}, L""},
      {L"%+.0d", I{0}, L"+"},
      {L"%3.0d", I{0}, L"   "},
      {L"%.0d", I{5}, L"5"},
      {L"%#d", I{5}, L"5"},
      {L"%02d", I{-1}, L"-1"},
  });
}

TEST(FormattedText, SizesOfIntegers) {
  constexpr I kLeast = std::numeric_limits<I>::min();
  expectAll({
      {L"%d", I{4294967296 + 5}, L"5"},
      {L"%d", I{2147483648}, L"-2147483648"},
      {L"%ld", I{2147483648}, L"-2147483648"},
      {L"%lld", I{2147483648}, L"2147483648"},
      {L"%lld", kLeast, L"-9223372036854775808"},
      {L"%I64d", kLeast, L"-9223372036854775808"},
      {L"%I32d", I{4294967297}, L"1"},
      {L"%Id", I{4294967297}, L"4294967297"},
      {L"%zd", I{4294967297}, L"4294967297"},
      {L"%td", I{4294967297}, L"4294967297"},
      {L"%jd", I{4294967297}, L"4294967297"},
      {L"%Ld", I{4294967297}, L"1"},
      {L"%wd", I{4294967297}, L"1"},
      {L"%hd", I{65537}, L"1"},
      {L"%hd", I{32768}, L"-32768"},
      {L"%hhd", I{200}, L"-56"},
      {L"%hu", I{-1}, L"65535"},
      {L"%hhu", I{-1}, L"255"},
      {L"%u", I{-1}, L"4294967295"},
      {L"%lu", I{-1}, L"4294967295"},
      {L"%llu", I{-1}, L"18446744073709551615"},
      {L"%I64u", I{-1}, L"18446744073709551615"},
      {L"%I32u", I{-1}, L"4294967295"},
      // Of several prefixes the last one holds.
      {L"%hlld", I{4294967297}, L"4294967297"},
      {L"%llhd", I{65537}, L"1"},
  });
}

TEST(FormattedText, OctalHexadecimalAndPointers) {
  expectAll({
      {L"%o", I{8}, L"10"},
      {L"%#o", I{8}, L"010"},
      {L"%#o", I{0}, L"0"},
      {L"%#.0o", I{0}, L"0"},
      {L"%.0o", I{0}, L""},
      {L"%#.3o", I{8}, L"010"},
      {L"%x", I{48879}, L"beef"},
      {L"%X", I{48879}, L"BEEF"},
      {L"%#x", I{48879}, L"0xbeef"},
      {L"%#X", I{48879}, L"0XBEEF"},
      {L"%#x", I{0}, L"0"},
      {L"%#.0x", I{0}, L""},
      {L"%#010x", I{255}, L"0x000000ff"},
      {L"%#10x", I{255}, L"      0xff"},
      {L"%-#10x|", I{255}, L"0xff      |"},
      {L"%#.4x", I{255}, L"0x00ff"},
      {L"%x", I{-1}, L"ffffffff"},
      {L"%I64X", I{-1}, L"FFFFFFFFFFFFFFFF"},
      {L"%+x", I{1}, L"1"},
      {L"% u", I{1}, L"1"},
      {L"%p", I{0}, L"0000000000000000"},
      {L"%p", I{0x1234ABCD}, L"000000001234ABCD"},
      {L"%20p", I{1}, L"    0000000000000001"},
      {L"%.3p", I{1}, L"0000000000000001"},
      {L"%hp", I{-1}, L"FFFFFFFFFFFFFFFF"},
  });
}

TEST(FormattedText, FixedAndScientific) {
  expectAll({
      {L"%f", 0.0, L"0.000000"},
      {L"%f", -0.0, L"-0.000000"},
      {L"%.3f", 1234.5678, L"1234.568"},
      {L"%.3f", -0.0001, L"-0.000"},
      {L"%.0f", 0.5, L"0"},
      {L"%.0f", 1.5, L"2"},
      {L"%.2f", 0.125, L"0.12"},
      {L"%.2f", 0.375, L"0.38"},
      {L"%.2f", 1.005, L"1.00"},
      {L"%#.0f", 2.0, L"2."},
      {L"%.0f", 2.0, L"2"},
      {L"%10.2f", 3.14159, L"      3.14"},
      {L"%-10.2f|", 3.14159, L"3.14      |"},
      {L"%010.2f", -3.14159, L"-000003.14"},
      {L"%+.1f", 3.0, L"+3.0"},
      {L"% .1f", 3.0, L" 3.0"},
      {L"%F", 1.5, L"1.500000"},
      {L"%lf", 1.5, L"1.500000"},
      {L"%Lf", 1.5, L"1.500000"},
      {L"%hf", 1.5, L"1.500000"},
      {L"%.1f", 1e22, L"10000000000000000000000.0"},
      {L"%.20f", 0.1, L"0.10000000000000000555"},
      {L"%e", 0.0, L"0.000000e+00"},
      {L"%e", 12345.678, L"1.234568e+04"},
      {L"%.2E", 12345.678, L"1.23E+04"},
      {L"%.0e", 12345.678, L"1e+04"},
      {L"%#.0e", 12345.678, L"1.e+04"},
      {L"%e", 1e-5, L"1.000000e-05"},
      {L"%e", 1e100, L"1.000000e+100"},
      {L"%.3e", 1e-300, L"1.000e-300"},
      {L"%012.3e", -1.5, L"-001.500e+00"},
      {L"%.1e", 9.96, L"1.0e+01"},
  });
}

TEST(FormattedText, GeneralForm) {
  expectAll({
      {L"%g", 0.0, L"0"},
      {L"%g", 100000.0, L"100000"},
      {L"%g", 1000000.0, L"1e+06"},
      {L"%g", 999999.5, L"1e+06"},
      {L"%g", 0.0001, L"0.0001"},
      {L"%g", 0.00001, L"1e-05"},
      {L"%g", 0.00009999999, L"0.0001"},
      {L"%g", 3.14159265, L"3.14159"},
      {L"%.10g", 3.14159265, L"3.14159265"},
      {L"%.3g", 1234.0, L"1.23e+03"},
      {L"%.0g", 1234.0, L"1e+03"},
      {L"%.1g", 0.5, L"0.5"},
      {L"%#g", 1.0, L"1.00000"},
      {L"%#g", 0.0, L"0.00000"},
      {L"%#.3g", 1e10, L"1.00e+10"},
      {L"%#.1g", 3.0, L"3."},
      {L"%G", 1e-10, L"1E-10"},
      {L"%.17g", 0.1, L"0.10000000000000001"},
      {L"%g", 120.0, L"120"},
      {L"%08g", -1.5, L"-00001.5"},
  });
}

TEST(FormattedText, HexadecimalFloats) {
  expectAll({
      {L"%a", 1.0, L"0x1.0000000000000p+0"},
      {L"%a", 0.0, L"0x0.0000000000000p+0"},
      {L"%a", -0.5, L"-0x1.0000000000000p-1"},
      {L"%A", 3.141592653589793, L"0X1.921FB54442D18P+1"},
      {L"%.3a", 3.141592653589793, L"0x1.922p+1"},
      {L"%.0a", 1.0, L"0x1p+0"},
      {L"%#.0a", 1.0, L"0x1.p+0"},
      {L"%12.1a", 1.0, L"    0x1.0p+0"},
      {L"%012.1a", 1.0, L"0x00001.0p+0"},
      {L"%a", 5e-324, L"0x0.0000000000001p-1022"},
      {L"%+.1a", 2.0, L"+0x1.0p+1"},
  });
}

TEST(FormattedText, WhatIsNoNumberIsNamed) {
  constexpr double kInf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  expectAll({
      {L"%f", kInf, L"inf"},
      {L"%.3f", -kInf, L"-inf"},
      {L"%F", kInf, L"INF"},
      {L"%+f", kInf, L"+inf"},
      {L"%E", -kInf, L"-INF"},
      {L"%g", kInf, L"inf"},
      {L"%a", kInf, L"inf"},
      {L"%6f|", kInf, L"   inf|"},
      {L"%06f|", kInf, L"   inf|"},
      {L"%-6f|", kInf, L"inf   |"},
      {L"%.0f", nan, L"nan"},
      {L"%G", nan, L"NAN"},
      {L"%f", std::copysign(nan, -1.0), L"-nan(ind)"},
      {L"%E", std::copysign(nan, -1.0), L"-NAN(IND)"},
      {L"%f", std::numeric_limits<double>::signaling_NaN(), L"nan(snan)"},
  });
}

TEST(FormattedText, TextsAndCharacters) {
  expectAll({
      {L"%s", CString(L"axis"), L"axis"},
      {L"%S", CString(L"axis"), L"axis"},
      {L"%ls", CString(L"axis"), L"axis"},
      {L"%hs", CString(L"axis"), L"axis"},
      {L"%ws", CString(L"axis"), L"axis"},
      {L"%s", CString(L"100% %d"), L"100% %d"},
      {L"%s", CString(L"\u0416\U0001F6E3"), L"\u0416\U0001F6E3"},
      {L"%8s|", CString(L"axis"), L"    axis|"},
      {L"%-8s|", CString(L"axis"), L"axis    |"},
      {L"%08s|", CString(L"axis"), L"0000axis|"},
      {L"%.2s|", CString(L"axis"), L"ax|"},
      {L"%5.2s|", CString(L"axis"), L"   ax|"},
      {L"%.0s|", CString(L"axis"), L"|"},
      {L"%.9s|", CString(L"axis"), L"axis|"},
      {L"%s|", CString(L""), L"|"},
      {L"%s|", CString(L"a\0b", 3), L"a|"},
      {L"%Z", CString(L"axis"), L"axis"},
      {L"%.2Z", CString(L"axis"), L"axis"},
      {L"%c", I{65}, L"A"},
      {L"%C", I{65}, L"A"},
      {L"%c", I{0x416}, L"\u0416"},
      {L"%lC", I{0x416}, L"\u0416"},
      {L"%C", I{0x141}, L"A"},
      {L"%hc", I{0x141}, L"A"},
      {L"%3c|", I{65}, L"  A|"},
      {L"%-3c|", I{65}, L"A  |"},
      {L"%03c|", I{65}, L"00A|"},
  });
}

TEST(FormattedText, AConversionWithoutItsArgumentPrintsAsForZero) {
  struct Missing {
    const wchar_t* format;
    const wchar_t* expected;
  };
  const std::vector<Missing> rows = {
      {L"%d", L"0"},
      {L"%i", L"0"},
      {L"%u", L"0"},
      {L"%o", L"0"},
      {L"%x", L"0"},
      {L"%X", L"0"},
      {L"%5d|", L"    0|"},
      {L"%.0d|", L"|"},
      {L"%e", L"0.000000e+00"},
      {L"%f", L"0.000000"},
      {L"%.2F", L"0.00"},
      {L"%g", L"0"},
      {L"%a", L"0x0.0000000000000p+0"},
      {L"%s", L"(null)"},
      {L"%S", L"(null)"},
      {L"%Z", L"(null)"},
      {L"%.3s", L"(nu"},
      {L"%8s", L"  (null)"},
      {L"%c|", L" |"},
      {L"%C|", L" |"},
      {L"%p", L"0000000000000000"},
      {L"%n", L""},
      {L"a%nb", L"ab"},
      {L"%*d|", L"0|"},
      {L"%-*d|", L"0|"},
      {L"%.*f|", L"0|"},
      {L"%.*s|", L"|"},
  };
  for (const Missing& row : rows) {
    EXPECT_EQ(formatText(row.format, {}), row.expected) << row.format;
    // Narrow formats never have arguments: the same bytes.
    const std::wstring wide = row.format;
    const std::wstring expected = row.expected;
    EXPECT_EQ(formatNarrowText(std::string(wide.begin(), wide.end())), std::string(expected.begin(), expected.end()));
  }
}

TEST(FormattedText, AnArgumentOfAnotherKindIsTakenAndPrintsAsForZero) {
  EXPECT_EQ(formatText(L"%d %s", {CString(L"path"), CString(L"rest")}), L"0 rest");
  EXPECT_EQ(formatText(L"%s %d", {I{7}, I{8}}), L"(null) 8");
  EXPECT_EQ(formatText(L"%f %d", {I{7}, 2.5}), L"0.000000 0");
  EXPECT_EQ(formatText(L"%c|%p", {2.5, CString(L"x")}), L" |0000000000000000");
  EXPECT_EQ(formatText(L"%n%d", {I{1}, I{2}}), L"2");
  EXPECT_EQ(formatText(L"%d", {I{1}, I{2}}), L"1");
}

TEST(FormattedText, StarsTakeIntegers) {
  EXPECT_EQ(formatText(L"%*d|", {I{5}, I{42}}), L"   42|");
  EXPECT_EQ(formatText(L"%*d|", {I{-5}, I{42}}), L"42   |");
  EXPECT_EQ(formatText(L"%0*d|", {I{5}, I{42}}), L"00042|");
  EXPECT_EQ(formatText(L"%.*f", {I{2}, 3.14159}), L"3.14");
  EXPECT_EQ(formatText(L"%.*f", {I{-2}, 3.14159}), L"3.141590");
  EXPECT_EQ(formatText(L"%*.*f|", {I{8}, I{1}, 3.14159}), L"     3.1|");
  EXPECT_EQ(formatText(L"%*d|", {CString(L"x"), I{42}}), L"42|");
  EXPECT_EQ(formatText(L"%*d|", {I{std::numeric_limits<std::int32_t>::min()}, I{1}}).size(), kLargestField + 1U);
  // An unknown conversion has taken what its star asked for.
  EXPECT_EQ(formatText(L"%*y%d", {I{5}, I{42}}), L"y42");
}

TEST(FormattedText, AnUnknownConversionPrintsItsLastCharacterAlone) {
  struct Unknown {
    const char* format;
    const char* expected;
  };
  const std::vector<Unknown> rows = {
      {"cellpadding='2'% RULES = ALL", "cellpadding='2'RULES = ALL"},
      {"3.25% ,L 4", "3.25,L 4"},
      {"3.25%, L 4", "3.25, L 4"},
      {"% R", "R"},
      {"%%", "%"},
      {"%%%%", "%%"},
      {"100%% sure", "100% sure"},
      {"%5%|", "%|"},
      {"%-%|", "%|"},
      {"%.3%|", "%|"},
      {"%l%|", "%|"},
      {"%y", "y"},
      {"%\r\n", "\r\n"},
      {"%\xE4%", "\xE4"},
      {"%N", "N"},
      {"%T", "T"},
      {"%b%k%q%r%v", "bkqrv"},
      {"%5-d", "-d"},
      {"%5+d", "+d"},
      {"%5*d", "*d"},
      {"%*5d|", "    0|"},
      {"%**d", "*d"},
      {"%..d", ".d"},
      {"%.-5d", "-5d"},
      {"%.5.d", ".d"},
      {"%l0d", "0d"},
      {"%l5d", "5d"},
      {"%h.2f", ".2f"},
      {"%I", "I"},
      {"%Ib", "Ib"},
      {"%Ip", "Ip"},
      {"%I6d", "I6d"},
      {"%I3", "I3"},
      {"%I%d", "I0"},
      {"%I64", ""},
      {"%I64y", "y"},
      // A percent sign that ends the text, whatever began behind it.
      {"%", ""},
      {"100%", "100"},
      {"% ", ""},
      {"%-+ #0", ""},
      {"%12", ""},
      {"%12.", ""},
      {"%12.3", ""},
      {"%*", ""},
      {"%l", ""},
      {"%ll", ""},
      {"a%%%", "a%"},
  };
  for (const Unknown& row : rows) {
    EXPECT_EQ(formatNarrowText(row.format), row.expected) << row.format;
    std::wstring wide;
    std::wstring expected;
    for (const char* at = row.format; *at != '\0'; ++at) wide += static_cast<wchar_t>(static_cast<unsigned char>(*at));
    for (const char* at = row.expected; *at != '\0'; ++at)
      expected += static_cast<wchar_t>(static_cast<unsigned char>(*at));
    EXPECT_EQ(formatText(wide, {}), expected) << row.format;
  }
  EXPECT_EQ(rows.size(), 47U);
  EXPECT_EQ(formatText(L"%\u0416|%\U0001F6E3", {}), L"\u0416|\U0001F6E3");
}

TEST(FormattedText, LeavesPlainTextAlone) {
  EXPECT_EQ(formatText(L"", {}), L"");
  EXPECT_EQ(formatText(L"\u0416 a\tb\r\n", {I{1}}), L"\u0416 a\tb\r\n");
  EXPECT_EQ(formatNarrowText("\x01\x7F\x80\xFF"), "\x01\x7F\x80\xFF");
}

TEST(FormattedText, AFormatEndsAtItsFirstZero) {
  EXPECT_EQ(formatText(std::wstring_view(L"a\0b%d", 5), {}), L"a");
  EXPECT_EQ(formatNarrowText(std::string_view("a%\0d", 4)), "a");
}

TEST(FormattedText, FieldsAreCapped) {
  constexpr auto kCap = static_cast<std::size_t>(kLargestField);
  EXPECT_EQ(formatNarrowText("%99999999999999999999d").size(), kCap);
  EXPECT_EQ(formatNarrowText("%.99999999999999999999d").size(), kCap);
  EXPECT_EQ(formatNarrowText("%.2147483648f").size(), kCap + 2);
  EXPECT_EQ(formatNarrowText("%.999999e").size(), kCap + 6);
  EXPECT_EQ(formatNarrowText("%#.999999g").size(), kCap + 1);
  EXPECT_EQ(formatNarrowText("%.999999g"), "0");
  EXPECT_EQ(formatNarrowText("%.999999a").size(), kCap + 7);
  EXPECT_EQ(formatText(L"%.999999f", {DBL_MAX}).size(), kCap + 310);
  EXPECT_EQ(formatText(L"%*d", {I{1'000'000}, I{1}}).size(), kCap);
  EXPECT_EQ(formatText(L"%99999s", {CString(L"x")}).size(), kCap);
}

// ---------------------------------------------------------------- numbers

TEST(LengthText, HasThreeDecimalsAndAPoint) {
  EXPECT_EQ(lengthText(0.0), L"0.000");
  EXPECT_EQ(lengthText(-0.0), L"-0.000");
  EXPECT_EQ(lengthText(-0.0004), L"-0.000");
  EXPECT_EQ(lengthText(1234567.8916), L"1234567.892");
  EXPECT_EQ(lengthText(0.0625), L"0.062");
  EXPECT_EQ(lengthText(1e15), L"1000000000000000.000");
  EXPECT_EQ(lengthText(-DBL_MAX).size(), 314U);
  EXPECT_EQ(lengthText(std::numeric_limits<double>::infinity()), L"inf");
  EXPECT_EQ(lengthText(std::numeric_limits<double>::quiet_NaN()), L"nan");
}

TEST(FixedText, TakesTheDecimalsAskedFor) {
  EXPECT_EQ(fixedText(2.345, 0), L"2");
  EXPECT_EQ(fixedText(2.345, 1), L"2.3");
  EXPECT_EQ(fixedText(-2.5, 2), L"-2.50");
  EXPECT_EQ(fixedText(0.1, 9), L"0.100000000");
  EXPECT_EQ(fixedText(0.1, 20), L"0.10000000000000000555");
  EXPECT_EQ(fixedText(0.1, -1), L"0.100000");
  EXPECT_EQ(fixedText(1.0, 1 << 30).size(), kLargestField + 2U);
}

/// What the C library gives under its own locale, as a second witness.
std::wstring libraryText(const char* format, double value) {
  std::array<char, 400> bytes{};
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  std::setlocale(LC_NUMERIC, "C");
  const int length = std::snprintf(bytes.data(), bytes.size(), format, value);
  std::setlocale(LC_NUMERIC, before.c_str());
  return {bytes.data(), bytes.data() + length};
}

TEST(FormattedText, AgreesWithTheCLibraryOnFiniteNumbers) {
  constexpr unsigned kSeed = 4711;
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 4000; ++round) {
    double value = 0.0;
    if (round % 2 == 0) {
      value = std::bit_cast<double>(random());
    } else {
      value = static_cast<double>(random() % 2'000'000'000) / 1000.0 - 1e6;
    }
    if (!std::isfinite(value)) continue;
    for (const char* format :
         {"%.3f", "%10.1f", "%+.6e", "%g", "%#.9g", "%.3G", "%-30.17g", "%020.4e", "%.5a", "%.13a"}) {
      const std::string narrow = format;
      ASSERT_EQ(formatText(std::wstring(narrow.begin(), narrow.end()), {value}), libraryText(format, value))
          << format << " seed " << kSeed << " round " << round;
    }
    ASSERT_EQ(lengthText(value), libraryText("%.3f", value));
  }
}

TEST(FormattedText, KeepsTheDecimalPointUnderEveryLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  int commas = 0;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", ""}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;
    if (*std::localeconv()->decimal_point == ',') ++commas;
    EXPECT_EQ(lengthText(1234567.5), L"1234567.500");
    EXPECT_EQ(formatText(L"%g %e %a %'d", {0.5, 0.5, 0.5}), L"0.5 5.000000e-01 0x1.0000000000000p-1 'd");
    EXPECT_EQ(formatNarrowText("%f"), "0.000000");
  }
  std::setlocale(LC_ALL, before.c_str());
  if (commas == 0) GTEST_SKIP() << "no locale with a decimal comma is installed";
}

}  // namespace
}  // namespace lvx::services
