#include "gls/gls_dialog.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "doubles/fake_roadway.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
#include "report_drawing/report_drawing.h"
#include "support/bits_window.h"

namespace lvx::gls {

using namespace dialogs;
namespace {

using test::rows;
using windowless::DialogState;
using windowless::Refusal;

constexpr int kGroups = host::kIdSampleLineGroups;
constexpr int kProfiles = host::kIdProfiles;
constexpr int kCorridors = host::kIdCorridors;

class GlsDialogTest : public testing::Test, public test::ReportDrawing {
 protected:
  GlsDialogTest() : roadway_(host) { host.useMessageBytes("3 No corridors\r\n302 Profile\r\n341 Corridor\r\n"); }

  /// An alignment with sample line groups and profiles.
  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                           std::initializer_list<CString> groups,
                                           std::initializer_list<CString> profiles) {
    const auto made = addAlignment(site, name);
    for (const CString& group : groups) made->addGroup(group);
    for (const CString& profile : profiles) made->profiles.push_back({profile, {}});
    return made;
  }

  /// Site "S" with axes "A" (groups g1, g2; profiles p1, p2) and "B" (g3; q1, q2); no corridor.
  void useUsualDrawing() {
    const auto site = drawing.addSite(L"S");
    first_ = alignment(site, L"A", {L"g1", L"g2"}, {L"p1", L"p2"});
    second_ = alignment(site, L"B", {L"g3"}, {L"q1", L"q2"});
  }

  /// A corridor with a baseline on each of these alignments.
  void corridor(const CString& name, std::initializer_list<host::Ref<test::FakeAlignment>> axes) {
    const auto made = roadway_.addCorridor(name);
    for (const auto& axis : axes) made->addBaseline()->alignmentObject = axis;
  }

  test::FakeRoadway roadway_;
  host::Ref<test::FakeAlignment> first_;
  host::Ref<test::FakeAlignment> second_;
};

// ---------------------------------------------------------------- opening

TEST_F(GlsDialogTest, OpensOnTheFirstProfileAndCorridor) {
  useUsualDrawing();
  corridor(L"Road", {first_});
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kProfiles), L"[p1]|p2");
  EXPECT_EQ(rows(state, kCorridors), L"[Road]");
  EXPECT_EQ(dialog.corridorText, L"Road");
  EXPECT_EQ(state.text(host::kIdLabelProfile), L"Profile");
  EXPECT_EQ(state.text(host::kIdLabelCorridor), L"Corridor");
}

TEST_F(GlsDialogTest, KeepsOkDisabledWhereTheAlignmentHasNoProfile) {
  alignment(drawing.addSite(L"S"), L"A", {L"g"}, {});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(dialog.profileIndex, -1);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TEST_F(GlsDialogTest, EnablesOkWithoutAnyCorridor) {
  useUsualDrawing();
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(rows(state, kCorridors), L"");
  EXPECT_EQ(dialog.corridorIndex, -1);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
}

TEST_F(GlsDialogTest, AttachesWhereTheRoadwayDocumentHasNoCorridorsAtAll) {
  useUsualDrawing();
  roadway_.document->corridorList = nullptr;
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(dialog.loaded, 1);
  EXPECT_EQ(rows(state, kCorridors), L"");
}

TEST_F(GlsDialogTest, FindsProfileAndCorridorByNameWhenItOpensAgain) {
  useUsualDrawing();
  corridor(L"Road 1", {first_});
  corridor(L"Road 2", {second_});
  CMyDialog3 dialog(host);
  {
    DialogState state(dialog);
    EXPECT_EQ(state.userClicks(host::kIdPickProfile), Refusal::None);
  }
  dialog.alignmentText = L"B";
  dialog.profileText = L"q2";
  dialog.corridorText = L"Road 2";
  const DialogState again(dialog);
  EXPECT_EQ(dialog.groupText, L"g3") << "g1, which B hasn't got, has given way";
  EXPECT_EQ(rows(again, kProfiles), L"q1|[q2]");
  EXPECT_EQ(rows(again, kCorridors), L"Road 1|[Road 2]");
}

// ---------------------------------------------------------------- the list of corridors

TEST_F(GlsDialogTest, ListsEveryCorridorOnceThatLiesOnAnyAlignmentOfTheDrawing) {
  useUsualDrawing();
  const auto foreign = std::make_shared<test::FakeAlignment>();
  foreign->handleText = L"elsewhere";
  corridor(L"on both", {first_, second_});
  corridor(L"on the other", {foreign, second_});
  corridor(L"elsewhere", {foreign});
  corridor(L"without baselines", {});
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kCorridors), L"[on both]|on the other");
  EXPECT_EQ(dialog.corridorList.size(), 4);
}

