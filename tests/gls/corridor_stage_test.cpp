#include "gls/corridor_stage.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/exceptions.h"
#include "host/dialog_window.h"
#include "plain_gls/gls_case.h"

namespace lvx::gls {
namespace {

using host::HostArray;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class CorridorStage : public testing::Test {
 protected:
  ~CorridorStage() override { releaseCorridors(corridors_); }

  void addRow(double station, const CString& name = L"") {
    report_.rows.add(new tglsRow);
    report_.rows[report_.rows.size() - 1]->station = station;
    report_.rows[report_.rows.size() - 1]->name = name;
  }
  void read(int answer = host::kIdCancel) {
    made_.user.code = answer;
    readCorridorData(made_.host, corridors_, report_);
  }
  [[nodiscard]] const tglsRow& row(framework::ArrayIndex i) const { return *report_.rows[i]; }

  /// A corridor of one baseline without regions.
  test::Ref<test::FakeBaseline> baseline(const CString& corridor = L"Road") {
    return made_.roadway.addCorridor(corridor)->addBaseline();
  }
  /// A corridor of one baseline with one region that has one section.
  test::Ref<test::FakeBaseline> road(double station, const std::vector<test::FakeBaseline::RoadPoint>& points) {
    const auto made = baseline();
    made->addRegion({station});
    made->addRoad(station, points);
    return made;
  }
  /// The section of the first baseline's first station.
  test::FakeSection& section(test::FakeBaseline& baseline, double station) {
    baseline.addRegion({station});
    const auto made = std::make_shared<test::FakeSection>();
    baseline.sections[station] = made;
    return *made;
  }

  GlsCase made_;
  tglsReport report_;
  CorridorList corridors_;
};

// ---------------------------------------------------------------- the question

TEST_F(CorridorStage, AsksByTheSmallDialogAlsoWhereThereIsNoCorridor) {
  addRow(100.0);
  read();
  EXPECT_THAT(made_.user.asked, ElementsAre(host::kAddSectionsDialog));
  EXPECT_THAT(made_.user.parents, ElementsAre(made_.host.run().vnsw_mainWnd()));
  EXPECT_TRUE(isNoCorridor(row(0)));
  EXPECT_EQ(corridors_.size(), 0);
}

TEST_F(CorridorStage, ChangesNothingForAnyAnswerButYes) {
  addRow(100.0);
  road(50.0, {});
  for (const int answer : {2, 3, 6, 7, 0}) {
    read(answer);
    releaseCorridors(corridors_);
  }
  EXPECT_THAT(made_.roadway.log, IsEmpty());
}

TEST_F(CorridorStage, ReadsNothingWithoutAConnection) {
  addRow(100.0);
  road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  host::disconnectRoadway();
  read();
  EXPECT_EQ(corridors_.size(), 0);
  EXPECT_TRUE(isNoCorridor(row(0)));
}

// ---------------------------------------------------------------- the values of a row

TEST_F(CorridorStage, FillsARowFromLeftEdgeMiddleAndRightEdge) {
  addRow(100.0);
  road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {5.0, 9.75}})->profileObject->elevation = [](double s) { return s / 2.0; };
  read();
  EXPECT_NEAR(row(0).crossFallLeft, -2.5, 1e-9);  // a fall away from the middle is negative on either side
  EXPECT_NEAR(row(0).crossFallRight, -5.0, 1e-9);
  EXPECT_EQ(row(0).widthLeft, 4.0);
  EXPECT_EQ(row(0).widthRight, 5.0);
  EXPECT_NEAR(row(0).heightLeft, -0.1, 1e-12);
  EXPECT_NEAR(row(0).heightRight, -0.25, 1e-12);
  EXPECT_EQ(row(0).edgeElevationLeft, 59.9);
  EXPECT_EQ(row(0).edgeElevationRight, 59.75);
  EXPECT_EQ(row(0).elevation, 60.0);
}

