#pragma once

#include <string_view>
#include <system_error>
#include <utility>

namespace lvx::standin_platform {

/// The system's word for what failed last.
[[nodiscard]] std::error_code lastError();

/// An open file of this process, closed at the end of its scope.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { (void)close(); }

  [[nodiscard]] bool isOpen() const { return number_ >= 0; }
  [[nodiscard]] int number() const { return number_; }
  /// False where the system reports a late error of writing.
  [[nodiscard]] bool close();
  /// The file's content, or a folder's names, are on the disk; false where the system can't say so.
  [[nodiscard]] bool flushToDisk() const;
  /// All of `bytes`; gives what stopped it.
  [[nodiscard]] std::error_code write(std::string_view bytes) const;

 private:
  int number_ = -1;
};

}  // namespace lvx::standin_platform
