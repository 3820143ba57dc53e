#include "companion/companion_access.h"

#include <utility>

namespace lvx::companion {

namespace {
CompanionAccess* currentAccess = nullptr;
}

CompanionAccess* setCompanionAccess(CompanionAccess* access) noexcept { return std::exchange(currentAccess, access); }

}  // namespace lvx::companion

extern "C" __attribute__((visibility("default"))) lvx::companion::CompanionAccess* lvxCompanionAccess() {
  return lvx::companion::currentAccess;
}
