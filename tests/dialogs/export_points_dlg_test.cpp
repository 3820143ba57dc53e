#include "dialogs/export_points_dlg.h"

#include <memory>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "host/run_time.h"
#include "runtime/dialog_state.h"
#include "support/fake_companion.h"
#include "support/fake_host.h"
#include "support/fake_model.h"

namespace lvx::dialogs {
namespace {

using runtime::DialogState;
using runtime::Refusal;

constexpr int kGroups = CExportPointsDlg::kIdPointGroups;
constexpr int kCount = CExportPointsDlg::kIdPointCount;

/// Lists as short text: rows between bars, the selected one in brackets.
std::wstring rows(const DialogState& state, int id) {
  const DialogState::Control& list = *state.find(id);
  std::wstring text;
  for (int row = 0; row < static_cast<int>(list.rows.size()); ++row) {
    if (row > 0) text += L"|";
    text += row == list.row ? L"[" + list.rows[row] + L"]" : list.rows[row];
  }
  return text;
}

class PointsDialogTest : public testing::Test {
 protected:
  PointsDialogTest() {
    host_.useMessageBytes(
        "1 All|*.*||\r\n4 Cancel it\r\n5 Help it\r\n103 Site\r\n104 Axis\r\n108 Output\r\n109 *none*\r\n114 text\r\n"
        "115 sheet\r\n116 page\r\n201 Title\r\n202 Selection\r\n203 Groups\r\n221 Selected\r\n224 point\r\n"
        "225 points\r\n226 picked\r\n");
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) { fillTree(sites); };
  }

  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name) {
    const auto made = drawing_.addAlignment(site, name);
    made->handleText = L"A" + std::to_wstring(made->id.value);
    return made;
  }

  void fillTree(host::SiteTree& sites) {
    const auto add = [&sites](const CString& name, test::FakeAlignments& alignments) {
      host::tsite* site = test::newSite(name, {});
      for (const auto& item : alignments.items)
        site->alignments.add(test::newSiteAlignment(item->nameText, item->handleText));
      sites.add(site);
    };
    add(L"", *drawing_.document->alignments);
    for (const auto& site : drawing_.database->siteList->items) add(site->nameText, *site->alignmentList);
  }

  /// Site "S" with axes "A" and "B", site "T" with "C"; groups of two points, of one and of none.
  void useUsualDrawing() {
    const auto site = drawing_.addSite(L"S");
    alignment(site, L"A");
    alignment(site, L"B");
    alignment(drawing_.addSite(L"T"), L"C");
    drawing_.addPointGroup(L"two", {1, 2});
    drawing_.addPointGroup(L"one", {7});
    drawing_.addPointGroup(L"none", {});
  }

  /// What the command does after a pick of points.
  static void setPicked(CExportPointsDlg& dialog, std::int32_t count) {
    dialog.pointGroups[dialog.pointGroups.size() - 1]->count = count;
  }

  test::FakeHost host_;
  test::FakeCompanion companion_;
  test::FakeDrawing drawing_;
};

TEST_F(PointsDialogTest, OpensOnTheFirstOfEverythingWithAllFormsTickedAndOkDisabled) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kIdSites), L"[S]|T");
  EXPECT_EQ(rows(state, kIdAlignments), L"[A]|B");
  EXPECT_EQ(rows(state, kGroups), L"[two]|one|none|picked");
  EXPECT_EQ(state.text(kCount), L"2 points");
  for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) EXPECT_TRUE(state.isTicked(form));
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(PointsDialogTest, TakesEveryCaptionFromTheMessages) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"Title");
  struct Row {
    int id;
    const wchar_t* text;
  };
  const std::vector<Row> table{{kIdOk, L"OK"},
                               {kIdCancel, L"Cancel it"},
                               {kIdHelp, L"Help it"},
                               {kIdGroupSelection, L"Selection"},
                               {kIdLabelSite, L"Site"},
                               {kIdLabelAlignment, L"Axis"},
                               {103, L"Groups"},
                               {104, L"Selected"},
                               {kIdGroupOutput, L"Output"},
                               {kIdCheckAscii, L"text"},
                               {kIdCheckExcel, L"sheet"},
                               {kIdCheckThird, L"page"}};
  EXPECT_EQ(table.size(), 12U);
  for (const Row& row : table) EXPECT_EQ(state.text(row.id), row.text) << row.id;
}

TEST_F(PointsDialogTest, HasEveryPictureOnItsControl) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(270)->picture, kPictureSite);
  EXPECT_EQ(state.find(271)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(273)->picture, kPicturePointGroup);
  EXPECT_EQ(state.find(278)->picture, kPicturePoint);
  EXPECT_EQ(state.find(kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdPickSecond)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdOutputFileBox)->picture, kPictureSave);
}

