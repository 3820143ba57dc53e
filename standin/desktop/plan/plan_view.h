#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "civil/drawing.h"
#include "desktop/plan/plan_look.h"
#include "desktop/plan/plan_painter.h"
#include "desktop/plan/plan_selection.h"
#include "desktop/plan/plan_tool.h"
#include "desktop/plan/tile_worker.h"
#include "desktop/plan/view_history.h"
#include "desktop/plan/zoom_rectangle.h"
#include "view/plan_scene.h"
#include "view/viewport.h"

namespace lvx::desktop {

/// The drawing from above. The user moves it with the middle button (or the left one where nothing lies), the arrow keys
/// and the wheel, which keeps what lies under the mouse; + and - zoom as well, Home and a double middle click show all.
///
/// A running command asks its user here: startPick() or startSelection(), one at a time. Each ends with exactly one of
/// its signals; before it the view is ready for the next.
///
///     view->setScene(std::make_shared<view::PlanScene>(drawing));
///     connect(view, &PlanView::picked, this, [](quint64 handle) { ... });
///     view->startPick(tr("Select an alignment"));
///
/// Shading is drawn beside the windows' thread: a frame never waits for it, it shows what there is, coarser or finer,
/// until the sharp one is ready.
class PlanView : public QWidget {
  Q_OBJECT

 public:
  explicit PlanView(QWidget* parent = nullptr);
  ~PlanView() override;

  /// Shows all of the scene; null: nothing is shown. Ends a running interaction as Escape does. When it returns, nothing
  /// looks at the scene before, or at its drawing, any more.
  void setScene(std::shared_ptr<view::PlanScene> scene);
  /// Null where nothing is shown.
  [[nodiscard]] const std::shared_ptr<view::PlanScene>& scene() const { return scene_; }
  /// The scene's corridors, or its lists, were refreshed.
  void refresh();
  void setLook(const PlanLook& look);
  /// Which objects aren't drawn, named or hit, selected or not; of the scene that is shown, and nothing is hidden in the
  /// next one.
  void setVisibility(const view::Visibility& visibility);
  [[nodiscard]] const PlanLook& look() const { return look_; }

  void zoomToAll();
  void zoomTo(civil::Handle handle);
  void zoomIn();
  void zoomOut();
  /// The part of the drawing that shows.
  using Place = PlanPlace;
  [[nodiscard]] Place place() const { return {viewport_.centre(), viewport_.scale(), showsAll_}; }
  void setPlace(const Place& place);
  /// Shows a part of the drawing as large as it goes; a box without extent changes nothing.
  void zoomToBox(const civil::Box& box);
  /// The views before, one after the other, and back again; a drag or a turn of the wheel is one of them.
  void showPreviousView();
  void showNextView();
  [[nodiscard]] bool hasPreviousView() const { return history_.hasBefore(); }
  [[nodiscard]] bool hasNextView() const { return history_.hasNext(); }
  /// The user draws a rectangle, once, whatever else is asked, which goes on behind it. Ctrl and a drag does the same.
  void startZoomRectangle();
  [[nodiscard]] bool isZoomingToRectangle() const { return zoomRectangle_.isBegun(); }
  /// Highlights objects, whoever chose them; unknown handles are passed over.
  void setSelected(const std::vector<civil::Handle>& handles);
  /// What is drawn as selected: while a command asks for objects, those that it has so far.
  [[nodiscard]] const PlanSelection& shownSelection() const { return mode_ == Mode::Select ? selection_ : selected_; }

  /// Lines that would be made, over the plan; null: none.
  void setPreview(std::shared_ptr<const view::LineSet> lines);
  /// Places of the drawing that can be pulled with the left button while nothing is asked, shown as small squares. A pull
  /// is told by handlePulled() and ends with handleDropped(), or with handleLeft() after Escape.
  void setHandles(std::vector<civil::Vec2> places);
  /// What a pull would give, shown until it ends.
  void setPulled(std::vector<civil::Vec2> line);