TEST_F(CorridorStage, KeepsTheSectionsWithTheirCrossFallsInTheRecords) {
  const auto corridor = made_.roadway.addCorridor(L"Road");
  corridor->descriptionText = L"through the valley";
  corridor->handleText = L"1F4";
  const auto made = corridor->addBaseline();
  made->alignmentObject = made_.axis;
  made_.axis->handleText = L"2A";
  made->addRegion({120.0, 100.0, 110.0});
  made->addRoad(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.8}});
  corridor->addBaseline();
  read();
  ASSERT_EQ(corridors_.size(), 1);
  EXPECT_EQ(corridors_[0]->name, L"Road");
  EXPECT_EQ(corridors_[0]->description, L"through the valley");
  EXPECT_EQ(corridors_[0]->handle, L"1F4");
  ASSERT_EQ(corridors_[0]->baselines.size(), 2);
  EXPECT_EQ(corridors_[0]->baselines[0]->alignmentHandle, L"2A");
  EXPECT_EQ(corridors_[0]->baselines[1]->alignmentHandle, L"");
  const framework::tpt3list& stations = corridors_[0]->baselines[0]->stations;
  ASSERT_EQ(stations.count(), 3);
  EXPECT_EQ(stations[0].first, 100.0);
  EXPECT_NEAR(stations[0].second, -2.5, 1e-9);
  EXPECT_NEAR(stations[0].third, -5.0, 1e-9);
  EXPECT_EQ(stations[1], (framework::tpt3{110.0, 0.0, 0.0}));
  EXPECT_EQ(stations[2].first, 120.0);
}

TEST_F(CorridorStage, MatchesRowsWithinAMillionthOfTheStationOfTheFirstPoint) {
  for (const double station : {99.9999989, 99.9999991, 100.0000009, 100.0000011}) addRow(station);
  road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  read();
  EXPECT_TRUE(isNoCorridor(row(0)));
  EXPECT_EQ(row(1).widthLeft, 4.0);
  EXPECT_EQ(row(2).widthLeft, 4.0);
  EXPECT_TRUE(isNoCorridor(row(3)));
}

TEST_F(CorridorStage, GoesByTheStationThatTheFirstPointReportsNotTheOneAskedFor) {
  addRow(100.0);
  addRow(200.0);
  test::FakeSectionPart& part = section(*baseline(), 100.0).addPart({L"Pave"});
  part.addPoint(300.0, 4.0, 9.9).addPoint(200.0, -4.0, 9.9, {L"ETW"});
  read();
  EXPECT_TRUE(isNoCorridor(row(0)));
  EXPECT_EQ(row(1).widthLeft, 4.0);
}

TEST_F(CorridorStage, LetsTheBaselineReadLastDecide) {
  addRow(100.0);
  road(100.0, {{-1.0, 1.0}, {0.0, 1.0}, {1.0, 1.0}});
  const auto corridor = made_.roadway.addCorridor(L"Second");
  for (const double width : {2.0, 3.0}) {
    const auto made = corridor->addBaseline();
    made->addRegion({100.0});
    made->addRoad(100.0, {{-width, 1.0}, {0.0, 1.0}, {width, 1.0}});
  }
  road(500.0, {{-9.0, 1.0}, {0.0, 1.0}, {9.0, 1.0}});
  read();
  EXPECT_EQ(row(0).widthLeft, 3.0);
}

TEST_F(CorridorStage, FillsRowsByStationWhateverAlignmentTheBaselineLiesOn) {
  addRow(100.0);
  const auto made = road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  made->alignmentObject = made_.drawing.addAlignment(nullptr, L"another");
  read();
  EXPECT_FALSE(isNoCorridor(row(0)));
}

TEST_F(CorridorStage, TakesTheCrossFallToTheRightFromTheLastTwoOfManyPointsAndTheRestFromTheFirstThree) {
  addRow(100.0);
  road(100.0, {{-6.0, 9.0}, {-4.0, 9.5}, {0.0, 10.0}, {4.0, 9.6}, {6.0, 9.4}});
  read();
  EXPECT_NEAR(row(0).crossFallLeft, -25.0, 1e-9);
  EXPECT_NEAR(row(0).crossFallRight, -10.0, 1e-9);
  EXPECT_EQ(row(0).widthLeft, 6.0);
  EXPECT_EQ(row(0).widthRight, 0.0);
  EXPECT_EQ(row(0).heightRight, 0.5);
  EXPECT_EQ(row(0).edgeElevationRight, 10.0);
  EXPECT_EQ(row(0).elevation, 9.5);
}

TEST_F(CorridorStage, GivesNoCrossFallOnASideThatDoesNotBeginThereButTheOtherValues) {
  addRow(100.0);
  addRow(200.0);
  const auto made = baseline();
  made->addRegion({100.0, 200.0});
  made->addRoad(100.0, {{0.0, 10.0}, {4.0, 9.9}, {8.0, 9.0}});
  made->addRoad(200.0, {{-8.0, 9.0}, {-4.0, 9.9}, {0.0, 10.0}});
  read();
  EXPECT_EQ(row(0).crossFallLeft, 0.0);
  EXPECT_EQ(row(0).widthLeft, 0.0);
  EXPECT_NEAR(row(0).heightLeft, 0.1, 1e-12);
  EXPECT_NEAR(row(0).crossFallRight, -22.5, 1e-9);
  EXPECT_NEAR(row(1).crossFallLeft, -22.5, 1e-9);
  EXPECT_EQ(row(1).crossFallRight, 0.0);
  EXPECT_EQ(row(1).widthRight, 0.0);
}

