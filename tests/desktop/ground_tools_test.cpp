// What the user asks of the ground in the plan: measuring, and the difference of two surfaces.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QImage>
#include <QKeySequence>
#include <QPainter>
#include <QStatusBar>
#include <QTableWidget>
#include <cmath>

#include "desktop/ground/difference_work.h"
#include "desktop/plan/plan_sheet.h"
#include "desktop/plan/plan_view.h"
#include "drawing_parts.h"

namespace lvx::test {
namespace {

/// Level at 5 over the ground's western half and 50 beyond it to the west.
const std::string kDesign =
    "<Surfaces><Surface name=\"Design\"><Definition surfType=\"TIN\"><Pnts><P id=\"1\">0 -50 5</P><P id=\"2\">0 100 "
    "5</P>"
    "<P id=\"3\">80 100 5</P><P id=\"4\">80 -50 5</P></Pnts><Faces><F>1 2 3</F><F>1 3 "
    "4</F></Faces></Definition></Surface>"
    "</Surfaces>";

class GroundToolsTest : public testing::Test {
 protected:
  static void start(const ProgramWindow& program, const char* action) {
    onGui([&] { program.window->findChild<QAction*>(QLatin1String(action))->trigger(); });
  }
  /// Where a place of the drawing is in the plan.
  static QPoint pixel(const ProgramWindow& program, double east, double north) {
    return onGui([&] {
      const civil::Vec2 at = program.window->plan().viewport().toPixels({east, north});
      return QPoint(static_cast<int>(std::lround(at.x)), static_cast<int>(std::lround(at.y)));
    });
  }
  static void moveTo(ProgramWindow& program, double east, double north) {
    program.user.moveTo(&program.window->plan(), pixel(program, east, north));
  }
  static void click(ProgramWindow& program, double east, double north) {
    program.user.click(&program.window->plan(), pixel(program, east, north));
  }
  static std::string box(const ProgramWindow& program) {
    return onGui([&] { return program.window->plan().pointerBox().join(QLatin1Char('|')).toStdString(); });
  }
  static bool waitForBox(const ProgramWindow& program, const std::string& part) {
    return program.user.waitFor([&] {
      return program.window->plan().pointerBox().join(QLatin1Char('|')).toStdString().find(part) != std::string::npos;
    });
  }
  static bool isMeasuring(const ProgramWindow& program) {
    return onGui([&] { return program.window->plan().isInteracting(); });
  }
  static void begin(ProgramWindow& program) {
    start(program, "measure");
    ASSERT_TRUE(program.user.waitFor([&] { return program.window->plan().isInteracting(); }));
  }

  TemporaryFolder folder;
  QString drawing = writeDrawing(folder, "all.xml", drawingIn("meter", kRoad + kGround + kPoints));
};

// ---------------------------------------------------------------- measuring

TEST_F(GroundToolsTest, MeasuresBetweenWhatItSnapsTo) {
  ProgramWindow program(drawing);
  begin(program);
  EXPECT_TRUE(waitForBox(program, "Measure: points"));
  // The ground's corner at 200 0, a corner of its triangles, and the one at 200 80.
  moveTo(program, 200, 0);
  EXPECT_TRUE(waitForBox(program, "Vertex of Ground|Z 1.000")) << box(program);
  click(program, 200, 0);
  moveTo(program, 200, 80);
  EXPECT_TRUE(waitForBox(program, "Distance 80.000   0.0°|Height 8.000   along the slope 80.399|Slope 10.0 % (1:10.0)"))
      << box(program);
  click(program, 200, 80);
  click(program, 0, 80);
  moveTo(program, 0, 0);
  EXPECT_TRUE(waitForBox(program, "Area 16000.000   perimeter 560.000")) << box(program);
  program.user.key(Qt::Key_Return);
  EXPECT_TRUE(program.waitUntilSaid("In all: distance 280.000, height 8.000, along the slope 280.399"));
  EXPECT_TRUE(program.waitUntilSaid("2: distance 200.000, azimuth 270.0°, height 0.000"));
  EXPECT_TRUE(program.waitUntilSaid("Closed: area 8000.000"));
  EXPECT_FALSE(isMeasuring(program));
}

TEST_F(GroundToolsTest, TakesThePointsBackOneByOneAndEndsThen) {
  ProgramWindow program(drawing);
  begin(program);
  click(program, 200, 0);
  click(program, 200, 80);
  program.user.key(Qt::Key_Escape);
  moveTo(program, 0, 0);
  EXPECT_TRUE(waitForBox(program, "Distance 200.000   270.0°")) << box(program);
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(waitForBox(program, "S: snapping off, Esc: back"));
  EXPECT_TRUE(isMeasuring(program));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] { return !program.window->plan().isInteracting(); }));
  EXPECT_EQ(program.said().find("Measured"), std::string::npos);
}

