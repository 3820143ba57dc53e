#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace lvx::generator {

/// Buffered text going to a file or into memory. Numbers are rounded as integers of their last decimal (halves
/// upwards), so that what is printed doesn't depend on a C library.
class TextOutput {
 public:
  /// Writes to `path`; throws std::runtime_error where it can't be opened.
  explicit TextOutput(const std::string& path);
  /// Collects in memory, for `text()`.
  TextOutput() = default;
  TextOutput(const TextOutput&) = delete;
  TextOutput& operator=(const TextOutput&) = delete;
  ~TextOutput();

  TextOutput& operator<<(std::string_view text);
  TextOutput& operator<<(char character);
  TextOutput& integer(std::int64_t value);
  /// Exactly `decimals` places (up to 9); never "-0". |value| below 1e9.
  TextOutput& fixed(double value, int decimals);
  /// Up to `decimals` places without trailing zeros: 20, 12.5, -0.025.
  TextOutput& number(double value, int decimals);
  /// Upper-case hexadecimal, as handles are written.
  TextOutput& hexadecimal(std::uint64_t value);

  [[nodiscard]] const std::string& text() const { return buffer_; }
  /// Writes out what is left and closes the file; throws std::runtime_error where anything was not written.
  void finish();

 private:
  void append(const char* from, const char* to);
  void flush();

  std::FILE* file_ = nullptr;
  std::string path_;
  std::string buffer_;
  bool failed_ = false;
};

/// A length as its printed form will read back.
[[nodiscard]] double roundedTo(double value, int decimals);

}  // namespace lvx::generator
