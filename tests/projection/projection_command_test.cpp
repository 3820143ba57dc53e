#include "projection/projection_command.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
#include "host/picking.h"
#include "platform/utf8.h"
#include "projection/projection_dialog.h"
#include "report_drawing/report_drawing.h"

namespace lvx::projection {
namespace {

using framework::CString;
using host::BoxAnswer;
using projection::CMyDialog1;
using windowless::DialogState;
using Kind = test::PickingRunTime::Kind;

class ProjectionCommandTest : public testing::Test, public test::ReportDrawing {
 protected:
  ProjectionCommandTest() : ReportDrawing({.fixedMoment = 0}) {
    host.useMessageBytes(
        "109 *none*\r\n110 pick axis\r\n111 no axis\r\n112 pick ground\r\n113 no ground\r\n"
        "227 overwrite?\r\n228 in use\r\n229 no folder\r\n");
    const auto site = drawing.addSite(L"S");
    alignment(site, L"A", 0xA);
    alignment(site, L"B", 0xB);
    surface(L"ground", 0x51);
    surface(L"rock", 0x52);
  }

  /// An alignment with one group "g" of one line.
  void alignment(const host::Ref<test::FakeSite>& site, const CString& name, std::uint64_t handle) {
    addAlignment(site, name, handle)->addGroup(L"g")->addLine(name + L"-1", 10.0, {{10, 5}, {10, -5}});
  }

