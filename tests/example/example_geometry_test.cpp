#include <charconv>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "civil/alignment.h"
#include "civil/element.h"
#include "civil/profile.h"
#include "civil/tin_surface.h"
#include "support/places.h"
#include "support/xml_number.h"

/// The example against the civil geometry: two independent computations of the same roads have to agree.
namespace lvx {
namespace {

using test::numberIn;

std::vector<double> numbers(std::string_view text) {
  std::vector<double> values;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    double value = 0.0;
    const auto [next, error] = std::from_chars(at, end, value);
    if (error != std::errc{}) throw std::invalid_argument("not numbers: " + std::string(text));
    values.push_back(value);
    at = next == end ? end : next + 1;
  }
  return values;
}

civil::Vec2 pointIn(const pugi::xml_node& node, const char* tag) {
  const std::vector<double> values = numbers(node.child(tag).text().get());
  return {values.at(1), values.at(0)};
}

std::optional<double> radiusIn(const pugi::xml_node& spiral, const char* attribute) {
  if (std::string_view(spiral.attribute(attribute).value()) == "INF") return std::nullopt;
  return numbers(spiral.attribute(attribute).value()).at(0);
}

civil::Element elementOf(const pugi::xml_node& node) {
  const std::string_view kind = node.name();
  const civil::Vec2 start = pointIn(node, "Start");
  const civil::Vec2 end = pointIn(node, "End");
  if (kind == "Line") return civil::makeLine(start, end);
  const civil::Turn turn =
      std::string_view(node.attribute("rot").value()) == "ccw" ? civil::Turn::Left : civil::Turn::Right;
  if (kind == "Curve") return civil::makeArc(start, pointIn(node, "Center"), end, turn);
  return civil::makeClothoid(start, pointIn(node, "PI"), end, numbers(node.attribute("length").value()).at(0),
                             radiusIn(node, "radiusStart"), radiusIn(node, "radiusEnd"), turn);
}

civil::Alignment alignmentOf(const pugi::xml_node& node) {
  std::vector<civil::Element> elements;
  for (const pugi::xml_node& element : node.child("CoordGeom").children()) elements.push_back(elementOf(element));
  return {numbers(node.attribute("staStart").value()).at(0), std::move(elements)};
}

civil::Profile designOf(const pugi::xml_node& profile) {
  std::vector<civil::VerticalPoint> points;
  for (const pugi::xml_node& node : profile.children()) {
    const std::string_view kind = node.name();
    if (kind == "Feature") continue;
    const std::vector<double> values = numbers(node.text().get());
    civil::VerticalPoint point{values.at(0), values.at(1)};
    if (kind == "ParaCurve") point.kind = civil::VerticalCurveKind::Parabola;
    if (kind == "UnsymParaCurve") point.kind = civil::VerticalCurveKind::UnsymmetricParabola;
    if (kind == "CircCurve") point.kind = civil::VerticalCurveKind::Circle;
    point.length = numberIn(node.attribute(kind == "UnsymParaCurve" ? "lengthIn" : "length"));
    point.lengthOut = numberIn(node.attribute("lengthOut"));
    point.radius = numberIn(node.attribute("radius"));
    points.push_back(point);
  }
  return civil::Profile::design(std::move(points));
}

class ExampleGeometry : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(document_.load_file(test::inSource("/examples/valley-road.xml").c_str())); }
  pugi::xml_document document_;
};

TEST_F(ExampleGeometry, ElementsEndAtTheGivenPointsAndMeetTheNextOnesDirection) {
  for (const auto& node : document_.select_nodes("//Alignment")) {
    const civil::Alignment alignment = alignmentOf(node.node());
    const auto elements = alignment.elements();
    for (std::size_t i = 0; i < elements.size(); ++i) {
      EXPECT_LT(length(elements[i].endPose().point - elements[i].givenEnd), 1e-5) << i;
      if (i + 1 == elements.size()) continue;
      const double turn = elements[i + 1].direction - elements[i].endPose().direction;
      EXPECT_LT(std::abs(std::remainder(turn, civil::kTwoPi)), 1e-6) << i;
    }
    EXPECT_NEAR(alignment.length(), numberIn(node.node().attribute("length")), 1e-5);
  }
}

