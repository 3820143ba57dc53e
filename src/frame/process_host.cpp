// The accessor where a library can't be bound to the program that loads it: asked for by its name, once.

#include "host/host.h"
#include "platform/process_function.h"

extern "C" lvx::host::Host* vnrxHost() {
  using Accessor = lvx::host::Host* (*)();
  static const auto accessor = reinterpret_cast<Accessor>(lvx::platform::processFunction("vnrxHost"));
  return accessor == nullptr ? nullptr : accessor();
}
