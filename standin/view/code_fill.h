#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "view/section_model.h"

/// How the parts of a corridor's section are filled, by their codes: one table for windows, sheets and exports.
///
///     for (const view::CodeFill& fill : view::fillsOf(section.corridors))
///       paint(fill.areas, fill.look.light, fill.look.hatch);
namespace lvx::view {

/// 0 to 255 each.
struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  friend bool operator==(const Colour&, const Colour&) = default;
};

/// Strokes over a fill, so that fills are told apart in grey too.
enum class Hatch : std::uint8_t { None, Rising, Falling, Crossed, Level, Upright };

/// Every colour stands out from black lines on white paper (light) or from white lines on dark ground (dark); strokes are
/// drawn in `strokes`, or `darkStrokes`.
struct FillLook {
  Colour light;
  Colour dark;
  Colour strokes;
  Colour darkStrokes;
  Hatch hatch = Hatch::None;
  friend bool operator==(const FillLook&, const FillLook&) = default;
};

/// What the table tells apart; Other are codes that it doesn't know.
enum class SectionUse : std::uint8_t {
  Pavement,
  Base,
  Subbase,
  Curb,
  Sidewalk,
  Shoulder,
  Median,
  Ditch,
  Barrier,
  Structure,
  CutSlope,
  FillSlope,
  Slope,
  Topsoil,
  Ground,
  Other
};
inline constexpr std::size_t kSectionUses = static_cast<std::size_t>(SectionUse::Other) + 1;

/// What a code stands for, by the first word of the table that stands in it, in whatever case; so "Base_2" is Base and
/// "SubBase" is Subbase. English and German words. Never throws.
[[nodiscard]] SectionUse useOf(std::string_view code) noexcept;
/// Of the first code that the table knows; Other where it knows none.
[[nodiscard]] SectionUse useOf(std::span<const std::string> codes) noexcept;

/// A use of the table has one look. Other codes get one of twelve by a hash of their text, the same on all machines and
/// in every drawing.
[[nodiscard]] FillLook lookOf(SectionUse use, std::string_view code);
/// Of excavation (false) and embankment (true): strokes that fall and rise.
[[nodiscard]] FillLook cutFillLook(bool isFill);

/// All parts with one code.
struct CodeFill {
  /// By which it is named: the code that the table knew the part by, else its first; "" for parts without codes.
  std::string code;
  FillLook look;
  /// Closed parts, filled; the first point isn't repeated.
  Lines areas;
  /// Open parts, drawn as bands along them.
  Lines bands;
};

/// The parts of corridors by their codes, in the order in which the codes come. O(parts and their points).
[[nodiscard]] std::vector<CodeFill> fillsOf(std::span<const SectionCorridor> corridors);

}  // namespace lvx::view
