#pragma once

#include <QListWidget>
#include <QStringList>

#include "desktop/charts/chart.h"

namespace lvx::desktop {

/// The legend of a chart: its lines, then its areas, each with a box to tick it on and off.
class ChartLegend final : public QListWidget {
  Q_OBJECT

 public:
  explicit ChartLegend(QWidget* parent = nullptr);

  /// Rows are made anew only where others than before are wanted, so that a chart may follow the mouse.
  void follow(const Chart& chart);
  /// Colours and sizes are others now.
  void repaintSamples(const Chart& chart);

 Q_SIGNALS:
  void seriesTicked(int index, bool isShown);
  void fillTicked(int index, bool isShown);

 private:
  void fill(const Chart& chart);

  QStringList keys_;
  bool isFilling_ = false;
};

}  // namespace lvx::desktop
