#include "services/report_header.h"

#include <functional>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/recording_excel.h"
#include "services/narrow_write.h"

namespace lvx::services {
namespace {

using test::FakeHost;

constexpr std::int64_t kMoment = 1773212525;  // 2026-03-11 07:02:05 UTC
constexpr char kMessages[] =
    "101 Profiles projection\r\n201 Points\r\n301 GLS\r\n118 Output file\r\n119 Date\r\n120 Time\r\n";

/// The bytes that `write` leaves in a file.
std::string written(FakeHost& host, const std::function<void(std::FILE*)>& write) {
  const CString path = host.folder() + L"written";
  {
    const platform::FileHandle stream = host.platform().openFile(path, "wb");
    write(stream.get());
  }
  const platform::FileHandle stream = host.platform().openFile(path, "rb");
  std::string bytes;
  for (int byte = std::fgetc(stream.get()); byte != EOF; byte = std::fgetc(stream.get()))
    bytes += static_cast<char>(static_cast<unsigned char>(byte));
  return bytes;
}

std::string asciiHeader(FakeHost& host, Message title, const CString& path, std::int64_t time = kMoment) {
  return written(host, [&](std::FILE* stream) { writeAsciiHeader(stream, title, path, time); });
}

CString htmlHeader(Message title, const CString& path, std::int64_t time = kMoment) {
  CString text;
  appendHtmlHeader(text, title, path, time);
  return text;
}

/// The header's cells in the order in which they are written.
std::vector<std::pair<CString, CString>> excelHeader(FakeHost& host, Message title, const CString& path,
                                                     std::int64_t time = kMoment) {
  const auto record = std::make_shared<test::ExcelRecord>();
  host.setAutomationFactory(test::recordedBy(record));
  ExcelLink link;
  EXPECT_TRUE(startExcel(link));
  writeExcelHeader(link, title, path, time);
  std::vector<std::pair<CString, CString>> cells;
  for (const test::ExcelRecord::Write& write : record->writes)
    cells.emplace_back(write.cell, (write.number ? L"number " : L"") + write.text);
  return cells;
}

const std::string kStarLine(55, '*');

// ---------------------------------------------------------------- narrow write

TEST(NarrowWrite, GivesTheSameBytesInPartsAsAtOnce) {
  FakeHost host;
  const std::vector<std::vector<CString>> texts{
      {},
      {L""},
      {L"<a>", L"<b>"},
      {L"100%% ", L"% RULES", L" %5d|"},
      {L"before ", L"Latin \u00FF, ", L"then \u20AC, lost", L"lost too", L""},
      {L"\u20AC", L"lost"},
      {L"a", CString(L"b\0lost", 6), L"lost"},
  };
  for (const std::vector<CString>& parts : texts) {
    CString whole;
    for (const CString& part : parts) whole += part;
    const auto inParts = written(host, [&](std::FILE* stream) {
      NarrowPiece piece(stream);
      for (const CString& part : parts) piece.add(part);
    });
    EXPECT_EQ(inParts, written(host, [&](std::FILE* stream) { writeNarrow(stream, whole); }));
  }
}

TEST(NarrowWrite, PassesEveryByteThroughTheFormat) {
  FakeHost host;
  std::size_t count = 0;
  EXPECT_EQ(
      written(host, [&](std::FILE* stream) { count = writeNarrow(stream, L"cellpadding='2'% RULES 40&#37 %%\r\n"); }),
      "cellpadding='2'RULES 40&#37 %\r\n");
  EXPECT_EQ(count, 34U);
}

TEST(NarrowWrite, CountsTheWideCharactersWhateverReachesTheFile) {
  FakeHost host;
  std::size_t count = 0;
  EXPECT_EQ(written(host, [&](std::FILE* stream) { count = writeNarrow(stream, L"\u00C4 \u20AC incl."); }), "\xC4 ");
  EXPECT_EQ(count, 9U);
  EXPECT_EQ(written(host, [&](std::FILE* stream) { count = writeNarrow(stream, CString(L"a\0b", 3)); }), "a");
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(written(host, [&](std::FILE* stream) { count = writeNarrow(stream, L""); }), "");
  EXPECT_EQ(count, 0U);
}

TEST(NarrowWrite, FollowsTheReportCodePageOfTheHost) {
  FakeHost host({.reportCodePage = "WINDOWS-1252"});
  EXPECT_EQ(written(host, [](std::FILE* stream) { writeNarrow(stream, L"\u20AC"); }), "\x80");
}

TEST(NarrowWrite, AWriteErrorIsTheStreamsAndNobodyElses) {
  FakeHost host;
  const platform::FileHandle full = host.platform().openFile(L"/dev/full", "wb");
  if (!full) GTEST_SKIP() << "no device that is always full";
  EXPECT_EQ(writeNarrow(full.get(), CString(100'000, L'x')), 100'000U);
}

// ---------------------------------------------------------------- release

TEST(HostRelease, LosesEveryLeadingRAndFindsItsYear) {
  const std::map<CString, CString> rows = {
      {L"R24.0", L"2018"},   {L"R24.1", L"2019"},    {L"R24.2", L"2020"},   {L"R24.3", L"2021"}, {L"24.3", L"2021"},
      {L"RRR24.3", L"2021"}, {L"R7.3.5", L"7.3.5"},  {L"RR5", L"5"},        {L"R24.4", L"24.4"}, {L"R24.30", L"24.30"},
      {L"r24.3", L"r24.3"},  {L" R24.3", L" R24.3"}, {L"R24.3 ", L"24.3 "}, {L"RRR", L""},       {L"", L""},
      {L"5R", L"5R"},
  };
  EXPECT_EQ(rows.size(), 16U);
  for (const auto& [code, shown] : rows) EXPECT_EQ(mapHostRelease(code), shown) << code;
}

TEST(HostRelease, IsReadFromTheRegistry) {
  FakeHost host({.release = L"R24.1"});
  EXPECT_EQ(hostReleaseText(), L"2019");
  host.setPlatform({.release = L"R99"});
  EXPECT_EQ(hostReleaseText(), L"99");
  host.setPlatform({.release = L""});
  EXPECT_EQ(hostReleaseText(), L"");
}

TEST(HostRelease, TheRegistryReaderTellsTheThreeCasesApart) {
  FakeHost host({.release = L"R24.1"});
  CString text = L"before";
  EXPECT_EQ(readRegistryText(L"Software\\Kelbrin\\Other", L"CurVer", text), -1);
  EXPECT_EQ(readRegistryText(L"Software\\Kelbrin\\Vantor", L"Other", text), 0);
  EXPECT_EQ(text, L"before");
  EXPECT_EQ(readRegistryText(L"Software\\Kelbrin\\Vantor", L"CurVer", text), 1);
  EXPECT_EQ(text, L"R24.1");
}

// ---------------------------------------------------------------- the three forms

TEST(AsciiHeader, ToTheByte) {
  FakeHost host({.fixedMoment = kMoment});
  host.useMessageBytes(kMessages);
  EXPECT_EQ(asciiHeader(host, Message::ProjectionTitle, L"out/road.txt"), kStarLine +
                                                                              "\r\n"
                                                                              "* Profiles projection\r\n"
                                                                              "* Vantor Lorvix 2021\r\n"
                                                                              "* Output file  : out/road.txt\r\n"
                                                                              "* Date  : 11.03.2026\r\n"
                                                                              "* Time   : 07:02:05\r\n" +
                                                                              kStarLine + "\r\n\r\n\r\n");
}

TEST(AsciiHeader, WithoutAMessageFileShowsTheNumbers) {
  FakeHost host({.fixedMoment = kMoment, .release = L""});
  EXPECT_EQ(asciiHeader(host, Message::ProjectionTitle, L"p"), kStarLine +
                                                                   "\r\n"
                                                                   "* *101*\r\n"
                                                                   "* Vantor Lorvix \r\n"
                                                                   "* *118*  : p\r\n"
                                                                   "* *119*  : 11.03.2026\r\n"
                                                                   "* *120*   : 07:02:05\r\n" +
                                                                   kStarLine + "\r\n\r\n\r\n");
}

TEST(AsciiHeader, APercentSignOfThePathIsReadAsAConversion) {
  FakeHost host({.fixedMoment = kMoment});
  host.useMessageBytes(kMessages);
  EXPECT_NE(
      asciiHeader(host, Message::ProjectionTitle, L"out/50% road %d.txt").find("* Output file  : out/50road 0.txt\r\n"),
      std::string::npos);
}

TEST(ExcelHeader, FillsSevenCellsOfColumnA) {
  FakeHost host({.fixedMoment = kMoment});
  host.useMessageBytes(kMessages);
  const std::wstring stars(55, L'*');
  EXPECT_EQ(excelHeader(host, Message::PointsTitle, L"out/50% road.xls"),
            (std::vector<std::pair<CString, CString>>{{L"A1", stars},
                                                      {L"A2", L"* Points"},
                                                      {L"A3", L"* Vantor Lorvix 2021\r\n"},
                                                      {L"A4", L"* Output file  : out/50% road.xls"},
                                                      {L"A5", L"* Date  : 11.03.2026"},
                                                      {L"A6", L"* Time   : 07:02:05"},
                                                      {L"A7", stars}}));
}

TEST(HtmlHeader, IsOneRunWithASingleLineFeed) {
  FakeHost host({.fixedMoment = kMoment});
  host.useMessageBytes(kMessages);
  EXPECT_EQ(htmlHeader(Message::GlsTitle, L"out/\u0416 50% road.html"),
            L"<HTML><Body><table border='0'>"
            L"<tr><td align=\"left\"><b>GLS</b></td></tr>"
            L"<tr><td><b>Vantor Lorvix 2021</b></td></tr>"
            L"<tr><td align=\"left\"><b>Output file:</b></td> <td>out/\u0416 50% road.html</td></tr>\n"
            L"<tr><td align=\"left\"><b>Date:</b></td> <td>11.03.2026</td></tr>"
            L"<tr><td align=\"left\"><b>Time:</b></td> <td>07:02:05</td></tr>"
            L"</table> <br /> <br />");
}

TEST(HtmlHeader, AddsToWhatStandsThere) {
  FakeHost host({.fixedMoment = kMoment});
  CString text = L"before";
  appendHtmlHeader(text, Message::ProjectionTitle, L"p", kMoment);
  EXPECT_EQ(text, L"before" + htmlHeader(Message::ProjectionTitle, L"p"));
}

TEST(ReportHeader, PercentSignsOfItsMessagesAreConversions) {
  FakeHost host({.fixedMoment = kMoment});
  host.useMessageBytes("101 100%% of %d %s\r\n118 %d file\r\n119 %d Date\r\n120 Time %\r\n");
  const auto cells = excelHeader(host, Message::ProjectionTitle, L"path");
  EXPECT_EQ(cells[1].second, L"* 100% of 0 (null)");
  // The conversion of the label takes the path, which is no integer; nothing is left for the line's own.
  EXPECT_EQ(cells[3].second, L"* 0 file  : (null)");
  EXPECT_EQ(cells[4].second, L"* 11 Date  : 03.2026.0000");
  // "%  : " is a conversion by flags and the colon.
  EXPECT_EQ(cells[5].second, L"* Time : 07:02:05");
  EXPECT_NE(htmlHeader(Message::ProjectionTitle, L"path").find(L"<b>100% of 0 (null)</b>"), CString::npos);
  // In a text file the line is read once more, where the sign that was left begins the octal conversion "% o".
  EXPECT_NE(asciiHeader(host, Message::ProjectionTitle, L"path").find("* 1000f 0 (null)\r\n"), std::string::npos);
}

TEST(ReportHeader, AMomentWithoutACalendarDateShowsNoughtsAndMinusOnes) {
  FakeHost host;
  host.useMessageBytes(kMessages);
  for (const std::int64_t moment : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()}) {
    const auto cells = excelHeader(host, Message::ProjectionTitle, L"p", moment);
    EXPECT_EQ(cells[4].second, L"* Date  : 00.00.0000");
    EXPECT_EQ(cells[5].second, L"* Time   : -1:-1:-1");
    EXPECT_NE(asciiHeader(host, Message::ProjectionTitle, L"p", moment)
                  .find("* Date  : 00.00.0000\r\n* Time   : -1:-1:-1\r\n"),
              std::string::npos);
    EXPECT_NE(htmlHeader(Message::ProjectionTitle, L"p", moment).find(L"<td>-1:-1:-1</td>"), CString::npos);
  }
}

TEST(ReportHeader, ItsMomentIsThePlatforms) {
  FakeHost host({.fixedMoment = kMoment});
  EXPECT_EQ(headerTime(), kMoment);
}

}  // namespace
}  // namespace lvx::services
