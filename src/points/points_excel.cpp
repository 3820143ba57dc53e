#include "points/points_excel.h"

#include "points/points_columns.h"
#include "services/excel_driver.h"
#include "services/message_catalogue.h"
#include "services/report_header.h"

namespace lvx::points {

namespace {

constexpr int kCaptionRow = 10;

/// Column A for 0.
CString nameOfCell(std::size_t column, int row) {
  return services::cellName(static_cast<wchar_t>(L'A' + static_cast<int>(column)), row);
}

}  // namespace

bool writePointsExcel(const CString& fileName, const PointList& list) {
  const std::int64_t time = services::headerTime();
  services::ExcelLink link;
  if (!services::startExcel(link)) return false;
  services::writeExcelHeader(link, services::Message::PointsTitle, fileName, time);

  for (std::size_t k = 0; k < kPointColumns.size(); ++k)
    services::writeCell(link, nameOfCell(k, kCaptionRow), services::getMessage(kPointColumns[k].caption));

  int sheetRow = kCaptionRow;
  tpoint row;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) {
    list.read(i, row);
    ++sheetRow;
    for (std::size_t k = 0; k < kPointColumns.size(); ++k) {
      const CString cell = nameOfCell(k, sheetRow);
      const CString text = kPointColumns[k].text(row);
      if (kPointColumns[k].isNumberCell)
        services::writeNumberCell(link, cell, text);
      else
        services::writeCell(link, cell, text);
    }
  }
  services::finishExcel(link, fileName);
  return true;
}

}  // namespace lvx::points
