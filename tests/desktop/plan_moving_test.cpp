// A rectangle to zoom to, views to go back to, and fingers over the plan.
#include <QApplication>
#include <QGestureEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QPointingDevice>
#include <QWheelEvent>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/plan/view_history.h"
#include "desktop_user/desktop_user.h"
#include "plan_window.h"

namespace lvx::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PlanMovingTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Plan")), nullptr); }
  [[nodiscard]] bool isAbout(double x, double y, double scale) const {
    return onGui([&] {
      const view::Viewport& port = plan.view->viewport();
      return std::abs(port.centre().x - x) < 0.02 * std::abs(x) + 1.0 && std::abs(port.centre().y - y) < 1.5 &&
             std::abs(port.scale() / scale - 1.0) < 0.03;
    });
  }

  Plan plan;
  DesktopUser user;
};

// ---------------------------------------------------------------- a rectangle to zoom to

TEST_F(PlanMovingTest, ZoomsToTheRectangleThatIsDrawn) {
  onGui([&] { plan.view->startZoomRectangle(); });
  user.drag(plan.view, plan.at(80, 30), plan.at(120, 0));
  ASSERT_TRUE(user.waitFor([&] { return !plan.view->isZoomingToRectangle(); }));
  EXPECT_TRUE(isAbout(100, 15, 20.0));  // 40 by 30 in 800 by 600
  EXPECT_THAT(plan.clicked, IsEmpty());
}

TEST_F(PlanMovingTest, ZoomsToTheRectangleBetweenTwoClicks) {
  onGui([&] { plan.view->startZoomRectangle(); });
  user.click(plan.view, plan.at(80, 30));
  ASSERT_TRUE(user.waitFor([&] { return plan.view->pointerBox().first().startsWith(QStringLiteral("The opp")); }));
  user.click(plan.view, plan.at(120, 0));
  ASSERT_TRUE(user.waitFor([&] { return !plan.view->isZoomingToRectangle(); }));
  EXPECT_TRUE(isAbout(100, 15, 20.0));
}

TEST_F(PlanMovingTest, ZoomsByCtrlAndADragWhileACommandAsks) {
  plan.pick();
  user.drag(plan.view, plan.at(80, 20), plan.at(120, -10), Qt::LeftButton, Qt::ControlModifier);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 15.0; }));
  EXPECT_TRUE(isAbout(100, 5, 20.0));
  EXPECT_TRUE(onGui([&] { return plan.view->isInteracting(); })) << "the question goes on";
  user.click(plan.view, plan.at(90, 0));
  ASSERT_TRUE(user.waitFor([&] { return !plan.picked.empty(); }));
  EXPECT_THAT(plan.picked, ElementsAre(kRoad));
}

// ---------------------------------------------------------------- views before

TEST_F(PlanMovingTest, GoesBackToTheViewsBeforeAndForthAgain) {
  const double all = plan.viewport().scale();
  onGui([&] { plan.view->zoomTo(kSection); });
  const double section = plan.viewport().scale();
  onGui([&] { plan.view->zoomToBox({0, 0, 8, 6}); });
  EXPECT_FALSE(onGui([&] { return plan.view->hasNextView(); }));
  onGui([&] { plan.view->showPreviousView(); });
  EXPECT_DOUBLE_EQ(plan.viewport().scale(), section);
  onGui([&] { plan.view->showPreviousView(); });
  EXPECT_DOUBLE_EQ(plan.viewport().scale(), all);
  onGui([&] { plan.view->showPreviousView(); });
  EXPECT_DOUBLE_EQ(plan.viewport().scale(), all) << "there is none before the first";
  onGui([&] { plan.view->showNextView(); });
  EXPECT_DOUBLE_EQ(plan.viewport().scale(), section);
}

TEST_F(PlanMovingTest, CountsATurnOfTheWheelAsOneView) {
  const double all = plan.viewport().scale();
  user.moveTo(plan.view, plan.at(100, 0));
  user.wheel(5);
  ASSERT_TRUE(user.waitFor([&] { return plan.view->viewport().scale() > 2.9 * all; }));
  onGui([&] { plan.view->showPreviousView(); });
  EXPECT_DOUBLE_EQ(plan.viewport().scale(), all);
}

