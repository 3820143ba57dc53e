#include "desktop/plan/object_names.h"

namespace lvx::desktop {

QString ObjectNames::kind(civil::ObjectKind kind) {
  switch (kind) {
    case civil::ObjectKind::Site:
      return tr("Site");
    case civil::ObjectKind::Alignment:
      return tr("Alignment");
    case civil::ObjectKind::Profile:
      return tr("Profile");
    case civil::ObjectKind::SampleLineGroup:
      return tr("Sample line group");
    case civil::ObjectKind::SampleLine:
      return tr("Sample line");
    case civil::ObjectKind::Surface:
      return tr("Surface");
    case civil::ObjectKind::Point:
      return tr("Point");
    case civil::ObjectKind::PointGroup:
      return tr("Point group");
    case civil::ObjectKind::Corridor:
      return tr("Corridor");
  }
  return {};
}

}  // namespace lvx::desktop
