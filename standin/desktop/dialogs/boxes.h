#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

#include "host/user_interface.h"

class QWidget;

/// Message boxes and the file box of modules. Each stands over `parent`, or over the modal window that is open; while
/// modal windows are refused it gives up without being shown.
namespace lvx::desktop {

/// Shows a message box and gives the answer, one that `buttons` offers. Escape is No or Cancel where there is such a
/// button. The text is plain and can be selected and copied.
host::BoxAnswer showMessageBox(QWidget* parent, const QString& text, host::BoxButtons buttons, host::BoxIcon icon);

/// Opens the file box in its save form: the full path that the user chose, as typed: no extension is added, and nothing is
/// asked about a file that is there, since the command asks that. With host::kPromptCreate in `flags` a file that isn't
/// there is asked about, and a No returns to the box. Starts where reports went last (startFolder).
std::optional<QString> askSavePath(QWidget* parent, const QString& filter, std::uint32_t flags);

/// A filter in the framework's format ("label|pattern|label|pattern||") as name filters of a file dialog. Patterns may be
/// several, with ";" between them; "*.*" is any name, also one without a dot.
[[nodiscard]] QStringList nameFilters(const QString& filter);

}  // namespace lvx::desktop