// ---------------------------------------------------------------- which parts and points count

TEST_F(CorridorStage, TakesSurfacePartsByEitherOfTwoCodesExactly) {
  struct Case {
    CString code;
    bool counts;
  };
  const std::vector<Case> cases{{L"Belag", true},  {L"Pave", true},  {L"pave", false},
                                {L"Pave1", false}, {L"Kerb", false}, {L"", false}};
  for (const Case& c : cases) {
    tglsReport report;
    report.rows.add(new tglsRow);
    report.rows[0]->station = 100.0;
    GlsCase made;
    const auto baseline = made.roadway.addCorridor(L"Road")->addBaseline();
    baseline->addRegion({100.0});
    baseline->addRoad(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}})->partList->items[0]->codeList =
        test::codesOf({L"Datum", c.code});
    CorridorList corridors;
    readCorridorData(made.host, corridors, report);
    releaseCorridors(corridors);
    EXPECT_EQ(!isNoCorridor(*report.rows[0]), c.counts) << testing::PrintToString(c.code);
  }
}

TEST_F(CorridorStage, AddsNothingOfAPartWhoseLastPointHasNoEdgeCode) {
  addRow(100.0);
  test::FakeSectionPart& part = section(*baseline(), 100.0).addPart({L"Pave"});
  part.addPoint(100.0, -4.0, 9.9, {L"ETW"}).addPoint(100.0, 0.0, 10.0, {L"ETW"}).addPoint(100.0, 4.0, 9.9, {L"Crown"});
  read();
  EXPECT_TRUE(isNoCorridor(row(0)));
}

TEST_F(CorridorStage, AddsAllPointsOfAPartWhoseLastPointAloneHasAnEdgeCode) {
  addRow(100.0);
  addRow(200.0);
  const auto made = baseline();
  test::FakeSection& first = section(*made, 100.0);
  first.addPart({L"Pave"}).addPoint(100.0, 0.0, 10.0).addPoint(100.0, -4.0, 9.9, {L"x", L"Fahrspurrand_Au\u00DFen"});
  first.addPart({L"Belag"}).addPoint(100.0, 0.0, 10.0).addPoint(100.0, 4.0, 9.9, {L"ETW", L"x"});
  section(*made, 200.0).addPart({L"Pave"}).addPoint(200.0, 0.0, 10.0).addPoint(200.0, -4.0, 9.9, {L"ETW1"});
  read();
  EXPECT_EQ(row(0).widthLeft, 4.0);
  EXPECT_EQ(row(0).widthRight, 4.0);
  EXPECT_TRUE(isNoCorridor(row(1)));
}

TEST_F(CorridorStage, PassesOverPartsWithoutPointsOrCodes) {
  addRow(100.0);
  test::FakeSection& made = section(*baseline(), 100.0);
  made.addPart({L"Pave"});
  made.addPart({L"Pave"}).pointList = nullptr;
  made.addPart({}).codeList = nullptr;
  made.partList->items.push_back(nullptr);
  made.addPart({L"Pave"}).addPoint(100.0, 0.0, 1.0, {L"ETW"}).pointList->items[0]->codeList = nullptr;
  made.addPart({L"Pave"}).pointList->items.push_back(nullptr);
  read();
  EXPECT_TRUE(isNoCorridor(row(0)));
}

TEST_F(CorridorStage, PassesOverAPointWhoseArrayHasAnotherShape) {
  const std::vector<HostArray<double>> odd{HostArray<double>::none(),
                                           HostArray<double>::of({100.0, -9.0, 1.0}, 1),
                                           HostArray<double>::of({100.0, -9.0}),
                                           HostArray<double>::of({100.0, -9.0, 1.0, 2.0}),
                                           {2, 0, {100.0, -9.0, 1.0}}};
  for (const HostArray<double>& array : odd) {
    tglsReport report;
    report.rows.add(new tglsRow);
    report.rows[0]->station = 100.0;
    GlsCase made;
    const auto baseline = made.roadway.addCorridor(L"Road")->addBaseline();
    baseline->addRegion({100.0});
    const auto section = std::make_shared<test::FakeSection>();
    baseline->sections[100.0] = section;
    section->addPart({L"Pave"})
        .addPoint(array)
        .addPoint(100.0, -4.0, 9.9)
        .addPoint(100.0, 0.0, 10.0)
        .addPoint(100.0, 4.0, 9.9, {L"ETW"});
    CorridorList corridors;
    readCorridorData(made.host, corridors, report);
    releaseCorridors(corridors);
    EXPECT_EQ(report.rows[0]->widthLeft, 4.0);
  }
}

