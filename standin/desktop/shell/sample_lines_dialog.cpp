#include "desktop/shell/sample_lines_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/plan/object_names.h"
#include "text/number_text.h"

namespace lvx::desktop {

using civil::SampleLineRules;

namespace {

/// What is typed is looked at once the hand rests.
constexpr std::chrono::milliseconds kSettle{150};
constexpr int kDecimals = 6;
constexpr double kUsualInterval = 20.0;
constexpr double kUsualRadius = 100.0;

QString numberText(double value) { return toQt(text::shortText(value, kDecimals)); }

/// With a point or a comma for the decimals.
std::optional<double> numberOf(QString typed) {
  typed = typed.trimmed().replace(QLatin1Char(','), QLatin1Char('.'));
  bool isNumber = false;
  const double value = QLocale::c().toDouble(typed, &isNumber);
  return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// Stations as 1020.5 or 1+020.5, several between semicolons.
std::optional<std::vector<double>> stationsOf(QString typed) {
  typed.replace(QLatin1Char(','), QLatin1Char('.'));
  const std::array rule{civil::SampleLineRule{"stations", toUtf8(typed.trimmed())}};
  try {
    return civil::sampleLineRules(rule).stations;
  } catch (const civil::SampleLineError&) {
    return std::nullopt;
  }
}

template <class Use>
void eachAlignment(const civil::Drawing& drawing, Use use) {
  for (const civil::Site& site : drawing.sites)
    for (const auto& alignment : site.alignments) use(site, *alignment);
  for (const auto& alignment : drawing.siteless.alignments) use(drawing.siteless, *alignment);
}

/// The first of "Name", "Name 2", … that no group has.
QString freeName(const QString& base, const std::vector<civil::SampleLineGroup>& groups) {
  for (int number = 1;; ++number) {
    const QString name = number == 1 ? base : QStringLiteral("%1 %2").arg(base).arg(number);
    const bool isTaken = std::any_of(groups.begin(), groups.end(),
                                     [&](const civil::SampleLineGroup& group) { return toQt(group.name) == name; });
    if (!isTaken) return name;
  }
}

}  // namespace

SampleLinesDialog::SampleLinesDialog(runtime::OpenDrawingRef drawing, civil::Handle alignment, QWidget* parent)
    : QDialog(parent), drawing_(std::move(drawing)) {
  build();
  setWindowTitle(tr("Sample lines"));
  fillAlignments(alignment);
  SampleLineRules usual;
  usual.every = kUsualInterval;
  usual.ends = true;
  usual.left = SampleLineRules::kWidth;
  usual.right = SampleLineRules::kWidth;
  setRules(usual);
  if (const civil::AlignmentObject* const object = alignmentObject())
    name_.edit->setText(freeName(tr("Sample lines"), object->sampleLineGroups));
  connectFields();
  name_.edit->setFocus();
  name_.edit->selectAll();
  change();
}

SampleLinesDialog::SampleLinesDialog(runtime::OpenDrawingRef drawing, civil::Handle group, const SampleLineRules& rules,
                                     QWidget* parent)
    : QDialog(parent), drawing_(std::move(drawing)), group_(group) {
  build();
  const auto entry = drawing_->index().byHandle(group);
  fillAlignments(entry->alignment->handle);
  alignment_->setEnabled(false);
  const QString name = toQt(entry->as<civil::SampleLineGroup>()->name);
  setWindowTitle(tr("Edit sample lines “%1”").arg(name));
  setRules(rules);
  name_.edit->setText(name);
  connectFields();
  name_.edit->setFocus();
  change();
}

// ---------------------------------------------------------------- building

QGridLayout* SampleLinesDialog::addBox(const QString& title) {
  auto* const box = new QGroupBox(title);
  auto* const grid = new QGridLayout(box);
  constexpr int kGap = 4;
  grid->setVerticalSpacing(kGap);
  grid->setColumnStretch(2, 1);
  constexpr int kLabelWidth = 270;
  constexpr int kFieldWidth = 190;
  constexpr int kErrorWidth = 230;
  grid->setColumnMinimumWidth(0, kLabelWidth);
  grid->setColumnMinimumWidth(1, kFieldWidth);
  grid->setColumnMinimumWidth(2, kErrorWidth);
  static_cast<QVBoxLayout*>(layout())->addWidget(box);
  return grid;
}

QLabel* SampleLinesDialog::addError(QGridLayout& grid, int row, QWidget* buddy) {
  auto* const error = new QLabel;
  error->setObjectName(buddy->objectName() + QStringLiteral("Error"));
  error->setWordWrap(true);
  error->setTextFormat(Qt::PlainText);
  QPalette colours = error->palette();
  colours.setColor(QPalette::WindowText, palette().color(QPalette::Window).lightness() < 128
                                             ? QColor(0xff, 0x8a, 0x80)
                                             : QColor(0xb0, 0x00, 0x20));
  error->setPalette(colours);
  grid.addWidget(error, row, 2);
  return error;
}

SampleLinesDialog::Field SampleLinesDialog::addField(QGridLayout& grid, const char* name, const QString& label,
                                                     const QString& tip) {
  const int row = grid.rowCount();
  auto* const text = new QLabel(label);
  auto* const edit = new QLineEdit;
  edit->setObjectName(QLatin1String(name));
  edit->setToolTip(tip);
  edit->setAccessibleName(QString(label).remove(QLatin1Char('&')));
  text->setBuddy(edit);
  grid.addWidget(text, row, 0);
  grid.addWidget(edit, row, 1);
  return {edit, addError(grid, row, edit)};
}

SampleLinesDialog::Field SampleLinesDialog::addTick(QGridLayout& grid, const char* name, const QString& label,
                                                    QCheckBox*& tick) {
  const int row = grid.rowCount();
  tick = new QCheckBox(label);
  tick->setObjectName(QLatin1String(name) + QStringLiteral("Tick"));
  auto* const edit = new QLineEdit;
  edit->setObjectName(QLatin1String(name));
  edit->setAccessibleName(QString(label).remove(QLatin1Char('&')));
  grid.addWidget(tick, row, 0);
  grid.addWidget(edit, row, 1);
  connect(tick, &QCheckBox::toggled, edit, &QWidget::setEnabled);
  edit->setEnabled(false);
  return {edit, addError(grid, row, edit)};
}

void SampleLinesDialog::build() {
  setObjectName(QStringLiteral("sampleLinesDialog"));
  setAttribute(Qt::WA_DeleteOnClose);
  new QVBoxLayout(this);
  const auto addList = [](QGridLayout& grid, const char* name, const QString& label, QComboBox*& list,
                          int columns = 1) {
    const int row = grid.rowCount();
    auto* const text = new QLabel(label);
    list = new QComboBox;
    list->setObjectName(QLatin1String(name));
    list->setAccessibleName(QString(label).remove(QLatin1Char('&')));
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    text->setBuddy(list);
    grid.addWidget(text, row, 0);
    grid.addWidget(list, row, 1, 1, columns);
    return row;
  };
  const auto addBoxRow = [](QGridLayout& grid, const char* name, const QString& label) {
    auto* const tick = new QCheckBox(label);
    tick->setObjectName(QLatin1String(name));
    grid.addWidget(tick, grid.rowCount(), 0, 1, 3);
    return tick;
  };

  QGridLayout* const what = addBox(tr("Group"));
  addList(*what, "linesAlignment", tr("&Alignment"), alignment_, 2);
  name_ = addField(*what, "linesName", tr("&Group name"), tr("Reports show the group under this name"));

  QGridLayout* const where = addBox(tr("Where lines stand"));
  every_ = addTick(*where, "linesEvery", tr("A line &every"), everyTick_);
  addList(*where, "linesOrigin", tr("&Counted"), origin_);
  origin_->addItems({tr("at multiples"), tr("from the first station")});
  half_ = addTick(*where, "linesHalf", tr("&Half of that in curves with a radius below"), halfTick_);
  from_ = addField(*where, "linesFrom", tr("&From station"), tr("Empty: from the start of the alignment"));
  to_ = addField(*where, "linesTo", tr("&To station"), tr("Empty: to the end of the alignment"));
  ends_ = addBoxRow(*where, "linesEnds", tr("At &both ends"));
  elements_ = addBoxRow(*where, "linesElements", tr("At the ends of hori&zontal elements"));
  const int profileRow = addList(*where, "linesProfile", tr("&Profile"), profile_);
  profileError_ = addError(*where, profileRow, profile_);
  points_ = addBoxRow(*where, "linesPoints", tr("At the &intersection points of the profile"));
  curves_ = addBoxRow(*where, "linesCurves", tr("At the ends of its &vertical curves"));
  stations_ = addField(*where, "linesStations", tr("At the&se stations"), tr("With semicolons: 0+020; 35.5"));
  tolerance_ = addField(*where, "linesTolerance", tr("&Merge lines closer than"), tr("Lines as close as this are one"));

  QGridLayout* const wide = addBox(tr("How wide"));
  left_ = addTick(*wide, "linesLeft", tr("Fixed width to the &left"), leftTick_);
  right_ = addTick(*wide, "linesRight", tr("Fixed width to the &right"), rightTick_);
  const int surfaceRow = addList(*wide, "linesSurface", tr("&Otherwise to the border of"), surface_);
  surfaceError_ = addError(*wide, surfaceRow, surface_);
  largest_ = addField(*wide, "linesLargest", tr("Largest &width to the border"),
                      tr("Lines that don't reach the border, or don't meet the surface, are this wide"));
  skew_ = addField(*wide, "linesSkew", tr("S&kew [°]"), tr("By how much lines turn clockwise against square"));

  QGridLayout* const names = addBox(tr("Names"));
  pattern_ = addField(*names, "linesPattern", tr("Patter&n of the names"),
                      tr("{station} as reports print it, {kind} why the line stands there, {n} its number"));

  result_ = new QLabel;
  result_->setObjectName(QStringLiteral("linesResult"));
  result_->setWordWrap(true);
  result_->setTextFormat(Qt::PlainText);
  result_->setMinimumHeight(2 * result_->fontMetrics().lineSpacing());
  result_->setAccessibleName(tr("What the rules give"));
  layout()->addWidget(result_);
  if (group_ != 0) {
    auto* const note =
        new QLabel(tr("OK makes all lines of the group anew. Lines that were added, deleted or pulled by hand are as "
                      "the rules make them then; Undo brings them back."));
    note->setObjectName(QStringLiteral("linesAnew"));
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    layout()->addWidget(note);
  }
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  layout()->addWidget(buttons_);
  connect(buttons_, &QDialogButtonBox::accepted, this, &SampleLinesDialog::tryAccept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  settle_.setSingleShot(true);
  connect(&settle_, &QTimer::timeout, this, &SampleLinesDialog::makeLines);
  connect(&maker_, &SampleLinesMaker::progressed, this, &SampleLinesDialog::showProgress);
}

void SampleLinesDialog::fillAlignments(civil::Handle chosen) {
  eachAlignment(drawing_->drawing(), [&](const civil::Site& site, const civil::AlignmentObject& alignment) {
    alignment_->addItem(ObjectNames::alignment(site, alignment), QVariant::fromValue<quint64>(alignment.handle));
  });
  const int row = alignment_->findData(QVariant::fromValue<quint64>(chosen));
  alignment_->setCurrentIndex(std::max(row, 0));
  fillProfiles();
  fillSurfaces();
}

void SampleLinesDialog::fillProfiles() {
  const QSignalBlocker quiet(profile_);
  const QString before = profile_->currentText();
  profile_->clear();
  const civil::AlignmentObject* const object = alignmentObject();
  if (object == nullptr) return;
  int design = -1;
  for (const civil::ProfileObject& profile : object->profiles) {
    if (design < 0 && !profile.profile.isGround()) design = profile_->count();
    profile_->addItem(toQt(profile.name));
  }
  // The design profile is the one with intersection points.
  const int row = profile_->findText(before);
  profile_->setCurrentIndex(row >= 0 ? row : std::max(design, 0));
  const auto station = [](double value) { return toQt(text::stationText(value)); };
  from_.edit->setPlaceholderText(station(object->geometry.startStation()));
  to_.edit->setPlaceholderText(station(object->geometry.endStation()));
}

void SampleLinesDialog::fillSurfaces() {
  const QSignalBlocker quiet(surface_);
  const QString before = surface_->currentText();
  surface_->clear();
  for (const civil::SurfaceObject& surface : drawing_->drawing().surfaces) surface_->addItem(toQt(surface.name));
  surface_->setCurrentIndex(std::max(surface_->findText(before), 0));
}

void SampleLinesDialog::setRules(const SampleLineRules& rules) {
  const auto ticked = [](QCheckBox* tick, const Field& field, bool isOn, double value) {
    tick->setChecked(isOn);
    field.edit->setText(numberText(value));
  };
  ticked(everyTick_, every_, rules.every > 0.0, rules.every > 0.0 ? rules.every : kUsualInterval);
  origin_->setCurrentIndex(rules.countsFromStart ? 1 : 0);
  ticked(halfTick_, half_, rules.halvedBelow > 0.0, rules.halvedBelow > 0.0 ? rules.halvedBelow : kUsualRadius);
  const auto station = [](const std::optional<double>& value) { return value ? numberText(*value) : QString(); };
  from_.edit->setText(station(rules.from));
  to_.edit->setText(station(rules.to));
  ends_->setChecked(rules.ends);
  elements_->setChecked(rules.elements);
  if (!rules.profile.empty()) profile_->setCurrentIndex(std::max(profile_->findText(toQt(rules.profile)), 0));
  points_->setChecked(rules.intersectionPoints);
  curves_->setChecked(rules.curveEnds);
  QStringList listed;
  for (const double value : rules.stations) listed << numberText(value);
  stations_.edit->setText(listed.join(QStringLiteral("; ")));
  tolerance_.edit->setText(numberText(rules.tolerance));
  ticked(leftTick_, left_, rules.left.has_value(), rules.left.value_or(SampleLineRules::kWidth));
  ticked(rightTick_, right_, rules.right.has_value(), rules.right.value_or(SampleLineRules::kWidth));
  if (!rules.border.empty()) surface_->setCurrentIndex(std::max(surface_->findText(toQt(rules.border)), 0));
  largest_.edit->setText(numberText(rules.largest));
  skew_.edit->setText(numberText(rules.skew));
  pattern_.edit->setText(toQt(rules.name));
}

void SampleLinesDialog::connectFields() {
  for (QLineEdit* const edit : findChildren<QLineEdit*>())
    connect(edit, &QLineEdit::textChanged, this, &SampleLinesDialog::change);
  for (QCheckBox* const tick : findChildren<QCheckBox*>())
    connect(tick, &QCheckBox::toggled, this, &SampleLinesDialog::change);
  connect(alignment_, &QComboBox::currentIndexChanged, this, [this] {
    fillProfiles();
    change();
  });
  for (QComboBox* const list : {origin_, profile_, surface_})
    connect(list, &QComboBox::currentIndexChanged, this, &SampleLinesDialog::change);
}

// ---------------------------------------------------------------- reading

civil::Handle SampleLinesDialog::alignment() const { return alignment_->currentData().toULongLong(); }

std::string SampleLinesDialog::name() const { return toUtf8(name_.edit->text().trimmed()); }

std::vector<civil::SampleLine> SampleLinesDialog::lines() const { return sampleLinesOf(maker_.lines()); }

const civil::AlignmentObject* SampleLinesDialog::alignmentObject() const {
  const auto entry = drawing_->index().byHandle(alignment());
  return entry ? entry->as<civil::AlignmentObject>() : nullptr;
}

void SampleLinesDialog::fail(const Field& field, const QString& why) {
  isRight_ = false;
  if (field.error->text().isEmpty()) field.error->setText(why);
}

std::optional<double> SampleLinesDialog::lengthOf(const Field& field, bool isAbove0) {
  const auto value = numberOf(field.edit->text());
  if (!value)
    fail(field, tr("A number is wanted."));
  else if (isAbove0 && !(*value > 0.0))
    fail(field, tr("A number above 0 is wanted."));
  else
    return value;
  return std::nullopt;
}

std::optional<double> SampleLinesDialog::stationOf(const Field& field) {
  if (field.edit->text().trimmed().isEmpty()) return std::nullopt;
  const auto stations = stationsOf(field.edit->text());
  if (stations && stations->size() == 1) return stations->front();
  fail(field, tr("A station is wanted, as 1020.5 or 1+020.5."));
  return std::nullopt;
}

void SampleLinesDialog::readWhere(SampleLineRules& rules, const civil::AlignmentObject& object) {
  const civil::Alignment& axis = object.geometry;
  origin_->setEnabled(everyTick_->isChecked());
  halfTick_->setEnabled(everyTick_->isChecked());
  half_.edit->setEnabled(everyTick_->isChecked() && halfTick_->isChecked());
  if (everyTick_->isChecked()) {
    rules.every = lengthOf(every_, true).value_or(0.0);
    rules.countsFromStart = origin_->currentIndex() == 1;
    if (halfTick_->isChecked()) rules.halvedBelow = lengthOf(half_, true).value_or(0.0);
  }
  rules.from = stationOf(from_);
  rules.to = stationOf(to_);
  const QString reach =
      tr("The alignment runs from %1 to %2.")
          .arg(toQt(text::stationText(axis.startStation())), toQt(text::stationText(axis.endStation())));
  if (rules.from && *rules.from > axis.endStation()) fail(from_, reach);
  if (rules.to && *rules.to < axis.startStation()) fail(to_, reach);
  if (rules.from && rules.to && *rules.from > *rules.to) fail(to_, tr("This lies before the first station."));
  rules.ends = ends_->isChecked();
  rules.elements = elements_->isChecked();
  rules.intersectionPoints = points_->isChecked();
  rules.curveEnds = curves_->isChecked();
  const bool wantsProfile = rules.intersectionPoints || rules.curveEnds;
  profile_->setEnabled(!object.profiles.empty());
  if (wantsProfile) rules.profile = toUtf8(profile_->currentText());
  if (wantsProfile && object.profiles.empty()) fail({nullptr, profileError_}, tr("This alignment has no profile."));
  if (!stations_.edit->text().trimmed().isEmpty()) {
    const auto stations = stationsOf(stations_.edit->text());
    if (!stations) {
      fail(stations_, tr("Stations between semicolons are wanted."));
    } else {
      rules.stations = *stations;
      const auto isOff = [&](double station) {
        return station < axis.startStation() - civil::Alignment::kEndTolerance ||
               station > axis.endStation() + civil::Alignment::kEndTolerance;
      };
      if (std::any_of(stations->begin(), stations->end(), isOff)) fail(stations_, reach);
    }
  }
  rules.tolerance = lengthOf(tolerance_, false).value_or(SampleLineRules::kTolerance);
  if (rules.tolerance < 0.0) fail(tolerance_, tr("A number of 0 or above is wanted."));
}

void SampleLinesDialog::readWidths(SampleLineRules& rules) {
  if (leftTick_->isChecked()) rules.left = lengthOf(left_, true);
  if (rightTick_->isChecked()) rules.right = lengthOf(right_, true);
  const bool wantsBorder = !leftTick_->isChecked() || !rightTick_->isChecked();
  surface_->setEnabled(wantsBorder && surface_->count() > 0);
  largest_.edit->setEnabled(wantsBorder);
  if (wantsBorder) {
    rules.border = toUtf8(surface_->currentText());
    if (surface_->count() == 0)
      fail({nullptr, surfaceError_}, tr("The drawing has no surface: give both widths."));
    else if (drawing_->drawing().surfaces[static_cast<std::size_t>(surface_->currentIndex())].surface.isEmpty())
      fail({nullptr, surfaceError_}, tr("This surface has no ground."));
    rules.largest = lengthOf(largest_, true).value_or(SampleLineRules::kLargestWidth);
  }
  rules.skew = lengthOf(skew_, false).value_or(0.0);
  constexpr double kSquare = 90.0;
  if (std::abs(rules.skew) >= kSquare) fail(skew_, tr("An angle between -90 and 90 is wanted."));
}

void SampleLinesDialog::readNames(SampleLineRules& rules, const civil::AlignmentObject& object) {
  if (name().empty()) fail(name_, tr("A name is wanted."));
  for (const civil::SampleLineGroup& group : object.sampleLineGroups)
    if (group.handle != group_ && group.name == name())
      fail(name_, tr("The alignment has a group of this name already."));
  SampleLineRules probe;
  probe.ends = true;
  probe.name = toUtf8(pattern_.edit->text());
  try {
    civil::checkRules(probe);
    rules.name = probe.name;
  } catch (const civil::SampleLineError&) {
    fail(pattern_, tr("In braces only {station}, {kind} and {n} can stand."));
  }
}

void SampleLinesDialog::change() {
  if (accepts_) return;
  for (QLabel* const label : findChildren<QLabel*>())
    if (label->objectName().endsWith(QLatin1String("Error"))) label->clear();
  isRight_ = true;
  SampleLineRules rules;
  const civil::AlignmentObject* const object = alignmentObject();
  if (object == nullptr) {
    isRight_ = false;
  } else {
    readWhere(rules, *object);
    readWidths(rules);
    readNames(rules, *object);
  }
  rules_ = rules;
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(false);
  settle_.start(kSettle);
}

void SampleLinesDialog::makeLines() {
  maker_.stop();
  const civil::AlignmentObject* const object = alignmentObject();
  if (!isRight_ || object == nullptr) {
    result_->setText(object == nullptr ? tr("The drawing has no alignment.") : tr("Something is missing above."));
    Q_EMIT previewed(nullptr);
    return;
  }
  const civil::Profile* profile = nullptr;
  if (const int row = profile_->currentIndex(); row >= 0 && static_cast<std::size_t>(row) < object->profiles.size())
    profile = &object->profiles[static_cast<std::size_t>(row)].profile;
  const civil::TinSurface* border = nullptr;
  if (const int row = surface_->currentIndex(); row >= 0)
    border = &drawing_->drawing().surfaces[static_cast<std::size_t>(row)].surface;
  try {
    maker_.start(drawing_, object->geometry, border, rules_, sampleLineStations(rules_, object->geometry, profile));
  } catch (const civil::SampleLineError&) {
    const bool setsLines = rules_.every > 0.0 || rules_.ends || rules_.elements || rules_.intersectionPoints ||
                           rules_.curveEnds || !rules_.stations.empty();
    const bool isTooMany =
        rules_.every > 0.0 && object->geometry.length() / rules_.every >= static_cast<double>(civil::kMostSampleLines);
    if (!setsLines) {
      result_->setText(tr("Nothing says where lines stand yet."));
    } else if (isTooMany) {
      fail(every_, tr("This gives more than %1 lines.").arg(civil::kMostSampleLines));
      result_->setText(tr("Something is missing above."));
    } else {
      result_->setText(tr("These rules give no line here."));
    }
    maker_.stop();
    Q_EMIT previewed(nullptr);
  }
}

void SampleLinesDialog::showProgress() {
  Q_EMIT previewed(maker_.shape());
  const auto& lines = maker_.lines();
  const int count = static_cast<int>(lines.size());
  if (!maker_.isDone()) {
    result_->setText(tr("%n line(s) so far…", nullptr, count));
  } else {
    constexpr std::size_t kShownNames = 5;
    QStringList names;
    for (std::size_t i = 0; i < std::min(kShownNames, lines.size()); ++i) names << toQt(lines[i].name);
    if (lines.size() > kShownNames) names << QStringLiteral("…");
    result_->setText(tr("%n line(s): %1", nullptr, count).arg(names.join(QStringLiteral(", "))));
  }
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(!accepts_ && isRight_ && count > 0);
  if (accepts_ && maker_.isDone()) accept();
}

void SampleLinesDialog::tryAccept() {
  if (settle_.isActive() || !isRight_) return;
  accepts_ = true;
  if (maker_.isDone()) {
    accept();
    return;
  }
  // The rest is made first; only Cancel is there meanwhile.
  for (QGroupBox* const box : findChildren<QGroupBox*>()) box->setEnabled(false);
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(false);
}

void SampleLinesDialog::letGo() {
  settle_.stop();
  maker_.stop();
  Q_EMIT previewed(nullptr);
}

void SampleLinesDialog::lookAgain() {
  if (accepts_ || !isVisible()) return;
  if (alignmentObject() == nullptr || (group_ != 0 && !drawing_->index().byHandle(group_))) {
    reject();
    return;
  }
  fillProfiles();
  fillSurfaces();
  change();
}

void SampleLinesDialog::done(int result) {
  settle_.stop();
  Q_EMIT previewed(nullptr);
  QDialog::done(result);
}

}  // namespace lvx::desktop
