#include "civil/boxes_apart.h"

#include <vector>

#include <gtest/gtest.h>

namespace lvx::civil {
namespace {

TEST(BoxesApart, SaysWhetherTheyMeetAndWhetherTheyWouldSwapped) {
  struct Row {
    const char* what;
    Box first;
    Box second;
    double reach;
    bool apart;
    bool meetSwapped;
  };
  const std::vector<Row> table{
      {"one within the other", {0, 0, 10, 10}, {2, 3, 4, 5}, 0, false, false},
      {"a common corner", {0, 0, 10, 10}, {10, 10, 20, 20}, 0, false, false},
      {"a line through a box", {0, 5, 100, 5}, {40, 0, 50, 10}, 0, false, false},
      {"apart along x", {0, 0, 10, 10}, {11, 0, 20, 10}, 0, true, false},
      {"apart along y", {0, 0, 10, 10}, {0, 11, 10, 20}, 0, true, false},
      {"no further apart than the reach", {0, 0, 10, 10}, {11, 12, 20, 20}, 2, false, false},
      {"further apart than the reach", {0, 0, 10, 10}, {11, 12, 20, 20}, 1.5, true, false},
      {"easting first", {500, 100, 600, 200}, {120, 520, 180, 580}, 0, true, true},
      {"easting first, within the reach", {500, 100, 600, 200}, {201, 520, 300, 580}, 1, true, true},
      {"nothing in the first", {}, {0, 0, 1, 1}, 0, false, false},
      {"nothing in the second", {0, 0, 1, 1}, {}, 0, false, false},
  };
  for (const Row& row : table) {
    const auto found = boxesApart(row.first, row.second, row.reach);
    ASSERT_EQ(found.has_value(), row.apart) << row.what;
    EXPECT_EQ(boxesApart(row.second, row.first, row.reach).has_value(), row.apart) << row.what;
    if (!found) continue;
    EXPECT_EQ(found->meetSwapped, row.meetSwapped) << row.what;
    EXPECT_EQ(found->first.minX, row.first.minX) << row.what;
    EXPECT_EQ(found->second.maxY, row.second.maxY) << row.what;
  }
}

TEST(BoxesApart, LeavesAnEmptyBoxEmptyWhenItsAxesAreSwapped) {
  EXPECT_TRUE(withAxesSwapped(Box{}).isEmpty());
  const Box swapped = withAxesSwapped({1, 2, 3, 4});
  EXPECT_EQ(swapped.minX, 2);
  EXPECT_EQ(swapped.minY, 1);
  EXPECT_EQ(swapped.maxX, 4);
  EXPECT_EQ(swapped.maxY, 3);
}

}  // namespace
}  // namespace lvx::civil
