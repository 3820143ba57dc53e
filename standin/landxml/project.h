#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "landxml/reader.h"
#include "landxml/writer.h"

/// Drawings of several files: real projects keep the alignment in one file, the ground in another, points in a third.
namespace lvx::landxml {

struct ProjectFile {
  std::string path;
  /// Its coordinates hold easting before northing, against the format.
  bool swapAxes = false;
  /// As in ReadOptions.
  std::string source = {};
};

struct ProjectOptions {
  /// Told now and then during a long load, with the file that is being read; returning false ends it with Cancelled.
  std::function<bool(const std::string& path, const Progress&)> progress;
  /// Lengths of files in another unit than the first one's are converted, exactly by the units' definitions. Without it
  /// such a file is an error.
  bool convertUnits = false;
  /// As in ReadOptions.
  bool namesAlone = false;
  unsigned threads = 0;
  civil::GroundSearch groundSearch = civil::GroundSearch::AtOnce;
};

/// A file is in another unit of length than the drawing's first one, and nobody asked for it to be converted.
class UnitMismatch : public ReadError {
 public:
  UnitMismatch(const std::string& reason, const std::string& file, std::string unit, std::string drawingUnit)
      : ReadError(reason, file), unit_(std::move(unit)), drawingUnit_(std::move(drawingUnit)) {}

  // As the files name them; empty where one names none, which means metres.
  [[nodiscard]] const std::string& unit() const noexcept { return unit_; }
  [[nodiscard]] const std::string& drawingUnit() const noexcept { return drawingUnit_; }

 private:
  std::string unit_;
  std::string drawingUnit_;
};

/// Files that came in no order, in the one that a drawing of them has: in front the first one that holds an alignment, as
/// users think of a road and what lies around it; the others as they came. Files that can't be read or are in an encoding
/// of several bytes a letter other than UTF-8 count as without. Costs reading files up to their first alignment; ends
/// early once `goesOn` is false, with the order as it came.
[[nodiscard]] std::vector<ProjectFile> alignmentFirst(std::vector<ProjectFile> files,
                                                      const std::function<bool()>& goesOn = {});

/// Reads the first file and adds the others to it in their order (civil::addDrawing).
///
/// Throws ReadError, which names the file: one of them can't be read, stands in the list twice (under whatever names), or
/// is in another unit than the first (UnitMismatch), which names both units and files. Throws Cancelled. `files` is not empty.
[[nodiscard]] civil::Drawing readProject(const std::vector<ProjectFile>& files, const ProjectOptions& options = {});

/// Adds one more file to a drawing that is open already; by the same rules and with the same errors, after which the
/// drawing is as it was.
void addFile(civil::Drawing& drawing, const ProjectFile& file, const ProjectOptions& options = {});

/// A file that saving wrote, or found to hold what it should.
struct SavedFile {
  std::string path;
  civil::FileMark mark;
  /// False for the first file where it stays in its place and nothing of it changed.
  bool isWritten = true;
};

/// The added files that saveProject would write: those of which something changed, or into which something goes that was
/// made in the open drawing. O(n).
[[nodiscard]] std::vector<std::string> changedAddedFiles(const civil::Drawing& drawing);

/// Writes every file of the drawing that changed, each its own (saveDrawing): added ones in their places, the first one
/// to `firstTarget` (drawing.path: in place). What hangs on an alignment, sample line groups and profiles, goes into the
/// alignment's file; a group of points that was made in the open drawing into the file that holds them all, or into the
/// first. Each file is written in its own unit, order of axes, handles and point numbers. Gives the files that hold the
/// drawing now: `firstTarget` in front in any case, then the added ones that were written.
///
/// Files whose content in the drawing is that of their marks aren't even read, but for the only one of a drawing. What was
/// made in the open drawing belongs to its file then.
///
/// All new files are written beside their targets, flushed to the disk, and all targets looked at, before the first one is
/// replaced: whatever is found until then leaves all files as they were. Replacing itself is atomic for each file but not
/// over several: a crash between two of them, or a name that can't be taken at that very moment, leaves the earlier ones
/// new and the later ones old, and the drawing knows which.
///
/// Throws SaveError as saveDrawing does, naming the file; for a `firstTarget` that is one of the added files; and for what
/// a file can't hold: a profile gone that a corridor is measured from; a group of points losing one that stands in the
/// group itself. Throws Cancelled.
///
/// Memory: as saveDrawing for the largest of the files.
std::vector<SavedFile> saveProject(civil::Drawing& drawing, const std::string& firstTarget,
                                   const SaveOptions& options = {});

}  // namespace lvx::landxml
