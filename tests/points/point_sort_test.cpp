#include "points/point_sort.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/random_numbers.h"

namespace lvx::points {
namespace {

using Rows = std::vector<tpoint>;

/// Rows with these stations; every other field tells the row's first position.
Rows rowsAt(const std::vector<double>& stations) {
  Rows rows;
  std::int32_t number = 0;
  for (const double station : stations) {
    tpoint row;
    const std::wstring mark = std::to_wstring(number);
    row.number = number;
    row.easting = number + 0.1;
    row.northing = number + 0.2;
    row.elevation = number + 0.3;
    row.name = L"name " + mark;
    row.description = L"description " + mark;
    row.fullDescription = L"full description " + mark;
    row.alignmentName = L"alignment " + mark;
    row.station = station;
    row.offset = number + 0.4;
    row.spareText = L"spare " + mark;
    rows.push_back(row);
    ++number;
  }
  return rows;
}

PointList listOf(const Rows& rows) {
  PointList list;
  for (const tpoint& row : rows) list.add(row);
  return list;
}

Rows rowsOf(const PointList& list) {
  Rows rows;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) rows.push_back(list[i]);
  return rows;
}

bool sameContents(const tpoint& a, const tpoint& b) {
  const auto sameBits = [](double x, double y) {
    return (std::isnan(x) && std::isnan(y)) || (x == y && std::signbit(x) == std::signbit(y));
  };
  return a.number == b.number && a.easting == b.easting && a.northing == b.northing && a.elevation == b.elevation &&
         a.name == b.name && a.description == b.description && a.fullDescription == b.fullDescription &&
         a.alignmentName == b.alignmentName && sameBits(a.station, b.station) && a.offset == b.offset &&
         a.spareText == b.spareText;
}

/// What the report's order means, in the plainest words: neighbours exchange their contents where the first's station is
/// greater, in ever shorter passes, until a pass exchanges none.
void exchangeSort(Rows& rows) {
  std::size_t last = rows.size();
  bool swapped = false;
  do {
    swapped = false;
    if (last < 2) return;
    --last;
    for (std::size_t i = 1; i <= last; ++i) {
      if (!(rows[i - 1].station > rows[i].station)) continue;
      std::swap(rows[i - 1], rows[i]);
      swapped = true;
    }
  } while (swapped);
}

std::vector<std::int32_t> numbers(const Rows& rows) {
  std::vector<std::int32_t> all;
  for (const tpoint& row : rows) all.push_back(row.number);
  return all;
}

Rows sorted(const Rows& rows) {
  PointList list = listOf(rows);
  sortPointsByStation(list);
  return rowsOf(list);
}

std::vector<std::int32_t> sortedNumbers(const std::vector<double>& stations) {
  return numbers(sorted(rowsAt(stations)));
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
using Numbers = std::vector<std::int32_t>;

TEST(PointSort, PutsTheRowsInAscendingOrderOfStation) {
  EXPECT_EQ(sortedNumbers({30.0, -1.0, 20.0, 10.0}), (Numbers{1, 3, 2, 0}));
}

TEST(PointSort, KeepsTheCollectedOrderOfEqualStations) {
  EXPECT_EQ(sortedNumbers({5.0, 1.0, 5.0, 1.0, 5.0}), (Numbers{1, 3, 0, 2, 4}));
  EXPECT_EQ(sortedNumbers({0.0, -0.0, 0.0}), (Numbers{0, 1, 2})) << "noughts of either sign are equal";
}

TEST(PointSort, LeavesAnEmptyListAndAListOfOneRowAsTheyAre) {
  EXPECT_EQ(sortedNumbers({}), Numbers{});
  EXPECT_EQ(sortedNumbers({7.0}), Numbers{0});
}

TEST(PointSort, TakesEveryFieldAlong) {
  const Rows untouched = rowsAt({3.0, 1.0, 2.0});
  for (const tpoint& row : sorted(untouched)) {
    SCOPED_TRACE(row.number);
    EXPECT_TRUE(sameContents(row, untouched[static_cast<std::size_t>(row.number)]));
  }
}

TEST(PointSort, KeepsTheOrderOfEqualStationsWhenSortedAgain) {
  PointList list = listOf(rowsAt({2.0, 1.0, 2.0, 1.0}));
  sortPointsByStation(list);
  sortPointsByStation(list);
  EXPECT_EQ(numbers(rowsOf(list)), (Numbers{1, 3, 0, 2}));
}

TEST(PointSort, LeavesTheSpareTextEmptyWhereItWas) {
  Rows rows = rowsAt({2.0, 1.0});
  for (tpoint& row : rows) row.spareText.clear();
  for (const tpoint& row : sorted(rows)) EXPECT_EQ(row.spareText, L"");
}

TEST(PointSort, LetsNoRowPassAStationThatIsNoNumber) {
  EXPECT_EQ(sortedNumbers({3.0, 2.0, kNan, 1.0, 0.0}), (Numbers{1, 0, 2, 4, 3}));
  EXPECT_EQ(sortedNumbers({kNan, 2.0, 1.0, kNan}), (Numbers{0, 2, 1, 3}));
  EXPECT_EQ(sortedNumbers({2.0, kNan, kNan, 1.0}), (Numbers{0, 1, 2, 3}));
  EXPECT_EQ(sortedNumbers({kInfinity, 1.0, -kInfinity}), (Numbers{2, 1, 0}));
}

TEST(PointSort, AgreesWithTheExchangeOfNeighboursOnEveryOrderOfFew) {
  // All lists of up to six rows over two stations, one that is no number and an infinite one.
  const std::vector<double> choices{1.0, 2.0, kNan, kInfinity};
  int compared = 0;
  for (std::size_t size = 0; size <= 6; ++size) {
    std::vector<std::size_t> digits(size, 0);
    for (bool more = true; more;) {
      std::vector<double> stations;
      for (const std::size_t digit : digits) stations.push_back(choices[digit]);
      Rows plain = rowsAt(stations);
      exchangeSort(plain);
      ASSERT_EQ(sortedNumbers(stations), numbers(plain)) << testing::PrintToString(stations);
      ++compared;
      more = false;
      for (std::size_t& digit : digits) {
        if (++digit < choices.size()) {
          more = true;
          break;
        }
        digit = 0;
      }
    }
  }
  EXPECT_EQ(compared, 1 + 4 + 16 + 64 + 256 + 1024 + 4096);
}

TEST(PointSort, AgreesWithTheExchangeOfNeighboursOnRandomRows) {
  std::mt19937 random = test::seededByTestName();
  for (int round = 0; round < 200; ++round) {
    std::vector<double> stations(std::uniform_int_distribution<std::size_t>(0, 120)(random));
    // Few different stations in some rounds, many in others; with and without rows that compare with nothing.
    const int different = round % 3 == 0 ? 5 : 100000;
    const int noNumbers = round % 2 == 0 ? 0 : 12;
    for (double& station : stations) {
      const bool noNumber = std::uniform_int_distribution<int>(1, 100)(random) <= noNumbers;
      station = noNumber ? kNan : std::uniform_int_distribution<int>(-different, different)(random) * 0.5;
    }
    Rows plain = rowsAt(stations);
    const Rows rows = sorted(plain);
    exchangeSort(plain);
    ASSERT_EQ(rows.size(), plain.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
      ASSERT_TRUE(sameContents(rows[i], plain[i])) << "round " << round << ", row " << i;
  }
}

}  // namespace
}  // namespace lvx::points
