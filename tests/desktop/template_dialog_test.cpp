#include "desktop/dialogs/template_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QToolTip>
#include <QWindow>
#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/picture.h"
#include "framework/exceptions.h"
#include "host/dialog_controls.h"
#include "running_dialog.h"
#include "windowless/dialog_state.h"

namespace lvx::test {
namespace {

using desktop::QtDialogRunner;
using framework::CString;
using host::ControlKind;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;

// Every kind of control; the group is listed behind most of its controls.
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
    {70, ControlKind::GroupBox, L"&Group", {4, 3, 174, 90}},
    {50, ControlKind::CheckBox, L"&Tick", {10, 72, 60, 10}},
    {60, ControlKind::PushButton, L"&Act", {10, 120, 40, 14}},
    {80, ControlKind::Label, L"A long text that takes more than one line.", {10, 96, 100, 20}},
}};
constexpr DialogTemplate kTemplate{"Sample", L"Sample", 182, 140, kControls};

/// Logs every event with what the window then holds, and does what the test says.
class Recorder final : public host::DialogBehaviour {
 public:
  std::vector<std::string> log;
  std::function<void(DialogWindow&)> opening = [](DialogWindow&) {};
  std::function<void(DialogWindow&, int)> click = [](DialogWindow& window, int id) {
    if (id == host::kIdOk || id == host::kIdCancel) window.end(id);
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
  std::function<void(windowless::DialogState&)> told;
  std::function<void(DesktopUser&, RunningDialog&)> done;
};

/// Opens a list by the mouse and chooses a row by the mouse, which may close the dialog.
void chooseRow(DesktopUser& user, QComboBox* list, int row) {
  const auto watched = onGui([&] { return QPointer<QComboBox>(list); });
  user.click(list);
  ASSERT_TRUE(user.waitFor([&] { return list->view()->isVisible(); }));
  const QPoint place = onGui([&] { return list->view()->visualRect(list->model()->index(row, 0)).center(); });
  user.click(onGui([&] { return list->view()->viewport(); }), place);
  ASSERT_TRUE(user.waitFor([&] { return !watched || !watched->view()->isVisible(); }));
}

std::vector<Action> actions() {
  using windowless::DialogState;
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
       [](DialogState& state) { EXPECT_EQ(state.userClicks(1), windowless::Refusal::Disabled); },
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
  windowless::DialogState state(without);
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

// ---------------------------------------------------------------- keyboard

/// Number of the control that has the focus.
int focused() {
  const QWidget* const widget = QApplication::focusWidget();
  return widget == nullptr ? 0 : widget->objectName().mid(7).toInt();
}

TEST(TemplateDialog, WalksThroughItsControlsInTheOrderOfTheTemplate) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = [](DialogWindow& window) {
    fill(window);
    window.enable(33, false);
  };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  // OK and the second list are disabled; labels, pictures and groups take no focus.
  for (const int id : {2, 21, 32, 40, 50, 60, 2, 21}) {
    EXPECT_TRUE(user.waitFor([&] { return focused() == id; })) << "expected " << id;
    user.key(Qt::Key_Tab);
  }
  for (const int id : {32, 21, 2, 60}) {
    EXPECT_TRUE(user.waitFor([&] { return focused() == id; })) << "expected " << id;
    user.key(Qt::Key_Tab, Qt::ShiftModifier);
  }
}

TEST(TemplateDialog, LeadsTheAccessKeyOfATextToTheNextControlThatTakesTheFocus) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = fill;
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  const std::pair<Qt::Key, int> keys[] = {{Qt::Key_R, 32}, {Qt::Key_N, 21}, {Qt::Key_G, 50}, {Qt::Key_R, 32}};
  for (const auto& [key, id] : keys) {
    user.key(key, Qt::AltModifier);
    EXPECT_TRUE(user.waitFor([&] { return focused() == id; })) << "expected " << id;
  }
  EXPECT_EQ(onGui([&] { return dialog.control<QLabel>(30)->text(); }), QStringLiteral("Rock & soil:"));
  user.key(Qt::Key_T, Qt::AltModifier);
  EXPECT_TRUE(user.waitFor([&] { return dialog.control<QCheckBox>(50)->isChecked(); }));
  user.key(Qt::Key_A, Qt::AltModifier);
  EXPECT_TRUE(user.waitFor([&] { return recorder.log.back().starts_with("click 60"); }));
}

