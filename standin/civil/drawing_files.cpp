#include "civil/drawing_files.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "civil/drawing_edit.h"
#include "civil/each_object.h"
#include "civil/sibling_names.h"

namespace lvx::civil {

namespace {

/// Handles of an added file start behind a multiple of this, so that people still recognise the file's own in them.
constexpr Handle kHandleStep = 0x1000000;

/// The lowest base for a file whose largest handle is `largestAdded`.
Handle baseBehind(Handle largestWhole, Handle largestAdded) {
  constexpr Handle kLast = std::numeric_limits<Handle>::max();
  const Handle steps = largestWhole / kHandleStep + 1;
  if (steps > kLast / kHandleStep || largestAdded > kLast - steps * kHandleStep)
    throw std::overflow_error("there are no handles left for another file");
  return steps * kHandleStep;
}

/// New numbers for the points of `added` whose numbers are taken.
std::unordered_map<std::int32_t, std::int32_t> renumber(const Drawing& whole, Drawing& added, FileNumber file) {
  std::unordered_set<std::int32_t> taken;
  std::int32_t largest = 0;
  const auto note = [&](const Point& point) { largest = std::max(largest, point.number); };
  taken.reserve(whole.points.size() + added.points.size());
  for (const Point& point : whole.points) {
    taken.insert(point.number);
    note(point);
  }
  std::vector<Point*> later;
  for (Point& point : added.points) {
    note(point);
    if (!taken.insert(point.number).second) later.push_back(&point);
  }
  std::unordered_map<std::int32_t, std::int32_t> renumbered;
  std::int64_t next = std::int64_t{largest} + 1;
  for (Point* const point : later) {
    if (next > std::numeric_limits<std::int32_t>::max()) next = 1;
    while (taken.count(static_cast<std::int32_t>(next)) > 0) ++next;
    const auto number = static_cast<std::int32_t>(next++);
    taken.insert(number);
    added.diagnostics.push_back({Severity::Warning,
                                 "point " + std::to_string(point->number) +
                                     ": its number stands in another file of the drawing; it gets " +
                                     std::to_string(number),
                                 0, file, point->handle});
    renumbered.emplace(point->number, number);
    if (point->texts.name().empty()) point->texts.setName(std::to_string(point->number));
    point->number = number;
  }
  return renumbered;
}

template <class List>
void moveBehind(List& whole, List& added) {
  whole.insert(whole.end(), std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
}

void addSites(Drawing& whole, Drawing& added) {
  std::unordered_map<std::string, std::size_t> known;
  for (std::size_t i = 0; i < whole.sites.size(); ++i) known.emplace(whole.sites[i].name, i);
  moveBehind(whole.siteless.alignments, added.siteless.alignments);
  for (Site& site : added.sites) {
    const auto [place, isNew] = known.emplace(site.name, whole.sites.size());
    if (isNew)
      whole.sites.push_back(std::move(site));
    else
      moveBehind(whole.sites[place->second].alignments, site.alignments);
  }
}

/// Groups get the members that they have in other files, as far as these are there.
void findMembersElsewhere(Drawing& whole) {
  const bool isAnyWaiting = std::any_of(whole.pointGroups.begin(), whole.pointGroups.end(),
                                        [](const PointGroup& group) { return !group.numbersElsewhere.empty(); });
  if (!isAnyWaiting) return;
  std::unordered_set<std::int32_t> known;
  known.reserve(whole.points.size());
  for (const Point& point : whole.points) known.insert(point.number);
  for (PointGroup& group : whole.pointGroups) {
    std::erase_if(group.numbersElsewhere, [&](std::int32_t number) {
      if (known.count(number) == 0) return false;
      group.numbers.push_back(number);
      return true;
    });
  }
}

std::vector<VerticalPoint> scaled(const Profile::Points& points, double factor) {
  std::vector<VerticalPoint> list(points.begin(), points.end());
  for (VerticalPoint& point : list) {
    for (double* const length : {&point.station, &point.elevation, &point.length, &point.lengthOut, &point.radius})
      *length *= factor;
  }
  return list;
}

Profile scaled(const Profile& profile, double factor) {
  if (!profile.isGround()) return Profile::design(scaled(profile.points(), factor));
  std::vector<std::vector<ProfilePoint>> pieces = groundPieces(profile);
  for (auto& piece : pieces) {
    for (ProfilePoint& point : piece) {
      point.station *= factor;
      point.elevation *= factor;
    }
  }
  return Profile::ground(std::move(pieces));
}

void scale(Region& region, double factor) {
  region.startStation *= factor;
  region.endStation *= factor;
  std::set<double> stations;
  for (const double station : region.stations) stations.insert(station * factor);
  region.stations = std::move(stations);
  std::map<double, std::string> labels;
  for (auto& [station, label] : region.pendingLabels) labels.emplace(station * factor, std::move(label));
  region.pendingLabels = std::move(labels);
  for (CorridorSection& section : region.sections) {
    section.station *= factor;
    for (SectionPart& part : section.parts) {
      for (SectionPoint& point : part.points) {
        point.offset *= factor;
        point.elevation *= factor;
      }
    }
  }
}

void scale(AlignmentObject& alignment, double factor) {
  alignment.geometry = alignment.geometry.scaled(factor);
  for (ProfileObject& profile : alignment.profiles) profile.profile = scaled(profile.profile, factor);
  for (SampleLineGroup& group : alignment.sampleLineGroups) {
    for (SampleLine& line : group.lines) {
      line.station *= factor;
      for (Vec2& vertex : line.vertices) vertex = factor * vertex;
    }
  }
  if (!alignment.stationEquations) return;
  for (StationEquation& equation : *alignment.stationEquations) {
    equation.internalStation *= factor;
    equation.aheadStation *= factor;
    if (equation.backStation) *equation.backStation *= factor;
  }
}

}  // namespace

const std::string& pathOf(const Drawing& drawing, FileNumber file) {
  static const std::string kNone;
  if (file == 0) return drawing.path;
  return file <= drawing.addedFiles.size() ? drawing.addedFiles[file - 1].path : kNone;
}

std::optional<double> metresPerUnit(std::string_view linearUnit) {
  struct Unit {
    std::string_view name;
    double metres;
  };
  constexpr std::array<Unit, 9> kUnits{{{"", 1.0},
                                        {"meter", 1.0},
                                        {"millimeter", 0.001},
                                        {"centimeter", 0.01},
                                        {"kilometer", 1000.0},
                                        {"foot", 0.3048},
                                        {"USSurveyFoot", 1200.0 / 3937.0},
                                        {"inch", 0.0254},
                                        {"mile", 1609.344}}};
  const auto unit = std::find_if(kUnits.begin(), kUnits.end(), [&](const Unit& u) { return u.name == linearUnit; });
  return unit == kUnits.end() ? std::nullopt : std::optional(unit->metres);
}

void scaleLengths(Drawing& drawing, double factor) {
  const auto scaleSite = [&](Site& site) {
    for (auto& alignment : site.alignments) scale(*alignment, factor);
  };
  scaleSite(drawing.siteless);
  for (Site& site : drawing.sites) scaleSite(site);
  for (Point& point : drawing.points) {
    point.position.x *= factor;
    point.position.y *= factor;
    point.position.z *= factor;
  }
  for (Corridor& corridor : drawing.corridors) {
    for (Baseline& baseline : corridor.baselines) {
      for (Region& region : baseline.regions) scale(region, factor);
    }
  }
}

void addDrawing(Drawing& whole, Drawing added, AddedFile file) {
  file.handleBase = baseBehind(largestHandle(whole), largestHandle(added));
  const auto number = static_cast<FileNumber>(whole.addedFiles.size() + 1);
  eachHandle(added, [&](Handle& handle) {
    if (handle != 0) handle += file.handleBase;
  });
  eachObject(added, [&](auto& object) { object.file = number; });
  for (Diagnostic& diagnostic : added.diagnostics) {
    diagnostic.file = number;
    if (diagnostic.object != 0) diagnostic.object += file.handleBase;
  }

  const auto renumbered = renumber(whole, added, number);
  if (!renumbered.empty()) {
    for (PointGroup& group : added.pointGroups) {
      for (std::int32_t& member : group.numbers) {
        if (const auto found = renumbered.find(member); found != renumbered.end()) member = found->second;
      }
    }
  }

  addSites(whole, added);
  moveBehind(whole.surfaces, added.surfaces);
  moveBehind(whole.points, added.points);
  moveBehind(whole.pointGroups, added.pointGroups);
  moveBehind(whole.corridors, added.corridors);
  moveBehind(whole.diagnostics, added.diagnostics);
  findMembersElsewhere(whole);
  whole.addedFiles.push_back(std::move(file));
  tellSiblingsApart(whole, [&](const std::string& text, Handle object, FileNumber of) {
    whole.diagnostics.push_back({Severity::Warning, text, 0, of, object});
  });
}

}  // namespace lvx::civil
