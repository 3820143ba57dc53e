#include "gls/gls_command.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_drawing.h"
#include "dialogs/dialog_services.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"
#include "gls/gls_dialog.h"
#include "host/dialog_controls.h"
#include "host/picking.h"
#include "platform/utf8.h"

namespace lvx::gls {
namespace {

using gls::CMyDialog3;
using host::BoxAnswer;
using testing::HasSubstr;
using windowless::DialogState;
using Boxes = std::vector<test::FakeUserInterface::Box>;
using Kind = test::PickingRunTime::Kind;

constexpr int kAscii = host::kIdCheckAscii;
constexpr int kExcel = host::kIdCheckExcel;
constexpr int kHtml = host::kIdCheckHtml;

constexpr std::uint64_t kAxisA = 0xA;
constexpr std::uint64_t kAxisB = 0xB;
constexpr std::uint64_t kProfileP1 = 0x51;
constexpr std::uint64_t kProfileP2 = 0x52;
constexpr std::uint64_t kProfileQ = 0x53;

/// A line of 100 and an arc of 50.
std::vector<host::taxel> elements() {
  host::taxel line;
  line.length = 100.0;
  host::taxel arc;
  arc.type = 1;
  arc.startRadius = arc.endRadius = 500.0;
  arc.endDirection = 0.1;
  arc.length = 50.0;
  return {line, arc};
}

/// Up by `grade` to station 75, level behind it, with a curve of 20 either way.
std::vector<host::tvert> profile(double grade) {
  std::vector<host::tvert> points(3);
  points[1].station = 75.0;
  points[1].elevation = 75.0 * grade;
  points[1].halfLength = 20.0;
  points[1].radius = 40.0 / grade;
  points[1].gradeIn = points[0].gradeOut = grade;
  points[2].station = 150.0;
  points[2].elevation = points[1].elevation;
  return points;
}

/// Site "S" holds the axes "A" (profiles p1 and p2) and "B" (q), each with one group of one sample line.
class GlsCommandTest : public testing::Test, public CommandDrawing {
 protected:
  GlsCommandTest() : CommandDrawing({.fixedMoment = 0}) {
    host.useMessageBytes(
        "109 *none*\r\n110 pick axis\r\n111 no axis\r\n112 pick profile\r\n227 overwrite?\r\n228 in use\r\n"
        "229 no folder\r\n324 Rise\r\n325 Fall\r\n331 BC\r\n332 EC\r\n333 BVC\r\n334 PVI\r\n335 EVC\r\n342 no "
        "profile\r\n"
        "346 n/a\r\n");
    site_ = drawing.addSite(L"S");
    axis(site_, L"A", kAxisA, {{L"p1", kProfileP1, profile(0.02)}, {L"p2", kProfileP2, profile(0.04)}});
    axis(site_, L"B", kAxisB, {{L"q", kProfileQ, profile(0.06)}});
  }

  host::Ref<test::FakeAlignment> axis(const host::Ref<test::FakeSite>& site, const CString& name, std::uint64_t handle,
                                      std::vector<CommandDrawing::Profile> profiles) {
    const auto made = addAlignment(site, name, {handle, 0.0, elements(), std::move(profiles)});
    made->addGroup(L"g")->addLine(name + L"-1", 30.0);
    return made;
  }

  /// The selected rows of site, alignment and profile.
  static CString shown(const DialogState& state) {
    CString text;
    for (const int list : {host::kIdSites, host::kIdAlignments, host::kIdProfiles})
      text += (text.empty() ? L"" : L" ") + state.rowText(list, state.selection(list));
    return text;
  }

  host::Ref<test::FakeSite> site_;
};

// ---------------------------------------------------------------- the way through

TEST_F(GlsCommandTest, WritesTheTickedFormsAndGivesEverythingBack) {
  const auto references = drawing.document.use_count();
  user.steps = {okWith({kAscii, kHtml})};
  runGlsReport(host);
  EXPECT_THAT(fileText(L".txt"), HasSubstr("| A-1  |  0+030.000|         |"));
  EXPECT_THAT(fileText(L".txt"), HasSubstr("| PVI1 |  0+075.000|         |"));
  EXPECT_THAT(fileText(L".html"), HasSubstr("<td align=\"center\">PVI1</td><td align=\"right\">0+075.000</td>"));
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(user.questions, 1);
  EXPECT_EQ(drawing.document.use_count(), references);
  EXPECT_EQ(companion.releases, 1);
  EXPECT_EQ(companion.treesFreed, 1);
}

TEST_F(GlsCommandTest, LeavesNoFileAndAddsNoSectionAfterCancel) {
  roadway.addCorridor(L"Road")->addBaseline()->addRegion({0.0});
  user.answer = host::kIdOk;
  user.steps = {click(host::kIdCancel)};
  runGlsReport(host);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_EQ(user.openings, 1U);
  EXPECT_EQ(user.questions, 0);
  EXPECT_TRUE(roadway.log.empty());
  EXPECT_EQ(companion.releases, 1);
}

TEST_F(GlsCommandTest, AddsSectionsAtTheUsersWordAlsoWhereNoFormIsTicked) {
  const auto baseline = roadway.addCorridor(L"Road")->addBaseline();
  baseline->alignmentObject = site_->alignmentList->items[0];
  baseline->addRegion({30.0});
  user.answer = host::kIdOk;
  user.steps = {okWith({})};
  runGlsReport(host);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_TRUE(host.users().boxes.empty());
  EXPECT_EQ(roadway.log, (test::RoadwayLog{L"add 55.000000 BVC1", L"add 75.000000 PVI1", L"add 95.000000 EVC1",
                                           L"add 100.000000 BC1", L"add 150.000000 EC1", L"rebuild Road"}));
}

TEST_F(GlsCommandTest, ShowsWhatTheCorridorsSay) {
  const auto baseline = roadway.addCorridor(L"Road")->addBaseline();
  baseline->alignmentObject = site_->alignmentList->items[0];
  baseline->addRegion({30.0});
  baseline->addRoad(30.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.8}});
  user.steps = {okWith({kAscii})};
  runGlsReport(host);
  EXPECT_THAT(fileText(L".txt"), HasSubstr("|  -2.5|  -5.0|  4.00|  4.00|  -0.100|  -0.200|   9.900|   9.800|"));
  EXPECT_THAT(fileText(L".txt"), HasSubstr("|   n/a|"));
}

