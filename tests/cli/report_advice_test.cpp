// What the real program says around reports: of their objects before they run, and how to help one that can't be made.
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using test::RunResult;
using testing::HasSubstr;
using testing::Not;

const std::string kMetric = "<Units><Metric linearUnit=\"meter\" angularUnit=\"decimal degrees\"/></Units>";
const std::string kFeet = "<Units><Imperial linearUnit=\"foot\" angularUnit=\"decimal degrees\"/></Units>";
const std::string kTwoPoints = "<PVI>0 10</PVI><PVI>100 12</PVI>";
const std::string kCurve = "<PVI>0 10</PVI><ParaCurve length=\"20\">50 12</ParaCurve><PVI>100 10</PVI>";
const std::string kGround =
    "<Surfaces><Surface name=\"Ground\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">1000 400 5</P>"
    "<P id=\"2\">1200 400 5</P><P id=\"3\">1200 600 5</P><P id=\"4\">1000 600 5</P></Pnts><Faces><F>1 2 3</F>"
    "<F>1 3 4</F></Faces></Definition></Surface></Surfaces>";
const std::string kSwappedGround =
    "<Surfaces><Surface name=\"Ground\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">400 1000 5</P>"
    "<P id=\"2\">400 1200 5</P><P id=\"3\">600 1200 5</P><P id=\"4\">600 1000 5</P></Pnts><Faces><F>1 2 3</F>"
    "<F>1 3 4</F></Faces></Definition></Surface></Surfaces>";

std::string sampleLine(const std::string& station, const std::string& name) {
  return "<CrossSect sta=\"" + station + "\" name=\"" + name +
         "\"><CrossSectSurf name=\"x\"><PntList2D>-5 0 5 0</PntList2D></CrossSectSurf></CrossSect>";
}

/// Alignment A in a site, northward from 1050, 500, with a profile P and a group g.
std::string alignments(const std::string& lines, const std::string& profile = kTwoPoints,
                       const std::string& site = "S") {
  return "<Alignments name=\"" + site +
         "\"><Alignment name=\"A\" length=\"100\" staStart=\"0\"><CoordGeom><Line><Start>1050 500</Start><End>1150 "
         "500</End>"
         "</Line></CoordGeom><Profile><ProfAlign name=\"P\">" +
         profile + "</ProfAlign></Profile><CrossSects name=\"g\">" + lines + "</CrossSects></Alignment></Alignments>";
}

std::string drawing(const std::string& content, const std::string& units = kMetric) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><LandXML version=\"1.2\">" + units + content + "</LandXML>";
}

class ReportAdviceTest : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments, const std::vector<std::string>& more = {}) const {
    arguments.insert(arguments.end(), more.begin(), more.end());
    test::RunRequest request;
    request.program = test::inBuild("/bin/lvxhost");
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "0"}};
    request.folder = folder_.path();
    return test::runProgram(request);
  }
  [[nodiscard]] RunResult projection(const std::vector<std::string>& more = {}) const {
    return run({"projection", "road.xml", "--alignment", "A", "--group", "g", "--surface", "Ground", "--out", "out"},
               more);
  }
  [[nodiscard]] RunResult gls(const std::vector<std::string>& more = {}) const {
    return run({"gls", "road.xml", "--alignment", "A", "--profile", "P", "--group", "g", "--out", "out", "--overwrite"},
               more);
  }
  void write(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }

  test::TemporaryFolder folder_;
};

// ---------------------------------------------------------------- before a report

TEST_F(ReportAdviceTest, IsSilentWhereNothingIsOdd) {
  write("road.xml", drawing(alignments(sampleLine("10", "L")) + kGround));
  EXPECT_EQ(projection().errors, "");
  EXPECT_EQ(gls().errors, "");
}

TEST_F(ReportAdviceTest, OffersTheSwapThatBringsTheGroundUnderTheRoad) {
  write("road.xml", drawing(alignments(sampleLine("10", "L"))));
  write("ground.xml", drawing(kSwappedGround));
  const RunResult apart = projection({"--with", "ground.xml"});
  EXPECT_EQ(apart.exitCode, 0);
  EXPECT_EQ(
      apart.errors,
      "lvxhost: warning: surface 'Ground' (x 1000.000 to 1200.000, y 400.000 to 600.000) and sample line group 'g' "
      "(x 495.000 to 505.000, y 1060.000 to 1060.000) don't meet; with --swap-axes 'ground.xml' they would\n");
  EXPECT_EQ(projection({"--with", "ground.xml", "--quiet", "--overwrite"}).errors, "");
  const RunResult swapped = projection({"--with", "ground.xml", "--swap-axes", "ground.xml", "--overwrite"});
  EXPECT_EQ(swapped.errors, "");
  EXPECT_THAT(test::fileBytes(folder_ / "out.txt"), HasSubstr("     0.000     5.000\r\n"));
}

