#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

#include "properties/table.h"

namespace lvx::desktop {

/// A table of values for views: cells are asked for when they show, numbers stand on the right, sorting is by the values
/// and not by their texts. Up to some 2000 million rows, as far as Qt counts.
class ValueTableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// One heading for each column. Rows stand as the table has them.
  void setTable(properties::Table table, QStringList headings);

  /// The rows as copied, cells parted by tabs, headings first: what a spreadsheet takes. Numbers have the decimal sign of
  /// the user's system, since spreadsheets read that, and as many decimals as they show; stations are plain numbers.
  /// Rows count as they are shown.
  [[nodiscard]] QString tabbed(const QList<int>& rows) const;
  /// The rows with their columns one below the other in letters of one width, headings first.
  [[nodiscard]] QString aligned(const QList<int>& rows) const;
  /// The rows in which a text stands, in any case. O(cells).
  [[nodiscard]] QList<int> rowsWith(const QString& text) const;
  /// Where the row's thing lies in the drawing; empty where it has no place.
  [[nodiscard]] std::optional<civil::Box> placeOf(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// By a column; -1: as the table has them.
  void sort(int column, Qt::SortOrder order) override;

 private:
  [[nodiscard]] std::size_t rowOf(int row) const;
  [[nodiscard]] QString textOf(int row, int column) const;
  [[nodiscard]] QString copiedText(int row, int column) const;

  properties::Table table_;
  QStringList headings_;
  /// Where the rows stand; empty: as the table has them.
  std::vector<std::uint32_t> order_;
};

}  // namespace lvx::desktop
