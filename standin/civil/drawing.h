#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "civil/alignment.h"
#include "civil/point_texts.h"
#include "civil/profile.h"
#include "civil/rare.h"
#include "civil/rare_text.h"
#include "civil/section_parts.h"
#include "civil/tin_surface.h"

/// An open drawing: plain data and the geometry over it, no I/O. Texts are UTF-8. Lists stand in the order of the file.
/// Stations, offsets, elevations and coordinates are in drawing units (Drawing::linearUnit); x runs east, y north. A
/// negative offset lies on the left of the alignment's direction of travel. What a reader of drawings puts in is finite.
namespace lvx::civil {

/// Identifies an object for as long as its drawing is open; 0 for none. Unique over all files of a drawing.
using Handle = std::uint64_t;

/// Which of its drawing's files an object came from: 0 is the file that the drawing was opened by, 1 the first one added
/// to it, and so on.
using FileNumber = std::uint32_t;
/// Of an object that was made while the drawing was open and stands in no file yet.
inline constexpr FileNumber kNoFile = 0xFFFFFFFF;

/// A line across an alignment along which the ground is asked for.
struct SampleLine {
  Handle handle = 0;
  std::string name;
  double station = 0.0;  ///< of the alignment that it belongs to
  /// Left to right for lines of ours; as given otherwise. Elevations are 0.
  std::vector<Vec2> vertices;
};

struct SampleLineGroup {
  Handle handle = 0;
  std::string name;
  std::string description;
  std::vector<SampleLine> lines;
  FileNumber file = 0;
  /// Its name in its file where it is called otherwise here, since another object has that name (sibling_names.h).
  Rare<std::string> nameInFile = std::nullopt;
};

struct ProfileObject {
  Handle handle = 0;
  std::string name;
  RareText description;
  Profile profile;
  FileNumber file = 0;
  Rare<std::string> nameInFile = std::nullopt;  ///< as of a SampleLineGroup
};

/// A station equation: kept and reported, never applied.
struct StationEquation {
  double internalStation = 0.0;
  double aheadStation = 0.0;
  std::optional<double> backStation;
  bool increasing = true;  ///< whether stations rise along the alignment behind it
};

/// Survey drawings hold alignments and profiles by the hundred thousand, so what few of them have takes little where it
/// isn't there.
struct AlignmentObject {
  Handle handle = 0;
  std::string name;
  RareText description;
  Alignment geometry;
  std::vector<ProfileObject> profiles;
  std::vector<SampleLineGroup> sampleLineGroups;
  Rare<std::vector<StationEquation>> stationEquations;
  FileNumber file = 0;
  Rare<std::string> nameInFile = std::nullopt;  ///< as of a SampleLineGroup
};

struct Site {
  Handle handle = 0;
  std::string name;
  std::string description;
  std::vector<std::unique_ptr<AlignmentObject>> alignments;
  FileNumber file = 0;
};

struct SurfaceObject {
  Handle handle = 0;
  std::string name;
  std::string description;
  TinSurface surface;
  FileNumber file = 0;
  Rare<std::string> nameInFile = std::nullopt;  ///< as of a SampleLineGroup
};

struct Point {
  Handle handle = 0;
  std::int32_t number = 0;
  FileNumber file = 0;
  Vec3 position;  ///< x east, y north
  /// The name is the file's own name text where that isn't just the number; else empty.
  PointTexts texts;
  bool hasElevation = true;
};

struct PointGroup {
  Handle handle = 0;
  std::string name;
  std::string description;
  /// Numbers in file order; a number may stand in many groups.
  std::vector<std::int32_t> numbers;
  /// Members in files that aren't part of the drawing; they join the numbers when those files are added.
  std::vector<std::int32_t> numbersElsewhere = {};
  FileNumber file = 0;
  Rare<std::string> nameInFile = std::nullopt;  ///< as of a SampleLineGroup
};

// ---------------------------------------------------------------- corridors

/// Stations of corridors no further apart than this are one.
inline constexpr double kSameStation = 1e-6;

enum class SectionOrigin : std::uint8_t { Given, Computed };

struct CorridorSection {
  double station = 0.0;
  std::string label;
  SectionOrigin origin = SectionOrigin::Given;
  SectionParts parts;
};

/// A stretch of a baseline with one way of building the road.
struct Region {
  std::string name;
  double startStation = 0.0;  ///< not above the end
  double endStation = 0.0;
  /// No two within kSameStation; may ask for stations that hold no section yet, until the corridor is rebuilt. A tree,
  /// since a report adds its stations one by one.
  std::set<double> stations;
  std::vector<CorridorSection> sections;        ///< ascending by station
  std::map<double, std::string> pendingLabels;  ///< labels of added stations without a section yet
  /// False for a region that was read, or got a station, since it was last rebuilt.
  bool isRebuilt = false;
};

/// What a corridor runs along. Alignment and profile are the drawing's own.
struct Baseline {
  std::string name;
  const AlignmentObject* alignment = nullptr;  ///< never null in a drawing that was read
  const ProfileObject* profile = nullptr;      ///< of the alignment; null: elevations count from 0
  std::vector<Region> regions;
};

struct Corridor {
  Handle handle = 0;
  std::string name;
  std::string description;
  std::vector<Baseline> baselines;
  FileNumber file = 0;
};

// ---------------------------------------------------------------- the drawing

enum class Severity : std::uint8_t { Note, Warning, Error };

/// What a reader found odd and survived.
struct Diagnostic {
  Severity severity = Severity::Warning;
  /// "alignment 'A1': Spiral 3: spiType bloss can't be evaluated"
  std::string text;
  /// 1-based line of the file; 0 where no line applies.
  std::size_t line = 0;
  FileNumber file = 0;
  /// The object that it is about, the nearest one of the drawing: of a sample line its own, of an element of an alignment
  /// the alignment's. 0 for the file as a whole and for what came to no object.
  Handle object = 0;
};

enum class ObjectKind : std::uint8_t {
  Site,
  Alignment,
  Profile,
  SampleLineGroup,
  SampleLine,
  Surface,
  Point,
  PointGroup,
  Corridor
};

/// What a file held when it was read, by which saving tells that it has changed since.
struct FileMark {
  /// False for a drawing that came from no file.
  bool isKnown = false;
  std::uint64_t size = 0;
  std::uint64_t hash = 0;
  /// Stands for what the drawing had of the file, as far as that can change, when it was read or saved: by it saving
  /// passes over files without a change. 0 where nobody took it. No part of the comparison.
  std::uint64_t content = 0;

