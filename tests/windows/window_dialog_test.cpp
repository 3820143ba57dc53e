// The module's four dialogs as windows: what a user sees and does there is what a dialog without a window shows and takes;
// beside that what only a window has: focus, keys, pictures, tips, a parent.
#include "native/window_dialog.h"

#include <array>
#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
#include <commctrl.h>
// clang-format on

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "doubles/fake_roadway.h"
#include "fake_companion/fake_companion.h"
#include "gls/add_sections_dialog.h"
#include "gls/gls_dialog.h"
#include "host/run_time.h"
#include "platform/utf8.h"
#include "points/points_dialog.h"
#include "projection/projection_dialog.h"
#include "window_picture.h"
#include "windowless/dialog_state.h"

namespace lvx::native {
namespace {

using host::ControlKind;
using windowless::DialogState;
using windowless::Refusal;

/// A drawing with two sites, alignments with groups and profiles, surfaces, point groups and a corridor.
class Drawing {
 public:
  Drawing() : roadway_(host) {
    host.useMessages("en");
    const auto north = drawing_.addSite(L"North");
    const auto first = alignment(north, L"A1", {L"A1 lines", L"A1 fine"}, {L"Design", L"Ground"});
    alignment(north, L"A2 \u0416", {L"A2 lines"}, {L"Design A2", L"Ground A2"});
    alignment(drawing_.addSite(L"South & West"), L"B1", {L"B1 lines"}, {L"Design B1"});
    alignment(nullptr, L"Loose", {}, {});
    drawing_.addSurface(L"Ground");
    drawing_.addSurface(L"Rock & gravel");
    drawing_.addPointGroup(L"Survey", {1, 2});
    drawing_.addPointGroup(L"Benchmark", {7});
    roadway_.addCorridor(L"Main road")->addBaseline()->alignmentObject = first;
    companion_.document = drawing_.document;
    companion_.database = drawing_.database;
    companion_.fillSites = [this](host::SiteTree& sites) { fillTree(sites); };
  }

  test::FakeHost host;

 private:
  class OpenableObject final : public host::VnDbObject {
   public:
    explicit OpenableObject(std::uint64_t handle) : handle_(handle) {}
    [[nodiscard]] const host::VnRxClass* isA() const override { return nullptr; }
    void getVnDbHandle(host::VnDbHandle& handle) const override { handle = host::VnDbHandle(handle_); }
    std::int32_t close() override { return 0; }

   private:
    std::uint64_t handle_;
  };

  host::Ref<test::FakeAlignment> alignment(const host::Ref<test::FakeSite>& site, const CString& name,
                                           std::initializer_list<CString> groups,
                                           std::initializer_list<CString> profiles) {
    const auto made = drawing_.addAlignment(site, name);
    made->handleText = L"A" + std::to_wstring(made->id.value);
    objects_.emplace_back(0xA0 + made->id.value);  // the same handle, as a number
    host.run().objects[made->id.value] = &objects_.back();
    for (const CString& group : groups) made->addGroup(group);
    profiles_[made->handleText] = profiles;
    return made;
  }

  void fillTree(host::SiteTree& sites) {
    const auto add = [&](const CString& name, test::FakeAlignments& alignments) {
      host::tsite* site = test::newSite(name, {});
      for (const auto& item : alignments.items) {
        host::tsiteAlignment* record = test::newSiteAlignment(item->nameText, item->handleText);
        for (const CString& profile : profiles_[item->handleText]) {
          auto* made = new host::tprofile;
          made->name = profile;
          record->children.add(made);
        }
        site->alignments.add(record);
      }
      sites.add(site);
    };
    for (const auto& site : drawing_.database->siteList->items) add(site->nameText, *site->alignmentList);
    add(L"", *drawing_.document->alignments);
  }

