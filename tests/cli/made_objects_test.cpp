// Reports over sample lines, points and profiles that are made for them.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "made_drawing.h"

namespace lvx::cli {
namespace {

using test::fileBytes;
using test::RunResult;
using testing::HasSubstr;
using testing::Not;

using MadeObjectsTest = BareDrawingTest;

// ---------------------------------------------------------------- sample lines

TEST_F(MadeObjectsTest, ReportsTheGroundAlongLinesMadeByRules) {
  const RunResult result = report("projection", {"--lines", "every=40,left=10,right=20", "--surface", "Ground"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("3 sample lines made for this report, from 1+000.000 to 1+080.000"));
  // 10 + 0.05 (easting - 60) + 0.1 (northing - 500)
  EXPECT_THAT(text(), HasSubstr("1+040.000   1+040.000\r\n   -10.000    15.500\r\n     0.000    16.000\r\n"));
  EXPECT_THAT(text(), HasSubstr("    20.000    17.000\r\n&\r\n1+080.000   1+080.000\r\n   -10.000    19.500\r\n"));
  EXPECT_EQ(fileBytes(folder_ / "small.xml"), kBareDrawing) << "they are there for the report alone";
}

TEST_F(MadeObjectsTest, GivesRowsOfTheTableToLinesMadeByRules) {
  const RunResult result =
      report("gls", {"--profile", "Variant", "--lines", "stations=1+020;1060.5,pvis,name='{kind} {n}'"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(text(), HasSubstr("listed 2"));
  EXPECT_THAT(text(), HasSubstr("1+020.000"));
  EXPECT_THAT(text(), HasSubstr("pvi 3")) << "of the profile that is reported";
  EXPECT_THAT(text(), HasSubstr("1+030.000"));
  EXPECT_THAT(text(), HasSubstr("listed 4"));
  EXPECT_THAT(text(), HasSubstr("1+060.500"));
}

TEST_F(MadeObjectsTest, TakesTheFirstDesignProfileForRulesThatNameNone) {
  const RunResult first = report("projection", {"--lines", "curve-ends,left=5,right=5", "--surface", "Ground"});
  EXPECT_EQ(first.exitCode, 0) << first.errors;
  EXPECT_THAT(first.errors, HasSubstr("by profile 'Design', the first of 2 design profiles"));
  EXPECT_THAT(text(), HasSubstr("1+040.000   1+040.000"));
  EXPECT_THAT(text(), HasSubstr("1+060.000   1+060.000"));
  const RunResult named = report("projection", {"--lines", "pvis,profile=Variant", "--surface", "Ground"});
  EXPECT_EQ(named.exitCode, 0) << named.errors;
  EXPECT_THAT(named.errors, Not(HasSubstr("design profiles")));
  EXPECT_THAT(text(), HasSubstr("1+030.000   1+030.000"));
}

TEST_F(MadeObjectsTest, TellsHowFarASurfaceCarriesItsLines) {
  const RunResult result = report(
      "projection", {"--lines", "every=30,count-from-start,border=Ground,right=5,largest=45", "--surface", "Ground"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(text(), HasSubstr("1+030.000   1+030.000\r\n   -40.000    13.000\r\n")) << "the border lies there";
  EXPECT_THAT(result.errors, HasSubstr("sample lines that don't meet surface 'Ground' on one side or both: 1 of 4; "
                                       "they are 45 wide there"));
  const RunResult cut = report(
      "projection", {"--lines", "every=30,count-from-start,to=1070,border=Ground,largest=15", "--surface", "Ground"});
  EXPECT_THAT(cut.errors,
              HasSubstr("sample lines that end within surface 'Ground', at the largest width of 15: 3 of 3"));
}

TEST_F(MadeObjectsTest, SaysWhatIsWrongWithLinesAndWritesNothing) {
  const struct {
    std::vector<std::string> more;
    int exitCode;
    const char* words;
  } rows[] = {
      {{"--lines", "every=0"}, 2, "every '0': a length above 0 is wanted"},
      {{"--lines", "every=20,left=0"}, 2, "left '0': a width above 0 is wanted"},
      {{"--lines", "every=20,right=-5"}, 2, "right '-5': a width above 0 is wanted"},
      {{"--lines", "evry=20"}, 2, "there is no key 'evry', only every"},
      {{"--lines", "left=20"}, 2, "nothing says where lines stand"},
      {{"--lines", ""}, 2, "nothing says where lines stand"},
      {{"--lines", "every=20", "--group", "G"}, 2, ""},
      {{}, 2, ""},
      {{"--lines", "every=0.00001"}, 1, "gives more than 1000000 lines"},
      {{"--lines", "every=70,from=1071,to=1099"}, 1, "the rules give no line between 1071.000 and 1099.000"},
      {{"--lines", "every=5,from=2000"}, 1, "the alignment runs from 1000.000 to 1100.000"},
      {{"--lines", "stations=5"}, 1, "stations '5': the alignment runs from 1000.000 to 1100.000"},
      {{"--lines", "every=20,border=Grund"}, 4, "no surface 'Grund' in the drawing; there is 'Ground'"},
      {{"--lines", "pvis,profile=Desing"}, 4, "no profile 'Desing' on alignment 'Axis'; there is 'Design'"},
  };
  std::size_t checked = 0;
  for (const auto& row : rows) {
    std::vector<std::string> more = row.more;
    more.insert(more.end(), {"--surface", "Ground"});
    const RunResult result = report("projection", more);
    EXPECT_EQ(result.exitCode, row.exitCode) << result.errors;
    EXPECT_THAT(result.errors + result.output, HasSubstr(row.words));
    EXPECT_FALSE(isWritten()) << row.words;
    ++checked;
  }
  EXPECT_EQ(checked, 14u);
  const RunResult none =
      run({"projection", "small.xml", "--alignment", "Far", "--lines", "pvis", "--surface", "Ground", "--out", "road"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_THAT(none.errors, HasSubstr("pvis: there is no profile with points"));
}

// ---------------------------------------------------------------- the ground as a profile

TEST_F(MadeObjectsTest, ReportsTheGroundUnderAnAlignmentAsItsProfile) {
  const RunResult result = report("gls", {"--ground-profile", "Ground", "--lines", "every=25"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("ground of surface 'Ground' from 1+000.000 to 1+080.000: 3 points"));
  EXPECT_THAT(result.errors, HasSubstr("the alignment runs from 1+000.000 to 1+100.000"));
  // 12 + 0.1 (station - 1000), also where the ground has ended.
  for (const char* elevation : {"14.500", "17.000", "19.500", "22.000"}) EXPECT_THAT(text(), HasSubstr(elevation));
  EXPECT_THAT(text(), HasSubstr("PVI1")) << "the edge between the two triangles";
}

TEST_F(MadeObjectsTest, ThinsTheGroundWithinItsTolerance) {
  const RunResult result =
      report("gls", {"--ground-profile", "Ground", "--ground-tolerance", "0.01", "--lines", "every=25"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("1+080.000: 2 points"));
  EXPECT_THAT(text(), Not(HasSubstr("PVI1"))) << "the ground is a plane";
}

TEST_F(MadeObjectsTest, SaysWhereThereIsNoGroundForAProfile) {
  const struct {
    const char* alignment;
    std::vector<std::string> more;
    int exitCode;
    const char* words;
  } rows[] = {
      {"Far",
       {"--ground-profile", "Ground"},
       1,
       "alignment 'Far' doesn't meet surface 'Ground', which lies from x 60.000, y 500.000 to x 140.000, y 580.000"},
      {"Axis", {"--ground-profile", "Grund"}, 4, "no surface 'Grund' in the drawing; there is 'Ground'"},
      {"Axis", {"--ground-profile", "Ground", "--ground-tolerance", "-1"}, 2, "'-1' is no length of at least 0"},
      {"Axis", {"--ground-profile", "Ground", "--ground-tolerance", "1 m"}, 2, "'1 m' is no length of at least 0"},
      {"Axis", {"--profile", "Design", "--ground-tolerance", "1"}, 2, "--ground-profile"},
      {"Axis", {"--profile", "Design", "--ground-profile", "Ground"}, 2, ""},
      {"Axis", {}, 2, ""},
  };
  for (const auto& row : rows) {
    std::vector<std::string> arguments{"gls",     "small.xml", "--alignment", row.alignment,
                                       "--lines", "every=25",  "--out",       "road"};
    arguments.insert(arguments.end(), row.more.begin(), row.more.end());
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words << result.errors;
    EXPECT_THAT(result.errors + result.output, HasSubstr(row.words));
    EXPECT_FALSE(isWritten()) << row.words;
  }
}

// ---------------------------------------------------------------- points

/// The numbers of the rows of a points report, in its order.
std::vector<int> numbersIn(const std::string& report) {
  std::vector<int> numbers;
  for (std::size_t at = report.find("\r\n"); at != std::string::npos; at = report.find("\r\n", at + 2)) {
    const std::size_t digit = report.find_first_not_of(' ', at + 2);
    if (digit == at + 2 + 13 && report[digit] >= '0' && report[digit] <= '9') numbers.push_back(report[digit] - '0');
  }
  return numbers;
}

TEST_F(MadeObjectsTest, ReportsAllPointsOrThoseOfConditions) {
  const struct {
    std::vector<std::string> choice;
    std::vector<int> numbers;  // by station
  } rows[] = {
      {{"--points", "all"}, {3, 2, 1, 5, 4}},
      {{"--points-where", "description=TREE*"}, {2, 1}},
      {{"--points-where", "description='EDGE, OLD';BUSH"}, {3, 4}},
      {{"--points-where", "elevation=50..60,number=1-4"}, {1, 4}},
      {{"--points-where", "elevation=50..60", "--points-where", "number=1-4"}, {1, 4}},
      {{"--points-where", "name=5"}, {5}},
  };
  for (const auto& row : rows) {
    const RunResult result = report("points", row.choice);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(numbersIn(text()), row.numbers) << row.choice.back();
  }
}

TEST_F(MadeObjectsTest, ReportsPointsOfConditionsWithTheBytesOfTheirNumbers) {
  ASSERT_EQ(report("points", {"--points", "1,2"}).exitCode, 0);
  const std::string byNumber = text();
  ASSERT_EQ(report("points", {"--points-where", "description=TREE*"}).exitCode, 0);
  EXPECT_EQ(text(), byNumber);
}

TEST_F(MadeObjectsTest, ReportsThePointsOfASurfaceWhereTheDrawingHasNoOthers) {
  const RunResult result = report("points", {"--surface-points", "Ground"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("4 points of surface 'Ground', numbered from 6 on for this report"));
  // From west to east: 60 500, 60 580, 140 500, 140 580; by station 500 comes first.
  EXPECT_EQ(numbersIn(text()), (std::vector<int>{6, 8, 7, 9}));
  EXPECT_THAT(text(), HasSubstr("       140.000       580.000        22.000"));
  EXPECT_THAT(text(), HasSubstr("1+080.000        40.000"));
  const RunResult unknown = report("points", {"--surface-points", "Grund"});
  EXPECT_EQ(unknown.exitCode, 4);
  EXPECT_THAT(unknown.errors, HasSubstr("no surface 'Grund' in the drawing; there is 'Ground'"));
}

TEST_F(MadeObjectsTest, SaysWhereNoPointMeetsTheConditions) {
  const struct {
    std::vector<std::string> choice;
    int exitCode;
    const char* words;
  } rows[] = {
      {{"--points-where", "description=OAK"},
       1,
       "nothing was written: none of the drawing's 5 points meets description=OAK"},
      {{"--points-where", "number=1", "--points-where", "number=2"}, 1, "meets number=1, number=2"},
      {{"--points-where", "desc=OAK"}, 2, "there is no key 'desc', only description, name, elevation, number"},
      {{"--points-where", ""}, 2, "a condition is wanted"},
      {{"--points-where", "number=5-1"}, 2, "the range descends"},
      {{"--points", "all", "--points-where", "number=1"}, 2, ""},
      {{"--points", "everything"}, 2, "'everything' is neither a number nor an ascending range"},
  };
  for (const auto& row : rows) {
    const RunResult result = report("points", row.choice);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words << result.errors;
    EXPECT_THAT(result.errors + result.output, HasSubstr(row.words));
    EXPECT_FALSE(isWritten()) << row.words;
  }
}

TEST_F(MadeObjectsTest, TellsWhenThereAreNoPointsAtAll) {
  std::string without = kBareDrawing;
  const std::size_t start = without.find("<CgPoints>");
  without.erase(start, without.find("<Surfaces>") - start);
  std::ofstream(folder_ / "small.xml") << without;
  const RunResult result = report("points", {"--points", "all"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("nothing was written: the drawing holds no points; 'lvxhost points' reports "
                                       "those of a surface by --surface-points 'Ground'"));
}

// ---------------------------------------------------------------- all of it

TEST_F(MadeObjectsTest, WritesAllThreeReportsOfABareDrawingInABatch) {
  std::ofstream(folder_ / "jobs.jsonl")
      << R"({"command": "projection", "drawing": "small.xml", "alignment": "Axis", "lines": "every=40", "surface": "Ground", "out": "p"}
{"command": "points", "drawing": "small.xml", "alignment": "Axis", "points-where": ["description=TREE*", "number=1-9"], "out": "q"}
{"command": "points", "drawing": "small.xml", "alignment": "Axis", "points": "all", "out": "r"}
{"command": "gls", "drawing": "small.xml", "alignment": "Axis", "ground-profile": "Ground", "ground-tolerance": "0.01", "lines": "every=25", "out": "g"}
)";
  const RunResult result = run({"batch", "jobs.jsonl", "--forms", "txt"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(numbersIn(fileBytes(folder_ / "q.txt")), (std::vector<int>{2, 1}));
  EXPECT_EQ(numbersIn(fileBytes(folder_ / "r.txt")).size(), 5u);
  EXPECT_THAT(fileBytes(folder_ / "p.txt"), HasSubstr("1+040.000   1+040.000"));
  EXPECT_THAT(fileBytes(folder_ / "g.txt"), HasSubstr("1+025.000"));
}

TEST_F(MadeObjectsTest, AreQuietWhenAskedTo) {
  const RunResult result =
      report("gls", {"--ground-profile", "Ground", "--lines", "every=25,border=Ground", "--quiet"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output, "");
}

}  // namespace
}  // namespace lvx::cli
