// The window's tools one after the other, and beside one another, as on a working day.
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QTableWidget>
#include <QToolButton>
#include <fstream>
#include <locale>
#include <sstream>
#include <tuple>

#include "desktop/charts/free_section_view.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/session.h"
#include "desktop_user/foreign_windows.h"
#include "drawing_parts.h"
#include "host/dialog_controls.h"
#include "large_drawing.h"
#include "program_window.h"
#include "report_user.h"

namespace lvx::test {
namespace {

using civil::Vec2;
using desktop::FreeSectionView;

class WorkingDay : public testing::Test {
 protected:
  WorkingDay() : free_(onGui([&] { return window().findChild<FreeSectionView*>(); })) {
    onGui([&] { plan().zoomTo(user_.alignment("Valley road").handle); });
  }
  [[nodiscard]] desktop::MainWindow& window() { return *user_.program.window; }
  [[nodiscard]] DesktopUser& hands() { return user_.program.user; }
  [[nodiscard]] desktop::PlanView& plan() { return window().plan(); }
  void trigger(const char* action) {
    onGui([&] { window().findChild<QAction*>(QLatin1String(action))->trigger(); });
  }
  template <class Widget>
  static Widget* part(QWidget* of, const char* name) {
    return onGui([&] { return of->findChild<Widget*>(QLatin1String(name)); });
  }
  [[nodiscard]] Vec2 placeAt(double station, double offset) {
    const civil::AlignmentObject& road = user_.alignment("Valley road");
    return onGui([&] { return road.geometry.pointLocation(station, offset)->point; });
  }
  void clickPlan(Vec2 place) {
    hands().click(&plan(), user_.pixelOf(place));
    hands().moveTo(&plan(), user_.pixelOf(place) + QPoint(7, 9));  // two clicks at once would be a double click
  }
  bool waitForTool() {
    return hands().waitFor([&] { return plan().isInteracting(); });
  }
  void drawFreeSection() {
    trigger("freeSection");
    ASSERT_TRUE(waitForTool());
    ASSERT_TRUE(hands().waitFor([&] { return plan().hasFocus(); }));
    clickPlan(placeAt(1487, -20));
    clickPlan(placeAt(1493, 22));
    hands().key(Qt::Key_Return);
    ASSERT_TRUE(hands().waitFor([&] {
      return free_->isVisible() && !plan().isInteracting() && !free_->chart().box().isEmpty() &&
             free_->findChild<QToolButton*>(QStringLiteral("freeTable"))->isEnabled();
    }));
  }
  void measure() {
    trigger("measure");
    ASSERT_TRUE(waitForTool());
    clickPlan(placeAt(1400, 0));
    clickPlan(placeAt(1450, 5));
  }
  QWidget* computeDifference() {
    trigger("difference");
    QWidget* const dialog = user_.program.waitForNamed("differenceDialog");
    if (dialog != nullptr) hands().click(part<QPushButton>(dialog, "computeDifference"));
    return dialog;
  }
  /// Types a path into the box that asks for a file, once it is there.
  void saveUnder(const std::string& path) {
    ASSERT_NE(user_.program.waitForNamed("targetBox"), nullptr);
    hands().key(Qt::Key_A, Qt::ControlModifier);
    hands().type(path);
    hands().key(Qt::Key_Return);
    auto* const bar = user_.program.part<QLabel>("outcomeText");
    const QString name = QString::fromStdString(std::filesystem::path(path).filename().string());
    EXPECT_TRUE(
        hands().waitFor([&] { return bar->isVisible() && bar->text().contains(name); }, std::chrono::seconds(30)));
    EXPECT_EQ(fileBytes(path).substr(0, 5), "%PDF-");
  }
  static void accept(QWidget* dialog) {
    onGui([&] { dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click(); });
  }
  /// A second surface beside the example's, level, over the middle of its road.
  std::string writeDesign() {
    std::ostringstream xml;
    xml.imbue(std::locale::classic());
    xml.setf(std::ios::fixed);
    xml << "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Units><Metric linearUnit=\"meter\" "
           "angularUnit=\"decimal "
           "degrees\"/></Units><Surfaces><Surface name=\"Platform\"><Definition surfType=\"TIN\"><Pnts>";
    const Vec2 middle = placeAt(1500, 0);
    int number = 0;
    for (const Vec2 corner : {Vec2{-30, -30}, Vec2{30, -30}, Vec2{30, 30}, Vec2{-30, 30}})
      xml << "<P id=\"" << ++number << "\">" << middle.y + corner.y << ' ' << middle.x + corner.x << " 400</P>";
    xml << "</Pnts><Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface></Surfaces></LandXML>\n";
    std::ofstream(folder_ / "platform.xml") << xml.str();
    return (folder_ / "platform.xml").string();
  }

