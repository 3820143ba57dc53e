#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "framework/text.h"
#include "framework/tpt3list.h"

namespace lvx::projection {

using framework::CString;
using framework::tpt3;
using framework::tpt3list;

/// One sample line of the report: what the drawing says of it, and the ground that was found along it.
/// The collector fills everything down to the vertices, the computation the four lists of samples.
struct tsl {
  /// 0 after collection.
  std::int32_t mark = 0;
  /// Station on the alignment, as the sample line itself gives it.
  double station = 0.0;
  CString name;
  /// The group that the line came from.
  CString groupName;
  std::int64_t lineId = 0;
  /// Point of the alignment at `station`.
  double centreX = 0.0;
  double centreY = 0.0;
  /// Direction of the alignment at `station`: radians counter-clockwise from east, in [0, 2 pi).
  double direction = 0.0;

  /// Vertices as x, y, signed offset, ascending by offset: the farthest left first, the centre last.
  tpt3list leftVertices;
  /// The same from the centre to the farthest right. A vertex at offset 0 stands here.
  tpt3list rightVertices;

  /// Samples as x, y, elevation; the offset of each stands at the same index of the offset list, in its first
  /// coordinate. Left lists run from the outermost sample to the centre, right lists from the centre outward, so left
  /// then right is the way across the section from far left to far right.
  tpt3list leftPoints;
  tpt3list leftOffsets;
  tpt3list rightPoints;
  tpt3list rightOffsets;
};

/// The records of one report, ascending by station. Frees only its own storage: framework::destroyAll frees the
/// records, framework::OwnedList does so at the end of a scope.
using SampleLineList = framework::CTypedPtrArray<framework::CPtrArray, tsl*>;

/// First right sample that a writer shows. Where the left side has rows, the right side's first sample is taken to be
/// the centre once more and is dropped - wherever it lies: tables in the field are laid out for exactly these rows.
[[nodiscard]] std::int32_t firstRightRow(const tsl& record);

}  // namespace lvx::projection
