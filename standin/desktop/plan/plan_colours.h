#pragma once

#include <QColor>

namespace lvx::desktop {

/// What a plan is drawn in, on light or dark ground. Every line colour stands out from the ground, bare or shaded, and
/// from the other lines also for those who tell red from green badly.
struct PlanColours {
  QColor ground;
  QColor text;
  QColor quietText;
  QColor alignment;
  QColor sampleLine;
  QColor point;
  QColor corridor;
  QColor border;
  QColor triangles;
  QColor contour;
  QColor indexContour;  ///< every fifth
  QColor hover;
  QColor selected;
  QColor preview;   ///< lines that would be made
  QColor window;    ///< selection rectangle that takes what lies wholly inside
  QColor crossing;  ///< the one that also takes what it touches
  QColor boxFill;   ///< of the prompt and of names beside the pointer
  QColor boxFrame;
};

[[nodiscard]] const PlanColours& planColours(bool dark);

}  // namespace lvx::desktop
