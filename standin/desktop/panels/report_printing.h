#pragma once

#include <QString>
#include <functional>

class QPagedPaintDevice;
class QWidget;

/// Paper for what the windows show: a printer, or a PDF document.
namespace lvx::desktop {

/// Paints all pages; false: the paper took nothing.
using PaintPages = std::function<bool(QPagedPaintDevice& paper)>;

/// Asks for a printer and prints. Where the system has none, and where the printer can't be reached, the user is told what
/// can be done in place of it. `title` names the work in the printer's list. The paper lies upright unless `isWide`.
void askAndPrint(QWidget* over, const QString& title, bool isWide, const PaintPages& paint);
/// Asks for a file and writes a PDF document, whole or not at all; what went wrong is told.
void askAndSavePdf(QWidget* over, const QString& title, const QString& name, bool isWide, const PaintPages& paint);
/// The same without a question; gives what went wrong, or nothing.
[[nodiscard]] QString savePdf(const QString& file, const QString& title, bool isWide, const PaintPages& paint);

/// Calls `lines` for one line after the other until it says that there is none; prints them in letters of one width, as
/// small as the widest of `letters` needs, and parts longer ones. Over each page stand title and number.
[[nodiscard]] bool paintLines(QPagedPaintDevice& paper, const QString& title, qsizetype letters,
                              const std::function<bool(QString& line)>& lines);

}  // namespace lvx::desktop
