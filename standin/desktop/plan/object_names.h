#pragma once

#include <QCoreApplication>
#include <QString>

#include "civil/drawing.h"

namespace lvx::desktop {

/// What users call the classes of objects.
class ObjectNames {
  Q_DECLARE_TR_FUNCTIONS(ObjectNames)

 public:
  /// "Sample line"
  [[nodiscard]] static QString kind(civil::ObjectKind kind);
  /// In lists over all sites: "Main road (North)", or the name alone outside any site.
  [[nodiscard]] static QString alignment(const civil::Site& site, const civil::AlignmentObject& alignment);
};

}  // namespace lvx::desktop
