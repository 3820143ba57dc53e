#include "standin_platform/freed_memory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lvx::standin_platform {

void keepFreedMemory() {
#ifdef __GLIBC__
  constexpr int kMegabyte = 1 << 20;
  ::mallopt(M_MMAP_THRESHOLD, 2 * kMegabyte);
  ::mallopt(M_TRIM_THRESHOLD, 8 * kMegabyte);
#endif
}

}  // namespace lvx::standin_platform
