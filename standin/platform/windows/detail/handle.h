#pragma once

#include <string_view>
#include <system_error>
#include <utility>

#include <windows.h>

namespace lvx::standin_platform {

/// The system's word for what failed last: in the C library's words where it has some for it, so that they are the same on
/// every system, else in the system's own.
[[nodiscard]] std::error_code lastError();
[[nodiscard]] std::error_code errorOf(DWORD code);

/// An object of the system's, closed at the end of its scope.
class Handle {
 public:
  Handle() = default;
  /// INVALID_HANDLE_VALUE and null are no object.
  explicit Handle(HANDLE value) : value_(value == INVALID_HANDLE_VALUE ? nullptr : value) {}
  Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Handle() { (void)close(); }

  [[nodiscard]] bool isOpen() const { return value_ != nullptr; }
  [[nodiscard]] HANDLE get() const { return value_; }
  [[nodiscard]] HANDLE release() { return std::exchange(value_, nullptr); }
  [[nodiscard]] bool close() { return value_ == nullptr || CloseHandle(std::exchange(value_, nullptr)) != 0; }
  /// All of `bytes`; gives what stopped it.
  [[nodiscard]] std::error_code write(std::string_view bytes) const;

 private:
  HANDLE value_ = nullptr;
};

}  // namespace lvx::standin_platform
