#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include "civil/drawing.h"

class QMenu;
class QWidget;

namespace lvx::desktop {

class Document;
class RecentDrawings;
struct TreeRow;

/// Puts the open drawing together from files: adds and removes them, changes their order, reads one with northing and
/// easting swapped. Each of these reads the drawing again, see Document::change().
class DrawingComposer : public QObject {
  Q_OBJECT
 public:
  /// All that is given outlives it. Boxes stand over `window`.
  DrawingComposer(QWidget& window, Document& document, const RecentDrawings& recent);

  /// Asks for files first.
  void askAdd();
  /// Adds files behind those of the open drawing; without one they are opened as one.
  void add(const QStringList& paths);
  /// Files that were dropped onto the window: several are one drawing, the first one with an alignment in front.
  /// `isAddition`: to the drawing that is open.
  void drop(const QStringList& paths, bool isAddition);
  /// Leaves the drawing without a file, which isn't its only one. Where it is the first, the next one becomes the first.
  void remove(civil::FileNumber file);
  void makeFirst(civil::FileNumber file);
  void swapAxes(civil::FileNumber file);
  /// Fills a menu of the tree.
  void offerIn(QMenu& menu, const TreeRow& row);

 private:
  [[nodiscard]] bool has(civil::FileNumber file) const;

  QWidget& window_;
  Document& document_;
  const RecentDrawings& recent_;
};

}  // namespace lvx::desktop
