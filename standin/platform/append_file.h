#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

namespace lvx::standin_platform {

/// A file that grows at its end, also where several processes add to it: a copy of this process has it too. Failures are
/// std::system_error. Programs that this one starts don't inherit it.
class AppendFile {
 public:
  /// Makes the file where there is none; `isEmptied`: what it holds goes.
  AppendFile(const std::filesystem::path& path, bool isEmptied);
  AppendFile(AppendFile&& other) noexcept;
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;
  ~AppendFile();

  /// True for an empty file, and for one whose last byte is a line feed.
  [[nodiscard]] bool endsWithLine() const;
  /// By one call of the system, which has all of it when this returns: the end of this process loses nothing any more. Where
  /// it fails a part may stand there.
  void append(std::string_view bytes);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
