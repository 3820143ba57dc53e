#pragma once

namespace lvx::host {
class Host;
}

namespace lvx::points {

/// The work of lvx_Report_Points: runs the dialog until OK or Cancel, with the user's picks of an alignment or of points
/// in between, then collects, sorts and writes the ticked forms beside each other under one stem. Unlike the profile
/// projection report it gives the dialog back where the output path has no folder, and writes nothing at all where there
/// are no rows. A form that is skipped or can't be written doesn't stop the next one. Exceptions pass through;
/// everything taken is given back on the way.
void runPointsReport(host::Host& host);

}  // namespace lvx::points
