#pragma once

#include <functional>

#include "landxml/detail/context.h"
#include "landxml/detail/scanner.h"

namespace lvx::landxml::detail {

/// All surfaces; takes the points and faces that streamed past out of `scanned`. `goOn` is asked before each index
/// is built and throws to cancel. Lengths are multiplied by `lengthFactor`. Threads and when the index is built are those of
/// `options`.
void readSurfaces(Context& context, ScannedDocument& scanned, double lengthFactor, const ReadOptions& options,
                  const std::function<void()>& goOn);

}  // namespace lvx::landxml::detail
