#include "services/report_header.h"

#include <array>

#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"

namespace lvx::services {

namespace {

constexpr wchar_t kReleaseKey[] = L"Software\\Kelbrin\\Vantor";
constexpr wchar_t kReleaseValue[] = L"CurVer";
constexpr wchar_t kHostName[] = L"Vantor Lorvix ";
constexpr wchar_t kStars[] = L"*******************************************************";

/// The host's release numbers and the years that stand for them. The pairs are ours: no list of the host's own was at hand,
/// and a release that isn't among them shows its number.
struct Release {
  const wchar_t* number;
  const wchar_t* year;
};
constexpr std::array<Release, 4> kReleases{
    {{L"24.0", L"2018"}, {L"24.1", L"2019"}, {L"24.2", L"2020"}, {L"24.3", L"2021"}}};

/// The fields of the header's moment; a moment without a calendar date shows noughts and minus ones.
platform::CalendarTime headerFields(std::int64_t time) {
  return vnrxHost()->platform().calendarTime(time).value_or(platform::CalendarTime{0, 0, 0, -1, -1, -1});
}

// The three labelled lines, each with its own words around the label. The label is part of the format.

CString pathLine(const CString& before, const CString& after, const CString& path) {
  return formatText(before + getMessage(Message::OutputPath) + after, {path});
}

CString dateLine(const CString& before, const CString& after, const platform::CalendarTime& time) {
  return formatText(before + getMessage(Message::Date) + after,
                    {std::int64_t{time.day}, std::int64_t{time.month}, std::int64_t{time.year}});
}

CString timeLine(const CString& before, const CString& after, const platform::CalendarTime& time) {
  return formatText(before + getMessage(Message::Time) + after,
                    {std::int64_t{time.hour}, std::int64_t{time.minute}, std::int64_t{time.second}});
}

CString titleLine(const CString& before, Message title, const CString& after) {
  return formatText(before + getMessage(title) + after, {});
}

}  // namespace

int readRegistryText(const CString& subKey, const CString& valueName, CString& out) {
  return static_cast<int>(vnrxHost()->platform().registryText(subKey, valueName, out));
}

CString mapHostRelease(const CString& text) {
  const std::size_t letters = text.find_first_not_of(L'R');
  CString number = letters == CString::npos ? CString() : text.substr(letters);
  for (const Release& release : kReleases)
    if (number == release.number) return release.year;
  return number;
}

CString hostReleaseText() {
  CString text;
  readRegistryText(kReleaseKey, kReleaseValue, text);
  return mapHostRelease(text);
}

std::int64_t headerTime() { return vnrxHost()->platform().now(); }

void writeAsciiHeader(std::FILE* stream, Message title, const CString& path, std::int64_t time) {
  const platform::CalendarTime fields = headerFields(time);
  writeNarrow(stream, CString(kStars) + L"\r\n");
  writeNarrow(stream, titleLine(L"* ", title, L"\r\n"));
  writeNarrow(stream, CString(L"* ") + kHostName + hostReleaseText() + L"\r\n");
  writeNarrow(stream, pathLine(L"* ", L"  : %s\r\n", path));
  writeNarrow(stream, dateLine(L"* ", L"  : %02d.%02d.%04d\r\n", fields));
  writeNarrow(stream, timeLine(L"* ", L"   : %02d:%02d:%02d\r\n", fields));
  writeNarrow(stream, CString(kStars) + L"\r\n");
  writeNarrow(stream, L"\r\n\r\n");
}

void writeExcelHeader(ExcelLink& link, Message title, const CString& path, std::int64_t time) {
  const platform::CalendarTime fields = headerFields(time);
  writeCell(link, cellName(L'A', 1), kStars);
  writeCell(link, cellName(L'A', 2), titleLine(L"* ", title, L""));
  // This one cell keeps its line end: sheets that users compare with older ones hold it too.
  writeCell(link, cellName(L'A', 3), CString(L"* ") + kHostName + hostReleaseText() + L"\r\n");
  writeCell(link, cellName(L'A', 4), pathLine(L"* ", L"  : %s", path));
  writeCell(link, cellName(L'A', 5), dateLine(L"* ", L"  : %02d.%02d.%04d", fields));
  writeCell(link, cellName(L'A', 6), timeLine(L"* ", L"   : %02d:%02d:%02d", fields));
  writeCell(link, cellName(L'A', 7), kStars);
}

void appendHtmlHeader(CString& text, Message title, const CString& path, std::int64_t time) {
  const platform::CalendarTime fields = headerFields(time);
  text += L"<HTML><Body>";
  text += L"<table border='0'>";
  text += titleLine(L"<tr><td align=\"left\"><b>", title, L"</b></td></tr>");
  text += CString(L"<tr><td><b>") + kHostName + hostReleaseText() + L"</b></td></tr>";
  text += pathLine(L"<tr><td align=\"left\"><b>", L":</b></td> <td>%s</td></tr>\n", path);
  text += dateLine(L"<tr><td align=\"left\"><b>", L":</b></td> <td>%02d.%02d.%04d</td></tr>", fields);
  text += timeLine(L"<tr><td align=\"left\"><b>", L":</b></td> <td>%02d:%02d:%02d</td></tr>", fields);
  text += L"</table> <br /> <br />";
}

}  // namespace lvx::services
