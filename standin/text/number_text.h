#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Numbers as windows, listings and diagnostics show them: a point for the decimals whatever the locale, digits not
/// grouped. The reports' own numbers are the module's.
namespace lvx::text {

/// Fixed decimals, 0 to 9 (others are taken as the nearest of these); never "-0.000". Infinities and what is no number
/// give "-".
[[nodiscard]] std::string fixedText(double value, int decimals = 3);

/// At most `decimals`, without the zeros behind: "300", "87.5".
[[nodiscard]] std::string shortText(double value, int decimals = 3);

/// A station as kilometres and metres, "1+234.500", rounded before it is split; below zero "-1-234.500". With three
/// decimals it is the reports' own text of every finite station.
[[nodiscard]] std::string stationText(double station, int decimals = 3);

/// "1 sample line", "12 sample lines": English words, which take an "s" for all counts but 1.
[[nodiscard]] std::string countText(std::size_t count, std::string_view one);

}  // namespace lvx::text
