#include "desktop/ground/difference_layer.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <new>

#include "desktop/common/qt_text.h"
#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_view.h"
#include "text/number_text.h"

namespace lvx::desktop {

namespace {

/// Tiles are enlarged by a sixth at most, which nobody sees, rather than drawn at up to four times the pixels.
constexpr double kTileSlack = 0.84;
constexpr double kSize = view::Tile::kSize;
/// Levels that a coarser tile may lie above the wanted one.
constexpr int kCoarser = 8;

void drawTile(QPainter& painter, const QRectF& target, const view::Tile& tile, const QRectF& source) {
  if (tile.isEmpty()) return;
  const QImage image(reinterpret_cast<const uchar*>(tile.pixels.data()), view::Tile::kSize, view::Tile::kSize,
                     view::Tile::kSize * 4, QImage::Format_ARGB32_Premultiplied);
  painter.drawImage(target, image, source);
}

}  // namespace

DifferenceLayer::DifferenceLayer(PlanView& view) : view_(view) {}

DifferenceLayer::~DifferenceLayer() { clear(); }

void DifferenceLayer::show(const civil::TinSurface& existing, const civil::TinSurface& next, const QString& title) {
  clear();
  tiles_ = std::make_unique<const view::DifferenceTiles>(existing, next);
  title_ = title;
  ends_ = false;
  cancel_ = false;
  thread_ = std::thread([this] { run(); });
  view_.setGroundOverlay(&colours_);
  view_.addOverlay(legend_);
}

void DifferenceLayer::clear() {
  if (!tiles_) return;
  view_.setGroundOverlay(nullptr);
  view_.removeOverlay(legend_);
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
    cancel_ = true;
    wanted_.clear();
  }
  wake_.notify_all();
  thread_.join();
  cache_.clear();
  tiles_.reset();
}

bool DifferenceLayer::isSharp() const {
  const std::lock_guard lock(mutex_);
  return wanted_.empty() && !isDrawing_;
}

view::TileKey DifferenceLayer::keyOf(const view::TileAddress& address) {
  return {.surface = 0, .address = address, .look = {}};
}

void DifferenceLayer::paintWhole(QPainter& painter, const view::Viewport& viewport) {
  // On paper a logical pixel is coarse, so twice as fine as long as that is no endless work.
  constexpr double kFiner = 2.0;
  constexpr std::int64_t kMostTiles = 256;
  int level = view::SurfaceTiles::levelFor(kFiner * viewport.scale());
  const auto tilesAt = [&](int at) { return tiles_->tilesIn(viewport.visible(), at); };
  const auto countAt = [&](int at) {
    const view::TileRange range = tilesAt(at);
    return range.isEmpty() ? 0 : (range.right - range.left + 1) * (range.bottom - range.top + 1);
  };
  while (level > view::SurfaceTiles::kLeastLevel && countAt(level) > kMostTiles) --level;
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const view::TileRange range = tilesAt(level);
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      const view::TileAddress address{level, column, row};
      const auto tile = tiles_->render(address);
      if (!tile) continue;
      const civil::Box box = tiles_->boxOf(address);
      const civil::Vec2 from = viewport.toPixels({box.minX, box.maxY});
      const civil::Vec2 to = viewport.toPixels({box.maxX, box.minY});
      drawTile(painter, QRectF(QPointF(from.x, from.y), QPointF(to.x, to.y)), *tile, QRectF(0, 0, kSize, kSize));
    }
}