  test::FakeRoadway roadway_;
  test::FakeCompanion companion_;
  test::FakeDrawing drawing_;
  std::list<OpenableObject> objects_;
  std::map<CString, std::vector<CString>> profiles_;
};

struct DialogRow {
  const char* name;
  std::function<std::unique_ptr<host::DialogBehaviour>(host::Host&)> make;
};
void PrintTo(const DialogRow& row, std::ostream* stream) { *stream << row.name; }
const std::array<DialogRow, 4> kDialogs{{
    {host::kProjectionDialog, [](host::Host& host) { return std::make_unique<projection::CMyDialog1>(host); }},
    {host::kPointsDialog, [](host::Host& host) { return std::make_unique<points::CExportPointsDlg>(host); }},
    {host::kGlsDialog, [](host::Host& host) { return std::make_unique<gls::CMyDialog3>(host); }},
    {host::kAddSectionsDialog, [](host::Host& host) { return std::make_unique<gls::CMyDialog4>(host); }},
}};

class EveryDialog : public testing::TestWithParam<DialogRow> {
 protected:
  Drawing drawing_;
};
INSTANTIATE_TEST_SUITE_P(Dialogs, EveryDialog, testing::ValuesIn(kDialogs),
                         [](const auto& row) { return row.param.name; });

/// Everything that a user sees, a line for each control.
std::string seen(const WindowDialog& window, const host::DialogTemplate& made) {
  std::string text = "title " + platform::toUtf8(window.title()) + '\n';
  for (const host::ControlTemplate& control : made.controls) {
    const int id = control.id;
    text += std::to_string(id) + (window.isEnabled(id) ? " " : " off ") + platform::toUtf8(window.text(id));
    for (int row = 0; row < window.rowCount(id); ++row) text += " | " + platform::toUtf8(window.rowText(id, row));
    text += " row " + std::to_string(window.selection(id)) + (window.isTicked(id) ? " ticked" : "");
    text += " picture " + std::string(window.picture(id)) + " tip " + platform::toUtf8(window.tip(id)) + '\n';
  }
  return text;
}
std::string seen(const DialogState& state) {
  std::string text = "title " + platform::toUtf8(state.title()) + '\n';
  for (const DialogState::Control* control : state.controls()) {
    const int id = control->made->id;
    const bool isList = control->made->kind == ControlKind::DropDownList;
    text += std::to_string(id) + (control->enabled ? " " : " off ") + (isList ? "" : platform::toUtf8(control->text));
    for (const CString& row : control->rows) text += " | " + platform::toUtf8(row);
    text += " row " + std::to_string(isList ? control->row : -1) + (control->ticked ? " ticked" : "");
    text += " picture " + std::string(control->picture) + " tip " + platform::toUtf8(control->tip) + '\n';
  }
  return text;
}

// ---------------------------------------------------------------- the same as without a window

TEST_P(EveryDialog, ShowsAtItsOpeningWhatItShowsWithoutAWindow) {
  const auto behaviour = GetParam().make(drawing_.host);
  const auto twin = GetParam().make(drawing_.host);
  WindowDialog window(*behaviour, nullptr);
  window.open();
  const DialogState state(*twin);
  EXPECT_EQ(seen(window, behaviour->dialogTemplate()), seen(state));
}

/// A dialog as a window and the same dialog without one, worked side by side.
class SideBySide {
 public:
  SideBySide(host::DialogBehaviour& behaviour, host::DialogBehaviour& twin)
      : made_(behaviour.dialogTemplate()), window_(behaviour, nullptr) {
    same([&] { window_.open(); }, [&] { state_.emplace(twin); });
  }

  /// Does a thing in both; false where both are over by it, closed or raised.
  template <class InWindow, class InState>
  bool same(InWindow inWindow, InState inState) {
    const bool raised = raises(inWindow);
    EXPECT_EQ(raised, raises(inState));
    if (raised || testing::Test::HasFailure()) return isOpen_ = false;
    EXPECT_EQ(window_.closedWith(), state_->closedWith());
    if (window_.closedWith()) return isOpen_ = false;
    EXPECT_EQ(seen(window_, made_), seen(*state_));
    return !testing::Test::HasFailure();
  }

  [[nodiscard]] bool isOpen() const { return isOpen_; }
  [[nodiscard]] WindowDialog& window() { return window_; }
  [[nodiscard]] DialogState& state() { return *state_; }

 private:
  template <class Work>
  static bool raises(Work work) {
    try {
      work();
      return false;
    } catch (const framework::InvalidArgumentException&) {
      return true;
    }
  }

