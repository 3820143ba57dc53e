#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "options/options.h"

/// Standard output and standard error: results on the one, words and progress on the other.
namespace lvx::cli {

using options::ProgressMode;

/// One line on standard error, "lvxhost: …"; also where no memory is left.
void say(std::string_view sentence);
/// The same without the name in front: questions, the console of a command.
void tell(std::string_view text);

/// A result on standard output.
void print(std::string_view text);
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
