#include "cli/job_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <set>
#include <stdexcept>
#include <system_error>
#include <unordered_map>
#include <variant>

#include "cli/book_commands.h"
#include "cli/detail/job_line.h"
#include "cli/drawing_file.h"
#include "cli/failure.h"
#include "cli/job_paths.h"
#include "cli/point_choice.h"
#include "cli/report_run.h"
#include "landxml/reader.h"
#include "options/option_table.h"

namespace lvx::cli {

namespace fs = std::filesystem;
using options::OptionDescription;
using Kind = JobValue::Kind;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string inQuotes(std::string_view name) { return "\"" + std::string(name) + "\""; }

/// "projection, points, gls, sections, profile"
std::string reportCommands() {
  std::string names;
  for (const options::CommandDescription& command : options::commands())
    if (options::kJobCommands.contains(command.command)) names.append(names.empty() ? "" : ", ").append(command.name);
  return names;
}

/// What is known of an option before any job is read.
struct KnownOption {
  const OptionDescription* description = nullptr;
  bool isFlag = false;
  bool isList = false;
  bool isPath = false;
};

/// A report command with its options, in the order of its help.
struct KnownCommand {
  std::string name;
  options::Command command = options::Command::Points;
  std::vector<KnownOption> options;
  std::unordered_map<std::string_view, std::size_t> byName;
  std::string names;
};

KnownCommand knownCommand(const options::CommandDescription& command) {
  KnownCommand known{std::string(command.name), command.command, {}, {}, {}};
  for (const OptionDescription* option : options::optionsOf(command.command)) {
    if (option->name == "json") continue;  // the whole batch has one answer
    // The drawing, which is an argument elsewhere.
    if (!option->isArgument) {
      known.byName.emplace(option->name, known.options.size());
      known.names.append(", ").append(option->name);
    }
    known.options.push_back({option, option->isFlag(), option->isList(), isPath(*option)});
  }
  known.names = "command, drawing" + known.names;
  return known;
}

const JobMember* find(const std::vector<JobMember>& members, std::string_view name) {
  const auto found =
      std::find_if(members.begin(), members.end(), [&](const JobMember& member) { return member.name == name; });
  return found == members.end() ? nullptr : &*found;
}

/// The text of a member that every job has.
const std::string& required(const std::vector<JobMember>& members, const char* name) {
  const JobMember* const member = find(members, name);
  if (member == nullptr || member->value.kind != Kind::Text) throw JobLineError("a job needs a text " + inQuotes(name));
  return member->value.text;
}

unsigned formsOf(const options::CommonOptions& common) {
  return (common.writes("txt") ? JobPaths::kText : 0U) | (common.writes("xls") ? JobPaths::kWorkbook : 0U) |
         (common.writes("html") ? JobPaths::kPage : 0U);
}

/// The files of a drawing and how they are read, as one text.
std::string keyOf(const options::Options& options, JobPaths& paths) {
  std::string key = paths.wholePath(options.drawing);
  for (const std::string& file : options.files.with) key.append(1, '\0').append(paths.wholePath(file));
  std::set<std::string> swapped;
  for (const std::string& file : options.files.swapAxes) swapped.insert(paths.wholePath(file));
  for (const std::string& file : swapped) key.append("\0swap\0", 6).append(file);
  if (options.files.convertUnits) key.append("\0units", 6);
  return key;
}

std::string keyOf(const runtime::HostChoices& host) {
  std::string key = host.language;
  for (const std::string& text : {host.messages.value_or(""), host.reportCodePage.value_or(""), host.messageCodePage})
    key.append(1, '\0').append(text);
  return key;
}

}  // namespace

class JobFile::Reader {
 public:
  explicit Reader(const JobFileSettings& settings) : settings_(settings) {
    whole_.common = settings.common;
    // Jobs run beside one another, so that their lines would mix.
    whole_.common.progress = "never";
    for (const options::CommandDescription& command : options::commands())
      if (options::kJobCommands.contains(command.command)) commands_.push_back(knownCommand(command));
  }

