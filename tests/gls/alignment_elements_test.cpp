#include "gls/alignment_elements.h"

#include <gtest/gtest.h>

#include "doubles/fake_model.h"
#include "plain_gls/gls_case.h"

namespace lvx::gls {
namespace {

using framework::OwnedList;

// ---------------------------------------------------------------- finding the alignment

class FindAlignment : public testing::Test {
 protected:
  FindAlignment() {
    outside_ = drawing_.addAlignment(nullptr, L"A");
    drawing_.addAlignment(nullptr, L"A");
    const auto empty = drawing_.addSite(L"North");
    drawing_.addAlignment(empty, L"B");
    const auto north = drawing_.addSite(L"North");
    north_ = drawing_.addAlignment(north, L"A");
    drawing_.addAlignment(north, L"A");
    drawing_.addAlignment(drawing_.addSite(L"North"), L"A");
    drawing_.addAlignment(drawing_.addSite(L"*Star"), L"S");
  }

  /// The alignment found, or the one that was there before.
  host::Ref<host::QmtAlignment> find(const CString& site, const CString& name, std::int32_t expected) {
    host::Ref<host::QmtAlignment> alignment = before_;
    EXPECT_EQ(findAlignment(drawing_.document, drawing_.database, site, name, alignment), expected);
    return alignment;
  }

  test::FakeDrawing drawing_;
  test::Ref<test::FakeAlignment> outside_;
  test::Ref<test::FakeAlignment> north_;
  host::Ref<host::QmtAlignment> before_ = std::make_shared<test::FakeAlignment>();
};

TEST_F(FindAlignment, LooksOutsideTheSitesForAnEmptySiteName) { EXPECT_EQ(find(L"", L"A", 1), outside_); }

TEST_F(FindAlignment, LooksOutsideTheSitesWhateverStandsBehindAStar) {
  EXPECT_EQ(find(L"*", L"A", 1), outside_);
  EXPECT_EQ(find(L"*none*", L"A", 1), outside_);
  EXPECT_EQ(find(L"*Star", L"S", 0), before_);
}

TEST_F(FindAlignment, GoesOnToTheNextSiteOfTheNameUntilOneHasTheAlignment) {
  EXPECT_EQ(find(L"North", L"A", 1), north_);
}

TEST_F(FindAlignment, ComparesNamesWholeAndCaseSensitively) {
  for (const wchar_t* site : {L"north", L"Nort", L"North "}) EXPECT_EQ(find(site, L"A", 0), before_);
  for (const wchar_t* name : {L"a", L"", L"A "}) EXPECT_EQ(find(L"North", name, 0), before_);
}

TEST_F(FindAlignment, FindsNothingWhereTheModelHandsOutNothing) {
  host::Ref<host::QmtAlignment> alignment = before_;
  EXPECT_EQ(findAlignment(nullptr, nullptr, L"", L"A", alignment), 0);
  EXPECT_EQ(findAlignment(nullptr, nullptr, L"North", L"A", alignment), 0);
  EXPECT_EQ(alignment, before_);
}

// ---------------------------------------------------------------- the chain of a profile

class VerticalChain : public testing::Test {
 protected:
  void build(const std::vector<host::tvert>& points) {
    for (const host::tvert& point : points) records_.get().add(new host::tvert(point));
    buildVerticalElements(records_.get(), chain_.get());
  }
  [[nodiscard]] const tverticalElement& piece(framework::ArrayIndex i) const { return *chain_.get()[i]; }
  [[nodiscard]] framework::ArrayIndex size() const { return chain_.get().size(); }

  OwnedList<host::tvert> records_;
  OwnedList<tverticalElement> chain_;
};

TEST_F(VerticalChain, StaysEmptyBelowTwoPoints) {
  build({});
  EXPECT_EQ(size(), 0);
  build(profileOf({{100.0, 5.0}}));
  EXPECT_EQ(size(), 0);
}

TEST_F(VerticalChain, IsOneTangentBetweenTwoPoints) {
  build(profileOf({{100.0, 5.0}, {200.0, 8.0}}));
  ASSERT_EQ(size(), 1);
  EXPECT_EQ(piece(0).startStation, 100.0);
  EXPECT_EQ(piece(0).startElevation, 5.0);
  EXPECT_DOUBLE_EQ(piece(0).startGrade, 0.03);
  EXPECT_EQ(piece(0).endStation, 200.0);
  EXPECT_EQ(piece(0).radius, 0.0);
}

TEST_F(VerticalChain, AlternatesTangentsAndCurves) {
  build(profileOf({{0.0, 0.0}, {100.0, 4.0, 20.0}, {200.0, 2.0, 30.0}, {300.0, 5.0}}));
  ASSERT_EQ(size(), 5);
  EXPECT_EQ(piece(0).endStation, 80.0);

  const tverticalElement& crest = piece(1);
  EXPECT_EQ(crest.startStation, 80.0);
  EXPECT_DOUBLE_EQ(crest.startElevation, 3.2);
  EXPECT_EQ(crest.startGrade, 0.04);
  EXPECT_EQ(crest.endStation, 120.0);
  EXPECT_DOUBLE_EQ(crest.endElevation, 3.6);
  EXPECT_EQ(crest.endGrade, -0.02);
  EXPECT_DOUBLE_EQ(crest.radius, -40.0 / 0.06);
  EXPECT_EQ(crest.halfLength, 20.0);

  EXPECT_EQ(piece(2).startStation, 120.0);
  EXPECT_DOUBLE_EQ(piece(2).startElevation, 3.6);
  EXPECT_EQ(piece(2).startGrade, -0.02);
  EXPECT_EQ(piece(2).endStation, 170.0);
  EXPECT_EQ(piece(2).radius, 0.0);

  EXPECT_DOUBLE_EQ(piece(3).radius, 60.0 / 0.05);  // a sag
  EXPECT_EQ(piece(4).startStation, 230.0);
  EXPECT_EQ(piece(4).endStation, 300.0);
}

TEST_F(VerticalChain, KeepsACurveOfNoLengthBetweenTwoTangents) {
  build(profileOf({{0.0, 0.0}, {100.0, 4.0, 0.0}, {200.0, 2.0}}));
  ASSERT_EQ(size(), 3);
  EXPECT_EQ(piece(1).startStation, 100.0);
  EXPECT_EQ(piece(1).endStation, 100.0);
  EXPECT_EQ(piece(1).radius, 0.0);
  EXPECT_EQ(piece(2).startStation, 100.0);
}

TEST_F(VerticalChain, FallsBackInItsStationsWhereCurvesOverlap) {
  build(profileOf({{0.0, 0.0}, {100.0, 4.0, 60.0}, {150.0, 2.0, 40.0}, {300.0, 5.0}}));
  ASSERT_EQ(size(), 5);
  EXPECT_EQ(piece(1).endStation, 160.0);
  EXPECT_EQ(piece(2).startStation, 160.0);
  EXPECT_EQ(piece(2).endStation, 110.0);
  EXPECT_EQ(piece(3).startStation, 110.0);
}

TEST_F(VerticalChain, TurnsTheSignOfTheRadiusByTheGradesAlone) {
  auto points = profileOf({{0.0, 0.0}, {100.0, 4.0, 20.0}, {200.0, 2.0}});
  points[1].gradeOut = points[1].gradeIn;
  points[1].radius = 500.0;
  build(points);
  EXPECT_EQ(piece(1).radius, 500.0);
}

}  // namespace
}  // namespace lvx::gls
