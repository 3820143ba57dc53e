#include "points/points_command.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "doubles/recording_excel.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
#include "host/picking.h"
#include "platform/utf8.h"
#include "points/points_dialog.h"
#include "report_drawing/report_drawing.h"

namespace lvx::points {
namespace {

using host::BoxAnswer;
using points::CExportPointsDlg;
using windowless::DialogState;
using Kind = test::PickingRunTime::Kind;
using Boxes = std::vector<test::FakeUserInterface::Box>;

constexpr int kGroups = host::kIdPointGroups;
constexpr int kCount = host::kIdPointCount;
constexpr int kAscii = host::kIdCheckAscii;
constexpr int kExcel = host::kIdCheckExcel;
constexpr int kHtml = host::kIdCheckHtml;

class PointsCommandTest : public testing::Test, public test::ReportDrawing {
 protected:
  PointsCommandTest() : ReportDrawing({.fixedMoment = 0}) {
    host.useMessageBytes(
        "109 *none*\r\n110 pick axis\r\n111 no axis\r\n222 add points\r\n223 remove points\r\n224 point\r\n"
        "225 points\r\n226 picked\r\n227 overwrite?\r\n228 in use\r\n229 no folder\r\n");
    const auto site = drawing.addSite(L"S");
    addAlignment(site, L"A", 0xA);
    addAlignment(site, L"B", 0xB);
    for (const std::int32_t number : {1, 2, 3}) {
      // Descending along the axis, so that every report has to sort.
      drawing.addPoint(number, 100.0 - number, 0.0)->id.value = handleOf(number);
      runTime.addObject(host::kClassPoint, handleOf(number));
    }
    drawing.addPointGroup(L"Survey", {1, 2});
    drawing.addPointGroup(L"Empty", {});
  }

  static std::uint64_t handleOf(std::int32_t number) { return 0x100 + static_cast<std::uint64_t>(number); }

  void select(std::initializer_list<std::int32_t> numbers) {
    std::vector<std::uint64_t> handles;
    for (const std::int32_t number : numbers) handles.push_back(handleOf(number));
    runTime.selections.emplace_back(std::move(handles));
  }

  /// Runs the command, which has to give everything back whatever comes of it.
  void run() {
    const auto references = drawing.document.use_count();
    runPointsReport(host);
    expectEverythingGivenBack(references);
  }
  void expectEverythingGivenBack(long references) {
    EXPECT_EQ(drawing.document.use_count(), references);
    EXPECT_EQ(companion.releases, companion.attachments);
    EXPECT_EQ(companion.treesFreed, 1);
    EXPECT_EQ(runTime.selectionSets(), 0U);
    EXPECT_EQ(runTime.openFilterLists(), 0);
    EXPECT_EQ(runTime.openObjects(), 0);
    EXPECT_EQ(runTime.manager.locks, runTime.manager.unlocks);
  }

