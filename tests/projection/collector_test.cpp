#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_model.h"
#include "framework/exceptions.h"
#include "projection/sample_line_collector.h"
#include "support/random_numbers.h"

namespace lvx::projection {
namespace {

using host::HostArray;
using test::FakeDrawing;
using test::Ref;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kPi = 3.141592653589793;

/// x, y, offset.
using Triple = std::tuple<double, double, double>;

std::vector<Triple> triples(const tpt3list& list) {
  std::vector<Triple> all;
  for (const tpt3& item : list) all.emplace_back(item.first, item.second, item.third);
  return all;
}

std::vector<double> offsets(const tpt3list& list) {
  std::vector<double> all;
  for (const tpt3& item : list) all.push_back(item.third);
  return all;
}

class Collector : public testing::Test {
 protected:
  FakeDrawing drawing_;
  framework::OwnedList<tsl> records_;

  void collect(const CString& site, const CString& alignment, const GroupFilter& groups) {
    collectSampleLines(drawing_.document, drawing_.database, site, alignment, groups, records_.get());
  }
  /// All groups of the one alignment "A" outside any site.
  void collectAll() { collect(L"", L"A", GroupFilter::allGroups()); }

  [[nodiscard]] std::vector<std::wstring> names() const {
    std::vector<std::wstring> all;
    for (const tsl* record : records_.get()) all.push_back(record->name);
    return all;
  }
  [[nodiscard]] const tsl& record(framework::ArrayIndex index) const { return *records_.get()[index]; }
};

// ---------------------------------------------------------------- finding the alignment

/// Two sites of one name, a third, and site-less alignments; each alignment has one line that tells where it stands.
class CollectorSearch : public Collector {
 protected:
  CollectorSearch() {
    add(nullptr, L"A", L"outside");
    add(nullptr, L"A", L"outside again");
    const auto north = drawing_.addSite(L"North");
    add(north, L"A", L"north");
    const auto northAgain = drawing_.addSite(L"North");
    add(northAgain, L"A", L"north again");
    add(northAgain, L"B", L"north again B");
    const auto star = drawing_.addSite(L"*Star");
    add(star, L"A", L"star");
    add(star, L"C", L"star C");
  }

  void add(const Ref<test::FakeSite>& site, const CString& alignment, const CString& line) {
    drawing_.addAlignment(site, alignment)->addGroup(L"G")->addLine(line, 1.0);
  }
};

TEST_F(CollectorSearch, FindsAnAlignmentInItsSite) {
  collect(L"North", L"A", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), ElementsAre(L"north"));
}

TEST_F(CollectorSearch, TakesAnEmptySiteNameForTheAlignmentsOutsideAnySite) {
  collect(L"", L"A", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), ElementsAre(L"outside"));
}

