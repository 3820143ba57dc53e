#include "projection/projection_excel.h"

#include "services/excel_driver.h"
#include "services/formatted_text.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::projection {

namespace {

using services::cellName;
using services::ExcelLink;
using services::lengthText;

/// The header and the empty row below it.
constexpr std::int32_t kRowsBeforeContent = 9;

void writeRow(ExcelLink& link, std::int32_t row, double offset, double elevation) {
  services::writeNumberCell(link, cellName(L'B', row), lengthText(offset));
  services::writeNumberCell(link, cellName(L'C', row), lengthText(elevation));
}

/// Writes one sample line below `row` and gives the row after its last one.
std::int32_t writeBlock(ExcelLink& link, std::int32_t row, const tsl& record) {
  ++row;
  services::writeCell(link, cellName(L'A', row), record.name);
  services::writeCell(link, cellName(L'B', row), services::stationText(record.station));
  for (std::int32_t k = 0; k < record.leftPoints.count(); ++k)
    writeRow(link, ++row, record.leftOffsets[k].first, record.leftPoints[k].third);
  for (std::int32_t k = firstRightRow(record); k < record.rightPoints.count(); ++k)
    writeRow(link, ++row, record.rightOffsets[k].first, record.rightPoints[k].third);
  return row + 1;
}

}  // namespace

bool writeProjectionExcel(const CString& fileName, const CString& /*alignmentText*/, const SampleLineList& list) {
  ExcelLink link;
  if (!services::startExcel(link)) return false;
  services::writeExcelHeader(link, services::Message::ProjectionTitle, fileName, services::headerTime());
  std::int32_t row = kRowsBeforeContent;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) {
    row = writeBlock(link, row, *list[i]);
    if (i + 1 < list.size()) services::writeCell(link, cellName(L'A', row), L"&");
  }
  services::finishExcel(link, fileName);
  return true;
}

}  // namespace lvx::projection
