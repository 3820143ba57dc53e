// The plan under a user's mouse and keyboard.
#include "desktop/plan/plan_view.h"

#include <QApplication>
#include <QCursor>
#include <chrono>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"
#include "plan_window.h"

namespace lvx::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// ---------------------------------------------------------------- moving about

TEST_F(PlanViewTest, ShowsAllAtFirstAndStillDoesWhenItsWindowChanges) {
  EXPECT_TRUE(view::holds(plan.viewport().visible(), civil::Box{-20, -60, 220, 90}));
  onGui([&] { plan.view->resize(500, 400); });
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().width() == 500; }));
  EXPECT_TRUE(view::holds(plan.viewport().visible(), civil::Box{-20, -60, 220, 90}));
}

TEST_F(PlanViewTest, KeepsWhatLiesUnderTheMouseWhenTheWheelTurns) {
  const QPoint mouse = plan.at(150, 20);
  user.moveTo(plan.view, mouse);
  const double scale = plan.viewport().scale();
  user.wheel(3);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 1.9 * scale; }));
  EXPECT_TRUE(plan.isStillAt(150, 20, mouse));
  user.wheel(-6);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() < 0.6 * scale; }));
  EXPECT_TRUE(plan.isStillAt(150, 20, mouse));
}

TEST_F(PlanViewTest, ZoomsAtTheMouseByPlusAndMinus) {
  const QPoint mouse = plan.at(40, -30);
  user.moveTo(plan.view, mouse);
  const double scale = plan.viewport().scale();
  user.key(Qt::Key_Plus);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > scale; }));
  EXPECT_TRUE(plan.isStillAt(40, -30, mouse));
  user.key(Qt::Key_Minus);
  EXPECT_TRUE(user.waitFor([&] { return std::abs(plan.view->viewport().scale() / scale - 1.0) < 1e-9; }));
}

TEST_F(PlanViewTest, MovesWithTheMiddleButtonWhereverItWasPressed) {
  const QPoint road = plan.at(90, 0);
  user.drag(plan.view, road, road + QPoint(120, -70), Qt::MiddleButton);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport().centre().x < 90.0; }));
  EXPECT_TRUE(plan.isStillAt(90, 0, road + QPoint(120, -70)));
}

TEST_F(PlanViewTest, MovesWithTheLeftButtonOnGroundOnly) {
  const QPoint ground = plan.at(30, 40);
  user.drag(plan.view, ground, ground + QPoint(60, 40));
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport().centre().x < 90.0; }));
  EXPECT_THAT(plan.clicked, IsEmpty());
  const view::Viewport before = plan.viewport();
  const QPoint road = plan.at(120, 0);
  user.drag(plan.view, road, road + QPoint(60, 40));
  EXPECT_EQ(plan.viewport(), before);
}

TEST_F(PlanViewTest, MovesWithTheArrowKeys) {
  const Vec2 centre = plan.viewport().centre();
  user.key(Qt::Key_Right);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport().centre().x > centre.x; }));
  user.key(Qt::Key_Down);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport().centre().y < centre.y; }));
  user.key(Qt::Key_Left);
  user.key(Qt::Key_Up);
  EXPECT_TRUE(user.waitFor([&] {
    const Vec2 now = plan.view->viewport().centre();
    return std::abs(now.x - centre.x) < 1e-9 && std::abs(now.y - centre.y) < 1e-9;
  }));
}

TEST_F(PlanViewTest, ShowsAllAtHomeAndAtADoubleMiddleClick) {
  const view::Viewport all = plan.viewport();
  user.moveTo(plan.view, QPoint(100, 100));
  user.wheel(4);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport() != all; }));
  user.key(Qt::Key_Home);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport() == all; }));
  user.wheel(4);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport() != all; }));
  user.click(plan.view, QPoint(100, 100), Qt::MiddleButton);
  user.click(plan.view, QPoint(100, 100), Qt::MiddleButton);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->viewport() == all; }));
}

TEST_F(PlanViewTest, KeepsItsPlaceInALargerWindowOnceTheUserMovedIt) {
  user.moveTo(plan.view, QPoint(200, 200));
  user.wheel(2);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 4.0; }));
  const view::Viewport before = plan.viewport();
  onGui([&] { plan.view->resize(640, 480); });
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().width() == 640; }));
  EXPECT_EQ(plan.viewport().centre(), before.centre());
  EXPECT_EQ(plan.viewport().scale(), before.scale());
}

