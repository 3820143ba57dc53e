#pragma once

#include "script/script_front_end.h"

namespace lvx::script {

/// True where dialogs can be windows of the system.
[[nodiscard]] bool canOpenWindows();

/// Opens dialogs as windows of the system. The script works them through the system's own messages, and what its transcript
/// tells is read back from the windows' controls.
[[nodiscard]] DialogOpener windowOpener();

}  // namespace lvx::script
