#include <algorithm>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_model.h"
#include "framework/exceptions.h"
#include "projection/projection_computation.h"
#include "projection/sample_line_collector.h"
#include "support/random_numbers.h"

namespace lvx::projection {
namespace {

using host::HostArray;
using test::FakeSurface;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<double> offsetsOf(const tpt3list& list) {
  std::vector<double> all;
  for (const tpt3& item : list) {
    all.push_back(item.first);
    EXPECT_EQ(item.second, 0.0);
    EXPECT_EQ(item.third, 0.0);
  }
  return all;
}

std::vector<double> elevationsOf(const tpt3list& list) {
  std::vector<double> all;
  for (const tpt3& item : list) all.push_back(item.third);
  return all;
}

/// A line along the y axis at x = 0; vertices are given by their y, and their offset is -y unless a test says
/// otherwise.
class Computation : public testing::Test {
 protected:
  test::FakeDrawing drawing_;
  test::Ref<FakeSurface> ground_ = drawing_.addSurface(L"Ground");
  tsl record_;

  void left(std::initializer_list<double> ys) {
    for (const double y : ys) record_.leftVertices.append({0.0, y, 0.0 - y});
  }
  void right(std::initializer_list<double> ys) {
    for (const double y : ys) record_.rightVertices.append({0.0, y, 0.0 - y});
  }
  std::int32_t project() { return projectSampleLine(drawing_.document, L"Ground", record_); }
};

TEST_F(Computation, WalksTheLeftSideOutwardAndListsTheOutermostSampleFirst) {
  left({5.0, 2.0});
  // Samples at plan distances 0, 1 and 3 from the inner vertex.
  ground_->sample = [](const FakeSurface::Segment&) {
    return HostArray<double>::of({0, 2, 100, 0, 3, 101, 0, 5, 102});
  };
  EXPECT_EQ(project(), 1);
  EXPECT_THAT(offsetsOf(record_.leftOffsets), ElementsAre(-5.0, -3.0, -2.0));
  EXPECT_THAT(elevationsOf(record_.leftPoints), ElementsAre(102, 101, 100));
  EXPECT_THAT(ground_->asked, ElementsAre(FakeSurface::Segment{0, 2, 0, 5}));
}

TEST_F(Computation, PutsTheOuterLeftSegmentAheadOfTheInnerOne) {
  left({7.0, 3.0, 0.0});
  ground_->sampleEnds([](double, double y) { return 100.0 + y; });
  EXPECT_EQ(project(), 1);
  EXPECT_THAT(ground_->asked, ElementsAre(FakeSurface::Segment{0, 0, 0, 3}, FakeSurface::Segment{0, 3, 0, 7}));
  // The joint stands twice: once as the end of one segment, once as the start of the next.
  EXPECT_THAT(offsetsOf(record_.leftOffsets), ElementsAre(-7, -3, -3, 0));
  EXPECT_THAT(elevationsOf(record_.leftPoints), ElementsAre(107, 103, 103, 100));
}

TEST_F(Computation, WalksTheRightSideOutwardInOrder) {
  right({0.0, -3.0, -7.0});
  ground_->sampleEnds([](double, double y) { return 100.0 + y; });
  EXPECT_EQ(project(), 1);
  EXPECT_THAT(ground_->asked, ElementsAre(FakeSurface::Segment{0, 0, 0, -3}, FakeSurface::Segment{0, -3, 0, -7}));
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(0, 3, 3, 7));
  EXPECT_THAT(elevationsOf(record_.rightPoints), ElementsAre(100, 97, 97, 93));
}

TEST_F(Computation, MeasuresAlongTheSampleLineFromTheInnerVertex) {
  // A skewed right segment whose inner vertex lies at offset 2 and whose samples are 5 and 10 further along.
  record_.rightVertices.append({10.0, 20.0, 2.0});
  record_.rightVertices.append({16.0, 28.0, 7.5});
  ground_->sample = [](const FakeSurface::Segment&) { return HostArray<double>::of({13, 24, 50, 16, 28, 51}); };
  project();
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(7.0, 12.0));
  EXPECT_EQ(record_.rightPoints[0], (tpt3{13, 24, 50}));
}

