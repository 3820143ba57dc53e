// Sample lines made, changed and taken away by mouse and keyboard.
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QTreeView>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "civil/drawing_edit.h"
#include "desktop/plan/plan_view.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/sample_lines_dialog.h"
#include "landxml/reader.h"
#include "program_window.h"
#include "text/number_text.h"

namespace lvx::test {
namespace {

class SampleLinesTest : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  ProgramWindow program_{copyOfExample(folder_)};
  DesktopUser& user_ = program_.user;

  // For the windows' thread.
  const civil::Drawing& drawing() { return program_.window->session().drawing()->drawing(); }
  const civil::AlignmentObject& alignment() { return *drawing().sites.front().alignments.front(); }
  const civil::SampleLineGroup& lastGroup() { return alignment().sampleLineGroups.back(); }
  /// Of a line of the last group; the origin where it has none of that handle.
  civil::Vec2 rightEndOf(civil::Handle handle) {
    for (const civil::SampleLine& line : lastGroup().lines)
      if (line.handle == handle) return line.vertices.back();
    return {};
  }

  /// The main window has the keyboard.
  void toWindow() {
    onGui([&] { program_.window->activateWindow(); });
    EXPECT_TRUE(user_.waitFor([&] { return program_.window->isActiveWindow(); }));
  }
  /// Ctrl+L, and the dialog has the keyboard.
  QWidget* openDialog() {
    user_.key(Qt::Key_L, Qt::ControlModifier);
    QWidget* const dialog = program_.waitForNamed("sampleLinesDialog");
    EXPECT_NE(dialog, nullptr);
    return dialog;
  }
  template <class Widget = QWidget>
  Widget* in(QWidget* dialog, const char* name) {
    return onGui([&] { return dialog->findChild<Widget*>(QLatin1String(name)); });
  }
  void type(QWidget* dialog, const char* field, const std::string& text) {
    auto* const edit = in<QLineEdit>(dialog, field);
    ASSERT_NE(edit, nullptr) << field;
    user_.click(edit);
    user_.key(Qt::Key_A, Qt::ControlModifier);
    if (text.empty())
      user_.key(Qt::Key_Delete);
    else
      user_.type(text);
    EXPECT_TRUE(user_.waitFor([&] { return edit->text().toStdString() == text; }))
        << field << ": " << onGui([&] { return edit->text().toStdString(); });
  }
  bool waitForResult(QWidget* dialog, const char* text) {
    auto* const label = in<QLabel>(dialog, "linesResult");
    const bool came = user_.waitFor([&] { return label->text().contains(QString::fromUtf8(text)); });
    EXPECT_TRUE(came) << onGui([&] { return label->text().toStdString(); });
    return came;
  }
  std::string errorOf(QWidget* dialog, const char* field) {
    return onGui([&] {
      return dialog->findChild<QLabel*>(QLatin1String(field) + QStringLiteral("Error"))->text().toStdString();
    });
  }
  bool canAccept(QWidget* dialog) {
    return onGui([&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); });
  }
  void accept(QWidget* dialog) {
    ASSERT_TRUE(user_.waitFor(
        [&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); }));
    user_.click(
        onGui([&]() -> QWidget* { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok); }));
    ASSERT_TRUE(user_.waitFor([] {
      for (QWidget* const top : QApplication::topLevelWidgets())
        if (top->objectName() == QLatin1String("sampleLinesDialog") && top->isVisible()) return false;
      return true;
    }));
  }
  /// A group every 50 m, 20 m wide, through the dialog.
  void makeGroup(const std::string& name) {
    QWidget* const dialog = openDialog();
    ASSERT_NE(dialog, nullptr);
    type(dialog, "linesName", name);
    type(dialog, "linesEvery", "50");
    type(dialog, "linesLeft", "20");
    type(dialog, "linesRight", "20");
    waitForResult(dialog, "lines:");
    accept(dialog);
    ASSERT_TRUE(user_.waitFor([&] { return lastGroup().name == name; }));
  }
  QPoint pixelOf(civil::Vec2 place) {
    return onGui([&] {
      const civil::Vec2 pixel = program_.window->plan().viewport().toPixels(place);
      return QPoint(static_cast<int>(std::lround(pixel.x)), static_cast<int>(std::lround(pixel.y)));
    });
  }
  /// Chooses a row of the tree by its object.
  void choose(civil::Handle handle) {
    onGui([&] { program_.window->plan().clicked(handle); });
  }
  int purple() {
    return onGui([&] {
      const QImage picture = program_.window->plan().grab().toImage();
      int count = 0;
      for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
          const QColor colour = picture.pixelColor(x, y);
          if (colour.red() > 130 && colour.blue() > 150 && colour.green() < 90) ++count;
        }
      return count;
    });
  }
};