TEST_F(CollectorSearch, TakesASiteNameThatBeginsWithAStarForTheAlignmentsOutsideAnySite) {
  collect(L"*Star", L"A", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), ElementsAre(L"outside"));
  collect(L"*anything", L"A", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), ElementsAre(L"outside"));
  collect(L"*Star", L"C", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CollectorSearch, LooksOnlyIntoTheFirstOfTwoSitesOfOneName) {
  collect(L"North", L"B", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CollectorSearch, ComparesNamesWholeAndCaseSensitively) {
  for (const wchar_t* site : {L"north", L"Nort", L"North "}) {
    collect(site, L"A", GroupFilter::named(L"G"));
    EXPECT_THAT(names(), IsEmpty()) << testing::PrintToString(std::wstring(site));
  }
  collect(L"North", L"a", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CollectorSearch, GivesAnEmptyListForAnUnknownAlignmentAndDropsWhatTheListHeld) {
  collect(L"", L"A", GroupFilter::named(L"G"));
  ASSERT_EQ(records_.get().size(), 1);
  collect(L"", L"Z", GroupFilter::named(L"G"));
  EXPECT_EQ(records_.get().size(), 0);
}

TEST_F(CollectorSearch, StartsCleanOnASecondRun) {
  collect(L"", L"A", GroupFilter::named(L"G"));
  collect(L"", L"A", GroupFilter::named(L"G"));
  EXPECT_THAT(names(), ElementsAre(L"outside"));
}

TEST_F(Collector, GivesAnEmptyListWhereTheModelHandsOutNothing) {
  collectSampleLines(nullptr, nullptr, L"", L"A", GroupFilter::allGroups(), records_.get());
  collectSampleLines(nullptr, nullptr, L"S", L"A", GroupFilter::allGroups(), records_.get());
  drawing_.document->alignments = nullptr;
  drawing_.database->siteList = nullptr;
  collect(L"", L"A", GroupFilter::allGroups());
  collect(L"S", L"A", GroupFilter::allGroups());
  EXPECT_THAT(names(), IsEmpty());
}

// ---------------------------------------------------------------- groups

class CollectorGroups : public Collector {
 protected:
  Ref<test::FakeAlignment> axis_ = drawing_.addAlignment(nullptr, L"A");

  CollectorGroups() {
    axis_->addGroup(L"One")->addLine(L"one", 10.0);
    axis_->addGroup(L"")->addLine(L"unnamed", 20.0);
    axis_->addGroup(L"One")->addLine(L"one more", 5.0);
    axis_->addGroup(L"Empty");
  }
};

TEST_F(CollectorGroups, TakesEveryGroupOfTheNameNotOnlyTheFirst) {
  collect(L"", L"A", GroupFilter::named(L"One"));
  EXPECT_THAT(names(), ElementsAre(L"one more", L"one"));
  EXPECT_EQ(record(0).groupName, L"One");
}

TEST_F(CollectorGroups, KeepsAllGroupsApartFromTheEmptyName) {
  collect(L"", L"A", GroupFilter::named(L""));
  EXPECT_THAT(names(), ElementsAre(L"unnamed"));
  collect(L"", L"A", GroupFilter::allGroups());
  EXPECT_THAT(names(), ElementsAre(L"one more", L"one", L"unnamed"));
}

TEST_F(CollectorGroups, YieldsNothingForAGroupWithoutLinesOrAnUnknownOne) {
  collect(L"", L"A", GroupFilter::named(L"Empty"));
  EXPECT_THAT(names(), IsEmpty());
  collect(L"", L"A", GroupFilter::named(L"one"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CollectorGroups, YieldsNothingForAnAlignmentWithoutGroups) {
  drawing_.addAlignment(nullptr, L"Bare");
  collect(L"", L"Bare", GroupFilter::allGroups());
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(CollectorGroups, DropsNearDuplicatesAcrossGroups) {
  axis_->addGroup(L"Late")->addLine(L"late", 10.0000005);
  collect(L"", L"A", GroupFilter::allGroups());
  EXPECT_THAT(names(), ElementsAre(L"one more", L"one", L"unnamed"));
}

// ---------------------------------------------------------------- the record

class CollectorRecord : public Collector {
 protected:
  Ref<test::FakeAlignment> axis_ = drawing_.addAlignment(nullptr, L"A");
  Ref<test::FakeSampleLineGroup> group_ = axis_->addGroup(L"G");
};

TEST_F(CollectorRecord, TakesNameGroupStationAndIdentifierFromTheLine) {
  const auto line = group_->addLine(L"SL1", 123.456);
  line->id = 0x1234567890;
  collectAll();
  ASSERT_EQ(records_.get().size(), 1);
  EXPECT_EQ(record(0).mark, 0);
  EXPECT_EQ(record(0).name, L"SL1");
  EXPECT_EQ(record(0).groupName, L"G");
  EXPECT_EQ(record(0).station, 123.456);
  EXPECT_EQ(record(0).lineId, 0x1234567890);
  EXPECT_EQ(record(0).leftPoints.count() + record(0).leftOffsets.count(), 0);
  EXPECT_EQ(record(0).rightPoints.count() + record(0).rightOffsets.count(), 0);
}

TEST_F(CollectorRecord, AsksForTheAlignmentPointAtOffsetAndToleranceZero) {
  group_->addLine(L"SL1", 50.0);
  axis_->locate = [](double station, double offset, double tolerance) {
    EXPECT_EQ(station, 50.0);
    EXPECT_EQ(offset, 0.0);
    EXPECT_EQ(tolerance, 0.0);
    return host::PointLocation{7.0, 8.0, 0.0};
  };
  collectAll();
  EXPECT_EQ(record(0).centreX, 7.0);
  EXPECT_EQ(record(0).centreY, 8.0);
}

TEST_F(CollectorRecord, TurnsTheAzimuthIntoADirectionFromEastInOneTurn) {
  struct Row {
    double azimuth;
    double direction;
  };
  constexpr double kHalf = 1.5707963267948966;
  constexpr double kTwo = 6.283185307179586;
  const Row rows[] = {
      {0.0, kHalf},                             // north
      {kHalf, 0.0},                             // east
      {kPi, kHalf - kPi + kTwo},                // south
      {3.0 * kHalf, kHalf - 3 * kHalf + kTwo},  // west
      {-kHalf, kHalf + kHalf},                  // out of range below: no turn needed
      {-3.5 * kPi, kHalf + 3.5 * kPi - kTwo},   // one turn is taken off, not more
      {2.5 * kPi, kHalf - 2.5 * kPi + kTwo},    // one turn is added, not more
      // Just below 0 by less than half a unit of the last place of a full turn: the sum is a full turn, which becomes
      // 0.
      {std::nextafter(kHalf, 2.0), 0.0},
  };
  static_assert(std::size(rows) == 8);
  for (const Row& row : rows) {
    axis_->locate = [&](double, double, double) { return host::PointLocation{0.0, 0.0, row.azimuth}; };
    group_->lines->items.clear();
    group_->addLine(L"L", 1.0);
    collectAll();
    EXPECT_EQ(record(0).direction, row.direction) << row.azimuth;
  }
}

TEST_F(CollectorRecord, GivesBothSidesTheCentreAloneForALineWithoutVertices) {
  group_->addLine(L"L", 100.0);
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(100, 0, 0)));
  EXPECT_THAT(triples(record(0).rightVertices), ElementsAre(Triple(100, 0, 0)));
}

TEST_F(CollectorRecord, GivesBothSidesTheCentreForALineWithoutAVertexList) {
  group_->addLine(L"L", 100.0)->vertexList = nullptr;
  collectAll();
  EXPECT_EQ(record(0).leftVertices.count(), 1);
  EXPECT_EQ(record(0).rightVertices.count(), 1);
}

TEST_F(CollectorRecord, ClosesBothSidesAtTheCentreForAVertexOnEither) {
  group_->addLine(L"L", 100.0, {{100, 10}, {100, -20}});
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(100, 10, -10), Triple(100, 0, 0)));
  EXPECT_THAT(triples(record(0).rightVertices), ElementsAre(Triple(100, 0, 0), Triple(100, -20, 20)));
}

TEST_F(CollectorRecord, PutsAVertexOnTheAlignmentIntoTheRightListAsItsCentre) {
  group_->addLine(L"L", 100.0, {{100, 10}, {100.5, 0}, {100, -20}});
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(100, 10, -10), Triple(100, 0, 0)));
  EXPECT_THAT(triples(record(0).rightVertices), ElementsAre(Triple(100.5, 0, 0), Triple(100, -20, 20)));
}

