#include "points/point_collector.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "platform/utf8.h"
#include "points/point_groups.h"

namespace lvx::points {
namespace {

class PointCollectorTest : public testing::Test {
 protected:
  PointCollectorTest() {
    host_.useMessageBytes("109 no site at all\r\n226 picked ones\r\n");
    const auto point = drawing_.addPoint(17, 100.0, -4.0, 312.1);
    point->nameText = L"A";
    point->descriptionText = L"BK";
    point->fullText = L"BK 1";
    drawing_.addPoint(3, 50.0, 2.0);
    drawing_.addPoint(4, 75.0, 0.0);
    drawing_.addPointGroup(L"Survey", {17, 3});
  }

  /// Rows as short text: "number@station" with blanks between.
  std::string collected(const CString& site, const CString& alignment, const CString& group,
                        std::initializer_list<std::int32_t> picked = {}) {
    PickedNumbers numbers;
    for (const std::int32_t number : picked) numbers.add(number);
    rows_ = PointList();
    const auto documents = drawing_.document.use_count();
    const auto databases = drawing_.database.use_count();
    collectPoints(drawing_.document, drawing_.database, site, alignment, group, numbers, rows_);
    EXPECT_EQ(drawing_.document.use_count(), documents);
    EXPECT_EQ(drawing_.database.use_count(), databases);
    std::string text;
    for (framework::ArrayIndex i = 0; i < rows_.size(); ++i)
      text += (text.empty() ? "" : " ") + std::to_string(rows_[i].number) + "@" +
              std::to_string(static_cast<int>(rows_[i].station));
    return text;
  }

  test::FakeHost host_;
  test::FakeDrawing drawing_;
  PointList rows_;
};

TEST_F(PointCollectorTest, FillsARowFromThePointAndTheAlignment) {
  drawing_.addAlignment(nullptr, L"Axis");
  collected(L"", L"Axis", L"Survey");
  ASSERT_EQ(rows_.size(), 2);
  const tpoint row = rows_[0];
  EXPECT_EQ(row.number, 17);
  EXPECT_EQ(row.easting, 100.0);
  EXPECT_EQ(row.northing, -4.0);
  EXPECT_EQ(row.elevation, 312.1);
  EXPECT_EQ(row.name, L"A");
  EXPECT_EQ(row.description, L"BK");
  EXPECT_EQ(row.fullDescription, L"BK 1");
  EXPECT_EQ(row.alignmentName, L"Axis");
  EXPECT_EQ(row.station, 100.0);
  EXPECT_EQ(row.offset, 4.0);
  EXPECT_EQ(row.spareText, L"");
  EXPECT_EQ(rows_[1].name, L"") << "nothing of the row before it stays";
}

TEST_F(PointCollectorTest, TakesThreeTextsForNoSite) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.addAlignment(drawing_.addSite(L"S"), L"Axis")->project = [](double, double) {
    return host::StationOffset{9999.0, 0.0};
  };
  for (const CString site : {L"", L"*", L"*S", L"*whatever follows", L"no site at all"}) {
    SCOPED_TRACE(platform::toUtf8(site));
    EXPECT_EQ(collected(site, L"Axis", L"Survey"), "17@100 3@50");
  }
  EXPECT_EQ(collected(L"S", L"Axis", L"Survey"), "17@9999 3@9999");
}

TEST_F(PointCollectorTest, FindsNothingForTextsThatNameNothing) {
  drawing_.addAlignment(drawing_.addSite(L"S"), L"Axis");
  EXPECT_EQ(collected(L"T", L"Axis", L"Survey"), "");
  EXPECT_EQ(collected(L"S", L"axis", L"Survey"), "") << "names compare with case";
  EXPECT_EQ(collected(L"S", L"", L"Survey"), "");
  EXPECT_EQ(collected(L"S", L"Axis", L"survey"), "");
  EXPECT_EQ(collected(L"", L"Axis", L"Survey"), "") << "the alignment stands in a site";
  EXPECT_TRUE(host_.users().boxes.empty());
}

TEST_F(PointCollectorTest, SearchesOnlyTheFirstOfTwoSitesOfOneName) {
  drawing_.addAlignment(drawing_.addSite(L"S"), L"Other");
  drawing_.addAlignment(drawing_.addSite(L"S"), L"Axis");
  EXPECT_EQ(collected(L"S", L"Axis", L"Survey"), "");
  EXPECT_EQ(collected(L"S", L"Other", L"Survey"), "17@100 3@50");
}

TEST_F(PointCollectorTest, TakesTheFirstOfTwoAlignmentsOfOneName) {
  drawing_.addAlignment(nullptr, L"Axis")->project = [](double, double) { return host::StationOffset{1.0, 0.0}; };
  drawing_.addAlignment(nullptr, L"Axis")->project = [](double, double) { return host::StationOffset{2.0, 0.0}; };
  EXPECT_EQ(collected(L"", L"Axis", L"Survey"), "17@1 3@1");
}

TEST_F(PointCollectorTest, GivesNoRowsForAGroupWithoutPoints) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.addPointGroup(L"Empty", {});
  EXPECT_EQ(collected(L"", L"Axis", L"Empty"), "");
}

TEST_F(PointCollectorTest, LeavesPickedNumbersUnreadWhereAGroupIsChosen) {
  drawing_.addAlignment(nullptr, L"Axis");
  EXPECT_EQ(collected(L"", L"Axis", L"Survey", {4, 4}), "17@100 3@50");
}

