// Changes of the open drawing, undone and redone, and how the window follows them.
#include "desktop/shell/edits.h"

#include <QComboBox>
#include <QMessageBox>
#include <QTreeView>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/panels/drawing_tree.h"
#include "desktop/plan/plan_view.h"
#include "program_window.h"

namespace lvx::test {
namespace {

/// The window over a copy of the example, with somebody who changes its drawing.
class EditsTest : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  ProgramWindow program_{copyOfExample(folder_)};

  const civil::Drawing& drawing() { return program_.window->session().drawing()->drawing(); }
  const civil::AlignmentObject& alignment() { return *drawing().sites.front().alignments.front(); }
  void addPoints(const char* name) {
    onGui([&] {
      program_.window->edits().make(QStringLiteral("New point group “%1”").arg(QLatin1String(name)),
                                    civil::addingPointGroup(name, {drawing().points.front().number}));
    });
  }
  void addLines(const char* name) {
    onGui([&] {
      std::vector<civil::SampleLine> lines = alignment().sampleLineGroups.front().lines;
      program_.window->edits().make(QStringLiteral("Lines"),
                                    civil::addingSampleLineGroup(alignment().handle, name, std::move(lines)));
    });
  }
  std::size_t pointGroups() {
    return onGui([&] { return drawing().pointGroups.size(); });
  }
  bool isMarked() {
    return onGui([&] { return program_.window->isWindowModified(); });
  }
  std::string textOf(const char* action) {
    return onGui([&] { return program_.window->findChild<QAction*>(QLatin1String(action))->text().toStdString(); });
  }
  /// The rows of the tree that show.
  std::vector<std::string> rows() {
    return onGui([&] {
      std::vector<std::string> texts;
      auto* const view = program_.window->findChild<QTreeView*>(QStringLiteral("treeView"));
      for (QModelIndex row = view->model()->index(0, 0); row.isValid(); row = view->indexBelow(row))
        texts.push_back(row.data().toString().toStdString());
      return texts;
    });
  }
};

TEST_F(EditsTest, AreUndoneAndRedoneByTheKeyboardUntilNothingIsLeft) {
  EXPECT_FALSE(program_.isEnabled("undo"));
  const std::size_t before = pointGroups();
  addPoints("Trees & hedges");
  EXPECT_EQ(textOf("undo"), "&Undo: New point group “Trees && hedges”");
  EXPECT_EQ(pointGroups(), before + 1);
  program_.user.key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(program_.user.waitFor([&] { return drawing().pointGroups.size() == before; }));
  EXPECT_FALSE(program_.isEnabled("undo"));
  EXPECT_EQ(textOf("undo"), "&Undo");
  EXPECT_TRUE(program_.isEnabled("redo"));
  program_.user.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(program_.user.waitFor([&] { return drawing().pointGroups.size() == before + 1; }));
  EXPECT_FALSE(program_.isEnabled("redo"));
}

TEST_F(EditsTest, MarkTheDrawingAsChangedUntilTheyAreUndone) {
  EXPECT_FALSE(isMarked());
  EXPECT_FALSE(program_.isEnabled("save"));
  addPoints("Hedges");
  EXPECT_TRUE(isMarked());
  EXPECT_TRUE(program_.isEnabled("save"));
  program_.user.key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(program_.user.waitFor([&] { return !program_.window->isWindowModified(); }));
  EXPECT_FALSE(program_.isEnabled("save"));
}

TEST_F(EditsTest, AreAskedAboutWhenTheDrawingIsReadAgain) {
  addPoints("Hedges");
  program_.user.key(Qt::Key_F5);
  QWidget* const box = program_.waitForNamed("saveChanges");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(onGui([&] { return static_cast<QMessageBox*>(box)->text().toStdString(); }),
            "road.xml has changes that aren't saved.");
  program_.user.click(ProgramWindow::button(box, "Don't save"));
  EXPECT_TRUE(program_.user.waitFor([&] { return !program_.window->isWindowModified(); }));
  EXPECT_FALSE(program_.isEnabled("undo")) << "they went with the drawing";
}

TEST_F(EditsTest, KeepTheZoomOfThePlanAndWhatIsOpenInTheTree) {
  auto* const view = program_.part<QTreeView>("treeView");
  onGui([&] {
    view->expandAll();
    view->collapse(view->model()->index(1, 0));
    program_.window->plan().zoomIn();
    program_.window->plan().zoomIn();
  });
  const auto scale = [&] { return onGui([&] { return program_.window->plan().viewport().scale(); }); };
  const std::vector<std::string> before = rows();
  const double scaleBefore = scale();
  addLines("Copy");
  program_.user.key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(program_.user.waitFor([&] { return !program_.window->isWindowModified(); }));
  EXPECT_EQ(rows(), before);
  EXPECT_DOUBLE_EQ(scale(), scaleBefore);
}

TEST_F(EditsTest, TellWhyAChangeCantBeMade) {
  QMetaObject::invokeMethod(
      program_.window,
      [&] { program_.window->edits().make(QStringLiteral("New point group"), civil::addingPointGroup("", {})); },
      Qt::QueuedConnection);
  QWidget* const box = program_.waitForNamed("editFailed");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(onGui([&] { return static_cast<QMessageBox*>(box)->informativeText().toStdString(); }),
            "What it is about isn't there any more, or its name is taken. The drawing is as it was. In detail: a point "
            "group needs a name.");
  program_.user.key(Qt::Key_Return);
  EXPECT_TRUE(program_.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_FALSE(isMarked());
}

TEST_F(EditsTest, ShowInTheListsOfAReportThatRanBefore) {
  const auto run = [&] {
    program_.enter("lvx_Report_Points");
    QWidget* const dialog = program_.user.waitForActiveWindow(QStringLiteral("oints"));
    EXPECT_NE(dialog, nullptr);
    const bool has = onGui([&] {
      for (auto* const list : QApplication::activeWindow()->findChildren<QComboBox*>())
        if (list->findText(QStringLiteral("Hedges")) >= 0) return true;
      return false;
    });
    program_.user.key(Qt::Key_Escape);
    EXPECT_TRUE(program_.user.waitFor([&] { return !program_.window->session().isRunning(); }));
    return has;
  };
  EXPECT_FALSE(run());
  addPoints("Hedges");
  EXPECT_TRUE(run());
}

}  // namespace
}  // namespace lvx::test
