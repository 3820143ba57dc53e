#pragma once

#include <QHash>
#include <QImage>
#include <QPoint>
#include <QWidget>
#include <memory>
#include <optional>

#include "desktop/charts/chart.h"
#include "view/viewport.h"

class QBoxLayout;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLayout;
class QToolButton;

namespace lvx::desktop {

class ChartCanvas;
class ChartLegend;

/// A window part with a chart: the picture with axes, cross hair and readout, the legend whose lines can be ticked off,
/// the enlargement of heights, and the chart's exports. The wheel zooms to the mouse, a drag moves the picture; + and -,
/// the arrow keys and Home do so from the keyboard.
///
/// Places are those of the chart: x an offset or a station, y an elevation.
class ChartView : public QWidget {
  Q_OBJECT

 public:
  ~ChartView() override;

  /// Shows everything again.
  void fit();
  /// 1, 2, 5, 10, or 0 for the largest that has room.
  void setExaggeration(double factor);
  /// The factor in force.
  [[nodiscard]] double exaggeration() const;
  [[nodiscard]] const Chart& chart() const { return chart_; }
  [[nodiscard]] const view::Viewport& viewport() const;
  /// Where a place lies on the canvas (object name "canvas").
  [[nodiscard]] QPoint pixelOf(civil::Vec2 place) const;

  /// An upright line where the mouse is in another view, until it is taken away or another chart comes. It shows while
  /// the mouse isn't here.
  void setCursorLine(std::optional<ChartCursor> cursor);
  [[nodiscard]] const std::optional<ChartCursor>& cursorLine() const;

  /// Writes the whole chart, as its legend is ticked, as a page in print colours: by the name's end .svg or .pdf. The
  /// file that was there stays whole unless the new one is complete. False, with the reason to show, where it can't be
  /// written.
  bool exportTo(const QString& path, QString& whyNot);
  /// What the window shows now, with its title and legend, in print colours.
  [[nodiscard]] QImage picture() const;

 Q_SIGNALS:
  /// Where the mouse is.
  void mouseAt(QPointF place);
  void mouseGone();
  /// The user had the chart written to this file.
  void exported(const QString& path);

 protected:
  explicit ChartView(QWidget* parent);

  /// Takes a new chart; what was ticked on or off, by name, stays so. Everything is shown, unless `keepsPlace`.
  void setChart(Chart chart, bool keepsPlace = false);
  [[nodiscard]] Chart& editChart() { return chart_; }
  /// Moves what is shown of the chart, unless all of it is.
  void shift(civil::Vec2 by);
  /// Repaints after a change of the chart's lines.
  void chartChanged();
  /// The row above the chart, for the views' own controls; they stand left of the shared ones.
  [[nodiscard]] QHBoxLayout* controls() const { return controls_; }

  /// A row of the views' own under the one above the chart.
  void addRow(QLayout* row);

  /// The text below the chart for a place under the mouse.
  [[nodiscard]] virtual QString readout(civil::Vec2 place) const = 0;
  struct Snap {
    civil::Vec2 place;
    QString text;
  };
  /// A point of the chart that the mouse is near, with what to tell of it.
  [[nodiscard]] virtual std::optional<Snap> snap(civil::Vec2 place, civil::Vec2 reach) const;
  /// The line that a click at `place` means, by its index in the chart; -1 for none.
  [[nodiscard]] virtual int seriesAt(civil::Vec2 place, civil::Vec2 reach) const;
  virtual void seriesClicked(int index);
  /// A click at a place, after what it did to a line that it means.
  virtual void placeClicked(civil::Vec2 place, bool isOnLine);
  /// Called before a line is shown that was ticked off.
  virtual void seriesWanted(int index);
  /// The areas of the chart as its lines are ticked now; asked for with every chart and every tick.
  [[nodiscard]] virtual std::vector<ChartFill> areas();
  /// Other areas are wanted.
  void areasChanged();
  /// "station-1020", without an ending; what an export is called at first.
  [[nodiscard]] virtual QString exportName() const = 0;

  /// A line whose look says that it is meant, by its index; -1 for none.
  void setHighlighted(int index);

  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  friend class ChartCanvas;
  [[nodiscard]] QHBoxLayout* buildRow();
  [[nodiscard]] QBoxLayout* buildMiddle();
  void connectControls();
  void layOutLegend();
  void takeAreas();
  void retitle();
  void askExport();
  void copyPicture() const;
  void pointAt(std::optional<civil::Vec2> place);
  void showMenu(QPoint global);

  Chart chart_;
  ChartCanvas* canvas_ = nullptr;
  QBoxLayout* middle_ = nullptr;
  QHBoxLayout* controls_ = nullptr;
  QLabel* title_ = nullptr;
  QLabel* readout_ = nullptr;
  ChartLegend* legend_ = nullptr;
  QComboBox* heights_ = nullptr;
  QToolButton* fitButton_ = nullptr;
  QToolButton* exportButton_ = nullptr;
  /// What the user ticked on or off, by the lines' names.
  QHash<QString, bool> ticks_;
  QHash<QString, bool> fillTicks_;
};

}  // namespace lvx::desktop
