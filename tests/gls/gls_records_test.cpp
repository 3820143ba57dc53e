#include "gls/gls_records.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "gls/corridor_records.h"

namespace lvx::gls {
namespace {

TEST(GlsRow, StartsEmptyWithoutCorridorAndElement) {
  const tglsRow row;
  EXPECT_TRUE(row.name.empty());
  EXPECT_TRUE(row.notes.empty());
  EXPECT_TRUE(isNoCorridor(row));
  EXPECT_EQ(row.horType, -1);
  for (const auto field : {&tglsRow::curveX, &tglsRow::curveY, &tglsRow::tangentElevation, &tglsRow::elevation,
                           &tglsRow::crossFallRight, &tglsRow::widthLeft, &tglsRow::widthRight, &tglsRow::heightLeft,
                           &tglsRow::heightRight, &tglsRow::edgeElevationLeft, &tglsRow::edgeElevationRight})
    EXPECT_EQ(row.*field, 0.0);
}

TEST(NoCorridorMark, IsLookedForWithinAMillionthAndInTheLeftCrossFallAlone) {
  struct Case {
    double crossFallLeft;
    bool isMark;
  };
  const std::vector<Case> cases{
      {-1000.0, true},      {-1000.0000009, true},
      {-999.9999991, true}, {-1000.000001, false},
      {-999.999999, false}, {-1000.0000011, false},
      {-999.99, false},     {0.0, false},
      {1000.0, false},      {std::numeric_limits<double>::quiet_NaN(), false},
  };
  for (const Case& c : cases) {
    tglsRow row;
    row.crossFallLeft = c.crossFallLeft;
    row.crossFallRight = kNoCorridor;
    EXPECT_EQ(isNoCorridor(row), c.isMark) << c.crossFallLeft;
  }
}

TEST(ElementMessage, GivesOneWordToBothKindsOfClothoidAndNoneToTheUnknown) {
  EXPECT_EQ(elementMessage(0), Message::LineElement);
  EXPECT_EQ(elementMessage(1), Message::ArcElement);
  EXPECT_EQ(elementMessage(2), Message::ClothoidElement);
  EXPECT_EQ(elementMessage(3), Message::ClothoidElement);
  EXPECT_EQ(elementMessage(kNoElement), std::nullopt);
  EXPECT_EQ(elementMessage(4), std::nullopt);
}

TEST(GlsColumns, CoverEveryColumnOnceByTheHeadsAbove) {
  std::size_t column = 0;
  while (column < kGlsColumns.size()) {
    const auto span = static_cast<std::size_t>(kGlsColumns[column].groupColumns);
    ASSERT_GE(span, 1U) << "column " << column;
    ASSERT_LE(column + span, kGlsColumns.size());
    for (std::size_t covered = column + 1; covered < column + span; ++covered) {
      EXPECT_EQ(kGlsColumns[covered].groupColumns, 0) << "column " << covered;
      EXPECT_EQ(kGlsColumns[covered].groupHead, std::nullopt) << "column " << covered;
    }
    column += span;
  }
  EXPECT_EQ(column, 20U);
}

TEST(GlsColumns, HaveAFieldAndDecimalsExactlyWhereANumberStands) {
  for (std::size_t i = 0; i < kGlsColumns.size(); ++i) {
    const GlsColumn& column = kGlsColumns[i];
    const bool isText = column.content == GlsContent::Name || column.content == GlsContent::Station ||
                        column.content == GlsContent::Notes || column.content == GlsContent::ElementWord;
    EXPECT_EQ(column.value == nullptr, isText) << "column " << i;
    EXPECT_EQ(column.decimals == 0, isText) << "column " << i;
  }
}

TEST(GlsReport, FreesItsRecords) {
  // The leak checker of the sanitized run is what fails here.
  tglsReport report;
  report.rows.add(new tglsRow);
  report.verElems.add(new tglsVerElem);
  report.horElems.add(new tglsHorElem);
  EXPECT_EQ(report.rows.size(), 1);
}

TEST(ReleaseCorridors, FreesBaselinesAndEmptiesTheList) {
  CorridorList list;
  for (int i = 0; i < 2; ++i) {
    auto* corridor = new tcorridor;
    corridor->baselines.add(new tbaseline);
    corridor->baselines[0]->stations.append({10.0, 0.0, 0.0});
    list.add(corridor);
  }
  releaseCorridors(list);
  EXPECT_EQ(list.size(), 0);
  releaseCorridors(list);
  EXPECT_EQ(list.size(), 0);
}

}  // namespace
}  // namespace lvx::gls
