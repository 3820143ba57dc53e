// lvxhost batch as the real program: several reports from one job file.
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/failure.h"
#include "cli/job_file.h"
#include "support/golden.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// ---------------------------------------------------------------- the job file

std::string failureOf(const std::string& text, const std::string& base = {}) {
  JobFileSettings settings{"jobs.jsonl", {}, {}, {{"taken/journal.txt", "the journal"}}, {}};
  if (!base.empty()) settings.base = base;
  try {
    const JobFile jobs(text, settings);
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), kUsage);
    return failure.what();
  }
  return "no failure";
}

/// A points job of this drawing and stem, with further members.
std::string pointsJob(const std::string& drawing, const std::string& out, const std::string& more = {}) {
  return R"({"command": "points", "drawing": ")" + drawing + R"(", "alignment": "A", "points": "1", "out": ")" + out +
         "\"" + (more.empty() ? "" : ", " + more) + "}\n";
}
/// A GLS job that saves its drawing.
std::string savingJob(const std::string& drawing, const std::string& out, const std::string& save,
                      const std::string& more = {}) {
  return R"({"command": "gls", "drawing": ")" + drawing + R"(", "alignment": "A", "profile": "P", "group": "G", )" +
         R"("add-sections": true, "save": ")" + save + R"(", "out": ")" + out + "\"" +
         (more.empty() ? "" : ", " + more) + "}\n";
}

TEST(JobFile, TurnsEachLineIntoTheOptionsOfOneReport) {
  JobFileSettings settings{"jobs.jsonl", {}, {}, {}, {}};
  settings.common.forms = "txt";
  settings.common.overwrite = true;
  const JobFile jobs(
      "\xEF\xBB\xBF\n{\"command\": \"points\", \"drawing\": \"-a.xml\", \"alignment\": \"-A\", \"site\": \"\", "
      "\"points\": \"1-3\", \"out\": \"x/a\", \"quiet\": true, \"keep\": false}\r\n  \n"
      "{\"command\": \"projection\", \"drawing\": \"b.xml\", \"with\": [\"c.xml\", \"d.xml\"], \"alignment\": 7, "
      "\"group\": \"G\", \"surface\": 1.50, \"out\": \"x/b\", \"forms\": \"xls\", \"keep\": true, \"release\": \"\"}",
      settings);
  ASSERT_EQ(jobs.entries().size(), 2U);
  EXPECT_EQ(jobs.drawingCount(), 2U);
  const Job first = jobs.read(jobs.entries()[0]);
  EXPECT_EQ(first.line, 2U);
  EXPECT_EQ(first.label, "points -a.xml, x/a");
  EXPECT_EQ(first.command, options::Command::Points);
  EXPECT_EQ(first.options.drawing, "-a.xml");
  EXPECT_EQ(first.options.report.alignment, "-A");
  EXPECT_EQ(first.options.report.site, "");
  EXPECT_EQ(first.options.report.points.numbers, "1-3");
  EXPECT_EQ(first.options.report.stem, "x/a");
  EXPECT_TRUE(first.options.common.quiet);
  EXPECT_EQ(first.options.common.forms, "txt");
  EXPECT_EQ(first.options.common.progress, "never");
  EXPECT_EQ(first.options.common.overwriteMode(), options::Overwrite::Always) << "false is as if it weren't given";
  const Job second = jobs.read(jobs.entries()[1]);
  EXPECT_EQ(second.line, 4U);
  EXPECT_THAT(second.options.files.with, ElementsAre("c.xml", "d.xml"));
  EXPECT_EQ(second.options.report.alignment, "7");
  EXPECT_EQ(second.options.report.surface, "1.50");
  EXPECT_EQ(second.options.common.forms, "xls");
  EXPECT_EQ(second.options.common.host.release, std::nullopt);
  EXPECT_EQ(second.options.common.overwriteMode(), options::Overwrite::Never) << "its own, not the batch's";
}

