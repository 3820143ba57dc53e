#include "projection/projection_command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include <gtest/gtest.h>

#include "dialogs/dialog_services.h"
#include "dialogs/my_dialog1.h"
#include "framework/exceptions.h"
#include "host/picking.h"
#include "runtime/dialog_state.h"
#include "support/fake_companion.h"
#include "support/fake_model.h"
#include "support/fake_picking.h"

namespace lvx::projection {
namespace {

using dialogs::CMyDialog1;
using framework::CString;
using host::BoxAnswer;
using runtime::DialogState;
using Kind = test::PickingRunTime::Kind;

/// A user who works each opening of the dialog by the next step; after the last one the dialog is closed by its mark.
class SteppingUser final : public dialogs::DialogRunner {
 public:
  using Step = std::function<void(DialogState&)>;
  std::vector<Step> steps;
  std::size_t openings = 0;

  int runModal(dialogs::DialogBehaviour& dialog, void*) override {
    DialogState state(dialog);
    if (openings < steps.size())
      steps[openings](state);
    else
      state.userCloses();
    ++openings;
    return state.closedWith().value_or(dialogs::kIdCancel);
  }
};

class ProjectionCommandTest : public testing::Test {
 protected:
  ProjectionCommandTest() : host_({.fixedMoment = 0}) {
    auto runTime = std::make_unique<test::PickingRunTime>();
    run_ = runTime.get();
    host_.replaceRunTime(std::move(runTime));
    host_.setDialogRunner(&user_);
    host_.useMessageBytes(
        "109 *none*\r\n110 pick axis\r\n111 no axis\r\n112 pick ground\r\n113 no ground\r\n"
        "227 overwrite?\r\n228 in use\r\n229 no folder\r\n");
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) {
      add(sites, L"", *drawing_.document->alignments);
      for (const auto& site : drawing_.database->siteList->items) add(sites, site->nameText, *site->alignmentList);
    };
    stem_ = host_.folder() + L"road";
    const auto site = drawing_.addSite(L"S");
    alignment(site, L"A", 0xA);
    alignment(site, L"B", 0xB);
    surface(L"ground", 0x51);
    surface(L"rock", 0x52);
  }

  static void add(host::SiteTree& sites, const CString& name, test::FakeAlignments& alignments) {
    host::tsite* site = test::newSite(name, {});
    for (const auto& item : alignments.items)
      site->alignments.add(test::newSiteAlignment(item->nameText, item->handleText));
    sites.add(site);
  }

  /// An alignment with one group "g" of one line; its identifier is its handle.
  void alignment(const host::Ref<test::FakeSite>& site, const CString& name, std::uint64_t handle) {
    const auto made = drawing_.addAlignment(site, name);
    made->id.value = handle;
    made->handleText = handleText(handle);
    run_->addObject(host::kClassAlignment, handle);
    made->addGroup(L"g")->addLine(name + L"-1", 10.0, {{10, 5}, {10, -5}});
  }

  void surface(const CString& name, std::uint64_t handle) {
    const auto made = drawing_.addSurface(name);
    made->handleText = handleText(handle);
    made->sampleEnds([](double, double) { return 100.0; });
    run_->addObject(host::kClassSurface, handle);
  }

  static CString handleText(std::uint64_t handle) {
    wchar_t buffer[32];
    host::VnDbHandle(handle).getIntoAsciiBuffer(buffer);
    return buffer;
  }

  /// Types the stem and presses OK with only these forms ticked.
  SteppingUser::Step okWith(std::initializer_list<int> forms, CString stem = {}) {
    return [this, forms = std::vector<int>(forms), stem = std::move(stem)](DialogState& state) {
      state.userTypes(dialogs::kIdOutputStem, stem.empty() ? stem_ : stem);
      for (const int form : {dialogs::kIdCheckAscii, dialogs::kIdCheckExcel, dialogs::kIdCheckThird})
        state.userTicks(form, std::find(forms.begin(), forms.end(), form) != forms.end());
      EXPECT_EQ(state.userClicks(dialogs::kIdOk), runtime::Refusal::None);
    };
  }
  static SteppingUser::Step click(int id) {
    return [id](DialogState& state) { EXPECT_EQ(state.userClicks(id), runtime::Refusal::None); };
  }

