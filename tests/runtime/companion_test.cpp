// Through the real shared library, which takes everything from this process.
#include "host/companion.h"

#include <cmath>

#include <gtest/gtest.h>

#include "runtime/model_objects.h"
#include "small_drawing.h"

namespace lvx::runtime {
namespace {

using host::taxel;
using host::tvert;

class CompanionTest : public testing::Test {
 protected:
  CompanionTest() { host_.open(test::smallDrawing()); }
  ~CompanionTest() override {
    framework::destroyAll(elements_);
    framework::destroyAll(records_);
  }
  void connect() {
    host::Ref<host::QmtDocument> document;
    host::Ref<host::QmtDatabase> database;
    ASSERT_GT(pvsa_lvx_getQmtObject(document, database), 0);
  }
  void readElements(const std::string& alignment) {
    object_.geometry = civil::Alignment::fromText(alignment);
    pvsa_lvx_gethelemp(makeAlignment(host_.openDrawing(), object_), startStation_, elements_, points_);
  }

  test::TestFrontEnd frontEnd_;
  StandinHost host_{frontEnd_};
  civil::AlignmentObject object_;
  double startStation_ = -1.0;
  host::RecordList<taxel> elements_;
  host::RecordList<tvert> records_;
  framework::tpt3list points_;
};

TEST_F(CompanionTest, HandsOutBothReferencesAndGivesThemUp) {
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  EXPECT_GT(pvsa_lvx_getQmtObject(document, database), 0);
  ASSERT_NE(document, nullptr);
  ASSERT_NE(database, nullptr);
  EXPECT_EQ(database->sites()->count(), 2);
  document.reset();
  database.reset();
  pvsa_lvx_releaseQmtObject();
  EXPECT_EQ(host_.openDrawing()->liveObjects().description(), "");
  host_.close();
  EXPECT_LT(pvsa_lvx_getQmtObject(document, database), 1);
}

TEST_F(CompanionTest, ListsTheRowWithoutASiteFirstThenEverySite) {
  connect();
  host::SiteTree sites;
  pvsa_lvx_getsites(sites);
  ASSERT_EQ(sites.size(), 3);
  EXPECT_EQ(sites[0]->name, L"");
  EXPECT_EQ(sites[0]->alignments[0]->name, L"Ramp");
  EXPECT_EQ(sites[1]->name, L"North");
  EXPECT_EQ(sites[1]->description, L"the one in the north");
  ASSERT_EQ(sites[1]->alignments.size(), 2);
  EXPECT_EQ(sites[1]->alignments[0]->handle, L"1F2");
  EXPECT_EQ(sites[1]->alignments[1]->name, L"L\u00e4nge");
  ASSERT_EQ(sites[1]->alignments[0]->children.size(), 2);
  EXPECT_EQ(sites[1]->alignments[0]->children[1]->name, L"Design");
  EXPECT_EQ(sites[1]->alignments[0]->children[1]->description, L"as it will be");
  EXPECT_EQ(sites[1]->alignments[0]->children[0]->handle, L"1F3");
  EXPECT_EQ(sites[2]->alignments.size(), 0);
  pvsa_lvx_relsites(sites);
  EXPECT_EQ(sites.size(), 0);
}

TEST_F(CompanionTest, GivesNoSitesBeforeTheReferences) {
  host::SiteTree sites;
  pvsa_lvx_getsites(sites);
  EXPECT_EQ(sites.size(), 0);
}

TEST_F(CompanionTest, GivesElementsWithMathAnglesAndSignedRadii) {
  readElements(
      "start 100 at 0 0 heading 90; line 100; clothoid 60 R inf..300 right; arc 80 R 300 right; "
      "clothoid 60 R 300..inf right; arc 50 R 200 left");
  EXPECT_EQ(startStation_, 100.0);
  ASSERT_EQ(elements_.size(), 5);
  const auto expectElement = [&](int index, int type, double length, double startRadius, double endRadius) {
    SCOPED_TRACE(index);
    EXPECT_EQ(elements_[index]->type, type);
    EXPECT_NEAR(elements_[index]->length, length, 1e-9);
    EXPECT_NEAR(elements_[index]->startRadius, startRadius, 1e-9);
    EXPECT_NEAR(elements_[index]->endRadius, endRadius, 1e-9);
  };
  expectElement(0, 0, 100.0, 0.0, 0.0);
  expectElement(1, 2, 60.0, -300.0, 0.0);
  expectElement(2, 1, 80.0, -300.0, -300.0);
  expectElement(3, 3, 60.0, -300.0, 0.0);
  expectElement(4, 1, 50.0, 200.0, 200.0);
  EXPECT_NEAR(elements_[0]->startDirection, 0.0, 1e-12);  // azimuth 90 degrees is east
  EXPECT_NEAR(elements_[1]->endDirection, civil::kTwoPi - 60.0 / 600.0, 1e-12);
  EXPECT_NEAR(elements_[2]->endDirection, civil::kTwoPi - 60.0 / 600.0 - 80.0 / 300.0, 1e-12);
}

TEST_F(CompanionTest, TheSharperRadiusStandsFirstWhicheverWayAClothoidIsDriven) {
  readElements("at 0 0 heading 0; clothoid 40 R 500..200 left; clothoid 40 R 200..500 left");
  ASSERT_EQ(elements_.size(), 2);
  EXPECT_EQ(elements_[0]->type, 2);
  EXPECT_EQ(elements_[1]->type, 3);
  for (const taxel* element : elements_) {
    EXPECT_NEAR(element->startRadius, 200.0, 1e-9);
    EXPECT_NEAR(element->endRadius, 500.0, 1e-9);
    // What the report makes of it: a real parameter.
    EXPECT_GT(40.0 * 200.0 / (1.0 - std::abs(element->startRadius) / std::abs(element->endRadius)), 0.0);
  }
}

TEST_F(CompanionTest, LeavesOutElementsWithoutLength) {
  readElements("at 0 0 heading 90; line 10; to 10 0; line 5");
  ASSERT_EQ(elements_.size(), 2);
  EXPECT_NEAR(elements_[1]->length, 5.0, 1e-12);
}

TEST_F(CompanionTest, ShowsEveryTransitionAsTheClothoidOfItsRadiiAndLength) {
  for (const char* law : {"clothoid", "bloss", "cosine", "biquadratic", "sinusoid"}) {
    const std::string name = law;
    const auto first = elements_.size();  // the list grows by three at each reading
    readElements("heading 90; " + name + " 60 R inf..300 right; " + name + " 40 R 300..100 right; " + name +
                 " 50 R 100..inf right");
    ASSERT_EQ(elements_.size(), first + 3);
    EXPECT_EQ(elements_[first]->type, 2) << law;
    EXPECT_NEAR(elements_[first]->startRadius, -300.0, 1e-9);
    EXPECT_EQ(elements_[first]->endRadius, 0.0);
    EXPECT_EQ(elements_[first + 1]->type, 2) << law;
    EXPECT_NEAR(elements_[first + 1]->startRadius, -100.0, 1e-9);
    EXPECT_NEAR(elements_[first + 1]->endRadius, -300.0, 1e-9);
    EXPECT_EQ(elements_[first + 2]->type, 3) << law;
    EXPECT_NEAR(elements_[first + 2]->startRadius, -100.0, 1e-9);
    EXPECT_EQ(elements_[first + 2]->length, 50.0);
    // By the same angle whatever the law: half the sum of the curvatures at the ends, times the length.
    EXPECT_NEAR(elements_[first]->startDirection, 0.0, 1e-12);
    EXPECT_NEAR(elements_[first]->endDirection, 2.0 * 3.14159265358979 - 0.1, 1e-12);
  }
}

TEST_F(CompanionTest, AnEmptyReferenceGivesNoElements) {
  pvsa_lvx_gethelemp(nullptr, startStation_, elements_, points_);
  EXPECT_EQ(elements_.size(), 0);
  EXPECT_EQ(startStation_, -1.0);
}

TEST_F(CompanionTest, GivesTheIntersectionPointsOfAProfile) {
  connect();
  double value = -1.0;
  pvsa_lvx_getvelem(L"North", L"A1", L"Design", value, records_);
  ASSERT_EQ(records_.size(), 3);
  EXPECT_EQ(records_[0]->station, 100.0);
  EXPECT_EQ(records_[0]->halfLength, 0.0);
  EXPECT_EQ(records_[1]->station, 200.0);
  EXPECT_EQ(records_[1]->elevation, 12.0);
  EXPECT_NEAR(records_[1]->gradeIn, 0.02, 1e-15);
  EXPECT_NEAR(records_[1]->gradeOut, -0.02, 1e-15);
  EXPECT_NEAR(records_[1]->halfLength, 20.0, 1e-12);
  EXPECT_NEAR(records_[1]->radius, 1000.0, 1e-9);
  EXPECT_EQ(records_[2]->elevation, 8.0);
}

TEST_F(CompanionTest, KnowsNoProfileOfAnotherNameSiteOrAlignment) {
  connect();
  double value = 0.0;
  pvsa_lvx_getvelem(L"", L"A1", L"Design", value, records_);
  pvsa_lvx_getvelem(L"North", L"A2", L"Design", value, records_);
  pvsa_lvx_getvelem(L"North", L"A1", L"design", value, records_);
  EXPECT_EQ(records_.size(), 0);
}

}  // namespace
}  // namespace lvx::runtime
