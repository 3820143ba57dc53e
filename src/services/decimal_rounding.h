#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

/// Rounding to decimals without printing.
namespace lvx::services {

/// Most decimals that roundedToDecimals takes.
inline constexpr int kMostDecimals = 9;

/// |value| times 10^`decimals` as the integer that printing with so many decimals shows, exactly: 2.0005 with three is 2000
/// or 2001 by the double's own digits. Empty where doubles don't decide it: within a thousandth of a tie, from 10^12 on, and
/// for what is no number. `decimals` from 0 to kMostDecimals.
[[nodiscard]] inline std::optional<std::int64_t> roundedToDecimals(double value, int decimals) {
  constexpr std::array<double, kMostDecimals + 1> kPowers{1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  // The product errs by 10^-4 at most, and what it has behind its whole part is exact.
  const double scaled = std::abs(value) * kPowers[static_cast<std::size_t>(decimals)];
  if (!(scaled < 1e12)) return std::nullopt;
  const auto whole = static_cast<std::int64_t>(scaled);
  const double rest = scaled - static_cast<double>(whole);
  if (std::abs(rest - 0.5) < 1e-3) return std::nullopt;
  return whole + (rest > 0.5 ? 1 : 0);
}

}  // namespace lvx::services