TEST_F(SampleLinesTest, AreMadeByRulesWithPreviewAndUndoneAsOneStep) {
  const std::size_t before = onGui([&] { return alignment().sampleLineGroups.size(); });
  QWidget* const dialog = openDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_TRUE(waitForResult(dialog, "lines: "));
  type(dialog, "linesName", "Every 10");
  type(dialog, "linesEvery", "10");
  EXPECT_TRUE(waitForResult(dialog, "1+010.000, "));
  EXPECT_GT(purple(), 50) << "the plan shows what would be made";
  accept(dialog);
  ASSERT_TRUE(user_.waitFor([&] { return alignment().sampleLineGroups.size() == before + 1; }));
  onGui([&] {
    EXPECT_EQ(lastGroup().name, "Every 10");
    ASSERT_GT(lastGroup().lines.size(), 5U);
    EXPECT_EQ(lastGroup().lines[1].name, text::stationText(lastGroup().lines[1].station));
  });
  EXPECT_EQ(purple(), 0) << "the preview has gone";
  EXPECT_TRUE(program_.isEnabled("save"));
  toWindow();
  user_.key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(user_.waitFor([&] { return alignment().sampleLineGroups.size() == before; }));
  EXPECT_FALSE(program_.isEnabled("save"));
}

TEST_F(SampleLinesTest, TellEachErrorBesideItsField) {
  struct Row {
    const char* field;
    const char* wrong;
    const char* error;
    const char* right;
  };
  const std::vector<Row> rows = {
      {"linesName", "", "A name is wanted.", "New"},
      {"linesEvery", "x", "A number is wanted.", "20"},
      {"linesEvery", "0", "A number above 0 is wanted.", "20"},
      {"linesEvery", "0.0000001", "This gives more than 1000000 lines.", "20"},
      {"linesFrom", "here", "A station is wanted, as 1020.5 or 1+020.5.", ""},
      {"linesFrom", "900+000", "The alignment runs from ", ""},
      {"linesStations", "5;x", "Stations between semicolons are wanted.", ""},
      {"linesStations", "900000", "The alignment runs from ", ""},
      {"linesTolerance", "-1", "A number of 0 or above is wanted.", "0.001"},
      {"linesLeft", "0", "A number above 0 is wanted.", "30"},
      {"linesRight", "-3", "A number above 0 is wanted.", "30"},
      {"linesSkew", "90", "An angle between -90 and 90 is wanted.", "0"},
      {"linesPattern", "{x}", "In braces only {station}, {kind} and {n} can stand.", "{station}"},
  };
  QWidget* const dialog = openDialog();
  ASSERT_NE(dialog, nullptr);
  type(dialog, "linesName", "New");
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.field) + " '" + row.wrong + "'");
    type(dialog, row.field, row.wrong);
    auto* const error = in<QLabel>(dialog, (std::string(row.field) + "Error").c_str());
    EXPECT_TRUE(user_.waitFor([&] { return error->text().startsWith(QString::fromUtf8(row.error)); }))
        << errorOf(dialog, row.field);
    EXPECT_FALSE(canAccept(dialog));
    type(dialog, row.field, row.right);
    EXPECT_TRUE(user_.waitFor([&] { return error->text().isEmpty(); }));
    EXPECT_TRUE(user_.waitFor(
        [&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); }));
  }
  const std::string taken = onGui([&] { return alignment().sampleLineGroups.front().name; });
  type(dialog, "linesName", taken);
  EXPECT_EQ(errorOf(dialog, "linesName"), "The alignment has a group of this name already.");
  user_.key(Qt::Key_Escape);
}

