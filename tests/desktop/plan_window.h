// A small drawing in a plan of its own, and what the plan told.
#pragma once

#include <QPoint>
#include <QPointF>
#include <QString>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/plan/plan_view.h"
#include "desktop_user/desktop_user.h"

namespace lvx::test {

using civil::Handle;
using civil::ObjectKind;
using civil::Vec2;
using desktop::PlanView;

inline constexpr Handle kRoad = 0x10;
inline constexpr Handle kSection = 0x20;
inline constexpr Handle kSquareSection = 0x21;
inline constexpr Handle kGround = 0x30;
inline constexpr Handle kPoint = 0x40;  // of the first point; the others follow
inline constexpr Handle kCorridor = 0x50;

/// A road to the east along y = 0 from x = 0 to 200 on ground from -60 to 60; two sample lines; points 1 to 6 in a row
/// below it at y = -30, number 7 apart from everything; a corridor 8 wide from station 0 to 80.
inline civil::Drawing drawing() {
  civil::Drawing made;
  auto road = std::make_unique<civil::AlignmentObject>();
  road->handle = kRoad;
  road->name = "Road";
  road->geometry = civil::Alignment::fromText("at 0 0 heading 90; line 200");
  civil::SampleLineGroup group;
  group.handle = 0x1f;
  group.name = "Sections";
  group.lines.push_back({.handle = kSection, .name = "0+100", .station = 100.0, .vertices = {{100, 20}, {100, -20}}});
  group.lines.push_back(
      {.handle = kSquareSection, .name = "0+150", .station = 150.0, .vertices = {{150, 20}, {150, -20}}});
  road->sampleLineGroups.push_back(std::move(group));

  civil::Corridor corridor;
  corridor.handle = kCorridor;
  corridor.name = "Carriageway";
  civil::Region region;
  region.endStation = 80.0;
  for (const double station : {0.0, 40.0, 80.0}) {
    civil::SectionPart part;
    part.points = {{-4.0, 0.0, {}}, {4.0, 0.0, {}}};
    civil::CorridorSection section;
    section.station = station;
    section.parts.push_back(std::move(part));
    region.stations.insert(station);
    region.sections.push_back(std::move(section));
  }
  civil::Baseline baseline;
  baseline.alignment = road.get();
  baseline.regions.push_back(std::move(region));
  corridor.baselines.push_back(std::move(baseline));
  made.corridors.push_back(std::move(corridor));
  made.siteless.alignments.push_back(std::move(road));

  for (int number = 1; number <= 7; ++number) {
    civil::Point point;
    point.handle = kPoint + static_cast<Handle>(number) - 1;
    point.number = number;
    point.position = number < 7 ? civil::Vec3{20.0 + 20.0 * number, -30.0, 100.0} : civil::Vec3{20.0, 90.0, 100.0};
    made.points.push_back(std::move(point));
  }
  civil::SurfaceObject ground;
  ground.handle = kGround;
  ground.name = "Ground";
  ground.surface =
      civil::TinSurface({{-20, -60, 100}, {220, -60, 104}, {220, 60, 110}, {-20, 60, 107}}, {{0, 1, 2}, {0, 2, 3}});
  made.surfaces.push_back(std::move(ground));
  return made;
}

/// A plan in a window of its own, and what it told.
struct Plan {
  explicit Plan(bool hasScene = true) {
    onGui([this, hasScene] {
      view = new PlanView;
      view->setWindowTitle(QStringLiteral("Plan"));
      view->resize(800, 600);
      QObject::connect(view, &PlanView::clicked, [this](quint64 handle) { clicked.push_back(handle); });
      QObject::connect(view, &PlanView::activated, [this](quint64 handle) { activated.push_back(handle); });
      QObject::connect(view, &PlanView::picked, [this](quint64 handle) { picked.push_back(handle); });
      QObject::connect(view, &PlanView::selected,
                       [this](const QList<quint64>& handles) { selected.emplace(handles.begin(), handles.end()); });
      QObject::connect(view, &PlanView::gaveUp, [this] { ++gaveUp; });
      QObject::connect(view, &PlanView::promptChanged,
                       [this](const QString& prompt) { prompts.push_back(prompt.toStdString()); });
      QObject::connect(view, &PlanView::mouseAt, [this](QPointF place) { mouse = place; });
      QObject::connect(view, &PlanView::mouseGone, [this] { mouse.reset(); });
      if (hasScene) view->setScene(std::make_shared<view::PlanScene>(model));
      view->show();
    });
  }
  ~Plan() {
    onGui([this] { delete view; });
  }
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;

  /// Where a place of the drawing is in the window.
  [[nodiscard]] QPoint at(double x, double y) const {
    return onGui([&] {
      const Vec2 pixel = view->viewport().toPixels({x, y});
      return QPoint(static_cast<int>(std::lround(pixel.x)), static_cast<int>(std::lround(pixel.y)));
    });
  }
  /// Whether the place is at the pixel still; scaled screens have places between pixels.
  [[nodiscard]] bool isStillAt(double x, double y, QPoint pixel) const {
    const QPoint off = at(x, y) - pixel;
    return std::abs(off.x()) <= 1 && std::abs(off.y()) <= 1;
  }
  [[nodiscard]] view::Viewport viewport() const {
    return onGui([this] { return view->viewport(); });
  }
  [[nodiscard]] std::string box() const {
    return onGui([this] { return view->pointerBox().join(QLatin1Char('|')).toStdString(); });
  }
  void pick() {
    onGui([this] { view->startPick(QStringLiteral("Select an alignment")); });
  }
  void select(std::optional<ObjectKind> only = ObjectKind::Point) {
    onGui(
        [this, only] { view->startSelection(QStringLiteral("Select points"), QStringLiteral("Remove points"), only); });
  }

  civil::Drawing model = drawing();
  PlanView* view = nullptr;
  std::vector<Handle> clicked;
  std::vector<Handle> activated;
  std::vector<Handle> picked;
  std::optional<std::vector<Handle>> selected;
  int gaveUp = 0;
  std::vector<std::string> prompts;
  std::optional<QPointF> mouse;
};

class PlanViewTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Plan")), nullptr); }
  /// Until what was selected so far counts `count`.
  [[nodiscard]] bool counts(int count) const {
    return user.waitFor(
        [&] { return plan.view->pointerBox().contains(QString::number(count) + QStringLiteral(" selected")); });
  }
  [[nodiscard]] std::vector<Handle> finished() const {
    EXPECT_TRUE(user.waitFor([&] { return plan.selected.has_value(); }));
    return plan.selected.value_or(std::vector<Handle>{});
  }

  Plan plan;
  DesktopUser user;
};

}  // namespace lvx::test