TEST_F(GroundToolsTest, TurnsSnappingOffAndOnByAKey) {
  ProgramWindow program(drawing);
  begin(program);
  moveTo(program, 50, 40);
  EXPECT_TRUE(waitForBox(program, "Axis Road, station 0+0")) << box(program);
  program.user.key(Qt::Key_S);
  EXPECT_TRUE(waitForBox(program, "S: snapping on"));
  EXPECT_EQ(box(program).find("Axis"), std::string::npos) << box(program);
  program.user.key(Qt::Key_S);
  EXPECT_TRUE(waitForBox(program, "Axis Road, station 0+0")) << box(program);
}

TEST_F(GroundToolsTest, SnapsToNothingThatIsNotDrawn) {
  ProgramWindow program(drawing);
  begin(program);
  onGui([&] {
    desktop::PlanLook look = program.window->plan().look();
    look.alignments = false;
    look.points = false;
    program.window->plan().setLook(look);
  });
  moveTo(program, 50, 60);
  EXPECT_TRUE(waitForBox(program, "Measure: points|Z ")) << box(program);
  moveTo(program, 20, 10);
  EXPECT_TRUE(waitForBox(program, "Measure: points|Z ")) << box(program);
  moveTo(program, 200, 0);
  EXPECT_TRUE(waitForBox(program, "Vertex of Ground")) << box(program);
}

TEST_F(GroundToolsTest, CopiesWhatIsMeasured) {
  ProgramWindow program(drawing);
  begin(program);
  click(program, 200, 0);
  moveTo(program, 200, 80);
  EXPECT_TRUE(waitForBox(program, "Distance 80.000"));
  program.user.key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(program.user.waitFor([] {
    return QGuiApplication::clipboard()->text() ==
           QStringLiteral(
               "1: distance 80.000, azimuth 0.0°, height 8.000, along the slope 80.399, slope 10.0 % (1:10.0)");
  })) << onGui([] { return QGuiApplication::clipboard()->text().toStdString(); });
}

TEST_F(GroundToolsTest, SaysWhereThereIsNoGroundAndGivesDistancesAllTheSame) {
  ProgramWindow program(writeDrawing(folder, "road.xml", drawingIn("meter", kRoad)));
  begin(program);
  click(program, 50, 0);
  moveTo(program, 50, 100);
  EXPECT_TRUE(waitForBox(program, "End on Road, station 0+100.000|no ground here|Distance 100.000   0.0°"))
      << box(program);
  click(program, 50, 100);
  program.user.key(Qt::Key_Return);
  EXPECT_TRUE(program.waitUntilSaid("1: distance 100.000, azimuth 0.0°, no ground at an end"));
}

TEST_F(GroundToolsTest, EndsWithTheDrawing) {
  ProgramWindow program(drawing);
  begin(program);
  click(program, 200, 0);
  program.enter("OPEN " + writeDrawing(folder, "other.xml", drawingIn("meter", kRoad)).toStdString());
  EXPECT_TRUE(program.user.waitFor([&] { return !program.window->plan().isInteracting(); }));
}

TEST_F(GroundToolsTest, TheStatusLineTellsElevationAndSlopeOfTheGround) {
  ProgramWindow program(drawing);
  auto* const words = program.part<QLabel>("groundHere");
  moveTo(program, 120, 40);
  ASSERT_TRUE(program.user.waitFor([&] { return words->text().endsWith(QStringLiteral("10.0 % to 180.0°")); }))
      << onGui([&] { return words->text().toStdString(); });
  EXPECT_TRUE(onGui([&] {
    return words->text().startsWith(QStringLiteral("Z 5.")) || words->text().startsWith(QStringLiteral("Z 4.9"));
  })) << onGui([&] { return words->text().toStdString(); });
  moveTo(program, 50, 95);
  EXPECT_TRUE(program.user.waitFor([&] { return words->text() == QStringLiteral("no ground here"); }));
}

