// The real program over drawings of several files: an alignment from one, the ground and points from others.
#include <filesystem>
#include <fstream>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/failure.h"
#include "cli/job_file.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::RunResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kMetric = "<Units><Metric linearUnit=\"meter\" angularUnit=\"decimal degrees\"/></Units>";
const std::string kFeet = "<Units><Imperial linearUnit=\"foot\" angularUnit=\"decimal degrees\"/></Units>";

std::string drawing(const std::string& content, const std::string& units = kMetric,
                    const std::string& version = "1.2") {
  return "<LandXML version=\"" + version + "\">" + units + content + "</LandXML>";
}

const std::string kRoad =
    "<Alignments name=\"North\"><Alignment name=\"Axis\" length=\"100\" staStart=\"0\"><CoordGeom><Line>"
    "<Start>500 100</Start><End>600 100</End></Line></CoordGeom><CrossSects name=\"Lines\"><CrossSect sta=\"50\" "
    "name=\"middle\"><CrossSectSurf name=\"EG\"><PntList2D>-10 50 10 50</PntList2D></CrossSectSurf></CrossSect>"
    "</CrossSects></Alignment></Alignments>";

/// Ground over the road; its heights are 50, and of an unswapped file its numbers are northing first.
std::string ground(const std::string& corners) {
  return "<Surfaces><Surface name=\"Ground\"><Definition surfType=\"TIN\"><Pnts>" + corners +
         "</Pnts><Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface></Surfaces>";
}
const std::string kGround =
    ground("<P id=\"1\">480 80 50</P><P id=\"2\">620 80 50</P><P id=\"3\">620 120 50</P><P id=\"4\">480 120 50</P>");
const std::string kSwappedGround =
    ground("<P id=\"1\">80 480 50</P><P id=\"2\">80 620 50</P><P id=\"3\">120 620 50</P><P id=\"4\">120 480 50</P>");
const std::string kGroundInFeet = ground(
    "<P id=\"1\">1600 300 100</P><P id=\"2\">2000 300 100</P><P id=\"3\">2000 360 100</P>"
    "<P id=\"4\">1600 360 100</P>");
const std::string kPoints =
    "<CgPoints><CgPoint name=\"1\">510 101 50</CgPoint><CgPoint name=\"2\">520 102 51</CgPoint></CgPoints>";

class SeveralFiles : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments) {
    test::RunRequest request;
    request.program = test::inBuild("/bin/lvxhost");
    request.folder = folder_.path();
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// The ground across Axis, with `more` behind the options that it needs.
  [[nodiscard]] RunResult projection(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"projection", "road.xml", "--alignment", "Axis", "--group", "Lines",
                                       "--surface",  "Ground",   "--out",       "out",  "--forms", "txt"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  void write(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }
  [[nodiscard]] std::string report() const { return test::fileBytes(folder_ / "out.txt"); }

  test::TemporaryFolder folder_;
};

constexpr const char* kRows =
    "middle   0+050.000\r\n"
    "   -10.000    50.000\r\n";

TEST_F(SeveralFiles, GiveOneReport) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround, kMetric, "1.0"));
  const RunResult result = projection({"--with", "ground.xml"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(report(), HasSubstr(kRows));
}

TEST_F(SeveralFiles, GiveTheReportOfOneFileThatHoldsAllOfThem) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround));
  ASSERT_EQ(projection({"--with", "ground.xml"}).exitCode, 0);
  const std::string ofSeveral = report();
  write("road.xml", drawing(kRoad + kGround));
  ASSERT_EQ(projection({"--overwrite"}).exitCode, 0);
  EXPECT_EQ(report(), ofSeveral);
}

