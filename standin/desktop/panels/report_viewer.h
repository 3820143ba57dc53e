#pragma once

#include <QString>
#include <string>

class QWidget;

/// Looking at what a report wrote.
namespace lvx::desktop {

/// Opens a report file: text and pages in a window of ours, which owns itself, a workbook in the system's program.
/// `codePage`: the reports' iconv name; empty: bytes are the characters of the same value. Gives what went wrong, in words
/// that say what to do; empty where it opened.
[[nodiscard]] QString openReport(const QString& path, const std::string& codePage, QWidget* over);
/// Opens the folder of a file in the system's file manager; gives what went wrong.
[[nodiscard]] QString showInFolder(const QString& path);

}  // namespace lvx::desktop
