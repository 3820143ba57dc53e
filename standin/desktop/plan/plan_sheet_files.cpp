#include "desktop/plan/plan_sheet_files.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>

#include "desktop/plan/plan_sheet.h"

namespace lvx::desktop {

namespace {

class PlanFileWords {
  Q_DECLARE_TR_FUNCTIONS(PlanFileWords)
};

}  // namespace

QByteArray planPdf(const PlanSheet& sheet) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  constexpr int kResolution = 1200;
  writer.setResolution(kResolution);
  writer.setTitle(sheet.title());
  // Upright with its own width and height: a sheet that is turned would be measured the other way round.
  writer.setPageLayout(QPageLayout(QPageSize(sheet.paper(), QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                                   QPageLayout::Portrait, QMarginsF(0.0, 0.0, 0.0, 0.0)));
  QPainter painter(&writer);
  painter.scale(kResolution / 25.4, kResolution / 25.4);
  sheet.paint(painter);
  painter.end();
  return bytes;
}

QByteArray planPng(const PlanSheet& sheet) {
  constexpr double kMost = 40e6;
  const double area = sheet.paper().width() * sheet.paper().height();
  const double perMm = std::min(200.0 / 25.4, std::sqrt(kMost / area));
  QImage image((sheet.paper() * perMm).toSize(), QImage::Format_RGB32);
  constexpr double kMetre = 1000.0;
  image.setDotsPerMeterX(static_cast<int>(std::lround(perMm * kMetre)));
  image.setDotsPerMeterY(static_cast<int>(std::lround(perMm * kMetre)));
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.scale(perMm, perMm);
  sheet.paint(painter);
  painter.end();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes;
}

bool writePlan(const PlanSheet& sheet, const QString& path, QString& whyNot) {
  const QString shown = QDir::toNativeSeparators(path);
  const QString ending = QFileInfo(path).suffix().toLower();
  QByteArray bytes;
  if (ending == QLatin1String("pdf"))
    bytes = planPdf(sheet);
  else if (ending == QLatin1String("png"))
    bytes = planPng(sheet);
  else if (ending == QLatin1String("svg") && canWritePlanSvg())
    bytes = planSvg(sheet);
  if (bytes.isEmpty()) {
    whyNot = (canWritePlanSvg() ? PlanFileWords::tr("%1 can't be written: its name must end in .pdf, .svg or .png.")
                                : PlanFileWords::tr("%1 can't be written: its name must end in .pdf or .png."))
                 .arg(shown);
    return false;
  }
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
    whyNot = PlanFileWords::tr("%1 can't be written: %2.").arg(shown, file.errorString());
    return false;
  }
  return true;
}

}  // namespace lvx::desktop
