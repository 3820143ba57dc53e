#include "desktop/template_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QToolTip>
#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/picture.h"
#include "framework/exceptions.h"
#include "running_dialog.h"
#include "runtime/dialog_state.h"

namespace lvx::test {
namespace {

using desktop::QtDialogRunner;
using dialogs::ControlKind;
using dialogs::ControlTemplate;
using dialogs::DialogTemplate;
using dialogs::DialogWindow;
using framework::CString;

// Every kind of control; the group is listed behind its controls, and a number comes without a meaning of its own.
constexpr std::array<ControlTemplate, 13> kControls{{
    {1, ControlKind::DefaultButton, L"OK", {60, 120, 50, 14}, false},
    {2, ControlKind::PushButton, L"&Cancel", {116, 120, 50, 14}},
    {20, ControlKind::Label, L"&Name:", {10, 14, 40, 8}},
    {21, ControlKind::EditBox, L"", {54, 12, 100, 13}},
    {30, ControlKind::Label, L"&Rock && soil:", {10, 34, 44, 8}},
    {31, ControlKind::Picture, L"", {54, 33, 15, 13}},
    {32, ControlKind::DropDownList, L"", {74, 32, 80, 60}},
    {33, ControlKind::DropDownList, L"", {74, 52, 80, 60}},
    {40, ControlKind::PictureButton, L"*", {158, 32, 15, 14}},
    {50, ControlKind::CheckBox, L"&Tick", {10, 72, 60, 10}},
    {60, ControlKind::PushButton, L"&Act", {10, 120, 40, 14}},
    {70, ControlKind::GroupBox, L"&Group", {4, 3, 174, 90}},
    {80, ControlKind::Label, L"A long text that takes more than one line.", {10, 96, 100, 20}},
}};
constexpr DialogTemplate kTemplate{"Sample", L"Sample", 182, 140, kControls};

/// Logs every event with what the window then holds, and does what the test says.
class Recorder final : public dialogs::DialogBehaviour {
 public:
  std::vector<std::string> log;
  std::function<void(DialogWindow&)> opening = [](DialogWindow&) {};
  std::function<void(DialogWindow&, int)> click = [](DialogWindow& window, int id) {
    if (id == dialogs::kIdOk || id == dialogs::kIdCancel) window.end(id);
  };
  std::function<void(DialogWindow&, int)> selectionChanged = [](DialogWindow&, int) {};
  std::function<void(DialogWindow&, int)> textChanged = [](DialogWindow&, int) {};

  [[nodiscard]] const DialogTemplate& dialogTemplate() const override { return *made; }
  void onOpening(DialogWindow& window) override {
    log.push_back("opening");
    opening(window);
  }
  void onClick(DialogWindow& window, int id) override {
    note(window, "click", id);
    click(window, id);
  }
  void onSelectionChanged(DialogWindow& window, int id) override {
    note(window, "select", id);
    selectionChanged(window, id);
  }
  void onTextChanged(DialogWindow& window, int id) override {
    note(window, "text", id);
    textChanged(window, id);
  }

  const DialogTemplate* made = &kTemplate;

