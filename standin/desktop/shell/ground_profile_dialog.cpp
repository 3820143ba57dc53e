#include "desktop/shell/ground_profile_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "civil/ground_profile.h"
#include "civil/sibling_names.h"
#include "desktop/common/qt_text.h"
#include "desktop/plan/object_names.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

constexpr int kSettle = 150;  // milliseconds without a change before the ground is walked again
constexpr double kLargestTolerance = 100.0;
constexpr double kToleranceStep = 0.01;
constexpr int kToleranceDecimals = 3;

}  // namespace

GroundProfileDialog::GroundProfileDialog(const civil::Drawing& drawing, const std::vector<civil::Handle>& chosen,
                                         QWidget* parent)
    : QDialog(parent),
      drawing_(drawing),
      alignment_(new QComboBox),
      surface_(new QComboBox),
      name_(new QLineEdit),
      tolerance_(new QDoubleSpinBox),
      outcome_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
  setObjectName(QStringLiteral("groundProfileDialog"));
  setWindowTitle(tr("Profile from surface"));
  fill(chosen);
  build();
  settle_.setSingleShot(true);
  settle_.setInterval(kSettle);
  connect(&settle_, &QTimer::timeout, this, &GroundProfileDialog::look);
  connect(alignment_, &QComboBox::currentIndexChanged, this, &GroundProfileDialog::later);
  connect(surface_, &QComboBox::currentIndexChanged, this, &GroundProfileDialog::later);
  connect(tolerance_, &QDoubleSpinBox::valueChanged, this, &GroundProfileDialog::later);
  connect(name_, &QLineEdit::textEdited, this, [this](const QString& text) { isNameTyped_ = !text.isEmpty(); });
  connect(name_, &QLineEdit::textChanged, this, &GroundProfileDialog::later);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
    look();  // what was typed just now counts
    if (problem().isEmpty()) accept();
  });
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  proposeName();
  look();
}

void GroundProfileDialog::fill(const std::vector<civil::Handle>& chosen) {
  const auto isChosen = [&](civil::Handle handle) {
    return std::find(chosen.begin(), chosen.end(), handle) != chosen.end();
  };
  const auto addSite = [&](const civil::Site& site) {
    for (const auto& alignment : site.alignments) {
      alignment_->addItem(ObjectNames::alignment(site, *alignment));
      alignments_.push_back(alignment.get());
      if (isChosen(alignment->handle)) alignment_->setCurrentIndex(alignment_->count() - 1);
    }
  };
  for (const civil::Site& site : drawing_.sites) addSite(site);
  addSite(drawing_.siteless);
  for (const civil::SurfaceObject& surface : drawing_.surfaces) {
    surface_->addItem(toQt(surface.name));
    if (isChosen(surface.handle)) surface_->setCurrentIndex(surface_->count() - 1);
  }
}

