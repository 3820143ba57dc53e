#include "standin_platform/process_copy.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

#include <windows.h>

#include "standin_platform/detail/message_frame.h"
#include "standin_platform/program_arguments.h"
#include "standin_platform/program_file.h"
#include "standin_platform/windows/detail/begun_again.h"
#include "standin_platform/windows/detail/launch.h"

// Processes aren't copied here. The program begins again with the same arguments and one more before them, which names its
// end of the line; the first message on that is the request.
namespace lvx::standin_platform {

namespace {

constexpr int kInterruptedCode = 130;
constexpr int kAskedToEnd = 143;

/// Where the ends of all lines tell that something came.
HANDLE arrivals() {
  static const Handle port(CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1));
  return port.get();
}

}  // namespace

struct MessageLine::State {
  explicit State(Handle pipe) : end(std::move(pipe)) {
    if (CreateIoCompletionPort(end.get(), arrivals(), reinterpret_cast<ULONG_PTR>(this), 0) == nullptr)
      throw std::system_error(lastError());
    read();
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { close(); }

  void close() {
    if (!end.isOpen()) return;
    CancelIoEx(end.get(), &reading);
    // The system writes into this object until it has told the end of that.
    while (isReading) (void)hear(INFINITE);
    (void)end.close();
    isEnded = true;
  }

  /// Whether all of them went.
  bool write(const char* bytes, std::size_t size) const {
    constexpr std::size_t kMost = std::size_t{1} << 20U;
    const Handle written(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    while (size > 0 && written.isOpen()) {
      OVERLAPPED writing{};
      // With its lowest bit set the port hears nothing of it.
      writing.hEvent = reinterpret_cast<HANDLE>(reinterpret_cast<std::uintptr_t>(written.get()) | 1U);
      DWORD count = 0;
      if (WriteFile(end.get(), bytes, static_cast<DWORD>(std::min(size, kMost)), nullptr, &writing) == 0 &&
          GetLastError() != ERROR_IO_PENDING)
        return false;
      if (GetOverlappedResult(end.get(), &writing, &count, TRUE) == 0 || count == 0) return false;
      bytes += count;
      size -= count;
    }
    return size == 0;
  }

  /// Asks for what comes next.
  void read() {
    reading = {};
    isReading = ReadFile(end.get(), room.data(), static_cast<DWORD>(room.size()), nullptr, &reading) != 0 ||
                GetLastError() == ERROR_IO_PENDING;
    isEnded = !isReading;
  }

  /// Gives what came on any line to that line. False where nothing came in so long.
  static bool hear(DWORD longest) {
    DWORD count = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* done = nullptr;
    const bool isWell = GetQueuedCompletionStatus(arrivals(), &count, &key, &done, longest) != 0;
    if (done == nullptr) return false;
    auto& state = *reinterpret_cast<State*>(key);
    state.isReading = false;
    if (isWell && count > 0) state.part.append(state.room.data(), count);
    state.isEnded = !isWell;
    state.hasNews = true;
    return true;
  }

  Handle end;
  OVERLAPPED reading{};
  std::array<char, 65536> room{};
  bool isReading = false;
  bool isEnded = false;
  /// Something came that nobody has taken.
  bool hasNews = false;
  /// Begin of a message whose rest hasn't come.
  std::string part;
};

MessageLine::MessageLine(std::unique_ptr<State> state) : state_(std::move(state)) {}
MessageLine::MessageLine(MessageLine&& other) noexcept = default;
MessageLine::~MessageLine() = default;

bool MessageLine::send(std::string_view message) {
  if (!state_->end.isOpen()) return false;
  const auto head = detail::headOf(message.size());
  return state_->write(head.data(), head.size()) && state_->write(message.data(), message.size());
}

bool MessageLine::take(std::vector<std::string>& messages) {
  State& state = *state_;
  do {
    if (!state.isReading && !state.isEnded) state.read();
  } while (State::hear(0) || (!state.isReading && !state.isEnded));
  state.hasNews = false;
  detail::takeWhole(state.part, messages);
  return !state.isEnded;
}

void MessageLine::close() { state_->close(); }

void waitForMessages(std::span<MessageLine* const> lines, std::chrono::milliseconds longest) {
  const auto hasNews = [](const MessageLine* line) { return line->state_->hasNews || line->state_->isEnded; };
  if (std::any_of(lines.begin(), lines.end(), hasNews)) return;
  (void)MessageLine::State::hear(static_cast<DWORD>(longest.count()));
}

namespace {

struct Ends {
  std::unique_ptr<MessageLine::State> own;
  Handle other;
};

/// Two ends of a new line.
Ends newLine() {
  static std::atomic<unsigned> count = 0;
  constexpr DWORD kRoom = 65536;
  const std::wstring name =
      L"\\\\.\\pipe\\lvx-line-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(count++);
  Handle own(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                              PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, kRoom,
                              kRoom, 0, nullptr));
  if (!own.isOpen()) throw std::system_error(lastError());
  Handle other(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED,
                           nullptr));
  if (!other.isOpen()) throw std::system_error(lastError());
  return {std::make_unique<MessageLine::State>(std::move(own)), std::move(other)};
}

/// A standard stream of this process; nothing where it has none.
Handle standardStream(DWORD stream) {
  const HANDLE own = GetStdHandle(stream);
  HANDLE copy = nullptr;
  if (own != nullptr && own != INVALID_HANDLE_VALUE &&
      DuplicateHandle(GetCurrentProcess(), own, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS) != 0)
    return Handle(copy);
  return Handle(
      CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
}

}  // namespace

struct ProcessCopy::State {
  Launched process;  ///< not open: its end was waited for
  bool isInterrupted = false;
  bool isKept = false;
  Handle output;
  Handle errors;
};

ProcessCopy::ProcessCopy(std::string_view name, const std::string& request, const Work& /*work*/, Streams streams)
    : state_(std::make_unique<State>()), line_(std::unique_ptr<MessageLine::State>()) {
  state_->isKept = streams == Streams::Kept;
  state_->output = state_->isKept ? openKept() : standardStream(STD_OUTPUT_HANDLE);
  if (state_->output.isOpen()) state_->errors = state_->isKept ? openKept() : standardStream(STD_ERROR_HANDLE);
  const Handle nothing = openNothing();
  if (!state_->errors.isOpen() || !nothing.isOpen()) throw std::system_error(lastError());
  const auto program = programFile();
  if (!program) throw std::system_error(lastError());
  Ends ends = newLine();
  std::vector<std::string> arguments{begunAgainArgument(name, ends.other.get())};
  const std::vector<std::string> own = programArguments(0, nullptr);
  if (!own.empty()) arguments.insert(arguments.end(), own.begin() + 1, own.end());
  // What lies in the buffers of this process comes before what the other one says.
  std::fflush(nullptr);
  state_->process =
      launch(*program, arguments, {nothing.get(), state_->output.get(), state_->errors.get(), {ends.other.get()}});
  line_.state_ = std::move(ends.own);
  line_.send(request);  // where it is gone again, its end tells
}

ProcessCopy::~ProcessCopy() {
  if (!state_->process.process.isOpen()) return;
  TerminateProcess(state_->process.process.get(), kAskedToEnd);
  (void)wait();
}

void ProcessCopy::interrupt() {
  if (state_->process.process.isOpen() && !std::exchange(state_->isInterrupted, true)) askToStop(state_->process);
}

void ProcessCopy::stop() noexcept {
  if (!state_->process.process.isOpen()) return;
  line_.close();
  interrupt();
  const Launched ended = std::exchange(state_->process, {});
  (void)codeOf(ended.process);
}

ChildResult ProcessCopy::wait() {
  const Launched ended = std::exchange(state_->process, {});
  ChildResult result;
  result.exitCode = codeOf(ended.process);
  // One that was asked before it could hear that.
  if (state_->isInterrupted && result.exitCode == kAskedToEnd) result.exitCode = kInterruptedCode;
  if (state_->isKept) {
    result.unread = readAll(state_->output.get(), result.output);
    if (!result.unread) result.unread = readAll(state_->errors.get(), result.errors);
  }
  return result;
}

bool copiesShareMemory() { return false; }

bool takeKeptWords(KeptWords& words) {
  std::fflush(nullptr);
  const auto take = [](DWORD stream, std::string& taken) {
    const HANDLE kept = GetStdHandle(stream);
    const std::size_t before = taken.size();
    if (!readAll(kept, taken) && SetFilePointer(kept, 0, nullptr, FILE_BEGIN) == 0 && SetEndOfFile(kept) != 0)
      return true;
    taken.resize(before);
    return false;
  };
  return take(STD_OUTPUT_HANDLE, words.output) && take(STD_ERROR_HANDLE, words.errors);
}

std::optional<BegunCopy> begunCopy() {
  BegunAgain begun = begunAgain();
  if (begun.name.empty()) return std::nullopt;
  auto state = std::make_unique<MessageLine::State>(Handle(begun.line));
  MessageLine::State& taken = *state;
  MessageLine line(std::move(state));
  std::vector<std::string> messages;
  while (messages.empty() && line.take(messages)) {
    MessageLine* const own = &line;
    // Under Wine the first message doesn't always wake who waits for it; it comes at once, so this isn't for long.
    waitForMessages({&own, 1}, std::chrono::milliseconds(3));
  }
  if (messages.empty()) throw std::system_error(std::make_error_code(std::errc::broken_pipe));
  // What came with it is for the work.
  std::string rest;
  for (std::size_t i = 1; i < messages.size(); ++i) {
    const auto head = detail::headOf(messages[i].size());
    rest.append(head.data(), head.size()).append(messages[i]);
  }
  taken.part.insert(0, rest);
  taken.hasNews = !rest.empty();
  return BegunCopy{std::move(begun.name), std::move(messages.front()), std::move(line)};
}

}  // namespace lvx::standin_platform
