// Drawings of several files: the input is split into files at each byte 0, which are read as one project, looked through
// and saved. The first byte says how: its bits swap axes, convert units and save to another file. Nothing but ReadError
// and SaveError may come out, and a project that nobody changed is saved as it was.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "landxml/project.h"
#include "scratch_folder.h"

namespace {

using namespace lvx;

/// Each alignment over each surface, as a report that is asked for both.
void touch(const civil::Drawing& drawing) {
  std::vector<civil::Vec3> samples;
  std::size_t left = 64;
  const auto touchSite = [&](const civil::Site& site) {
    for (const auto& alignment : site.alignments) {
      const auto pose = alignment->geometry.poseAt(alignment->geometry.startStation());
      if (!pose) continue;
      for (const auto& surface : drawing.surfaces) {
        if (left-- == 0) return;
        (void)surface.surface.elevationAt(pose->point);
        surface.surface.sample(pose->point, pose->point + civil::Vec2{100.0, 50.0}, samples);
      }
    }
  };
  touchSite(drawing.siteless);
  for (const civil::Site& site : drawing.sites) touchSite(site);
  const civil::DrawingIndex index(drawing);
  for (const civil::PointGroup& group : drawing.pointGroups) {
    for (const std::int32_t number : group.numbers) {
      // Groups name points of the drawing, also where files had equal numbers.
      if (index.pointByNumber(number) == nullptr) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const fuzz::ScratchFolder folder;
  const auto fileOf = [&](std::size_t number) { return folder.file(std::to_string(number) + ".xml"); };
  const unsigned how = *data;
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  constexpr std::size_t kMostFiles = 4;
  std::vector<std::string> texts;
  while (texts.size() < kMostFiles) {
    const auto end = rest.find('\0');
    texts.emplace_back(rest.substr(0, end));
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  std::vector<landxml::ProjectFile> files;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    fuzz::writeFile(fileOf(i), texts[i]);
    files.push_back({fileOf(i), (how >> i & 1U) != 0});
  }
  try {
    landxml::ProjectOptions options;
    options.convertUnits = (how & 0x10U) != 0;
    civil::Drawing drawing = landxml::readProject(files, options);
    if (drawing.addedFiles.size() + 1 != files.size()) std::abort();
    touch(drawing);
    const std::string target = (how & 0x20U) != 0 ? fileOf(9) : fileOf(0);
    (void)landxml::saveProject(drawing, target);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (fuzz::readFile(fileOf(i)) != texts[i]) std::abort();
    }
    if (fuzz::readFile(target) != texts[0]) std::abort();
  } catch (const landxml::ReadError&) {
    return 0;
  } catch (const landxml::SaveError&) {
    return 0;
  }
  return 0;
}