 private:
  void note(const DialogWindow& window, const char* event, int id) {
    const CString text = window.text(21);
    log.push_back(std::string(event) + ' ' + number(id) + ": \"" + std::string(text.begin(), text.end()) + "\" " +
                  number(window.selection(32)) + '/' + number(window.rowCount(32)) + ' ' +
                  number(window.selection(33)) + '/' + number(window.rowCount(33)) +
                  (window.isTicked(50) ? " ticked" : "") + (window.isEnabled(1) ? " ok" : "") +
                  (window.isEnabled(60) ? "" : " act off"));
  }
  static std::string number(int value) { return QString::number(value).toStdString(); }
};

void fill(DialogWindow& window) {
  for (const int list : {32, 33}) {
    window.emptyList(list);
    int row = 0;
    for (const wchar_t* text : {L"alpha", L"beta", L"gamma"}) window.insertRow(list, row++, text);
  }
  window.setText(21, L"x");
  window.select(33, 1);
}

// ---------------------------------------------------------------- the same rules with and without a window

/// A dialog in which every event changes something.
void behave(Recorder& recorder) {
  recorder.opening = fill;
  recorder.click = [](DialogWindow& window, int id) {
    switch (id) {
      case 1:
      case 2:
        window.end(id);
        break;
      case 40:  // as a file box does: the text arrives as if it were typed, also where it was there already
        window.setText(21, L"chosen");
        window.setText(21, L"chosen");
        break;
      case 60:  // none of this raises an event
        window.insertRow(32, 0, L"first");
        window.insertRow(32, 99, L"nowhere");
        window.select(33, 7);
        window.tick(50, !window.isTicked(50));
        window.setText(20, L"Other:");
        window.enable(60, false);
        window.enable(999, true);
        window.setText(999, L"nobody");
        break;
      default:
        break;
    }
  };
  recorder.selectionChanged = [](DialogWindow& window, int id) {
    if (id != 32) return;
    window.emptyList(33);
    window.insertRow(33, 0, window.rowText(32, window.selection(32)));
  };
  recorder.textChanged = [](DialogWindow& window, int) { window.enable(1, window.text(21) != L""); };
}

/// One thing that a user does, without and with a window.
struct Action {
  const char* name;
  std::function<void(runtime::DialogState&)> told;
  std::function<void(DesktopUser&, RunningDialog&)> done;
};

/// Opens a list by the mouse and chooses a row by the mouse.
void chooseRow(DesktopUser& user, QComboBox* list, int row) {
  user.click(list);
  ASSERT_TRUE(user.waitFor([&] { return list->view()->isVisible(); }));
  const QPoint place = onGui([&] { return list->view()->visualRect(list->model()->index(row, 0)).center(); });
  user.click(onGui([&] { return list->view()->viewport(); }), place);
  ASSERT_TRUE(user.waitFor([&] { return !list->view()->isVisible(); }));
}

std::vector<Action> actions() {
  using runtime::DialogState;
  return {
      {"types a character", [](DialogState& state) { state.userTypes(21, L"xy"); },
       [](DesktopUser& user, RunningDialog& dialog) {
         user.click(dialog.control(21));
         user.key(Qt::Key_End);
         user.type("y");
       }},
      {"deletes all, which is one change", [](DialogState& state) { state.userTypes(21, L""); },
       [](DesktopUser& user, RunningDialog&) {
         user.key(Qt::Key_A, Qt::ControlModifier);
         user.key(Qt::Key_Delete);
       }},
      {"presses OK, which is disabled",
       [](DialogState& state) { EXPECT_EQ(state.userClicks(1), runtime::Refusal::Disabled); },
       [](DesktopUser& user, RunningDialog& dialog) { user.click(dialog.control(1)); }},
      {"selects a row", [](DialogState& state) { state.userSelects(32, 2); },
       [](DesktopUser& user, RunningDialog& dialog) { chooseRow(user, dialog.control<QComboBox>(32), 2); }},
      {"selects it again", [](DialogState& state) { state.userSelects(32, 2); },
       [](DesktopUser& user, RunningDialog& dialog) { chooseRow(user, dialog.control<QComboBox>(32), 2); }},
      {"selects the only row of the other list", [](DialogState& state) { state.userSelects(33, 0); },
       [](DesktopUser& user, RunningDialog& dialog) { chooseRow(user, dialog.control<QComboBox>(33), 0); }},
      {"ticks", [](DialogState& state) { state.userTicks(50, true); },
       [](DesktopUser& user, RunningDialog& dialog) { user.click(dialog.control(50), QPoint(6, 8)); }},
      {"presses the button that changes everything", [](DialogState& state) { state.userClicks(60); },
       [](DesktopUser& user, RunningDialog& dialog) { user.click(dialog.control(60)); }},
      {"presses it again, disabled now", [](DialogState& state) { state.userClicks(60); },
       [](DesktopUser& user, RunningDialog& dialog) { user.click(dialog.control(60)); }},
      {"presses the picture button", [](DialogState& state) { state.userClicks(40); },
       [](DesktopUser& user, RunningDialog& dialog) { user.click(dialog.control(40)); }},
      {"selects the row that moved", [](DialogState& state) { state.userSelects(32, 3); },
       [](DesktopUser& user, RunningDialog& dialog) { chooseRow(user, dialog.control<QComboBox>(32), 3); }},
      {"closes by Escape", [](DialogState& state) { state.userCloses(); },
       [](DesktopUser& user, RunningDialog&) { user.key(Qt::Key_Escape); }},
  };
}

TEST(TemplateDialog, KeepsTheRulesOfADialogWithoutAWindow) {
  Recorder without;
  behave(without);
  Recorder with;
  behave(with);

  DesktopUser user;
  QtDialogRunner runner;
  runtime::DialogState state(without);
  RunningDialog dialog(runner, with);
  ASSERT_NE(dialog.window(user), nullptr);
  for (const Action& action : actions()) {
    SCOPED_TRACE(action.name);
    action.told(state);
    action.done(user, dialog);
    EXPECT_TRUE(user.waitFor([&] { return with.log.size() >= without.log.size(); }, std::chrono::seconds(5)));
    EXPECT_EQ(onGui([&] { return with.log; }), without.log);
  }
  EXPECT_EQ(dialog.code(user), state.closedWith());
  EXPECT_EQ(with.log, without.log);
  EXPECT_GE(without.log.size(), 11U);
}

}  // namespace
}  // namespace lvx::test
