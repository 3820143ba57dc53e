#pragma once

#include <QTableView>

#include "civil/tin_surface.h"
#include "desktop/panels/value_table_model.h"

namespace lvx::desktop {

/// A table to read, sort and copy. A click on a heading sorts by it, a second one the other way round, a third one brings
/// the first order back. Ctrl+C copies the selected rows for a spreadsheet, all of them where none is selected.
class ValueTable : public QTableView {
  Q_OBJECT
 public:
  explicit ValueTable(QWidget* parent = nullptr);

  /// As ValueTableModel::setTable().
  void setTable(properties::Table table, const QStringList& headings);
  [[nodiscard]] const ValueTableModel& values() const { return *model_; }

  /// The selected rows, or all, for a spreadsheet or as text, put on the clipboard.
  void copyTable();
  void copyText();
  /// The selected rows as they are shown, or all.
  [[nodiscard]] QList<int> chosenRows() const;

 Q_SIGNALS:
  /// A row that has a place was double clicked, or Enter pressed on it.
  void placeWanted(const lvx::civil::Box& place);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void sortByHeading(int column);
  void goTo(int row);
  void fitColumns();

  ValueTableModel* model_;
  int sortedBy_ = -1;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace lvx::desktop