constexpr std::array<ControlTemplate, 3> kTextBeforeButton{{
    {1, ControlKind::PushButton, L"One", {10, 40, 40, 14}},
    {-1, ControlKind::Label, L"&Question and no more", {10, 10, 100, 8}},
    {9, ControlKind::PushButton, L"Nine", {60, 40, 40, 14}},
}};
constexpr DialogTemplate kTextBeforeButtonTemplate{"Question", L"Question", 120, 60, kTextBeforeButton};

TEST(TemplateDialog, DoesNotPressAButtonByTheAccessKeyOfTheTextBeforeIt) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.made = &kTextBeforeButtonTemplate;
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  user.key(Qt::Key_Q, Qt::AltModifier);
  EXPECT_TRUE(user.waitFor([&] { return focused() == 9; }));
  EXPECT_EQ(onGui([&] { return recorder.log.size(); }), 1U) << "only the opening";
  user.key(Qt::Key_Tab);
  user.key(Qt::Key_Return);
  EXPECT_EQ(dialog.code(user), 1) << "the focus came round to the first button";
}

TEST(TemplateDialog, PressesTheDefaultButtonOnEnterUnlessItIsDisabledOrAnotherButtonHasTheFocus) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = fill;
  recorder.textChanged = [](DialogWindow& window, int) { window.enable(1, window.text(21) != L""); };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  user.click(dialog.control(21));
  user.key(Qt::Key_Return);
  user.key(Qt::Key_Enter);
  EXPECT_EQ(onGui([&] { return recorder.log.size(); }), 1U) << "the default button is disabled";
  user.type("a");
  user.click(dialog.control(60));
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return recorder.log.size() == 4; })) << "by the mouse and by Enter";
  EXPECT_TRUE(onGui([&] { return recorder.log.back().starts_with("click 60"); }));
  user.key(Qt::Key_R, Qt::AltModifier);
  user.key(Qt::Key_Return);
  EXPECT_EQ(dialog.code(user), host::kIdOk);
}

TEST(TemplateDialog, TellsOfEveryCharacterTypedAndEveryRowReachedByArrows) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = fill;
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  user.key(Qt::Key_N, Qt::AltModifier);
  user.type("abc");
  user.key(Qt::Key_Backspace);
  user.key(Qt::Key_R, Qt::AltModifier);
  user.key(Qt::Key_Down);
  user.key(Qt::Key_Down);
  user.key(Qt::Key_End);  // the last row already after a third step: one more event
  user.type("b");         // the row that begins so
  const std::vector<std::string> expected{
      "opening",
      "text 21: \"a\" -1/3 1/3",
      "text 21: \"ab\" -1/3 1/3",
      "text 21: \"abc\" -1/3 1/3",
      "text 21: \"ab\" -1/3 1/3",
      "select 32: \"ab\" 0/3 1/3",
      "select 32: \"ab\" 1/3 1/3",
      "select 32: \"ab\" 2/3 1/3",
      "select 32: \"ab\" 1/3 1/3",
  };
  EXPECT_TRUE(user.waitFor([&] { return recorder.log.size() == expected.size(); }));
  EXPECT_EQ(onGui([&] { return recorder.log; }), expected);
}

// ---------------------------------------------------------------- closing

