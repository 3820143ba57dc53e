// "-": the drawing, the job file or the script comes on standard input.
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

class StandardInputTest : public BareDrawingTest {
 protected:
  /// Runs a line of the shell beside the drawing; $LVX is the program.
  [[nodiscard]] RunResult shell(const std::string& line) const {
    test::RunRequest request;
    request.program = "/bin/sh";
    request.folder = folder_.path();
    request.arguments = {"-c", line};
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}, {"LVX", test::inBuild("/bin/lvxhost")}};
    return test::runProgram(request);
  }
  [[nodiscard]] bool stands(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
};

TEST_F(StandardInputTest, GivesTheSameReportAsTheFile) {
  const std::vector<std::string> rows{
      "--alignment Axis --points all",
      "--alignment Axis --lines every=40,left=9,right=9 --surface Ground",
      "--alignment Axis --profile Design --lines every=40",
  };
  const std::vector<std::string> commands{"points", "projection", "gls"};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string rest = rows[i] + " --overwrite --out road";
    const auto reports = [&](const std::string& line) {
      const RunResult result = shell(line);
      EXPECT_EQ(result.exitCode, 0) << line << result.errors;
      std::vector<std::string> bytes;
      for (const char* ending : {".txt", ".html", ".xls"}) {
        bytes.push_back(fileBytes(folder_ / (std::string("road") + ending)));
        std::filesystem::remove(folder_ / (std::string("road") + ending));
      }
      return bytes;
    };
    const std::string program = "\"$LVX\" " + commands[i];
    const std::vector<std::string> expected = reports(program + " small.xml " + rest);
    EXPECT_TRUE(reports("cat small.xml | " + program + " - " + rest) == expected) << commands[i];
    EXPECT_TRUE(reports(program + " - " + rest + " <small.xml") == expected) << commands[i];
  }
}

TEST_F(StandardInputTest, IsNamedInWords) {
  EXPECT_THAT(shell("cat small.xml | \"$LVX\" info -").output, HasSubstr("standard input"));
  const RunResult broken = shell("echo '<LandXML' | \"$LVX\" info -");
  EXPECT_EQ(broken.exitCode, 3);
  EXPECT_THAT(broken.errors, HasSubstr("standard input:"));
  const RunResult closed = shell("\"$LVX\" info - <&-");
  EXPECT_EQ(closed.exitCode, 3);
  EXPECT_THAT(closed.errors, HasSubstr("standard input"));
  const RunResult folder = shell("\"$LVX\" info - <.");
  EXPECT_EQ(folder.exitCode, 3);
  EXPECT_THAT(folder.errors, HasSubstr("standard input"));
}

TEST_F(StandardInputTest, TakesFurtherFilesAndSwappedAxes) {
  std::ofstream(folder_ / "points.xml") << "<LandXML version=\"1.2\"><Units><Metric linearUnit=\"meter\"/></Units>"
                                           "<CgPoints><CgPoint name=\"77\">1 2 3</CgPoint></CgPoints></LandXML>";
  const RunResult result = shell("cat small.xml | \"$LVX\" info - --with points.xml --swap-axes - --json");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("\"greatestNumber\": 77"));
  EXPECT_THAT(result.output, HasSubstr("\"axesSwapped\": true"));
}

TEST_F(StandardInputTest, IsSavedWhereSaveSays) {
  ASSERT_EQ(shell("\"$LVX\" group small.xml --name G --points 1 --save file.xml").exitCode, 0);
  const RunResult result = shell("cat small.xml | \"$LVX\" group - --name G --points 1 --save piped.xml");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(fileBytes(folder_ / "piped.xml"), fileBytes(folder_ / "file.xml"));
}

