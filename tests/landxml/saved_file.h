#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "landxml/writer.h"
#include "support/run_program.h"

namespace lvx::landxml::testing {

inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
}

/// A folder that goes with the test.
class ScratchFolder {
 public:
  ScratchFolder() = default;
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    // The folder's own end takes away what is in it.
    std::error_code ignored;
    std::filesystem::permissions(path(), std::filesystem::perms::owner_all, ignored);
  }
  [[nodiscard]] std::string file(const std::string& name) const { return (path() / name).string(); }
  [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }
  /// Names of the files that a saving left, besides drawings.
  [[nodiscard]] std::size_t temporaryFiles() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path())) {
      count += entry.path().filename().string().rfind(".lvx-save-", 0) == 0 ? 1 : 0;
    }
    return count;
  }

 private:
  test::TemporaryFolder folder_;
};

/// Text of the error with which saving ends; empty where it doesn't.
inline std::string saveError(civil::Drawing& drawing, const std::string& source, const std::string& target,
                             const SaveOptions& options = {}) {
  try {
    saveDrawing(drawing, source, target, options);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

}  // namespace lvx::landxml::testing