void DifferenceLayer::paintTiles(QPainter& painter, const view::Viewport& viewport) {
  const double ratio = painter.device()->devicePixelRatioF();
  const int level = view::SurfaceTiles::levelFor(viewport.scale() * ratio * kTileSlack);
  const view::TileRange range = tiles_->tilesIn(viewport.visible(), level);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setRenderHint(QPainter::Antialiasing, false);
  std::vector<std::pair<double, view::TileAddress>> missing;
  const QPointF middle(viewport.width() / 2.0, viewport.height() / 2.0);
  for (std::int64_t row = range.top; row <= range.bottom; ++row)
    for (std::int64_t column = range.left; column <= range.right; ++column) {
      const view::TileAddress address{level, column, row};
      const civil::Box box = tiles_->boxOf(address);
      const civil::Vec2 from = viewport.toPixels({box.minX, box.maxY});
      const civil::Vec2 to = viewport.toPixels({box.maxX, box.minY});
      // Neighbours share their edges on whole device pixels.
      const auto whole = [ratio](double pixel) { return std::round(pixel * ratio) / ratio; };
      const QRectF target(QPointF(whole(from.x), whole(from.y)), QPointF(whole(to.x), whole(to.y)));
      if (const auto tile = cache_.find(keyOf(address))) {
        drawTile(painter, target, *tile, QRectF(0, 0, kSize, kSize));
        continue;
      }
      missing.emplace_back((target.center() - middle).manhattanLength(), address);
      if (const auto coarser = cache_.findCoarser(keyOf(address), kCoarser))
        drawTile(painter, target, *coarser->tile, QRectF(coarser->left, coarser->top, coarser->size, coarser->size));
    }
  // The farthest from the middle first, since the last one is drawn next; a coarse one of all before them.
  std::sort(missing.begin(), missing.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  std::vector<view::TileAddress> wanted;
  for (const auto& [distance, address] : missing) wanted.push_back(address);
  if (!wanted.empty()) {
    const civil::Box& box = tiles_->box();
    const double extent = std::max(box.maxX - box.minX, box.maxY - box.minY);
    const int coarse = extent > 0.0 ? view::SurfaceTiles::levelFor(kSize / extent) : level;
    const view::TileRange all = tiles_->tilesIn(box, coarse);
    if (coarse < level)
      for (std::int64_t row = all.top; row <= all.bottom; ++row)
        for (std::int64_t column = all.left; column <= all.right; ++column)
          if (!cache_.find(keyOf({coarse, column, row}))) wanted.push_back({coarse, column, row});
  }
  {
    const std::lock_guard lock(mutex_);
    wanted_ = std::move(wanted);
  }
  wake_.notify_all();
}

void DifferenceLayer::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return ends_ || !wanted_.empty(); });
    if (ends_) return;
    const view::TileAddress address = wanted_.back();
    wanted_.pop_back();
    if (cache_.find(keyOf(address))) continue;
    isDrawing_ = true;
    lock.unlock();
    std::shared_ptr<const view::Tile> tile;
    bool isShort = false;
    try {
      tile = tiles_->render(address, &cancel_);
    } catch (const std::bad_alloc&) {
      isShort = true;
    }
    if (tile) cache_.insert(keyOf(address), std::move(tile));
    lock.lock();
    isDrawing_ = false;
    // Without memory for a tile the coarser one stays; trying on would only take memory from others.
    if (isShort) wanted_.clear();
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (tiles_) view_.refreshGroundOverlay();
        },
        Qt::QueuedConnection);
  }
}

void DifferenceLayer::paintLegend(QPainter& painter, const PlanColours& colours) const {
  constexpr double kMargin = 10.0;
  constexpr double kBarWidth = 16.0;
  constexpr double kBarHeight = 130.0;
  constexpr double kGap = 6.0;
  const QFont font = view_.font();
  const QFontMetricsF metrics(font);
  const double range = tiles_->range();
  const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(range))) + 1, 0, 6);
  const auto height = [&](double part) {
    const QString number = toQt(text::fixedText(part * range, decimals));
    return part > 0.0 ? QStringLiteral("+") + number : number;
  };
  struct Mark {
    double part;
    QString text;
  };
  const std::array marks{Mark{1.0, tr("%1 fill").arg(height(1.0))}, Mark{0.5, height(0.5)}, Mark{0.0, height(0.0)},
                         Mark{-0.5, height(-0.5)}, Mark{-1.0, tr("%1 cut").arg(height(-1.0))}};
  double widest = 0.0;
  for (const Mark& mark : marks) widest = std::max(widest, metrics.horizontalAdvance(mark.text));
  constexpr double kWidest = 220.0;
  const QString title = metrics.elidedText(title_, Qt::ElideMiddle, kWidest);
  const double width = std::max(metrics.horizontalAdvance(title), kBarWidth + kGap + widest) + 2 * kGap;
  const double line = metrics.height();
  const QRectF box(kMargin, kMargin, width, 1.8 * line + kBarHeight + 0.6 * line + 2 * kGap);

  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(font);
  painter.setPen(colours.boxFrame);
  painter.setBrush(colours.boxFill);
  painter.drawRoundedRect(box, 4, 4);
  painter.setPen(colours.text);
  painter.drawText(QRectF(box.left() + kGap, box.top() + kGap, width, line), Qt::AlignLeft | Qt::AlignVCenter, title);

  const QRectF bar(box.left() + kGap, box.top() + kGap + 1.8 * line, kBarWidth, kBarHeight);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.fillRect(bar, colours.ground);
  for (int row = 0; row < static_cast<int>(kBarHeight); ++row) {
    const std::uint32_t colour = view::differenceColour(1.0 - 2.0 * (row + 0.5) / kBarHeight);
    painter.fillRect(QRectF(bar.left(), bar.top() + row, kBarWidth, 1.0), QColor::fromRgba(qUnpremultiply(colour)));
  }
  painter.setPen(colours.boxFrame);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(bar);
  painter.setPen(colours.text);
  for (const Mark& mark : marks) {
    const double at = bar.top() + (1.0 - mark.part) / 2.0 * kBarHeight;
    painter.drawLine(QPointF(bar.right() - 3, at), QPointF(bar.right(), at));
    painter.drawText(QRectF(bar.right() + kGap, at - line / 2, widest + kGap, line), Qt::AlignLeft | Qt::AlignVCenter,
                     mark.text);
  }
}

}  // namespace lvx::desktop
