#include "platform/posix/posix_platform.h"

namespace lvx::platform {}  // namespace lvx::platform
