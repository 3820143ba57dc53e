#include "desktop/books/book_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/books/book_words.h"
#include "desktop/common/qt_text.h"
#include "sheets/paper.h"
#include "sheets/sheet_error.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

constexpr int kSettle = 250;    // milliseconds without a change before the book is planned anew
constexpr int kPatience = 700;  // milliseconds that planning may take while the dialog waits
constexpr double kSectionExaggeration = 1.0;
constexpr double kProfileExaggeration = 10.0;

}  // namespace

BookDialog::BookDialog(const civil::Drawing& drawing, const std::vector<civil::Handle>& chosen, BookPlanner plan,
                       QWidget* parent)
    : QDialog(parent),
      drawing_(drawing),
      plan_(std::move(plan)),
      chosen_(chosen),
      form_(new QFormLayout),
      kind_(new QComboBox),
      alignment_(new QComboBox),
      group_(new QComboBox),
      design_(new QComboBox),
      ground_(new QComboBox),
      from_(new QLineEdit),
      to_(new QLineEdit),
      paper_(new QComboBox),
      width_(new QDoubleSpinBox),
      height_(new QDoubleSpinBox),
      ownSize_(new QWidget),
      orientation_(new QComboBox),
      scale_(new QComboBox),
      exaggeration_(new QDoubleSpinBox),
      perSheet_(new QSpinBox),
      grid_(new QCheckBox(tr("&Grid with elevations"))),
      outcome_(new QLabel),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)) {
  setObjectName(QStringLiteral("bookDialog"));
  setWindowTitle(tr("Section book"));
  build();
  fillAlignments(chosen);
  fillOfAlignment();
  showRows();
  settle_.setSingleShot(true);
  settle_.setInterval(kSettle);
  follow();
  look();
}

void BookDialog::build() {
  const std::vector<std::pair<QWidget*, const char*>> names{{kind_, "bookKind"},
                                                            {alignment_, "bookAlignment"},
                                                            {group_, "bookGroup"},
                                                            {design_, "bookDesign"},
                                                            {ground_, "bookGround"},
                                                            {from_, "bookFrom"},
                                                            {to_, "bookTo"},
                                                            {paper_, "bookPaper"},
                                                            {width_, "bookWidth"},
                                                            {height_, "bookHeight"},
                                                            {orientation_, "bookOrientation"},
                                                            {scale_, "bookScale"},
                                                            {grid_, "bookGrid"},
                                                            {exaggeration_, "bookExaggeration"},
                                                            {perSheet_, "bookPerSheet"},
                                                            {outcome_, "bookOutcome"}};
  for (const auto& [widget, name] : names) widget->setObjectName(QLatin1String(name));
  kind_->addItems({tr("Cross sections"), tr("Long section")});
  for (const sheets::NamedPaper& named : sheets::namedPapers())
    paper_->addItem(QString::fromLatin1(named.name.data(), static_cast<qsizetype>(named.name.size())));
  paper_->addItem(tr("Own size"));
  paper_->setCurrentText(QStringLiteral("A3"));
  orientation_->addItems({tr("Landscape"), tr("Portrait")});
  scale_->setEditable(true);
  scale_->setInsertPolicy(QComboBox::NoInsert);
  scale_->setCompleter(nullptr);  // it would make 1:200 out of 1:20
  scale_->addItem(tr("Automatic"));
  constexpr double kLeast = 50.0;
  constexpr double kMost = 5000.0;
  for (const double scale : sheets::kUsualScales)
    if (scale >= kLeast && scale <= kMost) scale_->addItem(toQt(sheets::scaleText(scale)));
  constexpr double kMostExaggeration = 1000.0;
  exaggeration_->setDecimals(1);
  exaggeration_->setRange(1.0, kMostExaggeration);
  exaggeration_->setValue(kSectionExaggeration);
  perSheet_->setRange(0, 1000);
  perSheet_->setSpecialValueText(tr("As many as fit"));
  for (QDoubleSpinBox* const side : {width_, height_}) {
    side->setDecimals(1);
    side->setRange(sheets::kLeastSide, sheets::kGreatestSide);
    side->setSuffix(tr(" mm"));
  }
  width_->setValue(900.0);
  height_->setValue(600.0);
  width_->setAccessibleName(tr("Width"));
  height_->setAccessibleName(tr("Height"));
  auto* const sides = new QHBoxLayout(ownSize_);
  sides->setContentsMargins(0, 0, 0, 0);
  sides->addWidget(width_, 1);
  sides->addWidget(new QLabel(QStringLiteral("×")));
  sides->addWidget(height_, 1);

  from_->setPlaceholderText(tr("from the begin"));
  to_->setPlaceholderText(tr("to the end"));
  const auto addRow = [this](const QString& label, QWidget* field) {
    form_->addRow(label, field);
    field->setAccessibleName(QString(label).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
  };
  addRow(tr("&Draw:"), kind_);
  addRow(tr("&Alignment:"), alignment_);
  addRow(tr("Sample &lines:"), group_);
  addRow(tr("De&sign:"), design_);
  addRow(tr("Gro&und:"), ground_);
  addRow(tr("&From station:"), from_);
  addRow(tr("&To station:"), to_);
  addRow(tr("&Paper:"), paper_);
  addRow(tr("Si&ze:"), ownSize_);
  addRow(tr("&Orientation:"), orientation_);
  addRow(tr("S&cale:"), scale_);
  addRow(tr("E&xaggeration of heights:"), exaggeration_);
  addRow(tr("Sections on a s&heet:"), perSheet_);
  form_->addRow(QString(), grid_);
  outcome_->setWordWrap(true);
  outcome_->setTextFormat(Qt::PlainText);
  // Room for three lines, so that the dialog stays as it is while its outcome changes.
  constexpr int kLines = 3;
  constexpr int kLetters = 46;
  outcome_->setMinimumSize(fontMetrics().averageCharWidth() * kLetters, fontMetrics().lineSpacing() * kLines);
  outcome_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  outcome_->setAccessibleName(tr("Outcome"));
  buttons_->button(QDialogButtonBox::Ok)->setText(tr("&Save as…"));
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form_);
  layout->addWidget(outcome_);
  layout->addWidget(buttons_);
}

