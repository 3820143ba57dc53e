#include "host/site_tree.h"

namespace lvx::host {}  // namespace lvx::host
