// Drawings of several files: added, dropped, removed, swapped, converted, remembered.
#include <QDrag>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QSettings>
#include <QTableView>
#include <QUrl>
#include <fstream>
#include <iterator>
#include <thread>

#include "desktop/panels/notice_bar.h"
#include "desktop/shell/drawing_sources.h"
#include "desktop/shell/edits.h"
#include "drawing_parts.h"
#include "landxml/reader.h"

namespace lvx::test {
namespace {

const civil::Drawing& drawingOf(const ProgramWindow& program) { return program.window->session().drawing()->drawing(); }

std::size_t filesOf(const ProgramWindow& program) {
  return onGui([&] { return program.isOpen() ? drawingOf(program).addedFiles.size() + 1 : 0; });
}

bool waitForFiles(const ProgramWindow& program, std::size_t count) {
  return program.user.waitFor([&] { return program.isOpen() && drawingOf(program).addedFiles.size() + 1 == count; });
}

std::string titleOf(const ProgramWindow& program) {
  return onGui([&] { return program.window->windowTitle().toStdString(); });
}

std::string wordsOf(const QWidget* box) {
  return onGui([&] {
    const auto* const message = qobject_cast<const QMessageBox*>(box);
    return (message->text() + QLatin1Char('\n') + message->informativeText()).toStdString();
  });
}

class DrawingFiles : public testing::Test {
 protected:
  DrawingFiles()
      : road(writeDrawing(folder, "road.xml", drawingIn("meter", kRoad))),
        ground(writeDrawing(folder, "ground.xml", drawingIn("meter", kGround))),
        points(writeDrawing(folder, "points.xml", drawingIn("meter", kPoints))),
        feet(writeDrawing(folder, "feet.xml", drawingIn("USSurveyFoot", kGround))) {}

  static void add(ProgramWindow& program, const QString& path) { program.enter("add " + path.toStdString()); }
  /// A group "Mine" of one line on the road.
  static void makeGroup(ProgramWindow& program) {
    onGui([&] {
      const civil::AlignmentObject& alignment = *drawingOf(program).siteless.alignments.at(0);
      civil::SampleLine line;
      line.name = "Middle";
      line.station = 50.0;
      line.vertices = {{40.0, 50.0}, {60.0, 50.0}};
      program.window->edits().make(QStringLiteral("Lines"),
                                   civil::addingSampleLineGroup(alignment.handle, "Mine", {line}));
    });
  }

