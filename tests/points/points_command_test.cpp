#include "points/points_command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "dialogs/export_points_dlg.h"
#include "framework/exceptions.h"
#include "host/picking.h"
#include "runtime/dialog_state.h"
#include "support/fake_companion.h"
#include "support/fake_model.h"
#include "support/fake_picking.h"
#include "support/golden.h"
#include "support/recording_sheet.h"

namespace lvx::points {
namespace {

using dialogs::CExportPointsDlg;
using host::BoxAnswer;
using runtime::DialogState;
using Kind = test::PickingRunTime::Kind;
using Boxes = std::vector<test::FakeUserInterface::Box>;

constexpr int kGroups = CExportPointsDlg::kIdPointGroups;
constexpr int kCount = CExportPointsDlg::kIdPointCount;
constexpr int kAscii = dialogs::kIdCheckAscii;
constexpr int kExcel = dialogs::kIdCheckExcel;
constexpr int kHtml = dialogs::kIdCheckThird;

/// A user who works each opening of the dialog by the next step; after the last one the dialog is closed by its mark.
class SteppingUser final : public dialogs::DialogRunner {
 public:
  using Step = std::function<void(DialogState&)>;
  std::vector<Step> steps;
  /// Codes that a front end gives back in place of the first openings' own.
  std::vector<int> codes;
  std::size_t openings = 0;

  int runModal(dialogs::DialogBehaviour& dialog, void*) override {
    DialogState state(dialog);
    if (openings < steps.size())
      steps[openings](state);
    else
      state.userCloses();
    const std::size_t opening = openings++;
    return opening < codes.size() ? codes[opening] : state.closedWith().value_or(dialogs::kIdCancel);
  }
};

class PointsCommandTest : public testing::Test {
 protected:
  PointsCommandTest() : host_({.fixedMoment = 0}) {
    auto runTime = std::make_unique<test::PickingRunTime>();
    run_ = runTime.get();
    host_.replaceRunTime(std::move(runTime));
    host_.setDialogRunner(&user_);
    host_.useMessageBytes(
        "109 *none*\r\n110 pick axis\r\n111 no axis\r\n222 add points\r\n223 remove points\r\n224 point\r\n"
        "225 points\r\n226 picked\r\n227 overwrite?\r\n228 in use\r\n229 no folder\r\n");
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) {
      add(sites, L"", *drawing_.document->alignments);
      for (const auto& site : drawing_.database->siteList->items) add(sites, site->nameText, *site->alignmentList);
    };
    stem_ = host_.folder() + L"road";
    const auto site = drawing_.addSite(L"S");
    alignment(site, L"A", 0xA);
    alignment(site, L"B", 0xB);
    for (const std::int32_t number : {1, 2, 3}) {
      // Descending along the axis, so that every report has to sort.
      drawing_.addPoint(number, 100.0 - number, 0.0)->id.value = handleOf(number);
      run_->addObject(host::kClassPoint, handleOf(number));
    }
    drawing_.addPointGroup(L"Survey", {1, 2});
    drawing_.addPointGroup(L"Empty", {});
  }

  static std::uint64_t handleOf(std::int32_t number) { return 0x100 + static_cast<std::uint64_t>(number); }

  static void add(host::SiteTree& sites, const CString& name, test::FakeAlignments& alignments) {
    host::tsite* site = test::newSite(name, {});
    for (const auto& item : alignments.items)
      site->alignments.add(test::newSiteAlignment(item->nameText, item->handleText));
    sites.add(site);
  }

  /// An alignment whose identifier is its handle.
  void alignment(const host::Ref<test::FakeSite>& site, const CString& name, std::uint64_t handle) {
    const auto made = drawing_.addAlignment(site, name);
    made->id.value = handle;
    wchar_t buffer[32];
    host::VnDbHandle(handle).getIntoAsciiBuffer(buffer);
    made->handleText = buffer;
    run_->addObject(host::kClassAlignment, handle);
  }

  /// Types the stem and presses OK with only these forms ticked.
  SteppingUser::Step okWith(std::initializer_list<int> forms, CString stem = {}) {
    return [this, forms = std::vector<int>(forms), stem = std::move(stem)](DialogState& state) {
      state.userTypes(dialogs::kIdOutputStem, stem.empty() ? stem_ : stem);
      for (const int form : {kAscii, kExcel, kHtml})
        state.userTicks(form, std::find(forms.begin(), forms.end(), form) != forms.end());
      EXPECT_EQ(state.userClicks(dialogs::kIdOk), runtime::Refusal::None);
    };
  }
  static SteppingUser::Step click(int id) {
    return [id](DialogState& state) { EXPECT_EQ(state.userClicks(id), runtime::Refusal::None); };
  }
  void select(std::initializer_list<std::int32_t> numbers) {
    std::vector<std::uint64_t> handles;
    for (const std::int32_t number : numbers) handles.push_back(handleOf(number));
    run_->selections.emplace_back(std::move(handles));
  }

