#pragma once

#include <optional>
#include <vector>

#include "desktop/charts/area_menu.h"
#include "desktop/charts/chart_view.h"
#include "view/section_model.h"

class QLineEdit;
class QSlider;

namespace lvx::desktop {

/// The cross section at a sample line, or where a corridor has one: the ground of every surface and what corridors build
/// there, filled by codes, with cut and fill between them. Page up and page down go to the neighbouring sections of the
/// alignment, as its buttons, its list, its slider and its field for the station do.
class SectionView final : public ChartView {
  Q_OBJECT

 public:
  explicit SectionView(QWidget* parent = nullptr);

  using QWidget::show;
  /// Shows a sample line; 0, or one that the drawing doesn't have, clears. The drawing must live until the view is cleared
  /// or shows another. After a corridor was rebuilt, it is called again. Whoever looks at a part of a section sees the same
  /// part of the next one of the alignment, which moves up and down with its lines.
  void show(const civil::Drawing& drawing, civil::Handle sampleLine, bool keepsPlace = false);
  /// Shows the section nearest to a station, as one of those that are browsed: a sample line of the group that shows, or
  /// else of the alignment's first one, or one of a corridor. Clears where the alignment has none.
  void showNearest(const civil::Drawing& drawing, civil::Handle alignment, double station);
  /// What shows, after the drawing changed.
  void showAgain(const civil::Drawing& drawing, bool keepsPlace);
  void clear();
  /// 0 while nothing is shown, and for a section of a corridor alone.
  [[nodiscard]] civil::Handle sampleLine() const { return model_ ? model_->sampleLine : 0; }
  /// 0 while nothing is shown.
  [[nodiscard]] civil::Handle alignment() const { return model_ ? model_->alignment : 0; }
  /// Null while nothing is shown.
  [[nodiscard]] const view::SectionModel* model() const { return model_ ? &*model_ : nullptr; }
  /// Shows by an upright line with the values of all lines where the mouse is along the section in another view; empty:
  /// nothing. O(points).
  void showOffset(std::optional<double> offset);
  /// All that can be browsed, and which of them shows.
  [[nodiscard]] const std::vector<view::SectionStop>& stops() const { return stops_; }
  [[nodiscard]] std::optional<std::size_t> present() const;
  /// Whether the user wants the section to follow the station under the mouse in other views.
  [[nodiscard]] bool follows() const;

 Q_SIGNALS:
  /// The user went to another sample line.
  void sampleLineChanged(quint64 handle);
  /// showNearest() was asked to show one, and did.
  void sectionShown();

 protected:
  [[nodiscard]] QString readout(civil::Vec2 place) const override;
  [[nodiscard]] std::optional<Snap> snap(civil::Vec2 place, civil::Vec2 reach) const override;
  [[nodiscard]] QString exportName() const override;
  [[nodiscard]] std::vector<ChartFill> areas() override;

 private:
  void buildControls();
  void buildStationRow();
  /// To one of the stops, on the user's wish.
  void goTo(std::size_t stop);
  void go(int steps);
  void goToTyped();
  void take(const civil::Drawing& drawing, view::SectionModel model, civil::Handle group, bool keepsPlace);
  [[nodiscard]] Chart chartOf(const civil::Drawing& drawing) const;
  void followStops(std::vector<view::SectionStop> stops);
  void showPresent();
  [[nodiscard]] bool isShown(view::SectionVertex::Owner owner, std::size_t index) const;

  AreaMenu areas_;
  const civil::Drawing* drawing_ = nullptr;
  std::optional<view::SectionModel> model_;
  civil::Handle group_ = 0;
  std::vector<view::SectionStop> stops_;
  QToolButton* previous_ = nullptr;
  QToolButton* next_ = nullptr;
  QComboBox* lines_ = nullptr;
  QSlider* slider_ = nullptr;
  QLineEdit* station_ = nullptr;
  QToolButton* follow_ = nullptr;
};

}  // namespace lvx::desktop
