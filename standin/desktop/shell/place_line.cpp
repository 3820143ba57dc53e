#include "desktop/shell/place_line.h"

#include <QFontMetrics>
#include <QLabel>
#include <QStatusBar>
#include <cmath>

#include "desktop/common/qt_text.h"
#include "text/number_text.h"

namespace lvx::desktop {

PlaceLine::PlaceLine(QStatusBar& bar) : coordinates_(new QLabel), station_(new QLabel) {
  coordinates_->setObjectName(QStringLiteral("coordinates"));
  station_->setObjectName(QStringLiteral("station"));
  // As wide as they get, so that nothing jumps while the mouse moves.
  const QFontMetrics metrics(coordinates_->font());
  coordinates_->setMinimumWidth(
      metrics.horizontalAdvance(placeText(QStringLiteral("00000000.000"), QStringLiteral("00000000.000"))));
  coordinates_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  bar.addPermanentWidget(station_);
  bar.addPermanentWidget(coordinates_);
}

void PlaceLine::setAlignment(const civil::AlignmentObject* alignment) {
  alignment_ = alignment;
  showStation();
}

void PlaceLine::showMouse(QPointF place) {
  mouse_ = place;
  coordinates_->setText(placeText(toQt(text::fixedText(place.x())), toQt(text::fixedText(place.y()))));
  showStation();
}

void PlaceLine::hideMouse() {
  mouse_.reset();
  coordinates_->clear();
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
