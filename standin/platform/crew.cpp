#include "standin_platform/crew.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "standin_platform/detail/quiet_thread.h"

namespace lvx::standin_platform {

unsigned processorCount() { return std::max(1U, std::thread::hardware_concurrency()); }

struct Crew::State {
  std::mutex mutex;
  std::condition_variable hasWork;
  std::condition_variable isDone;
  const Piece* piece = nullptr;  // of the work that is being done
  std::size_t count = 0;
  std::size_t next = 0;
  std::size_t running = 0;  // pieces
  std::exception_ptr error;
  std::size_t errorAt = std::numeric_limits<std::size_t>::max();
  bool ends = false;
  std::vector<std::thread> threads;

  /// Takes pieces until there are none; `lock` holds the mutex.
  void work(std::unique_lock<std::mutex>& lock) {
    while (next < count) {
      const std::size_t mine = next++;
      const Piece& todo = *piece;
      ++running;
      lock.unlock();
      std::exception_ptr thrown;
      try {
        todo(mine);
      } catch (...) {
        thrown = std::current_exception();
      }
      lock.lock();
      --running;
      if (thrown) {
        next = count;
        if (mine < errorAt) {
          errorAt = mine;
          error = thrown;
        }
      }
    }
    if (running == 0) isDone.notify_one();
  }

  void serve() {
    std::unique_lock lock(mutex);
    for (;;) {
      hasWork.wait(lock, [this] { return ends || next < count; });
      if (ends) return;
      work(lock);
    }
  }

  void end() {
    {
      const std::lock_guard lock(mutex);
      ends = true;
    }
    hasWork.notify_all();
    for (std::thread& thread : threads) thread.join();
  }
};

Crew::Crew(unsigned threads) : size_(threads == 0 ? processorCount() : threads) {}

Crew::~Crew() {
  if (state_) state_->end();
}

void Crew::start() {
  state_ = std::make_unique<State>();
  try {
    state_->threads.reserve(size_ - 1);
    while (state_->threads.size() + 1 < size_)
      state_->threads.push_back(detail::startQuietThread([state = state_.get()] { state->serve(); }));
  } catch (const std::system_error&) {
    // With those that there are: it takes longer, that's all.
  } catch (const std::bad_alloc&) {
  }
}

void Crew::run(const std::function<void()>& own, std::size_t count, const Piece& piece) {
  if (!state_ && size_ > 1 && count > (own ? 0U : 1U)) start();
  if (!state_ || state_->threads.empty()) {
    if (own) own();
    for (std::size_t i = 0; i < count; ++i) piece(i);
    return;
  }
  State& state = *state_;
  {
    const std::lock_guard lock(state.mutex);
    state.piece = &piece;
    state.count = count;
    state.next = 0;
    state.error = nullptr;
    state.errorAt = std::numeric_limits<std::size_t>::max();
  }
  state.hasWork.notify_all();
  std::exception_ptr ownError;
  try {
    if (own) own();
  } catch (...) {
    ownError = std::current_exception();
  }
  std::unique_lock lock(state.mutex);
  if (ownError) state.next = state.count;
  state.work(lock);
  state.isDone.wait(lock, [&] { return state.running == 0; });
  state.count = state.next = 0;
  if (ownError) std::rethrow_exception(ownError);
  if (state.error) std::rethrow_exception(std::exchange(state.error, nullptr));
}

}  // namespace lvx::standin_platform
