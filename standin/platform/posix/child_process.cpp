#include "standin_platform/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin_platform/temporary_stream.h"

extern char** environ;

namespace lvx::standin_platform {

namespace {

/// Appends what lies in a file.
std::error_code readAll(const Stream& stream, std::string& text) {
  std::rewind(stream.get());
  char part[4096];
  errno = 0;
  while (const std::size_t size = std::fread(part, 1, sizeof part, stream.get())) text.append(part, size);
  return std::ferror(stream.get()) != 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
}

}  // namespace

struct ChildProcess::State {
  int wait();

  std::mutex mutex;
  pid_t pid = 0;  ///< 0: nothing runs
};

ChildProcess::ChildProcess() : state_(std::make_unique<State>()) {}
ChildProcess::~ChildProcess() = default;

ChildResult ChildProcess::run(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  // Files, since a program may say however much it likes.
  const Stream output = openTemporaryStream();
  const Stream errors = openTemporaryStream();
  if (!output || !errors) return {127, {}, "no room for a temporary file\n"};

  std::vector<char*> words;
  std::string name = program.string();
  std::vector<std::string> copies = arguments;
  words.push_back(name.data());
  for (std::string& copy : copies) words.push_back(copy.data());
  words.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, fileno(output.get()), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fileno(errors.get()), STDERR_FILENO);
  int error = 0;
  {
    const std::lock_guard guard(state_->mutex);
    error = posix_spawn(&state_->pid, name.c_str(), &actions, nullptr, words.data(), environ);
    if (error != 0) state_->pid = 0;
  }
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return {127, {}, name + ": " + std::strerror(error) + "\n"};
  ChildResult result;
  result.exitCode = state_->wait();
  result.unread = readAll(output, result.output);
  if (!result.unread) result.unread = readAll(errors, result.errors);
  return result;
}

int ChildProcess::State::wait() {
  // First only looks, so that the number still means this process while it is taken away from `interrupt`.
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
  const std::lock_guard guard(mutex);
  int status = 0;
  waitpid(pid, &status, 0);
  pid = 0;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ChildProcess::interrupt() {
  const std::lock_guard guard(state_->mutex);
  if (state_->pid > 0) kill(state_->pid, SIGTERM);
}

}  // namespace lvx::standin_platform
