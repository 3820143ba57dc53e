#include "services/excel_driver.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/excel_operations.h"
#include "host/host.h"

namespace lvx::services {

namespace {

namespace excel = host::excel;
using host::AutomationValue;

/// Three decimals in the notation of a system whose decimal sign is the comma: that is what the program's users have.
constexpr wchar_t kThreeDecimals[] = L"0,000";

/// Leaves the argument empty after its call, also where the call raises.
class ClearedAfterCall {
 public:
  explicit ClearedAfterCall(AutomationValue& argument) : argument_(argument) {}
  ClearedAfterCall(const ClearedAfterCall&) = delete;
  ClearedAfterCall& operator=(const ClearedAfterCall&) = delete;
  ~ClearedAfterCall() { argument_.clear(); }

 private:
  AutomationValue& argument_;
};

void reachCell(ExcelLink& link, const CString& cellName) {
  auto& cells = link.arguments.cells;
  const ClearedAfterCall first(cells[0]);
  const ClearedAfterCall last(cells[1]);
  for (AutomationValue& cell : cells) cell.setText(cellName);
  link.range = link.sheet->get(excel::kWorksheetRange, cells).takeObject();
}

void putText(ExcelLink& link, host::DispatchId property, AutomationValue& argument, std::wstring_view text) {
  const ClearedAfterCall cleared(argument);
  argument.setText(text);
  link.range->put(property, argument);
}

}  // namespace

bool startExcel(ExcelLink& link) {
  host::Host* host = vnrxHost();
  link.app = host->createAutomationObject(host::kExcelProgramId);
  if (!link.app) {
    // English whatever the message file's language: the user may meet it with no message file at hand.
    host->userInterface().messageBox(L"Couldn't start Excel and get Application object.", host::BoxButtons::Ok,
                                     host::BoxIcon::None);
    return false;
  }
  link.books = link.app->get(excel::kApplicationWorkbooks, {}).takeObject();
  link.book = link.books->call(excel::kWorkbooksAdd, {&link.covOptional, 1}).takeObject();
  link.sheets = link.book->get(excel::kWorkbookWorksheets, {}).takeObject();
  AutomationValue& index = link.arguments.index;
  const ClearedAfterCall cleared(index);
  index = AutomationValue::ofInteger(1);
  link.sheet = link.sheets->get(excel::kWorksheetsItem, {&index, 1}).takeObject();
  return true;
}

void writeCell(ExcelLink& link, const CString& cellName, const CString& text) {
  reachCell(link, cellName);
  putText(link, excel::kRangeValue, link.arguments.value, text);
}

void writeNumberCell(ExcelLink& link, const CString& cellName, const CString& text) {
  reachCell(link, cellName);
  putText(link, excel::kRangeNumberFormatLocal, link.arguments.numberFormat, kThreeDecimals);
  // A text, not a number: how it is read is the program's decision.
  putText(link, excel::kRangeValue, link.arguments.value, text);
}

void finishExcel(ExcelLink& link, const CString& path) {
  std::array<AutomationValue, host::kSaveAsArguments> arguments;
  arguments.fill(link.covOptional);
  arguments[0] = AutomationValue::ofText(path);
  link.sheet->call(excel::kWorksheetSaveAs, arguments);
  link.app->call(excel::kApplicationQuit, {});
  link.app.reset();
}

CString cellName(wchar_t column, int row) {
  // Every cell of a report passes here: std::to_wstring, which reads a format text first, costs as much as all the
  // automation calls of a cell.
  std::array<char, 12> digits;
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), row).ptr;
  std::array<wchar_t, 1 + digits.size()> name;
  name[0] = column;
  wchar_t* const nameEnd = std::copy(digits.data(), end, name.data() + 1);
  return {name.data(), nameEnd};
}

}  // namespace lvx::services
