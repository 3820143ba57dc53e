#include "desktop/ground/ground_tools.h"

#include <QWidget>

#include "desktop/ground/difference_dialog.h"
#include "desktop/ground/difference_layer.h"
#include "desktop/ground/measure_tool.h"
#include "desktop/plan/plan_view.h"

namespace lvx::desktop {

GroundTools::GroundTools(QWidget& window, PlanView& plan)
    : window_(window),
      plan_(plan),
      measure_(std::make_unique<MeasureTool>(plan)),
      layer_(std::make_unique<DifferenceLayer>(plan)) {
  connect(measure_.get(), &MeasureTool::told, this, &GroundTools::told);
}

GroundTools::~GroundTools() { clear(); }

void GroundTools::setScene(std::shared_ptr<const view::PlanScene> scene) {
  scene_ = std::move(scene);
  measure_->setScene(scene_);
  if (dialog_) dialog_->setDrawing(scene_ ? &scene_->drawing() : nullptr);
}

void GroundTools::clear() { setScene(nullptr); }

void GroundTools::measure() {
  measure_->start();
  plan_.setFocus();
}

void GroundTools::askDifference() {
  if (!scene_) return;
  if (!dialog_) {
    dialog_ = std::make_unique<DifferenceDialog>(&window_, *layer_);
    dialog_->setDrawing(&scene_->drawing());
    connect(dialog_.get(), &DifferenceDialog::told, this, &GroundTools::told);
  }
  dialog_->show();
  dialog_->raise();
  dialog_->activateWindow();
}

}  // namespace lvx::desktop
