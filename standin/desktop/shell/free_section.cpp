#include "desktop/shell/free_section.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <QStackedWidget>
#include <utility>

#include "civil/reversible_change.h"
#include "desktop/charts/free_section_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/common/qt_text.h"
#include "desktop/ground/ground_texts.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/session.h"
#include "text/number_text.h"
#include "view/viewport.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

/// What a frame has room for, milliseconds, and how often a section that takes longer shows how far it is.
constexpr qint64 kSlice = 8;
constexpr qint64 kTellEvery = 150;

QPointF point(Vec2 place) { return {place.x, place.y}; }

std::vector<const civil::AlignmentObject*> alignmentsOf(const civil::Drawing& drawing) {
  std::vector<const civil::AlignmentObject*> all;
  for (const civil::Site& site : drawing.sites)
    for (const auto& alignment : site.alignments) all.push_back(alignment.get());
  for (const auto& alignment : drawing.siteless.alignments) all.push_back(alignment.get());
  return all;
}

}  // namespace

FreeSection::FreeSection(QWidget& window, const WindowPanels& panels, const Session& session, Edits& edits,
                         const Selection& selection)
    : window_(window), at_(panels), session_(session), edits_(edits), selection_(selection), snapping_(*panels.plan) {
  workTime_.setInterval(0);
  connect(&workTime_, &QTimer::timeout, this, &FreeSection::work);
  connect(at_.freeSection, &FreeSectionView::drawWanted, this, &FreeSection::draw);
  connect(at_.freeSection, &FreeSectionView::closeWanted, this, &FreeSection::close);
  connect(at_.freeSection, &FreeSectionView::sampleLineWanted, this, &FreeSection::askSampleLine, Qt::QueuedConnection);
  connect(at_.freeSection, &ChartView::mouseAt, this, [this](QPointF place) {
    pointed_ = place.x();
    at_.plan->update();
  });
  connect(at_.freeSection, &ChartView::mouseGone, this, [this] {
    pointed_.reset();
    at_.plan->update();
  });
  // Another section was asked for, by a click in the profile or by the choice of a sample line.
  connect(at_.section, &SectionView::sectionShown, this, &FreeSection::giveWay);
  connect(&selection_, &Selection::changed, this, [this](const QObject* from) {
    const bool isUsers = from == at_.plan || from == at_.tree || from == at_.section;
    if (isUsers && selection_.handle() != 0 && selection_.handle() == at_.section->sampleLine()) giveWay();
  });
  connect(&edits_, &Edits::aboutToChange, this, [this] {
    workTime_.stop();
    work_.reset();
    at_.freeSection->forgetAlignment();
  });
  connect(&edits_, &Edits::changed, this, [this] {
    if (isShown_) cut();
  });
}

FreeSection::~FreeSection() {
  at_.plan->endTool(*this);
  at_.plan->removeOverlay(*this);
}

void FreeSection::draw() {
  if (!session_.drawing()) return;
  points_.clear();
  forgetMouse();
  show();
  at_.plan->startTool(*this);
  cut();
}

void FreeSection::show() {
  if (!isShown_) at_.plan->addOverlay(*this);
  isShown_ = true;
  at_.sections->setCurrentWidget(at_.freeSection);
  at_.sectionDock->show();
  at_.sectionDock->raise();
}

void FreeSection::close() {
  if (!isShown_) return;
  isShown_ = false;
  at_.plan->endTool(*this);
  at_.plan->removeOverlay(*this);
  workTime_.stop();
  work_.reset();
  points_.clear();
  forgetMouse();
  pointed_.reset();
  at_.freeSection->clear();
  at_.sections->setCurrentWidget(at_.section);
}

void FreeSection::giveWay() {
  if (!at_.plan->isAtWork(*this)) close();
}

void FreeSection::forget() { close(); }

// ---------------------------------------------------------------- drawing

QString FreeSection::prompt() const {
  return points_.empty() ? tr("First point of the section") : tr("Next point of the section");
}

QStringList FreeSection::readout() const {
  if (!snap_) return {};
  return {GroundTexts::snap(*snap_)};
}

QString FreeSection::hint() const {
  const QString end = points_.size() < 2 ? tr("Esc: end") : tr("Enter or double click: end, Backspace: one back");
  return snapping_.hint() + QStringLiteral(", ") + end;
}