TEST_F(PointsDialogTest, LaysItsControlsOutInsideItsWindow) {
  CExportPointsDlg dialog(host_);
  const DialogTemplate& made = dialog.dialogTemplate();
  EXPECT_EQ(made.controls.size(), 24U);
  EXPECT_EQ(made.width, 283);
  EXPECT_EQ(made.height, 214);
  EXPECT_EQ(made.title, L"*Export Points");
  for (const ControlTemplate& control : made.controls) {
    SCOPED_TRACE(control.id);
    EXPECT_GE(control.rectangle.x, 0);
    EXPECT_LE(control.rectangle.x + control.rectangle.width, made.width);
    EXPECT_LE(control.rectangle.y + control.rectangle.height, made.height);
    EXPECT_EQ(made.find(control.id), &control) << "an id stands once";
  }
}

// ---------------------------------------------------------------- lists

TEST_F(PointsDialogTest, NeverShowsASiteWithoutAlignments) {
  drawing_.addSite(L"empty");
  useUsualDrawing();
  drawing_.addSite(L"also empty");
  drawing_.addSite(L"and another");
  CExportPointsDlg dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kIdSites), L"[S]|T");
}

TEST_F(PointsDialogTest, OpensOnTheRowWithoutASiteWhereverItStands) {
  useUsualDrawing();
  alignment(nullptr, L"Loose");
  companion_.fillSites = [this](host::SiteTree& sites) {
    fillTree(sites);
    host::tsite* first = sites[0];
    sites.removeAt(0);
    sites.add(first);
  };
  CExportPointsDlg dialog(host_);
  {
    DialogState state(dialog);
    EXPECT_EQ(rows(state, kIdSites), L"S|T|[*none*]") << "its empty name is the still empty selection";
    EXPECT_EQ(rows(state, kIdAlignments), L"[Loose]");
    EXPECT_EQ(dialog.siteText, L"*none*");
    state.userClicks(kIdPickSecond);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kIdSites), L"[S]|T|*none*") << "the row's words are no site's name";
  EXPECT_EQ(dialog.siteText, L"S");
}

TEST_F(PointsDialogTest, SelectsTheFirstAlignmentAfterAChangeOfSite) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userSelects(kIdAlignments, L"B");
  EXPECT_EQ(dialog.alignmentText, L"A") << "the list of alignments is read on OK alone";
  EXPECT_EQ(state.userSelects(kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, kIdAlignments), L"[C]");
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"C");
  EXPECT_EQ(dialog.siteIndex, 1);
}

TEST_F(PointsDialogTest, EmptiesTheAlignmentTextWhereTheNewSiteHasNoAlignmentLeft) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  for (host::tsiteAlignment* record : dialog.sites[1]->alignments) {
    framework::destroyAll(record->children);
    delete record;
  }
  dialog.sites[1]->alignments.removeAll();
  state.userSelects(kIdSites, L"T");
  EXPECT_EQ(dialog.alignmentText, L"");
  EXPECT_EQ(dialog.alignmentIndex, -1);
  EXPECT_EQ(rows(state, kIdAlignments), L"");
}

TEST_F(PointsDialogTest, LetsOnlyAGroupWithoutANameMoveTheStartFromTheFirstRow) {
  useUsualDrawing();
  drawing_.addPointGroup(L"", {1, 2, 3});
  CExportPointsDlg dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kGroups), L"two|one|none|[]|picked");
  EXPECT_EQ(state.text(kCount), L"3 points");
}

// ---------------------------------------------------------------- the count

TEST_F(PointsDialogTest, CountsOnePointInTheSingularAtAnOpeningAndInThePluralOnceChosenAgain) {
  drawing_.addPointGroup(L"one", {7});
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  EXPECT_EQ(state.text(kCount), L"1 point");
  EXPECT_EQ(state.userSelects(kGroups, L"one"), Refusal::None);
  EXPECT_EQ(state.text(kCount), L"1 points");
}

TEST_F(PointsDialogTest, CountsTheChosenGroupAndTouchesNothingElse) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userSelects(kGroups, L"none");
  EXPECT_EQ(state.text(kCount), L"0 points");
  EXPECT_EQ(dialog.groupIndex, 0);
  EXPECT_EQ(dialog.groupText, L"two");
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(PointsDialogTest, RaisesTheInvalidArgumentExceptionForASelectionOutsideTheList) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.select(kGroups, DialogWindow::kNone);
  EXPECT_THROW(dialog.onSelectionChanged(state, kGroups), framework::InvalidArgumentException);
}

// ---------------------------------------------------------------- points picked by hand

