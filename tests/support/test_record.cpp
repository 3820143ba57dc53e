#include "support/test_record.h"

#include <cstdlib>
#include <stdexcept>

namespace lvx::test {

void TestRecord::keepIfWanted() {
  const char* const path = std::getenv("LVX_TEST_RECORD");
  if (path == nullptr || *path == '\0') return;
  testing::UnitTest::GetInstance()->listeners().Append(new TestRecord(path));  // which the list owns
}

TestRecord::TestRecord(const std::filesystem::path& path) {
  std::filesystem::create_directories(path.parent_path());
  file_.open(path, std::ios::trunc | std::ios::binary);  // the same lines on every system
  if (!file_) throw std::runtime_error("the record of tests can't be written: " + path.string());
}

void TestRecord::OnTestProgramStart(const testing::UnitTest& tests) {
  file_ << "planned " << tests.test_to_run_count() << std::endl;
}

void TestRecord::OnTestStart(const testing::TestInfo& test) { add("running", test); }

void TestRecord::OnTestEnd(const testing::TestInfo& test) {
  const testing::TestResult& result = *test.result();
  add(result.Failed() ? "failed" : result.Skipped() ? "skipped" : "passed", test);
}

void TestRecord::add(const char* what, const testing::TestInfo& test) {
  file_ << what << ' ' << test.test_suite_name() << '.' << test.name() << std::endl;
}

}  // namespace lvx::test
