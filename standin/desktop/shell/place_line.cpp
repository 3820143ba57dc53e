#include "desktop/shell/place_line.h"

#include <QFontMetrics>
#include <QLabel>
#include <QStatusBar>
#include <cmath>

#include "desktop/common/elided_label.h"
#include "desktop/common/qt_text.h"
#include "desktop/ground/ground_texts.h"
#include "text/number_text.h"
#include "view/ground_place.h"

namespace lvx::desktop {

PlaceLine::PlaceLine(QStatusBar& bar) : coordinates_(new QLabel), ground_(new QLabel), station_(new ElidedLabel) {
  coordinates_->setObjectName(QStringLiteral("coordinates"));
  station_->setObjectName(QStringLiteral("station"));
  // As wide as they get, so that nothing jumps while the mouse moves.
  const QFontMetrics metrics(coordinates_->font());
  coordinates_->setMinimumWidth(
      metrics.horizontalAdvance(placeText(QStringLiteral("00000000.000"), QStringLiteral("00000000.000"))));
  coordinates_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  bar.addPermanentWidget(station_);
  ground_->setObjectName(QStringLiteral("groundHere"));
  bar.addPermanentWidget(coordinates_);
  bar.addPermanentWidget(ground_);
}

void PlaceLine::setScene(std::shared_ptr<const view::PlanScene> scene) {
  scene_ = std::move(scene);
  ground_->clear();
  bool hasGround = false;
  if (scene_)
    for (const view::SurfaceShape& shape : scene_->surfaces()) hasGround |= !shape.box.isEmpty();
  // As wide as it gets, so that the coordinates stay where they are; nothing where no ground ever shows.
  constexpr double kElevation = 88888.888;
  constexpr double kSlope = 0.888;
  const view::GroundPlace widest{nullptr, kElevation, kSlope, 4.0};
  ground_->setMinimumWidth(hasGround ? QFontMetrics(ground_->font()).horizontalAdvance(GroundTexts::ground(widest))
                                     : 0);
  ground_->setVisible(hasGround);
}

void PlaceLine::setAlignment(const civil::AlignmentObject* alignment) {
  alignment_ = alignment;
  showStation();
}

void PlaceLine::showMouse(QPointF place) {
  mouse_ = place;
  coordinates_->setText(placeText(toQt(text::fixedText(place.x())), toQt(text::fixedText(place.y()))));
  if (scene_ && ground_->isVisibleTo(ground_->parentWidget()))
    ground_->setText(GroundTexts::ground(view::groundAt(*scene_, {place.x(), place.y()})));
  showStation();
}

void PlaceLine::hideMouse() {
  mouse_.reset();
  coordinates_->clear();
  ground_->clear();
  showStation();
}

void PlaceLine::showStation() {
  if (alignment_ == nullptr) {
    station_->clear();
    return;
  }
  const QString name = toQt(alignment_->name);
  const auto foot = mouse_ ? alignment_->geometry.stationOffset({mouse_->x(), mouse_->y()}) : std::nullopt;
  if (!foot) {
    station_->setText(name);
    return;
  }
  const QString side = foot->offset < 0.0 ? tr("left") : foot->offset > 0.0 ? tr("right") : tr("on the axis");
  station_->setText(
      tr("%1:  station %2   offset %3 %4")
          .arg(name, toQt(text::stationText(foot->station)), toQt(text::fixedText(std::abs(foot->offset))), side));
}

QString PlaceLine::placeText(const QString& east, const QString& north) {
  //: Easting and northing of a place, as their letters.
  return tr("E %1   N %2").arg(east, north);
}

}  // namespace lvx::desktop
