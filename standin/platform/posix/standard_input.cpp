#include "standin_platform/standard_input.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <system_error>
#include <vector>

#include <unistd.h>

#include "standin_platform/posix/detail/descriptor.h"
#include "standin_platform/temporary_stream.h"

namespace lvx::standin_platform {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;

/// Up to `size` bytes; 0 at the end.
std::size_t readPiece(char* to, std::size_t size) {
  const ssize_t count = ::read(STDIN_FILENO, to, size);
  if (count < 0) throw std::system_error(lastError());
  return static_cast<std::size_t>(count);
}

}  // namespace

std::string readStandardInput() {
  std::string bytes;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    const std::size_t count = readPiece(bytes.data() + before, kPiece);
    bytes.resize(before + count);
    if (count == 0) return bytes;
  }
}

struct StandardInputFile::State {
  Stream stream;
  std::filesystem::path path;
};

StandardInputFile::StandardInputFile() : state_(std::make_unique<State>()) {
  errno = 0;
  state_->stream = openTemporaryStream();
  if (!state_->stream) throw std::system_error(lastError());
  std::vector<char> piece(kPiece);
  while (const std::size_t count = readPiece(piece.data(), piece.size()))
    if (std::fwrite(piece.data(), 1, count, state_->stream.get()) != count) throw std::system_error(lastError());
  if (std::fflush(state_->stream.get()) != 0) throw std::system_error(lastError());
  state_->path = "/proc/self/fd/" + std::to_string(::fileno(state_->stream.get()));
}

StandardInputFile::~StandardInputFile() = default;

const std::filesystem::path& StandardInputFile::path() const { return state_->path; }

std::filesystem::path standardInputName() { return "/dev/stdin"; }

}  // namespace lvx::standin_platform