TEST_F(ReportAdviceTest, OffersTheSwapForPointsToo) {
  write("road.xml", drawing(alignments(sampleLine("10", "L"))));
  write("points.xml", drawing("<CgPoints><CgPoint name=\"1\">502 1060 5</CgPoint></CgPoints>"));
  const std::vector<std::string> report{"points",   "road.xml", "--with", "points.xml", "--alignment", "A",
                                        "--points", "1",        "--out",  "out",        "--overwrite"};
  EXPECT_THAT(run(report).errors, HasSubstr("don't meet; with --swap-axes 'points.xml' they would\n"));
  EXPECT_EQ(run(report, {"--swap-axes", "points.xml"}).errors, "");
}

TEST_F(ReportAdviceTest, TellsThatTheReportIsInFeet) {
  write("road.xml", drawing(alignments(sampleLine("10", "L")), kFeet));
  const RunResult result = gls();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(
      result.errors,
      "lvxhost: warning: the drawing's unit of length is foot: the report gives its lengths in it, also where its "
      "texts say m\n");
}

TEST_F(ReportAdviceTest, RefusesASiteThatTheReportTakesForNone) {
  const std::string loose =
      "<Alignments><Alignment name=\"A\" length=\"9\" staStart=\"0\"><CoordGeom><Line><Start>0 0</Start><End>9 0</End>"
      "</Line></CoordGeom></Alignment></Alignments>";
  write("road.xml", drawing(alignments(sampleLine("10", "L"), kTwoPoints, "*old") + loose + kGround));
  const RunResult result = projection({"--site", "*old"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("nothing was written: the reports take a site whose name begins with '*' for the "
                        "alignments outside any site, so alignment 'A' of site '*old' can't be reported"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.txt"));
}

TEST_F(ReportAdviceTest, NamesTheLetterThatCutsTextAndPageAndLeavesTheWorkbookWhole) {
  write("road.xml", drawing(alignments(sampleLine("10", "No.1 測点")) + kGround));
  EXPECT_THAT(projection().errors,
              HasSubstr("sample line 'No.1 測点': the reports' code page has no letter '測' (U+6E2C)"));
  EXPECT_THAT(test::fileBytes(folder_ / "out.txt"), HasSubstr("No.1  "));
  EXPECT_THAT(test::fileBytes(folder_ / "out.txt"), Not(HasSubstr("0+010.000")));
  EXPECT_EQ(projection({"--forms", "xls", "--overwrite"}).errors, "");
}

TEST_F(ReportAdviceTest, ShowsTheDiagnosticsOfItsObjectsAndCountsTheOthers) {
  const std::string odd =
      "<Alignments name=\"T\"><Alignment name=\"Odd\" length=\"50\" staStart=\"0\"><CoordGeom><Line><Start>0 0</Start>"
      "<End>9 0</End></Line><Spiral length=\"9\" radiusStart=\"INF\" radiusEnd=\"100\" rot=\"cw\" spiType=\"quartic\">"
      "<Start>9 0</Start><PI>12 0</PI><End>18 1</End></Spiral></CoordGeom><CrossSects name=\"g\">" +
      sampleLine("5", "l") + "</CrossSects></Alignment></Alignments>";
  write("road.xml", drawing(alignments(sampleLine("10", "L")) + odd + kGround));
  const RunResult other = projection();
  EXPECT_EQ(other.exitCode, 0);
  EXPECT_THAT(other.errors, Not(HasSubstr("quartic")));
  EXPECT_THAT(other.errors, HasSubstr("of nothing that the report uses; 'lvxhost info' lists all of them\n"));
  const RunResult own =
      run({"projection", "road.xml", "--alignment", "Odd", "--group", "g", "--surface", "Ground", "--out", "odd"});
  EXPECT_THAT(own.errors, HasSubstr("quartic"));
  EXPECT_THAT(own.errors, Not(HasSubstr("of nothing that the report uses")));
  const RunResult unknown =
      run({"projection", "road.xml", "--alignment", "Other", "--group", "g", "--surface", "Ground", "--out", "odd"});
  EXPECT_EQ(unknown.exitCode, 4);
  EXPECT_THAT(unknown.errors, HasSubstr("quartic")) << "it may tell why the name isn't there";
}

TEST_F(ReportAdviceTest, HasTwoRowsForAPointThatStandsTwiceInItsGroup) {
  write("road.xml", drawing(alignments(sampleLine("10", "L")) +
                            "<CgPoints><CgPoint name=\"1\">1060 502 5</CgPoint><CgPoint name=\"2\">1070 503 6</CgPoint>"
                            "</CgPoints><CgPoints name=\"G\"><CgPoint pntRef=\"1\"/><CgPoint pntRef=\"2\"/>"
                            "<CgPoint pntRef=\"1\"/></CgPoints>"));
  const RunResult result = run({"points", "road.xml", "--alignment", "A", "--point-group", "G", "--out", "out"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  const std::string text = test::fileBytes(folder_ / "out.txt");
  const std::string row = "\r\n             1       502.000      1060.000";
  const std::size_t first = text.find(row);
  ASSERT_NE(first, std::string::npos) << text;
  EXPECT_EQ(text.find(row, first + 1), text.find("\r\n", first + 2)) << "the second is the next row";
}

// ---------------------------------------------------------------- behind an exception

TEST_F(ReportAdviceTest, TellsWhatToChangeWhereGlsEndsByAnException) {
  const std::string words = test::fileBytes(test::inSource("/messages/en/LVX_MIRELREPORT.txt"));
  write("alike.txt", std::regex_replace(words, std::regex("333 BVC"), "333 PVC"));
  write("few.txt", std::regex_replace(words, std::regex("33[345] [A-Z]+\r?\n"), ""));
  struct Row {
    const char* what;
    std::string content;
    std::vector<std::string> more;
    std::string words;
  };
  const std::vector<Row> table{
      {"a sample line named like the word",
       alignments(sampleLine("10", "L") + sampleLine("20", "PV1")),
       {},
       "sample line 'PV1' of group 'g' is taken for an intersection point"},
      {"an intersection point in the first row",
       alignments(sampleLine("10", "PVX") + sampleLine("20", "L"), kCurve),
       {},
       "sample line 'PVX' of group 'g' is taken for an intersection point"},
      {"a table of one row", alignments(sampleLine("100", "end")), {}, "the table would have a single row"},
      {"words that are alike",
       alignments(sampleLine("10", "L"), kCurve),
       {"--messages", "alike.txt"},
       "change message 333 'PVC'\n"},
      {"words that are missing",
       alignments(sampleLine("10", "L"), kCurve),
       {"--messages", "few.txt"},
       "add messages 333, 334, 335\n"},
      {"a profile of one point",
       alignments(sampleLine("10", "L"), "<PVI>0 10</PVI>"),
       {},
       "profile 'P' has fewer than two points; choose one that has them"},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.what);
    write("road.xml", drawing(row.content));
    const RunResult result = gls(row.more);
    EXPECT_EQ(result.exitCode, 70);
    EXPECT_THAT(result.errors,
                HasSubstr("the command ended by an exception: invalid argument: an index outside its array\n"));
    EXPECT_THAT(result.errors, HasSubstr(row.words));
  }
}

TEST_F(ReportAdviceTest, SaysThatTheDrawingWasNotSavedBehindAnException) {
  write("road.xml", drawing(alignments(sampleLine("100", "end"))));
  const std::string before = test::fileBytes(folder_ / "road.xml");
  for (const std::string target : {"new.xml", "road.xml"}) {
    const RunResult result = gls({"--add-sections", "--save", target});
    EXPECT_EQ(result.exitCode, 70);
    EXPECT_THAT(result.errors,
                HasSubstr("the drawing was not saved to '" + target + "', since the command didn't end by itself"));
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "new.xml"));
  EXPECT_EQ(test::fileBytes(folder_ / "road.xml"), before);
}

TEST_F(ReportAdviceTest, TellsNothingToChangeOfAReportThatIsMade) {
  write("road.xml", drawing(alignments(sampleLine("10", "L"), kCurve)));
  const RunResult result = gls();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "");
}

}  // namespace
}  // namespace lvx
