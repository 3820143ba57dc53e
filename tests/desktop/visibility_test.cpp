// Objects hidden in the plan by the boxes of the tree, and shown again; the interval of contours.
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLocale>
#include <QPushButton>
#include <QTreeView>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/plan/plan_view.h"
#include "desktop/shell/drawing_views.h"
#include "program_window.h"

namespace lvx::test {
namespace {

class HiddenByTheTree : public testing::Test {
 protected:
  HiddenByTheTree() : tree(program.part<QTreeView>("treeView")) {}

  /// The row whose text begins so, opened down to it; call it within onGui.
  [[nodiscard]] QModelIndex row(const QString& text) const {
    const std::function<QModelIndex(const QModelIndex&)> search = [&](const QModelIndex& parent) -> QModelIndex {
      for (int i = 0; i < tree->model()->rowCount(parent); ++i) {
        const QModelIndex index = tree->model()->index(i, 0, parent);
        if (index.data().toString().startsWith(text)) return index;
        if (const QModelIndex below = search(index); below.isValid()) return below;
      }
      return {};
    };
    const QModelIndex found = search({});
    for (QModelIndex above = found.parent(); above.isValid(); above = above.parent()) tree->expand(above);
    tree->scrollTo(found);
    return found;
  }
  [[nodiscard]] int boxOf(const char* text) const {
    return onGui([&] {
      const QVariant state = row(QString::fromUtf8(text)).data(Qt::CheckStateRole);
      return state.isValid() ? state.toInt() : -1;
    });
  }
  void clickBox(const char* text) {
    const QPoint place = onGui([&] {
      const QRect rect = tree->visualRect(row(QString::fromUtf8(text)));
      return QPoint(rect.left() + 9, rect.center().y());
    });
    user().click(tree->viewport(), place);
  }
  DesktopUser& user() { return program.user; }
  [[nodiscard]] desktop::PlanView& plan() const { return program.window->plan(); }
  [[nodiscard]] std::size_t hiddenCount() const {
    return onGui([&] { return plan().scene()->visibility().hidden().size(); });
  }
  bool waitForHidden(std::size_t count) {
    return user().waitFor([&] { return plan().scene() && plan().scene()->visibility().hidden().size() == count; });
  }

  ProgramWindow program;
  QTreeView* tree;
};

TEST_F(HiddenByTheTree, ABoxHidesItsObjectInThePlanWithoutChoosingIt) {
  const QImage before = onGui([&] { return plan().grab().toImage(); });
  EXPECT_EQ(boxOf("Existing ground"), Qt::Checked);
  const int current = onGui([&] { return tree->currentIndex().row(); });
  clickBox("Existing ground");
  ASSERT_TRUE(waitForHidden(1));
  EXPECT_EQ(boxOf("Existing ground"), Qt::Unchecked);
  EXPECT_EQ(onGui([&] { return tree->currentIndex().row(); }), current);
  EXPECT_NE(onGui([&] { return plan().grab().toImage(); }), before);
  clickBox("Existing ground");
  ASSERT_TRUE(waitForHidden(0));
}

TEST_F(HiddenByTheTree, AGroupIsHiddenWithAllThatStandsInItAndTellsWhenSomeAre) {
  clickBox("Cross sections 20 m");
  ASSERT_TRUE(user().waitFor([&] { return plan().scene()->visibility().hidden().size() > 5; }));
  EXPECT_EQ(boxOf("Cross sections 20 m"), Qt::Unchecked);
  EXPECT_EQ(boxOf("Valley road"), Qt::PartiallyChecked) << "the alignment itself still shows";
  const std::size_t lines = hiddenCount();
  onGui([&] { tree->expand(row(QStringLiteral("Cross sections 20 m"))); });
  const QString first = onGui([&] {
    return row(QStringLiteral("Cross sections 20 m"))
        .model()
        ->index(0, 0, row(QStringLiteral("Cross sections 20 m")))
        .data()
        .toString();
  });
  clickBox(first.toUtf8().constData());
  ASSERT_TRUE(waitForHidden(lines - 1));
  EXPECT_EQ(boxOf("Cross sections 20 m"), Qt::PartiallyChecked);
  clickBox("Cross sections 20 m");
  ASSERT_TRUE(waitForHidden(0)) << "a box that shows some shows all";
}

TEST_F(HiddenByTheTree, ProfilesAndFilesHaveNoBox) {
  EXPECT_EQ(boxOf("Profiles"), -1);
  EXPECT_EQ(boxOf("Valley road design"), -1);
  EXPECT_EQ(boxOf("valley-road.xml"), -1);
  EXPECT_EQ(boxOf("Surfaces"), Qt::Checked);
}

TEST_F(HiddenByTheTree, WhatIsHiddenStaysHiddenWhenTheDrawingIsReadAgain) {
  clickBox("Existing ground");
  clickBox("Cross sections 20 m");
  clickBox("Point groups");
  ASSERT_TRUE(user().waitFor([&] { return plan().scene()->visibility().hidden().size() > 10; }));
  const std::size_t hidden = hiddenCount();
  const auto before = onGui([&] { return plan().scene(); });
  user().key(Qt::Key_F5);
  ASSERT_TRUE(user().waitFor([&] { return plan().scene() && plan().scene() != before; }));
  EXPECT_TRUE(waitForHidden(hidden));
  EXPECT_EQ(boxOf("Existing ground"), Qt::Unchecked);
}

TEST_F(HiddenByTheTree, ShowAllShowsEverythingAgain) {
  EXPECT_FALSE(program.isEnabled("showAllObjects"));
  clickBox("Surfaces");
  clickBox("Sites");
  ASSERT_TRUE(user().waitFor([&] { return plan().scene()->visibility().hidden().size() > 5; }));
  EXPECT_TRUE(program.isEnabled("showAllObjects"));
  onGui([&] { program.window->findChild<QAction*>(QStringLiteral("showAllObjects"))->trigger(); });
  EXPECT_EQ(hiddenCount(), 0U);
  EXPECT_EQ(boxOf("Surfaces"), Qt::Checked);
}

TEST_F(HiddenByTheTree, AHiddenObjectCanStillBePickedInTheTree) {
  clickBox("Mill lane");
  ASSERT_TRUE(user().waitFor([&] { return plan().scene()->visibility().hidesAny(); }));
  civil::Handle picked = 0;
  civil::Handle wanted = 0;
  onGui([&] {
    wanted = row(QStringLiteral("Mill lane")).data(Qt::UserRole).toULongLong();
    QObject::connect(&plan(), &desktop::PlanView::picked, &plan(), [&](quint64 handle) { picked = handle; });
    plan().startPick(QStringLiteral("Select an alignment"));
    plan().offerPick(wanted);
  });
  EXPECT_NE(wanted, 0U);
  EXPECT_EQ(picked, wanted);
}

TEST_F(HiddenByTheTree, FillsTheScreenByF11AndGivesTheWindowItsSizeBack) {
  user().key(Qt::Key_F11);
  ASSERT_TRUE(user().waitFor([&] { return program.window->isFullScreen(); }));
  user().key(Qt::Key_F11);
  ASSERT_TRUE(user().waitFor([&] { return !program.window->isFullScreen(); }));
}

// ---------------------------------------------------------------- contours

class ContourInterval : public testing::Test {
 protected:
  /// The box that asks for it.
  [[nodiscard]] QInputDialog* ask() {
    onGui([&] { interval->trigger(); });
    QWidget* const box = program.user.waitForActiveWindow(QStringLiteral("Contours"));
    return qobject_cast<QInputDialog*>(box);
  }
  [[nodiscard]] bool waitForLook(bool hasContours, double wanted) {
    return program.user.waitFor([&] {
      const desktop::PlanLook& look = program.window->plan().look();
      return QApplication::activeModalWidget() == nullptr && look.contours == hasContours &&
             look.contourInterval == wanted;
    });
  }
  [[nodiscard]] std::string words() {
    return onGui([&] { return interval->text().remove(QLatin1Char('&')).toStdString(); });
  }

