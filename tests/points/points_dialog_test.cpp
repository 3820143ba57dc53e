#include "points/points_dialog.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "report_drawing/report_drawing.h"

namespace lvx::points {

using namespace dialogs;
namespace {

using test::rows;
using windowless::DialogState;
using windowless::Refusal;

constexpr int kGroups = CExportPointsDlg::kIdPointGroups;
constexpr int kCount = CExportPointsDlg::kIdPointCount;

class PointsDialogTest : public testing::Test, public test::ReportDrawing {
 protected:
  PointsDialogTest() {
    host.useMessageBytes(
        "1 All|*.*||\r\n4 Cancel it\r\n5 Help it\r\n103 Site\r\n104 Axis\r\n108 Output\r\n109 *none*\r\n114 text\r\n"
        "115 sheet\r\n116 page\r\n201 Title\r\n202 Selection\r\n203 Groups\r\n221 Selected\r\n224 point\r\n"
        "225 points\r\n226 picked\r\n");
  }

  /// Site "S" with axes "A" and "B", site "T" with "C"; groups of two points, of one and of none.
  void useUsualDrawing() {
    const auto site = drawing.addSite(L"S");
    addAlignment(site, L"A");
    addAlignment(site, L"B");
    addAlignment(drawing.addSite(L"T"), L"C");
    drawing.addPointGroup(L"two", {1, 2});
    drawing.addPointGroup(L"one", {7});
    drawing.addPointGroup(L"none", {});
  }

  /// What the command does after a pick of points.
  static void setPicked(CExportPointsDlg& dialog, std::int32_t count) {
    dialog.pointGroups[dialog.pointGroups.size() - 1]->count = count;
  }
};

TEST_F(PointsDialogTest, OpensOnTheFirstOfEverythingWithAllFormsTickedAndOkDisabled) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(270)->picture, kPictureSite);
  EXPECT_EQ(state.find(271)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(273)->picture, kPicturePointGroup);
  EXPECT_EQ(state.find(278)->picture, kPicturePoint);
  EXPECT_EQ(state.find(kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdPickSecond)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdOutputFileBox)->picture, kPictureSave);
}

TEST_F(PointsDialogTest, HasItsControlsAndItsSize) {
  const CExportPointsDlg dialog(host);
  const DialogTemplate& made = dialog.dialogTemplate();
  EXPECT_EQ(made.controls.size(), 24U);
  EXPECT_EQ(made.width, 283);
  EXPECT_EQ(made.height, 214);
  EXPECT_EQ(made.title, L"*Export Points");
}

// ---------------------------------------------------------------- lists

TEST_F(PointsDialogTest, OpensOnTheRowWithoutASiteWhereverItStands) {
  useUsualDrawing();
  addAlignment(nullptr, L"Loose");
  companion.fillSites = [this](host::SiteTree& sites) {
    fillSiteTree(sites);
    host::tsite* first = sites[0];
    sites.removeAt(0);
    sites.add(first);
  };
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  state.userSelects(kIdAlignments, L"B");
  EXPECT_EQ(dialog.alignmentText, L"A") << "the list of alignments is read on OK alone";
  EXPECT_EQ(state.userSelects(kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, kIdAlignments), L"[C]");
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"C");
  EXPECT_EQ(dialog.siteIndex, 1);
}

TEST_F(PointsDialogTest, LetsOnlyAGroupWithoutANameMoveTheStartFromTheFirstRow) {
  useUsualDrawing();
  drawing.addPointGroup(L"", {1, 2, 3});
  CExportPointsDlg dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kGroups), L"two|one|none|[]|picked");
  EXPECT_EQ(state.text(kCount), L"3 points");
}

// ---------------------------------------------------------------- the count

TEST_F(PointsDialogTest, CountsOnePointInTheSingularAtAnOpeningAndInThePluralOnceChosenAgain) {
  drawing.addPointGroup(L"one", {7});
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(state.text(kCount), L"1 point");
  EXPECT_EQ(state.userSelects(kGroups, L"one"), Refusal::None);
  EXPECT_EQ(state.text(kCount), L"1 points");
}

TEST_F(PointsDialogTest, CountsTheChosenGroupAndTouchesNothingElse) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  state.userSelects(kGroups, L"none");
  EXPECT_EQ(state.text(kCount), L"0 points");
  EXPECT_EQ(dialog.groupIndex, 0);
  EXPECT_EQ(dialog.groupText, L"two");
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(PointsDialogTest, RaisesTheInvalidArgumentExceptionForASelectionOutsideTheList) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  state.select(kGroups, DialogWindow::kNone);
  EXPECT_THROW(dialog.onSelectionChanged(state, kGroups), framework::InvalidArgumentException);
}

// ---------------------------------------------------------------- points picked by hand

TEST_F(PointsDialogTest, LetsPointsPickedByHandWinAtEachOpening) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
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
  drawing.addPointGroup(L"picked", {1});
  CExportPointsDlg dialog(host);
  { const DialogState state(dialog); }
  setPicked(dialog, 2);
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kGroups), L"picked|[picked]");
  EXPECT_EQ(again.text(kCount), L"2 points");
}

// ---------------------------------------------------------------- OK

TEST_F(PointsDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndDisablesItWithTheLast) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
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
    CExportPointsDlg dialog(host);
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
  CExportPointsDlg dialog(host);
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
  EXPECT_EQ(companion.attachments, 1);
}

TEST_F(PointsDialogTest, TriesToReachTheModelOnce) {
  useUsualDrawing();
  companion.document = nullptr;
  CExportPointsDlg dialog(host);
  EXPECT_THROW(const DialogState state(dialog), framework::InvalidArgumentException);
  EXPECT_TRUE(dialog.loaded);
  companion.document = drawing.document;
  EXPECT_THROW(const DialogState again(dialog), framework::InvalidArgumentException);
  EXPECT_EQ(companion.attachments, 1);
  EXPECT_TRUE(host.users().boxes.empty());
}

}  // namespace
}  // namespace lvx::points
