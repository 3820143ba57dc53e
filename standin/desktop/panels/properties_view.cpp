#include "desktop/panels/properties_view.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "desktop/common/icons.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/property_words.h"
#include "desktop/panels/value_table.h"

namespace lvx::desktop {

using properties::Column;
using properties::Form;
using properties::Properties;
using properties::Table;
using properties::Term;
using properties::Value;

PropertiesView::PropertiesView(QWidget* parent) : QWidget(parent), title_(new QLabel), pages_(new QTabWidget) {
  title_->setObjectName(QStringLiteral("propertiesTitle"));
  title_->setTextFormat(Qt::PlainText);
  title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  pages_->setObjectName(QStringLiteral("propertyPages"));
  pages_->setDocumentMode(true);
  pages_->setUsesScrollButtons(true);
  pages_->setAccessibleName(tr("Pages of properties"));
  pages_->tabBar()->setAccessibleName(pages_->accessibleName());

  const auto addButton = [&](const QString& name, const QString& text, const QString& tip, auto copy) {
    auto* const button = new QToolButton;
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::clicked, this, [this, copy] {
      if (auto* const table = qobject_cast<ValueTable*>(pages_->currentWidget())) (table->*copy)();
    });
    return button;
  };
  auto* const bar = new QHBoxLayout;
  constexpr int kGap = 6;
  bar->setContentsMargins(0, 0, 2, 2);
  bar->setSpacing(2);
  bar->addStretch();
  auto* const table =
      addButton(QStringLiteral("copyTable"), tr("Table"), tr("Copy for a spreadsheet"), &ValueTable::copyTable);
  table->setIcon(icon(QStringLiteral("copy")));
  table->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->addWidget(table);
  auto* const text = addButton(QStringLiteral("copyText"), tr("Text"), tr("Copy as text"), &ValueTable::copyText);
  text->setIcon(icon(QStringLiteral("copy")));
  text->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->addWidget(text);

  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  // On a line of its own: beside the buttons a name would be cut off in a narrow panel.
  title_->setContentsMargins(kGap, kGap, kGap, 2);
  layout->addWidget(title_);
  layout->addLayout(bar);
  layout->addWidget(pages_, 1);
  page(0);
  pages_->setTabText(0, tr("Values"));
  fill();
}

ValueTable* PropertiesView::page(int number) {
  while (pages_->count() <= number) {
    auto* const table = new ValueTable;
    table->setObjectName(QStringLiteral("propertyTable%1").arg(pages_->count()));
    table->setFrameShape(QFrame::NoFrame);
    connect(table, &ValueTable::placeWanted, this, &PropertiesView::placeWanted);
    pages_->addTab(table, QString());
  }
  return static_cast<ValueTable*>(pages_->widget(number));
}

void PropertiesView::show(const civil::Drawing& drawing, const civil::DrawingIndex& index,
                          const civil::AlignmentObject* alignment, civil::Handle handle) {
  subject_.emplace(properties::Subject{drawing, index, alignment, {}});
  subject_->figures = [this](const civil::SurfaceObject& surface) {
    const auto known = figures_.constFind(surface.handle);
    if (known != figures_.constEnd()) return *known;
    return *figures_.insert(surface.handle, properties::figuresOf(surface.surface));
  };
  handle_ = handle;
  fill();
}

void PropertiesView::clear() {
  subject_.reset();
  figures_.clear();
  fill();
}

void PropertiesView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (!isCurrent_) fill();
}

void PropertiesView::fill() {
  // A hidden table points at nothing that may be gone by then.
  isCurrent_ = !subject_ || isVisible();
  const Properties told = isCurrent_ && subject_ ? properties::propertiesOf(*subject_, handle_) : Properties();
  const std::string unit = subject_ ? subject_->drawing.linearUnit : std::string();
  fillTitle(told);

  Table values;
  values.columns = {{Term::Name, Form::Text}, {Term::Name, Form::Text}, {Term::Unit, Form::Text}};
  values.rowCount = told.rows.size();
  const auto rows = std::make_shared<const std::vector<properties::Row>>(told.rows);
  values.cell = [rows, unit](std::size_t row, std::size_t column) -> Value {
    const properties::Row& one = (*rows)[row];
    if (column == 0) return one.term;
    if (column == 2) return toUtf8(PropertyWords::unit(one.form, unit));
    return properties::textOf(one.value, one.form, PropertyWords::words);
  };
  // What was open stays open where the next object has such a page too.
  const QString open = pages_->tabText(pages_->currentIndex());
  page(0)->setTable(std::move(values), {tr("Property"), tr("Value"), tr("Unit")});
  page(0)->setAccessibleName(title_->text());
  int number = 0;
  for (const Table& table : told.tables) {
    QStringList headings;
    for (const Column& column : table.columns) headings << PropertyWords::heading(column, unit);
    const QString title = PropertyWords::term(table.title);
    ValueTable* const view = page(++number);
    view->setTable(table, headings);
    view->setAccessibleName(title);
    pages_->setTabText(number, title);
    pages_->setTabToolTip(number, tr("%n row(s)", nullptr, static_cast<int>(table.rowCount)));
  }
  for (int i = pages_->count() - 1; i > number; --i) {
    QWidget* const last = pages_->widget(i);
    pages_->removeTab(i);
    delete last;
  }
  for (int i = 0; i < pages_->count(); ++i)
    if (pages_->tabText(i) == open) pages_->setCurrentIndex(i);
}

void PropertiesView::fillTitle(const Properties& told) {
  const QString kind = subject_ && isCurrent_ ? PropertyWords::term(told.kind) : QString();
  const QString name = toQt(told.name);
  title_->setText(name.isEmpty() ? kind : QStringLiteral("%1  %2").arg(kind, name));
  title_->setToolTip(title_->text());
}

}  // namespace lvx::desktop
