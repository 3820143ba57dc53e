#pragma once

#include <QIcon>
#include <QString>

namespace lvx::desktop {

/// A picture of the program by its file name without extension ("open"). Its lines take the text colour of the scheme in
/// force whenever it is drawn, so nothing needs to be loaded again for another scheme; sharp at every scaling.
[[nodiscard]] QIcon icon(const QString& name);

}  // namespace lvx::desktop
