#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "options/options.h"

/// Shares of a job file for several machines, none of which has to know of the others.
namespace lvx::cli {

using options::Share;

/// What a drawing with its jobs is to a share.
struct DrawingLoad {
  /// Of all its files; 0 for one that isn't there.
  std::uint64_t bytes = 0;
  std::uint64_t jobs = 0;
  /// Jobs save it in its own file, so that its bytes change while shares run, some of which begin later than others.
  bool changes = false;
};

/// The share that each drawing belongs to, from 1 to `count`. Each drawing is in one share as a whole, and the shares weigh
/// about the same: the heaviest drawing goes first, each to the share that is lightest by then. A drawing weighs its
/// bytes, which are read once, and for each job a tenth of them and a megabyte, which is what a small report costs; one
/// that changes is taken to have as many bytes as the others on the average. O(n log n).
///
/// The same loads give the same shares, wherever and whenever that is asked.
[[nodiscard]] std::vector<std::uint32_t> sharesOf(const std::vector<DrawingLoad>& loads, std::size_t count);

}  // namespace lvx::cli
