#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/batch_command.h"
#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/gls_command.h"
#include "cli/group_command.h"
#include "cli/info_command.h"
#include "cli/lines_command.h"
#include "cli/play_command.h"
#include "cli/points_command.h"
#include "cli/projection_command.h"
#include "cli/terminal.h"
#include "completion/completion.h"
#include "runtime/open_drawing.h"
#include "standin_platform/interruption.h"
#include "standin_platform/standard_streams.h"
#include "version/version.h"

namespace lvx::cli {
namespace {

ExitCode runCommand(const CommandLine& line) {
  using options::Command;
  switch (line.command) {
    case Command::Info:
      return runInfo(line.options);
    case Command::Projection:
      return runProjection(line.options);
    case Command::Points:
      return runPoints(line.options);
    case Command::Gls:
      return runGls(line.options);
    case Command::Lines:
      return runLines(line.options);
    case Command::Group:
      return runGroup(line.options);
    case Command::Batch:
      return runBatch(line.options);
    case Command::Play:
      return runPlay(line.options);
    case Command::Desktop:
      break;
  }
  throw Failure(kUsage, "lvxhost-desktop is a program of its own");
}

/// "lvxhost __complete SHELL WORDS…", which the shells' functions call while a line is typed: no command for people.
ExitCode completeLine(const std::vector<std::string>& words) {
  using completion::Shell;
  const std::map<std::string, Shell> shells{{"bash", Shell::Bash}, {"zsh", Shell::Zsh}, {"fish", Shell::Fish}};
  const auto shell = words.empty() ? shells.end() : shells.find(words.front());
  if (shell == shells.end()) throw Failure(kUsage, "__complete wants bash, zsh or fish, and the words of a line");
  std::cout << completion::answerText(completion::complete(shell->second, {words.begin() + 1, words.end()}))
            << std::flush;
  finishOutput();
  return kDone;
}

int run(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "__complete") return completeLine({argv + 2, argv + argc});
  const auto parsed = parseCommandLine(argc, argv, version::text());
  const auto* const line = std::get_if<CommandLine>(&parsed);
  const ExitCode code = line == nullptr ? std::get<ExitCode>(parsed) : runCommand(*line);
  finishOutput();
  return code;
}

constexpr const char* kNoMemory = "the command ended by an exception: there is not enough memory";

/// Where even what cleans up finds no memory, as in the destructors of some libraries.
[[noreturn]] void endWithoutMemory() {
  try {
    if (std::current_exception()) std::rethrow_exception(std::current_exception());
  } catch (const std::bad_alloc&) {
    say(kNoMemory);
    std::_Exit(kException);
  } catch (...) {
    std::abort();
  }
  std::abort();
}

int runGuarded(int argc, char** argv) {
  std::set_terminate(endWithoutMemory);
  standin_platform::guardStandardStreams();
  standin_platform::turnSignalsOfWritingIntoErrors();
  standin_platform::watchInterruption();
  try {
    return run(argc, argv);
  } catch (const Failure& failure) {
    say(failure.what());
    return failure.code();
  } catch (const runtime::Interrupted&) {
    say("interrupted; no unfinished file was left");
    return kInterrupted;
  } catch (const std::bad_alloc&) {
    say(kNoMemory);
    return kException;
  } catch (const std::exception& error) {
    say(std::string("the command ended by an exception: ") + error.what());
    return kException;
  }
}

}  // namespace
}  // namespace lvx::cli

int main(int argc, char** argv) { return lvx::cli::runGuarded(argc, argv); }
