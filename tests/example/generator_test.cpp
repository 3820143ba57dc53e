#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "generator/deterministic.h"
#include "generator/road_geometry.h"
#include "generator/scaled_drawing.h"
#include "generator/text_output.h"

namespace lvx::generator {
namespace {

std::string madeText(const DrawingSize& size) {
  TextOutput out;
  writeScaledDrawing(out, size);
  return out.text();
}

pugi::xml_document parsed(const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return document;
}

std::size_t count(const pugi::xml_document& document, const char* path) { return document.select_nodes(path).size(); }

TEST(SinCos, AgreesWithTheLibraryToTheLastBits) {
  for (int i = -4000; i <= 4000; ++i) {
    const double angle = 0.0123 * i;
    EXPECT_NEAR(sinCos(angle).sine, std::sin(angle), 2e-15) << angle;
    EXPECT_NEAR(sinCos(angle).cosine, std::cos(angle), 2e-15) << angle;
  }
}

TEST(AtanOfGrade, AgreesWithTheLibrary) {
  for (int i = -30; i <= 30; ++i) EXPECT_NEAR(atanOfGrade(0.01 * i), std::atan(0.01 * i), 1e-12);
}

TEST(Permutation, MapsEachRangeOntoItselfAndBack) {
  for (const std::uint64_t size : {1U, 2U, 3U, 16U, 17U, 1000U, 4097U}) {
    const Permutation permutation(size, 5);
    std::set<std::uint64_t> values;
    for (std::uint64_t i = 0; i < size; ++i) {
      const std::uint64_t value = permutation(i);
      ASSERT_LT(value, size);
      EXPECT_EQ(permutation.inverse(value), i);
      values.insert(value);
    }
    EXPECT_EQ(values.size(), size);
  }
}

TEST(Permutation, LeavesNoLocality) {
  constexpr std::uint64_t kCount = 10'000;
  const Permutation permutation(kCount, 1);
  double steps = 0.0;
  for (std::uint64_t i = 1; i < kCount; ++i) {
    steps += std::abs(static_cast<double>(permutation(i)) - static_cast<double>(permutation(i - 1)));
  }
  // Independent numbers differ by a third of the range on the average.
  EXPECT_NEAR(steps / (kCount - 1) / kCount, 1.0 / 3.0, 0.02);
}

TEST(TextOutput, PrintsNumbersRoundedAndWithoutMinusZero) {
  struct Row {
    double value;
    int decimals;
    const char* fixed;
    const char* number;
  };
  const std::array rows = {
      Row{0.0, 3, "0.000", "0"},
      Row{-0.0001, 3, "0.000", "0"},
      Row{1.5, 0, "2", "2"},
      Row{-1.25, 1, "-1.2", "-1.2"},
      Row{12180.25, 6, "12180.250000", "12180.25"},
      Row{0.0625, 4, "0.0625", "0.0625"},
      Row{-0.05, 3, "-0.050", "-0.05"},
      Row{120.0, 2, "120.00", "120"},
      Row{999.9996, 3, "1000.000", "1000"},
  };
  for (const Row& row : rows) {
    TextOutput fixed;
    fixed.fixed(row.value, row.decimals);
    EXPECT_EQ(fixed.text(), row.fixed);
    TextOutput number;
    number.number(row.value, row.decimals);
    EXPECT_EQ(number.text(), row.number);
  }
}

TEST(TextOutput, SaysWhenTheFileCantBeWritten) {
  EXPECT_THROW(TextOutput("/nonexistent-folder/a.xml"), std::runtime_error);
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  TextOutput out("/dev/full");
  out << "text";
  EXPECT_THROW(out.finish(), std::runtime_error);
}

TEST(DesignProfile, RoundsOffCrestsSymmetricallyAndNot) {
  DesignProfile profile;
  profile.add(0.0, 0.0).add(100.0, 4.0, 40.0, 40.0).add(300.0, 0.0, 30.0, 60.0).add(400.0, 1.0);
  EXPECT_DOUBLE_EQ(profile.elevationAt(50.0), 2.0);
  // L |change of grade| / 8 below the point of intersection.
  EXPECT_NEAR(profile.elevationAt(100.0), 4.0 - 80.0 * 0.06 / 8.0, 1e-12);
  EXPECT_NEAR(profile.elevationAt(300.0), 0.03 * 30.0 * 60.0 / (2.0 * 90.0), 1e-12);
  EXPECT_DOUBLE_EQ(profile.elevationAt(400.0), 1.0);
  EXPECT_DOUBLE_EQ(profile.elevationAt(410.0), 1.1);
  // Grades continue at the curves' ends and at the intersection point itself.
  for (const double station : profile.stations()) {
    if (station <= 0.0 || station >= 400.0) continue;
    const double before = profile.elevationAt(station) - profile.elevationAt(station - 1e-4);
    const double after = profile.elevationAt(station + 1e-4) - profile.elevationAt(station);
    EXPECT_NEAR(before, after, 1e-6) << station;
  }
}

TEST(ScaledDrawing, HoldsWhatWasAskedFor) {
  struct Row {
    std::uint64_t triangles;
    std::uint32_t lines, points, elements, curves, corridors, baselines, sections;
  };
  const std::array rows = {
      Row{1, 0, 0, 1, 0, 0, 0, 0},
      Row{2, 1, 1, 2, 1, 1, 1, 1},
      Row{999, 7, 30, 13, 3, 2, 3, 11},
      Row{20'000, 50, 200, 12, 4, 1, 1, 100},
  };
  for (const Row& row : rows) {
    for (const bool shuffled : {false, true}) {
      DrawingSize size;
      size.triangles = row.triangles;
      size.sampleLines = row.lines;
      size.points = row.points;
      size.elements = row.elements;
      size.verticalCurves = row.curves;
      size.corridors = row.corridors;
      size.baselines = row.baselines;
      size.corridorSections = row.sections;
      size.shuffled = shuffled;
      const pugi::xml_document document = parsed(madeText(size));
      EXPECT_EQ(count(document, "//F"), row.triangles);
      EXPECT_EQ(count(document, "//CrossSects[@name='Sections']/CrossSect"), row.lines);
      EXPECT_EQ(count(document, "//CgPoints[@name='_All']/CgPoint"), row.points);
      EXPECT_EQ(count(document, "//CgPoint[@pntRef]"), row.points);
      EXPECT_EQ(count(document, "//CoordGeom/*"), row.elements);
      EXPECT_EQ(count(document, "//ParaCurve"), row.curves);
      EXPECT_EQ(count(document, "//Roadway"), row.corridors);
      EXPECT_EQ(count(document, "//Feature[@code='lvx_baseline']"), std::size_t{row.corridors} * row.baselines);
      EXPECT_EQ(count(document, "//CrossSect[DesignCrossSectSurf]"),
                std::size_t{row.corridors} * row.baselines * row.sections);
    }
  }
}

TEST(ScaledDrawing, RefusesARoadOrASurfaceOfNothing) {
  TextOutput out;
  DrawingSize size;
  size.elements = 0;
  EXPECT_THROW(writeScaledDrawing(out, size), std::invalid_argument);
  size.elements = 1;
  size.triangles = 0;
  EXPECT_THROW(writeScaledDrawing(out, size), std::invalid_argument);
}

TEST(ScaledDrawing, DependsOnItsOptionsAlone) {
  DrawingSize size;
  size.triangles = 500;
  const std::string first = madeText(size);
  EXPECT_EQ(first, madeText(size));
  size.seed = 2;
  EXPECT_NE(first, madeText(size));
}

/// Triangles as sorted triples of their points' texts.
std::multiset<std::string> trianglesOf(const pugi::xml_document& document) {
  std::map<std::string, std::string> points;
  for (const auto& p : document.select_nodes("//P")) {
    points[p.node().attribute("id").value()] = p.node().text().get();
  }
  std::multiset<std::string> triangles;
  for (const auto& f : document.select_nodes("//F")) {
    std::istringstream ids(f.node().text().get());
    std::array<std::string, 3> corners;
    for (std::string& corner : corners) {
      std::string id;
      ids >> id;
      EXPECT_TRUE(points.contains(id)) << id;
      corner = points[id];
    }
    std::sort(corners.begin(), corners.end());
    triangles.insert(corners[0] + '|' + corners[1] + '|' + corners[2]);
  }
  return triangles;
}

TEST(ScaledDrawing, ShufflingChangesTheNumberingAndNotTheGround) {
  DrawingSize size;
  size.triangles = 1001;
  const pugi::xml_document ordered = parsed(madeText(size));
  size.shuffled = true;
  const pugi::xml_document shuffled = parsed(madeText(size));
  EXPECT_EQ(trianglesOf(ordered), trianglesOf(shuffled));
  EXPECT_STRNE(ordered.select_node("//P[@id=1]").node().text().get(),
               shuffled.select_node("//P[@id=1]").node().text().get());
}

std::string fileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(MakeDrawing, WritesByItsOptionsWhatTheLibraryMakes) {
  const auto path = std::filesystem::temp_directory_path() / "lvx-make-drawing-test.xml";
  const std::string command =
      std::string("\"") + LVX_MAKE_DRAWING +
      "\" --triangles 40000 --lines 3 --points 5 --elements 7 --vertical-curves 2 --corridors 2 "
      "--baselines 2 --corridor-sections 4 --shuffled --seed 9 --out \"" +
      path.string() + '"';
  ASSERT_EQ(std::system(command.c_str()), 0);
  DrawingSize size;
  size.triangles = 40'000;
  size.sampleLines = 3;
  size.points = 5;
  size.elements = 7;
  size.verticalCurves = 2;
  size.corridors = 2;
  size.baselines = 2;
  size.corridorSections = 4;
  size.shuffled = true;
  size.seed = 9;
  // Compared as whole texts, but not printed: they are megabytes.
  EXPECT_TRUE(fileText(path.string()) == madeText(size));
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace lvx::generator
