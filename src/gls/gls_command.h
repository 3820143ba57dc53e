#pragma once

namespace lvx::host {
class Host;
}

namespace lvx::gls {

/// The work of lvx_Report_GLS: runs the dialog until OK or Cancel, with the user's picks in between, then collects the
/// rows, which asks about adding corridor sections, and writes the ticked forms beside each other under one stem. A form
/// that is skipped or can't be written doesn't stop the next one. With no form ticked it still collects, so that sections
/// can be added without a report. Exceptions pass through; everything taken is given back on the way, but for sections
/// that were added.
void runGlsReport(host::Host& host);

}  // namespace lvx::gls
