#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"
#include "framework/tpt3list.h"

/// The corridors of a drawing as lists of records: the dialog offers them, the corridor stage reads their sections.
namespace lvx::gls {

/// One baseline of a corridor.
struct tbaseline {
  std::int32_t mark = 0;
  /// Handle text of the baseline's alignment.
  framework::CString alignmentHandle;
  /// The baseline's sections, ascending by station: station and two zeros, and once a section is read its cross-fall to
  /// the left and to the right in percent.
  framework::tpt3list stations;
};

/// One corridor. `description` and `handle` stay empty in the dialog's list.
struct tcorridor {
  std::int32_t mark = 0;
  framework::CString name;
  framework::CString description;
  framework::CString handle;
  /// In the model's order; releaseCorridors frees them.
  framework::CTypedPtrArray<framework::CPtrArray, tbaseline*> baselines;
};

using CorridorList = framework::CTypedPtrArray<framework::CPtrArray, tcorridor*>;

/// Frees every record of `list` with its baselines and empties it. Whoever asked for a list calls this at its end.
void releaseCorridors(CorridorList& list) noexcept;

}  // namespace lvx::gls