TEST(TemplateDialog, HearsOfItsCloseMarkAndOfEscapeAsCancelAndMayStay) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  int cancels = 0;
  recorder.click = [&](DialogWindow& window, int id) {
    if (id == host::kIdCancel && ++cancels == 3) window.end(77);
  };
  RunningDialog dialog(runner, recorder);
  QWidget* const window = dialog.window(user);
  ASSERT_NE(window, nullptr);
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return cancels == 1 && window->isVisible(); }));
  // The close mark is at the right end of the title bar.
  const QMargins frame = onGui([&] { return window->windowHandle()->frameMargins(); });
  ASSERT_GT(frame.top(), 8);
  const QPoint mark(onGui([&] { return window->width(); }) - frame.top() / 2, -frame.top() / 2);
  user.click(window, mark);
  EXPECT_TRUE(user.waitFor([&] { return cancels == 2 && window->isVisible(); }));
  user.click(window, mark);
  EXPECT_EQ(dialog.code(user), 77);
}

TEST(TemplateDialog, ClosesOnlyWhenTheRunningEventIsOver) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  bool wasVisible = false;
  recorder.click = [&](DialogWindow& window, int) {
    window.end(5);
    wasVisible = QApplication::activeModalWidget() != nullptr;
    window.end(6);
    window.setText(21, L"still there");
  };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  user.key(Qt::Key_C, Qt::AltModifier);
  EXPECT_EQ(dialog.code(user), 6);
  EXPECT_TRUE(wasVisible);
  EXPECT_TRUE(recorder.log.back().starts_with("text 21: \"still there\""));
}

TEST(TemplateDialog, IsNeverShownWhereItsOpeningEndsIt) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = [](DialogWindow& window) { window.end(6); };
  RunningDialog dialog(runner, recorder);
  EXPECT_EQ(dialog.window(user), nullptr);
  EXPECT_EQ(dialog.code(user), 6);
}

/// What a behaviour of this test raises.
struct Raised : std::runtime_error {
  using std::runtime_error::runtime_error;
};

TEST(TemplateDialog, LetsWhatAnEventRaisesOutOfTheRunAfterTheWindowHasClosed) {
  DesktopUser user;
  QtDialogRunner runner;
  const auto raise = [] { throw Raised("on purpose"); };
  struct Case {
    const char* name;
    std::function<void(Recorder&)> prepare;
    std::function<void(RunningDialog&)> act;
  };
  const Case cases[] = {
      {"opening", [&](Recorder& r) { r.opening = [&](DialogWindow&) { raise(); }; }, [](RunningDialog&) {}},
      {"click", [&](Recorder& r) { r.click = [&](DialogWindow&, int) { raise(); }; },
       [&](RunningDialog& dialog) { user.click(dialog.control(60)); }},
      {"escape", [&](Recorder& r) { r.click = [&](DialogWindow&, int) { raise(); }; },
       [&](RunningDialog&) { user.key(Qt::Key_Escape); }},
      {"row", [&](Recorder& r) { r.selectionChanged = [&](DialogWindow&, int) { raise(); }; },
       [&](RunningDialog& dialog) { chooseRow(user, dialog.control<QComboBox>(32), 0); }},
      {"text", [&](Recorder& r) { r.textChanged = [&](DialogWindow&, int) { raise(); }; },
       [&](RunningDialog& dialog) {
         user.click(dialog.control(21));
         user.type("a");
       }},
      {"text set within a click",
       [&](Recorder& r) {
         r.textChanged = [&](DialogWindow&, int) { raise(); };
         r.click = [&](DialogWindow& window, int) { window.setText(21, L"set"); };
       },
       [&](RunningDialog& dialog) { user.click(dialog.control(40)); }},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    Recorder recorder;
    recorder.opening = fill;
    each.prepare(recorder);
    RunningDialog dialog(runner, recorder);
    if (dialog.window(user) != nullptr) each.act(dialog);
    EXPECT_THROW(dialog.code(user), Raised);
    EXPECT_TRUE(onGui([] { return QApplication::activeModalWidget() == nullptr; }));
  }
}

