#pragma once

#include <QObject>
#include <vector>

#include "civil/drawing.h"

class QMenu;
class QWidget;

namespace lvx::desktop {

class DesktopFrontEnd;
class Document;
class Edits;
class Selection;
class Session;
struct TreeRow;

/// What an object maker works with.
struct ObjectMakerSurroundings {
  QWidget& window;
  const Session& session;
  const Document& document;
  const Selection& selection;
  DesktopFrontEnd& frontEnd;
  Edits& edits;
};

/// Makes objects that real files lack, by dialogs: ground profiles from surfaces, point groups by conditions or of points
/// that are selected in the plan. Each is a step of the edit history.
class ObjectMaker : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it.
  explicit ObjectMaker(const ObjectMakerSurroundings& surroundings) : at_(surroundings) {}

  // Nothing happens where no drawing is open, or something runs.
  void askProfile();
  void askPointGroup();
  /// Points are selected in the plan first, beginning with those of the window's selection.
  void askPointGroupOfSelection();
  /// Fills a menu of the tree.
  void offerIn(QMenu& menu, const TreeRow& row);
  /// Fills a menu of the plan at an object, 0 for none: a group of points, where one is there or points are selected.
  void offerInPlan(QMenu& menu, civil::Handle handle);

 private:
  [[nodiscard]] bool isPossible() const;
  [[nodiscard]] const civil::Drawing& drawing() const;
  void offer(QMenu& menu, const char* name, const QString& text, void (ObjectMaker::*work)());
  void addGroup(const QString& name, std::vector<std::int32_t> numbers);

  ObjectMakerSurroundings at_;
};

}  // namespace lvx::desktop