TEST_F(SampleLinesTest, CanBeEditedByTheirRulesRenamedAndDeleted) {
  makeGroup("Mine");
  const std::size_t groups = onGui([&] { return alignment().sampleLineGroups.size(); });
  const std::size_t lines = onGui([&] { return lastGroup().lines.size(); });
  toWindow();
  user_.key(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  QWidget* const dialog = program_.waitForNamed("sampleLinesDialog");
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(onGui([&] { return dialog->findChild<QLineEdit*>(QStringLiteral("linesEvery"))->text().toStdString(); }),
            "50");
  EXPECT_TRUE(onGui([&] { return dialog->findChild<QLabel*>(QStringLiteral("linesAnew"))->isVisible(); }))
      << "lines that were changed by hand go";
  type(dialog, "linesName", "Renamed");
  type(dialog, "linesEvery", "25");
  accept(dialog);
  ASSERT_TRUE(user_.waitFor([&] { return lastGroup().name == "Renamed"; }));
  EXPECT_GT(onGui([&] { return lastGroup().lines.size(); }), lines);
  toWindow();
  user_.key(Qt::Key_Delete);
  EXPECT_TRUE(user_.waitFor([&] { return alignment().sampleLineGroups.size() == groups - 1; }));
  user_.key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(user_.waitFor([&] { return lastGroup().name == "Renamed"; }));
  user_.key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(user_.waitFor([&] { return lastGroup().name == "Mine" && lastGroup().lines.size() == lines; }));
}

TEST_F(SampleLinesTest, OfAFileCanBeRenamedAndWidenedWithoutRules) {
  const civil::Handle group = onGui([&] { return alignment().sampleLineGroups.front().handle; });
  choose(group);
  user_.key(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
  QWidget* const dialog = program_.waitForNamed("groupDialog");
  ASSERT_NE(dialog, nullptr);
  type(dialog, "groupName", "Wider");
  type(dialog, "groupLeft", "55");
  user_.key(Qt::Key_Return);
  ASSERT_TRUE(user_.waitFor([&] { return alignment().sampleLineGroups.front().name == "Wider"; }));
  onGui([&] {
    for (const civil::SampleLine& line : alignment().sampleLineGroups.front().lines) {
      const auto pose = alignment().geometry.poseAt(line.station);
      ASSERT_TRUE(pose.has_value());
      EXPECT_NEAR(civil::length(line.vertices.front() - pose->point), 55.0, 1e-6) << line.name;
    }
  });
}

TEST_F(SampleLinesTest, ArePulledAtTheirEndsAddedAndDeletedOneByOne) {
  makeGroup("Mine");
  const civil::SampleLine line = onGui([&] { return lastGroup().lines[1]; });
  choose(line.handle);
  onGui([&] { program_.window->plan().zoomTo(line.handle); });
  const auto rightEnd = [&] { return rightEndOf(line.handle); };
  const civil::Vec2 center = line.vertices[1];
  const civil::Vec2 half = center + 0.5 * (line.vertices.back() - center);
  user_.drag(&program_.window->plan(), pixelOf(line.vertices.back()), pixelOf(half));
  ASSERT_TRUE(user_.waitFor([&] { return civil::length(rightEnd() - line.vertices.back()) > 1.0; }));
  EXPECT_NEAR(onGui([&] { return civil::length(rightEnd() - center); }), 10.0, 0.5);
  user_.key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(user_.waitFor([&] { return rightEnd() == line.vertices.back(); }));

  const std::size_t count = onGui([&] { return lastGroup().lines.size(); });
  user_.key(Qt::Key_Delete);
  ASSERT_TRUE(user_.waitFor([&] { return lastGroup().lines.size() == count - 1; }));
  user_.key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(user_.waitFor([&] { return lastGroup().lines.size() == count; }));

  // At the mouse, by the menu of the place.
  const auto pose = onGui([&] { return alignment().geometry.pointLocation(line.station + 6.0, 3.0); });
  user_.click(&program_.window->plan(), pixelOf(pose->point), Qt::RightButton);
  ASSERT_TRUE(user_.waitFor([] {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    return menu != nullptr && !menu->actions().isEmpty();
  }));
  const std::string entry = onGui([] {
    for (QAction* const action : qobject_cast<QMenu*>(QApplication::activePopupWidget())->actions())
      if (action->objectName() == QLatin1String("menuAddHere")) return action->text().toStdString();
    return std::string();
  });
  EXPECT_NE(entry.find("Mine"), std::string::npos) << entry;
  user_.key(Qt::Key_A);
  ASSERT_TRUE(user_.waitFor([&] { return lastGroup().lines.size() == count + 1; }));
  onGui([&] {
    const civil::SampleLine& added = lastGroup().lines[2];
    EXPECT_NEAR(added.station, line.station + 6.0, 0.5);
    EXPECT_EQ(added.name, text::stationText(added.station));
  });
}

TEST_F(SampleLinesTest, AreSavedAndReadBackEqual) {
  makeGroup("Mine");
  const civil::SampleLineGroup made = onGui([&] { return lastGroup(); });
  toWindow();
  user_.key(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(user_.waitFor([&] { return !program_.window->isWindowModified(); }));
  const civil::Drawing read = landxml::readDrawing((folder_ / "road.xml").string());
  const auto& groups = read.sites.front().alignments.front()->sampleLineGroups;
  ASSERT_FALSE(groups.empty());
  EXPECT_EQ(groups.back().name, "Mine");
  ASSERT_EQ(groups.back().lines.size(), made.lines.size());
  for (std::size_t i = 0; i < made.lines.size(); ++i) {
    EXPECT_EQ(groups.back().lines[i].name, made.lines[i].name);
    EXPECT_NEAR(groups.back().lines[i].station, made.lines[i].station, 1e-9);
    EXPECT_LT(civil::length(groups.back().lines[i].vertices.front() - made.lines[i].vertices.front()), 1e-6);
  }
  // What was saved can be undone, saved, and made again.
  for (const Qt::KeyboardModifiers again : {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ShiftModifier)}) {
    user_.key(Qt::Key_Z, Qt::ControlModifier | again);
    ASSERT_TRUE(user_.waitFor([&] { return program_.window->isWindowModified(); }));
    user_.key(Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(user_.waitFor([&] { return !program_.window->isWindowModified(); }));
    const civil::Drawing now = landxml::readDrawing((folder_ / "road.xml").string());
    EXPECT_EQ(now.sites.front().alignments.front()->sampleLineGroups.back().name == "Mine",
              again.testFlag(Qt::ShiftModifier));
  }
}

TEST_F(SampleLinesTest, LeaveALineAsItIsWhenAPullIsGivenUp) {
  makeGroup("Mine");
  const civil::SampleLine line = onGui([&] { return lastGroup().lines[1]; });
  choose(line.handle);
  onGui([&] { program_.window->plan().zoomTo(line.handle); });
  EXPECT_TRUE(
      onGui([&] { return program_.window->edits().undoName().startsWith(QStringLiteral("New sample lines")); }));
  user_.drag(&program_.window->plan(), pixelOf(line.vertices.back()), pixelOf(line.vertices.back()) + QPoint(1, 0));
  EXPECT_TRUE(onGui([&] { return program_.window->edits().undoName().startsWith(QStringLiteral("New sample lines")); }))
      << "a hand that shakes pulls nothing";
}

TEST_F(SampleLinesTest, StayAsTheyAreWhileAnotherDrawingIsRead) {
  makeGroup("Mine");
  const civil::SampleLine line = onGui([&] { return lastGroup().lines[1]; });
  choose(line.handle);
  onGui([&] { program_.window->plan().zoomTo(line.handle); });
  const auto rightEnd = [&] { return rightEndOf(line.handle); };
  const civil::Vec2 half = line.vertices[1] + 0.5 * (line.vertices.back() - line.vertices[1]);
  toWindow();
  user_.key(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(user_.waitFor([&] { return !program_.window->isWindowModified(); }));
  // Nobody writes into it, so that it is read until that is cancelled.
  const std::string pipe = (folder_ / "endless.xml").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
  const int writer = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(writer, 0);
  onGui([&] { program_.window->openDrawing(desktop::DrawingSources(QString::fromStdString(pipe))); });
  EXPECT_FALSE(onGui([&] { return program_.window->edits().isPossible(); }));
  user_.drag(&program_.window->plan(), pixelOf(line.vertices.back()), pixelOf(half));
  EXPECT_EQ(onGui(rightEnd), line.vertices.back());
  EXPECT_FALSE(onGui([&] { return program_.window->isWindowModified(); }));
  toWindow();
  user_.key(Qt::Key_Escape);
  close(writer);
  ASSERT_TRUE(user_.waitFor([&] { return program_.window->edits().isPossible(); }));
  user_.drag(&program_.window->plan(), pixelOf(line.vertices.back()), pixelOf(half));
  EXPECT_TRUE(user_.waitFor([&] { return rightEnd() != line.vertices.back(); })) << "and as before once that has ended";
}

TEST_F(SampleLinesTest, OfAHundredThousandAreMadeWhileTheWindowLives) {
  QWidget* const dialog = openDialog();
  ASSERT_NE(dialog, nullptr);
  const double length = onGui([&] { return alignment().geometry.length(); });
  type(dialog, "linesName", "Many");
  type(dialog, "linesTolerance", "0.0000001");
  type(dialog, "linesEvery", text::fixedText(length / 100000.0, 7));
  ASSERT_TRUE(user_.waitFor(
      [&] { return dialog->findChild<QLabel*>(QStringLiteral("linesResult"))->text().contains(QStringLiteral(":")); },
      std::chrono::seconds(60)));
  accept(dialog);
  ASSERT_TRUE(user_.waitFor([&] { return lastGroup().name == "Many"; }, std::chrono::seconds(60)));
  EXPECT_GT(onGui([&] { return lastGroup().lines.size(); }), 99000U);
}

}  // namespace
}  // namespace lvx::test
