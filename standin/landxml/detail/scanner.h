#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "landxml/detail/source.h"
#include "landxml/detail/tin_collector.h"
#include "landxml/reader.h"

/// One pass over the bytes of a drawing. The points and faces of surfaces go straight into arrays; what is left, a
/// small well-formed document in UTF-8 without comments, is for the XML library.
namespace lvx::landxml::detail {

/// Lines of the file for places in the document that the scan left.
class LineMap {
 public:
  /// From here on the document continues at this line of the file.
  void anchor(std::size_t offset, std::size_t line) {
    if (!anchors_.empty() && anchors_.back().first == offset)
      anchors_.back().second = line;
    else
      anchors_.emplace_back(offset, line);
  }
  /// Takes note of the document's own line ends; call once it is complete.
  void finish(std::string_view document);
  [[nodiscard]] std::size_t lineAt(std::size_t offset) const;

 private:
  std::vector<std::pair<std::size_t, std::size_t>> anchors_;
  std::vector<std::size_t> newlines_;
};

struct ScannedDocument {
  std::string document;
  LineMap lines;
  /// By the offset of the Definition's name in `document`.
  std::map<std::size_t, TinCollector> definitions;
  std::vector<civil::Diagnostic> diagnostics;
};

/// Throws ReadError: not XML, not LandXML, cut off, a document type, an entity that isn't defined, cancelled.
[[nodiscard]] ScannedDocument scanDocument(std::unique_ptr<ByteSource> bytes, const std::string& file,
                                           const ReadOptions& options);

}  // namespace lvx::landxml::detail
