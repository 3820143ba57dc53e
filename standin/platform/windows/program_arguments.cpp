#include "standin_platform/program_arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

#include "standin_platform/windows/detail/begun_again.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

namespace {

struct StartMode {
  int newMode;
};

/// Of the C run time, in place of the shell's library, which takes longer to load than the whole program.
extern "C" int __cdecl __wgetmainargs(int* count, wchar_t*** words, wchar_t*** variables, int patterns,
                                      StartMode* mode);

constexpr std::string_view kBegunAgain = "__begun-again=";

std::vector<std::string> allArguments() {
  int count = 0;
  wchar_t** words = nullptr;
  wchar_t** variables = nullptr;
  StartMode mode{};
  std::vector<std::string> texts;
  if (__wgetmainargs(&count, &words, &variables, 0, &mode) != 0) return texts;
  for (int i = 0; i < count; ++i) texts.push_back(narrowed(words[i]));
  return texts;
}

bool saysBegunAgain(const std::vector<std::string>& arguments) {
  return arguments.size() > 1 && arguments[1].starts_with(kBegunAgain);
}

}  // namespace

// The program's own are in the ANSI code page, which lacks most letters.
std::vector<std::string> programArguments(int /*count*/, char** /*arguments*/) {
  std::vector<std::string> arguments = allArguments();
  if (saysBegunAgain(arguments)) arguments.erase(arguments.begin() + 1);
  return arguments;
}

std::string begunAgainArgument(std::string_view name, HANDLE line) {
  return std::string(kBegunAgain) + std::string(name) + ":" + std::to_string(reinterpret_cast<std::uintptr_t>(line));
}

BegunAgain begunAgain() {
  const std::vector<std::string> arguments = allArguments();
  if (!saysBegunAgain(arguments)) return {};
  const std::string_view said = std::string_view(arguments[1]).substr(kBegunAgain.size());
  const std::size_t end = std::min(said.find(':'), said.size());
  std::uintptr_t line = 0;
  if (end < said.size()) std::from_chars(said.data() + end + 1, said.data() + said.size(), line);
  return {std::string(said.substr(0, end)), reinterpret_cast<HANDLE>(line)};
}

}  // namespace lvx::standin_platform