TEST(ViewHistory, ForgetsTheViewsThatWereGoneBackFrom) {
  desktop::ViewHistory history;
  const auto at = [](double x) { return desktop::PlanPlace{{x, 0.0}, 1.0, false}; };
  history.begin(at(0));
  history.note(at(1), true);
  history.note(at(2), true);
  EXPECT_EQ(history.back().centre.x, 1.0);
  history.note(at(3), true);
  EXPECT_FALSE(history.hasNext());
  EXPECT_EQ(history.back().centre.x, 1.0);
  EXPECT_EQ(history.back().centre.x, 0.0);
  EXPECT_FALSE(history.hasBefore());
}

TEST(ViewHistory, KeepsABoundedNumberOfViews) {
  desktop::ViewHistory history;
  history.begin({{0.0, 0.0}, 1.0, false});
  for (int i = 1; i <= 500; ++i) history.note({{double(i), 0.0}, 1.0, false}, true);
  int steps = 0;
  double last = 500.0;
  for (; history.hasBefore(); ++steps) last = history.back().centre.x;
  EXPECT_EQ(steps, 99);
  EXPECT_EQ(last, 401.0);
}

// ---------------------------------------------------------------- fingers

TEST_F(PlanMovingTest, MovesByTwoFingersOnATouchpadAndZoomsByThemWithCtrl) {
  const view::Viewport before = plan.viewport();
  const auto roll = [&](QPoint pixels, QPoint angle, Qt::KeyboardModifiers modifiers) {
    onGui([&] {
      QWheelEvent wheel(QPointF(400, 300), plan.view->mapToGlobal(QPointF(400, 300)), pixels, angle, Qt::NoButton,
                        modifiers, Qt::ScrollUpdate, false);
      QApplication::sendEvent(plan.view, &wheel);
    });
  };
  roll({30, -20}, {60, -40}, Qt::NoModifier);
  const view::Viewport moved = plan.viewport();
  EXPECT_EQ(moved.scale(), before.scale());
  EXPECT_NEAR(moved.centre().x, before.centre().x - 30.0 / before.scale(), 1e-9);
  EXPECT_NEAR(moved.centre().y, before.centre().y - 20.0 / before.scale(), 1e-9);
  roll({0, 60}, {0, 120}, Qt::ControlModifier);
  EXPECT_NEAR(plan.viewport().scale(), 1.25 * before.scale(), 1e-9);
}

TEST_F(PlanMovingTest, ZoomsByAPinchOnATouchpadAroundTheFingers) {
  const view::Viewport before = plan.viewport();
  const Vec2 under = before.toDrawing({200, 150});
  onGui([&] {
    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, QPointF(200, 150),
                              QPointF(200, 150), plan.view->mapToGlobal(QPointF(200, 150)), 0.5, QPointF());
    QApplication::sendEvent(plan.view, &pinch);
  });
  EXPECT_NEAR(plan.viewport().scale(), 1.5 * before.scale(), 1e-9);
  EXPECT_NEAR(plan.viewport().toPixels(under).x, 200.0, 1e-6);
  EXPECT_NEAR(plan.viewport().toPixels(under).y, 150.0, 1e-6);
}

TEST_F(PlanMovingTest, MovesAndZoomsByTwoFingersOnTheScreen) {
  const view::Viewport before = plan.viewport();
  const Vec2 under = before.toDrawing({300, 200});
  onGui([&] {
    QPinchGesture pinch;
    pinch.setLastCenterPoint(plan.view->mapToGlobal(QPointF(300, 200)));
    pinch.setCenterPoint(plan.view->mapToGlobal(QPointF(340, 230)));
    pinch.setScaleFactor(2.0);
    pinch.setChangeFlags(QPinchGesture::ScaleFactorChanged | QPinchGesture::CenterPointChanged);
    QGestureEvent event({&pinch});
    QApplication::sendEvent(plan.view, &event);
  });
  EXPECT_NEAR(plan.viewport().scale(), 2.0 * before.scale(), 1e-9);
  // What lay under the fingers before lies under them now.
  EXPECT_NEAR(plan.viewport().toPixels(under).x, 340.0, 1e-6);
  EXPECT_NEAR(plan.viewport().toPixels(under).y, 230.0, 1e-6);
}

}  // namespace
}  // namespace lvx::test
