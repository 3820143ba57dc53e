#pragma once

#include <QDialog>
#include <QSizeF>
#include <functional>
#include <memory>

#include "desktop/plan/plan_sheet.h"

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;

namespace lvx::desktop {

/// Asks for a sheet of paper that the plan goes on: its size, how it lies, the scale, which part, what stands around it.
///
///     PlanSheetDialog dialog({scene, look, whole, visible}, choices, PlanSheetDialog::For::Export, &window);
///     if (dialog.exec() == QDialog::Accepted) write(PlanSheet(scene, look, dialog.wish()));
class PlanSheetDialog : public QDialog {
  Q_OBJECT
 public:
  enum class For : std::uint8_t { Export, Print };
  /// What was chosen, for the next time.
  struct Choices {
    int paper = 0;
    bool isPortrait = false;
    QString scale;  ///< as typed; empty: fit
    bool showsEverything = false;
    bool hasGrid = true;
    bool hasLegend = true;
  };
  /// All of it outlives the dialog.
  struct Plan {
    const view::PlanScene& scene;
    const PlanLook& look;
    civil::Box visible;
    QString title;
    QString date;
  };

  PlanSheetDialog(Plan plan, const Choices& choices, For purpose, QWidget* parent);

  [[nodiscard]] Choices choices() const;
  [[nodiscard]] PlanSheetWish wish() const;

 private:
  void build(const Choices& choices, For purpose);
  /// 0: fit; below 0: can't be read.
  [[nodiscard]] double typedScale() const;
  void look();

  Plan plan_;
  QComboBox* paper_;
  QComboBox* orientation_;
  QComboBox* scale_;
  QComboBox* part_;
  QCheckBox* grid_;
  QCheckBox* legend_;
  QLabel* outcome_;
  QDialogButtonBox* buttons_;
};

}  // namespace lvx::desktop