TEST_F(PointsDialogTest, LetsPointsPickedByHandWinAtEachOpening) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  {
    DialogState state(dialog);
    state.userSelects(kGroups, L"one");
    state.userClicks(kIdPickSecond);
    EXPECT_EQ(state.closedWith(), 232);
  }
  setPicked(dialog, 3);
  for (int opening = 0; opening < 2; ++opening) {
    DialogState state(dialog);
    EXPECT_EQ(rows(state, kGroups), L"two|one|none|[picked]");
    EXPECT_EQ(state.text(kCount), L"3 points");
    EXPECT_EQ(dialog.groupIndex, 0) << "stays as it stood";
    EXPECT_EQ(dialog.groupText, L"two");
    state.userSelects(kGroups, L"one");
    state.userClicks(kIdPickAlignment);
  }
  setPicked(dialog, 1);
  DialogState state(dialog);
  EXPECT_EQ(state.text(kCount), L"1 point");
  state.userTypes(kIdOutputStem, L"/r/x");
  state.userClicks(kIdOk);
  EXPECT_EQ(dialog.groupText, L"picked") << "read anew on OK";
}

TEST_F(PointsDialogTest, OpensAtTheFirstRowAgainAfterACancelledPick) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  {
    DialogState state(dialog);
    state.userSelects(kGroups, L"one");
    state.userClicks(kIdPickSecond);
  }
  setPicked(dialog, 0);
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kGroups), L"[two]|one|none|picked") << "a chosen group doesn't survive an opening";
}

TEST_F(PointsDialogTest, SelectsItsLastRowForPickedPointsWhateverAGroupIsCalled) {
  drawing_.addPointGroup(L"picked", {1});
  CExportPointsDlg dialog(host_);
  { const DialogState state(dialog); }
  setPicked(dialog, 2);
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kGroups), L"picked|[picked]");
  EXPECT_EQ(again.text(kCount), L"2 points");
}

// ---------------------------------------------------------------- OK

TEST_F(PointsDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndDisablesItWithTheLast) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userSelects(kIdSites, L"T");
  state.userSelects(kGroups, L"one");
  EXPECT_FALSE(state.isEnabled(kIdOk)) << "without a stem nothing enables it";
  state.userTypes(kIdOutputStem, L"/");
  EXPECT_TRUE(state.isEnabled(kIdOk));
  state.userTypes(kIdOutputStem, L"");
  EXPECT_FALSE(state.isEnabled(kIdOk));
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::Disabled);
}

TEST_F(PointsDialogTest, ReadsTheListsAndTicksOnOk) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  state.userSelects(kIdAlignments, L"B");
  state.userSelects(kGroups, L"one");
  state.userTicks(kIdCheckExcel, false);
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::None);
  EXPECT_EQ(state.closedWith(), kIdOk);
  EXPECT_EQ(dialog.siteText, L"S");
  EXPECT_EQ(dialog.alignmentText, L"B");
  EXPECT_EQ(dialog.groupText, L"one");
  EXPECT_EQ(dialog.outputStem, L"/r/x");
  EXPECT_EQ(dialog.checkAscii, 1);
  EXPECT_EQ(dialog.checkExcel, 0);
  EXPECT_EQ(dialog.checkThird, 1);
}

TEST_F(PointsDialogTest, ReadsEmptyTextsFromListsWithoutRows) {
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  EXPECT_EQ(rows(state, kIdSites), L"");
  EXPECT_EQ(rows(state, kIdAlignments), L"");
  EXPECT_EQ(dialog.siteIndex, -1);
  EXPECT_EQ(dialog.alignmentIndex, -1);
  state.userTypes(kIdOutputStem, L"/r/x");
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::None) << "OK asks for no alignment";
  EXPECT_EQ(dialog.siteText, L"");
  EXPECT_EQ(dialog.alignmentText, L"");
  EXPECT_EQ(dialog.groupText, L"picked");
}

TEST_F(PointsDialogTest, ReadsNothingFromTheControlsOnAPickOrOnCancel) {
  useUsualDrawing();
  for (const int button : {kIdPickAlignment, kIdPickSecond, kIdCancel}) {
    CExportPointsDlg dialog(host_);
    {
      DialogState state(dialog);
      state.userSelects(kIdAlignments, L"B");
      state.userSelects(kGroups, L"one");
      EXPECT_EQ(state.userClicks(button), Refusal::None);
      EXPECT_EQ(state.closedWith(), button);
    }
    EXPECT_EQ(dialog.alignmentText, L"A");
    EXPECT_EQ(dialog.groupText, L"two");
    EXPECT_EQ(dialog.checkAscii, 0);
  }
}

// ---------------------------------------------------------------- openings

