#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/ground/plan_snap.h"
#include "desktop/plan/plan_tool.h"
#include "desktop/shell/window_panels.h"
#include "view/free_section.h"

class QWidget;

namespace lvx::desktop {

class Edits;
class Selection;
class Session;

/// The free section: the user draws a line over the plan, and the section panel shows what lies along it while the line
/// follows the mouse. Escape, Enter, the right button or a double click end the drawing; the line stays over the plan
/// until the panel shows something else. Its points snap as those that are measured do. It can be made a sample line, as
/// a step of Edits.
///
/// Surfaces are cut one after the other between events, so that the window lives however many there are.
class FreeSection final : public QObject, public PlanTool {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  FreeSection(QWidget& window, const WindowPanels& panels, const Session& session, Edits& edits,
              const Selection& selection);
  ~FreeSection() override;

  /// The user draws a new line; what was drawn goes.
  void draw();
  /// Cross sections show again.
  void close();
  /// The drawing goes.
  void forget();
  [[nodiscard]] bool isShown() const { return isShown_; }

  [[nodiscard]] QString prompt() const override;
  [[nodiscard]] QStringList readout() const override;
  [[nodiscard]] QString hint() const override;
  void moved(civil::Vec2 place, double reach) override;
  void left() override;
  void clicked(civil::Vec2 place, double reach) override;
  void doubleClicked(civil::Vec2 place, double reach) override;
  bool takesKey(const QKeyEvent& key, bool isPress) override;
  void finished() override;
  void back() override;
  void ended() override;
  void paint(QPainter& painter, const view::Viewport& viewport, const PlanColours& colours) const override;

 private:
  void show();
  /// To a cross section that was asked for.
  void giveWay();
  /// Where the mouse points to.
  void aim(civil::Vec2 place, double reach);
  void forgetMouse();
  void cut();
  void work();
  void tell(bool isDone);
  void askSampleLine();
  void makeSampleLine(civil::Handle alignment, civil::Handle group, const QString& newGroup);
  [[nodiscard]] std::vector<civil::Vec2> wanted() const;

  QWidget& window_;
  WindowPanels at_;
  const Session& session_;
  Edits& edits_;
  const Selection& selection_;
  std::vector<civil::Vec2> points_;
  /// Where the mouse is, and how far its box reaches.
  std::optional<civil::Vec2> mouse_;
  double reach_ = 0.0;
  PlanSnap snapping_;
  std::optional<view::Snap> snap_;
  /// Where the mouse is along the line, in the chart.
  std::optional<double> pointed_;
  bool isShown_ = false;
  std::unique_ptr<view::FreeSectionWork> work_;
  QTimer workTime_;
  QElapsedTimer sinceTold_;
};

}  // namespace lvx::desktop
