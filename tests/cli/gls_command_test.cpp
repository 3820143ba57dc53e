// lvxhost gls, end to end on the example.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using test::fileBytes;
using test::RunResult;
using testing::HasSubstr;
using testing::Not;

const std::string kExample = test::inSource("/examples/valley-road.xml");

class GlsCommandTest : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments) const {
    test::RunRequest request;
    request.program = test::inBuild("/bin/lvxhost");
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "0"}};
    request.folder = folder_.path();
    return test::runProgram(request);
  }
  [[nodiscard]] RunResult report(const std::string& drawing, std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments{"gls",         drawing,
                                       "--alignment", "Valley road",
                                       "--profile",   "Valley road design",
                                       "--group",     "Cross sections 20 m",
                                       "--out",       "road"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }

  test::TemporaryFolder folder_;
};

TEST_F(GlsCommandTest, WritesTheThreeFormsWithTheRoadsCrossFallsAtEveryStation) {
  const RunResult result = report(kExample);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  const std::string text = fileBytes(folder_ / "road.txt");
  EXPECT_THAT(text, HasSubstr("1+000.000"));
  EXPECT_THAT(text, HasSubstr("-2.5"));
  EXPECT_THAT(text, Not(HasSubstr("n/a"))) << "the corridor of the example has a section at each of them";
  EXPECT_THAT(fileBytes(folder_ / "road.html"), HasSubstr("</Body></HTML>"));
  EXPECT_GT(std::filesystem::file_size(folder_ / "road.xls"), 1000U);
}

TEST_F(GlsCommandTest, LeavesTheDrawingAloneUnlessSectionsAreWanted) {
  std::filesystem::copy_file(kExample, folder_ / "own.xml");
  EXPECT_EQ(report("own.xml").exitCode, 0);
  EXPECT_EQ(report("own.xml", {"--add-sections", "--overwrite"}).exitCode, 0) << "added sections stay in memory";
  EXPECT_EQ(fileBytes(folder_ / "own.xml"), fileBytes(kExample));
  EXPECT_EQ(report("own.xml", {"--save", "other.xml", "--overwrite"}).exitCode, 2) << "there is nothing to save";
}

TEST_F(GlsCommandTest, SavesTheDrawingWithItsAddedSectionsBesideOrOverItself) {
  std::filesystem::copy_file(kExample, folder_ / "own.xml");
  const RunResult beside = report("own.xml", {"--add-sections", "--save", "other.xml"});
  EXPECT_EQ(beside.exitCode, 0) << beside.errors;
  EXPECT_THAT(beside.output, HasSubstr("other.xml  "));
  const std::string other = fileBytes(folder_ / "other.xml");
  EXPECT_NE(other, fileBytes(kExample));
  EXPECT_THAT(run({"info", "other.xml"}).errors, Not(HasSubstr("error")));

  EXPECT_EQ(report("own.xml", {"--add-sections", "--save", "own.xml", "--overwrite"}).exitCode, 0);
  EXPECT_EQ(fileBytes(folder_ / "own.xml"), other);
  EXPECT_EQ(report("own.xml", {"--add-sections", "--save", "own.xml", "--overwrite"}).exitCode, 0);
  EXPECT_EQ(fileBytes(folder_ / "own.xml"), other) << "every station has its section already";
}

TEST_F(GlsCommandTest, TellsADrawingThatCannotBeSaved) {
  const RunResult result = report(kExample, {"--add-sections", "--save", "no-such-folder/other.xml"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.errors, HasSubstr("no-such-folder/other.xml"));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "road.txt")) << "the report stands all the same";
}

TEST_F(GlsCommandTest, OffersTheProfilesOfTheAlignmentForAWrongName) {
  const RunResult result = run({"gls", kExample, "--alignment", "Valley road", "--profile", "Valley road desing",
                                "--group", "Cross sections 20 m", "--out", "road"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.errors, HasSubstr("no profile 'Valley road desing' on alignment 'Valley road'"));
  EXPECT_THAT(result.errors, HasSubstr("'Valley road design', 'Valley road ground'"));
}

/// A drawing of one alignment 'A' with a sample line group 'g' and what the test puts into it.
std::string smallDrawing(const std::string& geometry, const std::string& profile, const std::string& roadways = {}) {
  return R"(<?xml version="1.0"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
<Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" pressureUnit="HPA"/></Units>
<FeatureDictionary name="lvx" version="1"/>
<Alignments name="S"><Alignment name="A" length="100" staStart="0">)" +
         geometry + "<Profile><ProfAlign name=\"P\">" + profile +
         R"(</ProfAlign></Profile><CrossSects name="g"><CrossSect sta="10" name="L10"><CrossSectSurf name="x">
<PntList2D>-5 0 5 0</PntList2D></CrossSectSurf></CrossSect></CrossSects></Alignment></Alignments>)" +
         roadways + "</LandXML>";
}

TEST_F(GlsCommandTest, SaysWhatADrawingLacksForTheReport) {
  const std::string line = "<CoordGeom><Line><Start>0 0</Start><End>0 100</End></Line></CoordGeom>";
  const std::string points = "<PVI>0 10</PVI><PVI>100 12</PVI>";
  const std::string empty =
      R"(<Roadways><Roadway name="R" alignmentRefs="A"><Feature code="lvx_corridor" source="lvx"/></Roadway></Roadways>)";
  struct Row {
    std::string drawing;
    int exitCode;
    const char* words;
  };
  const Row rows[] = {
      {smallDrawing(line, "<PVI>0 10</PVI>"), 70, "profile 'P' has fewer than two points, and the report needs two"},
      {smallDrawing("", points), 70, "alignment 'A' has no elements, and the report needs them"},
      {smallDrawing(line, points, empty), 0, "corridor 'R' has no baselines and is passed over"},
      {smallDrawing(line, points), 0, ""},
  };
  for (const Row& row : rows) {
    std::ofstream(folder_ / "small.xml") << row.drawing;
    const RunResult result = run(
        {"gls", "small.xml", "--alignment", "A", "--profile", "P", "--group", "g", "--out", "small", "--overwrite"});
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words;
    EXPECT_THAT(result.errors, HasSubstr(row.words));
    EXPECT_EQ(fileBytes(folder_ / "small.xml"), row.drawing);
  }
}

TEST_F(GlsCommandTest, SaysThatAnOlderFileStaysWhereTheCommandEndsByAnException) {
  std::ofstream(folder_ / "small.xml") << smallDrawing("", "<PVI>0 10</PVI><PVI>100 12</PVI>");
  std::ofstream(folder_ / "small.txt") << "older";
  const RunResult result = run({"gls", "small.xml", "--alignment", "A", "--profile", "P", "--group", "g", "--out",
                                "small", "--forms", "txt", "--overwrite"});
  EXPECT_EQ(result.exitCode, 70);
  EXPECT_THAT(result.errors, HasSubstr("'./small.txt' was not written; what stood there still does\n"));
  EXPECT_THAT(result.errors, testing::Not(HasSubstr("--overwrite")));
  EXPECT_EQ(fileBytes(folder_ / "small.txt"), "older");
}

TEST_F(GlsCommandTest, ReportsAnAlignmentWithoutACorridorBesideAnotherOnesCorridor) {
  const RunResult result = run({"gls", kExample, "--alignment", "Mill lane", "--profile", "Mill lane design", "--group",
                                "Mill lane 25 m", "--out", "mill", "--forms", "txt"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(fileBytes(folder_ / "mill.txt"), HasSubstr("n/a"));
}

}  // namespace
}  // namespace lvx
