#include "projection/projection_xml.h"

#include "framework/exceptions.h"
#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"

namespace lvx::projection {

namespace {

using services::formatText;
using services::getMessage;
using services::Message;

class CentreRowsGuard {
 public:
  explicit CentreRowsGuard(tcentreRows& rows) : rows_(rows) {}
  CentreRowsGuard(const CentreRowsGuard&) = delete;
  CentreRowsGuard& operator=(const CentreRowsGuard&) = delete;
  ~CentreRowsGuard() { rows_.free(); }

 private:
  tcentreRows& rows_;
};

/// A row's two format steps; the attributes' names are part of the formats.
struct PointFormats {
  CString offset = L"<Punkt \t" + getMessage(Message::ProjectionOffset) + L"=\"%.3f\"\t";
  CString elevation = getMessage(Message::ProjectionElevation) + L"=\"%.3f\" />\n";

  void append(CString& document, double a, double b) const {
    document += formatText(offset, {a});
    document += formatText(elevation, {b});
  }
};

void appendInformation(CString& document, const CString& fileName, const CString& alignmentName, std::int64_t time) {
  // Without a calendar the date reads zeros and the time minus ones.
  platform::CalendarTime shown;
  shown.hour = shown.minute = shown.second = -1;
  if (const auto calendar = vnrxHost()->platform().calendarTime(time)) shown = *calendar;
  document += L"<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\n";
  document += L"<Bericht>\n";
  document += L"<Bericht_Information>\n";
  // The year of the run stands where one expects a version.
  document += formatText(L"<Hersteller>PVS Plus %d</Hersteller>\n", {std::int64_t{shown.year}});
  document += formatText(L"<Datei>%s</Datei>\n", {fileName});
  document += formatText(L"<Datum>%d.%d.%d</Datum>\n",
                         {std::int64_t{shown.day}, std::int64_t{shown.month}, std::int64_t{shown.year}});
  document += formatText(L"<Zeit>%d:%d:%d</Zeit>\n",
                         {std::int64_t{shown.hour}, std::int64_t{shown.minute}, std::int64_t{shown.second}});
  document += formatText(L"<Achse>%s</Achse>\n", {alignmentName});
  document += L"</Bericht_Information>\n";
}

void appendSampleLine(CString& document, const PointFormats& point, std::int64_t number, const tsl& record,
                      const tcentreRow& centre) {
  // Not the station text of the other forms: the plain station behind a constant, after two blanks.
  document += formatText(L"<P%d ", {number});
  document += formatText(L" station=\"0.0+%.3f\">\n", {record.station});
  point.append(document, centre.offset, centre.elevation);
  for (std::int32_t k = 0; k < record.leftPoints.count() - 1; ++k)
    point.append(document, record.leftOffsets[k].first, record.leftPoints[k].third);
  for (std::int32_t k = 1; k < record.rightPoints.count(); ++k)
    point.append(document, record.rightOffsets[k].first, record.rightPoints[k].third);
  document += formatText(L"</P%d>\n", {number});
}

/// Up to the storage's end, not its count: the rows are the caller's promise, only memory that isn't there is refused.
const tcentreRow& storedRow(const tcentreRows& rows, framework::ArrayIndex index) {
  if (index >= rows.capacity) throw framework::InvalidArgumentException();
  return rows.items[index];
}

}  // namespace

void tcentreRows::free() noexcept {
  if (capacity < 1) return;
  delete[] items;
  items = nullptr;
  capacity = 0;
  count = 0;
}

bool writeProjectionXml(const CString& fileName, const CString& alignmentName, const SampleLineList& list,
                        tcentreRows& centreRows) {
  const CentreRowsGuard guard(centreRows);
  const std::int64_t time = services::headerTime();
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;
  CString document;
  appendInformation(document, fileName, alignmentName, time);
  document += L"<Profilen>\n";
  const PointFormats point;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i)
    appendSampleLine(document, point, i + 1, *list[i], storedRow(centreRows, i));
  document += L"</Profilen>\n";
  document += L"</Bericht>";
  services::writeNarrow(file.get(), document);
  return true;
}

}  // namespace lvx::projection
