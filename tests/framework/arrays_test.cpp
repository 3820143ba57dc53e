#include "framework/arrays.h"

#include <gtest/gtest.h>

namespace lvx::framework {
namespace {

struct Counted {
  explicit Counted(int* alive) : alive_(alive) { ++*alive_; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --*alive_; }
  int* alive_;
};
using CountedList = CTypedPtrArray<CPtrArray, Counted*>;

TEST(PointerArray, FreesOnlyItsOwnStorage) {
  int alive = 0;
  Counted first(&alive);
  {
    CountedList list;
    list.add(&first);
    list.removeAll();
    list.add(&first);
  }
  EXPECT_EQ(alive, 1);
}

TEST(PointerArray, IsDestroyedWithItsRecordsOnlyOnDemand) {
  int alive = 0;
  CountedList list;
  list.add(new Counted(&alive));
  list.add(new Counted(&alive));
  destroyAll(list);
  EXPECT_EQ(alive, 0);
  EXPECT_EQ(list.size(), 0);
}

TEST(PointerArray, TakesARecordOverAndGivesItsPlaceToTheCaller) {
  int alive = 0;
  {
    OwnedList<Counted> owned;
    Counted* const first = owned.get().append(std::make_unique<Counted>(&alive));
    Counted* const second = owned.get().append(std::make_unique<Counted>(&alive));
    EXPECT_EQ(owned.get()[0], first);
    EXPECT_EQ(owned.get()[1], second);
    EXPECT_EQ(alive, 2);
  }
  EXPECT_EQ(alive, 0);
}

TEST(PointerArray, OwnedListDestroysItsRecordsOnEveryWayOut) {
  int alive = 0;
  try {
    OwnedList<Counted> owned;
    owned.get().add(new Counted(&alive));
    throw InvalidArgumentException();
  } catch (const InvalidArgumentException&) {
    EXPECT_EQ(alive, 0);
  }
}

TEST(PointerArray, RaisesTheInvalidArgumentExceptionForAnIndexOutside) {
  int alive = 0;
  Counted record(&alive);
  CountedList list;
  list.add(&record);
  for (const ArrayIndex index : {ArrayIndex{-1}, ArrayIndex{1}, ArrayIndex{1000}}) {
    EXPECT_THROW((void)list.at(index), InvalidArgumentException) << index;
    EXPECT_THROW(list.setAt(index, nullptr), InvalidArgumentException) << index;
  }
  EXPECT_THROW(list.removeAt(1), InvalidArgumentException);
  EXPECT_THROW(list.removeAt(0, 2), InvalidArgumentException);
  EXPECT_THROW(list.insertAt(-1, nullptr), InvalidArgumentException);
  EXPECT_EQ(list.size(), 1);
}

TEST(PointerArray, FillsUpWithNullsForAnInsertionBeyondTheEnd) {
  int alive = 0;
  Counted record(&alive);
  CountedList list;
  list.insertAt(2, &record);
  ASSERT_EQ(list.size(), 3);
  EXPECT_EQ(list[0], nullptr);
  EXPECT_EQ(list[2], &record);
}

TEST(PointerArray, IteratesInOrder) {
  int alive = 0;
  Counted first(&alive);
  Counted second(&alive);
  CountedList list;
  list.add(&second);
  list.insertAt(0, &first);
  std::vector<Counted*> seen;
  for (Counted* record : list) seen.push_back(record);
  EXPECT_EQ(seen, (std::vector<Counted*>{&first, &second}));
}

TEST(ValueArray, KeepsValuesAndChecksEveryIndex) {
  CArray<int> values;
  EXPECT_EQ(values.add(4), 0);
  values.insertAt(0, 3);
  values.setSize(4);
  EXPECT_EQ(values[1], 4);
  EXPECT_EQ(values[3], 0);
  EXPECT_THROW(values[4] = 1, InvalidArgumentException);
  EXPECT_THROW(values.setSize(-1), InvalidArgumentException);
}

}  // namespace
}  // namespace lvx::framework
