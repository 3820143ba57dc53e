#include "standin_platform/held_file.h"

#include <string>

#include "standin_platform/windows/detail/handle.h"
#include "standin_platform/windows/detail/names.h"

namespace lvx::standin_platform {

struct HeldFile::State {
  Handle file;
};

HeldFile::HeldFile(const std::filesystem::path& path) : state_(std::make_unique<State>()) {
  state_->file =
      Handle(CreateFileW(systemName(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                         nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

HeldFile::~HeldFile() = default;

// The system follows the open file to whatever name it gets. One that is removed has none: nothing is at its path then.
std::optional<std::filesystem::path> HeldFile::path() const {
  if (!state_->file.isOpen()) return std::nullopt;
  const DWORD needed = GetFinalPathNameByHandleW(state_->file.get(), nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring name(needed, L'\0');
  const DWORD size =
      needed == 0 ? 0 : GetFinalPathNameByHandleW(state_->file.get(), name.data(), needed, FILE_NAME_NORMALIZED);
  if (size == 0 || size >= needed) return std::nullopt;
  name.resize(size);
  return std::filesystem::path(name);
}

}  // namespace lvx::standin_platform
