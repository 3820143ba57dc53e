// What the plan is made of, without a window: labels, the selection, finished pictures.
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/plan/label_placer.h"
#include "desktop/plan/plan_furniture.h"
#include "desktop/plan/plan_painter.h"
#include "desktop/plan/plan_selection.h"
#include "desktop/plan/tile_worker.h"
#include "desktop_user/desktop_user.h"
#include "landxml/reader.h"
#include "support/places.h"

namespace lvx::test {
namespace {

using civil::Handle;
using desktop::LabelPlacer;
using desktop::PlanFurniture;
using desktop::PlanPainter;
using desktop::PlanSelection;
using testing::ElementsAre;

const QRectF kArea(0, 0, 800, 600);

// ---------------------------------------------------------------- labels

TEST(LabelPlacer, GivesAPlaceToWhoAsksFirst) {
  LabelPlacer placer(kArea);
  EXPECT_TRUE(placer.place({100, 100}, {60, 12}, 0));
  EXPECT_FALSE(placer.place({130, 105}, {60, 12}, 0));
  EXPECT_TRUE(placer.place({160, 100}, {60, 12}, 0)) << "side by side is no overlap";
  EXPECT_TRUE(placer.place({100, 113}, {60, 12}, 0));
}

TEST(LabelPlacer, KnowsThatTurnedLabelsAreNarrow) {
  LabelPlacer placer(kArea);
  ASSERT_TRUE(placer.place({300, 300}, {120, 10}, 45));
  EXPECT_TRUE(placer.place({325, 300}, {120, 10}, 45)) << "beside it, though their boxes overlap";
  EXPECT_FALSE(placer.place({300, 300}, {120, 10}, -45)) << "across it";
  EXPECT_FALSE(placer.place({340, 340}, {20, 10}, 0)) << "on its end";
  EXPECT_TRUE(placer.place({340, 260}, {20, 10}, 0)) << "in the empty corner of its box";
}

TEST(LabelPlacer, PlacesNothingThatWouldBeCut) {
  LabelPlacer placer(kArea);
  EXPECT_FALSE(placer.place({20, 100}, {60, 12}, 0));
  EXPECT_TRUE(placer.place({20, 100}, {60, 12}, 90));
  EXPECT_FALSE(placer.place({900, 100}, {60, 12}, 0));
}

TEST(LabelPlacer, KeepsReservedPlacesFree) {
  LabelPlacer placer(kArea);
  placer.reserve(QRectF(700, 500, 300, 300));
  placer.reserve(QRectF(710, 510, 20, 20));
  EXPECT_FALSE(placer.place({690, 520}, {40, 12}, 0));
  EXPECT_TRUE(placer.place({670, 520}, {40, 12}, 0));
}

TEST(PlanFurniture, MeasuresInRoundSteps) {
  for (const auto& [most, step] : {std::pair(180.0, 100.0), std::pair(0.4, 0.2), std::pair(5.0, 5.0),
                                   std::pair(99.0, 50.0), std::pair(0.0012, 0.001)})
    EXPECT_DOUBLE_EQ(PlanFurniture::roundStep(most), step) << most;
}

// ---------------------------------------------------------------- selection

TEST(PlanSelection, KeepsTheOrderOfAdding) {
  PlanSelection selection;
  selection.add(std::vector<Handle>{5, 3, 9});
  selection.add(std::vector<Handle>{3, 0, 4});
  EXPECT_THAT(selection.handles(), ElementsAre(5, 3, 9, 4));
  selection.remove(std::vector<Handle>{3, 7});
  selection.add(std::vector<Handle>{3});
  EXPECT_THAT(selection.handles(), ElementsAre(5, 9, 4, 3));
  EXPECT_EQ(selection.size(), 4U);
  EXPECT_FALSE(selection.has(7));
}

// ---------------------------------------------------------------- pictures

/// The ground and nothing over it.
desktop::PlanLook groundAlone(desktop::SurfaceLook surface) {
  return {.surface = surface,
          .triangles = false,
          .border = false,
          .alignments = false,
          .stations = false,
          .sampleLines = false,
          .points = false,
          .corridors = false};
}

class PlanPicture : public testing::Test {
 protected:
  static constexpr int kWidth = 640;
  static constexpr int kHeight = 400;

  PlanPicture() : drawing(landxml::readDrawing(test::inSource("/examples/valley-road.xml"))) {
    scene = std::make_shared<view::PlanScene>(drawing);
    port.show(scene->box());
  }

