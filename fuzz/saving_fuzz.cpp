// A drawing is read, gets stations in its corridors, is rebuilt and saved; what is read back is what was in memory, and
// saving that changes no byte. The first bytes say where stations go, up to a byte 0; behind it stands the drawing. Nothing
// but ReadError and SaveError may come out.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "../tests/landxml/drawing_compare.h"
#include "civil/corridor.h"
#include "landxml/reader.h"
#include "landxml/writer.h"
#include "scratch_folder.h"

namespace {

using namespace lvx;

[[noreturn]] void fail(const char* what, const std::string& words) {
  std::fprintf(stderr, "%s: %s\n", what, words.c_str());
  std::abort();
}

/// Each byte asks for a station in one region: somewhere in it, at its ends or beyond.
void addStations(civil::Drawing& drawing, std::string_view wishes) {
  std::size_t count = 0;
  for (const char wish : wishes) {
    const auto number = static_cast<unsigned char>(wish);
    for (auto& corridor : drawing.corridors) {
      for (auto& baseline : corridor.baselines) {
        for (auto& region : baseline.regions) {
          if (count++ % 3 != number % 3U) continue;
          const double length = region.endStation - region.startStation;
          const double station = region.startStation + length * (static_cast<double>(number) / 128.0 - 0.5);
          (void)civil::addStation(region, station, number % 5 == 0 ? "" : "at <" + std::to_string(number) + "> & on");
        }
      }
    }
  }
}

void rebuildAll(civil::Drawing& drawing) {
  civil::Rebuilt done;
  for (auto& corridor : drawing.corridors) civil::rebuild(corridor, done);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFolder folder;
  static const std::string source = folder.file("source.xml");
  static const std::string target = folder.file("target.xml");
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.substr(0, 32).find('\0');
  const std::string_view wishes = end == std::string_view::npos ? std::string_view() : input.substr(0, end);
  const std::string_view text = end == std::string_view::npos ? input : input.substr(end + 1);
  fuzz::writeFile(source, text);
  try {
    civil::Drawing drawing = landxml::readDrawing(source);
    (void)landxml::saveDrawing(drawing, source, target);
    if (fuzz::readFile(target) != text) fail("saved without changes", "other bytes");

    addStations(drawing, wishes);
    rebuildAll(drawing);
    (void)landxml::saveDrawing(drawing, source, target);
    civil::Drawing back;
    try {
      back = landxml::readDrawing(target);
    } catch (const landxml::ReadError& error) {
      fail("what was saved can't be read", error.what());
    }
    if (const std::string difference = landxml::testing::DrawingComparison::difference(drawing, back);
        !difference.empty())
      fail("what was saved isn't what was in memory", difference);

    const std::string once = fuzz::readFile(target);
    (void)landxml::saveDrawing(back, target, target);
    if (fuzz::readFile(target) != once) fail("saved again", "other bytes");
    // Nothing is left to compute either.
    rebuildAll(back);
    (void)landxml::saveDrawing(back, target, source);
    if (const std::string difference =
            landxml::testing::DrawingComparison::difference(back, landxml::readDrawing(source));
        !difference.empty())
      fail("rebuilt and saved again", difference);
    if (fuzz::readFile(source) != once) fail("rebuilt and saved again", "other bytes");
  } catch (const landxml::ReadError&) {
    return 0;
  } catch (const landxml::SaveError&) {
    return 0;
  }
  return 0;
}
