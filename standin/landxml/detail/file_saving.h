#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "civil/drawing.h"
#include "landxml/detail/file_terms.h"
#include "landxml/detail/safe_file.h"

namespace lvx::landxml::detail {

/// Stands for what a drawing has of one of its files, as far as that can change: sample line groups, profiles, point
/// groups, corridors. Never 0. O(n).
[[nodiscard]] std::uint64_t contentOf(const civil::Drawing& drawing, civil::FileNumber file);

/// Saving of one of a drawing's files, in two steps, so that several are written before the first takes its place.
class FileSaving {
 public:
  /// Opens the source. `drawing` outlives it.
  FileSaving(civil::Drawing& drawing, civil::FileNumber file, const std::string& source, const std::string& target);

  /// Bytes that are read and written at most: twice the source's.
  [[nodiscard]] std::uint64_t work() const { return 2 * source_.size(); }
  /// Writes the new file beside its target. `progress` is told how much of the work is done.
  void write(const std::function<void(std::uint64_t)>& progress);
  /// The file beside the target that `write` wrote; empty where the target holds what it should.
  [[nodiscard]] std::string newFile() const;
  /// Puts the new file into its place, if there is anything new; the drawing takes note of it where it lives there. Gives
  /// what the target holds.
  civil::FileMark replace();

 private:
  [[nodiscard]] civil::FileMark& ownMark();
  void refuseCompressed() const;

  civil::Drawing& drawing_;
  FileTerms terms_;
  std::string sourcePath_;
  std::string target_;
  SourceFile source_;
  bool isOwnFile_ = false;
  civil::FileMark read_;             // of the text
  civil::FileMark onDisk_;           // of the file that holds it, the same unless that is compressed
  std::optional<SafeFile> written_;  // empty where the target holds what it should
};

}  // namespace lvx::landxml::detail
