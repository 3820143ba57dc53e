#include "points/points_html.h"

#include "host/host.h"
#include "platform/platform.h"
#include "points/points_columns.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"

namespace lvx::points {

namespace {

/// Programs that read these pages know the tag by what reaches the file: `width='50&#37'`, one byte that the file step
/// makes of `% c` (a blank), `ellpadding='2'RULES = ALL`.
constexpr const wchar_t* kTableTag = L"<table border='1' width='50&#37'% cellpadding='2'% RULES = ALL id='table1'>";
/// Closes the table, then a closing tag where one expects a line break: browsers show it as one.
constexpr const wchar_t* kPageEnd = L"</table>\n</br>\n</Body></HTML>";

/// One table row; `cellText` gives the text of each column.
template <class CellText>
void appendCells(CString& text, CellText cellText) {
  const wchar_t* before = L"<tr><td>";
  for (const PointColumn& column : kPointColumns) {
    text += before;
    text += cellText(column);
    before = L"</td> <td>";
  }
  text += L"</td></tr>";
}

}  // namespace

bool writePointsHtml(const CString& fileName, const PointList& list) {
  const std::int64_t time = services::headerTime();
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on
  CString header;
  services::appendHtmlHeader(header, services::Message::PointsTitle, fileName, time);
  services::writeNarrow(file.get(), header);

  services::NarrowPiece table(file.get());
  // The bold tags stand outside the row.
  CString part = CString(kTableTag) + L"<b>";
  appendCells(part, [](const PointColumn& column) { return services::getMessage(column.caption); });
  part += L"</b>";
  table.add(part);
  tpoint row;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) {
    list.read(i, row);
    part.clear();
    appendCells(part, [&row](const PointColumn& column) { return column.text(row); });
    table.add(part);
  }
  table.add(kPageEnd);
  return true;
}

}  // namespace lvx::points