  TemporaryFolder folder;
  QString road;
  QString ground;
  QString points;
  QString feet;
};

TEST_F(DrawingFiles, OneIsAddedToTheOpenDrawingWithAllThatItHolds) {
  ProgramWindow program(road);
  EXPECT_EQ(treeText(program, "Files"), "Files (1)");
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  EXPECT_EQ(titleOf(program).rfind("road.xml + 1 file", 0), 0U) << titleOf(program);
  EXPECT_TRUE(program.waitUntilSaid("road.xml is open, with"));
  EXPECT_EQ(treeText(program, "Files"), "Files (2)");
  EXPECT_EQ(treeText(program, "ground.xml"), "ground.xml (meter)");
  EXPECT_NE(treeText(program, "ground.xml", Qt::ToolTipRole).find(ground.toStdString()), std::string::npos);
  EXPECT_NE(treeText(program, "Ground", Qt::ToolTipRole).find("From ground.xml"), std::string::npos);
  EXPECT_EQ(treeText(program, "Road", Qt::ToolTipRole), "From road.xml");
  EXPECT_FALSE(onGui([&] { return program.window->isWindowModified(); })) << "nothing is to be saved";
}

TEST_F(DrawingFiles, SeveralAreChosenInTheFileBoxOfTheMenu) {
  ProgramWindow program(road);
  program.user.key(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
  QWidget* const box = program.user.waitForActiveWindow(QStringLiteral("Add to the drawing"));
  ASSERT_NE(box, nullptr);
  program.user.type("\"" + ground.toStdString() + "\" \"" + points.toStdString() + "\"");
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(waitForFiles(program, 3));
  EXPECT_EQ(onGui([&] { return drawingOf(program).points.size(); }), 5U);
}

TEST_F(DrawingFiles, AnotherUnitIsAskedAboutAndConvertedExactly) {
  ProgramWindow program(road);
  add(program, feet);
  QWidget* box = program.waitForNamed("convertUnits");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(wordsOf(box).rfind("feet.xml is in USSurveyFoot, road.xml in meter.", 0), 0U) << wordsOf(box);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.waitUntilSaid("was cancelled"));
  EXPECT_EQ(filesOf(program), 1U);

  add(program, feet);
  box = program.waitForNamed("convertUnits");
  ASSERT_NE(box, nullptr);
  program.user.click(ProgramWindow::button(box, "Convert"));
  ASSERT_TRUE(waitForFiles(program, 2));
  EXPECT_DOUBLE_EQ(onGui([&] { return drawingOf(program).addedFiles[0].lengthFactor; }), 1200.0 / 3937.0);
  EXPECT_EQ(treeText(program, "feet.xml"), "feet.xml (USSurveyFoot, converted)");
  // Read again without another question.
  const void* const before = onGui([&] { return program.window->session().drawing().get(); });
  program.user.key(Qt::Key_F5);
  ASSERT_TRUE(program.user.waitFor([&] { return program.window->session().drawing().get() != before; }));
  EXPECT_EQ(filesOf(program), 2U);
}

TEST_F(DrawingFiles, OneThatCantBeReadIsNamedAndNothingIsLost) {
  const QString cut = writeDrawing(folder, "cut.xml", "<LandXML version=\"1.2\">\n<Units>");
  ProgramWindow program(road);
  const void* const before = onGui([&] { return program.window->session().drawing().get(); });
  add(program, cut);
  QWidget* const box = program.waitForNamed("openFailed");
  ASSERT_NE(box, nullptr);
  EXPECT_NE(wordsOf(box).find("cut.xml can't be opened."), std::string::npos) << wordsOf(box);
  EXPECT_NE(wordsOf(box).find("stays open"), std::string::npos) << wordsOf(box);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(onGui([&] { return program.window->session().drawing().get(); }), before);
  EXPECT_EQ(titleOf(program).rfind("road.xml", 0), 0U);
}

TEST_F(DrawingFiles, OneThatIsThereAlreadyIsToldAndTheOthersAreAdded) {
  ProgramWindow program(road);
  add(program, road);
  QWidget* const box = program.waitForNamed("fileTwice");
  ASSERT_NE(box, nullptr);
  EXPECT_NE(wordsOf(box).find("The drawing has road.xml already."), std::string::npos);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(filesOf(program), 1U);
}

TEST_F(DrawingFiles, EachTakesItsOwnChangesWhenTheDrawingIsSaved) {
  ProgramWindow program(points);
  add(program, road);
  ASSERT_TRUE(waitForFiles(program, 2));
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 3));
  const auto textOf = [](const QString& path) {
    std::ifstream file(path.toStdString());
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  const std::string groundBefore = textOf(ground);
  makeGroup(program);
  onGui([&] { program.window->edits().make(QStringLiteral("Points"), civil::addingPointGroup("Trees", {1, 2, 4})); });
  EXPECT_TRUE(onGui([&] { return program.window->isWindowModified(); }));
  program.enter("save");
  ASSERT_TRUE(program.user.waitFor([&] { return !program.window->isWindowModified(); }));
  EXPECT_EQ(textOf(ground), groundBefore);

  const civil::Drawing first = landxml::readDrawing(points.toStdString());
  ASSERT_EQ(first.pointGroups.size(), 1U);
  EXPECT_EQ(first.pointGroups[0].numbers, (std::vector<std::int32_t>{1, 2, 4}));
  EXPECT_TRUE(first.siteless.alignments.empty());
  const civil::Drawing second = landxml::readDrawing(road.toStdString());
  ASSERT_EQ(second.siteless.alignments.at(0)->sampleLineGroups.size(), 1U);
  EXPECT_EQ(second.siteless.alignments[0]->sampleLineGroups[0].name, "Mine");
  EXPECT_TRUE(second.pointGroups.empty());
  // Nobody else changed them.
  EXPECT_FALSE(
      onGui([&] { return program.window->findChild<desktop::NoticeBar*>(QStringLiteral("noticeBar"))->isVisible(); }));
}

TEST_F(DrawingFiles, AnAddedOneIsAskedAboutBeforeSaveAsChangesIt) {
  ProgramWindow program(points);
  add(program, road);
  ASSERT_TRUE(waitForFiles(program, 2));
  makeGroup(program);
  const auto saveAs = [&] {
    program.user.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NE(program.user.waitForActiveWindow(QStringLiteral("Save the drawing as")), nullptr);
    program.user.type((folder / "other.xml").string());
    program.user.key(Qt::Key_Return);
    return program.waitForNamed("otherFilesQuestion");
  };
  const auto linesInRoad = [&] {
    return landxml::readDrawing(road.toStdString()).siteless.alignments.at(0)->sampleLineGroups.size();
  };
  QWidget* box = saveAs();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(wordsOf(box),
            "What is new belongs into other files than other.xml.\nSaving changes them in their own places:\n" +
                road.toStdString());
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_FALSE(std::filesystem::exists(folder / "other.xml"));
  EXPECT_EQ(linesInRoad(), 0U);
  EXPECT_TRUE(onGui([&] { return program.window->isWindowModified(); }));

  ASSERT_NE(saveAs(), nullptr);
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([&] { return !program.window->isWindowModified(); }));
  EXPECT_TRUE(std::filesystem::exists(folder / "other.xml"));
  EXPECT_EQ(linesInRoad(), 1U);
  // Where it lies now stands over the plan, since nothing else of the window shows the folder.
  const auto* const bar = program.window->findChild<desktop::NoticeBar*>(QStringLiteral("outcomeBar"));
  ASSERT_NE(bar, nullptr);
  EXPECT_TRUE(program.user.waitFor([&] { return bar->isVisible(); }));
  EXPECT_EQ(onGui([&] { return bar->text().toStdString(); }), (folder / "other.xml").string() + " is saved.");
}