TEST_F(GlsCommandTest, AsksForTheProfileOfTheCorridorsNameAfterAChangeOfAlignment) {
  roadway.addCorridor(L"Road")->addBaseline()->alignmentObject = site_->alignmentList->items[0];
  user.steps = {[this](DialogState& state) {
    state.userSelects(host::kIdAlignments, L"B");
    okWith({kAscii})(state);
  }};
  EXPECT_THROW(runGlsReport(host), framework::InvalidArgumentException);
  EXPECT_FALSE(stands(L".txt"));

  user.openings = 0;
  user.steps = {[this](DialogState& state) {
    state.userSelects(host::kIdAlignments, L"B");
    state.userSelects(host::kIdProfiles, L"q");
    okWith({kAscii})(state);
  }};
  runGlsReport(host);
  EXPECT_THAT(fileText(L".txt"), HasSubstr("Rise 6.00%"));
}

// ---------------------------------------------------------------- picks

TEST_F(GlsCommandTest, ReturnsToTheDialogWithTheFormerSelectionAfterEscape) {
  for (const int pick : {host::kIdPickAlignment, host::kIdPickProfile}) {
    user.openings = 0;
    user.steps = {[pick](DialogState& state) {
                    state.userSelects(host::kIdProfiles, L"p2");
                    state.userClicks(pick);
                  },
                  [](DialogState& state) {
                    EXPECT_EQ(shown(state), L"S A p2");
                    state.userCloses();
                  }};
    runTime.picks = {{Kind::Escape, 0}};
    runGlsReport(host);
    EXPECT_EQ(user.openings, 2U);
  }
  EXPECT_EQ(runTime.prompts, (std::vector<CString>{L"pick axis", L"pick profile"}));
}

TEST_F(GlsCommandTest, SelectsThePickedAlignment) {
  user.steps = {click(host::kIdPickAlignment), [](DialogState& state) {
                  EXPECT_EQ(shown(state), L"S B q");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, kAxisB}};
  runGlsReport(host);
  EXPECT_EQ(runTime.manager.locks, 1);
  EXPECT_EQ(runTime.manager.unlocks, 1);
}

TEST_F(GlsCommandTest, LooksAPickedAlignmentsPositionUpInTheOtherList) {
  // The overall list: A, B, C, D. Site T holds D at position 1, which is where B stands in the overall list.
  const auto other = drawing.addSite(L"T");
  axis(other, L"C", 0xC, {{L"r", 0x54, profile(0.01)}});
  axis(other, L"D", 0xD, {{L"s", 0x55, profile(0.01)}});
  user.steps = {click(host::kIdPickAlignment), [](DialogState& state) {
                  EXPECT_EQ(shown(state), L"T C r") << "T has no B, so its first alignment stands in";
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xD}};
  runGlsReport(host);
}

TEST_F(GlsCommandTest, SelectsThePickedProfileWithItsSiteAndAlignment) {
  const auto other = drawing.addSite(L"T");
  axis(other, L"C", 0xC, {{L"r", 0x54, profile(0.01)}});
  axis(other, L"D", 0xD, {{L"s1", 0x55, profile(0.01)}, {L"s2", 0x56, profile(0.02)}});
  user.steps = {click(host::kIdPickProfile), [](DialogState& state) {
                  EXPECT_EQ(shown(state), L"T D s2");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0x56}};
  runGlsReport(host);
}

TEST_F(GlsCommandTest, TakesObjectsThatNoListHoldsForPicksThatSelectNothing) {
  runTime.addObject(host::kClassAlignment, 0xEE);
  runTime.addObject(host::kClassProfile, 0xEF);
  user.steps = {click(host::kIdPickAlignment), click(host::kIdPickProfile), [](DialogState& state) {
                  EXPECT_EQ(shown(state), L"S A p1");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xEE}, {Kind::Object, 0xEF}};
  runGlsReport(host);
  EXPECT_EQ(runTime.prompts.size(), 2U);
}

