#include "completion/completion.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "civil/drawing.h"
#include "landxml/project.h"
#include "options/commands.h"
#include "options/option_table.h"

namespace lvx::completion {

using options::Command;
using options::NamesOf;
using options::OptionDescription;

namespace {

/// The text of a word with quotes and backslashes, the last of which may be open still.
std::string withoutQuotes(const std::string& word) {
  std::string text;
  char quote = '\0';
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if (c == '\\' && quote != '\'' && i + 1 < word.size())
      text += word[++i];
    else if (quote == '\0' && (c == '"' || c == '\''))
      quote = c;
    else if (quote != '\0' && c == quote)
      quote = '\0';
    else
      text += c;
  }
  return text;
}

/// Words as the program would get them, but that --option=value is two.
std::vector<std::string> wordsOf(Shell shell, const std::vector<std::string>& given, bool& lastHadOption) {
  std::vector<std::string> words;
  lastHadOption = false;
  for (std::size_t i = 0; i < given.size(); ++i) {
    const bool isLast = i + 1 == given.size();
    std::string word = shell == Shell::Zsh ? given[i] : withoutQuotes(given[i]);
    // bash takes the sign for a word of its own
    if (shell == Shell::Bash && given[i] == "=" && !words.empty() && words.back().starts_with("--")) {
      if (isLast) words.emplace_back();
      continue;
    }
    const auto equals = word.find('=');
    if (word.starts_with("--") && equals != std::string::npos) {
      words.push_back(word.substr(0, equals));
      word = word.substr(equals + 1);
      lastHadOption = isLast;
    }
    words.push_back(std::move(word));
  }
  return words;
}

/// What of the line stands before the word that is completed.
struct Line {
  std::optional<Command> command;
  std::vector<const OptionDescription*> rows = options::commonOptions();
  std::map<std::string_view, std::vector<std::string>> given;
  std::size_t arguments = 0;
  /// The option whose value is due.
  const OptionDescription* open = nullptr;

