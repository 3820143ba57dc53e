#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"
#include "host/model.h"

namespace lvx::points {

using framework::CString;

/// One row of the dialog's list of point groups.
struct tptgroup {
  CString name;
  CString spareName;
  /// How many points the row stands for.
  std::int32_t count = 0;
};

/// The point groups of a drawing in the host's order and, always last, the row of the points picked by hand, which is
/// the only one whose count changes. Frees only its own storage.
using PointGroupList = framework::CTypedPtrArray<framework::CPtrArray, tptgroup*>;

/// Fills `list` anew from the drawing; what it held before is freed. Always 1.
std::int32_t loadPointGroups(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                             PointGroupList& list);

/// Frees every row and empties the list.
void releasePointGroups(PointGroupList& list) noexcept;

}  // namespace lvx::points
