// The plan on paper: true in scale, as lines and texts, whole or not at all.
#include "desktop/plan/plan_sheet.h"

#include <QBuffer>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPaintEngine>
#include <QPrintEngine>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/plan/plan_colours.h"
#include "desktop/plan/plan_selection.h"
#include "desktop/plan/plan_sheet_files.h"
#include "desktop/shell/plan_output.h"
#include "plan_window.h"
#include "program_window.h"

namespace lvx::test {
namespace {

using desktop::PlanLook;
using desktop::PlanSheet;
using desktop::PlanSheetWish;
using testing::HasSubstr;

class Sheet : public testing::Test {
 protected:
  [[nodiscard]] PlanSheet sheet(double scale, const PlanLook& look = bare(), bool hasLegend = true) const {
    PlanSheetWish wish;
    wish.part = scene.box();
    wish.scale = scale;
    wish.hasLegend = hasLegend;
    wish.title = QStringLiteral("road & rail.xml");
    wish.date = QStringLiteral("1.2.2030");
    return {scene, look, wish};
  }
  /// Lines alone, so that colours can be told apart.
  static PlanLook bare() {
    PlanLook look;
    look.surface = desktop::SurfaceLook::None;
    look.stations = false;
    look.corridors = false;
    return look;
  }

  civil::Drawing model = drawing();
  view::PlanScene scene{model};
};

TEST_F(Sheet, TakesTheLargestRoundScaleAtWhichThePartFits) {
  // 240 by 150 in 267 by 156 millimetres.
  EXPECT_EQ(sheet(0.0).scale(), 1000.0);
  EXPECT_TRUE(sheet(0.0).showsAll());
  EXPECT_FALSE(sheet(500.0).showsAll());
  EXPECT_EQ(sheet(500.0).scale(), 500.0);
  model.linearUnit = "foot";
  EXPECT_EQ(sheet(0.0).scale(), 500.0) << "feet are shorter: 240 of them are 73 metres";
}

TEST_F(Sheet, PutsPlacesOnPaperByItsScale) {
  for (const double scale : {500.0, 1000.0, 2500.0}) {
    const PlanSheet made = sheet(scale);
    const QPointF from = made.onPaper({0, 0});
    const QPointF to = made.onPaper({200, 0});
    EXPECT_NEAR(to.x() - from.x(), 200'000.0 / scale, 1e-9);
    EXPECT_NEAR(made.onPaper({0, 100}).y() - from.y(), -100'000.0 / scale, 1e-9);
  }
}

TEST_F(Sheet, DrawsTheAlignmentInTheSvgFileAsLongAsItsScaleSays) {
  if (!desktop::canWritePlanSvg()) GTEST_SKIP() << "this Qt writes no SVG";
  const QString svg = onGui([&] { return QString::fromUtf8(desktop::planSvg(sheet(1000.0))); });
  EXPECT_THAT(svg.toStdString(), HasSubstr("width=\"297mm\" height=\"210mm\""));
  EXPECT_THAT(svg.toStdString(), HasSubstr("viewBox=\"0 0 29700 21000\""));
  // The group of the alignment's pen, its turn into dots, and its line.
  const QRegularExpression group(
      QStringLiteral(
          R"re(<g [^>]*stroke="%1"[^>]*transform="matrix\(([^)]*)\)"[^>]*>\s*<polyline[^>]*points="([^"]*)")re")
          .arg(desktop::planColours(false).alignment.name()));
  const QRegularExpressionMatch match = group.match(svg);
  ASSERT_TRUE(match.hasMatch());
  const double dots = match.captured(1).split(u',').first().toDouble();
  const QStringList places = match.captured(2).simplified().split(u' ');
  ASSERT_GE(places.size(), 2);
  const double from = places.first().split(u',').first().toDouble();
  const double to = places.last().split(u',').first().toDouble();
  EXPECT_NEAR((to - from) * dots / 100.0, 200.0, 0.05) << "millimetres of 200 metres at 1:1000";
  EXPECT_THAT(svg.toStdString(), HasSubstr("road &amp; rail.xml"));
  EXPECT_THAT(svg.toStdString(), HasSubstr(">1:1"));
  EXPECT_FALSE(svg.contains(QStringLiteral("<image"))) << "without ground it is lines and texts alone";
}

/// The columns in which rows of a picture have a colour, the first and the
/// last.
std::pair<int, int> columnsOf(const QImage& image, int top, int bottom, const QColor& colour) {
  int first = -1;
  int last = -1;
  for (int x = 0; x < image.width(); ++x)
    for (int y = top; y <= bottom; ++y) {
      const QColor pixel = image.pixelColor(x, y);
      if (std::abs(pixel.red() - colour.red()) + std::abs(pixel.green() - colour.green()) +
              std::abs(pixel.blue() - colour.blue()) >
          40)
        continue;
      if (first < 0) first = x;
      last = x;
      break;
    }
  return {first, last};
}

TEST_F(Sheet, DrawsTheAlignmentInThePdfFileAsLongAsItsScaleSays) {
  const QString program = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
  if (program.isEmpty()) GTEST_SKIP() << "pdftoppm isn't there";
  const QTemporaryDir folder;
  const QString pdf = folder.filePath(QStringLiteral("plan.pdf"));
  QString whyNot;
  ASSERT_TRUE(onGui([&] { return desktop::writePlan(sheet(1000.0, bare(), false), pdf, whyNot); }))
      << whyNot.toStdString();
  QProcess process;
  process.start(program, {QStringLiteral("-r"), QStringLiteral("254"), QStringLiteral("-png"),
                          QStringLiteral("-singlefile"), pdf, folder.filePath(QStringLiteral("page"))});
  ASSERT_TRUE(process.waitForFinished(60'000));
  const QImage page(folder.filePath(QStringLiteral("page.png")));
  ASSERT_NEAR(page.width(), 2970, 1);
  ASSERT_NEAR(page.height(), 2100, 1);
  const int row = static_cast<int>(std::lround(10.0 * sheet(1000.0).onPaper({0, 0}).y()));
  const auto [first, last] = columnsOf(page, row - 1, row + 1, desktop::planColours(false).alignment);
  // Ten dots to a millimetre; round ends reach out by half of the line's width.
  EXPECT_NEAR(last - first, 2000, 9);
}

TEST_F(Sheet, DrawsGroundContoursAndGridInTheRightPlaceOfThePicture) {
  PlanLook look;
  look.contours = true;
  const PlanSheet made = sheet(1000.0, look);
  const QByteArray bytes = onGui([&] { return desktop::planPng(made); });
  const QImage image = QImage::fromData(bytes, "PNG");
  ASSERT_NEAR(image.width(), 297 * 200 / 25.4, 1.0);
  EXPECT_NEAR(image.dotsPerMeterX(), 7874, 1);
  const double perMm = 200.0 / 25.4;
  const auto at = [&](Vec2 place) { return image.pixelColor((made.onPaper(place) * perMm).toPoint()); };
  EXPECT_NE(at({110, 40}), QColor(Qt::white)) << "ground";
  EXPECT_EQ(at({-18, 75}), QColor(Qt::white)) << "beside the ground";
  EXPECT_NE(at({218, 58}), QColor(Qt::white)) << "its corner";
  if (const char* const place = std::getenv("LVX_KEEP_PICTURES"); place != nullptr)
    image.save(QString::fromLocal8Bit(place) + QStringLiteral("/plan_sheet.png"));
}

TEST_F(Sheet, LeavesOutWhatIsHidden) {
  if (!desktop::canWritePlanSvg()) GTEST_SKIP() << "this Qt writes no SVG";
  view::Visibility visibility;
  visibility.hide(std::vector<Handle>{kRoad});
  scene.setVisibility(visibility);
  const QString svg = onGui([&] { return QString::fromUtf8(desktop::planSvg(sheet(1000.0))); });
  EXPECT_FALSE(svg.contains(desktop::planColours(false).alignment.name()));
  EXPECT_FALSE(svg.contains(QStringLiteral(">Road<")));
}

TEST_F(Sheet, HasTheContoursOfTheSelectedSurfaceAsTheWindowDoes) {
  // Lies over the ground, and is level: it has no contours.
  constexpr Handle kDesign = 0x31;
  civil::SurfaceObject design;
  design.handle = kDesign;
  design.name = "Design";
  design.surface =
      civil::TinSurface({{0, -20, 112.5}, {200, -20, 112.5}, {200, 20, 112.5}, {0, 20, 112.5}}, {{0, 1, 2}, {0, 2, 3}});
  model.surfaces.push_back(std::move(design));
  const view::PlanScene both(model);
  PlanLook look = bare();
  look.contours = true;
  look.contourInterval = 1.0;
  const auto isBrown = [](const QColor& colour) {  // as contours are, and
                                                   // nothing else on this sheet
    const int overGreen = colour.red() - colour.green();
    return overGreen > 5 && overGreen < 60 && colour.red() - colour.blue() > 30;
  };
  const auto brownPixels = [&](const std::vector<Handle>& handles) {
    desktop::PlanSelection selection;
    selection.add(handles);
    PlanSheetWish wish;
    wish.part = both.box();
    wish.hasLegend = false;
    wish.selected = &selection;
    const QByteArray png = onGui([&] { return desktop::planPng(PlanSheet(both, look, wish)); });
    const QImage image = QImage::fromData(png, "PNG");
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) count += isBrown(image.pixelColor(x, y)) ? 1 : 0;
    return count;
  };
  const int none = brownPixels({});
  EXPECT_GT(brownPixels({kGround}), none + 1000);
  EXPECT_EQ(brownPixels({kDesign}), none) << "the uppermost, where none is selected";
  EXPECT_EQ(brownPixels({kRoad}), none);
}

TEST_F(Sheet, NamesTheIntervalOfTheContoursThatItDraws) {
  if (!desktop::canWritePlanSvg()) GTEST_SKIP() << "this Qt writes no SVG";
  const auto legendAt = [&](double interval) {
    PlanLook look = bare();
    look.contours = true;
    look.contourInterval = interval;
    const view::PlanScene made(model);
    PlanSheetWish wish;
    wish.part = made.box();
    const QString svg = onGui([&] { return QString::fromUtf8(desktop::planSvg(PlanSheet(made, look, wish))); });
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral(">\\s*Contours every ([^<]*?)\\s*<")).match(svg);
    return match.captured(1).toStdString();
  };
  const auto metres = [](double interval) { return QLocale().toString(interval).toStdString() + " m"; };
  EXPECT_EQ(legendAt(0.5), metres(0.5));
  // A slope of nine metres in each of a thousand triangles: nine million pieces at every millimetre are too many.
  constexpr int kAcross = 20;
  constexpr int kUp = 25;
  std::vector<civil::Vec3> points;
  std::vector<civil::Triangle> triangles;
  for (int row = 0; row <= kUp; ++row)
    for (int column = 0; column <= kAcross; ++column) points.push_back({column * 10.0, row * 5.0 - 60.0, row * 9.0});
  for (int row = 0; row < kUp; ++row)
    for (int column = 0; column < kAcross; ++column) {
      const int at = row * (kAcross + 1) + column;
      triangles.push_back({at, at + 1, at + kAcross + 2});
      triangles.push_back({at, at + kAcross + 2, at + kAcross + 1});
    }
  model.surfaces.front().surface = civil::TinSurface(std::move(points), std::move(triangles));
  EXPECT_EQ(legendAt(0.001), metres(0.01));
}

TEST_F(Sheet, WritesNothingAndTellsWhyWhereItCan) {
  const QTemporaryDir folder;
  QString whyNot;
  EXPECT_FALSE(
      onGui([&] { return desktop::writePlan(sheet(0.0), folder.filePath(QStringLiteral("no/plan.pdf")), whyNot); }));
  EXPECT_THAT(whyNot.toStdString(), HasSubstr("plan.pdf can't be written: "));
  EXPECT_FALSE(
      onGui([&] { return desktop::writePlan(sheet(0.0), folder.filePath(QStringLiteral("plan.doc")), whyNot); }));
  EXPECT_THAT(whyNot.toStdString(), HasSubstr("must end in .pdf"));
  EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("plan.doc"))));
}

TEST_F(Sheet, KeepsTheGroundsPictureWithinItsBoundOnTheLargestPaper) {
  PlanSheetWish wish;
  wish.paper = QSizeF(1189.0, 841.0);
  wish.part = scene.box();
  PlanLook look = bare();
  look.surface = desktop::SurfaceLook::Relief;
  const QByteArray pdf = onGui([&] { return desktop::planPdf(PlanSheet(scene, look, wish)); });
  const QRegularExpression size(QStringLiteral(R"(/Width (\d+)\s+/Height (\d+))"));
  auto sizes = size.globalMatch(QString::fromLatin1(pdf));
  qulonglong pixels = 0;
  while (sizes.hasNext()) {
    const auto match = sizes.next();
    pixels = std::max(pixels, match.captured(1).toULongLong() * match.captured(2).toULongLong());
  }
  EXPECT_GT(pixels, qulonglong{1} << 20);
  EXPECT_LE(pixels, PlanSheet::kMostPixels + 40'000);
}

// ---------------------------------------------------------------- printers

/// A printer of no make. It can be away, or fail while it prints.
class Printer final : public QPrinter {
 public:
  enum class Fault : std::uint8_t { None, Away, AtTheEnd, WhilePrinting };
  explicit Printer(Fault fault) : engine_(fault) { setEngines(&engine_, &engine_); }
  [[nodiscard]] int painted() const { return engine_.painted; }

 private:
  class Engine final : public QPaintEngine, public QPrintEngine {
   public:
    explicit Engine(Fault fault) : QPaintEngine(AllFeatures), fault_(fault) {}
    bool begin(QPaintDevice* /*device*/) override { return fault_ != Fault::Away; }
    bool end() override { return fault_ != Fault::AtTheEnd; }
    void updateState(const QPaintEngineState& /*state*/) override {}
    void drawPath(const QPainterPath& /*path*/) override { ++painted; }
    void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override { ++painted; }
    void drawPixmap(const QRectF& /*to*/, const QPixmap& /*picture*/, const QRectF& /*from*/) override { ++painted; }
    void drawTextItem(const QPointF& /*at*/, const QTextItem& /*text*/) override { ++painted; }
    void drawImage(const QRectF& /*to*/, const QImage& /*picture*/, const QRectF& /*from*/,
                   Qt::ImageConversionFlags /*flags*/) override {
      ++painted;
    }
    [[nodiscard]] Type type() const override { return User; }

    void setProperty(PrintEnginePropertyKey key, const QVariant& value) override { properties_[key] = value; }
    [[nodiscard]] QVariant property(PrintEnginePropertyKey key) const override {
      return key == PPK_PrinterName ? QVariant(QStringLiteral("Plotter")) : properties_.value(key);
    }
    bool newPage() override { return true; }
    bool abort() override { return true; }
    [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric metric) const override {
      switch (metric) {
        case QPaintDevice::PdmWidth:
        case QPaintDevice::PdmHeight:
          return 6000;
        case QPaintDevice::PdmDevicePixelRatio:
          return 1;
        case QPaintDevice::PdmDevicePixelRatioScaled:
          return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
        default:
          return 600;
      }
    }
    [[nodiscard]] QPrinter::PrinterState printerState() const override {
      return fault_ == Fault::WhilePrinting && painted > 0 ? QPrinter::Error : QPrinter::Idle;
    }

    int painted = 0;

   private:
    Fault fault_;
    QHash<int, QVariant> properties_;
  };
  Engine engine_;
};

TEST_F(Sheet, TellsOfAPrinterThatIsAwayOrFailsMidway) {
  const struct {
    Printer::Fault fault;
    bool paints;
  } rows[] = {{Printer::Fault::Away, false}, {Printer::Fault::AtTheEnd, true}, {Printer::Fault::WhilePrinting, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.fault));
    onGui([&] {
      Printer printer(row.fault);
      const std::string trouble = desktop::PlanOutput::print(sheet(1000.0), printer).toStdString();
      EXPECT_THAT(trouble, testing::StartsWith("Plotter doesn't take the plan."));
      EXPECT_THAT(trouble, HasSubstr("can be exported as a PDF file"));
      EXPECT_EQ(printer.painted() > 0, row.paints);
    });
  }
  // The next try, on one that works.
  onGui([&] {
    Printer printer(Printer::Fault::None);
    EXPECT_EQ(desktop::PlanOutput::print(sheet(1000.0), printer).toStdString(), "");
    EXPECT_GT(printer.painted(), 20);
  });
}

// ---------------------------------------------------------------- in the
// program

TEST(PlanExport, AsksForTheSheetAndTheFileAndTellsOfItOverThePlan) {
  ProgramWindow program;
  const QString path = program.path("valley.pdf");
  program.user.key(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
  QWidget* const dialog = program.user.waitForActiveWindow(QStringLiteral("Export the plan"));
  ASSERT_NE(dialog, nullptr);
  onGui([&] { dialog->findChild<QComboBox*>(QStringLiteral("sheetScale"))->setCurrentText(QStringLiteral("1:500x")); });
  EXPECT_FALSE(
      onGui([&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); }));
  onGui([&] { dialog->findChild<QComboBox*>(QStringLiteral("sheetScale"))->setCurrentText(QStringLiteral("1:500")); });
  EXPECT_THAT(onGui([&] { return dialog->findChild<QLabel*>(QStringLiteral("sheetOutcome"))->text().toStdString(); }),
              HasSubstr("1:500"));
  onGui(
      [&] { dialog->findChild<QComboBox*>(QStringLiteral("sheetScale"))->setCurrentText(QStringLiteral("1:50000")); });
  EXPECT_THAT(onGui([&] { return dialog->findChild<QLabel*>(QStringLiteral("sheetOutcome"))->text().toStdString(); }),
              testing::ContainsRegex("^1:50000, 1[0-9]{4} by [0-9]+ m"))
      << "no mark of thousands, which others read as that of decimals";
  onGui([&] { dialog->findChild<QComboBox*>(QStringLiteral("sheetScale"))->setCurrentText(QStringLiteral("1:500")); });
  if (std::getenv("LVX_KEEP_PICTURES") != nullptr)
    DesktopUser::screenshot(std::string(std::getenv("LVX_KEEP_PICTURES")) + "/sheet_dialog.png");
  program.user.click(onGui([&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok); }));
  QWidget* const box = program.user.waitForActiveWindow(QStringLiteral("Export the plan"));
  ASSERT_NE(box, nullptr);
  ASSERT_TRUE(program.user.waitFor(
      [&] { return QApplication::activeModalWidget() != nullptr && QApplication::activeModalWidget() != dialog; }));
  program.user.key(Qt::Key_A, Qt::ControlModifier);
  program.user.type(path.toStdString());
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return QFile::exists(path); }));
  EXPECT_TRUE(program.waitUntilSaid("valley.pdf"));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.read(5), "%PDF-");
}

