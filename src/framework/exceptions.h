#pragma once

#include <exception>

namespace lvx::framework {

/// What the module raises and never catches: the command ends, its objects are destroyed on the way out, and whoever
/// ran the command is told. The classes cross the module boundary, so their type information stays visible.
class __attribute__((visibility("default"))) Exception : public std::exception {};

/// An index outside an array.
class __attribute__((visibility("default"))) InvalidArgumentException : public Exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "invalid argument: an index outside its array"; }
};

/// A failed automation call: a sheet that can't be written, an array that isn't there.
class __attribute__((visibility("default"))) AutomationException : public Exception {
 public:
  /// `reason` must outlive the exception: a string literal.
  explicit AutomationException(const char* reason = "automation call failed") noexcept : reason_(reason) {}
  [[nodiscard]] const char* what() const noexcept override { return reason_; }

 private:
  const char* reason_;
};

}  // namespace lvx::framework
