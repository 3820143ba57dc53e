#include "gls/gls_assembly.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/exceptions.h"
#include "host/dialog_window.h"
#include "plain_gls/gls_case.h"

namespace lvx::gls {
namespace {

using framework::InvalidArgumentException;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.141592653589793;

class Assembly : public testing::Test, protected GlsCase {
 protected:
  void collect() { GlsCase::collect(report_); }

  /// Names of the station rows.
  [[nodiscard]] std::vector<CString> names() const {
    std::vector<CString> all;
    for (ArrayIndex i = 0; i < report_.rows.size(); i += 2) all.push_back(report_.rows[i]->name);
    return all;
  }
  [[nodiscard]] std::vector<double> stations() const {
    std::vector<double> all;
    for (ArrayIndex i = 0; i < report_.rows.size(); i += 2) all.push_back(report_.rows[i]->station);
    return all;
  }
  [[nodiscard]] std::vector<CString> notes() const {
    std::vector<CString> all;
    for (const tglsRow* row : report_.rows) all.push_back(row->notes);
    return all;
  }
  [[nodiscard]] std::vector<std::int32_t> horTypes() const {
    std::vector<std::int32_t> all;
    for (const tglsRow* row : report_.rows) all.push_back(row->horType);
    return all;
  }
  [[nodiscard]] static std::vector<std::int32_t> valuesOf(const framework::CArray<std::int32_t>& list) {
    return {list.begin(), list.end()};
  }
  [[nodiscard]] const tglsRow& row(ArrayIndex i) const { return *report_.rows[i]; }
  /// The station row at `station`.
  [[nodiscard]] const tglsRow& rowAt(double station) const {
    for (ArrayIndex i = 0; i < report_.rows.size(); i += 2)
      if (row(i).station == station) return row(i);
    throw std::out_of_range("no row at that station");
  }

  /// A straight profile, so that the report needs no curve.
  void useStraightProfile() { points = profileOf({{0.0, 100.0}, {1000.0, 110.0}}); }

  tglsReport report_;
};

// ---------------------------------------------------------------- names of transitions

TEST_F(Assembly, NamesEachPairOfElements) {
  struct Case {
    const char* pair;
    std::vector<host::taxel> elements;
    std::vector<CString> names;
  };
  const auto in = clothoidIn(50.0, 300.0);
  const auto out = clothoidOut(50.0, 300.0);
  const std::vector<Case> cases{
      {"line", {line(50)}, {L""}},
      {"arc", {arc(50, 300)}, {L"BC1", L"EC1"}},
      {"in", {in}, {L"BS1", L"ES1"}},
      {"out", {out}, {L"BS1", L"ES1"}},
      {"line line", {line(50), line(50)}, {L"ILL1-2", L""}},
      {"line arc", {line(50), arc(50, 300)}, {L"BC1", L"EC1"}},
      {"line in", {line(50), in}, {L"BS1", L"ES1"}},
      {"line out", {line(50), out}, {L"BS1", L"ES1"}},
      {"arc line", {arc(50, 300), line(50)}, {L"BC1", L"EC1", L""}},
      {"arc arc", {arc(50, 300), arc(50, 200)}, {L"BC1", L"EC1, BC2", L"EC2"}},
      {"arc in", {arc(50, 300), in}, {L"BC1", L"EC1", L"ES1"}},
      {"arc out", {arc(50, 300), out}, {L"BC1", L"EC1", L"ES1"}},
      {"in line", {in, line(50)}, {L"BS1", L"ES1", L""}},
      {"out line", {out, line(50)}, {L"BS1", L"ES1", L""}},
      {"in arc", {in, arc(50, 300)}, {L"BS1", L"BC1", L"EC1"}},
      {"out arc", {out, arc(50, 300)}, {L"BS1", L"BC1", L"EC1"}},
      {"in out", {in, out}, {L"BS1", L"BC1, EC1", L"ES1"}},
      {"in in", {in, in}, {L"BS1", L"ES1, BS2", L"ES2"}},
      {"out out", {out, out}, {L"BS1", L"ES1, BS2", L"ES2"}},
      {"out in", {out, in}, {L"BS1", L"ES1, BS2", L"ES2"}},
  };
  ASSERT_EQ(cases.size(), 20U);
  for (const Case& c : cases) {
    GlsCase made;
    made.elements = c.elements;
    made.points = profileOf({{0.0, 100.0}, {1000.0, 110.0}});
    made.addSampleLine(L"start", -1.0);  // so that a lone line has a stretch too
    tglsReport report;
    made.collect(report);
    std::vector<CString> names;
    for (ArrayIndex i = 2; i < report.rows.size(); i += 2) names.push_back(report.rows[i]->name);
    EXPECT_EQ(names, c.names) << c.pair;
  }
}

TEST_F(Assembly, GivesTheClothoidsOfOneArcOneNumberAndCountsOn) {
  elements = {line(50),   clothoidIn(50, 300), arc(50, 300),        clothoidOut(50, 300),
              line(50),   arc(50, 200),        arc(50, 100),        line(50),
              line(50),   clothoidIn(50, 90),  clothoidOut(50, 90), clothoidIn(50, 80),
              arc(50, 80)};
  useStraightProfile();
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BS1", L"BC1", L"EC1", L"ES1", L"BC2", L"EC2, BC3", L"EC3", L"ILL3-4", L"BS2",
                                   L"BC4, EC4", L"ES2, BS3", L"BC5", L"EC5"));
}

