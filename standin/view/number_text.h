#pragma once

#include <string>

/// Numbers as the windows and their exports show them: a point for the decimals whatever the locale, no blank groups.
namespace lvx::view {

/// Fixed decimals, 0 to 9; never "-0.000". What is no number gives "-".
[[nodiscard]] std::string fixedText(double value, int decimals = 3);

/// At most `decimals`, without the zeros behind: "300", "87.5".
[[nodiscard]] std::string shortText(double value, int decimals = 3);

/// A station as kilometres and metres, "1+234.500", rounded before it is split; below zero "-1-234.500". Both as the
/// reports write it.
[[nodiscard]] std::string stationText(double station, int decimals = 3);

}  // namespace lvx::view
