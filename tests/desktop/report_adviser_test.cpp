// What the window says around a report that the report doesn't say.
#include "advice/exception_advice.h"
#include "civil/reversible_change.h"
#include "desktop/panels/notice_bar.h"
#include "desktop/shell/edits.h"
#include "drawing_parts.h"
#include "platform/utf8.h"
#include "report_user.h"
#include "services/messages.h"

namespace lvx::test {
namespace {

std::string noticeOf(const ProgramWindow& program) {
  return onGui([&] {
    const auto* const bar = program.window->findChild<desktop::NoticeBar*>(QStringLiteral("noticeBar"));
    return bar->isVisible() ? bar->text().toStdString() : std::string();
  });
}

TEST(ReportAdviser, TellsOfTheUnitAndOfPointsThatLieElsewhereBeforeTheReport) {
  const TemporaryFolder folder;
  const std::string far = "<CgPoints name=\"Far\"><CgPoint name=\"1\" desc=\"TREE\">90000 20 100</CgPoint></CgPoints>";
  ReportUser user(writeDrawing(folder, "far.xml", drawingIn("USSurveyFoot", kRoad + far)));
  user.start("lvx_Report_Points", host::kPointsDialog);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(user.program.waitUntilSaid("Warning: The drawing's unit of length is USSurveyFoot"));
  EXPECT_TRUE(user.program.waitUntilSaid("alignment 'Road' (x 50.000 to 50.000, y 0.000 to 100.000) don't meet."));
  EXPECT_NE(noticeOf(user.program).find("USSurveyFoot"), std::string::npos) << noticeOf(user.program);
  EXPECT_NE(noticeOf(user.program).find("(1 more in the console)"), std::string::npos) << noticeOf(user.program);

  // The next command begins without it.
  user.start("lvx_Report_Points", host::kPointsDialog);
  EXPECT_EQ(noticeOf(user.program), "");
  user.press(host::kIdCancel);
  ASSERT_TRUE(user.waitForEnd());
}

TEST(ReportAdviser, TellsThatASiteIsTakenForTheAlignmentsOutsideAny) {
  const TemporaryFolder folder;
  std::string inSite = kRoad;
  inSite.replace(inSite.find("<Alignments>"), 12, "<Alignments name=\"*North\">");
  ReportUser user(writeDrawing(folder, "sites.xml", drawingIn("meter", kRoad + inSite + kPoints)));
  user.start("lvx_Report_Points", host::kPointsDialog);
  user.choose(host::kIdSites, "*North");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(user.program.waitUntilSaid("Warning: The reports take a site whose name begins with '*'"));
  EXPECT_NE(noticeOf(user.program).find("give the site another name"), std::string::npos) << noticeOf(user.program);
}

TEST(ReportAdviser, SaysNothingOfAReportThatIsAsItSeems) {
  ReportUser user;
  user.start("lvx_Report_Points", host::kPointsDialog);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_EQ(user.program.said().find("Warning"), std::string::npos) << user.program.said();
  EXPECT_EQ(noticeOf(user.program), "");
}

TEST(ReportAdviser, SaysWhatToChangeWhereAnExceptionEndedTheReport) {
  ReportUser user;
  onGui([&] {
    const civil::AlignmentObject& road = user.alignment("Valley road");
    std::vector<civil::SampleLine> lines = road.sampleLineGroups.front().lines;
    const auto message = advice::messagesOf(user.program.window->session().host());
    lines.front().name = platform::toUtf8(message(static_cast<std::uint32_t>(services::Message::VerticalIntersection)));
    user.program.window->edits().make(QStringLiteral("Lines"),
                                      civil::addingSampleLineGroup(road.handle, "Like a point", std::move(lines)));
  });
  user.start("lvx_Report_GLS", host::kGlsDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdSampleLineGroups, "Like a point");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  user.expectDialog(host::kAddSectionsDialog);
  user.press(host::kIdCancel);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(user.program.waitUntilSaid("ended by an exception"));
  EXPECT_TRUE(user.program.waitUntilSaid("taken for an intersection point of the profile"));
  EXPECT_NE(noticeOf(user.program).find("taken for an intersection point"), std::string::npos);
}

}  // namespace
}  // namespace lvx::test
