#pragma once

#include <cstdint>

/// The one list of the texts that a user reads. Code names a text by what it is for; message files name it by its number.
///     window.setTitle(services::getMessage(Message::PointsTitle));
namespace lvx::services {

/// Every message that the module asks for, and no other: each stands in every `messages/<language>` and is explained to
/// translators in `docs/messages.md`. Numbers never change, since message files in the field are written with them; a
/// new message takes a new one.
enum class Message : std::uint32_t {
  // ---- words that dialogs share
  /// Filter text of the save box.
  FileFilter = 1,
  /// The number of the failed step is put behind it.
  CorridorsOutOfReach = 3,
  CancelButton = 4,
  HelpButton = 5,
  OkButton = 8,

  // ---- projection dialog, and what other dialogs show alike
  ProjectionTitle = 101,
  SelectionFrame = 102,
  SiteLabel = 103,
  AlignmentLabel = 104,
  SampleLineGroupLabel = 105,
  SurfaceLabel = 107,
  OutputFrame = 108,
  /// Row of the alignments outside any site; begins with a star.
  NoSite = 109,
  PickAlignment = 110,
  NotAnAlignment = 111,
  /// The second pick of a command: a surface for the projection report, a profile for the GLS report.
  PickSurfaceOrProfile = 112,
  NotASurface = 113,
  AsciiForm = 114,
  ExcelForm = 115,
  HtmlForm = 116,

  // ---- head of every report
  OutputPath = 118,
  Date = 119,
  Time = 120,

  // ---- projection report
  SampleLineName = 122,
  SampleLineStation = 123,
  ProjectionOffset = 124,
  ProjectionElevation = 125,

  // ---- points dialog and report
  PointsTitle = 201,
  PointsSelectionFrame = 202,
  PointGroupLabel = 203,
  PointNumber = 210,
  PointEasting = 211,
  PointNorthing = 212,
  PointElevation = 213,
  PointName = 214,
  PointRawDescription = 215,
  PointFullDescription = 216,
  PointAlignment = 217,
  PointStation = 218,
  PointOffset = 219,
  PointCountLabel = 221,
  SelectPointsToAdd = 222,
  SelectPointsToRemove = 223,
  /// Behind the number 1, and behind any other.
  OnePointSelected = 224,
  PointsSelected = 225,
  /// Row of the points picked by hand, and the word by which the collector knows them.
  PickedPoints = 226,

  // ---- boxes about files; the path stands in front of the first two
  OverwriteFile = 227,
  RetryWriting = 228,
  OutputWithoutFolder = 229,

  // ---- GLS dialog and report
  GlsTitle = 301,
  ProfileLabel = 302,
  GlsCurveOrdinates = 303,
  GlsElevations = 304,
  GlsWidths = 305,
  GlsHeights = 306,
  GlsEdgeElevations = 307,
  GlsRadius = 308,
  GlsAngle = 309,
  GlsName = 310,
  GlsStation = 311,
  GlsDistance = 312,
  GlsNotes = 313,
  GlsTangentElevation = 314,
  GlsProfileElevation = 315,
  GlsCrossFalls = 316,
  GlsLeft = 318,
  GlsRight = 319,
  GlsElement = 320,
  GlsParameter = 321,
  GlsElementLength = 322,
  GlsAngleUnit = 323,
  Rise = 324,
  Fall = 325,
  LineElement = 326,
  ArcElement = 327,
  ClothoidElement = 328,

  // Names of rows; a running number is put behind each.
  ClothoidStart = 329,
  ClothoidEnd = 330,
  ArcStart = 331,
  ArcEnd = 332,
  VerticalCurveStart = 333,
  VerticalIntersection = 334,
  VerticalCurveEnd = 335,

  // Words of the notes.
  GradeChange = 336,
  TangentLength = 337,
  CrestRadius = 338,
  SagRadius = 339,
  VerticalCurveTangent = 340,

  CorridorLabel = 341,
  NotAProfile = 342,
  GlsCurveX = 343,
  GlsCurveY = 344,

  // ---- question about corridor sections; its text is two messages, one behind the other
  AddSectionsQuestion = 345,
  AddSectionsAnswers = 348,
  AddSectionsTitle = 347,

  /// In place of a number where no corridor reaches a row of the GLS report.
  NoCorridor = 346,
};

}  // namespace lvx::services