  /// Throws JobLineError, and Failure for values that the report itself would refuse.
  [[nodiscard]] Job read(std::size_t line, std::string_view text) const {
    const std::vector<JobMember> members = jobMembers(text);
    const KnownCommand& command = commandOf(required(members, "command"));
    Job job{line, {}, command.command, whole_};
    std::vector<bool> given(command.options.size());
    for (const JobMember& member : members) {
      if (member.name == "command") continue;
      if (member.name == "drawing") {
        const std::string& named = requireText(required(members, "drawing"));
        if (named == options::kStandardInput)
          throw JobLineError("a job's drawing can't come on standard input; \"./-\" is a file of that name");
        job.options.drawing = path(named);
        continue;
      }
      const auto found = command.byName.find(member.name);
      if (found == command.byName.end())
        throw JobLineError(inQuotes(member.name) + " is no option of " + command.name + "; there is " + command.names);
      given[found->second] = take(command.options[found->second], member, job.options);
    }
    static_cast<void>(required(members, "drawing"));
    static_cast<void>(required(members, "out"));
    requireTogether(command, given, job.options);
    job.label = command.name + " " + job.options.drawing + ", " + job.options.report.stem;
    return job;
  }

 private:
  [[nodiscard]] const KnownCommand& commandOf(const std::string& name) const {
    for (const KnownCommand& command : commands_)
      if (command.name == name) return command;
    throw JobLineError(inQuotes(name) + " is no report command; there is " + reportCommands());
  }

  static const std::string& requireText(const std::string& text) {
    if (text.find('\0') != std::string::npos) throw JobLineError("a zero character stands in a text");
    return text;
  }

  [[nodiscard]] std::string path(const std::string& given) const {
    const fs::path path(given);
    if (!settings_.base || given.empty() || path.is_absolute()) return given;
    const fs::path base(*settings_.base);
    if (path.has_root_path() || !base.has_filename()) return (base / path).string();
    return *settings_.base + "/" + given;  // named alike on every system
  }

  /// Whether the option counts as given.
  bool take(const KnownOption& option, const JobMember& member, options::Options& values) const {
    const JobValue& value = member.value;
    if (option.isFlag) {
      if (value.kind != Kind::True && value.kind != Kind::False)
        throw JobLineError(inQuotes(member.name) + " is neither true nor false");
      *std::get<bool*>(option.description->field(values)) = value.kind == Kind::True;
      return value.kind == Kind::True;
    }
    if (option.isList) {
      if (value.kind != Kind::Text && value.kind != Kind::List)
        throw JobLineError(inQuotes(member.name) + " is neither a text nor a list of texts");
      const std::vector<std::string> texts = value.kind == Kind::List ? value.list : std::vector{value.text};
      for (const std::string& text : texts) takeText(option, text, values);
      return !texts.empty();
    }
    if (value.kind != Kind::Text && value.kind != Kind::Number)
      throw JobLineError(inQuotes(member.name) + " is neither a text nor a number");
    takeText(option, value.text, values);
    return true;
  }

  void takeText(const KnownOption& option, const std::string& text, options::Options& values) const {
    requireText(text);
    try {
      apply(*option.description, values, option.isPath ? path(text) : text);
    } catch (const std::invalid_argument& error) {
      throw JobLineError(error.what());
    }
  }