TEST(TemplateDialog, CarriesWhatANestedDialogRaisesThroughBoth) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder inner;
  inner.made = &kTextBeforeButtonTemplate;
  inner.click = [](DialogWindow&, int) { throw framework::InvalidArgumentException(); };
  Recorder outer;
  outer.click = [&](DialogWindow&, int) { runner.runModal(inner, nullptr); };
  RunningDialog dialog(runner, outer);
  ASSERT_NE(dialog.window(user), nullptr);
  user.click(dialog.control(60));
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Question")), nullptr);
  user.key(Qt::Key_Space);
  EXPECT_THROW(dialog.code(user), framework::InvalidArgumentException);
  EXPECT_TRUE(onGui([] { return QApplication::activeModalWidget() == nullptr; }));
}

// ---------------------------------------------------------------- the runner

TEST(DialogRunner, OpensADialogOverItsParentAndThenWhereItWasClosed) {
  DesktopUser user;
  QtDialogRunner runner;
  QWidget* const main = onGui([] {
    auto* widget = new QWidget;
    widget->setWindowTitle(QStringLiteral("Main"));
    widget->setGeometry(200, 150, 420, 260);
    widget->show();
    return widget;
  });
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Main")), nullptr);
  Recorder recorder;
  QPoint moved;
  {
    RunningDialog dialog(runner, recorder, main);
    QWidget* const window = dialog.window(user);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(user.waitFor([&] {
      const QPoint off = window->frameGeometry().center() - main->frameGeometry().center();
      return off.manhattanLength() < 6;
    }));
    const QMargins frame = onGui([&] { return window->windowHandle()->frameMargins(); });
    const QPoint before = onGui([&] { return window->pos(); });
    user.drag(window, QPoint(60, -frame.top() / 2), QPoint(10, 40));
    EXPECT_TRUE(user.waitFor([&] { return window->pos() != before; }));
    moved = onGui([&] { return window->pos(); });
    user.key(Qt::Key_Escape);
    EXPECT_EQ(dialog.code(user), host::kIdCancel);
  }
  {
    RunningDialog dialog(runner, recorder, main);
    QWidget* const window = dialog.window(user);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(user.waitFor([&] { return (window->pos() - moved).manhattanLength() <= 2; }))
        << onGui([&] { return window->pos().x(); }) << " for " << moved.x();
    user.key(Qt::Key_Escape);
    EXPECT_EQ(dialog.code(user), host::kIdCancel);
  }
  onGui([&] { delete main; });
}

TEST(DialogRunner, GivesUpEverythingThatStandsOpenAndOpensNothingMore) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder inner;
  inner.made = &kTextBeforeButtonTemplate;
  inner.click = [](DialogWindow&, int) {};  // it wouldn't even close on Cancel
  Recorder late;
  int lateCode = 0;
  int innerCode = 0;
  Recorder outer;
  outer.click = [&](DialogWindow& window, int id) {
    if (id != 60) {
      window.end(id);
      return;
    }
    innerCode = runner.runModal(inner, nullptr);
    lateCode = runner.runModal(late, nullptr);  // a command that goes on asking
  };
  RunningDialog dialog(runner, outer);
  ASSERT_NE(dialog.window(user), nullptr);
  user.click(dialog.control(60));
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Question")), nullptr);
  onGui([] { QtDialogRunner::closeAll(); });
  EXPECT_EQ(dialog.code(user), host::kIdCancel);
  EXPECT_EQ(innerCode, host::kIdCancel);
  EXPECT_EQ(lateCode, host::kIdCancel);
  EXPECT_EQ(inner.log.size(), 2U) << "opened, then cancelled";
  EXPECT_EQ(late.log.size(), 2U);
  EXPECT_EQ(late.log.front(), "opening");
  EXPECT_TRUE(late.log.back().starts_with("click 2"));
  EXPECT_TRUE(outer.log.back().starts_with("click 2")) << "the outer one hears of it when its event is over";

  onGui([] { QtDialogRunner::reopen(); });
  Recorder again;
  RunningDialog shown(runner, again);
  EXPECT_NE(shown.window(user), nullptr);
  user.key(Qt::Key_Escape);
  EXPECT_EQ(shown.code(user), host::kIdCancel);
}

