#pragma once

namespace lvx::host {
class Host;
}

namespace lvx::projection {

/// The work of lvx_Report_Que: runs the dialog until OK or Cancel, with the user's picks in between, then collects,
/// projects and writes the ticked forms beside each other under one stem. A form that is skipped or can't be written
/// doesn't stop the next one. Exceptions pass through; everything taken is given back on the way.
void runProjectionReport(host::Host& host);

}  // namespace lvx::projection
