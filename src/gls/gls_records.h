#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "framework/arrays.h"
#include "framework/text.h"
#include "services/messages.h"

/// The result of the GLS report, computed once and formatted by its writers, and the table of its columns.
///
/// Stations, lengths and elevations are in drawing units, which the reports call metres; grades and cross-falls in
/// percent; angles of horizontal elements in gon. Left stands before right.
namespace lvx::gls {

using framework::ArrayIndex;
using framework::CString;
using services::Message;

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

/// True while no corridor reached the row: its eight corridor cells then show Message::NoCorridor. The mark is
/// looked for in crossFallLeft alone and within 0.000001.
[[nodiscard]] bool isNoCorridor(const tglsRow& row);

/// True for the odd indices of an assembled report.
[[nodiscard]] constexpr bool isDistanceRow(ArrayIndex index) { return index % 2 != 0; }

/// The word for a `horType`; empty where there is none: kNoElement, or a kind that the report doesn't know.
[[nodiscard]] constexpr std::optional<Message> elementMessage(std::int32_t horType) {
  switch (horType) {
    case 0:
      return Message::LineElement;
    case 1:
      return Message::ArcElement;
    case 2:
    case 3:
      return Message::ClothoidElement;
    default:
      return std::nullopt;
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
  Corridor,       ///< on station rows; Message::NoCorridor instead where isNoCorridor(row)
  ElementWord,    ///< word for horType, on every row that shows an element
  ElementLength,  ///< on every row that shows an element
  ElementCurve,   ///< on every row that shows an element other than a line
};

/// One column of the report.
struct GlsColumn {
  /// Head above the column's own head, for columns that have one.
  std::optional<Message> groupHead;
  /// How many columns `groupHead` stands over; 0 where the head of the column to the left covers this one too.
  std::int32_t groupColumns = 1;
  Message head{};
  GlsContent content = GlsContent::Notes;
  /// The field of a number column; null for texts.
  double tglsRow::*value = nullptr;
  /// Decimals of a number column.
  int decimals = 0;
};

/// The report's columns from left to right.
inline constexpr std::array<GlsColumn, 20> kGlsColumns{{
    {std::nullopt, 1, Message::GlsName, GlsContent::Name},
    {std::nullopt, 1, Message::GlsStation, GlsContent::Station},
    {std::nullopt, 1, Message::GlsDistance, GlsContent::Distance, &tglsRow::distance, 3},
    {std::nullopt, 1, Message::GlsNotes, GlsContent::Notes},
    {Message::GlsCurveOrdinates, 2, Message::GlsCurveX, GlsContent::CurveOrdinate, &tglsRow::curveX, 2},
    {std::nullopt, 0, Message::GlsCurveY, GlsContent::CurveOrdinate, &tglsRow::curveY, 2},
    {Message::GlsElevations, 2, Message::GlsTangentElevation, GlsContent::Elevation, &tglsRow::tangentElevation, 3},
    {std::nullopt, 0, Message::GlsProfileElevation, GlsContent::Elevation, &tglsRow::elevation, 3},
    {Message::GlsCrossFalls, 2, Message::GlsLeft, GlsContent::Corridor, &tglsRow::crossFallLeft, 1},
    {std::nullopt, 0, Message::GlsRight, GlsContent::Corridor, &tglsRow::crossFallRight, 1},
    {Message::GlsWidths, 2, Message::GlsLeft, GlsContent::Corridor, &tglsRow::widthLeft, 2},
    {std::nullopt, 0, Message::GlsRight, GlsContent::Corridor, &tglsRow::widthRight, 2},
    {Message::GlsHeights, 2, Message::GlsLeft, GlsContent::Corridor, &tglsRow::heightLeft, 3},
    {std::nullopt, 0, Message::GlsRight, GlsContent::Corridor, &tglsRow::heightRight, 3},
    {Message::GlsEdgeElevations, 2, Message::GlsLeft, GlsContent::Corridor, &tglsRow::edgeElevationLeft, 3},
    {std::nullopt, 0, Message::GlsRight, GlsContent::Corridor, &tglsRow::edgeElevationRight, 3},
    {std::nullopt, 1, Message::GlsElement, GlsContent::ElementWord},
    {Message::GlsRadius, 1, Message::GlsParameter, GlsContent::ElementCurve, &tglsRow::horParameter, 3},
    {std::nullopt, 1, Message::GlsElementLength, GlsContent::ElementLength, &tglsRow::horLength, 2},
    {Message::GlsAngle, 1, Message::GlsAngleUnit, GlsContent::ElementCurve, &tglsRow::horAngle, 3},
}};

}  // namespace lvx::gls