void FreeSection::aim(Vec2 place, double reach) {
  mouse_ = place;
  reach_ = reach;
  const std::shared_ptr<view::PlanScene>& scene = at_.plan->scene();
  snap_ = scene ? snapping_.at(*scene, place, reach) : std::nullopt;
  at_.plan->update();
}

void FreeSection::forgetMouse() {
  mouse_.reset();
  snap_.reset();
}

void FreeSection::moved(Vec2 place, double reach) {
  aim(place, reach);
  if (!points_.empty()) cut();
}

void FreeSection::left() {
  forgetMouse();
  if (!points_.empty()) cut();
}

void FreeSection::clicked(Vec2 place, double reach) {
  aim(place, reach);
  points_.push_back(snap_ ? snap_->place : place);
  cut();
}

bool FreeSection::takesKey(const QKeyEvent& key, bool isPress) {
  if (!PlanSnap::isTurn(key)) return false;
  if (!isPress) return true;
  snapping_.turn();
  if (mouse_) moved(*mouse_, reach_);
  at_.plan->update();
  return true;
}

void FreeSection::doubleClicked(Vec2 /*place*/, double /*reach*/) { finished(); }

void FreeSection::back() {
  if (points_.empty()) return;
  points_.pop_back();
  cut();
}

void FreeSection::finished() {
  at_.plan->endTool(*this);
  ended();
}

void FreeSection::ended() {
  forgetMouse();
  if (view::FreeLine(points_).isEmpty())
    close();
  else if (isShown_)
    cut();
}

std::vector<Vec2> FreeSection::wanted() const {
  std::vector<Vec2> points = points_;
  if (mouse_ && !points.empty()) points.push_back(snap_ ? snap_->place : *mouse_);
  return points;
}

// ---------------------------------------------------------------- cutting

void FreeSection::cut() {
  if (!session_.drawing()) return;
  work_ = std::make_unique<view::FreeSectionWork>(session_.drawing()->drawing(), view::FreeLine(wanted()));
  if (work_->section().line.isEmpty()) {
    workTime_.stop();
    tell(true);
    work_.reset();
    return;
  }
  // A line that follows the mouse shows at last what the first lines do, or else a run of the mouse would show nothing.
  if (!sinceTold_.isValid()) sinceTold_.start();
  workTime_.start();
}

void FreeSection::work() {
  if (!work_) return workTime_.stop();
  QElapsedTimer slice;
  slice.start();
  bool goesOn = !work_->isDone();
  while (goesOn && slice.elapsed() < kSlice) goesOn = work_->step();
  if (!goesOn) {
    workTime_.stop();
    tell(true);
    work_.reset();
  } else if (sinceTold_.elapsed() > kTellEvery) {
    tell(false);
  }
}

void FreeSection::tell(bool isDone) {
  sinceTold_.restart();
  const civil::Drawing& drawing = session_.drawing()->drawing();
  at_.freeSection->show(work_->section(), isDone,
                        {QFileInfo(toQt(drawing.path)).fileName(), drawing.linearUnit, selection_.alignment()});
}

// ---------------------------------------------------------------- the line over the plan

void FreeSection::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
  if (snap_) snapping_.paint(painter, viewport, colours, *snap_);
  const std::vector<Vec2> points = wanted();
  if (points.empty()) return;
  constexpr double kHalf = 3.0;
  QPolygonF line;
  for (const Vec2 vertex : points) line << point(viewport.toPixels(vertex));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colours.preview, 2.2));
  painter.drawPolyline(line);
  painter.setBrush(colours.preview);
  for (const QPointF& vertex : line) painter.drawRect(QRectF(vertex - QPointF(kHalf, kHalf), QSizeF(6.0, 6.0)));
  const view::FreeLine& shown = at_.freeSection->section().line;
  if (!pointed_ || shown.isEmpty()) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(colours.hover, 2.2));
  painter.drawEllipse(point(viewport.toPixels(shown.placeAt(*pointed_))), 6.0, 6.0);
}

// ---------------------------------------------------------------- sample line

