#include "desktop/shell/plan_output.h"

#include <QDate>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMessageBox>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <utility>

#include "desktop/common/file_boxes.h"
#include "desktop/plan/plan_sheet_files.h"
#include "desktop/plan/plan_view.h"

namespace lvx::desktop {

namespace {

/// A sheet may take seconds.
class Waiting {
 public:
  Waiting() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;
  ~Waiting() { QGuiApplication::restoreOverrideCursor(); }
};

}  // namespace

PlanOutput::PlanOutput(QWidget& window, const PlanView& plan) : window_(window), plan_(plan) {}

std::optional<PlanSheetWish> PlanOutput::askSheet(const QString& title, PlanSheetDialog::For purpose) {
  PlanSheetDialog dialog({.scene = *plan_.scene(),
                          .look = plan_.look(),
                          .visible = plan_.viewport().visible(),
                          .title = title,
                          .date = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat)},
                         choices_, purpose, &window_);
  if (dialog.exec() != QDialog::Accepted || !plan_.scene()) return std::nullopt;
  choices_ = dialog.choices();
  PlanSheetWish wish = dialog.wish();
  wish.groundOverlay = plan_.groundOverlay();
  wish.selected = &plan_.shownSelection();
  return wish;
}

void PlanOutput::askExport(const QString& title) {
  const std::shared_ptr<view::PlanScene> scene = plan_.scene();
  if (!scene) return;
  const std::optional<PlanSheetWish> wish = askSheet(title, PlanSheetDialog::For::Export);
  if (!wish) return;
  QList<FileForm> forms{{tr("PDF document"), {QStringLiteral("pdf")}}};
  if (canWritePlanSvg()) forms << FileForm{tr("SVG drawing"), {QStringLiteral("svg")}};
  forms << FileForm{tr("PNG picture"), {QStringLiteral("png")}};
  const QString name = QFileInfo(title).completeBaseName() + QLatin1Char('-') + tr("plan") + QStringLiteral(".pdf");
  const auto path = askTarget(&window_, {tr("Export the plan"), FilePurpose::Export, name, forms, {}});
  if (!path) return;
  QString whyNot;
  const bool isWritten = [&] {
    const Waiting waiting;
    return writePlan(PlanSheet(*scene, plan_.look(), *wish), *path, whyNot);
  }();
  if (isWritten)
    Q_EMIT exported(*path);
  else
    QMessageBox::warning(&window_, tr("Export the plan"), whyNot);
}

void PlanOutput::askPrint(const QString& title) {
  const std::shared_ptr<view::PlanScene> scene = plan_.scene();
  if (!scene) return;
  if (QPrinterInfo::availablePrinterNames().isEmpty()) {
    QMessageBox::information(&window_, tr("Print the plan"),
                             tr("This computer has no printer. Export the plan as a PDF file, and print that where "
                                "there is one."));
    return;
  }
  const std::optional<PlanSheetWish> wish = askSheet(title, PlanSheetDialog::For::Print);
  if (!wish) return;
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(title);
  printer.setFullPage(true);
  const bool isAcross = wish->paper.width() > wish->paper.height();
  printer.setPageSize(QPageSize(isAcross ? wish->paper.transposed() : wish->paper, QPageSize::Millimeter));
  printer.setPageOrientation(isAcross ? QPageLayout::Landscape : QPageLayout::Portrait);
  QPrintDialog dialog(&printer, &window_);
  dialog.setWindowTitle(tr("Print the plan"));
  if (dialog.exec() != QDialog::Accepted) return;
  const QString whyNot = [&] {
    const Waiting waiting;
    return print(PlanSheet(*scene, plan_.look(), *wish), printer);
  }();
  if (!whyNot.isEmpty()) QMessageBox::warning(&window_, tr("Print the plan"), whyNot);
}

QString PlanOutput::print(const PlanSheet& sheet, QPrinter& printer) {
  QPainter painter;
  if (painter.begin(&printer)) {
    painter.scale(printer.resolution() / 25.4, printer.resolution() / 25.4);
    sheet.paint(painter);
    if (painter.end() && printer.printerState() != QPrinter::Error) return {};
  }
  return tr("%1 doesn't take the plan. Is it switched on and connected? The plan can be exported as a PDF file "
            "meanwhile.")
      .arg(printer.printerName());
}

}  // namespace lvx::desktop
