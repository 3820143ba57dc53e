// lvxhost points as the real program over small drawings: exit codes, words, files.
#include <filesystem>
#include <fstream>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunRequest;
using test::RunResult;
using testing::HasSubstr;
using testing::Not;

/// A line to the north from 500 100 at station 1000, one to the east outside any site, five points, three groups.
constexpr const char* kDrawing = R"(<?xml version="1.0" encoding="UTF-8"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2" date="2026-03-01" time="08:00:00">
  <Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" pressureUnit="HPA"/></Units>
  <Alignments name="North"><Alignment name="Axis" length="100" staStart="1000">
    <CoordGeom><Line><Start>500 100</Start><End>600 100</End></Line></CoordGeom></Alignment></Alignments>
  <Alignments><Alignment name="Loose" length="60" staStart="0">
    <CoordGeom><Line><Start>500 100</Start><End>500 160</End></Line></CoordGeom></Alignment></Alignments>
  <CgPoints>
    <CgPoint name="1" code="TOP" desc="top of bank">550 102.5 50.5</CgPoint>
    <CgPoint name="2">510 97</CgPoint>
    <CgPoint name="3">450 100 47.25</CgPoint>
    <CgPoint name="4">700 100 60</CgPoint>
    <CgPoint name="5">550 90 50.5</CgPoint>
  </CgPoints>
  <CgPoints name="All"><CgPoint pntRef="5"/><CgPoint pntRef="4"/><CgPoint pntRef="3"/><CgPoint pntRef="2"/><CgPoint pntRef="1"/></CgPoints>
  <CgPoints name="With a gap"><CgPoint pntRef="1"/><CgPoint pntRef="99"/></CgPoints>
  <CgPoints name="Nothing left"><CgPoint pntRef="98"/></CgPoints>
</LandXML>
)";

class PointsCliTest : public testing::Test {
 protected:
  PointsCliTest() { std::ofstream(folder_ / "small.xml") << kDrawing; }

