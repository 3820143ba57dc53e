#include "golden_case.h"

#include <memory>

#include "platform/utf8.h"
#include "support/golden.h"

namespace lvx::gls {

namespace {

using nlohmann::json;

std::unique_ptr<tglsRow> rowOf(const json& entry) {
  auto row = std::make_unique<tglsRow>();
  row->notes = wideText(entry.value("notes", json("")));
  if (entry.contains("distance")) {
    row->distance = entry.at("distance").get<double>();
  } else {
    row->name = wideText(entry.at("name"));
    row->station = entry.at("station").get<double>();
    row->curveX = kOutsideCurves;
    if (entry.contains("curve")) {
      row->curveX = entry.at("curve").at(0).get<double>();
      row->curveY = entry.at("curve").at(1).get<double>();
    }
    row->tangentElevation = entry.at("tangent").get<double>();
    row->elevation = entry.at("profile").get<double>();
    if (entry.contains("section")) {
      std::size_t i = 0;
      for (const GlsColumn& column : kGlsColumns)
        if (column.content == GlsContent::Corridor) (*row).*column.value = entry.at("section").at(i++).get<double>();
    }
  }
  if (entry.contains("element")) {
    const json& element = entry.at("element");
    row->horType = element.at(0).get<std::int32_t>();
    row->horParameter = element.at(1).get<double>();
    row->horLength = element.at(2).get<double>();
    row->horAngle = element.at(3).get<double>();
  }
  return row;
}

}  // namespace

CString wideText(const json& text) { return platform::fromUtf8(text.get<std::string>()); }

GoldenCase::GoldenCase(std::string name)
    : name_(std::move(name)), content_(json::parse(test::readBytes(test::goldenFolder() + "/" + file("case.json")))) {}

CString GoldenCase::release() const { return wideText(content_.value("release", json("R24.3"))); }

void GoldenCase::useMessages(test::FakeHost& host) const {
  if (!content_.contains("messages")) return;
  const json& messages = content_.at("messages");
  if (messages.is_string()) {
    host.useMessages(messages.get<std::string>());
    return;
  }
  // The cases' texts keep to the letters that Windows-1252 shares with Latin-1.
  std::string bytes;
  for (const auto& [number, text] : messages.items()) {
    bytes += number + " ";
    for (const wchar_t letter : wideText(text)) bytes += static_cast<char>(letter);
    bytes += "\r\n";
  }
  host.useMessageBytes(bytes);
}

void fillReport(const json& whole, tglsReport& report) {
  for (const auto& entry : whole.at("rows")) report.rows.add(rowOf(entry).release());
  for (const auto& row : whole.value("elementEnds", json::array())) report.horBreakRows.add(row.get<std::int32_t>());
  for (const auto& row : whole.value("intersections", json::array())) report.verBreakRows.add(row.get<std::int32_t>());
}

}  // namespace lvx::gls
