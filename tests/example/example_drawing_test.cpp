#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <numbers>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "generator/text_output.h"
#include "generator/valley_road.h"
#include "support/places.h"
#include "support/xml_number.h"

/// The committed example, read here by its elements alone: no reader and no geometry of ours stands between.
namespace lvx::generator {
namespace {

using test::numberIn;

std::string committedText(const std::string& name = "valley-road") {
  std::ifstream file(test::inSource("/examples/" + name + ".xml"), std::ios::binary);
  EXPECT_TRUE(file);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<double> numbers(std::string_view text) {
  std::vector<double> values;
  const char* at = text.data();
  const char* end = at + text.size();
  while (at != end) {
    if (*at == ' ' || *at == '\n') {
      ++at;
      continue;
    }
    double value = 0.0;
    const auto [next, error] = std::from_chars(at, end, value);
    if (error != std::errc{}) throw std::invalid_argument("not a number: " + std::string(text));
    values.push_back(value);
    at = next;
  }
  return values;
}

struct Place {
  double x = 0.0;
  double y = 0.0;
};

Place placeIn(const pugi::xml_node& node, const char* tag) {
  const std::vector<double> values = numbers(node.child(tag).text().get());
  return {values.at(1), values.at(0)};
}

double distance(Place a, Place b) { return std::hypot(b.x - a.x, b.y - a.y); }
double direction(Place from, Place to) { return std::atan2(to.y - from.y, to.x - from.x); }
double turnBetween(double a, double b) { return std::abs(std::remainder(b - a, 2.0 * std::numbers::pi)); }

std::string propertyOf(const pugi::xml_node& feature, const char* label) {
  return feature.find_child_by_attribute("Property", "label", label).attribute("value").value();
}

class ExampleDrawing : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    document_ = std::make_unique<pugi::xml_document>();
    ASSERT_TRUE(document_->load_file(test::inSource("/examples/valley-road.xml").c_str()));
  }
  static void TearDownTestSuite() { document_.reset(); }

  static pugi::xpath_node_set all(const char* path) { return document_->select_nodes(path); }
  static pugi::xml_node one(const char* path) {
    const pugi::xpath_node_set found = all(path);
    EXPECT_EQ(found.size(), 1U) << path;
    return found.empty() ? pugi::xml_node() : found.first().node();
  }

