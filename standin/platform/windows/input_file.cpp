#include "standin_platform/input_file.h"

#include <algorithm>
#include <string>
#include <system_error>

#include "standin_platform/windows/detail/names.h"
#include "standin_platform/windows/detail/stamp.h"

namespace lvx::standin_platform {

namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 26U;

class NoWriterCategory final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "pipe"; }
  [[nodiscard]] std::string message(int /*value*/) const override { return "no program writes into the pipe"; }
};

[[noreturn]] void failFor(const std::filesystem::path& path, std::error_code reason) {
  throw std::system_error(reason, path.string());
}

/// Waits until the pipe's other program is ready for one more.
void awaitPipe(const std::wstring& name) {
  constexpr DWORD kTenSeconds = 10'000;
  static const NoWriterCategory category;
  if (WaitNamedPipeW(name.c_str(), kTenSeconds) == 0) throw std::system_error(std::error_code(1, category));
}

}  // namespace

struct InputFile::State {
  Handle file;
  bool hasPlaces = false;
  std::uint64_t place = 0;  ///< of `read`, where the file has places
};

InputFile::InputFile(const std::filesystem::path& path) : state_(std::make_unique<State>()) {
  if (const std::error_code forbidden = whyForbidden(path)) failFor(path, forbidden);
  const std::wstring name = systemName(path);
  const auto open = [&] {
    return Handle(CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  };
  state_->file = open();
  if (!state_->file.isOpen() && GetLastError() == ERROR_PIPE_BUSY) {
    awaitPipe(name);
    state_->file = open();
  }
  if (!state_->file.isOpen()) failFor(path, lastError());
  if (GetFileType(state_->file.get()) != FILE_TYPE_DISK) return;
  BY_HANDLE_FILE_INFORMATION facts{};
  const auto stamp = stampOf(state_->file);
  if (!stamp || GetFileInformationByHandle(state_->file.get(), &facts) == 0) failFor(path, lastError());
  stamp_ = *stamp;
  kind_ = (facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? Kind::Folder : Kind::Regular;
  state_->hasPlaces = true;
}

InputFile::~InputFile() = default;

std::string InputFile::readAll() {
  std::string bytes;
  constexpr std::size_t kPiece = std::size_t{1} << 16U;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    const std::size_t count = read(bytes.data() + before, kPiece);
    bytes.resize(before + count);
    if (count < kPiece) return bytes;
  }
}

std::size_t InputFile::read(char* to, std::size_t size) {
  if (kind_ == Kind::Folder) throw std::system_error(std::make_error_code(std::errc::is_a_directory));
  if (state_->hasPlaces) {
    const std::size_t count = readAt(state_->place, to, size);
    state_->place += count;
    return count;
  }
  std::size_t done = 0;
  while (done < size) {
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(size - done, kMostAtOnce));
    if (ReadFile(state_->file.get(), to + done, wanted, &count, nullptr) == 0) {
      if (GetLastError() == ERROR_BROKEN_PIPE) break;
      throw std::system_error(lastError());
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

std::size_t InputFile::readAt(std::uint64_t offset, char* to, std::size_t size) const {
  std::size_t done = 0;
  while (done < size) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset + done);
    place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32U);
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(size - done, kMostAtOnce));
    if (ReadFile(state_->file.get(), to + done, wanted, &count, &place) == 0) {
      if (GetLastError() == ERROR_HANDLE_EOF) break;
      throw std::system_error(lastError());
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

}  // namespace lvx::standin_platform