TEST_F(DrawingFiles, SavingNeverReplacesAFileUnaskedAndNoneThatIsRead) {
  const std::filesystem::path other = folder / "other.xml";
  std::ofstream(other) << "somebody's";
  const std::string roadBefore = fileBytes(road.toStdString());
  ProgramWindow program(points);
  add(program, road);
  ASSERT_TRUE(waitForFiles(program, 2));

  program.enter("saveas " + road.toStdString());
  QWidget* box = program.waitForNamed("saveFailed");
  ASSERT_NE(box, nullptr);
  EXPECT_NE(wordsOf(box).find("It is read itself"), std::string::npos);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(fileBytes(road.toStdString()), roadBefore);

  program.enter("saveas " + other.string());
  ASSERT_NE(program.waitForNamed("replaceQuestion"), nullptr);
  program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(fileBytes(other), "somebody's");

  program.enter("saveas " + other.string());
  ASSERT_NE(program.waitForNamed("replaceQuestion"), nullptr);
  program.user.key(Qt::Key_R, Qt::AltModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return fileBytes(other) == fileBytes(points.toStdString()); }));
}

TEST_F(DrawingFiles, AFileIsTakenOutByItsMenu) {
  ProgramWindow program(road);
  EXPECT_FALSE(chooseInTree(program, "road.xml", "removeFile")) << "it is the only one";
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  ASSERT_TRUE(chooseInTree(program, "ground.xml", "removeFile"));
  ASSERT_TRUE(waitForFiles(program, 1));
  EXPECT_TRUE(onGui([&] { return drawingOf(program).surfaces.empty(); }));
}

