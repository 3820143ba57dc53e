#include "points/points_dialog.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
#include "report_drawing/report_drawing.h"

namespace lvx::points {

using namespace dialogs;
namespace {

using test::rows;
using windowless::DialogState;
using windowless::Refusal;

constexpr int kGroups = host::kIdPointGroups;
constexpr int kCount = host::kIdPointCount;

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

TEST_F(PointsDialogTest, OpensOnTheFirstGroupAndCountsItsPoints) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, host::kIdSites), L"[S]|T");
  EXPECT_EQ(rows(state, kGroups), L"[two]|one|none|picked");
  EXPECT_EQ(state.text(kCount), L"2 points");
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
  const std::vector<Row> table{{host::kIdOk, L"OK"},
                               {host::kIdCancel, L"Cancel it"},
                               {host::kIdHelp, L"Help it"},
                               {host::kIdFrameSelection, L"Selection"},
                               {host::kIdLabelSite, L"Site"},
                               {host::kIdLabelAlignment, L"Axis"},
                               {host::kIdLabelPointGroup, L"Groups"},
                               {host::kIdLabelPointCount, L"Selected"},
                               {host::kIdFrameOutput, L"Output"},
                               {host::kIdCheckAscii, L"text"},
                               {host::kIdCheckExcel, L"sheet"},
                               {host::kIdCheckHtml, L"page"}};
  EXPECT_EQ(table.size(), 12U);
  for (const Row& row : table) EXPECT_EQ(state.text(row.id), row.text) << row.id;
}

TEST_F(PointsDialogTest, HasThePicturesOfPointGroupsAndPoints) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(host::kIdPicturePointGroup)->picture, kPicturePointGroup);
  EXPECT_EQ(state.find(host::kIdPicturePointCount)->picture, kPicturePoint);
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
    EXPECT_EQ(rows(state, host::kIdSites), L"S|T|[*none*]") << "its empty name is the still empty selection";
    EXPECT_EQ(rows(state, host::kIdAlignments), L"[Loose]");
    EXPECT_EQ(dialog.siteText, L"*none*");
    state.userClicks(host::kIdPickPoints);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]|T|*none*") << "the row's words are no site's name";
  EXPECT_EQ(dialog.siteText, L"S");
}

TEST_F(PointsDialogTest, SelectsTheFirstAlignmentAfterAChangeOfSite) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  state.userSelects(host::kIdAlignments, L"B");
  EXPECT_EQ(dialog.alignmentText, L"A") << "the list of alignments is read on OK alone";
  EXPECT_EQ(state.userSelects(host::kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[C]");
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
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
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
    state.userClicks(host::kIdPickPoints);
    EXPECT_EQ(state.closedWith(), host::kIdPickPoints);
  }
  setPicked(dialog, 3);
  for (int opening = 0; opening < 2; ++opening) {
    DialogState state(dialog);
    EXPECT_EQ(rows(state, kGroups), L"two|one|none|[picked]");
    EXPECT_EQ(state.text(kCount), L"3 points");
    EXPECT_EQ(dialog.groupIndex, 0) << "stays as it stood";
    EXPECT_EQ(dialog.groupText, L"two");
    state.userSelects(kGroups, L"one");
    state.userClicks(host::kIdPickAlignment);
  }
  setPicked(dialog, 1);
  DialogState state(dialog);
  EXPECT_EQ(state.text(kCount), L"1 point");
  state.userTypes(host::kIdOutputStem, L"/r/x");
  state.userClicks(host::kIdOk);
  EXPECT_EQ(dialog.groupText, L"picked") << "read anew on OK";
}

TEST_F(PointsDialogTest, OpensAtTheFirstRowAgainAfterACancelledPick) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  {
    DialogState state(dialog);
    state.userSelects(kGroups, L"one");
    state.userClicks(host::kIdPickPoints);
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
  state.userSelects(host::kIdSites, L"T");
  state.userSelects(kGroups, L"one");
  EXPECT_FALSE(state.isEnabled(host::kIdOk)) << "without a stem nothing enables it";
  state.userTypes(host::kIdOutputStem, L"/");
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
  state.userTypes(host::kIdOutputStem, L"");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::Disabled);
}

TEST_F(PointsDialogTest, ReadsTheListsAndTicksOnOk) {
  useUsualDrawing();
  CExportPointsDlg dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  state.userSelects(host::kIdAlignments, L"B");
  state.userSelects(kGroups, L"one");
  state.userTicks(host::kIdCheckExcel, false);
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(state.closedWith(), host::kIdOk);
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
  EXPECT_EQ(rows(state, host::kIdSites), L"");
  EXPECT_EQ(rows(state, host::kIdAlignments), L"");
  EXPECT_EQ(dialog.siteIndex, -1);
  EXPECT_EQ(dialog.alignmentIndex, -1);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None) << "OK asks for no alignment";
  EXPECT_EQ(dialog.siteText, L"");
  EXPECT_EQ(dialog.alignmentText, L"");
  EXPECT_EQ(dialog.groupText, L"picked");
}

TEST_F(PointsDialogTest, ReadsNothingFromTheControlsOnAPickOrOnCancel) {
  useUsualDrawing();
  for (const int button : {host::kIdPickAlignment, host::kIdPickPoints, host::kIdCancel}) {
    CExportPointsDlg dialog(host);
    {
      DialogState state(dialog);
      state.userSelects(host::kIdAlignments, L"B");
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
    state.userSelects(host::kIdSites, L"T");
    state.userTypes(host::kIdOutputStem, L"/r/x");
    for (const int form : {host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml}) state.userTicks(form, false);
    state.userClicks(host::kIdPickAlignment);
  }
  {
    DialogState again(dialog);
    EXPECT_EQ(rows(again, host::kIdSites), L"S|[T]");
    EXPECT_EQ(rows(again, host::kIdAlignments), L"[C]");
    EXPECT_EQ(again.text(host::kIdOutputStem), L"/r/x");
    EXPECT_EQ(again.find(host::kIdOutputStem)->tip, L"/r/x");
    EXPECT_TRUE(again.isEnabled(host::kIdOk));
    for (const int form : {host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml})
      EXPECT_TRUE(again.isTicked(form));
    again.userClicks(host::kIdPickAlignment);
  }
  dialog.siteText = L"S";
  dialog.alignmentText = L"B";  // what a pick names
  const DialogState picked(dialog);
  EXPECT_EQ(rows(picked, host::kIdSites), L"[S]|T");
  EXPECT_EQ(rows(picked, host::kIdAlignments), L"A|[B]");
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
