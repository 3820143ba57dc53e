#pragma once

#include <span>
#include <vector>

#include "desktop/plan/halo_text.h"
#include "desktop/plan/label_placer.h"
#include "desktop/plan/plan_frame.h"
#include "view/alignment_shape.h"
#include "view/contours.h"

class QPainter;

namespace lvx::desktop {

/// The texts of a frame: names of alignments, their stations, names of sample lines, numbers of points, elevations of
/// contours. What finds no
/// room isn't written; what is written stays where it is while the view moves.
///
///     PlanLabels(painter, frame, text, placer).paint(points, {});
class PlanLabels {
 public:
  /// All that is given outlives it. `text` keeps labels that were drawn; places that are taken are in `placer`.
  PlanLabels(QPainter& painter, const PlanFrame& frame, HaloText& text, LabelPlacer& placer)
      : painter_(painter), frame_(frame), text_(text), placer_(placer) {}

  /// `points` are those that get their numbers.
  /// `contours` those lines that get their elevations.
  void paint(std::span<const civil::Point* const> points, std::span<const view::ContourLabel> contours);

 private:
  void labelAlignment(const view::AlignmentShape& shape);
  void labelStations(const std::vector<view::Tick>& ticks);
  void labelSampleLines();
  void labelPoints(std::span<const civil::Point* const> points);
  void labelContours(std::span<const view::ContourLabel> contours);

  QPainter& painter_;
  const PlanFrame& frame_;
  HaloText& text_;
  LabelPlacer& placer_;
};

}  // namespace lvx::desktop