  friend bool operator==(const FileMark& a, const FileMark& b) {
    return a.isKnown == b.isKnown && a.size == b.size && a.hash == b.hash;
  }
};

/// A file that was added to a drawing.
struct AddedFile {
  /// Path as it was given, for messages.
  std::string path;
  FileMark mark;
  /// Unit that the file names; its lengths are in the drawing's unit all the same.
  std::string linearUnit;
  /// The file's handles are those of the drawing less this.
  Handle handleBase = 0;
  /// What the file's lengths were multiplied by: 1 where its unit is the drawing's.
  double lengthFactor = 1.0;
  /// Northing and easting of its coordinates were read the other way round.
  bool axesSwapped = false;
};

struct Drawing {
  /// Path as it was opened, for messages.
  std::string path;
  FileMark file;
  /// "meter", "foot", "USSurveyFoot", ...; empty where the file names none (then metres are assumed).
  std::string linearUnit;
  /// Northing and easting of the first file's coordinates were read the other way round.
  bool axesSwapped = false;
  /// The files behind the first one, in the order in which they were added.
  std::vector<AddedFile> addedFiles;
  /// The alignments outside any site; its name is empty.
  Site siteless;
  std::vector<Site> sites;
  std::deque<SurfaceObject> surfaces;
  std::vector<Point> points;
  std::vector<PointGroup> pointGroups;
  std::vector<Corridor> corridors;
  std::vector<Diagnostic> diagnostics;

  Drawing() = default;
  Drawing(Drawing&&) = default;
  Drawing& operator=(Drawing&&) = default;
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;
};

/// An object of a drawing with the alignment that it belongs to. Points into the drawing.
///     if (const SampleLine* line = entry.as<SampleLine>()) draw(*line, *entry.alignment);
struct DrawingEntry {
  /// Never a null pointer. The alternatives stand in the order of ObjectKind.
  std::variant<const Site*, const AlignmentObject*, const ProfileObject*, const SampleLineGroup*, const SampleLine*,
               const SurfaceObject*, const Point*, const PointGroup*, const Corridor*>
      object;
  /// Of a profile, a sample line group and a sample line: theirs; of an alignment: itself; else null.
  const AlignmentObject* alignment = nullptr;

  [[nodiscard]] ObjectKind kind() const { return static_cast<ObjectKind>(object.index()); }
  /// Null for an object of another kind.
  template <class Object>
  [[nodiscard]] const Object* as() const {
    const Object* const* const found = std::get_if<const Object*>(&object);
    return found == nullptr ? nullptr : *found;
  }
};

/// Finds objects by handle and points by number. Built once over a drawing that doesn't change its lists any more;
/// holds pointers into it. Of objects with one handle the first in the drawing's lists is found (a reader gives handles
/// out once). O(n) where handles and numbers ascend in file order, else O(n log n); a search is O(log n). Memory: 32
/// bytes an object; points take none where they ascend, else 4 bytes for each order.
class DrawingIndex {
 public:
  using Entry = DrawingEntry;

  explicit DrawingIndex(const Drawing& drawing);
  /// Empty where the drawing has no such handle; 0 is none.
  [[nodiscard]] std::optional<Entry> byHandle(Handle handle) const;
  /// The first point of that number, or null.
  [[nodiscard]] const Point* pointByNumber(std::int32_t number) const;

 private:
  // Sorted rows rather than hash tables, and points apart: there are millions of them, which mostly ascend as they stand.
  struct ObjectRow {
    Handle handle = 0;
    Entry entry;
  };
  std::vector<ObjectRow> objects_;
  std::span<const Point> points_;
  std::vector<std::uint32_t> byHandle_;  ///< indices of the points; empty where they ascend as they stand
  std::vector<std::uint32_t> byNumber_;  ///< likewise
};

}  // namespace lvx::civil
