// The drawing reader on any bytes, and the geometry over what it read: nothing but ReadError may come out.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "landxml/reader.h"

namespace {

void useGeometry(const lvx::civil::AlignmentObject& alignment) {
  const auto& axis = alignment.geometry;
  if (axis.isEmpty()) return;
  for (const double part : {-0.1, 0.0, 0.3, 1.0, 1.1}) {
    const double station = axis.startStation() + part * axis.length();
    const auto pose = axis.pointLocation(station, 3.0, 0.5);
    if (pose) (void)axis.stationOffset(pose->point);
  }
  for (const auto& profile : alignment.profiles) {
    (void)profile.profile.elevationAt(axis.startStation());
    (void)profile.profile.records();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto drawing = lvx::landxml::readDrawingText(text, "fuzz.xml");
    constexpr std::size_t kMost = 16;
    const auto useSite = [&](const lvx::civil::Site& site) {
      for (std::size_t i = 0; i < std::min(kMost, site.alignments.size()); ++i) useGeometry(*site.alignments[i]);
    };
    useSite(drawing.siteless);
    for (const auto& site : drawing.sites) useSite(site);
    std::vector<lvx::civil::Vec3> samples;
    for (const auto& surface : drawing.surfaces) {
      if (surface.surface.isEmpty()) continue;
      const auto box = surface.surface.box();
      surface.surface.sample({box.minX, box.minY}, {box.maxX, box.maxY}, samples);
      surface.surface.sample({box.minX, box.maxY}, {box.maxX, box.minY}, samples);
      (void)surface.surface.elevationAt({(box.minX + box.maxX) / 2.0, (box.minY + box.maxY) / 2.0});
    }
    const lvx::civil::DrawingIndex index(drawing);
    (void)index.byHandle(0x100);
  } catch (const lvx::landxml::ReadError&) {
    return 0;
  }
  return 0;
}