  static std::unique_ptr<pugi::xml_document> document_;
};

std::unique_ptr<pugi::xml_document> ExampleDrawing::document_;

TEST(ExampleFile, IsByteForByteWhatTheGeneratorMakes) {
  struct Row {
    ValleyPart part;
    std::string name;
  };
  for (const Row& row :
       {Row{ValleyPart::Whole, "valley-road"}, Row{ValleyPart::Road, "valley-road/road"},
        Row{ValleyPart::Ground, "valley-road/ground"}, Row{ValleyPart::Points, "valley-road/points"}}) {
    TextOutput made;
    writeValleyRoad(made, row.part);
    const std::string committed = committedText(row.name);
    const auto [a, b] = std::mismatch(made.text().begin(), made.text().end(), committed.begin(), committed.end());
    if (a == made.text().end() && b == committed.end()) continue;
    const auto line = std::count(made.text().begin(), a, '\n') + 1;
    ADD_FAILURE() << "examples/" << row.name << ".xml differs in line " << line << "; lvx-make-drawing --example "
                  << row.name << " --out examples/" << row.name << ".xml makes it anew";
  }
}

TEST(ExampleFile, IsSmallEnoughForARepository) { EXPECT_LT(committedText().size(), 4'000'000U); }

// ---------------------------------------------------------------- alignments

struct Joint {
  Place place;
  double direction;
};

Joint startOf(const pugi::xml_node& element) {
  const std::string_view kind = element.name();
  const Place start = placeIn(element, "Start");
  if (kind == "Line") return {start, direction(start, placeIn(element, "End"))};
  if (kind == "Spiral") return {start, direction(start, placeIn(element, "PI"))};
  const double quarter = std::string_view(element.attribute("rot").value()) == "ccw" ? 0.5 : -0.5;
  return {start, direction(placeIn(element, "Center"), start) + quarter * std::numbers::pi};
}

Joint endOf(const pugi::xml_node& element) {
  const std::string_view kind = element.name();
  const Place end = placeIn(element, "End");
  if (kind == "Line") return {end, direction(placeIn(element, "Start"), end)};
  if (kind == "Spiral") return {end, direction(placeIn(element, "PI"), end)};
  const double quarter = std::string_view(element.attribute("rot").value()) == "ccw" ? 0.5 : -0.5;
  return {end, direction(placeIn(element, "Center"), end) + quarter * std::numbers::pi};
}

double curvatureIn(const pugi::xml_node& spiral, const char* attribute) {
  const std::string_view text = spiral.attribute(attribute).value();
  return text == "INF" ? 0.0 : 1.0 / numbers(text).at(0);
}

TEST_F(ExampleDrawing, HasASiteOfTwoAlignmentsWithClothoidsAndOneOutside) {
  EXPECT_EQ(all("/LandXML/Alignments[@name='Valley road upgrade']/Alignment").size(), 2U);
  EXPECT_EQ(all("/LandXML/Alignments[@name='Valley road upgrade']/Alignment[CoordGeom/Spiral]").size(), 2U);
  EXPECT_EQ(all("/LandXML/Alignments[not(@name)]/Alignment").size(), 1U);
  EXPECT_EQ(numberIn(one("//Alignment[@name='Valley road']").attribute("staStart")), 1000.0);
}

TEST_F(ExampleDrawing, AlignmentsRunOnWithoutGapsAndCorners) {
  std::size_t joints = 0;
  for (const auto& alignment : all("//CoordGeom")) {
    const pugi::xml_node elements = alignment.node();
    for (pugi::xml_node next = elements.first_child().next_sibling(); next; next = next.next_sibling()) {
      const Joint before = endOf(next.previous_sibling());
      const Joint after = startOf(next);
      EXPECT_LT(distance(before.place, after.place), 1e-9);
      EXPECT_LT(turnBetween(before.direction, after.direction), 1e-6) << next.attribute("length").value();
      ++joints;
    }
  }
  EXPECT_EQ(joints, 10U + 8U + 2U);
}

TEST_F(ExampleDrawing, ElementsEndWhereTheirOwnNumbersLeadThem) {
  for (const auto& found : all("//CoordGeom/*")) {
    const pugi::xml_node element = found.node();
    const std::string_view kind = element.name();
    const double length = numberIn(element.attribute("length"));
    const Joint start = startOf(element);
    const Place end = placeIn(element, "End");
    if (kind == "Line") {
      EXPECT_NEAR(distance(start.place, end), length, 1e-6);
      continue;
    }
    const double sign = std::string_view(element.attribute("rot").value()) == "ccw" ? 1.0 : -1.0;
    const bool isArc = kind == "Curve";
    const double k0 = curvatureIn(element, isArc ? "radius" : "radiusStart");
    const double k1 = curvatureIn(element, isArc ? "radius" : "radiusEnd");
    // Midpoint rule in small steps.
    constexpr int kSteps = 20'000;
    Place at = start.place;
    for (int i = 0; i < kSteps; ++i) {
      const double t = (i + 0.5) / kSteps;
      const double heading = start.direction + sign * length * t * (k0 + 0.5 * (k1 - k0) * t);
      at.x += length / kSteps * std::cos(heading);
      at.y += length / kSteps * std::sin(heading);
    }
    EXPECT_LT(distance(at, end), 2e-5) << kind << ' ' << length;
    const double heading = start.direction + sign * 0.5 * length * (k0 + k1);
    EXPECT_LT(turnBetween(heading, endOf(element).direction), 1e-6);
  }
}

TEST_F(ExampleDrawing, GivenLengthsAreTheSumsOfTheElements) {
  for (const auto& found : all("//Alignment")) {
    double sum = 0.0;
    for (const auto& element : found.node().child("CoordGeom").children()) sum += numberIn(element.attribute("length"));
    EXPECT_NEAR(sum, numberIn(found.node().attribute("length")), 1e-5);
  }
}

TEST_F(ExampleDrawing, VerticalCurvesOfEachKindFitBetweenTheirNeighbours) {
  EXPECT_EQ(all("//UnsymParaCurve").size(), 1U);
  EXPECT_EQ(all("//CircCurve").size(), 1U);
  EXPECT_GE(all("//ParaCurve").size(), 5U);
  bool hasCrest = false;
  bool hasSag = false;
  for (const auto& found : all("//ProfAlign")) {
    struct Point {
      double station, elevation, lengthIn, lengthOut, radius;
    };
    std::vector<Point> points;
    for (const auto& node : found.node().children()) {
      const std::string_view kind = node.name();
      if (kind == "Feature") continue;
      const std::vector<double> values = numbers(node.text().get());
      Point point{values.at(0), values.at(1), 0.0, 0.0, numberIn(node.attribute("radius"))};
      if (kind == "ParaCurve") point.lengthIn = point.lengthOut = 0.5 * numberIn(node.attribute("length"));
      if (kind == "UnsymParaCurve") {
        point.lengthIn = numberIn(node.attribute("lengthIn"));
        point.lengthOut = numberIn(node.attribute("lengthOut"));
      }
      points.push_back(point);
    }
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
      const double in = (points[i].elevation - points[i - 1].elevation) / (points[i].station - points[i - 1].station);
      const double out = (points[i + 1].elevation - points[i].elevation) / (points[i + 1].station - points[i].station);
      (out > in ? hasSag : hasCrest) = true;
      if (points[i].radius > 0.0) {
        const double tangent = points[i].radius * std::tan(0.5 * std::abs(std::atan(out) - std::atan(in)));
        points[i].lengthIn = points[i].lengthOut = tangent;
      }
      EXPECT_GT(points[i].lengthIn, 0.0);
    }
    for (std::size_t i = 1; i < points.size(); ++i) {
      EXPECT_LE(points[i - 1].station + points[i - 1].lengthOut, points[i].station - points[i].lengthIn);
    }
  }
  EXPECT_TRUE(hasCrest);
  EXPECT_TRUE(hasSag);
}

