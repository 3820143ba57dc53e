#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "landxml/detail/source.h"
#include "landxml/reader.h"

namespace lvx::landxml::detail {

/// Line ends in a text. Some 10 GB/s.
[[nodiscard]] std::size_t lineEnds(std::string_view text);

/// The file as a window of bytes that moves forward; a NUL stands behind its end.
class Input {
 public:
  /// `options` must outlive the input. Throws ReadError where the encoding isn't known.
  Input(std::unique_ptr<ByteSource> bytes, const std::string& file, const ReadOptions& options);

  /// Reads more behind the window, dropping what lies before `at`; `at` and `end` move. False at the end of the file.
  /// Throws ReadError: the bytes can't be read, a byte 0 stands among them (once all before it was in the window), the
  /// window would outgrow 64 MB; Cancelled.
  bool more();
  /// Reads several megabytes aside, from where the next `more` takes them: other threads may look at the window meanwhile.
  /// Failures wait for that call.
  void readAhead();
  /// How often the window has moved: as long as it doesn't, places in it stay.
  [[nodiscard]] std::size_t moves() const { return moves_; }
  /// Bytes of the file from `at` on, as far as they are known.
  [[nodiscard]] std::uint64_t bytesLeft() const;

  /// Line of the file at `place`, which must lie in the window at or after any place asked for before.
  std::size_t lineAt(const char* place) {
    countTo(place);
    return line_;
  }
  std::size_t line() { return lineAt(at); }
  /// Offset in the file (in the converted text, where there is one) of a place in the window.
  [[nodiscard]] std::uint64_t offsetOf(const char* place) const {
    return base_ + static_cast<std::uint64_t>(place - begin_);
  }
  /// Says what `lineAt` would count: so many line ends lie between `from`, up to which lines may have been counted, and
  /// `to`.
  void skipLines(const char* from, const char* to, std::size_t count) {
    if (counted_ > from) return;
    countTo(from);
    line_ += count;
    counted_ = to;
  }
  [[nodiscard]] const DecodedSource& source() const { return source_; }

  [[nodiscard]] const std::array<std::string, 128>* upperHalf() const { return source_.upperHalf.get(); }
  [[nodiscard]] const std::string& encodingWarning() const { return source_.warning; }
  [[nodiscard]] const std::string& file() const { return file_; }

  const char* at = nullptr;
  const char* end = nullptr;

 private:
  /// Room for bytes that are written before they are read.
  struct Buffer {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
    void make(std::size_t count);
  };

  [[nodiscard]] char* mutableEnd() { return buffer_.bytes.get() + (end - buffer_.bytes.get()); }

  void countTo(const char* place) {
    if (place <= counted_) return;
    line_ += lineEnds({counted_, static_cast<std::size_t>(place - counted_)});
    counted_ = place;
  }

  std::size_t take();
  void accept(std::size_t count);

  std::string file_;
  const ReadOptions& options_;
  DecodedSource source_;
  Buffer buffer_;
  const char* begin_ = nullptr;  // of the window's bytes
  std::uint64_t base_ = 0;       // offset of begin_
  const char* counted_ = nullptr;
  std::size_t line_ = 1;
  std::size_t moves_ = 0;
  std::uint64_t done_ = 0;
  std::uint64_t told_ = 0;
  bool hasNul_ = false;  // it stands at `end`

  Buffer ahead_;  // with room for the rest of a window in front
  std::size_t aheadCount_ = 0;
  bool isAhead_ = false;
  std::exception_ptr aheadFailure_;
};

}  // namespace lvx::landxml::detail