TEST(JobFile, IsEmptyWhereItHoldsNoJobs) {
  for (const char* text : {"", "\n \r\n\n", "\xEF\xBB\xBF", "\xEF\xBB\xBF\r\n"})
    EXPECT_TRUE(JobFile(text, {"jobs.jsonl", {}, {}, {}, {}}).entries().empty());
}

TEST(JobFile, NamesTheLineThatIsNoJob) {
  struct Row {
    std::string line;
    const char* words;
  };
  const auto with = [](const std::string& more) { return pointsJob("b.xml", "b", more); };
  const std::vector<Row> table{
      {"{", "jobs.jsonl:2: no JSON object: parse error at line 1, column 2"},
      {"[]", "jobs.jsonl:2: no JSON object"},
      {"[{\"command\": 1}]", "jobs.jsonl:2: no JSON object"},
      {"7", "jobs.jsonl:2: no JSON object"},
      {R"({"command": "gls", "drawing": "x", "out": 1e999})", "jobs.jsonl:2: no JSON object"},
      {R"({"drawing": "b.xml", "out": "b"})", "jobs.jsonl:2: a job needs a text \"command\""},
      {R"({"command": "info", "drawing": "b.xml", "out": "b"})", "jobs.jsonl:2: \"info\" is no report command"},
      {R"({"command": "points", "out": "b"})", "a job needs a text \"drawing\""},
      {R"({"command": "points", "drawing": "b.xml"})", "a job needs a text \"out\""},
      {R"({"command": "points", "drawing": "b.xml", "out": "b", "points": [1]})", "\"points\" is neither a text"},
      {R"({"command": "points", "drawing": "b.xml", "out": "b", "points": "1"})", "points needs \"alignment\""},
      {R"({"command": "points", "drawing": "b.xml", "out": "b", "alignment": "A"})",
       "points needs one of \"point-group\""},
      {pointsJob("b.xml", "./a"), "jobs.jsonl:2: writes the same files as line 1"},
      {pointsJob("b.xml", "b/"), "jobs.jsonl:2: --out needs a file name"},
      {with(R"("help": true)"), "jobs.jsonl:2: \"help\" is no option of points; there is command, drawing, with"},
      {with(R"("surface": "S")"), "\"surface\" is no option of points"},
      {with(R"("points": "2")"), "jobs.jsonl:2: \"points\" is given twice"},
      {with(R"("lang": "fr")"), "jobs.jsonl:2: --lang is 'fr'; there is en and de"},
      {with(R"("forms": "pdf")"), "'pdf' is no form of a report"},
      {with(R"("overwrite": "yes")"), "\"overwrite\" is neither true nor false"},
      {with(R"("site": true)"), "\"site\" is neither a text nor a number"},
      {with(R"("site": null)"), "\"site\" is neither a text nor a number"},
      {with(R"("with": ["c.xml", ["d.xml"]])"), "\"with\" is neither a text nor a list of texts"},
      {with(R"("overwrite": true, "keep": true)"), "exclude each other"},
      {with(R"("point-group": "G")"), "\"point-group\" and \"points\" exclude each other"},
      {with(R"("swap-axes": "c.xml")"), "--swap-axes names 'c.xml'"},
      {with(R"("site": "a\u0000b")"), "a zero character stands in a text"},
      {R"({"command": "points", "drawing": "b.xml", "out": "b", "alignment": "A", "points": "x"})", "jobs.jsonl:2: "},
      {R"({"command": "gls", "drawing": "b.xml", "out": "b", "alignment": "A", "profile": "P", "group": "G", "save": "c"})",
       "\"save\" needs \"add-sections\""},
      {R"({"command": "gls", "drawing": "b.xml", "out": "b", "alignment": "A", "profile": "P", "lines": "nearly=3"})",
       "jobs.jsonl:2: --lines: "},
  };
  for (const Row& row : table) {
    const std::string words = failureOf(pointsJob("a.xml", "a") + row.line);
    EXPECT_THAT(words, HasSubstr(row.words)) << row.line;
    EXPECT_THAT(words, Not(HasSubstr("json."))) << row.line;
  }
}

