#include "desktop/panels/diagnostics_view.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "civil/drawing_files.h"
#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"

namespace lvx::desktop {

// ---------------------------------------------------------------- rows

void DiagnosticsModel::setDrawing(const civil::Drawing* drawing) {
  beginResetModel();
  drawing_ = drawing;
  endResetModel();
}

int DiagnosticsModel::rowCount(const QModelIndex& parent) const {
  return drawing_ == nullptr || parent.isValid() ? 0 : static_cast<int>(drawing_->diagnostics.size());
}

int DiagnosticsModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant DiagnosticsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const civil::Diagnostic& diagnostic = drawing_->diagnostics[static_cast<std::size_t>(index.row())];
  if (role == SeverityRole) return static_cast<int>(diagnostic.severity);
  if (role == FileRole) return diagnostic.file;
  if (role == LineRole) return QVariant::fromValue<quint64>(diagnostic.line);
  if (role == Qt::ToolTipRole && index.column() == TextColumn) return toQt(diagnostic.text);
  if (role == Qt::DecorationRole && index.column() == SeverityColumn) {
    switch (diagnostic.severity) {
      case civil::Severity::Note:
        return icon(QStringLiteral("note"));
      case civil::Severity::Warning:
        return icon(QStringLiteral("warning"));
      case civil::Severity::Error:
        return icon(QStringLiteral("error"));
    }
  }
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case SeverityColumn:
      switch (diagnostic.severity) {
        case civil::Severity::Note:
          return tr("Note");
        case civil::Severity::Warning:
          return tr("Warning");
        case civil::Severity::Error:
          return tr("Error");
      }
      return {};
    case PlaceColumn: {
      const QString file = QFileInfo(toQt(civil::pathOf(*drawing_, diagnostic.file))).fileName();
      return diagnostic.line == 0 ? file : QStringLiteral("%1:%2").arg(file).arg(diagnostic.line);
    }
    case TextColumn:
      return toQt(diagnostic.text);
    default:
      return {};
  }
}

QVariant DiagnosticsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case SeverityColumn:
      return tr("Severity");
    case PlaceColumn:
      return tr("Place");
    case TextColumn:
      return tr("What was found");
    default:
      return {};
  }
}

namespace {

/// File and line of a row.
std::pair<quint32, quint64> placeOf(const QModelIndex& index) {
  return {index.data(DiagnosticsModel::FileRole).toUInt(), index.data(DiagnosticsModel::LineRole).toULongLong()};
}

class Filter final : public QSortFilterProxyModel {
 public:
  using QSortFilterProxyModel::QSortFilterProxyModel;
  void setLeast(int severity) {
    least_ = severity;
    invalidateFilter();
  }
  void setText(const QString& text) {
    text_ = text;
    invalidateFilter();
  }

 protected:
  [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
    const QModelIndex text = sourceModel()->index(row, DiagnosticsModel::TextColumn, parent);
    if (text.data(DiagnosticsModel::SeverityRole).toInt() < least_) return false;
    return text_.isEmpty() || text.data().toString().contains(text_, Qt::CaseInsensitive);
  }
  [[nodiscard]] bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
    switch (left.column()) {
      case DiagnosticsModel::SeverityColumn:
        return left.data(DiagnosticsModel::SeverityRole).toInt() > right.data(DiagnosticsModel::SeverityRole).toInt();
      case DiagnosticsModel::PlaceColumn:
        return placeOf(left) < placeOf(right);
      default:
        return QSortFilterProxyModel::lessThan(left, right);
    }
  }

 private:
  int least_ = 0;
  QString text_;
};

}  // namespace

// ---------------------------------------------------------------- the widget

