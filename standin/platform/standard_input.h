#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace lvx::standin_platform {

/// All that comes on standard input, up to its end. Throws std::system_error, also where a signal breaks off the wait.
[[nodiscard]] std::string readStandardInput();

/// What comes on standard input, kept in a temporary file without a name, so that it can be read more than once.
class StandardInputFile {
 public:
  /// Reads standard input to its end. Throws std::system_error, also where a signal breaks off the wait.
  StandardInputFile();
  StandardInputFile(const StandardInputFile&) = delete;
  StandardInputFile& operator=(const StandardInputFile&) = delete;
  ~StandardInputFile();

  /// A path by which this program, and its copies, can open it, as long as this object lives.
  [[nodiscard]] const std::filesystem::path& path() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// A name for whatever is behind standard input, to be told from the names of other files; it may be nothing.
[[nodiscard]] std::filesystem::path standardInputName();

}  // namespace lvx::standin_platform
