#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "civil/tin_surface.h"

/// Rows and tables of what there is to tell of an object. Values are numbers in drawing units, so that they sort and copy
/// as numbers; how they are written is their form's business, and what they are called that of the windows.
namespace lvx::properties {

/// What values are called, and words that are values themselves. The windows have the words.
enum class Term : std::uint8_t {
  Alignment,
  Alignments,
  Arc,
  Area,
  Area3d,
  Azimuth,
  Baseline,
  Baselines,
  Biquadratic,
  Bloss,
  BorderLength,
  Circle,
  Clothoid,
  ClothoidParameter,
  Code,
  Codes,
  Computed,
  Corridor,
  CorridorPoints,
  Corridors,
  Cosine,
  Curve,
  CurveEnd,
  CurveStart,
  Curves,
  Description,
  Design,
  EastEnd,
  EastStart,
  Easting,
  EdgesOfMany,
  Elements,
  Elevation,
  EndStation,
  Equations,
  File,
  Files,
  FullDescription,
  Gaps,
  Given,
  GradeIn,
  GradeOut,
  GreatestEasting,
  GreatestElevation,
  GreatestGrade,
  GreatestNorthing,
  GreatestSlope,
  Ground,
  GroundPoints,
  Group,
  IntersectionPoints,
  KValue,
  LeastEasting,
  LeastElevation,
  LeastGrade,
  LeastNorthing,
  LeastSlope,
  Left,
  Length,
  Line,
  MadeHere,
  MeanElevation,
  Name,
  NorthEnd,
  NorthStart,
  Northing,
  Number,
  NumbersElsewhere,
  Offset,
  OffsetLeft,
  OffsetRight,
  Origin,
  Parabola,
  Part,
  Parts,
  Path,
  Point,
  PointGroup,
  PointGroups,
  Points,
  Profile,
  Profiles,
  Radius,
  RadiusIn,
  RadiusOut,
  RawDescription,
  Region,
  Regions,
  Right,
  SampleLine,
  SampleLineGroup,
  SampleLineGroups,
  SampleLines,
  Sections,
  Sinusoid,
  Site,
  Sites,
  StartStation,
  Station,
  StationAhead,
  StationBack,
  Surface,
  Surfaces,
  Triangles,
  TrianglesWithoutArea,
  Turn,
  Type,
  Unit,
  UnsymmetricParabola,
  Vertices,
};

/// How a value is written.
enum class Form : std::uint8_t {
  Text,
  Whole,    ///< no decimals
  Length,   ///< three decimals, in the drawing's unit
  Station,  ///< as stations are written, "1+020.500"
  Area,     ///< two decimals, in the drawing's unit squared
  Percent,  ///< a ratio, written as per cent with three decimals
  Gon,      ///< radians, written as gon (400 of a circle) with four decimals
  Factor,   ///< three decimals, no unit
};
[[nodiscard]] constexpr bool isNumber(Form form) { return form != Form::Text; }

/// Nothing, a text (UTF-8), a number, a word.
using Value = std::variant<std::monostate, std::string, double, Term>;

/// Gives the word of a term; empty words are taken for whoever needs none.
using Words = std::function<std::string(Term)>;

/// "1+020.500", "12.5"; a point for the decimals whatever the locale, digits not grouped. Empty for nothing; an infinite
/// number is "∞", another that is none "-".
[[nodiscard]] std::string textOf(const Value& value, Form form, const Words& words);

/// One thing to tell.
struct Row {
  Term term = Term::Name;
  Form form = Form::Text;
  Value value;
};

struct Column {
  Term term = Term::Name;
  Form form = Form::Text;
};

/// A table whose cells are asked for one by one, so that a million rows cost nothing until somebody looks. Points into
/// the drawing, unless its maker says otherwise.
struct Table {
  Term title = Term::Points;
  std::vector<Column> columns;
  std::size_t rowCount = 0;
  /// For a row and a column that are there.
  std::function<Value(std::size_t row, std::size_t column)> cell;
  /// Where a row's thing lies in the drawing, a place being a box without extent; may be missing.
  std::function<std::optional<civil::Box>(std::size_t row)> place;
};

/// The rows by the values of a column: numbers as numbers, infinite ones at their end, texts regardless of case and with
/// the numbers in them as numbers ("L2" before "L10"); rows without a value stand last, up and down alike. Rows of one
/// value keep their order. Asks for each value once; O(n log n). A million numbers take some tenths of a second.
[[nodiscard]] std::vector<std::uint32_t> sorted(const Table& table, std::size_t column, bool ascending,
                                                const Words& words);

/// Whether `a` comes before `b`, as texts sort in tables.
[[nodiscard]] bool comesBefore(const std::string& a, const std::string& b);

}  // namespace lvx::properties
