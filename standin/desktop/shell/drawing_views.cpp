#include "desktop/shell/drawing_views.h"

#include <QDockWidget>
#include <QEvent>

#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/panels/diagnostics_view.h"
#include "desktop/panels/properties_view.h"
#include "desktop/shell/desktop_front_end.h"
#include "desktop/shell/drawing_loader.h"
#include "desktop/shell/linked_cursor.h"
#include "desktop/shell/session.h"
#include "properties/go_to.h"
#include "view/plan_scene.h"

namespace lvx::desktop {

DrawingViews::DrawingViews(const WindowPanels& panels, PlaceLine& place, const Session& session,
                           const DesktopFrontEnd& frontEnd)
    : at_(panels), place_(place), session_(session), frontEnd_(frontEnd), mark_(*panels.plan) {
  connectPlan();
  connectTree();
  connectCharts();
  connect(&selection_, &Selection::changed, this, &DrawingViews::follow);
  cursor_ = std::make_unique<LinkedCursor>(at_, session_, selection_);
  connect(&visibility_, &ObjectVisibility::changed, this, [this] {
    at_.plan->setVisibility(visibility_.visibility());
    at_.tree->setVisibility(visibility_.visibility());
  });
  connect(at_.tree, &DrawingTree::visibilityWanted, &visibility_, &ObjectVisibility::setShown);
}

DrawingViews::~DrawingViews() { clear(); }

void DrawingViews::connectPlan() {
  at_.plan->installEventFilter(this);
  connect(at_.plan, &PlanView::clicked, this, [this](quint64 handle) { selection_.select(handle, at_.plan); });
  connect(at_.plan, &PlanView::activated, this, [this](quint64 handle) {
    if (handle != 0) zoomTo(handle);
  });
  connect(at_.plan, &PlanView::mouseAt, &place_, &PlaceLine::showMouse);
  connect(at_.plan, &PlanView::mouseGone, &place_, &PlaceLine::hideMouse);
}

void DrawingViews::connectTree() {
  connect(at_.tree, &DrawingTree::selected, this, [this](quint64 handle) {
    if (!frontEnd_.isPicking()) selection_.select(handle, at_.tree);
  });
  connect(at_.tree, &DrawingTree::clicked, this, [this](quint64 handle) {
    if (handle != 0 && frontEnd_.isPicking()) at_.plan->offerPick(handle);
  });
  connect(at_.tree, &DrawingTree::jumped, this, &DrawingViews::jumpTo);
  connect(at_.tree, &DrawingTree::activated, this, [this](quint64 handle) {
    if (frontEnd_.isPicking())
      at_.plan->offerPick(handle);
    else
      zoomTo(handle);
  });
}

void DrawingViews::jumpTo(civil::Handle handle) {
  if (handle == 0) return;
  if (frontEnd_.isPicking()) {
    at_.plan->offerPick(handle);
    return;
  }
  selection_.select(handle, at_.tree);
  zoomTo(handle);
}

void DrawingViews::connectCharts() {
  connect(at_.profile, &ProfileView::profileClicked, this, [this](quint64 handle) {
    if (frontEnd_.isPicking())
      at_.plan->offerPick(handle);
    else
      selection_.select(handle, at_.profile);
  });
  connect(at_.profile, &ProfileView::stationClicked, this, &DrawingViews::openSection);
  connect(at_.section, &SectionView::sampleLineChanged, this,
          [this](quint64 handle) { selection_.select(handle, at_.section); });
  connect(at_.properties, &PropertiesView::placeWanted, this, &DrawingViews::showPlace);
}

void DrawingViews::openSection(double station, bool isOnLine) {
  if (frontEnd_.isPicking() || !session_.drawing()) return;
  at_.section->showNearest(session_.drawing()->drawing(), at_.profile->alignment(), station);
  // Who clicks on a line chooses it, and goes on looking at the profile.
  if (isOnLine || at_.section->model() == nullptr) return;
  if (at_.section->sampleLine() != 0) selection_.select(at_.section->sampleLine(), at_.profile);
  at_.sectionDock->show();
  at_.sectionDock->raise();
}

void DrawingViews::tellProperties() {
  if (const auto& drawing = session_.drawing(); drawing && scene_)
    at_.properties->show(drawing->drawing(), drawing->index(), selection_.alignment(), selection_.handle());
}

void DrawingViews::goTo(const properties::GoTo& place) {
  if (!scene_) return;
  // A pick goes on where the user looks now; what is chosen stays for it.
  if (place.handle != 0 && !frontEnd_.isPicking()) selection_.select(place.handle, this);
  if (place.kind == properties::GoTo::Kind::Object) {
    mark_.clear();
    zoomTo(place.handle);
  } else {
    showPlace({place.place.x, place.place.y, place.place.x, place.place.y});
  }
}

void DrawingViews::raiseProperties() { at_.showProperties(); }

void DrawingViews::show(const LoadedDrawing& loaded) {
  const civil::Drawing& drawing = loaded.drawing->drawing();
  scene_ = loaded.scene;
  selection_.setDrawing(loaded.drawing);
  visibility_.setDrawing(loaded.drawing);
  awaitsPaint_ = true;
  at_.plan->setScene(scene_);
  place_.setScene(scene_);
  at_.plan->zoomToAll();
  at_.tree->setDrawing(&drawing);
  at_.diagnostics->setDrawing(&drawing);
  const civil::AlignmentObject* const alignment = selection_.alignment();
  place_.setAlignment(alignment);
  if (alignment != nullptr) at_.profile->show(drawing, alignment->handle);
  sources_ = loaded.sources;
  tellProperties();
  if (before_ && before_->sources.paths() == sources_.paths()) goBack();
  before_.reset();
}

void DrawingViews::goBack() {
  const runtime::OpenDrawing& drawing = *session_.drawing();
  const auto again = [&](const std::optional<ObjectKey>& key) { return key ? findAgain(drawing, *key) : 0; };
  at_.plan->setPlace(before_->plan);
  if (const civil::Handle profile = again(before_->profile); profile != 0)
    at_.profile->show(drawing.drawing(), profile);
  if (const civil::Handle section = again(before_->section); section != 0)
    at_.section->show(drawing.drawing(), section);
  else if (const civil::Handle alignment = again(before_->sectionAlignment); alignment != 0)
    at_.section->showNearest(drawing.drawing(), alignment, before_->sectionStation);
  if (const civil::Handle chosen = again(before_->selection); chosen != 0) selection_.select(chosen, this);
  at_.tree->setState(before_->tree);
  visibility_.hideAgain(before_->hidden);
}

void DrawingViews::clear() {
  if (scene_ && session_.drawing()) {
    const runtime::OpenDrawing& drawing = *session_.drawing();
    before_ = Before{sources_,
                     at_.plan->place(),
                     at_.tree->state(),
                     keyOf(drawing, selection_.handle()),
                     keyOf(drawing, at_.section->sampleLine()),
                     keyOf(drawing, at_.section->alignment()),
                     at_.section->model() != nullptr ? at_.section->model()->station : 0.0,
                     keyOf(drawing, at_.profile->alignment()),
                     visibility_.kept()};
  }
  mark_.clear();
  at_.properties->clear();
  at_.plan->setScene(nullptr);
  cursor_->forget();
  at_.section->clear();
  at_.profile->clear();
  at_.tree->setDrawing(nullptr);
  at_.diagnostics->setDrawing(nullptr);
  place_.setAlignment(nullptr);
  place_.setScene(nullptr);
  selection_.setDrawing(nullptr);
  visibility_.setDrawing(nullptr);
  scene_.reset();
}

void DrawingViews::refresh() {
  if (scene_) {
    scene_->refreshCorridors();
    at_.plan->refresh();
    tellProperties();
  }
  if (session_.drawing()) at_.section->showAgain(session_.drawing()->drawing(), false);
}

void DrawingViews::followEdit(civil::Handle about) {
  if (!scene_) return;
  const civil::Drawing& drawing = session_.drawing()->drawing();
  scene_->refreshLists();
  at_.tree->setVisibility(visibility_.visibility());
  at_.plan->refresh();
  at_.tree->refresh();
  if (const civil::Handle alignment = at_.profile->alignment(); alignment != 0)
    at_.profile->show(drawing, alignment, true);
  at_.section->showAgain(drawing, true);
  cursor_->forget();
  const bool isThere = session_.drawing()->index().byHandle(about).has_value();
  selection_.select(isThere ? about : selection_.handle(), this);
}

void DrawingViews::refreshDiagnostics() {
  at_.diagnostics->setDrawing(&session_.drawing()->drawing());
  at_.tree->refresh();  // what was made here stands in a file now
}

void DrawingViews::zoomTo(civil::Handle handle) {
  if (scene_) at_.plan->zoomTo(handle);
}

void DrawingViews::zoomToSelection() {
  if (selection_.handle() != 0) zoomTo(selection_.handle());
}

void DrawingViews::raiseProfilesOf(civil::Handle alignment) {
  if (at_.profile->alignment() != alignment) at_.profile->show(session_.drawing()->drawing(), alignment);
  at_.profileDock->show();
  at_.profileDock->raise();
}

void DrawingViews::follow(const QObject* from) {
  at_.plan->setSelected(selection_.shown());
  tellProperties();
  if (from != at_.tree) at_.tree->reveal(selection_.handle());
  Q_EMIT selectionChanged();
  if (selection_.handle() == 0) return;
  const civil::AlignmentObject* const alignment = selection_.alignment();
  place_.setAlignment(alignment);
  if (alignment != nullptr && at_.profile->alignment() != alignment->handle)
    at_.profile->show(session_.drawing()->drawing(), alignment->handle);
  raiseChart();
}

void DrawingViews::raiseChart() {
  const civil::Handle handle = selection_.handle();
  switch (session_.drawing()->index().byHandle(handle)->kind()) {
    case civil::ObjectKind::Alignment:
      at_.profile->setSelected(0);
      at_.profileDock->raise();
      break;
    case civil::ObjectKind::Profile:
      at_.profile->setSelected(handle);
      at_.profileDock->raise();
      break;
    case civil::ObjectKind::SampleLine:
      if (at_.section->sampleLine() != handle) at_.section->show(session_.drawing()->drawing(), handle);
      at_.sectionDock->raise();
      break;
    default:
      break;
  }
}

bool DrawingViews::eventFilter(QObject* target, QEvent* event) {
  if (target == at_.plan && awaitsPaint_ && event->type() == QEvent::Paint) {
    // Behind the paint, which tells whether the picture was the final one.
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (!awaitsPaint_ || !at_.plan->isSharp()) return;
          awaitsPaint_ = false;
          Q_EMIT shown();
        },
        Qt::QueuedConnection);
  }
  return QObject::eventFilter(target, event);
}

}  // namespace lvx::desktop