TEST_F(DrawingFiles, WhereTheFirstIsTakenOutTheNextIsTheFirst) {
  ProgramWindow program(road);
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  ASSERT_TRUE(chooseInTree(program, "road.xml", "removeFile"));
  ASSERT_TRUE(waitForFiles(program, 1));
  EXPECT_EQ(titleOf(program).rfind("ground.xml", 0), 0U) << titleOf(program);
}

TEST_F(DrawingFiles, AnotherBecomesTheFirst) {
  ProgramWindow program(road);
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  EXPECT_FALSE(chooseInTree(program, "road.xml", "makeFirst")) << "it is";
  ASSERT_TRUE(chooseInTree(program, "ground.xml", "makeFirst"));
  EXPECT_TRUE(program.user.waitFor(
      [&] { return program.window->windowTitle().startsWith(QStringLiteral("ground.xml + 1 file")); }));
}

TEST_F(DrawingFiles, NorthingAndEastingOfOneAreSwappedAndBack) {
  ProgramWindow program(road);
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  const auto isSwapped = [&] { return drawingOf(program).addedFiles[0].axesSwapped; };
  ASSERT_TRUE(chooseInTree(program, "ground.xml", "swapAxes"));
  ASSERT_TRUE(program.user.waitFor(isSwapped));
  EXPECT_EQ(treeText(program, "ground.xml"), "ground.xml (meter, swapped)");
  ASSERT_TRUE(chooseInTree(program, "ground.xml", "swapAxes"));
  EXPECT_TRUE(program.user.waitFor([&] { return !isSwapped(); }));
}

TEST_F(DrawingFiles, AChangeOfAnAddedOneIsToldWithItsNameAndReadAgain) {
  ProgramWindow program(road);
  add(program, points);
  ASSERT_TRUE(waitForFiles(program, 2));
  auto* const notice =
      onGui([&] { return program.window->findChild<desktop::NoticeBar*>(QStringLiteral("noticeBar")); });
  writeDrawing(folder, "points.xml",
               drawingIn("meter", "<CgPoints><CgPoint name=\"1\">10 20 100</CgPoint></CgPoints>"));
  ASSERT_TRUE(program.user.waitFor([&] { return notice->isVisible(); }));
  EXPECT_TRUE(onGui([&] {
    for (const auto* const label : notice->findChildren<QLabel*>())
      if (label->text().contains(QStringLiteral("points.xml was changed"))) return true;
    return false;
  }));
  program.user.key(Qt::Key_F5);
  ASSERT_TRUE(program.user.waitFor([&] { return program.isOpen() && drawingOf(program).points.size() == 1; }));
  EXPECT_EQ(filesOf(program), 2U);
  EXPECT_FALSE(onGui([&] { return notice->isVisible(); }));
}

TEST_F(DrawingFiles, WhatIsOddNamesTheFileThatItStandsIn) {
  const QString odd =
      writeDrawing(folder, "odd.xml", drawingIn("meter", "\n<CgPoints><CgPoint name=\"1\">abc</CgPoint></CgPoints>"));
  ProgramWindow program(road);
  add(program, odd);
  ASSERT_TRUE(waitForFiles(program, 2));
  auto* const table = program.part<QTableView>("diagnosticsTable");
  EXPECT_TRUE(onGui([&] {
    for (int row = 0; row < table->model()->rowCount(); ++row)
      if (table->model()->index(row, 1).data().toString() == QStringLiteral("odd.xml:3")) return true;
    return false;
  }));
}

