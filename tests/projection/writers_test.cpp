#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "case_maker.h"
#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"
#include "platform/utf8.h"
#include "projection/projection_ascii.h"
#include "projection/projection_computation.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/projection_xml.h"
#include "projection/sample_line_collector.h"
#include "support/golden.h"

namespace lvx::projection {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int64_t kMoment = 1773299289;

class Writers : public testing::Test {
 protected:
  test::FakeHost host_{{.fixedMoment = kMoment}};
  framework::OwnedList<tsl> list_;

  void add(tsl* record) { list_.get().add(record); }
  [[nodiscard]] CString path(const CString& name) { return host_.folder() + name; }
  [[nodiscard]] std::string written(const CString& name) { return test::readBytes(platform::toUtf8(path(name))); }

  /// What the next sheets are told.
  std::shared_ptr<test::ExcelRecord> recordSheets() {
    auto record = std::make_shared<test::ExcelRecord>();
    host_.setAutomationFactory(test::recordedBy(record));
    return record;
  }

  static tcentreRows centres(std::int32_t count) {
    return {new tcentreRow[static_cast<std::size_t>(count)], count, count};
  }
};

TEST_F(Writers, ReturnQuietlyWhereTheirFileCannotBeOpened) {
  add(makeRecord(L"SL1", 120.0, {{-1, 2}}, {{0, 3}}));
  const CString nowhere = path(L"no such folder/report");
  EXPECT_FALSE(writeProjectionAscii(nowhere + L".txt", L"", list_.get()));
  EXPECT_FALSE(writeProjectionHtml(nowhere + L".html", L"", list_.get()));
  tcentreRows rows = centres(1);
  EXPECT_FALSE(writeProjectionXml(nowhere + L".xml", L"", list_.get(), rows));
  EXPECT_FALSE(std::filesystem::exists(platform::toUtf8(path(L"no such folder"))));
  EXPECT_THAT(host_.users().boxes, IsEmpty());
  EXPECT_THAT(host_.run().console, IsEmpty());
}

TEST_F(Writers, ReplaceWhatStoodInTheirFile) {
  const std::vector<std::pair<CString, std::function<void(const CString&)>>> writers{
      {L"r.txt", [&](const CString& name) { writeProjectionAscii(name, L"", list_.get()); }},
      {L"r.html", [&](const CString& name) { writeProjectionHtml(name, L"", list_.get()); }},
      {L"r.xml",
       [&](const CString& name) {
         tcentreRows rows;
         writeProjectionXml(name, L"", list_.get(), rows);
       }},
  };
  for (const auto& [name, write] : writers) {
    write(path(name));
    const std::string once = written(name);
    std::filesystem::resize_file(platform::toUtf8(path(name)), 100000);
    write(path(name));
    EXPECT_TRUE(test::sameBytes(written(name), once));
  }
}

TEST_F(Writers, RaiseTheInvalidArgumentExceptionWhereOffsetsAreMissing) {
  tsl* record = makeRecord(L"SL1", 120.0, {{-1, 2}}, {{0, 3}, {1, 4}});
  add(record);
  record->rightOffsets.remove(1, 1);
  const auto sheet = recordSheets();
  EXPECT_THROW(writeProjectionAscii(path(L"r.txt"), L"", list_.get()), framework::InvalidArgumentException);
  EXPECT_THROW(writeProjectionExcel(path(L"r.xls"), L"", list_.get()), framework::InvalidArgumentException);
  EXPECT_EQ(sheet->givenUp, 1);
  EXPECT_THROW(writeProjectionHtml(path(L"r.html"), L"", list_.get()), framework::InvalidArgumentException);
  tcentreRows rows = centres(1);
  EXPECT_THROW(writeProjectionXml(path(L"r.xml"), L"", list_.get(), rows), framework::InvalidArgumentException);
  EXPECT_EQ(rows.items, nullptr);
}

TEST_F(Writers, ShowValuesThatAreNoNumbersWithoutHarm) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  add(makeRecord(L"odd", kNaN, {{-kInfinity, kNaN}}, {{0, 0}, {kInfinity, 1e300}}));
  writeProjectionAscii(path(L"r.txt"), L"", list_.get());
  EXPECT_THAT(written(L"r.txt"),
              HasSubstr("\r\n      -inf       nan\r\n       inf 1000000000000000052504760255204420248704468581"));
}

// ---------------------------------------------------------------- workbook

TEST_F(Writers, TellTheUserThatTheSpreadsheetProgramCannotBeStarted) {
  add(makeRecord(L"SL1", 120.0, {}, {}));
  EXPECT_FALSE(writeProjectionExcel(path(L"r.xls"), L"", list_.get()));
  ASSERT_EQ(host_.users().boxes.size(), 1U);
  EXPECT_EQ(host_.users().boxes[0].text, L"Couldn't start Excel and get Application object.");
  EXPECT_FALSE(std::filesystem::exists(platform::toUtf8(path(L"r.xls"))));
}

