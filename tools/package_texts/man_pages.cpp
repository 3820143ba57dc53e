#include "package_texts/man_pages.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "options/commands.h"
#include "options/exit_codes.h"
#include "options/option_table.h"

namespace lvx::package_texts {

using options::Command;
using options::OptionDescription;

namespace {

std::string bold(std::string_view text) { return "\\fB" + inRoff(std::string(text)) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + inRoff(std::string(text)) + "\\fR"; }

/// A line of text; what begins it is no request.
std::string line(const std::string& text) {
  const std::string escaped = inRoff(text);
  const bool isRequest = !escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'');
  return (isRequest ? "\\&" : "") + escaped + "\n";
}

std::string inCapitals(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  return text;
}

std::string heading(const std::string& name, const std::string& summary, const ManPageEdition& edition) {
  return ".TH " + inCapitals(inRoff(name)) + " 1 \"" + edition.date + "\" \"lvxhost " + inRoff(edition.version) +
         "\" \"User Commands\"\n.SH NAME\n" + inRoff(name) + " \\- " + inRoff(summary) + "\n";
}

/// "--surface NAME", in bold and italics.
std::string optionWithValue(const OptionDescription& option) {
  if (option.isArgument) return italic(option.name);
  const std::string name = bold("--" + std::string(option.name));
  if (option.isFlag()) return name;
  return name + " " + italic(option.valueName.empty() ? "TEXT" : option.valueName);
}

/// Options of a choice stand between bars, those that may be left out in brackets.
std::string synopsis(const std::string& program, const std::vector<const OptionDescription*>& rows) {
  std::string text = ".SH SYNOPSIS\n" + bold(program) + "\n";
  std::vector<const options::OptionGroup*> shown;
  for (const OptionDescription* row : rows) {
    if (row->group == &options::kCommonGroup) continue;
    if (row->group != nullptr && row->group->isChoice) {
      if (std::find(shown.begin(), shown.end(), row->group) != shown.end()) continue;
      shown.push_back(row->group);
      std::string choice;
      for (const OptionDescription* other : rows)
        if (other->group == row->group)
          choice += (choice.empty() ? "" : " | ") + optionWithValue(*other) + (other->isList() ? " .\\|.\\|." : "");
      text += "{" + choice + "}\n";
      continue;
    }
    const std::string option = optionWithValue(*row);
    text += (row->isRequired ? option : "[" + option + "]") + (row->isList() ? "\\&.\\|.\\|." : "") + "\n";
  }
  return text + "[" + italic("COMMON OPTIONS") + "]\n";
}

std::string description(const OptionDescription& option) {
  std::string text = ".TP\n" + optionWithValue(option) + "\n" + line(std::string(option.help) + ".");
  if (!option.excludes.empty()) text += line("Excludes --" + std::string(option.excludes) + ".");
  if (!option.needs.empty()) text += line("Needs --" + std::string(option.needs) + ".");
  return text;
}

/// Arguments and options, group by group.
std::string optionSections(const std::vector<const OptionDescription*>& rows) {
  std::string arguments;
  std::string plain;
  std::vector<const options::OptionGroup*> groups;
  for (const OptionDescription* row : rows) {
    if (row->isArgument)
      arguments += description(*row);
    else if (row->group == nullptr)
      plain += description(*row);
    else if (std::find(groups.begin(), groups.end(), row->group) == groups.end())
      groups.push_back(row->group);
  }
  std::string text;
  if (!arguments.empty()) text += ".SH ARGUMENTS\n" + arguments;
  text += ".SH OPTIONS\n" + plain;
  for (const options::OptionGroup* group : groups) {
    text += ".SS " + inRoff(std::string(group->name)) + "\n";
    if (!group->summary.empty()) text += line(std::string(group->summary) + ":");
    for (const OptionDescription* row : rows)
      if (row->group == group) text += description(*row);
  }
  return text;
}

/// What stands behind the options in a command's help: its examples, and whatever else, in the lines that it has there.
std::string footerSections(std::string_view footer) {
  std::string details;
  std::string examples;
  std::string* place = &details;
  std::istringstream lines{std::string(footer)};
  bool asItStands = false;
  const auto stands = [&](bool wanted) {
    if (wanted != asItStands) *place += !wanted ? ".fi\n" : place->empty() ? ".nf\n" : ".PP\n.nf\n";
    asItStands = wanted;
  };
  for (std::string text; std::getline(lines, text);) {
    if (text.empty()) continue;
    const bool isIndented = text.front() == ' ';
    if (!isIndented) {
      stands(false);
      place = text == "Example:" || text == "Examples:" ? &examples : &details;
      if (place == &examples) continue;
      if (place->ends_with(".fi\n")) *place += ".PP\n";
    } else {
      stands(true);
    }
    *place += line(text);
  }
  stands(false);
  std::string text;
  if (!details.empty()) text += ".SH DETAILS\n" + details;
  if (!examples.empty()) text += ".SH EXAMPLES\n" + examples;
  return text;
}

/// Of one command, or of lvxhost with all of them.
std::string exitStatus(options::CommandSet commands) {
  std::string text = ".SH EXIT STATUS\n";
  for (const options::ExitCodeDescription& row : options::exitCodes())
    if (commands.contains(options::kEveryCommand) || row.commands.contains(commands))
      text += ".TP\n.B " + std::to_string(static_cast<int>(row.code)) + "\n" + line(std::string(row.meaning) + ".");
  return text;
}

std::string environment() {
  return ".SH ENVIRONMENT\n.TP\n.B SOURCE_DATE_EPOCH\n" +
         line("Seconds since 1970 that reports show as their date and time in place of the clock's.");
}

std::string seeAlso(const std::vector<std::string>& pages) {
  std::string text = ".SH SEE ALSO\n";
  for (std::size_t i = 0; i < pages.size(); ++i)
    text += ".BR " + inRoff(pages[i]) + (i + 1 < pages.size() ? " (1),\n" : " (1)\n");
  return text;
}

ManPage programPage(const ManPageEdition& edition) {
  std::string text = heading("lvxhost", "road reports from LandXML drawings, without windows", edition);
  text += ".SH SYNOPSIS\n" + bold("lvxhost") + "\n[" + italic("COMMON OPTIONS") + "]\n" + italic("COMMAND") + "\n[" +
          italic("OPTIONS") + "]\n.br\n" + bold("lvxhost") + "\n" + bold("--help") + " | " + bold("--version") + "\n";
  text += ".SH DESCRIPTION\n" + line(std::string(options::kProgramSummary)) +
          line("Each command has a page of its own and its own --help.");
  text += ".SH COMMANDS\n";
  std::vector<std::string> pages;
  for (const options::CommandDescription& command : options::commands()) {
    pages.push_back("lvxhost-" + std::string(command.name));
    text += ".TP\n" + bold(command.name) + "\n" + line(std::string(command.summary) + ".");
  }
  pages.emplace_back("lvxhost-desktop");
  text += optionSections(options::commonOptions()) + footerSections(options::kProgramFooter) +
          exitStatus(options::kEveryCommand) + environment() + seeAlso(pages);
  return {"lvxhost", text};
}

ManPage commandPage(const options::CommandDescription& command, const ManPageEdition& edition) {
  const std::string name = "lvxhost-" + std::string(command.name);
  std::string summary(command.summary);
  summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
  const auto rows = options::optionsOf(command.command);
  const std::string own = "lvxhost " + std::string(command.name);
  return {name, heading(name, summary, edition) + synopsis(own, rows) + ".SH DESCRIPTION\n" +
                    line(std::string(command.summary) + ".") + optionSections(rows) + footerSections(command.footer) +
                    exitStatus(command.command) + environment() + seeAlso({"lvxhost"})};
}

ManPage desktopPage(const ManPageEdition& edition) {
  const auto rows = options::optionsOf(Command::Desktop);
  std::string shown = synopsis("lvxhost-desktop", rows);
  shown.erase(shown.rfind('[', shown.rfind("COMMON")));  // it has none
  std::string text = heading("lvxhost-desktop", "road reports from LandXML drawings, with windows", edition) + shown;
  text += ".SH DESCRIPTION\n" +
          line(
              "lvxhost-desktop opens LandXML drawings in windows, shows them in plan, section and profile, and runs "
              "the road reports on them.") +
          line("F1 explains each report.");
  text += optionSections(rows) + ".SH EXIT STATUS\n.TP\n.B 0\n" + line("The window was closed.") + ".TP\n.B " +
          std::to_string(options::kNoDisplay) + "\n" + line("There is no display to show windows on.") + ".TP\n.B " +
          std::to_string(options::kUsage) + "\n" + line("The command line isn't understood.") + environment() +
          seeAlso({"lvxhost"});
  return {"lvxhost-desktop", text};
}

}  // namespace

std::string inRoff(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\')
      escaped += "\\e";
    else if (c == '-')
      escaped += "\\-";
    else if (c == '\'')
      escaped += "\\(aq";
    else if (c == '`')
      escaped += "\\(ga";
    else if (c == '"')
      escaped += "\\(dq";
    else if (c == '^')
      escaped += "\\(ha";
    else if (c == '~')
      escaped += "\\(ti";
    else
      escaped += c;
  }
  return escaped;
}

std::vector<ManPage> manPages(const ManPageEdition& edition) {
  std::vector<ManPage> pages{programPage(edition)};
  for (const options::CommandDescription& command : options::commands()) pages.push_back(commandPage(command, edition));
  pages.push_back(desktopPage(edition));
  return pages;
}

}  // namespace lvx::package_texts
