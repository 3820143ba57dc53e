#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What a batch writes down about its jobs, for itself when it goes on later and for other programs.
///
/// A journal is a file in JSON Lines: an object for each job, written when the job ends.
///
///     {"line": 12, "command": "points", "drawing": "road.xml", "out": "out/edge", "exit": 0, "seconds": 0.041,
///      "files": [{"path": "out/edge.txt", "bytes": 2310, "sha256": "9f0c…"}],
///      "diagnostics": ["road.xml:20: warning: …"],
///      "key": {"options": "41b8…", "program": "c2d0…", "messages": "77aa…", "drawing": ["e3b0…"]}}      (on one line)
///
/// A job that runs again has a further line; its last one counts. Readers pass over members that they don't know.
namespace lvx::journal {

/// A file as a report left it.
struct OutputFile {
  std::string path;
  std::uint64_t bytes = 0;
  /// SHA-256 in hexadecimal digits; empty where the file couldn't be read back or nobody asked.
  std::string hash;

  friend bool operator==(const OutputFile&, const OutputFile&) = default;
};

/// What a report is made of. Two runs of a job with equal keys write the same. Each part is a SHA-256 in hexadecimal
/// digits, or empty where something couldn't be read.
struct JobKey {
  /// Of all options that the reports depend on, those of the whole batch among them. No two jobs of a job file share it.
  std::string options;
  /// Of version, module and companion library.
  std::string program;
  /// Of the message file.
  std::string messages;
  /// Of each file of the drawing, in their order, as the report read it.
  std::vector<std::string> drawing;

  friend bool operator==(const JobKey&, const JobKey&) = default;
};

/// How a job ended: a line of a journal.
struct JobRecord {
  /// Line of the job file, from 1.
  std::size_t line = 0;
  std::string command;
  std::string drawing;
  /// Its files without their endings.
  std::string out;
  /// 0: done.
  int exitCode = 0;
  double seconds = 0.0;
  /// What was written, saved drawings behind the reports.
  std::vector<OutputFile> files;
  /// Paths of reports that weren't written since something stood there. No member where there are none.
  std::vector<std::string> kept;
  /// What it said on standard error, line by line.
  std::vector<std::string> diagnostics;
  JobKey key;
  /// Of a job that saves in the drawing's own files: their hashes behind it, in the order of `key.drawing`; "saved" in the
  /// line, and no member otherwise.
  std::vector<std::string> savedDrawing;
  /// Told before those files take their names, as "saving": true. The job ended like this where they have these hashes;
  /// where they don't, or a further line follows, the line says nothing.
  bool isSaving = false;
};

/// With its line feed. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string lineOf(const JobRecord& record);
/// None where the line isn't one of a journal.
[[nodiscard]] std::optional<JobRecord> recordOf(std::string_view line);

/// A line that can't be read, as a cut leaves it.
struct UnreadableLine {
  /// Of the journal, from 1.
  std::size_t number = 0;
  /// JobRecord::line of the job that it is of; none where not even that is there.
  std::optional<std::size_t> jobLine;

  friend bool operator==(const UnreadableLine&, const UnreadableLine&) = default;
};

/// How a journal was read.
struct JournalReading {
  /// Lines that aren't blank.
  std::size_t lines = 0;
  /// A writing that failed leaves such a line.
  std::vector<UnreadableLine> unreadable;
  /// The last line has no end, as after a kill or a full disk; it counts as unreadable where that shows.
  bool isCut = false;
};

/// A file that is no journal: its first line is none of a journal, nor the begin of one.
class NotAJournal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Looks at the begin of a file: nothing but blanks, or a line's begin. Throws as readJournal does.
void requireJournal(const std::filesystem::path& path);

/// Reads line by line, so that memory is that of the longest one. Throws std::system_error where the file can't be read,
/// and NotAJournal with a sentence.
JournalReading readJournal(const std::filesystem::path& path, const std::function<void(JobRecord)>& take);

/// Adds lines to a journal, each by one writing: nothing is kept back in this process, so that a kill loses nothing. A copy
/// of this process may add lines to the same journal.
class JournalWriter {
 public:
  enum class Begin {
    Anew,  ///< what stands there goes
    GoOn,  ///< behind what stands there, also where its last line is cut
  };
  /// Throws std::system_error where the file can't be written.
  JournalWriter(const std::filesystem::path& path, Begin begin);
  JournalWriter(const JournalWriter&) = delete;
  JournalWriter& operator=(const JournalWriter&) = delete;
  ~JournalWriter();

  /// Throws std::system_error; a part of a line that was written then doesn't spoil the next one.
  void add(const JobRecord& record);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::journal
