#include "properties/properties.h"

#include <cmath>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "properties/surface_figures.h"
#include "support/places.h"

namespace lvx::properties {
namespace {

Value valueOf(const Properties& told, Term term) {
  for (const Row& row : told.rows)
    if (row.term == term) return row.value;
  ADD_FAILURE() << "no row " << static_cast<int>(term);
  return {};
}
double numberOf(const Properties& told, Term term) { return std::get<double>(valueOf(told, term)); }

const Table& tableOf(const Properties& told, Term title) {
  for (const Table& table : told.tables)
    if (table.title == title) return table;
  throw std::runtime_error("no such table");
}
Value cellOf(const Table& table, std::size_t row, Term column) {
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (table.columns[i].term == column) return table.cell(row, i);
  ADD_FAILURE() << "no column " << static_cast<int>(column);
  return {};
}
double numberIn(const Table& table, std::size_t row, Term column) {
  return std::get<double>(cellOf(table, row, column));
}

/// A drawing with one alignment from station 1000: a line, a clothoid to R 300, an arc; and what a test adds.
class PropertiesTest : public testing::Test {
 protected:
  PropertiesTest() {
    auto axis = std::make_unique<civil::AlignmentObject>();
    axis->handle = 1;
    axis->name = "Axis";
    axis->geometry = civil::Alignment::fromText(
        "start 1000 at 500 200 heading 90; line 100; clothoid 75 R inf..300 right; arc 80 R 300 right");
    civil::ProfileObject design;
    design.handle = 2;
    design.name = "Design";
    design.profile =
        civil::Profile::design({{1000, 100}, {1100, 102, civil::VerticalCurveKind::Parabola, 40}, {1200, 101}});
    axis->profiles.push_back(std::move(design));
    civil::ProfileObject ground;
    ground.handle = 3;
    ground.name = "Ground";
    ground.profile = civil::Profile::ground({{{1000, 99}, {1050, 100}}, {{1080, 101}, {1100, 100.5}}});
    axis->profiles.push_back(std::move(ground));
    drawing_.siteless.alignments.push_back(std::move(axis));
    drawing_.path = "road.xml";
  }
  civil::AlignmentObject& axis() { return *drawing_.siteless.alignments[0]; }
  Properties told(civil::Handle handle) {
    index_ = std::make_unique<civil::DrawingIndex>(drawing_);
    return propertiesOf({drawing_, *index_, &axis()}, handle);
  }
  void addPoint(std::int32_t number, civil::Vec3 place, const char* name = "", bool hasElevation = true) {
    civil::Point point;
    point.handle = 100 + static_cast<civil::Handle>(number);
    point.number = number;
    point.position = place;
    point.texts = {name, "TR", "Oak"};
    point.hasElevation = hasElevation;
    drawing_.points.push_back(std::move(point));
  }