TEST_F(CollectorRecord, AddsTheCentreToALoneRightVertexEvenOnTheAlignment) {
  group_->addLine(L"L", 100.0, {{100, 10}, {100.5, 0}});
  collectAll();
  EXPECT_THAT(triples(record(0).rightVertices), ElementsAre(Triple(100, 0, 0), Triple(100.5, 0, 0)));
}

TEST_F(CollectorRecord, AddsTheCentreToALoneLeftVertexEvenWithinTheTolerance) {
  group_->addLine(L"L", 100.0, {{100, 0.00005}});
  collectAll();
  EXPECT_THAT(offsets(record(0).leftVertices), ElementsAre(-0.00005, 0.0));
}

TEST_F(CollectorRecord, TakesAVertexWithinTheToleranceForTheCentre) {
  struct Row {
    double innermost;
    bool centreAdded;
  };
  const Row rows[] = {{0.00005, false}, {0.0001, false}, {0.00010001, true}, {1.0, true}};
  static_assert(std::size(rows) == 4);
  for (const Row& row : rows) {
    group_->lines->items.clear();
    group_->addLine(L"L", 100.0, {{100, 10}, {100, row.innermost}, {100, -row.innermost}, {100, -10}});
    collectAll();
    EXPECT_EQ(record(0).leftVertices.count(), row.centreAdded ? 3 : 2) << row.innermost;
    EXPECT_EQ(record(0).rightVertices.count(), row.centreAdded ? 3 : 2) << row.innermost;
  }
}

