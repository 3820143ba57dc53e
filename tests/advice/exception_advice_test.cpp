#include "advice/exception_advice.h"

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/utf8.h"

namespace lvx::advice {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

MessageText words(std::map<std::uint32_t, std::string> changed = {}) {
  std::map<std::uint32_t, std::string> all{{329, "BS"},  {330, "ES"},  {331, "BC"}, {332, "EC"},
                                           {333, "BVC"}, {334, "PVI"}, {335, "EVC"}};
  for (auto& [number, text] : changed) all[number] = text;
  return [all](std::uint32_t number) {
    const auto found = all.find(number);
    return platform::fromUtf8(found == all.end() || found->second.empty() ? "*" + std::to_string(number) + "*"
                                                                          : found->second);
  };
}

class ExceptionAdvice : public testing::Test {
 protected:
  ExceptionAdvice() {
    alignment_.name = "A";
    alignment_.geometry = civil::Alignment::fromText("at 0 0 heading 90; line 100");
    profile_.name = "P";
    profile_.profile = civil::Profile::design({{0, 10}, {100, 12}});
    group_.name = "g";
    group_.lines = {{1, "L10", 10, {}}};
    objects_.report = Report::Gls;
    objects_.alignment = &alignment_;
    objects_.profile = &profile_;
    objects_.group = &group_;
  }

  civil::AlignmentObject alignment_;
  civil::ProfileObject profile_;
  civil::SampleLineGroup group_;
  ReportObjects objects_;
};

TEST_F(ExceptionAdvice, HasNothingToSayOfWhatAReportTakes) {
  EXPECT_THAT(whatToChange(objects_, words()), IsEmpty());
  objects_.report = Report::Projection;
  group_.lines[0].name = "PV1";
  EXPECT_THAT(whatToChange(objects_, words()), IsEmpty());
}

TEST_F(ExceptionAdvice, NamesSampleLinesThatPassForIntersectionPoints) {
  group_.lines = {{1, "PV7", 10, {}}, {2, "pvi", 20, {}}, {3, "P", 30, {}}};
  EXPECT_THAT(
      whatToChange(objects_, words()),
      ElementsAre("sample line 'PV7' of group 'g' is taken for an intersection point of the profile, whose word is "
                  "'PVI'; give it a name that doesn't begin with 'PV'"));
  group_.lines.push_back({4, "PVC", 40, {}});
  EXPECT_THAT(
      whatToChange(objects_, words()),
      ElementsAre("sample line 'PV7' and 1 more of group 'g' are taken for an intersection point of the profile, "
                  "whose word is 'PVI'; give them names that don't begin with 'PV'"));
}

TEST_F(ExceptionAdvice, KnowsTheTableOfOneRow) {
  const std::string sentence =
      "the table would have a single row, the end of alignment 'A', and the report needs two; choose a group with a "
      "sample line before the end";
  struct Row {
    const char* what;
    std::vector<double> stations;
    std::vector<civil::VerticalPoint> points;
    const char* geometry;
    bool oneRow;
  };
  const std::vector<civil::VerticalPoint> two{{0, 10}, {100, 12}};
  const std::vector<civil::VerticalPoint> three{{0, 10}, {50, 12}, {100, 11}};
  const std::vector<Row> table{
      {"no sample line", {}, two, "at 0 0 heading 90; line 100", true},
      {"at the end and behind it", {100, 99.99995, 120}, two, "at 0 0 heading 90; line 100", true},
      {"just before the end", {99.999}, two, "at 0 0 heading 90; line 100", false},
      {"a point of intersection", {}, three, "at 0 0 heading 90; line 100", false},
      {"two elements", {}, two, "at 0 0 heading 90; line 50; arc 50 R 300 right", false},
      {"an arc alone", {}, two, "at 0 0 heading 90; arc 50 R 300 right", false},
  };
  for (const Row& row : table) {
    group_.lines.clear();
    for (const double station : row.stations) group_.lines.push_back({1, "L", station, {}});
    profile_.profile = civil::Profile::design(row.points);
    alignment_.geometry = civil::Alignment::fromText(row.geometry);
    const auto list = whatToChange(objects_, words());
    if (row.oneRow)
      EXPECT_THAT(list, ElementsAre(sentence)) << row.what;
    else
      EXPECT_THAT(list, IsEmpty()) << row.what;
  }
}

TEST_F(ExceptionAdvice, NamesWhatTheAlignmentAndTheProfileLack) {
  alignment_.geometry = {};
  profile_.profile = civil::Profile::design({{0, 10}});
  EXPECT_THAT(whatToChange(objects_, words()),
              ElementsAre("alignment 'A' has no elements; choose one that has",
                          "profile 'P' has fewer than two points; choose one that has them"));
}

TEST_F(ExceptionAdvice, NamesTheWordsThatTheMessageFileLacksOrConfuses) {
  EXPECT_THAT(whatToChange(objects_, words({{333, ""}, {334, ""}})), ElementsAre(HasSubstr("; add messages 333, 334")));
  EXPECT_THAT(whatToChange(objects_, words({{333, "PVC"}, {335, "PVT"}})),
              ElementsAre(HasSubstr("'PVI', which is found by its first two letters; change message 333 'PVC', 335 "
                                    "'PVT'")));
  EXPECT_THAT(whatToChange(objects_, words({{334, "P"}})), IsEmpty());
}

}  // namespace
}  // namespace lvx::advice
