#include "civil/corridor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support/corridor_makers.h"
#include "support/random_numbers.h"

namespace lvx::civil {
namespace {

using test::baselineFrom;
using test::regionFrom;
using test::textOf;

std::string found(const Baseline& baseline, double station) {
  const CorridorSection* section = sectionAt(baseline, station);
  return section == nullptr ? "none" : textOf(*section);
}

Corridor corridorFrom(const std::vector<std::string>& regions) {
  Corridor corridor;
  corridor.baselines.push_back(baselineFrom(regions));
  return corridor;
}

/// The first region after a rebuild.
std::string rebuilt(const std::string& region) {
  Corridor corridor = corridorFrom({region});
  Rebuilt done;
  rebuild(corridor, done);
  return textOf(corridor.baselines[0].regions[0]);
}

// ---------------------------------------------------------------- the text itself

TEST(CorridorText, ComesBackAsItWent) {
  const std::string text =
      "0..100 | 0 Culvert Pave+Top(ETW:-4/-0.1 0 ETW+Edge:4/-0.1) Kerb(4 4/0.12) | 50? Later | 75* (-4 0) | 90? | 100";
  EXPECT_EQ(textOf(regionFrom(text)), text);
}

// ---------------------------------------------------------------- which section stands at a station

TEST(SectionAt, AsksTheRegionWhoseBoundsHoldTheStation) {
  const Baseline baseline = baselineFrom({"0..100 | 50 A(0) | 150 A(1)", "100..200 | 150 B(0)"});
  EXPECT_EQ(found(baseline, 50), "50 A(0)");
  EXPECT_EQ(found(baseline, 150), "150 B(0)") << "the first region has it too, but outside its bounds";
}

TEST(SectionAt, TakesTheFirstRegionAtASharedBound) {
  const Baseline baseline = baselineFrom({"0..100 | 0 A(0) | 100 A(1)", "100..200 | 100 B(0)"});
  EXPECT_EQ(found(baseline, 100), "100 A(1)");
  EXPECT_EQ(found(baseline, 100.0000004), "100 A(1)");
}

TEST(SectionAt, GivesNoneWhereTheRegionThatHoldsTheStationHasNone) {
  const Baseline baseline = baselineFrom({"0..100 | 0 A(0)", "100..200 | 60 B(6) | 100 B(0)"});
  EXPECT_EQ(found(baseline, 100), "none") << "the first region ends there and has no section";
  EXPECT_EQ(found(baseline, 60), "none");
}

TEST(SectionAt, BeyondAllBoundsAsksTheFirstRegionThatHasTheStationInItsSet) {
  const Baseline baseline =
      baselineFrom({"0..100 | 0 A(0)", "100..200 | 100 B(0) | 300? | 310 B(1)", "200..250 | 300 C(0) | 310 C(1)"});
  EXPECT_EQ(found(baseline, 300), "none") << "the second region asks for it first and has it not yet";
  EXPECT_EQ(found(baseline, 310), "310 B(1)");
  EXPECT_EQ(found(baseline, 320), "none");
}

TEST(SectionAt, TakesStationsWithinAMillionthAsOneAndTheNearerOfTwo) {
  const Baseline baseline = baselineFrom({"0..100 | 50 A(0) | 50.0000011 A(1)"});
  EXPECT_EQ(found(baseline, 49.9999991), "50 A(0)");
  EXPECT_EQ(found(baseline, 49.9999989), "none");
  EXPECT_EQ(found(baseline, 50.0000007), "50.0000011 A(1)");
}

TEST(SectionAt, FindsEverySectionHoweverUnevenlyTheyStand) {
  auto generator = lvx::test::seededByTestName();
  for (int round = 0; round < 300; ++round) {
    Region region;
    region.startStation = -1e9;
    region.endStation = 1e9;
    // Even steps, or ever wider ones, or a crowd with a few far away.
    double station = -5.0;
    for (std::uint32_t i = generator() % 40; i > 0; --i) {
      station += round % 3 == 0 ? 1.0 : round % 3 == 1 ? std::pow(1.7, i) : generator() % 10 == 0 ? 1e6 : 0.25;
      region.sections.push_back({station, {}, SectionOrigin::Given, {}});
    }
    for (const CorridorSection& section : region.sections) {
      ASSERT_EQ(sectionAt(region, section.station), &section);
      ASSERT_EQ(sectionAt(region, section.station - 0.1), nullptr);
      ASSERT_EQ(sectionAt(region, section.station + 0.1), nullptr);
    }
    for (const double beside : {-1e8, 1e8, std::numeric_limits<double>::infinity()})
      ASSERT_EQ(sectionAt(region, beside), nullptr);
  }
}

TEST(SectionAt, GivesNoneForWhatIsNoStationAndWithoutRegions) {
  EXPECT_EQ(found(baselineFrom({}), 0), "none");
  const Baseline baseline = baselineFrom({"0..100 | 50 A(0)"});
  EXPECT_EQ(found(baseline, std::numeric_limits<double>::quiet_NaN()), "none");
  EXPECT_EQ(found(baseline, std::numeric_limits<double>::infinity()), "none");
}

// ---------------------------------------------------------------- adding stations

TEST(AddStation, ChangesTheSetAndNeverTheBounds) {
  Region region = regionFrom("0..100 | 0 A(0) | 100 A(0)");
  EXPECT_TRUE(addStation(region, 50, "Culvert"));
  EXPECT_TRUE(addStation(region, -20, "Before"));
  EXPECT_TRUE(addStation(region, 250, ""));
  EXPECT_EQ(textOf(region), "0..100 | -20? Before | 0 A(0) | 50? Culvert | 100 A(0) | 250?");
}

TEST(AddStation, TwiceAtOneStationAddsOnceAndKeepsTheFirstLabel) {
  Region region = regionFrom("0..100 | 0 A(0)");
  EXPECT_TRUE(addStation(region, 50, "first"));
  EXPECT_FALSE(addStation(region, 50, "second"));
  EXPECT_FALSE(addStation(region, 50.0000009, "above"));
  EXPECT_FALSE(addStation(region, 49.9999991, "below"));
  EXPECT_FALSE(addStation(region, 0.0000005, "at a section"));
  EXPECT_TRUE(addStation(region, 50.0000021, "next"));
  EXPECT_EQ(textOf(region), "0..100 | 0 A(0) | 50? first | 50.0000021? next");
}

TEST(AddStation, RefusesWhatIsNoStation) {
  Region region = regionFrom("0..100");
  EXPECT_FALSE(addStation(region, std::numeric_limits<double>::quiet_NaN(), "x"));
  EXPECT_FALSE(addStation(region, std::numeric_limits<double>::infinity(), "x"));
  EXPECT_EQ(textOf(region), "0..100");
  EXPECT_TRUE(region.pendingLabels.empty());
}

TEST(AddStation, GivesNoSectionBeforeTheRebuildAndOneAfterIt) {
  Corridor corridor = corridorFrom({"0..100 | 0 A(-4 4) | 100 A(-6 4)"});
  Baseline& baseline = corridor.baselines[0];
  Rebuilt done;
  rebuild(corridor, done);
  EXPECT_EQ(done.computed, 0U);
  addStation(baseline.regions[0], 50, "Culvert");
  EXPECT_EQ(found(baseline, 50), "none");
  rebuild(corridor, done);
  EXPECT_EQ(found(baseline, 50), "50* Culvert A(-5 4)");
  EXPECT_EQ(done.computed, 1U);
  EXPECT_TRUE(baseline.regions[0].pendingLabels.empty());
}

// ---------------------------------------------------------------- the law of the rebuild

struct Law {
  const char* claim;
  const char* before;
  const char* after;
};

TEST(Rebuild, FollowsItsLaw) {
  const std::vector<Law> laws{
      {"runs straight in offset and elevation between two controls",
       "0..100 | 0 Pave(ETW:-4/-0.1 0 ETW:4/-0.1) | 25? | 100 Pave(ETW:-6/-0.3 0/0.4 ETW:4/-0.1)",
       "0..100 | 0 Pave(ETW:-4/-0.1 0 ETW:4/-0.1) | 25* Pave(ETW:-4.5/-0.15 0/0.1 ETW:4/-0.1) | "
       "100 Pave(ETW:-6/-0.3 0/0.4 ETW:4/-0.1)"},
      {"works part by part", "0..8 | 0 A(0) B(1 2) | 2? | 8 A(4) B(5 6)",
       "0..8 | 0 A(0) B(1 2) | 2* A(1) B(2 3) | 8 A(4) B(5 6)"},
      {"copies the control before where the parts differ in number", "0..8 | 0 A(0) | 2? | 8 A(4) B(1)",
       "0..8 | 0 A(0) | 2* A(0) | 8 A(4) B(1)"},
      {"copies the control before where a part's codes differ", "0..8 | 0 A+X(0) | 2? | 8 A(4)",
       "0..8 | 0 A+X(0) | 2* A+X(0) | 8 A(4)"},
      {"copies the control before where codes stand in another order", "0..8 | 0 A+X(0) | 2? | 8 X+A(4)",
       "0..8 | 0 A+X(0) | 2* A+X(0) | 8 X+A(4)"},
      {"copies the control before where a point's codes differ", "0..8 | 0 A(ETW:0) | 2? | 8 A(4)",
       "0..8 | 0 A(ETW:0) | 2* A(ETW:0) | 8 A(4)"},
      {"copies the control before where the points differ in number", "0..8 | 0 A(0 1) | 2? | 8 A(4)",
       "0..8 | 0 A(0 1) | 2* A(0 1) | 8 A(4)"},
      {"copies the next control before the first", "0..8 | -5? | 0 A(0) | 8 A(4)", "0..8 | -5* A(0) | 0 A(0) | 8 A(4)"},
      {"copies the last control behind it", "0..8 | 0 A(0) | 8 A(4) | 12?", "0..8 | 0 A(0) | 8 A(4) | 12* A(4)"},
      {"has one control only", "0..8 | 0? | 4 A(1/2) | 8?", "0..8 | 0* A(1/2) | 4 A(1/2) | 8* A(1/2)"},
      {"passes over computed sections as controls", "0..8 | 0 A(0) | 4* A(7) | 6? | 8 A(8)",
       "0..8 | 0 A(0) | 4* A(4) | 6* A(6) | 8 A(8)"},
      {"keeps the label of a computed section", "0..8 | 0 A(0) | 4* Culvert A(7) | 8 A(8)",
       "0..8 | 0 A(0) | 4* Culvert A(4) | 8 A(8)"},
      {"computes nothing in a region without a given section", "0..8 | 0? | 4* A(1) | 8?", "0..8 | 0? | 4* A(1) | 8?"},
      {"gives sections without parts between such", "0..8 | 0 | 4? | 8", "0..8 | 0 | 4* | 8"},
      {"leaves a region without stations alone", "0..8", "0..8"},
  };
  ASSERT_EQ(laws.size(), 15U);
  for (const Law& law : laws) EXPECT_EQ(rebuilt(law.before), law.after) << law.claim;
}

TEST(Rebuild, LeavesAComputedSectionThatIsRightToTheLastDigits) {
  Corridor corridor = corridorFrom({"0..8 | 0 A(0) | 4* A(4) | 8 A(8)"});
  Region& region = corridor.baselines[0].regions[0];
  region.sections[1].parts[0].points[0].offset += 4e-10;
  Rebuilt done;
  rebuild(corridor, done);
  EXPECT_EQ(done.computed, 0U);
  EXPECT_EQ(region.sections[1].parts[0].points[0].offset, 4 + 4e-10);
}

TEST(Rebuild, KeepsOneSectionForTwoStationsALittleAboveAndBelowIt) {
  Region region = regionFrom("0..8 | 0 A(0) | 4* A(9) | 8 A(8)");
  region.stations = {0, 4 - 9e-7, 4 + 9e-7, 8};
  Corridor corridor = corridorFrom({});
  corridor.baselines[0].regions.push_back(region);
  Rebuilt done;
  rebuild(corridor, done);
  ASSERT_EQ(corridor.baselines[0].regions[0].sections.size(), 3U);
  EXPECT_EQ(textOf(corridor.baselines[0].regions[0].sections[1]), "4* A(4)");
}

TEST(Rebuild, TellsWhatItComputedAndReplaced) {
  Corridor corridor = corridorFrom({"0..8 | 0 A(0) | 4* A(9) | 6? | 8 A(8)", "8..16 | 8 B(0) | 12?", "16..20 | 18?"});
  const std::vector<Region>& regions = corridor.baselines[0].regions;
  const SectionPart* const stays = regions[0].sections[2].parts.data();
  const SectionPart* const goes = regions[0].sections[1].parts.data();
  Rebuilt done;
  rebuild(corridor, done);
  EXPECT_EQ(done.computed, 3U);
  ASSERT_EQ(done.replaced.size(), 1U);
  EXPECT_EQ(textOf(done.replaced[0]), "4* A(9)");
  EXPECT_EQ(done.replaced[0].parts.data(), goes);
  EXPECT_EQ(regions[0].sections[3].parts.data(), stays);
}

TEST(Rebuild, CostsNothingWhereNothingChangedSinceTheLastOne) {
  Corridor corridor = corridorFrom({"0..8 | 0 A(0) | 4? | 8 A(8)", "8..16 | 8 A(8) | 16 A(0)"});
  std::vector<std::uint64_t> totals;
  const auto progress = [&](std::uint64_t, std::uint64_t total) { totals.push_back(total); };
  Rebuilt done;
  rebuild(corridor, done, progress);
  EXPECT_EQ(totals.back(), 5U);
  totals.clear();
  rebuild(corridor, done, progress);
  EXPECT_TRUE(totals.empty());
  addStation(corridor.baselines[0].regions[1], 12, "");
  rebuild(corridor, done, progress);
  EXPECT_EQ(totals.back(), 3U) << "the other region isn't looked at";
}

TEST(Rebuild, ReportsProgressFromNothingToEverything) {
  Corridor corridor = corridorFrom({"0..8 | 0 A(0)"});
  for (int i = 1; i < 3000; ++i) addStation(corridor.baselines[0].regions[0], i, "");
  std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
  Rebuilt done;
  rebuild(corridor, done, [&](std::uint64_t at, std::uint64_t total) { told.emplace_back(at, total); });
  ASSERT_GE(told.size(), 4U);
  EXPECT_EQ(told.front(), std::pair(std::uint64_t{0}, std::uint64_t{3000}));
  EXPECT_EQ(told.back(), std::pair(std::uint64_t{3000}, std::uint64_t{3000}));
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

TEST(Rebuild, LeavesEveryRegionWholeWhenItIsStopped) {
  Corridor corridor = corridorFrom({"0..8 | 0 A(0) | 4? | 8 A(8)", "8..2000 | 8 A(0)"});
  std::vector<Region>& regions = corridor.baselines[0].regions;
  for (int i = 9; i < 2000; ++i) addStation(regions[1], i, "x");
  const std::string before = textOf(regions[1]);
  Rebuilt done;
  EXPECT_THROW(rebuild(corridor, done,
                       [](std::uint64_t at, std::uint64_t) {
                         if (at > 1000) throw std::runtime_error("stopped");
                       }),
               std::runtime_error);
  EXPECT_EQ(textOf(regions[0]), "0..8 | 0 A(0) | 4* A(4) | 8 A(8)");
  EXPECT_EQ(textOf(regions[1]), before);
  EXPECT_EQ(done.computed, 1U);
  rebuild(corridor, done);
  EXPECT_EQ(regions[1].sections.size(), regions[1].stations.size());
  EXPECT_EQ(done.computed, 1U + 1991U);
}

// ---------------------------------------------------------------- against the plain reading of the law

/// Searches everything for every station.
SectionParts plainParts(const std::vector<CorridorSection>& sections, double station) {
  const CorridorSection* before = nullptr;
  const CorridorSection* after = nullptr;
  for (const CorridorSection& section : sections) {
    if (section.origin != SectionOrigin::Given) continue;
    if (section.station <= station) before = &section;
    if (section.station > station && after == nullptr) after = &section;
  }
  if (before == nullptr) return after->parts;
  if (after == nullptr || before->parts.size() != after->parts.size()) return before->parts;
  SectionParts parts = before->parts;
  const double ratio = (station - before->station) / (after->station - before->station);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i].codes != after->parts[i].codes || parts[i].points.size() != after->parts[i].points.size())
      return before->parts;
    for (std::size_t k = 0; k < parts[i].points.size(); ++k) {
      SectionPoint& point = parts[i].points[k];
      const SectionPoint& other = after->parts[i].points[k];
      if (point.codes != other.codes) return before->parts;
      point.offset = (1.0 - ratio) * point.offset + ratio * other.offset;
      point.elevation = (1.0 - ratio) * point.elevation + ratio * other.elevation;
    }
  }
  return parts;
}

