#include "desktop/charts/chart_files.h"

namespace lvx::desktop {

bool canWriteSvg() { return false; }

QByteArray svgOf(const ChartPage& /*page*/, const Chart& /*chart*/) { return {}; }

}  // namespace lvx::desktop