  /// Ends with picked() or gaveUp().
  void startPick(const QString& prompt);
  /// Ends with selected() or gaveUp(). Only objects of one kind can be selected, if asked for.
  void startSelection(const QString& addPrompt, const QString& removePrompt, std::optional<civil::ObjectKind> only);
  /// Gives the plan's clicks to a tool until endTool(), or until something else ends it, which is told by its ended().
  /// The tool outlives its work here.
  void startTool(PlanTool& tool);
  /// Without a word to it; nothing happens where the tool isn't at work.
  void endTool(const PlanTool& tool);
  [[nodiscard]] bool isAtWork(const PlanTool& tool) const { return tool_ == &tool; }
  /// Painted over the ground and below the plan's lines, null: none. Kept with the plan's picture: refreshGroundOverlay()
  /// has it painted anew. The overlay outlives that.
  void setGroundOverlay(const PlanOverlay* overlay);
  void refreshGroundOverlay();
  [[nodiscard]] const PlanOverlay* groundOverlay() const { return groundOverlay_; }
  /// Painted over the plan, in the order of their coming, until it is taken away. The overlay outlives that.
  void addOverlay(const PlanOverlay& overlay);
  void removeOverlay(const PlanOverlay& overlay);
  /// Picked elsewhere while a pick runs; a running selection takes it too if it is of its kind. Otherwise nothing happens.
  void offerPick(civil::Handle handle);
  /// As Escape; nothing happens where none runs.
  void cancelInteraction();
  /// As Enter: ends a selection with what is selected; nothing happens otherwise.
  void finishInteraction();
  [[nodiscard]] bool isInteracting() const { return mode_ != Mode::None; }

  [[nodiscard]] const view::Viewport& viewport() const { return viewport_; }
  /// What the mouse is on and would be clicked.
  [[nodiscard]] std::optional<view::Hit> hovered() const { return hovered_; }
  /// Of objects that lie one above the other the next is meant, as if the mouse were on that one alone; nothing happens
  /// where the mouse isn't on several.
  void showNextBelow();
  /// "Alignment  Valley road"; empty for no object.
  [[nodiscard]] QString titleOf(civil::Handle handle) const;
  /// What stands beside the pointer; empty where nothing does.
  [[nodiscard]] QStringList pointerBox() const;
  /// Whether what is on the screen is final, shading and labels.
  [[nodiscard]] bool isSharp() const { return isSharp_; }

 Q_SIGNALS:
  void mouseAt(QPointF drawing);
  void mouseGone();
  void clicked(quint64 handle);    ///< 0: nothing there
  void activated(quint64 handle);  ///< by a double click
  void picked(quint64 handle);
  void selected(const QList<quint64>& handles);
  void gaveUp();
  void handlePulled(int index, QPointF place);
  void handleDropped(int index, QPointF place);
  void handleLeft();
  /// A menu is asked for, while nothing else is: what lies there (0: nothing), where it is in the drawing, on the screen.
  void menuWanted(quint64 handle, QPointF place, QPoint global);
  /// What the user is asked; empty when the interaction ends.
  void promptChanged(const QString& prompt);
  /// hasPreviousView() or hasNextView() is another one.
  void viewsChanged();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class Mode : std::uint8_t { None, Pick, Select, Tool };
  /// A left button that went down and hasn't come up yet.
  struct Press {
    QPointF place;
    bool isDrag = false;
    bool pans = false;
  };

  [[nodiscard]] static QString titleOf(civil::ObjectKind kind, const QString& name);
  void start(Mode mode);
  void endInteraction();
  void setRemoving(bool removing);
  [[nodiscard]] QString prompt() const;