TEST_F(CollectorRecord, OrdersVerticesByOffsetWhateverTheirOrderInTheDrawing) {
  group_->addLine(L"L", 100.0, {{100, 1}, {100, -3}, {100, 7}, {100, -1}, {100, 3}, {100, -7}});
  collectAll();
  EXPECT_THAT(offsets(record(0).leftVertices), ElementsAre(-7, -3, -1, 0));
  EXPECT_THAT(offsets(record(0).rightVertices), ElementsAre(0, 1, 3, 7));
}

TEST_F(CollectorRecord, PutsAnEqualOffsetInFrontOfItsEqual) {
  group_->addLine(L"L", 100.0, {{1, 5}, {2, 5}, {3, 5}, {1, -5}, {2, -5}});
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices),
              ElementsAre(Triple(3, 5, -5), Triple(2, 5, -5), Triple(1, 5, -5), Triple(100, 0, 0)));
  EXPECT_THAT(triples(record(0).rightVertices), ElementsAre(Triple(100, 0, 0), Triple(2, -5, 5), Triple(1, -5, 5)));
}

TEST_F(CollectorRecord, ReadsEveryCompleteTripleOfALocation) {
  const auto line = group_->addLine(L"L", 100.0);
  line->addVertex(HostArray<double>::of({1, 10, 99, 2, 20, 99}, -4));  // two vertices, from another lower bound
  line->addVertex(HostArray<double>::of({3, 30, 99, 4}));              // the incomplete triple is lost
  line->addVertex(HostArray<double>::of({5, 50, 99}));                 // and doesn't shift the next vertex
  line->addVertex(HostArray<double>::of({}));
  line->addVertex(HostArray<double>::of({6, 60}));
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(5, 50, -50), Triple(3, 30, -30), Triple(2, 20, -20),
                                                           Triple(1, 10, -10), Triple(100, 0, 0)));
}

TEST_F(CollectorRecord, ReadsNothingFromALocationOfTwoDimensions) {
  group_->addLine(L"L", 100.0).get()->addVertex({2, 0, {1, 10, 99}}).addVertex(HostArray<double>::of({2, 20, 99}));
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(2, 20, -20), Triple(100, 0, 0)));
}

TEST_F(CollectorRecord, RaisesTheAutomationExceptionForALocationWithoutAnArray) {
  group_->addLine(L"good", 50.0, {{50, 1}});
  group_->addLine(L"bad", 100.0)->addVertex(HostArray<double>::none());
  EXPECT_THROW(collectAll(), framework::AutomationException);
  EXPECT_EQ(records_.get().size(), 0);
}

TEST_F(CollectorRecord, TakesTheOffsetOfTheAlignmentNotThePlanDistance) {
  axis_->project = [](double x, double y) { return host::StationOffset{x, -2.0 * y}; };
  group_->addLine(L"L", 100.0, {{100, 10}});
  collectAll();
  EXPECT_THAT(triples(record(0).leftVertices), ElementsAre(Triple(100, 10, -20), Triple(100, 0, 0)));
}

