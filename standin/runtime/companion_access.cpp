#include "runtime/companion_access.h"

#include <utility>

namespace lvx::runtime {

namespace {
CompanionAccess* currentAccess = nullptr;
}

CompanionAccess* setCompanionAccess(CompanionAccess* access) noexcept { return std::exchange(currentAccess, access); }

}  // namespace lvx::runtime

extern "C" __attribute__((visibility("default"))) lvx::runtime::CompanionAccess* lvxCompanionAccess() {
  return lvx::runtime::currentAccess;
}
