#pragma once

#include <functional>

namespace lvx::cli {

/// Runs work to its end and gives the exit code of its process; what it throws is said on standard error first.
[[nodiscard]] int runGuarded(const std::function<int()>& work);

/// For std::set_terminate: where even what cleans up finds no memory, as in the destructors of some libraries.
[[noreturn]] void endWithoutMemory();

}  // namespace lvx::cli