// ---------------------------------------------------------------- controls

TEST(TemplateDialog, IgnoresNumbersThatTheTemplateDoesNotHave) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  std::vector<std::string> wrong;
  recorder.opening = [&](DialogWindow& window) {
    const auto check = [&](bool holds, const char* what) {
      if (!holds) wrong.emplace_back(what);
    };
    window.insertRow(999, 0, L"row");
    window.emptyList(999);
    window.select(999, 0);
    window.tick(999, true);
    window.setTip(999, L"tip");
    window.setPicture(999, {});
    check(window.text(999).empty(), "text");
    check(!window.isEnabled(999), "enabled");
    check(window.rowCount(999) == 0, "rows");
    check(window.selection(999) == DialogWindow::kNone, "selection");
    check(!window.isTicked(999), "ticked");
    for (const int row : {-1, 0, 3}) try {
        static_cast<void>(window.rowText(row == 0 ? 999 : 32, row));
        check(false, "a row that isn't there has a text");
      } catch (const framework::InvalidArgumentException&) {
      }
    fill(window);
    window.select(33, -5);
    check(window.selection(33) == DialogWindow::kNone, "selection taken away");
    window.end(1);
  };
  RunningDialog dialog(runner, recorder);
  EXPECT_EQ(dialog.code(user), 1);
  EXPECT_EQ(wrong, std::vector<std::string>{});
}

TEST(TemplateDialog, OpensAListBelowItsBoxAsHighAsTheTemplateAllowsAndAsWideAsItsRows) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = [](DialogWindow& window) {
    for (int row = 0; row < 40; ++row) window.insertRow(32, row, L"a row");
    window.insertRow(33, 0, L"a name that is far longer than the box in which it has to stand");
    window.select(33, 0);
  };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  auto* const list = dialog.control<QComboBox>(32);
  user.click(list);
  ASSERT_TRUE(user.waitFor([&] { return list->view()->isVisible(); }));
  onGui([&] {
    const QRect popup(list->view()->window()->mapToGlobal(QPoint()), list->view()->window()->size());
    const QRect box(list->mapToGlobal(QPoint()), list->size());
    EXPECT_GE(popup.top(), box.bottom() - 1) << "it lies below, not over the box";
    const int allowed = desktop::pixelsOf({0, 0, 10, 60}, desktop::dialogBaseUnits(list->font())).height();
    EXPECT_LE(popup.height() + box.height(), allowed + 4);
    EXPECT_GE(popup.height() + box.height(), allowed - 2 * list->view()->sizeHintForRow(0));
  });
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return !list->view()->isVisible(); }));
  EXPECT_FALSE(dialog.isOver()) << "that Escape was the list's";

  auto* const wide = dialog.control<QComboBox>(33);
  user.click(wide);
  ASSERT_TRUE(user.waitFor([&] { return wide->view()->isVisible(); }));
  EXPECT_TRUE(onGui([&] { return wide->view()->width() >= wide->view()->sizeHintForColumn(0); }));
  user.key(Qt::Key_Escape);
  // Closed, the box shows the rest of the name in a tip.
  user.moveTo(wide, QPoint(12, 8));
  user.moveTo(wide, QPoint(14, 9));
  EXPECT_TRUE(user.waitFor([&] { return QToolTip::isVisible() && QToolTip::text() == wide->itemText(0); }));
}