  /// What the options of a command demand of each other.
  static void requireTogether(const KnownCommand& command, const std::vector<bool>& given, options::Options& values) {
    const auto isGiven = [&](std::string_view name) {
      const auto found = command.byName.find(name);
      return found != command.byName.end() && given[found->second];
    };
    const options::OptionGroup* lastChoice = nullptr;
    for (std::size_t i = 0; i < command.options.size(); ++i) {
      const OptionDescription& option = *command.options[i].description;
      if (option.isRequired && !option.isArgument && !given[i])
        throw JobLineError(command.name + " needs " + inQuotes(option.name));
      if (option.group != nullptr && option.group->isChoice && option.group != lastChoice) {
        lastChoice = option.group;
        requireOne(command, *option.group, given);
      }
      if (!given[i]) continue;
      if (!option.needs.empty() && !isGiven(option.needs))
        throw JobLineError(inQuotes(option.name) + " needs " + inQuotes(option.needs));
      if (option.excludes.empty()) continue;
      if (isGiven(option.excludes))
        throw JobLineError(inQuotes(option.name) + " and " + inQuotes(option.excludes) + " exclude each other");
      // The job's own counts, not that of the whole batch.
      const KnownOption& other = command.options[command.byName.at(option.excludes)];
      if (other.isFlag) *std::get<bool*>(other.description->field(values)) = false;
    }
  }

  static void requireOne(const KnownCommand& command, const options::OptionGroup& choice,
                         const std::vector<bool>& given) {
    std::string names;
    std::vector<std::string_view> chosen;
    for (std::size_t i = 0; i < command.options.size(); ++i) {
      const OptionDescription& option = *command.options[i].description;
      if (option.group != &choice) continue;
      names.append(names.empty() ? "" : ", ").append(inQuotes(option.name));
      if (given[i]) chosen.push_back(option.name);
    }
    if (chosen.empty()) throw JobLineError(command.name + " needs one of " + names);
    if (chosen.size() > 1)
      throw JobLineError(inQuotes(chosen[0]) + " and " + inQuotes(chosen[1]) + " exclude each other: one of " + names);
  }

  const JobFileSettings& settings_;
  options::Options whole_;
  std::vector<KnownCommand> commands_;
};

namespace {

/// Values that only what uses them can judge.
void requireUsable(const Job& job) {
  if (options::kBookCommands.contains(job.command))
    requireBookName(job.options.report.stem);
  else
    static_cast<void>(dialogStem(job.options.report.stem));
  if (job.command == options::Command::Points) static_cast<void>(parsePoints(job.options.report.points));
  requireSwappedFiles(job.options);
}

/// Of all files of a drawing; one that can't be found has none, which is told when it is read.
std::uint64_t bytesOf(const options::Options& options) {
  const auto size = [](const std::string& path) -> std::uint64_t {
    std::error_code error;
    const std::uintmax_t bytes = fs::file_size(path, error);
    return error ? 0 : bytes;
  };
  std::uint64_t bytes = size(options.drawing);
  for (const std::string& file : options.files.with) bytes += size(file);
  return bytes;
}

void addPaths(const Job& job, JobFile::Entry& entry, JobPaths& paths) {
  const options::Options& values = job.options;
  if (options::kBookCommands.contains(job.command))
    paths.writesBook(job.line, values.report.stem);
  else
    paths.writes(job.line, values.report.stem, formsOf(values.common));
  paths.reads(job.line, values.drawing, entry.drawing);
  for (const std::string& file : values.files.with) paths.reads(job.line, file, entry.drawing);
  for (const auto& file : {values.common.host.messages, values.common.host.module})
    if (file) paths.reads(job.line, *file, JobPaths::kNoDrawing);
  if (!values.report.saveTo) return;
  entry.saves = true;
  entry.savesInPlace = paths.wholePath(*values.report.saveTo) == paths.wholePath(values.drawing);
  paths.saves(job.line, *values.report.saveTo, entry.drawing, entry.savesInPlace);
  if (!entry.savesInPlace) return;
  for (const std::string& file : values.files.with) paths.maySave(job.line, file, entry.drawing);
}

/// Reports add sections to corridors and save nothing else, so that a file without a corridor stays as it is.
bool holdsCorridors(const std::string& path) {
  try {
    landxml::ReadOptions names;
    names.namesAlone = true;
    return !landxml::readDrawing(path, names).corridors.empty();
  } catch (const landxml::Error&) {
    return false;  // its jobs will tell
  }
}

}  // namespace

