#include "desktop/plan/object_names.h"

#include "desktop/common/qt_text.h"

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

QString ObjectNames::alignment(const civil::Site& site, const civil::AlignmentObject& alignment) {
  const QString name = toQt(alignment.name);
  return site.name.empty() ? name : QStringLiteral("%1 (%2)").arg(name, toQt(site.name));
}

}  // namespace lvx::desktop