TEST_F(PlanViewTest, ZoomsToAnObjectWithRoomAroundIt) {
  onGui([&] { plan.view->zoomTo(kSection); });
  EXPECT_TRUE(view::holds(plan.viewport().visible(), civil::Box{100, -20, 100, 20}));
  EXPECT_FALSE(view::holds(plan.viewport().visible(), civil::Box{0, 0, 200, 0}));
  onGui([&] { plan.view->zoomTo(kPoint + 6); });
  EXPECT_NEAR(plan.viewport().centre().x, 20.0, 1e-9);
  EXPECT_NEAR(plan.viewport().centre().y, 90.0, 1e-9);
  const view::Viewport before = plan.viewport();
  onGui([&] { plan.view->zoomTo(0xdead); });
  EXPECT_EQ(plan.viewport(), before);
}

TEST_F(PlanViewTest, TellsWhereTheMouseIsAndThatItLeft) {
  user.moveTo(plan.view, plan.at(60, -30));
  ASSERT_TRUE(user.waitFor([&] { return plan.mouse.has_value(); }));
  EXPECT_NEAR(plan.mouse->x(), 60.0, 0.5);
  EXPECT_NEAR(plan.mouse->y(), -30.0, 0.5);
  user.moveTo(plan.view, QPoint(-40, -40));
  EXPECT_TRUE(user.waitFor([&] { return !plan.mouse.has_value(); }));
}

// ---------------------------------------------------------------- looking at things

TEST_F(PlanViewTest, NamesWhatLiesUnderTheMouseButNotTheGround) {
  user.moveTo(plan.view, plan.at(120, 1));
  EXPECT_TRUE(user.waitFor([&] { return plan.view->pointerBox().join(QString()).contains(QStringLiteral("Road")); }));
  EXPECT_THAT(plan.box(), HasSubstr("Alignment"));
  user.moveTo(plan.view, plan.at(180, 40));
  EXPECT_TRUE(user.waitFor([&] { return plan.view->pointerBox().isEmpty(); }));
}

TEST_F(PlanViewTest, TellsClicksAndDoubleClicks) {
  user.click(plan.view, plan.at(100, 15));
  ASSERT_TRUE(user.waitFor([&] { return !plan.clicked.empty(); }));
  EXPECT_THAT(plan.clicked, ElementsAre(kSection));
  user.doubleClick(plan.view, plan.at(40, -30));
  ASSERT_TRUE(user.waitFor([&] { return !plan.activated.empty(); }));
  EXPECT_THAT(plan.activated, ElementsAre(kPoint));
  user.click(plan.view, plan.at(160, 85));
  ASSERT_TRUE(user.waitFor([&] { return plan.clicked.back() == 0; }));
}

TEST_F(PlanViewTest, HitsNothingThatIsNotShown) {
  onGui([&] {
    desktop::PlanLook look = plan.view->look();
    look.sampleLines = false;
    look.surface = desktop::SurfaceLook::None;
    look.border = false;
    plan.view->setLook(look);
  });
  user.click(plan.view, plan.at(100, 15));
  ASSERT_TRUE(user.waitFor([&] { return !plan.clicked.empty(); }));
  EXPECT_THAT(plan.clicked, ElementsAre(0U));
}

TEST_F(PlanViewTest, MeansTheLineWherePointsAreDotsAlongIt) {
  onGui([&] {
    plan.view->setScene(nullptr);
    for (int number = 0; number < 2000; ++number) {
      civil::Point point;
      point.handle = 0x1000 + static_cast<Handle>(number);
      point.number = 100 + number;
      point.position = {0.1 * number, 0.5, 100.0};
      plan.model.points.push_back(std::move(point));
    }
    plan.view->setScene(std::make_shared<view::PlanScene>(plan.model));
  });
  ASSERT_TRUE(user.waitFor([&] { return plan.view->isSharp(); }));
  user.click(plan.view, plan.at(120, 0));
  ASSERT_TRUE(user.waitFor([&] { return !plan.clicked.empty(); }));
  EXPECT_THAT(plan.clicked, ElementsAre(kRoad));
  plan.select();
  user.click(plan.view, plan.at(120, 0.5));
  ASSERT_TRUE(counts(1)) << "who selects points means them";
}