TEST(JobFile, TellsEveryLineThatIsNoJob) {
  std::string text;
  for (int i = 0; i < 25; ++i) text += "{\n";
  const std::string words = failureOf(text);
  EXPECT_THAT(words, HasSubstr("jobs.jsonl:1: "));
  EXPECT_THAT(words, HasSubstr("\njobs.jsonl:20: "));
  EXPECT_THAT(words, HasSubstr("\nand 5 more"));
}

TEST(JobFile, RefusesJobsThatGetInEachOthersWay) {
  struct Row {
    std::string jobs;
    const char* words;
  };
  const std::vector<Row> table{
      {pointsJob("a.xml", "x") + pointsJob("b.xml", "x", R"("forms": "txt")"),
       "jobs.jsonl:2: writes the same files as line 1: x"},
      {pointsJob("a.xml", "x", R"("forms": "txt")") + pointsJob("b.xml", "x", R"("forms": "xls,html")"), "no failure"},
      {pointsJob("a.xml", "x") + pointsJob("x.html", "y"), "x.html', which line 2 reads"},
      {pointsJob("x.txt", "y") + pointsJob("a.xml", "x"), "jobs.jsonl:2: writes '"},
      {pointsJob("x.txt", "x"), "jobs.jsonl:1: writes '"},
      {pointsJob("a.xml", "x", R"("messages": "y.txt")") + pointsJob("a.xml", "y"), "', which line 1 reads"},
      {pointsJob("a.xml", "taken/journal"), "jobs.jsonl:1: writes the journal itself"},
      {savingJob("a.xml", "x", "s.xml") + savingJob("b.xml", "y", "s.xml"),
       "jobs.jsonl:2: saves the same file as line 1: s.xml"},
      {savingJob("a.xml", "x", "s.xml") + savingJob("a.xml", "y", "./s.xml"),
       "jobs.jsonl:2: saves the same file as line 1"},
      {savingJob("a.xml", "x", "x.txt"), "jobs.jsonl:1: saves into a file of its own report"},
      {savingJob("a.xml", "x", "y.html") + pointsJob("a.xml", "y"), "jobs.jsonl:2: writes the same files as line 1"},
      {savingJob("a.xml", "x", "b.xml") + pointsJob("b.xml", "y"), "b.xml', which line 2 reads"},
      {pointsJob("b.xml", "y") + savingJob("a.xml", "x", "b.xml"), "b.xml', which line 1 reads"},
      {savingJob("a.xml", "x", "b.xml", R"("with": ["b.xml"])"), "b.xml', which it reads itself"},
      // Jobs of one drawing run one after the other, and see what was saved.
      {savingJob("a.xml", "x", "a.xml") + pointsJob("a.xml", "y") + savingJob("./a.xml", "z", "a.xml"), "no failure"},
      // The same file in another drawing.
      {savingJob("a.xml", "x", "a.xml") + pointsJob("a.xml", "y", R"("with": ["b.xml"])"),
       "a.xml', which line 2 reads"},
  };
  for (const Row& row : table) EXPECT_THAT(failureOf(row.jobs), HasSubstr(row.words)) << row.jobs;
}

std::string bookJob(const std::string& out) {
  return R"({"command": "profile", "drawing": "a.xml", "alignment": "A", "out": ")" + out + "\"}\n";
}

