#include "standin_platform/interruption.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"

namespace lvx::standin_platform {

namespace {

volatile std::sig_atomic_t interrupted = 0;
extern "C" void raiseFlag(int) { interrupted = 1; }

/// Where the listener's handler writes.
std::atomic<int> bellRope{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may not wait");

constexpr char kInterruption = 'i';
constexpr char kEnd = 'e';

extern "C" void ringBell(int) {
  const int error = errno;
  [[maybe_unused]] const ssize_t written = ::write(bellRope.load(), &kInterruption, 1);
  errno = error;
}

constexpr std::array<int, 3> kEndingSignals{SIGINT, SIGTERM, SIGHUP};

}  // namespace

void watchInterruption() {
  struct sigaction action {};
  action.sa_handler = raiseFlag;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() { return interrupted != 0; }

struct InterruptionListener::State {
  Descriptor ear;
  Descriptor rope;
  std::function<void()> tell;
  std::thread thread;

  void listen() const {
    char word = kEnd;
    ssize_t count = 0;
    do {
      count = ::read(ear.number(), &word, 1);
    } while (count < 0 && errno == EINTR);
    if (count == 1 && word == kInterruption) tell();
  }
};

InterruptionListener::InterruptionListener(std::function<void()> tell) : state_(std::make_unique<State>()) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return;
  state_->ear = Descriptor(ends[0]);
  state_->rope = Descriptor(ends[1]);
  state_->tell = std::move(tell);
  bellRope = state_->rope.number();
  state_->thread = std::thread(&State::listen, state_.get());
  struct sigaction action {};
  action.sa_handler = ringBell;
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // a second one ends it at once
  for (const int signal : kEndingSignals) sigaction(signal, &action, nullptr);
}

InterruptionListener::~InterruptionListener() {
  if (!state_->thread.joinable()) return;
  for (const int signal : kEndingSignals) std::signal(signal, SIG_DFL);
  bellRope = -1;
  (void)state_->rope.write({&kEnd, 1});
  state_->thread.join();
}

}  // namespace lvx::standin_platform
