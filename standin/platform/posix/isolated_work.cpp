#include "standin_platform/isolated_work.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include "standin_platform/detail/message_frame.h"
#include "standin_platform/posix/detail/descriptor.h"

namespace lvx::standin_platform {

namespace {

using End = IsolatedOutcome::End;

// How the messages of the copy begin. The last of them says how it ended; there is no such one where it crashes.
constexpr char kTold = 't';
constexpr char kDone = 'd';
constexpr char kFailed = 'f';
constexpr char kShortMemory = 'm';

[[noreturn]] void runInCopy(const std::function<void(const Tell& tell)>& work, const Descriptor& mouth, pid_t parent) {
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
  const auto say = [&mouth](char word, std::string_view text) {
    const auto head = detail::headOf(text.size() + 1);
    // Who doesn't hear has no use for the rest.
    if (mouth.write({head.data(), head.size()}) || mouth.write({&word, 1}) || mouth.write(text)) ::_exit(1);
  };
  try {
    work([&say](std::string_view message) { say(kTold, message); });
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

/// Hands on what the copy tells, until it ends. Gives its last message; empty where it had none.
std::string listen(const Descriptor& ear, const std::function<void(std::string_view)>& hear,
                   const std::function<void()>& meanwhile) {
  constexpr int kTenthOfASecond = 100;
  std::string part;
  std::vector<std::string> messages;
  std::string last;
  std::array<char, 65536> bytes{};
  for (;;) {
    pollfd ready{ear.number(), POLLIN, 0};
    const int count = ::poll(&ready, 1, kTenthOfASecond);
    if (count <= 0) {
      if (meanwhile) meanwhile();
      if (count < 0 && errno != EINTR) return last;
      continue;
    }
    const ssize_t size = ::read(ear.number(), bytes.data(), bytes.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return last;
    part.append(bytes.data(), static_cast<std::size_t>(size));
    messages.clear();
    detail::takeWhole(part, messages);
    for (std::string& message : messages) {
      if (!message.starts_with(kTold))
        last = std::move(message);
      else if (hear)
        hear(std::string_view(message).substr(1));
    }
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
  return runIsolated([&work](const Tell&) { work(); }, {}, meanwhile);
}

IsolatedOutcome runIsolated(const std::function<void(const Tell& tell)>& work,
                            const std::function<void(std::string_view message)>& hear,
                            const std::function<void()>& meanwhile) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {End::NotStarted, lastError().message()};
  Descriptor ear(ends[0]);
  Descriptor mouth(ends[1]);
  const pid_t parent = ::getpid();
  const pid_t number = ::fork();
  if (number < 0) return {End::NotStarted, lastError().message()};
  if (number == 0) {
    (void)ear.close();
    runInCopy(work, mouth, parent);
  }
  Copy copy(number);
  (void)mouth.close();
  const std::string said = listen(ear, hear, meanwhile);
  (void)ear.close();  // a copy that nobody could hear to its end doesn't wait for that
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
