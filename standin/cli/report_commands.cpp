#include "cli/report_commands.h"

#include <stdexcept>

#include "cli/book_commands.h"
#include "cli/gls_command.h"
#include "cli/points_command.h"
#include "cli/projection_command.h"

namespace lvx::cli {

options::ExitCode runReportCommand(options::Command command, const options::Options& options, ReportRun& run) {
  switch (command) {
    case options::Command::Projection:
      return runProjection(options, run);
    case options::Command::Points:
      return runPoints(options, run);
    case options::Command::Gls:
      return runGls(options, run);
    case options::Command::Sections:
      return runSections(options, run);
    case options::Command::Profile:
      return runProfile(options, run);
    default:
      throw std::logic_error("no report command");
  }
}

}  // namespace lvx::cli
