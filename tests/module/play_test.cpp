// The example scripts through the real program: every list, selection, box and prompt of each transcript is golden.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/golden.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A transcript without the size of workbooks, which is up to the compression library.
std::string withoutWorkbookSizes(const std::string& transcript) {
  const std::string mark = ".xls\",\"bytes\":";
  std::string text;
  std::size_t from = 0;
  for (std::size_t at = transcript.find(mark); at != std::string::npos; at = transcript.find(mark, from)) {
    const std::size_t number = at + mark.size();
    const std::size_t end = transcript.find_first_not_of("0123456789", number);
    // A workbook that was only tried for writing has no bytes yet; that stays.
    const bool empty = transcript.compare(number, end - number, "0") == 0;
    text += transcript.substr(from, number - from) + (empty ? "0" : "\"some\"");
    from = end;
  }
  return text + transcript.substr(from);
}

testing::AssertionResult matchesTranscript(const test::RunResult& result, const std::string& golden) {
  return test::matchesGolden(withoutWorkbookSizes(result.output), golden);
}

class PlayTest : public testing::Test {
 protected:
  PlayTest() { std::filesystem::create_directory(folder_ / "out"); }

  test::RunResult play(const std::filesystem::path& script, std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments{"play", test::inSource("/examples/valley-road.xml"), script.string(), "--check",
                                       "--quiet"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    // The same transcripts hold where the dialogs are windows.
    if (std::getenv("LVX_PLAY_IN_WINDOWS") != nullptr) arguments.emplace_back("--windows");
    test::RunRequest request;
    request.program = test::inBuild("/bin/lvxhost");
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "1767225600"}};
    request.folder = folder_.path();
    return test::runProgram(request);
  }
  test::RunResult playExample(const std::string& name, std::vector<std::string> more = {}) const {
    return play(test::inSource("/examples/scripts/") + name + ".json", std::move(more));
  }
  test::RunResult playText(const std::string& json) const {
    std::ofstream(folder_ / "script.json") << json;
    return play(folder_ / "script.json");
  }
  [[nodiscard]] bool stands(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
  void make(const std::string& name) const { std::ofstream(folder_ / name) << "old"; }

  test::TemporaryFolder folder_;
};

