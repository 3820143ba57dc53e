#pragma once

#include <string>

#include "doubles/recording_excel.h"
#include "platform/utf8.h"

namespace lvx::test {

/// `text` in UTF-8 between quotation marks, its line ends as escapes.
inline std::string quoted(const CString& text) {
  std::string all = "\"";
  for (const char c : platform::toUtf8(text)) {
    if (c == '\r') {
      all += "\\r";
    } else if (c == '\n') {
      all += "\\n";
    } else {
      all += c;
    }
  }
  return all + '"';
}

/// What came to a sheet, one line a cell:
///     A1 text "* Profiles"
///     B11 number "-5.000"
///     save "report.xls"
inline std::string cellLog(const ExcelRecord& record) {
  std::string log;
  for (const ExcelRecord::Write& write : record.writes)
    log += platform::toUtf8(write.cell) + (write.number ? " number " : " text ") + quoted(write.text) + '\n';
  if (record.finishedAs) log += "save " + quoted(*record.finishedAs) + '\n';
  return log;
}

}  // namespace lvx::test
