#include <QBuffer>
#include <QPainter>
#include <QSvgGenerator>

#include "desktop/charts/chart_files.h"
#include "desktop/charts/chart_page.h"

namespace lvx::desktop {

bool canWriteSvg() { return true; }

QByteArray svgOf(const ChartPage& page, const Chart& chart) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setTitle(chart.title);
  generator.setDescription(chart.subtitle + QStringLiteral("\n") + chart.fileName);
  // A hundredth of a millimetre to a dot, so that the sheet's size and its scale are true.
  constexpr int kDots = 100;
  generator.setResolution(static_cast<int>(25.4 * kDots));
  const QSize dots = (page.size() * kDots).toSize();
  generator.setSize(dots);
  generator.setViewBox(QRect(QPoint(0, 0), dots));
  QPainter painter(&generator);
  painter.scale(kDots * 25.4 / 96.0, kDots * 25.4 / 96.0);
  page.paint(painter);
  painter.end();
  return bytes;
}

}  // namespace lvx::desktop
