#include "view/section_model.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "projection/projection_computation.h"
#include "projection/sample_line_collector.h"
#include "runtime/model_objects.h"
#include "section_drawings.h"
#include "support/corridor_makers.h"
#include "support/places.h"
#include "support/random_numbers.h"

namespace lvx::view {
namespace {

using civil::Vec2;
using testing::ElementsAre;
using testing::IsEmpty;

/// Offsets and elevations, each point once where it stands twice running.
using Rows = std::vector<Vec2>;

void add(Rows& rows, Vec2 row) {
  if (rows.empty() || length(row - rows.back()) > 1e-9) rows.push_back(row);
}

Rows rowsOf(const Lines& lines) {
  Rows rows;
  for (const Line& line : lines)
    for (const Vec2 place : line) add(rows, place);
  return rows;
}

Rows rowsOf(const projection::tsl& record) {
  Rows rows;
  for (std::int32_t i = 0; i < record.leftPoints.count(); ++i)
    add(rows, {record.leftOffsets[i].first, record.leftPoints[i].third});
  // All samples: where the ground starts right of the axis, the report's writers drop the first, which isn't the centre.
  for (std::int32_t i = 0; i < record.rightPoints.count(); ++i)
    add(rows, {record.rightOffsets[i].first, record.rightPoints[i].third});
  return rows;
}

struct Compared {
  std::size_t sections = 0;
  std::size_t rows = 0;
};

/// Expects the same offsets and elevations in the picture and in the report, for each line that the report takes.
Compared compareWithReport(const runtime::OpenDrawingRef& drawing, const wchar_t* site, const wchar_t* alignment,
                           const wchar_t* surface) {
  Compared compared;
  const auto document = runtime::makeDocument(drawing);
  const auto database = runtime::makeDatabase(drawing);
  framework::OwnedList<projection::tsl> records;
  projection::collectSampleLines(document, database, site, alignment, projection::GroupFilter::allGroups(),
                                 records.get());
  projection::projectSampleLines(document, surface, records.get());
  for (const projection::tsl* record : records.get()) {
    const auto section = sectionOf(drawing->drawing(), static_cast<civil::Handle>(record->lineId));
    if (!section || section->grounds.size() != 1) {
      ADD_FAILURE() << "no section with one ground for line " << record->lineId;
      continue;
    }
    EXPECT_EQ(section->station, record->station);
    const Rows picture = rowsOf(section->grounds[0].lines);
    const Rows report = rowsOf(*record);
    EXPECT_EQ(picture.size(), report.size()) << section->name << " at " << section->station;
    for (std::size_t i = 0; i < std::min(report.size(), picture.size()); ++i) {
      EXPECT_NEAR(picture[i].x, report[i].x, 1e-9) << section->name << " at " << section->station << " row " << i;
      EXPECT_NEAR(picture[i].y, report[i].y, 1e-9) << section->name << " at " << section->station << " row " << i;
    }
    ++compared.sections;
    compared.rows += report.size();
  }
  return compared;
}

TEST(SectionModel, HasTheNumbersOfTheProjectionReport) {
  const auto drawing =
      std::make_shared<runtime::OpenDrawing>(landxml::readDrawing(test::inSource("/examples/valley-road.xml")));
  const std::pair<const wchar_t*, const wchar_t*> alignments[] = {
      {L"", L"Forest track"}, {L"Valley road upgrade", L"Valley road"}, {L"Valley road upgrade", L"Mill lane"}};
  Compared all;
  for (const auto& [site, alignment] : alignments) {
    const Compared one = compareWithReport(drawing, site, alignment, L"Existing ground");
    all.sections += one.sections;
    all.rows += one.rows;
  }
  // The report leaves out lines at the station of others.
  EXPECT_GT(all.sections, 80U);
  EXPECT_GT(all.rows, 3000U);
}

// One rule in two places: windows must not depend on a report module, and a report module on no window. So this holds
// both together, over lines that no example has: bent, on one side, skewed, back and forth, off the ends.
TEST(SectionModel, MeasuresRandomSampleLinesAsTheProjectionReportDoes) {
  std::mt19937 random = test::seededByTestName();
  std::uniform_real_distribution<double> share(0.0, 1.0);
  const auto between = [&](double from, double to) { return from + (to - from) * share(random); };

  civil::Drawing plain;
  auto axis = std::make_unique<civil::AlignmentObject>();
  axis->handle = 1;
  axis->name = "Axis";
  axis->geometry = civil::Alignment::fromText("start 100 at 0 0 heading 90; line 60; arc 80 R 70 left; line 40");
  civil::SampleLineGroup group;
  group.handle = 2;
  group.name = "Lines";
  constexpr int kLines = 200;
  for (int i = 0; i < kLines; ++i) {
    civil::SampleLine line;
    line.handle = 100 + static_cast<civil::Handle>(i);
    line.name = "L";
    line.station = 100.0 + 180.0 * i / (kLines - 1);
    const Vec2 centre = axis->geometry.poseAt(line.station).value().point;
    const int vertices = 2 + static_cast<int>(between(0.0, 4.0));
    for (int vertex = 0; vertex < vertices; ++vertex)
      line.vertices.push_back({centre.x + between(-30.0, 30.0), centre.y + between(-30.0, 30.0)});
    if (i % 5 == 0) line.vertices[line.vertices.size() / 2] = centre;
    if (i % 7 == 0) line.vertices.push_back(line.vertices.front());
    group.lines.push_back(std::move(line));
  }
  axis->sampleLineGroups.push_back(std::move(group));
  plain.siteless.alignments.push_back(std::move(axis));
  constexpr std::int32_t kSide = 24;
  std::vector<civil::Vec3> points;
  std::vector<civil::Triangle> triangles;
  for (std::int32_t row = 0; row < kSide; ++row)
    for (std::int32_t column = 0; column < kSide; ++column) {
      points.push_back({-20.0 + 8.0 * column, -30.0 + 8.0 * row, between(400.0, 410.0)});
      if (row == 0 || column == 0) continue;
      const std::int32_t here = row * kSide + column;
      triangles.push_back({here - kSide - 1, here - kSide, here});
      triangles.push_back({here - kSide - 1, here, here - 1});
    }
  civil::SurfaceObject ground;
  ground.handle = 3;
  ground.name = "Ground";
  ground.surface = civil::TinSurface(std::move(points), std::move(triangles));
  plain.surfaces.push_back(std::move(ground));

  const Compared compared =
      compareWithReport(std::make_shared<runtime::OpenDrawing>(std::move(plain)), L"", L"Axis", L"Ground");
  EXPECT_EQ(compared.sections, std::size_t{kLines});
  EXPECT_GT(compared.rows, 1000U);
}

TEST(SectionModel, StandsOnTheSurfaceEverywhere) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  const civil::AlignmentObject& road = *drawing.sites[0].alignments[0];
  const civil::TinSurface& ground = drawing.surfaces[0].surface;
  std::size_t points = 0;
  for (const civil::SampleLine& line : road.sampleLineGroups[0].lines) {
    const auto isSquare = [&](Vec2 vertex) {
      return std::abs(road.geometry.stationOffset(vertex)->station - line.station) < 1e-3;
    };
    if (!std::all_of(line.vertices.begin(), line.vertices.end(), isSquare)) continue;
    const auto section = sectionOf(drawing, line.handle);
    for (const Line& piece : section->grounds[0].lines) {
      for (std::size_t i = 1; i < piece.size(); ++i) {
        // Square to the road, so the offset leads back to the place.
        const double offset = (piece[i - 1].x + piece[i].x) / 2;
        const auto place = road.geometry.pointLocation(line.station, offset);
        const auto elevation = ground.elevationAt(place->point);
        ASSERT_TRUE(elevation) << line.name << " at " << offset;
        EXPECT_NEAR(*elevation, (piece[i - 1].y + piece[i].y) / 2, 0.002) << line.name << " at " << offset;
        ++points;
      }
    }
  }
  EXPECT_GT(points, 1000U);
}

// ---------------------------------------------------------------- ground

TEST(SectionModel, MeasuresOffsetsFromTheAlignmentLeftNegative) {
  SectionDrawing drawing;
  drawing.addStrip({-30, 13}, {30, 7});  // falls to the left, which is north of a road to the east
  const auto section = drawing.section();
  EXPECT_EQ(section->name, "L1");
  EXPECT_EQ(section->groupName, "Lines");
  EXPECT_EQ(section->alignmentName, "Axis");
  EXPECT_EQ(section->station, 150.0);
  EXPECT_EQ(section->leastOffset, -20.0);
  EXPECT_EQ(section->greatestOffset, 20.0);
  ASSERT_EQ(section->grounds.size(), 1U);
  ASSERT_EQ(section->grounds[0].lines.size(), 1U);
  const Line& line = section->grounds[0].lines[0];
  EXPECT_NEAR(line.front().x, -20, 1e-12);
  EXPECT_NEAR(line.front().y, 8, 1e-12);
  EXPECT_NEAR(line.back().x, 20, 1e-12);
  EXPECT_NEAR(line.back().y, 12, 1e-12);
  EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](Vec2 a, Vec2 b) { return a.x < b.x; }));
}

