#pragma once

#include <cstddef>
#include <cstdint>

#include "framework/tpt3list.h"
#include "host/host_array.h"

namespace lvx::projection::detail {

/// Appends every complete triple x, y, z of a one-dimensional array to `points` and gives the array's data back to the
/// host. An array of another shape yields nothing; the one or two values after the last complete triple are lost. Where
/// there is no array at all, giving it back raises framework::AutomationException and `points` is as it was.
inline void takeTriples(host::HostArray<double> array, framework::tpt3list& points) {
  if (array.isOneDimensional()) {
    const std::size_t triples = array.values.size() / 3;
    points.reserveForAppending(static_cast<std::int32_t>(triples));
    const double* value = array.values.data();
    for (std::size_t i = 0; i < triples; ++i, value += 3) points.append({value[0], value[1], value[2]});
  }
  array.destroyData();
}

}  // namespace lvx::projection::detail
