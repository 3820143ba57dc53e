#include "points/point_sort.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/random_numbers.h"

namespace lvx::points {
namespace {

using Rows = framework::OwnedList<tpoint>;

/// Rows with these stations; every other field tells the row's first position.
void fill(Rows& rows, const std::vector<double>& stations) {
  std::int32_t number = 0;
  for (const double station : stations) {
    auto row = std::make_unique<tpoint>();
    const std::wstring mark = std::to_wstring(number);
    row->number = number;
    row->easting = number + 0.1;
    row->northing = number + 0.2;
    row->elevation = number + 0.3;
    row->name = L"name " + mark;
    row->description = L"description " + mark;
    row->fullDescription = L"full description " + mark;
    row->alignmentName = L"alignment " + mark;
    row->station = station;
    row->offset = number + 0.4;
    row->spareText = L"spare " + mark;
    rows.get().add(row.release());
    ++number;
  }
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
void exchangeSort(PointList& rows) {
  framework::ArrayIndex last = rows.size();
  bool swapped = false;
  do {
    swapped = false;
    if (--last < 1) return;
    for (framework::ArrayIndex i = 1; i <= last; ++i) {
      if (!(rows[i - 1]->station > rows[i]->station)) continue;
      std::swap(*rows[i - 1], *rows[i]);
      swapped = true;
    }
  } while (swapped);
}

std::vector<std::int32_t> numbers(const Rows& rows) {
  std::vector<std::int32_t> all;
  for (const tpoint* row : rows.get()) all.push_back(row->number);
  return all;
}

std::vector<std::int32_t> sortedNumbers(const std::vector<double>& stations) {
  Rows rows;
  fill(rows, stations);
  sortPointsByStation(rows.get());
  return numbers(rows);
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

std::vector<const tpoint*> records(const Rows& rows) {
  std::vector<const tpoint*> all;
  for (const tpoint* row : rows.get()) all.push_back(row);
  return all;
}

TEST(PointSort, ExchangesContentsWhileTheRecordsKeepTheirPlaces) {
  Rows rows;
  fill(rows, {3.0, 1.0, 2.0});
  const std::vector<const tpoint*> before = records(rows);
  sortPointsByStation(rows.get());
  EXPECT_EQ(records(rows), before);
  EXPECT_EQ(before[0]->number, 1);
  EXPECT_EQ(before[2]->number, 0);
}

TEST(PointSort, TakesEveryFieldAlong) {
  Rows rows;
  fill(rows, {3.0, 1.0, 2.0});
  Rows untouched;
  fill(untouched, {3.0, 1.0, 2.0});
  sortPointsByStation(rows.get());
  for (const tpoint* row : rows.get()) {
    SCOPED_TRACE(row->number);
    EXPECT_TRUE(sameContents(*row, *untouched.get()[row->number]));
  }
}

TEST(PointSort, LeavesTheSpareTextEmptyWhereItWas) {
  Rows rows;
  fill(rows, {2.0, 1.0});
  for (tpoint* row : rows.get()) row->spareText.clear();
  sortPointsByStation(rows.get());
  for (const tpoint* row : rows.get()) EXPECT_EQ(row->spareText, L"");
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
      Rows plain;
      fill(plain, stations);
      exchangeSort(plain.get());
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
    Rows plain;
    fill(plain, stations);
    exchangeSort(plain.get());
    Rows rows;
    fill(rows, stations);
    sortPointsByStation(rows.get());
    for (framework::ArrayIndex i = 0; i < rows.get().size(); ++i)
      ASSERT_TRUE(sameContents(*rows.get()[i], *plain.get()[i])) << "round " << round << ", row " << i;
  }
}

}  // namespace
}  // namespace lvx::points
