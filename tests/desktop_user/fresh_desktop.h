#pragma once

#include <QFont>
#include <QString>
#include <filesystem>

#include <gtest/gtest.h>

struct _XDisplay;

namespace lvx::test {

/// Gives each test of a program the desktop as the first one found it: no window, nothing on the clipboard, the mouse in
/// the middle of the screen, no key or button down, the style, colours and font of the start, an empty home folder and the
/// folder that the program was started in. A test that leaves a window open fails.
///
/// To be added to GoogleTest's listeners, which run on the tests' thread next to the windows' event loop.
class FreshDesktop final : public testing::EmptyTestEventListener {
 public:
  /// Windows' thread, before the tests start. `home`: the folder to empty behind every test.
  explicit FreshDesktop(std::filesystem::path home);
  FreshDesktop(const FreshDesktop&) = delete;
  FreshDesktop& operator=(const FreshDesktop&) = delete;
  ~FreshDesktop() override;
  void OnTestStart(const testing::TestInfo& test) override;
  void OnTestEnd(const testing::TestInfo& test) override;

 private:
  /// Names of the windows that are still shown, which it takes away.
  [[nodiscard]] QString closeWindows() const;
  void resetApplication() const;
  void resetDevices() const;

  std::filesystem::path home_;
  std::filesystem::path folder_;
  QString style_;
  QFont font_;
  _XDisplay* display_;
};

}  // namespace lvx::test
