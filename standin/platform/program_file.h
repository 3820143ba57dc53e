#pragma once

#include <filesystem>
#include <optional>

namespace lvx::standin_platform {

/// The file of the running program, links followed; empty where the system doesn't tell.
[[nodiscard]] std::optional<std::filesystem::path> programFile();

}  // namespace lvx::standin_platform
