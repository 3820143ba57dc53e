// Tests of windows: they run on a thread of their own next to the windows' event loop, on a virtual display. All
// tests of a program share display, window manager and event loop, and find them as if they were the first.
#include <QApplication>
#include <QDBusConnection>
#include <clocale>
#include <cstdlib>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "desktop_user/fresh_desktop.h"
#include "desktop_user/virtual_display.h"
#include "support/run_program.h"
#include "support/test_record.h"

namespace {

bool onlyLists(int count, char** arguments) {
  for (int index = 1; index < count; ++index)
    if (std::string_view(arguments[index]) == "--gtest_list_tests") return true;
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const bool lists = onlyLists(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  if (lists) return RUN_ALL_TESTS();
  lvx::test::TestRecord::keepIfWanted();

  const lvx::test::VirtualDisplay display;
  // No setting of the machine's user plays a part, and none is changed.
  const lvx::test::TemporaryFolder home;
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "HOME"})
    setenv(variable, home.path().c_str(), 1);
  setenv("QT_QPA_PLATFORM", "xcb", 1);
  for (const char* variable : {"QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME"}) unsetenv(variable);
  // No bus, rather than none named: one would be started, beside what a test starts itself, and each waited for the other.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);

  // Reports of all programs show one moment. Set here, before there are other threads, which may look at the environment.
  setenv("SOURCE_DATE_EPOCH", "1772438400", 1);
  const QApplication application(argc, argv);
  // As the program itself: Qt takes the environment's locale, numbers stay as they are.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setQuitOnLastWindowClosed(false);
  lvx::test::FreshDesktop fresh(home.path());
  testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
  listeners.Append(&fresh);
  int result = 1;
  std::thread tests([&result] {
    result = RUN_ALL_TESTS();
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
  });
  QApplication::exec();
  tests.join();
  // Held on to for good: whoever lets go of Qt's connection to the bus after Qt has ended its thread leaves it to nobody.
  static const auto* const bus = new QDBusConnection(QDBusConnection::sessionBus());
  static_cast<void>(bus);
  listeners.Release(&fresh);
  return result;
}
