#include "civil/point_filter.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::civil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(PointPattern, StandsForTheWholeText) {
  const struct {
    const char* text;
    const char* pattern;
    bool isLike;
  } rows[] = {
      {"TREE", "TREE", true},
      {"TREE 12", "TREE", false},
      {"TREE 12", "TREE*", true},
      {"OLD TREE", "TREE*", false},
      {"OLD TREE", "*TREE*", true},
      {"Tree", "TREE", false},
      {"TREE", "TR??", true},
      {"TRE", "TR??", false},
      {"", "*", true},
      {"", "", true},
      {"", "?", false},
      {"a", "", false},
      {"aXbXc", "a*X*c", true},
      {"aXbXc", "a*X", false},
      {"mississippi", "m*iss*ip*i", true},
      {"mississippi", "m*iss*is*iss*", false},
      {"B\xC3\xA4ume", "B?ume", true},
      {"B\xC3\xA4ume", "B??ume", false},
      {"\xC3\xA4\xC3\xB6", "*\xC3\xB6", true},
      {"a*b", "a*b", true},
      {"[x]", "[x]", true},
  };
  for (const auto& row : rows) EXPECT_EQ(isLikePattern(row.text, row.pattern), row.isLike) << row.text << row.pattern;
}

TEST(PointPattern, OfManyStarsEndsSoon) {
  const std::string text(20'000, 'a');
  EXPECT_FALSE(isLikePattern(text, "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(isLikePattern(text, "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a"));
}

/// Six points: 1, 2, 5 (by the name "5a"), 7, and two of number 9.
Drawing survey() {
  Drawing drawing;
  const auto add = [&](std::int32_t number, const char* name, double elevation, const char* description,
                       const char* fullDescription) {
    Point point;
    point.handle = drawing.points.size() + 1;
    point.number = number;
    point.position = {0, 0, elevation};
    point.texts = {name, description, fullDescription};
    drawing.points.push_back(point);
  };
  add(1, "", 100.0, "TREE", "TREE OAK 12");
  add(2, "", 110.5, "TREE 2", "TREE 2");
  add(5, "5a", -3.0, "EDGE, OLD", "");
  add(7, "", 0.0, "", "");
  drawing.points.back().hasElevation = false;
  add(9, "", 120.0, "BUSH; SMALL", "");
  add(9, "9 again", 120.0, "BUSH", "");
  return drawing;
}

std::vector<std::int32_t> numbersWhere(const std::string& text) {
  const Drawing drawing = survey();
  return pointsWhere(drawing, DrawingIndex(drawing), PointFilter::parse(text)).numbers;
}

TEST(PointFilter, ChoosesByItsConditions) {
  const struct {
    const char* conditions;
    std::vector<std::int32_t> numbers;
  } rows[] = {
      {"description=TREE*", {1, 2}},
      {"description=TREE", {1}},
      {"description=*OAK*", {1}},
      {"description=*", {1, 2, 5, 7, 9}},
      {"description=''", {5, 7, 9}},
      {"description=TREE*;EDGE*", {1, 2, 5}},
      {"description='EDGE, OLD'", {5}},
      {"description='EDGE, *';\"BUSH; *\"", {5, 9}},
      {" description = TREE* , number = 2 ", {2}},
      {"description=TREE*,description=*12", {1}},
      {"name=5a", {5}},
      {"name=5", {}},
      {"name=?", {1, 2, 7, 9}},
      {"number=1-5", {1, 2, 5}},
      {"number=1..5", {1, 2, 5}},
      {"number=1;7-9", {1, 7, 9}},
      {"number=3", {}},
      {"number=2..", {2, 5, 7, 9}},
      {"number=..2,", {1, 2}},
      {"elevation=100..110.5", {1, 2}},
      {"elevation=100.0-110.4", {1}},
      {"elevation=-5--1", {5}},
      {"elevation=-1e3..1e3", {1, 2, 5, 9}},
      {"elevation=110.5", {2}},
      {"elevation=110.5..", {2, 9}},
      {"elevation=..0;120", {5, 9}},
  };
  std::size_t checked = 0;
  for (const auto& row : rows) {
    EXPECT_EQ(numbersWhere(row.conditions), row.numbers) << row.conditions;
    ++checked;
  }
  EXPECT_EQ(checked, 26u);
}

TEST(PointFilter, LetsEveryPointThroughWithoutConditions) {
  const Drawing drawing = survey();
  const FilteredPoints found = pointsWhere(drawing, DrawingIndex(drawing), {});
  EXPECT_THAT(found.numbers, ElementsAre(1, 2, 5, 7, 9));
  EXPECT_EQ(found.hidden, 1u) << "number 9 finds the first of the two";
  EXPECT_EQ(found.withoutElevation, 1u);
}

TEST(PointFilter, TellsThePointsThatTheirNumberDoesNotFind) {
  const Drawing drawing = survey();
  const FilteredPoints found = pointsWhere(drawing, DrawingIndex(drawing), PointFilter::parse("name='9 again'"));
  EXPECT_THAT(found.numbers, IsEmpty());
  EXPECT_EQ(found.hidden, 1u);
}

TEST(PointFilter, HoldsBothAfterAnotherIsAdded) {
  PointFilter both = PointFilter::parse("description=TREE*");
  both.add(PointFilter::parse("number=2..9"));
  both.add(both);
  const Drawing drawing = survey();
  EXPECT_THAT(pointsWhere(drawing, DrawingIndex(drawing), both).numbers, ElementsAre(2));
}

TEST(PointFilter, SaysWhichKeyAndWhichValueIsWrong) {
  const struct {
    const char* conditions;
    const char* words;
  } rows[] = {
      {"", "points: a condition is wanted, such as description=TREE*"},
      {"  ", "a condition is wanted"},
      {"desc=TREE*", "points: there is no key 'desc', only description, name, elevation, number"},
      {"TREE*", "there is no key 'TREE*'"},
      {"description", "description: a value is wanted, as in description=TREE*"},
      {"elevation,number=1", "elevation: a value is wanted, as in elevation=100..120"},
      {"name=", "name: a value is wanted"},
      {"name=A;", "name: a value is wanted"},
      {"name=,number=1", "name: a value is wanted"},
      {"description='TREE", "description: the quote isn't closed"},
      {"description='TREE' 2", "description: a comma is wanted behind the quote, at '2'"},
      {"number=one", "number 'one': a whole number or a range such as 100..120 is wanted"},
      {"number=1.5", "number '1.5': a whole number"},
      {"number=50-1", "number '50-1': the range descends"},
      {"number=1-", "number '1-': a range without an end is written with two points"},
      {"number=1-2-3", "number '1-2-3'"},
      {"number=''", "number '': a value is wanted"},
      {"elevation=..", "elevation '..': a range needs one of its ends"},
      {"elevation=high", "elevation 'high': a number or a range"},
      {"elevation=nan", "elevation 'nan': a number"},
      {"elevation=1..2..3", "elevation '1..2..3': a number"},
  };
  for (const auto& row : rows) {
    try {
      static_cast<void>(PointFilter::parse(row.conditions));
      ADD_FAILURE() << row.conditions << " was taken";
    } catch (const PointFilterError& error) {
      EXPECT_THAT(error.what(), HasSubstr(row.words)) << row.conditions;
    }
  }
}

TEST(PointFilter, HasEveryKeyInItsTable) {
  for (const PointFilterKey& key : pointFilterKeys()) {
    EXPECT_FALSE(key.meaning.empty());
    EXPECT_NO_THROW(static_cast<void>(PointFilter::parse(std::string(key.key) + "=1"))) << key.key;
  }
}

}  // namespace
}  // namespace lvx::civil