TEST(JobFile, RefusesAFileThatMayBeASheetOfAnotherJobsBook) {
  struct Row {
    std::string jobs;
    const char* words;
  };
  const std::vector<Row> table{
      {bookJob("b.svg") + bookJob("b-01.svg"),
       "jobs.jsonl:2: may write the same files as line 1: 'b-01.svg' may be a sheet of 'b.svg'"},
      {bookJob("./b-12.svg") + bookJob("b.svg"),
       "jobs.jsonl:2: may write the same files as line 1: './b-12.svg' may be a sheet of 'b.svg'"},
      {bookJob("o/b.svg") + savingJob("a.xml", "x", "o/b-007.svg"), "jobs.jsonl:2: may write the same files as line 1"},
      {bookJob("b.svg") + pointsJob("b-02.svg", "y"), "b-02.svg', which line 2 reads"},
      {pointsJob("b-02.svg", "y") + bookJob("b.svg"), "jobs.jsonl:2: may write '"},
      {bookJob("b.SVG") + bookJob("b-01.SVG"), "may be a sheet of"},
      // No sheets of that book.
      {bookJob("b.svg") + bookJob("b-1.svg") + bookJob("b-00.svg") + bookJob("b-901.svg") + bookJob("b-0a.svg") +
           bookJob("b-01.pdf") + bookJob("o/b-01.svg") + bookJob("b-.svg") + bookJob("b-00001.svg"),
       "no failure"},
      {bookJob("b.pdf") + bookJob("b-01.svg"), "no failure"},
      {bookJob("b.SVG") + bookJob("b-01.svg"), "no failure"},
      {pointsJob("a.xml", "b") + bookJob("b-01.svg"), "no failure"},
  };
  for (const Row& row : table) EXPECT_THAT(failureOf(row.jobs), HasSubstr(row.words)) << row.jobs;
}

TEST(JobFile, RefusesASaveOfAnAddedFileThatAnotherDrawingReads) {
  const std::string corridors = test::inSource("/examples/valley-road.xml");
  const std::string ground = test::inSource("/examples/valley-road/ground.xml");
  const auto with = [](const std::string& file) { return R"("with": ")" + file + "\""; };
  const auto saving = [&](const std::string& drawing, const std::string& file) {
    return savingJob(drawing, drawing + ".report", drawing, with(file));
  };
  EXPECT_THAT(failureOf(saving("a.xml", corridors) + pointsJob(corridors, "y")),
              HasSubstr("jobs.jsonl:1: may save '" + fs::canonical(corridors).string() + "', which line 2 reads"));
  EXPECT_THAT(failureOf(pointsJob("c.xml", "y", with(corridors)) + saving("a.xml", corridors)),
              HasSubstr("jobs.jsonl:2: may save"));
  EXPECT_EQ(failureOf(saving("a.xml", corridors) + pointsJob("a.xml", "y", with(corridors))), "no failure")
      << "jobs of one drawing run one after the other";
  EXPECT_EQ(failureOf(saving("a.xml", ground) + saving("b.xml", ground)), "no failure") << "nothing in it can change";
  EXPECT_EQ(failureOf(saving("a.xml", "nowhere.xml") + saving("b.xml", "nowhere.xml")), "no failure")
      << "told by the jobs themselves";
}

TEST(JobFile, KnowsAFileUnderAnotherName) {
  const test::TemporaryFolder folder;
  const std::string path = folder.path().string();
  fs::create_directory(folder / "real");
  fs::create_directory_symlink("real", folder / "linked");
  std::ofstream(folder / "real/one.txt") << "1";
  fs::create_symlink("one.txt", folder / "real/two.txt");
  EXPECT_THAT(failureOf(pointsJob("a.xml", path + "/real/x") + pointsJob("a.xml", path + "/linked/x")),
              HasSubstr("jobs.jsonl:2: writes the same files as line 1"));
  EXPECT_THAT(failureOf(pointsJob("a.xml", path + "/real/one") + pointsJob("a.xml", path + "/real/two")),
              HasSubstr("jobs.jsonl:2: writes the same files as line 1"));
}

