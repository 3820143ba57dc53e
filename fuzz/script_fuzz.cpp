// Scripts come from files that people write: whatever stands in one must end in actions or in a ScriptError.
#include <cstdint>
#include <string_view>

#include "cli/script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    for (const auto& action : lvx::cli::parseScript({reinterpret_cast<const char*>(data), size}, "script.json"))
      (void)lvx::cli::describe(action);
  } catch (const lvx::cli::ScriptError&) {
    // What a reader of scripts is told.
  }
  return 0;
}
