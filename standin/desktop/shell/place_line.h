#pragma once

#include <QObject>
#include <QPointF>
#include <QString>
#include <memory>
#include <optional>

#include "civil/drawing.h"
#include "view/plan_scene.h"

class QLabel;
class QStatusBar;

namespace lvx::desktop {

/// The status line's words on where the mouse is: easting and northing, elevation and slope of the ground there, and
/// station and offset against the alignment that the user looks at.
class PlaceLine : public QObject {
  Q_OBJECT
 public:
  /// Adds its words to the right end of `bar`, which outlives it.
  explicit PlaceLine(QStatusBar& bar);

  /// Null: none. Used until another is set.
  void setAlignment(const civil::AlignmentObject* alignment);
  /// Whose ground is told; null: none.
  void setScene(std::shared_ptr<const view::PlanScene> scene);
  /// In drawing units, x to the east.
  void showMouse(QPointF place);
  void hideMouse();

 private:
  [[nodiscard]] static QString placeText(const QString& east, const QString& north);
  void showStation();

  QLabel* coordinates_;
  QLabel* ground_;
  QLabel* station_;
  const civil::AlignmentObject* alignment_ = nullptr;
  std::shared_ptr<const view::PlanScene> scene_;
  std::optional<QPointF> mouse_;
};

}  // namespace lvx::desktop
