#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>
#include <utility>
#include <vector>

#include "civil/drawing.h"
#include "civil/profile.h"

class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;

namespace lvx::desktop {

/// Asks for a ground profile: an alignment, the surface below it, a name, how far points may be thinned. What would come
/// of it stands below, and is there to be taken once the dialog was accepted.
///
///     GroundProfileDialog dialog(drawing, selected, &window);
///     if (dialog.exec() == QDialog::Accepted) add(dialog.alignment(), dialog.name(), dialog.takeProfile());
class GroundProfileDialog : public QDialog {
  Q_OBJECT
 public:
  /// Begins with the objects that are `chosen` already, if they are of use. The drawing stays as it is meanwhile.
  GroundProfileDialog(const civil::Drawing& drawing, const std::vector<civil::Handle>& chosen, QWidget* parent);

  /// 0 where the drawing has none.
  [[nodiscard]] civil::Handle alignment() const;
  [[nodiscard]] QString name() const;
  [[nodiscard]] civil::Profile takeProfile() { return std::move(profile_); }

 private:
  void fill(const std::vector<civil::Handle>& chosen);
  void build();
  [[nodiscard]] const civil::AlignmentObject* alignmentObject() const;
  [[nodiscard]] const civil::SurfaceObject* surfaceObject() const;
  /// A name that no profile of the alignment has, by the surface's.
  void proposeName();
  void later();
  void look();
  /// What stands against the profile; empty where nothing does.
  [[nodiscard]] QString problem() const;

  const civil::Drawing& drawing_;
  std::vector<const civil::AlignmentObject*> alignments_;
  QComboBox* alignment_;
  QComboBox* surface_;
  QLineEdit* name_;
  QDoubleSpinBox* tolerance_;
  QLabel* outcome_;
  QDialogButtonBox* buttons_;
  QTimer settle_;
  bool isNameTyped_ = false;
  civil::Profile profile_;
};

}  // namespace lvx::desktop