TEST_F(GlsCommandTest, PromptsAgainAfterAPickOfTheWrongClassWithoutReturningToTheDialog) {
  user.steps = {click(host::kIdPickAlignment), click(host::kIdPickProfile)};
  runTime.picks = {{Kind::Object, kProfileP1}, {Kind::Unopenable, kAxisA}, {Kind::Escape, 0},
                   {Kind::Object, kAxisA},     {Kind::Unidentified, 0},    {Kind::Escape, 0}};
  runGlsReport(host);
  EXPECT_EQ(host.users().boxes, (Boxes{{L"no axis", host::BoxButtons::Ok, host::BoxIcon::Stop},
                                       {L"no profile", host::BoxButtons::Ok, host::BoxIcon::Stop}}));
  EXPECT_EQ(runTime.prompts, (std::vector<CString>{L"pick axis", L"pick axis", L"pick axis", L"pick profile",
                                                   L"pick profile", L"pick profile"}));
  EXPECT_EQ(user.openings, 3U);
  EXPECT_EQ(runTime.openObjects(), 0);
}

TEST_F(GlsCommandTest, OpensTheDialogAgainAfterAnyOtherCodeAndEndsWithTheCloseMarks) {
  user.steps = {[](DialogState& state) { state.end(77); }, [](DialogState& state) { state.end(3); }};
  runGlsReport(host);
  EXPECT_EQ(user.openings, 2U);
  EXPECT_EQ(user.questions, 0);
}

// ---------------------------------------------------------------- the files

TEST_F(GlsCommandTest, TellsThatAStemHasNoFolder) {
  user.steps = {okWith({kAscii}, L"road")};
  runGlsReport(host);
  EXPECT_EQ(host.users().boxes, (Boxes{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
  EXPECT_EQ(user.openings, 1U);
  EXPECT_EQ(user.questions, 0);
}

TEST_F(GlsCommandTest, TellsTheSameOfAStemThatWasEmptiedWithOkStillEnabled) {
  user.steps = {[](DialogState& state) {
    state.userTypes(host::kIdOutputStem, L"/r/x");
    state.userTypes(host::kIdOutputStem, L"");
    state.userClicks(host::kIdOk);
  }};
  runGlsReport(host);
  EXPECT_EQ(host.users().boxes, (Boxes{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
}

TEST_F(GlsCommandTest, EndsWithoutAWordBeforeAnyComputingWhereTheFolderIsMissing) {
  user.steps = {okWith({kAscii, kExcel, kHtml}, host.folder() + L"missing" + host.folder().back() + L"road")};
  runGlsReport(host);
  EXPECT_TRUE(host.users().boxes.empty());
  EXPECT_EQ(user.questions, 0);
}

TEST_F(GlsCommandTest, GoesOnToTheNextFormsWhereOneIsNotToBeOverwritten) {
  write(L".txt", "old");
  user.steps = {okWith({kAscii, kHtml})};
  host.users().answers = {BoxAnswer::No};
  runGlsReport(host);
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_TRUE(stands(L".html"));
  EXPECT_EQ(host.users().boxes,
            (Boxes{{stem() + L".txt overwrite?", host::BoxButtons::YesNo, host::BoxIcon::Question}}));
}

TEST_F(GlsCommandTest, RemovesAnExistingWorkbookBeforeItsWriterRuns) {
  write(L".xls", "old");
  bool stoodAtStart = true;
  const auto record = std::make_shared<test::ExcelRecord>();
  host.setAutomationFactory([&](const CString& programId) {
    stoodAtStart = stands(L".xls");
    return test::recordedBy(record)(programId);
  });
  user.steps = {okWith({kExcel})};
  host.users().answers = {BoxAnswer::Yes};
  runGlsReport(host);
  EXPECT_FALSE(stoodAtStart);
  EXPECT_EQ(record->finishedAs, stem() + L".xls");
}

TEST_F(GlsCommandTest, SkipsAWorkbookThatIsHeldOpenAndGoesOnToThePage) {
  std::filesystem::create_directory(platform::toUtf8(stem() + L".xls"));
  user.steps = {okWith({kExcel, kHtml})};
  host.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Cancel};
  runGlsReport(host);
  EXPECT_EQ(host.users().boxes.size(), 3U);
  EXPECT_EQ(host.users().boxes.back().text, stem() + L".xls in use");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(GlsCommandTest, GivesEverythingBackWhenAnExceptionEndsIt) {
  axis(site_, L"bare", 0xC, {{L"p", 0x60, {}}});
  const auto references = drawing.document.use_count();
  user.steps = {[this](DialogState& state) {
    state.userSelects(host::kIdAlignments, L"bare");
    okWith({kAscii})(state);
  }};
  EXPECT_THROW(runGlsReport(host), framework::InvalidArgumentException);
  EXPECT_EQ(drawing.document.use_count(), references);
  EXPECT_EQ(companion.releases, 1);
  EXPECT_FALSE(stands(L".txt"));
}

}  // namespace
}  // namespace lvx::gls
