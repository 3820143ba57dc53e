// The accessor where a library can't be bound to the program that loads it: asked for by its name, once. What that program
// has no windows for, the module shows in windows of its own.

#include "host/host.h"
#include "native/host_with_windows.h"
#include "platform/process_function.h"

extern "C" lvx::host::Host* vnrxHost() {
  using Accessor = lvx::host::Host* (*)();
  static const auto accessor = reinterpret_cast<Accessor>(lvx::platform::processFunction("vnrxHost"));
  static lvx::native::HostWithWindows seen(L"LVX_MirelReport");
  return accessor == nullptr ? nullptr : seen.over(accessor());
}