TEST_F(ExampleGeometry, SampleLinesCrossTheirAlignmentAtTheirStation) {
  std::size_t lines = 0;
  for (const auto& node : document_.select_nodes("//Alignment")) {
    const civil::Alignment alignment = alignmentOf(node.node());
    for (const auto& found : node.node().select_nodes("CrossSects/CrossSect[Feature/@code='lvx_sampleLine']")) {
      const pugi::xml_node line = found.node();
      const double station = numbers(line.attribute("sta").value()).at(0);
      const std::vector<double> v = numbers(line.child("Feature").child("Property").attribute("value").value());
      double before = -1e9;
      bool crosses = false;
      for (std::size_t i = 0; i + 1 < v.size(); i += 2) {
        const auto at = alignment.stationOffset({v[i + 1], v[i]});
        ASSERT_TRUE(at.has_value());
        EXPECT_GT(at->offset, before) << line.attribute("name").value();
        before = at->offset;
        if (std::abs(at->offset) > 1e-3) continue;
        crosses = true;
        EXPECT_NEAR(at->station, station, 1e-3) << line.attribute("name").value();
      }
      EXPECT_TRUE(crosses) << line.attribute("name").value();
      ++lines;
    }
  }
  EXPECT_EQ(lines, 55U + 13U + 15U + 10U);
}

TEST_F(ExampleGeometry, DesignProfilesAreFreeOfWarnings) {
  for (const auto& node : document_.select_nodes("//ProfAlign")) {
    EXPECT_THAT(designOf(node.node()).warnings(), testing::IsEmpty());
  }
}

TEST_F(ExampleGeometry, GroundProfilesLieOnTheSurfaceAndStopWhereItDoes) {
  std::map<int, std::int32_t> index;
  std::vector<civil::Vec3> points;
  for (const auto& p : document_.select_nodes("//P")) {
    const std::vector<double> v = numbers(p.node().text().get());
    index[p.node().attribute("id").as_int()] = static_cast<std::int32_t>(points.size());
    points.push_back({v.at(1), v.at(0), v.at(2)});
  }
  std::vector<civil::Triangle> triangles;
  for (const auto& f : document_.select_nodes("//F[not(@i)]")) {
    const std::vector<double> v = numbers(f.node().text().get());
    const auto corner = [&](std::size_t i) { return index.at(static_cast<int>(v.at(i))); };
    triangles.push_back({corner(0), corner(1), corner(2)});
  }
  const civil::TinSurface ground(std::move(points), std::move(triangles));
  EXPECT_EQ(ground.counts().degenerate, 0U);
  EXPECT_EQ(ground.counts().overlappingEdges, 0U);

  for (const auto& node : document_.select_nodes("//Alignment")) {
    const civil::Alignment alignment = alignmentOf(node.node());
    const auto groundAt = [&](double station) { return ground.elevationAt(alignment.poseAt(station)->point); };
    double last = 0.0;
    for (const auto& list : node.node().select_nodes("Profile/ProfSurf/PntList2D")) {
      const std::vector<double> v = numbers(list.node().text().get());
      for (std::size_t i = 0; i + 1 < v.size(); i += 2) {
        const auto elevation = groundAt(v[i]);
        ASSERT_TRUE(elevation.has_value()) << v[i];
        EXPECT_NEAR(v[i + 1], *elevation, 0.6e-3) << v[i];
        last = v[i];
      }
    }
    EXPECT_EQ(groundAt(alignment.endStation()).has_value(), alignment.endStation() - last < 1e-3);
  }
}

TEST_F(ExampleGeometry, TheCrownFollowsTheDesignProfile) {
  const pugi::xml_node road = document_.select_node("//Alignment[@name='Valley road']").node();
  const civil::Profile design = designOf(road.child("Profile").child("ProfAlign"));
  std::size_t crowns = 0;
  for (const auto& found : road.select_nodes("CrossSects/CrossSect/DesignCrossSectSurf/CrossSectPnt[@code='Crown']")) {
    const pugi::xml_node point = found.node();
    const double station = numbers(point.parent().parent().attribute("sta").value()).at(0);
    const auto elevation = design.elevationAt(station);
    ASSERT_TRUE(elevation.has_value());
    EXPECT_NEAR(numbers(point.text().get()).at(1), *elevation, 0.6e-4) << station;
    ++crowns;
  }
  // Twice in each section: on the road and as the upper side of the base.
  EXPECT_EQ(crowns, 2U * document_.select_nodes("//CrossSect[DesignCrossSectSurf]").size());
}

}  // namespace
}  // namespace lvx