void BookDialog::follow() {
  connect(&settle_, &QTimer::timeout, this, &BookDialog::look);
  connect(kind_, &QComboBox::currentIndexChanged, this, [this] {
    exaggeration_->setValue(isProfile() ? kProfileExaggeration : kSectionExaggeration);
    showRows();
  });
  connect(paper_, &QComboBox::currentIndexChanged, this, &BookDialog::showRows);
  connect(alignment_, &QComboBox::currentIndexChanged, this, &BookDialog::fillOfAlignment);
  for (QComboBox* const box : {kind_, alignment_, group_, design_, ground_, paper_, orientation_})
    connect(box, &QComboBox::currentIndexChanged, this, &BookDialog::later);
  connect(scale_, &QComboBox::editTextChanged, this, &BookDialog::later);
  for (QLineEdit* const field : {from_, to_}) connect(field, &QLineEdit::textChanged, this, &BookDialog::later);
  for (QDoubleSpinBox* const box : {width_, height_, exaggeration_})
    connect(box, &QDoubleSpinBox::valueChanged, this, &BookDialog::later);
  connect(perSheet_, &QSpinBox::valueChanged, this, &BookDialog::later);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
    look();  // what was typed just now counts
    if (buttons_->button(QDialogButtonBox::Ok)->isEnabled()) accept();
  });
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void BookDialog::fillAlignments(const std::vector<civil::Handle>& chosen) {
  const auto isChosen = [&](civil::Handle handle) {
    return std::find(chosen.begin(), chosen.end(), handle) != chosen.end();
  };
  int best = 0;
  const auto addSite = [&](const civil::Site& site) {
    for (const auto& alignment : site.alignments) {
      const QString name = toQt(alignment->name);
      alignment_->addItem(site.name.empty() ? name : name + QStringLiteral(" (") + toQt(site.name) + QLatin1Char(')'));
      alignments_.push_back(alignment.get());
      const bool hasChosen =
          isChosen(alignment->handle) ||
          std::any_of(alignment->sampleLineGroups.begin(), alignment->sampleLineGroups.end(), [&](const auto& group) {
            return isChosen(group.handle) || std::any_of(group.lines.begin(), group.lines.end(),
                                                         [&](const auto& line) { return isChosen(line.handle); });
          });
      if (hasChosen) best = alignment_->count() - 1;
    }
  };
  for (const civil::Site& site : drawing_.sites) addSite(site);
  addSite(drawing_.siteless);
  alignment_->setCurrentIndex(alignments_.empty() ? -1 : best);
}

