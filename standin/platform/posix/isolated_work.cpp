#include "standin_platform/isolated_work.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include "standin_platform/posix/detail/descriptor.h"

namespace lvx::standin_platform {

namespace {

using End = IsolatedOutcome::End;

// What the copy says first. It says nothing where it crashes.
constexpr char kDone = 'd';
constexpr char kFailed = 'f';
constexpr char kShortMemory = 'm';

[[noreturn]] void runInCopy(const std::function<void()>& work, const Descriptor& tell, pid_t parent) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
#ifdef __linux__
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  if (::getppid() != parent) ::_exit(1);
#ifndef __SANITIZE_ADDRESS__  // whose findings should be seen
  const Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (nowhere.isOpen()) ::dup2(nowhere.number(), STDERR_FILENO);
#endif
  const auto say = [&tell](char word, std::string_view text) {
    if (!tell.write({&word, 1})) (void)tell.write(text);
  };
  try {
    work();
    say(kDone, {});
  } catch (const std::bad_alloc&) {
    say(kShortMemory, {});
  } catch (const std::exception& error) {
    say(kFailed, error.what());
  } catch (...) {
    say(kFailed, "an exception without words");
  }
  // Neither the buffers of streams nor the objects of this program are the copy's to end.
  ::_exit(0);
}

/// The copy, until its end was waited for.
class Copy {
 public:
  explicit Copy(pid_t number) : number_(number) {}
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  ~Copy() {
    if (number_ <= 0) return;
    ::kill(number_, SIGKILL);
    (void)status();
  }
  /// Waits for its end.
  int status() {
    int status = 0;
    while (::waitpid(number_, &status, 0) < 0 && errno == EINTR) {
    }
    number_ = 0;
    return status;
  }

 private:
  pid_t number_;
};

/// All that the copy says, until it ends.
std::string hear(const Descriptor& ear, const std::function<void()>& meanwhile) {
  constexpr int kTenthOfASecond = 100;
  std::string said;
  for (;;) {
    pollfd ready{ear.number(), POLLIN, 0};
    const int count = ::poll(&ready, 1, kTenthOfASecond);
    if (count <= 0) {
      if (meanwhile) meanwhile();
      if (count < 0 && errno != EINTR) return said;
      continue;
    }
    std::array<char, 512> bytes;
    const ssize_t size = ::read(ear.number(), bytes.data(), bytes.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return said;
    said.append(bytes.data(), static_cast<std::size_t>(size));
  }
}

std::string wordsFor(int status) {
  if (!WIFSIGNALED(status)) return "exit code " + std::to_string(WEXITSTATUS(status));
  // In the words of the C locale, whatever the environment says.
  const char* const name = ::sigabbrev_np(WTERMSIG(status));
  return name == nullptr ? "signal " + std::to_string(WTERMSIG(status)) : std::string("SIG") + name;
}

}  // namespace

IsolatedOutcome runIsolated(const std::function<void()>& work, const std::function<void()>& meanwhile) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {End::NotStarted, lastError().message()};
  const Descriptor ear(ends[0]);
  Descriptor mouth(ends[1]);
  const pid_t parent = ::getpid();
  const pid_t number = ::fork();
  if (number < 0) return {End::NotStarted, lastError().message()};
  if (number == 0) runInCopy(work, mouth, parent);
  Copy copy(number);
  (void)mouth.close();
  const std::string said = hear(ear, meanwhile);
  const int status = copy.status();
  if (said.empty() || status != 0) return {End::Crashed, wordsFor(status)};
  switch (said.front()) {
    case kDone:
      return {End::Done, {}};
    case kShortMemory:
      return {End::ShortMemory, {}};
    default:
      return {End::Failed, said.substr(1)};
  }
}

}  // namespace lvx::standin_platform
