#include "support/golden.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "case_maker.h"
#include "doubles/fake_host.h"
#include "platform/utf8.h"
#include "projection/projection_ascii.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/projection_xml.h"
#include "support/cell_log.h"

namespace lvx::projection {
namespace {

/// 2026-03-12 07:08:09 UTC: every field of the header but the year begins with a nought.
constexpr std::int64_t kMoment = 1773299289;

/// The folders below tests/golden/projection, each with its `about` line in case.json.
const std::string kCases[] = {"sl1",         "empty-list",      "misses-surface",     "one-side",
                              "odd-names",   "wide-numbers",    "negative-stations",  "beyond-latin-1",
                              "no-messages", "german-messages", "percent-in-messages"};

class ProjectionGolden : public testing::TestWithParam<std::string> {
 protected:
  ProjectionGolden()
      : case_(test::readBytes(test::goldenFolder() + "/" + caseFile("case.json"))),
        host_({.fixedMoment = kMoment, .release = case_.release}),
        before_(std::filesystem::current_path()) {
    if (case_.hasMessages) host_.useMessageBytes(case_.messageBytes);
    // The reports show the path that the writer was given: a bare name keeps the golden files free of this machine's.
    std::filesystem::current_path(platform::toUtf8(host_.folder()));
  }
  ~ProjectionGolden() override { std::filesystem::current_path(before_); }

  [[nodiscard]] static std::string caseFile(const std::string& name) { return "projection/" + GetParam() + "/" + name; }
  [[nodiscard]] std::string written(const CString& fileName) const {
    return test::readBytes(platform::toUtf8(fileName));
  }

  ReportCase case_;
  test::FakeHost host_;
  std::filesystem::path before_;
};

TEST_P(ProjectionGolden, TextIsRightToTheByte) {
  const CString fileName = case_.stem + L".txt";
  writeProjectionAscii(fileName, case_.alignment, case_.lines.get());
  EXPECT_TRUE(test::matchesGolden(written(fileName), caseFile("expected.txt")));
}

TEST_P(ProjectionGolden, PageIsRightToTheByte) {
  const CString fileName = case_.stem + L".html";
  EXPECT_TRUE(writeProjectionHtml(fileName, case_.alignment, case_.lines.get()));
  EXPECT_TRUE(test::matchesGolden(written(fileName), caseFile("expected.html")));
}

TEST_P(ProjectionGolden, DocumentIsRightToTheByte) {
  const CString fileName = case_.stem + L".xml";
  tcentreRows centres;
  centres.count = centres.capacity = static_cast<std::int32_t>(case_.centres.size());
  centres.items = new tcentreRow[case_.centres.size()];
  for (std::size_t i = 0; i < case_.centres.size(); ++i)
    centres.items[i] = {case_.centres[i].offset, case_.centres[i].elevation};
  const tcentreRow* emptyStorage = centres.capacity < 1 ? centres.items : nullptr;
  EXPECT_TRUE(writeProjectionXml(fileName, case_.alignment, case_.lines.get(), centres));
  delete[] emptyStorage;  // of a capacity below 1 the writer frees nothing
  EXPECT_TRUE(test::matchesGolden(written(fileName), caseFile("expected.xml")));
}

TEST_P(ProjectionGolden, WorkbookGetsTheRightCellsInOrder) {
  const auto record = std::make_shared<test::ExcelRecord>();
  host_.setAutomationFactory(test::recordedBy(record));
  EXPECT_TRUE(writeProjectionExcel(case_.stem + L".xls", case_.alignment, case_.lines.get()));
  EXPECT_TRUE(test::matchesGolden(test::cellLog(*record), caseFile("expected.cells")));
}

INSTANTIATE_TEST_SUITE_P(Case, ProjectionGolden, testing::ValuesIn(kCases), [](const auto& golden) {
  std::string name = golden.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace lvx::projection