TEST_F(CorridorStage, CountsPointsNearerThanATenMillionthOnceAndKeepsTheFirst) {
  addRow(100.0);
  test::FakeSection& made = section(*baseline(), 100.0);
  made.addPart({L"Pave"}).addPoint(100.0, 0.0, 10.0).addPoint(100.0, -4.0, 9.9, {L"ETW"});
  made.addPart({L"Pave"}).addPoint(100.0, 0.00000005, 77.0).addPoint(100.0, 4.0, 9.9, {L"ETW"});
  read();
  EXPECT_EQ(row(0).elevation, 10.0);
  EXPECT_EQ(row(0).widthRight, 4.0);
}

TEST_F(CorridorStage, PutsAPointALittleToTheLeftOfAnEarlierOneBehindIt) {
  addRow(100.0);
  // 0.0000005 apart: too far to be one, too near to be in order.
  section(*baseline(), 100.0)
      .addPart({L"Pave"})
      .addPoint(100.0, -4.0, 9.9)
      .addPoint(100.0, 0.0, 10.0)
      .addPoint(100.0, -0.0000005, 20.0, {L"ETW"});
  read();
  EXPECT_EQ(row(0).elevation, 10.0);
  EXPECT_EQ(row(0).edgeElevationRight, 20.0);
}

TEST_F(CorridorStage, LeavesRowsAloneWhereFewerThanTwoPointsStand) {
  addRow(100.0);
  road(100.0, {{0.0, 10.0}});
  road(100.0, {});
  read();
  EXPECT_TRUE(isNoCorridor(row(0)));
  EXPECT_EQ(row(0).elevation, 0.0);
}

// ---------------------------------------------------------------- two points only

TEST_F(CorridorStage, ReadsZerosForTheRightEdgeWhereNoSectionEverHadThreePoints) {
  addRow(100.0);
  road(100.0, {{-4.0, 9.9}, {0.0, 10.0}});
  read();
  EXPECT_EQ(row(0).widthRight, 0.0);
  EXPECT_EQ(row(0).heightRight, -10.0);
  EXPECT_EQ(row(0).edgeElevationRight, 0.0);
  EXPECT_EQ(row(0).crossFallRight, 0.0);
}

TEST_F(CorridorStage, ReadsForTheRightEdgeOfTwoPointsWhatAnEarlierSectionLeftAlsoOfAnotherCorridor) {
  for (const double station : {100.0, 200.0, 300.0}) addRow(station);
  road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {5.0, 7.5}});
  road(200.0, {{-3.0, 4.9}, {0.0, 5.0}});
  road(300.0, {{0.0, 8.0}});  // one point: nothing is filled and nothing overwritten
  road(300.0, {{0.0, 6.0}, {2.0, 5.0}});
  read();
  EXPECT_EQ(row(1).widthRight, 5.0);
  EXPECT_EQ(row(1).edgeElevationRight, 7.5);
  EXPECT_EQ(row(1).heightRight, 2.5);
  EXPECT_EQ(row(2).widthRight, 5.0);
  EXPECT_EQ(row(2).edgeElevationRight, 7.5);
  EXPECT_NEAR(row(2).crossFallRight, -50.0, 1e-9);
}

TEST_F(CorridorStage, BeginsANewRunWithoutWhatTheRunBeforeLeft) {
  addRow(100.0);
  addRow(200.0);
  const auto first = road(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {5.0, 7.5}});
  read();
  releaseCorridors(corridors_);
  first->sections.clear();
  road(200.0, {{-3.0, 4.9}, {0.0, 5.0}});
  read();
  EXPECT_EQ(row(1).widthRight, 0.0);
}

// ---------------------------------------------------------------- adding sections

