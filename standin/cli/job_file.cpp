#include "cli/job_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <system_error>

#include <nlohmann/json.hpp>

#include "cli/failure.h"

namespace lvx::cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<std::string_view, 3> kCommands{"projection", "points", "gls"};

/// Reads one line and keeps the place of the job file for messages.
class JobReader {
 public:
  JobReader(const std::string& name, std::size_t line) : where_(name + ":" + std::to_string(line) + ": ") {}

  [[nodiscard]] Json objectOf(std::string_view text) const {
    Json job;
    try {
      job = Json::parse(text);
    } catch (const Json::exception& error) {
      fail("no JSON object: " + std::string(error.what()));
    }
    if (!job.is_object()) fail("no JSON object");
    return job;
  }

  /// The text of a member that every job has.
  [[nodiscard]] std::string required(const Json& job, const char* member) const {
    const auto found = job.find(member);
    if (found == job.end() || !found->is_string()) fail(std::string("a job needs a text \"") + member + "\"");
    return found->get<std::string>();
  }

  void append(std::vector<std::string>& arguments, const std::string& option, const Json& value) const {
    const std::string name = "--" + option;
    if (value.is_boolean()) {
      if (value.get<bool>()) arguments.push_back(name);
      return;
    }
    if (!value.is_string() && !value.is_number_integer())
      fail("\"" + option + "\" is neither a text nor a whole number nor true or false");
    appendText(arguments, name, value.is_string() ? value.get<std::string>() : value.dump());
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

/// Options of the whole batch, unless the job has its own.
void appendCommon(std::vector<std::string>& arguments, const Json& job, const CommonOptions& common) {
  const auto text = [&](const char* option, const std::string& value) {
    if (!job.contains(option)) JobReader::appendText(arguments, std::string("--") + option, value);
  };
  const auto textIfGiven = [&](const char* option, const std::string& value) {
    if (!value.empty()) text(option, value);
  };
  text("forms", common.forms);
  text("lang", common.language);
  text("release", common.release);
  text("message-code-page", common.messageCodePage);
  textIfGiven("messages", common.messages);
  textIfGiven("report-code-page", common.reportCodePage);
  textIfGiven("module", common.module);
  if (!job.contains("overwrite") && !job.contains("keep")) {
    if (common.overwrite) arguments.emplace_back("--overwrite");
    if (common.keep) arguments.emplace_back("--keep");
  }
  if (common.quiet && !job.contains("quiet")) arguments.emplace_back("--quiet");
  if (!job.contains("progress")) arguments.emplace_back("--progress=never");
}

std::filesystem::path sameFor(const std::string& stem) {
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::weakly_canonical(std::filesystem::absolute(stem), error);
  return error ? std::filesystem::path(stem) : whole;
}

}  // namespace

std::vector<Job> parseJobs(std::string_view text, const std::string& name, const CommonOptions& common) {
  std::vector<Job> jobs;
  std::map<std::filesystem::path, std::size_t> lineOfStem;
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
    if (std::find(kCommands.begin(), kCommands.end(), job.arguments[0]) == kCommands.end())
      reader.fail("\"" + job.arguments[0] + "\" is no report command; there is projection, points, gls");
    const std::string drawing = reader.required(json, "drawing");
    const std::string stem = reader.required(json, "out");
    job.label = job.arguments[0];
    job.label.append(" ").append(drawing).append(", ").append(stem);
    if (const auto [other, isNew] = lineOfStem.emplace(sameFor(stem), line); !isNew)
      reader.fail("writes the same files as line " + std::to_string(other->second) + ": " + stem);

    for (const auto& [option, value] : json.items())
      if (option != "command" && option != "drawing") reader.append(job.arguments, option, value);
    appendCommon(job.arguments, json, common);
    job.arguments.insert(job.arguments.end(), {"--", drawing});
    jobs.push_back(std::move(job));
  }
  return jobs;
}

}  // namespace lvx::cli
