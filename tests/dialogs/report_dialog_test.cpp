#include "dialogs/report_dialog.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_roadway.h"
#include "gls/gls_dialog.h"
#include "host/dialog_controls.h"
#include "points/points_dialog.h"
#include "projection/projection_dialog.h"
#include "report_drawing/report_drawing.h"

namespace lvx::dialogs {

using gls::CMyDialog3;
using points::CExportPointsDlg;
using projection::CMyDialog1;
namespace {

using test::rows;
using windowless::DialogState;
using windowless::Refusal;

constexpr std::initializer_list<int> kForms{host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml};

/// What holds for all three dialogs; what each does in its own way is in its own test file. The drawing has what each of
/// them asks for: in site "S" the axes "A" and "B" with sample line groups and profiles, a surface, a group of points.
template <class Dialog>
class ReportDialogTest : public testing::Test, public test::ReportDrawing {
 protected:
  ReportDialogTest() : roadway_(host) {
    host.useMessageBytes(
        "1 All|*.*||\r\n4 Cancel it\r\n101 Projection\r\n109 *none*\r\n114 text\r\n115 sheet\r\n116 page\r\n201 "
        "Points\r\n"
        "301 GLS\r\n");
    const auto site = drawing.addSite(L"S");
    for (const CString name : {L"A", L"B"}) {
      const auto axis = addAlignment(site, name);
      axis->addGroup(L"g");
      axis->profiles = {{L"p", L""}};
    }
    drawing.addSurface(L"ground");
    drawing.addPointGroup(L"two", {1, 2});
  }

  test::FakeRoadway roadway_;
};

struct NameOfDialog {
  template <class Dialog>
  static std::string GetName(int) {
    if (std::is_same_v<Dialog, CMyDialog1>) return "Projection";
    return std::is_same_v<Dialog, CExportPointsDlg> ? "Points" : "Gls";
  }
};
using Dialogs = testing::Types<CMyDialog1, CExportPointsDlg, CMyDialog3>;
TYPED_TEST_SUITE(ReportDialogTest, Dialogs, NameOfDialog);

TYPED_TEST(ReportDialogTest, LaysItsControlsOutInsideItsWindow) {
  TypeParam dialog(this->host);
  const DialogTemplate& made = dialog.dialogTemplate();
  for (const ControlTemplate& control : made.controls) {
    SCOPED_TRACE(control.id);
    EXPECT_GE(control.rectangle.x, 0);
    EXPECT_LE(control.rectangle.x + control.rectangle.width, made.width);
    EXPECT_LE(control.rectangle.y + control.rectangle.height, made.height);
    EXPECT_EQ(made.find(control.id), &control) << "an id stands once";
  }
}

TYPED_TEST(ReportDialogTest, OpensOnTheFirstAlignmentWithAllFormsTickedAndOkDisabled) {
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(state.title(), (std::is_same_v<TypeParam, CMyDialog1>         ? L"Projection"
                            : std::is_same_v<TypeParam, CExportPointsDlg> ? L"Points"
                                                                          : L"GLS"));
  EXPECT_EQ(rows(state, host::kIdSites), L"[S]");
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[A]|B");
  for (const int form : kForms) EXPECT_TRUE(state.isTicked(form));
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
  EXPECT_EQ(state.text(host::kIdCheckHtml), L"page");
  EXPECT_EQ(state.text(host::kIdCancel), L"Cancel it");
  EXPECT_EQ(state.text(host::kIdOk), L"OK") << "OK keeps the template's text";
}

TYPED_TEST(ReportDialogTest, EnablesOkWithTheFirstCharacterOfAStem) {
  TypeParam dialog(this->host);
  DialogState state(dialog);
  EXPECT_EQ(state.userTypes(host::kIdOutputStem, L"/"), Refusal::None);
  EXPECT_TRUE(state.isEnabled(host::kIdOk));
}

TYPED_TEST(ReportDialogTest, HasThePicturesOfSiteAlignmentAndButtons) {
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(state.find(host::kIdPictureSite)->picture, kPictureSite);
  EXPECT_EQ(state.find(host::kIdPictureAlignment)->picture, kPictureAlignment);
  EXPECT_EQ(state.find(host::kIdPickAlignment)->picture, kPicturePick);
  EXPECT_EQ(state.find(dialog.secondPick())->picture, kPicturePick);
  EXPECT_EQ(state.find(host::kIdOutputFileBox)->picture, kPictureSave);
}

TYPED_TEST(ReportDialogTest, NeverShowsASiteWithoutAlignments) {
  for (const CString name : {L"empty", L"also empty", L"and another"}) this->drawing.addSite(name);
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, host::kIdSites), L"[S]");
}

