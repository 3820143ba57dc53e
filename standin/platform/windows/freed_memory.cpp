#include "standin_platform/freed_memory.h"

namespace lvx::standin_platform {

void keepFreedMemory() {}

}  // namespace lvx::standin_platform