TEST_F(GroundToolsTest, TheStatusLineGivesWayWhereTheWindowIsNarrow) {
  ProgramWindow program(drawing);
  const auto* const words = program.part<QLabel>("groundHere");
  const auto* const station = program.part<QLabel>("station");
  moveTo(program, 120, 40);
  ASSERT_TRUE(
      program.user.waitFor([&] { return !words->text().isEmpty() && station->text().contains(QLatin1String("+")); }));
  // Half of the smallest screen, which is all of it where letters are twice as large.
  constexpr int kHalfAScreen = 512;
  EXPECT_LE(onGui([&] { return program.window->statusBar()->minimumSizeHint().width(); }), kHalfAScreen);
}

// ---------------------------------------------------------------- the difference of two surfaces

class DifferenceTest : public GroundToolsTest {
 protected:
  DifferenceTest() { drawing = writeDrawing(folder, "two.xml", drawingIn("meter", kRoad + kGround + kDesign)); }

  static QWidget* open(ProgramWindow& program) {
    start(program, "difference");
    return program.waitForNamed("differenceDialog");
  }
  template <class Widget>
  static Widget* part(QWidget* dialog, const char* name) {
    return onGui([&] { return dialog->findChild<Widget*>(QLatin1String(name)); });
  }
  static std::string cell(QWidget* dialog, int row, int column) {
    return onGui([&] {
      const auto* const item = dialog->findChild<QTableWidget*>(QStringLiteral("differenceFigures"))->item(row, column);
      return item == nullptr ? std::string("none") : item->text().toStdString();
    });
  }
  static void compute(ProgramWindow& program, QWidget* dialog) {
    program.user.click(part<QPushButton>(dialog, "computeDifference"));
    auto* const table = part<QTableWidget>(dialog, "differenceFigures");
    ASSERT_TRUE(program.user.waitFor([&] { return table->rowCount() == 6; }));
  }
  /// The colour of the plan at a place, as it is painted.
  static QColor colourAt(const ProgramWindow& program, double east, double north) {
    const QPoint at = pixel(program, east, north);
    return onGui([&] {
      const QImage image = program.window->plan().grab().toImage();
      return image.pixelColor(at * image.devicePixelRatio());
    });
  }
  static bool becomes(const ProgramWindow& program, double east, double north,
                      const std::function<bool(QColor)>& wanted) {
    for (int i = 0; i < 100; ++i) {
      if (wanted(colourAt(program, east, north))) return true;
      program.user.waitFor([] { return false; }, std::chrono::milliseconds(50));
    }
    return false;
  }
  static bool isRed(QColor colour) { return colour.red() > colour.blue() + 30; }
  static bool isBlue(QColor colour) { return colour.blue() > colour.red() + 30; }
};

TEST_F(DifferenceTest, TellsCutAndFillAndColoursThePlan) {
  ProgramWindow program(drawing);
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  compute(program, dialog);
  // From the ground, 1 to 9 over 80, to the level 5 over the 100 in common: a prism on each side of the middle.
  EXPECT_EQ(cell(dialog, 0, 0), "Cut");
  EXPECT_EQ(cell(dialog, 0, 1), "8000.000");
  EXPECT_EQ(cell(dialog, 1, 1), "8000.000");
  EXPECT_EQ(cell(dialog, 1, 2), "4000.000");
  EXPECT_EQ(cell(dialog, 2, 1), "0.000");
  EXPECT_EQ(cell(dialog, 4, 2), "8000.000");
  EXPECT_EQ(cell(dialog, 5, 2), "4000.000");
  EXPECT_TRUE(program.waitUntilSaid("Ground to Design"));
  EXPECT_TRUE(becomes(program, 30, 70, isRed)) << "cut in the north";
  EXPECT_TRUE(becomes(program, 30, 10, isBlue)) << "fill in the south";
  EXPECT_FALSE(isRed(colourAt(program, 150, 70))) << "only the ground";

  program.user.click(part<QPushButton>(dialog, "copyDifference"));
  EXPECT_TRUE(program.user.waitFor([] {
    return QGuiApplication::clipboard()->text().contains(
        QStringLiteral("Volume [m³]\tArea [m²]\nCut\t8000.000\t4000.000\n"));
  }));
  program.user.click(part<QCheckBox>(dialog, "colourPlan"));
  EXPECT_TRUE(becomes(program, 30, 70, [](QColor colour) { return !isRed(colour); }));
}

