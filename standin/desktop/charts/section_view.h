#pragma once

#include <optional>

#include "desktop/charts/chart_view.h"
#include "view/section_model.h"

namespace lvx::desktop {

/// The cross section at a sample line: the ground of every surface and what corridors build there. Page up and page down
/// go to the neighbouring sample lines of the group, as its buttons and its list do.
class SectionView final : public ChartView {
  Q_OBJECT

 public:
  explicit SectionView(QWidget* parent = nullptr);

  using QWidget::show;
  /// Shows a sample line; 0, or one that the drawing doesn't have, clears. The drawing must live until the view is cleared
  /// or shows another. After a corridor was rebuilt, it is called again. Whoever looks at a part of a section sees the same
  /// part of the next one of the group, which moves up and down with its lines.
  void show(const civil::Drawing& drawing, civil::Handle sampleLine, bool keepsPlace = false);
  void clear();
  /// 0 while nothing is shown.
  [[nodiscard]] civil::Handle sampleLine() const { return model_ ? model_->sampleLine : 0; }

 Q_SIGNALS:
  /// The user went to another sample line.
  void sampleLineChanged(quint64 handle);

 protected:
  [[nodiscard]] QString readout(civil::Vec2 place) const override;
  [[nodiscard]] std::optional<Snap> snap(civil::Vec2 place, civil::Vec2 reach) const override;
  [[nodiscard]] QString exportName() const override;

 private:
  void go(int steps);
  void fillNeighbours();
  [[nodiscard]] bool isShown(view::SectionVertex::Owner owner, std::size_t index) const;

  const civil::Drawing* drawing_ = nullptr;
  std::optional<view::SectionModel> model_;
  std::vector<view::SampleLineEntry> neighbours_;
  QToolButton* previous_ = nullptr;
  QToolButton* next_ = nullptr;
  QComboBox* lines_ = nullptr;
};

}  // namespace lvx::desktop
