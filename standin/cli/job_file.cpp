#include "cli/job_file.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>

#include <nlohmann/json.hpp>

#include "cli/failure.h"
#include "options/option_table.h"
#include "script/script.h"

namespace lvx::cli {

namespace {

using Json = nlohmann::ordered_json;

/// The system ends a name at such a character, and so would take another file.
bool hasZeroCharacter(const Json& json) {
  if (json.is_string()) return json.get_ref<const std::string&>().find('\0') != std::string::npos;
  if (!json.is_structured()) return false;
  return std::any_of(json.begin(), json.end(), hasZeroCharacter) ||
         (json.is_object() && std::any_of(json.items().begin(), json.items().end(), [](const auto& member) {
            return member.key().find('\0') != std::string::npos;
          }));
}

/// Reads one line and keeps the place of the job file for messages.
class JobReader {
 public:
  JobReader(const std::string& name, std::size_t line) : where_(name + ":" + std::to_string(line) + ": ") {}

  [[nodiscard]] Json objectOf(std::string_view text) const {
    Json job;
    try {
      job = Json::parse(text);
    } catch (const Json::exception& error) {
      fail("no JSON object: " + script::jsonProblem(error.what()));
    }
    if (!job.is_object()) fail("no JSON object");
    if (hasZeroCharacter(job)) fail("a zero character stands in a text");
    return job;
  }

  /// The text of a member that every job has.
  [[nodiscard]] std::string required(const Json& job, const char* member) const {
    const auto found = job.find(member);
    if (found == job.end() || !found->is_string()) fail(std::string("a job needs a text \"") + member + "\"");
    return found->get<std::string>();
  }

  /// An option of a job; `known` is null where its command has none of that name, which the command says itself.
  void append(std::vector<std::string>& arguments, const std::string& option, const Json& value,
              const options::OptionDescription* known) const {
    const std::string name = "--" + option;
    if (known != nullptr && known->isList()) {
      appendList(arguments, name, option, value);
      return;
    }
    if (value.is_boolean()) {
      if (value.get<bool>()) arguments.push_back(name);
      return;
    }
    if (!value.is_string() && !value.is_number())
      fail("\"" + option + "\" is neither a text nor a number nor true or false");
    appendText(arguments, name, value.is_string() ? value.get<std::string>() : value.dump());
  }

  void appendList(std::vector<std::string>& arguments, const std::string& name, const std::string& option,
                  const Json& value) const {
    const Json list = value.is_array() ? value : Json::array({value});
    for (const Json& entry : list) {
      if (!entry.is_string()) fail("\"" + option + "\" is neither a text nor a list of texts");
      appendText(arguments, name, entry.get<std::string>());
    }
  }

  /// A value that begins with a hyphen is no option; an empty one stands by itself.
  static void appendText(std::vector<std::string>& arguments, const std::string& name, const std::string& text) {
    if (text.empty())
      arguments.insert(arguments.end(), {name, text});
    else
      arguments.push_back(name + "=" + text);
  }

  [[noreturn]] void fail(const std::string& what) const { throw Failure(kUsage, where_ + what); }

 private:
  std::string where_;
};

/// "projection, points, gls"
std::string reportCommands() {
  std::string names;
  for (const options::CommandDescription& command : options::commands())
    if (options::kReportCommands.contains(command.command))
      names.append(names.empty() ? "" : ", ").append(command.name);
  return names;
}

bool isReportCommand(const std::string& name) {
  const options::CommandDescription* const command = options::findCommand(name);
  return command != nullptr && options::kReportCommands.contains(command->command);
}

const options::OptionDescription* optionOf(const std::string& command, const std::string& name) {
  for (const options::OptionDescription* option : options::optionsOf(options::findCommand(command)->command))
    if (!option->isArgument && option->name == name) return option;
  return nullptr;
}

/// A common option as the whole batch has it.
struct CommonArgument {
  const options::OptionDescription* option;
  /// Empty text: the batch says that there is none, where there is one by default.
  std::string value;
};

/// Those that have to be said to each job, texts before flags.
std::vector<CommonArgument> commonArguments(const options::CommonOptions& common) {
  options::Options whole;
  whole.common = common;
  std::vector<CommonArgument> arguments;
  for (const bool flags : {false, true})
    for (const options::OptionDescription* option : options::commonOptions()) {
      if (option->isFlag() != flags) continue;
      const auto value = valueOf(*option, whole);
      if (value || valueOf(*option, {})) arguments.push_back({option, value.value_or("")});
    }
  return arguments;
}

/// Options of the whole batch, unless the job has its own.
void appendCommon(std::vector<std::string>& arguments, const Json& job, const std::vector<CommonArgument>& common) {
  // Jobs run beside one another, so that their lines would mix.
  constexpr std::string_view kProgress = "progress";
  for (const CommonArgument& argument : common) {
    const options::OptionDescription& option = *argument.option;
    if (option.name == kProgress || job.contains(option.name)) continue;
    if (!option.excludes.empty() && job.contains(option.excludes)) continue;
    const std::string name = "--" + std::string(option.name);
    if (option.isFlag())
      arguments.push_back(name);
    else
      JobReader::appendText(arguments, name, argument.value);
  }
  if (!job.contains(kProgress)) arguments.push_back("--" + std::string(kProgress) + "=never");
}

std::filesystem::path sameFor(const std::string& stem) {
  std::error_code error;
  std::filesystem::path whole = std::filesystem::absolute(stem, error);
  if (!error) whole = std::filesystem::weakly_canonical(whole, error);
  return error ? std::filesystem::path(stem) : whole;
}

/// Which files the jobs read and write, by the lines that say so: none may be both, or a job would take another one's
/// drawing away.
class JobFiles {
 public:
  explicit JobFiles(const std::string& jobFile) : jobFile_(sameFor(jobFile)) {}

