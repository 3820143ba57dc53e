#pragma once

#include <functional>
#include <span>
#include <string>

#include "civil/drawing.h"
#include "landxml/error.h"
#include "landxml/reader.h"

/// LandXML drawings out: what was changed in an open drawing goes into its file, and nothing else there changes.
namespace lvx::landxml {

/// A new file that lies whole beside the one that it is to replace.
struct NewFile {
  std::string target;
  /// Where its content can be read until then.
  std::string path;
};

struct SaveOptions {
  /// Told every few megabytes while the file is read for its places, which is half of the work, and while it is written
  /// (of a total of twice the source's bytes), on the thread that saves; returning false ends the saving
  /// with Cancelled.
  std::function<bool(const Progress&)> progress;
  /// Where the content of the drawing's file of that number can be read, for a caller that holds files of which the name
  /// leads elsewhere by now. Where it or its answer is empty: under the file's path. Asked by saveProject only.
  std::function<std::string(civil::FileNumber)> sourceOf = {};
  /// Told once all new files are whole and before the first of them takes its name. What it throws leaves all files as
  /// they were. Asked by saveProject only.
  std::function<void(std::span<const NewFile>)> beforeReplacing = {};
};

/// Writes the first file of `drawing`, which was read from `sourcePath`, to `targetPath`, which may be the same file.
/// Sample line groups, profiles, point groups, and station lists, labels and sections of corridor regions are compared with
/// what the source says; where they differ the source's bytes are edited at that place. All other bytes are copied:
/// encoding, line ends, comments, order and unknown elements stay. A letter that the encoding hasn't got is written as
/// "&#8364;".
/// A drawing without changes gives the source's bytes.
///
/// The first save of a drawing of another program adds our FeatureDictionary, the corridors as the reader understood
/// them, and the handles of all objects but points.
///
/// A compressed source gives the bytes of its unpacked text; they go to another file only, under a name that doesn't end
/// with .gz or .zip.
///
/// The new file is written beside the target, flushed to the disk and renamed over it, so a reader sees the old file or
/// the new one and never a part. It has the permissions of the file that it replaces. A symbolic link is followed; other
/// hard links of the target keep the old content. A killed process may leave ".lvx-save-…" beside the target,
/// which the next one that writes there takes away.
///
/// Throws SaveError: the source was changed on disk since it was read or can't be read; the drawing was changed and the
/// source is in an encoding of several bytes a letter in which its text has other bytes than these (one that can say a
/// letter in several ways); the target is no regular file, is read-only or can't be written. Throws Cancelled where the
/// caller's progress ends it. The drawing takes note of its new file when source and target are one.
///
/// Gives what the target holds now, for a drawing that goes on living there.
///
/// Memory beside the drawing: the source without the points and faces of its surfaces, as a tree. O(n) in the source's
/// bytes: it is read once for its places and once to be copied.
civil::FileMark saveDrawing(civil::Drawing& drawing, const std::string& sourcePath, const std::string& targetPath,
                            const SaveOptions& options = {});

}  // namespace lvx::landxml