  civil::Drawing drawing_;
  std::unique_ptr<civil::DrawingIndex> index_;
};

TEST_F(PropertiesTest, TellsOfAPointWhereItIsAndWhereItLiesAgainstTheAlignment) {
  addPoint(7, {510, 203, 312.5}, "GP7");
  const Properties point = told(107);
  EXPECT_EQ(point.kind, Term::Point);
  EXPECT_EQ(point.name, "GP7");
  EXPECT_EQ(numberOf(point, Term::Number), 7.0);
  EXPECT_EQ(numberOf(point, Term::Easting), 510.0);
  EXPECT_EQ(numberOf(point, Term::Northing), 203.0);
  EXPECT_EQ(numberOf(point, Term::Elevation), 312.5);
  EXPECT_EQ(valueOf(point, Term::RawDescription), Value(std::string("TR")));
  EXPECT_EQ(valueOf(point, Term::FullDescription), Value(std::string("Oak")));
  EXPECT_EQ(valueOf(point, Term::Alignment), Value(std::string("Axis")));
  EXPECT_NEAR(numberOf(point, Term::Station), 1010.0, 1e-9);
  EXPECT_NEAR(numberOf(point, Term::Offset), -3.0, 1e-9);
  EXPECT_EQ(valueOf(point, Term::File), Value(std::string("road.xml")));
}

TEST_F(PropertiesTest, LeavesAMissingElevationAndAMissingAlignmentOut) {
  addPoint(7, {510, 203, 0}, "", false);
  drawing_.points[0].file = civil::kNoFile;
  index_ = std::make_unique<civil::DrawingIndex>(drawing_);
  const Properties point = propertiesOf({drawing_, *index_, nullptr}, 107);
  EXPECT_EQ(point.name, "7");
  EXPECT_EQ(valueOf(point, Term::Elevation), Value());
  EXPECT_EQ(valueOf(point, Term::File), Value(Term::MadeHere));
  for (const Row& row : point.rows) EXPECT_NE(row.term, Term::Offset);
}

TEST_F(PropertiesTest, ListsTheElementsOfAnAlignment) {
  const Properties alignment = told(1);
  EXPECT_NEAR(numberOf(alignment, Term::Length), 255.0, 1e-9);
  const Table& elements = tableOf(alignment, Term::Elements);
  ASSERT_EQ(elements.rowCount, 3U);
  EXPECT_EQ(cellOf(elements, 0, Term::Type), Value(Term::Line));
  EXPECT_EQ(cellOf(elements, 0, Term::RadiusIn), Value());
  EXPECT_NEAR(numberIn(elements, 0, Term::Azimuth), civil::kPi / 2.0, 1e-12);
  EXPECT_EQ(cellOf(elements, 0, Term::Turn), Value());

  EXPECT_EQ(cellOf(elements, 1, Term::Type), Value(Term::Clothoid));
  EXPECT_EQ(numberIn(elements, 1, Term::StartStation), 1100.0);
  EXPECT_EQ(numberIn(elements, 1, Term::Length), 75.0);
  EXPECT_TRUE(std::isinf(numberIn(elements, 1, Term::RadiusIn)));
  EXPECT_NEAR(numberIn(elements, 1, Term::RadiusOut), 300.0, 1e-9);
  EXPECT_NEAR(numberIn(elements, 1, Term::ClothoidParameter), 150.0, 1e-9) << "A squared is length times radius";
  EXPECT_EQ(cellOf(elements, 1, Term::Turn), Value(Term::Right));
  EXPECT_EQ(numberIn(elements, 1, Term::EastStart), 600.0);

  EXPECT_EQ(cellOf(elements, 2, Term::ClothoidParameter), Value());
  EXPECT_NEAR(numberIn(elements, 2, Term::RadiusIn), 300.0, 1e-9);
  for (std::size_t row = 0; row + 1 < elements.rowCount; ++row) {
    EXPECT_NEAR(numberIn(elements, row, Term::EastEnd), numberIn(elements, row + 1, Term::EastStart), 1e-6);
    EXPECT_NEAR(numberIn(elements, row, Term::NorthEnd), numberIn(elements, row + 1, Term::NorthStart), 1e-6);
    EXPECT_TRUE(elements.place(row));
  }
}

TEST_F(PropertiesTest, ListsThePointsOfIntersectionWithTheirCurves) {
  const Properties profile = told(2);
  EXPECT_EQ(valueOf(profile, Term::Type), Value(Term::Design));
  EXPECT_NEAR(numberOf(profile, Term::LeastGrade), -0.01, 1e-12);
  EXPECT_NEAR(numberOf(profile, Term::GreatestGrade), 0.02, 1e-12);
  const Table& points = tableOf(profile, Term::IntersectionPoints);
  ASSERT_EQ(points.rowCount, 3U);
  EXPECT_EQ(cellOf(points, 0, Term::GradeIn), Value());
  EXPECT_NEAR(numberIn(points, 0, Term::GradeOut), 0.02, 1e-12);
  EXPECT_EQ(cellOf(points, 0, Term::Curve), Value());
  EXPECT_EQ(cellOf(points, 1, Term::Curve), Value(Term::Parabola));
  EXPECT_NEAR(numberIn(points, 1, Term::Length), 40.0, 1e-9);
  EXPECT_NEAR(numberIn(points, 1, Term::Radius), 40.0 / 0.03, 1e-6);
  EXPECT_NEAR(numberIn(points, 1, Term::KValue), 40.0 / 3.0, 1e-9);
  EXPECT_NEAR(numberIn(points, 1, Term::CurveStart), 1080.0, 1e-9);
  EXPECT_NEAR(numberIn(points, 1, Term::CurveEnd), 1120.0, 1e-9);
  EXPECT_EQ(cellOf(points, 2, Term::GradeOut), Value());
  EXPECT_EQ(points.place(1)->minX, 600.0);
}

TEST_F(PropertiesTest, TellsNoGradeAcrossAGapOfTheGround) {
  const Properties profile = told(3);
  EXPECT_EQ(numberOf(profile, Term::Gaps), 1.0);
  EXPECT_NEAR(numberOf(profile, Term::GreatestGrade), 0.02, 1e-12);
  const Table& points = tableOf(profile, Term::GroundPoints);
  ASSERT_EQ(points.rowCount, 4U);
  EXPECT_NEAR(numberIn(points, 0, Term::GradeOut), 0.02, 1e-12);
  EXPECT_EQ(cellOf(points, 1, Term::GradeOut), Value());
  EXPECT_NEAR(numberIn(points, 2, Term::GradeOut), -0.025, 1e-12);
  EXPECT_EQ(cellOf(points, 3, Term::GradeOut), Value());
}

TEST_F(PropertiesTest, ListsThePointsOfAGroupWithThoseThatAreMissing) {
  addPoint(7, {510, 203, 312.5});
  civil::PointGroup group;
  group.handle = 50;
  group.name = "Control";
  group.numbers = {7, 8};
  drawing_.pointGroups.push_back(std::move(group));
  const Properties told = this->told(50);
  EXPECT_EQ(told.kind, Term::PointGroup);
  const Table& points = tableOf(told, Term::Points);
  ASSERT_EQ(points.rowCount, 2U);
  EXPECT_EQ(numberIn(points, 0, Term::Easting), 510.0);
  EXPECT_NEAR(numberIn(points, 0, Term::Offset), -3.0, 1e-9);
  EXPECT_EQ(numberIn(points, 1, Term::Number), 8.0);
  EXPECT_EQ(cellOf(points, 1, Term::Easting), Value());
  EXPECT_FALSE(points.place(1));
}

TEST_F(PropertiesTest, TellsOfTheDrawingWhereNothingIsChosen) {
  addPoint(7, {510, 203, 312.5});
  for (const civil::Handle handle : {civil::Handle{0}, civil::Handle{4711}}) {
    const Properties told = this->told(handle);
    EXPECT_EQ(told.kind, Term::Path);
    EXPECT_EQ(numberOf(told, Term::Alignments), 1.0);
    EXPECT_EQ(tableOf(told, Term::Points).rowCount, 1U);
  }
}

/// Two squares of 10 by 10: one level at 5, one that rises to the east by 1 in 2.
civil::TinSurface twoSquares() {
  return {{{0, 0, 5}, {10, 0, 5}, {20, 0, 10}, {0, 10, 5}, {10, 10, 5}, {20, 10, 10}},
          {{0, 1, 4}, {0, 4, 3}, {1, 2, 5}, {1, 5, 4}}};
}

TEST(SurfaceFigures, MeasureALevelAndASlope) {
  const SurfaceFigures figures = figuresOf(twoSquares());
  EXPECT_NEAR(figures.area, 200.0, 1e-9);
  EXPECT_NEAR(figures.area3d, 100.0 + 100.0 * std::sqrt(1.25), 1e-9);
  EXPECT_EQ(figures.leastElevation, 5.0);
  EXPECT_EQ(figures.greatestElevation, 10.0);
  EXPECT_NEAR(figures.meanElevation, 6.25, 1e-9);
  EXPECT_NEAR(figures.borderLength, 60.0, 1e-9);
  EXPECT_EQ(figures.leastSlope, 0.0);
  EXPECT_NEAR(figures.greatestSlope, 0.5, 1e-12);
}

TEST(SurfaceFigures, StayExactFarFromTheOrigin) {
  std::vector<civil::Vec3> points;
  for (const civil::Vec3& p : {civil::Vec3{0, 0, 5}, {10, 0, 5}, {10, 10, 5}})
    points.push_back({p.x + 4.5e6, p.y + 5.4e6, p.z});
  const SurfaceFigures figures = figuresOf(civil::TinSurface(points, {{0, 1, 2}}));
  EXPECT_NEAR(figures.area, 50.0, 1e-6);
  EXPECT_NEAR(figures.meanElevation, 5.0, 1e-9);
}

TEST(SurfaceFigures, AreNothingWithoutGround) {
  const SurfaceFigures figures = figuresOf(civil::TinSurface({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}}, {{0, 1, 2}}));
  EXPECT_EQ(figures.area, 0.0);
  EXPECT_EQ(figures.leastSlope, 0.0);
  EXPECT_EQ(figures.borderLength, 0.0);
}

TEST_F(PropertiesTest, TellOfASurface) {
  civil::SurfaceObject object;
  object.handle = 60;
  object.name = "Ground";
  object.surface = twoSquares();
  drawing_.surfaces.push_back(std::move(object));
  const Properties surface = told(60);
  EXPECT_EQ(numberOf(surface, Term::Triangles), 4.0);
  EXPECT_NEAR(numberOf(surface, Term::Area), 200.0, 1e-9);
  EXPECT_NEAR(numberOf(surface, Term::GreatestSlope), 0.5, 1e-12);
  EXPECT_EQ(numberOf(surface, Term::GreatestEasting), 20.0);
}

TEST(Properties, AnswerForEveryObjectOfTheExampleInEveryCell) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  const civil::DrawingIndex index(drawing);
  const civil::AlignmentObject& axis = *drawing.sites[0].alignments[0];
  std::size_t objects = 0;
  std::size_t sectionTables = 0;
  const auto look = [&](civil::Handle handle) {
    ++objects;
    const Properties told = propertiesOf({drawing, index, &axis}, handle);
    EXPECT_FALSE(told.rows.empty());
    for (const Table& table : told.tables) {
      if (table.title == Term::CorridorPoints || table.title == Term::Sections) ++sectionTables;
      for (std::size_t row = 0; row < table.rowCount; ++row) {
        for (std::size_t column = 0; column < table.columns.size(); ++column) {
          const Value value = table.cell(row, column);
          const bool isText = std::holds_alternative<std::string>(value) || std::holds_alternative<Term>(value);
          EXPECT_FALSE(isText && isNumber(table.columns[column].form));
          EXPECT_FALSE(std::holds_alternative<double>(value) && !isNumber(table.columns[column].form));
        }
        if (table.place) static_cast<void>(table.place(row));
      }
      for (std::size_t column = 0; column < table.columns.size(); ++column)
        EXPECT_EQ(sorted(table, column, false, {}).size(), table.rowCount);
    }
  };
  look(0);
  for (const civil::Site& site : drawing.sites) {
    look(site.handle);
    for (const auto& alignment : site.alignments) {
      look(alignment->handle);
      for (const civil::ProfileObject& profile : alignment->profiles) look(profile.handle);
      for (const civil::SampleLineGroup& group : alignment->sampleLineGroups) {
        look(group.handle);
        for (const civil::SampleLine& line : group.lines) look(line.handle);
      }
    }
  }
  for (const civil::SurfaceObject& surface : drawing.surfaces) look(surface.handle);
  for (const civil::PointGroup& group : drawing.pointGroups) look(group.handle);
  for (const civil::Corridor& corridor : drawing.corridors) look(corridor.handle);
  look(drawing.points.at(0).handle);
  EXPECT_GT(objects, 60U);
  EXPECT_GT(sectionTables, 1U);
}

}  // namespace
}  // namespace lvx::properties