// ---------------------------------------------------------------- picking one object

TEST_F(PlanViewTest, PicksAnObjectOfEveryClass) {
  struct Case {
    const char* kind;
    Vec2 place;
    Handle handle;
  };
  for (const Case& one : {Case{"Alignment", {120, 0}, kRoad}, Case{"Sample line", {100, 15}, kSection},
                          Case{"Point", {60, -30}, kPoint + 1}, Case{"Surface", {180, 40}, kGround},
                          Case{"Corridor", {20, 4}, kCorridor}}) {
    plan.picked.clear();
    plan.pick();
    user.moveTo(plan.view, plan.at(one.place.x, one.place.y));
    EXPECT_TRUE(user.waitFor([&] {
      return plan.view->pointerBox().join(QLatin1Char('|')).contains(QLatin1String(one.kind));
    })) << one.kind;
    user.click(plan.view, plan.at(one.place.x, one.place.y));
    EXPECT_TRUE(user.waitFor([&] { return !plan.picked.empty(); })) << one.kind;
    EXPECT_THAT(plan.picked, ElementsAre(one.handle)) << one.kind;
    EXPECT_FALSE(onGui([&] { return plan.view->isInteracting(); }));
  }
  EXPECT_THAT(plan.clicked, IsEmpty());
}

TEST_F(PlanViewTest, GivesAPickUpAtAClickOnNothing) {
  plan.pick();
  user.click(plan.view, plan.at(160, 85));
  EXPECT_TRUE(user.waitFor([&] { return plan.gaveUp == 1; }));
  EXPECT_FALSE(onGui([&] { return plan.view->isInteracting(); }));
  EXPECT_THAT(plan.picked, IsEmpty());
}

TEST_F(PlanViewTest, TheSpaceBarGoesThroughWhatLiesOneAboveTheOtherForAPick) {
  plan.pick();
  user.moveTo(plan.view, plan.at(120, 0));
  EXPECT_TRUE(user.waitFor([&] {
    return plan.view->pointerBox().join(QLatin1Char('|')).contains(QStringLiteral("Space: the next below"));
  })) << plan.box();
  EXPECT_NE(plan.box().find("Alignment  Road"), std::string::npos) << plan.box();
  user.key(Qt::Key_Space);
  EXPECT_TRUE(user.waitFor([&] {
    return plan.view->pointerBox().join(QLatin1Char('|')).contains(QStringLiteral("Surface  Ground  (2 of 2)"));
  })) << plan.box();
  user.click(plan.view, plan.at(120, 0));
  EXPECT_TRUE(user.waitFor([&] { return !plan.picked.empty(); }));
  EXPECT_THAT(plan.picked, ElementsAre(kGround));
  // Elsewhere the uppermost is meant again.
  plan.picked.clear();
  plan.pick();
  user.click(plan.view, plan.at(130, 0));
  EXPECT_TRUE(user.waitFor([&] { return !plan.picked.empty(); }));
  EXPECT_THAT(plan.picked, ElementsAre(kRoad));
}

TEST_F(PlanViewTest, ClicksAtOnePlaceGoThroughWhatLiesThere) {
  const QPoint place = plan.at(120, 0);
  for (std::size_t count = 1; count <= 3; ++count) {
    user.click(plan.view, place);
    ASSERT_TRUE(user.waitFor([&] { return plan.clicked.size() == count; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(QApplication::doubleClickInterval() + 50));
  }
  EXPECT_THAT(plan.clicked, ElementsAre(kRoad, kGround, kRoad));
}

TEST_F(PlanViewTest, GivesAPickUpAtEscapeAndAtTheRightButton) {
  plan.pick();
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return plan.gaveUp == 1; }));
  plan.pick();
  user.click(plan.view, plan.at(120, 0), Qt::RightButton);
  EXPECT_TRUE(user.waitFor([&] { return plan.gaveUp == 2; }));
  EXPECT_THAT(plan.picked, IsEmpty());
  EXPECT_THAT(plan.prompts, ElementsAre("Select an alignment", "", "Select an alignment", ""));
}

