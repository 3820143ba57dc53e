// What lvxhost may write where: end to end.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "made_drawing.h"
#include "support/ordinary_user.h"
#include "support/workbook_reader.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using testing::HasSubstr;

class OutputRulesTest : public BareDrawingTest {
 protected:
  void put(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }
  [[nodiscard]] std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
  }
  /// The points report into road.txt, road.xls and road.html.
  [[nodiscard]] test::RunResult points(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"points", "small.xml", "--alignment", "Axis", "--points", "all"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    if (more.empty() || more.front() != "--out") arguments.insert(arguments.end(), {"--out", "road"});
    return run(std::move(arguments));
  }
  [[nodiscard]] test::RunResult lines(const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{"lines",   "small.xml", "--alignment", "Axis", "--name",  "New",
                                       "--every", "50",        "--left",      "5",    "--right", "5"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }
};

TEST_F(OutputRulesTest, AReportNeverTakesThePlaceOfAFileThatIsRead) {
  put("road.html", kBareDrawing);
  put("words.txt", "");
  fs::create_symlink("small.xml", folder_ / "link.txt");
  fs::create_hard_link(folder_ / "small.xml", folder_ / "twin.xls");
  struct Row {
    std::vector<std::string> more;
    std::string told;
  };
  const Row table[] = {
      {{"--with", "road.html"}, "'./road.html' can't be an output: it is a file of the drawing that is read"},
      {{"--out", "words", "--messages", "words.txt"},
       "'./words.txt' can't be an output: it is the message file that is read"},
      {{"--out", "link"}, "'./link.txt' can't be an output: it is the drawing that is read"},
      {{"--out", "twin"}, "'./twin.xls' can't be an output: it is the drawing that is read"},
  };
  const std::size_t before = fileCount();
  for (const Row& row : table)
    for (const char* mode : {"--overwrite", "--keep"}) {
      std::vector<std::string> more = row.more;
      more.emplace_back(mode);
      const test::RunResult result = points(more);
      EXPECT_EQ(result.exitCode, 1) << row.told;
      EXPECT_THAT(result.errors, HasSubstr("nothing was written: " + row.told));
      EXPECT_EQ(fileCount(), before) << row.told;
      EXPECT_EQ(fileBytes(folder_ / "small.xml"), kBareDrawing);
      EXPECT_EQ(fileBytes(folder_ / "road.html"), kBareDrawing);
    }
}

TEST_F(OutputRulesTest, ADrawingIsSavedOverAnotherFileByTheRulesOfReports) {
  put("other.xml", "former");
  test::RunResult result = lines({"--save", "other.xml"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("kept 'other.xml', which exists; --overwrite replaces it"));
  EXPECT_EQ(fileBytes(folder_ / "other.xml"), "former");
  result = lines({"--save", "other.xml", "--overwrite"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(fileBytes(folder_ / "other.xml"), HasSubstr("</LandXML>"));
  result = lines({"--save", "small.xml", "--keep"});
  EXPECT_EQ(result.exitCode, 0) << "in place is meant: " << result.errors;
}

TEST_F(OutputRulesTest, ADrawingIsNeverSavedOverAnotherFileThatIsRead) {
  put("added.xml", kBareDrawing);
  put("words.txt", "");
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--with", "added.xml", "--save", "./added.xml", "--overwrite"},
        std::vector<std::string>{"--messages", "words.txt", "--save", "words.txt", "--overwrite"}}) {
    const test::RunResult result = lines(more);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.errors, HasSubstr("nothing was written: --save names '"));
  }
  EXPECT_EQ(fileBytes(folder_ / "added.xml"), kBareDrawing);
  EXPECT_EQ(fileBytes(folder_ / "words.txt"), "");
}

TEST_F(OutputRulesTest, ADrawingIsNeverSavedOverAReportOfItsRun) {
  for (const char* target : {"road.txt", "./road.txt"}) {
    const test::RunResult result = report(
        "gls", {"--profile", "Design", "--lines", "every=50,left=5,right=5", "--add-sections", "--save", target});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.errors, HasSubstr("which can't be: it is a report of this run"));
    EXPECT_EQ(fileCount(), 1U) << "only the drawing";
  }
}

TEST_F(OutputRulesTest, JobsNeverWriteWhatAJobReads) {
  const auto job = [](const std::string& drawing, const std::string& out, const std::string& more = "") {
    return R"({"command": "points", "drawing": ")" + drawing + R"(", "alignment": "Axis", "points": "all", "out": ")" +
           out + "\"" + more + "}\n";
  };
  put("site.txt", kBareDrawing);
  const std::pair<std::string, std::string> table[] = {
      {job("small.xml", "site") + job("site.txt", "b"), "jobs.jsonl:1: writes "},
      {job("small.xml", "a") + job("small.xml", "site", R"(, "with": ["site.txt"])"), "jobs.jsonl:2: writes "},
      {job("small.xml", "jobs"), "jobs.jsonl:1: writes the job file itself"},
      {job("small.xml\\u0000.txt", "a"), "jobs.jsonl:1: a zero character stands in a text"},
      {job("small.xml", "a\\u0000b"), "jobs.jsonl:1: a zero character stands in a text"},
  };
  for (const auto& [jobs, told] : table) {
    const std::string name = told.find("itself") != std::string::npos ? "jobs.txt" : "jobs.jsonl";
    put(name, jobs);
    const test::RunResult result = run({"--overwrite", "batch", name});
    EXPECT_EQ(result.exitCode, 2) << result.errors;
    if (name == "jobs.jsonl") {
      EXPECT_THAT(result.errors, HasSubstr(told));
    } else {
      EXPECT_THAT(result.errors, HasSubstr("jobs.txt:1: writes the job file itself"));
    }
    EXPECT_FALSE(fs::exists(folder_ / "a.txt"));
    EXPECT_EQ(fileBytes(folder_ / "site.txt"), kBareDrawing);
  }
}