  void add(const Json& json, std::size_t line, const std::string& forms) {
    reads_.emplace(sameFor(json.at("drawing").get<std::string>()), line);
    if (const auto with = json.find("with"); with != json.end())
      for (const Json& file : with->is_array() ? *with : Json::array({*with}))
        if (file.is_string()) reads_.emplace(sameFor(file.get<std::string>()), line);
    options::CommonOptions common;
    const auto own = json.find("forms");
    common.forms = own != json.end() && own->is_string() ? own->get<std::string>() : forms;
    for (const char* form : {"txt", "xls", "html"})
      if (common.writes(form)) writes_.push_back({sameFor(json.at("out").get<std::string>() + "." + form), line});
    const auto save = json.find("save");
    if (save == json.end() || !save->is_string()) return;
    const std::filesystem::path target = sameFor(save->get<std::string>());
    // In place is meant.
    if (target != sameFor(json.at("drawing").get<std::string>())) writes_.push_back({target, line});
  }

  /// Throws Failure for the first file that is both.
  void check(const std::string& name) const {
    for (const auto& [path, line] : writes_) {
      const JobReader reader(name, line);
      if (path == jobFile_) reader.fail("writes the job file itself: " + path.string());
      if (const auto read = reads_.find(path); read != reads_.end())
        reader.fail("writes " + path.string() + ", which line " + std::to_string(read->second) + " reads");
    }
  }

 private:
  struct Output {
    std::filesystem::path path;
    std::size_t line;
  };
  std::filesystem::path jobFile_;
  std::map<std::filesystem::path, std::size_t> reads_;
  std::vector<Output> writes_;
};

}  // namespace

std::vector<Job> parseJobs(std::string_view text, const std::string& name, const options::CommonOptions& common) {
  const std::vector<CommonArgument> batchArguments = commonArguments(common);
  std::vector<Job> jobs;
  std::map<std::filesystem::path, std::size_t> lineOfStem;
  JobFiles files(name);
  std::size_t line = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view content = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++line;
    if (content.find_first_not_of(" \t\r") == std::string_view::npos) continue;

    const JobReader reader(name, line);
    const Json json = reader.objectOf(content);
    Job job{line, {}, {reader.required(json, "command")}};
    if (!isReportCommand(job.arguments[0]))
      reader.fail("\"" + job.arguments[0] + "\" is no report command; there is " + reportCommands());
    const std::string drawing = reader.required(json, "drawing");
    const std::string stem = reader.required(json, "out");
    job.label = job.arguments[0];
    job.label.append(" ").append(drawing).append(", ").append(stem);
    if (const auto [other, isNew] = lineOfStem.emplace(sameFor(stem), line); !isNew)
      reader.fail("writes the same files as line " + std::to_string(other->second) + ": " + stem);

    files.add(json, line, common.forms);
    for (const auto& [option, value] : json.items())
      if (option != "command" && option != "drawing")
        reader.append(job.arguments, option, value, optionOf(job.arguments[0], option));
    appendCommon(job.arguments, json, batchArguments);
    job.arguments.insert(job.arguments.end(), {"--", drawing});
    jobs.push_back(std::move(job));
  }
  files.check(name);
  return jobs;
}

}  // namespace lvx::cli