TEST(SectionModel, LeavesAGapWhereTheGroundEnds) {
  SectionDrawing drawing;
  drawing.addStrips({{{5, 10}, {30, 10}}, {{-30, 12}, {-8, 12}}});
  const auto section = drawing.section();
  const Lines& lines = section->grounds[0].lines;
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NEAR(lines[0].front().x, -20, 1e-12);
  EXPECT_NEAR(lines[0].back().x, -5, 1e-12);
  EXPECT_NEAR(lines[1].front().x, 8, 1e-12);
  EXPECT_NEAR(lines[1].back().x, 20, 1e-12);
  EXPECT_FALSE(elevationAt(lines, 0));
}

TEST(SectionModel, DrawsNothingWhereTheLineMissesTheSurface) {
  SectionDrawing drawing;
  drawing.addStrip({100, 10}, {200, 10});
  const auto section = drawing.section();
  ASSERT_EQ(section->grounds.size(), 1U);
  EXPECT_THAT(section->grounds[0].lines, IsEmpty());
  EXPECT_TRUE(section->box().isEmpty());
  EXPECT_FALSE(section->nearest({0, 0}, {1e9, 1e9}));
}

TEST(SectionModel, DrawsAPointWhereTheLineTouchesTheSurface) {
  SectionDrawing drawing;
  drawing.addSurface({{50, 0, 5}, {80, 10, 5}, {80, -10, 5}}, {{0, 1, 2}});
  EXPECT_THAT(drawing.section()->grounds[0].lines, ElementsAre(ElementsAre(Vec2{0, 5})));
}

