#include "desktop/shell/linked_cursor.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <utility>

#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/session.h"
#include "text/number_text.h"
#include "view/viewport.h"

namespace lvx::desktop {

using civil::Vec2;

namespace {

/// How far from the alignment the mouse still means it: drawing units or pixels, whichever is more.
constexpr double kReach = 50.0;
constexpr double kReachPixels = 80.0;
/// How near to a section's own station the mouse must be to show in it, in pixels of the plan.
constexpr double kSectionPixels = 8.0;
/// A section takes as long as sampling every surface; while the mouse runs, the last place counts.
constexpr std::chrono::milliseconds kSectionDelay{25};

QPointF point(Vec2 place) { return {place.x, place.y}; }

}  // namespace

LinkedCursor::LinkedCursor(const WindowPanels& panels, const Session& session, const Selection& selection)
    : at_(panels), session_(session), selection_(selection) {
  at_.plan->addOverlay(*this);
  connect(at_.plan, &PlanView::mouseAt, this, &LinkedCursor::followPlan);
  connect(at_.plan, &PlanView::mouseGone, this, &LinkedCursor::hide);
  connect(at_.profile, &ProfileView::stationAt, this, &LinkedCursor::followProfile);
  connect(at_.profile, &ChartView::mouseGone, this, &LinkedCursor::hide);
  connect(at_.section, &ChartView::mouseAt, this, &LinkedCursor::followSection);
  connect(at_.section, &ChartView::mouseGone, this, &LinkedCursor::hide);
  sectionTime_.setSingleShot(true);
  connect(&sectionTime_, &QTimer::timeout, this, &LinkedCursor::showSection);
}

LinkedCursor::~LinkedCursor() { at_.plan->removeOverlay(*this); }

void LinkedCursor::forget() {
  wanted_.reset();
  sectionTime_.stop();
  hide();
}

void LinkedCursor::hide() {
  show({});
  at_.profile->showStation({});
  at_.section->showOffset({});
}

void LinkedCursor::show(std::optional<Mark> mark) {
  if (!mark && !mark_) return;
  mark_ = std::move(mark);
  at_.plan->update();
}

void LinkedCursor::followPlan(QPointF place) {
  const civil::AlignmentObject* const alignment = selection_.alignment();
  if (!session_.drawing() || alignment == nullptr) return;
  const civil::Alignment& axis = alignment->geometry;
  const auto measured = axis.stationOffset({place.x(), place.y()});
  const double scale = at_.plan->viewport().scale();
  const auto foot = measured ? axis.poseAt(measured->station) : std::nullopt;
  if (!foot || std::abs(measured->offset) > std::max(kReach, kReachPixels / scale)) {
    hide();
    return;
  }
  show(Mark{foot->point, foot->direction, {foot->point, {place.x(), place.y()}}, {}});
  if (at_.profile->alignment() == alignment->handle) at_.profile->showStation(measured->station);
  wantSection(alignment->handle, measured->station);
  const view::SectionModel* const section = at_.section->model();
  const bool isInSection = section != nullptr && section->alignment == alignment->handle &&
                           std::abs(section->station - measured->station) * scale <= kSectionPixels;
  at_.section->showOffset(isInSection ? std::optional(measured->offset) : std::nullopt);
}

void LinkedCursor::followProfile(double station) {
  if (!session_.drawing()) return;
  const auto entry = session_.drawing()->index().byHandle(at_.profile->alignment());
  const auto foot = entry && entry->alignment != nullptr ? entry->alignment->geometry.poseAt(station) : std::nullopt;
  if (!foot) {
    show({});
    return;
  }
  show(Mark{foot->point, foot->direction, {}, toQt(text::stationText(station))});
  wantSection(at_.profile->alignment(), station);
}

void LinkedCursor::followSection(QPointF place) {
  const view::SectionModel* const section = at_.section->model();
  if (!session_.drawing() || section == nullptr) return;
  const civil::Drawing& drawing = session_.drawing()->drawing();
  const auto at = view::placeAtOffset(drawing, *section, place.x());
  if (!at) {
    show({});
    return;
  }
  Mark mark{*at, {}, {}, toQt(text::fixedText(place.x()))};
  for (const double end : {section->leastOffset, 0.0, section->greatestOffset})
    if (const auto vertex = view::placeAtOffset(drawing, *section, end)) mark.line.push_back(*vertex);
  show(std::move(mark));
  if (at_.profile->alignment() == section->alignment) at_.profile->showStation(section->station);
}

void LinkedCursor::wantSection(civil::Handle alignment, double station) {
  if (!at_.section->follows() || !at_.section->isVisible()) return;
  wanted_ = Wanted{alignment, station};
  if (!sectionTime_.isActive()) sectionTime_.start(kSectionDelay);
}

void LinkedCursor::showSection() {
  const auto wanted = std::exchange(wanted_, std::nullopt);
  if (!wanted || !session_.drawing()) return;
  at_.section->showNearest(session_.drawing()->drawing(), wanted->alignment, wanted->station);
}

void LinkedCursor::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
  if (!mark_) return;
  constexpr double kRing = 4.5;
  constexpr double kTick = 14.0;
  const QPointF at = point(viewport.toPixels(mark_->place));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  if (mark_->line.size() > 1) {
    QPolygonF line;
    for (const Vec2 vertex : mark_->line) line << point(viewport.toPixels(vertex));
    painter.setPen(QPen(colours.hover, 1.2, Qt::DashLine));
    painter.drawPolyline(line);
  }
  painter.setPen(QPen(colours.hover, 2.2));
  if (mark_->tick) {
    const double across = *mark_->tick + std::numbers::pi / 2;
    const QPointF half(kTick * std::cos(across), -kTick * std::sin(across));
    painter.drawLine(at - half, at + half);
  } else {
    painter.drawLine(at - QPointF(kTick, 0.0), at + QPointF(kTick, 0.0));
    painter.drawLine(at - QPointF(0.0, kTick), at + QPointF(0.0, kTick));
  }
  painter.drawEllipse(at, kRing, kRing);
  if (mark_->text.isEmpty()) return;
  const QFontMetricsF metrics(painter.font());
  QRectF box(at + QPointF(kTick, -kTick - metrics.height()),
             QSizeF(metrics.horizontalAdvance(mark_->text) + 8.0, metrics.height() + 2.0));
  painter.setPen(QPen(colours.boxFrame, 1.0));
  painter.setBrush(colours.boxFill);
  painter.drawRoundedRect(box, 3.0, 3.0);
  painter.setPen(colours.text);
  painter.drawText(box, Qt::AlignCenter, mark_->text);
}

}  // namespace lvx::desktop
