#include "framework/tpt3list.h"

#include <limits>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "framework/exceptions.h"

namespace lvx::framework {
namespace {

tpt3list numbered(int count) {
  tpt3list list;
  for (int i = 0; i < count; ++i) list.append({static_cast<double>(i), 0.0, 0.0});
  return list;
}

TEST(Tpt3List, StartsWithoutStorage) {
  const tpt3list list;
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(list.capacity(), 0);
}

TEST(Tpt3List, DoublesItsCapacityFromTheGrowthStepOfEight) {
  tpt3list list;
  std::vector<int> capacities;
  for (int i = 0; i < 40; ++i) {
    list.append({});
    if (capacities.empty() || capacities.back() != list.capacity()) capacities.push_back(list.capacity());
  }
  EXPECT_EQ(capacities, (std::vector<int>{8, 16, 32, 64}));
}

TEST(Tpt3List, GrowsByAFixedStepOnceItsStorageReaches64KiB) {
  // 2731 elements take 65544 bytes; the doublings 8, 16, ... pass that at 4096.
  EXPECT_EQ(numbered(4096).capacity(), 4096);
  EXPECT_EQ(numbered(4097).capacity(), 4096 + 2730);
  EXPECT_EQ(numbered(4096 + 2730 + 1).capacity(), 4096 + 2 * 2730);
}

TEST(Tpt3List, ReservesTheCapacityThatAppendingOneByOneReaches) {
  for (const int before : {0, 1, 8, 9, 4096}) {
    for (const int additional : {0, 1, 7, 8, 9, 100, 4096, 20000}) {
      tpt3list reserved = numbered(before);
      reserved.reserveForAppending(additional);
      EXPECT_EQ(reserved.count(), before);
      EXPECT_EQ(reserved.capacity(), numbered(before + additional).capacity()) << before << " + " << additional;
      if (before > 0) {
        EXPECT_EQ(reserved[before - 1].first, before - 1);
      }
    }
  }
}

TEST(Tpt3List, RefusesMoreElementsThanItsCountCanHold) {
  tpt3list list = numbered(1);
  EXPECT_THROW(list.reserveForAppending(std::numeric_limits<std::int32_t>::max()), std::bad_alloc);
  EXPECT_EQ(list.count(), 1);
}

TEST(Tpt3List, InsertsInFrontOfTheGivenIndexAndMovesTheRestUp) {
  tpt3list list = numbered(3);
  list.insert(1, {9.0, 0.0, 0.0});
  ASSERT_EQ(list.count(), 4);
  EXPECT_EQ(list[0].first, 0.0);
  EXPECT_EQ(list[1].first, 9.0);
  EXPECT_EQ(list[2].first, 1.0);
  EXPECT_EQ(list[3].first, 2.0);
}

TEST(Tpt3List, InsertsAnElementOfItsOwnWhileItGrows) {
  tpt3list list = numbered(8);
  list.insert(0, list[7]);
  EXPECT_EQ(list[0].first, 7.0);
}

TEST(Tpt3List, LeavesItselfAsItIsForAnInsertionOutside) {
  tpt3list list = numbered(2);
  list.insert(-1, {9.0, 0.0, 0.0});
  list.insert(3, {9.0, 0.0, 0.0});
  EXPECT_EQ(list.count(), 2);
  EXPECT_EQ(list[1].first, 1.0);
}

TEST(Tpt3List, RemovesARangeWithBothItsEnds) {
  tpt3list list = numbered(5);
  list.remove(1, 3);
  ASSERT_EQ(list.count(), 2);
  EXPECT_EQ(list[1].first, 4.0);
}

TEST(Tpt3List, LeavesItselfAsItIsForARemovalOutside) {
  tpt3list list = numbered(3);
  list.remove(-1, 1);
  list.remove(1, 3);
  list.remove(2, 1);
  EXPECT_EQ(list.count(), 3);
}

TEST(Tpt3List, KeepsItsStorageAndWhatStoodInItWhenEmptied) {
  tpt3list list = numbered(3);
  list.empty();
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(list.capacity(), 8);
  EXPECT_EQ(list.stored(2).first, 2.0);
  EXPECT_EQ(list.stored(5), tpt3{});
  EXPECT_EQ(list.stored(100), tpt3{});
}

TEST(Tpt3List, RaisesTheInvalidArgumentExceptionForReadingOutside) {
  tpt3list list = numbered(3);
  list.empty();
  EXPECT_THROW((void)list.at(0), InvalidArgumentException);
  EXPECT_THROW((void)list.at(-1), InvalidArgumentException);
}

TEST(Tpt3List, CopiesAndMovesKeepContentAndCapacity) {
  tpt3list list = numbered(9);
  tpt3list copy = list;
  EXPECT_EQ(copy.capacity(), 16);
  EXPECT_EQ(copy[8].first, 8.0);
  const tpt3list moved = std::move(copy);
  EXPECT_EQ(moved[8].first, 8.0);
  list = moved;
  EXPECT_EQ(list.count(), 9);
}

TEST(Tpt3List, ReversesItsOrder) {
  tpt3list list = numbered(3);
  list.reverse();
  EXPECT_EQ(list[0].first, 2.0);
  EXPECT_EQ(list[2].first, 0.0);
}

}  // namespace
}  // namespace lvx::framework
