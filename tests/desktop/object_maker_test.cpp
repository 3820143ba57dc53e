// What real files lack, made in the window: ground profiles, point groups.
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QSpinBox>
#include <cmath>

#include "desktop/plan/plan_view.h"
#include "drawing_parts.h"
#include "host/dialog_controls.h"
#include "landxml/reader.h"

namespace lvx::test {
namespace {

const civil::Drawing& drawingOf(const ProgramWindow& program) { return program.window->session().drawing()->drawing(); }

class Maker : public testing::Test {
 protected:
  Maker()
      : all(writeDrawing(folder, "all.xml", drawingIn("meter", kRoad + kGround + kPoints))),
        road(writeDrawing(folder, "road.xml", drawingIn("meter", kRoad))) {}

  /// Starts an action of the menu Edit by its entry.
  static void start(ProgramWindow& program, const char* action) {
    onGui([&] { program.window->findChild<QAction*>(QLatin1String(action))->trigger(); });
  }
  template <class Widget>
  static Widget* part(QWidget* dialog, const char* name) {
    return onGui([&] { return dialog->findChild<Widget*>(QLatin1String(name)); });
  }
  static bool isOkEnabled(QWidget* dialog) {
    return onGui([&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); });
  }
  static void retype(ProgramWindow& program, QWidget* field, const std::string& text) {
    program.user.click(field);
    program.user.key(Qt::Key_A, Qt::ControlModifier);
    program.user.type(text);
  }
  static std::string textOf(QLabel* label) {
    return onGui([&] { return label->text().toStdString(); });
  }

  TemporaryFolder folder;
  QString all;
  QString road;
};

TEST_F(Maker, MakesAGroundProfileFromASurface) {
  ProgramWindow program(all);
  start(program, "newProfile");
  QWidget* const dialog = program.waitForNamed("groundProfileDialog");
  ASSERT_NE(dialog, nullptr);
  auto* const outcome = part<QLabel>(dialog, "profileOutcome");
  // The surface ends 20 before the line does.
  EXPECT_EQ(textOf(outcome).rfind("3 points, stations 0+000.000 to 0+080.000.", 0), 0U) << textOf(outcome);
  EXPECT_NE(textOf(outcome).find("from 0+000.000 to 0+100.000"), std::string::npos) << textOf(outcome);
  auto* const name = part<QLineEdit>(dialog, "profileName");
  EXPECT_EQ(onGui([&] { return name->text(); }), QStringLiteral("Ground"));
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).siteless.alignments[0]->profiles.size() == 1; }));
  EXPECT_TRUE(onGui([&] {
    const civil::ProfileObject& made = drawingOf(program).siteless.alignments[0]->profiles[0];
    return made.name == "Ground" && made.profile.isGround() && std::abs(*made.profile.elevationAt(40.0) - 5.0) < 1e-9;
  }));
  EXPECT_EQ(treeText(program, "Profiles"), "Profiles (1)");
  EXPECT_TRUE(onGui([&] { return program.window->isWindowModified(); }));

  program.user.key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).siteless.alignments[0]->profiles.empty(); }));
  EXPECT_FALSE(onGui([&] { return program.window->isWindowModified(); }));
  program.user.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(program.user.waitFor([&] { return drawingOf(program).siteless.alignments[0]->profiles.size() == 1; }));
}

TEST_F(Maker, OffersNoNameThatAProfileHasAndTakesNone) {
  ProgramWindow program(all);
  for (int time = 0; time < 2; ++time) {
    start(program, "newProfile");
    QWidget* const dialog = program.waitForNamed("groundProfileDialog");
    ASSERT_NE(dialog, nullptr);
    if (time == 1) {
      auto* const name = part<QLineEdit>(dialog, "profileName");
      EXPECT_EQ(onGui([&] { return name->text(); }), QStringLiteral("Ground (2)"));
      retype(program, name, "Ground");
      EXPECT_TRUE(program.user.waitFor([&] {
        return dialog->findChild<QLabel*>(QStringLiteral("profileOutcome"))->text().contains(QStringLiteral("already"));
      }));
      EXPECT_FALSE(isOkEnabled(dialog));
      program.user.key(Qt::Key_Return);
      EXPECT_TRUE(onGui([&] { return dialog->isVisible(); }));
      program.user.key(Qt::Key_Escape);
    } else {
      program.user.key(Qt::Key_Return);
    }
    ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  }
  EXPECT_EQ(onGui([&] { return drawingOf(program).siteless.alignments[0]->profiles.size(); }), 1U);
}

