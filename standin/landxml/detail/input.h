#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "landxml/detail/source.h"
#include "landxml/reader.h"

namespace lvx::landxml::detail {

/// The file as a window of bytes that moves forward; a NUL stands behind its end.
class Input {
 public:
  /// `options` must outlive the input. Throws ReadError where the encoding isn't known.
  Input(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options);

  /// Reads more behind the window, dropping what lies before `at`; `at` and `end` move. False at the end of the file.
  /// Throws ReadError: the bytes can't be read, a byte 0 stands among them, the window would outgrow 64 MB; Cancelled.
  bool more();

  /// Line of the file at `place`, which must lie in the window at or after any place asked for before.
  std::size_t lineAt(const char* place) {
    countTo(place);
    return line_;
  }
  std::size_t line() { return lineAt(at); }
  /// Offset in the file (in the converted text, where there is one) of a place in the window.
  [[nodiscard]] std::uint64_t offsetOf(const char* place) const {
    return base_ + static_cast<std::uint64_t>(place - buffer_.data());
  }
  [[nodiscard]] const DecodedSource& source() const { return source_; }

  [[nodiscard]] const std::array<std::string, 128>* upperHalf() const { return source_.upperHalf.get(); }
  [[nodiscard]] const std::string& encodingWarning() const { return source_.warning; }
  [[nodiscard]] const std::string& file() const { return file_; }

  const char* at = nullptr;
  const char* end = nullptr;

 private:
  [[nodiscard]] char* mutableEnd() { return buffer_.data() + (end - buffer_.data()); }

  void countTo(const char* place) {
    if (place <= counted_) return;
    line_ += static_cast<std::size_t>(std::count(counted_, place, '\n'));
    counted_ = place;
  }

  void accept(const char* fresh, std::size_t count);

  std::string file_;
  const ReadOptions& options_;
  DecodedSource source_;
  std::vector<char> buffer_;
  std::uint64_t base_ = 0;  // offset of buffer_'s begin
  const char* counted_ = nullptr;
  std::size_t line_ = 1;
  std::uint64_t done_ = 0;
  std::uint64_t told_ = 0;
};

}  // namespace lvx::landxml::detail
