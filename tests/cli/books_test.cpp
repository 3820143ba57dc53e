// lvxhost sections and lvxhost profile: what stands in the books, and what is left where one can't be made.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "made_drawing.h"

namespace lvx::cli {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::RunResult;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class BooksTest : public BareDrawingTest {
 protected:
  BooksTest() { fs::create_directory(folder_ / "out"); }

  [[nodiscard]] RunResult sections(const std::vector<std::string>& more) const {
    return over({"sections", road_, "--alignment", "Valley road", "--group", "Cross sections 20 m"}, more);
  }
  [[nodiscard]] RunResult profile(const std::vector<std::string>& more) const {
    return over({"profile", road_, "--alignment", "Valley road"}, more);
  }
  [[nodiscard]] RunResult over(std::vector<std::string> arguments, const std::vector<std::string>& more) const {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }
  [[nodiscard]] RunResult other(const std::string& program, std::vector<std::string> arguments) const {
    test::RunRequest request;
    request.program = program;
    request.folder = folder_.path();
    request.arguments = std::move(arguments);
    request.environment = {{"TZ", "UTC"}, {"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  [[nodiscard]] RunResult shell(const std::string& script) const {
    return other("/bin/sh", {"-c", script, test::inBuild("/bin/lvxhost"), road_});
  }
  [[nodiscard]] std::string textOf(const std::string& pdf) const {
    const RunResult result = other("/usr/bin/pdftotext", {"-layout", pdf, "-"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
  }
  [[nodiscard]] std::string factsOf(const std::string& pdf) const {
    const RunResult result = other("/usr/bin/pdfinfo", {pdf});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_ / "out")) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  std::string road_ = test::inSource("/examples/valley-road.xml");
};

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// ---------------------------------------------------------------- what stands in a book

TEST_F(BooksTest, HoldEverySectionWithItsTitleBlock) {
  const RunResult result = sections({"--from", "1+100", "--to", "1+300", "--out", "out/s.pdf", "--per-sheet", "2"});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("6 sheets, A3, 1:500\nout/s.pdf  "));
  EXPECT_THAT(factsOf("out/s.pdf"),
              AllOf(HasSubstr("Pages:           6"), HasSubstr("Title:           Cross sections - Valley road"),
                    HasSubstr("Fri Jan  2 00:00:00 1970"), HasSubstr("1190.55 x 841.89 pts (A3)")));
  const std::string text = textOf("out/s.pdf");
  for (const char* const part : {"Station 1+100.000", "Station 1+300.000", "valley-road.xml", "Valley road", "6 of 6",
                                 "1970-01-02", "Existing ground", "Design", "Offset", "Elevation", "Datum"})
    EXPECT_THAT(text, HasSubstr(part));
  EXPECT_EQ(countOf(text, "Station "), 11U);
}

TEST_F(BooksTest, HaveTheReportsGround) {
  ASSERT_EQ(over({"sections", "small.xml", "--alignment", "Axis", "--lines", "stations=1+040,left=10,right=20", "--out",
                  "out/s.pdf"},
                 {})
                .exitCode,
            0);
  // The plane of the drawing: 10 + 0.05 (easting - 60) + 0.1 (northing - 500).
  const std::string text = textOf("out/s.pdf");
  for (const char* const part : {"15.50", "16.00", "17.00", "-10.00", "20.00", "Station 1+040.000"})
    EXPECT_THAT(text, HasSubstr(part));
}

TEST_F(BooksTest, AreWrittenAsOneSvgForEachSheetInMillimetres) {
  const RunResult result =
      sections({"--from", "1+100", "--to", "1+200", "--out", "out/s.svg", "--paper", "500x400", "--per-sheet", "3"});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(names(), ElementsAre("s-01.svg", "s-02.svg"));
  EXPECT_THAT(result.output, HasSubstr("out/s-01.svg  "));
  EXPECT_THAT(fileBytes(folder_ / "out/s-02.svg"), HasSubstr(R"(width="500mm" height="400mm" viewBox="0 0 500 400")"));
}

TEST_F(BooksTest, HoldTheLongSectionCutIntoSheets) {
  const RunResult result = profile({"--out", "out/p.pdf", "--scale", "1:500", "--paper", "A4"});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  const std::string text = textOf("out/p.pdf");
  for (const char* const part : {"Long section: Valley road design", "ground", "Difference", "Curvature", "Station",
                                 "R = 300.00", "A = 150.00", "1:500 / 1:50", "Datum", "%"})
    EXPECT_THAT(text, HasSubstr(part));
  EXPECT_GT(countOf(text, "Curvature"), 3U);
}

TEST_F(BooksTest, TakeGroundOfOtherFiles) {
  const std::vector<std::string> road{test::inSource("/examples/valley-road/road.xml"), "--with",
                                      test::inSource("/examples/valley-road/ground.xml"), "--alignment", "Valley road"};
  std::vector<std::string> first{"profile"};
  first.insert(first.end(), road.begin(), road.end());
  const RunResult profile = over(first, {"--ground-profile", "Existing ground", "--out", "out/p.pdf"});
  ASSERT_EQ(profile.exitCode, 0) << profile.errors;
  EXPECT_THAT(textOf("out/p.pdf"), HasSubstr("Existing"));
  std::vector<std::string> second{"sections"};
  second.insert(second.end(), road.begin(), road.end());
  const RunResult sections = over(second, {"--lines", "every=100,left=20,right=20", "--out", "out/s.pdf"});
  ASSERT_EQ(sections.exitCode, 0) << sections.errors;
  EXPECT_THAT(sections.errors, HasSubstr("made for this report"));
}

TEST_F(BooksTest, SpeakGerman) {
  ASSERT_EQ(sections({"--from", "1+100", "--to", "1+120", "--out", "out/s.pdf", "--lang", "de"}).exitCode, 0);
  const std::string sections = textOf("out/s.pdf");
  for (const char* const part :
       {"Querprofile", "Höhe", "Abstand", "Entwurf", "Horizont", "Blatt", "1 von 1", "Maßstab", "Zeichnung", "Achse"})
    EXPECT_THAT(sections, HasSubstr(part));
  ASSERT_EQ(profile({"--out", "out/p.pdf", "--lang", "de"}).exitCode, 0);
  const std::string profile = textOf("out/p.pdf");
  for (const char* const part : {"Längsschnitt", "Krümmung", "Differenz", "Maßstab, Länge / Höhe"})
    EXPECT_THAT(profile, HasSubstr(part));
  for (const char* const part : {"Elevation", "Sheet", "Curvature", "Scale", "Drawing"})
    EXPECT_THAT(sections + profile, Not(HasSubstr(part)));
}

TEST_F(BooksTest, KeepNamesOfAnyAlphabetAsTextThatIsFound) {
  std::string drawing = kBareDrawing;
  const std::string name = "Straße Αθήνα Москва";
  for (const std::string from : {"name=\"Axis\"", "name=\"Ground\""})
    drawing.replace(drawing.find(from), from.size(), "name=\"" + name + "\"");
  std::ofstream(folder_ / "names.xml") << drawing;
  const RunResult result = over(
      {"sections", "names.xml", "--alignment", name, "--lines", "every=40,left=5,right=5", "--out", "out/s.pdf"}, {});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(textOf("out/s.pdf"), AllOf(HasSubstr(name), HasSubstr("Straße Αθήνα"), HasSubstr("Москва")));
  EXPECT_THAT(factsOf("out/s.pdf"), HasSubstr("Cross sections - " + name));
}

TEST_F(BooksTest, AreTheSameBytesForTheSameInput) {
  for (const char* const ending : {"pdf", "svg"}) {
    const std::string a = std::string("out/a.") + ending;
    const std::string b = std::string("out/b.") + ending;
    ASSERT_EQ(sections({"--from", "1+100", "--to", "1+120", "--out", a}).exitCode, 0);
    ASSERT_EQ(sections({"--from", "1+100", "--to", "1+120", "--out", b}).exitCode, 0);
    EXPECT_FALSE(fileBytes(folder_ / a).empty());
    EXPECT_EQ(fileBytes(folder_ / a), fileBytes(folder_ / b)) << ending;
  }
}

TEST_F(BooksTest, CostOtherCommandsNothingAtTheirStart) {
  const RunResult libraries = other("/usr/bin/ldd", {test::inBuild("/bin/lvxhost")});
  ASSERT_EQ(libraries.exitCode, 0) << libraries.errors;
  EXPECT_THAT(libraries.output, Not(HasSubstr("cairo")));
}

// ---------------------------------------------------------------- what can't be

struct BadCase {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  const char* words;
};

TEST_F(BooksTest, TellWhatIsWrongAndLeaveNothing) {
  const std::vector<BadCase> cases{
      {"group",
       {"sections", road_, "--alignment", "Valley road", "--group", "Cros", "--out", "out/s.pdf"},
       4,
       "'Cross sections 20 m'"},
      {"no lines", {"sections", road_, "--alignment", "Valley road", "--out", "out/s.pdf"}, 2, "--group"},
      {"ending", {"profile", road_, "--alignment", "Valley road", "--out", "out/s.png"}, 2, "ends with .pdf or .svg"},
      {"folder",
       {"profile", road_, "--alignment", "Valley road", "--out", "none/s.pdf"},
       1,
       "there is no folder 'none'"},
      {"scale",
       {"sections", road_, "--alignment", "Valley road", "--group", "Cross sections 20 m", "--scale", "200", "--out",
        "out/s.pdf"},
       1,
       "is larger than the paper (A3) at 1:200; 1:500 fits, or A"},
      {"heights",
       {"profile", road_, "--alignment", "Valley road", "--scale", "10", "--exaggeration", "1000", "--out",
        "out/s.pdf"},
       1,
       "or less exaggeration"},
      {"range",
       {"profile", road_, "--alignment", "Valley road", "--from", "2+000", "--to", "1+000", "--out", "out/s.pdf"},
       2,
       "--from 2+000 lies behind --to 1+000"},
      {"beside",
       {"profile", road_, "--alignment", "Valley road", "--from", "90+000", "--out", "out/s.pdf"},
       1,
       "lies beside the wanted range"},
      {"no ground",
       {"sections", "small.xml", "--alignment", "Far", "--lines", "every=40,left=5,right=5", "--out", "out/s.pdf"},
       1,
       "meets a surface or a corridor"},
      {"surface",
       {"sections", road_, "--alignment", "Valley road", "--group", "Cross sections 20 m", "--surface", "Gras", "--out",
        "out/s.pdf"},
       4,
       "'Existing ground'"},
      {"paper",
       {"profile", road_, "--alignment", "Valley road", "--paper", "A9", "--out", "out/s.pdf"},
       2,
       "neither A4 to A0"},
      {"input", {"profile", "small.xml", "--alignment", "Axis", "--out", "small.pdf.xml"}, 2, "ends with .pdf or .svg"},
  };
  for (const BadCase& bad : cases) {
    const RunResult result = run(bad.arguments);
    EXPECT_EQ(result.exitCode, bad.exitCode) << bad.name << "\n" << result.errors;
    EXPECT_THAT(result.errors, HasSubstr(bad.words)) << bad.name;
    EXPECT_THAT(names(), IsEmpty()) << bad.name;
  }
}

TEST_F(BooksTest, KeepWhatStandsThereUnlessItMayBeReplaced) {
  std::ofstream(folder_ / "out/p.pdf") << "older";
  const RunResult kept = profile({"--out", "out/p.pdf"});
  EXPECT_EQ(kept.exitCode, 1);
  EXPECT_THAT(kept.errors, HasSubstr("kept 'out/p.pdf', which exists; --overwrite replaces it"));
  EXPECT_EQ(fileBytes(folder_ / "out/p.pdf"), "older");
  EXPECT_EQ(profile({"--out", "out/p.pdf", "--overwrite"}).exitCode, 0);
  EXPECT_THAT(fileBytes(folder_ / "out/p.pdf"), testing::StartsWith("%PDF"));
}

TEST_F(BooksTest, LeaveTheOlderBookWhereTheDiskIsFull) {
  for (const char* const ending : {"pdf", "svg"}) {
    fs::remove_all(folder_ / "out");
    fs::create_directory(folder_ / "out");
    const std::string old = std::string("out/s") + (std::string(ending) == "pdf" ? ".pdf" : "-01.svg");
    std::ofstream(folder_ / old) << "older";
    const RunResult result = shell(
        "ulimit -f 64; \"$0\" sections \"$1\" --alignment 'Valley road' --group 'Cross sections 20 m' --overwrite "
        "--out out/s." +
        std::string(ending));
    EXPECT_EQ(result.exitCode, 1) << ending << result.errors;
    EXPECT_THAT(result.errors,
                AllOf(HasSubstr("nothing was written: can't write 'out/s"), HasSubstr("File too large")));
    EXPECT_THAT(names(), ElementsAre(fs::path(old).filename().string()));
    EXPECT_EQ(fileBytes(folder_ / old), "older");
  }
}

TEST_F(BooksTest, LeaveNothingUnfinishedAfterCtrlC) {
  const RunResult result = shell(
      "\"$0\" sections \"$1\" --alignment 'Valley road' --lines every=0.05,left=30,right=30 --out out/s.pdf & pid=$!; "
      "i=0; until [ -n \"$(ls -A out)\" ] || [ $i -gt 6000 ]; do sleep 0.01; i=$((i + 1)); done; "
      "kill -INT $pid; wait $pid");
  EXPECT_EQ(result.exitCode, 130) << result.errors;
  EXPECT_THAT(result.errors, HasSubstr("interrupted; no unfinished file was left"));
  EXPECT_THAT(names(), IsEmpty());
}

// ---------------------------------------------------------------- in a batch

TEST_F(BooksTest, AreJobsOfABatchThatGoesOn) {
  std::ofstream(folder_ / "jobs.jsonl")
      << R"({"command": "sections", "drawing": "small.xml", "alignment": "Axis", "lines": "every=40,left=5,right=5", "surface": ["Ground"], "paper": "A4", "grid": true, "per-sheet": 1, "out": "out/s.pdf"})"
      << "\n"
      << R"({"command": "profile", "drawing": "small.xml", "alignment": "Axis", "profile": "Variant", "out": "out/p.svg"})"
      << "\n";
  const std::vector<std::string> batch{"batch", "jobs.jsonl", "--journal", "night.journal", "--summary", "night.json"};
  const RunResult first = run(batch);
  ASSERT_EQ(first.exitCode, 0) << first.errors;
  EXPECT_THAT(names(), ElementsAre("p.svg", "s.pdf"));
  EXPECT_THAT(fileBytes(folder_ / "night.json"), HasSubstr("\"done\""));
  EXPECT_THAT(factsOf("out/s.pdf"), HasSubstr("Pages:           3"));
  const std::string before = fileBytes(folder_ / "out/s.pdf");
  fs::remove(folder_ / "out/p.svg");
  std::vector<std::string> again = batch;
  again.emplace_back("--resume");
  const RunResult second = run(again);
  EXPECT_EQ(second.exitCode, 0) << second.errors;
  EXPECT_THAT(second.output, AllOf(HasSubstr("p.svg"), Not(HasSubstr("s.pdf"))));
  EXPECT_THAT(names(), ElementsAre("p.svg", "s.pdf"));
  EXPECT_EQ(fileBytes(folder_ / "out/s.pdf"), before);
}

TEST_F(BooksTest, OfTooManySheetsAreRefusedBeforeAnythingIsWritten) {
  // Ten kilometres at one level, which fit any paper by their heights.
  std::ofstream(folder_ / "flat.xml")
      << R"(<?xml version="1.0"?><LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">)"
      << R"(<Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" )"
      << R"(pressureUnit="HPA"/></Units><Alignments><Alignment name="Flat" length="10000" staStart="0"><CoordGeom><Line>)"
      << "<Start>0 0</Start><End>0 10000</End></Line></CoordGeom><Profile><ProfAlign name=\"Level\"><PVI>0 100</PVI>"
      << "<PVI>10000 100</PVI></ProfAlign></Profile></Alignment></Alignments></LandXML>";
  const auto flat = [&](const std::vector<std::string>& more) {
    return over({"profile", "flat.xml", "--alignment", "Flat"}, more);
  };
  const RunResult tooMany = flat({"--scale", "1:1", "--out", "out/p.pdf"});
  EXPECT_EQ(tooMany.exitCode, 1);
  EXPECT_THAT(tooMany.errors,
              HasSubstr("at 1:1 the long section takes more than 5000 sheets (A3); 1:10 takes fewer, or "
                        "a larger paper or a shorter range"));
  const RunResult pictures = flat({"--scale", "1:10", "--out", "out/p.svg"});
  EXPECT_EQ(pictures.exitCode, 1);
  EXPECT_THAT(pictures.errors,
              HasSubstr("sheets, and at most 900 SVG files are written; write a PDF, or take a smaller "
                        "scale, a larger paper or a shorter range"));
  EXPECT_THAT(names(), IsEmpty());
  const RunResult fewer = flat({"--scale", "1:1", "--to", "10", "--out", "out/p.svg"});
  EXPECT_EQ(fewer.exitCode, 0) << fewer.errors;
}

TEST_F(BooksTest, OfOneNameAreRefusedInABatch) {
  std::ofstream(folder_ / "jobs.jsonl")
      << R"({"command": "profile", "drawing": "small.xml", "alignment": "Axis", "out": "out/p.pdf"})"
      << "\n"
      << R"({"command": "profile", "drawing": "small.xml", "alignment": "Axis", "out": "out/../out/p.pdf"})"
      << "\n"
      << R"({"command": "profile", "drawing": "small.xml", "alignment": "Axis", "out": "out/p"})"
      << "\n";
  const RunResult result = run({"batch", "jobs.jsonl"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:3: --out needs the name of a file that ends with .pdf or .svg"));
  EXPECT_THAT(result.errors, HasSubstr("jobs.jsonl:2: writes the same files as line 1"));
  EXPECT_THAT(names(), IsEmpty());
}

}  // namespace
}  // namespace lvx::cli
