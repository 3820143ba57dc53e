#include "standin_platform/windows/detail/launch.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <memory>
#include <system_error>

#include "standin_platform/windows/detail/names.h"
#include "standin_platform/windows/detail/wish.h"

namespace lvx::standin_platform {

namespace {

constexpr int kBySignal = 128;
constexpr UINT kAskedToEnd = kBySignal + SIGTERM;

/// As the start of a C program takes a line apart: backslashes count only before a quotation mark.
void appendQuoted(std::wstring& line, const std::wstring& argument) {
  if (!line.empty()) line += L' ';
  if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
    line += argument;
    return;
  }
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    line.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
    backslashes = 0;
    line += c;
  }
  line.append(2 * backslashes, L'\\');
  line += L'"';
}

/// What was started ends with the last handle on this, so with this process.
HANDLE family() {
  static const Handle job = [] {
    Handle made(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (made.isOpen()) SetInformationJobObject(made.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return made;
  }();
  return job.get();
}

/// Names what a process inherits, and makes it one of the family from its first moment: one that were taken in later would
/// be left alone where this process ends before that.
class Inheritance {
 public:
  explicit Inheritance(std::vector<HANDLE> handles) : handles_(std::move(handles)), family_(family()) {
    std::sort(handles_.begin(), handles_.end());
    handles_.erase(std::unique(handles_.begin(), handles_.end()), handles_.end());
    for (const HANDLE handle : handles_)
      if (SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) == 0)
        throw std::system_error(lastError());
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 2, 0, &size);
    room_ = std::make_unique<std::byte[]>(size);
    if (InitializeProcThreadAttributeList(list(), 2, 0, &size) == 0) throw std::system_error(lastError());
    UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                              handles_.size() * sizeof(HANDLE), nullptr, nullptr);
    if (family_ != nullptr)
      UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_JOB_LIST, &family_, sizeof family_, nullptr, nullptr);
  }
  Inheritance(const Inheritance&) = delete;
  Inheritance& operator=(const Inheritance&) = delete;
  ~Inheritance() { DeleteProcThreadAttributeList(list()); }

  [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST list() const {
    return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(room_.get());
  }

 private:
  std::vector<HANDLE> handles_;
  HANDLE family_;
  std::unique_ptr<std::byte[]> room_;
};

}  // namespace

Launched launch(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                const LaunchStreams& streams) {
  std::wstring line;
  appendQuoted(line, program.native());
  for (const std::string& argument : arguments) appendQuoted(line, widened(argument));

  std::vector<HANDLE> handles = streams.others;
  handles.insert(handles.end(), {streams.input, streams.output, streams.errors});
  const Inheritance inheritance(std::move(handles));
  STARTUPINFOEXW start{};
  start.StartupInfo.cb = sizeof start;
  start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  start.StartupInfo.hStdInput = streams.input;
  start.StartupInfo.hStdOutput = streams.output;
  start.StartupInfo.hStdError = streams.errors;
  start.lpAttributeList = inheritance.list();

  PROCESS_INFORMATION made{};
  if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                     CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &start.StartupInfo,
                     &made) == 0)
    throw std::system_error(lastError());
  const Handle thread(made.hThread);
  return {Handle(made.hProcess), made.dwProcessId};
}

int codeOf(const Handle& process) {
  WaitForSingleObject(process.get(), INFINITE);
  DWORD code = 0;
  if (GetExitCodeProcess(process.get(), &code) == 0) return kBySignal + SIGABRT;
  constexpr DWORD kFirstOfTheSystem = 0xC0000000;
  if (code < kFirstOfTheSystem) return static_cast<int>(code);
  switch (code) {
    case STATUS_CONTROL_C_EXIT:
      return kBySignal + SIGINT;
    case STATUS_ILLEGAL_INSTRUCTION:
      return kBySignal + SIGILL;
    case STATUS_ACCESS_VIOLATION:
    case STATUS_STACK_OVERFLOW:
      return kBySignal + SIGSEGV;
    default:
      return kBySignal + SIGABRT;
  }
}

void askToStop(const Launched& launched) {
  const Handle wish(OpenEventW(EVENT_MODIFY_STATE, FALSE, wishNameOf(launched.number).c_str()));
  if (wish.isOpen() && SetEvent(wish.get()) != 0) return;
  if (GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, launched.number) != 0) return;
  TerminateProcess(launched.process.get(), kAskedToEnd);
}

Handle openKept() {
  std::array<wchar_t, MAX_PATH + 1> folder{};
  std::array<wchar_t, MAX_PATH + 1> name{};
  const DWORD size = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  if (size == 0 || size >= folder.size() || GetTempFileNameW(folder.data(), L"lvx", 0, name.data()) == 0) return {};
  return Handle(CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE | DELETE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, TRUNCATE_EXISTING,
                            FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

std::error_code readAll(HANDLE kept, std::string& text) {
  std::array<char, 4096> part{};
  for (std::uint64_t at = 0;;) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32U);
    DWORD count = 0;
    if (ReadFile(kept, part.data(), static_cast<DWORD>(part.size()), &count, &place) == 0)
      return GetLastError() == ERROR_HANDLE_EOF ? std::error_code() : lastError();
    if (count == 0) return {};
    text.append(part.data(), count);
    at += count;
  }
}

Handle openNothing() {
  return Handle(
      CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
}

}  // namespace lvx::standin_platform