TEST(TemplateDialog, LeavesAListAloneWhenTheWheelPassesIt) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = fill;
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  user.click(dialog.control(21));
  user.moveTo(dialog.control(33), QPoint(10, 8));
  user.wheel(-1);
  EXPECT_EQ(onGui([&] { return recorder.log.size(); }), 1U);
  user.key(Qt::Key_R, Qt::AltModifier);
  user.moveTo(dialog.control(32), QPoint(10, 8));
  user.wheel(-1);
  EXPECT_TRUE(user.waitFor([&] { return recorder.log.size() == 2; })) << "with the focus it turns";
}

TEST(TemplateDialog, ShowsACaptionThatIsTooLongInATip) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  const CString tooLong = L"A &name that is by far too long for its place";
  recorder.opening = [&](DialogWindow& window) {
    for (const int id : {2, 20, 50, 70}) window.setText(id, tooLong);
    window.setText(80, tooLong + L" " + tooLong + L" " + tooLong + L" " + tooLong);
    window.setTip(40, L"<b>plain</b> & simple");
  };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  EXPECT_TRUE(onGui([&] { return dialog.control<QPushButton>(2)->text().endsWith(QChar(0x2026)); }));
  EXPECT_TRUE(onGui([&] { return dialog.control<QLabel>(20)->text().endsWith(QChar(0x2026)); }));
  for (const int id : {2, 20, 50, 80}) {
    SCOPED_TRACE(id);
    QWidget* const control = dialog.control(id);
    user.moveTo(control, QPoint(12, 6));
    user.moveTo(control, QPoint(14, 7));
    EXPECT_TRUE(user.waitFor([&] {
      return QToolTip::isVisible() && QToolTip::text().startsWith(QStringLiteral("A name that is by far too long"));
    })) << onGui([] { return QToolTip::text().toStdString(); });
    user.moveTo(dialog.control(60), QPoint(5, 5));
    EXPECT_TRUE(user.waitFor([] { return !QToolTip::isVisible(); }));
  }
  user.moveTo(dialog.control(40), QPoint(10, 8));
  user.moveTo(dialog.control(40), QPoint(11, 9));
  EXPECT_TRUE(user.waitFor([] { return QToolTip::text().contains(QStringLiteral("&lt;b&gt;plain")); }))
      << "markup is text";
}

TEST(TemplateDialog, NamesListsAndPictureButtonsForScreenReadersByTheirRow) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  const std::pair<int, const char*> names[] = {
      {21, "Name:"}, {32, "Rock & soil:"}, {40, "Rock & soil:"}, {33, "Group"}};
  for (const auto& [id, name] : names)
    EXPECT_EQ(onGui([&, number = id] { return dialog.control(number)->accessibleName().toStdString(); }), name) << id;
}

// ---------------------------------------------------------------- pictures

/// Red, with a white pixel in the upper left corner and one of the dialog's colour beside it.
host::PictureBits picture(QColor face) {
  host::PictureBits bits;
  bits.name = "TEST";
  const auto set = [&](std::size_t pixel, int red, int green, int blue) {
    bits.bytes[4 * pixel] = static_cast<std::uint8_t>(blue);
    bits.bytes[4 * pixel + 1] = static_cast<std::uint8_t>(green);
    bits.bytes[4 * pixel + 2] = static_cast<std::uint8_t>(red);
  };
  for (std::size_t pixel = 0; pixel < 256; ++pixel) set(pixel, 200, 40, 30);
  set(0, 255, 255, 255);
  set(1, face.red(), face.green(), face.blue());
  return bits;
}

