// lvxhost lines and lvxhost group: groups that are made and saved.
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

class MadeGroupsTest : public BareDrawingTest {
 protected:
  [[nodiscard]] RunResult lines(const std::vector<std::string>& more) const { return make("lines", more); }
  [[nodiscard]] RunResult group(const std::vector<std::string>& more) const { return make("group", more); }
  [[nodiscard]] std::string drawing() const { return fileBytes(folder_ / "small.xml"); }

 private:
  [[nodiscard]] RunResult make(const std::string& command, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{command, "small.xml"};
    if (command == "lines") arguments.insert(arguments.end(), {"--alignment", "Axis"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }
};

// ---------------------------------------------------------------- sample lines

TEST_F(MadeGroupsTest, SavesLinesThatReportAsThoseMadeForOneReport) {
  ASSERT_EQ(report("projection", {"--lines", "every=40,left=10,right=20", "--surface", "Ground"}).exitCode, 0);
  const std::string made = text();
  const RunResult result = lines({"--name", "Every 40", "--every", "40", "--left", "10", "--right", "20"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output,
              HasSubstr("'Every 40' on alignment 'Axis': 3 sample lines, 1+000.000 to 1+080.000\nsmall.xml  " +
                        std::to_string(drawing().size()) + " bytes\n"));
  EXPECT_NE(drawing(), kBareDrawing);
  ASSERT_EQ(report("projection", {"--group", "Every 40", "--surface", "Ground"}).exitCode, 0);
  EXPECT_EQ(text(), made);
}

TEST_F(MadeGroupsTest, TakesEveryRuleAsAnOptionOrInOneText) {
  const std::vector<std::string> options{
      "--count-from-start", "--from", "1+005", "--to", "1075", "--ends", "--every", "30", "--skew", "-10", "--names",
      "{kind}, {n}"};
  std::vector<std::string> one{"--name", "G", "--save", "one.xml"};
  one.insert(one.end(), options.begin(), options.end());
  const RunResult first = lines(one);
  EXPECT_EQ(first.exitCode, 0) << first.errors;
  const RunResult second = lines({"--name", "G", "--save", "two.xml", "--rules",
                                  "count-from-start,from=1+005,to=1075,ends,every=30,skew=-10,name='{kind}, {n}'"});
  EXPECT_EQ(second.exitCode, 0) << second.errors;
  EXPECT_EQ(fileBytes(folder_ / "one.xml"), fileBytes(folder_ / "two.xml"));
  EXPECT_THAT(fileBytes(folder_ / "one.xml"), HasSubstr("start, 1"));
  EXPECT_THAT(fileBytes(folder_ / "one.xml"), HasSubstr("interval, 3"));
  EXPECT_EQ(drawing(), kBareDrawing) << "--save leaves the drawing alone";
}

TEST_F(MadeGroupsTest, LeavesAGroupOfThatNameAloneUnlessItIsReplaced) {
  ASSERT_EQ(lines({"--name", "G", "--every", "40"}).exitCode, 0);
  const std::string before = drawing();
  const RunResult taken = lines({"--name", "G", "--every", "20"});
  EXPECT_EQ(taken.exitCode, 1);
  EXPECT_THAT(taken.errors, HasSubstr("alignment 'Axis' has a sample line group 'G' already; --replace"));
  EXPECT_EQ(drawing(), before);
  const RunResult replaced = lines({"--name", "G", "--every", "20", "--replace"});
  EXPECT_EQ(replaced.exitCode, 0) << replaced.errors;
  EXPECT_THAT(replaced.output, HasSubstr("6 sample lines"));
  const RunResult info = run({"info", "small.xml"});
  EXPECT_THAT(info.output, HasSubstr("'G'  6 "));
  EXPECT_THAT(info.output, Not(HasSubstr("'G'  3 ")));
}

TEST_F(MadeGroupsTest, SaysWhatIsWrongWithLinesAndSavesNothing) {
  const struct {
    std::vector<std::string> more;
    int exitCode;
    const char* words;
  } rows[] = {
      {{"--name", "G", "--every", "0"}, 2, "sample lines: every '0': a length above 0 is wanted"},
      {{"--name", "G", "--every", "20", "--left", "-1"}, 2, "left '-1': a width above 0 is wanted"},
      {{"--name", "G", "--every", "20", "--rules", "every=25"}, 2, "every: given twice"},
      {{"--name", "G"}, 2, "nothing says where lines stand"},
      {{"--name", "", "--every", "20"}, 2, "a sample line group needs a name"},
      {{"--name", "G\x1e", "--every", "20"}, 2, "the name of a sample line group can't hold control characters"},
      {{"--every", "20"}, 2, "--name"},
      {{"--name", "G", "--every", "20", "--from", "3000"}, 1, "the alignment runs from 1000.000 to 1100.000"},
      {{"--name", "G", "--every", "0.00001"}, 1, "more than 1000000 lines"},
      {{"--name", "G", "--pvis", "--profile", "Desing"}, 4, "there is 'Design'"},
      {{"--name", "G", "--every", "20", "--border", "Grund"}, 4, "there is 'Ground'"},
      {{"--name", "G", "--every", "20", "--save", "no-such-folder/x.xml"}, 3, "no-such-folder"},
  };
  for (const auto& row : rows) {
    const RunResult result = lines(row.more);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words << result.errors;
    EXPECT_THAT(result.errors + result.output, HasSubstr(row.words));
    EXPECT_EQ(drawing(), kBareDrawing) << row.words;
  }
}

// ---------------------------------------------------------------- points

TEST_F(MadeGroupsTest, SavesPointsOfConditionsByReference) {
  const RunResult result = group({"--name", "Trees", "--points-where", "description=TREE*"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("'Trees': 2 points\nsmall.xml  "));
  EXPECT_THAT(drawing(), HasSubstr("pntRef=\"1\""));
  EXPECT_THAT(drawing(), Not(HasSubstr("pntRef=\"3\"")));
  ASSERT_EQ(report("points", {"--points", "1,2"}).exitCode, 0);
  const std::string byNumber = text();
  ASSERT_EQ(report("points", {"--point-group", "Trees"}).exitCode, 0);
  EXPECT_EQ(text(), byNumber);
}

TEST_F(MadeGroupsTest, SavesPointsOfNumbersAndReplacesThem) {
  ASSERT_EQ(group({"--name", "G", "--points", "1-3"}).exitCode, 0);
  const std::string before = drawing();
  const RunResult taken = group({"--name", "G", "--points", "all"});
  EXPECT_EQ(taken.exitCode, 1);
  EXPECT_THAT(taken.errors, HasSubstr("the drawing has a point group 'G' already; --replace"));
  EXPECT_EQ(drawing(), before);
  const RunResult replaced = group({"--name", "G", "--points", "all", "--replace"});
  EXPECT_EQ(replaced.exitCode, 0) << replaced.errors;
  EXPECT_THAT(replaced.output, HasSubstr("'G': 5 points"));
  EXPECT_THAT(run({"info", "small.xml"}).output, HasSubstr("'G'  5 points"));
}

TEST_F(MadeGroupsTest, SaysWhatIsWrongWithPointsAndSavesNothing) {
  const struct {
    std::vector<std::string> more;
    int exitCode;
    const char* words;
  } rows[] = {
      {{"--name", "G", "--points", "1,77"}, 4, "the drawing holds no point 77"},
      {{"--name", "G", "--points-where", "description=OAK"}, 1, "none of the drawing's 5 points meets description=OAK"},
      {{"--name", "", "--points", "all"}, 2, "a point group needs a name"},
      {{"--name", "A\nB", "--points", "all"}, 2, "the name of a point group can't hold control characters"},
      {{"--name", "G"}, 2, ""},
      {{"--name", "G", "--points", "all", "--save", "no-such-folder/x.xml"}, 3, "no-such-folder"},
  };
  for (const auto& row : rows) {
    const RunResult result = group(row.more);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.words << result.errors;
    EXPECT_THAT(result.errors + result.output, HasSubstr(row.words));
    EXPECT_EQ(drawing(), kBareDrawing) << row.words;
  }
}

}  // namespace
}  // namespace lvx::cli
