#include "standin_platform/standard_input.h"

#include <cstddef>
#include <cstdio>
#include <system_error>
#include <vector>

#include <io.h>

#include "standin_platform/temporary_stream.h"
#include "standin_platform/windows/detail/handle.h"

namespace lvx::standin_platform {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18U;

/// Up to `size` bytes; 0 at the end.
std::size_t readPiece(char* to, std::size_t size) {
  DWORD count = 0;
  if (ReadFile(GetStdHandle(STD_INPUT_HANDLE), to, static_cast<DWORD>(size), &count, nullptr) != 0) return count;
  if (GetLastError() == ERROR_BROKEN_PIPE) return 0;
  throw std::system_error(lastError());
}

/// Empty where the system knows none.
std::filesystem::path nameOf(HANDLE file) {
  const DWORD needed = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring name(needed, L'\0');
  const DWORD size = needed == 0 ? 0 : GetFinalPathNameByHandleW(file, name.data(), needed, FILE_NAME_NORMALIZED);
  if (size == 0 || size >= needed) return {};
  name.resize(size);
  return name;
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
  state_->stream = openTemporaryStream();
  if (!state_->stream) throw std::system_error(lastError());
  std::vector<char> piece(kPiece);
  while (const std::size_t count = readPiece(piece.data(), piece.size()))
    if (std::fwrite(piece.data(), 1, count, state_->stream.get()) != count) throw std::system_error(lastError());
  if (std::fflush(state_->stream.get()) != 0) throw std::system_error(lastError());
  // It has a name here, as long as it is open.
  state_->path = nameOf(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(state_->stream.get()))));
  if (state_->path.empty()) throw std::system_error(lastError());
}

StandardInputFile::~StandardInputFile() = default;

const std::filesystem::path& StandardInputFile::path() const { return state_->path; }

std::filesystem::path standardInputName() {
  std::filesystem::path name = nameOf(GetStdHandle(STD_INPUT_HANDLE));
  return name.empty() ? std::filesystem::path(L"\\\\.\\CONIN$") : name;
}

}  // namespace lvx::standin_platform
