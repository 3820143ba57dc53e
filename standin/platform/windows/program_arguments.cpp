#include "standin_platform/program_arguments.h"

#include <memory>

#include <shellapi.h>
#include <windows.h>

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
