#pragma once

namespace lvx::platform {

/// For systems whose loader binds a library to other libraries only, never to the program that loads it: a function that the
/// program of this process exports under `name`; null where it exports none.
[[nodiscard]] void* processFunction(const char* name);

}  // namespace lvx::platform
