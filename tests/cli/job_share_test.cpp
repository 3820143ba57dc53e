// Shares of a job file.
#include "cli/job_share.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::cli {
namespace {

TEST(JobShare, EvensOutTheSizesOfDrawings) {
  std::vector<DrawingLoad> loads;
  for (std::uint64_t i = 0; i < 40; ++i) loads.push_back({(i * 7919) % 50 * 1'000'000, 1 + i % 9});
  for (const std::size_t count : {1U, 2U, 3U, 7U}) {
    const std::vector<std::uint32_t> shares = sharesOf(loads, count);
    std::vector<double> weights(count);
    for (std::size_t i = 0; i < loads.size(); ++i) {
      ASSERT_GE(shares[i], 1U);
      ASSERT_LE(shares[i], count);
      const auto bytes = static_cast<double>(loads[i].bytes);
      weights[shares[i] - 1] += bytes + static_cast<double>(loads[i].jobs) * (bytes / 10 + 1e6);
    }
    const double mean = std::accumulate(weights.begin(), weights.end(), 0.0) / static_cast<double>(count);
    EXPECT_LT(*std::max_element(weights.begin(), weights.end()), 1.1 * mean) << count;
    EXPECT_EQ(shares, sharesOf(loads, count));
  }
}

TEST(JobShare, LeavesSharesEmptyWhereDrawingsAreFewer) {
  EXPECT_EQ(sharesOf({{10, 1}, {20, 1}}, 5), (std::vector<std::uint32_t>{2, 1}));
  EXPECT_TRUE(sharesOf({}, 5).empty());
}

TEST(JobShare, DoesNotMoveWithTheBytesOfADrawingThatItsJobsSave) {
  std::vector<DrawingLoad> loads;
  for (std::uint64_t i = 0; i < 20; ++i) loads.push_back({i * 3'000'000, 2, i % 4 == 0});
  const std::vector<std::uint32_t> before = sharesOf(loads, 3);
  for (DrawingLoad& load : loads)
    if (load.changes) load.bytes += 40'000'000;
  EXPECT_EQ(sharesOf(loads, 3), before);
}

}  // namespace
}  // namespace lvx::cli
