#pragma once

#include <QObject>
#include <QPointF>
#include <optional>

#include "civil/drawing.h"

class QMenu;

namespace lvx::desktop {

class DrawingViews;
class Session;

/// What the menus of the plan and of the tree offer for any object: its properties, the way to it, its coordinates.
class ObjectMenu : public QObject {
  Q_OBJECT
 public:
  /// Both outlive it.
  ObjectMenu(const Session& session, DrawingViews& views) : session_(session), views_(views) {}

  /// Adds entries for an object, 0 for none, and for a place of the plan; above what the menu has already, parted by a
  /// line.
  void offerIn(QMenu& menu, civil::Handle handle, std::optional<QPointF> place = std::nullopt);

  /// Easting, northing and elevation, as far as it is known, parted by tabs, with three decimals and the decimal sign of
  /// the user's system: what a spreadsheet takes, and the box that goes to a place.
  [[nodiscard]] static QString coordinates(civil::Vec2 place, std::optional<double> elevation = std::nullopt);

 private:
  const Session& session_;
  DrawingViews& views_;
};

}  // namespace lvx::desktop