TEST_F(CorridorStage, AddsASectionAtEveryRowThatHasNoneAndRebuilds) {
  addRow(100.0, L"BS1");
  addRow(150.0, L"SL1");
  addRow(200.0, L"BC1");
  const auto made = baseline();
  made->addRegion({100.0000005, 120.0});
  made->compute = [&](double station) {
    return made_.roadway.addCorridor(L"spare")->addBaseline()->addRoad(station, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  };
  made_.roadway.log.clear();
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"add 150.000000 SL1", L"add 200.000000 BC1", L"rebuild Road"));
  const framework::tpt3list& stations = corridors_[0]->baselines[0]->stations;
  ASSERT_EQ(stations.count(), 4);
  EXPECT_EQ(stations[2].first, 150.0);
  EXPECT_EQ(stations[3].first, 200.0);
  EXPECT_FALSE(isNoCorridor(row(1)));
}

TEST_F(CorridorStage, RebuildsTheCorridorOnceForEachOfItsRegionsAlsoWhereNothingIsMissing) {
  addRow(100.0);
  const auto corridor = made_.roadway.addCorridor(L"Road");
  const auto first = corridor->addBaseline();
  first->addRegion({100.0});
  first->addRegion({100.0});
  corridor->addBaseline()->addRegion({100.0});
  made_.roadway.addCorridor(L"Empty")->addBaseline();
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"rebuild Road", L"rebuild Road", L"rebuild Road"));
}

TEST_F(CorridorStage, AddsEveryRowToARegionOfNoStationsWhateverItsRange) {
  addRow(-5.0, L"a");
  addRow(100.0, L"b");
  const auto made = baseline();
  made->addRegion({});
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"add -5.000000 a", L"add 100.000000 b", L"rebuild Road"));
}

TEST_F(CorridorStage, TakesAFailedReadingOfTheStationsForARegionOfNone) {
  addRow(100.0, L"a");
  baseline()->addRegion({})->stations = HostArray<double>::none();
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"add 100.000000 a", L"rebuild Road"));
}

TEST_F(CorridorStage, AddsNothingToStationsOfAnotherShapeAndReadsNone) {
  addRow(100.0, L"a");
  baseline()->addRegion({})->stations = HostArray<double>{2, 0, {1.0, 2.0}};
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"rebuild Road"));
  EXPECT_EQ(corridors_[0]->baselines[0]->stations.count(), 0);
}

TEST_F(CorridorStage, AddsTwoRowsOfOneStationBoth) {
  addRow(100.0, L"a");
  addRow(100.0, L"b");
  baseline()->addRegion({50.0});
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"add 100.000000 a", L"add 100.000000 b", L"rebuild Road"));
}

TEST_F(CorridorStage, AddsASectionNextToOneAMillionthAway) {
  addRow(100.0, L"a");
  addRow(200.0, L"b");
  baseline()->addRegion({100.0000011, kNaN, 199.9999991});
  read(host::kIdOk);
  EXPECT_THAT(made_.roadway.log, ElementsAre(L"add 100.000000 a", L"rebuild Road"));
}

// ---------------------------------------------------------------- the order of sections

TEST_F(CorridorStage, OrdersTheSectionsOfAllRegionsByStationAndKeepsEqualOnes) {
  const auto made = baseline();
  made->addRegion({300.0, 100.0});
  made->addRegion({100.0, 200.0});
  read();
  std::vector<double> stations;
  for (const framework::tpt3& entry : corridors_[0]->baselines[0]->stations) stations.push_back(entry.first);
  EXPECT_THAT(stations, ElementsAre(100.0, 100.0, 200.0, 300.0));
}

TEST_F(CorridorStage, PassesOverWhatTheHostLeavesOut) {
  addRow(100.0);
  made_.roadway.document->corridorList->items.push_back(nullptr);
  const auto corridor = made_.roadway.addCorridor(L"Road");
  corridor->baselineList->items.push_back(nullptr);
  corridor->addBaseline()->regionList = nullptr;
  const auto made = corridor->addBaseline();
  made->profileObject = nullptr;
  made->regionList->items.push_back(nullptr);
  made->addRegion({7.0})->hasSet = false;
  made->addRegion({90.0, 100.0});  // no section stands at 90
  made->addRoad(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  read();
  ASSERT_EQ(corridors_.size(), 1);
  EXPECT_EQ(corridors_[0]->baselines.size(), 2);
  EXPECT_EQ(corridors_[0]->baselines[1]->stations.count(), 2);
  EXPECT_EQ(row(0).elevation, 10.0);  // a baseline without a profile lies at 0

  made_.roadway.document->corridorList = nullptr;
  releaseCorridors(corridors_);
  read();
  EXPECT_EQ(corridors_.size(), 0);
}

}  // namespace
}  // namespace lvx::gls
