#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <array>
#include <unordered_map>
#include <vector>

namespace lvx::desktop {

/// Keeps labels off one another: who asks first gets the place. Labels may be turned; a grid of cells keeps thousands of
/// them cheap. All in pixels.
///
///     LabelPlacer placer(QRectF(0, 0, 800, 600));
///     if (placer.place({100, 50}, {40, 12}, 0.0)) drawLabel();
class LabelPlacer {
 public:
  /// Labels outside `area` find no place.
  explicit LabelPlacer(const QRectF& area) : area_(area) {}

  /// Takes the rectangle of `size` around `centre`, turned clockwise by `degrees`, if nothing has any of it.
  bool place(QPointF centre, QSizeF size, double degrees);
  /// Keeps a rectangle free, whatever stands there already.
  void reserve(const QRectF& rectangle);

 private:
  using Corners = std::array<QPointF, 4>;
  static constexpr double kCell = 64.0;

  [[nodiscard]] static Corners cornersOf(QPointF centre, QSizeF size, double degrees);
  [[nodiscard]] static bool overlap(const Corners& one, const Corners& other);
  void add(const Corners& corners);
  template <class Visit>
  bool anyCell(const Corners& corners, Visit visit) const;

  QRectF area_;
  std::vector<Corners> taken_;
  std::unordered_map<long long, std::vector<std::size_t>> cells_;
};

}  // namespace lvx::desktop
