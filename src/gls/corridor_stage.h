#pragma once

#include "gls/corridor_records.h"
#include "gls/gls_records.h"

namespace lvx::host {
class Host;
}

namespace lvx::gls {

/// Reads what every corridor of the drawing says of the road at the report's stations, and fills the fields from
/// `crossFallLeft` to `edgeElevationRight`, and `elevation`, of the rows that a section reaches. `report` holds station
/// rows only.
///
/// The user is asked first, also where there are no corridors. At a yes each region of each corridor gets a section at
/// every row's station where it has none, labelled with the row's name, whatever stations the region spans; the corridor
/// is rebuilt once for each of its regions. That is the one place where the report changes the drawing; nothing undoes
/// it.
///
/// Rows and sections meet by station alone, within 0.000001, whatever alignment a baseline lies on; the section read last
/// decides. A section gives a row the values of three points, left edge, middle and right edge, being the first three
/// from the left; with only two points the right edge is what the last section of three points or more left behind, and
/// zeros before there was one. Rows that no section with at least two points of the road's surface reaches keep
/// kNoCorridor.
///
/// `corridors` comes in empty, is filled with every corridor read and goes to releaseCorridors. The corridors are those
/// of host::roadwayDocument(); without a connection there are none. What the host leaves out is passed over; a baseline
/// without a profile lies at elevation 0.
///
/// Costs n log n in sections, rows and the stations of each region, beside the host's own work.
void readCorridorData(host::Host& host, CorridorList& corridors, tglsReport& report);

}  // namespace lvx::gls
