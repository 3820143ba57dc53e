#include "desktop/panels/report_printing.h"

#include <QCoreApplication>
#include <QDir>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QMessageBox>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSaveFile>
#include <algorithm>

#include "desktop/common/file_boxes.h"

namespace lvx::desktop {

namespace {

struct ReportPrinting {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::ReportPrinting)
};

constexpr qreal kMargin = 15.0;  // millimetres

void layOut(QPagedPaintDevice& paper, bool isWide) {
  paper.setPageOrientation(isWide ? QPageLayout::Landscape : QPageLayout::Portrait);
  paper.setPageMargins(QMarginsF(kMargin, kMargin, kMargin, kMargin), QPageLayout::Millimeter);
}

/// Whether the user wants a PDF document in place of paper.
bool asksForPdf(QWidget* over, const QString& trouble) {
  QMessageBox box(QMessageBox::Warning, ReportPrinting::tr("Print"), trouble, QMessageBox::Cancel, over);
  box.setObjectName(QStringLiteral("noPrinter"));
  QAbstractButton* const pdf = box.addButton(ReportPrinting::tr("&Save as PDF…"), QMessageBox::AcceptRole);
  box.exec();
  return box.clickedButton() == pdf;
}

}  // namespace

QString savePdf(const QString& file, const QString& title, bool isWide, const PaintPages& paint) {
  QSaveFile target(file);
  if (!target.open(QIODevice::WriteOnly))
    return ReportPrinting::tr("%1 can't be written: %2").arg(QDir::toNativeSeparators(file), target.errorString());
  {
    QPdfWriter writer(&target);
    writer.setTitle(title);
    writer.setCreator(QCoreApplication::applicationName());
    layOut(writer, isWide);
    if (!paint(writer)) target.cancelWriting();
  }
  if (target.commit()) return {};
  return ReportPrinting::tr("%1 can't be written: %2").arg(QDir::toNativeSeparators(file), target.errorString());
}

void askAndSavePdf(QWidget* over, const QString& title, const QString& name, bool isWide, const PaintPages& paint) {
  const auto file = askTarget(over, {ReportPrinting::tr("Save as PDF"),
                                     FilePurpose::Export,
                                     name,
                                     {{ReportPrinting::tr("PDF document"), {QStringLiteral("pdf")}}},
                                     {}});
  if (!file) return;
  if (const QString trouble = savePdf(*file, title, isWide, paint); !trouble.isEmpty()) {
    QMessageBox box(QMessageBox::Warning, ReportPrinting::tr("Save as PDF"), trouble, QMessageBox::Ok, over);
    box.setObjectName(QStringLiteral("pdfFailed"));
    box.exec();
  }
}

void askAndPrint(QWidget* over, const QString& title, bool isWide, const PaintPages& paint) {
  if (QPrinterInfo::availablePrinterNames().isEmpty()) {
    if (asksForPdf(over, ReportPrinting::tr("This system has no printer. Set one up in the system's settings, or save "
                                            "the report as a PDF document.")))
      askAndSavePdf(over, title, title, isWide, paint);
    return;
  }
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(title);
  layOut(printer, isWide);
  QPrintDialog dialog(&printer, over);
  dialog.setObjectName(QStringLiteral("printDialog"));
  dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
  if (dialog.exec() != QDialog::Accepted) return;
  const bool isDone = paint(printer) && printer.printerState() != QPrinter::Error;
  if (!isDone && asksForPdf(over, ReportPrinting::tr("The printer %1 can't be reached, or took nothing. See whether it "
                                                     "is switched on, choose another one, or save the report as a PDF "
                                                     "document.")
                                      .arg(printer.printerName())))
    askAndSavePdf(over, title, title, isWide, paint);
}

bool paintLines(QPagedPaintDevice& paper, const QString& title, qsizetype letters,
                const std::function<bool(QString& line)>& lines) {
  QPainter painter;
  if (!painter.begin(&paper)) return false;
  const QRectF page(0, 0, painter.window().width(), painter.window().height());
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  constexpr qreal kUsual = 9.0;
  constexpr qreal kLeast = 4.0;
  font.setPointSizeF(kUsual);
  const qreal wanted = QFontMetricsF(font, &paper).horizontalAdvance(QLatin1Char('0')) *
                       static_cast<qreal>(std::max<qsizetype>(letters, 1));
  if (wanted > page.width()) font.setPointSizeF(std::max(kLeast, kUsual * page.width() / wanted));
  painter.setFont(font);
  const QFontMetricsF metrics(font, &paper);
  const qreal step = metrics.lineSpacing();
  const auto fitting =
      std::max<qsizetype>(1, static_cast<qsizetype>(page.width() / metrics.horizontalAdvance(QLatin1Char('0'))));

  int number = 0;
  qreal below = page.bottom();
  QString line;
  const auto put = [&](const QString& text) {
    if (below + step > page.bottom()) {
      if (number > 0 && !paper.newPage()) return false;
      ++number;
      const QRectF head(page.left(), page.top(), page.width(), step);
      painter.drawText(head, Qt::AlignLeft, title);
      painter.drawText(head, Qt::AlignRight, ReportPrinting::tr("Page %1").arg(number));
      painter.drawLine(QPointF(page.left(), page.top() + step * 1.3), QPointF(page.right(), page.top() + step * 1.3));
      below = page.top() + step * 2.0;
    }
    painter.drawText(QPointF(page.left(), below + metrics.ascent()), text);
    below += step;
    return true;
  };
  while (lines(line)) {
    qsizetype from = 0;
    do {
      if (!put(line.mid(from, fitting))) return false;
      from += fitting;
    } while (from < line.size());
  }
  if (number == 0 && !put({})) return false;
  return painter.end();
}

}  // namespace lvx::desktop
