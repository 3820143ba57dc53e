#include "cli/drawing_file.h"

#include <algorithm>
#include <new>

#include "cli/failure.h"
#include "cli/terminal.h"
#include "landxml/project.h"
#include "landxml/reader.h"
#include "runtime/open_drawing.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

using standin_platform::isInterrupted;

civil::Drawing loadDrawing(const std::string& path, ProgressMode progress) {
  ProgressLine line(progress, "reading " + path);
  landxml::ReadOptions options;
  options.progress = [&line](const landxml::Progress& state) {
    line.update(state.bytesDone, state.bytesTotal);
    return !isInterrupted();
  };
  try {
    return landxml::readDrawing(path, options);
  } catch (const landxml::Error& error) {
    // Cancelled, or a system call that the user's signal broke off.
    if (isInterrupted()) throw runtime::Interrupted();
    throw Failure(kBadDrawing, error.what());
  } catch (const std::bad_alloc&) {
    throw Failure(kBadDrawing, landxml::ReadError("not enough memory for this drawing", path).what());
  }
}

void saveDrawing(civil::Drawing& drawing, const std::string& target, ProgressMode progress) {
  ProgressLine line(progress, "saving " + target);
  landxml::SaveOptions options;
  options.progress = [&line](const landxml::Progress& state) {
    line.update(state.bytesDone, state.bytesTotal);
    return !isInterrupted();
  };
  try {
    landxml::saveProject(drawing, target, options);
  } catch (const landxml::Error& error) {
    if (isInterrupted()) throw runtime::Interrupted();
    throw Failure(kBadDrawing, error.what());
  }
}

std::string diagnosticText(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic) {
  std::string text = drawing.path;
  if (diagnostic.line != 0) text += ":" + std::to_string(diagnostic.line);
  switch (diagnostic.severity) {
    case civil::Severity::Note:
      return text + ": note: " + diagnostic.text;
    case civil::Severity::Warning:
      return text + ": warning: " + diagnostic.text;
    case civil::Severity::Error:
      return text + ": error: " + diagnostic.text;
  }
  return text + ": " + diagnostic.text;
}

void tellDiagnostics(const civil::Drawing& drawing) {
  constexpr std::size_t kMost = 10;
  std::size_t told = 0;
  for (const civil::Diagnostic& diagnostic : drawing.diagnostics) {
    if (diagnostic.severity == civil::Severity::Note) continue;
    if (++told <= kMost) tell(diagnosticText(drawing, diagnostic) + "\n");
  }
  if (told > kMost)
    tell(drawing.path + ": " + std::to_string(told - kMost) + " more warnings; 'lvxhost info' lists all of them\n");
}

}  // namespace lvx::cli
