#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "framework/exceptions.h"

namespace lvx::host {

/// An array as the host's automation hands it out in a variant: it may have any number of dimensions, any lower bound,
/// or not be there at all. Only one-dimensional arrays carry values that a reader may use.
template <class T>
struct HostArray {
  /// 0: the variant holds no array.
  std::int32_t dimensions = 0;
  std::int64_t lowerBound = 0;
  std::vector<T> values;

  /// A one-dimensional array, which may be empty.
  [[nodiscard]] static HostArray of(std::vector<T> values, std::int64_t lowerBound = 0) {
    return {1, lowerBound, std::move(values)};
  }
  /// A variant without an array.
  [[nodiscard]] static HostArray none() { return {}; }
  [[nodiscard]] bool isOneDimensional() const noexcept { return dimensions == 1; }
  /// Index of the last value of a one-dimensional array; one below `lowerBound` when it is empty.
  [[nodiscard]] std::int64_t upperBound() const noexcept {
    return lowerBound + static_cast<std::int64_t>(values.size()) - 1;
  }

  /// Gives the array's data back to the host. Where there is no array, the framework's wrapper raises.
  void destroyData() {
    if (dimensions == 0) throw framework::AutomationException("no array where the host was to hand one out");
    values.clear();
  }
};

}  // namespace lvx::host
