#include "options/exit_codes.h"

#include <array>

namespace lvx::options {

namespace {

constexpr std::array<ExitCodeDescription, 8> kExitCodes{{
    {kDone, "everything asked for was written", "everything asked for was written"},
    {kNotWritten, "something was not, said on standard error",
     "something asked for was not written; standard error says what"},
    {kUsage, "usage", "the command line isn't understood"},
    {kBadDrawing, "the drawing can't be read or saved", "the drawing can't be read or saved"},
    {kUnknownName, "a name isn't in the drawing or stands in several sites",
     "a name isn't in the drawing or stands in several sites; standard error lists what there is"},
    {kScriptMismatch, "a script doesn't fit what the command waits for",
     "a script doesn't fit what the command waits for"},
    {kException, "the command ended by an exception", "the report command ended by an exception"},
    {kInterrupted, "interrupted", "interrupted, as by Ctrl-C; no unfinished file is left"},
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

}  // namespace lvx::options