TEST_F(Assembly, GivesAnUnknownElementNoRowAndTakesItForAClothoidBehind) {
  auto odd = line(50);
  odd.type = 7;
  elements = {line(50), odd, line(50), odd};
  useStraightProfile();
  addSampleLine(L"start", 0.0);
  collect();
  EXPECT_THAT(names(), ElementsAre(L"start", L"ES1", L"ES2"));
  EXPECT_THAT(stations(), ElementsAre(0.0, 100.0, 200.0));
  ASSERT_EQ(report_.horElems.size(), 4);
  EXPECT_EQ(report_.horElems[1]->type, kNoElement);
  EXPECT_EQ(report_.horElems[1]->parameter, 0.0);
  EXPECT_EQ(report_.horElems[1]->length, 50.0);
}

TEST_F(Assembly, GivesAnAlignmentThatStartsWithALineNoRowAtItsStart) {
  startStation = 1000.0;
  elements = {line(100), arc(50, 300)};
  points = profileOf({{1000.0, 1.0}, {2000.0, 2.0}});
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"EC1"));
  EXPECT_THAT(stations(), ElementsAre(1100.0, 1150.0));
}

// ---------------------------------------------------------------- horizontal elements

TEST_F(Assembly, KeepsTheHorizontalElementsWithTheirParameters) {
  startStation = 10.0;
  elements = {line(100), clothoidIn(60, -240), arc(80, -240), clothoidOut(50, 150, -300), clothoidOut(40, 90)};
  useStraightProfile();
  collect();
  ASSERT_EQ(report_.horElems.size(), 5);
  const auto& h = report_.horElems;
  EXPECT_EQ(h[0]->start, 10.0);
  EXPECT_EQ(h[0]->end, 110.0);
  EXPECT_EQ(h[0]->parameter, 0.0);
  EXPECT_EQ(h[1]->type, 2);
  EXPECT_DOUBLE_EQ(h[1]->parameter, 120.0);  // the root of 60 times 240
  EXPECT_EQ(h[2]->parameter, 240.0);
  EXPECT_DOUBLE_EQ(h[3]->parameter, std::sqrt(50.0 * 150.0 / (1.0 - 150.0 / 300.0)));
  EXPECT_DOUBLE_EQ(h[4]->parameter, 60.0);
  EXPECT_EQ(h[4]->start, 300.0);
  EXPECT_EQ(h[4]->end, 340.0);
}

TEST_F(Assembly, MeasuresTheSmallerAngleBetweenTwoDirectionsInGon) {
  elements = {arc(50, 300, 0.0, kPi / 4.0), arc(50, 300, kPi / 2.0, kPi / 4.0), arc(50, 300, 0.1, 2.0 * kPi - 0.1),
              arc(50, 300, 0.0, kPi), line(10, 2.5)};
  useStraightProfile();
  collect();
  EXPECT_DOUBLE_EQ(report_.horElems[0]->angle, 50.0);
  EXPECT_DOUBLE_EQ(report_.horElems[1]->angle, 50.0);
  EXPECT_NEAR(report_.horElems[2]->angle, 0.2 * 200.0 / kPi, 1e-10);
  EXPECT_DOUBLE_EQ(report_.horElems[3]->angle, 200.0);
  EXPECT_EQ(report_.horElems[4]->angle, 0.0);
}