JobFile::JobFile(std::string text, JobFileSettings settings)
    : text_(std::move(text)), settings_(std::move(settings)), reader_(std::make_unique<Reader>(settings_)) {
  std::vector<std::string> errors;
  const auto fail = [&](std::size_t line, const std::string& words) {
    errors.push_back(settings_.name + ":" + std::to_string(line) + ": " + words);
  };
  JobPaths paths;
  const auto lines = static_cast<std::size_t>(std::count(text_.begin(), text_.end(), '\n')) + 1;
  paths.reserve(lines);
  entries_.reserve(lines);
  for (const auto& [path, what] : settings_.taken) paths.reads(0, path, JobPaths::kNoDrawing, what);
  std::unordered_map<std::string, std::uint32_t> drawings;
  std::vector<std::uint64_t> bytesOfDrawings;
  std::set<std::string> hosts;
  std::size_t at = text_.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  for (std::uint32_t line = 1; at < text_.size(); ++line) {
    const std::size_t end = std::min(text_.find('\n', at), text_.size());
    const std::size_t start = std::exchange(at, end + 1);
    const std::string_view content = std::string_view(text_).substr(start, end - start);
    if (content.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    try {
      if (content.size() > std::numeric_limits<std::uint32_t>::max())
        throw JobLineError("a line longer than a job can be");
      const Job job = reader_->read(line, content);
      requireUsable(job);
      Entry entry{line, 0, start, static_cast<std::uint32_t>(content.size())};
      const auto [drawing, isNew] =
          drawings.emplace(keyOf(job.options, paths), static_cast<std::uint32_t>(drawings.size()));
      entry.drawing = drawing->second;
      if (isNew && settings_.share) bytesOfDrawings.push_back(bytesOf(job.options));
      addPaths(job, entry, paths);
      entries_.push_back(entry);
      if (hosts.insert(keyOf(job.options.common.host)).second) hostUses_.push_back({line, job.options.common});
    } catch (const JobLineError& error) {
      fail(line, error.what());
    } catch (const Failure& failure) {
      fail(line, failure.what());
    }
  }
  for (const JobPaths::Conflict& conflict : paths.conflicts(holdsCorridors)) fail(conflict.line, conflict.words);
  if (!errors.empty()) throw Failure(kUsage, jobFileErrors(std::move(errors)));
  drawingCount_ = drawings.size();
  if (settings_.share) keepShare(*settings_.share, bytesOfDrawings);
}

void JobFile::keepShare(const Share& share, const std::vector<std::uint64_t>& bytesOfDrawings) {
  std::vector<DrawingLoad> loads(drawingCount_);
  for (std::size_t i = 0; i < loads.size(); ++i) loads[i].bytes = bytesOfDrawings[i];
  for (const Entry& entry : entries_) {
    ++loads[entry.drawing].jobs;
    loads[entry.drawing].changes |= entry.savesInPlace;
  }
  const std::vector<std::uint32_t> shares = sharesOf(loads, share.count);
  std::erase_if(entries_, [&](const Entry& entry) { return shares[entry.drawing] != share.number; });
  entries_.shrink_to_fit();
}

JobFile::JobFile(JobFileSettings settings)
    : settings_(std::move(settings)), reader_(std::make_unique<Reader>(settings_)) {}

JobFile::~JobFile() = default;

Job JobFile::read(const Entry& entry) const { return read(entry.line, textOf(entry)); }

Job JobFile::read(std::size_t line, std::string_view text) const { return reader_->read(line, text); }

std::string jobFileErrors(std::vector<std::string> errors) {
  constexpr std::size_t kMostTold = 20;
  std::string text = errors.front();
  const std::size_t told = std::min(errors.size(), kMostTold);
  for (std::size_t i = 1; i < told; ++i) text += "\n" + errors[i];
  if (told < errors.size()) text += "\nand " + std::to_string(errors.size() - told) + " more of that kind";
  return text;
}

}  // namespace lvx::cli