TYPED_TEST(ReportDialogTest, ShowsTheAlignmentsOutsideAnySiteUnderTheirOwnWords) {
  const auto axis = this->addAlignment(nullptr, L"Loose");
  axis->addGroup(L"g");
  TypeParam dialog(this->host);
  const DialogState state(dialog);
  EXPECT_EQ(rows(state, host::kIdSites), L"[*none*]|S");
  EXPECT_EQ(rows(state, host::kIdAlignments), L"[Loose]");
  EXPECT_EQ(dialog.siteText, L"*none*");
}

TYPED_TEST(ReportDialogTest, EmptiesTheAlignmentTextWhereTheNewSiteHasNoAlignmentLeft) {
  this->addAlignment(this->drawing.addSite(L"T"), L"C");
  TypeParam dialog(this->host);
  DialogState state(dialog);
  for (host::tsiteAlignment* record : dialog.sites[1]->alignments) delete record;
  dialog.sites[1]->alignments.removeAll();
  EXPECT_EQ(state.userSelects(host::kIdSites, L"T"), Refusal::None);
  EXPECT_EQ(dialog.siteText, L"T");
  EXPECT_EQ(dialog.alignmentText, L"");
  EXPECT_EQ(dialog.alignmentIndex, -1);
  EXPECT_EQ(rows(state, host::kIdAlignments), L"");
}

TYPED_TEST(ReportDialogTest, TicksAllFormsAgainAtEachOpening) {
  TypeParam dialog(this->host);
  {
    DialogState state(dialog);
    for (const int form : kForms) state.userTicks(form, false);
    state.userClicks(host::kIdPickAlignment);
  }
  const DialogState again(dialog);
  for (const int form : kForms) EXPECT_TRUE(again.isTicked(form));
}

