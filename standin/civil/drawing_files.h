#pragma once

#include "civil/drawing.h"

/// Drawings of several files: an alignment from one, the ground from another, points from a third.
namespace lvx::civil {

/// Path of one of a drawing's files; empty for kNoFile and for a number that the drawing hasn't got.
[[nodiscard]] const std::string& pathOf(const Drawing& drawing, FileNumber file);

/// Metres in one unit of length by its name in a drawing ("meter", "foot", "USSurveyFoot"), exactly as the units are
/// defined: a foot is 0.3048 m, a US survey foot 1200/3937 m. Empty for an unknown name; an empty name means metres.
[[nodiscard]] std::optional<double> metresPerUnit(std::string_view linearUnit);

/// Multiplies every length of a drawing but those of its surfaces by `factor`: coordinates, stations, radii, offsets,
/// elevations. `factor` is finite and above 0. O(n).
void scaleLengths(Drawing& drawing, double factor);

/// Takes over everything of `added`, which is one file, behind what `whole` has: one set of sites (those of one name are
/// one), alignments, surfaces, points, groups, corridors.
///
/// Handles of `added` move up by a round number, so that they are unique over all and a file's own can be told from them
/// (AddedFile::handleBase). Objects of `added` that have the name of a sibling get another one (sibling_names.h). A point whose number is taken gets the next free number above the largest, and so do its
/// entries in the groups of its file; a diagnostic tells each. O(n log n).
///
/// Units are the caller's business: lengths of both are in one unit already, `file.lengthFactor` says how. Throws
/// std::overflow_error where no handles are left, and changes nothing then.
void addDrawing(Drawing& whole, Drawing added, AddedFile file);

}  // namespace lvx::civil
