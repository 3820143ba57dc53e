#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "desktop/plan/plan_sheet.h"
#include "desktop/shell/plan_sheet_dialog.h"

class QPrinter;
class QWidget;

namespace lvx::desktop {

class PlanView;

/// Prints and exports the plan on sheets of paper.
class PlanOutput : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it; boxes stand over `window`.
  PlanOutput(QWidget& window, const PlanView& plan);

  /// Asks for the sheet, then for the file. `title`: of the drawing. Nothing happens where none is shown.
  void askExport(const QString& title);
  /// Asks for the sheet, then for the printer.
  void askPrint(const QString& title);

  /// Prints a sheet, whose paper the printer has. Gives what went wrong, for the user, or nothing.
  [[nodiscard]] static QString print(const PlanSheet& sheet, QPrinter& printer);

 Q_SIGNALS:
  void exported(const QString& path);

 private:
  [[nodiscard]] std::optional<PlanSheetWish> askSheet(const QString& title, PlanSheetDialog::For purpose);

  QWidget& window_;
  const PlanView& plan_;
  PlanSheetDialog::Choices choices_;
};

}  // namespace lvx::desktop
