// The real program over small drawings: exit codes, words, files.
#include <filesystem>
#include <fstream>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunRequest;
using test::RunResult;
using testing::HasSubstr;
using testing::Not;

const fs::path kProgram = fs::path(test::inBuild("/bin/lvxhost"));
const std::string kDrawing = test::inSource("/tests/cli/drawings/crossing.xml");

class LvxhostTest : public testing::Test {
 protected:
  [[nodiscard]] RunResult run(std::vector<std::string> arguments) {
    request_.program = kProgram;
    request_.arguments = std::move(arguments);
    request_.environment.try_emplace("SOURCE_DATE_EPOCH", "86400");
    return test::runProgram(request_);
  }
  /// The report of Axis with `more` behind it.
  [[nodiscard]] RunResult report(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"projection", kDrawing,    "--alignment", "Axis",  "--group",
                                       "Lines",      "--surface", "Ground",      "--out", stem()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  [[nodiscard]] std::string stem() const { return (folder_ / "road").string(); }
  [[nodiscard]] bool written(const std::string& form) const { return fs::exists(stem() + "." + form); }
  void put(const std::string& form, const std::string& text) const { std::ofstream(stem() + "." + form) << text; }
  [[nodiscard]] std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
  }

  test::TemporaryFolder folder_;
  RunRequest request_;
};

// ---------------------------------------------------------------- the reports

constexpr const char* kTextReport =
    "*******************************************************\r\n"
    "* Profile projection\r\n"
    "* Vantor Lorvix 2021\r\n"
    "* File   : ./road.txt\r\n"
    "* Date   : 02.01.1970\r\n"
    "* Time   : 00:00:00\r\n"
    "*******************************************************\r\n"
    "\r\n"
    "\r\n"
    "first   1+010.000\r\n"
    "   -10.000    51.500\r\n"
    "     0.000    51.000\r\n"
    "    10.000    50.500\r\n"
    "&\r\n"
    // A percent sign starts a conversion, and a letter beyond the code page ends its heading.
    "100& <   -10.000    51.500\r\n"
    "     0.000    51.000\r\n"
    "    10.000    50.500\r\n";

