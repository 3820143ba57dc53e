#include "standin_platform/child_process.h"

#include <mutex>
#include <system_error>
#include <utility>

#include "standin_platform/windows/detail/launch.h"

namespace lvx::standin_platform {

struct ChildProcess::State {
  std::mutex mutex;
  Launched running;  ///< not open: nothing runs
};

ChildProcess::ChildProcess() : state_(std::make_unique<State>()) {}
ChildProcess::~ChildProcess() = default;

ChildResult ChildProcess::run(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  // Files, since a program may say however much it likes.
  const Handle output = openKept();
  const Handle errors = openKept();
  const Handle nothing = openNothing();
  if (!output.isOpen() || !errors.isOpen() || !nothing.isOpen()) return {127, {}, "no room for a temporary file\n"};
  HANDLE process = nullptr;
  try {
    const std::lock_guard guard(state_->mutex);
    state_->running = launch(program, arguments, {nothing.get(), output.get(), errors.get(), {}});
    process = state_->running.process.get();
  } catch (const std::system_error& error) {
    return {127, {}, program.string() + ": " + error.code().message() + "\n"};
  }
  WaitForSingleObject(process, INFINITE);
  const std::lock_guard guard(state_->mutex);
  const Launched ended = std::exchange(state_->running, {});
  ChildResult result;
  result.exitCode = codeOf(ended.process);
  result.unread = readAll(output.get(), result.output);
  if (!result.unread) result.unread = readAll(errors.get(), result.errors);
  return result;
}

void ChildProcess::interrupt() {
  const std::lock_guard guard(state_->mutex);
  if (state_->running.process.isOpen()) askToStop(state_->running);
}

}  // namespace lvx::standin_platform
