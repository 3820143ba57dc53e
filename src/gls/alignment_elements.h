#pragma once

#include <cstdint>

#include "framework/arrays.h"
#include "host/companion.h"
#include "host/model.h"

/// What the report asks of an alignment and its profile: the alignment by its names, and the profile as a chain of
/// pieces from which elevations can be computed.
namespace lvx::gls {

using framework::CString;

/// One piece of the profile. The chain runs tangent, curve, tangent, and so on, and ends on a tangent. Stations and
/// elevations in drawing units, grades as ratios.
struct tverticalElement {
  double startStation = 0.0;
  double startElevation = 0.0;
  double startGrade = 0.0;
  double endStation = 0.0;
  /// endElevation, endGrade and halfLength are of a curve only.
  double endElevation = 0.0;
  double endGrade = 0.0;
  /// 0.0 on a tangent, and on a curve that has no length; negative where the grade falls through the curve (a crest).
  double radius = 0.0;
  double halfLength = 0.0;
};

using VerticalElementList = framework::CTypedPtrArray<framework::CPtrArray, tverticalElement*>;

/// Finds the first alignment of exactly that name: outside any site, or in a site of exactly that name. Of several sites
/// of one name the first that has the alignment gives it. 1 when found; otherwise 0 and `alignment` as it was.
std::int32_t findAlignment(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                           const CString& siteName, const CString& alignmentName,
                           host::Ref<host::QmtAlignment>& alignment);

/// Appends the chain of a profile to `elements`, whose records the caller owns. `records` are the profile's intersection
/// points, start and end included, taken as they come: each point between gives a curve, also one of no length, and
/// curves that overlap give a chain whose stations fall back. Fewer than two records give nothing.
void buildVerticalElements(const host::RecordList<host::tvert>& records, VerticalElementList& elements);

}  // namespace lvx::gls
