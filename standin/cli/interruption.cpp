#include "cli/interruption.h"

#include <csignal>

namespace lvx::cli {

namespace {
volatile std::sig_atomic_t interrupted = 0;
extern "C" void raiseFlag(int) { interrupted = 1; }
}  // namespace

void watchSignals() {
  struct sigaction action {};
  action.sa_handler = raiseFlag;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

bool isInterrupted() { return interrupted != 0; }

}  // namespace lvx::cli
