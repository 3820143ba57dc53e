#include "support/golden.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "case_maker.h"
#include "doubles/fake_host.h"
#include "platform/utf8.h"
#include "points/points_ascii.h"
#include "points/points_excel.h"
#include "points/points_html.h"
#include "support/cell_log.h"

namespace lvx::points {
namespace {

/// 2026-03-12 07:08:09 UTC: every field of the header but the year begins with a nought.
constexpr std::int64_t kMoment = 1773299289;

/// The folders below tests/golden/points, each with its `about` line in case.json.
const std::string kCases[] = {
    "two-points",          "captions-of-12-characters", "captions-of-13-characters", "texts-that-overflow",
    "texts-of-every-kind", "stations-below-zero",       "letters-beyond-latin-1",    "captions-missing",
    "captions-in-german",  "captions-with-percent"};

class PointsGolden : public testing::TestWithParam<std::string> {
 protected:
  PointsGolden()
      : case_(test::readBytes(test::goldenFolder() + "/" + caseFile("case.json"))),
        host_({.fixedMoment = kMoment, .release = case_.release}),
        before_(std::filesystem::current_path()) {
    if (case_.hasMessages) host_.useMessageBytes(case_.messageBytes);
    // The reports show the path that the writer was given: a bare name keeps the golden files free of this machine's.
    std::filesystem::current_path(platform::toUtf8(host_.folder()));
  }
  ~PointsGolden() override { std::filesystem::current_path(before_); }

  [[nodiscard]] static std::string caseFile(const std::string& name) { return "points/" + GetParam() + "/" + name; }
  [[nodiscard]] std::string written(const CString& fileName) const {
    return test::readBytes(platform::toUtf8(fileName));
  }

  ReportCase case_;
  test::FakeHost host_;
  std::filesystem::path before_;
};

TEST_P(PointsGolden, TextIsRightToTheByte) {
  const CString fileName = case_.stem + L".txt";
  writePointsAscii(fileName, case_.rows);
  EXPECT_TRUE(test::matchesGolden(written(fileName), caseFile("expected.txt")));
}

TEST_P(PointsGolden, PageIsRightToTheByte) {
  const CString fileName = case_.stem + L".html";
  EXPECT_TRUE(writePointsHtml(fileName, case_.rows));
  EXPECT_TRUE(test::matchesGolden(written(fileName), caseFile("expected.html")));
}

TEST_P(PointsGolden, WorkbookGetsTheRightCellsInOrder) {
  const auto record = std::make_shared<test::ExcelRecord>();
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_TRUE(writePointsExcel(case_.stem + L".xls", case_.rows));
  EXPECT_TRUE(test::matchesGolden(test::cellLog(*record), caseFile("expected.cells")));
}

INSTANTIATE_TEST_SUITE_P(Case, PointsGolden, testing::ValuesIn(kCases), [](const auto& golden) {
  std::string name = golden.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace lvx::points