  [[nodiscard]] RunResult run(std::vector<std::string> arguments) {
    RunRequest request;
    request.program = fs::path(test::inBuild("/bin/lvxhost"));
    request.folder = folder_.path();
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// The report against Axis with `more` behind it.
  [[nodiscard]] RunResult report(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"points", "small.xml", "--alignment", "Axis", "--out", "road"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  [[nodiscard]] bool written(const std::string& form) const { return fs::exists(folder_ / ("road." + form)); }
  /// Number, station and offset of each row of the text form.
  [[nodiscard]] std::string rows() const {
    const std::string text = fileBytes(folder_ / "road.txt");
    std::string all;
    std::size_t line = 0;
    for (std::size_t start = 0; start < text.size(); start = text.find("\r\n", start) + 2) {
      if (line++ < 10) continue;
      const auto cell = [&](std::size_t from, std::size_t width) {
        const std::string wide = text.substr(start + from, width);
        return wide.substr(wide.find_first_not_of(' '));
      };
      all += (all.empty() ? "" : "; ") + cell(0, 14) + " " + cell(120, 16) + " " + cell(136, 14);
    }
    return all;
  }

  test::TemporaryFolder folder_;
};

TEST_F(PointsCliTest, WritesTheTextReportToTheByte) {
  const RunResult result = report({"--points", "1,2", "--forms", "txt", "--quiet"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(fileBytes(folder_ / "road.txt"),
            "*******************************************************\r\n"
            "* Points\r\n"
            "* Vantor Lorvix 2021\r\n"
            "* File   : ./road.txt\r\n"
            "* Date   : 02.01.1970\r\n"
            "* Time   : 00:00:00\r\n"
            "*******************************************************\r\n"
            "\r\n"
            "\r\n"
            "        Number       Easting      Northing     Elevation          Name    Raw descr.   Full descr."
            "             Alignment         Station        Offset\r\n"
            "             2        97.000       510.000         0.000                                          "
            "                  Axis       1+010.000        -3.000\r\n"
            "             1       102.500       550.000        50.500                         TOP   top of bank"
            "                  Axis       1+050.000         2.500\r\n");
}

TEST_F(PointsCliTest, ReportsAGroupInOrderOfStationWithPointsBeyondTheEnds) {
  const RunResult result = report({"--point-group", "All"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(rows(), "3 0+950.000 0.000; 2 1+010.000 -3.000; 5 1+050.000 -10.000; 1 1+050.000 2.500; 4 1+200.000 0.000")
      << "points of one station stay in the group's order";
  EXPECT_TRUE(written("xls"));
  EXPECT_TRUE(written("html"));
  EXPECT_THAT(result.output, HasSubstr("./road.html  "));
}

TEST_F(PointsCliTest, MeasuresAgainstAnAlignmentOutsideAnySiteInEveryLanguage) {
  for (const char* language : {"en", "de"}) {
    const RunResult result = run({"points", "small.xml", "--alignment", "Loose", "--site", "", "--points", "4-5",
                                  "--out", "road", "--forms", "txt", "--overwrite", "--lang", language});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(rows(), "5 -0-010.000 -50.000; 4 0+000.000 -200.000");
  }
}

TEST_F(PointsCliTest, WarnsOfPointsWithoutAnElevation) {
  EXPECT_THAT(report({"--point-group", "All"}).errors,
              HasSubstr("points without an elevation: 1; the report shows 0.000"));
  EXPECT_THAT(report({"--points", "2", "--overwrite"}).errors, HasSubstr("points without an elevation: 1"));
  EXPECT_THAT(report({"--points", "1", "--overwrite"}).errors, Not(HasSubstr("elevation")));
  EXPECT_THAT(report({"--points", "2", "--overwrite", "--quiet"}).errors, Not(HasSubstr("elevation")));
}

TEST_F(PointsCliTest, EndsWithFourForANumberThatTheDrawingDoesNotHold) {
  const RunResult result = report({"--points", "1,77,3-7"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.errors, HasSubstr("the drawing holds no point 77, 6, 7"));
  EXPECT_FALSE(written("txt"));
}

TEST_F(PointsCliTest, WarnsOfANumberOfAGroupThatNoPointHas) {
  const RunResult result = report({"--point-group", "With a gap"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("point group 'With a gap': there is no point '99'"));
  EXPECT_EQ(rows(), "1 1+050.000 2.500");
}

TEST_F(PointsCliTest, SaysThatAGroupHoldsNoPointsAndEndsWithOne) {
  std::ofstream(folder_ / "road.txt") << "old";
  const RunResult result = report({"--point-group", "Nothing left", "--overwrite"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("nothing was written: point group 'Nothing left' holds no points"));
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "old");
  EXPECT_FALSE(written("html"));
}

TEST_F(PointsCliTest, ListsWhatThereIsForANameThatIsNot) {
  RunResult result = report({"--point-group", "Al"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.errors, HasSubstr("no point group 'Al' in the drawing; there is 'All', 'With a gap'"));
  result = run({"points", "small.xml", "--alignment", "Axes", "--points", "1", "--out", "road"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.errors, HasSubstr("'Axis'"));
}

TEST_F(PointsCliTest, KeepsAFileThatStandsAndWritesTheOthers) {
  std::ofstream(folder_ / "road.txt") << "old";
  const RunResult result = report({"--points", "1-3"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("kept './road.txt', which exists"));
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "old");
  EXPECT_TRUE(written("xls"));
  EXPECT_TRUE(written("html"));
}

TEST_F(PointsCliTest, TellsThatTheFolderIsMissing) {
  const RunResult result =
      run({"points", "small.xml", "--alignment", "Axis", "--points", "1", "--out", "missing/road"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("nothing was written: there is no folder 'missing'"));
}

TEST_F(PointsCliTest, AsksForExactlyOneSourceOfPoints) {
  EXPECT_EQ(report({}).exitCode, 2);
  EXPECT_EQ(report({"--points", "1", "--point-group", "All"}).exitCode, 2);
  EXPECT_EQ(report({"--points", "1-"}).exitCode, 2);
  EXPECT_EQ(report({"--points", ""}).exitCode, 2);
  EXPECT_FALSE(written("txt"));
}

TEST_F(PointsCliTest, HelpShowsAnExample) {
  const RunResult result = run({"points", "--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, HasSubstr("lvxhost points examples/valley-road.xml --alignment 'Valley road'"));
}

}  // namespace
}  // namespace lvx::cli