TEST(JobFile, SeesPathsFromItsBase) {
  JobFileSettings settings{"jobs.jsonl", {}, "/far", {}, {}};
  const JobFile jobs(savingJob("a.xml", "out/x", "b.xml", R"("with": ["/here/c.xml", "d.xml"])"), settings);
  const Job job = jobs.read(jobs.entries()[0]);
  EXPECT_EQ(job.options.drawing, "/far/a.xml");
  EXPECT_EQ(job.options.report.stem, "/far/out/x");
  EXPECT_EQ(job.options.report.saveTo, "/far/b.xml");
  EXPECT_THAT(job.options.files.with, ElementsAre("/here/c.xml", "/far/d.xml"));
}

TEST(JobFile, PutsJobsOfOneDrawingTogether) {
  const JobFile jobs(pointsJob("a.xml", "1") + pointsJob("b.xml", "2") + pointsJob("./a.xml", "3") +
                         pointsJob("a.xml", "4", R"("with": ["b.xml"])") +
                         pointsJob("a.xml", "5", R"("swap-axes": ["a.xml"])"),
                     {"jobs.jsonl", {}, {}, {}, {}});
  std::vector<std::uint32_t> drawings;
  for (const JobFile::Entry& entry : jobs.entries()) drawings.push_back(entry.drawing);
  EXPECT_THAT(drawings, ElementsAre(0, 1, 0, 2, 3));
}

// ---------------------------------------------------------------- the program

class BatchTest : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments) {
    test::RunRequest request;
    request.program = fs::path(test::inBuild("/bin/lvxhost"));
    request.folder = place_;
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// Reports of both commands into `folder`, the second of them failing.
  void writeJobs(const std::string& name, const std::string& folder) const {
    fs::create_directory(place_ / folder);
    const std::string drawing = test::inSource("/examples/valley-road.xml");
    std::ofstream(place_ / name) << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Valley road", "point-group": )"
                                 << R"("Control points", "out": ")" << folder << "/control\"}\n"
                                 << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Nowhere", "points": "1", "out": ")" << folder
                                 << "/failing\"}\n\n"
                                 << R"({"command": "projection", "drawing": ")" << drawing
                                 << R"(", "alignment": "Mill lane", "group": )"
                                 << R"("Mill lane 25 m", "surface": "Existing ground", "out": ")" << folder
                                 << "/mill\"}\n"
                                 << R"({"command": "points", "drawing": ")" << drawing
                                 << R"(", "alignment": "Mill lane", "points": "1-3", )"
                                 << R"("forms": "html", "lang": "de", "out": ")" << folder << "/some\"}\n";
  }

  test::TemporaryFolder folder_;
  /// Where the program runs.
  fs::path place_ = folder_.path();
};

TEST_F(BatchTest, WritesEveryReportAndSumsUpPastAFailedOne) {
  writeJobs("jobs.jsonl", "out");
  const RunResult result = run({"batch", "jobs.jsonl", "--forms", "txt"});
  EXPECT_EQ(result.exitCode, 1);
  for (const char* name : {"out/control.txt", "out/mill.txt", "out/some.html"})
    EXPECT_TRUE(fs::exists(folder_ / name)) << name;
  EXPECT_FALSE(fs::exists(folder_ / "out/some.txt")) << "a job's own option holds";
  EXPECT_THAT(result.output, testing::MatchesRegex("out/control.txt  [0-9]+ bytes\nout/mill.txt  [0-9]+ bytes\n"
                                                   "out/some.html  [0-9]+ bytes\n"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: lvxhost: no alignment 'Nowhere'"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: ended with 4: points "));
  EXPECT_THAT(result.errors, HasSubstr("lvxhost: 4 jobs: 3 done, 1 failed (line 2)\n"));
}

TEST_F(BatchTest, GivesTheSameBytesHoweverManyRunAtATime) {
  std::map<std::string, RunResult> results;
  for (const std::string atOnce : {"1", "4"}) {
    fs::create_directory(folder_ / atOnce);
    place_ = folder_ / atOnce;
    writeJobs("jobs.jsonl", "out");
    results[atOnce] = run({"batch", "jobs.jsonl", "--jobs", atOnce});
  }
  EXPECT_EQ(results["4"].output, results["1"].output) << "in the order of the job file";
  EXPECT_EQ(results["4"].errors, results["1"].errors);
  int files = 0;
  for (const auto& entry : fs::directory_iterator(folder_ / "1/out")) {
    EXPECT_TRUE(test::sameBytes(fileBytes(folder_.path() / "4/out" / entry.path().filename()), fileBytes(entry.path())))
        << entry.path();
    ++files;
  }
  EXPECT_EQ(files, 7);
}

