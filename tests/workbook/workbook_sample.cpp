// Writes a workbook with every sort of cell to the first path and, as a JSON object, what a spreadsheet program must show
// for each cell to the second: [kind, text] by cell name.
#include <cstdio>
#include <fstream>
#include <string>

#include <nlohmann/json.hpp>

#include "doubles/fake_host.h"
#include "platform/utf8.h"
#include "services/excel_driver.h"
#include "workbook/workbook_server.h"

namespace {

using lvx::platform::fromUtf8;

constexpr int kColumns = 4;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: workbook_sample WORKBOOK EXPECTATION\n");
    return 2;
  }
  lvx::test::FakeHost host;
  host.setAutomationFactory([](const std::wstring&) { return lvx::workbook::startWorkbookServer(); });
  lvx::services::ExcelLink sheet;
  if (!lvx::services::startExcel(sheet)) return 1;
  nlohmann::json shown = nlohmann::json::object();
  const auto name = [](int row, int column) {
    return std::string(1, static_cast<char>('A' + column)) + std::to_string(row);
  };
  const auto text = [&](int row, int column, const std::string& value, const std::string& seen) {
    lvx::services::writeCell(sheet, fromUtf8(name(row, column)), fromUtf8(value));
    shown[name(row, column)] = {"string", seen};
  };
  const auto number = [&](int row, int column, const std::string& value, const char* kind = "float") {
    lvx::services::writeNumberCell(sheet, fromUtf8(name(row, column)), fromUtf8(value));
    shown[name(row, column)] = {kind, value == "-0.000" ? "0.000" : value};
  };

  int row = 0;
  for (const char* plain : {"* Profile projection",
                            "*******************************************************",
                            "=1+1",
                            "+1",
                            "-1",
                            "@x",
                            "'quoted",
                            "say \"yes\"",
                            "1,5;2",
                            "  blanks  ",
                            "<b>&amp;</b>",
                            "_x0041_",
                            "Stra\xC3\x9F"
                            "e \xE2\x82\xAC",
                            "\xF0\x9F\x9B\xA3",
                            "0",
                            "007",
                            "1+234.500",
                            "-0-000.500",
                            "#N/A",
                            "TRUE",
                            "2021-03-04",
                            "100%",
                            "&"})
    text(++row, 0, plain, plain);
  text(++row, 0, "* Vantor Lorvix 2021\r\n", "* Vantor Lorvix 2021\n");
  for (const char* value :
       {"0.000", "-12.500", "480012345.678", "0.001", "-0.001", "-0.000", "999.999", "123456789012.345"})
    number(++row, 1, value);
  number(++row, 1, "nan", "string");
  number(++row, 1, "---", "string");
  for (int i = 0; i < 2000; ++i) {
    ++row;
    text(row, 0, "PT-" + std::to_string(i), "PT-" + std::to_string(i));
    char value[32];
    for (int column = 1; column < kColumns; ++column) {
      std::snprintf(value, sizeof value, "%.3f", (i * 7919 % 1000003) / 1000.0 * (column == 2 ? -1000 : 1));
      number(row, column, value);
    }
  }
  text(3, 3, "late", "late");

  lvx::services::finishExcel(sheet, fromUtf8(argv[1]));
  std::ofstream expectation(argv[2], std::ios::binary);
  expectation << shown.dump();
  expectation.close();
  return expectation ? 0 : 1;
}
