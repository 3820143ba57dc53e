#include "desktop/panels/value_table.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>
#include <numeric>
#include <utility>

namespace lvx::desktop {

ValueTable::ValueTable(QWidget* parent) : QTableView(parent), model_(new ValueTableModel(this)) {
  setModel(model_);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setTabKeyNavigation(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setCornerButtonEnabled(false);
  // Each row's own height would be asked for a million times.
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  constexpr int kRoom = 6;
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRoom);
  verticalHeader()->hide();
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionsClickable(true);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  // Those that show tell enough of how wide a column is.
  constexpr int kRowsMeasured = 100;
  horizontalHeader()->setResizeContentsPrecision(kRowsMeasured);
  connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &ValueTable::sortByHeading);
  // The second of two fast clicks comes as this alone.
  connect(horizontalHeader(), &QHeaderView::sectionDoubleClicked, this, &ValueTable::sortByHeading);
  connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& index) { goTo(index.row()); });
}

void ValueTable::setTable(properties::Table table, const QStringList& headings) {
  const bool isLikeBefore = headings.size() == model_->columnCount() && sortedBy_ >= 0 &&
                            headings.value(sortedBy_) == model_->headerData(sortedBy_, Qt::Horizontal, Qt::DisplayRole);
  model_->setTable(std::move(table), headings);
  if (isLikeBefore) {
    model_->sort(sortedBy_, order_);
  } else {
    sortedBy_ = -1;
    horizontalHeader()->setSortIndicatorShown(false);
  }
  fitColumns();
}

void ValueTable::fitColumns() {
  resizeColumnsToContents();
  constexpr int kWidest = 320;
  for (int column = 0; column < model_->columnCount(); ++column)
    setColumnWidth(column, std::min(columnWidth(column), kWidest));
}

void ValueTable::sortByHeading(int column) {
  if (sortedBy_ != column) {
    sortedBy_ = column;
    order_ = Qt::AscendingOrder;
  } else if (order_ == Qt::AscendingOrder) {
    order_ = Qt::DescendingOrder;
  } else {
    sortedBy_ = -1;
  }
  QApplication::setOverrideCursor(Qt::WaitCursor);
  model_->sort(sortedBy_, order_);
  QApplication::restoreOverrideCursor();
  horizontalHeader()->setSortIndicatorShown(sortedBy_ >= 0);
  if (sortedBy_ >= 0) horizontalHeader()->setSortIndicator(sortedBy_, order_);
}

QList<int> ValueTable::chosenRows() const {
  QList<int> rows;
  // By ranges: a selection of a million rows has one of them.
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row) rows << row;
  if (rows.isEmpty()) {
    rows.resize(model_->rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

void ValueTable::copyTable() { QApplication::clipboard()->setText(model_->tabbed(chosenRows())); }
void ValueTable::copyText() { QApplication::clipboard()->setText(model_->aligned(chosenRows())); }

void ValueTable::goTo(int row) {
  if (const auto place = model_->placeOf(row)) Q_EMIT placeWanted(*place);
}

void ValueTable::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->matches(QKeySequence::Copy))
    copyTable();
  else if (isEnter && currentIndex().isValid())
    goTo(currentIndex().row());
  else
    QTableView::keyPressEvent(event);
}

void ValueTable::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  menu.setObjectName(QStringLiteral("tableMenu"));
  connect(menu.addAction(tr("&Copy for a spreadsheet\tCtrl+C")), &QAction::triggered, this, &ValueTable::copyTable);
  connect(menu.addAction(tr("Copy as &text")), &QAction::triggered, this, &ValueTable::copyText);
  const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
  const QModelIndex index = isByMouse ? indexAt(event->pos()) : currentIndex();
  if (index.isValid() && model_->placeOf(index.row()))
    connect(menu.addAction(tr("&Zoom here")), &QAction::triggered, this, [this, row = index.row()] { goTo(row); });
  menu.exec(isByMouse ? event->globalPos() : viewport()->mapToGlobal(visualRect(index).center()));
}

}  // namespace lvx::desktop