// ---------------------------------------------------------------- labels

TEST_F(Assembly, PutsASampleLineNearATransitionBehindItsName) {
  elements = {arc(100, 300), line(100)};
  useStraightProfile();
  addSampleLine(L"SL1", 99.99995);
  addSampleLine(L"SL2", 50.0);
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"SL2", L"EC1, SL1", L""));
}

TEST_F(Assembly, DropsASampleLineBehindTheAlignmentAndGivesOneInFrontARow) {
  elements = {arc(100, 300)};
  useStraightProfile();
  addSampleLine(L"behind", 100.00011);
  addSampleLine(L"in front", -20.0);
  addSampleLine(L"at the end", 100.00009);
  collect();
  EXPECT_THAT(names(), ElementsAre(L"in front", L"BC1", L"EC1, at the end"));
}

TEST_F(Assembly, TakesOnlyTheSampleLinesOfTheGroup) {
  elements = {arc(100, 300)};
  useStraightProfile();
  addSampleLine(L"mine", 50.0);
  axis->addGroup(L"other")->addLine(L"other", 60.0);
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"mine", L"EC1"));
}

TEST_F(Assembly, NumbersTheVerticalCurvesAndJoinsTheEndsOfTwoThatTouch) {
  elements = {arc(400, 300)};
  points = profileOf({{0, 0}, {100, 4, 30}, {160, 2, 30}, {400, 5}});
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"BVC1", L"PVI1", L"EVC1, BVC2", L"PVI2", L"EVC2", L"EC1"));
  EXPECT_THAT(valuesOf(report_.verBreakRows), ElementsAre(4, 8));
}

// ---------------------------------------------------------------- vertical elements

TEST_F(Assembly, KeepsATangentForEachPairOfIntersectionPoints) {
  elements = {arc(400, 300)};
  points = profileOf({{0, 0}, {100, 4, 20}, {200, 2, 30}, {400, 12}});
  collect();
  const auto& v = report_.verElems;
  ASSERT_EQ(v.size(), 3);
  EXPECT_EQ(v[0]->type, 1);
  EXPECT_EQ(v[0]->gradeChange, 0.0);
  EXPECT_DOUBLE_EQ(v[0]->grade, 4.0);
  EXPECT_EQ(v[0]->length, 100.0);
  EXPECT_EQ(v[0]->curveStart, 80.0);
  EXPECT_EQ(v[0]->curveEnd, 120.0);
  EXPECT_DOUBLE_EQ(v[0]->radius, -40.0 / 0.06);
  EXPECT_EQ(v[0]->halfLength, 20.0);
  EXPECT_DOUBLE_EQ(v[1]->gradeChange, 6.0);
  EXPECT_DOUBLE_EQ(v[1]->grade, -2.0);
  EXPECT_DOUBLE_EQ(v[1]->radius, 60.0 / 0.07);
  EXPECT_EQ(v[2]->type, 0);
  EXPECT_DOUBLE_EQ(v[2]->gradeChange, 7.0);
  EXPECT_DOUBLE_EQ(v[2]->grade, 5.0);
  EXPECT_EQ(v[2]->length, 200.0);
  EXPECT_EQ(v[2]->radius, 0.0);
}

TEST_F(Assembly, AsksForTheProfileOfASitelessAlignmentUnderTheEmptySite) {
  elements = {arc(400, 300)};
  useStraightProfile();
  siteName = L"*none*";
  collect();
  EXPECT_THAT(sitesAsked, ElementsAre(L""));
  EXPECT_THAT(profilesAsked, ElementsAre(L"P"));
}

TEST_F(Assembly, AsksForTheProfileUnderTheNameOfTheSite) {
  const auto site = drawing.addSite(L"North");
  axis = drawing.addAlignment(site, L"A");
  elements = {arc(400, 300)};
  useStraightProfile();
  siteName = L"North";
  collect();
  EXPECT_THAT(sitesAsked, ElementsAre(L"North"));
}

