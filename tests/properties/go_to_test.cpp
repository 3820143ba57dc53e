#include "properties/go_to.h"

#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "support/places.h"

namespace lvx::properties {
namespace {

TEST(GoTo, ReadsEastingAndNorthingWithEitherSeparator) {
  struct Case {
    const char* text;
    double east;
    double north;
  };
  const Case cases[] = {
      {"4500123.4, 5400456.7", 4500123.4, 5400456.7},
      {"4500123.4,5400456.7", 4500123.4, 5400456.7},
      {"4500123,4; 5400456,7", 4500123.4, 5400456.7},
      {"4500123,4;5400456,7", 4500123.4, 5400456.7},
      {"4500123,4 5400456,7", 4500123.4, 5400456.7},
      {"4500123,4, 5400456,7", 4500123.4, 5400456.7},
      {"4500123,4,5400456,7", 4500123.4, 5400456.7},
      {"  4500123.4   5400456.7 ", 4500123.4, 5400456.7},
      {"4500123.4\t5400456.7\t312.5", 4500123.4, 5400456.7},
      {"-10, -20", -10, -20},
      {"10,20", 10, 20},
  };
  for (const Case& row : cases) {
    const auto place = coordinatesOf(row.text);
    ASSERT_TRUE(place) << row.text;
    EXPECT_EQ(place->x, row.east) << row.text;
    EXPECT_EQ(place->y, row.north) << row.text;
  }
}

TEST(GoTo, TakesNothingElseForCoordinates) {
  for (const char* const text :
       {"", "17", "10;", "10; north", "1e5 2", "10 20 30 40", "1.2.3 4", "--1 2", "; ;", "1+020 3"})
    EXPECT_FALSE(coordinatesOf(text)) << text;
}

TEST(GoTo, ReadsStationsWithAndWithoutAnOffset) {
  struct Case {
    const char* text;
    double station;
    double offset;
  };
  const Case cases[] = {
      {"1+020.5", 1020.5, 0},
      {"1+020,5", 1020.5, 0},
      {"1+020.5, -3", 1020.5, -3},
      {"1+020,5; -3,5", 1020.5, -3.5},
      {"1+020.5 -3", 1020.5, -3},
      {"1+020.5,-3", 1020.5, -3},
      {"1020.5", 1020.5, 0},
      {"1020,5", 1020.5, 0},
      {"1020.5 / 2", 1020.5, 2},
      {"-0-020.5", -20.5, 0},
      {"-1-020.5, 4", -1020.5, 4},
      {"12+345", 12345, 0},
      {"0+000", 0, 0},
  };
  for (const Case& row : cases) {
    const auto place = stationOf(row.text);
    ASSERT_TRUE(place) << row.text;
    EXPECT_EQ(place->station, row.station) << row.text;
    EXPECT_EQ(place->offset, row.offset) << row.text;
  }
}

TEST(GoTo, TakesNothingElseForAStation) {
  for (const char* const text : {"", "+", "1+", "+5+3", "1-020", "a+020", "1+b", "1+020, left", "1++020", "-1+020"})
    EXPECT_FALSE(stationOf(text)) << text;
}

class GoToExample : public testing::Test {
 protected:
  GoToAnswer ask(const std::string& text) { return understand(drawing_, index_, chosen(), text); }
  const civil::AlignmentObject* chosen() const { return drawing_.sites[0].alignments[0].get(); }

  civil::Drawing drawing_ = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  civil::DrawingIndex index_{drawing_};
};

TEST_F(GoToExample, FindsAStationOfTheChosenAlignmentAndOfANamedOne) {
  const GoToAnswer answer = ask("1+040, -3");
  ASSERT_FALSE(answer.places.empty());
  const GoTo& place = answer.places.front();
  EXPECT_EQ(place.kind, GoTo::Kind::Station);
  EXPECT_EQ(place.alignment, chosen());
  const auto foot = chosen()->geometry.stationOffset(place.place);
  EXPECT_NEAR(foot->station, 1040.0, 1e-6);
  EXPECT_NEAR(foot->offset, -3.0, 1e-6);

  for (const char* const text : {"mill lane 0+040", "0+040 Mill lane", "MILL LANE 40"}) {
    const GoToAnswer named = ask(text);
    ASSERT_FALSE(named.places.empty()) << text;
    EXPECT_EQ(named.places.front().kind, GoTo::Kind::Station) << text;
    EXPECT_EQ(named.places.front().alignment->name, "Mill lane") << text;
    EXPECT_EQ(named.places.front().text, "Mill lane 0+040.000") << text;
  }
}

TEST_F(GoToExample, UnderstandsWhatItProposesInTheSameWay) {
  for (const char* const text : {"1+040, -3", "Mill lane 0+040", "7", "Valley", "ground", "480200.5; 125000"}) {
    for (const GoTo& place : ask(text).places) {
      const GoToAnswer again = ask(place.text);
      // A station is what sample lines are called too.
      const bool isThere = std::any_of(again.places.begin(), again.places.end(), [&](const GoTo& other) {
        return other.kind == place.kind && other.text == place.text;
      });
      EXPECT_TRUE(isThere) << place.text;
    }
  }
}

TEST_F(GoToExample, TakesALoneNumberForAPointBeforeAStation) {
  ASSERT_NE(index_.pointByNumber(7), nullptr);
  const civil::AlignmentObject& track = *drawing_.siteless.alignments.at(0);  // from station 0
  const GoToAnswer answer = understand(drawing_, index_, &track, "7");
  ASSERT_GE(answer.places.size(), 2U);
  EXPECT_EQ(answer.places[0].kind, GoTo::Kind::Point);
  EXPECT_EQ(answer.places[0].handle, index_.pointByNumber(7)->handle);
  bool hasStation = false;
  for (const GoTo& place : answer.places) hasStation = hasStation || place.kind == GoTo::Kind::Station;
  EXPECT_TRUE(hasStation);
}

TEST_F(GoToExample, PutsWholeNamesBeforeBeginningsBeforeParts) {
  const GoToAnswer answer = ask("Valley road");
  ASSERT_GE(answer.places.size(), 2U);
  EXPECT_EQ(answer.places[0].text, "Valley road");
  EXPECT_EQ(answer.places[0].handle, chosen()->handle);
  const GoToAnswer part = ask("road");
  ASSERT_FALSE(part.places.empty());
}

TEST_F(GoToExample, TellsWhyNothingFits) {
  EXPECT_EQ(ask("  ").trouble, GoToTrouble::Empty);
  EXPECT_EQ(ask("no such thing").trouble, GoToTrouble::NothingFits);
  const GoToAnswer outside = ask("99+000");
  EXPECT_TRUE(outside.places.empty());
  EXPECT_EQ(outside.trouble, GoToTrouble::OutsideStation);
  EXPECT_EQ(outside.alignment, chosen());
  const civil::Drawing empty;
  EXPECT_EQ(understand(empty, civil::DrawingIndex(empty), nullptr, "1+020").trouble, GoToTrouble::NoAlignment);
}

TEST_F(GoToExample, GivesNoMoreThanAskedFor) {
  EXPECT_LE(understand(drawing_, index_, chosen(), "0", 5).places.size(), 5U);
  EXPECT_EQ(understand(drawing_, index_, chosen(), "0", 5).places.size(), 5U);
}

}  // namespace
}  // namespace lvx::properties
