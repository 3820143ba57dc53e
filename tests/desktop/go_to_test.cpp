// The box that goes to a place, the start without a drawing, the list of keys, panels that are put back.
#include <QAbstractButton>
#include <QCommandLinkButton>
#include <QListWidget>
#include <QMainWindow>
#include <QTableView>
#include <fstream>

#include "desktop/charts/profile_view.h"
#include "desktop/plan/plan_view.h"
#include "program_window.h"

namespace lvx::test {
namespace {

class GoTo : public testing::Test {
 protected:
  GoTo() : plan_(onGui([&] { return &program_.window->plan(); })) {}

  void open() {
    program_.user.key(Qt::Key_G, Qt::ControlModifier);
    edit_ = program_.part<QLineEdit>("goToEdit");
    ASSERT_TRUE(program_.user.waitFor([&] { return edit_->hasFocus(); }));
  }
  void type(const std::string& text) {
    program_.user.type(text);
    ASSERT_TRUE(program_.user.waitFor([&] { return edit_->text().toStdString() == text; }));
  }
  std::string told() {
    return onGui([&] { return program_.window->findChild<QLabel*>(QStringLiteral("goToTold"))->text().toStdString(); });
  }
  std::string first() {
    return onGui([&] {
      const auto* const item = program_.window->findChild<QListWidget*>(QStringLiteral("goToList"))->item(0);
      return item == nullptr ? std::string() : item->text().toStdString();
    });
  }
  bool isAt(civil::Vec2 place) {
    return program_.user.waitFor([&] {
      const civil::Vec2 centre = plan_->viewport().centre();
      return std::abs(centre.x - place.x) < 0.01 && std::abs(centre.y - place.y) < 0.01;
    });
  }
  const civil::Drawing& drawing() { return program_.window->session().drawing()->drawing(); }
  const civil::AlignmentObject& valleyRoad() { return *drawing().sites[0].alignments[0]; }

  ProgramWindow program_;
  desktop::PlanView* plan_;
  QLineEdit* edit_ = nullptr;
};

TEST_F(GoTo, AStationWithItsOffsetIsUnderstoodWhileItIsTyped) {
  open();
  type("1+020.5, -3");
  EXPECT_EQ(first(), "Station 1+020.500 of Valley road, 3.000 left");
  program_.user.key(Qt::Key_Return);
  const auto pose = valleyRoad().geometry.pointLocation(1020.5, -3.0);
  EXPECT_TRUE(isAt(pose->point));
  EXPECT_TRUE(program_.user.waitFor([&] { return plan_->hasFocus(); })) << "the keyboard goes back to the plan";
}

TEST_F(GoTo, APointIsChosenToo) {
  open();
  type("7");
  program_.user.key(Qt::Key_Return);
  const civil::Point* const point = program_.window->session().drawing()->index().pointByNumber(7);
  EXPECT_TRUE(isAt({point->position.x, point->position.y}));
  EXPECT_TRUE(program_.user.waitFor([&] {
    return program_.window->findChild<QLabel*>(QStringLiteral("propertiesTitle"))
        ->text()
        .startsWith(QStringLiteral("Point"));
  }));
}

TEST_F(GoTo, CoordinatesAreEastingThenNorthing) {
  open();
  const civil::Vec2 middle = onGui([&] { return plan_->viewport().centre(); });
  const QString text = QStringLiteral("%1; %2").arg(middle.x + 12, 0, 'f', 2).arg(middle.y - 7, 0, 'f', 2);
  type(text.toStdString());
  EXPECT_EQ(first().rfind("Coordinates  E ", 0), 0U) << first();
  program_.user.key(Qt::Key_Return);
  EXPECT_TRUE(isAt({middle.x + 12, middle.y - 7}));
}

TEST_F(GoTo, AnObjectIsCompletedAndShown) {
  open();
  type("Mill l");
  EXPECT_EQ(first().rfind("Alignment  Mill lane", 0), 0U) << first();
  program_.user.key(Qt::Key_Tab);
  EXPECT_TRUE(program_.user.waitFor([&] { return edit_->text() == QStringLiteral("Mill lane"); }));
  program_.user.key(Qt::Key_Return);
  EXPECT_TRUE(program_.user.waitFor([&] {
    return program_.window->findChild<QLabel*>(QStringLiteral("propertiesTitle"))->text() ==
           QStringLiteral("Alignment  Mill lane");
  }));
}

TEST_F(GoTo, WhatFitsNothingIsToldInWords) {
  open();
  type("99+000");
  EXPECT_EQ(told(), "Valley road goes from 1+000.000 to 2+093.000");
  onGui([&] { edit_->clear(); });
  type("nowhere at all");
  EXPECT_NE(told().find("Nothing here is called"), std::string::npos) << told();
  program_.user.key(Qt::Key_Return);
  EXPECT_TRUE(onGui([&] { return edit_->isVisible(); }));
  program_.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program_.user.waitFor([&] { return !edit_->isVisible() && plan_->hasFocus(); }));
}

TEST_F(GoTo, TheDownKeyChoosesAmongThem) {
  open();
  type("road");
  const std::string second = onGui([&] {
    return program_.window->findChild<QListWidget*>(QStringLiteral("goToList"))->item(1)->text().toStdString();
  });
  program_.user.key(Qt::Key_Down);
  EXPECT_TRUE(program_.user.waitFor([&] { return edit_->accessibleDescription().toStdString() == second; })) << second;
}

TEST(StartPage, OffersTheExampleAndOpensItByTheKeyboard) {
  ProgramWindow program{QString()};
  auto* const button = program.part<QCommandLinkButton>("startExample");
  ASSERT_NE(button, nullptr);
  EXPECT_TRUE(onGui([&] { return button->isVisible(); }));
  onGui([&] { button->setFocus(Qt::TabFocusReason); });
  program.user.key(Qt::Key_Space);
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }, std::chrono::seconds(60)));
  EXPECT_TRUE(program.user.waitFor(
      [&] { return !program.window->findChild<QWidget*>(QStringLiteral("startPage"))->isVisible(); }));
}

