#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

namespace lvx::standin_platform {

struct StreamCloser {
  void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

/// A file for writing and reading back, in the system's temporary folder: without a name, gone when it is closed, and not
/// inherited by programs that this one starts. Null where the folder takes none.
[[nodiscard]] Stream openTemporaryStream();

/// How many bytes of `stream` lie before its place, beyond 2 GB too.
[[nodiscard]] std::uint64_t placeIn(std::FILE* stream);
/// Goes on reading or writing there. False where that fails.
[[nodiscard]] bool goTo(std::FILE* stream, std::uint64_t place);

}  // namespace lvx::standin_platform
