#include <clocale>

#include <gtest/gtest.h>

#include "support/test_record.h"

/// The tests take the environment's locale, as a host would: nothing may follow its decimal comma.
int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  testing::InitGoogleTest(&argc, argv);
  lvx::test::TestRecord::keepIfWanted();
  return RUN_ALL_TESTS();
}
