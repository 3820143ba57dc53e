#pragma once

#include <QObject>
#include <optional>
#include <vector>

#include "runtime/open_drawing.h"

namespace lvx::desktop {

/// What the user chose in the drawing, in whichever view, and the alignment that they look at by it: the chosen one or
/// the one that the chosen object stands on. An alignment stays until another one takes its place.
class Selection : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  /// Begins anew over a drawing, with nothing chosen and its first alignment; null: over none. Tells nobody.
  void setDrawing(runtime::OpenDrawingRef drawing);
  /// 0, or a handle that the drawing doesn't have, chooses nothing. `from` is who asks, so that it needn't follow itself.
  void select(civil::Handle handle, const QObject* from);

  /// 0 for nothing.
  [[nodiscard]] civil::Handle handle() const { return handle_; }
  /// Null where the drawing has none.
  [[nodiscard]] const civil::AlignmentObject* alignment() const { return alignment_; }
  /// What is drawn for the chosen object: itself, or where it has no place of its own, a group's lines or points, a
  /// site's alignments, a profile's alignment.
  [[nodiscard]] std::vector<civil::Handle> shown() const;

 Q_SIGNALS:
  void changed(const QObject* from);

 private:
  [[nodiscard]] std::optional<civil::DrawingEntry> entryOf(civil::Handle handle) const;

  runtime::OpenDrawingRef drawing_;
  civil::Handle handle_ = 0;
  const civil::AlignmentObject* alignment_ = nullptr;
};

}  // namespace lvx::desktop
