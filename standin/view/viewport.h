#pragma once

#include "civil/geometry.h"
#include "civil/tin_surface.h"

namespace lvx::view {

/// Which part of the drawing shows in a window of pixels: the plane, or a section or profile with its heights drawn
/// larger. Drawing coordinates count to the right and up, pixels to the right and down from the upper left corner.
///
///     Viewport port(800, 600);
///     port.show({0, 0, 100, 50});           // all of it, with some room around
///     port.toPixels({50, 25});              // {400, 300}
///     port.zoomAt({400, 300}, 2.0);         // what lay under that pixel still does
///
/// Pixels and drawing units both count in doubles; there and back again a place moves by less than 1e-5 of a pixel at
/// survey coordinates of seven digits and scales up to 1000.
class Viewport {
 public:
  // Beyond these a double no longer tells neighbouring pixels of survey coordinates apart, or all is one pixel.
  static constexpr double kLeastScale = 1e-7;
  static constexpr double kMostScale = 1e5;

  Viewport() = default;
  /// Sizes in pixels; below 1 they count as 1.
  Viewport(int width, int height) { resize(width, height); }

  /// Keeps the centre where it is.
  void resize(int width, int height);
  /// Shows all of `box` as large as it goes, with `margin` of the window free on each side. An empty box changes nothing;
  /// one without extent is shown at the present scale.
  void show(const civil::Box& box, double margin = 0.05);
  /// Enlarges by `factor`, above 0, around a pixel.
  void zoomAt(civil::Vec2 pixel, double factor);
  /// Moves the drawing with the mouse.
  void panBy(civil::Vec2 pixels);
  void setCentre(civil::Vec2 centre) { centre_ = centre; }
  /// Pixels a drawing unit across; kept between the two limits.
  void setScale(double scale);
  /// How many times larger heights are drawn than widths; 1 in the plane.
  void setExaggeration(double factor) { exaggeration_ = factor > 0.0 ? factor : 1.0; }

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] double scale() const { return scale_; }
  [[nodiscard]] double exaggeration() const { return exaggeration_; }
  [[nodiscard]] civil::Vec2 centre() const { return centre_; }
  [[nodiscard]] civil::Vec2 toPixels(civil::Vec2 place) const;
  [[nodiscard]] civil::Vec2 toDrawing(civil::Vec2 pixel) const;
  /// What shows.
  [[nodiscard]] civil::Box visible() const;

  bool operator==(const Viewport&) const = default;

 private:
  int width_ = 1;
  int height_ = 1;
  double scale_ = 1.0;
  double exaggeration_ = 1.0;
  civil::Vec2 centre_;
};

}  // namespace lvx::view
