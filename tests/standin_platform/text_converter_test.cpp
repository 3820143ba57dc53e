#include "standin_platform/text_converter.h"

#include <gtest/gtest.h>

namespace lvx::standin_platform {
namespace {

using namespace std::string_view_literals;
using End = TextConverter::End;

TEST(TextConverter, SaysHowFarItCame) {
  struct Row {
    const char* encoding;
    std::string_view from;
    const char* to;
    End end;
    std::size_t done;
  };
  const Row table[] = {
      {"ISO-8859-2", "\xF8"sv, "ř", End::Complete, 1},     {"windows-1252", "\x80 5"sv, "€ 5", End::Complete, 3},
      {"UTF-16LE", "a\0\xE4\0"sv, "aä", End::Complete, 4}, {"UTF-16", "\xFE\xFF\0a"sv, "a", End::Complete, 4},
      {"UTF-16LE", "a\0b"sv, "a", End::Incomplete, 2},     {"UTF-16LE", "a\0\0\xDC"sv, "a", End::Invalid, 2},
      {"SHIFT_JIS", "x\x83"sv, "x", End::Incomplete, 1},   {"ISO-8859-1", ""sv, "", End::Complete, 0},
  };
  for (const Row& row : table) {
    TextConverter converter(row.encoding);
    ASSERT_TRUE(converter.isKnown()) << row.encoding;
    for (int again = 0; again < 2; ++again) {
      std::string to = "before ";
      std::size_t done = 99;
      EXPECT_EQ(converter.convert(row.from, to, done), row.end) << row.encoding;
      EXPECT_EQ(to, std::string("before ") + row.to) << row.encoding;
      EXPECT_EQ(done, row.done) << row.encoding;
    }
  }
}

TEST(TextConverter, TakesTextsOfAnyLength) {
  TextConverter converter("ISO-8859-1");
  std::string to;
  std::size_t done = 0;
  EXPECT_EQ(converter.convert(std::string(1'000'003, '\xE4'), to, done), End::Complete);
  EXPECT_EQ(done, 1'000'003U);
  EXPECT_EQ(to.size(), 2'000'006U);
}

TEST(TextConverter, KnowsNotEveryName) { EXPECT_FALSE(TextConverter("KLINGON-7").isKnown()); }

}  // namespace
}  // namespace lvx::standin_platform
