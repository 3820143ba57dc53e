#include "standin_platform/program_file.h"

#include <system_error>

namespace lvx::standin_platform {

std::optional<std::filesystem::path> programFile() {
  std::error_code error;
  std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return program;
}

}  // namespace lvx::standin_platform
