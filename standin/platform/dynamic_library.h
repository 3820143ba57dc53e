#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace lvx::standin_platform {

/// A library can't be loaded. The text is what the system's loader says, never translated.
class DynamicLibraryError : public std::runtime_error {
 public:
  enum class Problem {
    MissingLibrary,  ///< a library that it needs isn't found or can't be read
    WrongFormat,     ///< no library, or one for another system
    Other,
  };
  DynamicLibraryError(Problem problem, const std::string& words, std::string missing = {})
      : std::runtime_error(words), problem_(problem), missing_(std::move(missing)) {}

  [[nodiscard]] Problem problem() const { return problem_; }
  /// Name of the library that is missing, where it is one.
  [[nodiscard]] const std::string& missing() const { return missing_; }

 private:
  Problem problem_;
  std::string missing_;
};

/// A library of code, attached to this process as long as the object lives.
class DynamicLibrary {
 public:
  /// All that it needs is bound at once; what it needs is looked for beside it too. Its names stay its own: other libraries
  /// don't see them. Throws DynamicLibraryError.
  explicit DynamicLibrary(const std::filesystem::path& file);
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;
  ~DynamicLibrary();

  /// What the library exports under `name`; null where it exports no such thing.
  [[nodiscard]] void* find(const char* name) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