TEST_F(GlsDialogTest, LooksAtAsManyBaselinesOfACorridorAsTheDrawingHasCorridors) {
  useUsualDrawing();
  const auto foreign = std::make_shared<test::FakeAlignment>();
  foreign->handleText = L"elsewhere";
  corridor(L"late", {foreign, first_});
  {
    CMyDialog3 dialog(host);
    const DialogState state(dialog);
    EXPECT_EQ(rows(state, kCorridors), L"") << "one corridor: its second baseline isn't looked at";
    EXPECT_EQ(dialog.corridorList[0]->baselines.size(), 1);
  }
  corridor(L"early", {first_});
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kCorridors), L"[late]|early");
}

TEST_F(GlsDialogTest, PassesOverCorridorsBaselinesAndAlignmentsThatAreMissing) {
  useUsualDrawing();
  roadway_.document->corridorList->items.push_back(nullptr);
  corridor(L"Road", {nullptr, first_});
  const auto bare = roadway_.addCorridor(L"bare");
  bare->baselineList = nullptr;
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kCorridors), L"[Road]");
  EXPECT_EQ(dialog.corridorList.size(), 2);
}

TEST_F(GlsDialogTest, SelectsACorridorByItsPlaceAmongAllOfThemWhenItOpensAgain) {
  useUsualDrawing();
  corridor(L"unlisted", {});
  corridor(L"Road 1", {first_});
  corridor(L"Road 2", {first_});
  CMyDialog3 dialog(host);
  {
    DialogState state(dialog);
    EXPECT_EQ(rows(state, kCorridors), L"[Road 1]|Road 2");
    state.userClicks(host::kIdPickAlignment);
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, kCorridors), L"Road 1|[Road 2]") << "Road 1 is the second of all corridors";
  EXPECT_EQ(dialog.corridorText, L"Road 2");
}

TEST_F(GlsDialogTest, RaisesTheInvalidArgumentExceptionWhereThatPlaceIsBeyondTheList) {
  useUsualDrawing();
  corridor(L"unlisted", {});
  corridor(L"Road", {first_});
  CMyDialog3 dialog(host);
  {
    DialogState state(dialog);
    state.userClicks(host::kIdPickAlignment);
  }
  EXPECT_THROW(const DialogState again(dialog), framework::InvalidArgumentException);
}

TEST_F(GlsDialogTest, TakesTheTextOfTheProfileListWhenACorridorIsChosen) {
  useUsualDrawing();
  corridor(L"Road 1", {first_});
  corridor(L"Road 2", {first_});
  corridor(L"Road 3", {first_});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userSelects(kCorridors, 1);
  EXPECT_EQ(dialog.corridorIndex, 1);
  EXPECT_EQ(dialog.corridorText, L"p2");
  EXPECT_THROW(state.userSelects(kCorridors, 2), framework::InvalidArgumentException) << "there are two profiles";
}

// ---------------------------------------------------------------- changes of selection

TEST_F(GlsDialogTest, SelectsTheFirstProfileAfterAChangeOfSiteAndKeepsTheCorridors) {
  useUsualDrawing();
  alignment(drawing.addSite(L"T"), L"C", {L"g4"}, {L"r1", L"r2"});
  corridor(L"Road 1", {first_});
  corridor(L"Road 2", {first_});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userSelects(kCorridors, 1);
  EXPECT_EQ(state.userSelects(host::kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, kProfiles), L"[r1]|r2");
  EXPECT_EQ(rows(state, kCorridors), L"Road 1|[Road 2]");
  EXPECT_EQ(dialog.profileText, L"r1");
}

TEST_F(GlsDialogTest, ForgetsGroupAndProfileWhereTheOtherSiteOffersNone) {
  useUsualDrawing();
  alignment(drawing.addSite(L"T"), L"C", {}, {});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  ASSERT_TRUE(state.isEnabled(host::kIdOk));
  state.userSelects(host::kIdSites, L"T");
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_EQ(dialog.groupText, L"");
  EXPECT_EQ(dialog.profileIndex, -1);
  EXPECT_EQ(dialog.profileText, L"");
  EXPECT_TRUE(state.isEnabled(host::kIdOk)) << "nothing disables OK again";
}

TEST_F(GlsDialogTest, SelectsGroupAndProfileAfterAChangeOfAlignmentWithoutCorridors) {
  useUsualDrawing();
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userSelects(host::kIdAlignments, L"B");
  EXPECT_EQ(rows(state, kGroups), L"[g3]");
  EXPECT_EQ(rows(state, kProfiles), L"[q1]|q2");
  EXPECT_EQ(dialog.alignmentText, L"B");
  EXPECT_EQ(dialog.groupText, L"g3");
  EXPECT_EQ(dialog.profileText, L"q1");
}