TEST_F(BatchTest, StopsItsReportsWhenItIsStopped) {
  writeJobs("jobs.jsonl", "out");
  std::ofstream jobs(place_ / "many.jsonl");
  for (int i = 0; i < 500; ++i)
    jobs << R"({"command": "points", "drawing": ")" << test::inSource("")
         << R"(/examples/valley-road.xml", "alignment": )"
         << R"("Valley road", "points": "1", "forms": "txt", "out": "out/many)" << i << "\"}\n";
  jobs.close();
  // The batch itself, not this shell, gets the signal.
  test::RunRequest request;
  request.program = "/bin/sh";
  request.folder = place_;
  request.arguments = {"-c",
                       "\"$0\" batch many.jsonl --jobs 2 & pid=$!; while [ ! -e out/many1.txt ]; do sleep 0.01; done; "
                       "kill -TERM $pid; wait $pid",
                       (fs::path(test::inBuild("/bin/lvxhost"))).string()};
  const RunResult result = test::runProgram(request);
  EXPECT_EQ(result.exitCode, 130);
  EXPECT_THAT(result.errors, HasSubstr("interrupted"));
  EXPECT_THAT(result.errors, testing::ContainsRegex("500 jobs: [0-9]+ done, 0 failed.* not begun\n"));
  EXPECT_FALSE(fs::exists(place_ / "out/many499.txt"));
  for (const auto& entry : fs::directory_iterator(place_ / "out"))
    EXPECT_EQ(entry.path().extension(), ".txt") << "no unfinished file: " << entry.path();
}