TEST_F(SeveralFiles, StandInAnyPlaceOfTheLine) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround));
  write("points.xml", drawing(kPoints));
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"info", "--with", "ground.xml", "--with", "points.xml", "road.xml"},
        std::vector<std::string>{"info", "--with", "ground.xml", "road.xml", "--with=points.xml"},
        std::vector<std::string>{"info", "road.xml", "--with", "ground.xml", "--with", "points.xml"}}) {
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(result.output,
                HasSubstr("road.xml  (unit: meter)\nground.xml  (unit: meter)\npoints.xml  (unit: meter)\n"));
  }
}

TEST_F(SeveralFiles, AreConvertedToTheUnitOfTheFirst) {
  write("road.xml", drawing(kRoad));
  write("feet.xml", drawing(kGroundInFeet, kFeet));
  const RunResult refused = projection({"--with", "feet.xml"});
  EXPECT_EQ(refused.exitCode, 3);
  EXPECT_EQ(
      refused.errors,
      "lvxhost: landxml: its linear unit is foot, that of 'road.xml' is meter; --convert-units converts the added "
      "files (feet.xml)\n");
  const RunResult converted = projection({"--with", "feet.xml", "--convert-units"});
  EXPECT_EQ(converted.exitCode, 0) << converted.errors;
  EXPECT_THAT(report(), HasSubstr("     0.000    30.480\r\n"));
}

