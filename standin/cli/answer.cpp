#include "cli/answer.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "cli/file_hash.h"

namespace lvx::cli {

using Json = nlohmann::ordered_json;

struct Answer::Members {
  Json json = Json::object();
};

namespace {

Json fileJson(const std::string& path) {
  Json json{{"path", path}, {"bytes", nullptr}, {"sha256", nullptr}};
  try {
    const FileHash hash = hashOf(path);
    json["bytes"] = hash.bytes;
    json["sha256"] = hash.digits;
  } catch (const std::system_error&) {
    // Somebody took it away already, or it is a place that can only be written to.
  }
  return json;
}

}  // namespace

Answer::Answer() noexcept : start_(std::chrono::steady_clock::now()) {}
Answer::~Answer() = default;

void Answer::gather(bool isQuiet) {
  if (!members_) members_ = std::make_unique<Members>();
  isGathered_ = true;
  isQuiet_ = isQuiet;
}

void Answer::setCommand(std::string_view name) { command_ = name; }

void Answer::add(ToldDiagnostic diagnostic) {
  if (isGathered_) diagnostics_.push_back(std::move(diagnostic));
}

void Answer::addWritten(const std::string& path) {
  if (!isGathered_) return;
  if (!everWritten_.insert(path).second) removeWritten(path);
  written_.push_back(path);
}

void Answer::removeWritten(const std::string& path) { std::erase(written_, path); }

void Answer::set(std::string_view member, Json value) {
  if (isGathered_) members_->json[std::string(member)] = std::move(value);
}

void Answer::append(std::string_view member, Json value) {
  if (isGathered_) members_->json[std::string(member)].push_back(std::move(value));
}

void Answer::release() {
  isGathered_ = false;
  isQuiet_ = false;
}

std::string Answer::document(int exitCode) const {
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start_;
  Json all{
      {"command", command_.empty() ? Json(nullptr) : Json(command_)}, {"exit", exitCode}, {"seconds", seconds.count()}};
  if (members_)
    for (const auto& [name, value] : members_->json.items()) all[name] = value;
  Json written = Json::array();
  for (const std::string& path : written_) written.push_back(fileJson(path));
  all["written"] = std::move(written);
  Json& diagnostics = all["diagnostics"] = Json::array();
  for (const ToldDiagnostic& diagnostic : diagnostics_) diagnostics.push_back(jsonOf(diagnostic));
  return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Answer& answer() {
  static Answer answer;
  return answer;
}

const char* severityName(Severity severity) {
  constexpr std::array<const char*, 3> kNames{"note", "warning", "error"};
  return kNames[static_cast<std::size_t>(severity)];
}

Json jsonOf(const ToldDiagnostic& diagnostic) {
  return {{"severity", severityName(diagnostic.severity)},
          {"text", diagnostic.text},
          {"file", diagnostic.file.empty() ? Json(nullptr) : Json(diagnostic.file)},
          {"line", diagnostic.line}};
}

}  // namespace lvx::cli
