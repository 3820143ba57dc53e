#include "workbook/detail/sheet_text.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <xlsxwriter.h>

#include "standin_platform/c_locale_scope.h"
#include "support/random_numbers.h"
#include "support/run_program.h"
#include "support/workbook_reader.h"

namespace lvx::workbook::detail {
namespace {

class Random {
 public:
  /// Both ends included.
  std::int64_t integer(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(wide() % static_cast<std::uint64_t>(high - low + 1));
  }
  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(wide() >> 11U) * 0x1p-53);
  }

 private:
  std::uint64_t wide() { return std::uint64_t{generator_()} << 32U | generator_(); }
  std::mt19937 generator_ = test::seededByTestName();
};

std::string printed(double number) {
  const standin_platform::CLocaleScope pointAsDecimalSign;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.16G", number);
  return text.data();
}

std::string appended(double number) {
  std::string text;
  appendNumber(number, text);
  return text;
}

TEST(SheetText, SpellsNumbersAsSixteenDigitsOfTheCLibrary) {
  for (const double number : {0.0,
                              1.0,
                              -1.0,
                              0.5,
                              8.7,
                              -8.7,
                              9.95,
                              999.999,
                              512.001,
                              1023.999,
                              1024.001,
                              4810012.345,
                              480012345.678,
                              0.1,
                              0.001,
                              0.0010000000000000002,
                              0.000999999,
                              1e-5,
                              1e-300,
                              99999999999999.98,
                              1e14,
                              1e15,
                              123456789012345678.0,
                              1e16,
                              1e300,
                              9007199254740993.0,
                              0.1 + 0.2,
                              1.0 / 3.0,
                              2.0 / 3.0,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::denorm_min()})
    EXPECT_EQ(appended(number), printed(number));
}

TEST(SheetText, SpellsRandomNumbersAsTheCLibrary) {
  Random random;
  for (int i = 0; i < 200000; ++i) {
    const double thousandths = static_cast<double>(random.integer(-2000000000, 2000000000)) / 1000.0;
    ASSERT_EQ(appended(thousandths), printed(thousandths));
    const double any = random.between(-1.0, 1.0) * std::pow(10.0, static_cast<double>(random.integer(-5, 18)));
    ASSERT_EQ(appended(any), printed(any));
  }
}

TEST(SheetText, WritesRowsAsTheLibraryDoes) {
  Random random;
  const standin_platform::CLocaleScope pointAsDecimalSign;
  const test::TemporaryFolder folder;
  const std::string path = (folder / "library.xlsx").string();
  lxw_workbook_options options{LXW_TRUE, nullptr, LXW_FALSE};
  lxw_workbook* const book = workbook_new_opt(path.c_str(), &options);
  lxw_worksheet* const sheet = workbook_add_worksheet(book, nullptr);
  lxw_format* const format = workbook_add_format(book);
  format_set_num_format(format, "0.000");
  const std::string letters = "ab &<>\"'\t\n\r\x01\x0B\x1F\x7F_x\xC3\xA4";
  std::string expected;
  std::vector<ShownCell> shown;
  for (std::uint32_t number = 0; number < 300; ++number) {
    Row row;
    for (const std::uint16_t column : {0, 1, 25, 26, 27, 701, 702, 16383}) {
      const bool hasFormat = random.integer(0, 1) == 1;
      lxw_format* const its = hasFormat ? format : nullptr;
      switch (random.integer(0, 3)) {
        case 0: {
          const double value = random.between(-1e6, 1e6);
          row.put(column, {CellKind::Number, hasFormat, value, {}});
          worksheet_write_number(sheet, number, column, value, its);
          break;
        }
        case 1: {
          std::string text;
          for (auto size = random.integer(1, 8); size > 0; --size)
            text += letters[static_cast<std::size_t>(random.integer(0, static_cast<std::int64_t>(letters.size()) - 3))];
          row.put(column, {CellKind::Text, hasFormat, 0.0, text});
          worksheet_write_string(sheet, number, column, text.c_str(), its);
          break;
        }
        case 2:
          row.put(column, {CellKind::Empty, hasFormat, 0.0, {}});
          if (hasFormat) worksheet_write_blank(sheet, number, column, its);
          break;
        default:
          break;
      }
    }
    shownCells(row, shown);
    appendRow(number, shown, expected);
  }
  ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
  const std::string written = test::readWorkbookParts(path).at("xl/worksheets/sheet1.xml");
  const std::size_t begin = written.find("<sheetData>") + std::string_view("<sheetData>").size();
  EXPECT_EQ(written.substr(begin, written.find("</sheetData>") - begin), expected);
}

}  // namespace
}  // namespace lvx::workbook::detail
