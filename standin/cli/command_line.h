#pragma once

#include <string>
#include <variant>

#include "options/commands.h"
#include "options/exit_codes.h"
#include "options/options.h"

namespace lvx::cli {

/// What a command line asks for.
struct CommandLine {
  options::Command command = options::Command::Info;
  options::Options options;
};

/// Reads the command line of lvxhost, which begins with the program's own name, as the table of options describes it.
/// With --json all that is told is gathered from there on (answer.h). Where nothing is left to do, what the program ends with: kDone after help or the version, which went to standard
/// output, kUsage after a line that can't be understood, with what is wrong on standard error.
[[nodiscard]] std::variant<CommandLine, options::ExitCode> parseCommandLine(int argc, const char* const* argv,
                                                                            const std::string& version);

}  // namespace lvx::cli