TEST(PlanExport, NamesIndexContoursWhereOtherTextsStandCloseToo) {
  if (!desktop::canWritePlanSvg()) GTEST_SKIP() << "this Qt writes no SVG";
  ProgramWindow program;
  const QString svg = onGui([&] {
    const view::PlanScene& scene = *program.window->plan().scene();
    PlanLook look;
    look.contours = true;
    look.contourInterval = 2.0;
    PlanSheetWish wish;
    wish.part = scene.box();
    wish.scale = 5000.0;
    return QString::fromUtf8(desktop::planSvg(PlanSheet(scene, look, wish)));
  });
  EXPECT_TRUE(svg.contains(QStringLiteral(">410<")));
  EXPECT_TRUE(svg.contains(QStringLiteral(">420<")));
}

TEST(PlanPrint, SaysWhatToDoWhereThereIsNoPrinter) {
  ProgramWindow program;
  program.user.key(Qt::Key_P, Qt::ControlModifier);
  QWidget* const box = program.user.waitForActiveWindow(QStringLiteral("Print the plan"));
  ASSERT_NE(box, nullptr);
  auto* const message = qobject_cast<QMessageBox*>(box);
  if (message == nullptr) {
    program.user.key(Qt::Key_Escape);
    GTEST_SKIP() << "this machine has a printer";
  }
  EXPECT_THAT(onGui([&] { return message->text().toStdString(); }), HasSubstr("no printer"));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

}  // namespace
}  // namespace lvx::test
