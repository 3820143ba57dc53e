#include "cli/command_line.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "cli/answer.h"
#include "cli/failure.h"
#include "cli/terminal.h"
#include "options/exit_codes.h"
#include "options/option_table.h"

namespace lvx::cli {

using options::OptionDescription;
using options::Options;

namespace {

std::string nameOnLine(const OptionDescription& option) {
  return (option.isArgument ? "" : "--") + std::string(option.name);
}

/// An option that keeps its value in `values`, checked in the words of the command-line library.
CLI::Option* addOption(CLI::App& app, const OptionDescription& option, Options& values) {
  const std::string name = nameOnLine(option);
  const std::string help(option.help);
  const options::Field field = option.field(values);
  if (auto* const* flag = std::get_if<bool*>(&field)) return app.add_flag(name, **flag, help);

  CLI::Option* added = nullptr;
  if (std::holds_alternative<std::optional<int>*>(field)) {
    added = app.add_option_function<int>(
        name, [&option, &values](int value) { apply(option, values, std::to_string(value)); }, help);
    added->check(CLI::Range(1, option.greatest));
  } else if (std::holds_alternative<std::vector<std::string>*>(field)) {
    added = app.add_option_function<std::vector<std::string>>(
        name,
        [&option, &values](const std::vector<std::string>& given) {
          for (const std::string& value : given) apply(option, values, value);
        },
        help);
    // Each time it is given it takes one value, so that an argument may follow.
    added->type_size(1)->allow_extra_args(false);
  } else {
    added = app.add_option_function<std::string>(
        name, [&option, &values](const std::string& value) { apply(option, values, value); }, help);
  }
  if (!option.choices.empty())
    added->check(CLI::IsMember(std::vector<std::string>(option.choices.begin(), option.choices.end())));
  if (option.check.complaint != nullptr)
    added->check(CLI::Validator(option.check.complaint, std::string(option.check.name)));
  if (!option.valueName.empty()) added->type_name(std::string(option.valueName));
  return added;
}

/// Options that belong together, on the program itself or on one of its commands.
void addOptions(CLI::App& app, const std::vector<const OptionDescription*>& rows, Options& values) {
  std::map<const options::OptionGroup*, CLI::Option_group*> choices;
  std::map<std::string_view, CLI::Option*> added;
  for (const OptionDescription* row : rows) {
    CLI::App* place = &app;
    if (row->group != nullptr && row->group->isChoice) {
      CLI::Option_group*& choice = choices[row->group];
      if (choice == nullptr) {
        choice = app.add_option_group(std::string(row->group->name), std::string(row->group->summary));
      }
      place = choice;
    }
    CLI::Option* const option = addOption(*place, *row, values);
    if (row->isRequired) option->required();
    if (row->group != nullptr && !row->group->isChoice) option->group(std::string(row->group->name));
    // Whichever of the two stands second names the other.
    if (const auto other = added.find(row->excludes); other != added.end()) option->excludes(other->second);
    if (const auto other = added.find(row->needs); other != added.end()) option->needs(other->second);
    added.emplace(row->name, option);
  }
  for (const auto& [group, choice] : choices) choice->require_option(1);
}

/// Whether a word of the line holds the name of a command. One that doesn't occur can't be run, so that its options needn't
/// be known: those of all commands made a tenth of the instructions of a start.
bool mayRun(const options::CommandDescription& command, int argc, const char* const* argv) {
  return std::any_of(argv + std::min(argc, 1), argv + argc,
                     [&](std::string_view word) { return word.find(command.name) != word.npos; });
}

/// From here on all that the command tells is gathered, so it holds nothing back for --quiet.
void gatherAnswer(CommandLine& line) {
  options::CommonOptions& common = line.options.common;
  if (common.quiet) common.progress = "never";
  answer().gather(std::exchange(common.quiet, false));
  for (const options::CommandDescription& command : options::commands())
    if (command.command == line.command) answer().setCommand(command.name);
}

/// Help, the version or what is wrong, for --json.
ExitCode answerFor(const CLI::App& app, const CLI::ParseError& error) {
  answer().gather(false);
  std::ostringstream output;
  std::ostringstream errors;
  const bool isHelp = app.exit(error, output, errors) == 0;
  if (isHelp) {
    answer().set("text", output.str());
    return kDone;
  }
  tell(errors.str());
  const std::string words = errors.str();
  answer().add({Severity::Error, words.substr(0, words.find('\n')), {}, 0});
  return kUsage;
}

}  // namespace

std::variant<CommandLine, ExitCode> parseCommandLine(int argc, const char* const* argv, const std::string& version) {
  CommandLine line;
  CLI::App app(std::string(options::kProgramSummary), "lvxhost");
  app.set_version_flag("--version", "lvxhost " + version);
  // The same line means the same on every system: a slash begins a path, never an option.
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  app.footer(std::string(options::kProgramFooter) + "\n" + options::exitCodesLine());
  addOptions(app, options::commonOptions(), line.options);
  for (const options::CommandDescription& command : options::commands()) {
    CLI::App* const added = app.add_subcommand(std::string(command.name), std::string(command.summary));
    if (!mayRun(command, argc, argv)) continue;
    added->footer(std::string(command.footer) + "\n" + options::exitCodesOf(command.command));
    added->callback([&line, &command] { line.command = command.command; });
    addOptions(*added, options::optionsOf(command.command), line.options);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Which options stand before what isn't understood isn't known.
    if (line.options.json || std::find(argv, argv + argc, std::string_view("--json")) != argv + argc)
      return answerFor(app, error);
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  if (line.options.json) gatherAnswer(line);
  // One of them may stand before the command, where the other isn't known.
  if (line.options.common.overwrite && line.options.common.keep)
    throw Failure(kUsage, "--overwrite and --keep exclude each other");
  return line;
}

}  // namespace lvx::cli