  const host::DialogTemplate& made_;
  WindowDialog window_;
  std::optional<DialogState> state_;
  bool isOpen_ = true;
};

TEST_P(EveryDialog, TakesWhateverAUserDoesAsItDoesWithoutAWindow) {
  std::mt19937 random(20261122);
  const auto upTo = [&](std::size_t count) { return static_cast<int>(random() % count); };
  const std::array<CString, 4> stems{L"", L"C:\\out\\road", L"C:\\R&D \u0416\\50%", CString(300, L'x')};
  const std::array<std::optional<CString>, 4> paths{L"C:\\a.txt", L"C:\\a.html.txt", L"C:\\\u00E4.xls", std::nullopt};
  int openings = 0;
  int step = 0;
  while (step < 200 && !HasFailure()) {
    // One command: its dialog is opened again after each closing, until one raises.
    const auto behaviour = GetParam().make(drawing_.host);
    const auto twin = GetParam().make(drawing_.host);
    const host::DialogTemplate& made = behaviour->dialogTemplate();
    bool raised = false;
    while (step < 200 && !raised && !HasFailure()) {
      SideBySide dialog(*behaviour, *twin);
      ++openings;
      while (step < 200 && dialog.isOpen()) {
        const host::ControlTemplate& control = made.controls[static_cast<std::size_t>(upTo(made.controls.size()))];
        const int id = control.id;
        SCOPED_TRACE("step " + std::to_string(++step) + ", control " + std::to_string(id));
        WindowDialog& window = dialog.window();
        DialogState& state = dialog.state();
        if (control.kind == ControlKind::DropDownList && state.rowCount(id) > 0) {
          const int row = upTo(static_cast<std::size_t>(state.rowCount(id)));
          dialog.same([&] { window.userSelects(id, row); }, [&] { state.userSelects(id, row); });
        } else if (control.kind == ControlKind::EditBox) {
          const CString& stem = stems[static_cast<std::size_t>(upTo(stems.size()))];
          dialog.same([&] { window.userTypes(id, stem); }, [&] { state.userTypes(id, stem); });
        } else if (control.kind == ControlKind::CheckBox) {
          const bool on = upTo(2) == 0;
          dialog.same([&] { window.userTicks(id, on); }, [&] { state.userTicks(id, on); });
        } else if (control.kind == ControlKind::PushButton || control.kind == ControlKind::DefaultButton ||
                   control.kind == ControlKind::PictureButton) {
          const auto& path = paths[static_cast<std::size_t>(upTo(paths.size()))];
          drawing_.host.users().paths = {path, path};
          // A disabled button takes nothing, here as there.
          dialog.same([&] { window.userClicks(id); }, [&] { state.userClicks(id); });
        }
        raised = !dialog.isOpen() && !window.closedWith();
      }
    }
  }
  EXPECT_GT(openings, 2);
}

// ---------------------------------------------------------------- focus and keys

int focusedId() { return static_cast<int>(static_cast<std::int16_t>(GetDlgCtrlID(GetFocus()))); }

bool takesFocus(ControlKind kind) {
  return kind != ControlKind::GroupBox && kind != ControlKind::Label && kind != ControlKind::Picture;
}

TEST_P(EveryDialog, TheTabulatorGoesRoundInTheTemplatesOrder) {
  const auto behaviour = GetParam().make(drawing_.host);
  WindowDialog window(*behaviour, nullptr);
  window.open();
  std::vector<int> wanted;
  for (const host::ControlTemplate& control : behaviour->dialogTemplate().controls)
    if (takesFocus(control.kind) && window.isEnabled(control.id)) wanted.push_back(control.id);
  std::vector<int> visited;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    visited.push_back(focusedId());
    window.userPresses(VK_TAB);
  }
  EXPECT_EQ(visited, wanted);
  EXPECT_EQ(focusedId(), wanted.front()) << "and begins anew";
}

TEST_P(EveryDialog, EscapeAndTheCloseMarkAreCancel) {
  for (const bool byKey : {true, false}) {
    const auto behaviour = GetParam().make(drawing_.host);
    WindowDialog window(*behaviour, nullptr);
    window.open();
    if (byKey)
      window.userPresses(VK_ESCAPE);
    else
      window.userCloses();
    EXPECT_EQ(window.closedWith(), host::kIdCancel);
    EXPECT_EQ(window.handle(), nullptr);
  }
}

class ProjectionWindow : public testing::Test {
 protected:
  Drawing drawing_;
  projection::CMyDialog1 behaviour_{drawing_.host};
};

TEST_F(ProjectionWindow, EnterPressesTheDefaultButtonOnceItIsEnabled) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  window.userSelects(host::kIdSites, 0);  // one with sample lines
  SetFocus(GetDlgItem(static_cast<HWND>(window.handle()), host::kIdOutputStem));
  window.userPresses(VK_RETURN);
  EXPECT_EQ(window.closedWith(), std::nullopt) << "OK is disabled";
  window.userTypes(host::kIdOutputStem, L"C:\\out\\road");
  window.userPresses(VK_RETURN);
  EXPECT_EQ(window.closedWith(), host::kIdOk);
  EXPECT_EQ(behaviour_.outputStem, L"C:\\out\\road");
}

