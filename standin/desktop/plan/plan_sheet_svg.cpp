#include <QBuffer>
#include <QPainter>
#include <QSvgGenerator>

#include "desktop/plan/plan_sheet.h"
#include "desktop/plan/plan_sheet_files.h"

namespace lvx::desktop {

bool canWritePlanSvg() { return true; }

QByteArray planSvg(const PlanSheet& sheet) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setTitle(sheet.title());
  constexpr int kDots = 100;
  generator.setResolution(static_cast<int>(25.4 * kDots));
  const QSize dots = (sheet.paper() * kDots).toSize();
  generator.setSize(dots);
  generator.setViewBox(QRect(QPoint(0, 0), dots));
  QPainter painter(&generator);
  painter.scale(kDots, kDots);
  sheet.paint(painter);
  painter.end();
  return bytes;
}

}  // namespace lvx::desktop
