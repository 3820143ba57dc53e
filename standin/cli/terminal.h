#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "civil/drawing.h"
#include "options/options.h"

/// Standard output and standard error: results on the one, words and progress on the other. With --json (answer.h) words
/// are gathered as well, and the one document has standard output for itself.
namespace lvx::cli {

using civil::Severity;
using options::ProgressMode;

/// One line on standard error, "lvxhost: …"; also where no memory is left. `file` is the one that it is about, for
/// programs.
void say(std::string_view sentence, Severity severity = Severity::Error, std::string_view file = {});
/// A warning, as "lvxhost: warning: …" on standard error.
void warn(std::string_view sentence);
/// Text as it stands on standard error: questions, progress. Not gathered.
void tell(std::string_view text);
/// The same of a command's console, which is gathered as a note.
void tellConsole(std::string_view text);

/// A result on standard output, for people alone.
void print(std::string_view text);
/// The document of --json on standard output.
void printDocument(std::string_view text);
/// A file that was written; told unless `quiet`.
void printFile(const std::string& path, std::uint64_t bytes, bool quiet);
/// Flushes standard output; throws Failure where it couldn't take everything.
void finishOutput();

/// True where a person can answer a question.
[[nodiscard]] bool isInteractive();
/// Asks on standard error and reads one line; empty at the end of input.
[[nodiscard]] std::string ask(std::string_view question);

/// Whether what exists may be overwritten, the same for reports and drawings: as --overwrite and --keep say, else as the
/// person on the terminal answers to `question`; without one, not.
[[nodiscard]] bool mayOverwrite(options::Overwrite mode, std::string_view question);
/// True for a word that begins as yes does in the languages of the messages.
[[nodiscard]] bool isYes(std::string_view answer);

/// How far a long step is: one line on standard error that renews itself on a terminal, and a line for each tenth
/// elsewhere. On its own it shows only where standard error is a terminal and the step takes longer than a moment.
class ProgressLine {
 public:
  ProgressLine(ProgressMode mode, std::string label);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  /// Takes a renewing line away again.
  ~ProgressLine();
  void update(std::uint64_t done, std::uint64_t total);

 private:
  ProgressMode mode_;
  std::string label_;
  bool terminal_;
  bool shown_ = false;
  int lastShown_ = -1;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace lvx::cli