  void begin(Command wanted) {
    command = wanted;
    rows = options::optionsOf(wanted);
  }
  [[nodiscard]] const OptionDescription* option(std::string_view name) const {
    for (const OptionDescription* row : rows)
      if (!row->isArgument && row->name == name) return row;
    return nullptr;
  }
  /// The argument whose turn is next.
  [[nodiscard]] const OptionDescription* argument() const {
    std::size_t index = 0;
    for (const OptionDescription* row : rows)
      if (row->isArgument && index++ == arguments) return row;
    return nullptr;
  }
  [[nodiscard]] std::optional<std::string> value(std::string_view name) const {
    const auto found = given.find(name);
    return found == given.end() ? std::nullopt : std::optional<std::string>(found->second.back());
  }
  void take(const std::string& word);
};

void Line::take(const std::string& word) {
  if (open != nullptr) {
    given[open->name].push_back(word);
    open = nullptr;
  } else if (word.starts_with("--")) {
    const OptionDescription* const row = option(std::string_view(word).substr(2));
    if (row == nullptr) return;
    if (row->isFlag())
      given[row->name].emplace_back();
    else
      open = row;
  } else if (!command) {
    if (const auto* const found = options::findCommand(word)) begin(found->command);
  } else if (const OptionDescription* const row = argument()) {
    given[row->name].push_back(word);
    ++arguments;
  }
}

// ---------------------------------------------------------------- names of the drawing

std::optional<civil::Drawing> drawingOf(const Line& line) {
  const auto first = line.value("DRAWING");
  if (!first) return std::nullopt;
  std::vector<landxml::ProjectFile> files{{*first}};
  if (const auto with = line.given.find("with"); with != line.given.end())
    for (const std::string& path : with->second) files.push_back({path});
  // A pipe can be read once, and that is for the command.
  for (const landxml::ProjectFile& file : files)
    if (std::error_code error; !std::filesystem::is_regular_file(file.path, error)) return std::nullopt;
  landxml::ProjectOptions reading;
  reading.convertUnits = true;
  reading.namesAlone = true;
  try {
    return landxml::readProject(files, reading);
  } catch (const std::exception&) {
    return std::nullopt;  // the command says why; while a line is typed there is nowhere to
  }
}

/// The site and alignment that the line names, or any.
struct Wanted {
  std::optional<std::string> site;
  std::optional<std::string> alignment;
};

template <class Use>
void eachAlignment(const civil::Drawing& drawing, const Wanted& wanted, Use use) {
  const auto inSite = [&](const civil::Site& site) {
    if (wanted.site && *wanted.site != site.name) return;
    for (const auto& alignment : site.alignments)
      if (!wanted.alignment || *wanted.alignment == alignment->name) use(*alignment, site);
  };
  inSite(drawing.siteless);
  for (const auto& site : drawing.sites) inSite(site);
}

std::vector<Candidate> namesIn(const civil::Drawing& drawing, NamesOf kind, const Wanted& wanted) {
  std::vector<Candidate> names;
  const auto inSite = [](const civil::Site& site) {
    return site.name.empty() ? std::string("alignment") : "alignment of site " + site.name;
  };
  switch (kind) {
    case NamesOf::Nothing:
      break;
    case NamesOf::Alignments:
      eachAlignment(drawing, {wanted.site, {}}, [&](const auto& alignment, const auto& site) {
        names.push_back({alignment.name, inSite(site)});
      });
      break;
    case NamesOf::Sites:
      for (const auto& site : drawing.sites) names.push_back({site.name, "site"});
      break;
    case NamesOf::Profiles:
      eachAlignment(drawing, wanted, [&](const auto& alignment, const auto&) {
        for (const auto& profile : alignment.profiles) names.push_back({profile.name, "profile of " + alignment.name});
      });
      break;
    case NamesOf::SampleLineGroups:
      eachAlignment(drawing, wanted, [&](const auto& alignment, const auto&) {
        for (const auto& group : alignment.sampleLineGroups)
          names.push_back({group.name, "sample lines of " + alignment.name});
      });
      break;
    case NamesOf::Surfaces:
      for (const auto& surface : drawing.surfaces) names.push_back({surface.name, "surface"});
      break;
    case NamesOf::PointGroups:
      for (const auto& group : drawing.pointGroups) names.push_back({group.name, "point group"});
      break;
  }
  return names;
}

// ---------------------------------------------------------------- what may stand at the place

bool isFile(const OptionDescription& row) {
  return row.valueName == "FILE" || row.valueName == "STEM" || row.isArgument;
}

/// Of forms, which are joined by commas: the last one.
std::vector<Candidate> formsBehind(const std::string& typed) {
  const auto comma = typed.rfind(',');
  const std::string before = comma == std::string::npos ? "" : typed.substr(0, comma + 1);
  std::vector<Candidate> forms;
  for (const std::string form : {"txt", "xls", "html"})
    if (("," + before).find("," + form + ",") == std::string::npos) forms.push_back({before + form, ""});
  return forms;
}

Completion valuesOf(const Line& line, const OptionDescription& row, const std::string& typed) {
  Completion completion;
  completion.files = isFile(row);
  for (const std::string_view choice : row.choices) completion.candidates.push_back({std::string(choice), ""});
  if (row.name == "forms") completion.candidates = formsBehind(typed);
  if (row.names != NamesOf::Nothing)
    if (const auto drawing = drawingOf(line))
      completion.candidates = namesIn(*drawing, row.names, {line.value("site"), line.value("alignment")});
  return completion;
}

/// Whether the option can still be given.
bool isFree(const Line& line, const OptionDescription& row) {
  if (row.isArgument || (line.given.contains(row.name) && !row.isList())) return false;
  for (const OptionDescription* other : line.rows) {
    if (!line.given.contains(other->name) || other == &row) continue;
    if (other->excludes == row.name || row.excludes == other->name) return false;
    if (row.group != nullptr && row.group->isChoice && row.group == other->group) return false;
  }
  return row.needs.empty() || line.given.contains(row.needs);
}

Completion optionsFor(const Line& line, bool isDesktop) {
  Completion completion;
  for (const OptionDescription* row : line.rows)
    if (isFree(line, *row)) completion.candidates.push_back({"--" + std::string(row->name), std::string(row->help)});
  completion.candidates.push_back({"--help", "Show the help"});
  if (!line.command || isDesktop) completion.candidates.push_back({"--version", "Show the version"});
  return completion;
}

Completion atPlace(const Line& line, const std::string& typed, bool isDesktop) {
  if (line.open != nullptr) return valuesOf(line, *line.open, typed);
  if (typed.starts_with("-")) return optionsFor(line, isDesktop);
  if (!line.command) {
    Completion completion;
    for (const auto& command : options::commands())
      completion.candidates.push_back({std::string(command.name), std::string(command.summary)});
    return completion;
  }
  if (const OptionDescription* const argument = line.argument()) return valuesOf(line, *argument, typed);
  return typed.empty() ? optionsFor(line, isDesktop) : Completion();
}

}  // namespace

Completion complete(Shell shell, const std::vector<std::string>& given) {
  if (given.size() < 2) return {};
  bool behindOption = false;
  const std::vector<std::string> words = wordsOf(shell, given, behindOption);
  Line line;
  const bool isDesktop = std::filesystem::path(words.front()).filename() == "lvxhost-desktop";
  if (isDesktop) line.begin(Command::Desktop);
  for (std::size_t i = 1; i + 1 < words.size(); ++i) line.take(words[i]);

  const std::string& typed = words.back();
  Completion completion = atPlace(line, typed, isDesktop);
  // Twice the same name, as of lines of two alignments, is one choice.
  std::set<std::string> seen;
  std::erase_if(completion.candidates, [&](const Candidate& candidate) {
    return candidate.value.empty() || !candidate.value.starts_with(typed) || !seen.insert(candidate.value).second;
  });
  // fish has one word where the others have two.
  if (behindOption && shell == Shell::Fish)
    for (Candidate& candidate : completion.candidates) candidate.value.insert(0, words[words.size() - 2] + "=");
  return completion;
}

std::string answerText(const Completion& completion) {
  std::string text = completion.files ? "files\n" : "values\n";
  const auto plain = [](std::string words) {
    std::replace_if(
        words.begin(), words.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20U; }, ' ');
    return words;
  };
  for (const Candidate& candidate : completion.candidates)
    text.append(plain(candidate.value)).append("\t").append(plain(candidate.help)).append("\n");
  return text;
}

}  // namespace lvx::completion