TEST_F(BatchTest, SaysNothingInQuietBatchesThatWentWell) {
  std::ofstream(folder_ / "none.jsonl") << "\n";
  EXPECT_EQ(run({"batch", "none.jsonl", "--quiet"}).errors, "");
  const RunResult result = run({"batch", "none.jsonl"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, "lvxhost: 0 jobs: 0 done, 0 failed\n");
}

TEST_F(BatchTest, RunsNothingWhereTheJobFileIsWrong) {
  writeJobs("jobs.jsonl", "out");
  std::ofstream(folder_ / "jobs.jsonl", std::ios::app) << "{\n";
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:6: no JSON object"));
  EXPECT_FALSE(fs::exists(folder_ / "out/control.txt"));
  EXPECT_EQ(run({"batch", "nobody.jsonl"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--jobs", "0"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "--help"}).exitCode, 0);
}

TEST_F(BatchTest, TellsWhatIsNoJobFile) {
  fs::create_directory(folder_ / "folder");
  EXPECT_THAT(run({"batch", "folder"}).errors, HasSubstr("lvxhost: batch: can't read 'folder': it is a folder"));
  EXPECT_THAT(run({"batch", "nobody.jsonl"}).errors, HasSubstr("can't read 'nobody.jsonl': No such file"));
  writeJobs("jobs.jsonl", "out");
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--base", "nowhere"}).exitCode, 2);
  EXPECT_EQ(run({"batch", "jobs.jsonl", "--report-code-page", "NONE"}).exitCode, 2) << "before any job";
  EXPECT_TRUE(fs::is_empty(folder_ / "out"));
}

TEST_F(BatchTest, SeesPathsFromTheJobFilesFolderWhereAsked) {
  fs::create_directories(folder_ / "project/out");
  fs::copy_file(test::inSource("/examples/valley-road.xml"), folder_ / "project/road.xml");
  std::ofstream(folder_ / "project/jobs.jsonl") << R"({"command": "points", "drawing": "road.xml", "alignment": )"
                                                << R"("Valley road", "points": "1", "forms": "txt", "out": "out/a"})";
  const RunResult result = run({"batch", "project/jobs.jsonl", "--base", "jobs"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, testing::StartsWith("project/out/a.txt  "));
  EXPECT_EQ(run({"batch", "project/jobs.jsonl", "--base", "project", "--overwrite"}).exitCode, 0);
}

TEST_F(BatchTest, TellsADrawingThatCantBeReadOnEachOfItsLines) {
  std::ofstream(folder_ / "jobs.jsonl") << pointsJob("none.xml", "a") << pointsJob("none.xml", "b");
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("line 1: lvxhost: landxml: "));
  EXPECT_THAT(result.errors, HasSubstr("line 1: ended with 3: points none.xml, a\n"));
  EXPECT_THAT(result.errors, HasSubstr("line 2: ended with 3: points none.xml, b\n"));
}

TEST_F(BatchTest, LetsLaterJobsOfADrawingSeeWhatWasSaved) {
  const auto gls = [](const std::string& out, const std::string& more) {
    return R"({"command": "gls", "drawing": "road.xml", "alignment": "Mill lane", "profile": "Mill lane design", )" +
           std::string(R"("group": "Mill lane 25 m", "forms": "txt", "out": "out/)") + out + "\"" + more + "}\n";
  };
  const std::vector<std::string> jobs{gls("before", ""), gls("saving", R"(, "add-sections": true, "save": "road.xml")"),
                                      gls("after", ""), gls("last", "")};
  // All in one batch, and each in a batch of its own.
  for (const char* name : {"together", "alone"}) {
    place_ = folder_ / name;
    fs::create_directories(place_ / "out");
    fs::copy_file(test::inSource("/examples/valley-road.xml"), place_ / "road.xml");
    const bool isTogether = std::string(name) == "together";
    for (const std::string& job : jobs) {
      std::ofstream(place_ / "jobs.jsonl", isTogether ? std::ios::app : std::ios::trunc) << job;
      if (isTogether && &job != &jobs.back()) continue;
      const RunResult result = run({"batch", "jobs.jsonl", "--jobs", "4"});
      ASSERT_EQ(result.exitCode, 0) << result.errors;
    }
  }
  for (const char* file : {"out/before.txt", "out/saving.txt", "out/after.txt", "out/last.txt", "road.xml"})
    EXPECT_TRUE(
        test::sameBytes(fileBytes(folder_.path() / "together" / file), fileBytes(folder_.path() / "alone" / file)))
        << file;
  const auto rows = [](const std::string& report) { return report.substr(report.find("Date")); };
  EXPECT_NE(rows(fileBytes(place_ / "out/after.txt")), rows(fileBytes(place_ / "out/before.txt")))
      << "or this shows nothing";
}

TEST_F(BatchTest, LosesOneReportByACrash) {
  fs::create_directory(folder_ / "out");
  const std::string road = test::inSource("/examples/valley-road.xml");
  const std::string module = test::inBuild("/tests/cli/odd/crashing.vmx");
  const auto points = [&](const std::string& out, const std::string& more) {
    return R"({"command": "points", "drawing": ")" + road + R"(", "alignment": "Valley road", "points": "1", )" +
           R"("forms": "txt", "out": "out/)" + out + "\"" + more + "}\n";
  };
  std::ofstream(folder_ / "jobs.jsonl") << points("a", "") << points("b", R"(, "module": ")" + module + "\"")
                                        << points("c", "");
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, testing::ContainsRegex("line 2: ended with 13[0-9]: points "));
  EXPECT_THAT(result.errors, HasSubstr("3 jobs: 2 done, 1 failed (line 2)"));
  EXPECT_TRUE(fs::exists(folder_ / "out/a.txt"));
  EXPECT_TRUE(fs::exists(folder_ / "out/c.txt"));
}

TEST_F(BatchTest, GivesTheSameBytesWhateverReportsCameBeforeOnTheDrawing) {
  const std::vector<std::string> kinds{
      R"("command": "projection", "alignment": "Mill lane", "group": "Mill lane 25 m", "surface": "Existing ground")",
      R"("command": "projection", "alignment": "Mill lane", "lines": "every=40,left=5,right=5", )"
      R"("surface": "Existing ground")",
      R"("command": "points", "alignment": "Valley road", "point-group": "Control points", "lang": "de")",
      R"("command": "points", "alignment": "Nowhere", "points": "1")",
      R"("command": "points", "alignment": "Mill lane", "surface-points": "Existing ground")",
      R"("command": "points", "alignment": "Mill lane", "points": "all")",
      R"("command": "gls", "alignment": "Valley road", "profile": "Valley road design", "group": "Cross sections 20 m")",
      R"("command": "gls", "alignment": "Valley road", "profile": "Valley road design", "group": "Cross sections 20 m", )"
      R"("add-sections": true)"};
  const auto job = [&](std::size_t kind, const std::string& out) {
    return "{" + kinds[kind] + R"(, "drawing": ")" + test::inSource("/examples/valley-road.xml") +
           R"(", "out": "out/)" + out + "\"}\n";
  };
  fs::create_directory(folder_ / "out");
  std::vector<std::size_t> order{0, 1, 2, 3, 4, 5, 6, 7, 7, 6, 5, 4, 3, 2, 1, 0, 6, 0, 6};
  std::ofstream jobs(folder_ / "jobs.jsonl");
  for (std::size_t i = 0; i < order.size(); ++i) jobs << job(order[i], "r" + std::to_string(i));
  jobs.close();
  const RunResult together = run({"batch", "jobs.jsonl", "--jobs", "1"});
  EXPECT_THAT(together.errors, HasSubstr("19 jobs: 17 done, 2 failed (lines 4, 13)"));
  const fs::path all = place_;
  place_ = folder_ / "alone";
  fs::create_directories(place_ / "out");
  for (std::size_t i = 0; i < order.size(); ++i) {
    const std::string name = "r" + std::to_string(i);
    std::ofstream(place_ / "one.jsonl") << job(order[i], name);
    (void)run({"batch", "one.jsonl"});
    for (const char* const form : {".txt", ".html", ".xls"}) {
      const fs::path file = fs::path("out") / (name + form);
      ASSERT_EQ(fs::exists(all / file), fs::exists(place_ / file)) << file;
      if (!fs::exists(place_ / file)) continue;
      EXPECT_TRUE(test::sameBytes(fileBytes(all / file), fileBytes(place_ / file))) << file;
    }
  }
}

TEST_F(BatchTest, WaitsWhereFewFilesMayBeOpen) {
  fs::create_directory(folder_ / "out");
  std::ofstream jobs(folder_ / "jobs.jsonl");
  for (int i = 0; i < 60; ++i) {
    const std::string name = "road" + std::to_string(i % 30) + ".xml";
    if (i < 30) fs::copy_file(test::inSource("/examples/valley-road.xml"), folder_ / name);
    jobs << R"({"command": "points", "drawing": ")" << name << R"(", "alignment": "Valley road", "points": "1", )"
         << R"("forms": "txt", "out": "out/)" << i << "\"}\n";
  }
  jobs.close();
#ifdef __SANITIZE_ADDRESS__
  const std::string few = "256";  // the sanitizers' own checks open files
#else
  const std::string few = "24";
#endif
  test::RunRequest request;
  request.program = "/bin/sh";
  request.folder = place_;
  request.arguments = {"-c", "ulimit -n " + few + "; exec \"$0\" batch jobs.jsonl --jobs 60",
                       test::inBuild("/bin/lvxhost")};
  const RunResult result = test::runProgram(request);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("60 jobs: 60 done, 0 failed"));
}

}  // namespace
}  // namespace lvx::cli
