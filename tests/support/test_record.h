#pragma once

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace lvx::test {

/// Writes down what becomes of each test of a program, so that a program that CTest counts as one is counted by its
/// tests, and those that it never reached, since it crashed, count as failed:
///
///     planned 12
///     running Closing.AnIdleWindow
///     passed Closing.AnIdleWindow
///
/// Each line is in the file as soon as it is true.
class TestRecord final : public testing::EmptyTestEventListener {
 public:
  /// Has the program keep a record at the path that the environment variable LVX_TEST_RECORD names; without it, none.
  static void keepIfWanted();

  explicit TestRecord(const std::filesystem::path& path);
  void OnTestProgramStart(const testing::UnitTest& tests) override;
  void OnTestStart(const testing::TestInfo& test) override;
  void OnTestEnd(const testing::TestInfo& test) override;

 private:
  void add(const char* what, const testing::TestInfo& test);

  std::ofstream file_;
};

}  // namespace lvx::test