TEST_F(GlsDialogTest, PutsTheCorridorsNameIntoTheProfilesTextAfterAChangeOfAlignment) {
  useUsualDrawing();
  corridor(L"Road 1", {first_});
  corridor(L"Road 2", {first_});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userSelects(host::kIdAlignments, L"B");
  EXPECT_EQ(rows(state, kProfiles), L"[q1]|q2") << "the list shows the profile";
  EXPECT_EQ(dialog.profileText, L"Road 1") << "the report would ask for a profile of this name";
  EXPECT_EQ(rows(state, kCorridors), L"[Road 1]|Road 2");
  EXPECT_EQ(dialog.corridorText, L"");
  EXPECT_EQ(dialog.corridorIndex, 0);
  state.userSelects(kProfiles, L"q2");
  EXPECT_EQ(dialog.profileText, L"q2") << "choosing the profile again mends it";
}

TEST_F(GlsDialogTest, RaisesTheInvalidArgumentExceptionForAnAlignmentWithoutProfilesWhereACorridorIsListed) {
  useUsualDrawing();
  alignment(drawing.database->siteList->items[0], L"bare", {L"g"}, {});
  corridor(L"Road", {first_});
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  EXPECT_THROW(state.userSelects(host::kIdAlignments, L"bare"), framework::InvalidArgumentException);
}

TEST_F(GlsDialogTest, TakesTheProfileFromItsList) {
  useUsualDrawing();
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  state.userSelects(kProfiles, L"p2");
  EXPECT_EQ(dialog.profileText, L"p2");
  EXPECT_EQ(dialog.profileIndex, 1);
}

// ---------------------------------------------------------------- stem, file box, OK

TEST_F(GlsDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndLeavesItEnabledWithoutOne) {
  useUsualDrawing();
  CMyDialog3 dialog(host);
  DialogState state(dialog);
  EXPECT_EQ(state.userTypes(host::kIdOutputStem, L"/"), Refusal::None);
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
  state.userTypes(host::kIdOutputStem, L"");
  EXPECT_EQ(dialog.outputStem, L"");
  EXPECT_TRUE(state.isEnabled(host::kIdOk)) << "the command answers an empty stem";
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None);
}

// ---------------------------------------------------------------- attaching and going

TEST_F(GlsDialogTest, StaysUnattachedWhereTheCorridorsAreOutOfReachAndTellsAtEachOpening) {
  useUsualDrawing();
  host.setApplication(L"Vantor.Application.24", nullptr);
  const auto references = drawing.document.use_count();
  {
    CMyDialog3 dialog(host);
    for (int opening = 0; opening < 2; ++opening) {
      DialogState state(dialog);
      EXPECT_EQ(rows(state, host::kIdSites), L"");
      state.userClicks(host::kIdPickAlignment);
    }
    EXPECT_EQ(dialog.loaded, 0);
  }
  const test::FakeUserInterface::Box told{L"No corridors (2)", host::BoxButtons::Ok, host::BoxIcon::Stop};
  EXPECT_EQ(host.users().boxes, (std::vector<test::FakeUserInterface::Box>{told, told}));
  EXPECT_EQ(drawing.document.use_count(), references);
  EXPECT_EQ(companion.releases, 0);
  EXPECT_EQ(companion.treesMade, 0);
}

TEST_F(GlsDialogTest, KeepsTheModuleConnectedWithTheCorridorsWhenItGoes) {
  useUsualDrawing();
  corridor(L"Road", {first_});
  {
    CMyDialog3 dialog(host);
    const DialogState state(dialog);
  }
  EXPECT_NE(host::roadwayDocument(), nullptr);
}

// ---------------------------------------------------------------- look

TEST_F(GlsDialogTest, HasThePicturesOfProfilesAndCorridors) {
  useUsualDrawing();
  CMyDialog3 dialog(host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(host::kIdPictureProfile)->picture, kPictureProfile);
  EXPECT_EQ(state.find(host::kIdPictureCorridor)->picture, kPictureCorridor);
}

TEST_F(GlsDialogTest, TurnsTheWhiteOfFourPicturesIntoTheFaceColourAndLeavesTheCorridorsAsItIs) {
  companion.document = nullptr;  // the bits window holds no rows
  host.users().faceColour = 0x00302010;
  CMyDialog3 dialog(host);
  host::BitsWindow window;
  dialog.onOpening(window);
  for (const int id :
       {host::kIdPictureSite, host::kIdPictureAlignment, host::kIdPictureSampleLineGroup, host::kIdPictureProfile})
    EXPECT_NE(window.pictures.at(id).bytes, findPicture(window.pictures.at(id).name)->bytes) << id;
  for (const int id : {host::kIdPictureCorridor, host::kIdPickAlignment, host::kIdPickProfile, host::kIdOutputFileBox})
    EXPECT_EQ(window.pictures.at(id).bytes, findPicture(window.pictures.at(id).name)->bytes) << id;
}

TEST_F(GlsDialogTest, HasItsControlsAndItsSize) {
  const CMyDialog3 dialog(host);
  const DialogTemplate& made = dialog.dialogTemplate();
  EXPECT_EQ(made.controls.size(), 27U);
  EXPECT_EQ(made.width, 283);
  EXPECT_EQ(made.height, 238);
  EXPECT_EQ(made.title, L"*GLS");
}

}  // namespace
}  // namespace lvx::gls