TEST_F(CollectorRecord, PassesOverReferencesThatTheHostLeavesEmpty) {
  group_->addLine(L"L", 100.0, {{100, 10}})
      ->vertexList->items.insert(group_->lines->items.front()->vertexList->items.begin(), nullptr);
  group_->lines->items.insert(group_->lines->items.begin(), nullptr);
  axis_->groups->items.insert(axis_->groups->items.begin(), nullptr);
  drawing_.document->alignments->items.insert(drawing_.document->alignments->items.begin(), nullptr);
  collectAll();
  ASSERT_THAT(names(), ElementsAre(L"L"));
  EXPECT_EQ(record(0).leftVertices.count(), 2);
}

// ---------------------------------------------------------------- order by station

class CollectorOrder : public CollectorRecord {
 protected:
  /// Collects lines at these stations, named by their place in the drawing.
  void collectAt(const std::vector<double>& stations) {
    group_->lines->items.clear();
    for (std::size_t i = 0; i < stations.size(); ++i) group_->addLine(std::to_wstring(i), stations[i]);
    collectAll();
  }
};

TEST_F(CollectorOrder, SortsLinesByStation) {
  collectAt({30, 10, 20, 0, 40});
  EXPECT_THAT(names(), ElementsAre(L"3", L"1", L"2", L"0", L"4"));
}

TEST_F(CollectorOrder, DropsALineALittleAboveAnother) {
  collectAt({100.0, 100.0000005});
  EXPECT_THAT(names(), ElementsAre(L"0"));
}

TEST_F(CollectorOrder, KeepsALineALittleBelowAnother) {
  collectAt({100.0000005, 100.0});
  EXPECT_THAT(names(), ElementsAre(L"1", L"0"));
}

TEST_F(CollectorOrder, KeepsTwoLinesAtOneStationTheLaterInFront) {
  collectAt({100.0, 100.0});
  EXPECT_THAT(names(), ElementsAre(L"1", L"0"));
}

TEST_F(CollectorOrder, DropsTheThirdLineAtOneStationSinceTheOneBehindIsNear) {
  collectAt({100.0, 100.0, 100.0});
  EXPECT_THAT(names(), ElementsAre(L"1", L"0"));
}

TEST_F(CollectorOrder, KeepsLinesAtTheToleranceOrFurtherApart) {
  // 0 and 0.000001: the difference is the tolerance itself, which isn't less.
  collectAt({0.0, 0.000001});
  EXPECT_THAT(names(), ElementsAre(L"0", L"1"));
}

TEST_F(CollectorOrder, ComparesTheLineBehindTheOneInWhosePlaceItWouldStand) {
  // 10.0000004 would stand in front of 10.0000008, which isn't compared; the one behind it is within the tolerance.
  collectAt({10.0000012, 10.0000008, 10.0000004});
  EXPECT_THAT(names(), ElementsAre(L"1", L"0"));
}

TEST_F(CollectorOrder, PutsAStationThatIsNoNumberInFrontAndNeverLooksPastIt) {
  collectAt({10, 20, kNaN, 15, 5});
  EXPECT_THAT(names(), ElementsAre(L"4", L"3", L"2", L"0", L"1"));
}

/// The rule in its plain words: linear searches and insertions.
std::vector<int> orderByPlainRule(const std::vector<double>& stations) {
  std::vector<int> list;
  const auto at = [&](std::size_t i) { return stations[static_cast<std::size_t>(list[i])]; };
  for (std::size_t n = 0; n < stations.size(); ++n) {
    const double station = stations[n];
    if (list.empty()) {
      list.push_back(static_cast<int>(n));
      continue;
    }
    std::size_t i = 0;
    while (i < list.size() && at(i) < station) ++i;
    if (i + 1 < list.size() && std::fabs(at(i + 1) - station) < 0.000001) continue;
    if (i >= 1 && std::fabs(at(i - 1) - station) < 0.000001) continue;
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(i), static_cast<int>(n));
  }
  return list;
}