TEST(StartPage, ListsRecentDrawingsAndWhichOfThemAreGone) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  const QString gone = copyOfExample(folder, "gone.xml");
  desktop::DesktopOptions options;
  options.settingsFile = QString::fromStdString((folder / "settings.ini").string());
  for (const QString& path : {gone, drawing}) const ProgramWindow program(path, options);
  std::filesystem::remove(gone.toStdString());
  ProgramWindow program(QString(), options);
  auto* const first = program.part<QCommandLinkButton>("startRecent1");
  auto* const second = program.part<QCommandLinkButton>("startRecent2");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(onGui([&] { return first->text().toStdString(); }), "road.xml");
  EXPECT_FALSE(onGui([&] { return second->isEnabled(); }));
  EXPECT_NE(onGui([&] { return second->description().toStdString(); }).find("isn't there any more"), std::string::npos);
  EXPECT_EQ(onGui([&] { return first->accessibleName().toStdString(); }), "road.xml");
  program.user.click(first);
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }, std::chrono::seconds(60)));
}

TEST(Panels, AreAllPutBackWhereTheyStoodAtFirst) {
  ProgramWindow program;
  const auto place = [&](const char* name) {
    auto* const dock = program.window->findChild<QDockWidget*>(QLatin1String(name));
    return std::tuple(static_cast<QMainWindow*>(program.window)->dockWidgetArea(dock), dock->isFloating(),
                      dock->isHidden());
  };
  const auto tree = onGui([&] { return place("treeDock"); });
  const auto section = onGui([&] { return place("sectionDock"); });
  onGui([&] {
    program.window->findChild<QDockWidget*>(QStringLiteral("treeDock"))->setFloating(true);
    auto* const dock = program.window->findChild<QDockWidget*>(QStringLiteral("sectionDock"));
    static_cast<QMainWindow*>(program.window)->addDockWidget(Qt::RightDockWidgetArea, dock);
    program.window->findChild<QDockWidget*>(QStringLiteral("consoleDock"))->hide();
    program.window->findChild<QAction*>(QStringLiteral("resetPanels"))->trigger();
  });
  EXPECT_EQ(onGui([&] { return place("treeDock"); }), tree);
  EXPECT_EQ(onGui([&] { return place("sectionDock"); }), section);
  EXPECT_FALSE(
      onGui([&] { return program.window->findChild<QDockWidget*>(QStringLiteral("consoleDock"))->isHidden(); }));
}

TEST(ShortcutList, HasEveryKeyOfTheMenus) {
  ProgramWindow program;
  onGui([&] { program.window->findChild<QAction*>(QStringLiteral("shortcuts"))->trigger(); });
  QWidget* const list = program.waitForNamed("shortcutList");
  ASSERT_NE(list, nullptr);
  const QStringList missing = onGui([&] {
    const QAbstractItemModel* const model = list->findChild<QTableView*>()->model();
    QStringList keys;
    for (int row = 0; row < model->rowCount(); ++row) keys << model->index(row, 0).data().toString();
    QStringList found;
    for (const QAction* const action : program.window->findChildren<QAction*>())
      if (const QKeySequence key = action->shortcut(); !key.isEmpty() && !action->objectName().isEmpty()) {
        const QString text = key.toString(QKeySequence::NativeText);
        if (keys.filter(text).isEmpty()) found << action->objectName() + QLatin1Char(' ') + text;
      }
    return found;
  });
  EXPECT_TRUE(missing.isEmpty()) << missing.join(QLatin1Char('\n')).toStdString();
  program.user.key(Qt::Key_Escape);
}

}  // namespace
}  // namespace lvx::test