TEST_F(ProjectionWindow, TypedLettersArriveOneByOne) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  window.userSelects(host::kIdSites, 0);  // one with sample lines
  const HWND edit = GetDlgItem(static_cast<HWND>(window.handle()), host::kIdOutputStem);
  EXPECT_FALSE(window.isEnabled(host::kIdOk));
  SendMessageW(edit, WM_CHAR, L'C', 1);
  EXPECT_TRUE(window.isEnabled(host::kIdOk));
  SendMessageW(edit, WM_CHAR, L'\u00E4', 1);
  EXPECT_EQ(behaviour_.outputStem, L"C\u00E4");
  SendMessageW(edit, WM_CHAR, VK_BACK, 1);
  SendMessageW(edit, WM_CHAR, VK_BACK, 1);
  EXPECT_FALSE(window.isEnabled(host::kIdOk));
}

TEST_F(ProjectionWindow, KeysChooseInAList) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  SetFocus(GetDlgItem(static_cast<HWND>(window.handle()), host::kIdSurfaces));
  window.userPresses(VK_DOWN);
  EXPECT_EQ(window.selection(host::kIdSurfaces), 1);
  EXPECT_EQ(behaviour_.surfaceText, L"Rock & gravel");
}

// ---------------------------------------------------------------- windows around it

/// A window that stands for the host's main window.
class MainWindow {
 public:
  MainWindow()
      : window_(CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300, nullptr,
                                nullptr, nullptr, nullptr)) {}
  ~MainWindow() { DestroyWindow(window_); }
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;
  [[nodiscard]] HWND get() const { return window_; }

 private:
  HWND window_;
};

TEST_F(ProjectionWindow, TheParentTakesNoInputWhileTheDialogIsOpen) {
  const MainWindow parent;
  WindowDialog window(behaviour_, parent.get());
  window.open();
  EXPECT_EQ(GetWindow(static_cast<HWND>(window.handle()), GW_OWNER), parent.get());
  EXPECT_FALSE(IsWindowEnabled(parent.get()));
  window.userClicks(host::kIdCancel);
  EXPECT_TRUE(IsWindowEnabled(parent.get()));
}

TEST_F(ProjectionWindow, AParentThatWasDisabledStaysSo) {
  const MainWindow parent;
  EnableWindow(parent.get(), FALSE);
  WindowDialog window(behaviour_, parent.get());
  window.open();
  window.userClicks(host::kIdCancel);
  EXPECT_FALSE(IsWindowEnabled(parent.get()));
}

TEST_F(ProjectionWindow, WhatTheBehaviourRaisesClosesTheWindowAndGoesOn) {
  const MainWindow parent;
  WindowDialog window(behaviour_, parent.get());
  window.open();
  drawing_.host.users().paths.clear();  // the file box has no answer: it raises
  EXPECT_THROW(window.userClicks(host::kIdOutputFileBox), std::logic_error);
  EXPECT_EQ(window.handle(), nullptr);
  EXPECT_EQ(window.closedWith(), std::nullopt);
  EXPECT_TRUE(IsWindowEnabled(parent.get()));
}

TEST_F(ProjectionWindow, APersonsDialogRunsUntilItCloses) {
  // Stands for the person: the message waits in the queue until the dialog takes it.
  struct Presses {
    static void CALLBACK cancel(HWND, UINT, UINT_PTR timer, DWORD) {
      KillTimer(nullptr, timer);
      PostMessageW(FindWindowW(L"#32770", nullptr), WM_COMMAND, host::kIdCancel, 0);
    }
  };
  SetTimer(nullptr, 0, 10, &Presses::cancel);
  EXPECT_EQ(WindowDialogs().runModal(behaviour_, nullptr), host::kIdCancel);
}

