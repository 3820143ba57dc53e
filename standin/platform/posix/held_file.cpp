#include "standin_platform/held_file.h"

#include <string>

#include <fcntl.h>

#include "standin_platform/posix/detail/descriptor.h"

namespace lvx::standin_platform {

struct HeldFile::State {
  Descriptor file;
};

HeldFile::HeldFile(const std::filesystem::path& path) : state_(std::make_unique<State>()) {
  state_->file = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

HeldFile::~HeldFile() = default;

std::optional<std::filesystem::path> HeldFile::path() const {
  if (!state_->file.isOpen()) return std::nullopt;
  return "/proc/self/fd/" + std::to_string(state_->file.number());
}

}  // namespace lvx::standin_platform
