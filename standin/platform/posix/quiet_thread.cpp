#include "standin_platform/detail/quiet_thread.h"

#include <csignal>
#include <utility>

#include <pthread.h>

namespace lvx::standin_platform::detail {

namespace {

/// While it lives, the calling thread holds all signals back; a thread that it starts does so for good.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigset_t all;
    sigfillset(&all);
    // Faults of the program itself go on ending it where they happen.
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;
  ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace

std::thread startQuietThread(std::function<void()> work) {
  const SignalsHeldBack held;
  return std::thread(std::move(work));
}

}  // namespace lvx::standin_platform::detail
