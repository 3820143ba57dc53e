#include "gls/gls_excel.h"

#include "gls/detail/cell_words.h"
#include "services/excel_driver.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::gls {

namespace {

using detail::CellWords;
using services::cellName;
using services::ExcelLink;

constexpr std::int32_t kGroupHeadRow = 10;
constexpr std::int32_t kHeadRow = 11;
constexpr std::int32_t kFirstRow = 12;

/// The letter of a column of the table.
constexpr wchar_t letterOf(std::size_t column) { return static_cast<wchar_t>(L'A' + column); }

void writeHeads(ExcelLink& link) {
  for (std::size_t i = 0; i < kGlsColumns.size(); ++i)
    if (kGlsColumns[i].groupHead)
      services::writeCell(link, cellName(letterOf(i), kGroupHeadRow), services::getMessage(*kGlsColumns[i].groupHead));
  for (std::size_t i = 0; i < kGlsColumns.size(); ++i)
    services::writeCell(link, cellName(letterOf(i), kHeadRow), services::getMessage(kGlsColumns[i].head));
}

/// The field behind a number column of the sheet.
double tglsRow::*fieldOf(const GlsColumn& column) {
  // The left edge stands under both heads of the edges: sheets in the field are laid out for that.
  return column.value == &tglsRow::edgeElevationRight ? &tglsRow::edgeElevationLeft : column.value;
}

/// One cell of a row, or none where the column has nothing to show there.
void writeRowCell(ExcelLink& link, std::size_t columnIndex, std::int32_t sheetRow, const tglsRow& row, bool distanceRow,
                  const CellWords& words) {
  const GlsColumn& column = kGlsColumns[columnIndex];
  const CString cell = cellName(letterOf(columnIndex), sheetRow);
  const auto writeNumber = [&](bool shown) {
    if (shown) services::writeNumberCell(link, cell, services::lengthText(row.*fieldOf(column)));
  };
  switch (column.content) {
    case GlsContent::Name:
      if (!distanceRow) services::writeCell(link, cell, row.name);
      break;
    case GlsContent::Station:
      if (!distanceRow) services::writeCell(link, cell, services::stationText(row.station));
      break;
    case GlsContent::Distance:
      writeNumber(distanceRow);
      break;
    case GlsContent::Notes:
      services::writeCell(link, cell, row.notes);
      break;
    case GlsContent::CurveOrdinate:
      writeNumber(!distanceRow && !detail::isNearlyOutsideCurves(row));
      break;
    case GlsContent::Elevation:
      writeNumber(!distanceRow);
      break;
    case GlsContent::Corridor:
      // The word goes into a cell that has the number format, like every other one of its column.
      if (!distanceRow && isNoCorridor(row))
        services::writeNumberCell(link, cell, words.noCorridor());
      else
        writeNumber(!distanceRow);
      break;
    case GlsContent::ElementWord:
      if (detail::showsElement(row)) services::writeCell(link, cell, words.element(row.horType));
      break;
    case GlsContent::ElementLength:
      writeNumber(detail::showsElement(row));
      break;
    case GlsContent::ElementCurve:
      writeNumber(detail::showsCurvedElement(row));
      break;
  }
}

/// The design of tangent and element comes first, on every row; then what only its kind of row has.
constexpr bool comesFirst(GlsContent content) {
  switch (content) {
    case GlsContent::Notes:
    case GlsContent::ElementWord:
    case GlsContent::ElementLength:
    case GlsContent::ElementCurve:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool writeGlsExcel(const CString& fileName, const CString& /*alignmentText*/, const tglsReport& report) {
  ExcelLink link;
  if (!services::startExcel(link)) return false;
  services::writeExcelHeader(link, Message::GlsTitle, fileName, services::headerTime());
  writeHeads(link);
  const CellWords words;
  for (ArrayIndex r = 0; r < report.rows.size(); ++r)
    for (const bool first : {true, false})
      for (std::size_t i = 0; i < kGlsColumns.size(); ++i)
        if (comesFirst(kGlsColumns[i].content) == first)
          writeRowCell(link, i, kFirstRow + static_cast<std::int32_t>(r), *report.rows[r], isDistanceRow(r), words);
  services::finishExcel(link, fileName);
  return true;
}

}  // namespace lvx::gls
