// The libraries that write workbooks in this program lose what a test tells them to lose, as they do where a disk or memory fails under
// them: their own functions are called by name, and a program's come first.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "framework/exceptions.h"
#include "host/excel_operations.h"
#include "support/run_program.h"
#include "support/workbook_reader.h"
#include "workbook/workbook_server.h"

namespace {

/// What the library loses.
std::string lost;
/// The row of the sheet that is lost on its way into the archive, from 1; 0 for none.
int lostRow = 0;

/// The library's own function.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void assemble(const char* name, void* part) {
  if (lost != name) real<void(void*)>(name)(part);
}

}  // namespace

extern "C" {
// NOLINTBEGIN(readability-identifier-naming): the library's names
void lxw_content_types_assemble_xml_file(void* part) { assemble("lxw_content_types_assemble_xml_file", part); }
void lxw_relationships_assemble_xml_file(void* part) { assemble("lxw_relationships_assemble_xml_file", part); }
void lxw_workbook_assemble_xml_file(void* part) { assemble("lxw_workbook_assemble_xml_file", part); }
void lxw_worksheet_assemble_xml_file(void* part) { assemble("lxw_worksheet_assemble_xml_file", part); }
void lxw_styles_assemble_xml_file(void* part) { assemble("lxw_styles_assemble_xml_file", part); }
void lxw_theme_assemble_xml_file(void* part) { assemble("lxw_theme_assemble_xml_file", part); }
void lxw_app_assemble_xml_file(void* part) { assemble("lxw_app_assemble_xml_file", part); }
void lxw_core_assemble_xml_file(void* part) { assemble("lxw_core_assemble_xml_file", part); }
void lxw_worksheet_write_single_row(void* sheet) {
  if (lost == "crash") std::abort();
  if (lost == "exit") std::_Exit(3);
  real<void(void*)>("lxw_worksheet_write_single_row")(sheet);
}
/// Of the library that packs the archive.
int deflate(z_stream* stream, int flush) {
  const std::string_view text(reinterpret_cast<const char*>(stream->next_in), stream->avail_in);
  const std::size_t begin =
      lostRow == 0 ? std::string_view::npos : text.find("<row r=\"" + std::to_string(lostRow) + "\"");
  std::string poorer(text);
  if (begin != std::string::npos) {
    poorer.erase(begin, text.find("</row>", begin) + 6 - begin);
    stream->next_in = reinterpret_cast<Bytef*>(poorer.data());
    stream->avail_in = static_cast<uInt>(poorer.size());
  }
  return real<int(z_stream*, int)>("deflate")(stream, flush);
}
/// Of the first workbook only, as one failing allocation does.
int workbook_set_properties(void* book, void* properties) {
  static bool isLost = false;
  if (lost == "properties" && !std::exchange(isLost, true)) return 0;
  return real<int(void*, void*)>("workbook_set_properties")(book, properties);
}
// NOLINTEND(readability-identifier-naming)
}

namespace lvx::workbook {
namespace {

namespace fs = std::filesystem;
namespace excel = host::excel;
using host::AutomationValue;

AutomationValue text(const std::wstring& value) { return AutomationValue::ofText(value); }

class LossyLibrary : public testing::Test {
 protected:
  void TearDown() override {
    lost.clear();
    lostRow = 0;
  }

  /// Writes 100 rows and saves them; gives what the saving complains of.
  std::string save(std::unique_ptr<WorkbookObserver> observer = {}) {
    const auto app = startWorkbookServer(std::move(observer));
    const auto books = app->get(excel::kApplicationWorkbooks, {}).takeObject();
    const std::array missing{AutomationValue::missing()};
    const auto book = books->call(excel::kWorkbooksAdd, missing).takeObject();
    const auto sheets = book->get(excel::kWorkbookWorksheets, {}).takeObject();
    const std::array first{AutomationValue::ofInteger(1)};
    const auto sheet = sheets->get(excel::kWorksheetsItem, first).takeObject();
    for (int row = 1; row <= 100; ++row) {
      const std::array names{text(L"A" + std::to_wstring(row)), text(L"A" + std::to_wstring(row))};
      const auto range = sheet->get(excel::kWorksheetRange, names).takeObject();
      if (row == 3) range->put(excel::kRangeNumberFormatLocal, text(L"0,000"));
      range->put(excel::kRangeValue, text(L"1.5"));
    }
    std::vector<AutomationValue> arguments(host::kSaveAsArguments, AutomationValue::missing());
    arguments[0] = text((folder_ / "road.xls").wstring());
    try {
      sheet->call(excel::kWorksheetSaveAs, arguments);
    } catch (const framework::AutomationException& failure) {
      return failure.what();
    }
    return {};
  }
  [[nodiscard]] std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }
  test::TemporaryFolder folder_;
};

TEST_F(LossyLibrary, WritesAWholeWorkbookWhereNothingIsLost) {
  EXPECT_EQ(save(), "");
  EXPECT_EQ(test::readWorkbook(folder_ / "road.xls").size(), 100U);
}

TEST_F(LossyLibrary, NeverBringsAnUnsoundWorkbookIntoPlace) {
  for (const char* part :
       {"lxw_content_types_assemble_xml_file", "lxw_relationships_assemble_xml_file", "lxw_workbook_assemble_xml_file",
        "lxw_worksheet_assemble_xml_file", "lxw_styles_assemble_xml_file", "lxw_theme_assemble_xml_file",
        "lxw_app_assemble_xml_file", "lxw_core_assemble_xml_file"}) {
    std::ofstream(folder_ / "road.xls") << "former";
    lost = part;
    EXPECT_NE(save().find("isn't whole"), std::string::npos) << part;
    EXPECT_EQ(test::fileBytes(folder_ / "road.xls"), "former") << part;
    EXPECT_EQ(filesInFolder(), 1U) << part;
  }
}

TEST_F(LossyLibrary, NeverBringsAWorkbookIntoPlaceOfWhichAPartIsSoundButPoorer) {
  ::setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
  lost = "properties";
  EXPECT_NE(save().find("'docProps/core.xml' isn't whole"), std::string::npos);
  ::unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(LossyLibrary, NeverBringsAWorkbookWithARowMissingIntoPlace) {
  for (const int row : {1, 2, 50, 99, 100}) {
    lostRow = row;
    EXPECT_NE(save().find("isn't whole"), std::string::npos) << row;
    EXPECT_EQ(filesInFolder(), 0U) << row;
  }
}

TEST_F(LossyLibrary, TellsOfItsCrashAndLeavesNothing) {
  for (const auto& [what, told] : {std::pair{"crash", "SIGABRT"}, std::pair{"exit", "exit code 3"}}) {
    lost = what;
    EXPECT_EQ(save(), std::string("workbook: its writing broke off (") + told + "); memory may be short");
    EXPECT_EQ(filesInFolder(), 0U);
  }
}

}  // namespace
}  // namespace lvx::workbook