// ---------------------------------------------------------------- the ground

struct Ground {
  std::vector<Place> points;
  std::vector<std::array<std::size_t, 3>> faces;
};

Ground groundOf(const pugi::xml_document& document) {
  Ground ground;
  std::map<int, std::size_t> index;
  for (const auto& p : document.select_nodes("//P")) {
    const std::vector<double> values = numbers(p.node().text().get());
    EXPECT_EQ(values.size(), 3U);
    index[p.node().attribute("id").as_int()] = ground.points.size();
    ground.points.push_back({values.at(1), values.at(0)});
  }
  for (const auto& f : document.select_nodes("//F[not(@i)]")) {
    const std::vector<double> ids = numbers(f.node().text().get());
    std::array<std::size_t, 3> face{};
    for (std::size_t i = 0; i < 3; ++i) face.at(i) = index.at(static_cast<int>(ids.at(i)));
    ground.faces.push_back(face);
  }
  return ground;
}

/// The parts of a segment that lie on the ground, as shares of its length, ascending and joined where they touch.
std::vector<std::pair<double, double>> covered(const Ground& ground, Place from, Place to) {
  std::vector<std::pair<double, double>> parts;
  for (const auto& face : ground.faces) {
    double low = 0.0;
    double high = 1.0;
    const Place a = ground.points[face[0]];
    const Place b = ground.points[face[1]];
    const Place c = ground.points[face[2]];
    const double winding = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y) > 0.0 ? 1.0 : -1.0;
    for (std::size_t i = 0; i < 3 && low < high; ++i) {
      const Place p = ground.points[face.at(i)];
      const Place q = ground.points[face.at((i + 1) % 3)];
      const auto side = [&](Place r) { return winding * ((q.x - p.x) * (r.y - p.y) - (r.x - p.x) * (q.y - p.y)); };
      const double atStart = side(from);
      const double atEnd = side(to);
      if (atStart < 0.0 && atEnd < 0.0) {
        low = high;
      } else if (atStart < 0.0) {
        low = std::max(low, atStart / (atStart - atEnd));
      } else if (atEnd < 0.0) {
        high = std::min(high, atStart / (atStart - atEnd));
      }
    }
    if (low < high) parts.emplace_back(low, high);
  }
  std::sort(parts.begin(), parts.end());
  std::vector<std::pair<double, double>> joined;
  for (const auto& part : parts) {
    if (!joined.empty() && part.first < joined.back().second + 1e-9) {
      joined.back().second = std::max(joined.back().second, part.second);
    } else {
      joined.push_back(part);
    }
  }
  return joined;
}

