#include "cli/job_share.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <queue>
#include <utility>

namespace lvx::cli {

namespace {

/// In bytes that are read.
std::uint64_t weightOf(const DrawingLoad& load, std::uint64_t average) {
  constexpr std::uint64_t kReport = 1'000'000;
  constexpr std::uint64_t kPartOfDrawing = 10;
  const std::uint64_t bytes = load.changes ? average : load.bytes;
  return bytes + load.jobs * (bytes / kPartOfDrawing + kReport);
}

std::uint64_t averageBytes(const std::vector<DrawingLoad>& loads) {
  std::uint64_t sum = 0;
  std::uint64_t count = 0;
  for (const DrawingLoad& load : loads) {
    if (load.changes) continue;
    sum += load.bytes;
    ++count;
  }
  return count == 0 ? 0 : sum / count;
}

}  // namespace

std::vector<std::uint32_t> sharesOf(const std::vector<DrawingLoad>& loads, std::size_t count) {
  const std::uint64_t average = averageBytes(loads);
  std::vector<std::uint64_t> weights(loads.size());
  std::transform(loads.begin(), loads.end(), weights.begin(),
                 [&](const DrawingLoad& load) { return weightOf(load, average); });
  std::vector<std::uint32_t> order(loads.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return weights[a] > weights[b]; });
  using Filled = std::pair<std::uint64_t, std::uint32_t>;  // the first of several that weigh the same
  std::priority_queue<Filled, std::vector<Filled>, std::greater<>> shares;
  for (std::size_t i = 1; i <= std::min(count, std::max<std::size_t>(loads.size(), 1)); ++i)
    shares.emplace(0, static_cast<std::uint32_t>(i));
  std::vector<std::uint32_t> shareOf(loads.size());
  for (const std::uint32_t drawing : order) {
    const auto [weight, share] = shares.top();
    shares.pop();
    shareOf[drawing] = share;
    shares.emplace(weight + weights[drawing], share);
  }
  return shareOf;
}

}  // namespace lvx::cli