TEST_F(PointCollectorTest, TakesThePickedNumbersInTheirOwnOrder) {
  drawing_.addAlignment(nullptr, L"Axis");
  EXPECT_EQ(collected(L"", L"Axis", L"picked ones", {4, 17, 3}), "4@75 17@100 3@50");
  EXPECT_EQ(collected(L"", L"Axis", L"picked ones"), "");
}

TEST_F(PointCollectorTest, TakesThePickedNumbersAlsoWhereAGroupBearsThatName) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.addPointGroup(L"picked ones", {17});
  EXPECT_EQ(collected(L"", L"Axis", L"picked ones", {4}), "4@75");
}

TEST_F(PointCollectorTest, GivesANumberThatStandsTwiceTwoRows) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.addPointGroup(L"Twice", {3, 17, 3});
  EXPECT_EQ(collected(L"", L"Axis", L"Twice"), "3@50 17@100 3@50");
}

TEST_F(PointCollectorTest, KeepsAPointThatLiesFarOffTheAlignment) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.addPoint(99, -123456.0, 9e9);
  drawing_.addPointGroup(L"Far", {99});
  EXPECT_EQ(collected(L"", L"Axis", L"Far"), "99@-123456");
}

TEST_F(PointCollectorTest, GivesANumberThatNoPointHasARowOfZerosAndEmptyTexts) {
  const auto alignment = drawing_.addAlignment(nullptr, L"Axis");
  alignment->project = [](double, double) { return host::StationOffset{5.0, 6.0}; };
  drawing_.addPointGroup(L"Gone", {17, 1234});
  EXPECT_EQ(collected(L"", L"Axis", L"Gone"), "17@5 1234@0");
  const tpoint row = rows_[1];
  EXPECT_EQ(row.easting, 0.0);
  EXPECT_EQ(row.northing, 0.0);
  EXPECT_EQ(row.elevation, 0.0);
  EXPECT_EQ(row.offset, 0.0);
  EXPECT_EQ(row.name + row.description + row.fullDescription, L"");
  EXPECT_EQ(row.alignmentName, L"Axis");
}

TEST_F(PointCollectorTest, TakesAnArrayByItsValuesWhateverItsLowerBoundAndNothingFromOneThatIsNoList) {
  drawing_.addAlignment(nullptr, L"Axis");
  const auto group = drawing_.addPointGroup(L"Odd", {});
  group->numbers = host::HostArray<std::int32_t>::of({3, 4}, 1);
  EXPECT_EQ(collected(L"", L"Axis", L"Odd"), "3@50 4@75");
  group->numbers = host::HostArray<std::int32_t>::none();
  EXPECT_EQ(collected(L"", L"Axis", L"Odd"), "");
  group->numbers = {2, 0, {3, 4}};
  EXPECT_EQ(collected(L"", L"Axis", L"Odd"), "");
}

TEST_F(PointCollectorTest, GivesNoRowsWhereTheHostHasNothing) {
  drawing_.addAlignment(nullptr, L"Axis");
  drawing_.document->groups.reset();
  EXPECT_EQ(collected(L"", L"Axis", L"Survey"), "");
  drawing_.document->pointList.reset();
  EXPECT_EQ(collected(L"", L"Axis", L"picked ones", {17}), "17@0");
  PointList rows;
  collectPoints(nullptr, nullptr, L"", L"Axis", L"Survey", {}, rows);
  collectPoints(nullptr, nullptr, L"S", L"Axis", L"Survey", {}, rows);
  EXPECT_TRUE(rows.isEmpty());
}

TEST_F(PointCollectorTest, AppendsToTheRowsThatStandThere) {
  drawing_.addAlignment(nullptr, L"Axis");
  collected(L"", L"Axis", L"Survey");
  collectPoints(drawing_.document, drawing_.database, L"", L"Axis", L"Survey", {}, rows_);
  EXPECT_EQ(rows_.size(), 4);
}

// ---------------------------------------------------------------- the list of groups

std::wstring rowsOf(const PointGroupList& list) {
  std::wstring text;
  for (const tptgroup* row : list) text += row->name + L":" + std::to_wstring(row->count) + L" ";
  return text;
}

TEST_F(PointCollectorTest, ListsTheGroupsInTheHostsOrderAndThePickedPointsLast) {
  drawing_.addPointGroup(L"Empty", {});
  drawing_.addPointGroup(L"A", {1, 2, 3});
  PointGroupList list;
  EXPECT_EQ(loadPointGroups(drawing_.document, drawing_.database, list), 1);
  EXPECT_EQ(rowsOf(list), L"Survey:2 Empty:0 A:3 picked ones:0 ");
  EXPECT_EQ(loadPointGroups(drawing_.document, drawing_.database, list), 1);
  EXPECT_EQ(list.size(), 4) << "the list is filled anew";
  releasePointGroups(list);
  EXPECT_TRUE(list.isEmpty());
}

TEST_F(PointCollectorTest, ListsThePickedPointsEvenWhereTheDrawingHasNoGroups) {
  drawing_.document->groups.reset();
  PointGroupList list;
  EXPECT_EQ(loadPointGroups(drawing_.document, drawing_.database, list), 1);
  EXPECT_EQ(rowsOf(list), L"picked ones:0 ");
  releasePointGroups(list);
}

TEST_F(PointCollectorTest, KeepsTheRowOfAGroupThatTheHostFailsToHandOut) {
  drawing_.document->groups->items.insert(drawing_.document->groups->items.begin(), nullptr);
  PointGroupList list;
  loadPointGroups(drawing_.document, drawing_.database, list);
  EXPECT_EQ(rowsOf(list), L":0 Survey:2 picked ones:0 ");
  releasePointGroups(list);
}

}  // namespace
}  // namespace lvx::points
