#pragma once

#include <QCoreApplication>
#include <QString>
#include <string>

#include "properties/table.h"

namespace lvx::desktop {

/// What users call the values of objects.
class PropertyWords {
  Q_DECLARE_TR_FUNCTIONS(PropertyWords)

 public:
  /// "Radius in"
  [[nodiscard]] static QString term(properties::Term term);
  /// A term for functions without Qt.
  [[nodiscard]] static std::string words(properties::Term term);
  /// The unit of a form's values, "m", "m²", "%"; empty for none. `linearUnit`: the drawing's.
  [[nodiscard]] static QString unit(properties::Form form, const std::string& linearUnit);
  /// Over a column: "Length [m]".
  [[nodiscard]] static QString heading(const properties::Column& column, const std::string& linearUnit);
};

}  // namespace lvx::desktop
