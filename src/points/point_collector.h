#pragma once

#include "host/model.h"
#include "points/point_list.h"

namespace lvx::points {

/// Appends one row for each point of one source to `rows`, in the order of that source, with station and offset against
/// one alignment. Nothing is filtered: a point far off or beyond the alignment's ends has its row, and a number that
/// stands twice in the source has two.
///
/// `siteText` means no site where it is empty, begins with a star, or is the words that the dialog shows for the
/// alignments outside any site. Names compare exactly. Of several sites of one name only the first is searched.
///
/// Where `groupText` is the words for the points picked by hand the source is `pickedNumbers`; otherwise it is the point
/// group of that name, and `pickedNumbers` isn't read. A number that no point of the drawing has gives a row of zeros
/// and empty texts but for the number and the alignment's name; zeros also where the alignment can't place the point.
///
/// No rows are the only sign that the alignment, the group or its points weren't found.
void collectPoints(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                   const CString& siteText, const CString& alignmentText, const CString& groupText,
                   const PickedNumbers& pickedNumbers, PointList& rows);

}  // namespace lvx::points