void BookDialog::fillOfAlignment() {
  group_->clear();
  design_->clear();
  designs_.clear();
  ground_->clear();
  ground_->addItem(tr("What the alignment has"));
  for (const civil::SurfaceObject& surface : drawing_.surfaces) ground_->addItem(toQt(surface.name));
  const civil::AlignmentObject* const of = alignment();
  if (of == nullptr) return;
  for (const civil::SampleLineGroup& group : of->sampleLineGroups) {
    group_->addItem(toQt(group.name));
    const bool isChosen = std::any_of(chosen_.begin(), chosen_.end(), [&](civil::Handle handle) {
      return handle == group.handle || std::any_of(group.lines.begin(), group.lines.end(),
                                                   [&](const auto& line) { return line.handle == handle; });
    });
    if (isChosen) group_->setCurrentIndex(group_->count() - 1);
  }
  for (const civil::ProfileObject& profile : of->profiles) {
    if (profile.profile.isGround() || profile.profile.isEmpty()) continue;
    design_->addItem(toQt(profile.name));
    designs_.push_back(&profile);
  }
}

bool BookDialog::isProfile() const { return kind_->currentIndex() == 1; }

const civil::AlignmentObject* BookDialog::alignment() const {
  const int row = alignment_->currentIndex();
  return row < 0 ? nullptr : alignments_[static_cast<std::size_t>(row)];
}

void BookDialog::showRows() {
  const bool isOwn = paper_->currentIndex() == paper_->count() - 1;
  form_->setRowVisible(group_, !isProfile());
  form_->setRowVisible(perSheet_, !isProfile());
  form_->setRowVisible(design_, isProfile());
  form_->setRowVisible(ground_, isProfile());
  form_->setRowVisible(ownSize_, isOwn);
  form_->setRowVisible(orientation_, !isOwn);
}

canvas::Size BookDialog::paper() const {
  if (paper_->currentIndex() == paper_->count() - 1) return {width_->value(), height_->value()};
  return sheets::paperOf(toUtf8(paper_->currentText()), orientation_->currentIndex() == 1).value();
}

QString BookDialog::problem() const {
  if (alignment() == nullptr) return tr("The drawing has no alignment.");
  if (!isProfile() && group_->currentIndex() < 0)
    return tr("The alignment has no sample lines. Sample lines in the menu Edit makes some.");
  for (const QLineEdit* const field : {from_, to_})
    if (!field->text().trimmed().isEmpty() && !sheets::stationOf(toUtf8(field->text().trimmed())))
      return tr("“%1” is no station such as 1200 or 1+200.").arg(field->text());
  if (scale_->currentText() != scale_->itemText(0) && !sheets::scaleOf(toUtf8(scale_->currentText().trimmed())))
    return tr("“%1” is no scale such as 200 or 1:200.").arg(scale_->currentText());
  return {};
}

BookWish BookDialog::wish() const {
  BookWish wish;
  wish.isProfile = isProfile();
  const auto station = [](const QLineEdit* field) { return sheets::stationOf(toUtf8(field->text().trimmed())); };
  wish.sections.alignment = wish.profile.alignment = alignment();
  wish.sections.from = wish.profile.from = station(from_);
  wish.sections.to = wish.profile.to = station(to_);
  if (wish.isProfile) {
    if (const int row = design_->currentIndex(); row >= 0)
      wish.profile.design = designs_[static_cast<std::size_t>(row)];
    if (const int row = ground_->currentIndex(); row > 0)
      wish.profile.ground = &drawing_.surfaces[static_cast<std::size_t>(row - 1)];
  } else {
    wish.sections.group = &alignment()->sampleLineGroups[static_cast<std::size_t>(group_->currentIndex())];
  }
  wish.settings.paper = paper();
  wish.settings.scale = sheets::scaleOf(toUtf8(scale_->currentText().trimmed()));
  wish.settings.exaggeration = exaggeration_->value();
  wish.settings.perSheet = wish.isProfile ? 0 : static_cast<std::size_t>(perSheet_->value());
  wish.settings.hasGrid = grid_->isChecked();
  return wish;
}

void BookDialog::later() { settle_.start(); }

void BookDialog::look() {
  settle_.stop();
  QString words = problem();
  bool isPossible = words.isEmpty();
  if (isPossible) {
    QElapsedTimer clock;
    clock.start();
    try {
      const sheets::BookFacts book =
          plan_(wish(), [&](std::size_t, std::size_t) { return clock.elapsed() < kPatience; });
      words = BookWords::outcome(book.sheets, book.paper, book.scale);
    } catch (const sheets::SheetError& error) {
      isPossible = error.problem() == sheets::SheetError::Problem::Stopped;
      words = isPossible ? tr("So many sections that the sheets are counted when the book is made.")
                         : BookWords::reason(error);
    }
  }
  outcome_->setText(words);
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(isPossible);
}

}  // namespace lvx::desktop
