#pragma once

#include <array>
#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"

/// The result of the GLS report, computed once and formatted by its writers, and the table of its columns.
///
/// Stations, lengths and elevations are in drawing units, which the reports call metres; grades and cross-falls in
/// percent; angles of horizontal elements in gon. Left stands before right.
namespace lvx::gls {

using framework::ArrayIndex;
using framework::CString;

/// tglsRow::crossFallLeft of a row that no corridor reached.
inline constexpr double kNoCorridor = -1000.0;
/// tglsRow::curveX of a station outside every vertical curve.
inline constexpr double kOutsideCurves = -1.0;
/// tglsRow::horType of a row that shows no horizontal element.
inline constexpr std::int32_t kNoElement = -1;

/// One line of the report. A station row stands for a station of interest, a distance row for the stretch between the
/// station rows above and below it.
struct tglsRow {
  /// Labels, several joined by ", ". Empty on a distance row, and on the closing row where nothing ends there by name.
  CString name;
  /// Of a station row.
  double station = 0.0;
  /// Of a distance row: the station below minus the station above.
  double distance = 0.0;
  /// Inside a vertical curve the distance along the stations to the nearer end of the curve, else kOutsideCurves;
  /// 0.0 on a distance row.
  double curveX = 0.0;
  /// `elevation` minus `tangentElevation`.
  double curveY = 0.0;
  /// On the polygon of the profile's tangents.
  double tangentElevation = 0.0;
  /// On the profile, vertical curves included.
  double elevation = 0.0;
  /// kNoCorridor until a corridor fills the eight fields from here on.
  double crossFallLeft = kNoCorridor;
  double crossFallRight = 0.0;
  /// From the alignment to the edge point.
  double widthLeft = 0.0;
  double widthRight = 0.0;
  /// Edge point minus middle point.
  double heightLeft = 0.0;
  double heightRight = 0.0;
  double edgeElevationLeft = 0.0;
  double edgeElevationRight = 0.0;
  /// The vertical design as text.
  CString notes;
  /// kNoElement, or what the row shows of a horizontal element: 0 line, 1 arc, 2 and 3 clothoid. The three fields below
  /// hold only then.
  std::int32_t horType = kNoElement;
  double horParameter = 0.0;
  double horLength = 0.0;
  double horAngle = 0.0;
};

/// One horizontal element, in the order of the alignment.
struct tglsHorElem {
  double start = 0.0;
  double end = 0.0;
  /// 0 line, 1 arc, 2 and 3 clothoid; kNoElement for a kind that the report doesn't know.
  std::int32_t type = kNoElement;
  /// A line's 0.0, an arc's absolute radius, a clothoid's parameter A.
  double parameter = 0.0;
  double length = 0.0;
  /// Between the directions at its start and end.
  double angle = 0.0;
};

/// One tangent of the profile with the vertical curve at its far end.
struct tglsVerElem {
  /// 1: a curve follows. 0: the last tangent, and the fields of the curve stay at 0.0.
  std::int32_t type = 0;
  double curveStart = 0.0;
  double curveEnd = 0.0;
  /// Absolute difference to the grade of the tangent before; 0.0 for the first.
  double gradeChange = 0.0;
  /// Signed.
  double grade = 0.0;
  /// Between the two intersection points that bound the tangent; never negative.
  double length = 0.0;
  /// Negative where the grade falls through the curve (a crest).
  double radius = 0.0;
  /// Station distance from the intersection point to either end of the curve.
  double halfLength = 0.0;
};

/// The whole report. Owns its records. After assembly `rows` alternates between station rows (even indices) and distance
/// rows (odd ones) and begins and ends with a station row.
struct tglsReport {
  tglsReport() = default;
  tglsReport(const tglsReport&) = delete;
  tglsReport& operator=(const tglsReport&) = delete;
  ~tglsReport();