TEST_F(DifferenceTest, ForgetsWhatItToldWhenTheSurfacesChangePlaces) {
  ProgramWindow program(drawing);
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  compute(program, dialog);
  ASSERT_TRUE(becomes(program, 30, 70, isRed));
  program.user.click(part<QPushButton>(dialog, "swapSurfaces"));
  EXPECT_TRUE(program.user.waitFor(
      [&] { return dialog->findChild<QTableWidget*>(QStringLiteral("differenceFigures"))->rowCount() == 0; }));
  compute(program, dialog);
  EXPECT_TRUE(becomes(program, 30, 70, isBlue));
}

TEST_F(DifferenceTest, StandsOnPaperWithItsKey) {
  ProgramWindow program(drawing);
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  compute(program, dialog);
  onGui([&] {
    const desktop::PlanView& plan = program.window->plan();
    const auto paperColourAt = [&](bool hasDifference, civil::Vec2 place) {
      desktop::PlanSheetWish wish;
      wish.part = {-50, 0, 200, 80};
      wish.groundOverlay = hasDifference ? plan.groundOverlay() : nullptr;
      const desktop::PlanSheet sheet(*plan.scene(), plan.look(), wish);
      constexpr double kDotsPerMm = 4.0;
      QImage image((sheet.paper() * kDotsPerMm).toSize(), QImage::Format_RGB32);
      QPainter painter(&image);
      painter.scale(kDotsPerMm, kDotsPerMm);
      sheet.paint(painter);
      painter.end();
      return image.pixelColor((sheet.onPaper(place) * kDotsPerMm).toPoint());
    };
    EXPECT_TRUE(isRed(paperColourAt(true, {30, 70})));
    EXPECT_TRUE(isBlue(paperColourAt(true, {30, 10})));
    EXPECT_FALSE(isRed(paperColourAt(false, {30, 70})));
    EXPECT_FALSE(isBlue(paperColourAt(true, {150, 10})));
  });
}

TEST_F(DifferenceTest, IsGoneAfterTheDrawingIsReadAgain) {
  ProgramWindow program(drawing);
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  compute(program, dialog);
  ASSERT_TRUE(becomes(program, 30, 70, isRed));
  start(program, "reload");
  EXPECT_TRUE(program.user.waitFor(
      [&] { return dialog->findChild<QTableWidget*>(QStringLiteral("differenceFigures"))->rowCount() == 0; }));
  ASSERT_TRUE(program.user.waitFor([&] { return program.isOpen(); }));
  EXPECT_TRUE(becomes(program, 30, 70, [](QColor colour) { return !isRed(colour); }));
  // The surfaces of the new drawing are there to choose from.
  ASSERT_TRUE(program.user.waitFor(
      [&] { return dialog->findChild<QComboBox*>(QStringLiteral("existingSurface"))->count() == 2; }));
  compute(program, dialog);
  EXPECT_EQ(cell(dialog, 0, 1), "8000.000");
}

TEST(DifferenceWork, GivesUpAtOnceWithoutAWordMore) {
  // Layers of the same place, each triangle above all others: more work than anybody waits for.
  std::vector<civil::Vec3> points;
  std::vector<civil::Triangle> triangles;
  for (std::int32_t i = 0; i < 3000; ++i) {
    for (const civil::Vec2 p : {civil::Vec2{0, 0}, civil::Vec2{9, 1.0 + i}, civil::Vec2{1, 9}})
      points.push_back({p.x, p.y, static_cast<double>(i % 7)});
    triangles.push_back({3 * i, 3 * i + 1, 3 * i + 2});
  }
  const civil::TinSurface layers(points, triangles);
  int words = 0;
  onGui([&] {
    desktop::DifferenceWork work;
    QObject::connect(&work, &desktop::DifferenceWork::done, &work, [&](const civil::SurfaceDifference&) { ++words; });
    work.start(layers, layers);
    EXPECT_TRUE(work.isRunning());
    work.stop();
    EXPECT_FALSE(work.isRunning());
    QCoreApplication::processEvents();
  });
  EXPECT_EQ(words, 0);
}

TEST_F(DifferenceTest, SaysThatADrawingHasTooFewSurfaces) {
  ProgramWindow program(writeDrawing(folder, "one.xml", drawingIn("meter", kRoad + kGround)));
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  EXPECT_FALSE(
      onGui([&] { return dialog->findChild<QPushButton*>(QStringLiteral("computeDifference"))->isEnabled(); }));
  EXPECT_TRUE(onGui([&] {
    return dialog->findChild<QLabel*>(QStringLiteral("differenceWords"))
        ->text()
        .contains(QStringLiteral("less than two"));
  }));
}

}  // namespace
}  // namespace lvx::test
