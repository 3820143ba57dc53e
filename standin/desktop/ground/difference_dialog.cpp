#include "desktop/ground/difference_dialog.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "desktop/common/qt_text.h"
#include "desktop/ground/difference_layer.h"
#include "desktop/ground/difference_texts.h"
#include "desktop/plan/plan_furniture.h"

namespace lvx::desktop {

DifferenceDialog::DifferenceDialog(QWidget* parent, DifferenceLayer& layer) : QDialog(parent), layer_(layer) {
  setObjectName(QStringLiteral("differenceDialog"));
  setWindowTitle(tr("Difference of surfaces"));
  build();
  connect(&work_, &DifferenceWork::progressed, progress_, &QProgressBar::setValue);
  connect(&work_, &DifferenceWork::done, this,
          [this](const civil::SurfaceDifference& difference) { tell(difference); });
  connect(&work_, &DifferenceWork::failed, this, [this](const QString& reason) {
    words_->setText(tr("That didn't work: %1").arg(reason));
    updateButtons();
  });
  updateButtons();
}

void DifferenceDialog::build() {
  existing_ = new QComboBox;
  existing_->setObjectName(QStringLiteral("existingSurface"));
  next_ = new QComboBox;
  next_->setObjectName(QStringLiteral("newSurface"));
  for (QComboBox* const box : {existing_, next_}) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    constexpr int kLetters = 24;
    box->setMinimumContentsLength(kLetters);
    connect(box, &QComboBox::currentIndexChanged, this, &DifferenceDialog::forget);
  }
  auto* const form = new QFormLayout;
  form->addRow(tr("&Existing surface:"), existing_);
  form->addRow(tr("&New surface:"), next_);

  begin_ = new QPushButton(tr("&Compute"));
  begin_->setObjectName(QStringLiteral("computeDifference"));
  begin_->setDefault(true);
  swap_ = new QPushButton(tr("&Swap"));
  swap_->setObjectName(QStringLiteral("swapSurfaces"));
  swap_->setToolTip(tr("Take each surface for the other one"));
  connect(begin_, &QPushButton::clicked, this, [this] { work_.isRunning() ? stop() : begin(); });
  connect(swap_, &QPushButton::clicked, this, [this] {
    const int before = existing_->currentIndex();
    existing_->setCurrentIndex(next_->currentIndex());
    next_->setCurrentIndex(before);
  });
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(begin_);
  buttons->addWidget(swap_);
  buttons->addStretch();

  progress_ = new QProgressBar;
  progress_->setObjectName(QStringLiteral("differenceProgress"));
  progress_->setAccessibleName(tr("Progress"));
  QSizePolicy keeps = progress_->sizePolicy();
  keeps.setRetainSizeWhenHidden(true);
  progress_->setSizePolicy(keeps);

  table_ = new QTableWidget(0, 3);
  table_->setObjectName(QStringLiteral("differenceFigures"));
  table_->setAccessibleName(tr("Volumes and areas"));
  table_->setHorizontalHeaderLabels({QString(), DifferenceTexts::volume({}), DifferenceTexts::area({})});
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  table_->verticalHeader()->hide();
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setTabKeyNavigation(false);
  words_ = new QLabel;
  words_->setObjectName(QStringLiteral("differenceWords"));
  words_->setWordWrap(true);
  words_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  colours_ = new QCheckBox(tr("Colour the &plan by the difference"));
  colours_->setObjectName(QStringLiteral("colourPlan"));
  colours_->setChecked(true);
  connect(colours_, &QCheckBox::toggled, this, &DifferenceDialog::colour);

  auto* const close = new QDialogButtonBox(QDialogButtonBox::Close);
  copy_ = close->addButton(tr("C&opy"), QDialogButtonBox::ActionRole);
  copy_->setObjectName(QStringLiteral("copyDifference"));
  copy_->setToolTip(tr("Copy the figures, for a spreadsheet too"));
  connect(copy_, &QPushButton::clicked, this, [this] {
    if (difference_)
      QGuiApplication::clipboard()->setText(
          DifferenceTexts::table(title(), unitSign(drawing_->linearUnit), *difference_));
  });
  connect(close, &QDialogButtonBox::rejected, this, &DifferenceDialog::reject);

  auto* const all = new QVBoxLayout(this);
  all->addLayout(form);
  all->addLayout(buttons);
  all->addWidget(progress_);
  all->addWidget(table_);
  all->addWidget(words_);
  all->addWidget(colours_);
  all->addWidget(close);
  constexpr QSize kSize(460, 470);
  resize(kSize);
}

