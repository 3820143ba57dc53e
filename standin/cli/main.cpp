#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/answer.h"
#include "cli/batch_command.h"
#include "cli/command_line.h"
#include "cli/dialog_command.h"
#include "cli/failure.h"
#include "cli/group_command.h"
#include "cli/guarded_run.h"
#include "cli/info_command.h"
#include "cli/lines_command.h"
#include "cli/play_command.h"
#include "cli/report_commands.h"
#include "cli/terminal.h"
#include "cli/volumes_command.h"
#include "completion/completion.h"
#include "standin_platform/freed_memory.h"
#include "standin_platform/interruption.h"
#include "standin_platform/program_arguments.h"
#include "standin_platform/standard_streams.h"
#include "version/version.h"

namespace lvx::cli {
namespace {

ExitCode runCommand(const CommandLine& line) {
  using options::Command;
  ReportRun report;
  switch (line.command) {
    case Command::Info:
      return runInfo(line.options);
    case Command::Points:
      report.groundSearch = civil::GroundSearch::WhenAsked;
      [[fallthrough]];
    case Command::Projection:
    case Command::Gls:
    case Command::Sections:
    case Command::Profile:
      return runReportCommand(line.command, line.options, report);
    case Command::Lines:
      return runLines(line.options);
    case Command::Group:
      return runGroup(line.options);
    case Command::Volumes:
      return runVolumes(line.options);
    case Command::Batch:
      return runBatch(line.options);
    case Command::Play:
      return runPlay(line.options);
    case Command::Dialog:
      return runDialog(line.options);
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

int runProgram(int count, char** given) {
  standin_platform::keepFreedMemory();
  std::set_terminate(endWithoutMemory);
  standin_platform::guardStandardStreams();
  standin_platform::turnSignalsOfWritingIntoErrors();
  standin_platform::watchInterruption();
  const Answer& told = answer();  // its seconds begin here
  const int code = runGuarded([&] {
    std::vector<std::string> arguments = standin_platform::programArguments(count, given);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    return run(static_cast<int>(arguments.size()), words.data());
  });
  if (!told.isGathered()) return code;
  return runGuarded([&] {
    printDocument(told.document(code));
    finishOutput();
    return code;
  });
}

}  // namespace
}  // namespace lvx::cli

int main(int argc, char** argv) { return lvx::cli::runProgram(argc, argv); }
