#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <windows.h>

#include "support/run_program.h"

namespace lvx {

/// A process whose words go to files of its folder, "said" and "errors". It ends with this object.
class Started {
 public:
  /// `creation` tells of which console and group it is. Throws std::runtime_error where it can't be started.
  Started(std::wstring line, const std::filesystem::path& folder, DWORD creation = CREATE_NEW_PROCESS_GROUP)
      : folder_(folder) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = open(L"said", inherited);
    start.hStdError = open(L"errors", inherited);
    const BOOL isStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, creation, nullptr,
                                          folder.c_str(), &start, &process_);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
    if (isStarted == 0) throw std::runtime_error("the program can't be started");
  }
  Started(const Started&) = delete;
  Started& operator=(const Started&) = delete;
  ~Started() {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, INFINITE);
    CloseHandle(process_.hProcess);
    CloseHandle(process_.hThread);
  }

  /// As the system counts processes.
  [[nodiscard]] DWORD number() const { return process_.dwProcessId; }
  [[nodiscard]] bool runs() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT; }
  void kill() const { TerminateProcess(process_.hProcess, 9); }
  /// As who started it asks it to end. False where it can't be asked.
  [[nodiscard]] bool ask() const {
    const HANDLE wish =
        OpenEventW(EVENT_MODIFY_STATE, FALSE, (L"Local\\lvx-interruption-" + std::to_wstring(number())).c_str());
    const bool isAsked = wish != nullptr && SetEvent(wish) != 0;
    if (wish != nullptr) CloseHandle(wish);
    return isAsked;
  }
  /// Waits for its end.
  [[nodiscard]] int code() const {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return static_cast<int>(code);
  }
  [[nodiscard]] std::string said() const { return test::fileBytes(folder_ / "said"); }
  [[nodiscard]] std::string errors() const { return test::fileBytes(folder_ / "errors"); }

 private:
  [[nodiscard]] HANDLE open(const wchar_t* name, SECURITY_ATTRIBUTES& inherited) const {
    return CreateFileW((folder_ / name).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  }

  std::filesystem::path folder_;
  PROCESS_INFORMATION process_{};
};

}  // namespace lvx
