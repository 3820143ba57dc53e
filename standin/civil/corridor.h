#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "civil/drawing.h"

/// What a corridor does: it gives its sections, takes stations, and computes the sections that its stations ask for.
///
///     addStation(region, 125.0, "Culvert");     // asks for a section
///     Rebuilt done;
///     rebuild(corridor, done);                  // computes it
///     sectionAt(baseline, 125.0)->parts;        // the road there, between the given sections around it
///
/// Stations within kSameStation are one. Offsets and elevations are in drawing units, a negative offset lies on the
/// left; elevations are relative to the baseline's profile.
namespace lvx::civil {

/// The section of a region nearest to `station`, or null where none stands within kSameStation. O(log n).
[[nodiscard]] const CorridorSection* sectionAt(const Region& region, double station);

/// The section of the region whose bounds hold `station`, of the first one where bounds are shared; where no region's
/// bounds hold it, of the first region whose set has it. Null where that region has no section there, where there is no
/// such region, and for a station that is no number. O(regions + log n).
[[nodiscard]] const CorridorSection* sectionAt(const Baseline& baseline, double station);

/// Adds `station` to a region's set, with a label for the section that the next rebuild computes there. The region's
/// bounds stay what they are, also where the station lies outside. Nothing happens, and false is returned, where the set
/// has the station already (the label that was given first stays) and for a station that isn't finite. O(log n).
bool addStation(Region& region, double station, std::string_view label);

/// What rebuilds did.
struct Rebuilt {
  /// Sections that were computed and hadn't stood so before.
  std::size_t computed = 0;
  /// Sections that others took the place of, for whoever still looks at them: their parts stay where they are in memory,
  /// as do those of all sections that remained.
  std::vector<CorridorSection> replaced;
};

/// Told now and then how many stations of how many are done. What it throws ends the rebuild.
using RebuildProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

/// Computes the sections that the sets of the corridor's regions ask for. Given sections are controls and never change.
/// Between two controls whose parts agree in number, codes and points, codes of the points included, offsets and
/// elevations run straight from one to the other; otherwise, and beyond the last control, the control before is copied;
/// before the first control, that one. A region without any given section is left as it is, and so is a computed section
/// whose values are within a billionth of what they should be.
///
/// Regions that haven't changed since they were last rebuilt cost nothing, the others linear time. A region is exchanged
/// as a whole: after an exception each is as it was or finished, and `done` tells what happened until then.
void rebuild(Corridor& corridor, Rebuilt& done, const RebuildProgress& progress = {});

}  // namespace lvx::civil