TEST(SectionModel, RunsOnAlongABorderOfTheSurface) {
  auto random = lvx::test::seededByTestName();
  for (int round = 0; round < 500; ++round) {
    const double angle = static_cast<double>(random() % 6'283'185) * 1e-6;
    const Vec2 along = civil::unit(angle);
    const Vec2 a{2'600'000.123 + round, 1'200'000.456};
    const Vec2 b = a + 37.89 * along;
    const Vec2 road = civil::unit(angle + civil::kPi / 2);
    const Vec2 start = 0.5 * (a + b) - 50.0 * road;
    const civil::Alignment axis(100.0, {civil::makeLine(start, start + 100.0 * road)});
    const Vec2 middle = axis.poseAt(150.0)->point;
    const Vec2 beside = middle + 10.0 * Vec2{-along.y, along.x};
    SectionDrawing drawing;
    drawing.setLine({a, b});
    drawing.setAxis(axis);
    // The middles of the border's edges, rounded, lie on the surface or just off it.
    drawing.addSurface({{a.x, a.y, 1}, {middle.x, middle.y, 2}, {b.x, b.y, 3}, {beside.x, beside.y, 4}},
                       {{0, 1, 3}, {1, 2, 3}});
    const Lines lines = drawing.section()->grounds[0].lines;
    ASSERT_EQ(lines.size(), 1U) << round;
    ASSERT_EQ(lines[0].size(), 3U) << round;
    EXPECT_NEAR(std::abs(lines[0].back().x - lines[0].front().x), 37.89, 1e-6) << round;
  }
}

