#include "desktop/charts/chart_look.h"

#include <algorithm>
#include <cstddef>

namespace lvx::desktop {

ChartLook ChartLook::printed() {
  return {QColor(Qt::white),
          QColor(20, 20, 20),
          QColor(90, 90, 90),
          QColor(196, 196, 196),
          QColor(232, 232, 232),
          QColor(20, 20, 20),
          {QColor(0x7a, 0x4a, 0x1d), QColor(0xc2, 0x1a, 0x1a), QColor(0x0b, 0x57, 0xa4), QColor(0x2b, 0x7a, 0x2b),
           QColor(0x6a, 0x3d, 0x9a), QColor(0x00, 0x6f, 0x72), QColor(0xa8, 0x54, 0x00), QColor(0xa3, 0x00, 0x6b)}};
}

ChartLook ChartLook::ofWindow(const QPalette& palette) {
  constexpr int kHalf = 128;
  if (palette.color(QPalette::Base).lightness() >= kHalf) {
    ChartLook look = printed();
    look.paper = palette.color(QPalette::Base);
    look.highlight = palette.color(QPalette::Highlight);
    return look;
  }
  return {palette.color(QPalette::Base),
          QColor(226, 226, 226),
          QColor(160, 160, 160),
          QColor(78, 78, 78),
          QColor(54, 54, 54),
          palette.color(QPalette::Highlight).lighter(130),
          {QColor(0xd9, 0xa0, 0x66), QColor(0xff, 0x6b, 0x6b), QColor(0x6d, 0xb3, 0xff), QColor(0x7d, 0xdc, 0x7d),
           QColor(0xc5, 0xa3, 0xff), QColor(0x4f, 0xd5, 0xd5), QColor(0xff, 0xb4, 0x54), QColor(0xff, 0x8a, 0xd1)},
          true};
}

QColor ChartLook::colourOf(const ChartPen& pen) const {
  if (palette.empty()) return ink;
  return palette[static_cast<std::size_t>(std::max(pen.colour, 0)) % palette.size()];
}

QPen ChartLook::penOf(const ChartPen& pen) const {
  QPen result(colourOf(pen), pen.width);
  result.setJoinStyle(Qt::RoundJoin);
  result.setCapStyle(pen.style == Qt::SolidLine ? Qt::RoundCap : Qt::FlatCap);
  // Patterns count in widths: a thin line's would be too fine to tell.
  const double unit = std::max(pen.width, 1.0);
  switch (pen.style) {
    case Qt::DashLine:
      result.setDashPattern({8.0 / unit, 4.0 / unit});
      break;
    case Qt::DotLine:
      result.setDashPattern({2.0 / unit, 3.0 / unit});
      break;
    case Qt::DashDotLine:
      result.setDashPattern({9.0 / unit, 3.0 / unit, 2.0 / unit, 3.0 / unit});
      break;
    default:
      break;
  }
  return result;
}

}  // namespace lvx::desktop
