#include "advice/report_advice.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system_platform.h"

namespace lvx::advice {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

civil::AlignmentObject northward(const std::string& name, int x, int y, int length) {
  civil::AlignmentObject alignment;
  alignment.name = name;
  alignment.geometry = civil::Alignment::fromText("at " + std::to_string(x) + " " + std::to_string(y) +
                                                  " heading 0; line " + std::to_string(length));
  return alignment;
}

civil::SurfaceObject ground(double minX, double minY, double maxX, double maxY, civil::FileNumber file) {
  civil::SurfaceObject surface;
  surface.name = "Ground";
  surface.surface =
      civil::TinSurface({{minX, minY, 5}, {maxX, minY, 5}, {maxX, maxY, 5}, {minX, maxY, 5}}, {{0, 1, 2}, {0, 2, 3}});
  surface.file = file;
  return surface;
}

/// A drawing of two files, "road.xml" and "ground.xml".
civil::Drawing ofTwoFiles() {
  civil::Drawing drawing;
  drawing.path = "road.xml";
  drawing.linearUnit = "meter";
  drawing.addedFiles.emplace_back();
  drawing.addedFiles.back().path = "ground.xml";
  return drawing;
}

std::vector<std::string> warned(const civil::Drawing& drawing, const ReportObjects& objects, const Forms& forms = {},
                                const std::string& stem = "out", const std::string& codePage = {}) {
  platform::PlatformSettings settings;
  settings.reportCodePage = codePage;
  platform::SystemPlatform platform(settings);
  return warnings(drawing, objects, stem, forms, platform);
}

// ---------------------------------------------------------------- sites

TEST(ReportAdvice, KnowsSitesThatAReportTakesForNone) {
  struct Row {
    const char* site;
    bool outOfReach;
  };
  const std::vector<Row> table{{"", false}, {"North", false}, {"No*rth", false}, {"*", true}, {"*North", true}};
  const civil::AlignmentObject alignment = northward("Axis", 0, 0, 10);
  for (const Row& row : table) {
    civil::Site site;
    site.name = row.site;
    ReportObjects objects;
    objects.site = &site;
    objects.alignment = &alignment;
    const std::string reason = whyOutOfReach(objects);
    EXPECT_EQ(!reason.empty(), row.outOfReach) << row.site;
    if (row.outOfReach) {
      EXPECT_THAT(reason, HasSubstr("alignment 'Axis' of site '" + std::string(row.site) + "'"));
    }
  }
  EXPECT_EQ(whyOutOfReach({}), "");
}

// ---------------------------------------------------------------- units

TEST(ReportAdvice, WarnsOnceOfAUnitThatIsNotTheMetre) {
  for (const char* unit : {"", "meter"}) {
    civil::Drawing drawing;
    drawing.linearUnit = unit;
    EXPECT_THAT(warned(drawing, {}), IsEmpty()) << unit;
  }
  for (const char* unit : {"foot", "USSurveyFoot", "millimeter"}) {
    civil::Drawing drawing;
    drawing.linearUnit = unit;
    EXPECT_THAT(warned(drawing, {}), ElementsAre("the drawing's unit of length is " + std::string(unit) +
                                                 ": the report gives its lengths in it, also where its texts say m"));
  }
}

// ---------------------------------------------------------------- places

TEST(ReportAdvice, NamesBothBoxesAndTheFileWhoseAxesWouldMakeThemMeet) {
  civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  const civil::SurfaceObject surface = ground(480, 80, 620, 120, 1);
  ReportObjects objects;
  objects.alignment = &alignment;
  objects.surface = &surface;
  const std::string boxes =
      "surface 'Ground' (x 480.000 to 620.000, y 80.000 to 120.000) and alignment 'Axis' (x 100.000 to 100.000, y "
      "500.000 to 600.000) don't meet";
  EXPECT_THAT(warned(drawing, objects), ElementsAre(boxes + "; with --swap-axes 'ground.xml' they would"));
  drawing.addedFiles[0].axesSwapped = true;
  EXPECT_THAT(warned(drawing, objects), ElementsAre(boxes + "; without --swap-axes 'ground.xml' they would"));
  drawing.addedFiles[0].axesSwapped = false;
  drawing.axesSwapped = true;
  EXPECT_THAT(warned(drawing, objects), ElementsAre(boxes + "; without --swap-axes 'road.xml' they would"));
}

TEST(ReportAdvice, NamesTheMenuOfTheDesktopWhereItIsForThat) {
  civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  const civil::SurfaceObject surface = ground(480, 80, 620, 120, 1);
  ReportObjects objects;
  objects.alignment = &alignment;
  objects.surface = &surface;
  platform::SystemPlatform platform{platform::PlatformSettings{}};
  EXPECT_THAT(warnings(drawing, objects, "out", {}, platform, HintsFor::Desktop),
              ElementsAre(HasSubstr("; with northing and easting of 'ground.xml' swapped they would: see the menu of "
                                    "the file in the tree")));
}

TEST(ReportAdvice, OffersNoSwapThatDoesNotHelp) {
  const civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  const civil::SurfaceObject elsewhere = ground(9000, 9000, 9100, 9100, 1);
  const civil::SurfaceObject ofTheSameFile = ground(480, 80, 620, 120, 0);
  for (const civil::SurfaceObject* surface : {&elsewhere, &ofTheSameFile}) {
    ReportObjects objects;
    objects.alignment = &alignment;
    objects.surface = surface;
    const auto list = warned(drawing, objects);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_TRUE(list[0].ends_with("don't meet")) << list[0];
  }
}

TEST(ReportAdvice, AsksForGroundWhereTheSampleLinesAre) {
  const civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  const civil::SurfaceObject beside = ground(120, 500, 140, 600, 1);
  civil::SampleLineGroup group;
  group.name = "Lines";
  ReportObjects objects;
  objects.alignment = &alignment;
  objects.surface = &beside;
  objects.group = &group;
  EXPECT_EQ(warned(drawing, objects).size(), 1U) << "without lines it is the alignment that counts";
  group.lines.push_back({1, "a", 10, {{90, 510}, {119, 510}}});
  EXPECT_THAT(warned(drawing, objects),
              ElementsAre(HasSubstr("sample line group 'Lines' (x 90.000 to 119.000, y 510.000 to 510.000)")));
  group.lines = {{2, "b", 20, {{90, 520}, {121, 520}}}};
  EXPECT_THAT(warned(drawing, objects), IsEmpty());
}

TEST(ReportAdvice, CountsTheSampleLinesThatLieBesideTheGround) {
  const civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  // A triangle leaves half of its box without ground.
  civil::SurfaceObject surface;
  surface.name = "Ground";
  surface.surface = civil::TinSurface({{80, 500, 5}, {120, 500, 5}, {80, 600, 5}}, {{0, 1, 2}});
  civil::SampleLineGroup group;
  group.name = "Lines";
  ReportObjects objects;
  objects.alignment = &alignment;
  objects.surface = &surface;
  objects.group = &group;
  group.lines = {{1, "over it", 10, {{70, 510}, {130, 510}}},
                 {2, "begins on it", 20, {{90, 520}, {130, 520}}},
                 {3, "touches it", 50, {{100, 550}, {130, 550}}}};
  EXPECT_THAT(warned(drawing, objects), IsEmpty());
  group.lines.push_back({4, "beside it", 90, {{90, 590}, {130, 590}}});
  EXPECT_THAT(warned(drawing, objects),
              ElementsAre("1 of the 4 sample lines of group 'Lines' has no ground on surface 'Ground': 'beside it'"));
  group.lines.push_back({5, "beyond it", 150, {{90, 650}, {130, 650}}});
  EXPECT_THAT(warned(drawing, objects),
              ElementsAre("2 of the 5 sample lines of group 'Lines' have no ground on surface "
                          "'Ground': the first is 'beside it'"));
  group.lines.erase(group.lines.begin(), group.lines.begin() + 3);
  EXPECT_THAT(warned(drawing, objects),
              ElementsAre("none of the 2 sample lines of group 'Lines' has ground on surface 'Ground'"));
}

TEST(ReportAdvice, LetsPointsLieBesideTheirAlignment) {
  const civil::Drawing drawing = ofTwoFiles();
  const civil::AlignmentObject alignment = northward("Axis", 100, 500, 100);
  std::vector<civil::Point> points(2);
  points[0].position = {130, 700, 5};
  points[1].position = {60, 480, 5};
  ReportObjects objects;
  objects.report = Report::Points;
  objects.alignment = &alignment;
  objects.points = {&points[0], &points[1]};
  EXPECT_THAT(warned(drawing, objects), IsEmpty());
  for (civil::Point& point : points) {
    point.position = {point.position.y, point.position.x, 5};
    point.file = 1;
  }
  EXPECT_THAT(warned(drawing, objects), ElementsAre(HasSubstr("; with --swap-axes 'ground.xml' they would")));
}

// ---------------------------------------------------------------- letters

TEST(ReportAdvice, TellsOfATextThatACellOfTheWorkbookCantHold) {
  const std::size_t most = 32767;
  civil::Point point;
  point.number = 7;
  ReportObjects objects;
  objects.report = Report::Points;
  objects.points = {&point};
  point.texts = {"", std::string(most, 'x'), ""};
  EXPECT_THAT(warned({}, objects), IsEmpty());
  point.texts = {"", std::string(most + 1, 'x'), std::string(most + 2, 'y')};
  EXPECT_THAT(
      warned({}, objects),
      ElementsAre("point 7, raw description has 32768 characters, and a cell of the workbook holds 32767; 1 more "
                  "text too long: the workbook cuts the rest"));
  EXPECT_THAT(warned({}, objects, {.workbook = false}), IsEmpty());
  // What counts are letters as the workbook counts them, not bytes.
  std::string letters;
  for (std::size_t i = 0; i < most; ++i) letters += "\u00e4";
  point.texts = {"", letters, ""};
  EXPECT_THAT(warned({}, objects), IsEmpty());
}

TEST(ReportAdvice, NamesTheTextAndTheLetterThatCutsIt) {
  const civil::AlignmentObject alignment = northward("県道", 100, 500, 100);
  civil::SampleLineGroup group;
  group.lines = {{1, "Straße", 10, {}}, {2, "No.1 測点", 20, {}}, {3, "№ 2", 30, {}}};
  civil::Point point;
  point.number = 7;
  point.texts.setFullDescription("木");
  ReportObjects lines;
  lines.alignment = &alignment;
  lines.group = &group;
  ReportObjects points;
  points.report = Report::Points;
  points.points = {&point};

  struct Row {
    const char* what;
    const ReportObjects* objects;
    Forms forms;
    std::string sentence;
  };
  const std::string cut = ", and --report-code-page names another code page";
  const std::vector<Row> table{
      {"lines, all forms",
       &lines,
       {true, true, true},
       "sample line 'No.1 測点': the reports' code page has no letter '測' (U+6E2C), and 1 more text has such letters; "
       "the "
       "text form loses the rest of the line and the page form ends there; the workbook is whole" +
           cut},
      {"lines, text",
       &lines,
       {true, false, false},
       "sample line 'No.1 測点': the reports' code page has no letter '測' (U+6E2C), and 1 more text has such letters; "
       "the "
       "text form loses the rest of the line; a workbook would be whole" +
           cut},
      {"a point's text",
       &points,
       {false, true, true},
       "point 7, full description: the reports' code page has no letter '木' (U+6728); the page form ends there; the "
       "workbook is whole" +
           cut},
      {"a workbook alone", &lines, {false, true, false}, ""},
  };
  for (const Row& row : table) {
    const auto list = warned({}, *row.objects, row.forms);
    if (row.sentence.empty())
      EXPECT_THAT(list, IsEmpty()) << row.what;
    else
      EXPECT_THAT(list, ElementsAre(row.sentence)) << row.what;
  }
}

TEST(ReportAdvice, AsksTheCodePageInForce) {
  civil::SampleLineGroup group;
  group.lines = {{1, "Ось", 10, {}}, {2, "é", 10, {}}};
  ReportObjects objects;
  objects.group = &group;
  EXPECT_THAT(warned({}, objects), ElementsAre(HasSubstr("sample line 'Ось'")));
  EXPECT_THAT(warned({}, objects, {}, "out", "WINDOWS-1251"), ElementsAre(HasSubstr("letter 'é' (U+00E9)")));
}

TEST(ReportAdvice, LooksAtThePathThatTheHeadShows) {
  EXPECT_THAT(warned({}, {}, {}, "./道/out"),
              ElementsAre(HasSubstr("the path './道/out': the reports' code page has no "
                                    "letter '道' (U+9053); the text form")));
}

TEST(ReportAdvice, CountsNoTextOfTheAlignmentWhereItIsNotPrinted) {
  const civil::AlignmentObject alignment = northward("県道", 100, 500, 100);
  civil::SampleLineGroup group;
  ReportObjects objects;
  objects.report = Report::Gls;
  objects.alignment = &alignment;
  objects.group = &group;
  EXPECT_THAT(warned({}, objects), IsEmpty());
}

// ---------------------------------------------------------------- diagnostics

TEST(ReportAdvice, SortsDiagnosticsByTheObjectsOfTheReport) {
  using civil::Severity;
  civil::Drawing drawing;
  const auto tell = [&drawing](Severity severity, const char* text, civil::Handle object) {
    drawing.diagnostics.push_back({severity, text, 0, 0, object});
  };
  tell(Severity::Warning, "the file", 0);
  tell(Severity::Warning, "another alignment", 99);
  tell(Severity::Note, "a note of the alignment", 1);
  tell(Severity::Warning, "the alignment", 1);
  tell(Severity::Error, "a sample line", 5);
  tell(Severity::Warning, "the corridor", 8);
  tell(Severity::Warning, "a point", 7);
  civil::AlignmentObject alignment;
  alignment.handle = 1;
  civil::SampleLineGroup group;
  group.handle = 4;
  group.lines = {{5, "a", 10, {}}};
  drawing.corridors.emplace_back().handle = 8;
  civil::Point point;
  point.handle = 7;

  const auto textsOf = [&drawing](const ReportObjects& objects, std::size_t others) {
    const SortedDiagnostics sorted = diagnosticsOf(drawing, objects);
    EXPECT_EQ(sorted.others, others);
    std::vector<std::string> texts;
    for (const civil::Diagnostic* diagnostic : sorted.ofReport) texts.push_back(diagnostic->text);
    return texts;
  };
  ReportObjects objects;
  objects.alignment = &alignment;
  objects.group = &group;
  EXPECT_THAT(textsOf(objects, 3), ElementsAre("the alignment", "a sample line", "the file"));
  objects.report = Report::Gls;
  EXPECT_THAT(textsOf(objects, 2), ElementsAre("the alignment", "a sample line", "the corridor", "the file"));
  ReportObjects points;
  points.report = Report::Points;
  points.points = {&point};
  EXPECT_THAT(textsOf(points, 4), ElementsAre("a point", "the file"));
  EXPECT_THAT(textsOf({}, 5), ElementsAre("the file"));
}

}  // namespace
}  // namespace lvx::advice