TEST_F(Computation, GivesASampleAtTheInnerVertexThatVertexsOffset) {
  left({5.0, 0.0});
  right({0.0, -5.0});
  ground_->sample = [](const FakeSurface::Segment& s) { return HostArray<double>::of({s.x1, s.y1, 1}); };
  project();
  EXPECT_THAT(offsetsOf(record_.leftOffsets), ElementsAre(0.0));
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(0.0));
}

TEST_F(Computation, FindsNothingWhereASideHoldsTheCentreAlone) {
  left({0.0});
  right({0.0});
  ground_->sampleEnds([](double, double) { return 1.0; });
  EXPECT_EQ(project(), 1);
  EXPECT_THAT(ground_->asked, IsEmpty());
  EXPECT_EQ(record_.leftPoints.count() + record_.leftOffsets.count(), 0);
  EXPECT_EQ(record_.rightPoints.count() + record_.rightOffsets.count(), 0);
}

TEST_F(Computation, FindsNothingOnARecordWithoutVertices) {
  EXPECT_EQ(project(), 1);
  EXPECT_EQ(record_.leftPoints.count() + record_.rightPoints.count(), 0);
}

TEST_F(Computation, LeavesTheListsAsTheyWereWhereNoSurfaceIsFound) {
  left({5.0, 0.0});
  record_.leftPoints.append({1, 2, 3});
  record_.rightOffsets.append({4, 0, 0});
  EXPECT_EQ(projectSampleLine(drawing_.document, L"ground", record_), 0);
  EXPECT_EQ(projectSampleLine(drawing_.document, L"", record_), 0);
  EXPECT_EQ(projectSampleLine(nullptr, L"Ground", record_), 0);
  drawing_.document->surfaceList = nullptr;
  EXPECT_EQ(project(), 0);
  EXPECT_THAT(elevationsOf(record_.leftPoints), ElementsAre(3));
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(4));
}

TEST_F(Computation, ReplacesWhatTheListsHeldOnceTheSurfaceIsFound) {
  record_.leftPoints.append({1, 2, 3});
  record_.leftOffsets.append({1, 0, 0});
  record_.rightPoints.append({1, 2, 3});
  record_.rightOffsets.append({1, 0, 0});
  right({0.0, -1.0});
  ground_->sampleEnds([](double, double) { return 9.0; });
  project();
  project();
  EXPECT_EQ(record_.leftPoints.count() + record_.leftOffsets.count(), 0);
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(0, 1));
  EXPECT_THAT(elevationsOf(record_.rightPoints), ElementsAre(9, 9));
}

TEST_F(Computation, DropsTheValuesAfterTheLastCompleteTriple) {
  right({0.0, -9.0});
  ground_->sample = [](const FakeSurface::Segment&) { return HostArray<double>::of({0, 0, 1, 0, -2, 2, 0}, 5); };
  project();
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(0, 2));
}

TEST_F(Computation, SkipsASegmentWhoseArrayHasTwoDimensions) {
  right({0.0, -1.0, -2.0});
  ground_->sample = [](const FakeSurface::Segment& s) -> HostArray<double> {
    if (s.y1 == 0.0) return {2, 0, {s.x1, s.y1, 1}};
    return HostArray<double>::of({s.x2, s.y2, 5});
  };
  EXPECT_EQ(project(), 1);
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(2));
}

TEST_F(Computation, PassesOnWhatLiesOnTheSurfaceWithoutMarkingGaps) {
  right({0.0, -10.0});
  ground_->sample = [](const FakeSurface::Segment&) {
    return HostArray<double>::of({0, -1, 100, 0, -2, 101, 0, -8, 102});
  };
  project();
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(1, 2, 8));
}

