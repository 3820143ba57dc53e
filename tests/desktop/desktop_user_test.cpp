// The test's own user: what it does must reach windows the way a person's doing does.
#include "desktop_user/desktop_user.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace lvx::test {
namespace {

struct Window {
  Window() {
    onGui([this] {
      widget = new QWidget;
      widget->setWindowTitle(QStringLiteral("Window"));
      auto* layout = new QVBoxLayout(widget);
      first = new QLineEdit;
      second = new QLineEdit;
      button = new QPushButton(QStringLiteral("&Go"));
      for (QWidget* part : {static_cast<QWidget*>(first), static_cast<QWidget*>(second), static_cast<QWidget*>(button)})
        layout->addWidget(part);
      QObject::connect(button, &QPushButton::clicked, widget, [this] {
        QDialog dialog(widget);
        dialog.setWindowTitle(QStringLiteral("Question"));
        code = dialog.exec();
      });
      widget->show();
    });
  }
  ~Window() {
    onGui([this] { delete widget; });
  }
  QWidget* widget = nullptr;
  QLineEdit* first = nullptr;
  QLineEdit* second = nullptr;
  QPushButton* button = nullptr;
  int code = -1;
};

TEST(DesktopUser, TypesIntoWhatItClicksAndTabsOn) {
  DesktopUser user;
  Window window;
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Window")), nullptr);
  user.click(window.first);
  user.type("out/Road_7.txt: 50%");
  user.key(Qt::Key_Tab);
  user.type("B");
  EXPECT_TRUE(user.waitFor([&] { return window.second->text() == QStringLiteral("B"); }));
  EXPECT_EQ(onGui([&] { return window.first->text().toStdString(); }), "out/Road_7.txt: 50%");
}

TEST(DesktopUser, WorksAModalDialogThatAnEventOpened) {
  DesktopUser user;
  Window window;
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Window")), nullptr);
  user.key(Qt::Key_G, Qt::AltModifier);
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Question")), nullptr);
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return window.code == QDialog::Rejected; }));
}

/// The window manager that this program started.
pid_t manager() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::string name;
    std::string state;
    pid_t id = 0;
    pid_t parent = 0;
    std::ifstream stat(entry.path() / "stat");
    if (stat >> id >> name >> state >> parent && parent == getpid() && name == "(openbox)") return id;
  }
  return -1;
}

TEST(DesktopUser, ClicksBeforeItTypesHoweverSlowTheWindowManagerIs) {
  DesktopUser user;
  Window window;
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Window")), nullptr);
  user.click(window.second);
  const pid_t id = manager();
  ASSERT_GT(id, 0);
  ASSERT_EQ(kill(id, SIGSTOP), 0);
  std::thread waking([id] {
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    kill(id, SIGCONT);
  });
  user.click(window.first);
  user.type("road");
  waking.join();
  EXPECT_TRUE(user.waitFor([&] { return window.first->text() == QStringLiteral("road"); }));
  EXPECT_EQ(onGui([&] { return window.second->text().toStdString(); }), "");
}

}  // namespace
}  // namespace lvx::test
