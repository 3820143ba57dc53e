#include "case_maker.h"

#include <nlohmann/json.hpp>

#include "platform/utf8.h"

namespace lvx::points {

namespace {

using nlohmann::json;

CString textOf(const json& object, const char* member, const char* otherwise = "") {
  return platform::fromUtf8(object.value(member, otherwise));
}

/// Message texts of the cases keep to the letters that Windows-1252 shares with Latin-1.
std::string messageLines(const json& messages) {
  std::string bytes;
  for (const auto& [number, text] : messages.items()) {
    bytes += number + " ";
    for (const wchar_t letter : platform::fromUtf8(text.get<std::string>())) bytes += static_cast<char>(letter);
    bytes += "\r\n";
  }
  return bytes;
}

}  // namespace

ReportCase::ReportCase(const std::string& jsonText) {
  const json whole = json::parse(jsonText);
  stem = textOf(whole, "stem", "report");
  release = textOf(whole, "release", "R24.3");
  hasMessages = whole.contains("messages");
  if (hasMessages) messageBytes = messageLines(whole.at("messages"));
  for (const json& point : whole.at("points")) {
    tpoint row;
    row.number = point.value("number", 0);
    row.easting = point.value("easting", 0.0);
    row.northing = point.value("northing", 0.0);
    row.elevation = point.value("elevation", 0.0);
    row.name = textOf(point, "name");
    row.description = textOf(point, "description");
    row.fullDescription = textOf(point, "fullDescription");
    row.alignmentName = textOf(whole, "alignment", "Axis 1");
    row.station = point.value("station", 0.0);
    row.offset = point.value("offset", 0.0);
    rows.add(row);
  }
}

}  // namespace lvx::points
