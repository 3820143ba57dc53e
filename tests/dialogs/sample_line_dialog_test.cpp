#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/report_dialog.h"
#include "doubles/fake_roadway.h"
#include "framework/exceptions.h"
#include "gls/gls_dialog.h"
#include "host/dialog_controls.h"
#include "projection/projection_dialog.h"
#include "report_drawing/report_drawing.h"

namespace lvx::dialogs {
namespace {

using gls::CMyDialog3;
using projection::CMyDialog1;
using test::rows;
using windowless::DialogState;
using windowless::Refusal;

constexpr int kGroups = host::kIdSampleLineGroups;

/// What holds for the two dialogs that ask for a sample line group. The drawing has what each of them asks for beside it:
/// profiles and surfaces.
template <class Dialog>
class SampleLineDialogTest : public testing::Test, public test::ReportDrawing {
 protected:
  SampleLineDialogTest() : roadway_(host) { host.useMessageBytes("109 *none*\r\n"); }

  /// An alignment with sample line groups and two profiles.
  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                           std::initializer_list<CString> groups) {
    const auto made = addAlignment(site, name);
    for (const CString& group : groups) made->addGroup(group);
    made->profiles = {{name + L" ground", L""}, {name + L" design", L""}};
    return made;
  }

  /// Site "S" with axes "A" (groups g1, g2) and "B" (g3); surfaces; nothing outside the sites, no corridor.
  void useUsualDrawing() {
    const auto site = drawing.addSite(L"S");
    alignment(site, L"A", {L"g1", L"g2"});
    alignment(site, L"B", {L"g3"});
    useSurfaces();
  }
  void useSurfaces() {
    drawing.addSurface(L"ground");
    drawing.addSurface(L"rock");
  }

  test::FakeRoadway roadway_;
};

struct NameOfDialog {
  template <class Dialog>
  static std::string GetName(int) {
    return std::is_same_v<Dialog, CMyDialog1> ? "Projection" : "Gls";
  }
};
using Dialogs = testing::Types<CMyDialog1, CMyDialog3>;
TYPED_TEST_SUITE(SampleLineDialogTest, Dialogs, NameOfDialog);

TYPED_TEST(SampleLineDialogTest, OpensOnTheFirstGroupOfTheFirstAlignment) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[A]|B");
  EXPECT_EQ(rows(state, kGroups), L"[g1]|g2");
  EXPECT_EQ(dialog.groupText, L"g1");
}

TYPED_TEST(SampleLineDialogTest, KeepsOkDisabledWhereTheAlignmentHasNoSampleLineGroup) {
  this->alignment(this->drawing.addSite(L"S"), L"A", {});
  this->useSurfaces();
  TypeParam dialog(this->host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TYPED_TEST(SampleLineDialogTest, SelectsTheFirstAlignmentAndItsFirstGroupAfterAChangeOfSite) {
  this->useUsualDrawing();
  this->alignment(this->drawing.addSite(L"T"), L"C", {L"g4", L"g5"});
  TypeParam dialog(this->host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  EXPECT_EQ(state.userSelects(host::kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[C]");
  EXPECT_EQ(rows(state, kGroups), L"[g4]|g5");
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"C");
  EXPECT_EQ(dialog.groupText, L"g4");
}

TYPED_TEST(SampleLineDialogTest, TakesTheGroupFromItsList) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  DialogState state(dialog);
  EXPECT_EQ(state.userSelects(kGroups, L"g2"), Refusal::None);
  EXPECT_EQ(dialog.groupText, L"g2");
  EXPECT_EQ(dialog.groupIndex, 1);
}

TYPED_TEST(SampleLineDialogTest, FindsItsSelectionsByNameWhenItOpensAgain) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    state.userTypes(host::kIdOutputStem, L"/r/x");
    state.userSelects(host::kIdAlignments, L"B");
    state.userSelects(kGroups, L"g3");
    EXPECT_EQ(state.userClicks(dialog.secondPick()), Refusal::None);
    EXPECT_EQ(state.closedWith(), dialog.secondPick());
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]");
  EXPECT_EQ(rows(again, host::kIdAlignments), L"A|[B]");
  EXPECT_EQ(rows(again, kGroups), L"[g3]");
  EXPECT_EQ(again.text(host::kIdOutputStem), L"/r/x");
  EXPECT_EQ(again.find(host::kIdOutputStem)->tip, L"/r/x");
  EXPECT_TRUE(again.isEnabled(host::kIdOk));
  EXPECT_EQ(this->companion.attachments, 1) << "the model is reached once for the life of the dialog";
}

TYPED_TEST(SampleLineDialogTest, FallsBackToTheFirstRowWhenItOpensAgainOnTheRowWithoutASite) {
  this->alignment(this->drawing.addSite(L"S"), L"A", {L"g1"});
  this->useSurfaces();
  // The tree of this host has the row without a site at its end.
  this->alignment(nullptr, L"Loose", {L"g2"});
  this->companion.fillSites = [this](host::SiteTree& sites) {
    this->fillSiteTree(sites);
    host::tsite* first = sites[0];
    sites.removeAt(0);
    sites.add(first);
  };
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    state.userSelects(host::kIdSites, L"*none*");
    EXPECT_EQ(dialog.siteText, L"*none*");
    state.userClicks(dialog.secondPick());
  }
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]|*none*") << "the row's words are no site's name";
  EXPECT_EQ(dialog.siteText, L"S");
}

