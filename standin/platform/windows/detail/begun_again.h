#pragma once

#include <string>
#include <string_view>

#include <windows.h>

namespace lvx::standin_platform {

/// The argument by which a program that is begun again knows its work and its end of the line: the first one, hidden from
/// who asks for the program's arguments.
[[nodiscard]] std::string begunAgainArgument(std::string_view name, HANDLE line);

struct BegunAgain {
  std::string name;  ///< empty: the program was begun as any
  HANDLE line = nullptr;
};

/// Of this process.
[[nodiscard]] BegunAgain begunAgain();

}  // namespace lvx::standin_platform
