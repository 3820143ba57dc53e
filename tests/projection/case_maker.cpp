#include "case_maker.h"

#include <memory>

#include <nlohmann/json.hpp>

#include "platform/utf8.h"

namespace lvx::projection {

namespace {

using nlohmann::json;

CString wide(const json& text) { return platform::fromUtf8(text.get<std::string>()); }

std::vector<Sample> samples(const json& line, const char* side) {
  std::vector<Sample> all;
  if (line.contains(side))
    for (const json& pair : line.at(side)) all.push_back({pair.at(0).get<double>(), pair.at(1).get<double>()});
  return all;
}

/// Message texts of the cases keep to the letters that Windows-1252 shares with Latin-1.
std::string messageLines(const json& messages) {
  std::string bytes;
  for (const auto& [number, text] : messages.items()) {
    bytes += number + " ";
    for (const wchar_t letter : wide(text)) bytes += static_cast<char>(letter);
    bytes += "\r\n";
  }
  return bytes;
}

}  // namespace

ReportCase::ReportCase(const std::string& jsonText) {
  const json whole = json::parse(jsonText);
  stem = platform::fromUtf8(whole.value("stem", "report"));
  release = platform::fromUtf8(whole.value("release", "R24.3"));
  alignment = platform::fromUtf8(whole.value("alignment", "Axis 1"));
  hasMessages = whole.contains("messages");
  if (hasMessages) messageBytes = messageLines(whole.at("messages"));
  for (const json& line : whole.at("lines")) {
    lines.get().add(makeRecord(wide(line.at("name")), line.at("station").get<double>(), samples(line, "left"),
                               samples(line, "right")));
    const json centre = line.value("centre", json::array({0.0, 0.0}));
    centres.push_back({centre.at(0).get<double>(), centre.at(1).get<double>()});
  }
}

tsl* makeRecord(const CString& name, double station, const std::vector<Sample>& left,
                const std::vector<Sample>& right) {
  auto record = std::make_unique<tsl>();
  record->name = name;
  record->station = station;
  for (const Sample& sample : left) {
    record->leftOffsets.append({sample.offset, 0.0, 0.0});
    record->leftPoints.append({0.0, 0.0, sample.elevation});
  }
  for (const Sample& sample : right) {
    record->rightOffsets.append({sample.offset, 0.0, 0.0});
    record->rightPoints.append({0.0, 0.0, sample.elevation});
  }
  return record.release();
}

}  // namespace lvx::projection
