// Scripts come from files that people write: whatever stands in one must end in actions or in a ScriptError.
#include <cstdint>
#include <string_view>

#include "script/script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    for (const auto& action : lvx::script::parseScript({reinterpret_cast<const char*>(data), size}, "script.json"))
      (void)lvx::script::describe(action);
  } catch (const lvx::script::ScriptError&) {
    // What a reader of scripts is told.
  }
  return 0;
}
