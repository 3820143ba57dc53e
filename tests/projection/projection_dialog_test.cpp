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

TEST_F(ProjectionDialogTest, OpensOnTheFirstSurface) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kSurfaces), L"[ground]|rock");
  EXPECT_EQ(dialog.surfaceText, L"ground");
}

TEST_F(ProjectionDialogTest, FindsItsSurfaceByNameWhenItOpensAgain) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  {
    DialogState state(dialog);
    state.userSelects(kSurfaces, L"rock");
    state.userClicks(host::kIdPickSurface);
  }
  {
    const DialogState again(dialog);
    EXPECT_EQ(rows(again, kSurfaces), L"ground|[rock]");
  }
  dialog.surfaceText = L"gone";
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kSurfaces), L"[ground]|rock");
  EXPECT_EQ(dialog.surfaceText, L"ground");
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

TEST_F(ProjectionDialogTest, HasThePictureOfSurfaces) {
  useUsualDrawing();
  CMyDialog1 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(host::kIdPictureSurface)->picture, kPictureSurface);
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