  void surface(const CString& name, std::uint64_t handle) {
    const auto made = drawing.addSurface(name);
    made->handleText = handleText(handle);
    made->sampleEnds([](double, double) { return 100.0; });
    runTime.addObject(host::kClassSurface, handle);
  }
};

constexpr int kAscii = host::kIdCheckAscii;
constexpr int kExcel = host::kIdCheckExcel;
constexpr int kHtml = host::kIdCheckHtml;

TEST_F(ProjectionCommandTest, WritesTheTickedFormsAndGivesEverythingBack) {
  const auto references = drawing.document.use_count();
  user.steps = {okWith({kAscii, kHtml})};
  runProjectionReport(host);
  EXPECT_NE(fileText(L".txt").find("A-1   0+010.000\r\n    -5.000   100.000\r\n     0.000   100.000\r\n"),
            std::string::npos);
  EXPECT_NE(fileText(L".html").find("A-1"), std::string::npos);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(drawing.document.use_count(), references);
  EXPECT_EQ(companion.releases, 1);
}

TEST_F(ProjectionCommandTest, LeavesNoFileAndNoRecordAfterCancel) {
  user.steps = {click(host::kIdCancel)};
  runProjectionReport(host);
  EXPECT_FALSE(stands(L".txt"));
  EXPECT_EQ(user.openings, 1U);
  EXPECT_EQ(companion.releases, 1);
}

TEST_F(ProjectionCommandTest, WritesNothingWithoutAWordWhereNoFormIsTicked) {
  user.steps = {okWith({})};
  runProjectionReport(host);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_TRUE(host.users().boxes.empty());
}

TEST_F(ProjectionCommandTest, ReturnsToTheDialogWithTheFormerSelectionAfterEscape) {
  user.steps = {[](DialogState& state) {
                  state.userSelects(host::kIdAlignments, L"B");
                  state.userClicks(host::kIdPickAlignment);
                },
                [](DialogState& state) {
                  EXPECT_EQ(state.selection(host::kIdAlignments), 1);
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Escape, 0}};
  runProjectionReport(host);
  EXPECT_EQ(user.openings, 2U);
  EXPECT_EQ(runTime.prompts, std::vector<CString>{L"pick axis"});
}

TEST_F(ProjectionCommandTest, SelectsThePickedAlignmentAndSurface) {
  user.steps = {click(host::kIdPickAlignment), click(host::kIdPickSurface), [](DialogState& state) {
                  EXPECT_EQ(state.rowText(host::kIdAlignments, state.selection(host::kIdAlignments)), L"B");
                  EXPECT_EQ(state.rowText(host::kIdSurfaces, state.selection(host::kIdSurfaces)), L"rock");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xB}, {Kind::Object, 0x52}};
  runProjectionReport(host);
  EXPECT_EQ(user.openings, 3U);
  EXPECT_EQ(runTime.prompts, (std::vector<CString>{L"pick axis", L"pick ground"}));
}

TEST_F(ProjectionCommandTest, PromptsAgainAfterAPickOfTheWrongClassWithoutReturningToTheDialog) {
  user.steps = {click(host::kIdPickSurface)};
  runTime.picks = {{Kind::Object, 0xA}, {Kind::Escape, 0}};
  runProjectionReport(host);
  EXPECT_EQ(runTime.prompts.size(), 2U);
  EXPECT_EQ(host.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{{L"no ground", host::BoxButtons::Ok, host::BoxIcon::Stop}}));
}

TEST_F(ProjectionCommandTest, LooksAPickedAlignmentsPositionUpInTheOtherList) {
  // The overall list: Loose, A, B, C. Site T holds C at position 0, which is where Loose stands in the overall list.
  alignment(nullptr, L"Loose", 0x10);
  alignment(drawing.addSite(L"T"), L"C", 0xC);
  alignment(drawing.database->siteList->items.back(), L"D", 0xD);
  user.steps = {click(host::kIdPickAlignment), [](DialogState& state) {
                  EXPECT_EQ(state.rowText(host::kIdSites, state.selection(host::kIdSites)), L"T");
                  EXPECT_EQ(state.rowText(host::kIdAlignments, state.selection(host::kIdAlignments)), L"C")
                      << "D was picked; its position names A in the other list, which T hasn't got";
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xD}};
  runProjectionReport(host);
}

TEST_F(ProjectionCommandTest, TakesAnAlignmentThatNoSiteHoldsForAPickThatSelectsNothing) {
  runTime.addObject(host::kClassAlignment, 0xEE);
  user.steps = {click(host::kIdPickAlignment)};
  runTime.picks = {{Kind::Object, 0xEE}, {Kind::Object, 0xB}};
  runProjectionReport(host);
  EXPECT_EQ(runTime.prompts.size(), 1U);
}

TEST_F(ProjectionCommandTest, TellsThatAStemHasNoFolder) {
  user.steps = {okWith({kAscii}, L"road")};
  runProjectionReport(host);
  EXPECT_EQ(host.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
  EXPECT_EQ(user.openings, 1U);
}

TEST_F(ProjectionCommandTest, EndsWithoutAWordWhereTheFolderIsMissing) {
  user.steps = {okWith({kAscii, kExcel, kHtml}, host.folder() + L"missing" + host.folder().back() + L"road")};
  runProjectionReport(host);
  EXPECT_TRUE(host.users().boxes.empty());
  EXPECT_EQ(user.openings, 1U);
}

TEST_F(ProjectionCommandTest, GoesOnToTheNextFormsWhereOneIsNotToBeOverwritten) {
  write(L".txt", "old");
  user.steps = {okWith({kAscii, kHtml})};
  host.users().answers = {BoxAnswer::No};
  runProjectionReport(host);
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, SkipsAWorkbookThatIsHeldOpenAndGoesOnToThePage) {
  std::filesystem::create_directory(platform::toUtf8(stem() + L".xls"));
  user.steps = {okWith({kExcel, kHtml})};
  host.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Cancel};
  runProjectionReport(host);
  EXPECT_EQ(host.users().boxes.size(), 3U);
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, LeavesNoWorkbookWhereTheFormerOneWasGivenUpAndTheProgramIsMissing) {
  write(L".xls", "old");
  user.steps = {okWith({kExcel, kHtml})};
  host.users().answers = {BoxAnswer::Yes};
  runProjectionReport(host);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(host.users().boxes.back().text, L"Couldn't start Excel and get Application object.");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, GivesEverythingBackWhenAnExceptionEndsIt) {
  drawing.document->surfaceList->items[0]->sample = [](const auto&) { return host::HostArray<double>::none(); };
  const auto references = drawing.document.use_count();
  user.steps = {okWith({kAscii})};
  EXPECT_THROW(runProjectionReport(host), framework::AutomationException);
  EXPECT_EQ(drawing.document.use_count(), references);
  EXPECT_EQ(companion.releases, 1);
  EXPECT_FALSE(stands(L".txt"));
}

TEST_F(ProjectionCommandTest, AddsItsExtensionBehindOneThatTheUserTyped) {
  user.steps = {okWith({kAscii}, stem() + L".txt")};
  runProjectionReport(host);
  EXPECT_TRUE(stands(L".txt.txt"));
}

}  // namespace
}  // namespace lvx::projection
