#pragma once

#include <functional>
#include <map>

#include "landxml/detail/context.h"
#include "landxml/detail/tin_collector.h"

namespace lvx::landxml::detail {

/// All surfaces; takes the points and faces that streamed past out of `definitions`. `goOn` is asked before each index
/// is built and throws to cancel.
void readSurfaces(Context& context, std::map<std::size_t, TinCollector>& definitions,
                  const std::function<void()>& goOn);

}  // namespace lvx::landxml::detail
