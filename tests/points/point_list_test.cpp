#include "points/point_list.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "framework/exceptions.h"

namespace lvx::points {
namespace {

TEST(TextPool, GivesBackEveryCharacterThatAWideTextCanHold) {
  const wchar_t largest = std::numeric_limits<wchar_t>::max();
  const std::vector<CString> texts{L"",
                                   L"GS",
                                   CString(1, L'\0'),
                                   CString(L"a\0b", 3),
                                   L"\u00e4\u0416\u20ac",
                                   CString(1, wchar_t{0xD800}),
                                   CString(1, largest),
                                   CString(300, L'x'),
                                   CString(200000, L'\u0416'),
                                   L"behind the long one"};
  TextPool pool;
  std::vector<TextPool::Place> places;
  for (const CString& text : texts) places.push_back(pool.keep(text));
  CString read = L"of before";
  for (std::size_t i = 0; i < texts.size(); ++i) {
    pool.read(places[i], read);
    EXPECT_EQ(read, texts[i]) << i;
  }
}

TEST(TextPool, HoldsATextThatComesAgainOnce) {
  TextPool pool;
  const TextPool::Place first = pool.keep(L"Ground shot");
  EXPECT_NE(pool.keep(L"Ground"), first) << "the beginning of another text is a text of its own";
  EXPECT_EQ(pool.keep(L"Ground shot"), first);
}

TEST(TextPool, GivesBackTextsOfManyBlocksAndTheirPlaces) {
  TextPool pool;
  std::vector<TextPool::Place> texts;
  std::vector<TextPool::Place> pairs;
  for (int i = 0; i < 50000; ++i) {
    texts.push_back(pool.keep(L"text " + std::to_wstring(i)));
    pairs.push_back(pool.keepPlaces(std::vector{texts.back(), texts.front()}));
  }
  CString read;
  for (int i = 0; i < 50000; ++i) {
    const auto k = static_cast<std::size_t>(i);
    std::vector<TextPool::Place> pair(2);
    pool.readPlaces(pairs[k], pair);
    ASSERT_EQ(pair, (std::vector{texts[k], texts[0]}));
    pool.read(pair[0], read);
    ASSERT_EQ(read, L"text " + std::to_wstring(i));
  }
}

TEST(PointList, GivesBackEveryFieldOfARow) {
  PointList list;
  list.add({-7, 1.5, -0.0, 3.25, L"A", L"BK", L"BK 1", L"Axis", 4.5, -5.5, L"spare"});
  list.add({});
  const tpoint row = list[0];
  EXPECT_EQ(row.number, -7);
  EXPECT_EQ(row.easting, 1.5);
  EXPECT_TRUE(std::signbit(row.northing));
  EXPECT_EQ(row.elevation, 3.25);
  EXPECT_EQ(row.name, L"A");
  EXPECT_EQ(row.description, L"BK");
  EXPECT_EQ(row.fullDescription, L"BK 1");
  EXPECT_EQ(row.alignmentName, L"Axis");
  EXPECT_EQ(row.station, 4.5);
  EXPECT_EQ(row.offset, -5.5);
  EXPECT_EQ(row.spareText, L"spare");

  tpoint read = row;
  list.read(1, read);
  EXPECT_EQ(read.name + read.description + read.fullDescription + read.alignmentName + read.spareText, L"")
      << "nothing of the row before it stays";
}

TEST(PointList, RefusesIndicesOutsideIt) {
  PointList list;
  EXPECT_TRUE(list.isEmpty());
  EXPECT_THROW(static_cast<void>(list[0]), framework::InvalidArgumentException);
  list.add({});
  EXPECT_EQ(list.size(), 1);
  EXPECT_THROW(static_cast<void>(list[1]), framework::InvalidArgumentException);
  EXPECT_THROW(static_cast<void>(list[-1]), framework::InvalidArgumentException);
}

}  // namespace
}  // namespace lvx::points