TEST_F(StandardInputTest, IsNoPlaceToSaveTo) {
  struct Row {
    std::string line;
    int code;
    std::string words;
  };
  const std::vector<Row> rows{
      {"group - --name G --points 1 <small.xml", 2, "--save says where to"},
      {"lines - --alignment Axis --name G --every 40 <small.xml", 2, "--save says where to"},
      {"group - --name G --points 1 --save - <small.xml", 2, "--save names standard input"},
      {"group - --name G --points 1 --save small.xml --overwrite <small.xml", 3, "the drawing on standard input"},
  };
  for (const Row& row : rows) {
    const RunResult result = shell("\"$LVX\" " + row.line);
    EXPECT_EQ(result.exitCode, row.code) << row.line;
    EXPECT_THAT(result.errors, HasSubstr(row.words));
    EXPECT_EQ(fileBytes(folder_ / "small.xml"), kBareDrawing);
    EXPECT_FALSE(stands("-"));
    EXPECT_FALSE(stands("standard input"));
  }
}

TEST_F(StandardInputTest, IsNoReportOfItsOwnRun) {
  std::filesystem::rename(folder_ / "small.xml", folder_ / "small.txt");
  const RunResult result =
      shell("\"$LVX\" points - --alignment Axis --points all --out small --forms txt --overwrite <small.txt");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("the drawing on standard input"));
  EXPECT_EQ(fileBytes(folder_ / "small.txt"), kBareDrawing);
}

TEST_F(StandardInputTest, IsTheFirstFileAlone) {
  const RunResult result = shell("\"$LVX\" info small.xml --with - </dev/null");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("DRAWING alone"));
}

TEST_F(StandardInputTest, LeavesAFileOfThatNameReachable) {
  std::filesystem::rename(folder_ / "small.xml", folder_ / "-");
  EXPECT_EQ(shell("\"$LVX\" info ./- </dev/null").exitCode, 0);
}

TEST_F(StandardInputTest, GivesTheScriptOfAPlay) {
  const RunResult result = shell("echo '[]' | \"$LVX\" play small.xml -");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  const RunResult broken = shell("echo '[' | \"$LVX\" play small.xml -");
  EXPECT_EQ(broken.exitCode, 2);
  EXPECT_THAT(broken.errors, HasSubstr("standard input"));
  const RunResult both = shell("echo '[]' | \"$LVX\" play - -");
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_THAT(both.errors, HasSubstr("not both"));
  EXPECT_EQ(shell("printf '[]' >s.json; cat small.xml | \"$LVX\" play - s.json").exitCode, 0);
}

TEST_F(StandardInputTest, GivesTheJobsOfABatch) {
  const std::string job =
      R"({"command": "points", "drawing": "small.xml", "alignment": "Axis", "points": "1", "out": ")";
  std::ofstream(folder_ / "jobs.txt") << job << "one\"}\n" << job << "two\", \"forms\": \"txt\"}\n";
  const RunResult piped = shell("cat jobs.txt | \"$LVX\" batch -");
  EXPECT_EQ(piped.exitCode, 0) << piped.errors;
  EXPECT_TRUE(stands("one.xls"));
  EXPECT_TRUE(stands("two.txt"));
  std::ofstream(folder_ / "broken.txt") << job << "one\"}\n{";
  const RunResult broken = shell("\"$LVX\" batch - <broken.txt");
  EXPECT_EQ(broken.exitCode, 2);
  EXPECT_THAT(broken.errors, HasSubstr("standard input:2: no JSON object"));
  const RunResult base = shell("\"$LVX\" batch - --base jobs <jobs.txt");
  EXPECT_EQ(base.exitCode, 2);
  EXPECT_THAT(base.errors, HasSubstr("lie in no folder"));
  std::ofstream(folder_ / "own.txt") << job << "own\"}\n";
  const RunResult own = shell("\"$LVX\" batch - --overwrite <own.txt");
  EXPECT_EQ(own.exitCode, 2) << "the report would take the place of the jobs";
  EXPECT_THAT(own.errors, HasSubstr("the job file itself"));
}

TEST_F(StandardInputTest, IsNoDrawingOfAJob) {
  std::ofstream(folder_ / "jobs.jsonl")
      << R"({"command": "points", "drawing": "-", "alignment": "Axis", "points": "1", "out": "x"})";
  const RunResult result = shell("\"$LVX\" batch jobs.jsonl <small.xml");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("a job's drawing can't come on standard input"));
}

}  // namespace
}  // namespace lvx::cli