TEST_F(CollectorOrder, AgreesWithThePlainRuleOnRandomStations) {
  auto random = test::seededByTestName();
  for (int run = 0; run < 400; ++run) {
    std::vector<double> stations(random() % 60);
    const unsigned spread = 1 + random() % 40;
    const bool withOddNumbers = run % 2 == 0;
    for (double& station : stations) {
      station = static_cast<double>(random() % spread) * 0.0000004;  // many within the tolerance of each other
      if (random() % 3 == 0) station = std::floor(station * 1e7);
      if (withOddNumbers && random() % 8 == 0) station = kNaN;
      if (withOddNumbers && random() % 16 == 0) station = random() % 2 == 0 ? kInfinity : -kInfinity;
      if (random() % 16 == 0) station = -0.0;
    }
    collectAt(stations);
    std::vector<std::wstring> expected;
    for (const int index : orderByPlainRule(stations)) expected.push_back(std::to_wstring(index));
    ASSERT_EQ(names(), expected) << "run " << run << ": " << testing::PrintToString(stations);
  }
}

// ---------------------------------------------------------------- order by offset

/// The rule in its plain words, both sides with their closing at the centre.
struct PlainSides {
  std::vector<double> left;
  std::vector<double> right;
  std::vector<double> leftX;
  std::vector<double> rightX;

  explicit PlainSides(const std::vector<double>& vertexOffsets) {
    for (std::size_t n = 0; n < vertexOffsets.size(); ++n) {
      const double offset = vertexOffsets[n];
      auto& side = offset < 0.0 ? left : right;
      auto& xs = offset < 0.0 ? leftX : rightX;
      std::size_t i = 0;
      while (i < side.size() && side[i] < offset) ++i;
      side.insert(side.begin() + static_cast<std::ptrdiff_t>(i), offset);
      xs.insert(xs.begin() + static_cast<std::ptrdiff_t>(i), static_cast<double>(n));
    }
    if (left.size() < 2 || left.back() < -0.0001) {
      left.push_back(0.0);
      leftX.push_back(-1.0);
    }
    if (right.size() < 2 || right.front() > 0.0001) {
      right.insert(right.begin(), 0.0);
      rightX.insert(rightX.begin(), -1.0);
    }
  }
};

TEST_F(CollectorRecord, AgreesWithThePlainRuleOnRandomOffsets) {
  auto random = test::seededByTestName();
  axis_->locate = [](double, double, double) { return host::PointLocation{-1.0, 0.0, 0.0}; };
  const auto same = [](const std::vector<double>& a, const std::vector<double>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](double p, double q) { return p == q || (std::isnan(p) && std::isnan(q)); });
  };
  for (int run = 0; run < 400; ++run) {
    std::vector<double> vertexOffsets(random() % 50);
    for (double& offset : vertexOffsets) {
      offset = static_cast<double>(static_cast<int>(random() % 21) - 10) * (run % 3 == 0 ? 0.00005 : 1.0);
      if (run % 2 == 0 && random() % 6 == 0) offset = kNaN;
      if (random() % 20 == 0) offset = random() % 2 == 0 ? kInfinity : -kInfinity;
      if (random() % 20 == 0) offset = -0.0;
    }
    group_->lines->items.clear();
    const auto line = group_->addLine(L"L", 0.0);
    for (std::size_t i = 0; i < vertexOffsets.size(); ++i)
      line->addVertex(HostArray<double>::of({static_cast<double>(i), vertexOffsets[i], 0.0}));
    axis_->project = [](double x, double y) { return host::StationOffset{x, y}; };
    collectAll();
    const PlainSides expected(vertexOffsets);
    const auto xs = [](const tpt3list& list) {
      std::vector<double> all;
      for (const tpt3& item : list) all.push_back(item.first);
      return all;
    };
    ASSERT_TRUE(same(offsets(record(0).leftVertices), expected.left)) << "run " << run;
    ASSERT_TRUE(same(offsets(record(0).rightVertices), expected.right)) << "run " << run;
    ASSERT_EQ(xs(record(0).leftVertices), expected.leftX) << "run " << run;
    ASSERT_EQ(xs(record(0).rightVertices), expected.rightX) << "run " << run;
  }
}

}  // namespace
}  // namespace lvx::projection