TEST_F(SeveralFiles, AreSwappedWhereTheyHoldEastingFirst) {
  write("road.xml", drawing(kRoad));
  write("swapped.xml", drawing(kSwappedGround));
  const RunResult result = projection({"--with", "swapped.xml", "--swap-axes", "./swapped.xml"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(report(), HasSubstr(kRows));
}

TEST_F(SeveralFiles, SwapTheFirstAlone) {
  write("road.xml", drawing(kSwappedGround));
  const RunResult result = run({"info", "road.xml", "--swap-axes", "road.xml"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("road.xml  (unit: meter, northing and easting swapped)\n"));
  EXPECT_THAT(result.output, HasSubstr("x 80.000 to 120.000, y 480.000 to 620.000"));
  const auto json = nlohmann::json::parse(run({"info", "road.xml", "--swap-axes", "road.xml", "--json"}).output);
  EXPECT_EQ(json["files"].size(), 1U);
  EXPECT_EQ(json["files"][0]["axesSwapped"], true);
}

TEST_F(SeveralFiles, ThatCantBeAddedAreNamed) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround));
  write("cut.xml", "<LandXML><Units>");
  fs::create_symlink("ground.xml", folder_ / "link.xml");
  struct Row {
    std::vector<std::string> arguments;
    int exitCode;
    std::string words;
  };
  const std::vector<Row> table{
      {{"--with", "gone.xml"}, 3, "can't open the file: No such file or directory (gone.xml)"},
      {{"--with", "ground.xml", "--with", "cut.xml"}, 3, "(cut.xml:1)"},
      {{"--with", "ground.xml", "--with", "ground.xml"}, 3, "the file is given twice (ground.xml)"},
      {{"--with", "road.xml"}, 3, "the file is given twice (road.xml)"},
      {{"--with", "ground.xml", "--with", "link.xml"}, 3, "the file is given twice, also as 'ground.xml' (link.xml)"},
      {{"--with", ""}, 3, "landxml: "},
      {{"--with", "ground.xml", "--swap-axes", "grund.xml"},
       2,
       "lvxhost: --swap-axes names 'grund.xml', which is none of the drawing's files; there is 'ground.xml', "
       "'road.xml'\n"},
      {{"--with"}, 2, "--with"},
  };
  for (const Row& row : table) {
    std::vector<std::string> arguments{"info", "road.xml"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words;
    EXPECT_THAT(result.errors, HasSubstr(row.words));
    EXPECT_EQ(result.output, "");
  }
}

TEST_F(SeveralFiles, ToldByInfoWithTheFileOfEachObject) {
  write("road.xml", drawing(kRoad + "<CgPoints><CgPoint name=\"1\">505 100 49</CgPoint></CgPoints>"));
  write("ground.xml", drawing(kGround));
  write("points.xml",
        drawing(kPoints + "<CgPoints name=\"Edge\"><CgPoint pntRef=\"1\"/><CgPoint pntRef=\"2\"/></CgPoints>"));
  const RunResult text = run({"info", "road.xml", "--with", "ground.xml", "--with", "points.xml"});
  EXPECT_EQ(text.exitCode, 0) << text.errors;
  for (const char* words : {"length 100.000  (road.xml)\n", "2 triangles  (ground.xml)\n", "  1  (road.xml)\n",
                            "  2  (points.xml)\n", "'Edge'  2 points  (points.xml)\n",
                            "\n  points.xml: warning: point 1: its number stands in another file of the drawing"})
    EXPECT_THAT(text.output, HasSubstr(words));

  const auto json =
      nlohmann::json::parse(run({"info", "road.xml", "--with", "ground.xml", "--with", "points.xml", "--json"}).output);
  ASSERT_EQ(json["files"].size(), 3U);
  EXPECT_EQ(json["file"], "road.xml");
  EXPECT_EQ(json["files"][1]["path"], "ground.xml");
  EXPECT_EQ(json["files"][1]["linearUnit"], "meter");
  EXPECT_EQ(json["files"][1]["lengthFactor"], 1.0);
  EXPECT_EQ(json["files"][1]["axesSwapped"], false);
  EXPECT_EQ(json["sites"][0]["alignments"][0]["file"], "road.xml");
  EXPECT_EQ(json["sites"][0]["alignments"][0]["sampleLineGroups"][0]["file"], "road.xml");
  EXPECT_EQ(json["surfaces"][0]["file"], "ground.xml");
  EXPECT_EQ(json["pointGroups"][0]["file"], "points.xml");
  EXPECT_EQ(json["diagnostics"][0]["file"], "points.xml");
}

TEST_F(SeveralFiles, LeaveInfoOfASingleFileAsItWas) {
  write("road.xml", drawing(kRoad));
  const RunResult text = run({"info", "road.xml"});
  EXPECT_THAT(text.output, Not(HasSubstr("(road.xml)")));
  const auto json = nlohmann::json::parse(run({"info", "road.xml", "--json"}).output);
  EXPECT_FALSE(json.contains("files"));
  EXPECT_FALSE(json["sites"][0]["alignments"][0].contains("file"));
}

TEST_F(SeveralFiles, ArePlayed) {
  write("road.xml", drawing(kRoad));
  write("points.xml", drawing(kPoints));
  write("script.json", "[]");
  EXPECT_EQ(run({"play", "road.xml", "script.json", "--with", "points.xml"}).exitCode, 0);
  EXPECT_EQ(run({"play", "road.xml", "script.json", "--with", "gone.xml"}).exitCode, 3);
}

TEST_F(SeveralFiles, AreNamedWhileTheyAreRead) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround));
  const RunResult result = projection({"--with", "ground.xml", "--progress", "always"});
  const std::size_t road = result.errors.find("reading road.xml: ");
  const std::size_t ground = result.errors.find("reading ground.xml: ");
  EXPECT_NE(road, std::string::npos) << result.errors;
  EXPECT_NE(ground, std::string::npos) << result.errors;
  EXPECT_LT(road, ground);
}

// ---------------------------------------------------------------- saving

