#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

#include "view/snap.h"

class QKeyEvent;
class QPainter;

namespace lvx::view {
class Viewport;
}

namespace lvx::desktop {

class PlanView;
struct PlanColours;

/// What a tool of the plan snaps to: on at first, turned by a key, never to what isn't drawn; with a mark and a name.
class PlanSnap {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::PlanSnap)

 public:
  /// The view outlives it.
  explicit PlanSnap(const PlanView& view) : view_(view) {}

  /// Where snapping is on and something is near. `reach`: the mouse's box, in drawing units.
  [[nodiscard]] std::optional<view::Snap> at(const view::PlanScene& scene, civil::Vec2 place, double reach) const;
  void turn() { isOn_ = !isOn_; }
  /// Whether a key is the one that turns snapping off and on: tools take it (PlanTool::takesKey).
  [[nodiscard]] static bool isTurn(const QKeyEvent& key);

  /// What that key would do now.
  [[nodiscard]] QString hint() const;
  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours,
             const view::Snap& snap) const;

 private:
  [[nodiscard]] view::SnapKinds shownKinds() const;

  const PlanView& view_;
  bool isOn_ = true;
};

}  // namespace lvx::desktop
