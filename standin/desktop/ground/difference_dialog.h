#pragma once

#include <QDialog>
#include <optional>

#include "civil/drawing.h"
#include "civil/surface_difference.h"
#include "desktop/ground/difference_work.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace lvx::desktop {

class DifferenceLayer;

/// Two surfaces of the drawing, their cut and fill, and the plan coloured by their difference. Stands beside the window,
/// which goes on working; large surfaces are reckoned on another thread, with progress and a way to stop. Closing it
/// leaves the colours where the user wants them.
class DifferenceDialog : public QDialog {
  Q_OBJECT
 public:
  /// The layer outlives it.
  DifferenceDialog(QWidget* parent, DifferenceLayer& layer);

  /// The surfaces to choose from; null: none, what runs is given up and the colours go. When it returns, nothing looks at
  /// the drawing before any more.
  void setDrawing(const civil::Drawing* drawing);

 Q_SIGNALS:
  /// The figures, a line each, for the console.
  void told(const QString& line);

 public Q_SLOTS:
  void reject() override;

 private:
  void build();
  void begin();
  void stop();
  void tell(const civil::SurfaceDifference& difference);
  void colour();
  void forget();
  void updateButtons();
  [[nodiscard]] const civil::SurfaceObject* chosen(const QComboBox& box) const;
  [[nodiscard]] QString title() const;

  DifferenceLayer& layer_;
  const civil::Drawing* drawing_ = nullptr;
  DifferenceWork work_;
  std::optional<civil::SurfaceDifference> difference_;
  QComboBox* existing_ = nullptr;
  QComboBox* next_ = nullptr;
  QPushButton* swap_ = nullptr;
  QPushButton* begin_ = nullptr;
  QPushButton* copy_ = nullptr;
  QCheckBox* colours_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QTableWidget* table_ = nullptr;
  QLabel* words_ = nullptr;
};

}  // namespace lvx::desktop
