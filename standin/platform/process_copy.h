#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standin_platform/child_process.h"

/// Processes that begin as a copy of this one: what is in memory at that moment they all share, for as long as nobody
/// changes it, so that what took long to read is read once; and a crash ends one of them alone.
///
/// Where the system has no copies, the program is begun again with the same arguments instead, in the same folder, and
/// asks by `begunCopy` what it is there for. Such a process has nothing in memory but what its request says.
namespace lvx::standin_platform {

/// One end of a line between two processes, on which whole messages go.
class MessageLine {
 public:
  struct State;
  explicit MessageLine(std::unique_ptr<State> state);
  MessageLine(MessageLine&& other) noexcept;
  MessageLine(const MessageLine&) = delete;
  MessageLine& operator=(const MessageLine&) = delete;
  ~MessageLine();

  /// False where nobody is at the other end any more. Waits where the other side doesn't take what was sent; an
  /// interruption doesn't end that.
  bool send(std::string_view message);
  /// Appends what has come, without waiting. False once nobody is at the other end; what they sent has all come then.
  bool take(std::vector<std::string>& messages);
  /// Nothing is sent or taken any more; the other side hears of it.
  void close();

 private:
  friend class ProcessCopy;
  friend void waitForMessages(std::span<MessageLine* const> lines, std::chrono::milliseconds longest);
  std::unique_ptr<State> state_;
};

/// Waits until one of the lines has something to take, or for so long, or for an interruption.
void waitForMessages(std::span<MessageLine* const> lines, std::chrono::milliseconds longest);

/// A process that begins as a copy of this one, where the system has these. Only of a process with one thread.
///
/// The copy hears of interruptions as this process does, and is interrupted when this one ends before it. At its end
/// nothing of this program is taken down in it: no destructor of what it was copied from runs there.
class ProcessCopy {
 public:
  /// Runs in the copy, with the request and its end of the line; what it gives is the copy's exit code. It must not
  /// throw.
  using Work = std::function<int(const std::string& request, MessageLine& line)>;
  enum class Streams {
    Shared,  ///< this process's own
    Kept,    ///< nothing to read, and what it says is kept for `wait`
  };

  /// `name`: what a program that was begun again knows the work by, a word of letters. Throws std::system_error where
  /// the system gives no process, memory or file for it.
  ProcessCopy(std::string_view name, const std::string& request, const Work& work, Streams streams);
  ProcessCopy(const ProcessCopy&) = delete;
  ProcessCopy& operator=(const ProcessCopy&) = delete;
  /// Ends one that still runs, at once, and waits for that.
  ~ProcessCopy();

  [[nodiscard]] MessageLine& line() { return line_; }
  /// Asks it to stop, as Ctrl-C does; once.
  void interrupt();
  /// Waits for its end. Code and kept words as ChildResult has them; words that can't be read are told as the reason in
  /// `unread`.
  [[nodiscard]] ChildResult wait();
  /// Interrupts it, hears no more of it and waits for its end, for who has no use for what it does. Takes no memory.
  void stop() noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
  MessageLine line_;
};

/// Whether a copy begins with what was in memory; else with its request alone.
[[nodiscard]] bool copiesShareMemory();

/// What a copy with Streams::Kept said.
struct KeptWords {
  std::string output;
  std::string errors;
};

/// In such a copy, also in what its C library holds back: appends what it said since its begin, or since the last call, which
/// is then no longer for `wait`. False where some of that is still there.
[[nodiscard]] bool takeKeptWords(KeptWords& words);

/// What this process was begun for in the place of a copy.
struct BegunCopy {
  std::string name;
  std::string request;
  MessageLine line;
};

/// Once, on a system without copies, in a program that a ProcessCopy began again: it has to do the work of that name, and
/// to end with the code that this gives. Else empty.
[[nodiscard]] std::optional<BegunCopy> begunCopy();

}  // namespace lvx::standin_platform
