#include "runtime/model_objects.h"

#include <cmath>

#include <gtest/gtest.h>

#include "small_drawing.h"

namespace lvx::runtime {
namespace {

OpenDrawingRef openSmall() { return std::make_shared<OpenDrawing>(test::smallDrawing()); }

TEST(ModelObjects, ListSitesAndTheirAlignmentsInFileOrder) {
  const auto drawing = openSmall();
  const auto sites = makeDatabase(drawing)->sites();
  ASSERT_EQ(sites->count(), 2);
  EXPECT_EQ(sites->item(0)->name(), L"North");
  EXPECT_EQ(sites->item(1)->name(), L"Empty");
  const auto alignments = sites->item(0)->alignments();
  ASSERT_EQ(alignments->count(), 2);
  EXPECT_EQ(alignments->item(0)->name(), L"A1");
  EXPECT_EQ(alignments->item(0)->description(), L"main road");
  EXPECT_EQ(alignments->item(1)->name(), L"L\u00e4nge");
  EXPECT_EQ(sites->item(1)->alignments()->count(), 0);
  EXPECT_EQ(makeDocument(drawing)->sitelessAlignments()->item(0)->name(), L"Ramp");
}

TEST(ModelObjects, GiveAnEmptyReferenceForAnIndexOutside) {
  const auto drawing = openSmall();
  const auto sites = makeDatabase(drawing)->sites();
  EXPECT_EQ(sites->item(-1), nullptr);
  EXPECT_EQ(sites->item(2), nullptr);
  EXPECT_EQ(makeDocument(drawing)->surfaces()->item(1), nullptr);
}

TEST(ModelObjects, HandlesAreUpperCaseHexadecimal) {
  const auto drawing = openSmall();
  const auto alignment = makeDatabase(drawing)->sites()->item(0)->alignments()->item(0);
  EXPECT_EQ(alignment->handle(), L"1F2");
  EXPECT_EQ(alignment->objectId().value, 0x1F2U);
  EXPECT_EQ(handleTextOf(0xABCDEF), L"ABCDEF");
  EXPECT_EQ(handleTextOf(0), L"");
}

TEST(ModelObjects, PointLocationGivesAnAzimuth) {
  const auto drawing = openSmall();
  const auto alignment = makeDatabase(drawing)->sites()->item(0)->alignments()->item(0);
  const auto location = alignment->pointLocation(110.0, 2.0, 0.0);
  EXPECT_NEAR(location.x, 10.0, 1e-12);
  EXPECT_NEAR(location.y, -2.0, 1e-12);  // to the right of a road that goes east
  EXPECT_NEAR(location.direction, civil::kPi / 2, 1e-12);
}

TEST(ModelObjects, FailedOperationsLeaveTheirOutputEmpty) {
  const auto drawing = openSmall();
  const auto alignments = makeDatabase(drawing)->sites()->item(0)->alignments();
  const auto beyond = alignments->item(0)->pointLocation(1e6, 0.0, 0.0);
  EXPECT_EQ(beyond.x, 0.0);
  EXPECT_EQ(beyond.direction, 0.0);
  const auto nowhere = alignments->item(1)->stationOffset(1.0, 1.0);  // an alignment without geometry
  EXPECT_EQ(nowhere.station, 0.0);
  EXPECT_EQ(nowhere.offset, 0.0);
}

TEST(ModelObjects, SampleLinesGiveOneTripleForEachVertex) {
  const auto drawing = openSmall();
  const auto groups = makeDatabase(drawing)->sites()->item(0)->alignments()->item(0)->sampleLineGroups();
  ASSERT_EQ(groups->count(), 1);
  EXPECT_EQ(groups->item(0)->name(), L"SL");
  EXPECT_EQ(groups->item(0)->description(), L"every so often");
  const auto line = groups->item(0)->sampleLines()->item(0);
  EXPECT_EQ(line->name(), L"0+110");
  EXPECT_EQ(line->station(), 110.0);
  EXPECT_NE(line->sampleLineId(), 0);
  ASSERT_EQ(line->vertices()->count(), 3);
  const auto location = line->vertices()->item(0)->location();
  EXPECT_TRUE(location.isOneDimensional());
  EXPECT_EQ(location.values, (std::vector<double>{10.0, 5.0, 0.0}));
}

TEST(ModelObjects, SurfacesAreFoundByIndexAndByExactName) {
  const auto drawing = openSmall();
  const auto surfaces = makeDocument(drawing)->surfaces();
  EXPECT_EQ(surfaces->item(L"Ground")->handle(), surfaces->item(0)->handle());
  EXPECT_EQ(surfaces->item(L"ground"), nullptr);
}

TEST(ModelObjects, SampleElevationsAreFlatTriplesInOrder) {
  const auto drawing = openSmall();
  const auto surface = makeDocument(drawing)->surfaces()->item(0);
  const auto samples = surface->sampleElevations(10.0, 10.0, 10.0, -10.0);
  ASSERT_TRUE(samples.isOneDimensional());
  ASSERT_EQ(samples.values.size() % 3, 0U);
  ASSERT_GE(samples.values.size(), 6U);
  EXPECT_NEAR(samples.values[1], 4.0, 1e-9);
  EXPECT_NEAR(samples.values[samples.values.size() - 2], -4.0, 1e-9);
  EXPECT_EQ(samples.values[2], 5.0);
}

TEST(ModelObjects, SamplesOffTheSurfaceAreAnEmptyArrayAndNotNone) {
  const auto drawing = openSmall();
  auto samples = makeDocument(drawing)->surfaces()->item(0)->sampleElevations(100.0, 100.0, 110.0, 100.0);
  EXPECT_TRUE(samples.isOneDimensional());
  EXPECT_TRUE(samples.values.empty());
  EXPECT_NO_THROW(samples.destroyData());
}

TEST(ModelObjects, APointWithoutElevationHasZero) {
  const auto drawing = openSmall();
  const auto points = makeDocument(drawing)->points();
  const auto bare = points->itemByNumber(7);
  ASSERT_NE(bare, nullptr);
  EXPECT_EQ(bare->elevation(), 0.0);
  EXPECT_EQ(bare->name(), L"");
  const auto named = points->itemByNumber(8);
  EXPECT_EQ(named->name(), L"BM");
  EXPECT_EQ(named->easting(), 3.0);
  EXPECT_EQ(named->northing(), 4.0);
  EXPECT_EQ(named->elevation(), 5.0);
  EXPECT_EQ(named->description(), L"d8");
  EXPECT_EQ(named->fullDescription(), L"full8");
  EXPECT_EQ(points->itemByNumber(9), nullptr);
}

TEST(ModelObjects, PointGroupsKeepTheOrderOfTheirNumbers) {
  const auto drawing = openSmall();
  const auto group = makeDocument(drawing)->pointGroups()->item(L"P");
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->pointCount(), 2);
  EXPECT_EQ(group->pointNumbers().values, (std::vector<std::int32_t>{8, 7}));
}

TEST(ModelObjects, AreFoundByTheIdentifierTheyGive) {
  const auto drawing = openSmall();
  const auto document = makeDocument(drawing);
  const auto alignment = document->sitelessAlignments()->item(0);
  const auto found = std::dynamic_pointer_cast<host::QmtAlignment>(document->objectFromId(alignment->objectId()));
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), L"Ramp");
  EXPECT_EQ(document->objectFromId({0xDEAD}), nullptr);
}

