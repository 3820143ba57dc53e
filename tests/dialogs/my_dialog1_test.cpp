#include "dialogs/my_dialog1.h"

#include <list>
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

/// A drawing object that opens and tells its handle.
class OpenableObject final : public host::VnDbObject {
 public:
  explicit OpenableObject(std::uint64_t handle) : handle_(handle) {}
  [[nodiscard]] const host::VnRxClass* isA() const override { return nullptr; }
  void getVnDbHandle(host::VnDbHandle& handle) const override { handle = host::VnDbHandle(handle_); }
  std::int32_t close() override { return 0; }

 private:
  std::uint64_t handle_;
};

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

class ProjectionDialogTest : public testing::Test {
 protected:
  ProjectionDialogTest() {
    host_.useMessageBytes(
        "101 Title\r\n109 *none*\r\n4 Cancel it\r\n114 text\r\n115 sheet\r\n116 page\r\n1 All|*.*||\r\n");
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) { fillTree(sites); };
  }

  /// An alignment with sample line groups; its handle is the same in both lists.
  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                           std::initializer_list<CString> groups) {
    const auto made = drawing_.addAlignment(site, name);
    made->handleText = L"A" + std::to_wstring(made->id.value);
    objects_.emplace_back(0xA0 + made->id.value);
    host_.run().objects[made->id.value] = &objects_.back();
    for (const CString& group : groups) made->addGroup(group);
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

  /// Site "S" with axes "A" (groups g1, g2) and "B" (g3); one surface; nothing outside the sites.
  void useUsualDrawing() {
    const auto site = drawing_.addSite(L"S");
    alignment(site, L"A", {L"g1", L"g2"});
    alignment(site, L"B", {L"g3"});
    drawing_.addSurface(L"ground");
    drawing_.addSurface(L"rock");
  }

  test::FakeHost host_;
  test::FakeCompanion companion_;
  test::FakeDrawing drawing_;
  std::list<OpenableObject> objects_;
};

constexpr int kGroups = kIdSampleLineGroups;
constexpr int kSurfaces = CMyDialog1::kIdSurfaces;

TEST_F(ProjectionDialogTest, OpensOnTheFirstOfEverythingWithAllFormsTickedAndOkDisabled) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
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

TEST_F(ProjectionDialogTest, NeverShowsASiteWithoutAlignments) {
  drawing_.addSite(L"empty");
  useUsualDrawing();
  drawing_.addSite(L"also empty");
  CMyDialog1 dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kIdSites), L"[S]");
}

TEST_F(ProjectionDialogTest, ShowsTheAlignmentsOutsideAnySiteUnderTheirOwnWords) {
  alignment(nullptr, L"Loose", {L"g"});
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, kIdSites), L"[*none*]|S");
  EXPECT_EQ(rows(state, kIdAlignments), L"[Loose]");
  EXPECT_EQ(dialog.siteText, L"*none*");
}

TEST_F(ProjectionDialogTest, EnablesOkWithTheFirstCharacterOfAStemAndDisablesItWithTheLast) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  EXPECT_EQ(state.userTypes(kIdOutputStem, L"/"), Refusal::None);
  EXPECT_TRUE(state.isEnabled(kIdOk));
  state.userTypes(kIdOutputStem, L"");
  EXPECT_FALSE(state.isEnabled(kIdOk));
  EXPECT_EQ(state.userClicks(kIdOk), Refusal::Disabled);
}

TEST_F(ProjectionDialogTest, NeverEnablesOkWithoutASurface) {
  alignment(drawing_.addSite(L"S"), L"A", {L"g"});
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  state.userSelects(kGroups, 0);
  EXPECT_EQ(dialog.surfaceIndex, -1);
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, KeepsOkDisabledWhereTheAlignmentHasNoSampleLineGroup) {
  alignment(drawing_.addSite(L"S"), L"A", {});
  drawing_.addSurface(L"ground");
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  EXPECT_EQ(dialog.groupIndex, -1);
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, SelectsTheFirstAlignmentAndItsFirstGroupAfterAChangeOfSite) {
  useUsualDrawing();
  const auto other = drawing_.addSite(L"T");
  alignment(other, L"C", {L"g4", L"g5"});
  CMyDialog1 dialog(host_);
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
  CMyDialog1 dialog(host_);
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
  CMyDialog1 dialog(host_);
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
  CMyDialog1 dialog(host_);
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
  EXPECT_EQ(companion_.attachments, 1) << "the model is reached once for the life of the dialog";
}

TEST_F(ProjectionDialogTest, TicksAllFormsAgainAtEachOpening) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  {
    DialogState state(dialog);
    for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) state.userTicks(form, false);
    state.userClicks(kIdPickAlignment);
  }
  const DialogState again(dialog);
  for (const int form : {kIdCheckAscii, kIdCheckExcel, kIdCheckThird}) EXPECT_TRUE(again.isTicked(form));
}

TEST_F(ProjectionDialogTest, FallsBackToTheFirstRowWhenItOpensAgainOnTheRowWithoutASite) {
  const auto site = drawing_.addSite(L"S");
  alignment(site, L"A", {L"g1"});
  drawing_.addSurface(L"ground");
  // The tree of this host has the row without a site at its end.
  alignment(nullptr, L"Loose", {L"g2"});
  companion_.fillSites = [this](host::SiteTree& sites) {
    fillTree(sites);
    host::tsite* first = sites[0];
    sites.removeAt(0);
    sites.add(first);
  };
  CMyDialog1 dialog(host_);
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
  CMyDialog1 dialog(host_);
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
  companion_.document = nullptr;
  CMyDialog1 dialog(host_);
  {
    DialogState state(dialog);
    EXPECT_EQ(dialog.loaded, 0);
    EXPECT_EQ(rows(state, kIdSites), L"");
    state.userTypes(kIdOutputStem, L"/r/x");
    EXPECT_FALSE(state.isEnabled(kIdOk));
    state.userClicks(kIdPickAlignment);
  }
  companion_.document = drawing_.document;
  const DialogState again(dialog);
  EXPECT_EQ(dialog.loaded, 1);
  EXPECT_EQ(rows(again, kIdSites), L"[S]");
  EXPECT_EQ(companion_.attachments, 2);
}

