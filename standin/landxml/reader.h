#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "civil/drawing.h"
#include "landxml/error.h"

/// LandXML drawings in: versions 1.0 to 2.0 and their national profiles, by local names, whatever the namespace.
namespace lvx::landxml {

struct Progress {
  std::uint64_t bytesDone = 0;
  std::uint64_t bytesTotal = 0;  ///< not below bytesDone; a pipe's is what came so far, and 0 once it was read
};

struct ReadOptions {
  /// Told at the first bytes, every 4 MB and before each surface is built, on the thread that reads; returning false ends
  /// the load with Cancelled.
  std::function<bool(const Progress&)> progress;
  /// The file's coordinates hold easting before northing, against the format.
  bool swapAxes = false;
  /// Given the unit that the file names ("" where it names none): what its lengths are multiplied by. 1 where empty. May
  /// throw what reading then throws.
  std::function<double(const std::string& linearUnit)> lengthFactor = {};
  /// Leaves the triangles of surfaces out, for who wants to know what a drawing holds before the user has typed on: a
  /// tenth of the time of a large drawing. Names are those of the whole drawing, diagnostics and FileMark aren't.
  bool namesAlone = false;
  /// Threads that read, with the caller's own; 0: as many as there are processors. What is read is the same for any number,
  /// to the last diagnostic. Where the system gives fewer, those read.
  unsigned threads = 0;
  /// Whether surfaces are made ready for questions at places, for a caller that may ask none.
  civil::GroundSearch groundSearch = civil::GroundSearch::AtOnce;
  /// Where the bytes are read from, for a drawing that is no file under its own path, which messages name all the same.
  /// Empty: from that path.
  std::string source = {};
};

/// Reads a drawing, which may be compressed: by gzip, or as the one drawing of a zip archive. What is odd but can be survived becomes a diagnostic of the drawing; what can't throws ReadError.
/// Lengths stay in the file's unit (Drawing::linearUnit) unless `lengthFactor` says otherwise; angles become radians. A
/// number in the file that isn't finite or is beyond 1e12 is a fault of the file. Limits that only broken files reach, each with a message of its own: 200 levels of
/// elements, 64 MB in one tag, 100 million CgPoint elements (survey points and their places in groups), 30 million other
/// elements and attributes besides points and faces of surfaces.
///
/// The millions of P and F of surfaces stream past into arrays. Peak memory stays below 1.5 times the file, as programs
/// of the trade write it, whatever it holds. O(n) in the bytes, but for sorting and what civil::TinSurface costs;
/// regions that share the sections of one CrossSects each get a copy of them.
///     const civil::Drawing drawing = readDrawing("road.xml");
///     for (const civil::Diagnostic& odd : drawing.diagnostics) show(odd.text, odd.line);
[[nodiscard]] civil::Drawing readDrawing(const std::string& path, const ReadOptions& options = {});

/// The same from memory; `name` stands for the path in messages.
[[nodiscard]] civil::Drawing readDrawingText(std::string_view text, const std::string& name,
                                             const ReadOptions& options = {});

}  // namespace lvx::landxml
