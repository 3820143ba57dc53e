#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "landxml/detail/document.h"
#include "landxml/detail/source.h"
#include "landxml/detail/tin_collector.h"
#include "landxml/reader.h"

/// One pass over the bytes of a drawing. The points and faces of surfaces go straight into arrays; what is left becomes
/// a document in UTF-8 without comments, for all other readers.
namespace lvx::landxml::detail {

/// Where an element stands in the file, in bytes.
struct ElementSpan {
  /// Node::place of the element.
  std::size_t node = 0;
  std::uint64_t start = 0;
  std::uint64_t tagEnd = 0;  ///< behind the start tag
  /// Begin of the end tag; 0 where the start tag closes itself.
  std::uint64_t closeStart = 0;
  std::uint64_t end = 0;
};

/// What a surface was made from elsewhere; its triangles say all that counts.
struct SourceDataCounts {
  std::size_t breaklines = 0;
  std::size_t contours = 0;
  std::size_t boundaries = 0;
};

struct ScannedDocument {
  Document document;
  /// By the place of the Definition in `document`.
  std::map<std::size_t, TinCollector> definitions;
  /// What source data of surfaces, which aren't read, hold; by the offset of the element's name in `document`.
  std::map<std::size_t, SourceDataCounts> sourceData;
  std::vector<civil::Diagnostic> diagnostics;
  /// When asked for: of every element in `document`, ascending by node.
  std::vector<ElementSpan> spans;
  /// The file's encoding, as in DecodedSource. Spans in a text that was converted are places of that text, which is kept
  /// with them.
  std::shared_ptr<const std::array<std::string, 128>> upperHalf;
  ConvertedText converted;
};

enum class ScanMode : std::uint8_t {
  Read,
  /// Finds places: spans are recorded, points and faces of surfaces are passed over.
  Locate
};

/// What only a broken file exceeds.
struct ScanLimits {
  /// CgPoint elements: survey points, and their places in groups.
  std::size_t points = 100'000'000;
  /// Other elements with their attributes, but for points and faces of surfaces.
  std::size_t nodes = 30'000'000;
};

/// Throws ReadError: not XML, not LandXML, cut off, a document type, an entity that isn't defined, beyond a limit. Throws
/// Cancelled when the options' progress says so.
[[nodiscard]] ScannedDocument scanDocument(std::unique_ptr<ByteSource> bytes, const std::string& file,
                                           const ReadOptions& options, ScanMode mode = ScanMode::Read,
                                           const ScanLimits& limits = {});

}  // namespace lvx::landxml::detail
