#include "civil/section_parts.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::civil {
namespace {

SectionParts twoParts(double shift) {
  SectionParts parts;
  parts.push_back({{"Pave", "Top"}, {{shift - 4.0, 0.1, {"ETW"}}, {shift, 0.2, {}}, {shift + 4.0, 0.1, {"ETW"}}}});
  parts.push_back({{"Kerb"}, {{shift + 4.0, 0.3, {"Top_Curb"}}}, true});
  return parts;
}

std::string textOf(const SectionParts& parts) {
  std::string text;
  for (const SectionPart& part : parts) {
    text += part.isClosed ? "closed" : "open";
    for (const std::string& code : part.codes) text += " " + code;
    for (const SectionPoint& point : part.points) {
      text += " " + std::to_string(static_cast<int>(point.offset));
      for (const std::string& code : point.codes) text += code;
    }
    text += "; ";
  }
  return text;
}

constexpr const char* kTwoParts = "open Pave Top -4ETW 0 4ETW; closed Kerb 4Top_Curb; ";

TEST(SectionParts, ArePutTogetherLikeAVector) {
  const SectionParts parts = twoParts(0.0);
  EXPECT_EQ(textOf(parts), kTwoParts);
  EXPECT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts.front().points.back().offset, 4.0);
  EXPECT_EQ(parts.back().points.size(), 1U);
  EXPECT_TRUE(SectionParts().empty());
  EXPECT_EQ(textOf(SectionParts()), "");
}

TEST(SectionParts, GrowByManyPartsAndPoints) {
  SectionParts parts;
  for (int i = 0; i < 100; ++i) {
    SectionPart part;
    for (int k = 0; k < i; ++k) part.points.push_back({static_cast<double>(k), 0.0, {"P"}});
    parts.push_back(std::move(part));
  }
  for (std::size_t i = 0; i < 100; ++i) {
    ASSERT_EQ(parts[i].points.size(), i);
    if (i > 0) {
      EXPECT_EQ(parts[i].points.back().offset, static_cast<double>(i - 1));
    }
  }
}

TEST(SectionParts, AreCopiedWithPointsThatAreTheirOwn) {
  SectionParts parts = twoParts(0.0);
  const SectionParts copy = parts;
  parts[0].points[0].offset = -9.0;
  parts[1].points[0].codes = {"Other"};
  EXPECT_EQ(textOf(copy), kTwoParts);
  EXPECT_EQ(textOf(parts), "open Pave Top -9ETW 0 4ETW; closed Kerb 4Other; ");
}

TEST(SectionParts, GrowAfterACopyThatHasNoRoom) {
  SectionParts copy(std::as_const(*std::make_unique<SectionParts>(twoParts(0.0))));
  copy[0].points.push_back({8.0, 0.0, {"New"}});
  copy.push_back({{"Third"}, {}});
  EXPECT_EQ(textOf(copy), std::string("open Pave Top -4ETW 0 4ETW 8New; closed Kerb 4Top_Curb; open Third; "));
}

TEST(SectionParts, GiveAPartAwayThatOutlivesThem) {
  SectionPart taken;
  SectionPoints points;
  {
    SectionMemory memory;
    SectionParts copy(twoParts(0.0), memory);
    taken = std::move(copy[0]);
    points = std::move(copy[1].points);
  }
  EXPECT_EQ(taken.points.size(), 3U);
  EXPECT_EQ(taken.points[2].codes, CodeList{"ETW"});
  EXPECT_EQ(points[0].offset, 4.0);
}

TEST(SectionParts, StayWhereTheyAreWhenTheyAreMoved) {
  SectionParts parts = twoParts(0.0);
  const SectionPart* const first = parts.data();
  const SectionPoint* const point = parts[1].points.data();
  std::vector<SectionParts> moved;
  moved.push_back(std::move(parts));
  moved.reserve(100);
  EXPECT_EQ(moved[0].data(), first);
  EXPECT_EQ(moved[0][1].points.data(), point);
}

TEST(SectionMemory, HoldsThePartsOfManySectionsOneBehindTheOther) {
  SectionMemory memory;
  const SectionParts first(twoParts(0.0), memory);
  const SectionParts second(twoParts(10.0), memory);
  const auto* const end = static_cast<const void*>(first.back().points.end());
  const auto* const next = static_cast<const void*>(second.data());
  EXPECT_LT(static_cast<const std::byte*>(next) - static_cast<const std::byte*>(end), 64);
  EXPECT_EQ(textOf(first), kTwoParts);
  EXPECT_EQ(second[0].points[0].offset, 6.0);
}

TEST(SectionMemory, IsFreedWithTheLastOfThemWhereverTheyAre) {
  std::vector<SectionParts> kept;
  {
    SectionMemory memory;
    std::vector<SectionParts> all;
    for (int i = 0; i < 3000; ++i) all.push_back(SectionParts(twoParts(i), memory));
    for (std::size_t i = 0; i < all.size(); i += 500) kept.push_back(std::move(all[i]));
  }
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(kept[i][0].points[1].offset, 500.0 * static_cast<double>(i));
}

TEST(SectionMemory, HasRoomForASectionLargerThanItsPieces) {
  SectionParts large;
  SectionPart part;
  for (int i = 0; i < 20000; ++i) part.points.push_back({static_cast<double>(i), 0.0, {}});
  large.push_back(std::move(part));
  SectionMemory memory;
  const SectionParts small(twoParts(0.0), memory);
  const SectionParts copy(large, memory);
  const SectionParts last(twoParts(0.0), memory);
  EXPECT_EQ(copy[0].points.back().offset, 19999.0);
  EXPECT_EQ(textOf(small), textOf(last));
}

}  // namespace
}  // namespace lvx::civil