  [[nodiscard]] QAction* inMenus(const char* name) {
    return onGui([&]() -> QAction* {
      for (const QMenu* const menu : program.window->findChildren<QMenu*>())
        for (QAction* const action : menu->actions())
          if (action->objectName() == QLatin1String(name)) return action;
      return nullptr;
    });
  }

  ProgramWindow program;
  QAction* interval = inMenus("contourInterval");
  QAction* byScale = inMenus("contoursByScale");
};

TEST_F(ContourInterval, IsTypedIntoABoxKeptAndShownAtOnce) {
  ASSERT_TRUE(waitForLook(false, 0.0));
  EXPECT_EQ(words(), "Interval…");
  QInputDialog* box = ask();
  ASSERT_NE(box, nullptr);
  const QString typed = QLocale().toString(2.5);
  program.user.key(Qt::Key_A, Qt::ControlModifier);
  program.user.type(typed.toStdString());
  program.user.key(Qt::Key_Return);
  EXPECT_TRUE(waitForLook(true, 2.5)) << "who types an interval sees contours";
  EXPECT_EQ(words(), "Interval " + typed.toStdString() + "…");
  EXPECT_TRUE(onGui([&] { return interval->isChecked() && !byScale->isChecked(); }));
  onGui([&] {
    program.window->findChild<QAction*>(QStringLiteral("layer-contours"))->setChecked(false);
    byScale->trigger();
  });
  EXPECT_TRUE(waitForLook(true, 0.0));
  EXPECT_EQ(words(), "Interval…");
  // The box remembers what was typed last.
  box = ask();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(onGui([&] { return box->doubleValue(); }), 2.5);
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(waitForLook(true, 0.0));
  EXPECT_TRUE(onGui([&] { return byScale->isChecked() && !interval->isChecked(); })) << "nothing was chosen";
}

TEST_F(ContourInterval, OfNothingIsRefused) {
  QInputDialog* const box = ask();
  ASSERT_NE(box, nullptr);
  auto* const accept = onGui([&] { return box->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok); });
  EXPECT_TRUE(onGui([&] { return accept->isEnabled(); }));
  program.user.key(Qt::Key_A, Qt::ControlModifier);
  program.user.type("0");
  EXPECT_TRUE(program.user.waitFor([&] { return !accept->isEnabled(); }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(waitForLook(false, 0.0));
}

}  // namespace
}  // namespace lvx::test
