#pragma once

#include <span>
#include <string>
#include <string_view>

#include "options/commands.h"

namespace lvx::options {

/// What the programs end with; scripts and job files read these. What each means for users is in exitCodes().
enum ExitCode : int {
  kDone = 0,
  kNotWritten = 1,
  kNoDisplay = 1,  ///< of lvxhost-desktop alone: there is nothing to show windows on
  kUsage = 2,
  kBadDrawing = 3,
  kUnknownName = 4,
  kScriptMismatch = 5,
  kException = 70,
  kInterrupted = 130,  ///< 128 + SIGINT, as a shell counts
};

struct ExitCodeDescription {
  ExitCode code;
  /// As the help has it: a part of one long line.
  std::string_view inHelp;
  /// As the README has it: a row of its own.
  std::string_view meaning;
  /// Which commands can end with it.
  CommandSet commands;
};

/// Everything that lvxhost ends with, by ascending code.
[[nodiscard]] std::span<const ExitCodeDescription> exitCodes();

/// "Exit codes: 0 …; 1 …." for the help of lvxhost.
[[nodiscard]] std::string exitCodesLine();

/// Those of one command for its help, each in a line of its own below "Exit codes:".
[[nodiscard]] std::string exitCodesOf(Command command);

}  // namespace lvx::options
