#include "host/picking.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "doubles/fake_picking.h"

namespace lvx::host {
namespace {

using test::PickingRunTime;
using Kind = PickingRunTime::Kind;

class PickingTest : public testing::Test {
 protected:
  PickingTest() {
    auto runTime = std::make_unique<PickingRunTime>();
    run_ = runTime.get();
    host_.replaceRunTime(std::move(runTime));
    run_->addObject(kClassAlignment, 0x1F4);
    run_->addObject(kClassSurface, 0x2A);
  }

  std::vector<CString> pick() {
    std::vector<CString> picked;
    pickEntity(host_, {kClassAlignment, L"prompt", L"wrong"},
               [&picked](const CString& handle) { picked.push_back(handle); });
    EXPECT_EQ(run_->manager.locks, run_->manager.unlocks);
    EXPECT_EQ(run_->openObjects(), 0);
    return picked;
  }

  test::FakeHost host_;
  PickingRunTime* run_ = nullptr;
};

TEST_F(PickingTest, HandsOverTheHandleTextOfAnObjectOfTheWantedClass) {
  run_->picks = {{Kind::Object, 0x1F4}};
  EXPECT_EQ(pick(), std::vector<CString>{L"1F4"});
  EXPECT_EQ(run_->prompts, std::vector<CString>{L"prompt"});
  EXPECT_EQ(run_->console, std::vector<CString>{L"\n"});
  EXPECT_EQ(run_->manager.locks, 1);
  EXPECT_EQ(run_->manager.lastLockMode, 4);
}

TEST_F(PickingTest, ShowsTheErrorBoxForAnotherClassAndPromptsAgain) {
  run_->picks = {{Kind::Object, 0x2A}, {Kind::Object, 0x2A}, {Kind::Object, 0x1F4}};
  EXPECT_EQ(pick(), std::vector<CString>{L"1F4"});
  EXPECT_EQ(run_->prompts.size(), 3U);
  EXPECT_EQ(run_->console.size(), 3U);
  const test::FakeUserInterface::Box box{L"wrong", BoxButtons::Ok, BoxIcon::Stop};
  EXPECT_EQ(host_.users().boxes, (std::vector<test::FakeUserInterface::Box>{box, box}));
}

TEST_F(PickingTest, EndsWithNothingAtEscape) {
  run_->picks = {{Kind::Object, 0x2A}, {Kind::Escape, 0}};
  EXPECT_TRUE(pick().empty());
  EXPECT_EQ(run_->prompts.size(), 2U);
}

TEST_F(PickingTest, GoesRoundAgainWithoutAWordForWhatCannotBeIdentifiedOrOpened) {
  run_->picks = {{Kind::Unidentified, 0x1F4}, {Kind::Unopenable, 0x1F4}, {Kind::Object, 0x1F4}};
  EXPECT_EQ(pick(), std::vector<CString>{L"1F4"});
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_EQ(run_->prompts.size(), 3U);
}

TEST_F(PickingTest, ComparesTheClassByExactCase) {
  run_->addObject(L"Qmt_Alignment", 0x77);
  run_->picks = {{Kind::Object, 0x77}};
  EXPECT_TRUE(pick().empty());
  EXPECT_EQ(host_.users().boxes.size(), 1U);
}

TEST_F(PickingTest, DoesNothingWithoutADocument) {
  run_->manager.hasDocument = false;
  run_->picks = {{Kind::Object, 0x1F4}};
  EXPECT_TRUE(pick().empty());
  EXPECT_TRUE(run_->prompts.empty());
  EXPECT_EQ(run_->manager.locks, 0);
}

TEST_F(PickingTest, DoesNothingWhileTheHostShutsDown) {
  run_->docManager = nullptr;
  run_->picks = {{Kind::Object, 0x1F4}};
  EXPECT_TRUE(pick().empty());
  EXPECT_TRUE(run_->prompts.empty());
}

TEST_F(PickingTest, UnlocksTheDocumentWhenTakingThePickRaises) {
  run_->picks = {{Kind::Object, 0x1F4}};
  EXPECT_THROW(
      pickEntity(host_, {kClassAlignment, L"", L""}, [](const CString&) { throw std::runtime_error("taken"); }),
      std::runtime_error);
  EXPECT_EQ(run_->manager.unlocks, 1);
}

}  // namespace
}  // namespace lvx::host