TEST(ModelObjects, AreCountedWhileSomebodyHoldsThem) {
  const auto drawing = openSmall();
  EXPECT_EQ(drawing->liveObjects().total(), 0U);
  {
    const auto document = makeDocument(drawing);
    const auto surface = document->surfaces()->item(0);
    EXPECT_EQ(drawing->liveObjects().total(), 2U);
    EXPECT_EQ(drawing->liveObjects().description(), "QmtDocument 1, QmtSurface 1");
  }
  EXPECT_EQ(drawing->liveObjects().total(), 0U);
  EXPECT_EQ(drawing->liveObjects().description(), "");
}

TEST(ModelObjects, KeepTheirDrawingAlive) {
  auto drawing = openSmall();
  const std::weak_ptr<OpenDrawing> watched = drawing;
  auto surface = makeDocument(drawing)->surfaces()->item(0);
  drawing.reset();
  ASSERT_FALSE(watched.expired());
  EXPECT_EQ(surface->name(), L"Ground");
  surface.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(ModelObjects, StopTheirCallerWhenTheUserInterrupts) {
  const auto drawing = openSmall();
  bool stop = false;
  drawing->isInterrupted = [&stop] { return stop; };
  const auto surface = makeDocument(drawing)->surfaces()->item(0);
  EXPECT_NO_THROW(static_cast<void>(surface->sampleElevations(0, 0, 1, 1)));
  stop = true;
  EXPECT_THROW(static_cast<void>(surface->sampleElevations(0, 0, 1, 1)), Interrupted);
}

}  // namespace
}  // namespace lvx::runtime
