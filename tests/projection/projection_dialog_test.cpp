#include "projection/projection_dialog.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "report_drawing/report_drawing.h"

namespace lvx::projection {

using namespace dialogs;
namespace {

using test::rows;
using windowless::DialogState;
using windowless::Refusal;

class ProjectionDialogTest : public testing::Test, public test::ReportDrawing {
 protected:
  ProjectionDialogTest() {
    host.useMessageBytes(
        "101 Title\r\n109 *none*\r\n4 Cancel it\r\n114 text\r\n115 sheet\r\n116 page\r\n1 All|*.*||\r\n");
  }

  /// An alignment with sample line groups.
  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                           std::initializer_list<CString> groups) {
    const auto made = addAlignment(site, name);
    for (const CString& group : groups) made->addGroup(group);
    return made;
  }

  /// Site "S" with axes "A" (groups g1, g2) and "B" (g3); one surface; nothing outside the sites.
  void useUsualDrawing() {
    const auto site = drawing.addSite(L"S");
    alignment(site, L"A", {L"g1", L"g2"});
    alignment(site, L"B", {L"g3"});
    drawing.addSurface(L"ground");
    drawing.addSurface(L"rock");
  }
};

constexpr int kGroups = kIdSampleLineGroups;
constexpr int kSurfaces = CMyDialog1::kIdSurfaces;

TEST_F(ProjectionDialogTest, OpensOnTheFirstOfEverythingWithAllFormsTickedAndOkDisabled) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"Title");
  EXPECT_EQ(rows(state, kIdSites), L"[S]");
  EXPECT_EQ(rows(state, kIdAlignments), L"[A]|B");
  EXPECT_EQ(rows(state, kGroups), L"[g1]|g2");
  EXPECT_EQ(rows(state, kSurfaces), L"[ground]|rock");
  for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) EXPECT_TRUE(state.isTicked(form));
  EXPECT_FALSE(state.isEnabled(kIdOk));
  EXPECT_EQ(state.text(kIdCheckThird), L"page");
  EXPECT_EQ(state.text(kIdCancel), L"Cancel it");
  EXPECT_EQ(state.text(kIdOk), L"OK") << "OK keeps the template's text";
}

TEST_F(ProjectionDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndDisablesItWithTheLast) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(state.userTypes(kIdOutputStem, L"/"), Refusal::None);
  EXPECT_TRUE(state.isEnabled(kIdOk));
  state.userTypes(kIdOutputStem, L"");
  EXPECT_FALSE(state.isEnabled(kIdOk));
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::Disabled);
}

TEST_F(ProjectionDialogTest, NeverEnablesOkWithoutASurface) {
  alignment(drawing.addSite(L"S"), L"A", {L"g"});
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  state.userSelects(kGroups, 0);
  EXPECT_EQ(dialog.surfaceIndex, -1);
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, KeepsOkDisabledWhereTheAlignmentHasNoSampleLineGroup) {
  alignment(drawing.addSite(L"S"), L"A", {});
  drawing.addSurface(L"ground");
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, SelectsTheFirstAlignmentAndItsFirstGroupAfterAChangeOfSite) {
  useUsualDrawing();
  const auto other = drawing.addSite(L"T");
  alignment(other, L"C", {L"g4", L"g5"});
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  EXPECT_EQ(state.userSelects(kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, kIdAlignments), L"[C]");
  EXPECT_EQ(rows(state, kGroups), L"[g4]|g5");
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"C");
  EXPECT_EQ(dialog.groupText, L"g4");
}

TEST_F(ProjectionDialogTest, LeavesTheGroupUnselectedAfterAChangeOfAlignmentWhileOkStaysEnabled) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  ASSERT_TRUE(state.isEnabled(kIdOk));
  state.userSelects(kIdAlignments, L"B");
  EXPECT_EQ(rows(state, kGroups), L"g3") << "the new groups stand there, none of them selected";
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_EQ(dialog.groupText, L"");
  EXPECT_TRUE(state.isEnabled(kIdOk)) << "nothing but the stem takes OK away again";
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::None);
  EXPECT_EQ(state.closedWith(), kIdOk);
  EXPECT_EQ(dialog.groupText, L"") << "the report then has its header alone";
  EXPECT_EQ(dialog.reportAlignmentText, L"B");
}

TEST_F(ProjectionDialogTest, EnablesOkOnceTheMissingGroupIsChosen) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userSelects(kIdAlignments, L"B");
  state.userTypes(kIdOutputStem, L"/r/x");
  EXPECT_FALSE(state.isEnabled(kIdOk));
  state.userSelects(kGroups, L"g3");
  EXPECT_TRUE(state.isEnabled(kIdOk));
  state.userSelects(kSurfaces, L"rock");
  EXPECT_EQ(dialog.surfaceText, L"rock");
}

