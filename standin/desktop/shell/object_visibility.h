#pragma once

#include <QObject>
#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/shell/object_key.h"
#include "runtime/open_drawing.h"
#include "view/visibility.h"

namespace lvx::desktop {

/// Which objects of the open drawing its user hides in the plan. What has no place of its own stands for what it is made
/// of: a group for its lines or points, a site for its alignments.
///
///     visibility->hide(handle);          // changed() follows, and the plan no longer draws it
class ObjectVisibility : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  /// Another drawing, in which nothing is hidden; null: none. Tells nobody.
  void setDrawing(runtime::OpenDrawingRef drawing);

  void hide(civil::Handle handle) { setShown({handle}, false); }
  void show(civil::Handle handle) { setShown({handle}, true); }
  void setShown(const std::vector<civil::Handle>& handles, bool isShown);
  void showAll();
  /// Hidden as a whole; false for no object and for one that is never drawn, such as a profile.
  [[nodiscard]] bool isHidden(civil::Handle handle) const;
  /// Whether hiding it makes a difference in the plan.
  [[nodiscard]] bool canHide(civil::Handle handle) const { return !isHidden(handle) && !drawnFor(handle).empty(); }
  [[nodiscard]] bool hidesAny() const { return visibility_.hidesAny(); }
  [[nodiscard]] const view::Visibility& visibility() const { return visibility_; }

  /// What is hidden, to be found again in a drawing that is read anew.
  struct Kept {
    std::vector<ObjectKey> objects;
    std::vector<std::int32_t> points;  ///< by number
  };
  [[nodiscard]] Kept kept() const;
  void hideAgain(const Kept& kept);

 Q_SIGNALS:
  void changed();

 private:
  /// What is drawn for an object: itself, or what it is made of.
  [[nodiscard]] std::vector<civil::Handle> drawnFor(civil::Handle handle) const;

  runtime::OpenDrawingRef drawing_;
  view::Visibility visibility_;
};

}  // namespace lvx::desktop