DiagnosticsView::DiagnosticsView(QWidget* parent)
    : QWidget(parent),
      model_(new DiagnosticsModel(this)),
      proxy_(new Filter(this)),
      table_(new QTableView),
      severity_(new QComboBox),
      filter_(new QLineEdit),
      nothing_(new QLabel) {
  setObjectName(QStringLiteral("diagnostics"));
  table_->setObjectName(QStringLiteral("diagnosticsTable"));
  severity_->setObjectName(QStringLiteral("diagnosticsSeverity"));
  filter_->setObjectName(QStringLiteral("diagnosticsFilter"));
  nothing_->setObjectName(QStringLiteral("diagnosticsNothing"));
  severity_->addItem(tr("All"), static_cast<int>(civil::Severity::Note));
  severity_->addItem(tr("Warnings and errors"), static_cast<int>(civil::Severity::Warning));
  severity_->addItem(tr("Errors"), static_cast<int>(civil::Severity::Error));
  severity_->setAccessibleName(tr("Least severity"));
  filter_->setPlaceholderText(tr("Words to look for"));
  filter_->setAccessibleName(filter_->placeholderText());
  table_->setAccessibleName(tr("What the reader found"));
  filter_->setClearButtonEnabled(true);
  // The hint stays whole in a narrow panel, beside its frame and the mark that clears it.
  constexpr int kLettersBeside = 4;
  filter_->setMinimumWidth(
      filter_->fontMetrics().horizontalAdvance(filter_->placeholderText() + QString(kLettersBeside, QLatin1Char('M'))));
  proxy_->setSourceModel(model_);
  table_->setModel(proxy_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setFrameShape(QFrame::NoFrame);
  table_->setShowGrid(false);
  table_->setWordWrap(false);
  table_->setSortingEnabled(true);
  table_->sortByColumn(DiagnosticsModel::PlaceColumn, Qt::AscendingOrder);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() * 3 / 2);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->horizontalHeader()->setHighlightSections(false);
  table_->setContextMenuPolicy(Qt::ActionsContextMenu);
  auto* const copyRows = new QAction(icon(QStringLiteral("copy")), tr("Copy"), this);
  copyRows->setShortcut(QKeySequence::Copy);
  copyRows->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  copyRows->setToolTip(tr("Copy the chosen rows, or all that show where none is chosen"));
  table_->addAction(copyRows);
  auto* const copyButton = new QToolButton;
  copyButton->setObjectName(QStringLiteral("diagnosticsCopy"));
  copyButton->setDefaultAction(copyRows);
  copyButton->setAutoRaise(true);

  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  constexpr int kGap = 4;
  layout->setSpacing(kGap);
  auto* const line = new QHBoxLayout;
  line->setContentsMargins(kGap, kGap, kGap, 0);
  line->addWidget(severity_);
  line->addWidget(filter_, 1);
  line->addWidget(copyButton);
  layout->addLayout(line);
  layout->addWidget(nothing_);
  layout->addWidget(table_, 1);
  nothing_->setMargin(2 * kGap);

  connect(severity_, &QComboBox::currentIndexChanged, this, &DiagnosticsView::applyFilter);
  connect(filter_, &QLineEdit::textChanged, this, &DiagnosticsView::applyFilter);
  connect(copyRows, &QAction::triggered, this, &DiagnosticsView::copy);
  connect(table_, &QTableView::activated, this, [this](const QModelIndex& index) {
    const auto [file, line_] = placeOf(index);
    if (line_ > 0) Q_EMIT lineWanted(file, line_);
  });
  setDrawing(nullptr);
}

void DiagnosticsView::setDrawing(const civil::Drawing* drawing) {
  model_->setDrawing(drawing);
  const auto count = [&](civil::Severity least) {
    return drawing == nullptr
               ? qsizetype{0}
               : std::count_if(drawing->diagnostics.begin(), drawing->diagnostics.end(),
                               [least](const civil::Diagnostic& diagnostic) { return diagnostic.severity >= least; });
  };
  const auto severe = count(civil::Severity::Warning);
  Q_EMIT titleChanged(severe == 0 ? tr("Diagnostics") : tr("Diagnostics (%1)").arg(severe));
  const bool any = model_->rowCount() > 0;
  table_->setVisible(any);
  nothing_->setVisible(!any);
  nothing_->setText(drawing == nullptr ? tr("No drawing is open.")
                                       : tr("The reader found nothing odd in the drawing."));
  nothing_->setAlignment(Qt::AlignTop);
  applyFilter();
  if (any) table_->resizeColumnsToContents();
}

void DiagnosticsView::applyFilter() {
  auto* const filter = static_cast<Filter*>(proxy_);
  filter->setLeast(severity_->currentData().toInt());
  filter->setText(filter_->text().trimmed());
}

void DiagnosticsView::copy() {
  QModelIndexList rows = table_->selectionModel()->selectedRows();
  if (rows.isEmpty())
    for (int row = 0; row < proxy_->rowCount(); ++row) rows << proxy_->index(row, 0);
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
  QString text;
  for (const QModelIndex& row : rows) {
    QStringList cells;
    for (int column = 0; column < DiagnosticsModel::ColumnCount; ++column)
      cells << row.siblingAtColumn(column).data().toString();
    text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
  }
  QApplication::clipboard()->setText(text);
}

}  // namespace lvx::desktop
