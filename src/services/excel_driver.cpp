#include "services/excel_driver.h"

#include "host/host.h"

namespace lvx::services {

bool startExcel(ExcelLink& link) {
  host::Host* host = vnrxHost();
  link.sheet = host->createSheet();
  if (link.sheet->start()) return true;
  link.sheet.reset();
  // English whatever the message file's language: the user may meet it with no message file at hand.
  host->userInterface().messageBox(L"Couldn't start Excel and get Application object.", host::BoxButtons::Ok,
                                   host::BoxIcon::None);
  return false;
}

void writeCell(ExcelLink& link, const CString& cellName, const CString& text) { link.sheet->writeCell(cellName, text); }

void writeNumberCell(ExcelLink& link, const CString& cellName, const CString& text) {
  link.sheet->writeNumberCell(cellName, text);
}

void finishExcel(ExcelLink& link, const CString& path) { link.sheet->finish(path); }

CString cellName(wchar_t column, int row) { return column + std::to_wstring(row); }

}  // namespace lvx::services
