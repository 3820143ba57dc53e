#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil/corridor.h"
#include "civil/drawing_edit.h"
#include "civil/drawing_files.h"
#include "civil/each_object.h"
#include "civil/sibling_names.h"
#include "corridor_drawings.h"
#include "drawing_compare.h"
#include "drawing_text.h"
#include "element_order.h"
#include "landxml/detail/file_terms.h"
#include "landxml/detail/markup.h"
#include "landxml/detail/numbers.h"
#include "landxml/project.h"
#include "saved_file.h"
#include "support/random_numbers.h"

namespace lvx::landxml {
namespace {

/// Without the locale's say.
double numberIn(const std::string& text) {
  double value = std::numeric_limits<double>::quiet_NaN();
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

civil::AlignmentObject& alignmentOf(civil::Drawing& drawing, std::size_t site = 0, std::size_t index = 0) {
  auto& list = drawing.sites.empty() ? drawing.siteless.alignments : drawing.sites.at(site).alignments;
  return *list.at(index);
}

/// A line through the alignment, turned clockwise.
civil::SampleLine lineAt(const civil::AlignmentObject& alignment, double station, double left, double right,
                         double skew = 0.0) {
  const auto pose = alignment.geometry.poseAt(station);
  if (!pose) throw std::out_of_range("no such station");
  const civil::Vec2 across = civil::unit(pose->direction - civil::kPi / 2.0 - skew);
  civil::SampleLine line;
  line.name = "at " + detail::numberText(station);
  line.station = station;
  line.vertices = {pose->point - left * across, pose->point, pose->point + right * across};
  return line;
}

std::vector<civil::SampleLine> linesEvery(const civil::AlignmentObject& alignment, double interval) {
  std::vector<civil::SampleLine> lines;
  const double start = alignment.geometry.startStation();
  const auto count = static_cast<int>((alignment.geometry.endStation() - start) / interval);
  for (int i = 0; i <= count; ++i)
    lines.push_back(lineAt(alignment, start + i * interval, 10.0 / 3.0 + i, 7.1, i % 2 == 0 ? 0.0 : 0.3));
  return lines;
}

/// Whether `whole` is `part` with more in between.
bool isFilledUp(const std::string& part, const std::string& whole) {
  auto at = whole.begin();
  for (const char c : part) {
    at = std::find(at, whole.end(), c);
    if (at == whole.end()) return false;
    ++at;
  }
  return true;
}

std::string projectError(civil::Drawing& drawing, const std::string& target, const SaveOptions& options = {}) {
  try {
    (void)saveProject(drawing, target, options);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

/// First line of which a vertex isn't the same to the last bit.
std::string otherVertices(const civil::Drawing& a, const civil::Drawing& b) {
  std::string found;
  const auto site = [&](const civil::Site& x, const civil::Site& y) {
    for (std::size_t i = 0; i < x.alignments.size(); ++i) {
      const auto& groups = x.alignments[i]->sampleLineGroups;
      const auto& others = y.alignments[i]->sampleLineGroups;
      for (std::size_t g = 0; g < groups.size(); ++g) {
        for (std::size_t l = 0; l < groups[g].lines.size(); ++l) {
          const auto& line = groups[g].lines[l];
          const auto& other = others[g].lines[l];
          bool same = line.station == other.station && line.vertices.size() == other.vertices.size();
          for (std::size_t v = 0; same && v < line.vertices.size(); ++v)
            same = line.vertices[v].x == other.vertices[v].x && line.vertices[v].y == other.vertices[v].y;
          if (!same && found.empty()) found = line.name;
        }
      }
    }
  };
  site(a.siteless, b.siteless);
  for (std::size_t s = 0; s < a.sites.size(); ++s) site(a.sites[s], b.sites[s]);
  return found;
}

/// Tells the first difference, each file's handles counted from its own begin: where that lies is the reader's business.
std::string differenceOfFiles(civil::Drawing& a, civil::Drawing& b) {
  const auto shift = [](civil::Drawing& drawing, bool isBack) {
    civil::eachObject(drawing, [&](auto& object) {
      if (object.file == 0 || object.file > drawing.addedFiles.size()) return;
      const civil::Handle base = drawing.addedFiles[object.file - 1].handleBase;
      const auto move = [&](civil::Handle& handle) { handle = isBack ? handle + base : handle - base; };
      if (object.handle != 0) move(object.handle);
      if constexpr (requires { object.lines; }) {
        for (auto& line : object.lines) move(line.handle);
      }
    });
  };
  shift(a, false);
  shift(b, false);
  const std::string difference = DrawingComparison::difference(a, b);
  shift(a, true);
  shift(b, true);
  return difference;
}

/// The same by the names in the file, and without the handles of points, which go by the order of all objects.
std::string differenceButPoints(civil::Drawing& a, civil::Drawing b) {
  for (auto* const drawing : {&a, &b}) {
    for (civil::Point& point : drawing->points) point.handle = 0;
    civil::eachObject(*drawing, [](auto& object) {
      if constexpr (requires { object.nameInFile; }) object.name = civil::savedName(object);
    });
  }
  return DrawingComparison::difference(a, b);
}

class ProjectSaving : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& bytes) {
    writeBytes(folder_.file(name), bytes);
    return folder_.file(name);
  }
  ScratchFolder folder_;
};

// ---------------------------------------------------------------- what was made in the open drawing

class NewObjects : public ProjectSaving, public ::testing::WithParamInterface<CorridorForm> {
 protected:
  NewObjects() : source_(write("road.xml", GetParam().bytes)), drawing_(readDrawing(source_)) {
    civil::AlignmentObject& alignment = alignmentOf(drawing_);
    civil::addSampleLineGroup(drawing_, alignment, "Every 30 \"x\" <\xCE\xA9>", linesEvery(alignment, 30.0))
        .description = "two\nlines & more";
    civil::addSampleLineGroup(drawing_, alignment, "Second", linesEvery(alignment, 100.0));
    civil::addProfile(drawing_, alignment, "Ground",
                      civil::Profile::ground({{{100, 1.0 / 3.0}, {110, 2}}, {{120, 5}, {130.125, 4}}}));
    civil::addProfile(drawing_, alignment, "Road",
                      civil::Profile::design({{0, 5},
                                              {40, 6, civil::VerticalCurveKind::Parabola, 20},
                                              {90, 4, civil::VerticalCurveKind::UnsymmetricParabola, 10, 15},
                                              {150, 7, civil::VerticalCurveKind::Circle, 12, 0, 400},
                                              {200, 6}}));
    civil::addPointGroup(drawing_, "Both", {drawing_.points[1].number, drawing_.points[0].number}).description = "all";
  }
  std::string source_;
  civil::Drawing drawing_;
};

TEST_P(NewObjects, ReadBackEqualAndLeaveTheBytesAroundThem) {
  const auto saved = saveProject(drawing_, source_);
  ASSERT_THAT(saved, SizeIs(1));
  EXPECT_EQ(saved[0].mark, drawing_.file);
  const civil::Drawing again = readDrawing(source_);
  EXPECT_EQ(DrawingComparison::difference(drawing_, again), "");
  EXPECT_EQ(otherVertices(drawing_, again), "");
  EXPECT_EQ(again.file, drawing_.file);
  EXPECT_TRUE(isFilledUp(GetParam().bytes, bytesOf(source_)));
  EXPECT_EQ(misplacedElement(bytesOf(source_)), "");
  EXPECT_EQ(alignmentOf(drawing_).sampleLineGroups.back().file, 0U);
  EXPECT_EQ(drawing_.pointGroups.back().file, 0U);
  EXPECT_EQ(alignmentOf(drawing_).profiles.back().file, 0U);
}

TEST_P(NewObjects, AreWrittenOnce) {
  saveProject(drawing_, source_);
  const std::string bytes = bytesOf(source_);
  saveProject(drawing_, source_);
  EXPECT_EQ(bytesOf(source_), bytes);
  civil::Drawing again = readDrawing(source_);
  saveProject(again, folder_.file("copy.xml"));
  EXPECT_EQ(bytesOf(folder_.file("copy.xml")), bytes);
}

TEST_P(NewObjects, GoAgainAndComeBackUnderTheirHandles) {
  saveProject(drawing_, source_);
  civil::AlignmentObject& alignment = alignmentOf(drawing_);
  civil::SampleLineGroup group = std::move(alignment.sampleLineGroups.back());
  alignment.sampleLineGroups.pop_back();
  civil::PointGroup points = std::move(drawing_.pointGroups.back());
  drawing_.pointGroups.pop_back();
  saveProject(drawing_, source_);
  EXPECT_EQ(DrawingComparison::difference(drawing_, readDrawing(source_)), "");
  group.file = civil::kNoFile;
  points.file = civil::kNoFile;
  alignment.sampleLineGroups.push_back(std::move(group));
  drawing_.pointGroups.push_back(std::move(points));
  saveProject(drawing_, source_);
  EXPECT_EQ(DrawingComparison::difference(drawing_, readDrawing(source_)), "");
}

TEST_P(NewObjects, GoTogetherWithAddedStations) {
  civil::addStation(drawing_.corridors.at(0).baselines.at(0).regions.at(0), 125.5, "Gate");
  civil::Rebuilt done;
  for (auto& corridor : drawing_.corridors) civil::rebuild(corridor, done);
  saveProject(drawing_, source_);
  EXPECT_EQ(DrawingComparison::difference(drawing_, readDrawing(source_)), "");
  EXPECT_EQ(misplacedElement(bytesOf(source_)), "");
}

INSTANTIATE_TEST_SUITE_P(Forms, NewObjects, ::testing::ValuesIn(corridorForms()),
                         [](const auto& row) { return std::string(row.param.name); });

// ---------------------------------------------------------------- groups of sample lines

/// An alignment due north with a group of four lines: of ours, of another program, without any points, and one that the
/// alignment doesn't reach.
std::string fourLines() {
  return "<LandXML version=\"1.2\">\n"
         "  <Units><Metric linearUnit=\"meter\" angularUnit=\"decimal dd.mm.ss\"/></Units>\n"
         "  <Alignments>\n"
         "    <Alignment name=\"A\" length=\"100\" staStart=\"0\">\n"
         "      <CoordGeom><Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>\n"
         "      <CrossSects name=\"G\">\n"
         "        <CrossSect sta=\"10.0\" name=\"ours\"><Feature code=\"lvx_sampleLine\" source=\"lvx\"><Property "
         "label=\"vertices\" value=\"10 -3.50 10 4\"/></Feature></CrossSect>\n"
         "        <!-- theirs -->\n"
         "        <CrossSect sta=\"20.0\" areaCut=\"3\"><CrossSectSurf name=\"Old\"><PntList2D>-6 1 6 "
         "1</PntList2D></CrossSectSurf><CrossSectSurf name=\"T\"><PntList2D>-6 7 6 "
         "7</PntList2D></CrossSectSurf></CrossSect>\n"
         "        <CrossSect sta=\"30.0\" name=\"bare\"/>\n"
         "        <CrossSect sta=\"400\" name=\"far\"/>\n"
         "      </CrossSects>\n"
         "    </Alignment>\n"
         "  </Alignments>\n"
         "  <Surfaces><Surface name=\"T\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">-100 -100 1</P><P "
         "id=\"2\">500 "
         "-100 7</P><P id=\"3\">-100 500 7</P></Pnts><Faces><F>1 2 3</F></Faces></Definition></Surface></Surfaces>\n"
         "</LandXML>\n";
}

struct GroupEdit {
  const char* name;
  void (*edit)(civil::Drawing&, civil::SampleLineGroup&);
  /// What the file still holds, to the byte.
  std::vector<std::string> kept;
};

const char* const kOurs = "<CrossSect sta=\"10.0\" name=\"ours\">";
const char* const kOursWhole = "value=\"10 -3.50 10 4\"/>";
const char* const kTheirs =
    "<CrossSect sta=\"20.0\" areaCut=\"3\"><CrossSectSurf name=\"Old\"><PntList2D>-6 1 6 "
    "1</PntList2D></CrossSectSurf><CrossSectSurf name=\"T\"><PntList2D>-6 7 6 7</PntList2D></CrossSectSurf>";
const char* const kFar = "<CrossSect sta=\"400\" name=\"far\"";

civil::SampleLine another(const civil::Drawing& drawing, double station) {
  civil::SampleLine line;
  line.handle = civil::largestHandle(drawing) + 1;
  line.name = "new";
  line.station = station;
  line.vertices = {{-1.0 / 3.0, station}, {5.5, station}};
  return line;
}

std::vector<GroupEdit> groupEdits() {
  using Drawing = civil::Drawing;
  using Group = civil::SampleLineGroup;
  return {
      {"Renamed", [](Drawing&, Group& g) { g.name = "H & \"x\""; }, {kOurs, kOursWhole, kTheirs, kFar}},
      {"Described", [](Drawing&, Group& g) { g.description = "said"; }, {kOurs, kOursWhole, kTheirs, kFar}},
      {"LineInFront",
       [](Drawing& d, Group& g) { g.lines.insert(g.lines.begin(), another(d, 5)); },
       {kOurs, kOursWhole, kTheirs, kFar}},
      {"LineBetween",
       [](Drawing& d, Group& g) { g.lines.insert(g.lines.begin() + 1, another(d, 15)); },
       {kOurs, kOursWhole, kTheirs, kFar}},
      {"LineAtTheEnd",
       [](Drawing& d, Group& g) { g.lines.push_back(another(d, 95)); },
       {kOurs, kOursWhole, kTheirs, kFar}},
      {"FirstRemoved", [](Drawing&, Group& g) { g.lines.erase(g.lines.begin()); }, {kTheirs, kFar}},
      {"SecondRemoved", [](Drawing&, Group& g) { g.lines.erase(g.lines.begin() + 1); }, {kOurs, kOursWhole, kFar}},
      {"LastRemoved", [](Drawing&, Group& g) { g.lines.pop_back(); }, {kOurs, kOursWhole, kTheirs, kFar}},
      {"AllRemoved", [](Drawing&, Group& g) { g.lines.clear(); }, {kFar}},
      {"AllNew",
       [](Drawing& d, Group& g) {
         g.lines = {
             another(d, 12),
         };
       },
       {kFar}},
      {"OneForAnother", [](Drawing& d, Group& g) { g.lines[1] = another(d, 22); }, {kOurs, kOursWhole, kFar}},
      {"LastForAnother", [](Drawing& d, Group& g) { g.lines[2] = another(d, 33); }, {kOurs, kOursWhole, kTheirs, kFar}},
      {"LineRenamed", [](Drawing&, Group& g) { g.lines[1].name = "21"; }, {kOurs, kOursWhole, kFar, "areaCut=\"3\""}},
      {"OursWider",
       [](Drawing&, Group& g) { g.lines[0].vertices.front().x = -4.25; },
       {"<CrossSect sta=\"10.0\" name=\"ours\">", kTheirs, kFar}},
      {"TheirsWider",
       [](Drawing&, Group& g) { g.lines[1].vertices.back().x = 9.0; },
       {kOurs, kOursWhole, kFar, "<CrossSectSurf name=\"Old\"><PntList2D>-6 1 6 1</PntList2D></CrossSectSurf>"}},
      {"TheirsTurned",
       [](Drawing&, Group& g) {
         g.lines[1].vertices.back() = {6.0, 24.0};
         g.lines[1].vertices.front() = {-6.0, 16.0};
       },
       {kOurs, kOursWhole, kFar, "areaCut=\"3\""}},
      {"BareWider",
       [](Drawing&, Group& g) { g.lines[2].vertices.back().x = 80.0; },
       {kOurs, kOursWhole, kTheirs, kFar}},
      {"LineMoved",
       [](Drawing&, Group& g) {
         g.lines[0].station = 15.0;
         for (auto& vertex : g.lines[0].vertices) vertex.y = 15.0;
       },
       {kTheirs, kFar}},
      {"LinesExchanged", [](Drawing&, Group& g) { std::swap(g.lines[0], g.lines[1]); }, {kFar}},
  };
}

class EditedGroup : public ProjectSaving, public ::testing::WithParamInterface<GroupEdit> {};

TEST_P(EditedGroup, ReadsBackEqualAndKeepsTheBytesOfOtherLines) {
  for (const bool isOurs : {false, true}) {
    SCOPED_TRACE(isOurs ? "ours" : "of another program");
    const std::string text = isOurs ? replaced(fourLines(), "  <Alignments>",
                                               "  <FeatureDictionary name=\"lvx\" version=\"1\"/>\n  <Alignments>")
                                    : fourLines();
    const std::string source = write("road.xml", text);
    civil::Drawing drawing = readDrawing(source);
    GetParam().edit(drawing, alignmentOf(drawing).sampleLineGroups.at(0));
    saveProject(drawing, source);
    const civil::Drawing again = readDrawing(source);
    EXPECT_EQ(DrawingComparison::difference(drawing, again), "");
    EXPECT_EQ(otherVertices(drawing, again), "");
    const std::string bytes = bytesOf(source);
    EXPECT_THAT(bytes, HasSubstr("<!-- theirs -->"));
    for (const std::string& kept : GetParam().kept) EXPECT_THAT(bytes, HasSubstr(kept));
    EXPECT_EQ(misplacedElement(bytes), "");
    saveProject(drawing, source);
    EXPECT_EQ(bytesOf(source), bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(Edits, EditedGroup, ::testing::ValuesIn(groupEdits()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ProjectSaving, NewLinesAreSectionsOfTheGroundForOtherPrograms) {
  const std::string source = write("road.xml", fourLines());
  civil::Drawing drawing = readDrawing(source);
  civil::AlignmentObject& alignment = alignmentOf(drawing);
  civil::addSampleLineGroup(drawing, alignment, "New",
                            {lineAt(alignment, 50, 4, 6), lineAt(alignment, 60, 5, 5, 30.5 * civil::kPi / 180)});
  saveProject(drawing, source);
  EXPECT_THAT(
      bytesOf(source),
      HasSubstr("<CrossSect sta=\"50\" name=\"at 50\">\n"
                "          <CrossSectSurf name=\"T\"><PntList2D>-4 3.46 0 3.5 6 3.56</PntList2D></CrossSectSurf>\n"));
  EXPECT_THAT(bytesOf(source), HasSubstr("name=\"at 60\" angleSkew=\"30.30000000\">"));
  // As a program that knows nothing of ours sees them.
  const std::string plain = replaced(replaced(bytesOf(source), "lvx_sampleLine\"", "x\""), "lvx_sampleLineGroup", "y");
  const civil::Drawing others = readDrawingText(plain, "other.xml");
  const auto& lines = others.siteless.alignments[0]->sampleLineGroups.at(1).lines;
  ASSERT_THAT(lines, SizeIs(2));
  for (std::size_t l = 0; l < 2; ++l) {
    const auto& made = alignment.sampleLineGroups.at(1).lines[l].vertices;
    EXPECT_NEAR(lines[l].vertices.front().x, made.front().x, 1e-4);
    EXPECT_NEAR(lines[l].vertices.back().y, made.back().y, 1e-4);
  }
}

TEST_F(ProjectSaving, LinesBesideAllGroundStillTellHowFarTheyReach) {
  const std::string source = write("road.xml", metric(northward("")));
  civil::Drawing drawing = readDrawing(source);
  civil::AlignmentObject& alignment = alignmentOf(drawing);
  civil::addSampleLineGroup(drawing, alignment, "New", {lineAt(alignment, 50, 4, 6.5)});
  saveProject(drawing, source);
  EXPECT_THAT(bytesOf(source),
              HasSubstr("<CrossSectSurf name=\"Extent\"><PntList2D>-4 0 0 0 6.5 0</PntList2D></CrossSectSurf>"));
}

TEST_F(ProjectSaving, GroupsPartFromTheCorridorThatTheySharedSectionsWith) {
  using Group = civil::SampleLineGroup;
  const struct {
    const char* name;
    void (*edit)(civil::Drawing&, std::vector<Group>&);
  } rows[] = {
      {"group removed", [](civil::Drawing&, std::vector<Group>& groups) { groups.erase(groups.begin()); }},
      {"second group removed", [](civil::Drawing&, std::vector<Group>& groups) { groups.erase(groups.begin() + 1); }},
      {"all removed", [](civil::Drawing&, std::vector<Group>& groups) { groups.clear(); }},
      {"group renamed",
       [](civil::Drawing&, std::vector<Group>& groups) {
         groups[1].name = "other";
         groups[1].nameInFile.reset();
       }},
      {"line removed", [](civil::Drawing&, std::vector<Group>& groups) { groups[0].lines.pop_back(); }},
      {"line added",
       [](civil::Drawing& drawing, std::vector<Group>& groups) { groups[0].lines.push_back(another(drawing, 150)); }},
      {"line renamed", [](civil::Drawing&, std::vector<Group>& groups) { groups[2].lines[0].name = "other"; }},
      {"line moved", [](civil::Drawing&, std::vector<Group>& groups) { groups[0].lines[0].station = 3; }},
      {"line wider", [](civil::Drawing&, std::vector<Group>& groups) { groups[0].lines[0].vertices.back().x += 2.0; }},
  };
  for (const bool isAdopted : {false, true}) {
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(row.name) + (isAdopted ? ", saved before" : ""));
      const std::string source = write("road.xml", otherCorridor());
      if (isAdopted) {
        civil::Drawing first = readDrawing(source);
        civil::addStation(first.corridors.at(0).baselines.at(0).regions.at(0), 50.5, "Gate");
        saveProject(first, source);
      }
      civil::Drawing drawing = readDrawing(source);
      row.edit(drawing, alignmentOf(drawing).sampleLineGroups);
      EXPECT_EQ(projectError(drawing, source), "");
      EXPECT_EQ(differenceButPoints(drawing, readDrawing(source)), "");
      EXPECT_EQ(otherVertices(drawing, readDrawing(source)), "");
      EXPECT_EQ(misplacedElement(bytesOf(source)), "");
      // And on from there.
      civil::addStation(drawing.corridors.at(0).baselines.at(0).regions.at(0), 60.5, "Next");
      auto& groups = alignmentOf(drawing).sampleLineGroups;
      if (!groups.empty() && !groups.back().lines.empty()) groups.back().lines[0].name = "again";
      EXPECT_EQ(projectError(drawing, source), "");
      EXPECT_EQ(differenceButPoints(drawing, readDrawing(source)), "");
    }
  }
}

TEST_F(ProjectSaving, GroupsThatAreCalledByTheirCountKeepTheirNamesWhenAnotherOneGoes) {
  const std::string source = write(
      "road.xml", metric(northward("<CrossSects name=\"a\"><CrossSect sta=\"1\"/></CrossSects><CrossSects><CrossSect "
                                   "sta=\"2\"/></CrossSects>")));
  civil::Drawing drawing = readDrawing(source);
  auto& groups = alignmentOf(drawing).sampleLineGroups;
  ASSERT_EQ(groups.at(1).name, "SL - A (2)");
  groups.erase(groups.begin());
  saveProject(drawing, source);
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(source)), "");
}

TEST_F(ProjectSaving, RemovesGroupsProfilesAndPointGroups) {
  for (const CorridorForm& form : corridorForms()) {
    SCOPED_TRACE(form.name);
    const std::string source = write("road.xml", form.bytes);
    civil::Drawing drawing = readDrawing(source);
    civil::AlignmentObject& alignment = alignmentOf(drawing);
    civil::addSampleLineGroup(drawing, alignment, "Made", linesEvery(alignment, 50));
    civil::addProfile(drawing, alignment, "Ground", civil::Profile::ground({{{0, 1}, {10, 2}}}));
    civil::addPointGroup(drawing, "Made", {drawing.points[0].number});
    saveProject(drawing, source);
    civil::Drawing again = readDrawing(source);
    alignmentOf(again).sampleLineGroups.pop_back();
    alignmentOf(again).profiles.pop_back();
    again.pointGroups.clear();
    saveProject(again, source);
    EXPECT_EQ(differenceButPoints(again, readDrawing(source)), "");
    EXPECT_THAT(bytesOf(source), Not(HasSubstr("Made")));
    EXPECT_THAT(bytesOf(source), Not(HasSubstr("\"Ground\"")));
    EXPECT_EQ(misplacedElement(bytesOf(source)), "");
  }
}

TEST_F(ProjectSaving, AProfileThatACorridorIsMeasuredFromStays) {
  const std::string source = write("road.xml", ownCorridor());
  civil::Drawing drawing = readDrawing(source);
  alignmentOf(drawing).profiles.clear();
  EXPECT_THAT(projectError(drawing, source), HasSubstr("profile 'FG' of alignment 'CL' can't be removed"));
}

TEST_F(ProjectSaving, TheLastProfileGoesWithItsCollection) {
  const std::string source =
      write("road.xml",
            metric(northward("<Profile><ProfSurf name=\"G\"><PntList2D>0 1 2 3</PntList2D></ProfSurf></Profile>")));
  civil::Drawing drawing = readDrawing(source);
  alignmentOf(drawing).profiles.clear();
  saveProject(drawing, source);
  EXPECT_THAT(bytesOf(source), Not(HasSubstr("Profile")));
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(source)), "");
}

/// A person at work: one change after the other, saved now and then.
class ManyEdits : public ProjectSaving, public ::testing::WithParamInterface<CorridorForm> {
 protected:
  std::size_t below(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

  void edit(civil::Drawing& drawing) {
    civil::AlignmentObject& alignment = alignmentOf(drawing);
    auto& groups = alignment.sampleLineGroups;
    const std::string name = "made " + std::to_string(++count_);
    const double start = alignment.geometry.startStation();
    const double station = start + alignment.geometry.length() * static_cast<double>(below(1000)) / 1000.0;
    civil::SampleLineGroup* const group = groups.empty() ? nullptr : &groups[below(groups.size())];
    civil::SampleLine* const line =
        group == nullptr || group->lines.empty() ? nullptr : &group->lines[below(group->lines.size())];
    switch (below(11)) {
      case 0:
        civil::addSampleLineGroup(drawing, alignment, name, linesEvery(alignment, 70));
        break;
      case 1:
        if (group != nullptr) groups.erase(groups.begin() + (group - groups.data()));
        break;
      case 2:
        if (group != nullptr) {
          group->name = name;
          group->nameInFile.reset();
        }
        break;
      case 3:
      case 4:
        if (group != nullptr) {
          civil::SampleLine made = lineAt(alignment, station, 3.3, 4.4, 0.1);
          made.handle = civil::largestHandle(drawing) + 1;
          group->lines.insert(group->lines.begin() + static_cast<std::ptrdiff_t>(below(group->lines.size() + 1)), made);
        }
        break;
      case 5:
        if (line != nullptr) group->lines.erase(group->lines.begin() + (line - group->lines.data()));
        break;
      case 6:
        if (line != nullptr) line->vertices.back() = line->vertices.back() + civil::Vec2{0.1, 0.7};
        break;
      case 7:
        if (line != nullptr) line->name = name;
        break;
      case 8:
        civil::addPointGroup(drawing, name, {drawing.points[below(drawing.points.size())].number});
        break;
      case 9:
        if (!drawing.pointGroups.empty())
          drawing.pointGroups.erase(drawing.pointGroups.begin() +
                                    static_cast<std::ptrdiff_t>(below(drawing.pointGroups.size())));
        break;
      default: {
        civil::addStation(drawing.corridors[0].baselines[0].regions[0], station, name);
        civil::Rebuilt done;
        if (below(2) == 0) civil::rebuild(drawing.corridors[0], done);
      }
    }
  }

 private:
  std::mt19937 random_ = test::seededByTestName();
  int count_ = 0;
};

TEST_P(ManyEdits, AreSavedAsTheyWereMade) {
  for (int run = 0; run < 12; ++run) {
    const std::string source = write("road.xml", GetParam().bytes);
    civil::Drawing drawing = readDrawing(source);
    for (int save = 0; save < 6; ++save) {
      for (std::size_t edits = below(5); edits > 0; --edits) edit(drawing);
      ASSERT_EQ(projectError(drawing, source), "") << "run " << run << ", save " << save;
      ASSERT_EQ(differenceButPoints(drawing, readDrawing(source)), "") << "run " << run << ", save " << save;
      ASSERT_EQ(otherVertices(drawing, readDrawing(source)), "");
      ASSERT_EQ(misplacedElement(bytesOf(source)), "");
      if (save == 3) drawing = readDrawing(source);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, ManyEdits, ::testing::ValuesIn(corridorForms()),
                         [](const auto& row) { return std::string(row.param.name); });

// ---------------------------------------------------------------- point groups

std::string points(const std::string& content) { return metric("<CgPoints>" + content + "</CgPoints>"); }

TEST_F(ProjectSaving, GroupsHoldPointsThatNoNameTells) {
  const std::string source =
      write("points.xml", points("<CgPoint name=\"1\">0 0</CgPoint><CgPoint name=\"1\">1 1</CgPoint><CgPoint>2 "
                                 "2</CgPoint><CgPoint name=\"OAK &amp; ASH\">3 3</CgPoint>"));
  civil::Drawing drawing = readDrawing(source);
  ASSERT_THAT(drawing.points, SizeIs(4));
  civil::addPointGroup(drawing, "All",
                       {1, drawing.points[3].number, drawing.points[1].number, drawing.points[2].number});
  saveProject(drawing, source);
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(source)), "");
}

TEST_F(ProjectSaving, MembersOfGroupsChange) {
  const std::string source = write(
      "points.xml",
      metric(
          "<FeatureDictionary name=\"lvx\" version=\"1\"/>\n<CgPoints>\n<CgPoint name=\"1\">0 0</CgPoint>\n<CgPoint "
          "name=\"2\">1 1</CgPoint>\n<CgPoint name=\"3\">2 2</CgPoint>\n</CgPoints>\n<CgPoints name=\"G\">\n <CgPoint "
          "pntRef=\"1\" />\n <CgPoint pntRef=\"2\" />\n</CgPoints>\n"));
  for (const std::vector<std::int32_t>& numbers :
       std::vector<std::vector<std::int32_t>>{{1}, {2}, {2, 1}, {3, 1, 2}, {1, 3, 2}, {1, 2, 3}, {3}, {}, {1, 2}}) {
    civil::Drawing drawing = readDrawing(source);
    drawing.pointGroups.at(0).numbers = numbers;
    drawing.pointGroups.at(0).description = std::to_string(numbers.size());
    const std::string target = folder_.file("target.xml");
    saveProject(drawing, target);
    const civil::Drawing again = readDrawing(target);
    // Without a member it is only a group because it says so.
    EXPECT_EQ(DrawingComparison::difference(drawing, again), "");
    EXPECT_EQ(misplacedElement(bytesOf(target)), "");
    for (const std::int32_t number : numbers) {
      if (numbers.front() == 1 && number != 3) {
        EXPECT_THAT(bytesOf(target), HasSubstr("<CgPoint pntRef=\"" + std::to_string(number) + "\" />"));
      }
    }
  }
}

TEST_F(ProjectSaving, AGroupThatHoldsItsPointsCeasesToBeOneAndKeepsThem) {
  const std::string source = write("road.xml", otherCorridor());
  civil::Drawing drawing = readDrawing(source);
  ASSERT_THAT(drawing.pointGroups, SizeIs(1));
  civil::Drawing shorter = readDrawing(source);
  shorter.pointGroups[0].numbers.pop_back();
  EXPECT_THAT(projectError(shorter, source), HasSubstr("point group 'Trees' holds its points themselves"));
  drawing.pointGroups.clear();
  saveProject(drawing, source);
  EXPECT_EQ(differenceButPoints(drawing, readDrawing(source)), "");
  EXPECT_THAT(readDrawing(source).points, SizeIs(2));
}

// ---------------------------------------------------------------- several files

std::string inUnit(const std::string& unit, const std::string& content) {
  const std::string kind = unit == "meter" ? "Metric" : "Imperial";
  return "<LandXML version=\"1.2\"><Units><" + kind + " linearUnit=\"" + unit +
         "\" angularUnit=\"decimal degrees\"/></Units>" + content + "</LandXML>";
}

TEST_F(ProjectSaving, EachFileGetsItsOwnChangesAndOthersAreNotRead) {
  const std::string road = write("road.xml", metric(northward("")));
  const std::string side = write("side.xml", replaced(ownCorridor(), "\n", "\r\n"));
  const std::string ground = write("ground.xml", metric("<CgPoints><CgPoint name=\"9\">1 2 3</CgPoint></CgPoints>"));
  civil::Drawing drawing = readProject({{road}, {side}, {ground}});
  civil::AlignmentObject& main = *drawing.siteless.alignments.at(0);
  civil::AlignmentObject& other = *drawing.sites.at(0).alignments.at(0);
  civil::addSampleLineGroup(drawing, main, "M", linesEvery(main, 25));
  civil::addSampleLineGroup(drawing, other, "S", linesEvery(other, 25));
  civil::addStation(drawing.corridors.at(0).baselines.at(0).regions.at(0), 125.5, "Gate");
  std::filesystem::remove(ground);
  const auto saved = saveProject(drawing, road);
  ASSERT_THAT(saved, SizeIs(2));
  EXPECT_EQ(saved[0].path, road);
  EXPECT_EQ(saved[1].path, side);
  EXPECT_EQ(drawing.addedFiles[0].mark, saved[1].mark);
  EXPECT_FALSE(std::filesystem::exists(ground));
  EXPECT_EQ(readDrawing(road).siteless.alignments[0]->sampleLineGroups.size(), 1U);
  EXPECT_TRUE(isFilledUp(replaced(ownCorridor(), "\n", "\r\n"), bytesOf(side)));

  writeBytes(ground, metric("<CgPoints><CgPoint name=\"9\">1 2 3</CgPoint></CgPoints>"));
  civil::Drawing again = readProject({{road}, {side}, {ground}});
  EXPECT_EQ(differenceOfFiles(drawing, again), "");
  EXPECT_EQ(otherVertices(drawing, again), "");
  // Nothing is left to do.
  const auto nothing = saveProject(drawing, road);
  ASSERT_THAT(nothing, SizeIs(1));
  EXPECT_FALSE(nothing[0].isWritten);
  EXPECT_EQ(nothing[0].mark, saved[0].mark);
}

TEST_F(ProjectSaving, AnAddedFileKeepsItsNameWhereTheFirstOneGoesElsewhere) {
  const std::string road = write("road.xml", metric(northward("")));
  const std::string side = write("side.xml", ownCorridor());
  civil::Drawing drawing = readProject({{road}, {side}});
  civil::AlignmentObject& other = *drawing.sites.at(0).alignments.at(0);
  civil::addSampleLineGroup(drawing, other, "S", linesEvery(other, 25));
  const std::string target = folder_.file("new.xml");
  const auto saved = saveProject(drawing, target);
  ASSERT_THAT(saved, SizeIs(2));
  EXPECT_EQ(bytesOf(target), bytesOf(road));
  EXPECT_EQ(bytesOf(road), metric(northward("")));
  EXPECT_EQ(readDrawing(side).sites[0].alignments[0]->sampleLineGroups.back().name, "S");
  EXPECT_THAT(projectError(drawing, side), HasSubstr("the file was added to the drawing"));
}

TEST_F(ProjectSaving, LeavesAllFilesAsTheyWereWhereOneCantBeWritten) {
  const std::string road = metric(northward(""));
  const std::string roadPath = write("road.xml", road);
  const std::string sidePath = write("side.xml", ownCorridor());
  const auto changed = [&] {
    writeBytes(roadPath, road);
    writeBytes(sidePath, ownCorridor());
    civil::Drawing drawing = readProject({{roadPath}, {sidePath}});
    civil::AlignmentObject& main = *drawing.siteless.alignments.at(0);
    civil::AlignmentObject& other = *drawing.sites.at(0).alignments.at(0);
    civil::addSampleLineGroup(drawing, main, "M", linesEvery(main, 25));
    civil::addSampleLineGroup(drawing, other, "S", linesEvery(other, 25));
    return drawing;
  };
  {
    civil::Drawing drawing = changed();
    const std::string theirs = ownCorridor() + "\n";
    writeBytes(sidePath, theirs);
    EXPECT_THAT(projectError(drawing, roadPath), HasSubstr("was changed by another program since it was opened"));
    EXPECT_EQ(bytesOf(roadPath), road);
    EXPECT_EQ(bytesOf(sidePath), theirs);
    EXPECT_EQ(alignmentOf(drawing).sampleLineGroups.back().file, civil::kNoFile);
  }
  {
    // Written by another program at the very end.
    civil::Drawing drawing = changed();
    SaveOptions options;
    options.progress = [&](const Progress& progress) {
      if (progress.bytesDone == progress.bytesTotal) writeBytes(sidePath, "theirs");
      return true;
    };
    EXPECT_THAT(projectError(drawing, roadPath, options), HasSubstr("another program wrote the file while"));
    EXPECT_EQ(bytesOf(roadPath), road);
    EXPECT_EQ(bytesOf(sidePath), "theirs");
  }
  {
    civil::Drawing drawing = changed();
    std::filesystem::remove(sidePath);
    std::filesystem::create_directory(sidePath);
    EXPECT_THAT(projectError(drawing, roadPath), HasSubstr("is not a regular file"));
    EXPECT_EQ(bytesOf(roadPath), road);
    std::filesystem::remove(sidePath);
  }
  {
    civil::Drawing drawing = changed();
    SaveOptions options;
    options.progress = [](const Progress& progress) { return progress.bytesDone < progress.bytesTotal; };
    EXPECT_THAT(projectError(drawing, roadPath, options), HasSubstr("cancelled"));
    EXPECT_EQ(bytesOf(roadPath), road);
    EXPECT_EQ(bytesOf(sidePath), ownCorridor());
  }
  EXPECT_EQ(folder_.temporaryFiles(), 0U);
}

TEST_F(ProjectSaving, ConvertedAndSwappedFilesAreWrittenInTheirOwnTerms) {
  const std::string road = write("road.xml", metric(northward("")));
  const struct {
    const char* unit;
    bool isSwapped;
  } rows[] = {{"foot", false}, {"USSurveyFoot", false}, {"USSurveyFoot", true}, {"meter", true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.unit) + (row.isSwapped ? ", swapped" : ""));
    const std::string text = inUnit(
        row.unit,
        "<CgPoints><CgPoint name=\"1\">1.1 2.7 3.3</CgPoint><CgPoint name=\"2\">1 2</CgPoint></CgPoints>" +
            alignment("<CoordGeom><Line><Start>1000.123 2000.456</Start><End>1400.7 2333.3</End></Line></CoordGeom>"
                      "<CrossSects name=\"G\"><CrossSect sta=\"10.1\" name=\"a\"><CrossSectSurf "
                      "name=\"s\"><PntList2D>-3.3 1 7.7 1</PntList2D></CrossSectSurf></CrossSect><CrossSect "
                      "sta=\"20.3\" name=\"b\"/></CrossSects>"));
    const std::string side = write("side.xml", text);
    const std::vector<ProjectFile> files{{road}, {side, row.isSwapped}};
    const ProjectOptions options{.progress = {}, .convertUnits = true};
    civil::Drawing drawing = readProject(files, options);
    civil::AlignmentObject& other = *drawing.siteless.alignments.at(1);
    civil::addSampleLineGroup(drawing, other, "New", linesEvery(other, 10));
    civil::addProfile(drawing, other, "P", civil::Profile::ground({{{0, 1.0 / 3}, {7.7, 2}}, {{9, 3}, {11, 4}}}));
    civil::addPointGroup(drawing, "Two", {drawing.points[1].number, drawing.points[0].number});
    other.sampleLineGroups[0].name = "renamed";
    saveProject(drawing, road);
    EXPECT_EQ(bytesOf(road), metric(northward("")));
    civil::Drawing again = readProject(files, options);
    EXPECT_EQ(differenceOfFiles(drawing, again), "");
    const auto& lines = other.sampleLineGroups.back().lines;
    const auto& others = again.siteless.alignments[1]->sampleLineGroups.back().lines;
    for (std::size_t l = 0; l < lines.size(); ++l) {
      for (std::size_t v = 0; v < lines[l].vertices.size(); ++v)
        EXPECT_DOUBLE_EQ(lines[l].vertices[v].x, others[l].vertices[v].x);
    }
    // What came from the file is untouched to the bit.
    for (std::size_t v = 0; v < 2; ++v) {
      EXPECT_EQ(other.sampleLineGroups[0].lines[0].vertices[v].x,
                again.siteless.alignments[1]->sampleLineGroups[0].lines[0].vertices[v].x);
    }
    EXPECT_THAT(bytesOf(side), HasSubstr("<CrossSect sta=\"10.1\" name=\"a\">"));
    const std::string bytes = bytesOf(side);
    saveProject(drawing, road);
    EXPECT_EQ(bytesOf(side), bytes);
  }
}

TEST_F(ProjectSaving, CorridorsOfConvertedFilesTakeStations) {
  const std::string road = write("road.xml", metric(northward("")));
  const std::string side =
      write("side.xml", replaced(ownCorridor(), "Metric linearUnit=\"meter\"", "Imperial linearUnit=\"foot\""));
  const ProjectOptions options{.progress = {}, .convertUnits = true};
  civil::Drawing drawing = readProject({{road}, {side}}, options);
  civil::addStation(drawing.corridors.at(0).baselines.at(0).regions.at(0), 125.5 * 0.3048, "Gate");
  civil::Rebuilt done;
  civil::rebuild(drawing.corridors[0], done);
  saveProject(drawing, road);
  EXPECT_THAT(bytesOf(side), HasSubstr("value=\"100.000 125.5 150 175.5 200\""));
  civil::Drawing again = readProject({{road}, {side}}, options);
  EXPECT_EQ(differenceOfFiles(drawing, again), "");
}

TEST_F(ProjectSaving, MembersInOtherFilesComeBackWithThem) {
  const std::string first =
      write("first.xml", points("<CgPoint name=\"1\">0 0</CgPoint><CgPoint name=\"2\">1 1</CgPoint>"));
  const std::string second =
      write("second.xml", points("<CgPoint name=\"2\">5 5</CgPoint><CgPoint name=\"7\">6 6</CgPoint>"));
  civil::Drawing drawing = readProject({{first}, {second}});
  const std::vector<std::int32_t> numbers{2, drawing.points[2].number, 7};
  civil::addPointGroup(drawing, "Mixed", numbers);
  civil::addPointGroup(drawing, "There", {7, drawing.points[2].number});
  EXPECT_THAT(saveProject(drawing, first), SizeIs(2));
  civil::Drawing again = readProject({{first}, {second}});
  ASSERT_THAT(again.pointGroups, SizeIs(2));
  EXPECT_EQ(again.pointGroups[0].name, "Mixed");
  EXPECT_THAT(again.pointGroups[0].numbers, ::testing::UnorderedElementsAreArray(numbers));
  EXPECT_EQ(again.pointGroups[1].file, 1U);
  EXPECT_EQ(again.pointGroups[1].numbers, drawing.pointGroups[1].numbers);
  const std::string firstBytes = bytesOf(first);
  EXPECT_THAT(saveProject(again, first), SizeIs(1));
  EXPECT_EQ(bytesOf(first), firstBytes);

  // Alone it holds its own, and doesn't forget the others.
  civil::Drawing alone = readDrawing(first);
  EXPECT_THAT(alone.pointGroups.at(0).numbers, ElementsAre(2));
  EXPECT_THAT(alone.pointGroups.at(0).numbersElsewhere, SizeIs(2));
  EXPECT_EQ(diagnosticsOf(alone), diagnosticsOf(readDrawing(second)));
  alone.pointGroups[0].name = "Renamed";
  saveProject(alone, first);
  EXPECT_THAT(readProject({{first}, {second}}).pointGroups.at(0).numbers, SizeIs(3));
}

TEST_F(ProjectSaving, AFileWhoseEncodingCantBeKeptIsNamed) {
  const std::string road = write("road.xml", metric(northward("")));
  const std::string jis =
      "<?xml version=\"1.0\" encoding=\"ISO-2022-JP\"?><!--\x1B$B\x1B$BF;O)\x1B(B-->" + metric(northward(""));
  const std::string side = write("side.xml", jis);
  civil::Drawing drawing = readProject({{road}, {side}});
  civil::AlignmentObject& other = *drawing.siteless.alignments.at(1);
  civil::addSampleLineGroup(drawing, other, "S", linesEvery(other, 25));
  EXPECT_THAT(projectError(drawing, road), HasSubstr("save it as UTF-8 first (" + side));
  EXPECT_EQ(bytesOf(side), jis);
}

TEST_F(ProjectSaving, FilesKeepTheirNamesWhereTheDrawingTellsThemApart) {
  const std::string trees =
      points("<CgPoint name=\"1\">0 0</CgPoint></CgPoints><CgPoints name=\"Trees\"><CgPoint name=\"2\">1 1</CgPoint>");
  const std::string first = write("first.xml", trees);
  const std::string second = write("second.xml", trees);
  civil::Drawing drawing = readProject({{first}, {second}});
  ASSERT_EQ(drawing.pointGroups.at(1).name, "Trees (2)");
  drawing.pointGroups[1].description = "said";
  EXPECT_THAT(saveProject(drawing, first), SizeIs(2));
  EXPECT_EQ(bytesOf(first), trees);
  EXPECT_THAT(bytesOf(second), HasSubstr("<CgPoints name=\"Trees\" desc=\"said\">"));
}

// ---------------------------------------------------------------- numbers of converted files

TEST(ConvertedNumbers, ReadBackToTheBitInTheirShortestForm) {
  auto random = test::seededByTestName();
  std::uniform_int_distribution<std::int64_t> digits(-9'999'999'999, 9'999'999'999);
  std::uniform_int_distribution<int> places(0, 6);
  for (const double factor : {0.3048, 1200.0 / 3937.0, 3937.0 / 1200.0, 1.0 / 0.3048, 0.001, 1000.0}) {
    detail::FileTerms terms;
    terms.lengthFactor = factor;
    for (int i = 0; i < 5000; ++i) {
      const double given = static_cast<double>(digits(random)) / std::pow(10.0, places(random));
      const double length = given * factor;
      const std::string text = terms.lengthText(length);
      EXPECT_EQ(numberIn(text) * factor, length) << given << " by " << factor;
      EXPECT_LE(text.size(), detail::numberText(given).size());
      // Of any other length it is the nearest that there is.
      const double made = length + std::abs(length) * 1e-13;
      EXPECT_DOUBLE_EQ(numberIn(terms.lengthText(made)) * factor, made);
    }
  }
}

}  // namespace
}  // namespace lvx::landxml