  /// Runs the command, which has to give everything back whatever comes of it.
  void run() {
    const auto references = drawing_.document.use_count();
    runPointsReport(host_);
    expectEverythingGivenBack(references);
  }
  void expectEverythingGivenBack(long references) {
    EXPECT_EQ(drawing_.document.use_count(), references);
    EXPECT_EQ(companion_.releases, companion_.attachments);
    EXPECT_EQ(companion_.treesFreed, 1);
    EXPECT_EQ(run_->selectionSets(), 0U);
    EXPECT_EQ(run_->openFilterLists(), 0);
    EXPECT_EQ(run_->openObjects(), 0);
    EXPECT_EQ(run_->manager.locks, run_->manager.unlocks);
  }

  /// First cells of the text form's rows: the numbers in their order.
  [[nodiscard]] std::vector<std::string> numbers() const {
    const std::string text = test::readBytes(platform::toUtf8(stem_ + L".txt"));
    std::vector<std::string> all;
    std::size_t start = 0;
    for (int line = 0; start < text.size(); ++line) {
      const std::string cell = text.substr(start, 14);
      if (line > 9) all.push_back(cell.substr(cell.find_last_of(' ') + 1));
      start = text.find("\r\n", start) + 2;
    }
    return all;
  }
  [[nodiscard]] std::string fileText(const CString& ending) const {
    return test::readBytes(platform::toUtf8(stem_ + ending));
  }
  [[nodiscard]] bool stands(const CString& ending) const {
    return std::filesystem::exists(platform::toUtf8(stem_ + ending));
  }
  void write(const CString& ending, const std::string& text) const {
    std::ofstream(platform::toUtf8(stem_ + ending), std::ios::binary) << text;
  }

