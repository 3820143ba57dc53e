#include "cli/info_command.h"

#include "cli/drawing_file.h"
#include "cli/terminal.h"

namespace lvx::cli {

options::ExitCode runInfo(const options::Options& options) {
  const civil::Drawing drawing = loadDrawing(options, civil::GroundSearch::WhenAsked);
  if (options.json)
    answerInfo(drawing);
  else
    tellInfo(drawing, print);
  return options::kDone;
}

}  // namespace lvx::cli
