#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "civil/drawing.h"
#include "landxml/detail/scanner.h"
#include "landxml/reader.h"

namespace lvx::landxml::detail {

/// Version of our FeatureDictionary in a file of another program to which we added corridors: its points and codes
/// follow that program's habits still.
inline constexpr std::string_view kGuestVersion = "1 guest";

/// The CrossSects of a region.
struct SectionsTrace {
  Node node;  ///< empty where the region has none
  bool isAbsolute = false;
  std::vector<Node> sections;  ///< the CrossSect of each of the region's sections
};

struct AddedStationTrace {
  Node node;
  double station = 0.0;
  std::string label;
};

struct RegionTrace {
  Node feature;  ///< lvx_region; empty in corridors of other programs
  SectionsTrace sections;
  std::vector<AddedStationTrace> added;
};

struct CorridorTrace {
  Node roadway;  ///< empty where no Roadway names the corridor of another program
  Node feature;  ///< lvx_corridor; empty in corridors of other programs
  std::vector<std::vector<RegionTrace>> baselines;
};

struct ObjectTrace {
  Node node;
  civil::Handle handle = 0;
  bool isGiven = false;  ///< the file itself holds the handle
};

/// Where a drawing's things stand in its file: the reader's own view of it, so that saving never reads it differently.
struct Trace {
  ScannedDocument scanned;
  bool hasDictionary = false;
  bool isOurs = false;
  std::vector<ObjectTrace> objects;      ///< in the order of the document
  std::vector<CorridorTrace> corridors;  ///< as in the drawing
};

/// Reads the drawing without its surfaces' triangles and fills `trace`. Throws ReadError.
[[nodiscard]] civil::Drawing readTraced(std::unique_ptr<ByteSource> bytes, const std::string& name,
                                        const ReadOptions& options, Trace& trace);

}  // namespace lvx::landxml::detail
