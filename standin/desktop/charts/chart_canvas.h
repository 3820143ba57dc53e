#pragma once

#include <QFont>
#include <QPixmap>
#include <QWidget>
#include <optional>

#include "desktop/charts/chart_painter.h"
#include "desktop/charts/chart_view.h"
#include "view/viewport.h"

namespace lvx::desktop {

/// The picture of a chart inside its view, with what the mouse and the keys do there: the wheel zooms to the mouse, a drag
/// moves, Home shows all. What doesn't change with the mouse is painted once into a pixmap.
class ChartCanvas final : public QWidget {
 public:
  explicit ChartCanvas(ChartView& owner);

  [[nodiscard]] QSize sizeHint() const override { return {720, 320}; }
  [[nodiscard]] const view::Viewport& port() const { return port_; }
  [[nodiscard]] QRect plot() const { return painter().plotArea(rect()); }
  [[nodiscard]] double chosenExaggeration() const { return chosen_; }
  /// Where a place of the chart lies on the canvas.
  [[nodiscard]] QPoint pixelOf(civil::Vec2 place) const;

  /// Shows everything, and goes on doing so when it is resized, until the user moves it.
  void fit();
  /// 0: the largest that has room.
  void setExaggeration(double factor);
  void setHighlighted(int index);
  void setCursorLine(std::optional<ChartCursor> cursor);
  [[nodiscard]] const std::optional<ChartCursor>& cursorLine() const { return cursorLine_; }
  /// What stands still has to be painted anew.
  void changed();
  /// Moves what is shown, unless all of it is.
  void shift(civil::Vec2 by);
  /// After another chart came, or its lines changed.
  void chartChanged(bool keepsPlace);
  /// What shows now, in another look.
  void repaintTo(QPainter& target, const QRectF& area, const ChartLook& look) const;
  [[nodiscard]] QFont pixelFont() const;

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void changeEvent(QEvent* event) override;

  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent*) override { leave(); }
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] ChartPainter painter() const { return {owner_.chart(), ChartLook::ofWindow(palette()), pixelFont()}; }
  [[nodiscard]] bool isEmpty() const { return owner_.chart().box().isEmpty(); }
  /// How near the mouse must come, in the chart's own units.
  [[nodiscard]] civil::Vec2 reach() const;
  void paintStill(QPainter& still, const ChartPainter& chart) const;
  void zoom(QPointF at, double factor);
  void pan(civil::Vec2 pixels);
  /// What lies under the mouse has changed without it.
  void refreshPointer();
  void point(QPointF at);
  void leave();

  ChartView& owner_;
  view::Viewport port_;
  double chosen_ = 0.0;
  bool isFitted_ = true;
  bool isStale_ = true;
  QPixmap picture_;
  std::optional<civil::Vec2> mouse_;
  QPointF at_;  ///< where that is, in pixels
  std::optional<ChartCursor> cursorLine_;
  std::optional<QPointF> pressed_;
  QPointF last_;
  Qt::MouseButton pressedButton_ = Qt::NoButton;
  bool isDragging_ = false;
  int hover_ = -1;
  int highlighted_ = -1;
};

}  // namespace lvx::desktop
