#include "projection/projection_dialog.h"

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
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

constexpr int kGroups = host::kIdSampleLineGroups;
constexpr int kSurfaces = host::kIdSurfaces;

TEST_F(ProjectionDialogTest, OpensOnTheFirstOfEverythingWithAllFormsTickedAndOkDisabled) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"Title");
  EXPECT_EQ(rows(state, host::kIdSites), L"[S]");
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[A]|B");
  EXPECT_EQ(rows(state, kGroups), L"[g1]|g2");
  EXPECT_EQ(rows(state, kSurfaces), L"[ground]|rock");
  for (const int form : {host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml})
    EXPECT_TRUE(state.isTicked(form));
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
  EXPECT_EQ(state.text(host::kIdCheckHtml), L"page");
  EXPECT_EQ(state.text(host::kIdCancel), L"Cancel it");
  EXPECT_EQ(state.text(host::kIdOk), L"OK") << "OK keeps the template's text";
}

TEST_F(ProjectionDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndDisablesItWithTheLast) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(state.userTypes(host::kIdOutputStem, L"/"), Refusal::None);
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
  state.userTypes(host::kIdOutputStem, L"");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::Disabled);
}

TEST_F(ProjectionDialogTest, NeverEnablesOkWithoutASurface) {
  alignment(drawing.addSite(L"S"), L"A", {L"g"});
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  state.userSelects(kGroups, 0);
  EXPECT_EQ(dialog.surfaceIndex, -1);
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TEST_F(ProjectionDialogTest, KeepsOkDisabledWhereTheAlignmentHasNoSampleLineGroup) {
  alignment(drawing.addSite(L"S"), L"A", {});
  drawing.addSurface(L"ground");
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TEST_F(ProjectionDialogTest, SelectsTheFirstAlignmentAndItsFirstGroupAfterAChangeOfSite) {
  useUsualDrawing();
  const auto other = drawing.addSite(L"T");
  alignment(other, L"C", {L"g4", L"g5"});
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_EQ(state.userSelects(host::kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[C]");
  EXPECT_EQ(rows(state, kGroups), L"[g4]|g5");
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"C");
  EXPECT_EQ(dialog.groupText, L"g4");
}

TEST_F(ProjectionDialogTest, LeavesTheGroupUnselectedAfterAChangeOfAlignmentWhileOkStaysEnabled) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  ASSERT_TRUE(state.isEnabled(host::kIdOk));
  state.userSelects(host::kIdAlignments, L"B");
  EXPECT_EQ(rows(state, kGroups), L"g3") << "the new groups stand there, none of them selected";
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_EQ(dialog.groupText, L"");
  EXPECT_TRUE(state.isEnabled(host::kIdOk)) << "nothing but the stem takes OK away again";
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(state.closedWith(), host::kIdOk);
  EXPECT_EQ(dialog.groupText, L"") << "the report then has its header alone";
  EXPECT_EQ(dialog.reportAlignmentText, L"B");
}

TEST_F(ProjectionDialogTest, EnablesOkOnceTheMissingGroupIsChosen) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  DialogState state(dialog);
  state.userSelects(host::kIdAlignments, L"B");
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
  state.userSelects(kGroups, L"g3");
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
  state.userSelects(kSurfaces, L"rock");
  EXPECT_EQ(dialog.surfaceText, L"rock");
}

TEST_F(ProjectionDialogTest, FindsItsSelectionsByNameWhenItOpensAgain) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userTypes(host::kIdOutputStem, L"/r/x");
    state.userSelects(host::kIdAlignments, L"B");
    state.userSelects(kGroups, L"g3");
    state.userSelects(kSurfaces, L"rock");
    EXPECT_EQ(state.userClicks(host::kIdPickSurface), Refusal::None);
    EXPECT_EQ(state.closedWith(), host::kIdPickSurface);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]");
  EXPECT_EQ(rows(again, host::kIdAlignments), L"A|[B]");
  EXPECT_EQ(rows(again, kGroups), L"[g3]");
  EXPECT_EQ(rows(again, kSurfaces), L"ground|[rock]");
  EXPECT_EQ(again.text(host::kIdOutputStem), L"/r/x");
  EXPECT_EQ(again.find(host::kIdOutputStem)->tip, L"/r/x");
  EXPECT_TRUE(again.isEnabled(host::kIdOk));
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
    state.userSelects(host::kIdSites, L"*none*");
    EXPECT_EQ(dialog.siteText, L"*none*");
    state.userClicks(host::kIdPickSurface);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]|*none*") << "the row's words are no site's name";
  EXPECT_EQ(dialog.siteText, L"S");
}

TEST_F(ProjectionDialogTest, FallsBackToTheFirstRowForANameThatHasGone) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userClicks(host::kIdPickAlignment);
  }
  dialog.alignmentText = L"gone";
  dialog.surfaceText = L"gone too";
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdAlignments), L"[A]|B");
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
    EXPECT_EQ(rows(state, host::kIdSites), L"");
    state.userTypes(host::kIdOutputStem, L"/r/x");
    EXPECT_FALSE(state.isEnabled(host::kIdOk));
    state.userClicks(host::kIdPickAlignment);
  }
  companion.document = drawing.document;
  const DialogState again(dialog);
  EXPECT_EQ(dialog.loaded, 1);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]");
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
  state.userTypes(host::kIdOutputStem, L"/r/x");
  host.users().paths = {L".txt"};
  state.userClicks(host::kIdOutputFileBox);
  EXPECT_EQ(dialog.outputStem, L"");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TEST_F(ProjectionDialogTest, ShowsEveryCaptionAsItsNumberWhereTheMessageFileIsMissing) {
  companion.document = nullptr;
  test::FakeHost bare;
  CMyDialog1 dialog(bare);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"*101*");
  EXPECT_EQ(state.text(host::kIdLabelSite), L"*103*");
  EXPECT_EQ(state.text(host::kIdCheckAscii), L"*114*");
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
  EXPECT_EQ(state.find(host::kIdPictureSite)->picture, kPictureSite);
  EXPECT_EQ(state.find(host::kIdPictureAlignment)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(host::kIdPictureSurface)->picture, kPictureSurface);
  EXPECT_EQ(state.find(host::kIdPictureSampleLineGroup)->picture, kPictureSampleLineGroup);
  EXPECT_EQ(state.find(host::kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(host::kIdPickSurface)->picture, kPicturePick);
  EXPECT_EQ(state.find(host::kIdOutputFileBox)->picture, kPictureSave);
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
