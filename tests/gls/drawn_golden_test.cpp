#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "command_drawing.h"
#include "dialogs/dialog_services.h"
#include "doubles/recording_excel.h"
#include "gls/gls_command.h"
#include "golden_case.h"
#include "host/dialog_controls.h"
#include "platform/utf8.h"
#include "support/cell_log.h"
#include "support/golden.h"

namespace lvx::gls {
namespace {

using nlohmann::json;

/// The folders below tests/golden/gls whose reports come from a drawing, through the whole command. Their `case.json`
/// holds beside what all cases share
///
///     "start": 1000, "elements": [[type, startDirection, endDirection, startRadius, length, endRadius], ...],
///     "points": [[station, elevation, halfLength, radius, gradeIn, gradeOut], ...],
///     "lines": [["SL1", 1050], ...],
///     "corridors": [{"name": "Road", "baselines": [
///        {"elevation": [150, 0.05],                               of its profile: at station 0, and its grade
///         "sections": [[1050, [[-3.5, -0.1], [0, 0], [3.5, -0.1]]], ...]}]}]   offset, height over the profile
const std::string kCases[] = {"starts-with-a-line",
                              "starts-with-an-arc",
                              "all-label-pairs",
                              "compound-clothoids",
                              "touching-vertical-curves",
                              "level-grade",
                              "no-corridor",
                              "overlapping-corridors",
                              "long-line-name",
                              "intersection-without-curve",
                              "shared-rows",
                              "negative-stations-and-wide-numbers"};

std::vector<host::taxel> elementsOf(const json& list) {
  std::vector<host::taxel> elements;
  for (const json& entry : list) {
    host::taxel& element = elements.emplace_back();
    element.type = entry.at(0).get<std::int32_t>();
    element.startDirection = entry.at(1).get<double>();
    element.endDirection = entry.at(2).get<double>();
    element.startRadius = entry.at(3).get<double>();
    element.length = entry.at(4).get<double>();
    element.endRadius = entry.at(5).get<double>();
  }
  return elements;
}

std::vector<host::tvert> pointsOf(const json& list) {
  std::vector<host::tvert> points;
  for (const json& entry : list) {
    host::tvert& point = points.emplace_back();
    point.station = entry.at(0).get<double>();
    point.elevation = entry.at(1).get<double>();
    point.halfLength = entry.at(2).get<double>();
    point.radius = entry.at(3).get<double>();
    point.gradeIn = entry.at(4).get<double>();
    point.gradeOut = entry.at(5).get<double>();
  }
  return points;
}

void addCorridors(test::FakeRoadway& roadway, const host::Ref<test::FakeAlignment>& axis, const json& list) {
  for (const json& entry : list) {
    const auto corridor = roadway.addCorridor(wideText(entry.at("name")));
    for (const json& line : entry.at("baselines")) {
      const auto baseline = corridor->addBaseline();
      baseline->alignmentObject = axis;
      const auto base = line.at("elevation").at(0).get<double>();
      const auto grade = line.at("elevation").at(1).get<double>();
      baseline->profileObject->elevation = [base, grade](double station) { return base + grade * station; };
      std::vector<double> stations;
      for (const json& section : line.at("sections")) {
        stations.push_back(section.at(0).get<double>());
        std::vector<test::FakeBaseline::RoadPoint> road;
        for (const json& point : section.at(1)) road.push_back({point.at(0).get<double>(), point.at(1).get<double>()});
        baseline->addRoad(stations.back(), road);
      }
      baseline->addRegion(stations);
    }
  }
}

class GlsDrawingGolden : public testing::TestWithParam<std::string> {
 protected:
  ~GlsDrawingGolden() override { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

/// One run of the command writes all three forms.
TEST_P(GlsDrawingGolden, ReportIsRightToTheByteInAllForms) {
  const GoldenCase golden(GetParam());
  const json& content = golden.content();
  CommandDrawing drawing({.fixedMoment = kGoldenMoment, .release = golden.release()});
  golden.useMessages(drawing.host);
  const auto axis = drawing.addAlignment(drawing.drawing.addSite(L"S"), L"Axis 1",
                                         {0xA1,
                                          content.at("start").get<double>(),
                                          elementsOf(content.at("elements")),
                                          {{L"Design", 0xB1, pointsOf(content.at("points"))}}});
  const auto group = axis->addGroup(L"Lines");
  for (const json& line : content.at("lines")) group->addLine(wideText(line.at(0)), line.at(1).get<double>());
  addCorridors(drawing.roadway, axis, content.value("corridors", json::array()));
  const auto record = std::make_shared<test::ExcelRecord>();
  drawing.host.setAutomationFactory(test::recordedBy(record));

  // The reports show the path that was asked for: a short name keeps the golden files free of this machine's.
  std::filesystem::current_path(platform::toUtf8(drawing.host.folder()));
  const framework::CString mark(1, drawing.host.folder().back());
  drawing.user.steps = {
      drawing.okWith({host::kIdCheckAscii, host::kIdCheckExcel, host::kIdCheckHtml}, L"." + mark + L"report")};
  runGlsReport(drawing.host);
  const auto withSlash = [own = "." + platform::toUtf8(mark) + "report"](std::string bytes) {
    for (std::size_t at = bytes.find(own); at != std::string::npos; at = bytes.find(own, at + own.size()))
      bytes.replace(at, own.size(), "./report");
    return bytes;
  };
  EXPECT_TRUE(test::matchesGolden(withSlash(test::readBytes("report.txt")), golden.file("expected.txt")));
  EXPECT_TRUE(test::matchesGolden(withSlash(test::readBytes("report.html")), golden.file("expected.html")));
  EXPECT_TRUE(test::matchesGolden(withSlash(cellLog(*record)), golden.file("expected.cells")));
}

INSTANTIATE_TEST_SUITE_P(Case, GlsDrawingGolden, testing::ValuesIn(kCases), [](const auto& golden) {
  std::string name = golden.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace lvx::gls
