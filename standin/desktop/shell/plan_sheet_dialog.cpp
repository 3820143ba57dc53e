#include "desktop/shell/plan_sheet_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPageSize>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "desktop/plan/plan_furniture.h"

namespace lvx::desktop {

namespace {

constexpr std::array kPapers{QPageSize::A4, QPageSize::A3,     QPageSize::A2,     QPageSize::A1,
                             QPageSize::A0, QPageSize::Letter, QPageSize::Tabloid};

}  // namespace

PlanSheetDialog::PlanSheetDialog(Plan plan, const Choices& choices, For purpose, QWidget* parent)
    : QDialog(parent),
      plan_(std::move(plan)),
      paper_(new QComboBox),
      orientation_(new QComboBox),
      scale_(new QComboBox),
      part_(new QComboBox),
      grid_(new QCheckBox(tr("Coordinate &grid"))),
      legend_(new QCheckBox(tr("&Legend"))),
      outcome_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
  setObjectName(QStringLiteral("planSheetDialog"));
  setWindowTitle(purpose == For::Export ? tr("Export the plan") : tr("Print the plan"));
  build(choices, purpose);
  look();
}

void PlanSheetDialog::build(const Choices& choices, For purpose) {
  paper_->setObjectName(QStringLiteral("sheetPaper"));
  for (const QPageSize::PageSizeId size : kPapers) paper_->addItem(QPageSize::name(size));
  paper_->setCurrentIndex(std::clamp(choices.paper, 0, static_cast<int>(kPapers.size()) - 1));
  orientation_->setObjectName(QStringLiteral("sheetOrientation"));
  orientation_->addItems({tr("Landscape"), tr("Portrait")});
  orientation_->setCurrentIndex(choices.isPortrait ? 1 : 0);
  scale_->setObjectName(QStringLiteral("sheetScale"));
  scale_->setEditable(true);
  scale_->addItem(tr("As large as it goes"));
  for (const int scale : {100, 200, 250, 500, 1000, 2000, 2500, 5000, 10000, 25000})
    scale_->addItem(QStringLiteral("1:%1").arg(scale));
  scale_->setCurrentText(choices.scale.isEmpty() ? scale_->itemText(0) : choices.scale);
  part_->setObjectName(QStringLiteral("sheetPart"));
  part_->addItems({tr("What the plan shows"), tr("Everything")});
  part_->setCurrentIndex(choices.showsEverything ? 1 : 0);
  grid_->setObjectName(QStringLiteral("sheetGrid"));
  grid_->setChecked(choices.hasGrid);
  legend_->setObjectName(QStringLiteral("sheetLegend"));
  legend_->setChecked(choices.hasLegend);
  outcome_->setObjectName(QStringLiteral("sheetOutcome"));
  outcome_->setWordWrap(true);
  outcome_->setTextFormat(Qt::PlainText);
  buttons_->button(QDialogButtonBox::Ok)->setText(purpose == For::Export ? tr("Export…") : tr("Print…"));

  auto* const form = new QFormLayout;
  form->addRow(tr("&Paper:"), paper_);
  form->addRow(tr("&Orientation:"), orientation_);
  form->addRow(tr("&Scale:"), scale_);
  form->addRow(tr("P&art:"), part_);
  form->addRow(QString(), grid_);
  form->addRow(QString(), legend_);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(outcome_);
  layout->addStretch();
  layout->addWidget(buttons_);

  for (QComboBox* const box : {paper_, orientation_, scale_, part_})
    connect(box, &QComboBox::currentTextChanged, this, &PlanSheetDialog::look);
  for (QCheckBox* const box : {grid_, legend_}) connect(box, &QCheckBox::toggled, this, &PlanSheetDialog::look);
  connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

PlanSheetDialog::Choices PlanSheetDialog::choices() const {
  return {.paper = paper_->currentIndex(),
          .isPortrait = orientation_->currentIndex() == 1,
          .scale = typedScale() > 0.0 ? scale_->currentText() : QString(),
          .showsEverything = part_->currentIndex() == 1,
          .hasGrid = grid_->isChecked(),
          .hasLegend = legend_->isChecked()};
}

double PlanSheetDialog::typedScale() const {
  QString text = scale_->currentText().trimmed();
  if (text == scale_->itemText(0) || text.isEmpty()) return 0.0;
  if (text.startsWith(QStringLiteral("1:"))) text = text.mid(2).trimmed();
  bool isNumber = false;
  double scale = text.toDouble(&isNumber);
  if (!isNumber) scale = locale().toDouble(text, &isNumber);
  constexpr double kLeast = 1.0;
  constexpr double kMost = 1e7;
  return isNumber && scale >= kLeast && scale <= kMost ? scale : -1.0;
}

PlanSheetWish PlanSheetDialog::wish() const {
  QSizeF paper = QPageSize(kPapers[static_cast<std::size_t>(paper_->currentIndex())]).size(QPageSize::Millimeter);
  if (orientation_->currentIndex() == 0) paper.transpose();
  return {.paper = paper,
          .part = part_->currentIndex() == 1 ? plan_.scene.box() : plan_.visible,
          .scale = std::max(0.0, typedScale()),
          .hasGrid = grid_->isChecked(),
          .hasLegend = legend_->isChecked(),
          .title = plan_.title,
          .date = plan_.date};
}

void PlanSheetDialog::look() {
  const bool isScale = typedScale() >= 0.0;
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(isScale);
  if (!isScale) {
    outcome_->setText(tr("A scale is typed as 1:500."));
    return;
  }
  const PlanSheet sheet(plan_.scene, plan_.look, wish());
  const civil::Box shown = sheet.shown();
  // Without marks of thousands: "1,335" would be read as a part of two.
  QLocale plain = locale();
  plain.setNumberOptions(QLocale::OmitGroupSeparator);
  const int decimals = std::min(shown.maxX - shown.minX, shown.maxY - shown.minY) < 100.0 ? 1 : 0;
  const auto length = [&](double value) { return plain.toString(value, 'f', decimals); };
  QString text = tr("1:%1, %2 by %3 %4 of the drawing")
                     .arg(QString::number(sheet.scale(), 'g', 12), length(shown.maxX - shown.minX),
                          length(shown.maxY - shown.minY), unitSign(plan_.scene.drawing().linearUnit));
  if (!sheet.showsAll()) {
    PlanSheetWish fitting = wish();
    fitting.scale = 0.0;
    text += QLatin1Char('\n') + tr("Not all of it fits; at 1:%1 it would.")
                                    .arg(QString::number(PlanSheet(plan_.scene, plan_.look, fitting).scale(), 'g', 12));
  }
  outcome_->setText(text);
}

}  // namespace lvx::desktop