  /// What can be hit now; empty for nothing.
  [[nodiscard]] std::optional<view::KindSet> kinds() const;
  [[nodiscard]] std::optional<view::Hit> hitAt(QPointF place) const;
  /// All that can be hit there, the first as hitAt() finds it.
  [[nodiscard]] std::vector<view::Hit> pileAt(QPointF place) const;
  [[nodiscard]] bool isOnPile(QPointF place) const;
  /// What a click at `place` means: what hitAt() finds, or the one of the pile that is its turn.
  [[nodiscard]] std::optional<view::Hit> meantAt(QPointF place) const;
  void hover(QPointF place);
  void clickAt(QPointF place, Qt::KeyboardModifiers modifiers);
  void take(std::span<const civil::Handle> handles, bool remove);
  void endRectangle(QPointF place, Qt::KeyboardModifiers modifiers);
  [[nodiscard]] std::optional<int> handleAt(QPointF place) const;
  void pull(QPointF place);
  void endPull(bool drops);
  void paintHandles(QPainter& painter) const;
  [[nodiscard]] QPointF cornerPixel() const;
  /// The last line beside the pointer: what could be done now.
  [[nodiscard]] QString pointerHint() const;

  void endZoomRectangle();
  /// Whether the rectangle to zoom to took the event.
  bool drawZoomRectangle(QMouseEvent* event);

  void panBy(QPointF pixels);
  void zoomAt(QPointF place, double factor);
  [[nodiscard]] QPointF zoomPlace() const;
  /// A step of the history of its own, the one before gone on, or the present one shown otherwise.
  enum class Step : std::uint8_t { New, GoesOn, Resized };
  void viewChanged(Step step);
  void note(Step step);
  void takePlace(const PlanPlace& place);
  bool move(QEvent* event);
  void invalidate();
  void showCursor();
  void tileArrived();
  [[nodiscard]] PlanPainter::Frame frame() const;
  void paintBase();
  void paintHoverBase();
  [[nodiscard]] double toolReach() const;
  void paintOverlays(QPainter& painter) const;
  void paintRectangle(QPainter& painter) const;
  void paintPointerBox(QPainter& painter) const;

  std::shared_ptr<view::PlanScene> scene_;
  view::Viewport viewport_;
  PlanLook look_;
  PlanPainter painter_;
  TileWorker tiles_;
  /// The plan without what moves with the mouse, so that a highlight costs a copy.
  QImage base_;
  bool isBaseCurrent_ = false;
  /// The same with the object below the mouse highlighted: a road of ten kilometres takes longer to stroke than all else
  /// that a move of the mouse costs.
  QImage hoverBase_;
  civil::Handle hoverOf_ = 0;
  bool isSharp_ = false;
  /// The view shows all and goes on doing so when it is resized, until the user moves it.
  bool showsAll_ = true;

  PlanSelection selected_;
  std::optional<view::Hit> hovered_;
  /// Objects one above the other, through which the user goes.
  struct Pile {
    QPointF place;
    std::vector<view::Hit> hits;
    std::size_t turn = 0;
    bool isClicked = false;  ///< the next click at the place means the next of them
  };
  std::optional<Pile> pile_;
  /// While a pick runs: the mouse is on several objects.
  bool isOnSeveral_ = false;
  std::optional<QPointF> mouse_;
  std::optional<Press> press_;
  std::optional<QPointF> panFrom_;

  /// A handle that the left button holds.
  struct Pull {
    int index = 0;
    QPointF place;
    bool isMoved = false;
  };
  std::shared_ptr<const view::LineSet> preview_;
  std::vector<civil::Vec2> handles_;
  std::vector<civil::Vec2> pulled_;
  std::optional<Pull> pull_;
  /// The right button went down for an answer, not for a menu.
  bool answeredByMenuButton_ = false;

  ViewHistory history_;
  /// Since the view moved last.
  QElapsedTimer sinceMove_;
  ZoomRectangle zoomRectangle_;

  PlanTool* tool_ = nullptr;  ///< while the mode is Tool
  std::vector<const PlanOverlay*> overlays_;
  const PlanOverlay* groundOverlay_ = nullptr;

  Mode mode_ = Mode::None;
  QString addPrompt_;
  QString removePrompt_;
  std::optional<civil::ObjectKind> only_;
  bool isRemoving_ = false;
  PlanSelection selection_;
  /// First corner of a selection rectangle, in the drawing: it stays there when the view moves.
  std::optional<civil::Vec2> corner_;
  QTimer tileTime_;
};

}  // namespace lvx::desktop
