#include "cli/volumes_command.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "civil/surface_difference.h"
#include "cli/answer.h"
#include "cli/drawing_file.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "runtime/raised_by_host.h"
#include "standin_platform/crew.h"
#include "standin_platform/interruption.h"
#include "text/number_text.h"

namespace lvx::cli {

namespace {

std::string figuresText(const std::string& existing, const std::string& design,
                        const civil::SurfaceDifference& difference) {
  struct Row {
    const char* label;
    double volume;
    double area;
    bool hasVolume;
  };
  const std::array rows{Row{"cut", difference.cut, difference.cutArea, true},
                        Row{"fill", difference.fill, difference.fillArea, true},
                        Row{"net (fill - cut)", difference.net(), difference.commonArea(), true},
                        Row{"equal", 0.0, difference.equalArea, false},
                        Row{"only existing", 0.0, difference.onlyExisting, false},
                        Row{"only design", 0.0, difference.onlyNew, false}};
  constexpr std::size_t kLabel = 18;
  static constexpr std::size_t kColumn = 18;
  const auto right = [](const std::string& text) {
    return std::string(kColumn - std::min(kColumn, text.size()), ' ') + text;
  };
  std::string text =
      "'" + existing + "' to '" + design + "'\n" + std::string(kLabel, ' ') + right("volume") + right("area") + "\n";
  for (const Row& row : rows) {
    std::string line = "  " + std::string(row.label);
    line.resize(kLabel, ' ');
    text += line + right(row.hasVolume ? text::fixedText(row.volume) : "") + right(text::fixedText(row.area)) + "\n";
  }
  return text + "  design less existing from " + text::fixedText(difference.lowest) + " to " +
         text::fixedText(difference.highest) + "\n";
}

}  // namespace

options::ExitCode runVolumes(const options::Options& options) {
  const civil::Drawing drawing = loadDrawing(options, civil::GroundSearch::WhenAsked);
  if (!options.common.quiet) tellDiagnostics(drawing);
  const civil::SurfaceObject& existing = findSurface(drawing, options.volumes.existing);
  const civil::SurfaceObject& design = findSurface(drawing, options.volumes.design);
  for (const civil::SurfaceObject* surface : {&existing, &design})
    if (surface->surface.isEmpty()) warn("surface '" + surface->name + "' has no ground");

  standin_platform::Crew crew(static_cast<unsigned>(options.common.threads.value_or(0)));
  ProgressLine line(options.common.progressMode(), "volumes");
  constexpr double kSteps = 1000.0;
  const auto difference = civil::surfaceDifference(
      existing.surface, design.surface,
      [&crew](std::size_t count, const std::function<void(std::size_t)>& piece) { crew.run(count, piece); },
      [&line](double done) {
        line.update(static_cast<std::uint64_t>(kSteps * done), static_cast<std::uint64_t>(kSteps));
        return !standin_platform::isInterrupted();
      });
  if (!difference) throw runtime::Interrupted();
  answer().set("difference", {{"existing", existing.name},
                              {"design", design.name},
                              {"cut", difference->cut},
                              {"fill", difference->fill},
                              {"net", difference->net()},
                              {"cutArea", difference->cutArea},
                              {"fillArea", difference->fillArea},
                              {"equalArea", difference->equalArea},
                              {"onlyExisting", difference->onlyExisting},
                              {"onlyDesign", difference->onlyNew},
                              {"lowest", difference->lowest},
                              {"highest", difference->highest}});
  print(figuresText(existing.name, design.name, *difference));
  return options::kDone;
}

}  // namespace lvx::cli
