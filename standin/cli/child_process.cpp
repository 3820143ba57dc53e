#include "cli/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace lvx::cli {

namespace {

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A file without a name that takes what a process says, however much that is.
Stream capture() {
  Stream stream(std::tmpfile(), &std::fclose);
  if (stream) fcntl(fileno(stream.get()), F_SETFD, FD_CLOEXEC);
  return stream;
}

std::string contentOf(const Stream& stream) {
  std::string text;
  std::rewind(stream.get());
  char part[4096];
  while (const std::size_t size = std::fread(part, 1, sizeof part, stream.get())) text.append(part, size);
  return text;
}

}  // namespace

ChildResult ChildProcess::run(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  const Stream output = capture();
  const Stream errors = capture();
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
    const std::lock_guard guard(mutex_);
    error = posix_spawn(&pid_, name.c_str(), &actions, nullptr, words.data(), environ);
    if (error != 0) pid_ = 0;
  }
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return {127, {}, name + ": " + std::strerror(error) + "\n"};
  const int code = wait();
  return {code, contentOf(output), contentOf(errors)};
}

int ChildProcess::wait() {
  // First only looks, so that the number still means this process while it is taken away from `interrupt`.
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
  const std::lock_guard guard(mutex_);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = 0;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ChildProcess::interrupt() {
  const std::lock_guard guard(mutex_);
  if (pid_ > 0) kill(pid_, SIGTERM);
}

}  // namespace lvx::cli