TEST_F(ExampleDrawing, GroundHasHillsAHoleAndNoOverlaps) {
  const Ground ground = groundOf(*document_);
  EXPECT_GE(ground.faces.size(), 20'000U);
  EXPECT_GT(all("//F[@i='1']").size(), 100U);

  std::map<std::pair<std::size_t, std::size_t>, int> uses;
  for (const auto& face : ground.faces) {
    for (std::size_t i = 0; i < 3; ++i) {
      // All triangles turn the same way, so each direction of an edge stands once.
      const auto [place, isNew] = uses.try_emplace({face.at(i), face.at((i + 1) % 3)}, 1);
      EXPECT_TRUE(isNew);
    }
  }
  // Border edges joined by their ends: one ring outside, and one around the pond.
  std::vector<std::size_t> parent(ground.points.size());
  std::iota(parent.begin(), parent.end(), std::size_t{0});
  const auto root = [&](std::size_t i) {
    while (parent[i] != i) i = parent[i] = parent[parent[i]];
    return i;
  };
  std::set<std::size_t> onBorder;
  for (const auto& [edge, unused] : uses) {
    if (uses.contains({edge.second, edge.first})) continue;
    parent[root(edge.first)] = root(edge.second);
    onBorder.insert(edge.first);
  }
  std::set<std::size_t> rings;
  for (const std::size_t point : onBorder) rings.insert(root(point));
  EXPECT_GE(rings.size(), 2U);

  double lowest = 1e9;
  double highest = -1e9;
  for (const auto& p : all("//P")) {
    const double z = numbers(p.node().text().get()).at(2);
    lowest = std::min(lowest, z);
    highest = std::max(highest, z);
  }
  EXPECT_GT(lowest, 390.0);
  EXPECT_GT(highest - lowest, 20.0);
}

TEST_F(ExampleDrawing, SomeSampleLinesLeaveTheGroundAndEnterItAgain) {
  const Ground ground = groundOf(*document_);
  int reentering = 0;
  int endingOutside = 0;
  int whole = 0;
  for (const auto& found : all("//CrossSects[@name='Cross sections 20 m']/CrossSect")) {
    const std::vector<double> v = numbers(propertyOf(found.node().child("Feature"), "vertices"));
    bool leavesAndEnters = false;
    double onGround = 0.0;
    double total = 0.0;
    for (std::size_t i = 2; i < v.size(); i += 2) {
      const Place from{v[i - 1], v[i - 2]};
      const Place to{v[i + 1], v[i]};
      const auto parts = covered(ground, from, to);
      if (parts.size() > 1) leavesAndEnters = true;
      for (const auto& [low, high] : parts) onGround += (high - low) * distance(from, to);
      total += distance(from, to);
    }
    reentering += leavesAndEnters ? 1 : 0;
    if (onGround > total - 1e-6)
      ++whole;
    else if (!leavesAndEnters)
      ++endingOutside;
  }
  EXPECT_GE(reentering, 8);
  EXPECT_GE(endingOutside, 3);
  EXPECT_GE(whole, 20);
}

// ---------------------------------------------------------------- sample lines, points, handles

TEST_F(ExampleDrawing, ValleyRoadHasTwoSampleLineGroupsWithSkewedAndBentLines) {
  EXPECT_EQ(all("//Alignment[@name='Valley road']/CrossSects[Feature/@code='lvx_sampleLineGroup']").size(), 2U);
  EXPECT_GE(all("//CrossSect[@angleSkew]").size(), 1U);
  int bent = 0;
  for (const auto& found : all("//Feature[@code='lvx_sampleLine']")) {
    const std::size_t count = numbers(propertyOf(found.node(), "vertices")).size();
    EXPECT_EQ(count % 2, 0U);
    bent += count > 6 ? 1 : 0;
  }
  EXPECT_GE(bent, 2);
}

TEST_F(ExampleDrawing, PointGroupsReferToPointsThatAreThere) {
  std::set<std::string> names;
  for (const auto& point : all("//CgPoint[@name]")) {
    EXPECT_TRUE(names.insert(point.node().attribute("name").value()).second);
  }
  EXPECT_GE(names.size(), 300U);
  const auto groups = all("/LandXML/CgPoints[Feature/@code='lvx_pointGroup']");
  EXPECT_GE(groups.size(), 5U);
  for (const auto& group : groups) {
    std::size_t members = 0;
    for (const auto& point : group.node().children("CgPoint")) {
      EXPECT_TRUE(names.contains(point.attribute("pntRef").value())) << point.attribute("pntRef").value();
      ++members;
    }
    EXPECT_GE(members, 4U) << group.node().attribute("name").value();
  }
  for (const auto& point : all("//CgPoint[@featureRef]")) {
    const char* reference = point.node().attribute("featureRef").value();
    EXPECT_TRUE(point.node().parent().find_child_by_attribute("Feature", "name", reference)) << reference;
  }
}

TEST_F(ExampleDrawing, HandlesAreUniqueAndReferencesMeet) {
  std::set<std::string> handles;
  for (const auto& property : all("//Property[@label='handle']")) {
    EXPECT_TRUE(handles.insert(property.node().attribute("value").value()).second)
        << property.node().attribute("value").value();
  }
  const pugi::xml_node baseline = one("//Feature[@code='lvx_baseline']");
  EXPECT_TRUE(handles.contains(propertyOf(baseline, "alignmentHandle")));
  EXPECT_TRUE(handles.contains(propertyOf(baseline, "profileHandle")));
}

// ---------------------------------------------------------------- the corridor

struct Section {
  double station;
  std::vector<std::pair<double, double>> points;  // offset, elevation
};

std::vector<std::string> codesOf(const char* text) {
  std::vector<std::string> codes(1);
  for (const char* c = text; *c != '\0'; ++c) {
    if (*c == ',') {
      codes.emplace_back();
    } else {
      codes.back() += *c;
    }
  }
  return codes;
}

bool hasCode(const char* text, std::initializer_list<std::string_view> wanted) {
  const std::vector<std::string> codes = codesOf(text);
  return std::any_of(codes.begin(), codes.end(), [&](const std::string& code) {
    return std::find(wanted.begin(), wanted.end(), code) != wanted.end();
  });
}

/// The road surface of every section; a section has one paved part of three points, its edges coded as such.
std::vector<Section> pavedSections(const pugi::xml_document& document) {
  std::vector<Section> sections;
  for (const auto& found : document.select_nodes("//CrossSect[DesignCrossSectSurf]")) {
    int paved = 0;
    Section section{numberIn(found.node().attribute("sta")), {}};
    for (const auto& part : found.node().children("DesignCrossSectSurf")) {
      if (!hasCode(part.attribute("name").value(), {"Pave", "Belag"})) continue;
      ++paved;
      for (const auto& point : part.children("CrossSectPnt")) {
        const std::vector<double> values = numbers(point.text().get());
        section.points.emplace_back(values.at(0), values.at(1));
      }
      EXPECT_TRUE(hasCode(part.first_child().attribute("code").value(), {"ETW", "Fahrspurrand_Außen"}));
      EXPECT_TRUE(hasCode(part.last_child().attribute("code").value(), {"ETW", "Fahrspurrand_Außen"}));
    }
    EXPECT_EQ(paved, 1) << section.station;
    EXPECT_EQ(section.points.size(), 3U) << section.station;
    if (section.points.size() == 3) {
      EXPECT_LE(section.points[0].first, -3.5);
      EXPECT_EQ(section.points[1].first, 0.0);
      EXPECT_GE(section.points[2].first, 3.5);
    }
    sections.push_back(section);
  }
  return sections;
}

TEST_F(ExampleDrawing, RegionsAskForTheSectionsThatTheFileHolds) {
  const auto regions = all("//Feature[@code='lvx_region']");
  ASSERT_EQ(regions.size(), 2U);
  double border = 1000.0;
  for (const auto& found : regions) {
    const std::vector<double> stations = numbers(propertyOf(found.node(), "stations"));
    EXPECT_EQ(numbers(propertyOf(found.node(), "staStart")).at(0), border);
    border = numbers(propertyOf(found.node(), "staEnd")).at(0);
    EXPECT_TRUE(std::is_sorted(stations.begin(), stations.end()));
    const std::string path = "//CrossSects[@name='" + propertyOf(found.node(), "crossSects") + "']";
    std::vector<double> held;
    for (const auto& section : one(path.c_str()).children("CrossSect")) {
      held.push_back(numberIn(section.attribute("sta")));
    }
    EXPECT_EQ(stations, held);
  }
  EXPECT_NEAR(border, 2093.0, 1e-4);
}

TEST_F(ExampleDrawing, EverySampleLineAndElementOfTheRoadHasASection) {
  std::vector<double> stations;
  for (const Section& section : pavedSections(*document_)) stations.push_back(section.station);
  const auto isThere = [&](double station) {
    // Reports match rows and sections within 0.000001.
    return std::any_of(stations.begin(), stations.end(), [&](double s) { return std::abs(s - station) < 1e-6; });
  };
  const pugi::xml_node road = one("//Alignment[@name='Valley road']");
  for (const auto& line : road.select_nodes("CrossSects/CrossSect[Feature/@code='lvx_sampleLine']")) {
    EXPECT_TRUE(isThere(numberIn(line.node().attribute("sta")))) << line.node().attribute("name").value();
  }
  double station = numberIn(road.attribute("staStart"));
  EXPECT_TRUE(isThere(station));
  for (const auto& element : road.child("CoordGeom").children()) {
    // The lengths as the coordinates give them, not as they are printed.
    const Place start = placeIn(element, "Start");
    const Place end = placeIn(element, "End");
    if (std::string_view(element.name()) == "Line") {
      station += distance(start, end);
    } else if (std::string_view(element.name()) == "Curve") {
      const Place center = placeIn(element, "Center");
      station += distance(start, center) * turnBetween(direction(center, start), direction(center, end));
    } else {
      station += numberIn(element.attribute("length"));
    }
    EXPECT_TRUE(isThere(station)) << station;
  }
}

TEST_F(ExampleDrawing, TheRoadBanksIntoItsBendsAndWidens) {
  const std::vector<Section> sections = pavedSections(*document_);
  const auto at = [&](double station) {
    const auto found = std::find_if(sections.begin(), sections.end(),
                                    [&](const Section& section) { return section.station == station; });
    EXPECT_NE(found, sections.end()) << station;
    const auto& p = found->points;
    struct {
      double left, right, widthLeft, widthRight;
    } road{(p[0].second - p[1].second) / -p[0].first * 100.0, (p[2].second - p[1].second) / p[2].first * 100.0,
           -p[0].first, p[2].first};
    return road;
  };
  // Elevations are printed to a tenth of a millimetre.
  constexpr double kPrinted = 0.005;
  EXPECT_NEAR(at(1050.0).left, -2.5, kPrinted);
  EXPECT_NEAR(at(1050.0).right, -2.5, kPrinted);
  EXPECT_NEAR(at(1280.0).left, 4.0, kPrinted);  // a bend to the right
  EXPECT_NEAR(at(1280.0).right, -4.0, kPrinted);
  EXPECT_NEAR(at(1280.0).widthRight, 3.8, kPrinted);
  EXPECT_NEAR(at(1700.0).left, -6.0, kPrinted);  // to the left
  EXPECT_NEAR(at(1700.0).right, 6.0, kPrinted);
  EXPECT_NEAR(at(1700.0).widthLeft, 3.95, kPrinted);
  EXPECT_NEAR(at(2020.0).widthRight, 6.25, kPrinted);  // the bus bay
  // Between: on the way up, neither flat nor full.
  EXPECT_GT(at(1170.0).left, -2.5);
  EXPECT_LT(at(1170.0).left, 4.0);
}

}  // namespace
}  // namespace lvx::generator
