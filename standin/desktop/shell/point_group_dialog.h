#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "civil/drawing.h"
#include "civil/point_filter.h"

class QDialogButtonBox;
class QLabel;
class QLineEdit;

namespace lvx::desktop {

/// Asks for a new point group: its name and, unless its points are chosen already, by which conditions points are in it.
/// How many these are stands below before the user accepts.
class PointGroupDialog : public QDialog {
  Q_OBJECT
 public:
  /// Points by conditions. The drawing stays as it is meanwhile.
  PointGroupDialog(const civil::Drawing& drawing, const civil::DrawingIndex& index, QWidget* parent);
  /// Points that are chosen already; `hidden` as in civil::FilteredPoints.
  PointGroupDialog(const civil::Drawing& drawing, const civil::DrawingIndex& index, civil::FilteredPoints chosen,
                   QWidget* parent);

  [[nodiscard]] QString name() const;
  [[nodiscard]] const std::vector<std::int32_t>& numbers() const { return numbers_; }

 private:
  /// A condition as its user types it.
  struct Field {
    const char* key;  ///< civil::pointFilterKeys() has it
    bool isText;
    QLineEdit* edit;
    QString problem;  ///< told where it can't be read
  };

  void build(bool asksConditions);
  void addFields();
  [[nodiscard]] civil::PointFilter filter();
  void later() { settle_.start(); }
  void look();
  /// What stands against the group; empty where nothing does.
  [[nodiscard]] QString problem() const;

  const civil::Drawing& drawing_;
  const civil::DrawingIndex& index_;
  std::vector<std::int32_t> numbers_;
  std::size_t hidden_ = 0;
  QLineEdit* name_;
  std::vector<Field> fields_;
  QString unread_;
  QLabel* count_;
  QDialogButtonBox* buttons_;
  QTimer settle_;
};

}  // namespace lvx::desktop