TEST_F(SeveralFiles, KeepAnAddedFileWhereSavingNamesAnother) {
  write("road.xml", drawing(kRoad));
  write("ground.xml", drawing(kGround));
  const auto lines = [this](const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"lines", "ground.xml", "--with", "road.xml", "--alignment",
                                       "Axis",  "--name",     "New",    "--every",  "20"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  };
  const RunResult result = lines({"--save", "new.xml"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(
      result.errors,
      HasSubstr("the drawing isn't saved: --save names 'new.xml', but what is new belongs into 'road.xml', which "
                "stays as it is; give that file first and 'ground.xml' by --with, or leave --save out"));
  EXPECT_FALSE(fs::exists(folder_ / "new.xml"));
  EXPECT_EQ(test::fileBytes(folder_ / "road.xml"), drawing(kRoad));
  // In place it goes into the file of its alignment, which is told.
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--replace", "--save", "./ground.xml"}}) {
    write("road.xml", drawing(kRoad));
    const RunResult inPlace = lines(more);
    EXPECT_EQ(inPlace.exitCode, 0) << inPlace.errors;
    EXPECT_THAT(inPlace.output, HasSubstr("\nroad.xml  "));
    EXPECT_THAT(inPlace.output, Not(HasSubstr("ground.xml")));
    EXPECT_NE(test::fileBytes(folder_ / "road.xml"), drawing(kRoad));
    EXPECT_EQ(test::fileBytes(folder_ / "ground.xml"), drawing(kGround));
  }
}

// ---------------------------------------------------------------- job files

options::Options onlyJob(const std::string& line) {
  const JobFile jobs(line, {"jobs.jsonl", {}, {}, {}});
  return jobs.entries().size() == 1 ? jobs.read(jobs.entries()[0]).options : options::Options();
}

TEST(JobFile, TakesNumbersWithDecimals) {
  EXPECT_EQ(onlyJob(R"({"command": "gls", "drawing": "a.xml", "alignment": "A", "group": "G", "ground-profile": "S", )"
                    R"("ground-tolerance": 0.02, "out": "a"})")
                .report.groundTolerance,
            "0.02");
}

TEST(JobFile, TakesListsOfFiles) {
  const options::Options job =
      onlyJob(R"({"command": "points", "drawing": "a.xml", "with": ["b.xml", "-c.xml", ""], "swap-axes": "b.xml", )"
              R"("convert-units": true, "alignment": "A", "points": "all", "out": "a"})");
  EXPECT_THAT(job.files.with, ElementsAre("b.xml", "-c.xml", ""));
  EXPECT_THAT(job.files.swapAxes, ElementsAre("b.xml"));
  EXPECT_TRUE(job.files.convertUnits);
}

TEST(JobFile, NamesTheLineOfAListThatIsNone) {
  for (const char* value : {"1", "true", "{}", "null", "[1]", "[\"b.xml\", true]", "[[\"b.xml\"]]"}) {
    const std::string line =
        std::string("\n") + R"({"command": "points", "drawing": "a.xml", "out": "a", "with": )" + value + "}";
    try {
      const JobFile jobs(line, {"jobs.jsonl", {}, {}, {}});
      ADD_FAILURE() << value;
    } catch (const Failure& failure) {
      EXPECT_STREQ(failure.what(), "jobs.jsonl:2: \"with\" is neither a text nor a list of texts") << value;
      EXPECT_EQ(failure.code(), kUsage);
    }
  }
}

TEST_F(SeveralFiles, AreReportedByJobs) {
  write("road.xml", drawing(kRoad));
  write("feet.xml", drawing(kGroundInFeet, kFeet));
  const std::string start =
      R"({"command": "projection", "drawing": "road.xml", "alignment": "Axis", "group": "Lines", "surface": "Ground", )";
  write("jobs.jsonl", start + R"("with": ["feet.xml"], "convert-units": true, "out": "out", "forms": "txt"})" + "\n" +
                          start + R"("with": ["feet.xml"], "out": "refused"})" + "\n");
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(report(), HasSubstr("     0.000    30.480\r\n"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: lvxhost: landxml: its linear unit is foot"));
  write("jobs.jsonl", start + R"("with": ["feet.xml"], "convert-units": "perhaps", "out": "unclear"})");
  EXPECT_THAT(run({"batch", "jobs.jsonl"}).errors,
              HasSubstr("jobs.jsonl:1: \"convert-units\" is neither true nor false"));
}

}  // namespace
}  // namespace lvx::cli