TEST_F(ProjectionDialogTest, FindsItsSelectionsByNameWhenItOpensAgain) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userTypes(kIdOutputStem, L"/r/x");
    state.userSelects(kIdAlignments, L"B");
    state.userSelects(kGroups, L"g3");
    state.userSelects(kSurfaces, L"rock");
    EXPECT_EQ(state.userClicks(kIdPickSecond), Refusal::None);
    EXPECT_EQ(state.closedWith(), kIdPickSecond);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kIdSites), L"[S]");
  EXPECT_EQ(rows(again, kIdAlignments), L"A|[B]");
  EXPECT_EQ(rows(again, kGroups), L"[g3]");
  EXPECT_EQ(rows(again, kSurfaces), L"ground|[rock]");
  EXPECT_EQ(again.text(kIdOutputStem), L"/r/x");
  EXPECT_EQ(again.find(kIdOutputStem)->tip, L"/r/x");
  EXPECT_TRUE(again.isEnabled(kIdOk));
  EXPECT_EQ(companion.attachments, 1) << "the model is reached once for the life of the dialog";
}

TEST_F(ProjectionDialogTest, FallsBackToTheFirstRowWhenItOpensAgainOnTheRowWithoutASite) {
  const auto site = drawing.addSite(L"S");
  alignment(site, L"A", {L"g1"});
  drawing.addSurface(L"ground");
  // The tree of this host has the row without a site at its end.
  alignment(nullptr, L"Loose", {L"g2"});
  companion.fillSites = [this](host::SiteTree& sites) {
    fillSiteTree(sites);
    host::tsite* first = sites[0];
    sites.removeAt(0);
    sites.add(first);
  };
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userSelects(kIdSites, L"*none*");
    EXPECT_EQ(dialog.siteText, L"*none*");
    state.userClicks(kIdPickSecond);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kIdSites), L"[S]|*none*") << "the row's words are no site's name";
  EXPECT_EQ(dialog.siteText, L"S");
}

TEST_F(ProjectionDialogTest, FallsBackToTheFirstRowForANameThatHasGone) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userClicks(kIdPickAlignment);
  }
  dialog.alignmentText = L"gone";
  dialog.surfaceText = L"gone too";
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kIdAlignments), L"[A]|B");
  EXPECT_EQ(dialog.alignmentText, L"A");
  EXPECT_EQ(dialog.surfaceText, L"ground");
}

TEST_F(ProjectionDialogTest, StaysUnattachedWhereTheModelIsOutOfReachAndTriesAgainNextTime) {
  useUsualDrawing();
  companion.document = nullptr;
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    EXPECT_EQ(dialog.loaded, 0);
    EXPECT_EQ(rows(state, kIdSites), L"");
    state.userTypes(kIdOutputStem, L"/r/x");
    EXPECT_FALSE(state.isEnabled(kIdOk));
    state.userClicks(kIdPickAlignment);
  }
  companion.document = drawing.document;
  const DialogState again(dialog);
  EXPECT_EQ(dialog.loaded, 1);
  EXPECT_EQ(rows(again, kIdSites), L"[S]");
  EXPECT_EQ(companion.attachments, 2);
}

TEST_F(ProjectionDialogTest, GivesNothingBackWhereItNeverAttached) {
  { CMyDialog1 dialog(host); }
  companion.document = nullptr;
  {
    CMyDialog1 dialog(host);
    const DialogState state(dialog);
  }
  EXPECT_EQ(companion.treesFreed, 0);
  EXPECT_EQ(companion.releases, 0);
}

TEST_F(ProjectionDialogTest, KeepsOkDisabledForAFileNameThatIsNothingButAnExtension) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  host.users().paths = {L".txt"};
  state.userClicks(kIdOutputFileBox);
  EXPECT_EQ(dialog.outputStem, L"");
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, ShowsEveryCaptionAsItsNumberWhereTheMessageFileIsMissing) {
  companion.document = nullptr;
  test::FakeHost bare;
  CMyDialog1 dialog(bare);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"*101*");
  EXPECT_EQ(state.text(kIdLabelSite), L"*103*");
  EXPECT_EQ(state.text(kIdCheckAscii), L"*114*");
}

TEST_F(ProjectionDialogTest, RaisesTheInvalidArgumentExceptionForAnAlignmentThatTheOverallListDoesNotHold) {
  useUsualDrawing();
  runTime.objects.clear();  // nothing opens, so no handle text in the overall list is right
  CMyDialog1 dialog(host);
  EXPECT_THROW(const DialogState state(dialog), framework::InvalidArgumentException);
}

TEST_F(ProjectionDialogTest, HasEveryPictureOnItsControl) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(270)->picture, kPictureSite);
  EXPECT_EQ(state.find(271)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(273)->picture, kPictureSurface);
  EXPECT_EQ(state.find(101)->picture, kPictureSampleLineGroup);
  EXPECT_EQ(state.find(kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdPickSecond)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdOutputFileBox)->picture, kPictureSave);
}

TEST_F(ProjectionDialogTest, HasItsControlsAndItsSize) {
  const CMyDialog1 dialog(host);
  const DialogTemplate& made = dialog.dialogTemplate();
  EXPECT_EQ(made.controls.size(), 24U);
  EXPECT_EQ(made.width, 283);
  EXPECT_EQ(made.height, 214);
  EXPECT_EQ(made.title, L"*Profiles projection");
}

}  // namespace
}  // namespace lvx::projection