  /// First cells of the text form's rows: the numbers in their order.
  [[nodiscard]] std::vector<std::string> numbers() {
    const std::string text = fileText(L".txt");
    std::vector<std::string> all;
    std::size_t start = 0;
    for (int line = 0; start < text.size(); ++line) {
      const std::string cell = text.substr(start, 14);
      if (line > 9) all.push_back(cell.substr(cell.find_last_of(' ') + 1));
      start = text.find("\r\n", start) + 2;
    }
    return all;
  }
};

using Cells = std::vector<std::string>;

TEST_F(PointsCommandTest, WritesTheTickedFormsInOrderOfStation) {
  user.steps = {okWith({kAscii, kHtml})};
  run();
  EXPECT_EQ(numbers(), (Cells{"2", "1"}));
  EXPECT_NE(fileText(L".html").find("<td>0+098.000</td>"), std::string::npos);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_TRUE(host.users().boxes.empty());
}

TEST_F(PointsCommandTest, LeavesNoFileAfterCancel) {
  user.steps = {click(host::kIdCancel)};
  run();
  EXPECT_EQ(user.openings, 1U);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
}

TEST_F(PointsCommandTest, EndsWhereTheDialogIsClosedByItsMark) {
  user.codes = {3};
  run();
  EXPECT_EQ(user.openings, 1U);
}

TEST_F(PointsCommandTest, OpensTheDialogAgainForAnyCodeThatMeansNothing) {
  user.codes = {0, 4, 125, -1, 2};
  run();
  EXPECT_EQ(user.openings, 5U);
}

TEST_F(PointsCommandTest, WritesNothingWithoutAWordWhereNoFormIsTicked) {
  user.steps = {okWith({})};
  run();
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_TRUE(host.users().boxes.empty());
}

// ---------------------------------------------------------------- output path

TEST_F(PointsCommandTest, TellsThatAStemHasNoFolderAndGivesTheDialogBackWithIt) {
  user.steps = {okWith({kAscii}, L"road"), [](DialogState& state) {
                  EXPECT_EQ(state.text(host::kIdOutputStem), L"road");
                  EXPECT_TRUE(state.isTicked(kExcel)) << "an opening ticks all forms again";
                  state.userCloses();
                }};
  run();
  EXPECT_EQ(host.users().boxes, (Boxes{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
  EXPECT_EQ(user.openings, 2U);
}

TEST_F(PointsCommandTest, GivesTheDialogBackWithoutAWordWhereTheFolderIsMissing) {
  user.steps = {okWith({kAscii}, host.folder() + L"missing" + host.folder().back() + L"road"), okWith({kAscii})};
  run();
  EXPECT_TRUE(host.users().boxes.empty());
  EXPECT_EQ(user.openings, 2U);
  EXPECT_TRUE(stands(L".txt"));
}

TEST_F(PointsCommandTest, AddsItsExtensionBehindOneThatTheUserTyped) {
  user.steps = {okWith({kAscii}, stem() + L".txt")};
  run();
  EXPECT_TRUE(stands(L".txt.txt"));
}

// ---------------------------------------------------------------- no rows

TEST_F(PointsCommandTest, WritesAndAsksNothingWhereThereAreNoRows) {
  write(L".txt", "old");
  user.steps = {[this](DialogState& state) {
    state.userSelects(kGroups, L"Empty");
    okWith({kAscii, kExcel, kHtml})(state);
  }};
  run();
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_FALSE(stands(L".html"));
  EXPECT_TRUE(host.users().boxes.empty());
}

TEST_F(PointsCommandTest, WritesNothingWhereThePickedPointsAreChosenAndNoneArePicked) {
  user.steps = {[this](DialogState& state) {
    state.userSelects(kGroups, L"picked");
    okWith({kAscii, kHtml})(state);
  }};
  run();
  EXPECT_FALSE(stands(L".txt"));
  EXPECT_FALSE(stands(L".html"));
}

TEST_F(PointsCommandTest, WritesNothingInADrawingWithoutAlignments) {
  for (const auto& site : drawing.database->siteList->items) site->alignmentList->items.clear();
  user.steps = {okWith({kAscii, kExcel, kHtml})};
  run();
  EXPECT_EQ(user.openings, 1U);
  EXPECT_FALSE(stands(L".txt"));
}

// ---------------------------------------------------------------- files that stand

TEST_F(PointsCommandTest, GoesOnToTheNextFormsWhereOneIsNotToBeOverwritten) {
  write(L".txt", "old");
  const auto record = std::make_shared<test::ExcelRecord>();
  host.setAutomationFactory(test::recordedBy(record));
  user.steps = {okWith({kAscii, kExcel, kHtml})};
  host.users().answers = {BoxAnswer::No};
  run();
  EXPECT_EQ(host.users().boxes,
            (Boxes{{stem() + L".txt overwrite?", host::BoxButtons::YesNo, host::BoxIcon::Question}}));
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_EQ(record->finishedAs, stem() + L".xls");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, SkipsAWorkbookThatIsHeldOpenAndGoesOnToThePage) {
  std::filesystem::create_directory(platform::toUtf8(stem() + L".xls"));
  user.steps = {okWith({kExcel, kHtml})};
  host.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Cancel};
  run();
  ASSERT_EQ(host.users().boxes.size(), 3U);
  EXPECT_EQ(host.users().boxes[1], (test::FakeUserInterface::Box{stem() + L".xls in use", host::BoxButtons::RetryCancel,
                                                                 host::BoxIcon::Question}));
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, LeavesNoWorkbookWhereTheFormerOneWasGivenUpAndTheProgramIsMissing) {
  write(L".xls", "old");
  user.steps = {okWith({kExcel, kHtml})};
  host.users().answers = {BoxAnswer::Yes};
  run();
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(host.users().boxes.back().text, L"Couldn't start Excel and get Application object.");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, GivesEverythingBackWhenAnExceptionEndsIt) {
  const auto record = std::make_shared<test::ExcelRecord>();
  record->failFinish = true;
  host.setAutomationFactory(test::recordedBy(record));
  user.steps = {click(host::kIdPickPoints), okWith({kExcel, kHtml})};
  select({3});
  const auto references = drawing.document.use_count();
  EXPECT_THROW(runPointsReport(host), framework::AutomationException);
  expectEverythingGivenBack(references);
  EXPECT_FALSE(stands(L".html"));
}

// ---------------------------------------------------------------- picking an alignment

TEST_F(PointsCommandTest, SelectsThePickedAlignment) {
  user.steps = {click(host::kIdPickAlignment), [](DialogState& state) {
                  EXPECT_EQ(state.rowText(host::kIdAlignments, state.selection(host::kIdAlignments)), L"B");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xB}};
  run();
  EXPECT_EQ(runTime.prompts, std::vector<CString>{L"pick axis"});
  EXPECT_EQ(runTime.manager.lastLockMode, host::kLockForPick);
}

TEST_F(PointsCommandTest, PromptsAgainAfterAPickOfTheWrongClassUntilEscape) {
  user.steps = {click(host::kIdPickAlignment)};
  runTime.picks = {{Kind::Object, handleOf(1)}, {Kind::Unidentified, 0xA}, {Kind::Unopenable, 0xA}, {Kind::Escape, 0}};
  run();
  EXPECT_EQ(runTime.prompts.size(), 4U);
  EXPECT_EQ(host.users().boxes, (Boxes{{L"no axis", host::BoxButtons::Ok, host::BoxIcon::Stop}}));
  EXPECT_EQ(user.openings, 2U);
}

TEST_F(PointsCommandTest, LooksAPickedAlignmentsPositionUpInTheOtherList) {
  // The overall list: Loose, A, B, C, D. Site T holds D at position 1, where A stands in the overall list.
  addAlignment(nullptr, L"Loose", 0x10);
  const auto other = drawing.addSite(L"T");
  addAlignment(other, L"C", 0xC);
  addAlignment(other, L"D", 0xD);
  user.steps = {click(host::kIdPickAlignment), [](DialogState& state) {
                  EXPECT_EQ(state.rowText(host::kIdSites, state.selection(host::kIdSites)), L"T");
                  EXPECT_EQ(state.rowText(host::kIdAlignments, state.selection(host::kIdAlignments)), L"C");
                  state.userCloses();
                }};
  runTime.picks = {{Kind::Object, 0xD}};
  run();
}

TEST_F(PointsCommandTest, PicksNothingWithoutACurrentDocument) {
  runTime.manager.hasDocument = false;
  user.steps = {click(host::kIdPickAlignment)};
  runTime.picks = {{Kind::Object, 0xB}};
  run();
  EXPECT_TRUE(runTime.prompts.empty());
  EXPECT_EQ(user.openings, 2U);
}

// ---------------------------------------------------------------- picking points

TEST_F(PointsCommandTest, OpensOnThePickedPointsWithTheirNumber) {
  user.steps = {click(host::kIdPickPoints), [this](DialogState& state) {
                  EXPECT_EQ(state.rowText(kGroups, state.selection(kGroups)), L"picked");
                  EXPECT_EQ(state.text(kCount), L"3 points");
                  okWith({kAscii})(state);
                }};
  select({3, 1, 2});
  run();
  EXPECT_EQ(numbers(), (Cells{"3", "2", "1"}));
  ASSERT_EQ(runTime.asked.size(), 1U);
  EXPECT_EQ(runTime.asked[0].mode, L":$");
  EXPECT_EQ(runTime.asked[0].prompts.add, L"add points");
  EXPECT_EQ(runTime.asked[0].prompts.remove, L"remove points");
  ASSERT_EQ(runTime.asked[0].filter.size(), 1U);
  EXPECT_EQ(runTime.asked[0].filter[0].groupCode, host::kEntityStart);
  EXPECT_EQ(runTime.asked[0].filter[0].text, L"QMT_COGO_POINT");
  EXPECT_EQ(runTime.manager.locks, 0) << "only a pick of an alignment locks the document";
}

TEST_F(PointsCommandTest, ReplacesAnEarlierPickByALaterOne) {
  user.steps = {click(host::kIdPickPoints), click(host::kIdPickPoints), [this](DialogState& state) {
                  EXPECT_EQ(state.text(kCount), L"1 point");
                  okWith({kAscii})(state);
                }};
  select({1, 2});
  select({3});
  run();
  EXPECT_EQ(numbers(), Cells{"3"});
}

TEST_F(PointsCommandTest, ForgetsAnEarlierPickWhereALaterOneIsGivenUp) {
  user.steps = {click(host::kIdPickPoints), click(host::kIdPickPoints), [](DialogState& state) {
                  EXPECT_EQ(state.selection(kGroups), 0) << "the first row, as on a first opening";
                  EXPECT_EQ(state.text(kCount), L"2 points") << "of the first group";
                  state.userSelects(kGroups, L"picked");
                  EXPECT_EQ(state.text(kCount), L"0 points");
                  state.userCloses();
                }};
  select({1, 2});
  runTime.selections.emplace_back(std::nullopt);
  run();
}

TEST_F(PointsCommandTest, PassesOverWhatTheModelKnowsNoPointOf) {
  user.steps = {click(host::kIdPickPoints), okWith({kAscii})};
  // An object that the model doesn't know, and one that is no point.
  runTime.selections.push_back(std::vector<std::uint64_t>{0x999, handleOf(3), 0xA});
  run();
  EXPECT_EQ(numbers(), Cells{"3"});
}

TEST_F(PointsCommandTest, EndsAtOnceWhereAPickedObjectHasNoIdentifier) {
  user.steps = {click(host::kIdPickPoints)};
  runTime.unidentified = handleOf(2);
  select({1, 2, 3});
  run();
  EXPECT_EQ(user.openings, 1U);
  EXPECT_TRUE(host.users().boxes.empty());
}

TEST_F(PointsCommandTest, ReportsAChosenGroupAloneAfterAPick) {
  user.steps = {click(host::kIdPickPoints), [this](DialogState& state) {
                  state.userSelects(kGroups, L"Survey");
                  okWith({kAscii})(state);
                }};
  select({3});
  run();
  EXPECT_EQ(numbers(), (Cells{"2", "1"}));
}

TEST_F(PointsCommandTest, EndsByAnExceptionWhereTheModelIsOutOfReach) {
  companion.document = nullptr;
  EXPECT_THROW(runPointsReport(host), framework::InvalidArgumentException);
  EXPECT_EQ(user.openings, 0U);
  EXPECT_EQ(runTime.selectionSets(), 0U);
}

}  // namespace
}  // namespace lvx::points
