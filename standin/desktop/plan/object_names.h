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
};

}  // namespace lvx::desktop
