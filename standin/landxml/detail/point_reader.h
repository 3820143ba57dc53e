#pragma once

#include "landxml/detail/context.h"

namespace lvx::landxml::detail {

/// Points and point groups from all CgPoints collections.
void readPoints(Context& context);

}  // namespace lvx::landxml::detail