TYPED_TEST(SampleLineDialogTest, FallsBackToTheFirstRowForANameThatHasGone) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    state.userClicks(host::kIdPickAlignment);
  }
  dialog.alignmentText = L"gone";
  dialog.groupText = L"gone too";
  const DialogState again(dialog);
  EXPECT_EQ(rows(again, host::kIdAlignments), L"[A]|B");
  EXPECT_EQ(dialog.alignmentText, L"A");
  EXPECT_EQ(dialog.groupText, L"g1");
}

TYPED_TEST(SampleLineDialogTest, TakesTheShownAlignmentForTheReportsOnOkAndNotOnCancel) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    state.userCloses();
    EXPECT_EQ(dialog.reportAlignmentText, L"");
  }
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  state.userSelects(host::kIdAlignments, L"B");
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(dialog.reportAlignmentText, L"B");
}

TYPED_TEST(SampleLineDialogTest, RaisesTheInvalidArgumentExceptionForAnAlignmentThatTheOverallListDoesNotHold) {
  this->useUsualDrawing();
  this->runTime.objects.clear();  // nothing opens, so no handle text in the overall list is right
  TypeParam dialog(this->host);
  EXPECT_THROW(const DialogState state(dialog), framework::InvalidArgumentException);
}

TYPED_TEST(SampleLineDialogTest, StaysUnattachedWhereTheModelIsOutOfReachAndTriesAgainNextTime) {
  this->useUsualDrawing();
  this->companion.document = nullptr;
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    EXPECT_EQ(dialog.loaded, 0);
    EXPECT_EQ(rows(state, host::kIdSites), L"");
    state.userTypes(host::kIdOutputStem, L"/r/x");
    EXPECT_FALSE(state.isEnabled(host::kIdOk));
    state.userClicks(host::kIdPickAlignment);
  }
  EXPECT_TRUE(this->host.users().boxes.empty());
  this->companion.document = this->drawing.document;
  const DialogState again(dialog);
  EXPECT_EQ(dialog.loaded, 1);
  EXPECT_EQ(rows(again, host::kIdSites), L"[S]");
  EXPECT_EQ(this->companion.attachments, 2);
}

TYPED_TEST(SampleLineDialogTest, GivesNothingBackWhereItNeverAttached) {
  this->companion.document = nullptr;
  {
    TypeParam dialog(this->host);
    const DialogState state(dialog);
  }
  EXPECT_EQ(this->companion.treesFreed, 0);
  EXPECT_EQ(this->companion.releases, 0);
}

TYPED_TEST(SampleLineDialogTest, ShowsEveryCaptionAsItsNumberWhereTheMessageFileIsMissing) {
  this->companion.document = nullptr;
  test::FakeHost bare;
  TypeParam dialog(bare);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), (std::is_same_v<TypeParam, CMyDialog1>) ? L"*101*" : L"*301*");
  std::vector<std::pair<int, const wchar_t*>> captions{
      {host::kIdCancel, L"*4*"},           {host::kIdHelp, L"*5*"},
      {host::kIdFrameSelection, L"*102*"}, {host::kIdLabelSite, L"*103*"},
      {host::kIdLabelAlignment, L"*104*"}, {host::kIdLabelSampleLineGroup, L"*105*"},
      {host::kIdFrameOutput, L"*108*"},    {host::kIdCheckAscii, L"*114*"},
      {host::kIdCheckExcel, L"*115*"},     {host::kIdCheckHtml, L"*116*"}};
  if (std::is_same_v<TypeParam, CMyDialog1>)
    captions.emplace_back(host::kIdLabelSurface, L"*107*");
  else
    captions.insert(captions.end(), {{host::kIdLabelProfile, L"*302*"}, {host::kIdLabelCorridor, L"*341*"}});
  for (const auto& [id, caption] : captions) EXPECT_EQ(state.text(id), caption) << id;
}

TYPED_TEST(SampleLineDialogTest, HasThePictureOfSampleLineGroups) {
  this->useUsualDrawing();
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(host::kIdPictureSampleLineGroup)->picture, kPictureSampleLineGroup);
}

}  // namespace
}  // namespace lvx::dialogs
