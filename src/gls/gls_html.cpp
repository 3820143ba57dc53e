#include "gls/gls_html.h"

#include <cstddef>
#include <string>
#include <vector>

#include "gls/detail/cell_words.h"
#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::gls {

namespace {

using detail::CellWords;
using services::getMessage;

/// Programs that read these pages know the tag by what the file step makes of it: `'2'RULES`.
constexpr const wchar_t* kTableTag = L"<table border='1' cellpadding='2'% RULES = ALL>";
/// Twelve empty cells; programs that compare pages know their uneven blanks.
constexpr const wchar_t* kNoValues =
    L"<td></td> <td></td> <td></td> <td></td> <td></td> <td></td> <td></td> <td></td> <td></td> <td></td><td> </td> "
    L"<td></td>";
/// In place of the column's own heads: angle of a curve, angle of a clothoid.
constexpr const wchar_t* kAngleHead =
    L"<th rowspan = \"2\" align=\"center\"> &alpha[<sup>g</sup>] <br /> &tau[<sup>g</sup>] </th>";

void appendHeads(CString& page) {
  const auto tall = [&page](const CString& text) {
    page += L"<th rowspan = \"2\" align=\"center\">" + text + L"</th>";
  };
  page += L"<tr>";
  for (const GlsColumn& column : kGlsColumns) {
    if (column.groupColumns == 2)
      page += L"<th colspan = \"2\" align=\"center\">" + getMessage(*column.groupHead) + L"</th>";
    else if (column.value == &tglsRow::horAngle)
      page += kAngleHead;
    else if (column.groupHead)
      tall(getMessage(*column.groupHead) + L"<br />" + getMessage(column.head));
    else if (column.groupColumns == 1)
      tall(getMessage(column.head));
  }
  page += L"<tr>";  // the row before stays open: browsers close it here
  for (std::size_t i = 0; i < kGlsColumns.size(); ++i) {
    if (kGlsColumns[i].groupColumns != 2) continue;
    // The heads follow each other without blanks but for these: programs that compare pages know them.
    const double tglsRow::*field = kGlsColumns[i].value;
    if (field == &tglsRow::widthLeft || field == &tglsRow::edgeElevationLeft) page += L' ';
    const wchar_t* between =
        field == &tglsRow::curveX ? L"</th> <th align=\"center\"> " : L"</th> <th align=\"center\">";
    page += L"<th align=\"center\">" + getMessage(kGlsColumns[i].head) + between + getMessage(kGlsColumns[i + 1].head) +
            L"</th>";
  }
  page += L"</tr>";
}

/// For each of `count` rows how many rows the tall cell spans that it opens; 0 where it opens none. A break row closes
/// its block, the next one begins below it.
std::vector<ArrayIndex> tallCellSpans(const framework::CArray<std::int32_t>& breakRows, ArrayIndex count) {
  std::vector<ArrayIndex> spans(static_cast<std::size_t>(count));
  ArrayIndex first = 0;
  const auto open = [&](ArrayIndex span) {
    if (first >= 0 && first < count) spans[static_cast<std::size_t>(first)] = span;
  };
  for (const std::int32_t last : breakRows) {
    open(last - first + 1);
    first = ArrayIndex{last} + 1;
  }
  open(count - first);
  return spans;
}

void openTallCell(CString& page, ArrayIndex span) {
  page += L"<td align=\"center\"rowspan = \"";
  page += std::to_wstring(span);
  page += L"\">";
}

void appendNumber(CString& page, const CString& text) {
  page += L"<td align=\"right\">";
  page += text;
  page += L"</td>";
}

/// Name, station and distance.
void appendPlace(CString& page, const tglsRow& row, bool distanceRow) {
  if (distanceRow) {
    page += L"<td></td> <td></td> ";
    appendNumber(page, services::lengthText(row.distance));
    return;
  }
  page += L"<td align=\"center\">";
  page += row.name;
  page += L"</td>";
  appendNumber(page, services::stationText(row.station));
  page += L" <td></td>";
}

/// The notes of `span` rows from `first` on, a line each.
void appendNotes(CString& page, const tglsReport& report, ArrayIndex first, ArrayIndex span) {
  openTallCell(page, span);
  for (ArrayIndex i = first; i < first + span; ++i) {
    if (i > first) page += L"<br />";
    const CString& notes = report.rows[i]->notes;
    if (!notes.empty() && notes.back() == L'%') {
      page.append(notes, 0, notes.size() - 1);
      page += L"&#37";  // without its semicolon: browsers read it, and so do the programs behind these pages
    } else {
      page += notes;
    }
  }
  page += L"</td>";
}

/// Ordinates, elevations and what the corridors say.
void appendValues(CString& page, const tglsRow& row, bool distanceRow, const CellWords& words) {
  if (distanceRow) {
    page += kNoValues;
    return;
  }
  if (detail::isNearlyOutsideCurves(row)) page += L"<td></td> <td></td>";
  for (const GlsColumn& column : kGlsColumns) {
    const auto number = [&] { return services::fixedText(row.*column.value, column.decimals); };
    switch (column.content) {
      case GlsContent::CurveOrdinate:
        if (!detail::isNearlyOutsideCurves(row)) appendNumber(page, number());
        break;
      case GlsContent::Elevation:
        appendNumber(page, number());
        break;
      case GlsContent::Corridor:
        appendNumber(page, isNoCorridor(row) ? words.noCorridor() : number());
        break;
      default:
        break;
    }
  }
}

CString elementText(const GlsColumn& column, const tglsRow& row, const CellWords& words) {
  switch (column.content) {
    case GlsContent::ElementWord:
      return words.element(row.horType);
    case GlsContent::ElementLength:
      return detail::showsElement(row) ? services::fixedText(row.*column.value, column.decimals) : CString();
    default:
      return detail::showsCurvedElement(row) ? services::fixedText(row.*column.value, column.decimals) : CString();
  }
}

/// The four cells of the horizontal element on `span` rows from `first` on, a line for each row. Only the row in the
/// middle shows anything, so that the data stands half-way down the cell.
void appendElement(CString& page, const tglsReport& report, ArrayIndex first, ArrayIndex span, const CellWords& words) {
  for (const GlsColumn& column : kGlsColumns) {
    if (column.content != GlsContent::ElementWord && column.content != GlsContent::ElementLength &&
        column.content != GlsContent::ElementCurve)
      continue;
    openTallCell(page, span);
    for (ArrayIndex i = first; i < first + span; ++i) {
      page += elementText(column, *report.rows[i], words);
      page += L"<br />";
    }
    page += L"</td>";
  }
}

}  // namespace