  PlanPainter::Result paint(PlanPainter& painter, QImage& image, view::TileCache& cache, PlanPainter::Tiles tiles) {
    // On the thread of the windows, as everything that asks for fonts.
    return onGui([&] {
      QPainter onImage(&image);
      return painter.paint(onImage, {.scene = *scene, .viewport = port, .look = look, .font = QApplication::font()},
                           cache, tiles);
    });
  }
  static QImage blank(double ratio) {
    QImage image(QSize(kWidth, kHeight) * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    return image;
  }

  civil::Drawing drawing;
  std::shared_ptr<view::PlanScene> scene;
  view::Viewport port{kWidth, kHeight};
  desktop::PlanLook look;
};

/// How far the two are apart where they differ most, of 255.
int difference(const QImage& one, const QImage& other) {
  if (one.size() != other.size()) return 256;
  int most = 0;
  for (int y = 0; y < one.height(); ++y)
    for (int x = 0; x < one.width(); ++x) {
      const QRgb a = one.pixel(x, y);
      const QRgb b = other.pixel(x, y);
      most =
          std::max({most, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
    }
  return most;
}

TEST_F(PlanPicture, IsTheSameByAndByAndInOneGo) {
  // Letters may come out a shade otherwise after others were drawn; the ground never does.
  constexpr int kShade = 32;
  for (const bool hasLabels : {false, true}) {
    look.alignments = look.sampleLines = look.points = hasLabels;
    for (const double ratio : {1.0, 1.5, 2.0}) {
      for (const double factor : {1.0, 3.7, 11.0}) {
        port.zoomAt({200, 220}, factor);
        QImage slow = blank(ratio);
        PlanPainter painter;
        desktop::TileWorker worker([] {});
        worker.setScene(scene);
        bool isDone = false;
        for (int tries = 0; tries < 2000 && !isDone; ++tries) {
          PlanPainter::Result result = paint(painter, slow, worker.cache(), PlanPainter::Tiles::AsThere);
          isDone = result.isSharp && !result.isUnfinished;
          worker.makeRoom(2 * result.wantedBytes);
          worker.want(std::move(result.wanted));
        }
        ASSERT_TRUE(isDone);
        QImage fast = blank(ratio);
        PlanPainter other;
        view::TileCache cache;
        EXPECT_TRUE(paint(other, fast, cache, PlanPainter::Tiles::AllNow).isSharp);
        EXPECT_LE(difference(slow, fast), hasLabels ? kShade : 0) << "ratio " << ratio << ", enlarged by " << factor;
      }
      port.show(scene->box());
    }
  }
}

TEST_F(PlanPicture, ShowsACoarserGroundUntilTheSharpOneIsThere) {
  look = groundAlone(desktop::SurfaceLook::Heights);
  PlanPainter painter;
  view::TileCache cache;
  QImage all = blank(1.0);
  paint(painter, all, cache, PlanPainter::Tiles::AllNow);
  port.zoomAt({200, 190}, 8.0);
  QImage coarse = blank(1.0);
  EXPECT_FALSE(paint(painter, coarse, cache, PlanPainter::Tiles::AsThere).isSharp);
  QImage sharp = blank(1.0);
  EXPECT_TRUE(paint(painter, sharp, cache, PlanPainter::Tiles::AllNow).isSharp);
  // Ground is ground in both but at its very border, and of about the same colour.
  int shown = 0;
  int missing = 0;
  int off = 0;
  const QRgb empty = sharp.pixel(0, 0);
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      if (sharp.pixel(x, y) == empty) continue;
      ++shown;
      if (coarse.pixel(x, y) == empty) ++missing;
      if (std::abs(qGreen(coarse.pixel(x, y)) - qGreen(sharp.pixel(x, y))) > 24) ++off;
    }
  ASSERT_GT(shown, 10'000);
  EXPECT_LT(missing, shown / 20);
  EXPECT_LT(off, shown / 10);
}

TEST_F(PlanPicture, LeavesOutWhatIsSwitchedOff) {
  PlanPainter painter;
  view::TileCache cache;
  const auto picture = [&] {
    QImage image = blank(1.0);
    paint(painter, image, cache, PlanPainter::Tiles::AllNow);
    return image;
  };
  const QImage all = picture();
  for (bool desktop::PlanLook::*const layer :
       {&desktop::PlanLook::border, &desktop::PlanLook::alignments, &desktop::PlanLook::stations,
        &desktop::PlanLook::sampleLines, &desktop::PlanLook::points, &desktop::PlanLook::corridors,
        &desktop::PlanLook::dark}) {
    look.*layer = !(look.*layer);
    EXPECT_NE(picture(), all);
    look.*layer = !(look.*layer);
  }
  EXPECT_EQ(picture(), all);
}

TEST_F(PlanPicture, DrawsContoursOverTheGroundMoreOfThemAtASmallerInterval) {
  look = groundAlone(desktop::SurfaceLook::Relief);
  PlanPainter painter;
  view::TileCache cache;
  const auto picture = [&](double interval) {
    look.contours = interval >= 0.0;
    look.contourInterval = std::max(interval, 0.0);
    QImage image = blank(1.0);
    paint(painter, image, cache, PlanPainter::Tiles::AllNow);
    return image;
  };
  const auto differing = [](const QImage& one, const QImage& other) {
    int count = 0;
    for (int y = 0; y < one.height(); ++y)
      for (int x = 0; x < one.width(); ++x) count += one.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
    return count;
  };
  const QImage plain = picture(-1.0);
  const int coarse = differing(picture(5.0), plain);
  const int fine = differing(picture(1.0), plain);
  EXPECT_GT(coarse, 50);
  EXPECT_GT(fine, 2 * coarse);
  EXPECT_GT(differing(picture(0.0), plain), 50) << "by the scale";
  EXPECT_EQ(picture(-1.0), plain);
}

TEST_F(PlanPicture, DrawsContoursWithoutGroundTooAndNoneOfAHiddenSurface) {
  look.surface = desktop::SurfaceLook::None;
  PlanPainter painter;
  view::TileCache cache;
  const auto picture = [&] {
    QImage image = blank(1.0);
    paint(painter, image, cache, PlanPainter::Tiles::AllNow);
    return image;
  };
  const QImage plain = picture();
  look.contours = true;
  EXPECT_NE(picture(), plain);
  look.contours = false;
  std::vector<Handle> surfaces;
  for (const view::SurfaceShape& shape : scene->surfaces()) surfaces.push_back(shape.object->handle);
  view::Visibility visibility;
  visibility.hide(surfaces);
  scene->setVisibility(visibility);
  const QImage hidden = picture();
  look.contours = true;
  EXPECT_EQ(picture(), hidden);
}

}  // namespace
}  // namespace lvx::test