  [[nodiscard]] std::string fileText(const CString& ending) const {
    std::ifstream file(platform::toUtf8(stem_ + ending), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] bool stands(const CString& ending) const {
    return std::filesystem::exists(platform::toUtf8(stem_ + ending));
  }
  void write(const CString& ending, const std::string& text) const {
    std::ofstream(platform::toUtf8(stem_ + ending), std::ios::binary) << text;
  }

  test::FakeHost host_;
  test::PickingRunTime* run_ = nullptr;
  test::FakeCompanion companion_;
  test::FakeDrawing drawing_;
  SteppingUser user_;
  CString stem_;
};

constexpr int kAscii = dialogs::kIdCheckAscii;
constexpr int kExcel = dialogs::kIdCheckExcel;
constexpr int kHtml = dialogs::kIdCheckThird;

TEST_F(ProjectionCommandTest, WritesTheTickedFormsAndGivesEverythingBack) {
  const auto references = drawing_.document.use_count();
  user_.steps = {okWith({kAscii, kHtml})};
  runProjectionReport(host_);
  EXPECT_NE(fileText(L".txt").find("A-1   0+010.000\r\n    -5.000   100.000\r\n     0.000   100.000\r\n"),
            std::string::npos);
  EXPECT_NE(fileText(L".html").find("A-1"), std::string::npos);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(drawing_.document.use_count(), references);
  EXPECT_EQ(companion_.releases, 1);
}

TEST_F(ProjectionCommandTest, LeavesNoFileAndNoRecordAfterCancel) {
  user_.steps = {click(dialogs::kIdCancel)};
  runProjectionReport(host_);
  EXPECT_FALSE(stands(L".txt"));
  EXPECT_EQ(user_.openings, 1U);
  EXPECT_EQ(companion_.releases, 1);
}

TEST_F(ProjectionCommandTest, WritesNothingWithoutAWordWhereNoFormIsTicked) {
  user_.steps = {okWith({})};
  runProjectionReport(host_);
  for (const CString ending : {L".txt", L".xls", L".html"}) EXPECT_FALSE(stands(ending));
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(ProjectionCommandTest, ReturnsToTheDialogWithTheFormerSelectionAfterEscape) {
  user_.steps = {[](DialogState& state) {
                   state.userSelects(dialogs::kIdAlignments, L"B");
                   state.userClicks(dialogs::kIdPickAlignment);
                 },
                 [](DialogState& state) {
                   EXPECT_EQ(state.selection(dialogs::kIdAlignments), 1);
                   state.userCloses();
                 }};
  run_->picks = {{Kind::Escape, 0}};
  runProjectionReport(host_);
  EXPECT_EQ(user_.openings, 2U);
  EXPECT_EQ(run_->prompts, std::vector<CString>{L"pick axis"});
}

TEST_F(ProjectionCommandTest, SelectsThePickedAlignmentAndSurface) {
  user_.steps = {click(dialogs::kIdPickAlignment), click(dialogs::kIdPickSecond), [](DialogState& state) {
                   EXPECT_EQ(state.rowText(dialogs::kIdAlignments, state.selection(dialogs::kIdAlignments)), L"B");
                   EXPECT_EQ(state.rowText(CMyDialog1::kIdSurfaces, state.selection(CMyDialog1::kIdSurfaces)), L"rock");
                   state.userCloses();
                 }};
  run_->picks = {{Kind::Object, 0xB}, {Kind::Object, 0x52}};
  runProjectionReport(host_);
  EXPECT_EQ(user_.openings, 3U);
  EXPECT_EQ(run_->prompts, (std::vector<CString>{L"pick axis", L"pick ground"}));
}

TEST_F(ProjectionCommandTest, PromptsAgainAfterAPickOfTheWrongClassWithoutReturningToTheDialog) {
  user_.steps = {click(dialogs::kIdPickSecond)};
  run_->picks = {{Kind::Object, 0xA}, {Kind::Escape, 0}};
  runProjectionReport(host_);
  EXPECT_EQ(run_->prompts.size(), 2U);
  EXPECT_EQ(host_.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{{L"no ground", host::BoxButtons::Ok, host::BoxIcon::Stop}}));
}

TEST_F(ProjectionCommandTest, LooksAPickedAlignmentsPositionUpInTheOtherList) {
  // The overall list: Loose, A, B, C. Site T holds C at position 0, which is where Loose stands in the overall list.
  alignment(nullptr, L"Loose", 0x10);
  alignment(drawing_.addSite(L"T"), L"C", 0xC);
  alignment(drawing_.database->siteList->items.back(), L"D", 0xD);
  user_.steps = {click(dialogs::kIdPickAlignment), [](DialogState& state) {
                   EXPECT_EQ(state.rowText(dialogs::kIdSites, state.selection(dialogs::kIdSites)), L"T");
                   EXPECT_EQ(state.rowText(dialogs::kIdAlignments, state.selection(dialogs::kIdAlignments)), L"C")
                       << "D was picked; its position names A in the other list, which T hasn't got";
                   state.userCloses();
                 }};
  run_->picks = {{Kind::Object, 0xD}};
  runProjectionReport(host_);
}

TEST_F(ProjectionCommandTest, TakesAnAlignmentThatNoSiteHoldsForAPickThatSelectsNothing) {
  run_->addObject(host::kClassAlignment, 0xEE);
  user_.steps = {click(dialogs::kIdPickAlignment)};
  run_->picks = {{Kind::Object, 0xEE}, {Kind::Object, 0xB}};
  runProjectionReport(host_);
  EXPECT_EQ(run_->prompts.size(), 1U);
}

TEST_F(ProjectionCommandTest, TellsThatAStemHasNoFolder) {
  user_.steps = {okWith({kAscii}, L"road")};
  runProjectionReport(host_);
  EXPECT_EQ(host_.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{{L"no folder", host::BoxButtons::Ok, host::BoxIcon::Warning}}));
  EXPECT_EQ(user_.openings, 1U);
}

TEST_F(ProjectionCommandTest, EndsWithoutAWordWhereTheFolderIsMissing) {
  user_.steps = {okWith({kAscii, kExcel, kHtml}, host_.folder() + L"missing/road")};
  runProjectionReport(host_);
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_EQ(user_.openings, 1U);
}

TEST_F(ProjectionCommandTest, GoesOnToTheNextFormsWhereOneIsNotToBeOverwritten) {
  write(L".txt", "old");
  user_.steps = {okWith({kAscii, kHtml})};
  host_.users().answers = {BoxAnswer::No};
  runProjectionReport(host_);
  EXPECT_EQ(fileText(L".txt"), "old");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, SkipsAWorkbookThatIsHeldOpenAndGoesOnToThePage) {
  std::filesystem::create_directory(platform::toUtf8(stem_ + L".xls"));
  user_.steps = {okWith({kExcel, kHtml})};
  host_.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Cancel};
  runProjectionReport(host_);
  EXPECT_EQ(host_.users().boxes.size(), 3U);
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, LeavesNoWorkbookWhereTheFormerOneWasGivenUpAndTheProgramIsMissing) {
  write(L".xls", "old");
  user_.steps = {okWith({kExcel, kHtml})};
  host_.users().answers = {BoxAnswer::Yes};
  runProjectionReport(host_);
  EXPECT_FALSE(stands(L".xls"));
  EXPECT_EQ(host_.users().boxes.back().text, L"Couldn't start Excel and get Application object.");
  EXPECT_TRUE(stands(L".html"));
}

TEST_F(ProjectionCommandTest, GivesEverythingBackWhenAnExceptionEndsIt) {
  drawing_.document->surfaceList->items[0]->sample = [](const auto&) { return host::HostArray<double>::none(); };
  const auto references = drawing_.document.use_count();
  user_.steps = {okWith({kAscii})};
  EXPECT_THROW(runProjectionReport(host_), framework::AutomationException);
  EXPECT_EQ(drawing_.document.use_count(), references);
  EXPECT_EQ(companion_.releases, 1);
  EXPECT_FALSE(stands(L".txt"));
}

TEST_F(ProjectionCommandTest, AddsItsExtensionBehindOneThatTheUserTyped) {
  user_.steps = {okWith({kAscii}, stem_ + L".txt")};
  runProjectionReport(host_);
  EXPECT_TRUE(stands(L".txt.txt"));
}

}  // namespace
}  // namespace lvx::projection
