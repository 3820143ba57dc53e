#include "desktop/panels/value_table_model.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/panels/property_words.h"

namespace lvx::desktop {

using properties::Form;

void ValueTableModel::setTable(properties::Table table, QStringList headings) {
  beginResetModel();
  table_ = std::move(table);
  headings_ = std::move(headings);
  order_.clear();
  endResetModel();
}

std::size_t ValueTableModel::rowOf(int row) const {
  const auto shown = static_cast<std::size_t>(row);
  return order_.empty() ? shown : order_[shown];
}

QString ValueTableModel::textOf(int row, int column) const {
  const auto at = static_cast<std::size_t>(column);
  return toQt(properties::textOf(table_.cell(rowOf(row), at), table_.columns[at].form, PropertyWords::words));
}

QString ValueTableModel::copiedText(int row, int column) const {
  const auto at = static_cast<std::size_t>(column);
  const properties::Value value = table_.cell(rowOf(row), at);
  Form form = table_.columns[at].form;
  if (form == Form::Station) form = Form::Length;
  QString text = toQt(properties::textOf(value, form, PropertyWords::words));
  if (std::holds_alternative<double>(value)) return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
  // A cell is a cell.
  for (const QChar parting : {u'\t', u'\n', u'\r'}) text.replace(parting, QLatin1Char(' '));
  return text;
}

QString ValueTableModel::tabbed(const QList<int>& rows) const {
  QString all = headings_.join(QLatin1Char('\t')) + QLatin1Char('\n');
  for (const int row : rows) {
    for (int column = 0; column < columnCount(); ++column) {
      if (column > 0) all += QLatin1Char('\t');
      all += copiedText(row, column);
    }
    all += QLatin1Char('\n');
  }
  return all;
}

QString ValueTableModel::aligned(const QList<int>& rows) const {
  const int columns = columnCount();
  std::vector<qsizetype> widths;
  for (const QString& heading : headings_) widths.push_back(heading.size());
  QList<QStringList> cells;
  cells.reserve(rows.size() + 1);
  cells << headings_;
  for (const int row : rows) {
    QStringList line;
    for (int column = 0; column < columns; ++column) {
      line << textOf(row, column);
      auto& width = widths[static_cast<std::size_t>(column)];
      width = std::max(width, line.back().size());
    }
    cells << line;
  }
  QString all;
  for (const QStringList& line : cells) {
    QString text;
    for (int column = 0; column < columns; ++column) {
      const auto at = static_cast<std::size_t>(column);
      const qsizetype width = widths[at];
      if (column > 0) text += QStringLiteral("  ");
      text += properties::isNumber(table_.columns[at].form) ? line[column].rightJustified(width)
                                                            : line[column].leftJustified(width);
    }
    while (text.endsWith(QLatin1Char(' '))) text.chop(1);
    all += text + QLatin1Char('\n');
  }
  return all;
}

QList<int> ValueTableModel::rowsWith(const QString& text) const {
  QList<int> rows;
  for (int row = 0; row < rowCount(); ++row)
    for (int column = 0; column < columnCount(); ++column)
      if (textOf(row, column).contains(text, Qt::CaseInsensitive)) {
        rows << row;
        break;
      }
  return rows;
}

std::optional<civil::Box> ValueTableModel::placeOf(int row) const {
  return table_.place && row >= 0 && row < rowCount() ? table_.place(rowOf(row)) : std::nullopt;
}

int ValueTableModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return static_cast<int>(std::min<std::size_t>(table_.rowCount, std::numeric_limits<int>::max()));
}

int ValueTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.columns.size());
}

QVariant ValueTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return textOf(index.row(), index.column());
  if (role == Qt::TextAlignmentRole) {
    const bool isNumber = properties::isNumber(table_.columns[static_cast<std::size_t>(index.column())].form);
    return QVariant::fromValue(Qt::Alignment(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft)));
  }
  return {};
}

QVariant ValueTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return headings_.value(section);
  return {};
}

void ValueTableModel::sort(int column, Qt::SortOrder order) {
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  // What is selected and where the keyboard is stay with their rows.
  const QModelIndexList before = persistentIndexList();
  std::vector<std::size_t> rows;
  for (const QModelIndex& index : before) rows.push_back(rowOf(index.row()));
  if (column < 0 || column >= columnCount())
    order_.clear();
  else
    order_ =
        properties::sorted(table_, static_cast<std::size_t>(column), order == Qt::AscendingOrder, PropertyWords::words);
  std::vector<std::uint32_t> shownAt(before.isEmpty() || order_.empty() ? 0 : order_.size());
  if (!shownAt.empty())
    for (std::uint32_t shown = 0; shown < order_.size(); ++shown) shownAt[order_[shown]] = shown;
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i) {
    const std::size_t row = rows[static_cast<std::size_t>(i)];
    after << index(static_cast<int>(shownAt.empty() ? row : shownAt[row]), before[i].column());
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

}  // namespace lvx::desktop
