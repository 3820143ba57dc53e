#pragma once

#include <filesystem>
#include <memory>
#include <optional>

namespace lvx::standin_platform {

/// Keeps hold of a file's content while its name may come to lead elsewhere: the file may be renamed, replaced or removed
/// by others.
class HeldFile {
 public:
  /// Holds nothing where the file can't be opened.
  explicit HeldFile(const std::filesystem::path& path);
  HeldFile(const HeldFile&) = delete;
  HeldFile& operator=(const HeldFile&) = delete;
  ~HeldFile();

  /// A path by which this program can open that very file, as long as this object lives; empty where it holds nothing.
  [[nodiscard]] std::optional<std::filesystem::path> path() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