TEST_F(Maker, SaysThatADrawingHasNoSurface) {
  ProgramWindow program(road);
  start(program, "newProfile");
  QWidget* const dialog = program.waitForNamed("groundProfileDialog");
  ASSERT_NE(dialog, nullptr);
  EXPECT_NE(textOf(part<QLabel>(dialog, "profileOutcome")).find("no surface"), std::string::npos);
  EXPECT_FALSE(isOkEnabled(dialog));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST_F(Maker, MakesAPointGroupByConditionsWithTheirCount) {
  ProgramWindow program(all);
  start(program, "newPointGroup");
  QWidget* const dialog = program.waitForNamed("pointGroupDialog");
  ASSERT_NE(dialog, nullptr);
  auto* const count = part<QLabel>(dialog, "groupCount");
  EXPECT_EQ(textOf(count).rfind("5 points in the group.", 0), 0U) << textOf(count);
  EXPECT_FALSE(isOkEnabled(dialog)) << "it has no name";
  retype(program, part<QLineEdit>(dialog, "groupName"), "Trees");
  retype(program, part<QLineEdit>(dialog, "filter_description"), "TREE*");
  ASSERT_TRUE(program.user.waitFor([&] { return count->text() == QStringLiteral("3 points in the group."); }));
  retype(program, part<QLineEdit>(dialog, "filter_elevation"), "high");
  ASSERT_TRUE(program.user.waitFor([&] { return count->text().contains(QStringLiteral("high isn't a number")); }));
  EXPECT_FALSE(isOkEnabled(dialog));
  retype(program, part<QLineEdit>(dialog, "filter_elevation"), "101..");
  ASSERT_TRUE(program.user.waitFor([&] { return count->text() == QStringLiteral("2 points in the group."); }));
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).pointGroups.size() == 1; }));
  EXPECT_EQ(onGui([&] { return drawingOf(program).pointGroups[0].numbers; }), (std::vector<std::int32_t>{2, 4}));
  EXPECT_EQ(treeText(program, "Trees"), "Trees (2)");

  // The dialog of the report knows it at once.
  program.enter("lvx_Report_Points");
  QWidget* const report = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(report, nullptr);
  EXPECT_TRUE(onGui([&] {
    const auto* const groups = report->findChild<QComboBox*>(QStringLiteral("control%1").arg(host::kIdPointGroups));
    return groups != nullptr && groups->findText(QStringLiteral("Trees")) >= 0;
  }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("Points ended and wrote nothing"));

  start(program, "undo");  // the keyboard is in the console, where Ctrl+Z takes back letters
  EXPECT_TRUE(program.user.waitFor([&] { return drawingOf(program).pointGroups.empty(); }));
}

TEST_F(Maker, MakesAPointGroupOfPointsThatAreSelectedInThePlan) {
  ProgramWindow program(all);
  start(program, "newPointGroupOfSelection");
  auto* const prompt = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text().startsWith(QStringLiteral("Select points")); }));
  EXPECT_FALSE(program.isEnabled("lvx_Report_Que")) << "the plan is asked already";
  program.enter("lvx_Report_Points");
  EXPECT_TRUE(program.waitUntilSaid("Something else is running"));
  auto* const plan = onGui([&] { return &program.window->plan(); });
  const auto at = [&](double east, double north) {
    return onGui([&] { return plan->viewport().toPixels({east, north}); });
  };
  // Points 1 to 3 lie west of the road.
  const auto from = at(10, 50);
  const auto to = at(40, 5);
  program.user.drag(plan, QPoint(static_cast<int>(from.x), static_cast<int>(from.y)),
                    QPoint(static_cast<int>(to.x), static_cast<int>(to.y)));
  program.user.key(Qt::Key_Return);
  QWidget* const dialog = program.waitForNamed("pointGroupDialog");
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(textOf(part<QLabel>(dialog, "groupCount")).rfind("3 points in the group.", 0), 0U);
  program.user.type("West");
  ASSERT_TRUE(program.user.waitFor(
      [&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); }));
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).pointGroups.size() == 1; }));
  EXPECT_EQ(onGui([&] { return drawingOf(program).pointGroups[0].numbers.size(); }), 3U);
}

