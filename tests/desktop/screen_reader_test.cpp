// A whole report by the keyboard and by what a screen reader hears, as somebody makes it who doesn't see the windows.
#include "screen_reader.h"

#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"
#include "desktop_user/foreign_windows.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

const QString kProgram = QStringLiteral("lvxhost-desktop");

class Listener : public testing::Test {
 protected:
  Listener() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QString::fromStdString(folder.path().string()));
    // As a desktop says it where a screen reader runs.
    environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    program.setProcessEnvironment(environment);
    program.start(QString::fromStdString(inBuild("/bin/lvxhost-desktop")),
                  {QStringLiteral("--lang"), QStringLiteral("en"),
                   QString::fromStdString(inSource("/examples/valley-road.xml"))});
    EXPECT_NE(waitForForeignWindow("valley-road.xml"), 0U);
  }
  ~Listener() override {
    program.kill();
    program.waitForFinished();
  }

  template <class Predicate>
  static bool waitFor(Predicate isSo) {
    QElapsedTimer time;
    time.start();
    constexpr qint64 kMost = 20'000;
    while (time.elapsed() < kMost) {
      if (isSo()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }
  /// What has the keyboard, in words.
  std::string heard() {
    const auto spoken = reader.focused(kProgram);
    return spoken ? spoken->text() : "nothing";
  }
  void expectHeard(const std::string& words) {
    EXPECT_TRUE(waitFor([&] { return heard() == words; })) << "heard: " << heard() << "\nwanted: " << words;
  }
  /// Goes on by Tab until this is heard.
  void tabTo(const std::string& words) {
    std::string way;
    std::string now = heard();
    for (int presses = 0; presses < 20 && now != words; ++presses) {
      const std::string before = now;
      way += before + '\n';
      user.key(Qt::Key_Tab);
      waitFor([&] { return (now = heard()) != before; });
    }
    EXPECT_EQ(now, words) << "on the way: " << way;
  }
  bool hears(const char* role, const std::string& words) {
    for (const Spoken& spoken : reader.showing(kProgram, QLatin1String(role)))
      if (spoken.name.toStdString().find(words) != std::string::npos) return true;
    return false;
  }

  TemporaryFolder folder;
  ScreenReader reader;
  DesktopUser user;
  QProcess program;
};

TEST_F(Listener, MakesAReportWithoutSeeingIt) {
  user.key(Qt::Key_1, Qt::ControlModifier);
  ASSERT_NE(waitForForeignWindow("Profile projection"), 0U);
  tabTo("combo box 'Site:' '*No site*'");
  user.type("v");
  expectHeard("combo box 'Site:' 'Valley road upgrade'");
  tabTo("combo box 'Alignment:' 'Valley road'");
  tabTo("combo box 'Sample line group:' 'Cross sections 20 m'");
  tabTo("check box 'ASCII text (.txt)' ''");
  const std::string stem = (folder / "heard").string();
  tabTo("text 'Output file' ''");
  user.type(stem);
  expectHeard("text 'Output file' '" + stem + "'");
  tabTo("push button 'OK' ''");
  user.key(Qt::Key_Space);
  EXPECT_TRUE(waitFor([&] { return hears("label", "Profile projection wrote heard.txt, heard.xls, heard.html."); }));
  for (const char* ending : {".txt", ".xls", ".html"}) EXPECT_TRUE(std::filesystem::exists(stem + ending)) << ending;
}

TEST_F(Listener, HearsWhereTheKeyboardIsInTheWindow) {
  user.key(Qt::Key_F2);
  expectHeard("text 'Command line' ''");
  user.key(Qt::Key_F, Qt::ControlModifier);
  expectHeard("text 'Find by name, points by number' ''");
}

}  // namespace
}  // namespace lvx::test
