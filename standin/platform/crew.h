#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace lvx::standin_platform {

/// As many threads as this process may run at the same time; at least 1.
[[nodiscard]] unsigned processorCount();

/// Threads that share a work of many pieces with the thread that has it to do. They start with the first work that has
/// more than one piece; where the system gives fewer than asked for, those do it, at worst the caller's own alone. Signals
/// come to the caller's thread as if it were alone. One work at a time.
///     Crew crew(4);
///     crew.run(blocks.size(), [&](std::size_t i) { parse(blocks[i]); });
class Crew {
 public:
  using Piece = std::function<void(std::size_t)>;

  /// `threads` in all, the caller's own among them; 0: processorCount().
  explicit Crew(unsigned threads = 0);
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;
  /// Ends the threads.
  ~Crew();

  /// How many were asked for.
  [[nodiscard]] unsigned size() const { return size_; }
  /// Calls `piece(i)` for every i below `count`, each once, lower ones first, several at a time. Comes back when all have
  /// ended. What one threw is thrown here, of several that of the lowest number; pieces that nobody began are left out then.
  void run(std::size_t count, const Piece& piece) { run({}, count, piece); }
  /// The same, and `own()` on the caller's thread before it takes pieces itself. What it throws goes before others.
  void run(const std::function<void()>& own, std::size_t count, const Piece& piece);

 private:
  struct State;
  void start();

  unsigned size_;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
