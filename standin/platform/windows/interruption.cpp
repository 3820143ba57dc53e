#include "standin_platform/interruption.h"

#include <atomic>
#include <thread>
#include <utility>

#include "standin_platform/windows/detail/wish.h"

namespace lvx::standin_platform {

namespace {

constexpr UINT kEndedByWish = 143;  // as a process that its system asked to end gives it elsewhere

std::atomic<bool> interrupted = false;
/// What the first interruption does; null: it ends the process.
std::atomic<void (*)()> answer{nullptr};

/// True for the first one.
bool hear() {
  void (*const known)() = answer.exchange(nullptr);
  if (known == nullptr) return false;
  known();
  return true;
}

BOOL WINAPI hearConsole(DWORD event) {
  const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  if (!hear()) {
    // The code that the system itself ends it with; Wine would take the one of success.
    if (isKey) TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    return FALSE;
  }
  // With the console or the session everything ends that answers this; so it doesn't, as long as the system waits.
  if (!isKey) Sleep(INFINITE);
  return TRUE;
}

void CALLBACK hearWish(void* /*context*/, BOOLEAN /*timedOut*/) {
  if (!hear()) TerminateProcess(GetCurrentProcess(), kEndedByWish);
}

/// From now on both ways of interrupting a process are heard.
void beginToHear() {
  static const bool begun = [] {
    SetConsoleCtrlHandler(nullptr, FALSE);  // a program that ignores Ctrl-C hands that on to those that it starts
    SetConsoleCtrlHandler(hearConsole, TRUE);
    // Both stay open to the end of the process: a wait whose object is closed counts as heard.
    static HANDLE waiting = nullptr;
    const HANDLE wish = CreateEventW(nullptr, FALSE, FALSE, wishNameOf(GetCurrentProcessId()).c_str());
    if (wish != nullptr) RegisterWaitForSingleObject(&waiting, wish, hearWish, nullptr, INFINITE, WT_EXECUTEDEFAULT);
    return true;
  }();
  (void)begun;
}

/// Set once the listener is to be told.
HANDLE bell = nullptr;

}  // namespace

std::wstring wishNameOf(DWORD process) { return L"Local\\lvx-interruption-" + std::to_wstring(process); }

void watchInterruption() {
  answer = [] { interrupted = true; };
  beginToHear();
}

bool isInterrupted() { return interrupted; }

struct InterruptionListener::State {
  Handle rung;
  Handle ending;
  std::function<void()> tell;
  std::thread thread;

  void listen() const {
    const HANDLE either[] = {rung.get(), ending.get()};
    if (WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0) tell();
  }
};

InterruptionListener::InterruptionListener(std::function<void()> tell) : state_(std::make_unique<State>()) {
  state_->rung = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
  state_->ending = Handle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
  if (!state_->rung.isOpen() || !state_->ending.isOpen()) return;
  state_->tell = std::move(tell);
  bell = state_->rung.get();
  state_->thread = std::thread(&State::listen, state_.get());
  answer = [] { SetEvent(bell); };
  beginToHear();
}

InterruptionListener::~InterruptionListener() {
  if (!state_->thread.joinable()) return;
  answer = nullptr;
  SetEvent(state_->ending.get());
  state_->thread.join();
}

}  // namespace lvx::standin_platform
