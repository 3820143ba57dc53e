#pragma once

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTextBrowser>
#include <QWidget>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "desktop/shell/main_window.h"
#include "desktop_user/desktop_user.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {

inline const QString kExample = QString::fromStdString(test::inSource("/examples/valley-road.xml"));

/// The program's window as main() builds it, with the module of the build tree and settings of its own, and somebody
/// before it.
class ProgramWindow {
 public:
  /// Opens `drawing` and waits until it is there; empty: none.
  explicit ProgramWindow(const QString& drawing = kExample, const desktop::DesktopOptions& wanted = {}) {
    desktop::DesktopOptions options = wanted;
    options.choices.bin = test::inBuild("/bin");
    if (!options.scheme) options.scheme = desktop::Scheme::Light;
    if (options.settingsFile.isEmpty()) options.settingsFile = path("settings.ini");
    if (!drawing.isEmpty()) options.drawing = desktop::DrawingSources(drawing);
    onGui([&] {
      window = new desktop::MainWindow(options);
      window->show();
    });
    EXPECT_NE(user.waitForActiveWindow(QStringLiteral("lvxhost-desktop")), nullptr);
    if (drawing.isEmpty()) return;
    EXPECT_TRUE(user.waitFor([this] { return isOpen(); }, std::chrono::seconds(60)));
  }
  ProgramWindow(const ProgramWindow&) = delete;
  ProgramWindow& operator=(const ProgramWindow&) = delete;
  ~ProgramWindow() {
    if (window == nullptr) return;
    onGui([this] { window->leaveNow(); });
    EXPECT_TRUE(user.waitFor([this] { return !window->isVisible() && !window->session().isRunning(); }));
    onGui([this] { delete window; });
  }

  [[nodiscard]] bool isOpen() const { return static_cast<bool>(window->session().drawing()); }
  [[nodiscard]] QString path(const std::string& name) const { return QString::fromStdString((folder / name).string()); }
  /// A part of the window by its name.
  template <class Widget = QWidget>
  [[nodiscard]] Widget* part(const char* name) const {
    return onGui([&] { return window->findChild<Widget*>(QLatin1String(name)); });
  }
  [[nodiscard]] bool isEnabled(const char* action) const {
    return onGui([&] { return window->findChild<QAction*>(QLatin1String(action))->isEnabled(); });
  }
  /// Everything that the console said.
  [[nodiscard]] std::string said() const {
    return onGui([this] {
      return window->findChild<QTextBrowser*>(QStringLiteral("consoleHistory"))->toPlainText().toStdString();
    });
  }
  bool waitUntilSaid(const char* text) const {
    return user.waitFor([&] {
      return window->findChild<QTextBrowser*>(QStringLiteral("consoleHistory"))
          ->toPlainText()
          .contains(QString::fromUtf8(text));
    });
  }
  /// Types a command and presses Enter.
  void enter(const std::string& text) {
    auto* const edit = part<QLineEdit>("consoleEdit");
    user.click(edit);
    EXPECT_TRUE(user.waitFor([&] { return edit->hasFocus(); }));
    user.type(text);
    EXPECT_TRUE(user.waitFor([&] { return edit->text().toStdString() == text; }))
        << onGui([&] { return edit->text().toStdString(); });
    user.key(Qt::Key_Return);
  }
  /// The window of that name, such as a message box, once it has the keyboard.
  [[nodiscard]] QWidget* waitForNamed(const char* name) const {
    QWidget* found = nullptr;
    user.waitFor([&] {
      for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isActiveWindow() && top->objectName() == QLatin1String(name)) found = top;
      return found != nullptr;
    });
    return found;
  }
  /// The button of a box by its text, without the mark of its access key.
  [[nodiscard]] static QPushButton* button(QWidget* box, const char* text) {
    return onGui([&]() -> QPushButton* {
      for (auto* const candidate : box->findChildren<QPushButton*>())
        if (candidate->text().remove(QLatin1Char('&')) == QString::fromUtf8(text)) return candidate;
      return nullptr;
    });
  }

  TemporaryFolder folder;
  DesktopUser user;
  desktop::MainWindow* window = nullptr;
};

/// The system's own words for an error, which follow the user's language.
inline std::string systemWords(int error) { return std::generic_category().message(error); }

/// A copy of the example that a test may change.
inline QString copyOfExample(const TemporaryFolder& folder, const std::string& name = "road.xml") {
  std::filesystem::copy_file(kExample.toStdString(), folder / name);
  return QString::fromStdString((folder / name).string());
}

}  // namespace lvx::test