TEST(SectionModel, FollowsABentSampleLine) {
  SectionDrawing drawing;
  drawing.addStrip({-50, 10}, {50, 20});
  drawing.setLine({{60, 30}, {50, 10}, {50, -20}});
  const auto section = drawing.section();
  const Lines& lines = section->grounds[0].lines;
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NEAR(section->leastOffset, -30, 1e-12);
  // The outer leg is measured along itself from its inner end, as the report does.
  EXPECT_NEAR(lines[0].front().x, -10 - std::hypot(10, 20), 1e-9);
  EXPECT_NEAR(lines[0].front().y, 18, 1e-9);
}

TEST(SectionModel, ShowsOneGroundForEachSurface) {
  SectionDrawing drawing;
  drawing.addStrip({-50, 10}, {50, 10});
  drawing.addStrip({-50, 11}, {50, 11});
  drawing.addSurface({}, {});
  const auto section = drawing.section();
  ASSERT_EQ(section->grounds.size(), 3U);
  EXPECT_EQ(section->grounds[1].lines.size(), 1U);
  EXPECT_THAT(section->grounds[2].lines, IsEmpty());
  EXPECT_EQ(section->grounds[1].name, "Surface 2");
}

TEST(SectionModel, NeedsNoPointOfTheAlignmentAtTheLinesStation) {
  SectionDrawing drawing;
  drawing.addStrip({-50, 10}, {50, 10});
  drawing.setStation(1000.0);
  const auto section = drawing.section();
  const Lines& lines = section->grounds[0].lines;
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NEAR(lines[0].front().x, -20, 1e-12);
  EXPECT_NEAR(lines[0].back().x, 20, 1e-12);
}

TEST(SectionModel, IsEmptyWithoutGeometryToMeasureAgainst) {
  SectionDrawing drawing;
  drawing.addStrip({-50, 10}, {50, 10});
  drawing.setAxis(civil::Alignment());
  const auto section = drawing.section();
  ASSERT_TRUE(section);
  EXPECT_THAT(section->grounds[0].lines, IsEmpty());
  drawing.setLine({});
  EXPECT_THAT(drawing.section()->grounds[0].lines, IsEmpty());
}

TEST(SectionModel, IsNoneForWhatIsNoSampleLine) {
  SectionDrawing drawing;
  for (const civil::Handle handle : {civil::Handle{0}, civil::Handle{1}, civil::Handle{999}}) {
    EXPECT_FALSE(sectionOf(drawing.drawing(), handle)) << handle;
    EXPECT_THAT(sampleLinesBeside(drawing.drawing(), handle), IsEmpty()) << handle;
  }
}

// ---------------------------------------------------------------- corridors

constexpr const char* kRegion =
    "100..200 | 150 Pave+Top(ETW:-4/-0.1 Crown:0 ETW:4/-0.1) Ditch(4/-0.1 6/-1) | 160 Pave(-4 4)";

TEST(SectionModel, PutsTheCorridorOntoItsProfile) {
  SectionDrawing drawing;
  drawing.addCorridor({kRegion});
  const auto section = drawing.section();
  ASSERT_EQ(section->corridors.size(), 1U);
  const SectionCorridor& corridor = section->corridors[0];
  EXPECT_EQ(corridor.name, "Road");
  EXPECT_FALSE(corridor.isComputed);
  EXPECT_NEAR(corridor.profileElevation, 401.5, 1e-12);
  ASSERT_EQ(corridor.parts.size(), 2U);
  EXPECT_THAT(corridor.parts[0].codes, ElementsAre("Pave", "Top"));
  EXPECT_THAT(corridor.parts[0].points[1].codes, ElementsAre("Crown"));
  const Lines lines = corridor.lines();
  EXPECT_NEAR(lines[0][0].y, 401.4, 1e-9);
  EXPECT_NEAR(lines[1][1].x, 6.0, 1e-12);
  EXPECT_NEAR(lines[1][1].y, 400.5, 1e-9);
}