TEST_F(PlayTest, SaysWhereDialogsCannotBeWindows) {
  if (std::getenv("LVX_TEST_BUILD") != nullptr) GTEST_SKIP() << "this build is for a system that has windows";
  const test::RunResult result = playExample("help-button", {"--windows"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.errors.find("--windows: this system has no windows"), std::string::npos) << result.errors;
  EXPECT_EQ(result.output, "");
}

TEST_F(PlayTest, SaysWhereNoSpreadsheetProgramCanBeWorked) {
  if (std::getenv("LVX_TEST_BUILD") != nullptr) GTEST_SKIP() << "this build is for a system that can work programs";
  const test::RunResult result = playExample("plain-run", {"--workbook", "excel"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.errors.find("--workbook excel: on this system no spreadsheet program can be worked"),
            std::string::npos)
      << result.errors;
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out/plain.txt"));
}

TEST_F(PlayTest, PlainRunWritesAllThreeForms) {
  const test::RunResult result = playExample("plain-run");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/plain-run/transcript.jsonl"));
  for (const char* form : {"out/road.txt", "out/road.xls", "out/road.html"}) EXPECT_TRUE(stands(form)) << form;
}

TEST_F(PlayTest, PicksAndAnEscapeLeadBackToTheDialogWithItsSelections) {
  const test::RunResult result = playExample("picks-and-escape");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/picks-and-escape/transcript.jsonl"));
  EXPECT_FALSE(stands("out/picked.xls"));
}

TEST_F(PlayTest, AWrongClassShowsItsErrorBoxAndPromptsAgain) {
  const test::RunResult result = playExample("wrong-class-pick");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/wrong-class-pick/transcript.jsonl"));
}

TEST_F(PlayTest, OverwritingIsAskedForEachFormAndAnsweredBothWays) {
  const test::RunResult result = playExample("overwrite");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/overwrite/transcript.jsonl"));
}

TEST_F(PlayTest, AWorkbookThatCannotBeWrittenIsTriedAgainUntilCancel) {
  std::filesystem::create_directories(folder_ / "out/held.xls/in the way");
  const test::RunResult result = playExample("retry-box");
  EXPECT_TRUE(matchesTranscript(result, "scripts/retry-box/transcript.jsonl"));
  EXPECT_TRUE(stands("out/held.html")) << "the page comes all the same";
}

TEST_F(PlayTest, AStemWithoutAFolderIsTheOnePathFailureThatIsTold) {
  const test::RunResult result = playExample("stem-without-folder");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/stem-without-folder/transcript.jsonl"));
  EXPECT_FALSE(stands("road.txt"));
}

TEST_F(PlayTest, AMissingFolderEndsTheCommandWithoutAWord) {
  const test::RunResult result = playExample("missing-folder");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/missing-folder/transcript.jsonl"));
}

TEST_F(PlayTest, TheFileBoxCutsTheKnownExtensionsAndKeepsTheOthers) {
  const test::RunResult result = playExample("file-box");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/file-box/transcript.jsonl"));
}

TEST_F(PlayTest, TheHelpButtonShowsThePageOfItsDialog) {
  const test::RunResult result = playExample("help-button");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/help-button/transcript.jsonl"));
}

TEST_F(PlayTest, AChangeOfAlignmentLeavesTheGroupUnselectedWhileOkStaysEnabled) {
  const test::RunResult result = playExample("change-of-alignment", {"--forms", "txt"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/change-of-alignment/transcript.jsonl"));
}

TEST_F(PlayTest, ThePointsOfAChosenGroupAreWritten) {
  const test::RunResult result = playExample("points-of-a-group");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/points-of-a-group/transcript.jsonl"));
  EXPECT_TRUE(stands("out/stones.txt"));
  EXPECT_FALSE(stands("out/stones.xls"));
}

TEST_F(PlayTest, PickedPointsWinAtEachOpeningAlsoBehindAPickOfAnAlignment) {
  const test::RunResult result = playExample("points-picked");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/points-picked/transcript.jsonl"));
  for (const char* form : {"out/picked.txt", "out/picked.xls", "out/picked.html"}) EXPECT_TRUE(stands(form)) << form;
}

TEST_F(PlayTest, APickOfPointsThatIsGivenUpLeavesNoneAndNoFile) {
  const test::RunResult result = playExample("points-pick-given-up");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/points-pick-given-up/transcript.jsonl"));
  for (const char* form : {"out/nothing.txt", "out/nothing.xls", "out/nothing.html"}) EXPECT_FALSE(stands(form));
}

TEST_F(PlayTest, ThePointsDialogComesBackAfterAPathThatLeadsNowhere) {
  const test::RunResult result = playExample("points-path-failures");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/points-path-failures/transcript.jsonl"));
  EXPECT_TRUE(stands("out/points.html"));
  EXPECT_FALSE(stands("out/points.txt"));
}

TEST_F(PlayTest, TheGlsReportOfAChosenProfileIsWritten) {
  const test::RunResult result = playExample("gls-run");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/gls-run/transcript.jsonl"));
  for (const char* form : {"out/gls.txt", "out/gls.xls", "out/gls.html"}) EXPECT_TRUE(stands(form)) << form;
}

TEST_F(PlayTest, TheQuestionAboutSectionsIsAnsweredNoAndThenYesInOneDrawing) {
  const test::RunResult result = playExample("gls-add-sections");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/gls-add-sections/transcript.jsonl"));
  for (const char* stem : {"out/as-it-is", "out/with-sections"})
    for (const char* form : {".txt", ".xls", ".html"}) EXPECT_TRUE(stands(std::string(stem) + form)) << stem << form;
}

TEST_F(PlayTest, AProfileIsPickedBehindAWrongClassAndBringsItsAlignment) {
  const test::RunResult result = playExample("gls-picks");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_TRUE(matchesTranscript(result, "scripts/gls-picks/transcript.jsonl"));
  EXPECT_TRUE(stands("out/gls-picked.txt"));
  EXPECT_FALSE(stands("out/gls-picked.xls"));
}

TEST_F(PlayTest, EveryExampleScriptIsPlayedHere) {
  int scripts = 0;
  for (const auto& entry : std::filesystem::directory_iterator(test::inSource("/examples/scripts"))) {
    if (entry.path().extension() != ".json") continue;
    ++scripts;
    EXPECT_TRUE(std::filesystem::exists(test::goldenFolder() + "/scripts/" + entry.path().stem().string()))
        << entry.path();
  }
  EXPECT_GE(scripts, 17);
}

TEST_F(PlayTest, DialogsAreInTheLanguageThatWasAskedFor) {
  const test::RunResult result = playExample("help-button", {"--lang", "de"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("Abbrechen"));
}

TEST_F(PlayTest, AScriptThatDoesNotFitEndsWithFiveAndSaysWhatWaits) {
  struct Row {
    const char* script;
    const char* words;
  };
  const Row rows[] = {
      {R"([{"click": 1}])", "action 1 (click) doesn't fit: no command runs"},
      {R"([{"command": "lvx_Report_Nothing"}])", "the module has no command 'lvx_Report_Nothing'"},
      {R"([{"command": "lvx_Report_Que"}])", "it ends while the dialog CMyDialog1 waits"},
      {R"([{"command": "lvx_Report_Que"}, {"answer": "yes"}])", "action 2 (answer) doesn't fit: the dialog CMyDialog1"},
      {R"([{"command": "lvx_Report_Que"}, {"click": 4711}])", "has no control of that number (4711)"},
      {R"([{"command": "lvx_Report_Que"}, {"click": 1}])", "has that control disabled (1)"},
      {R"([{"command": "lvx_Report_Que"}, {"select": 261, "text": "Nowhere"}])", "has no such row in that list (261)"},
      {R"([{"command": "lvx_Report_Que"}, {"click": 126}, {"click": 1}])", "a pick in the drawing waits"},
      {R"([{"command": "lvx_Report_Que"}, {"click": 126}, {"pick": "xyz"}])", "'xyz' is no handle"},
      {R"([{"command": "lvx_Report_Que"}, {"click": 233}, {"click": 1}])", "the file box waits"},
  };
  for (const Row& row : rows) {
    const test::RunResult result = playText(row.script);
    EXPECT_EQ(result.exitCode, 5) << row.script;
    EXPECT_THAT(result.errors, HasSubstr(row.words)) << row.script;
    EXPECT_THAT(result.output, Not(HasSubstr("misuse"))) << row.script;
  }
}

TEST_F(PlayTest, AScriptThatCannotBeReadIsAUsageError) {
  EXPECT_EQ(play(folder_ / "nobody.json").exitCode, 2);
  EXPECT_EQ(playText("[{").exitCode, 2);
  EXPECT_EQ(playText(R"([{"clik": 1}])").exitCode, 2);
}

}  // namespace
}  // namespace lvx