void FreeSection::askSampleLine() {
  if (!edits_.isPossible() || at_.plan->isAtWork(*this)) return;
  const civil::Drawing& drawing = session_.drawing()->drawing();
  const std::vector<const civil::AlignmentObject*> alignments = alignmentsOf(drawing);
  const view::FreeLine line(points_);

  QDialog dialog(&window_);
  dialog.setObjectName(QStringLiteral("freeSampleLineDialog"));
  dialog.setWindowTitle(tr("Make a sample line"));
  auto* const form = new QFormLayout(&dialog);
  auto* const alignment = new QComboBox;
  alignment->setObjectName(QStringLiteral("alignment"));
  auto* const group = new QComboBox;
  group->setObjectName(QStringLiteral("group"));
  auto* const name = new QLineEdit(tr("Free sections"));
  name->setObjectName(QStringLiteral("newGroup"));
  auto* const what = new QLabel;
  what->setObjectName(QStringLiteral("what"));
  what->setWordWrap(true);
  form->addRow(tr("&Alignment"), alignment);
  form->addRow(tr("&Group"), group);
  form->addRow(tr("&Name of the new group"), name);
  form->addRow(what);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

  const auto chosen = [&]() -> const civil::AlignmentObject* {
    const int index = alignment->currentIndex();
    return index < 0 ? nullptr : alignments[static_cast<std::size_t>(index)];
  };
  const auto check = [&] {
    const civil::AlignmentObject* const object = chosen();
    const bool isNew = group->currentData().toULongLong() == 0;
    name->setEnabled(isNew);
    QString why;
    QString text;
    const auto made = object != nullptr ? view::sampleLineAlong(line, object->geometry) : std::nullopt;
    const std::string wantedName = toUtf8(name->text().trimmed());
    if (object == nullptr) {
      why = tr("The drawing has no alignment.");
    } else if (!made) {
      why = tr("The line doesn't cross alignment %1. A sample line has to.").arg(toQt(object->name));
    } else if (isNew && wantedName.empty()) {
      why = tr("A name is wanted.");
    } else {
      text = tr("It crosses the alignment at %1.").arg(toQt(text::stationText(made->station)));
      for (const civil::SampleLineGroup& other : object->sampleLineGroups)
        if (isNew && other.name == wantedName) why = tr("The alignment has a group of this name already.");
    }
    what->setText(why.isEmpty() ? text : why);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(why.isEmpty());
  };
  const auto fillGroups = [&] {
    group->clear();
    if (const civil::AlignmentObject* const object = chosen())
      for (const civil::SampleLineGroup& lines : object->sampleLineGroups)
        group->addItem(toQt(lines.name), QVariant::fromValue<qulonglong>(lines.handle));
    group->addItem(tr("New group"), QVariant::fromValue<qulonglong>(0));
    check();
  };
  int first = 0;
  for (std::size_t i = alignments.size(); i-- > 0;)
    if (view::sampleLineAlong(line, alignments[i]->geometry)) first = static_cast<int>(i);
  for (const civil::AlignmentObject* const object : alignments) alignment->addItem(toQt(object->name));
  alignment->setCurrentIndex(alignments.empty() ? -1 : first);
  connect(alignment, &QComboBox::currentIndexChanged, &dialog, fillGroups);
  connect(group, &QComboBox::currentIndexChanged, &dialog, check);
  connect(name, &QLineEdit::textChanged, &dialog, check);
  fillGroups();
  if (dialog.exec() != QDialog::Accepted || !edits_.isPossible() || chosen() == nullptr) return;
  makeSampleLine(chosen()->handle, group->currentData().toULongLong(), name->text().trimmed());
}

void FreeSection::makeSampleLine(civil::Handle alignment, civil::Handle group, const QString& newGroup) {
  const auto entry = session_.drawing()->index().byHandle(alignment);
  if (!entry || entry->alignment == nullptr) return;
  auto line = view::sampleLineAlong(view::FreeLine(points_), entry->alignment->geometry);
  if (!line) return;
  line->name = text::stationText(line->station);
  const QString title = tr("New sample line %1").arg(toQt(line->name));
  if (group != 0) {
    if (edits_.make(title, civil::addingSampleLine(group, std::move(*line))) != 0) close();
  } else {
    std::vector<civil::SampleLine> lines;
    lines.push_back(std::move(*line));
    if (edits_.make(title, civil::addingSampleLineGroup(alignment, toUtf8(newGroup), std::move(lines))) != 0) close();
  }
}

}  // namespace lvx::desktop
