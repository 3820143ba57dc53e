// The access where a library can't be bound to the program that loads it: asked for by its name, once.

#include "companion/companion_access.h"
#include "platform/process_function.h"

extern "C" lvx::companion::CompanionAccess* lvxCompanionAccess() {
  using Accessor = lvx::companion::CompanionAccess* (*)();
  static const auto accessor = reinterpret_cast<Accessor>(lvx::platform::processFunction("lvxCompanionAccess"));
  return accessor == nullptr ? nullptr : accessor();
}