TEST_F(PlanViewTest, ZoomsAndMovesDuringAPick) {
  plan.pick();
  const double scale = plan.viewport().scale();
  user.moveTo(plan.view, plan.at(120, 0));
  user.wheel(5);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 2.5 * scale; }));
  user.drag(plan.view, QPoint(300, 300), QPoint(380, 250), Qt::MiddleButton);
  user.click(plan.view, plan.at(110, 0));
  EXPECT_TRUE(user.waitFor([&] { return !plan.picked.empty(); }));
  EXPECT_THAT(plan.picked, ElementsAre(kRoad));
}

TEST_F(PlanViewTest, TakesAPickThatIsOfferedFromElsewhere) {
  onGui([&] { plan.view->offerPick(kRoad); });
  EXPECT_THAT(plan.picked, IsEmpty()) << "nothing was asked";
  plan.pick();
  onGui([&] { plan.view->offerPick(kGround); });
  EXPECT_THAT(plan.picked, ElementsAre(kGround));
  EXPECT_FALSE(onGui([&] { return plan.view->isInteracting(); }));
}

TEST_F(PlanViewTest, TakesTheKeyboardWhenItAsks) {
  onGui([&] { plan.view->clearFocus(); });
  plan.pick();
  EXPECT_TRUE(user.waitFor([&] { return plan.view->hasFocus(); }));
}

TEST_F(PlanViewTest, GivesUpOnceWhenItIsCancelledAndIsReadyAgain) {
  plan.pick();
  onGui([&] {
    plan.view->cancelInteraction();
    plan.view->cancelInteraction();
  });
  EXPECT_EQ(plan.gaveUp, 1);
  plan.pick();
  plan.select();
  EXPECT_EQ(plan.gaveUp, 2) << "one question takes the place of the other";
}

TEST_F(PlanViewTest, LosesItsSceneDuringAnInteraction) {
  plan.select();
  user.click(plan.view, plan.at(40, -30));
  ASSERT_TRUE(counts(1));
  onGui([&] { plan.view->setScene(nullptr); });
  EXPECT_EQ(plan.gaveUp, 1);
  EXPECT_FALSE(onGui([&] { return plan.view->isInteracting(); }));
  user.moveTo(plan.view, QPoint(200, 200));
  user.click(plan.view, QPoint(210, 210));
  user.wheel(2);
  EXPECT_TRUE(user.waitFor([&] { return !plan.clicked.empty(); }));
  EXPECT_THAT(plan.clicked, ElementsAre(0U));
}

TEST_F(PlanViewTest, AsksWithoutADrawingToo) {
  onGui([&] { plan.view->setScene(nullptr); });
  plan.pick();
  EXPECT_TRUE(onGui([&] { return plan.view->isInteracting(); }));
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return plan.gaveUp == 1; }));
}

// ---------------------------------------------------------------- selecting points

TEST_F(PlanViewTest, SelectsByClicksInTheirOrder) {
  plan.select();
  for (const int number : {4, 1, 3}) {
    user.click(plan.view, plan.at(20.0 + 20.0 * number, -30));
  }
  ASSERT_TRUE(counts(3));
  user.click(plan.view, plan.at(40, -30));
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), ElementsAre(kPoint + 3, kPoint, kPoint + 2));
  EXPECT_THAT(plan.prompts, ElementsAre("Select points", ""));
  EXPECT_THAT(plan.clicked, IsEmpty());
}

TEST_F(PlanViewTest, SelectsOnlyTheKindThatIsAskedFor) {
  plan.select();
  user.drag(plan.view, plan.at(30, 40), plan.at(110, -40));
  ASSERT_TRUE(counts(4));
  user.key(Qt::Key_Enter);
  EXPECT_THAT(finished(), ElementsAre(kPoint, kPoint + 1, kPoint + 2, kPoint + 3));
}

TEST_F(PlanViewTest, SelectsAnyKindWhereNoneIsAskedFor) {
  plan.select(std::nullopt);
  user.drag(plan.view, plan.at(130, 40), plan.at(170, -40));
  ASSERT_TRUE(counts(2)) << plan.box();
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), ElementsAre(kSquareSection, kPoint + 5));
}

TEST_F(PlanViewTest, TakesWhatLiesWhollyInsideToTheRightAndWhatItTouchesToTheLeft) {
  plan.select(ObjectKind::SampleLine);
  user.drag(plan.view, plan.at(90, 30), plan.at(160, 0));
  ASSERT_TRUE(counts(0));
  user.drag(plan.view, plan.at(160, 30), plan.at(90, 0));
  ASSERT_TRUE(counts(2));
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), ElementsAre(kSection, kSquareSection));
}