TEST_F(PointsDialogTest, KeepsSiteAlignmentAndStemButNoTicksBetweenOpenings) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  {
    DialogState state(dialog);
    state.userSelects(kIdSites, L"T");
    state.userTypes(kIdOutputStem, L"/r/x");
    for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) state.userTicks(form, false);
    state.userClicks(kIdPickAlignment);
  }
  {
    DialogState again(dialog);
    EXPECT_EQ(rows(again, kIdSites), L"S|[T]");
    EXPECT_EQ(rows(again, kIdAlignments), L"[C]");
    EXPECT_EQ(again.text(kIdOutputStem), L"/r/x");
    EXPECT_EQ(again.find(kIdOutputStem)->tip, L"/r/x");
    EXPECT_TRUE(again.isEnabled(kIdOk));
    for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) EXPECT_TRUE(again.isTicked(form));
    again.userClicks(kIdPickAlignment);
  }
  dialog.siteText = L"S";
  dialog.alignmentText = L"B";  // what a pick names
  const DialogState picked(dialog);
  EXPECT_EQ(rows(picked, kIdSites), L"[S]|T");
  EXPECT_EQ(rows(picked, kIdAlignments), L"A|[B]");
  EXPECT_EQ(companion_.attachments, 1);
}

TEST_F(PointsDialogTest, TriesToReachTheModelOnce) {
  useUsualDrawing();
  companion_.document = nullptr;
  CExportPointsDlg dialog(host_);
  EXPECT_THROW(const DialogState state(dialog), framework::InvalidArgumentException);
  EXPECT_TRUE(dialog.loaded);
  companion_.document = drawing_.document;
  EXPECT_THROW(const DialogState again(dialog), framework::InvalidArgumentException);
  EXPECT_EQ(companion_.attachments, 1);
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(PointsDialogTest, GivesEverythingBackWhenItGoes) {
  useUsualDrawing();
  const auto references = drawing_.document.use_count();
  {
    CExportPointsDlg dialog(host_);
    const DialogState state(dialog);
    EXPECT_GT(drawing_.document.use_count(), references);
  }
  EXPECT_EQ(drawing_.document.use_count(), references);
  EXPECT_EQ(companion_.treesFreed, 1);
  EXPECT_EQ(companion_.releases, 1);
}

TEST_F(PointsDialogTest, GivesNothingBackWhereItNeverOpened) {
  { const CExportPointsDlg dialog(host_); }
  EXPECT_EQ(companion_.treesFreed, 0);
  EXPECT_EQ(companion_.releases, 0);
}

// ---------------------------------------------------------------- file box and help

TEST_F(PointsDialogTest, PutsTheStemOfTheChosenFileIntoTheBoxAndTheWholePathIntoTheTip) {
  useUsualDrawing();
  struct Row {
    const wchar_t* chosen;
    const wchar_t* stem;
  };
  const std::vector<Row> table{{L"/r/x.html", L"/r/x"}, {L"/r/x.txt.html", L"/r/x.txt"}, {L"/r/x.html.txt", L"/r/x"},
                               {L"/r/x.xls", L"/r/x"},  {L"/r/x.TXT", L"/r/x.TXT"},      {L"/r/x.csv", L"/r/x.csv"}};
  EXPECT_EQ(table.size(), 6U);
  for (const Row& row : table) {
    CExportPointsDlg dialog(host_);
    DialogState state(dialog);
    host_.users().paths = {row.chosen};
    EXPECT_EQ(state.userClicks(kIdOutputFileBox), Refusal::None);
    EXPECT_EQ(state.text(kIdOutputStem), row.stem);
    EXPECT_EQ(dialog.outputStem, row.stem);
    EXPECT_EQ(state.find(kIdOutputStem)->tip, row.chosen);
    EXPECT_TRUE(state.isEnabled(kIdOk));
  }
  EXPECT_EQ(host_.users().fileBoxes.front(), (test::FakeUserInterface::FileBox{L"All|*.*||", 8196}));
}

TEST_F(PointsDialogTest, ChangesNothingWhenTheFileBoxIsCancelled) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  host_.users().paths = {std::nullopt};
  state.userClicks(kIdOutputFileBox);
  EXPECT_EQ(state.text(kIdOutputStem), L"/r/x");
  EXPECT_EQ(state.find(kIdOutputStem)->tip, L"");
}

TEST_F(PointsDialogTest, ShowsItsHelpPageAndStaysOpen) {
  useUsualDrawing();
  CExportPointsDlg dialog(host_);
  DialogState state(dialog);
  state.userClicks(kIdHelp);
  EXPECT_EQ(host_.users().helpTopics,
            std::vector<CString>{L"Vantor Lorvix Extension.chm::/project-resources/LVX_015_002.html"});
  EXPECT_FALSE(state.closedWith());
}

}  // namespace
}  // namespace lvx::dialogs
