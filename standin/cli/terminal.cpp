#include "cli/terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string>

#include "cli/answer.h"
#include "cli/failure.h"
#include "standin_platform/standard_streams.h"

namespace lvx::cli {

using standin_platform::isTerminal;
using standin_platform::StandardStream;

void tell(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

namespace {

/// As standard error has it.
void tellSentence(std::string_view before, std::string_view sentence) {
  try {
    tell(std::string(before) + std::string(sentence) + "\n");  // at once, so that nothing comes between
  } catch (const std::bad_alloc&) {
    for (const std::string_view part : {before, sentence, std::string_view("\n")}) tell(part);
  }
}

void gather(Severity severity, std::string_view text, std::string_view file) {
  if (!answer().isGathered()) return;
  try {
    answer().add({severity, std::string(text), std::string(file), 0});
  } catch (const std::bad_alloc&) {
    // Standard error has it, and the exit code tells that memory is short.
  }
}

}  // namespace

void say(std::string_view sentence, Severity severity, std::string_view file) {
  if (severity == Severity::Error || !answer().isQuiet()) tellSentence("lvxhost: ", sentence);
  gather(severity, sentence, file);
}

void warn(std::string_view sentence) {
  if (!answer().isQuiet()) tellSentence("lvxhost: warning: ", sentence);
  gather(Severity::Warning, sentence, {});
}

void tellConsole(std::string_view text) {
  if (!answer().isQuiet()) tell(text);
  const std::size_t start = text.find_first_not_of(" \r\n");
  if (start == std::string_view::npos) return;
  gather(Severity::Note, text.substr(start, text.find_last_not_of(" \r\n") + 1 - start), {});
}

void print(std::string_view text) {
  if (!answer().isGathered()) std::fwrite(text.data(), 1, text.size(), stdout);
}

void printDocument(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void printFile(const std::string& path, std::uint64_t bytes, bool quiet) {
  answer().addWritten(path);
  if (!quiet) print(path + "  " + std::to_string(bytes) + " bytes\n");
}

void finishOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
  throw Failure(kNotWritten, std::string("can't write to standard output: ") +
                                 (errno == 0 ? "an earlier write failed" : std::strerror(errno)));
}

bool isInteractive() { return isTerminal(StandardStream::Input) && isTerminal(StandardStream::Errors); }

bool isYes(std::string_view answer) {
  return !answer.empty() && std::string_view("yYjJ").find(answer[0]) != std::string_view::npos;
}

bool mayOverwrite(options::Overwrite mode, std::string_view question) {
  if (mode == options::Overwrite::Always) return true;
  if (mode == options::Overwrite::Never || !isInteractive()) return false;
  return isYes(ask(std::string(question) + " [y/N] "));
}

std::string ask(std::string_view question) {
  tell(question);
  std::fflush(stderr);
  std::string line;
  for (int c = std::getchar(); c != EOF && c != '\n'; c = std::getchar()) line += static_cast<char>(c);
  return line;
}

ProgressLine::ProgressLine(ProgressMode mode, std::string label)
    : mode_(mode),
      label_(std::move(label)),
      terminal_(isTerminal(StandardStream::Errors)),
      start_(std::chrono::steady_clock::now()) {}

ProgressLine::~ProgressLine() {
  if (shown_ && terminal_) tell("\r\x1b[K");
}

void ProgressLine::update(std::uint64_t done, std::uint64_t total) {
  constexpr auto kMoment = std::chrono::milliseconds(400);
  constexpr int kStepElsewhere = 10;
  if (mode_ == ProgressMode::Never || total == 0) return;
  if (mode_ == ProgressMode::Auto && (!terminal_ || std::chrono::steady_clock::now() - start_ < kMoment)) return;
  int percent = static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * 100.0);
  if (!terminal_) percent -= percent % kStepElsewhere;
  if (percent == lastShown_) return;
  lastShown_ = percent;
  shown_ = true;
  const std::string text = label_ + ": " + std::to_string(percent) + " %";
  tell(terminal_ ? "\r\x1b[K" + text : text + "\n");
  std::fflush(stderr);
}

}  // namespace lvx::cli
