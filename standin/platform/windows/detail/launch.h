#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "standin_platform/windows/detail/handle.h"

namespace lvx::standin_platform {

/// A process that this one started; it ends with this one, however that comes.
struct Launched {
  Handle process;
  DWORD number = 0;
};

struct LaunchStreams {
  HANDLE input = nullptr;
  HANDLE output = nullptr;
  HANDLE errors = nullptr;
  /// Further objects that it inherits, under their values here. It inherits nothing else.
  std::vector<HANDLE> others;
};

/// Starts `program`. Arguments reach it as they are: those in quotation marks are written as the C library's own rules undo it.
/// Throws std::system_error.
[[nodiscard]] Launched launch(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                              const LaunchStreams& streams);

/// Waits for its end. The code as it gave it; 128 and the number of the signal that stands for it elsewhere where the system
/// ended it.
[[nodiscard]] int codeOf(const Handle& process);

/// Asks it to stop: one of our programs by its own event, another one as Ctrl-Break does, or else by ending it.
void askToStop(const Launched& launched);

/// A file in the temporary folder for what a process says, gone when it is closed. Not open where there is no room.
[[nodiscard]] Handle openKept();
/// Appends what lies in it.
[[nodiscard]] std::error_code readAll(HANDLE kept, std::string& text);
/// Nothing to read.
[[nodiscard]] Handle openNothing();

}  // namespace lvx::standin_platform
