#include "desktop/plan/plan_sheet_files.h"

namespace lvx::desktop {

bool canWritePlanSvg() { return false; }

QByteArray planSvg(const PlanSheet& /*sheet*/) { return {}; }

}  // namespace lvx::desktop
