#pragma once

#include <optional>

#include "desktop/charts/area_menu.h"
#include "desktop/charts/chart_view.h"
#include "view/profile_model.h"

namespace lvx::desktop {

/// The profiles of an alignment over its stations, with the vertical design, the ground of surfaces along the axis and the
/// axis's elements below.
class ProfileView final : public ChartView {
  Q_OBJECT

 public:
  explicit ProfileView(QWidget* parent = nullptr);

  using QWidget::show;
  /// Shows an alignment; 0, or one that the drawing doesn't have, clears. The drawing must live until the view is cleared
  /// or shows another.
  void show(const civil::Drawing& drawing, civil::Handle alignment, bool keepsPlace = false);
  void clear();
  /// 0 while nothing is shown.
  [[nodiscard]] civil::Handle alignment() const { return model_ ? model_->alignment : 0; }
  /// Highlights a profile that was chosen elsewhere; 0 for none.
  void setSelected(civil::Handle profile);
  /// Shows by an upright line with the values of all lines where the mouse is along the alignment in another view; empty,
  /// or off the alignment: nothing. O(log n) for profiles, O(points) for surfaces.
  void showStation(std::optional<double> station);

 Q_SIGNALS:
  void profileClicked(quint64 handle);
  /// The station under the mouse, within the alignment.
  void stationAt(double station);
  /// The user clicked at a station within the alignment, on a line or beside.
  void stationClicked(double station, bool isOnLine);

 protected:
  [[nodiscard]] QString readout(civil::Vec2 place) const override;
  [[nodiscard]] int seriesAt(civil::Vec2 place, civil::Vec2 reach) const override;
  void seriesClicked(int index) override;
  void placeClicked(civil::Vec2 place, bool isOnLine) override;
  [[nodiscard]] std::vector<ChartFill> areas() override;
  void seriesWanted(int index) override;
  [[nodiscard]] QString exportName() const override;

 private:
  [[nodiscard]] static ChartSeries seriesOf(const view::ProfileLine& profile, const ChartPen& pen);

  /// Of a line of the chart at a station; empty where it has none.
  [[nodiscard]] std::optional<double> elevationOf(std::size_t index, double station) const;

  AreaMenu areas_;
  std::optional<view::ProfileModel> model_;
  civil::Handle selected_ = 0;
};

}  // namespace lvx::desktop
