#pragma once

#include <QCoreApplication>
#include <QString>

namespace lvx::desktop {

/// What users read of the module's commands. A command that isn't known here (another module's) is called by its name.
class ReportNames {
  Q_DECLARE_TR_FUNCTIONS(ReportNames)

 public:
  /// "Profile &projection…", for menus.
  [[nodiscard]] static QString action(const QString& command);
  /// "Profile projection", for sentences.
  [[nodiscard]] static QString title(const QString& command);
  /// A sentence on what the report holds.
  [[nodiscard]] static QString tip(const QString& command);
  /// As common/icons.h names them.
  [[nodiscard]] static QString icon(const QString& command);
};

}  // namespace lvx::desktop
