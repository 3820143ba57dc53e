#include "sheets/paper.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>
#include <utility>

#include "text/number_text.h"

namespace lvx::sheets {

namespace {

constexpr std::array<NamedPaper, 5> kPapers{{{"A4", {210.0, 297.0}},
                                             {"A3", {297.0, 420.0}},
                                             {"A2", {420.0, 594.0}},
                                             {"A1", {594.0, 841.0}},
                                             {"A0", {841.0, 1189.0}}}};

std::optional<double> sideOf(std::string_view text) {
  double side = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return side >= kLeastSide && side <= kGreatestSide ? std::optional(side) : std::nullopt;
}

bool isSame(double a, double b) { return std::abs(a - b) < 0.01; }

}  // namespace

std::span<const NamedPaper> namedPapers() { return kPapers; }

std::optional<canvas::Size> paperOf(std::string_view text, bool isUpright) {
  for (const NamedPaper& paper : kPapers)
    if (paper.name == text) return isUpright ? paper.upright : canvas::Size{paper.upright.height, paper.upright.width};
  const std::size_t by = text.find('x');
  if (by == std::string_view::npos) return std::nullopt;
  const auto width = sideOf(text.substr(0, by));
  const auto height = sideOf(text.substr(by + 1));
  if (!width || !height) return std::nullopt;
  return canvas::Size{*width, *height};
}

std::string paperText(canvas::Size paper) {
  for (const NamedPaper& named : kPapers) {
    const canvas::Size size = named.upright;
    const bool isUpright = isSame(size.width, paper.width) && isSame(size.height, paper.height);
    const bool isAcross = isSame(size.width, paper.height) && isSame(size.height, paper.width);
    if (isUpright || isAcross) return std::string(named.name);
  }
  return text::shortText(paper.width) + " x " + text::shortText(paper.height) + " mm";
}

}  // namespace lvx::sheets