TEST_F(LvxhostTest, WritesTheTextReportToTheByte) {
  request_.folder = folder_.path();
  const RunResult result =
      run({"projection", kDrawing, "--alignment", "Axis", "--group", "Lines", "--surface", "Ground", "--out", "road"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(fileBytes(stem() + ".txt"), kTextReport);
  EXPECT_EQ(
      result.errors,
      "lvxhost: warning: sample line '100% & <Ω>': the reports' code page has no letter 'Ω' (U+03A9); the text form "
      "loses the rest of the line and the page form ends there; the workbook is whole, and --report-code-page names "
      "another code page\n");
}

TEST_F(LvxhostTest, ListsEveryFileWithItsSize) {
  const RunResult result = report();
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  std::string expected;
  for (const char* form : {"txt", "xls", "html"}) {
    const std::string path = stem() + "." + form;
    expected += path + "  " + std::to_string(fs::file_size(path)) + " bytes\n";
  }
  EXPECT_EQ(result.output, expected);
  EXPECT_EQ(fileCount(), 3U);
}

TEST_F(LvxhostTest, WritesOnlyTheFormsAskedFor) {
  EXPECT_EQ(report({"--forms", "html,txt"}).exitCode, 0);
  EXPECT_TRUE(written("txt"));
  EXPECT_FALSE(written("xls"));
  EXPECT_TRUE(written("html"));
}

TEST_F(LvxhostTest, GivesTheSameBytesAgainUnderAnyLocale) {
  EXPECT_EQ(report().exitCode, 0);
  std::vector<std::string> first;
  for (const char* form : {"txt", "html"}) first.push_back(fileBytes(stem() + "." + form));
  for (const char* locale : {"C", "de_DE.UTF-8", "tr_TR.UTF-8"}) {
    SCOPED_TRACE(locale);
    request_.environment["LC_ALL"] = locale;
    EXPECT_EQ(report({"--overwrite"}).exitCode, 0);
    EXPECT_EQ(fileBytes(stem() + ".txt"), first[0]);
    EXPECT_EQ(fileBytes(stem() + ".html"), first[1]);
  }
}

TEST_F(LvxhostTest, SpeaksTheLanguageAskedFor) {
  EXPECT_EQ(report({"--forms", "txt", "--lang", "de"}).exitCode, 0);
  EXPECT_THAT(fileBytes(stem() + ".txt"), HasSubstr("* Datei"));
}

TEST_F(LvxhostTest, TakesAMessageFileOfAnyName) {
  std::ofstream(folder_ / "words.txt") << "101 Own title\n118 Path\n";
  EXPECT_EQ(report({"--forms", "txt", "--messages", (folder_ / "words.txt").string()}).exitCode, 0);
  const std::string text = fileBytes(stem() + ".txt");
  EXPECT_THAT(text, HasSubstr("* Own title\r\n"));
  EXPECT_THAT(text, HasSubstr("* *119*  : 02.01.1970\r\n"));
}

TEST_F(LvxhostTest, ReplacesNoReportWhereItsWordsCanNotBeRead) {
  ASSERT_EQ(report({}).exitCode, 0);
  const std::string before = fileBytes(stem() + ".txt");
  const RunResult result = report({"--overwrite", "--messages", "/proc/self/mem"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("the words of reports couldn't be read from '/proc/self/mem'"));
  EXPECT_THAT(result.errors, Not(HasSubstr("a place that can be written")));
  EXPECT_EQ(fileBytes(stem() + ".txt"), before);
}

TEST_F(LvxhostTest, ShowsTheReleaseGiven) {
  EXPECT_EQ(report({"--forms", "txt", "--release", "R7.3.5"}).exitCode, 0);
  EXPECT_THAT(fileBytes(stem() + ".txt"), HasSubstr("* Vantor Lorvix 7.3.5\r\n"));
  EXPECT_EQ(report({"--forms", "txt", "--release", "", "--overwrite"}).exitCode, 0);
  EXPECT_THAT(fileBytes(stem() + ".txt"), HasSubstr("* Vantor Lorvix \r\n"));
}

TEST_F(LvxhostTest, OptionsMayStandBeforeTheCommand) {
  const RunResult result = run({"--forms", "txt", "--quiet", "projection", kDrawing, "--alignment", "Axis", "--group",
                                "Lines", "--surface", "Ground", "--out", stem()});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(fileCount(), 1U);
  EXPECT_EQ(result.output, "");
}

TEST_F(LvxhostTest, ASampleLineOffTheGroundHasItsHeadingAlone) {
  EXPECT_EQ(run({"projection", kDrawing, "--alignment", "Axis", "--group", "Far", "--surface", "Ground", "--out",
                 stem(), "--forms", "txt"})
                .exitCode,
            0);
  EXPECT_TRUE(fileBytes(stem() + ".txt").ends_with("\r\n\r\n\r\noff the ground   1+090.000\r\n"));
}

TEST_F(LvxhostTest, WritesTheReportsOfTheExample) {
  const RunResult result = run({"projection", test::inSource("/examples/valley-road.xml"), "--alignment", "Valley road",
                                "--group", "Cross sections 20 m", "--surface", "Existing ground", "--out", stem()});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(fileCount(), 3U);
  EXPECT_GT(fs::file_size(stem() + ".txt"), 50000U);
}

// ---------------------------------------------------------------- names

TEST_F(LvxhostTest, UnknownNamesListWhatThereIsClosestFirst) {
  struct Row {
    const char* what;
    std::vector<std::string> arguments;
    const char* words;
  };
  const std::vector<Row> rows{
      {"alignment", {"--alignment", "axsi", "--group", "Lines", "--surface", "Ground"}, "there is 'Axis', "},
      {"site",
       {"--alignment", "Axis", "--site", "Nord", "--group", "Lines", "--surface", "Ground"},
       "no site 'Nord' with alignments; there is 'North'"},
      {"alignment of a site",
       {"--alignment", "Axis", "--site", "South", "--group", "Lines", "--surface", "Ground"},
       "no alignment 'Axis' in site 'South'; there is 'Twin'"},
      {"group",
       {"--alignment", "Axis", "--group", "Line", "--surface", "Ground"},
       "no sample line group 'Line' on alignment 'Axis'; there is 'Lines', 'Far'"},
      {"surface",
       {"--alignment", "Axis", "--group", "Lines", "--surface", "ground"},
       "no surface 'ground' in the drawing; there is 'Ground'"},
      {"ambiguous",
       {"--alignment", "Twin", "--group", "Lines", "--surface", "Ground"},
       "--site says which is meant: no site (--site \"\"), site 'North', site 'South'"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    std::vector<std::string> arguments{"projection", kDrawing, "--out", stem()};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_THAT(result.errors, HasSubstr(row.words));
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, AnEmptySiteIsTheRowOfTheAlignmentsWithoutOne) {
  for (const char* language : {"en", "de"}) {
    const RunResult result = run({"projection", kDrawing, "--alignment", "Twin", "--site", "", "--group", "Lines",
                                  "--surface", "Ground", "--out", stem(), "--overwrite", "--lang", language});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(fileBytes(stem() + ".txt"), HasSubstr("loose twin   0+030.000\r\n"));
  }
}

// ---------------------------------------------------------------- what can't be written

TEST_F(LvxhostTest, KeepsWhatExistsUnlessToldOtherwise) {
  put("txt", "former");
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, std::vector<std::string>{"--keep"}}) {
    const RunResult result = report(more);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("kept '" + stem() + ".txt', which exists"));
    EXPECT_EQ(fileBytes(stem() + ".txt"), "former");
    EXPECT_TRUE(written("html"));
    fs::remove(stem() + ".html");
    fs::remove(stem() + ".xls");
  }
  EXPECT_EQ(report({"--overwrite"}).exitCode, 0);
  EXPECT_NE(fileBytes(stem() + ".txt"), "former");
}

TEST_F(LvxhostTest, AsksOnATerminalForEachFile) {
  for (const char* form : {"txt", "xls", "html"}) put(form, "former");
  request_.program = kProgram;
  request_.arguments = {"projection", kDrawing,    "--alignment", "Axis",  "--group",
                        "Lines",      "--surface", "Ground",      "--out", stem()};
  const RunResult result = test::runOnTerminal(request_, "[y/N] ", {"y", "n", ""});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr(stem() + ".txt already exists"));
  EXPECT_NE(fileBytes(stem() + ".txt"), "former");
  EXPECT_EQ(fileBytes(stem() + ".xls"), "former");
  EXPECT_EQ(fileBytes(stem() + ".html"), "former");
}

TEST_F(LvxhostTest, AWorkbookThatCantBeOpenedMayBeTriedAgainOnATerminal) {
  fs::create_directory(stem() + ".xls");
  request_.program = kProgram;
  request_.arguments = {"projection", kDrawing, "--alignment", "Axis",    "--group",  "Lines",      "--surface",
                        "Ground",     "--out",  stem(),        "--forms", "xls,html", "--overwrite"};
  const RunResult result = test::runOnTerminal(request_, "[y/N] ", {"y", "n"});
  EXPECT_EQ(result.exitCode, 1);
  const std::string asked = stem() + ".xls ";
  EXPECT_NE(result.output.find(asked, result.output.find(asked) + 1), std::string::npos) << result.output;
  EXPECT_TRUE(written("html"));
}

TEST_F(LvxhostTest, AMissingFolderIsToldAndNothingIsWritten) {
  const RunResult result = run({"projection", kDrawing, "--alignment", "Axis", "--group", "Lines", "--surface",
                                "Ground", "--out", (folder_ / "nowhere").string() + "/road"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("there is no folder '" + (folder_ / "nowhere").string() + "'"));
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, AFullDiskIsToldAndTheOtherFormsAreWritten) {
  fs::create_symlink("/dev/full", stem() + ".txt");
  const RunResult result = report({"--overwrite"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write '" + stem() + ".txt': No space left on device"));
  EXPECT_TRUE(written("xls"));
  EXPECT_TRUE(written("html"));
}

TEST_F(LvxhostTest, AWorkbookThatCantBeReplacedIsToldAndTheOtherFormsAreWritten) {
  fs::create_directory(stem() + ".xls");
  const RunResult result = report({"--overwrite"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write '" + stem() + ".xls': Is a directory"));
  EXPECT_TRUE(written("txt"));
  EXPECT_TRUE(written("html"));
}

TEST_F(LvxhostTest, AFileWhereTheFolderShouldBeIsTold) {
  std::ofstream(folder_ / "file") << "x";
  const RunResult result = run({"projection", kDrawing, "--alignment", "Axis", "--group", "Lines", "--surface",
                                "Ground", "--out", (folder_ / "file").string() + "/road"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("'" + (folder_ / "file").string() + "' is no folder"));
  EXPECT_EQ(result.output, "");
}

TEST_F(LvxhostTest, AWorkbookThatFailsToBeSavedEndsTheCommandAndIsTold) {
  // Too long for a file name, so neither form can be put in place.
  const std::string tooLong = (folder_ / std::string(252, 'a')).string();
  const RunResult result = run({"projection", kDrawing, "--alignment", "Axis", "--group", "Lines", "--surface",
                                "Ground", "--out", tooLong, "--forms", "xls,html"});
  EXPECT_EQ(result.exitCode, 70);
  EXPECT_THAT(result.errors, HasSubstr("can't write '" + tooLong + ".xls'"));
  EXPECT_THAT(result.errors, HasSubstr("'" + tooLong + ".html' was not written"));
  EXPECT_THAT(result.errors, HasSubstr("the command ended by an exception"));
  EXPECT_THAT(result.errors,
              HasSubstr("make '" + tooLong + ".xls' a place that can be written, or leave the workbook out"));
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, StandardOutputThatTakesNothingIsAnError) {
  request_.outputTo = "/dev/full";
  RunResult result = run({"info", kDrawing});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write to standard output: No space left on device"));
  request_.outputTo.clear();
  request_.closeOutput = true;
  result = report();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("can't write to standard output"));
  // The report itself isn't what went to the closed stream's number.
  EXPECT_THAT(fileBytes(stem() + ".txt"), Not(HasSubstr("bytes\n")));
}

// ---------------------------------------------------------------- drawings that can't be read

TEST_F(LvxhostTest, DrawingsThatCantBeReadAreToldWithTheirPlace) {
  const auto make = [&](const std::string& name, const std::string& text) {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return (folder_ / name).string();
  };
  const std::string whole = fileBytes(kDrawing);
  const std::vector<std::string> drawings{(folder_ / "missing.xml").string(),
                                          make("empty.xml", ""),
                                          make("text.xml", "no drawing at all"),
                                          make("other.xml", "<svg/>"),
                                          make("cut.xml", whole.substr(0, whole.size() / 2)),
                                          folder_.path().string()};
  const std::size_t before = fileCount();
  for (const std::string& drawing : drawings) {
    SCOPED_TRACE(drawing);
    RunResult result = run({"info", drawing});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.errors, HasSubstr(drawing));
    EXPECT_EQ(result.output, "");
    result =
        run({"projection", drawing, "--alignment", "Axis", "--group", "Lines", "--surface", "Ground", "--out", stem()});
    EXPECT_EQ(result.exitCode, 3);
  }
  EXPECT_EQ(fileCount(), before);
}

// ---------------------------------------------------------------- usage

TEST_F(LvxhostTest, UsageErrorsEndWithTwo) {
  const std::vector<std::vector<std::string>> rows{{},
                                                   {"nothing"},
                                                   {"info"},
                                                   {"info", kDrawing, "--unknown"},
                                                   {"projection", kDrawing},
                                                   {"info", kDrawing, "--forms", "pdf"},
                                                   {"info", kDrawing, "--forms", ""},
                                                   {"info", kDrawing, "--lang", "xx"},
                                                   {"info", kDrawing, "--progress", "sometimes"},
                                                   {"info", kDrawing, "--keep", "--overwrite"},
                                                   {"--keep", "info", kDrawing, "--overwrite"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row));
    const RunResult result = run(row);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.errors, "");
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(report({"--report-code-page", "NO-SUCH-PAGE"}).exitCode, 2);
  EXPECT_EQ(report({"--messages", "missing.txt"}).exitCode, 2);
  for (const char* badStem : {"", "/tmp/"})
    EXPECT_EQ(run({"projection", kDrawing, "--alignment", "Axis", "--group", "Lines", "--surface", "Ground", "--out",
                   badStem})
                  .exitCode,
              2);
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, RefusesAnEpochThatIsNoNumber) {
  for (const char* epoch : {"yesterday", "12x", "-5", "1e9"}) {
    request_.environment["SOURCE_DATE_EPOCH"] = epoch;
    const RunResult result = report();
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.errors, HasSubstr(std::string("SOURCE_DATE_EPOCH is '") + epoch + "'"));
  }
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, HelpTeachesByExample) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, std::vector<std::string>{"info", "--help"},
        std::vector<std::string>{"projection", "--help"}}) {
    const RunResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("Example"));
    EXPECT_THAT(result.output, HasSubstr("  lvxhost " + (arguments.size() > 1 ? arguments[0] : "info") + " "));
    EXPECT_EQ(result.errors, "");
  }
  EXPECT_THAT(run({"--version"}).output, HasSubstr("lvxhost 1."));
}