// ---------------------------------------------------------------- elevations and ordinates

class CurvedProfile : public Assembly {
 protected:
  CurvedProfile() {
    elements = {arc(400, 300)};
    points = profileOf({{100, 50}, {200, 54, 40}, {300, 52}});
  }
};

TEST_F(CurvedProfile, MeasuresAPointInACurveAgainstTheTangents) {
  addSampleLine(L"in", 190.0);
  addSampleLine(L"out", 220.0);
  collect();
  const double radius = -80.0 / 0.06;
  EXPECT_NEAR(rowAt(190.0).tangentElevation, 53.6, 1e-9);
  EXPECT_NEAR(rowAt(190.0).curveY, 30.0 * 30.0 / (2.0 * radius), 1e-9);
  EXPECT_EQ(rowAt(190.0).curveX, 30.0);
  EXPECT_NEAR(rowAt(220.0).tangentElevation, 53.6, 1e-9);
  EXPECT_NEAR(rowAt(220.0).curveY, 20.0 * 20.0 / (2.0 * radius), 1e-9);
  EXPECT_EQ(rowAt(220.0).curveX, 20.0);
  EXPECT_NEAR(rowAt(200.0).tangentElevation, 54.0, 1e-9);
  EXPECT_NEAR(rowAt(200.0).elevation, 54.0 + 40.0 * 40.0 / (2.0 * radius), 1e-9);
  EXPECT_EQ(rowAt(200.0).curveX, 40.0);
}

TEST_F(CurvedProfile, ShowsOrdinatesOfZeroOnTheEndsOfACurve) {
  collect();
  for (const double station : {160.0, 240.0}) {
    EXPECT_EQ(rowAt(station).curveX, 0.0);
    EXPECT_NEAR(rowAt(station).curveY, 0.0, 1e-9);
  }
}

TEST_F(CurvedProfile, HasNoOrdinateOutsideCurves) {
  addSampleLine(L"before", 150.0);
  collect();
  EXPECT_EQ(rowAt(150.0).curveX, kOutsideCurves);
  EXPECT_EQ(rowAt(150.0).curveY, 0.0);
  EXPECT_EQ(rowAt(150.0).elevation, 52.0);
}

TEST_F(CurvedProfile, GoesOnAlongTheEndTangentsBeyondTheProfile) {
  collect();
  EXPECT_NEAR(rowAt(0.0).elevation, 46.0, 1e-9);
  EXPECT_EQ(rowAt(0.0).tangentElevation, 0.0);
  EXPECT_EQ(rowAt(0.0).curveY, rowAt(0.0).elevation);
  EXPECT_NEAR(rowAt(400.0).elevation, 50.0, 1e-9);
  EXPECT_EQ(rowAt(400.0).tangentElevation, 0.0);
}

TEST_F(CurvedProfile, OverwritesTheElevationThatACorridorGaveButNothingElse) {
  const auto baseline = roadway.addCorridor(L"Road")->addBaseline();
  baseline->addRegion({200.0});
  baseline->addRoad(200.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
  collect();
  EXPECT_EQ(rowAt(200.0).edgeElevationLeft, 9.9);
  EXPECT_NEAR(rowAt(200.0).elevation, 53.4, 1e-9);
  EXPECT_TRUE(isNoCorridor(rowAt(160.0)));
}

TEST_F(CurvedProfile, TakesTheFirstPieceWhereCurvesOverlap) {
  points = profileOf({{0, 0}, {100, 4, 60}, {150, 2, 40}, {400, 5}});
  addSampleLine(L"both", 130.0);
  collect();
  // In the first curve, in the tangent between that falls back from 160 to 110, and in the second curve.
  const double radius = -120.0 / 0.08;
  EXPECT_NEAR(rowAt(130.0).elevation, 4.0 - 30.0 * 0.04 + 30.0 * 30.0 / (2.0 * radius), 1e-9);
  EXPECT_NEAR(rowAt(130.0).tangentElevation, 4.0 - 30.0 * 0.04, 1e-9);
  EXPECT_EQ(rowAt(130.0).curveX, 30.0);
}

TEST_F(CurvedProfile, GivesARowInAGapOfTheProfileTheElevationOfTheRowAbove) {
  points = profileOf({{0, 10}, {200, 12, 0}, {400, 16}});
  points[1].halfLength = kNaN;  // neither tangent has an end then, so no piece holds any station
  addSampleLine(L"before", -5.0);
  addSampleLine(L"within", 300.0);
  collect();
  EXPECT_THAT(names(), ElementsAre(L"EVC1", L"PVI1", L"BVC1", L"before", L"BC1", L"within", L"EC1"));
  EXPECT_EQ(rowAt(200.0).elevation, 0.0);  // no row above has one
  EXPECT_NEAR(rowAt(-5.0).elevation, 9.95, 1e-9);
  EXPECT_EQ(rowAt(300.0).elevation, rowAt(-5.0).elevation);
  EXPECT_EQ(rowAt(300.0).tangentElevation, 0.0);
}

TEST_F(CurvedProfile, TreatsAPointWithoutACurveAsACornerOfTheTangents) {
  points = profileOf({{0, 10}, {200, 12, 0}, {400, 16}});
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"BVC1, PVI1, EVC1", L"EC1"));
  EXPECT_EQ(rowAt(200.0).elevation, 12.0);
  EXPECT_EQ(rowAt(200.0).curveX, 0.0);
  EXPECT_EQ(rowAt(200.0).curveY, 0.0);
  EXPECT_THAT(valuesOf(report_.verBreakRows), IsEmpty());  // the row's first label hides the point
}

