// --json of every command, as the real program: one document on standard output, whatever happens.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/file_hash.h"
#include "made_drawing.h"
#include "options/commands.h"
#include "options/option_table.h"

namespace lvx::cli {
namespace {

using nlohmann::json;
using test::RunResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class AnswerTest : public BareDrawingTest {
 protected:
  /// What stands on standard output, which has to be one document, and be right about the exit code.
  [[nodiscard]] json answerTo(const std::vector<std::string>& arguments) {
    result_ = run(arguments);
    json answer = json::parse(result_.output, nullptr, false);
    EXPECT_TRUE(answer.is_object()) << result_.output;
    if (!answer.is_object()) return json::object();
    EXPECT_EQ(answer["exit"], result_.exitCode);
    EXPECT_GE(answer["seconds"], 0.0);
    EXPECT_TRUE(answer["written"].is_array());
    EXPECT_TRUE(answer["diagnostics"].is_array());
    for (const json& file : answer["written"]) {
      const FileHash hash = hashOf(folder_ / file["path"].get<std::string>());
      EXPECT_EQ(file["bytes"], hash.bytes);
      EXPECT_EQ(file["sha256"], hash.digits);
    }
    return answer;
  }
  void write(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }

  RunResult result_;
};

std::vector<std::string> pathsOf(const json& answer) {
  std::vector<std::string> paths;
  for (const json& file : answer["written"]) paths.push_back(file["path"]);
  return paths;
}

TEST_F(AnswerTest, IsAnOptionOfEveryCommand) {
  for (const options::CommandDescription& command : options::commands()) {
    std::size_t found = 0;
    for (const options::OptionDescription* option : options::optionsOf(command.command))
      if (option->name == "json") ++found;
    EXPECT_EQ(found, 1U) << command.name;
    EXPECT_THAT(run({std::string(command.name), "--help"}).output, HasSubstr("--json")) << command.name;
  }
}

TEST_F(AnswerTest, ListsTheFilesOfAReportWithBytesAndHash) {
  const json answer = answerTo({"points", "small.xml", "--alignment", "Axis", "--points", "1,2", "--out", "road",
                                "--forms", "txt,html", "--json"});
  EXPECT_EQ(answer["command"], "points");
  EXPECT_EQ(answer["exit"], 0);
  EXPECT_THAT(pathsOf(answer), ElementsAre("./road.txt", "./road.html"));
  ASSERT_EQ(answer["diagnostics"].size(), 1U);
  EXPECT_EQ(answer["diagnostics"][0]["severity"], "warning");
  EXPECT_THAT(answer["diagnostics"][0]["text"], HasSubstr("without an elevation: 1"));
}

TEST_F(AnswerTest, StandsBeforeTheCommandToo) {
  EXPECT_EQ(answerTo({"--json", "info", "small.xml"})["command"], "info");
}

TEST_F(AnswerTest, TellsWhichFileWasKept) {
  write("road.html", "mine");
  const json answer = answerTo({"points", "small.xml", "--alignment", "Axis", "--points", "1", "--out", "road",
                                "--forms", "txt,html", "--json"});
  EXPECT_EQ(answer["exit"], 1);
  EXPECT_THAT(pathsOf(answer), ElementsAre("./road.txt"));
  ASSERT_EQ(answer["diagnostics"].size(), 1U);
  EXPECT_EQ(answer["diagnostics"][0]["severity"], "error");
  EXPECT_EQ(answer["diagnostics"][0]["file"], "./road.html");
}

TEST_F(AnswerTest, HasLineAndFileOfWhatTheReaderFoundOdd) {
  write("odd.xml", "<LandXML version=\"1.2\">\n<CgPoints>\n<CgPoint name=\"1\">north</CgPoint>\n</CgPoints></LandXML>");
  for (const char* command : {"info", "group"}) {
    std::vector<std::string> arguments{command, "odd.xml", "--json"};
    if (arguments.front() == "group") arguments.insert(arguments.end(), {"--name", "All", "--points", "1"});
    const json answer = answerTo(arguments);
    std::size_t found = 0;
    for (const json& diagnostic : answer["diagnostics"]) {
      EXPECT_TRUE(diagnostic["file"] == "odd.xml" || diagnostic["severity"] == "error") << diagnostic;
      if (diagnostic["line"] != 3) continue;
      ++found;
      EXPECT_EQ(diagnostic["severity"], "warning");
      EXPECT_THAT(diagnostic["text"].get<std::string>(), Not(HasSubstr("odd.xml")));
    }
    EXPECT_EQ(found, 1U) << command << answer;
  }
}

TEST_F(AnswerTest, HoldsWhatInfoTells) {
  const json answer = answerTo({"info", "small.xml", "--json"});
  EXPECT_EQ(answer["file"], "small.xml");
  EXPECT_EQ(answer["sites"][0]["alignments"][0]["name"], "Axis");
  EXPECT_EQ(answer["surfaces"][0]["name"], "Ground");
}

TEST_F(AnswerTest, TellsOfAGroupThatWasMade) {
  const json lines =
      answerTo({"lines", "small.xml", "--alignment", "Axis", "--name", "Every 40", "--every", "40", "--json"});
  EXPECT_EQ(lines["group"], json::parse(R"({"name": "Every 40", "alignment": "Axis", "lines": 3, "leastStation": 1000.0,
                            "greatestStation": 1080.0})"));
  EXPECT_THAT(pathsOf(lines), ElementsAre("small.xml"));
  const json points =
      answerTo({"group", "small.xml", "--name", "Some", "--points", "1-3", "--save", "saved.xml", "--json"});
  EXPECT_EQ(points["group"], json::parse(R"({"name": "Some", "points": 3})"));
  EXPECT_THAT(pathsOf(points), ElementsAre("saved.xml"));
}

TEST_F(AnswerTest, HoldsTheTranscriptOfAScript) {
  write("script.json", R"([{"command": "lvx_Report_Points"}, {"click": 2}])");
  const RunResult plain = run({"play", "small.xml", "script.json"});
  const json answer = answerTo({"play", "small.xml", "script.json", "--json"});
  std::string lines;
  const auto whole = nlohmann::ordered_json::parse(result_.output);
  for (const auto& event : whole["events"]) lines += event.dump() + "\n";
  EXPECT_EQ(lines, plain.output);
  EXPECT_GE(answer["events"].size(), 2U);
}

TEST_F(AnswerTest, IsGivenOnEveryWayToFail) {
  write("broken.xml", "<LandXML");
  write("script.json", R"([{"close": true}])");
  struct Row {
    std::vector<std::string> arguments;
    int code;
    std::string words;
  };
  const std::vector<Row> rows{
      {{"info", "missing.xml", "--json"}, 3, "missing.xml"},
      {{"info", "broken.xml", "--json"}, 3, "broken.xml"},
      {{"info", "--json"}, 2, "DRAWING is required"},
      {{"nothing", "--json"}, 2, "subcommand"},
      {{"info", "small.xml", "--json", "--nothing"}, 2, "--nothing"},
      {{"points", "small.xml", "--alignment", "Axi", "--points", "1", "--out", "x", "--json"}, 4, "no alignment 'Axi'"},
      {{"points", "small.xml", "--alignment", "Axis", "--points", "1", "--out", "no/x", "--json"}, 1, "no folder"},
      {{"--keep", "--json", "info", "small.xml", "--overwrite"}, 2, "exclude each other"},
      {{"lines", "small.xml", "--alignment", "Axis", "--name", "", "--every", "5", "--json"}, 2, "needs a name"},
      {{"play", "small.xml", "missing.json", "--json"}, 2, "missing.json"},
      {{"play", "small.xml", "script.json", "--json"}, 5, "script"},
      {{"batch", "missing.jsonl", "--json"}, 2, "missing.jsonl"},
  };
  for (const Row& row : rows) {
    const json answer = answerTo(row.arguments);
    EXPECT_EQ(result_.exitCode, row.code) << row.words;
    ASSERT_FALSE(answer["diagnostics"].empty()) << row.words;
    EXPECT_EQ(answer["diagnostics"].back()["severity"], "error");
    EXPECT_THAT(answer["diagnostics"].back()["text"].get<std::string>(), HasSubstr(row.words));
    EXPECT_TRUE(answer["written"].empty());
    EXPECT_THAT(result_.errors, HasSubstr(row.words)) << "people read standard error";
  }
}

TEST_F(AnswerTest, HoldsHelpAndVersionAsText) {
  EXPECT_THAT(answerTo({"--version", "--json"})["text"].get<std::string>(), HasSubstr("lvxhost "));
  EXPECT_THAT(answerTo({"info", "--json", "--help"})["text"].get<std::string>(), HasSubstr("DRAWING"));
}

TEST_F(AnswerTest, KeepsItsDiagnosticsWhereStandardErrorIsQuiet) {
  const std::vector<std::string> arguments{"points", "small.xml", "--alignment", "Axis",        "--points", "2",
                                           "--out",  "road",      "--json",      "--overwrite", "--forms",  "txt"};
  EXPECT_EQ(answerTo(arguments)["diagnostics"].size(), 1U);
  EXPECT_THAT(result_.errors, HasSubstr("without an elevation"));
  std::vector<std::string> quiet = arguments;
  quiet.insert(quiet.end(), {"--quiet", "--progress", "always"});
  EXPECT_EQ(answerTo(quiet)["diagnostics"].size(), 1U);
  EXPECT_EQ(result_.errors, "");
}

TEST_F(AnswerTest, FailsWhereStandardOutputIsFull) {
  test::RunRequest request;
  request.program = test::inBuild("/bin/lvxhost");
  request.folder = folder_.path();
  request.arguments = {"info", "small.xml", "--json"};
  request.outputTo = "/dev/full";
  const RunResult result = test::runProgram(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write to standard output"));
}

TEST_F(AnswerTest, IsNoOptionOfAJob) {
  write(
      "jobs.jsonl",
      R"({"command": "points", "drawing": "small.xml", "alignment": "Axis", "points": "1", "out": "x", "json": true})");
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:1: \"json\" is no option of points"));
}

// ---------------------------------------------------------------- quiet

TEST_F(AnswerTest, QuietCommandsSayNothingWhereAllIsWell) {
  write("script.json", "[]");
  write("jobs.jsonl",
        R"({"command": "points", "drawing": "small.xml", "alignment": "Axis", "points": "2", "out": "x"})");
  const std::vector<std::vector<std::string>> rows{
      {"points", "small.xml", "--alignment", "Axis", "--points", "2", "--out", "road"},
      {"projection", "small.xml", "--alignment", "Axis", "--lines", "every=40,left=90,right=9", "--surface", "Ground",
       "--out", "ground"},
      {"gls", "small.xml", "--alignment", "Axis", "--profile", "Design", "--lines", "every=40", "--out", "gls"},
      {"lines", "small.xml", "--alignment", "Axis", "--name", "L", "--pvis", "--border", "Ground", "--save", "l.xml"},
      {"group", "small.xml", "--name", "G", "--points", "1", "--save", "g.xml"},
      {"batch", "jobs.jsonl"},
      {"play", "small.xml", "script.json"},
  };
  for (std::vector<std::string> arguments : rows) {
    arguments.emplace_back("--quiet");
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments.front() << ": " << result.errors;
    EXPECT_EQ(result.output, "") << arguments.front();
    EXPECT_EQ(result.errors, "") << arguments.front();
  }
}

}  // namespace
}  // namespace lvx::cli