  test::FakeHost host_;
  test::PickingRunTime* run_ = nullptr;
  test::FakeCompanion companion_;
  test::FakeDrawing drawing_;
  SteppingUser user_;
  CString stem_;
};

using Cells = std::vector<std::string>;

TEST_F(PointsCommandTest, WritesTheTickedFormsInOrderOfStation) {
  user_.steps = {okWith({kAscii, kHtml})};
  run();
  EXPECT_EQ(numbers(), (Cells{"2", "1"}));
  EXPECT_NE(fileText(L".html").find("<td>0+098.000</td>"), std::string::npos);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(PointsCommandTest, LeavesNoFileAfterCancel) {
  user_.steps = {click(dialogs::kIdCancel)};
  run();
  EXPECT_EQ(user_.openings, 1U);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
}

TEST_F(PointsCommandTest, EndsWhereTheDialogIsClosedByItsMark) {
  user_.codes = {3};
  run();
  EXPECT_EQ(user_.openings, 1U);
}

TEST_F(PointsCommandTest, OpensTheDialogAgainForAnyCodeThatMeansNothing) {
  user_.codes = {0, 4, 125, -1, 2};
  run();
  EXPECT_EQ(user_.openings, 5U);
}

TEST_F(PointsCommandTest, WritesNothingWithoutAWordWhereNoFormIsTicked) {
  user_.steps = {okWith({})};
  run();
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_TRUE(host_.users().boxes.empty());
}

// ---------------------------------------------------------------- output path

TEST_F(PointsCommandTest, TellsThatAStemHasNoFolderAndGivesTheDialogBackWithIt) {
  user_.steps = {okWith({kAscii}, L"road"), [](DialogState& state) {
                   EXPECT_EQ(state.text(dialogs::kIdOutputStem), L"road");
                   EXPECT_TRUE(state.isTicked(kExcel)) << "an opening ticks all forms again";
                   state.userCloses();
                 }};
  run();
  EXPECT_EQ(host_.users().boxes, (Boxes{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
  EXPECT_EQ(user_.openings, 2U);
}

TEST_F(PointsCommandTest, GivesTheDialogBackWithoutAWordWhereTheFolderIsMissing) {
  user_.steps = {okWith({kAscii}, host_.folder() + L"missing/road"), okWith({kAscii})};
  run();
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_EQ(user_.openings, 2U);
  EXPECT_TRUE(stands(L".txt"));
}

TEST_F(PointsCommandTest, AddsItsExtensionBehindOneThatTheUserTyped) {
  user_.steps = {okWith({kAscii}, stem_ + L".txt")};
  run();
  EXPECT_TRUE(stands(L".txt.txt"));
}

// ---------------------------------------------------------------- no rows

TEST_F(PointsCommandTest, WritesAndAsksNothingWhereThereAreNoRows) {
  write(L".txt", "old");
  user_.steps = {[this](DialogState& state) {
    state.userSelects(kGroups, L"Empty");
    okWith({kAscii, kExcel, kHtml})(state);
  }};
  run();
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_FALSE(stands(L".html"));
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(PointsCommandTest, WritesNothingWhereThePickedPointsAreChosenAndNoneArePicked) {
  user_.steps = {[this](DialogState& state) {
    state.userSelects(kGroups, L"picked");
    okWith({kAscii, kHtml})(state);
  }};
  run();
  EXPECT_FALSE(stands(L".txt"));
  EXPECT_FALSE(stands(L".html"));
}

TEST_F(PointsCommandTest, WritesNothingInADrawingWithoutAlignments) {
  for (const auto& site : drawing_.database->siteList->items) site->alignmentList->items.clear();
  user_.steps = {okWith({kAscii, kExcel, kHtml})};
  run();
  EXPECT_EQ(user_.openings, 1U);
  EXPECT_FALSE(stands(L".txt"));
}

// ---------------------------------------------------------------- files that stand

TEST_F(PointsCommandTest, GoesOnToTheNextFormsWhereOneIsNotToBeOverwritten) {
  write(L".txt", "old");
  const auto record = std::make_shared<test::SheetRecord>();
  host_.setSheetFactory([record] { return std::make_unique<test::RecordingSheet>(record); });
  user_.steps = {okWith({kAscii, kExcel, kHtml})};
  host_.users().answers = {BoxAnswer::No};
  run();
  EXPECT_EQ(host_.users().boxes,
            (Boxes{{stem_ + L".txt overwrite?", host::BoxButtons::YesNo, host::BoxIcon::Question}}));
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_EQ(record->finishedAs, stem_ + L".xls");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, SkipsAWorkbookThatIsHeldOpenAndGoesOnToThePage) {
  std::filesystem::create_directory(platform::toUtf8(stem_ + L".xls"));
  user_.steps = {okWith({kExcel, kHtml})};
  host_.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Cancel};
  run();
  ASSERT_EQ(host_.users().boxes.size(), 3U);
  EXPECT_EQ(host_.users().boxes[1], (test::FakeUserInterface::Box{stem_ + L".xls in use", host::BoxButtons::RetryCancel,
                                                                  host::BoxIcon::Question}));
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, LeavesNoWorkbookWhereTheFormerOneWasGivenUpAndTheProgramIsMissing) {
  write(L".xls", "old");
  user_.steps = {okWith({kExcel, kHtml})};
  host_.users().answers = {BoxAnswer::Yes};
  run();
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(host_.users().boxes.back().text, L"Couldn't start Excel and get Application object.");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(PointsCommandTest, GivesEverythingBackWhenAnExceptionEndsIt) {
  const auto record = std::make_shared<test::SheetRecord>();
  record->failFinish = true;
  host_.setSheetFactory([record] { return std::make_unique<test::RecordingSheet>(record); });
  user_.steps = {click(dialogs::kIdPickSecond), okWith({kExcel, kHtml})};
  select({3});
  const auto references = drawing_.document.use_count();
  EXPECT_THROW(runPointsReport(host_), framework::AutomationException);
  expectEverythingGivenBack(references);
  EXPECT_FALSE(stands(L".html"));
}

// ---------------------------------------------------------------- picking an alignment

TEST_F(PointsCommandTest, SelectsThePickedAlignment) {
  user_.steps = {click(dialogs::kIdPickAlignment), [](DialogState& state) {
                   EXPECT_EQ(state.rowText(dialogs::kIdAlignments, state.selection(dialogs::kIdAlignments)), L"B");
                   state.userCloses();
                 }};
  run_->picks = {{Kind::Object, 0xB}};
  run();
  EXPECT_EQ(run_->prompts, std::vector<CString>{L"pick axis"});
  EXPECT_EQ(run_->manager.lastLockMode, host::kLockForPick);
}

TEST_F(PointsCommandTest, PromptsAgainAfterAPickOfTheWrongClassUntilEscape) {
  user_.steps = {click(dialogs::kIdPickAlignment)};
  run_->picks = {{Kind::Object, handleOf(1)}, {Kind::Unidentified, 0xA}, {Kind::Unopenable, 0xA}, {Kind::Escape, 0}};
  run();
  EXPECT_EQ(run_->prompts.size(), 4U);
  EXPECT_EQ(host_.users().boxes, (Boxes{{L"no axis", host::BoxButtons::Ok, host::BoxIcon::Stop}}));
  EXPECT_EQ(user_.openings, 2U);
}

TEST_F(PointsCommandTest, LooksAPickedAlignmentsPositionUpInTheOtherList) {
  // The overall list: Loose, A, B, C, D. Site T holds D at position 1, where A stands in the overall list.
  alignment(nullptr, L"Loose", 0x10);
  const auto other = drawing_.addSite(L"T");
  alignment(other, L"C", 0xC);
  alignment(other, L"D", 0xD);
  user_.steps = {click(dialogs::kIdPickAlignment), [](DialogState& state) {
                   EXPECT_EQ(state.rowText(dialogs::kIdSites, state.selection(dialogs::kIdSites)), L"T");
                   EXPECT_EQ(state.rowText(dialogs::kIdAlignments, state.selection(dialogs::kIdAlignments)), L"C");
                   state.userCloses();
                 }};
  run_->picks = {{Kind::Object, 0xD}};
  run();
}

TEST_F(PointsCommandTest, PicksNothingWithoutACurrentDocument) {
  run_->manager.hasDocument = false;
  user_.steps = {click(dialogs::kIdPickAlignment)};
  run_->picks = {{Kind::Object, 0xB}};
  run();
  EXPECT_TRUE(run_->prompts.empty());
  EXPECT_EQ(user_.openings, 2U);
}

// ---------------------------------------------------------------- picking points

TEST_F(PointsCommandTest, OpensOnThePickedPointsWithTheirNumber) {
  user_.steps = {click(dialogs::kIdPickSecond), [this](DialogState& state) {
                   EXPECT_EQ(state.rowText(kGroups, state.selection(kGroups)), L"picked");
                   EXPECT_EQ(state.text(kCount), L"3 points");
                   okWith({kAscii})(state);
                 }};
  select({3, 1, 2});
  run();
  EXPECT_EQ(numbers(), (Cells{"3", "2", "1"}));
  ASSERT_EQ(run_->asked.size(), 1U);
  EXPECT_EQ(run_->asked[0].mode, L":$");
  EXPECT_EQ(run_->asked[0].prompts.add, L"add points");
  EXPECT_EQ(run_->asked[0].prompts.remove, L"remove points");
  ASSERT_EQ(run_->asked[0].filter.size(), 1U);
  EXPECT_EQ(run_->asked[0].filter[0].groupCode, host::kEntityStart);
  EXPECT_EQ(run_->asked[0].filter[0].text, L"QMT_COGO_POINT");
  EXPECT_EQ(run_->manager.locks, 0) << "only a pick of an alignment locks the document";
}

TEST_F(PointsCommandTest, ReplacesAnEarlierPickByALaterOne) {
  user_.steps = {click(dialogs::kIdPickSecond), click(dialogs::kIdPickSecond), [this](DialogState& state) {
                   EXPECT_EQ(state.text(kCount), L"1 point");
                   okWith({kAscii})(state);
                 }};
  select({1, 2});
  select({3});
  run();
  EXPECT_EQ(numbers(), Cells{"3"});
}

TEST_F(PointsCommandTest, ForgetsAnEarlierPickWhereALaterOneIsGivenUp) {
  user_.steps = {click(dialogs::kIdPickSecond), click(dialogs::kIdPickSecond), [](DialogState& state) {
                   EXPECT_EQ(state.selection(kGroups), 0) << "the first row, as on a first opening";
                   EXPECT_EQ(state.text(kCount), L"2 points") << "of the first group";
                   state.userSelects(kGroups, L"picked");
                   EXPECT_EQ(state.text(kCount), L"0 points");
                   state.userCloses();
                 }};
  select({1, 2});
  run_->selections.emplace_back(std::nullopt);
  run();
}

TEST_F(PointsCommandTest, PassesOverWhatTheModelKnowsNoPointOf) {
  user_.steps = {click(dialogs::kIdPickSecond), okWith({kAscii})};
  // An object that the model doesn't know, and one that is no point.
  run_->selections.push_back(std::vector<std::uint64_t>{0x999, handleOf(3), 0xA});
  run();
  EXPECT_EQ(numbers(), Cells{"3"});
}

TEST_F(PointsCommandTest, EndsAtOnceWhereAPickedObjectHasNoIdentifier) {
  user_.steps = {click(dialogs::kIdPickSecond)};
  run_->unidentified = handleOf(2);
  select({1, 2, 3});
  run();
  EXPECT_EQ(user_.openings, 1U);
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(PointsCommandTest, ReportsAChosenGroupAloneAfterAPick) {
  user_.steps = {click(dialogs::kIdPickSecond), [this](DialogState& state) {
                   state.userSelects(kGroups, L"Survey");
                   okWith({kAscii})(state);
                 }};
  select({3});
  run();
  EXPECT_EQ(numbers(), (Cells{"2", "1"}));
}

TEST_F(PointsCommandTest, EndsByAnExceptionWhereTheModelIsOutOfReach) {
  companion_.document = nullptr;
  EXPECT_THROW(runPointsReport(host_), framework::InvalidArgumentException);
  EXPECT_EQ(user_.openings, 0U);
  EXPECT_EQ(run_->selectionSets(), 0U);
}

}  // namespace
}  // namespace lvx::points
