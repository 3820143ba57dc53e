#pragma once

#include <QAbstractTableModel>
#include <QWidget>

#include "civil/drawing.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

namespace lvx::desktop {

/// What the reader found odd: severity, place in the file, text. Points into the drawing.
class DiagnosticsModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  enum Column { SeverityColumn, PlaceColumn, TextColumn, ColumnCount };
  /// Severity as a number (2: error), the number of the file and the line there.
  enum Role { SeverityRole = Qt::UserRole, FileRole, LineRole };
  using QAbstractTableModel::QAbstractTableModel;

  void setDrawing(const civil::Drawing* drawing);
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  const civil::Drawing* drawing_ = nullptr;
};

/// The table with its filters.
class DiagnosticsView : public QWidget {
  Q_OBJECT
 public:
  explicit DiagnosticsView(QWidget* parent = nullptr);
  /// Null: nothing.
  void setDrawing(const civil::Drawing* drawing);

 Q_SIGNALS:
  /// The tab's title with the number of warnings and errors.
  void titleChanged(const QString& title);
  /// The user wants to see a line of one of the drawing's files.
  void lineWanted(quint32 file, quint64 line);

 private:
  void applyFilter();
  void copy();

  DiagnosticsModel* model_;
  QSortFilterProxyModel* proxy_;
  QTableView* table_;
  QComboBox* severity_;
  QLineEdit* filter_;
  QLabel* nothing_;
};

}  // namespace lvx::desktop
