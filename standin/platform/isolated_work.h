#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lvx::standin_platform {

/// How work in a process of its own ended.
struct IsolatedOutcome {
  enum class End {
    Done,
    Failed,       ///< it raised an exception; `words` are the exception's
    ShortMemory,  ///< it raised std::bad_alloc
    Crashed,      ///< it ended its process; `words` say by what
    NotStarted,   ///< the system gives no process; `words` are the system's
  };
  End end = End::NotStarted;
  std::string words;
};

/// Runs `work` in a copy of this process, with all that is in memory now, and waits for its end: for libraries that crash
/// where memory is short. Nothing that `work` changes in memory comes back; what it writes to files does. A crash leaves no
/// picture of its memory on the disk, and what it says on standard error is nobody's. An interruption ends the copy at once, and so does the end of this process.
///
/// Other threads aren't copied, but what they hold at that moment is: `work` may allocate, use streams that it opens and
/// throw, and should stay away from other locks.
///
/// `meanwhile` is called about ten times a second; what it throws ends the copy and goes on to the caller.
[[nodiscard]] IsolatedOutcome runIsolated(const std::function<void()>& work,
                                          const std::function<void()>& meanwhile = {});

/// Sends a message from isolated work to who waits for it. Waits where that one is busy.
using Tell = std::function<void(std::string_view message)>;

/// The same for work that tells things while it runs: `hear` gets each message whole and in order, in the process that
/// waits, before the outcome is known. What it throws ends the copy and goes on to the caller too.
[[nodiscard]] IsolatedOutcome runIsolated(const std::function<void(const Tell& tell)>& work,
                                          const std::function<void(std::string_view message)>& hear,
                                          const std::function<void()>& meanwhile);

}  // namespace lvx::standin_platform
