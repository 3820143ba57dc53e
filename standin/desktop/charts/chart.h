#pragma once

#include <QString>
#include <QStringList>
#include <Qt>
#include <vector>

#include "civil/drawing.h"
#include "view/code_fill.h"
#include "view/cut_fill.h"
#include "view/lines.h"
#include "view/profile_model.h"

/// What a chart shows: lines over an offset or a station, with what stands beside them. Plain data that the views make
/// of their models; texts are ready for the reader.
namespace lvx::desktop {

/// How a line looks; colours are kept apart by the line's kind and width too, since reports are printed in grey.
struct ChartPen {
  /// Into the palette of the look that it is painted in, from 0; larger ones begin again.
  int colour = 0;
  Qt::PenStyle style = Qt::SolidLine;
  /// Units of 1/96 inch.
  double width = 1.5;
};

/// A point with a text: a point of vertical intersection.
struct ChartMark {
  civil::Vec2 place;
  QStringList text;
  bool isTextAbove = true;
  /// Where its curve begins and ends; both the place itself without one.
  civil::Vec2 curveStart;
  civil::Vec2 curveEnd;
};

/// A text along a straight line: a grade.
struct ChartNote {
  civil::Vec2 start;
  civil::Vec2 end;
  QString text;
};

struct ChartSeries {
  /// Of what it shows; may be clicked. 0: it can't.
  civil::Handle handle = 0;
  QString name;
  ChartPen pen;
  view::Lines lines;
  std::vector<ChartMark> marks;
  std::vector<ChartNote> notes;
  /// Small dots on the points once they are far enough apart.
  bool hasDots = false;
  bool isShown = true;
};

/// Areas under the lines: the parts of a corridor with one code, or cut, or fill.
struct ChartFill {
  /// By which it is known while its name changes with its size.
  QString key;
  QString name;
  QString tip;
  view::FillLook look;
  /// Outlines, closed; the first point isn't repeated.
  view::Lines areas;
  /// Lines with a broad band along them, for parts that enclose nothing.
  view::Lines bands;
  /// From 0, where nothing shows, to 1.
  double strength = 1.0;
  bool isShown = true;
};

/// Where the mouse is in another view: an upright line with the values there.
struct ChartCursor {
  double x = 0.0;
  struct Value {
    /// Index in the chart's lines; below 0 for a text that belongs to none.
    int series = -1;
    /// Only y counts where there is a line.
    double y = 0.0;
    QString text;
  };
  std::vector<Value> values;
};

/// What the x axis counts.
enum class ChartMeasure : std::uint8_t { Offset, Station, Distance };

struct Chart {
  /// "Cross section  Valley road  1+020.000"
  QString title;
  QString subtitle;
  /// Of the drawing, without its folders.
  QString fileName;
  ChartMeasure measure = ChartMeasure::Offset;
  QString xTitle;
  QString yTitle;
  /// "m"
  QString unit;
  /// Millimetres of paper for a drawing unit at 1:1.
  double unitMillimetres = 1000.0;
  /// While the enlargement of heights is automatic: as far as it goes where there is room, and how far where the lines would
  /// look flat otherwise.
  double usualEnlargement = 10.0;
  double mostEnlargement = 100.0;
  /// Always within the picture, beside the series: how far a sample line reaches. Only x is read.
  civil::Box reach;
  std::vector<ChartSeries> series;
  /// Painted under the lines, the first at the bottom; listed behind them.
  std::vector<ChartFill> fills;
  /// Below the plot; stations.
  std::vector<view::AxisElement> elements;
  /// Shown in the middle while there is nothing to draw.
  QString emptyText;

  /// Of what is shown; empty where nothing is.
  [[nodiscard]] civil::Box box() const;
};

/// A row of a chart's legend on paper.
struct ChartEntry {
  QString name;
  const ChartSeries* series = nullptr;
  const ChartFill* fill = nullptr;  ///< both null: how many more there are
};
/// What shows of a chart and has something to show, at most `most` rows: where there are more, the last one counts them.
[[nodiscard]] std::vector<ChartEntry> listedEntries(const Chart& chart, std::size_t most = 24);

/// The unit of a drawing as texts show it: "meter" is "m". An unknown one is shown as it is.
[[nodiscard]] QString unitText(const std::string& linearUnit);
/// Its length in millimetres; unknown ones count as metres.
[[nodiscard]] double unitMillimetres(const std::string& linearUnit);

}  // namespace lvx::desktop