TEST_F(Maker, ASelectionThatIsGivenUpMakesNothing) {
  ProgramWindow program(all);
  start(program, "newPointGroupOfSelection");
  auto* const prompt = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text().startsWith(QStringLiteral("Select points")); }));
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text() == QStringLiteral("Command:"); }));
  EXPECT_TRUE(program.user.waitFor(
      [&] { return program.window->findChild<QAction*>(QStringLiteral("lvx_Report_Que"))->isEnabled(); }));
}

TEST_F(Maker, TheWindowClosesDuringASelection) {
  ProgramWindow program(all);
  start(program, "newPointGroupOfSelection");
  auto* const prompt = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text().startsWith(QStringLiteral("Select points")); }));
}

TEST_F(Maker, SavesAProfileAndAPointGroupThatReadBackAsTheyWereMade) {
  ProgramWindow program(all);
  start(program, "newProfile");
  ASSERT_NE(program.waitForNamed("groundProfileDialog"), nullptr);
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).siteless.alignments[0]->profiles.size() == 1; }));
  start(program, "newPointGroup");
  QWidget* const dialog = program.waitForNamed("pointGroupDialog");
  ASSERT_NE(dialog, nullptr);
  retype(program, part<QLineEdit>(dialog, "groupName"), "Trees");
  retype(program, part<QLineEdit>(dialog, "filter_description"), "TREE*");
  auto* const count = part<QLabel>(dialog, "groupCount");
  ASSERT_TRUE(program.user.waitFor([&] { return count->text() == QStringLiteral("3 points in the group."); }));
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return drawingOf(program).pointGroups.size() == 1; }));
  start(program, "save");
  ASSERT_TRUE(program.user.waitFor([&] { return !program.window->isWindowModified(); }));

  const civil::Drawing read = landxml::readDrawing(all.toStdString());
  const auto& profiles = read.siteless.alignments.at(0)->profiles;
  ASSERT_EQ(profiles.size(), 1U);
  EXPECT_EQ(profiles[0].name, "Ground");
  EXPECT_TRUE(profiles[0].profile.isGround());
  EXPECT_NEAR(profiles[0].profile.elevationAt(40.0).value_or(0.0), 5.0, 1e-9);
  ASSERT_EQ(read.pointGroups.size(), 1U);
  EXPECT_EQ(read.pointGroups[0].name, "Trees");
  EXPECT_EQ(read.pointGroups[0].numbers, (std::vector<std::int32_t>{1, 2, 4}));
}

TEST_F(Maker, TheMenuOfThePlanOffersAGroupAtAPoint) {
  ProgramWindow program(all);
  auto* const plan = onGui([&] { return &program.window->plan(); });
  const auto pixelOf = [&](civil::Vec2 place) {
    return onGui([&] {
      const civil::Vec2 pixel = plan->viewport().toPixels(place);
      return QPoint(static_cast<int>(std::lround(pixel.x)), static_cast<int>(std::lround(pixel.y)));
    });
  };
  // Point 5 stands at 90 north, 80 east, beyond the ground.
  program.user.click(plan, pixelOf({80.0, 90.0}), Qt::RightButton);
  QMenu* menu = nullptr;
  ASSERT_TRUE(program.user.waitFor([&] {
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    return menu != nullptr && !menu->actions().isEmpty();
  }));
  const QRect entry = onGui([&] {
    for (QAction* const action : menu->actions())
      if (action->objectName() == QLatin1String("planNewPointGroupOfSelection")) return menu->actionGeometry(action);
    return QRect();
  });
  ASSERT_TRUE(entry.isValid());
  program.user.click(menu, entry.center());
  auto* const prompt = program.part<QLabel>("consolePrompt");
  EXPECT_TRUE(program.user.waitFor([&] { return prompt->text().startsWith(QStringLiteral("Select points")); }));
}

TEST_F(Maker, TheTreeOffersWhatFitsARow) {
  ProgramWindow program(all);
  ASSERT_TRUE(chooseInTree(program, "Road", "treeNewProfile"));
  ASSERT_NE(program.waitForNamed("groundProfileDialog"), nullptr);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  ASSERT_TRUE(chooseInTree(program, "Road", "menuNewLines")) << "one menu has all";
  ASSERT_NE(program.waitForNamed("sampleLinesDialog"), nullptr);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  ASSERT_TRUE(chooseInTree(program, "Point groups", "treeNewPointGroup"));
  ASSERT_NE(program.waitForNamed("pointGroupDialog"), nullptr);
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

}  // namespace
}  // namespace lvx::test
