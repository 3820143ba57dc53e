#include "projection/tsl.h"

namespace lvx::projection {

std::int32_t firstRightRow(const tsl& record) { return record.leftPoints.count() > 0 ? 1 : 0; }

}  // namespace lvx::projection
