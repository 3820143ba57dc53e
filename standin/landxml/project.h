#pragma once

#include <functional>
#include <string>
#include <vector>

#include "landxml/reader.h"

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

}  // namespace lvx::landxml