TEST_F(OutputRulesTest, AFolderThatTakesNoNewFileIsToldOnceAndNothingIsTouched) {
  fs::create_directory(folder_ / "out");
  put("out/road.txt", "former");
  put("out/road.xls", "former");
  const test::OrdinaryUser user(folder_.path());
  fs::permissions(folder_ / "out", fs::perms{0555});
  for (const char* mode : {"--overwrite", "--keep"}) {
    const test::RunResult result = points({"--out", "out/road", mode});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors,
                HasSubstr("nothing was written: the folder 'out' takes no new file: Permission denied\n"));
    EXPECT_THAT(result.errors, testing::Not(HasSubstr("--overwrite")));
  }
  fs::permissions(folder_ / "out", fs::perms{0755});
  EXPECT_EQ(fileBytes(folder_ / "out/road.txt"), "former");
  EXPECT_EQ(fileBytes(folder_ / "out/road.xls"), "former");
}

TEST_F(OutputRulesTest, AnOlderWorkbookStandsUntilTheNewOneDoes) {
  ASSERT_EQ(points({"--overwrite"}).exitCode, 0);
  const std::string former = fileBytes(folder_ / "road.xls");
  ASSERT_EQ(points({"--overwrite"}).exitCode, 0);
  EXPECT_EQ(fileBytes(folder_ / "road.xls"), former);
  // A name that is too long for the files that grow beside it is none for a workbook either; here its folder is full.
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  rlimit small = limit;
  small.rlim_cur = 3000;
  setrlimit(RLIMIT_FSIZE, &small);
  const test::RunResult result = points({"--overwrite"});
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_EQ(result.exitCode, 70);
  EXPECT_THAT(result.errors, HasSubstr("can't write './road.xls': workbook: "));
  EXPECT_EQ(fileBytes(folder_ / "road.xls"), former);
  EXPECT_EQ(fileCount(), 4U) << "the drawing and three reports";
}

TEST_F(OutputRulesTest, ABackslashIsALetterOfAName) {
  ASSERT_EQ(points({"--out", "a\\b"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(folder_ / "a\\b.txt"));
  EXPECT_EQ(test::readWorkbook(folder_ / "a\\b.xls").empty(), false);
  const test::RunResult kept = points({"--out", "a\\b"});
  EXPECT_EQ(kept.exitCode, 1);
  EXPECT_THAT(kept.errors, HasSubstr("kept './a\\b.txt', which exists"));
}

TEST_F(OutputRulesTest, PipesNeverHang) {
  ASSERT_EQ(::mkfifo((folder_ / "road.txt").c_str(), 0600), 0);
  const test::RunResult result = points({"--overwrite", "--forms", "txt"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write './road.txt': no program reads from the pipe"));
}

TEST_F(OutputRulesTest, ALinkToNothingIsFollowedAndOneIntoNoFolderTold) {
  fs::create_symlink("far.txt", folder_ / "road.txt");
  EXPECT_EQ(points({"--forms", "txt"}).exitCode, 0);
  EXPECT_TRUE(fs::is_regular_file(folder_ / "far.txt"));
  fs::remove(folder_ / "road.txt");
  fs::create_symlink("none/far.txt", folder_ / "road.txt");
  const test::RunResult result = points({"--forms", "txt"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write './road.txt': No such file or directory"));
}

TEST_F(OutputRulesTest, AFolderIsNeitherAJobFileNorAScript) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"batch", "."}, std::vector<std::string>{"play", "small.xml", "."}}) {
    const test::RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.errors, HasSubstr("can't read '.': it is a folder\n"));
  }
}

TEST_F(OutputRulesTest, WordsOnJsonNameNoLibrary) {
  put("bad.json", "[{");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"batch", "bad.json"}, std::vector<std::string>{"play", "small.xml", "bad.json"}}) {
    const test::RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.errors, HasSubstr("parse error at line 1, column "));
    EXPECT_THAT(result.errors, testing::Not(HasSubstr("json.exception")));
  }
}

TEST_F(OutputRulesTest, AScriptHasNoZeroCharacter) {
  put("script.json", R"([{"command": "lvx_Report_Points"}, {"type": 100, "text": "small.xml\u0000x"}])");
  const test::RunResult result = run({"play", "small.xml", "script.json"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("action 2 ('type'): a zero character stands in a text"));
}

}  // namespace
}  // namespace lvx::cli
