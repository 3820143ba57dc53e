#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "standin_platform/file_stamp.h"

namespace lvx::standin_platform {

/// A file that is read, from its begin to its end or at any place. Failures are std::system_error, whose code has the
/// system's words. Programs that this one starts don't inherit it.
class InputFile {
 public:
  enum class Kind {
    Regular,
    Folder,  ///< opens, but can't be read
    Other,   ///< a device or a pipe: it can be read from its begin to its end only, and its size means nothing
  };

  /// A named pipe is waited for ten seconds until a program writes into it.
  explicit InputFile(const std::filesystem::path& path);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  [[nodiscard]] Kind kind() const { return kind_; }
  /// As it was when it was opened.
  [[nodiscard]] const FileStamp& stamp() const { return stamp_; }
  /// The next `size` bytes; fewer only at the end. Unbuffered. A signal that comes while it waits for a pipe is a failure,
  /// so that a user can break off the wait.
  std::size_t read(char* to, std::size_t size);
  /// All that is left.
  [[nodiscard]] std::string readAll();
  /// `size` bytes from `offset`; fewer only at the end. Leaves the place of `read` alone; callable from several threads.
  std::size_t readAt(std::uint64_t offset, char* to, std::size_t size) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
  Kind kind_ = Kind::Other;
  FileStamp stamp_;
};

}  // namespace lvx::standin_platform
