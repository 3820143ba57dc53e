#pragma once

#include <string>

#include "civil/drawing.h"
#include "cli/options.h"

namespace lvx::cli {

/// Reads a drawing with progress. Throws Failure (kBadDrawing) where it can't be read and runtime::Interrupted where
/// the user stopped it.
[[nodiscard]] civil::Drawing loadDrawing(const std::string& path, ProgressMode progress);

/// "road.xml:118: warning: …", the line left out where there is none.
[[nodiscard]] std::string diagnosticText(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic);

/// Warnings and errors of the reader on standard error; of many the first ones and how many more there are.
void tellDiagnostics(const civil::Drawing& drawing);

}  // namespace lvx::cli
