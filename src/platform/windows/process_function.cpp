#include "platform/process_function.h"

#include <windows.h>

namespace lvx::platform {

void* processFunction(const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name));
}

}  // namespace lvx::platform