TEST_F(LvxhostTest, AModuleThatCantBeLoadedIsTold) {
  const RunResult result = report({"--module", kDrawing});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("module: " + kDrawing));
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(LvxhostTest, ProgressGoesToStandardErrorWhereItIsAskedFor) {
  const RunResult result = run({"info", test::inSource("/examples/valley-road.xml"), "--progress", "always"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("valley-road.xml: 100 %"));
  EXPECT_EQ(run({"info", test::inSource("/examples/valley-road.xml")}).errors, "");
}

// ---------------------------------------------------------------- info

TEST_F(LvxhostTest, InfoTellsWhatADrawingHolds) {
  const RunResult result = run({"info", kDrawing});
  EXPECT_EQ(result.exitCode, 0);
  for (const char* words :
       {"(unit: meter)", "without a site\n", "site 'North'\n",
        "alignment 'Axis'  station 1000.000 to 1100.000, length 100.000", "1  line  1000.000  100.000",
        "'Design'  design  1000.000 to 1100.000  2 points", "'Lines'  2 lines  1010.000 to 1050.000",
        "'Ground'  4 points, 2 triangles", "x 90.000 to 170.000, y 480.000 to 520.000, elevation 50.000 to 52.000",
        "points  2, numbers 1 to 2", "1 of them without an elevation"})
    EXPECT_THAT(result.output, HasSubstr(words));
}

TEST_F(LvxhostTest, InfoTellsWhereTheReaderFoundSomethingOdd) {
  const std::string path = (folder_ / "odd.xml").string();
  std::ofstream(path) << "<LandXML version=\"1.2\">\n<Surfaces>\n<Surface name=\"S\"><Definition surfType=\"TIN\">"
                         "<Pnts><P id=\"1\">0 0 0</P><P id=\"2\">0 1 0</P><P id=\"3\">1 0 0</P></Pnts>\n"
                         "<Faces><F>1 2 3</F><F>1 2 9</F></Faces></Definition></Surface></Surfaces></LandXML>";
  const RunResult result = run({"info", path});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("diagnostics\n"));
  EXPECT_THAT(result.output, HasSubstr(path + ":"));
  const auto json = nlohmann::json::parse(run({"info", path, "--json"}).output);
  EXPECT_FALSE(json["diagnostics"].empty());
}

TEST_F(LvxhostTest, InfoHasAFormThatProgramsRead) {
  const RunResult result = run({"info", kDrawing, "--json"});
  EXPECT_EQ(result.exitCode, 0);
  const auto json = nlohmann::json::parse(result.output);
  EXPECT_EQ(json["linearUnit"], "meter");
  ASSERT_EQ(json["sites"].size(), 3U);
  EXPECT_EQ(json["sites"][0]["name"], "");
  const auto& axis = json["sites"][1]["alignments"][0];
  EXPECT_EQ(axis["name"], "Axis");
  EXPECT_EQ(axis["startStation"], 1000.0);
  EXPECT_EQ(axis["elements"][0]["kind"], "line");
  EXPECT_TRUE(axis["elements"][0]["startRadius"].is_null());
  EXPECT_EQ(axis["sampleLineGroups"][0]["lines"], 2);
  EXPECT_EQ(json["surfaces"][0]["triangles"], 2);
  EXPECT_EQ(json["surfaces"][0]["box"]["maxY"], 520.0);
  EXPECT_EQ(json["points"]["withoutElevation"], 1);
  EXPECT_TRUE(json["diagnostics"].is_array());
}

}  // namespace
}  // namespace lvx::cli