  TemporaryFolder folder_;
  ReportUser user_{copyOfExample(folder_)};
  FreeSectionView* free_;
};

TEST_F(WorkingDay, GoesFromOneToolToTheNextAndEndsCleanlyInTheMiddleOfThem) {
  user_.program.enter("add " + writeDesign());
  ASSERT_TRUE(hands().waitFor([&] {
    return user_.program.isOpen() && window().session().drawing()->drawing().surfaces.size() == 2 &&
           window().findChild<QAction*>(QStringLiteral("measure"))->isEnabled();
  }));
  onGui([&] { plan().zoomTo(user_.alignment("Valley road").handle); });

  measure();
  hands().key(Qt::Key_Return);
  EXPECT_TRUE(user_.program.waitUntilSaid("Measured"));

  drawFreeSection();
  EXPECT_EQ(onGui([&] { return free_->section().parts.size(); }),
            onGui([&] { return window().session().drawing()->drawing().surfaces.size() + 1; }))
      << "both surfaces and the corridor";

  QWidget* const difference = computeDifference();
  ASSERT_NE(difference, nullptr);
  auto* const figures = part<QTableWidget>(difference, "differenceFigures");
  ASSERT_TRUE(hands().waitFor([&] { return figures->rowCount() == 6; }));
  EXPECT_TRUE(user_.program.waitUntilSaid("Existing ground to Platform"));
  onGui([&] { difference->close(); });
  EXPECT_TRUE(user_.program.user.waitFor([&] { return window().isActiveWindow(); }));

  trigger("sectionBook");
  QWidget* const book = user_.program.waitForNamed("bookDialog");
  ASSERT_NE(book, nullptr);
  ASSERT_TRUE(hands().waitFor([&] {
    return book->findChild<QLabel*>(QStringLiteral("bookOutcome"))->text().contains(QStringLiteral("sheet"));
  }));
  accept(book);
  saveUnder((folder_ / "book.pdf").string());

  trigger("exportPlan");
  QWidget* const sheet = user_.program.waitForNamed("planSheetDialog");
  ASSERT_NE(sheet, nullptr);
  accept(sheet);
  saveUnder((folder_ / "plan.pdf").string());

  // A tool is at work as the report starts; the report's question takes its place.
  measure();
  user_.start("lvx_Report_Points", host::kPointsDialog);
  user_.choose(host::kIdSites, "Valley road upgrade");
  user_.press(host::kIdPickAlignment);
  user_.expectPrompt("Pick an alignment:");
  user_.clickAt(user_.alignment("Mill lane").handle);
  user_.expectDialog();
  EXPECT_TRUE(user_.program.waitUntilSaid("Picked: Alignment Mill lane"));
  user_.choose(host::kIdPointGroups, "Trees");
  user_.typeStem(user_.stem());
  user_.press(host::kIdOk);
  ASSERT_TRUE(user_.waitForEnd());
  EXPECT_FALSE(ReportUser::formsOf(user_.stem()).empty());

  hands().key(Qt::Key_F5);
  ASSERT_TRUE(hands().waitFor([&] {
    return free_->section().line.isEmpty() && user_.program.isOpen() &&
           window().findChild<QAction*>(QStringLiteral("measure"))->isEnabled();
  }));
  EXPECT_EQ(onGui([&] { return figures->rowCount(); }), 0) << "of surfaces that are gone";

  onGui([&] { plan().zoomTo(user_.alignment("Valley road").handle); });
  drawFreeSection();
  const std::size_t before = onGui([&] { return user_.alignment("Valley road").sampleLineGroups[0].lines.size(); });
  hands().click(part<QToolButton>(free_, "freeSampleLine"));
  ASSERT_NE(user_.program.waitForNamed("freeSampleLineDialog"), nullptr);
  hands().key(Qt::Key_Return);
  ASSERT_TRUE(
      hands().waitFor([&] { return user_.alignment("Valley road").sampleLineGroups[0].lines.size() == before + 1; }));
  hands().key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(
      hands().waitFor([&] { return user_.alignment("Valley road").sampleLineGroups[0].lines.size() == before; }));

  // Closed in the middle of all of it.
  drawFreeSection();
  measure();
  ASSERT_NE(computeDifference(), nullptr);
  closeByManager(&window());
  EXPECT_TRUE(hands().waitFor([&] { return !window().isVisible(); }));
}

TEST_F(WorkingDay, NoLineIsDrawnWhileAReportAsksInThePlan) {
  drawFreeSection();
  user_.start("lvx_Report_Points", host::kPointsDialog);
  user_.choose(host::kIdSites, "Valley road upgrade");
  user_.press(host::kIdPickAlignment);
  user_.expectPrompt("Pick an alignment:");
  for (const char* const name : {"freeDraw", "freeSampleLine"}) {
    auto* const button = part<QToolButton>(free_, name);
    EXPECT_FALSE(onGui([&] { return button->isEnabled(); })) << name;
    hands().click(button);
  }
  ASSERT_TRUE(onGui([&] {
    return window()
        .findChild<QLabel*>(QStringLiteral("consolePrompt"))
        ->text()
        .contains(QStringLiteral("Pick an alignment:"));
  }));
  user_.clickAt(user_.alignment("Mill lane").handle);
  user_.expectDialog();
  EXPECT_TRUE(user_.program.waitUntilSaid("Picked: Alignment Mill lane"));
  hands().key(Qt::Key_Escape);
  ASSERT_TRUE(user_.waitForEnd());
  EXPECT_TRUE(hands().waitFor([&] {
    return free_->findChild<QToolButton*>(QStringLiteral("freeDraw"))->isEnabled() &&
           free_->findChild<QToolButton*>(QStringLiteral("freeSampleLine"))->isEnabled();
  }));
}

TEST_F(WorkingDay, NothingIsDeletedFromTheTreeWhilePointsAreSelected) {
  ASSERT_TRUE(hands().waitFor([&] { return plan().isSharp(); }));
  trigger("newPointGroupOfSelection");
  ASSERT_TRUE(waitForTool());
  const auto groups = [&] { return onGui([&] { return user_.alignment("Valley road").sampleLineGroups.size(); }); };
  const std::size_t before = groups();
  EXPECT_FALSE(chooseInTree(user_.program, "Bridge 5 m", "menuDelete"));
  EXPECT_EQ(groups(), before);
  EXPECT_TRUE(onGui([&] { return plan().isInteracting(); }));
}

// A dialog about the drawing that goes would look at what isn't there any more.
TEST_F(WorkingDay, NothingIsBegunAboutADrawingWhileTheNextOneIsRead) {
  drawFreeSection();
  writeLargeDrawing(folder_ / "large.xml");
  user_.program.enter("open " + (folder_ / "large.xml").string());
  auto* const strip = user_.program.part("progressStrip");
  ASSERT_TRUE(hands().waitFor([&] { return strip->isVisible(); }));
  const auto [isReading, isDrawable, isSampleLine] = onGui([&] {
    return std::tuple(strip->isVisible(), free_->findChild<QToolButton*>(QStringLiteral("freeDraw"))->isEnabled(),
                      free_->findChild<QToolButton*>(QStringLiteral("freeSampleLine"))->isEnabled());
  });
  ASSERT_TRUE(isReading);
  EXPECT_FALSE(isDrawable);
  EXPECT_FALSE(isSampleLine);
}

}  // namespace
}  // namespace lvx::test
