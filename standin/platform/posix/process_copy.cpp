#include "standin_platform/process_copy.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/mman.h>
#include <sys/prctl.h>
#endif

#include "standin_platform/detail/message_frame.h"
#include "standin_platform/interruption.h"
#include "standin_platform/posix/detail/descriptor.h"
#ifndef __linux__
#include "standin_platform/temporary_stream.h"
#endif

namespace lvx::standin_platform {

namespace {

/// The ends of lines that this process has. A further copy closes them, since a line ends when its last holder does.
std::set<int>& heldEnds() {
  static std::set<int> ends;
  return ends;
}

/// A file for what a copy says. Making and removing one on a disk may take longer than a report.
Descriptor openKept() {
#ifdef __linux__
  return Descriptor(::memfd_create("words", MFD_CLOEXEC));
#else
  const Stream stream = openTemporaryStream();
  return stream ? Descriptor(::fcntl(::fileno(stream.get()), F_DUPFD_CLOEXEC, 0)) : Descriptor();
#endif
}

/// Appends what lies in a file.
std::error_code readAll(int file, std::string& text) {
  std::array<char, 4096> part{};
  for (off_t at = 0;;) {
    const ssize_t size = ::pread(file, part.data(), part.size(), at);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return lastError();
    if (size == 0) return {};
    text.append(part.data(), static_cast<std::size_t>(size));
    at += size;
  }
}

}  // namespace

struct MessageLine::State {
  explicit State(int number) : end(number) { heldEnds().insert(number); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { close(); }
  void close() {
    if (!end.isOpen()) return;
    heldEnds().erase(end.number());
    (void)end.close();
  }
  /// Whether all of them went; without a signal where nobody is at the other end.
  bool write(const char* bytes, std::size_t size) const {
    while (size > 0) {
      const ssize_t count = ::send(end.number(), bytes, size, MSG_NOSIGNAL);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
    return true;
  }

  Descriptor end;
  /// Begin of a message whose rest hasn't come.
  std::string part;
};

MessageLine::MessageLine(std::unique_ptr<State> state) : state_(std::move(state)) {}
MessageLine::MessageLine(MessageLine&& other) noexcept = default;
MessageLine::~MessageLine() = default;

bool MessageLine::send(std::string_view message) {
  const auto head = detail::headOf(message.size());
  return state_->end.isOpen() && state_->write(head.data(), head.size()) &&
         state_->write(message.data(), message.size());
}

bool MessageLine::take(std::vector<std::string>& messages) {
  bool isOpen = state_->end.isOpen();
  std::array<char, 65536> bytes{};
  while (isOpen) {
    const ssize_t count = ::recv(state_->end.number(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
    if (count <= 0)
      isOpen = false;
    else
      state_->part.append(bytes.data(), static_cast<std::size_t>(count));
  }
  detail::takeWhole(state_->part, messages);
  return isOpen;
}

void MessageLine::close() { state_->close(); }

void waitForMessages(std::span<MessageLine* const> lines, std::chrono::milliseconds longest) {
  std::vector<pollfd> ends;
  ends.reserve(lines.size());
  for (const MessageLine* line : lines)
    if (line->state_->end.isOpen()) ends.push_back({line->state_->end.number(), POLLIN, 0});
  (void)::poll(ends.data(), ends.size(), static_cast<int>(longest.count()));
}

struct ProcessCopy::State {
  /// Waits for its end and gives how it came.
  int reap() noexcept {
    int status = 0;
    while (::waitpid(number, &status, 0) < 0 && errno == EINTR) {
    }
    number = 0;
    return status;
  }

  pid_t number = 0;  ///< 0: its end was waited for
  bool isInterrupted = false;
  Descriptor output;
  Descriptor errors;
};

namespace {

/// Two ends of a new line; none of them reaches programs that this one starts.
std::array<std::unique_ptr<MessageLine::State>, 2> newLine() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw std::system_error(lastError());
  return {std::make_unique<MessageLine::State>(ends[0]), std::make_unique<MessageLine::State>(ends[1])};
}

/// Puts an open file behind the number of a standard stream.
bool putBehind(int file, int stream) { return ::dup2(file, stream) == stream; }

void keepStreams(const Descriptor& output, const Descriptor& errors) {
  const Descriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  if (!putBehind(output.number(), STDOUT_FILENO) || !putBehind(errors.number(), STDERR_FILENO) || !nothing.isOpen() ||
      !putBehind(nothing.number(), STDIN_FILENO))
    ::_exit(127);
}

/// Holds back the signals of an interruption, so that a copy has its handlers before it can hear one.
class InterruptionPause {
 public:
  InterruptionPause() {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    sigaddset(&held, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &held, &former_);
  }
  InterruptionPause(const InterruptionPause&) = delete;
  InterruptionPause& operator=(const InterruptionPause&) = delete;
  ~InterruptionPause() { end(); }
  void end() const { ::sigprocmask(SIG_SETMASK, &former_, nullptr); }

 private:
  sigset_t former_{};
};

}  // namespace

ProcessCopy::ProcessCopy(std::string_view /*name*/, const std::string& request, const Work& work, Streams streams)
    : state_(std::make_unique<State>()), line_(std::unique_ptr<MessageLine::State>()) {
  if (streams == Streams::Kept) {
    state_->output = openKept();
    if (state_->output.isOpen()) state_->errors = openKept();
    if (!state_->errors.isOpen()) throw std::system_error(lastError());
  }
  auto ends = newLine();
  // What lies in the buffers of this process is this one's to write.
  std::fflush(nullptr);
  const pid_t parent = ::getpid();
  const InterruptionPause pause;
  state_->number = ::fork();
  if (state_->number < 0) {
    state_->number = 0;
    throw std::system_error(lastError());
  }
  if (state_->number == 0) {
#ifdef __linux__
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
    if (::getppid() != parent) ::_exit(127);
    // The first signal of this process is its first one, though it be the second of the process that it is a copy of.
    if (isInterrupted()) watchInterruption();
    pause.end();
    const int own = ends[1]->end.number();
    for (const int end : heldEnds())
      if (end != own) ::close(end);
    heldEnds() = {own};
    if (streams == Streams::Kept) keepStreams(state_->output, state_->errors);
    MessageLine line(std::move(ends[1]));
    const int code = work(request, line);
    std::fflush(nullptr);
    ::_exit(code);
  }
  line_.state_ = std::move(ends[0]);
}

ProcessCopy::~ProcessCopy() {
  if (state_->number == 0) return;
  ::kill(state_->number, SIGKILL);
  state_->reap();
}

void ProcessCopy::interrupt() {
  if (state_->number > 0 && !std::exchange(state_->isInterrupted, true)) ::kill(state_->number, SIGTERM);
}

void ProcessCopy::stop() noexcept {
  if (state_->number == 0) return;
  line_.close();
  interrupt();
  state_->reap();
}

ChildResult ProcessCopy::wait() {
  const int status = state_->reap();
  ChildResult result;
  result.exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  if (state_->output.isOpen()) result.unread = readAll(state_->output.number(), result.output);
  if (state_->errors.isOpen() && !result.unread) result.unread = readAll(state_->errors.number(), result.errors);
  return result;
}

bool takeKeptWords(KeptWords& words) {
  std::fflush(nullptr);
  const auto take = [](int stream, std::string& taken) {
    const std::size_t before = taken.size();
    if (readAll(stream, taken)) {
      taken.resize(before);
      return false;
    }
    if (taken.size() == before) return true;
    if (::ftruncate(stream, 0) != 0) {
      taken.resize(before);
      return false;
    }
    return ::lseek(stream, 0, SEEK_SET) == 0;
  };
  return take(STDOUT_FILENO, words.output) && take(STDERR_FILENO, words.errors);
}

bool copiesShareMemory() { return true; }

std::optional<BegunCopy> begunCopy() { return std::nullopt; }

}  // namespace lvx::standin_platform