TEST_F(ProjectionWindow, AProgramThatEndsGivesTheDialogUp) {
  PostQuitMessage(7);
  EXPECT_EQ(WindowDialog(behaviour_, nullptr).runModal(), host::kIdCancel);
  MSG message{};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "whoever runs the program hears of it";
  EXPECT_EQ(message.wParam, 7U);
}

// ---------------------------------------------------------------- pictures, tips, looks

std::uint32_t sentinel() { return 0x00AA00; }

TEST_F(ProjectionWindow, SmallPicturesTakeTheFaceColourForWhiteAndOthersKeepIt) {
  drawing_.host.users().faceColour = 0x0000AA00;  // green, as the system writes colours
  WindowDialog window(behaviour_, nullptr);
  window.open();
  const auto has = [&](int id, std::uint32_t colour) {
    const test::WindowPicture picture = test::pictureOfControl(window.handle(), id);
    return std::find(picture.pixels.begin(), picture.pixels.end(), colour) != picture.pixels.end();
  };
  for (const int id :
       {host::kIdPictureSite, host::kIdPictureAlignment, host::kIdPictureSurface, host::kIdPictureSampleLineGroup})
    EXPECT_TRUE(has(id, sentinel())) << id;
  for (const int id : {host::kIdPickAlignment, host::kIdPickSurface, host::kIdOutputFileBox}) {
    EXPECT_FALSE(has(id, sentinel())) << id;
    EXPECT_TRUE(has(id, 0xFFFFFF)) << id;
  }
}

TEST_F(ProjectionWindow, APictureButtonIsDrawnByTheThemeInEveryState) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  const HWND button = GetDlgItem(static_cast<HWND>(window.handle()), host::kIdPickAlignment);
  const auto drawn = [&] {
    RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    return test::pictureOfControl(window.handle(), host::kIdPickAlignment);
  };
  const test::WindowPicture normal = drawn();
  SendMessageW(button, BM_SETSTATE, TRUE, 0);
  const test::WindowPicture pressed = drawn();
  SendMessageW(button, BM_SETSTATE, FALSE, 0);
  EXPECT_NE(normal, pressed);
  EXPECT_EQ(normal, drawn());
  EnableWindow(button, FALSE);
  EXPECT_NE(normal, drawn());
  EnableWindow(button, TRUE);
  EXPECT_EQ(normal, drawn());
}

TEST_F(ProjectionWindow, TheTipOfThePathBoxHoldsWhatItIsGiven) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  EXPECT_EQ(window.tip(host::kIdOutputStem), L"");
  const CString path = L"C:\\R&D\\" + CString(500, L'\u00E4') + L".txt";
  drawing_.host.users().paths = {path};
  window.userClicks(host::kIdOutputFileBox);
  EXPECT_EQ(window.tip(host::kIdOutputStem), path);
  EXPECT_EQ(window.text(host::kIdOutputStem), path.substr(0, path.size() - 4));
  EXPECT_EQ(window.tip(host::kIdSites), L"") << "no other control has one";
}

TEST_F(ProjectionWindow, CaptionsWithAccessKeysAndAmpersandsAreTextsAsTheyAreSet) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  window.setText(host::kIdFrameSelection, L"&Site && axis");
  EXPECT_EQ(window.text(host::kIdFrameSelection), L"&Site && axis");
}

TEST_F(ProjectionWindow, NumbersThatTheTemplateHasNotAreIgnored) {
  WindowDialog window(behaviour_, nullptr);
  window.open();
  window.setText(4711, L"x");
  window.enable(4711, true);
  window.insertRow(4711, 0, L"x");
  window.insertRow(host::kIdSites, 99, L"beyond the end");
  window.select(host::kIdSites, 99);
  window.tick(host::kIdSites, true);
  EXPECT_EQ(window.text(4711), L"");
  EXPECT_FALSE(window.isEnabled(4711));
  EXPECT_EQ(window.rowCount(4711), 0);
  EXPECT_EQ(window.selection(host::kIdSites), host::DialogWindow::kNone);
  EXPECT_THROW(static_cast<void>(window.rowText(host::kIdSites, 99)), framework::InvalidArgumentException);
}

