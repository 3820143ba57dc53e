#include "journal/detail/json_text.h"

#include <cmath>

namespace lvx::journal::detail {

Json jobJson(const JobRecord& record) {
  Json files = Json::array();
  for (const OutputFile& file : record.files)
    files.push_back({{"path", file.path}, {"bytes", file.bytes}, {"sha256", file.hash}});
  Json json = {{"line", record.line},      {"command", record.command}, {"drawing", record.drawing},
               {"out", record.out},        {"exit", record.exitCode},   {"seconds", roundedSeconds(record.seconds)},
               {"files", std::move(files)}};
  if (!record.kept.empty()) json["kept"] = record.kept;
  json["diagnostics"] = record.diagnostics;
  return json;
}

JobRecord jobOf(const Json& json) {
  JobRecord record;
  record.line = json.at("line").get<std::size_t>();
  record.command = json.at("command").get<std::string>();
  record.drawing = json.at("drawing").get<std::string>();
  record.out = json.at("out").get<std::string>();
  record.exitCode = json.at("exit").get<int>();
  record.seconds = json.at("seconds").get<double>();
  for (const Json& file : json.at("files"))
    record.files.push_back({file.at("path").get<std::string>(), file.at("bytes").get<std::uint64_t>(),
                            file.at("sha256").get<std::string>()});
  if (json.contains("kept")) record.kept = json["kept"].get<std::vector<std::string>>();
  record.diagnostics = json.at("diagnostics").get<std::vector<std::string>>();
  return record;
}

std::string textOf(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

double roundedSeconds(double seconds) {
  constexpr double kMilliseconds = 1000.0;
  return std::round(seconds * kMilliseconds) / kMilliseconds;
}

}  // namespace lvx::journal::detail
