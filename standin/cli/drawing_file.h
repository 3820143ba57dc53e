#pragma once

#include <string>

#include "advice/report_advice.h"
#include "civil/drawing.h"
#include "options/options.h"

namespace lvx::cli {

/// Reads the drawing of `options`, all of its files, with progress. Throws Failure where it can't be read (kBadDrawing)
/// and for --swap-axes of what is none of its files (kUsage), and runtime::Interrupted where the user stopped it.
[[nodiscard]] civil::Drawing loadDrawing(const options::Options& options);

/// Saves a drawing, which was read from its own path, with progress. Throws Failure (kBadDrawing) where it can't be saved
/// and runtime::Interrupted where the user stopped it; what stood under `target` then still does.
void saveDrawing(civil::Drawing& drawing, const std::string& target, options::ProgressMode progress);

/// "road.xml:118: warning: …", with the file that it is of; the line left out where there is none.
[[nodiscard]] std::string diagnosticText(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic);

/// Warnings and errors of the reader on standard error; of many the first ones and how many more there are.
void tellDiagnostics(const civil::Drawing& drawing);

/// Those of a report's objects on standard error, of many the first ones, and how many others there are.
void tellDiagnostics(const civil::Drawing& drawing, const advice::SortedDiagnostics& diagnostics);

}  // namespace lvx::cli
