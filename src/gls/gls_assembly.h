#pragma once

#include "framework/text.h"
#include "gls/gls_records.h"
#include "host/model.h"

namespace lvx::host {
class Host;
}

namespace lvx::gls {

/// Computes the whole report of one alignment, one profile and one sample line group into the empty `report`: station
/// rows at the ends of the horizontal elements, at the sample lines and at the vertical curves, with the elevations of
/// the profile, what the corridors say (readCorridorData asks the user about adding sections), the distance rows
/// between them, and the design data spread over the rows.
///
/// An empty `siteName`, or one that begins with `*`, means the alignments outside any site. What the names don't find
/// counts as empty. The companion library has to be attached.
///
/// Raises framework::InvalidArgumentException, and leaves in `report` what stood until then, for
/// - an alignment that isn't found or has no elements;
/// - a profile that isn't found or has fewer than two points;
/// - more rows named like an intersection point than the profile has tangents for, which a sample line can bring about
///   whose name begins with the same two letters as message 334;
/// - an intersection point in the first row, or a report of one row.
///
/// Costs n log n in all that it reads, beside the host's own work.
void collectGlsRows(host::Host& host, const host::Ref<host::QmtDocument>& document,
                    const host::Ref<host::QmtDatabase>& database, const CString& siteName, const CString& alignmentName,
                    const CString& groupName, const CString& profileName, tglsReport& report);

}  // namespace lvx::gls