void GroundProfileDialog::build() {
  alignment_->setObjectName(QStringLiteral("profileAlignment"));
  surface_->setObjectName(QStringLiteral("profileSurface"));
  name_->setObjectName(QStringLiteral("profileName"));
  tolerance_->setObjectName(QStringLiteral("profileTolerance"));
  outcome_->setObjectName(QStringLiteral("profileOutcome"));
  tolerance_->setDecimals(kToleranceDecimals);
  tolerance_->setRange(0.0, kLargestTolerance);
  tolerance_->setSingleStep(kToleranceStep);
  const QString tip = tr(
      "Points are left out where the profile without them stays this close in elevation. 0 keeps a point at every edge "
      "of a triangle.");
  tolerance_->setToolTip(tip);
  outcome_->setWordWrap(true);
  outcome_->setTextFormat(Qt::PlainText);
  // Room for three lines, so that the dialog stays as it is while its outcome changes.
  constexpr int kLines = 3;
  constexpr int kLetters = 46;
  outcome_->setMinimumSize(fontMetrics().averageCharWidth() * kLetters, fontMetrics().lineSpacing() * kLines);
  outcome_->setAlignment(Qt::AlignTop | Qt::AlignLeft);

  auto* const form = new QFormLayout;
  const auto addRow = [form](const QString& label, QWidget* field) {
    form->addRow(label, field);
    field->setAccessibleName(QString(label).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
  };
  addRow(tr("&Alignment:"), alignment_);
  addRow(tr("&Surface:"), surface_);
  addRow(tr("&Name:"), name_);
  addRow(tr("&Tolerance:"), tolerance_);
  tolerance_->setAccessibleDescription(tip);
  outcome_->setAccessibleName(tr("Outcome"));
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(outcome_);
  layout->addWidget(buttons_);
}

const civil::AlignmentObject* GroundProfileDialog::alignmentObject() const {
  const int row = alignment_->currentIndex();
  return row < 0 ? nullptr : alignments_[static_cast<std::size_t>(row)];
}

const civil::SurfaceObject* GroundProfileDialog::surfaceObject() const {
  const int row = surface_->currentIndex();
  return row < 0 ? nullptr : &drawing_.surfaces[static_cast<std::size_t>(row)];
}

civil::Handle GroundProfileDialog::alignment() const {
  const civil::AlignmentObject* const object = alignmentObject();
  return object == nullptr ? 0 : object->handle;
}

QString GroundProfileDialog::name() const { return name_->text().trimmed(); }

void GroundProfileDialog::proposeName() {
  const civil::AlignmentObject* const alignment = alignmentObject();
  const civil::SurfaceObject* const surface = surfaceObject();
  if (isNameTyped_ || alignment == nullptr || surface == nullptr) return;
  const bool blocked = name_->blockSignals(true);
  name_->setText(toQt(civil::freeName(alignment->profiles, surface->name)));
  name_->blockSignals(blocked);
}

void GroundProfileDialog::later() {
  proposeName();
  settle_.start();
}

void GroundProfileDialog::look() {
  settle_.stop();
  const civil::AlignmentObject* const alignment = alignmentObject();
  const civil::SurfaceObject* const surface = surfaceObject();
  profile_ = {};
  if (alignment != nullptr && surface != nullptr)
    profile_ = civil::groundProfile(alignment->geometry, surface->surface, {.thinning = tolerance_->value()});
  const QString against = problem();
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(against.isEmpty());
  if (!against.isEmpty()) {
    outcome_->setText(against);
    return;
  }
  const auto station = [](double value) { return toQt(text::stationText(value)); };
  QString words = tr("%n point(s), stations %1 to %2.", nullptr, static_cast<int>(profile_.points().size()))
                      .arg(station(profile_.startStation()), station(profile_.endStation()));
  if (profile_.gapCount() > 0)
    words +=
        QLatin1Char('\n') + tr("%n gap(s) without ground stay gaps.", nullptr, static_cast<int>(profile_.gapCount()));
  if (profile_.startStation() > alignment->geometry.startStation() + civil::kSameStation ||
      profile_.endStation() < alignment->geometry.endStation() - civil::kSameStation)
    words += QLatin1Char('\n') +
             tr("The alignment runs from %1 to %2; the rest has no ground.")
                 .arg(station(alignment->geometry.startStation()), station(alignment->geometry.endStation()));
  outcome_->setText(words);
}

QString GroundProfileDialog::problem() const {
  const civil::AlignmentObject* const alignment = alignmentObject();
  if (alignment == nullptr) return tr("The drawing has no alignment.");
  if (surfaceObject() == nullptr) return tr("The drawing has no surface. Add drawing in the menu File adds one.");
  if (profile_.isEmpty()) return tr("The alignment meets the surface nowhere.");
  if (name().isEmpty()) return tr("The profile needs a name.");
  for (const civil::ProfileObject& profile : alignment->profiles)
    if (profile.name == toUtf8(name())) return tr("The alignment has a profile of this name already.");
  return {};
}

}  // namespace lvx::desktop
