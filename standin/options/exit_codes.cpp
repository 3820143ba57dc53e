#include "options/exit_codes.h"

#include <array>

namespace lvx::options {

namespace {

constexpr std::array<ExitCodeDescription, 8> kExitCodes{{
    {kDone, "everything asked for was written", "everything asked for was written", kEveryCommand},
    {kNotWritten, "something was not, said on standard error",
     "something asked for was not written; standard error says what", kEveryCommand},
    {kUsage, "usage", "the command line isn't understood", kEveryCommand},
    {kBadDrawing, "the drawing can't be read or saved", "the drawing can't be read or saved", kDrawingCommands},
    {kUnknownName, "a name isn't in the drawing or stands in several sites",
     "a name isn't in the drawing or stands in several sites; standard error lists what there is",
     kJobCommands | kMakingCommands | Command::Volumes},
    {kScriptMismatch, "a script doesn't fit what the command waits for",
     "a script doesn't fit what the command waits for", Command::Play},
    {kException, "the command ended by an exception", "the command ended by an exception, also for want of memory",
     kEveryCommand},
    {kInterrupted, "interrupted", "interrupted, as by Ctrl-C; no unfinished file is left", kEveryCommand},
}};

}  // namespace

std::span<const ExitCodeDescription> exitCodes() { return kExitCodes; }

std::string exitCodesLine() {
  std::string line = "Exit codes:";
  const char* between = " ";
  for (const ExitCodeDescription& row : kExitCodes) {
    line.append(between).append(std::to_string(row.code)).append(" ").append(row.inHelp);
    between = "; ";
  }
  return line + ".";
}

std::string exitCodesOf(Command command) {
  constexpr std::size_t kColumn = 6;
  std::string text = "Exit codes:\n";
  for (const ExitCodeDescription& row : kExitCodes) {
    if (!row.commands.contains(command)) continue;
    std::string line = "  " + std::to_string(row.code);
    line.resize(kColumn, ' ');
    text.append(line).append(" ").append(row.meaning).append("\n");
  }
  return text;
}

}  // namespace lvx::options
