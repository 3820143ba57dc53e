#pragma once

#include <cstdint>

#include "host/model.h"
#include "projection/tsl.h"

namespace lvx::projection {

/// Samples the surface along every sample line of `list`. Where no surface of that name exists, every record stays as
/// it is and nobody is told: the writers then give headings without rows.
void projectSampleLines(const host::Ref<host::QmtDocument>& document, const CString& surfaceName,
                        const SampleLineList& list);

/// Walks both sides of one sample line from the alignment outward and fills its four lists of samples, in place of what
/// they held. 1 when the surface was found, else 0 and the record untouched.
///
/// A sample's offset is that of its segment's inner vertex plus (on the left minus) the plan distance from there:
/// measured along the sample line, so on a skewed or bent line it isn't the distance from the alignment. Elevation and
/// position are the surface's own. Samples stand in the order in which the host gives them; what it gives twice stands
/// twice, and a gap in the surface isn't marked.
///
/// Raises framework::AutomationException where the host answers without any array. Linear in the samples.
std::int32_t projectSampleLine(const host::Ref<host::QmtDocument>& document, const CString& surfaceName, tsl& record);

}  // namespace lvx::projection