// ---------------------------------------------------------------- distance rows

TEST_F(Assembly, PutsADistanceRowBetweenEveryTwoStationRows) {
  elements = {arc(100, 300), line(50.5)};
  useStraightProfile();
  addSampleLine(L"SL", 30.25);
  collect();
  ASSERT_EQ(report_.rows.size(), 7);
  EXPECT_EQ(row(1).distance, 30.25);
  EXPECT_EQ(row(3).distance, 69.75);
  EXPECT_EQ(row(5).distance, 50.5);
  for (ArrayIndex i = 1; i < 7; i += 2) {
    EXPECT_TRUE(isDistanceRow(i));
    EXPECT_TRUE(row(i).name.empty());
    EXPECT_TRUE(isNoCorridor(row(i)));
    EXPECT_EQ(row(i).curveX, 0.0);
  }
}

// ---------------------------------------------------------------- horizontal columns

TEST_F(Assembly, ShowsAnElementOnTheMiddleRowOfItsBlock) {
  elements = {arc(100, 300), line(100), clothoidIn(100, 300)};
  useStraightProfile();
  addSampleLine(L"a", 150.0);
  addSampleLine(L"b", 220.0);
  addSampleLine(L"c", 250.0);
  collect();
  // One stretch, two stretches, three stretches.
  EXPECT_THAT(stations(), ElementsAre(0.0, 100.0, 150.0, 200.0, 220.0, 250.0, 300.0));
  EXPECT_THAT(horTypes(), ElementsAre(-1, 1, -1, -1, 0, -1, -1, -1, -1, 2, -1, -1, -1));
  EXPECT_EQ(row(1).horParameter, 300.0);
  EXPECT_EQ(row(1).horLength, 100.0);
  EXPECT_DOUBLE_EQ(row(9).horParameter, std::sqrt(30000.0));
  EXPECT_THAT(valuesOf(report_.horBreakRows), ElementsAre(2, 6));
}

TEST_F(Assembly, BeginsTheFirstBlockAtTheFirstRowWhereTheFirstElementHasNone) {
  elements = {line(100), arc(100, 300)};
  useStraightProfile();
  addSampleLine(L"a", 60.0);
  collect();
  EXPECT_THAT(stations(), ElementsAre(60.0, 100.0, 200.0));
  EXPECT_THAT(horTypes(), ElementsAre(-1, 0, -1, 1, -1));
}

TEST_F(Assembly, ShowsAnElementOnlyInItsRowsFromTheSecondOn) {
  // The first transition is the first row: the first line shows nowhere, and nothing closes there.
  elements = {line(100), arc(100, 300)};
  useStraightProfile();
  collect();
  EXPECT_THAT(horTypes(), ElementsAre(-1, 1, -1));
  EXPECT_THAT(valuesOf(report_.horBreakRows), IsEmpty());
}