TEST(SectionModel, LeadsAClosedPartBackToItsFirstPoint) {
  SectionCorridor corridor;
  corridor.parts.push_back({{"Base"}, {{{-3, 1}, {}}, {{3, 1}, {}}, {{0, 0}, {}}}, true});
  corridor.parts.push_back({{"Top"}, {{{-3, 1}, {}}, {{3, 1}, {}}, {{0, 2}, {}}}, false});
  // Some programs repeat the first point by themselves.
  corridor.parts.push_back({{"Base"}, {{{-3, 1}, {}}, {{3, 1}, {}}, {{0, 0}, {}}, {{-3, 1}, {}}}, true});
  corridor.parts.push_back({{"Line"}, {{{-3, 1}, {}}, {{3, 1}, {}}}, true});
  const Lines lines = corridor.lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_THAT(lines[0], ElementsAre(Vec2{-3, 1}, Vec2{3, 1}, Vec2{0, 0}, Vec2{-3, 1}));
  EXPECT_EQ(lines[1].size(), 3U);
  EXPECT_EQ(lines[2].size(), 4U);
  EXPECT_EQ(lines[3].size(), 2U) << "two points enclose nothing";
}

TEST(SectionModel, DrawsTheLayersOfTheExampleClosed) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  std::size_t closed = 0;
  for (const civil::Corridor& corridor : drawing.corridors)
    for (const civil::Baseline& baseline : corridor.baselines)
      for (const civil::Region& region : baseline.regions)
        for (const civil::CorridorSection& section : region.sections)
          for (const civil::SectionPart& part : section.parts) {
            const std::vector<std::string> codes = part.codes.list();
            EXPECT_EQ(part.isClosed, !codes.empty() && (codes.front() == "Base" || codes.front() == "Curb"));
            if (part.isClosed) ++closed;
          }
  EXPECT_GT(closed, 10U);
}

TEST(SectionModel, HasNoCorridorWhereItHasNoSection) {
  SectionDrawing drawing;
  drawing.addCorridor({kRegion});
  drawing.setStation(155.0);
  EXPECT_THAT(drawing.section()->corridors, IsEmpty());
  drawing.setStation(160.0);
  EXPECT_EQ(drawing.section()->corridors.size(), 1U);
}

TEST(SectionModel, HasNoCorridorOfAnotherAlignment) {
  SectionDrawing drawing;
  drawing.addCorridor({kRegion}, false);
  EXPECT_THAT(drawing.section()->corridors, IsEmpty());
}

TEST(SectionModel, DrawsACorridorWithoutAProfileAtItsOwnElevations) {
  SectionDrawing drawing;
  drawing.addCorridor({kRegion});
  drawing.corridors()[0].baselines[0].profile = nullptr;
  EXPECT_NEAR(drawing.section()->corridors[0].lines()[0][0].y, -0.1, 1e-12);
}

// ---------------------------------------------------------------- reading off

TEST(SectionModel, FindsTheNearestPointWithItsCodes) {
  SectionDrawing drawing;
  drawing.addStrip({-30, 401}, {30, 401});
  drawing.addCorridor({kRegion});
  const auto section = drawing.section();
  const auto near = section->nearest({4.1, 401.42}, {1, 1});
  ASSERT_TRUE(near);
  EXPECT_EQ(near->owner, SectionVertex::Owner::Corridor);
  EXPECT_EQ(near->place.x, 4.0);
  EXPECT_THAT(near->codes, ElementsAre("ETW", "Pave", "Top"));
  EXPECT_FALSE(section->nearest({4.1, 405}, {1, 1}));

  const auto onGround = section->nearest({20.1, 401}, {1, 1}, [](SectionVertex::Owner owner, std::size_t) {
    return owner == SectionVertex::Owner::Ground;
  });
  ASSERT_TRUE(onGround);
  EXPECT_NEAR(onGround->place.x, 20, 1e-9);
  EXPECT_THAT(onGround->codes, IsEmpty());
  EXPECT_FALSE(section->nearest({20.1, 401}, {1, 1}, [](SectionVertex::Owner, std::size_t) { return false; }));
}

TEST(SectionModel, ListsTheLinesOfItsGroupByStation) {
  SectionDrawing drawing;
  drawing.addLine("L3", 180);
  drawing.addLine("L2", 120);
  std::vector<std::string> names;
  for (const SampleLineEntry& entry : sampleLinesBeside(drawing.drawing(), SectionDrawing::kLine))
    names.push_back(entry.name);
  EXPECT_THAT(names, ElementsAre("L2", "L1", "L3"));
}

}  // namespace
}  // namespace lvx::view