TEST(Rebuild, AgreesWithThePlainReadingOfItsLaw) {
  std::mt19937 random = lvx::test::seededByTestName();
  const auto integer = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  const auto between = [&](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) * 0x1p-32);
  };
  for (int round = 0; round < 40; ++round) {
    Region region;
    for (int i = 0; i < 60; ++i) {
      const double station = static_cast<double>(integer(0, 200)) / 2.0;
      if (!region.stations.insert(station).second) continue;
      if (integer(0, 2) == 0) continue;  // asked for only
      CorridorSection section;
      section.station = station;
      section.origin = integer(0, 3) == 0 ? SectionOrigin::Computed : SectionOrigin::Given;
      const int shape = integer(0, 9);
      for (int part = 0; part < (shape == 0 ? 1 : 2); ++part) {
        SectionPart made{{shape == 1 ? "Kerb" : "Pave"}, {}};
        for (int point = 0; point < (shape == 2 ? 2 : 3); ++point)
          made.points.push_back({between(-9, 9), between(-1, 1), {shape == 3 ? "X" : "ETW"}});
        section.parts.push_back(std::move(made));
      }
      region.sections.push_back(std::move(section));
    }
    std::sort(region.sections.begin(), region.sections.end(),
              [](const CorridorSection& a, const CorridorSection& b) { return a.station < b.station; });
    const Region before = region;
    Corridor corridor;
    corridor.baselines.emplace_back().regions.push_back(std::move(region));
    Rebuilt done;
    rebuild(corridor, done);
    const Region& after = corridor.baselines[0].regions[0];
    ASSERT_EQ(after.sections.size(), before.stations.size());
    for (const CorridorSection& section : after.sections) {
      SCOPED_TRACE(section.station);
      const SectionParts expected = section.origin == SectionOrigin::Given
                                        ? sectionAt(before, section.station)->parts
                                        : plainParts(before.sections, section.station);
      ASSERT_EQ(section.parts.size(), expected.size());
      for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(section.parts[i].codes, expected[i].codes);
        ASSERT_EQ(section.parts[i].points.size(), expected[i].points.size());
        for (std::size_t k = 0; k < expected[i].points.size(); ++k) {
          EXPECT_EQ(section.parts[i].points[k].codes, expected[i].points[k].codes);
          EXPECT_NEAR(section.parts[i].points[k].offset, expected[i].points[k].offset, 2e-9);
          EXPECT_NEAR(section.parts[i].points[k].elevation, expected[i].points[k].elevation, 2e-9);
        }
      }
    }
  }
}

}  // namespace
}  // namespace lvx::civil
