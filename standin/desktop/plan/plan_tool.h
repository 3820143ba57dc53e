#pragma once

#include <QString>
#include <QStringList>

#include "civil/geometry.h"

class QKeyEvent;
class QPainter;

namespace lvx::view {
class Viewport;
}

namespace lvx::desktop {

struct PlanColours;

/// What is painted over the plan, anew with every frame: marks that follow the mouse, lines that are drawn. It costs a
/// frame what its painting costs; the plan below is a copy. Places are the drawing's, turned into pixels by the viewport.
class PlanOverlay {
 public:
  virtual ~PlanOverlay() = default;
  virtual void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const = 0;
  /// The same for a finished picture: all that paint() would still wait for, however long that takes.
  virtual void paintWhole(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const {
    paint(painter, viewport, colours);
  }
  /// What its colours mean, in the upper left corner of a finished picture.
  virtual void paintKey(QPainter& /*painter*/, const PlanColours& /*colours*/) const {}
};

/// Takes the plan's clicks while it is at work (PlanView::startTool): a line is drawn by it, a distance measured. Drags,
/// wheel and arrow keys go on to move the plan. `reach` is how far the mouse's box goes, in drawing units.
class PlanTool : public PlanOverlay {
 public:
  /// What the user is asked; stands beside the pointer and in the command line.
  [[nodiscard]] virtual QString prompt() const = 0;
  /// What it has found out so far, line by line; beside the pointer, below the prompt.
  [[nodiscard]] virtual QStringList readout() const { return {}; }
  /// What could be done now; beside the pointer, quiet.
  [[nodiscard]] virtual QString hint() const { return {}; }
  virtual void moved(civil::Vec2 /*place*/, double /*reach*/) {}
  /// The mouse has left the plan.
  virtual void left() {}
  virtual void clicked(civil::Vec2 place, double reach) = 0;
  /// The second of two fast clicks; the first was told by clicked(). As that one for most.
  virtual void doubleClicked(civil::Vec2 place, double reach) { clicked(place, reach); }
  /// Whether a key is the tool's rather than the plan's or a shortcut's. Asked twice for each: first alone, `isPress` false,
  /// then with the press, at which the tool acts.
  virtual bool takesKey(const QKeyEvent& /*key*/, bool /*isPress*/) { return false; }
  /// Enter or the right button. A tool that is done calls PlanView::endTool().
  virtual void finished() {}
  /// Backspace: the last step is taken back.
  virtual void back() {}
  /// Escape, another tool, a command's question or the drawing's end: the plan has let go of it already.
  virtual void ended() = 0;
};

}  // namespace lvx::desktop
