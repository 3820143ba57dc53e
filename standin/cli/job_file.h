#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/job_share.h"
#include "options/commands.h"
#include "options/options.h"

namespace lvx::cli {

/// One report of a job file.
struct Job {
  /// Line of the job file, from 1.
  std::size_t line = 0;
  /// "points small.xml, out/road", for words about it.
  std::string label;
  options::Command command = options::Command::Points;
  /// Those of the whole batch and the job's own.
  options::Options options;
};

/// What is read beside the job file's text.
struct JobFileSettings {
  /// The file as messages name it.
  std::string name;
  /// Hold for every job that doesn't have the option itself.
  options::CommonOptions common;
  /// Folder from which relative paths in jobs are seen; none: the current one.
  std::optional<std::string> base;
  /// Further files that no job may write or read, with what they are: {"jobs.jsonl", "the job file"}.
  std::vector<std::pair<std::string, std::string>> taken;
  /// Of the jobs only this share is kept, once all of them are checked.
  std::optional<Share> share{};
};

/// A file of jobs in JSON Lines: on each line an object whose members are a report command's options under their own
/// names, with "command" and "drawing" beside them; blank lines and a byte order mark are skipped.
///
///     {"command": "points", "drawing": "road.xml", "alignment": "A1", "point-group": "Edge", "out": "out/edge"}
///     {"command": "projection", "drawing": "road.xml", "alignment": "A1", "group": "SL", "surface": "EG",
///      "out": "out/ground", "forms": "txt", "overwrite": true}                                (on one line)
///
/// Members are texts, numbers, and true or false for an option without a value; an option that may be given many times
/// takes a list of texts, or one text. An option that is false isn't given, also where the whole batch has it.
///
/// A job takes some 50 bytes beside its text and the path that it writes; its options are read again when they are asked
/// for.
class JobFile {
 public:
  /// A job as far as it has to be known to put all of them in order.
  struct Entry {
    std::uint32_t line = 0;
    /// Which of the file's drawings it reads, all of their files taken together, by the order of the file.
    std::uint32_t drawing = 0;
    std::size_t offset = 0;  ///< of its line in the text
    std::uint32_t size = 0;
    bool saves = false;         ///< it saves its drawing
    bool savesInPlace = false;  ///< in the drawing's own file, so that later jobs of the drawing read what it saved
  };
  /// A job with choices of a host that no earlier one has.
  struct HostUse {
    std::size_t line = 0;
    options::CommonOptions common;
  };

  /// Checks every line. Throws Failure (kUsage), which tells each line that is no job, that has an option or a value that
  /// its command doesn't know, or that writes what another one writes or reads. Jobs of one drawing may save it in place,
  /// one after the other. O(n).
  JobFile(std::string text, JobFileSettings settings);
  /// One without lines, for jobs whose lines come one by one from a process that has checked them.
  explicit JobFile(JobFileSettings settings);
  JobFile(const JobFile&) = delete;
  JobFile& operator=(const JobFile&) = delete;
  ~JobFile();

  /// By ascending line; those of the share where the settings name one.
  [[nodiscard]] std::span<const Entry> entries() const { return entries_; }
  /// How many drawings the jobs read, those beside the share too.
  [[nodiscard]] std::size_t drawingCount() const { return drawingCount_; }
  [[nodiscard]] Job read(const Entry& entry) const;
  /// A line that was checked, by its number.
  [[nodiscard]] Job read(std::size_t line, std::string_view text) const;
  /// The line of a job as it stands in the file.
  [[nodiscard]] std::string_view textOf(const Entry& entry) const {
    return std::string_view(text_).substr(entry.offset, entry.size);
  }
  /// By ascending line.
  [[nodiscard]] const std::vector<HostUse>& hostUses() const { return hostUses_; }

 private:
  class Reader;

  void keepShare(const Share& share, const std::vector<std::uint64_t>& bytesOfDrawings);

  std::string text_;
  JobFileSettings settings_;
  std::unique_ptr<Reader> reader_;
  std::vector<Entry> entries_;
  std::size_t drawingCount_ = 0;
  std::vector<HostUse> hostUses_;
};

/// Where a job file is wrong, line by line, in one sentence for each of the first ones. `errors` isn't empty.
[[nodiscard]] std::string jobFileErrors(std::vector<std::string> errors);

}  // namespace lvx::cli
