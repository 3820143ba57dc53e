#include "standin_platform/sink_stream.h"

#include <sys/types.h>

namespace lvx::standin_platform {

namespace {

ssize_t writeTo(void* cookie, const char* data, std::size_t size) {
  // 0 is what the C library takes as a write error.
  return static_cast<ByteSink*>(cookie)->write({data, size}) ? static_cast<ssize_t>(size) : 0;
}

int closeSink(void* cookie) {
  const std::unique_ptr<ByteSink> sink(static_cast<ByteSink*>(cookie));
  return sink->close() ? 0 : EOF;
}

}  // namespace

std::FILE* openSinkStream(std::unique_ptr<ByteSink> sink) {
  const cookie_io_functions_t functions{nullptr, writeTo, nullptr, closeSink};
  std::FILE* const stream = ::fopencookie(sink.get(), "w", functions);
  if (stream == nullptr) return nullptr;
  [[maybe_unused]] ByteSink* const ownedByStream = sink.release();
  constexpr std::size_t kBufferSize = 1 << 16;
  std::setvbuf(stream, nullptr, _IOFBF, kBufferSize);
  return stream;
}

int closeSinkStream(std::FILE* stream) noexcept { return std::fclose(stream); }

}  // namespace lvx::standin_platform
