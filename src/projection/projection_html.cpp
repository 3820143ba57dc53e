#include "projection/projection_html.h"

#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::projection {

namespace {

using services::formatText;
using services::getMessage;
using services::lengthText;
using services::Message;

/// Programs that read these pages know the tag by its oddities: the character reference without its semicolon, the
/// stray percent sign (with the blank behind it the file step drops it: `'2'RULES`), one id for every table.
constexpr const wchar_t* kTableTag = L"<table border='1' width='40&#37' cellpadding='2'% RULES = ALL id='table1'>";
/// Closes the table, then a closing tag where one expects a line break: browsers show it as one.
constexpr const wchar_t* kTableEnd = L"</table>\n</br>\n";

void appendRow(CString& page, double offset, double elevation) {
  page += L"<tr><td>";
  page += lengthText(offset);
  page += L"</td> <td>";
  page += lengthText(elevation);
  page += L"</td></tr>";
}

/// What is the same for every sample line, looked up once.
struct Labels {
  // The label is part of the format, so `%%` in its message is one percent sign. Only the first has a blank before
  // <br>.
  CString nameFormat = L"<b>" + getMessage(Message::SampleLineName) + L":</b> %s <br>\n";
  CString stationFormat = L"<b>" + getMessage(Message::SampleLineStation) + L":</b> %s<br>\n";
  // The bold tags stand outside the row.
  CString headingRow = L"<b><tr><td>" + getMessage(Message::ProjectionOffset) + L"</td> <td>" +
                       getMessage(Message::ProjectionElevation) + L"</td></tr></b>";
};

void appendBlock(CString& page, const Labels& labels, const tsl& record) {
  page += formatText(labels.nameFormat, {record.name});
  page += formatText(labels.stationFormat, {services::stationText(record.station)});
  page += kTableTag;
  page += labels.headingRow;
  for (std::int32_t k = 0; k < record.leftPoints.count(); ++k)
    appendRow(page, record.leftOffsets[k].first, record.leftPoints[k].third);
  for (std::int32_t k = firstRightRow(record); k < record.rightPoints.count(); ++k)
    appendRow(page, record.rightOffsets[k].first, record.rightPoints[k].third);
  page += kTableEnd;
}

}  // namespace

bool writeProjectionHtml(const CString& fileName, const CString& /*alignmentText*/, const SampleLineList& list) {
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on
  const std::int64_t time = services::headerTime();
  // A page of all lines of a long road would be too long to hold at once.
  services::NarrowPiece page(file.get());
  CString part;
  services::appendHtmlHeader(part, Message::ProjectionTitle, fileName, time);
  page.add(part);
  const Labels labels;
  for (const tsl* record : list) {
    part.clear();
    appendBlock(part, labels, *record);
    page.add(part);
  }
  page.add(L"</Body></HTML>");
  return true;
}

}  // namespace lvx::projection
