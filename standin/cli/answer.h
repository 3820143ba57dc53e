#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "civil/drawing.h"

/// What a command tells, gathered for --json.
namespace lvx::cli {

using civil::Severity;

/// A word of a command about something.
struct ToldDiagnostic {
  Severity severity = Severity::Error;
  /// A sentence without its place.
  std::string text;
  /// The file that it is about, an output or one that was read; empty: none.
  std::string file;
  /// Line of that file from 1; 0: none.
  std::size_t line = 0;
};

/// All that a command with --json tells: one document on standard output at its end.
///
///     {
///       "command": "points",
///       "exit": 0,
///       "seconds": 0.041,
///       … members of the command's own …
///       "written": [{"path": "out/edge.txt", "bytes": 2310, "sha256": "9f0c…"}],
///       "diagnostics": [{"severity": "warning", "text": "…", "file": "road.xml", "line": 20}]
///     }
///
/// Members are only ever added. Without --json nothing is gathered, and words and results are told as they come.
class Answer {
 public:
  /// Takes no memory: a program that finds none has to tell that.
  Answer() noexcept;
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer();

  /// From here on standard output is for the document. Where `isQuiet`, standard error is for errors alone.
  void gather(bool isQuiet);
  [[nodiscard]] bool isGathered() const { return isGathered_; }
  /// True where words that aren't errors have no place but the document.
  [[nodiscard]] bool isQuiet() const { return isQuiet_; }

  void setCommand(std::string_view name);
  void add(ToldDiagnostic diagnostic);
  /// A file that stands now, under each path once; `removed` where one that was written was taken away again.
  void addWritten(const std::string& path);
  void removeWritten(const std::string& path);
  /// A member of the command's own; one that stands already is replaced. Of "diagnostics" and "written" the members of
  /// the document itself are those that are told.
  void set(std::string_view member, nlohmann::ordered_json value);
  /// Behind the values of such a member that is a list.
  void append(std::string_view member, nlohmann::ordered_json value);

  [[nodiscard]] const std::vector<ToldDiagnostic>& diagnostics() const { return diagnostics_; }
  /// Gathers no more, in a copy of the process whose words are told by another one.
  void release();

  /// The document with its line feed. Reads the files that were written for their hashes; one that can't be read has null
  /// in the place of bytes and hash. Bytes of texts that are no UTF-8 become U+FFFD.
  [[nodiscard]] std::string document(int exitCode) const;

 private:
  struct Members;

  bool isGathered_ = false;
  bool isQuiet_ = false;
  std::chrono::steady_clock::time_point start_;
  std::string command_;
  std::vector<ToldDiagnostic> diagnostics_;
  std::vector<std::string> written_;
  std::unordered_set<std::string> everWritten_;
  std::unique_ptr<Members> members_;  ///< since something is gathered
};

/// That of this process.
[[nodiscard]] Answer& answer();

/// "note", "warning" or "error"
[[nodiscard]] const char* severityName(Severity severity);
/// As the document has it.
[[nodiscard]] nlohmann::ordered_json jsonOf(const ToldDiagnostic& diagnostic);

}  // namespace lvx::cli
