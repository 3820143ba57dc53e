#pragma once

#include <functional>
#include <memory>

/// A user who wants the program to end: Ctrl-C, or the system's polite wish that it stop. A second one ends the process at
/// once, whichever way the first is heard.
namespace lvx::standin_platform {

/// From here on an interruption only raises a flag: what runs gives up at its next chance and takes its unfinished files
/// with it.
void watchInterruption();
[[nodiscard]] bool isInterrupted();

/// The other way to hear of it, for programs that wait in an event loop. One at a time in a process.
class InterruptionListener {
 public:
  /// `tell` is called once, on a thread of this object; it must not throw. The end of the user's session counts as an
  /// interruption here. Where the system gives no way to listen, an interruption goes on ending the process.
  explicit InterruptionListener(std::function<void()> tell);
  InterruptionListener(const InterruptionListener&) = delete;
  InterruptionListener& operator=(const InterruptionListener&) = delete;
  /// `tell` isn't called any more afterwards; an interruption ends the process again.
  ~InterruptionListener();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
