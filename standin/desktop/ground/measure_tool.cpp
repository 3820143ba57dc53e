#include "desktop/ground/measure_tool.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>

#include "desktop/ground/ground_texts.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"
#include "view/ground_place.h"

namespace lvx::desktop {

namespace {

QPointF pixelAt(const view::Viewport& viewport, civil::Vec2 place) {
  const civil::Vec2 pixel = viewport.toPixels(place);
  return {pixel.x, pixel.y};
}

}  // namespace

MeasureTool::MeasureTool(PlanView& view) : view_(view), snap_(view) {}

MeasureTool::~MeasureTool() { view_.endTool(*this); }

void MeasureTool::setScene(std::shared_ptr<const view::PlanScene> scene) {
  view_.endTool(*this);
  points_.clear();
  aim_.reset();
  mouse_.reset();
  scene_ = std::move(scene);
}

void MeasureTool::start() {
  if (!scene_) return;
  points_.clear();
  aim_.reset();
  mouse_.reset();
  view_.startTool(*this);
}

QString MeasureTool::prompt() const { return tr("Measure: points"); }

QStringList MeasureTool::readout() const {
  QStringList lines;
  if (!aim_) return lines;
  if (aim_->snap) lines << GroundTexts::snap(*aim_->snap);
  if (aim_->point.elevation && points_.empty())
    lines << tr("Z %1").arg(QString::number(*aim_->point.elevation, 'f', 3));
  return lines + GroundTexts::readout(measured(true), aim_->point.elevation.has_value());
}

QString MeasureTool::hint() const {
  if (points_.empty()) return tr("%1, Esc: back").arg(snap_.hint());
  return tr("%1, Enter ends, Esc: one back").arg(snap_.hint());
}

MeasureTool::Aim MeasureTool::aimAt(civil::Vec2 place, double reach) const {
  Aim aim;
  aim.snap = snap_.at(*scene_, place, reach);
  aim.point.place = aim.snap ? aim.snap->place : place;
  if (aim.snap && aim.snap->elevation) {
    aim.point.elevation = aim.snap->elevation;
  } else if (const auto ground = view::groundAt(*scene_, aim.point.place)) {
    aim.point.elevation = ground->elevation;
  }
  return aim;
}

void MeasureTool::aim() {
  aim_.reset();
  if (scene_ && mouse_) aim_ = aimAt(*mouse_, reach_);
  view_.update();
}

void MeasureTool::moved(civil::Vec2 place, double reach) {
  mouse_ = place;
  reach_ = reach;
  aim();
}

void MeasureTool::left() {
  mouse_.reset();
  aim();
}

void MeasureTool::clicked(civil::Vec2 place, double reach) {
  if (!scene_) return;
  moved(place, reach);
  points_.push_back(aim_->point);
  view_.update();
}

// The first of the two clicks set the last point.
void MeasureTool::doubleClicked(civil::Vec2 /*place*/, double /*reach*/) { finished(); }

void MeasureTool::finished() {
  tell();
  points_.clear();
  aim_.reset();
  view_.endTool(*this);
}

void MeasureTool::back() {
  if (!points_.empty()) points_.pop_back();
  view_.update();
}

void MeasureTool::ended() {
  tell();
  points_.clear();
  aim_.reset();
  mouse_.reset();
}

view::Measurement MeasureTool::measured(bool withMouse) const {
  std::vector<view::MeasuredPoint> points = points_;
  if (withMouse && aim_) points.push_back(aim_->point);
  return view::measure(points);
}

void MeasureTool::tell() {
  const QStringList lines = GroundTexts::report(measured(false));
  if (lines.isEmpty()) return;
  Q_EMIT told(tr("Measured"));
  for (const QString& line : lines) Q_EMIT told(line);
}

bool MeasureTool::takesKey(const QKeyEvent& key, bool isPress) {
  const bool copies = key.matches(QKeySequence::Copy) && !points_.empty();
  const bool takesBack = key.key() == Qt::Key_Escape && !points_.empty();
  const bool turns = PlanSnap::isTurn(key);
  if (!isPress) return copies || takesBack || turns;
  if (copies) {
    QGuiApplication::clipboard()->setText(GroundTexts::report(measured(aim_.has_value())).join(QLatin1Char('\n')));
  } else if (takesBack) {
    back();
  } else if (turns) {
    snap_.turn();
    aim();
  }
  return copies || takesBack || turns;
}

void MeasureTool::paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
  painter.setRenderHint(QPainter::Antialiasing);
  QPolygonF line;
  for (const view::MeasuredPoint& point : points_) line << pixelAt(viewport, point.place);
  const qsizetype clicked = line.size();
  if (aim_ && !points_.empty()) line << pixelAt(viewport, aim_->point.place);

  if (line.size() > 2) {
    QColor fill = colours.preview;
    constexpr int kFaint = 36;
    fill.setAlpha(kFaint);
    painter.setPen(QPen(colours.preview, 1.0, Qt::DotLine));
    painter.setBrush(fill);
    painter.drawPolygon(line);
  }
  painter.setBrush(Qt::NoBrush);
  for (const auto& [colour, width] : {std::pair(colours.ground, 4.4), std::pair(colours.preview, 2.0)}) {
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(line);
  }
  painter.setPen(QPen(colours.ground, 1.0));
  painter.setBrush(colours.preview);
  constexpr double kDot = 3.5;
  for (qsizetype i = 0; i < clicked; ++i) painter.drawEllipse(line[i], kDot, kDot);
  if (aim_ && aim_->snap) snap_.paint(painter, viewport, colours, *aim_->snap);
}

}  // namespace lvx::desktop
