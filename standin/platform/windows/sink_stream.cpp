#include "standin_platform/sink_stream.h"

#include <array>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "standin_platform/temporary_stream.h"

namespace lvx::standin_platform {

namespace {

// The C library here has no streams over objects: what is written goes into a temporary file, and from there into the sink
// when the stream is closed.
std::mutex mutex;
std::map<std::FILE*, std::unique_ptr<ByteSink>>& sinks() {
  static std::map<std::FILE*, std::unique_ptr<ByteSink>> all;
  return all;
}

bool pass(std::FILE* stream, ByteSink& sink) {
  bool isWritten = std::ferror(stream) == 0 && std::fflush(stream) == 0;
  std::rewind(stream);
  std::array<char, 65536> part{};
  while (isWritten) {
    const std::size_t size = std::fread(part.data(), 1, part.size(), stream);
    if (size == 0) return std::ferror(stream) == 0;
    isWritten = sink.write({part.data(), size});
  }
  return false;
}

}  // namespace

std::FILE* openSinkStream(std::unique_ptr<ByteSink> sink) {
  Stream stream = openTemporaryStream();
  if (!stream) return nullptr;
  try {
    const std::lock_guard guard(mutex);
    sinks().emplace(stream.get(), std::move(sink));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return stream.release();
}

int closeSinkStream(std::FILE* stream) noexcept {
  std::unique_ptr<ByteSink> sink;
  {
    const std::lock_guard guard(mutex);
    const auto found = sinks().find(stream);
    if (found == sinks().end()) return std::fclose(stream);
    sink = std::move(found->second);
    sinks().erase(found);
  }
  const bool isPassed = pass(stream, *sink);
  std::fclose(stream);
  const bool isClosed = sink->close();
  return isPassed && isClosed ? 0 : EOF;
}

}  // namespace lvx::standin_platform
