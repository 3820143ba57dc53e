#pragma once

#include <string>
#include <vector>

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// What a CrossSects collection is, told by our Feature in it, else by its content.
enum class SectionsKind { SampleLines, Corridor, Foreign };
[[nodiscard]] SectionsKind kindOf(Node crossSects);
/// Whether any of its sections has design parts.
[[nodiscard]] bool hasDesign(Node crossSects);

/// One sample line group from one CrossSects: lines with their own vertices, else square (or skewed) to the alignment
/// through the widest points of the section. `number` counts the alignment's CrossSects from 1.
[[nodiscard]] civil::SampleLineGroup readSampleLines(Context& context, Node crossSects,
                                                     const civil::AlignmentObject& alignment,
                                                     const std::string& speaker, std::size_t number);

/// The corridor sections of one CrossSects, ascending by station, elevations relative to `profile` (null: to 0). `trace`
/// tells which CrossSect each came from.
[[nodiscard]] std::vector<civil::CorridorSection> readCorridorSections(Context& context, Node crossSects,
                                                                       const civil::ProfileObject* profile,
                                                                       const std::string& speaker,
                                                                       SectionsTrace& trace);

}  // namespace lvx::landxml::detail
