#include "dialogs/picture.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace lvx::dialogs {

namespace {

// The pictures' sources: XPM, which any picture editor opens and saves and which is itself C++.
#include "resources/alignment.xpm"
#include "resources/corridor.xpm"
#include "resources/pick.xpm"
#include "resources/point.xpm"
#include "resources/point_group.xpm"
#include "resources/profile.xpm"
#include "resources/sample_line_group.xpm"
#include "resources/save.xpm"
#include "resources/site.xpm"
#include "resources/surface.xpm"

constexpr std::size_t kTreatedBytes = 2048;

Colour colourOf(std::string_view definition) {
  // "X c #RRGGBB"
  const auto value = static_cast<std::uint32_t>(
      std::strtoul(std::string(definition.substr(definition.find('#') + 1)).c_str(), nullptr, 16));
  return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
          static_cast<std::uint8_t>(value)};
}

/// One character a pixel; lines: header, colours, 16 rows.
PictureBits fromXpm(std::string_view name, const char* const* lines) {
  PictureBits picture{name, {}};
  std::size_t colourCount = 0;
  {
    // "16 16 COLOURS 1"
    const std::string_view header = lines[0];
    colourCount = static_cast<std::size_t>(std::strtoul(std::string(header.substr(6)).c_str(), nullptr, 10));
  }
  const char* const* rows = lines + 1 + colourCount;
  for (std::size_t pixel = 0; pixel < picture.bytes.size() / 4; ++pixel) {
    const char key = rows[pixel / kPictureSide][pixel % kPictureSide];
    for (std::size_t c = 1; c <= colourCount; ++c)
      if (lines[c][0] == key) {
        const Colour colour = colourOf(lines[c]);
        picture.bytes[4 * pixel] = colour.blue;
        picture.bytes[4 * pixel + 1] = colour.green;
        picture.bytes[4 * pixel + 2] = colour.red;
      }
  }
  return picture;
}

const std::vector<PictureBits>& pictures() {
  static const std::vector<PictureBits> all{
      fromXpm(kPictureSite, site_xpm),
      fromXpm(kPictureAlignment, alignment_xpm),
      fromXpm(kPictureSampleLineGroup, sample_line_group_xpm),
      fromXpm(kPictureSurface, surface_xpm),
      fromXpm(kPicturePointGroup, point_group_xpm),
      fromXpm(kPicturePoint, point_xpm),
      fromXpm(kPictureProfile, profile_xpm),
      fromXpm(kPictureCorridor, corridor_xpm),
      fromXpm(kPicturePick, pick_xpm),
      fromXpm(kPictureSave, save_xpm),
  };
  return all;
}

}  // namespace

const PictureBits* findPicture(std::string_view name) {
  const auto found = std::find_if(pictures().begin(), pictures().end(),
                                  [name](const PictureBits& picture) { return picture.name == name; });
  return found == pictures().end() ? nullptr : &*found;
}

std::span<const PictureBits> allPictures() { return pictures(); }

void replaceWhite(std::span<std::uint8_t> bits, Colour face) {
  const std::size_t end = std::min(bits.size(), kTreatedBytes);
  for (std::size_t i = 0; i + 4 <= end; i += 4)
    if (bits[i] == 255 && bits[i + 1] == 255 && bits[i + 2] == 255) {
      bits[i] = face.blue;
      bits[i + 1] = face.green;
      bits[i + 2] = face.red;
    }
}

}  // namespace lvx::dialogs
