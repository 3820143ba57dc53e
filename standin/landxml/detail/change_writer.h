#pragma once

#include <string>

#include "civil/drawing.h"
#include "landxml/detail/file_editor.h"

namespace lvx::landxml::detail {

/// Finds where `drawing` differs from `stored`, which `trace` tells the places of, and hands the edits to `editor`.
/// Throws SaveError where the drawing's corridors aren't those of the file.
void writeChanges(const civil::Drawing& drawing, const civil::Drawing& stored, const Trace& trace, FileEditor& editor,
                  const std::string& path);

}  // namespace lvx::landxml::detail