bool writeGlsHtml(const CString& fileName, const CString& /*alignmentText*/, const tglsReport& report) {
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on
  services::NarrowPiece page(file.get());
  CString part;
  services::appendHtmlHeader(part, Message::GlsTitle, fileName, services::headerTime());
  part += kTableTag;
  appendHeads(part);
  page.add(part);

  const CellWords words;
  const ArrayIndex count = report.rows.size();
  const std::vector<ArrayIndex> notesSpans = tallCellSpans(report.verBreakRows, count);
  const std::vector<ArrayIndex> elementSpans = tallCellSpans(report.horBreakRows, count);
  for (ArrayIndex i = 0; i < count; ++i) {
    const tglsRow& row = *report.rows[i];
    const ArrayIndex notesSpan = notesSpans[static_cast<std::size_t>(i)];
    const ArrayIndex elementSpan = elementSpans[static_cast<std::size_t>(i)];
    part = L"<tr>";  // never closed: browsers do it at the next one
    appendPlace(part, row, isDistanceRow(i));
    if (notesSpan > 0) appendNotes(part, report, i, notesSpan);
    appendValues(part, row, isDistanceRow(i), words);
    if (elementSpan > 0) appendElement(part, report, i, elementSpan, words);
    page.add(part);
  }

  page.add(L"</table></Body></HTML>");
  return true;
}

}  // namespace lvx::gls