TEST_F(Writers, LetAFailureOfTheSpreadsheetProgramEndTheCommand) {
  add(makeRecord(L"SL1", 120.0, {{-1, 2}}, {}));
  const auto whole = recordSheets();
  ASSERT_TRUE(writeProjectionExcel(path(L"r.xls"), L"", list_.get()));
  ASSERT_EQ(whole->writes.size(), 7U + 2U + 2U);
  for (std::size_t place = 0; place < whole->writes.size(); ++place) {
    const auto sheet = recordSheets();
    sheet->failAtWrite = place;
    EXPECT_THROW(writeProjectionExcel(path(L"r.xls"), L"", list_.get()), framework::AutomationException);
    EXPECT_EQ(sheet->givenUp, 1);
    EXPECT_EQ(sheet->finishedAs, std::nullopt);
  }
  recordSheets()->failFinish = true;
  EXPECT_THROW(writeProjectionExcel(path(L"r.xls"), L"", list_.get()), framework::AutomationException);
}

// ---------------------------------------------------------------- document

TEST_F(Writers, FreeTheCentreRowsOnEveryWayOut) {
  add(makeRecord(L"SL1", 120.0, {}, {}));
  tcentreRows rows = centres(1);
  EXPECT_TRUE(writeProjectionXml(path(L"r.xml"), L"", list_.get(), rows));
  EXPECT_EQ(rows.items, nullptr);
  EXPECT_EQ(rows.capacity, 0);
  EXPECT_EQ(rows.count, 0);

  rows = centres(1);
  EXPECT_FALSE(writeProjectionXml(path(L"nowhere/r.xml"), L"", list_.get(), rows));
  EXPECT_EQ(rows.items, nullptr);
  EXPECT_EQ(rows.capacity, 0);
  EXPECT_EQ(rows.count, 0);
}

TEST_F(Writers, LeaveCentreRowsWithoutCapacityAsTheyAre) {
  tcentreRow own;
  tcentreRows rows{&own, 0, 7};
  rows.free();
  EXPECT_EQ(rows.items, &own);
  EXPECT_EQ(rows.count, 7);
}

TEST_F(Writers, RefuseToReadCentreRowsBeyondTheirStorage) {
  add(makeRecord(L"SL1", 120.0, {}, {}));
  add(makeRecord(L"SL2", 140.0, {}, {}));
  tcentreRows rows = centres(1);
  EXPECT_THROW(writeProjectionXml(path(L"r.xml"), L"", list_.get(), rows), framework::InvalidArgumentException);
  EXPECT_EQ(rows.items, nullptr);
}

TEST_F(Writers, ShowNoughtsAndMinusOnesForAMomentWithoutACalendarDate) {
  host_.setPlatform({.fixedMoment = std::numeric_limits<std::int64_t>::max()});
  tcentreRows rows;
  EXPECT_TRUE(writeProjectionXml(path(L"r.xml"), L"", list_.get(), rows));
  const std::string document = written(L"r.xml");
  EXPECT_THAT(document, HasSubstr("<Hersteller>PVS Plus 0</Hersteller>\n"));
  EXPECT_THAT(document, HasSubstr("<Datum>0.0.0</Datum>\n<Zeit>-1:-1:-1</Zeit>\n"));
}

// ---------------------------------------------------------------- the whole way

TEST_F(Writers, ShowTheGroundOfADrawingFromFarLeftToFarRight) {
  test::FakeDrawing drawing;
  const auto group = drawing.addAlignment(drawing.addSite(L"Valley"), L"Axis 1")->addGroup(L"Lines");
  group->addLine(L"SL2", 140.0, {{140, 5}, {140, -5}});
  group->addLine(L"SL1", 120.0, {{120, 5}, {120, -5}});
  // A roof with its ridge along the axis, sampled at the ends and half-way.
  drawing.addSurface(L"Ground")->sample = [](const test::FakeSurface::Segment& s) {
    const auto z = [](double y) { return 100.5 - 0.1 * std::abs(y); };
    const double middle = (s.y1 + s.y2) / 2.0;
    return host::HostArray<double>::of({s.x1, s.y1, z(s.y1), s.x1, middle, z(middle), s.x2, s.y2, z(s.y2)});
  };
  collectSampleLines(drawing.document, drawing.database, L"Valley", L"Axis 1", GroupFilter::named(L"Lines"),
                     list_.get());
  projectSampleLines(drawing.document, L"Ground", list_.get());
  writeProjectionAscii(path(L"r.txt"), L"Axis 1", list_.get());
  const std::string text = written(L"r.txt");
  const std::string rows =
      "    -5.000   100.000\r\n"
      "    -2.500   100.250\r\n"
      "     0.000   100.500\r\n"
      "     2.500   100.250\r\n"
      "     5.000   100.000\r\n";
  const std::string expected = "\r\n\r\nSL1   0+120.000\r\n" + rows + "&\r\nSL2   0+140.000\r\n" + rows;
  ASSERT_GE(text.size(), expected.size());
  EXPECT_TRUE(test::sameBytes(text.substr(text.size() - expected.size()), expected));
}

}  // namespace
}  // namespace lvx::projection