TEST_F(ProjectionDialogTest, GivesEverythingBackWhenItGoes) {
  useUsualDrawing();
  const auto references = drawing_.document.use_count();
  {
    CMyDialog1 dialog(host_);
    const DialogState state(dialog);
    EXPECT_GT(drawing_.document.use_count(), references);
  }
  EXPECT_EQ(drawing_.document.use_count(), references);
  EXPECT_EQ(companion_.treesFreed, 1);
  EXPECT_EQ(companion_.releases, 1);
}

TEST_F(ProjectionDialogTest, GivesNothingBackWhereItNeverAttached) {
  { CMyDialog1 dialog(host_); }
  companion_.document = nullptr;
  {
    CMyDialog1 dialog(host_);
    const DialogState state(dialog);
  }
  EXPECT_EQ(companion_.treesFreed, 0);
  EXPECT_EQ(companion_.releases, 0);
}

TEST_F(ProjectionDialogTest, PutsTheStemOfTheChosenFileIntoTheBoxAndTheWholePathIntoTheTip) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  host_.users().paths = {L"/r/x.txt.html"};
  EXPECT_EQ(state.userClicks(kIdOutputFileBox), Refusal::None);
  EXPECT_EQ(state.text(kIdOutputStem), L"/r/x.txt");
  EXPECT_EQ(dialog.outputStem, L"/r/x.txt");
  EXPECT_EQ(state.find(kIdOutputStem)->tip, L"/r/x.txt.html");
  EXPECT_TRUE(state.isEnabled(kIdOk));
  EXPECT_EQ(host_.users().fileBoxes, (std::vector<test::FakeUserInterface::FileBox>{{L"All|*.*||", 8196}}));
}

TEST_F(ProjectionDialogTest, ChangesNothingWhenTheFileBoxIsCancelled) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  host_.users().paths = {std::nullopt};
  state.userClicks(kIdOutputFileBox);
  EXPECT_EQ(state.text(kIdOutputStem), L"/r/x");
  EXPECT_EQ(state.find(kIdOutputStem)->tip, L"");
}

TEST_F(ProjectionDialogTest, KeepsOkDisabledForAFileNameThatIsNothingButAnExtension) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  host_.users().paths = {L".txt"};
  state.userClicks(kIdOutputFileBox);
  EXPECT_EQ(dialog.outputStem, L"");
  EXPECT_FALSE(state.isEnabled(kIdOk));
}

TEST_F(ProjectionDialogTest, ReadsNothingFromTheControlsOnCancel) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTicks(kIdCheckAscii, true);
  state.userCloses();
  EXPECT_EQ(state.closedWith(), kIdCancel);
  EXPECT_EQ(dialog.checkAscii, 0);
}

TEST_F(ProjectionDialogTest, TakesTheTickedFormsOverOnOk) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userTypes(kIdOutputStem, L"/r/x");
  state.userTicks(kIdCheckExcel, false);
  state.userClicks(kIdOk);
  EXPECT_EQ(dialog.checkAscii, 1);
  EXPECT_EQ(dialog.checkExcel, 0);
  EXPECT_EQ(dialog.checkThird, 1);
}

TEST_F(ProjectionDialogTest, ShowsItsHelpPageAndStaysOpen) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  DialogState state(dialog);
  state.userClicks(kIdHelp);
  EXPECT_EQ(host_.users().helpTopics,
            std::vector<CString>{L"Vantor Lorvix Extension.chm::/project-resources/LVX_015_001.html"});
  EXPECT_FALSE(state.closedWith());
}

TEST_F(ProjectionDialogTest, ShowsEveryCaptionAsItsNumberWhereTheMessageFileIsMissing) {
  companion_.document = nullptr;
  test::FakeHost bare;
  CMyDialog1 dialog(bare);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), L"*101*");
  EXPECT_EQ(state.text(kIdLabelSite), L"*103*");
  EXPECT_EQ(state.text(kIdCheckAscii), L"*114*");
}

TEST_F(ProjectionDialogTest, RaisesTheInvalidArgumentExceptionForAnAlignmentThatTheOverallListDoesNotHold) {
  useUsualDrawing();
  host_.run().objects.clear();  // nothing opens, so no handle text in the overall list is right
  CMyDialog1 dialog(host_);
  EXPECT_THROW(const DialogState state(dialog), framework::InvalidArgumentException);
}

TEST_F(ProjectionDialogTest, HasEveryPictureOnItsControl) {
  useUsualDrawing();
  CMyDialog1 dialog(host_);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(270)->picture, kPictureSite);
  EXPECT_EQ(state.find(271)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(273)->picture, kPictureSurface);
  EXPECT_EQ(state.find(101)->picture, kPictureSampleLineGroup);
  EXPECT_EQ(state.find(kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdPickSecond)->picture, kPicturePick);
  EXPECT_EQ(state.find(kIdOutputFileBox)->picture, kPictureSave);
}

}  // namespace
}  // namespace lvx::dialogs
