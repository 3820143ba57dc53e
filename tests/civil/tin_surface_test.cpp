#include "civil/tin_surface.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil/detail/predicates.h"
#include "civil/detail/start_grid.h"
#include "civil/detail/tin_build.h"
#include "civil/detail/triangle_links.h"
#include "reference_tin.h"

namespace lvx::civil {
namespace {

// ---------------------------------------------------------------- makers

using test::Tin;
using Reference = test::ReferenceTin;

/// A TIN as letters on a grid: the letter's column is x, its line is y counted from the last line up, and its elevation
/// is its place in the alphabet (a or A: 1). Triangles are words of three letters. A capital and a small letter are two
/// points.
Tin tin(std::vector<std::string_view> lines, std::string_view words) {
  Tin result;
  std::map<char, std::int32_t> numbers;
  for (std::size_t line = 0; line < lines.size(); ++line)
    for (std::size_t column = 0; column < lines[line].size(); ++column) {
      const char letter = lines[line][column];
      if (letter == ' ' || letter == '.') continue;
      numbers[letter] = static_cast<std::int32_t>(result.points.size());
      const char first = letter >= 'a' ? 'a' : 'A';
      result.points.push_back({static_cast<double>(column), static_cast<double>(lines.size() - 1 - line),
                               static_cast<double>(letter - first + 1)});
    }
  std::istringstream in{std::string(words)};
  for (std::string word; in >> word;)
    result.triangles.push_back({numbers.at(word[0]), numbers.at(word[1]), numbers.at(word[2])});
  return result;
}

TinSurface surfaceOf(const Tin& t) { return TinSurface(t.points, t.triangles); }

std::string numberText(double value) {
  std::array<char, 40> text{};
  value = std::round(value * 1e6) / 1e6 + 0.0;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// "x,y,z x,y,z", six decimals at most.
std::string textOf(const std::vector<Vec3>& samples) {
  std::string text;
  for (const Vec3& p : samples)
    text += (text.empty() ? "" : " ") + numberText(p.x) + "," + numberText(p.y) + "," + numberText(p.z);
  return text;
}

std::vector<Vec3> sampled(const TinSurface& surface, Vec2 a, Vec2 b) {
  std::vector<Vec3> samples;
  surface.sample(a, b, samples);
  return samples;
}

std::string along(const TinSurface& surface, Vec2 a, Vec2 b) { return textOf(sampled(surface, a, b)); }
std::string along(const Tin& t, Vec2 a, Vec2 b) { return along(surfaceOf(t), a, b); }

/// The same ground under another numbering, with windings turned at random.
Tin renumbered(const Tin& t, std::mt19937_64& random) {
  std::vector<std::int32_t> numbers(t.points.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<std::int32_t>(i);
  std::shuffle(numbers.begin(), numbers.end(), random);
  Tin result{t.points, t.triangles};
  for (std::size_t i = 0; i < numbers.size(); ++i) result.points[static_cast<std::size_t>(numbers[i])] = t.points[i];
  const auto number = [&](std::int32_t corner) { return numbers[static_cast<std::size_t>(corner)]; };
  for (Triangle& triangle : result.triangles) {
    triangle = {number(triangle.a), number(triangle.b), number(triangle.c)};
    for (auto turns = random() % 3; turns > 0; --turns) triangle = {triangle.b, triangle.c, triangle.a};
    if (random() % 2 == 0) std::swap(triangle.a, triangle.b);
  }
  std::shuffle(result.triangles.begin(), result.triangles.end(), random);
  return result;
}

/// A seed from the running test's name, shown when it fails.
std::uint64_t seedOfTest() {
  const auto* info = testing::UnitTest::GetInstance()->current_test_info();
  return std::hash<std::string>{}(std::string(info->test_suite_name()) + "." + info->name());
}

// ---------------------------------------------------------------- reference

/// Fails, with a picture of both, unless the surface gives the reference's samples.
void expectLikeReference(const Tin& t, const TinSurface& surface, Vec2 a, Vec2 b) {
  const auto expected = Reference(t).sample(a, b);
  const std::vector<Vec3> found = sampled(surface, a, b);
  std::vector<Vec3> wanted;
  for (const auto& [place, best] : expected) {
    const double part = static_cast<double>(place.above) / static_cast<double>(place.below);
    wanted.push_back({a.x + part * (b.x - a.x), a.y + part * (b.y - a.y), best.z});
  }
  bool isSame = found.size() == wanted.size();
  for (std::size_t i = 0; isSame && i < found.size(); ++i)
    isSame = std::abs(found[i].x - wanted[i].x) < 1e-9 && std::abs(found[i].y - wanted[i].y) < 1e-9 &&
             std::abs(found[i].z - wanted[i].z) < 1e-9;
  ASSERT_TRUE(isSame) << "from " << a.x << "," << a.y << " to " << b.x << "," << b.y << "\n  found  " << textOf(found)
                      << "\n  wanted " << textOf(wanted);
}

/// Random segments between whole places, a little beyond the ground on all sides; and the same places as points.
void expectLikeReferenceAllOver(const Tin& t, std::mt19937_64& random, int segments) {
  Box box;
  for (const Vec3& p : t.points) {
    box.minX = std::min(box.minX, p.x);
    box.maxX = std::max(box.maxX, p.x);
    box.minY = std::min(box.minY, p.y);
    box.maxY = std::max(box.maxY, p.y);
  }
  const auto within = [&](double low, double high) {
    return static_cast<double>(
        std::uniform_int_distribution<std::int64_t>(std::int64_t(low) - 2, std::int64_t(high) + 2)(random));
  };
  const auto place = [&] {
    // Often a vertex itself, so that segments start on corners and run through others.
    if (random() % 4 == 0) {
      const Vec3& p = t.points[random() % t.points.size()];
      return Vec2{p.x, p.y};
    }
    return Vec2{within(box.minX, box.maxX), within(box.minY, box.maxY)};
  };
  const Tin other = renumbered(t, random);
  const TinSurface surface = surfaceOf(t);
  const TinSurface otherSurface = surfaceOf(other);
  for (int i = 0; i < segments; ++i) {
    const Vec2 a = place();
    const Vec2 b = place();
    if (a == b) continue;
    ASSERT_NO_FATAL_FAILURE(expectLikeReference(t, surface, a, b)) << "segment " << i;
    const auto found = sampled(surface, a, b);
    ASSERT_EQ(found, sampled(otherSurface, a, b))
        << "another numbering, segment " << i << "\n  " << textOf(found) << "\n  " << along(otherSurface, a, b);
    const auto expected = Reference(t).elevationAt(a);
    const auto elevation = surface.elevationAt(a);
    ASSERT_EQ(elevation.has_value(), expected.rank < 9) << a.x << "," << a.y;
    ASSERT_NEAR(elevation.value_or(0.0), expected.z, 1e-9) << a.x << "," << a.y;
    ASSERT_EQ(elevation, otherSurface.elevationAt(a));
  }
}

}  // namespace

void PrintTo(const Vec3& p, std::ostream* out) { *out << p.x << "," << p.y << "," << p.z; }

namespace {

// ---------------------------------------------------------------- one triangle, two triangles

class OneTriangle : public testing::Test {
 protected:
  // a at 0,4; b at 0,0; c at 4,0
  const Tin tin_ = tin({"a    ",  //
                        "     ",  //
                        "     ",  //
                        "     ",  //
                        "b   c"},
                       "abc");
  const TinSurface surface_ = surfaceOf(tin_);
};

TEST_F(OneTriangle, GivesBothBorderPointsOfASegmentAcross) {
  EXPECT_EQ(along(surface_, {-1, 1}, {6, 1}), "0,1,1.75 3,1,2.5");
}

TEST_F(OneTriangle, GivesBothEndsOfASegmentInside) { EXPECT_EQ(along(surface_, {1, 1}, {2, 1}), "1,1,2 2,1,2.25"); }

TEST_F(OneTriangle, GivesTheEndInsideAndTheBorderPoint) {
  EXPECT_EQ(along(surface_, {1, 1}, {6, 1}), "1,1,2 3,1,2.5");
  EXPECT_EQ(along(surface_, {6, 1}, {1, 1}), "3,1,2.5 1,1,2");
}

TEST_F(OneTriangle, GivesNothingBesideIt) {
  EXPECT_EQ(along(surface_, {-1, -1}, {6, -1}), "");
  EXPECT_EQ(along(surface_, {3, 3}, {6, 6}), "");
  EXPECT_EQ(along(surface_, {-3, 1}, {-1, 1}), "");
}

TEST_F(OneTriangle, GivesOnePointWhereItsCornerIsTouched) {
  EXPECT_EQ(along(surface_, {-1, 5}, {1, 3}), "0,4,1 1,3,1.5") << "along the sloping side from the corner on";
  EXPECT_EQ(along(surface_, {-1, 4}, {1, 4}), "0,4,1");
  EXPECT_EQ(along(surface_, {-1, 1}, {1, -1}), "0,0,2");
}

TEST_F(OneTriangle, GivesAnEdgesEndsWhereTheSegmentRunsAlongIt) {
  EXPECT_EQ(along(surface_, {0, 9}, {0, -9}), "0,4,1 0,0,2");
  EXPECT_EQ(along(surface_, {-1, 0}, {5, 0}), "0,0,2 4,0,3");
}

TEST_F(OneTriangle, GivesTheSegmentsOwnEndWhereItStartsOrEndsWithinAnEdge) {
  EXPECT_EQ(along(surface_, {1, 0}, {3, 0}), "1,0,2.25 3,0,2.75");
  EXPECT_EQ(along(surface_, {1, 0}, {9, 0}), "1,0,2.25 4,0,3");
}

TEST_F(OneTriangle, GivesThePointWhereASegmentEndsOnTheBorder) {
  EXPECT_EQ(along(surface_, {-1, 1}, {0, 1}), "0,1,1.75");
  EXPECT_EQ(along(surface_, {2, -3}, {2, 0}), "2,0,2.5");
  EXPECT_EQ(along(surface_, {4, 0}, {5, 0}), "4,0,3");
}

TEST_F(OneTriangle, GivesAZeroLengthSegmentItsPointOnceOrNothing) {
  EXPECT_EQ(along(surface_, {1, 1}, {1, 1}), "1,1,2");
  EXPECT_EQ(along(surface_, {0, 0}, {0, 0}), "0,0,2");
  EXPECT_EQ(along(surface_, {2, 0}, {2, 0}), "2,0,2.5");
  EXPECT_EQ(along(surface_, {5, 5}, {5, 5}), "");
}

TEST_F(OneTriangle, TakesEitherWinding) {
  EXPECT_EQ(along(Tin{tin_.points, {{0, 2, 1}}}, {-1, 1}, {6, 1}), "0,1,1.75 3,1,2.5");
}

TEST_F(OneTriangle, AppendsToWhatStandsAlready) {
  std::vector<Vec3> samples{{7, 7, 7}};
  surface_.sample({1, 1}, {2, 1}, samples);
  EXPECT_EQ(textOf(samples), "7,7,7 1,1,2 2,1,2.25");
}

TEST_F(OneTriangle, FindsTheGroundOfSegmentsFromFarAway) {
  EXPECT_EQ(along(surface_, {-1e3, 1}, {1e3, 1}), "0,1,1.75 3,1,2.5");
  // What lies closer than a billionth of the segment's length is one point: the first one, or at one place the highest.
  for (const auto& [far, z] : {std::pair(1e10, 1.75), std::pair(1e15, 2.5), std::pair(1e40, 2.5)}) {
    const auto samples = sampled(surface_, {-far, 1}, {far, 1});
    ASSERT_EQ(samples.size(), 1U) << far;
    EXPECT_EQ(samples[0].z, z) << far;
  }
}

TEST_F(OneTriangle, GivesNothingForEndsThatAreNoNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(along(surface_, {nan, 1}, {2, 1}), "");
  EXPECT_EQ(along(surface_, {1, 1}, {infinity, 1}), "");
  EXPECT_EQ(along(surface_, {1, 1}, {1e300, 1}), "") << "too far for any sign to be told";
  EXPECT_EQ(surface_.elevationAt({nan, nan}), std::nullopt);
}

TEST(TinSurface, CrossesASharedEdgeOnce) {
  const Tin square = tin({"a b", "   ", "c d"}, "abc bcd");
  EXPECT_EQ(along(square, {0.5, 1}, {1.5, 1}), "0.5,1,2.25 1,1,2.5 1.5,1,2.75");
  EXPECT_EQ(along(square, {1.5, 1}, {0.5, 1}), "1.5,1,2.75 1,1,2.5 0.5,1,2.25");
}

// ---------------------------------------------------------------- gaps, islands, seams

TEST(TinSurface, GivesTheBorderPointsOfAGapAndNothingInIt) {
  const Tin islands = tin({"a b  d e", "        ", "c     f "}, "abc def");
  EXPECT_EQ(along(islands, {-1, 1}, {9, 1}), "0,1,2 1,1,2.5 5.5,1,5 6.5,1,5.5");
  EXPECT_EQ(along(islands, {0.5, 1}, {6, 1}), "0.5,1,2.25 1,1,2.5 5.5,1,5 6,1,5.25");
}

TEST(TinSurface, TouchesATriangleAtItsCornerInPassing) {
  const Tin tent = tin({" a ", "   ", "b c"}, "abc");
  EXPECT_EQ(along(tent, {-5, 2}, {9, 2}), "1,2,1");
}

TEST(TinSurface, RunsThroughAVertexOnce) {
  const Tin square = tin({"a b", " e ", "c d"}, "abe bde dce cae");
  EXPECT_EQ(along(square, {-1, 1}, {3, 1}), "0,1,2 1,1,5 2,1,3");
  EXPECT_EQ(along(square, {0, 0}, {2, 2}), "0,0,3 1,1,5 2,2,2") << "along the edges of a diagonal";
  EXPECT_EQ(along(square, {1, 1}, {1, 9}), "1,1,5 1,2,1.5") << "from the vertex on";
  EXPECT_EQ(along(square, {0.5, 0.5}, {1, 1}), "0.5,0.5,4 1,1,5") << "along half an edge up to the vertex";
}

TEST(TinSurface, GivesAllPointsOfAnEdgeThatIsSeveralOnItsOtherSide) {
  // The long side a-c has the corner b of its two neighbours in its middle.
  const Tin joint = tin({"  d  ", "     ", "a b c", "     ", "  e  "}, "acd aeb bec");
  EXPECT_EQ(along(joint, {-1, 2}, {9, 2}), "0,2,1 2,2,2 4,2,3");
  EXPECT_EQ(along(joint, {2, -9}, {2, 9}), "2,0,5 2,2,2 2,4,4") << "the vertex counts before the edge";
  EXPECT_EQ(along(joint, {1, 0.5}, {1, 3.5}), "1,1,3 1,2,1.5 1,3,2.5");
}

TEST(TinSurface, CrossesASeamOfPointsGivenTwiceOnce) {
  const Tin seam = tin({"a b", "   ", "c d"}, "abc bcd");
  Tin apart = seam;
  apart.points.push_back(seam.points[1]);
  apart.points.push_back(seam.points[2]);
  apart.triangles = {{0, 1, 2}, {4, 5, 3}};
  EXPECT_EQ(along(apart, {0.5, 0.25}, {1.75, 0.25}), along(seam, {0.5, 0.25}, {1.75, 0.25}));
  EXPECT_EQ(along(apart, {-1, 1}, {3, 1}), along(seam, {-1, 1}, {3, 1}));
}

TEST(TinSurface, CountsTheHigherEdgeOfAWall) {
  // a-b and A-B lie in one place in plan, A-B thirty higher; the wall between them is two triangles without area.
  Tin wall;
  wall.points = {{0, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, 0, 30}, {0, 4, 30}, {4, 0, 30}};
  wall.triangles = {{0, 1, 2}, {3, 4, 5}, {0, 1, 4}, {0, 4, 3}};
  const TinSurface surface = surfaceOf(wall);
  EXPECT_EQ(surface.counts().degenerate, 2U);
  EXPECT_EQ(along(surface, {-1, 1}, {1, 1}), "-1,1,0 0,1,30 1,1,30");
  EXPECT_EQ(surface.elevationAt({0, 1}), 30.0);
  EXPECT_EQ(along(surface, {0, -1}, {0, 9}), "0,0,30 0,4,30");
}

TEST(TinSurface, CountsTheHighestOfTheEdgesThatCrossAndThatItRunsAlong) {
  // d-e of one triangle crosses a-b of another in the middle.
  Tin over;
  over.points = {{0, 0, 10}, {8, 0, 30}, {4, 9, 0}, {4, -4, 0}, {4, 4, 8}, {9, 4, 0}};
  over.triangles = {{0, 1, 2}, {3, 4, 5}};
  EXPECT_EQ(along(over, {0, 0}, {8, 0}), "0,0,10 4,0,20 6.5,0,26.25 8,0,30");
  EXPECT_EQ(along(over, {9, 0}, {-1, 0}), "8,0,30 6.5,0,26.25 4,0,20 0,0,10");
  EXPECT_EQ(along(over, {2, 0}, {5, 0}), "2,0,15 4,0,20 5,0,22.5") << "of a part";
  over.points[3].z = over.points[4].z = 60;
  EXPECT_EQ(along(over, {0, 0}, {5, 0}), "0,0,10 4,0,60 5,0,22.5") << "the other one is higher";
}

TEST(TinSurface, FindsTheBorderThatASegmentCrossesAHairBehindItsStartOrBeforeItsEnd) {
  std::mt19937_64 random(seedOfTest());
  std::uniform_real_distribution<double> place(0.0, 100.0);
  std::uniform_real_distribution<double> part(0.1, 0.9);
  int count = 0;
  for (int i = 0; i < 20'000; ++i) {
    const std::array<Vec3, 3> c{
        Vec3{place(random), place(random), 1}, {place(random), place(random), 2}, {place(random), place(random), 3}};
    if (detail::exactSide({c[0].x, c[0].y}, {c[1].x, c[1].y}, {c[2].x, c[2].y}) < 1.0) continue;
    // As near to the border as doubles allow, and outside.
    const double t = part(random);
    const Vec2 a{c[0].x + t * (c[1].x - c[0].x), c[0].y + t * (c[1].y - c[0].y)};
    if (detail::exactSide({c[0].x, c[0].y}, {c[1].x, c[1].y}, a) >= 0.0) continue;
    const Vec2 b{(c[0].x + c[1].x + c[2].x) / 3, (c[0].y + c[1].y + c[2].y) / 3};
    const TinSurface surface(std::vector<Vec3>(c.begin(), c.end()), {{0, 1, 2}});
    ASSERT_EQ(sampled(surface, a, b).size(), 2U) << i;
    ASSERT_EQ(sampled(surface, b, a).size(), 2U) << i;
    ++count;
  }
  EXPECT_GT(count, 1000);
}

TEST(TinSurface, HoldsNoGroundInTrianglesWithoutArea) {
  const Tin flat = tin({"a b c"}, "abc");
  const TinSurface surface = surfaceOf(flat);
  EXPECT_TRUE(surface.isEmpty());
  EXPECT_EQ(surface.counts().triangles, 1U);
  EXPECT_EQ(surface.counts().degenerate, 1U);
  EXPECT_EQ(along(surface, {-1, 0}, {9, 0}), "");
  EXPECT_TRUE(surface.box().isEmpty());
}

TEST(TinSurface, CountsEdgesOfMoreThanTwoTriangles) {
  const Tin fin = tin({"a b c", "     ", "  d  "}, "abd bcd cad");
  EXPECT_EQ(surfaceOf(fin).counts().overlappingEdges, 0U) << "the side of a-c has no area";
  Tin book;
  book.points = {{0, 0, 0}, {0, 4, 0}, {4, 0, 1}, {-4, 0, 2}, {4, 4, 3}};
  book.triangles = {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}};
  EXPECT_EQ(surfaceOf(book).counts().overlappingEdges, 1U);
  EXPECT_EQ(along(book, {-1, 1}, {1, 1}), "-1,1,0.5 0,1,0 1,1,0.75");
}

TEST(TinSurface, GivesOnePointForCrossingsCloserThanABillionthOfTheSegment) {
  Tin sliver;
  sliver.points = {{0, 0, 0}, {0, 10, 0}, {5, 0, 5}, {5 + 1e-9, 10, 5}, {5 + 2e-9, 0, 5}, {10, 0, 0}, {10, 10, 0}};
  sliver.triangles = {{0, 2, 1}, {1, 2, 3}, {2, 4, 3}, {4, 5, 3}, {5, 6, 3}};
  EXPECT_EQ(sampled(surfaceOf(sliver), {-1, 1}, {11, 1}).size(), 5U) << "2e-9 apart on a segment of 12";
  EXPECT_EQ(sampled(surfaceOf(sliver), {4.999, 1}, {5.001, 1}).size(), 4U) << "the same two on a short one";
}

// ---------------------------------------------------------------- what a surface tells of itself

TEST(TinSurface, IsEmptyWithoutTriangles) {
  for (const TinSurface& surface : {TinSurface(), TinSurface({}, {}), TinSurface({{1, 2, 3}}, {})}) {
    EXPECT_TRUE(surface.isEmpty());
    EXPECT_TRUE(surface.box().isEmpty());
    EXPECT_EQ(surface.minElevation(), 0.0);
    EXPECT_EQ(surface.elevationAt({1, 2}), std::nullopt);
    EXPECT_EQ(along(surface, {0, 0}, {9, 9}), "");
  }
}

TEST(TinSurface, TellsItsBoxElevationsAndCountsOfTheGroundOnly) {
  Tin t = tin({"a b", "   ", "c d"}, "abc bcd");
  t.points.push_back({99, 99, 99});
  const TinSurface surface = surfaceOf(t);
  EXPECT_EQ(surface.counts().points, 5U);
  EXPECT_EQ(surface.counts().triangles, 2U);
  EXPECT_EQ(surface.box().minX, 0.0);
  EXPECT_EQ(surface.box().minY, 0.0);
  EXPECT_EQ(surface.box().maxX, 2.0);
  EXPECT_EQ(surface.box().maxY, 2.0);
  EXPECT_EQ(surface.minElevation(), 1.0);
  EXPECT_EQ(surface.maxElevation(), 4.0);
}

TEST(TinSurface, RefusesCornersThatAreNoPoints) {
  const std::vector<Vec3> points{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  EXPECT_THROW(TinSurface(points, {{0, 1, 3}}), std::invalid_argument);
  EXPECT_THROW(TinSurface(points, {{0, -1, 2}}), std::invalid_argument);
}

TEST(TinSurface, RefusesCoordinatesThatAreNoNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(TinSurface({{0, 0, 0}, {1, nan, 0}, {0, 1, 0}}, {{0, 1, 2}}), std::invalid_argument);
  EXPECT_THROW(TinSurface({{0, 0, 0}, {1, 0, 0}, {0, 1, 1e300}}, {{0, 1, 2}}), std::invalid_argument);
}

// ---------------------------------------------------------------- against the reference

double alphabetical(std::mt19937_64& random) { return static_cast<double>(random() % 26 + 1); }

/// A lattice of `columns` by `rows` cells, its inner corners moved by up to `jitter`, with random diagonals.
Tin lattice(int columns, int rows, int spacing, int jitter, std::mt19937_64& random) {
  Tin t;
  std::uniform_int_distribution<int> move(-jitter, jitter);
  for (int r = 0; r <= rows; ++r)
    for (int c = 0; c <= columns; ++c) {
      const bool isInner = r > 0 && r < rows && c > 0 && c < columns;
      t.points.push_back({static_cast<double>(c * spacing + (isInner ? move(random) : 0)),
                          static_cast<double>(r * spacing + (isInner ? move(random) : 0)), alphabetical(random)});
    }
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < columns; ++c) {
      const std::int32_t a = r * (columns + 1) + c;
      const std::int32_t b = a + 1;
      const std::int32_t d = a + columns + 1;
      const std::int32_t e = d + 1;
      if (random() % 2 == 0) {
        t.triangles.push_back({a, b, e});
        t.triangles.push_back({a, e, d});
      } else {
        t.triangles.push_back({a, b, d});
        t.triangles.push_back({b, e, d});
      }
    }
  return t;
}

void removeSome(Tin& t, std::mt19937_64& random, unsigned oneOf) {
  std::erase_if(t.triangles, [&](const Triangle&) { return random() % oneOf == 0; });
}

/// Every triangle with points of its own.
Tin takenApart(const Tin& t) {
  Tin result;
  for (const Triangle& triangle : t.triangles) {
    const auto first = static_cast<std::int32_t>(result.points.size());
    for (const std::int32_t corner : {triangle.a, triangle.b, triangle.c})
      result.points.push_back(t.points[static_cast<std::size_t>(corner)]);
    result.triangles.push_back({first, first + 1, first + 2});
  }
  return result;
}

class TinAgainstReference : public testing::Test {
 protected:
  std::mt19937_64 random_{seedOfTest()};

  void check(const Tin& t, int segments) {
    SCOPED_TRACE("seed " + std::to_string(seedOfTest()));
    expectLikeReferenceAllOver(t, random_, segments);
  }
};

TEST_F(TinAgainstReference, OnALattice) { check(lattice(24, 20, 1, 0, random_), 300); }

TEST_F(TinAgainstReference, OnAJitteredLattice) { check(lattice(30, 30, 10, 3, random_), 300); }

TEST_F(TinAgainstReference, OnALongStrip) { check(lattice(300, 1, 1, 0, random_), 300); }

TEST_F(TinAgainstReference, OnASteepStrip) {
  // Turned, so that the strip crosses its box from corner to corner.
  Tin t = lattice(120, 3, 2, 0, random_);
  for (Vec3& p : t.points) p = {p.x + p.y, p.x - p.y, p.z};
  check(t, 300);
}

TEST_F(TinAgainstReference, OnGroundWithHolesAndIslands) {
  Tin few = lattice(30, 30, 10, 3, random_);
  removeSome(few, random_, 40);
  check(few, 250);
  Tin many = lattice(20, 20, 2, 0, random_);
  removeSome(many, random_, 3);
  check(many, 250);
}

TEST_F(TinAgainstReference, OnARing) {
  Tin t = lattice(30, 30, 10, 3, random_);
  std::erase_if(t.triangles, [&](const Triangle& triangle) {
    const Vec3& p = t.points[static_cast<std::size_t>(triangle.a)];
    const double far = std::hypot(p.x - 150, p.y - 150);
    return far < 60 || far > 130;
  });
  check(t, 250);
}

/// Adds ground of its own, with its points moved.
void addLayer(Tin& t, const Tin& layer, double x, double y) {
  const auto first = static_cast<std::int32_t>(t.points.size());
  for (const Vec3& p : layer.points) t.points.push_back({p.x + x, p.y + y, p.z});
  for (const Triangle& c : layer.triangles) t.triangles.push_back({c.a + first, c.b + first, c.c + first});
}

void cutHole(Tin& t, Vec2 middle, double radius) {
  std::erase_if(t.triangles, [&](const Triangle& triangle) {
    const Vec3& p = t.points[static_cast<std::size_t>(triangle.a)];
    return std::hypot(p.x - middle.x, p.y - middle.y) < radius;
  });
}

TEST_F(TinAgainstReference, OnRoundHolesWithIslandsInAndAcrossThem) {
  for (int terrain = 0; terrain < 16; ++terrain) {
    Tin t = lattice(30, 30, 10, 3, random_);
    const auto somewhere = [&] { return static_cast<double>(random_() % 300); };
    for (auto holes = random_() % 8; holes > 0; --holes)
      cutHole(t, {somewhere(), somewhere()}, 10.0 + static_cast<double>(random_() % 30));
    cutHole(t, {150, 150}, 70);
    // Within the large hole, where nothing else lies.
    Tin island = lattice(6, 6, 10, 2, random_);
    cutHole(island, {30, 30}, 15);
    addLayer(t, island, 121, 122);
    // Over what may be ground, a hole or its border.
    if (terrain % 2 == 1) addLayer(t, lattice(3, 3, 10, 2, random_), somewhere(), somewhere());
    ASSERT_NO_FATAL_FAILURE(check(t, 60)) << "terrain " << terrain;
  }
}

/// Samples a surface, far from the origin and with its corners moved, and the same given twice, where no triangle is alone
/// where it lies, so that nothing is walked; the ground is the same. `leastSamples`: or this shows nothing.
void sampleWalkingAndGathering(Tin t, std::mt19937_64& random, int segments, std::size_t leastSamples) {
  std::uniform_real_distribution<double> move(-0.5, 0.5);
  for (Vec3& p : t.points) p = {3.2e7 + p.x + move(random), 6.1e6 + p.y + move(random), p.z + move(random)};
  const TinSurface once = surfaceOf(t);
  Tin doubled = t;
  doubled.triangles.insert(doubled.triangles.end(), t.triangles.begin(), t.triangles.end());
  const TinSurface twice = surfaceOf(renumbered(doubled, random));
  std::uniform_real_distribution<double> place(-30.0, 630.0);
  std::size_t count = 0;
  for (int i = 0; i < segments; ++i) {
    const Vec2 a{3.2e7 + place(random), 6.1e6 + place(random)};
    const Vec2 b{3.2e7 + place(random), 6.1e6 + place(random)};
    const auto samples = sampled(once, a, b);
    ASSERT_EQ(samples, sampled(twice, a, b)) << "segment " << i << ", seed " << seedOfTest();
    count += samples.size();
  }
  EXPECT_GT(count, leastSamples);
}

TEST(TinSurface, HoldsOneElevationBesideHolesToTheLastBitWhetherItWalksOrGathers) {
  std::mt19937_64 random(seedOfTest());
  Tin t = lattice(60, 60, 10, 3, random);
  for (int i = 0; i < 25; ++i)
    cutHole(t, {static_cast<double>(random() % 600), static_cast<double>(random() % 600)},
            15.0 + static_cast<double>(random() % 30));
  sampleWalkingAndGathering(std::move(t), random, 1'000, 20'000);
}

TEST(TinSurface, GoesThroughVerticesAndAlongEdgesAsItGathers) {
  // Ends at vertices, on edges and within triangles; along rows, columns and diagonals, and by steps of a knight; also over
  // holes that touch one another with a corner.
  std::mt19937_64 random(seedOfTest());
  Tin whole = lattice(50, 50, 8, 0, random);
  for (Vec3& p : whole.points) p = {3.2e7 + p.x, 6.1e6 + p.y, p.z};
  Tin checkered = whole;
  std::erase_if(checkered.triangles, [&](const Triangle& t) {
    const auto at = [&](std::int32_t corner) { return checkered.points[static_cast<std::size_t>(corner)]; };
    const auto column = static_cast<int>((at(t.a).x + at(t.b).x + at(t.c).x) / 3.0 - 3.2e7) / 32;
    const auto row = static_cast<int>((at(t.a).y + at(t.b).y + at(t.c).y) / 3.0 - 6.1e6) / 32;
    return column % 4 < 2 && row % 4 < 2 && (column + row) % 2 == 0;
  });
  ASSERT_LT(checkered.triangles.size(), whole.triangles.size() - 500);
  for (const Tin& t : {whole, checkered}) {
    const TinSurface once = surfaceOf(t);
    Tin doubled = t;
    doubled.triangles.insert(doubled.triangles.end(), t.triangles.begin(), t.triangles.end());
    const TinSurface twice = surfaceOf(renumbered(doubled, random));
    std::size_t count = 0;
    for (int i = 0; i < 4'000; ++i) {
      constexpr std::array<Vec2, 8> kWays{{{1, 0}, {0, 1}, {1, 1}, {1, -1}, {2, 1}, {1, 2}, {-2, 1}, {3, -1}}};
      const Vec2 way = kWays[random() % kWays.size()];
      const double steps = static_cast<double>(random() % 60) - 30.0 + (random() % 3 == 0 ? 0.5 : 0.0);
      const auto place = [&] {
        return 8.0 * static_cast<double>(random() % 56) - 24.0 + (random() % 4 == 0 ? 4.0 : 0.0);
      };
      const Vec2 a{3.2e7 + place(), 6.1e6 + place()};
      const Vec2 b = a + 8.0 * steps * way;
      const auto samples = sampled(once, a, b);
      ASSERT_EQ(samples, sampled(twice, a, b)) << "segment " << i << ", seed " << seedOfTest();
      count += samples.size();
    }
    EXPECT_GT(count, 30'000U);
  }
}

TEST(TinSurface, IsTheSameWhoeverBuildsIt) {
  std::mt19937_64 random(seedOfTest());
  Tin t = lattice(260, 260, 10, 3, random);
  cutHole(t, {1000, 1000}, 200);
  addLayer(t, lattice(20, 20, 10, 3, random), 1700, 1800);
  for (std::size_t i = 0; i < 50; ++i) {
    t.triangles.push_back(t.triangles[random() % t.triangles.size()]);
    const Triangle flat = t.triangles[random() % t.triangles.size()];
    t.triangles.push_back({flat.a, flat.a, flat.b});
  }
  t = renumbered(t, random);
  const TinSurface wanted = surfaceOf(t);
  using Piece = std::function<void(std::size_t)>;
  const RunPieces backwards = [](std::size_t count, const Piece& piece) {
    while (count > 0) piece(--count);
  };
  const RunPieces inThreads = [](std::size_t count, const Piece& piece) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
      threads.emplace_back([&] {
        for (std::size_t mine = next++; mine < count; mine = next++) piece(mine);
      });
    for (std::thread& thread : threads) thread.join();
  };
  for (const RunPieces& run : {backwards, inThreads}) {
    const TinSurface built(t.points, t.triangles, run);
    ASSERT_TRUE(std::ranges::equal(built.points(), wanted.points()));
    ASSERT_TRUE(std::ranges::equal(built.triangles(), wanted.triangles()));
    EXPECT_EQ(built.counts().degenerate, wanted.counts().degenerate);
    EXPECT_EQ(built.counts().overlappingEdges, wanted.counts().overlappingEdges);
    EXPECT_EQ(built.box().minX, wanted.box().minX);
    EXPECT_EQ(built.box().maxY, wanted.box().maxY);
    EXPECT_EQ(built.minElevation(), wanted.minElevation());
    EXPECT_EQ(built.maxElevation(), wanted.maxElevation());
    std::uniform_real_distribution<double> place(-30.0, 2630.0);
    for (int i = 0; i < 200; ++i) {
      const Vec2 a{place(random), place(random)};
      const Vec2 b{place(random), place(random)};
      ASSERT_EQ(sampled(built, a, b), sampled(wanted, a, b));
    }
  }
  // Also where the search is built by the first questions, asked by several threads at a time.
  const TinSurface asked(t.points, t.triangles, inOrder, GroundSearch::WhenAsked);
  EXPECT_EQ(asked.counts().overlappingEdges, wanted.counts().overlappingEdges);
  EXPECT_TRUE(std::ranges::equal(asked.triangles(), wanted.triangles()));
  std::vector<std::vector<Vec3>> answers(60);
  inThreads(answers.size(), [&](std::size_t i) {
    answers[i] = sampled(asked, {40.0 * static_cast<double>(i), -10.0}, {1300.0, 2610.0});
  });
  for (std::size_t i = 0; i < answers.size(); ++i) {
    const Vec2 a{40.0 * static_cast<double>(i), -10.0};
    EXPECT_EQ(answers[i], sampled(wanted, a, {1300.0, 2610.0})) << i;
    EXPECT_EQ(asked.elevationAt(a), wanted.elevationAt(a)) << i;
  }
  // What is wrong is told by its first place, whoever finds it.
  Tin bad = t;
  bad.triangles[100'000].b = -1;
  bad.triangles[20'000].c = static_cast<std::int32_t>(bad.points.size());
  try {
    const TinSurface surface(bad.points, bad.triangles, backwards);
    ADD_FAILURE() << surface.counts().triangles;
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "civil: surface triangle 20000 has a corner that isn't a point");
  }
}

TEST(TriangleLinks, AreThoseOfAPlainListOfEdges) {
  // Numbered row by row, and at random: neighbours then lie in other stretches and far away.
  std::mt19937_64 random(seedOfTest());
  Tin rows = lattice(300, 300, 10, 3, random);
  cutHole(rows, {1000, 1000}, 200);
  for (std::size_t i = 0; i < 300; ++i) {
    // Twice, three times, and the other way round, which is a second layer all the same.
    rows.triangles.push_back(rows.triangles[random() % rows.triangles.size()]);
    const Triangle twice = rows.triangles[random() % rows.triangles.size()];
    rows.triangles.push_back(twice);
    rows.triangles.push_back({twice.a, twice.c, twice.b});
    // A wing on an edge.
    rows.points.push_back({10.0 * static_cast<double>(i), -50.0, 1.0});
    rows.triangles.push_back({twice.a, twice.b, static_cast<std::int32_t>(rows.points.size() - 1)});
  }
  // Points of hundreds of edges, numbered before and behind those around them; some of their triangles over others.
  for (const bool isFirst : {true, false}) {
    constexpr std::int32_t kSpokes = 400;
    const auto first = static_cast<std::int32_t>(rows.points.size());
    const std::int32_t hub = isFirst ? first : first + kSpokes;
    const std::int32_t ring = isFirst ? first + 1 : first;
    const double y = isFirst ? -5000.0 : -9000.0;
    if (isFirst) rows.points.push_back({0.0, y, 1.0});
    for (int i = 0; i < kSpokes; ++i) {
      const double angle = 2 * M_PI * i / kSpokes;
      rows.points.push_back({1000.0 * std::cos(angle), y + 1000.0 * std::sin(angle), 1.0});
    }
    if (!isFirst) rows.points.push_back({0.0, y, 1.0});
    for (std::int32_t i = 0; i < kSpokes; ++i) {
      const Triangle spoke{hub, ring + i, ring + (i + 1) % kSpokes};
      for (int times = 0; times <= (i % 7 == 0) + (i % 21 == 0); ++times) rows.triangles.push_back(spoke);
      if (i % 11 == 0) rows.triangles.push_back({ring + i, hub, ring + (i + 20) % kSpokes});
    }
  }
  for (const bool isMixed : {false, true}) {
    Tin t = isMixed ? renumbered(rows, random) : rows;
    t.triangles.resize(detail::windAndPartition(t.points, t.triangles));
    detail::SpareMemory spare;
    const detail::TriangleLinks links(t.points.size(), t.triangles, spare);

    struct Side {
      detail::Link edge;
      bool isRising;
    };
    std::map<std::pair<std::int32_t, std::int32_t>, std::vector<Side>> edges;
    std::vector<detail::Link> wanted(4 * t.triangles.size(), detail::kNoLink);
    for (std::size_t i = 0; i < t.triangles.size(); ++i) {
      const std::array<std::int32_t, 3> corners{t.triangles[i].a, t.triangles[i].b, t.triangles[i].c};
      for (std::size_t edge = 0; edge < 3; ++edge) {
        const std::int32_t from = corners[(edge + 1) % 3];
        const std::int32_t to = corners[(edge + 2) % 3];
        edges[std::minmax(from, to)].push_back({static_cast<detail::Link>(4 * i + edge), from < to});
      }
    }
    std::size_t overlapping = 0;
    for (const auto& [ends, sides] : edges) {
      if (sides.size() > 2) ++overlapping;
      if (sides.size() != 2 || sides[0].isRising == sides[1].isRising) continue;
      wanted[static_cast<std::size_t>(sides[0].edge)] = sides[1].edge;
      wanted[static_cast<std::size_t>(sides[1].edge)] = sides[0].edge;
    }
    EXPECT_GT(overlapping, 1'000U);
    EXPECT_EQ(links.overlappingEdges(), overlapping);
    std::size_t far = 0;
    for (std::size_t i = 0; i < t.triangles.size(); ++i) {
      for (std::size_t edge = 0; edge < 3; ++edge) {
        const detail::Link link = wanted[4 * i + edge];
        ASSERT_EQ(links.across(i, edge), link) << "triangle " << i << ", edge " << edge;
        constexpr int kNear = 10'000;
        if (link != detail::kNoLink && std::abs(link / 4 - static_cast<int>(i)) > kNear) ++far;
      }
    }
    EXPECT_EQ(far > 100'000, isMixed);
    std::vector<std::size_t> borders;
    std::vector<std::size_t> wantedBorders;
    for (std::size_t slot = 0; slot < 3 * t.triangles.size(); ++slot)
      if (wanted[4 * (slot / 3) + slot % 3] == detail::kNoLink) wantedBorders.push_back(slot);
    links.eachBorder([&](std::size_t slot) {
      borders.push_back(slot);
      return true;
    });
    EXPECT_TRUE(borders == wantedBorders);
    std::size_t asked = 0;
    links.eachBorder([&](std::size_t) { return ++asked < 3; });
    EXPECT_EQ(asked, 3U);
  }
}

TEST(Renumbering, KeepsEveryTriangleAndLaysNeighboursClose) {
  std::mt19937_64 random(seedOfTest());
  struct Case {
    const char* name;
    int columns;
    int rows;
  };
  for (const Case& of : {Case{"square", 200, 200}, Case{"strip", 4000, 10}, Case{"upright strip", 10, 4000},
                         Case{"one row", 20'000, 1}, Case{"one column", 1, 20'000}}) {
    const Tin written = lattice(of.columns, of.rows, 5, 1, random);
    for (const bool isMixed : {false, true}) {
      const Tin t = isMixed ? renumbered(written, random) : written;
      SCOPED_TRACE(std::string(of.name) + (isMixed ? ", mixed" : ", as written"));
      Box box;
      for (const Vec3& p : t.points) box.add({p.x, p.y});
      const detail::AlongCurve held = detail::renumberAlongCurve(t.points, t.triangles, box);
      ASSERT_EQ(held.usedPoints, t.points.size());
      const auto cornersOf = [](std::span<const Vec3> points, std::span<const Triangle> triangles) {
        std::vector<std::array<double, 9>> all;
        for (const Triangle& triangle : triangles) {
          std::array<double, 9>& corners = all.emplace_back();
          auto next = corners.begin();
          for (const std::int32_t number : {triangle.a, triangle.b, triangle.c}) {
            const Vec3& p = points[static_cast<std::size_t>(number)];
            for (const double value : {p.x, p.y, p.z}) *next++ = value;
          }
        }
        std::sort(all.begin(), all.end());
        return all;
      };
      EXPECT_TRUE(cornersOf(held.points.all(), held.triangles.all()) == cornersOf(t.points, t.triangles));
      // Mixed, two corners of a triangle would be a third of all points apart.
      double apart = 0;
      for (const Triangle& triangle : held.triangles.all()) apart += std::abs(triangle.a - triangle.b);
      EXPECT_LT(apart / static_cast<double>(held.triangles.size()), 0.02 * static_cast<double>(t.points.size()));
    }
  }
}

TEST(StartGrid, TellsBordersInGoodOrderFromOthers) {
  using detail::StartGrid;
  std::mt19937_64 random(seedOfTest());
  const auto countOf = [](const Tin& t, StartGrid::Cover cover) {
    std::vector<Vec3> points = t.points;
    std::vector<Triangle> triangles = t.triangles;
    triangles.resize(detail::windAndPartition(points, triangles));
    Box box;
    for (const Vec3& p : points) {
      box.minX = std::min(box.minX, p.x);
      box.maxX = std::max(box.maxX, p.x);
      box.minY = std::min(box.minY, p.y);
      box.maxY = std::max(box.maxY, p.y);
    }
    detail::SpareMemory spare;
    detail::TriangleLinks links(points.size(), triangles, spare);
    const StartGrid grid(points, triangles, box, links, spare);
    std::set<std::size_t> cells;
    for (double x = box.minX; x < box.maxX; x += 2.0)
      for (double y = box.minY; y < box.maxY; y += 2.0)
        if (const std::size_t cell = grid.cellOf({x, y}); grid.coverOf(cell) == cover) cells.insert(cell);
    return cells.size();
  };
  using Cover = StartGrid::Cover;
  Tin t = lattice(40, 40, 10, 0, random);
  EXPECT_EQ(countOf(t, Cover::Odd), 0U);
  EXPECT_EQ(countOf(t, Cover::None), 0U);
  const std::size_t rim = countOf(t, Cover::PlainBorder);
  EXPECT_GT(rim, 100U);
  EXPECT_GT(countOf(t, Cover::One), 400U);
  // A square hole.
  std::erase_if(t.triangles, [&](const Triangle& c) {
    const auto isWithin = [&](std::int32_t corner) {
      const Vec3& p = t.points[static_cast<std::size_t>(corner)];
      return p.x >= 100 && p.x <= 200 && p.y >= 100 && p.y <= 200;
    };
    return isWithin(c.a) && isWithin(c.b) && isWithin(c.c);
  });
  EXPECT_EQ(countOf(t, Cover::Odd), 0U);
  EXPECT_GT(countOf(t, Cover::None), 20U);
  EXPECT_GT(countOf(t, Cover::PlainBorder), rim + 20);
  // Holes that touch one another in points of the surface.
  Tin checkered = lattice(40, 40, 10, 0, random);
  std::erase_if(checkered.triangles, [&](const Triangle& c) {
    const auto at = [&](std::int32_t corner) { return checkered.points[static_cast<std::size_t>(corner)]; };
    const auto column = static_cast<int>((at(c.a).x + at(c.b).x + at(c.c).x) / 90.0);
    const auto row = static_cast<int>((at(c.a).y + at(c.b).y + at(c.c).y) / 90.0);
    return column > 1 && row > 1 && column < 8 && row < 8 && (column + row) % 2 == 0;
  });
  EXPECT_EQ(countOf(checkered, Cover::Odd), 0U);
  EXPECT_GT(countOf(checkered, Cover::None), 20U);
  // One of them filled by a triangle of its own that overlaps the ground around.
  Tin filled = checkered;
  filled.triangles.push_back({15 * 41 + 13, 15 * 41 + 18, 19 * 41 + 15});
  EXPECT_GT(countOf(filled, Cover::Odd), 0U);
  // An island in it, one layer as well.
  Tin inHole = t;
  addLayer(inHole, lattice(4, 4, 10, 0, random), 131, 132);
  EXPECT_EQ(countOf(inHole, Cover::Odd), 0U);
  // An island that touches the hole's border with a corner; one across it; one on the ground; the ground twice.
  Tin touching = t;
  addLayer(touching, lattice(4, 4, 10, 0, random), 100, 131);
  EXPECT_GT(countOf(touching, Cover::Odd), 0U);
  Tin across = t;
  addLayer(across, lattice(4, 4, 10, 0, random), 81, 132);
  EXPECT_GT(countOf(across, Cover::Odd), 0U);
  Tin over = t;
  addLayer(over, lattice(6, 6, 10, 0, random), 231, 232);
  EXPECT_GT(countOf(over, Cover::Odd), 9U);
  Tin twice = t;
  addLayer(twice, t, 0, 0);
  EXPECT_EQ(countOf(twice, Cover::One) + countOf(twice, Cover::PlainBorder), 0U);
}

TEST_F(TinAgainstReference, OnSlivers) {
  // Fans from two far corners over a row of points: triangles hundreds of times longer than wide.
  Tin t;
  t.points = {{0, 150, 3}, {0, -150, 7}};
  for (int i = 0; i <= 60; ++i) t.points.push_back({static_cast<double>(i - 30), 0, alphabetical(random_)});
  for (std::int32_t i = 2; i < 62; ++i) {
    t.triangles.push_back({0, i, i + 1});
    t.triangles.push_back({1, i, i + 1});
  }
  check(t, 300);
}

TEST_F(TinAgainstReference, WithTrianglesGivenTwice) {
  Tin t = lattice(20, 20, 10, 3, random_);
  for (std::size_t i = 0; i < 400; i += 37) t.triangles.push_back(t.triangles[i]);
  check(t, 250);
}

TEST_F(TinAgainstReference, OnPointsGivenOncePerTriangle) { check(takenApart(lattice(16, 16, 2, 0, random_)), 500); }

TEST_F(TinAgainstReference, OnTwoLayers) {
  Tin t = lattice(30, 30, 10, 3, random_);
  Tin cover = lattice(5, 5, 20, 5, random_);
  const auto first = static_cast<std::int32_t>(t.points.size());
  for (const Vec3& p : cover.points) t.points.push_back({p.x + 101, p.y + 102, p.z + 50});
  for (const Triangle& c : cover.triangles) t.triangles.push_back({c.a + first, c.b + first, c.c + first});
  check(t, 250);
}

TEST_F(TinAgainstReference, OnTwoLayersWhoseEdgesLieOnOneLine) {
  Tin t = lattice(8, 8, 4, 0, random_);
  const Tin cover = lattice(6, 6, 3, 0, random_);
  const auto first = static_cast<std::int32_t>(t.points.size());
  for (const Vec3& p : cover.points) t.points.push_back({p.x + 4, p.y + 4, p.z});
  for (const Triangle& c : cover.triangles) t.triangles.push_back({c.a + first, c.b + first, c.c + first});
  check(t, 400);
}

TEST_F(TinAgainstReference, WithCornersOnOtherTrianglesEdges) {
  // Left half in cells of 2, right half in cells of 4: every second corner of the seam lies within a long edge.
  Tin t = lattice(8, 16, 2, 0, random_);
  const Tin coarse = lattice(4, 8, 4, 0, random_);
  const auto first = static_cast<std::int32_t>(t.points.size());
  for (const Vec3& p : coarse.points) t.points.push_back({p.x + 16, p.y, p.z});
  for (const Triangle& c : coarse.triangles) t.triangles.push_back({c.a + first, c.b + first, c.c + first});
  check(t, 250);
}

TEST(TinSurface, SamplesTheSameToTheLastBitWhetherItWalksOrGathers) {
  std::mt19937_64 random(seedOfTest());
  Tin t = lattice(60, 60, 10, 3, random);
  sampleWalkingAndGathering(std::move(t), random, 300, 10'000);
}

TEST(TinSurface, SamplesTheSameToTheLastBitWhetherOrNotGroundFarAwayMakesTheWalkLessSure) {
  // The farther the ground reaches, the coarser is what holds for all of its corners: first some steps need care, then all.
  std::mt19937_64 random(seedOfTest());
  Tin near = lattice(60, 60, 10, 3, random);
  cutHole(near, {200, 300}, 45);
  const TinSurface alone = surfaceOf(near);
  for (const double far : {1e5, 1e7, 1e9, 1e12}) {
    Tin both = near;
    const auto first = static_cast<std::int32_t>(both.points.size());
    both.points.insert(both.points.end(), {{far, 0, 1}, {far + 8, 0, 1}, {far, 8, 1}});
    both.triangles.push_back({first, first + 1, first + 2});
    const TinSurface apart = surfaceOf(both);
    const auto place = [&] { return static_cast<double>(random() % 70'000) / 100.0 - 50.0; };
    std::size_t count = 0;
    for (int i = 0; i < 2'000; ++i) {
      const Vec2 a{place(), place()};
      const Vec2 b{place(), place()};
      const auto samples = sampled(alone, a, b);
      ASSERT_EQ(samples, sampled(apart, a, b)) << "segment " << i << ", ground " << far << ", seed " << seedOfTest();
      count += samples.size();
    }
    EXPECT_GT(count, 50'000U);
  }
}

TEST_F(TinAgainstReference, OnASoupOfTriangles) {
  for (int soup = 0; soup < 20; ++soup) {
    Tin t;
    for (int i = 0; i < 24; ++i)
      t.points.push_back(
          {static_cast<double>(random_() % 16), static_cast<double>(random_() % 16), alphabetical(random_)});
    for (int i = 0; i < 20; ++i)
      t.triangles.push_back({static_cast<std::int32_t>(random_() % 24), static_cast<std::int32_t>(random_() % 24),
                             static_cast<std::int32_t>(random_() % 24)});
    ASSERT_NO_FATAL_FAILURE(check(t, 60)) << "soup " << soup;
  }
}

}  // namespace
}  // namespace lvx::civil