TEST_F(Computation, KeepsTheOrderInWhichTheHostGivesSamplesEvenBackwards) {
  right({0.0, -10.0});
  ground_->sample = [](const FakeSurface::Segment&) { return HostArray<double>::of({0, -8, 1, 0, -2, 2, 0, -2, 2}); };
  project();
  EXPECT_THAT(offsetsOf(record_.rightOffsets), ElementsAre(8, 2, 2));
}

TEST_F(Computation, RaisesTheAutomationExceptionForAnAnswerWithoutAnArray) {
  right({0.0, -10.0});
  ground_->sample = [](const FakeSurface::Segment&) { return HostArray<double>::none(); };
  EXPECT_THROW(project(), framework::AutomationException);
}

TEST_F(Computation, ProjectsEveryRecordOfAListAndLooksTheSurfaceUpForEach) {
  framework::OwnedList<tsl> list;
  for (int i = 0; i < 3; ++i) {
    auto* record = new tsl;
    list.get().add(record);
    record->rightVertices.append({0, 0, 0});
    record->rightVertices.append({0, -1, 1});
  }
  ground_->sampleEnds([](double, double) { return 7.0; });
  projectSampleLines(drawing_.document, L"Ground", list.get());
  for (const tsl* record : list.get()) EXPECT_EQ(record->rightPoints.count(), 2);
  EXPECT_EQ(drawing_.document->surfaceList->namesAsked, 3);
}

TEST_F(Computation, SamplesASegmentOfLengthZeroWhereALoneRightVertexMeetsTheCentre) {
  const auto axis = drawing_.addAlignment(nullptr, L"A");
  axis->addGroup(L"G")->addLine(L"L", 0.0, {{0, 10}, {0, 0}});
  framework::OwnedList<tsl> list;
  collectSampleLines(drawing_.document, drawing_.database, L"", L"A", GroupFilter::named(L"G"), list.get());
  ground_->sampleEnds([](double, double) { return 7.0; });
  projectSampleLines(drawing_.document, L"Ground", list.get());
  EXPECT_THAT(offsetsOf(list.get()[0]->rightOffsets), ElementsAre(0.0, 0.0));
}

/// Both sides by insertion at index 0 and appending, one sample at a time.
TEST_F(Computation, AgreesWithInsertingEachLeftSampleAtTheFront) {
  auto random = test::seededByTestName();
  for (int run = 0; run < 50; ++run) {
    record_ = tsl();
    const int vertices = 1 + static_cast<int>(random() % 6);
    for (int i = vertices; i > 0; --i) record_.leftVertices.append({0.0, 10.0 * (i - 1), -10.0 * (i - 1)});
    std::vector<double> samples(random() % 40);
    for (double& value : samples) value = static_cast<double>(random() % 1000) / 8.0;
    ground_->sample = [&](const FakeSurface::Segment& s) {
      std::vector<double> moved = samples;
      for (double& value : moved) value += s.y1;
      return HostArray<double>::of(moved);
    };
    project();
    tpt3list points;
    tpt3list offsets;
    for (int i = record_.leftVertices.count() - 1; i >= 1; --i) {
      const tpt3 inner = record_.leftVertices[i];
      for (std::size_t s = 0; s + 2 < samples.size(); s += 3) {
        const tpt3 sample{samples[s] + inner.second, samples[s + 1] + inner.second, samples[s + 2] + inner.second};
        const double dx = sample.first - inner.first;
        const double dy = sample.second - inner.second;
        points.insert(0, sample);
        offsets.insert(0, {inner.third - std::sqrt(dx * dx + dy * dy), 0.0, 0.0});
      }
    }
    ASSERT_TRUE(std::equal(points.begin(), points.end(), record_.leftPoints.begin(), record_.leftPoints.end()));
    ASSERT_TRUE(std::equal(offsets.begin(), offsets.end(), record_.leftOffsets.begin(), record_.leftOffsets.end()));
    ASSERT_EQ(points.capacity(), record_.leftPoints.capacity());
  }
}

}  // namespace
}  // namespace lvx::projection