TYPED_TEST(ReportDialogTest, TakesTheTickedFormsOverOnOk) {
  TypeParam dialog(this->host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  state.userTicks(host::kIdCheckExcel, false);
  EXPECT_EQ(state.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(state.closedWith(), host::kIdOk);
  EXPECT_EQ(dialog.outputStem, L"/r/x");
  EXPECT_EQ(dialog.checkAscii, 1);
  EXPECT_EQ(dialog.checkExcel, 0);
  EXPECT_EQ(dialog.checkThird, 1);
}

TYPED_TEST(ReportDialogTest, ReadsNoFormOnAPickOrOnCancel) {
  TypeParam dialog(this->host);
  for (const int button : {host::kIdPickAlignment, dialog.secondPick(), host::kIdCancel}) {
    DialogState state(dialog);
    EXPECT_EQ(state.userClicks(button), Refusal::None);
    EXPECT_EQ(state.closedWith(), button);
    EXPECT_EQ(dialog.checkAscii, 0);
  }
  DialogState state(dialog);
  state.userCloses();
  EXPECT_EQ(state.closedWith(), host::kIdCancel);
  EXPECT_EQ(dialog.checkAscii, 0);
}

TYPED_TEST(ReportDialogTest, PutsTheStemOfTheChosenFileIntoTheBoxAndTheWholePathIntoTheTip) {
  struct Row {
    const wchar_t* chosen;
    const wchar_t* stem;
  };
  const std::vector<Row> table{{L"/r/x.html", L"/r/x"}, {L"/r/x.txt.html", L"/r/x.txt"}, {L"/r/x.html.txt", L"/r/x"},
                               {L"/r/x.xls", L"/r/x"},  {L"/r/x.TXT", L"/r/x.TXT"},      {L"/r/x.csv", L"/r/x.csv"}};
  EXPECT_EQ(table.size(), 6U);
  for (const Row& row : table) {
    TypeParam dialog(this->host);
    DialogState state(dialog);
    EXPECT_FALSE(state.isEnabled(host::kIdOk));
    this->host.users().paths = {row.chosen};
    EXPECT_EQ(state.userClicks(host::kIdOutputFileBox), Refusal::None);
    EXPECT_EQ(state.text(host::kIdOutputStem), row.stem);
    EXPECT_EQ(dialog.outputStem, row.stem);
    EXPECT_EQ(state.find(host::kIdOutputStem)->tip, row.chosen);
    EXPECT_TRUE(state.isEnabled(host::kIdOk));
  }
  for (const auto& box : this->host.users().fileBoxes)
    EXPECT_EQ(box, (test::FakeUserInterface::FileBox{L"All|*.*||", 8196}));
  EXPECT_EQ(this->host.users().fileBoxes.size(), table.size());
}

TYPED_TEST(ReportDialogTest, KeepsOkDisabledForAFileNameThatIsNothingButAnExtension) {
  TypeParam dialog(this->host);
  DialogState state(dialog);
  this->host.users().paths = {L".txt"};
  state.userClicks(host::kIdOutputFileBox);
  EXPECT_EQ(dialog.outputStem, L"");
  EXPECT_FALSE(state.isEnabled(host::kIdOk));
}

TYPED_TEST(ReportDialogTest, ChangesNothingWhenTheFileBoxIsCancelled) {
  TypeParam dialog(this->host);
  DialogState state(dialog);
  state.userTypes(host::kIdOutputStem, L"/r/x");
  this->host.users().paths = {std::nullopt};
  state.userClicks(host::kIdOutputFileBox);
  EXPECT_EQ(state.text(host::kIdOutputStem), L"/r/x");
  EXPECT_EQ(state.find(host::kIdOutputStem)->tip, L"");
}

TYPED_TEST(ReportDialogTest, ShowsItsHelpPageAndStaysOpen) {
  const std::wstring page = std::is_same_v<TypeParam, CMyDialog1>         ? L"LVX_015_001"
                            : std::is_same_v<TypeParam, CExportPointsDlg> ? L"LVX_015_002"
                                                                          : L"LVX_015_003";
  TypeParam dialog(this->host);
  DialogState state(dialog);
  state.userClicks(host::kIdHelp);
  EXPECT_EQ(this->host.users().helpTopics,
            std::vector<CString>{L"Vantor Lorvix Extension.chm::/project-resources/" + page + L".html"});
  EXPECT_FALSE(state.closedWith());
}

TYPED_TEST(ReportDialogTest, GivesEverythingBackWhenItGoes) {
  const auto references = this->drawing.document.use_count();
  {
    TypeParam dialog(this->host);
    const DialogState state(dialog);
    EXPECT_GT(this->drawing.document.use_count(), references);
  }
  EXPECT_EQ(this->drawing.document.use_count(), references);
  EXPECT_EQ(this->companion.treesFreed, 1);
  EXPECT_EQ(this->companion.releases, 1);
}

TYPED_TEST(ReportDialogTest, GivesNothingBackWhereItNeverOpened) {
  { const TypeParam dialog(this->host); }
  EXPECT_EQ(this->companion.treesFreed, 0);
  EXPECT_EQ(this->companion.releases, 0);
}

}  // namespace
}  // namespace lvx::dialogs
