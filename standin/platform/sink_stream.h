#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

namespace lvx::standin_platform {

/// Where the bytes of a stream go.
class ByteSink {
 public:
  ByteSink() = default;
  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  /// All of `bytes`; false puts the stream into its error state.
  [[nodiscard]] virtual bool write(std::string_view bytes) noexcept = 0;
  /// The stream is being closed, and all its bytes have come. False is what closing the stream reports as its failure.
  [[nodiscard]] virtual bool close() noexcept = 0;
};

/// A stream of the C library over an object, for writers that know such streams only. Whoever gets it closes it by
/// closeSinkStream, on whatever thread; that calls `close` and destroys the sink. Null where memory is short; the sink is
/// gone then, not closed. Where the C library has no such streams, the bytes wait in a temporary file and go into the sink
/// when the stream is closed.
[[nodiscard]] std::FILE* openSinkStream(std::unique_ptr<ByteSink> sink);
/// As std::fclose answers.
int closeSinkStream(std::FILE* stream) noexcept;

}  // namespace lvx::standin_platform
