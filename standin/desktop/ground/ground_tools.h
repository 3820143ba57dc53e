#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "view/plan_scene.h"

class QWidget;

namespace lvx::desktop {

class DifferenceDialog;
class DifferenceLayer;
class MeasureTool;
class PlanView;

/// What a window offers over the ground of its drawing: measuring, and the difference of two surfaces.
class GroundTools : public QObject {
  Q_OBJECT
 public:
  /// Both outlive it.
  GroundTools(QWidget& window, PlanView& plan);
  ~GroundTools() override;

  void setScene(std::shared_ptr<const view::PlanScene> scene);
  /// When it returns, nothing looks at the drawing any more.
  void clear();
  void measure();
  void askDifference();

 Q_SIGNALS:
  /// For the console.
  void told(const QString& line);

 private:
  QWidget& window_;
  PlanView& plan_;
  std::shared_ptr<const view::PlanScene> scene_;
  std::unique_ptr<MeasureTool> measure_;
  std::unique_ptr<DifferenceLayer> layer_;
  /// Made when it is first asked for.
  std::unique_ptr<DifferenceDialog> dialog_;
};

}  // namespace lvx::desktop