void DifferenceDialog::setDrawing(const civil::Drawing* drawing) {
  work_.stop();
  layer_.clear();
  difference_.reset();
  drawing_ = drawing;
  const QString unit = drawing != nullptr ? unitSign(drawing->linearUnit) : QString();
  table_->setHorizontalHeaderLabels({QString(), DifferenceTexts::volume(unit), DifferenceTexts::area(unit)});
  for (QComboBox* const box : {existing_, next_}) {
    const QSignalBlocker quiet(box);
    box->clear();
    if (drawing == nullptr) continue;
    for (const civil::SurfaceObject& surface : drawing->surfaces)
      box->addItem(toQt(surface.name), QVariant::fromValue<quint64>(surface.handle));
  }
  if (next_->count() > 1) {
    const QSignalBlocker quiet(next_);
    next_->setCurrentIndex(1);
  }
  forget();
}

const civil::SurfaceObject* DifferenceDialog::chosen(const QComboBox& box) const {
  if (drawing_ == nullptr || box.currentIndex() < 0) return nullptr;
  const civil::Handle handle = box.currentData().toULongLong();
  for (const civil::SurfaceObject& surface : drawing_->surfaces)
    if (surface.handle == handle) return &surface;
  return nullptr;
}

QString DifferenceDialog::title() const {
  //: Two surfaces: the existing one and the one that it is to become.
  return tr("%1 to %2").arg(existing_->currentText(), next_->currentText());
}

void DifferenceDialog::begin() {
  const civil::SurfaceObject* const existing = chosen(*existing_);
  const civil::SurfaceObject* const next = chosen(*next_);
  if (existing == nullptr || next == nullptr) return;
  forget();
  words_->clear();
  progress_->setValue(0);
  work_.start(existing->surface, next->surface);
  updateButtons();
}

void DifferenceDialog::stop() {
  work_.stop();
  words_->setText(tr("Stopped."));
  updateButtons();
}

void DifferenceDialog::forget() {
  work_.stop();
  layer_.clear();
  difference_.reset();
  table_->setRowCount(0);
  words_->setText(drawing_ != nullptr && drawing_->surfaces.size() < 2
                      ? tr("The drawing has less than two surfaces; File > Add drawing adds those of another file.")
                      : QString());
  updateButtons();
}

void DifferenceDialog::tell(const civil::SurfaceDifference& difference) {
  difference_ = difference;
  const auto rows = DifferenceTexts::rows(difference);
  table_->setRowCount(static_cast<int>(rows.size()));
  int number = 0;
  Q_EMIT told(title());
  for (const DifferenceTexts::Row& row : rows) {
    int column = 0;
    for (const QString& text : {row.label, row.volume, row.area}) {
      auto* const item = new QTableWidgetItem(text);
      if (column > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      table_->setItem(number, column++, item);
    }
    ++number;
    Q_EMIT told(row.volume.isEmpty() ? tr("%1: area %2").arg(row.label, row.area)
                                     : tr("%1: volume %2, area %3").arg(row.label, row.volume, row.area));
  }
  words_->setText(difference.commonArea() > 0.0 ? DifferenceTexts::extremes(difference)
                                                : tr("The surfaces have no area in common."));
  colour();
  updateButtons();
}

void DifferenceDialog::colour() {
  const bool isWanted = colours_->isChecked() && difference_ && difference_->commonArea() > 0.0;
  if (!isWanted) {
    layer_.clear();
    return;
  }
  const civil::SurfaceObject* const existing = chosen(*existing_);
  const civil::SurfaceObject* const next = chosen(*next_);
  if (existing != nullptr && next != nullptr && !layer_.isShown())
    layer_.show(existing->surface, next->surface, title());
}

void DifferenceDialog::updateButtons() {
  const bool isRunning = work_.isRunning();
  begin_->setText(isRunning ? tr("&Stop") : tr("&Compute"));
  begin_->setEnabled(isRunning || (chosen(*existing_) != nullptr && chosen(*next_) != nullptr &&
                                   chosen(*existing_) != chosen(*next_)));
  swap_->setEnabled(!isRunning && existing_->count() > 1);
  existing_->setEnabled(!isRunning);
  next_->setEnabled(!isRunning);
  copy_->setEnabled(difference_.has_value());
  progress_->setVisible(isRunning);
}

void DifferenceDialog::reject() {
  if (work_.isRunning()) stop();
  QDialog::reject();
}

}  // namespace lvx::desktop
