#pragma once

#include <filesystem>
#include <memory>

namespace lvx::standin_platform {

/// A folder for what a library writes on its way to a file: beside the file, so that both lie on one disk, and gone with all
/// that it holds at the end of its scope. One whose process was killed is taken away by the next run that writes in the
/// folder above it.
class ScratchFolder {
 public:
  /// Throws std::system_error where it can't be made.
  explicit ScratchFolder(const std::filesystem::path& above);
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  [[nodiscard]] const std::filesystem::path& path() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