TEST_F(Assembly, ClosesABlockAtARowAMillionthFromATransition) {
  elements = {arc(100, 300), line(0.0000009), arc(100, 200)};
  useStraightProfile();
  collect();
  EXPECT_THAT(stations(), ElementsAre(0.0, 100.0, 100.0000009, 200.0000009));
  // At the third row the first element is still found: the search goes from the first on.
  EXPECT_EQ(row(1).horParameter, 300.0);
  EXPECT_EQ(row(3).horParameter, 300.0);
  EXPECT_EQ(row(5).horParameter, 200.0);
  EXPECT_THAT(valuesOf(report_.horBreakRows), ElementsAre(2, 4));
}

// ---------------------------------------------------------------- vertical notes

TEST_F(Assembly, SpreadsTheVerticalDesignOverTheRows) {
  elements = {arc(400, 300)};
  points = profileOf({{0, 0}, {100, 4, 20}, {250, 1, 30}, {400, 1}});
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"BVC1", L"PVI1", L"EVC1", L"BVC2", L"PVI2", L"EVC2", L"EC1"));
  EXPECT_THAT(notes(), ElementsAre(L"", L"Rise 4.00%", L"Length 100.00 m", L"Crest R = 667 m", L"T = 20.00 m",
                                   L"Change = 6.00%", L"Fall 2.00%", L"Length 150.00 m", L"", L"Sag R = 3000 m",
                                   L"T = 30.00 m", L"Change = 2.00% , 0.00%", L"Length 150.00 m", L"", L""));
  EXPECT_THAT(valuesOf(report_.verBreakRows), ElementsAre(4, 10));
}

TEST_F(Assembly, JoinsNotesThatFallOnOneRowByTwoJoiners) {
  elements = {arc(400, 300)};
  points = profileOf({{0, 0}, {100, 4, 50}, {200, 1, 50}, {400, 1}});
  collect();
  EXPECT_THAT(names(), ElementsAre(L"BC1", L"BVC1", L"PVI1", L"EVC1, BVC2", L"PVI2", L"EVC2", L"EC1"));
  EXPECT_THAT(notes(), ElementsAre(L"", L"Rise 4.00%", L"Length 100.00 m", L"Crest R = 1429 m", L"T = 50.00 m",
                                   L"Change = 7.00% ,Fall 3.00%", L"Length 100.00 m", L"Sag R = 3333 m", L"T = 50.00 m",
                                   L"Change = 3.00% , 0.00%", L"Length 200.00 m", L"", L""));
}

TEST_F(Assembly, CountsASampleLineNamedLikeAnIntersectionPoint) {
  // PVX takes the part of PVI2, which hides behind the transition at its station.
  elements = {arc(250, 300), arc(150, 200)};
  points = profileOf({{0, 0}, {100, 4, 20}, {250, 1, 30}, {400, 1}});
  addSampleLine(L"PVX", 110.0);
  collect();
  EXPECT_THAT(names(),
              ElementsAre(L"BC1", L"BVC1", L"PVI1", L"PVX", L"EVC1", L"BVC2", L"EC1, BC2, PVI2", L"EVC2", L"EC2"));
  EXPECT_THAT(notes(),
              ElementsAre(L"", L"Rise 4.00%", L"Length 100.00 m", L"Crest R = 667 m", L"T = 20.00 m ,Fall 2.00%",
                          L"Change = 6.00% ,Length 150.00 m ,Sag R = 3000 m", L"T = 30.00 m", L"Change = 2.00%", L"",
                          L"", L" 0.00%", L"Length 150.00 m", L"", L"", L"", L"", L""));
  EXPECT_THAT(valuesOf(report_.verBreakRows), ElementsAre(4, 6));
}

TEST_F(Assembly, CountsARowByTheFirstTwoLettersOfItsFirstLabel) {
  elements = {arc(100, 300), arc(300, 200)};
  points = profileOf({{0, 0}, {100, 4, 20}, {250, 1, 30}, {400, 1}});
  collect();
  // At 100 the arcs meet: the label of the intersection point stands second and hides, so the row of PVI2 takes the
  // data of the first tangent.
  EXPECT_EQ(rowAt(100.0).name, L"EC1, BC2, PVI1");
  EXPECT_THAT(valuesOf(report_.verBreakRows), ElementsAre(10));
  EXPECT_EQ(rowAt(250.0).notes, L"T = 20.00 m");
  EXPECT_EQ(row(11).notes, L"Change = 6.00% ,Fall 2.00%");
}

