#pragma once

#include <functional>
#include <string>
#include <vector>

#include "civil/drawing.h"
#include "properties/surface_figures.h"
#include "properties/table.h"

namespace lvx::properties {

/// What there is to tell of an object: what it is, one row for each single value, tables for what it has many of.
struct Properties {
  /// Term::Path for the drawing itself.
  Term kind = Term::Path;
  std::string name;
  std::vector<Row> rows;
  std::vector<Table> tables;
};

/// What is told is told of.
struct Subject {
  const civil::Drawing& drawing;
  const civil::DrawingIndex& index;
  /// Against which stations and offsets are measured; null: none, and these values are missing.
  const civil::AlignmentObject* alignment = nullptr;
  /// Gives the figures of a surface, which take a look at each triangle; without it they are reckoned at each call.
  std::function<SurfaceFigures(const civil::SurfaceObject&)> figures = {};
};

/// The properties of an object; of the drawing itself for 0 and for a handle that it hasn't got. The tables point into the
/// drawing and are good as long as its lists and sections stay. O(1) for what has many parts, such as a group of points;
/// a surface costs its figures, a sample line its section, a corridor O(sections), a profile O(points).
///
///     const Properties told = propertiesOf({drawing, index, &axis}, handle);
///     for (const Row& row : told.rows) print(word(row.term), textOf(row.value, row.form, word));
///
/// What it decides: coordinates are easting, northing, elevation; a side is a word where it stands alone and the sign of
/// an offset else (negative: left); directions are in gon, clockwise from north, as in the reports; radii have no sign,
/// the side of a curve stands beside them; grades are per cent, positive where the road rises with its stations; K is the
/// length of a vertical curve for one per cent of change.
[[nodiscard]] Properties propertiesOf(const Subject& subject, civil::Handle handle);

}  // namespace lvx::properties