TEST_F(DrawingFiles, OfOneDrawingAreOneEntryOfTheRecentOnes) {
  ProgramWindow program(road);
  add(program, ground);
  ASSERT_TRUE(waitForFiles(program, 2));
  program.enter("open " + points.toStdString());
  ASSERT_TRUE(waitForFiles(program, 1));
  program.user.key(Qt::Key_F, Qt::AltModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activePopupWidget() != nullptr; }));
  program.user.key(Qt::Key_C);
  auto* const recent = program.part<QMenu>("recentMenu");
  ASSERT_TRUE(program.user.waitFor([&] { return recent->isVisible(); }));
  const QStringList entries = onGui([&] {
    QStringList texts;
    for (const QAction* const action : recent->actions()) texts << action->text();
    return texts;
  });
  ASSERT_EQ(entries.size(), 2) << entries.join(QLatin1Char('\n')).toStdString();
  EXPECT_TRUE(entries[1].endsWith(QStringLiteral("/road.xml + 1 file"))) << entries[1].toStdString();
  program.user.key(Qt::Key_2);
  ASSERT_TRUE(waitForFiles(program, 2));
  EXPECT_EQ(onGui([&] { return drawingOf(program).surfaces.size(); }), 1U);
}

// ---------------------------------------------------------------- dropped

/// A window from which files can be dragged.
class FilesSource final : public QWidget {
 public:
  explicit FilesSource(QList<QUrl> urls) : urls_(std::move(urls)) { setWindowFlag(Qt::WindowStaysOnTopHint); }

 protected:
  void mouseMoveEvent(QMouseEvent*) override {
    auto* const files = new QMimeData;
    files->setUrls(urls_);
    auto* const drag = new QDrag(this);
    drag->setMimeData(files);
    drag->exec(Qt::CopyAction);
  }

 private:
  QList<QUrl> urls_;
};

void drop(ProgramWindow& program, const QStringList& paths, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  auto* const source = onGui([&] {
    QList<QUrl> urls;
    for (const QString& path : paths) urls << QUrl::fromLocalFile(path);
    auto* const made = new FilesSource(urls);
    made->setGeometry(700, 400, 120, 80);
    made->show();
    return made;
  });
  ASSERT_TRUE(program.user.waitFor([&] { return source->isVisible(); }));
  program.user.drag(source, QPoint(60, 40), QPoint(60, 250), Qt::LeftButton, modifiers);
  onGui([&] { source->deleteLater(); });
}

TEST_F(DrawingFiles, DroppedAtOnceAreOneDrawingWithTheRoadInFront) {
  ProgramWindow program{QString()};
  drop(program, {points, ground, road});
  ASSERT_TRUE(waitForFiles(program, 3));
  EXPECT_EQ(titleOf(program).rfind("road.xml + 2 files", 0), 0U) << titleOf(program);
}

TEST_F(DrawingFiles, DroppedOnADrawingTakeItsPlaceOrWithCtrlJoinIt) {
  ProgramWindow program(road);
  drop(program, {ground}, Qt::ControlModifier);
  ASSERT_TRUE(waitForFiles(program, 2));
  drop(program, {points});
  ASSERT_TRUE(waitForFiles(program, 1));
  EXPECT_EQ(titleOf(program).rfind("points.xml", 0), 0U) << titleOf(program);
}

// ---------------------------------------------------------------- kept in settings

TEST(DrawingSources, StandInTheSettingsAsThePathOrWithAllThatTheyAre) {
  desktop::DrawingSources sources(QStringLiteral("/a/road.xml"));
  EXPECT_EQ(sources.toSetting(), QStringLiteral("/a/road.xml"));
  EXPECT_EQ(desktop::DrawingSources::fromSetting(sources.toSetting()), sources);
  sources.files.append({QStringLiteral("/a/ground \"1\".xml"), true});
  sources.convertUnits = true;
  EXPECT_EQ(desktop::DrawingSources::fromSetting(sources.toSetting()), sources);
  EXPECT_TRUE(desktop::DrawingSources::fromSetting(QStringLiteral("{\"files\":7")).files.isEmpty());
  EXPECT_TRUE(desktop::DrawingSources::fromSetting(QString()).files.isEmpty());
}

}  // namespace
}  // namespace lvx::test
