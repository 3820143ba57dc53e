#pragma once

#include <cstdint>
#include <random>

#include <gtest/gtest.h>

namespace lvx::test {

/// A generator seeded from the running test's name, so that a failure repeats; the seed is part of the test's report.
/// Own FNV hash: the standard one may differ between runs.
inline std::mt19937 seededByTestName() {
  const auto* info = testing::UnitTest::GetInstance()->current_test_info();
  std::uint32_t seed = 2166136261U;
  for (const char* c = info->name(); *c != '\0'; ++c) seed = (seed ^ static_cast<unsigned char>(*c)) * 16777619U;
  testing::Test::RecordProperty("seed", std::to_string(seed));
  return std::mt19937(seed);
}

}  // namespace lvx::test
