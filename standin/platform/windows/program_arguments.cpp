#include "standin_platform/program_arguments.h"

#include <memory>

// In this order: the second one needs the first.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

// The program's own are in the ANSI code page, which lacks most letters.
std::vector<std::string> programArguments(int /*count*/, char** /*arguments*/) {
  struct Freer {
    void operator()(wchar_t** words) const noexcept { LocalFree(words); }
  };
  int count = 0;
  const std::unique_ptr<wchar_t*, Freer> words(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> texts;
  for (int i = 0; words && i < count; ++i) texts.push_back(narrowed(words.get()[i]));
  return texts;
}

}  // namespace lvx::standin_platform