TEST_P(EveryDialog, HasItsControlsWhereTheTemplatePutsThem) {
  const auto behaviour = GetParam().make(drawing_.host);
  WindowDialog window(*behaviour, nullptr);
  window.open();
  const HWND dialog = static_cast<HWND>(window.handle());
  for (const host::ControlTemplate& control : behaviour->dialogTemplate().controls) {
    const host::DialogUnits& units = control.rectangle;
    RECT place{units.x, units.y, units.x, units.y};
    RECT size{0, 0, units.width, units.height};
    MapDialogRect(dialog, &place);
    MapDialogRect(dialog, &size);
    const HWND shown = GetDlgItem(dialog, control.id);
    RECT is{};
    GetWindowRect(shown, &is);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&is), 2);
    EXPECT_EQ(is.left, place.left) << control.id;
    EXPECT_EQ(is.top, place.top) << control.id;
    // A closed list is lower than its template, and a picture takes its own size.
    if (control.kind == ControlKind::Picture) continue;
    EXPECT_EQ(is.right - is.left, size.right) << control.id;
    if (control.kind == ControlKind::DropDownList) continue;
    EXPECT_EQ(is.bottom - is.top, size.bottom) << control.id;
  }
}

/// Room that a control's text takes on the screen, at most as wide as the control where it may go over lines.
SIZE roomOfText(HWND control, bool mayWrap) {
  const HDC context = GetDC(control);
  const HGDIOBJ former = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
  std::array<wchar_t, 1024> text{};
  GetWindowTextW(control, text.data(), static_cast<int>(text.size()));
  RECT room{};
  GetClientRect(control, &room);
  DrawTextW(context, text.data(), -1, &room, static_cast<UINT>(DT_CALCRECT | (mayWrap ? DT_WORDBREAK : DT_SINGLELINE)));
  SelectObject(context, former);
  ReleaseDC(control, context);
  return {room.right - room.left, room.bottom - room.top};
}

TEST_P(EveryDialog, CutsNoTextOffInEitherLanguage) {
  for (const char* language : {"en", "de"}) {
    drawing_.host.useMessages(language);
    const auto behaviour = GetParam().make(drawing_.host);
    WindowDialog window(*behaviour, nullptr);
    window.open();
    int looked = 0;
    for (const host::ControlTemplate& control : behaviour->dialogTemplate().controls) {
      const bool isButton = control.kind == ControlKind::PushButton || control.kind == ControlKind::DefaultButton;
      const bool isLabel = control.kind == ControlKind::Label;
      if (!isButton && !isLabel && control.kind != ControlKind::CheckBox && control.kind != ControlKind::GroupBox)
        continue;
      const HWND shown = GetDlgItem(static_cast<HWND>(window.handle()), control.id);
      RECT place{};
      GetClientRect(shown, &place);
      const SIZE text = roomOfText(shown, isLabel);
      // A check box has its mark before the text, a group its corner.
      const LONG besides = control.kind == ControlKind::CheckBox ? 16 : control.kind == ControlKind::GroupBox ? 9 : 0;
      EXPECT_LE(text.cx + besides, place.right) << language << " " << control.id;
      if (isLabel) {
        EXPECT_LE(text.cy, place.bottom) << language << " " << control.id;
      }
      ++looked;
    }
    EXPECT_GT(looked, 2);
  }
}

/// Pictures of the dialogs for whoever wants to look at them, where LVX_PICTURES names a folder.
TEST_P(EveryDialog, ShowsItsTextsInBothLanguages) {
  const char* const folder = std::getenv("LVX_PICTURES");
  for (const char* language : {"en", "de"}) {
    drawing_.host.useMessages(language);
    const auto behaviour = GetParam().make(drawing_.host);
    WindowDialog window(*behaviour, nullptr);
    window.open();
    if (window.rowCount(host::kIdSites) > 0) window.userSelects(host::kIdSites, 0);
    if (window.rowCount(host::kIdSites) > 0) window.userTypes(host::kIdOutputStem, L"C:\\out\\valley");
    SetForegroundWindow(static_cast<HWND>(window.handle()));
    window.settle();
    const test::WindowPicture picture = test::pictureOf(window.handle());
    EXPECT_GT(picture.width, 300);
    // Text, frames and pictures: far from one colour.
    EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(),
                            [&](std::uint32_t pixel) { return pixel != picture.at(20, picture.height - 8); }),
              2000);
    if (folder != nullptr)
      test::saveBitmap(picture, std::string(folder) + "/" + GetParam().name + "-" + language + ".bmp");
  }
}

}  // namespace
}  // namespace lvx::native