TEST(TemplateDialog, DrawsPicturesSharpOnItsOwnBackground) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  const QColor face = onGui([] { return QApplication::palette().color(QPalette::Window); });
  recorder.opening = [&](DialogWindow& window) {
    for (const int id : {31, 40}) window.setPicture(id, picture(face));
  };
  RunningDialog dialog(runner, recorder);
  QWidget* const window = dialog.window(user);
  ASSERT_NE(window, nullptr);
  const double ratio = onGui([&] { return window->devicePixelRatioF(); });
  const auto grabbed = [&] {
    return onGui([&] {
      return window->grab(QRect(window->findChild<QWidget*>(QStringLiteral("control31"))->pos(), QSize(17, 17)))
          .toImage();
    });
  };
  const QImage shown = grabbed();
  const auto at = [&](const QImage& image, double x, double y) {
    return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
  };
  EXPECT_EQ(at(shown, 16.6, 8), face) << "the picture is 16 pixels wide";
  EXPECT_EQ(at(shown, 8, 8), QColor(200, 40, 30));
  if (ratio == 1.0 || ratio == 2.0) {
    EXPECT_EQ(at(shown, 0.2, 0.2), QColor(Qt::white)) << "white that came is white that shows";
    EXPECT_EQ(at(shown, 1.2, 0.2), face);
    EXPECT_EQ(at(shown, 1.2, 1.2), QColor(200, 40, 30));
  }
  if (ratio == 2.0) {
    for (int y = 0; y < 32; y += 2)
      for (int x = 0; x < 32; x += 2) EXPECT_EQ(shown.pixel(x, y), shown.pixel(x + 1, y + 1)) << x << ' ' << y;
  }

  // Another scheme while the dialog is open: the picture lies on the new colour.
  const QPalette before = onGui([] { return QApplication::palette(); });
  onGui([&] { QApplication::setPalette(QPalette(QColor(60, 62, 66))); });
  if (ratio != 1.5) {
    EXPECT_EQ(at(grabbed(), 1.2, 0.2), onGui([] { return QApplication::palette().color(QPalette::Window); }));
  }
  onGui([&] { QApplication::setPalette(before); });
}

TEST(TemplateDialog, DrawsPictureButtonsInEveryState) {
  DesktopUser user;
  QtDialogRunner runner;
  Recorder recorder;
  recorder.opening = [](DialogWindow& window) { window.setPicture(40, picture(Qt::gray)); };
  recorder.click = [](DialogWindow& window, int id) {
    if (id == 60) window.enable(40, !window.isEnabled(40));
    if (id == 2) window.end(2);
  };
  RunningDialog dialog(runner, recorder);
  ASSERT_NE(dialog.window(user), nullptr);
  QWidget* const button = dialog.control(40);
  const auto look = [&] { return onGui([&] { return button->grab().toImage(); }); };
  const auto hasRed = [](const QImage& image) {
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (image.pixelColor(x, y) == QColor(200, 40, 30)) return true;
    return false;
  };
  user.moveTo(dialog.control(80), QPoint(5, 5));
  const QImage normal = look();
  EXPECT_TRUE(hasRed(normal));
  user.moveTo(button, QPoint(8, 8));
  EXPECT_TRUE(user.waitFor([&] { return button->underMouse(); }));
  EXPECT_NE(look(), normal) << "hot";
  user.click(dialog.control(21));
  user.key(Qt::Key_Tab);
  user.key(Qt::Key_Tab);
  user.key(Qt::Key_Tab);
  EXPECT_TRUE(user.waitFor([&] { return button->hasFocus(); }));
  const QImage focusedLook = look();
  EXPECT_NE(focusedLook, normal) << "focused";
  user.key(Qt::Key_Space);
  EXPECT_TRUE(user.waitFor([&] { return recorder.log.back().starts_with("click 40"); }));
  user.click(dialog.control(60));
  EXPECT_TRUE(user.waitFor([&] { return !button->isEnabled(); }));
  const QImage disabled = look();
  EXPECT_FALSE(hasRed(disabled)) << "greyed";
  EXPECT_NE(disabled, normal);
}

TEST(FaceColour, IsTheDialogsBackgroundWithRedInTheLowestByte) {
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(0x12, 0x34, 0x56));
  EXPECT_EQ(desktop::faceColour(palette), 0x00563412U);
}

}  // namespace
}  // namespace lvx::test
