#pragma once

#include <functional>
#include <string>
#include <vector>

#include "landxml/reader.h"
#include "landxml/writer.h"

/// Drawings of several files: real projects keep the alignment in one file, the ground in another, points in a third.
namespace lvx::landxml {

struct ProjectFile {
  std::string path;
  /// Its coordinates hold easting before northing, against the format.
  bool swapAxes = false;
};

struct ProjectOptions {
  /// Told now and then during a long load, with the file that is being read; returning false ends it with Cancelled.
  std::function<bool(const std::string& path, const Progress&)> progress;
  /// Lengths of files in another unit than the first one's are converted, exactly by the units' definitions. Without it
  /// such a file is an error.
  bool convertUnits = false;
};

/// Reads the first file and adds the others to it in their order (civil::addDrawing).
///
/// Throws ReadError, which names the file: one of them can't be read, stands in the list twice (under whatever names), or
/// is in another unit than the first, which names both units and files. Throws Cancelled. `files` is not empty.
[[nodiscard]] civil::Drawing readProject(const std::vector<ProjectFile>& files, const ProjectOptions& options = {});

/// Adds one more file to a drawing that is open already; by the same rules and with the same errors, after which the
/// drawing is as it was.
void addFile(civil::Drawing& drawing, const ProjectFile& file, const ProjectOptions& options = {});

/// A file that saving wrote, or found to hold what it should.
struct SavedFile {
  std::string path;
  civil::FileMark mark;
};

/// Writes every file of the drawing that changed, each its own (saveDrawing); the first one, with what was made in the
/// open drawing, to `firstTarget` (drawing.path: in place). What hangs on an alignment goes into the alignment's file.
/// All targets are checked before the first one is replaced. Gives what was written, the first file in front.
///
/// Throws SaveError as saveDrawing does, and where objects were made or removed that can't be written yet.
std::vector<SavedFile> saveProject(civil::Drawing& drawing, const std::string& firstTarget,
                                   const SaveOptions& options = {});

}  // namespace lvx::landxml
