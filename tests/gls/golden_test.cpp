#include "support/golden.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "gls/gls_ascii.h"
#include "gls/gls_excel.h"
#include "gls/gls_html.h"
#include "golden_case.h"
#include "platform/utf8.h"
#include "support/cell_log.h"

namespace lvx::gls {
namespace {

/// The folders below tests/golden/gls whose reports are made row by row, each with its `about` line in case.json.
const std::string kCases[] = {"empty-report",   "single-row",  "percent-signs",
                              "beyond-latin-1", "no-messages", "blocks-of-one-row"};

/// What writers make of rows that stand.
class GlsRowsGolden : public testing::TestWithParam<std::string> {
 protected:
  GlsRowsGolden()
      : case_(GetParam()),
        host_({.fixedMoment = kGoldenMoment, .release = case_.release()}),
        before_(std::filesystem::current_path()) {
    case_.useMessages(host_);
    fillReport(case_.content(), report_);
    // The reports show the path that the writer was given: a short name keeps the golden files free of this machine's.
    std::filesystem::current_path(platform::toUtf8(host_.folder()));
  }
  ~GlsRowsGolden() override { std::filesystem::current_path(before_); }

  GoldenCase case_;
  test::FakeHost host_;
  std::filesystem::path before_;
  tglsReport report_;
};

TEST_P(GlsRowsGolden, TextIsRightToTheByte) {
  writeGlsAscii(L"./report.txt", L"Axis 1", report_);
  EXPECT_TRUE(test::matchesGolden(test::readBytes("report.txt"), case_.file("expected.txt")));
}

TEST_P(GlsRowsGolden, PageIsRightToTheByte) {
  EXPECT_TRUE(writeGlsHtml(L"./report.html", L"Axis 1", report_));
  EXPECT_TRUE(test::matchesGolden(test::readBytes("report.html"), case_.file("expected.html")));
}

TEST_P(GlsRowsGolden, WorkbookGetsTheRightCellsInOrder) {
  const auto record = std::make_shared<test::ExcelRecord>();
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_TRUE(writeGlsExcel(L"./report.xls", L"Axis 1", report_));
  EXPECT_TRUE(test::matchesGolden(cellLog(*record), case_.file("expected.cells")));
}

INSTANTIATE_TEST_SUITE_P(Case, GlsRowsGolden, testing::ValuesIn(kCases), [](const auto& golden) {
  std::string name = golden.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace lvx::gls
