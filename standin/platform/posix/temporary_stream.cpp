#include "standin_platform/temporary_stream.h"

#include <fcntl.h>
#include <unistd.h>

namespace lvx::standin_platform {

Stream openTemporaryStream() {
  Stream stream(std::tmpfile());
  if (stream) ::fcntl(::fileno(stream.get()), F_SETFD, FD_CLOEXEC);
  return stream;
}

std::uint64_t placeIn(std::FILE* stream) { return static_cast<std::uint64_t>(::ftello(stream)); }

bool goTo(std::FILE* stream, std::uint64_t place) { return ::fseeko(stream, static_cast<off_t>(place), SEEK_SET) == 0; }

}  // namespace lvx::standin_platform
