#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <cstddef>
#include <memory>
#include <vector>

#include "civil/sample_line_rules.h"
#include "runtime/open_drawing.h"
#include "view/plan_shapes.h"

namespace lvx::desktop {

/// Makes sample lines in small pieces between the events of the windows, so that a hundred thousand hold nobody up.
class SampleLinesMaker : public QObject {
  Q_OBJECT
 public:
  explicit SampleLinesMaker(QObject* parent = nullptr);

  /// Begins anew. `stations` are those of the rules. Alignment and surface stay as they are until the last line or stop();
  /// `border` may be null where the rules need none. `drawing` keeps both alive.
  void start(runtime::OpenDrawingRef drawing, const civil::Alignment& axis, const civil::TinSurface* border,
             const civil::SampleLineRules& rules, std::vector<civil::SampleLineStation> stations);
  /// Forgets what was made.
  void stop();
  /// All of them are made.
  [[nodiscard]] bool isDone() const { return done_ == stations_.size() && !stations_.empty(); }
  [[nodiscard]] std::size_t done() const { return done_; }
  [[nodiscard]] const std::vector<civil::MadeSampleLine>& lines() const { return lines_; }
  /// As the plan draws them, of those that are made; of very many some, evenly spread.
  [[nodiscard]] std::shared_ptr<const view::LineSet> shape() const { return shape_; }

 Q_SIGNALS:
  /// More are made; told some times a second, and at the end.
  void progressed();

 private:
  void makePiece();

  QTimer timer_;
  QElapsedTimer sinceTold_;
  runtime::OpenDrawingRef drawing_;
  const civil::Alignment* axis_ = nullptr;
  const civil::TinSurface* border_ = nullptr;
  civil::SampleLineRules rules_;
  std::vector<civil::SampleLineStation> stations_;
  std::size_t done_ = 0;
  std::size_t shownOf_ = 0;
  std::vector<civil::MadeSampleLine> lines_;
  view::LineSet growing_;
  std::shared_ptr<const view::LineSet> shape_;
};

}  // namespace lvx::desktop