  framework::CTypedPtrArray<framework::CPtrArray, tglsRow*> rows;
  framework::CTypedPtrArray<framework::CPtrArray, tglsVerElem*> verElems;
  framework::CTypedPtrArray<framework::CPtrArray, tglsHorElem*> horElems;
  /// Indices into `rows`, ascending: the rows that close a horizontal element, the last row left out.
  framework::CArray<std::int32_t> horBreakRows;
  /// The same: the rows of the profile's intersection points.
  framework::CArray<std::int32_t> verBreakRows;
};

/// True while no corridor reached the row: its eight corridor cells then show message kMessageNoCorridor. The mark is
/// looked for in crossFallLeft alone and within 0.000001.
[[nodiscard]] bool isNoCorridor(const tglsRow& row);

/// True for the odd indices of an assembled report.
[[nodiscard]] constexpr bool isDistanceRow(ArrayIndex index) { return index % 2 != 0; }

inline constexpr std::uint32_t kMessageNoCorridor = 346;

/// Message with the word for a `horType`; 0 where there is no word: kNoElement, or a kind that the report doesn't know.
[[nodiscard]] constexpr std::uint32_t elementMessage(std::int32_t horType) {
  switch (horType) {
    case 0:
      return 326;
    case 1:
      return 327;
    case 2:
    case 3:
      return 328;
    default:
      return 0;
  }
}

// ---------------------------------------------------------------- columns

/// What stands in a column's cells, and on which rows; everywhere else the cell is blank.
enum class GlsContent : std::uint8_t {
  Name,           ///< text, on station rows
  Station,        ///< station text, on station rows
  Distance,       ///< on distance rows
  Notes,          ///< text, on every row
  CurveOrdinate,  ///< on station rows whose curveX isn't kOutsideCurves
  Elevation,      ///< on station rows
  Corridor,       ///< on station rows; message kMessageNoCorridor instead where isNoCorridor(row)
  ElementWord,    ///< word for horType, on every row that shows an element
  ElementLength,  ///< on every row that shows an element
  ElementCurve,   ///< on every row that shows an element other than a line
};

/// One column of the report. Message numbers; 0 for none.
struct GlsColumn {
  /// Head above the column's own head.
  std::uint32_t groupHead = 0;
  /// How many columns `groupHead` stands over; 0 where the head of the column to the left covers this one too.
  std::int32_t groupColumns = 1;
  std::uint32_t head = 0;
  GlsContent content = GlsContent::Notes;
  /// The field of a number column; null for texts.
  double tglsRow::*value = nullptr;
  /// Decimals of a number column.
  int decimals = 0;
};

/// The report's columns from left to right.
inline constexpr std::array<GlsColumn, 20> kGlsColumns{{
    {0, 1, 310, GlsContent::Name},
    {0, 1, 311, GlsContent::Station},
    {0, 1, 312, GlsContent::Distance, &tglsRow::distance, 3},
    {0, 1, 313, GlsContent::Notes},
    {303, 2, 343, GlsContent::CurveOrdinate, &tglsRow::curveX, 2},
    {0, 0, 344, GlsContent::CurveOrdinate, &tglsRow::curveY, 2},
    {304, 2, 314, GlsContent::Elevation, &tglsRow::tangentElevation, 3},
    {0, 0, 315, GlsContent::Elevation, &tglsRow::elevation, 3},
    {316, 2, 318, GlsContent::Corridor, &tglsRow::crossFallLeft, 1},
    {0, 0, 319, GlsContent::Corridor, &tglsRow::crossFallRight, 1},
    {305, 2, 318, GlsContent::Corridor, &tglsRow::widthLeft, 2},
    {0, 0, 319, GlsContent::Corridor, &tglsRow::widthRight, 2},
    {306, 2, 318, GlsContent::Corridor, &tglsRow::heightLeft, 3},
    {0, 0, 319, GlsContent::Corridor, &tglsRow::heightRight, 3},
    {307, 2, 318, GlsContent::Corridor, &tglsRow::edgeElevationLeft, 3},
    {0, 0, 319, GlsContent::Corridor, &tglsRow::edgeElevationRight, 3},
    {0, 1, 320, GlsContent::ElementWord},
    {308, 1, 321, GlsContent::ElementCurve, &tglsRow::horParameter, 3},
    {0, 1, 322, GlsContent::ElementLength, &tglsRow::horLength, 2},
    {309, 1, 323, GlsContent::ElementCurve, &tglsRow::horAngle, 3},
}};

}  // namespace lvx::gls
