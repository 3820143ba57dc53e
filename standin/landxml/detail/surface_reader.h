#pragma once

#include <functional>
#include <map>

#include "landxml/detail/context.h"
#include "landxml/detail/tin_collector.h"

namespace lvx::landxml::detail {

/// All surfaces; takes the points and faces that streamed past out of `definitions`. `goOn` is asked before each index
/// is built and throws to cancel. Lengths are multiplied by `lengthFactor`.
void readSurfaces(Context& context, std::map<std::size_t, TinCollector>& definitions, double lengthFactor,
                  const std::function<void()>& goOn);

}  // namespace lvx::landxml::detail