TEST_F(PlanViewTest, EndsARectangleAtTheSecondClick) {
  plan.select();
  user.click(plan.view, plan.at(50, -20));
  user.moveTo(plan.view, plan.at(80, -25));
  user.click(plan.view, plan.at(110, -40));
  ASSERT_TRUE(counts(3));
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), ElementsAre(kPoint + 1, kPoint + 2, kPoint + 3));
}

TEST_F(PlanViewTest, KeepsTheFirstCornerInTheDrawingWhileTheViewMoves) {
  plan.select();
  user.click(plan.view, plan.at(50, -20));
  user.moveTo(plan.view, plan.at(100, -30));
  user.wheel(2);
  user.click(plan.view, plan.at(110, -40));
  ASSERT_TRUE(counts(3));
}

TEST_F(PlanViewTest, RemovesWithShift) {
  plan.select();
  user.drag(plan.view, plan.at(30, -20), plan.at(150, -40));
  ASSERT_TRUE(counts(6));
  user.click(plan.view, plan.at(60, -30), Qt::LeftButton, Qt::ShiftModifier);
  ASSERT_TRUE(counts(5));
  user.drag(plan.view, plan.at(90, -20), plan.at(150, -40), Qt::LeftButton, Qt::ShiftModifier);
  ASSERT_TRUE(counts(2));
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), ElementsAre(kPoint, kPoint + 2));
}

TEST_F(PlanViewTest, SwitchesToRemovingAndBackByTheKeysRAndA) {
  plan.select();
  user.drag(plan.view, plan.at(30, -20), plan.at(90, -40));
  ASSERT_TRUE(counts(3));
  user.key(Qt::Key_R);
  EXPECT_TRUE(user.waitFor([&] { return plan.view->pointerBox().contains(QStringLiteral("Remove points")); }));
  user.click(plan.view, plan.at(40, -30));
  ASSERT_TRUE(counts(2));
  user.key(Qt::Key_A);
  user.click(plan.view, plan.at(40, -30));
  ASSERT_TRUE(counts(3));
  user.click(plan.view, plan.at(160, 85), Qt::RightButton);
  EXPECT_THAT(finished(), ElementsAre(kPoint + 1, kPoint + 2, kPoint)) << "what comes again comes last";
  EXPECT_THAT(plan.prompts, ElementsAre("Select points", "Remove points", "Select points", ""));
}

TEST_F(PlanViewTest, EndsWithNothingSelectedToo) {
  plan.select();
  user.key(Qt::Key_Return);
  EXPECT_THAT(finished(), IsEmpty());
  EXPECT_EQ(plan.gaveUp, 0);
}

TEST_F(PlanViewTest, GivesASelectionUpAtEscape) {
  plan.select();
  user.click(plan.view, plan.at(40, -30));
  ASSERT_TRUE(counts(1));
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return plan.gaveUp == 1; }));
  EXPECT_FALSE(plan.selected.has_value());
}

TEST_F(PlanViewTest, AddsWhatIsOfferedIfItIsOfTheKind) {
  plan.select();
  onGui([&] {
    plan.view->offerPick(kRoad);
    plan.view->offerPick(kPoint + 4);
  });
  EXPECT_TRUE(counts(1));
}

// ---------------------------------------------------------------- what is on the screen

TEST_F(PlanViewTest, BecomesSharpAfterEveryMoveAndShowsWhatIsSelected) {
  ASSERT_TRUE(user.waitFor([&] { return plan.view->isSharp(); }));
  user.moveTo(plan.view, plan.at(120, 0));
  user.wheel(7);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 12.0 && plan.view->isSharp(); }));
  const auto shot = [&] { return onGui([&] { return plan.view->grab().toImage(); }); };
  user.moveTo(plan.view, QPoint(5, 5));
  const QImage before = shot();
  onGui([&] { plan.view->setSelected({kRoad, 0xdead}); });
  EXPECT_NE(shot(), before);
  onGui([&] { plan.view->setSelected({}); });
  EXPECT_EQ(shot(), before);
}

}  // namespace
}  // namespace lvx::test
