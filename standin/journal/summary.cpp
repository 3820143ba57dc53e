#include "journal/summary.h"

#include "journal/detail/json_text.h"
#include "standin_platform/atomic_file.h"

namespace lvx::journal {

using detail::Json;

namespace {

Json jobsJson(const std::vector<JobRecord>& jobs) {
  Json list = Json::array();
  for (const JobRecord& job : jobs) list.push_back(detail::jobJson(job));
  return list;
}

std::vector<JobRecord> jobsOf(const Json& list) {
  std::vector<JobRecord> jobs;
  for (const Json& job : list) jobs.push_back(detail::jobOf(job));
  return jobs;
}

}  // namespace

std::string textOf(const Summary& summary) {
  Json json = {{"jobs", summary.jobs}, {"program", summary.program}};
  if (summary.part) json["part"] = *summary.part;
  json["count"] = summary.count;
  json["done"] = summary.done;
  json["doneBefore"] = summary.doneBefore;
  json["failed"] = summary.failed.size();
  json["broken"] = summary.broken.size();
  json["notBegun"] = summary.notBegun;
  json["exit"] = summary.exitCode;
  json["interrupted"] = summary.interrupted;
  json["seconds"] = detail::roundedSeconds(summary.seconds);
  json["files"] = summary.files;
  json["bytes"] = summary.bytes;
  json["failedJobs"] = jobsJson(summary.failed);
  json["brokenJobs"] = jobsJson(summary.broken);
  constexpr int kIndent = 2;
  return detail::textOf(json, kIndent);
}

std::optional<Summary> summaryOf(std::string_view text) {
  try {
    const Json json = Json::parse(text.begin(), text.end());
    Summary summary;
    summary.jobs = json.at("jobs").get<std::string>();
    summary.program = json.at("program").get<std::string>();
    if (json.contains("part")) summary.part = json["part"].get<std::string>();
    summary.count = json.at("count").get<std::size_t>();
    summary.done = json.at("done").get<std::size_t>();
    summary.doneBefore = json.at("doneBefore").get<std::size_t>();
    summary.notBegun = json.at("notBegun").get<std::size_t>();
    summary.exitCode = json.at("exit").get<int>();
    summary.interrupted = json.at("interrupted").get<bool>();
    summary.seconds = json.at("seconds").get<double>();
    summary.files = json.at("files").get<std::uint64_t>();
    summary.bytes = json.at("bytes").get<std::uint64_t>();
    summary.failed = jobsOf(json.at("failedJobs"));
    summary.broken = jobsOf(json.at("brokenJobs"));
    return summary;
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

void writeSummary(const std::filesystem::path& path, const Summary& summary) {
  standin_platform::AtomicFile file(path, {.flushesToDisk = true});
  file.write(textOf(summary));
  file.commit();
}

}  // namespace lvx::journal