TEST_F(Assembly, TakesThePercentSignsOfMessagesAsTheyStand) {
  host.useMessageBytes("334 PVI\r\n337 %s%n\r\n324 50%\r\n");
  elements = {arc(400, 300)};
  useStraightProfile();
  addSampleLine(L"SL", 200.0);
  collect();
  EXPECT_EQ(row(1).notes, L"50% 1.00%");
  EXPECT_EQ(row(2).notes, L"%s%n 1000.00 m");
}

// ---------------------------------------------------------------- what fails

TEST_F(Assembly, FailsForAnAlignmentThatIsNotThere) {
  elements = {arc(400, 300)};
  useStraightProfile();
  EXPECT_THROW(collectGlsRows(host, drawing.document, drawing.database, L"", L"Z", L"G", L"P", report_),
               InvalidArgumentException);
  EXPECT_EQ(report_.rows.size(), 0);
  EXPECT_THAT(user.asked, IsEmpty());
}

TEST_F(Assembly, FailsForAnAlignmentWithoutElements) {
  useStraightProfile();
  EXPECT_THROW(collect(), InvalidArgumentException);
}

TEST_F(Assembly, FailsForAProfileOfFewerThanTwoPointsAfterTheCorridors) {
  for (const std::vector<Pvi>& pvis : {std::vector<Pvi>{}, std::vector<Pvi>{{0, 10}}}) {
    elements = {arc(400, 300)};
    points = profileOf(pvis);
    tglsReport report;
    EXPECT_THROW(GlsCase::collect(report), InvalidArgumentException);
    EXPECT_EQ(report.rows.size(), 3);
    EXPECT_EQ(report.rows[0]->elevation, 0.0);
  }
  EXPECT_EQ(user.asked.size(), 2U);
}

TEST_F(Assembly, FailsForALoneLineWithAStraightProfileAndLeavesItsClosingRow) {
  elements = {line(1000)};
  useStraightProfile();
  EXPECT_THROW(collect(), InvalidArgumentException);
  ASSERT_EQ(report_.rows.size(), 1);
  EXPECT_EQ(row(0).name, L"");
  EXPECT_EQ(row(0).station, 1000.0);
  EXPECT_EQ(row(0).elevation, 110.0);
}

TEST_F(Assembly, FailsWhereTheFirstRowIsAnIntersectionPoint) {
  elements = {arc(400, 300)};
  useStraightProfile();
  addSampleLine(L"PVX", -10.0);
  EXPECT_THROW(collect(), InvalidArgumentException);
}

TEST_F(Assembly, FailsForMoreIntersectionRowsThanTangents) {
  elements = {arc(400, 300)};
  points = profileOf({{0, 0}, {100, 4, 20}, {400, 1}});
  addSampleLine(L"PV", 300.0);
  EXPECT_THROW(collect(), InvalidArgumentException);
  EXPECT_THAT(valuesOf(report_.verBreakRows), ElementsAre(4, 8));
}

TEST_F(Assembly, FreesItsListsWhereASampleLineFails) {
  // The leak checker of the sanitized run looks at what stays behind.
  elements = {arc(400, 300)};
  useStraightProfile();
  group->addLine(L"broken", 10.0)->addVertex(host::HostArray<double>::none());
  EXPECT_THROW(collect(), framework::AutomationException);
  EXPECT_EQ(report_.rows.size(), 2);
}

// ---------------------------------------------------------------- adding sections

TEST_F(Assembly, AsksForSectionsUnderTheNamesOfTheStationRowsBeforeTheDistanceRowsStand) {
  elements = {arc(100, 300)};
  useStraightProfile();
  addSampleLine(L"SL", 100.0);
  roadway.addCorridor(L"Road")->addBaseline()->addRegion({50.0});
  user.code = host::kIdOk;
  collect();
  EXPECT_THAT(roadway.log, ElementsAre(L"add 0.000000 BC1", L"add 100.000000 EC1, SL", L"rebuild Road"));
}

}  // namespace
}  // namespace lvx::gls
