#include "desktop/common/icons.h"

#include <QApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <utility>

#include "desktop/common/detail/icon_drawing.h"

// Qt names the resources outside any namespace. They lie in a static library, so the linker needs to be asked for them.
static void initIcons() { Q_INIT_RESOURCE(desktop_icons); }

namespace lvx::desktop {

namespace {

class DrawingEngine final : public QIconEngine {
 public:
  DrawingEngine(QString name, IconDrawing drawing) : name_(std::move(name)), drawing_(std::move(drawing)) {}

  void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State state) override {
    const double ratio = painter->device()->devicePixelRatioF();
    painter->drawPixmap(area, scaledPixmap(area.size() * ratio, mode, state, ratio));
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1.0);
  }
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/, qreal /*scale*/) override {
    QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    QPalette::ColorRole role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    const QColor colour = QApplication::palette().color(group, role);
    const QString key = QStringLiteral("lvx-icon %1 %2 %3 %4x%5")
                            .arg(name_, colour.name())
                            .arg(static_cast<int>(mode))
                            .arg(size.width())
                            .arg(size.height());
    QPixmap drawn;
    if (QPixmapCache::find(key, &drawn)) return drawn;
    drawn = QPixmap(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    constexpr double kFaint = 0.45;
    if (mode == QIcon::Disabled) painter.setOpacity(kFaint);
    drawing_.paint(painter, size, colour);
    painter.end();
    QPixmapCache::insert(key, drawn);
    return drawn;
  }
  [[nodiscard]] QIconEngine* clone() const override { return new DrawingEngine(*this); }

 private:
  QString name_;
  IconDrawing drawing_;
};

}  // namespace

QIcon icon(const QString& name) {
  static QHash<QString, QIcon> known;
  if (const auto found = known.constFind(name); found != known.constEnd()) return *found;
  initIcons();
  return *known.insert(name, QIcon(new DrawingEngine(name, IconDrawing(name))));
}

}  // namespace lvx::desktop
