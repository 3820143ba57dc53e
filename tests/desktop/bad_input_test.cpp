// Drawings that can't be read, change or vanish; places that can't be written: told in words, and nothing is lost.
#include <QFile>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <cerrno>
#include <fstream>

#include "civil/reversible_change.h"
#include "desktop/shell/edits.h"
#include "host/dialog_controls.h"
#include "program_window.h"
#include "report_user.h"
#include "runtime/standin_host.h"

namespace lvx::test {
namespace {

void write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// What the box about a drawing that can't be opened says; closes it.
std::string openFailure(ProgramWindow& program, const std::string& path) {
  program.enter("open " + path);
  QWidget* const box = program.waitForNamed("openFailed");
  if (box == nullptr) return "no box";
  const std::string words = onGui([&] {
    const auto* const message = qobject_cast<QMessageBox*>(box);
    return (message->text() + QStringLiteral("\n") + message->informativeText()).toStdString();
  });
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  return words;
}

struct BadDrawing {
  const char* name;
  const char* says;
  const char* advises;
};

TEST(BadDrawing, IsToldWithWhatToDoAndTheFormerOneStaysOpen) {
  ProgramWindow program;
  const auto former = onGui([&] { return program.window->session().drawing().get(); });
  write(program.folder / "text.xml", "no drawing at all\n");
  const std::string example = fileBytes(kExample.toStdString());
  write(program.folder / "cut.xml", example.substr(0, example.size() / 2));
  write(program.folder / "other.xml", "<?xml version=\"1.0\"?>\n<gpx/>\n");
  write(program.folder / "empty.xml", "");
  std::filesystem::create_directory(program.folder / "folder.xml");
  const std::vector<BadDrawing> cases{{"missing.xml", "missing.xml can't be opened", "Check the name"},
                                      {"text.xml", "text.xml:1", "Look at that line"},
                                      {"cut.xml", "cut.xml:", "exported again"},
                                      {"other.xml", "other.xml:2", "Look at that line"},
                                      {"empty.xml", "empty.xml can't be opened", "xport"},
                                      {"folder.xml", "folder.xml can't be opened", "in that folder"}};
  for (const BadDrawing& bad : cases) {
    const std::string words = openFailure(program, (program.folder / bad.name).string());
    EXPECT_NE(words.find(bad.says), std::string::npos) << bad.name << ": " << words;
    EXPECT_NE(words.find(bad.advises), std::string::npos) << bad.name << ": " << words;
    EXPECT_NE(words.find("stays open"), std::string::npos) << bad.name << ": " << words;
    EXPECT_EQ(onGui([&] { return program.window->session().drawing().get(); }), former) << bad.name;
    EXPECT_TRUE(program.isEnabled("lvx_Report_Que")) << bad.name;
  }
}

TEST(BadDrawing, IsShownAtTheLineThatIsWrong) {
  ProgramWindow program{QString()};
  write(program.folder / "broken.xml", "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\">\n<Units>\n</Wrong>\n");
  program.enter("open " + (program.folder / "broken.xml").string());
  QWidget* const box = program.waitForNamed("openFailed");
  ASSERT_NE(box, nullptr);
  QPushButton* const show = program.button(box, "Show the line");
  ASSERT_NE(show, nullptr);
  program.user.click(show);
  QWidget* const text = program.waitForNamed("textWindow");
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(
      onGui([&] { return text->findChild<QPlainTextEdit*>(QStringLiteral("text"))->textCursor().block().text(); }),
      QStringLiteral("</Wrong>"));
}

TEST(BadDrawing, OnTheCommandLineLeavesAnEmptyWindowThatWorks) {
  ProgramWindow program{QString()};
  EXPECT_NE(openFailure(program, "/nowhere/road.xml").find("Check the name"), std::string::npos);
  program.enter("open " + kExample.toStdString());
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }));
}

// ---------------------------------------------------------------- files that change while they are open

struct Notice {
  explicit Notice(ProgramWindow& program)
      : bar(program.part("noticeBar")),
        text(program.part<QLabel>("noticeText")),
        first(program.part<QPushButton>("noticeFirst")),
        second(program.part<QPushButton>("noticeSecond")) {}
  QWidget* bar;
  QLabel* text;
  QPushButton* first;
  QPushButton* second;
};

TEST(ChangingDrawing, ThatAnotherProgramChangesIsToldAndCanBeReadAgain) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  const Notice notice(program);
  std::string text = fileBytes(drawing.toStdString());
  text.replace(text.find("\"Mill lane\""), 11, "\"Mill road\"");
  write(drawing.toStdString(), text);
  ASSERT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
  EXPECT_TRUE(onGui([&] { return notice.text->text(); }).contains(QStringLiteral("was changed by another program")));
  const auto former = onGui([&] { return program.window->session().drawing().get(); });
  program.user.click(notice.first);
  ASSERT_TRUE(program.user.waitFor([&] { return program.window->session().drawing().get() != former; }));
  EXPECT_FALSE(onGui([&] { return notice.bar->isVisible(); }));
  EXPECT_EQ(onGui([&] { return program.window->session().drawing()->drawing().sites.front().alignments.back()->name; }),
            "Mill road");
}

TEST(ChangingDrawing, CanBeKeptAndIsToldAgainAtTheNextChange) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  const Notice notice(program);
  write(drawing.toStdString(), fileBytes(kExample.toStdString()) + "\n");
  ASSERT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
  program.user.click(notice.second);
  EXPECT_FALSE(onGui([&] { return notice.bar->isVisible(); }));
  EXPECT_TRUE(onGui([&] { return program.isOpen(); }));
  write(drawing.toStdString(), fileBytes(kExample.toStdString()) + "\n\n");
  EXPECT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
}

TEST(ChangingDrawing, ThatVanishesStaysOpenAndCanBeSavedElsewhere) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  const Notice notice(program);
  std::filesystem::remove(drawing.toStdString());
  ASSERT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
  EXPECT_TRUE(onGui([&] { return notice.text->text(); }).contains(QStringLiteral("isn't there any more")));
  const std::filesystem::path elsewhere = folder / "rescued.xml";
  program.enter("saveas " + elsewhere.string());
  ASSERT_TRUE(program.waitUntilSaid("rescued.xml is saved"));
  EXPECT_TRUE(fileBytes(elsewhere) == fileBytes(kExample.toStdString()));
  EXPECT_TRUE(onGui([&] { return program.window->windowTitle(); }).startsWith(QStringLiteral("rescued.xml")));
}

TEST(ChangingDrawing, ThatWasReplacedIsSavedElsewhereAsItWasOpened) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  const Notice notice(program);
  write(folder / "new.xml", "<LandXML version=\"1.2\"/>\n");
  std::filesystem::rename(folder / "new.xml", drawing.toStdString());
  ASSERT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
  program.enter("saveas " + (folder / "rescued.xml").string());
  ASSERT_TRUE(program.waitUntilSaid("rescued.xml is saved"));
  EXPECT_TRUE(fileBytes(folder / "rescued.xml") == fileBytes(kExample.toStdString()));
  EXPECT_EQ(fileBytes(drawing.toStdString()), "<LandXML version=\"1.2\"/>\n") << "another program's work";
}

/// Presses a button of the question about a file that another program changed.
void answerChangedByOthers(ProgramWindow& program, const char* button) {
  QWidget* const box = program.waitForNamed("changedByOthers");
  ASSERT_NE(box, nullptr);
  program.user.click(program.button(box, button));
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() != box; }));
}

/// A drawing with a change that isn't saved, which another program wrote over in its place.
struct WrittenOver {
  WrittenOver() : drawing(copyOfExample(folder)), program(drawing) {
    onGui([&] { program.window->edits().make(QStringLiteral("Points"), civil::addingPointGroup("Rescued", {1, 2})); });
    const Notice notice(program);
    write(drawing.toStdString(), others);
    EXPECT_TRUE(program.user.waitFor([&] { return notice.bar->isVisible(); }));
  }
  static bool hasGroup(const std::filesystem::path& file) {
    return fileBytes(file).find("\"Rescued\"") != std::string::npos;
  }

  const TemporaryFolder folder;
  const std::string others = "<LandXML version=\"1.2\"/>\n";
  QString drawing;
  ProgramWindow program;
};

TEST(WrittenOverDrawing, IsSavedElsewhereWithItsChangesOntoWhatWasRead) {
  WrittenOver over;
  over.program.enter("saveas " + (over.folder / "rescued").string());
  ASSERT_TRUE(over.program.waitUntilSaid("rescued.xml is saved")) << over.program.said();
  EXPECT_TRUE(WrittenOver::hasGroup(over.folder / "rescued.xml"));
  EXPECT_NE(fileBytes(over.folder / "rescued.xml").find("Mill lane"), std::string::npos);
  EXPECT_EQ(fileBytes(over.drawing.toStdString()), over.others) << "another program's work";
  EXPECT_FALSE(onGui([&] { return over.program.window->isWindowModified(); }));
}

TEST(WrittenOverDrawing, AsksWhatToDoWhenItIsSaved) {
  WrittenOver over;
  over.program.enter("save");
  answerChangedByOthers(over.program, "Cancel");
  ASSERT_TRUE(over.program.waitUntilSaid("isn't saved: it was changed by another program"));
  EXPECT_EQ(fileBytes(over.drawing.toStdString()), over.others);
  EXPECT_TRUE(onGui([&] { return over.program.window->isWindowModified(); }));

  over.program.enter("save");
  answerChangedByOthers(over.program, "Save as…");
  ASSERT_NE(over.program.user.waitForActiveWindow(QStringLiteral("Save the drawing as")), nullptr);
  over.program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(over.program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));

  over.program.enter("save");
  answerChangedByOthers(over.program, "Replace the file");
  ASSERT_TRUE(over.program.user.waitFor([&] { return !over.program.window->isWindowModified(); }));
  EXPECT_TRUE(WrittenOver::hasGroup(over.drawing.toStdString()));
  EXPECT_NE(fileBytes(over.drawing.toStdString()).find("Mill lane"), std::string::npos);
}

// ---------------------------------------------------------------- places that can't be written

/// What the box about a drawing that can't be saved says; closes it.
std::string saveFailure(ProgramWindow& program, const std::string& target) {
  program.enter("saveas " + target);
  QWidget* const box = program.waitForNamed("saveFailed");
  if (box == nullptr) return "no box";
  const std::string words = onGui([&] {
    const auto* const message = qobject_cast<QMessageBox*>(box);
    return (message->text() + QStringLiteral("\n") + message->informativeText()).toStdString();
  });
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  return words;
}

TEST(Saving, WhereNothingCanBeWrittenIsToldWithWhatToDoAndLeavesTheDrawingOpen) {
  ProgramWindow program;
  std::filesystem::create_directory(program.folder / "folder.xml");
  write(program.folder / "file", "text");
  const std::vector<std::string> targets{
      (program.folder / "folder.xml").string(), (program.folder / "file/road.xml").string(),
      (program.folder / "missing/road.xml").string(),
      // A word of our own messages in a name: told as a failure like the others.
      (program.folder / "cancelled/road.xml").string(), "/proc/road.xml", "/dev/full"};
  for (const std::string& target : targets) {
    const std::string words = saveFailure(program, target);
    EXPECT_NE(words.find("can't be saved"), std::string::npos) << target << ": " << words;
    EXPECT_NE(words.find("another name"), std::string::npos) << target << ": " << words;
    EXPECT_TRUE(onGui([&] { return program.isOpen(); })) << target;
    EXPECT_TRUE(onGui([&] { return program.window->windowTitle(); }).startsWith(QStringLiteral("valley-road.xml")));
  }
  EXPECT_EQ(fileBytes(program.folder / "file"), "text");
  for (const auto& entry : std::filesystem::directory_iterator(program.folder.path()))
    EXPECT_EQ(entry.path().filename().string().find(".lvx"), std::string::npos) << entry.path();
}

TEST(Saving, AddsTheEndingBeforeItAsks) {
  ProgramWindow program;
  write(program.folder / "mine.xml", "text");
  program.user.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_NE(program.user.waitForActiveWindow(QStringLiteral("Save the drawing as")), nullptr);
  program.user.type((program.folder / "mine").string());
  program.user.key(Qt::Key_Return);
  QWidget* const box = program.waitForNamed("replaceQuestion");
  ASSERT_NE(box, nullptr);
  program.user.key(Qt::Key_Escape);
  ASSERT_NE(program.user.waitForActiveWindow(QStringLiteral("Save the drawing as")), nullptr);
  EXPECT_EQ(fileBytes(program.folder / "mine.xml"), "text");
  program.user.key(Qt::Key_Return);
  QWidget* const again = program.waitForNamed("replaceQuestion");
  ASSERT_NE(again, nullptr);
  program.user.click(program.button(again, "Replace"));
  ASSERT_TRUE(program.waitUntilSaid("mine.xml is saved"));
  EXPECT_TRUE(fileBytes(program.folder / "mine.xml") == fileBytes(kExample.toStdString()));
  EXPECT_FALSE(std::filesystem::exists(program.folder / "mine"));
}

TEST(Saving, OffersAnotherPlaceRightAway) {
  ProgramWindow program;
  program.enter("saveas /proc/road.xml");
  QWidget* const box = program.waitForNamed("saveFailed");
  ASSERT_NE(box, nullptr);
  program.user.click(program.button(box, "Save as…"));
  ASSERT_TRUE(program.user.waitFor([&] {
    const QWidget* const open = QApplication::activeModalWidget();
    return open != nullptr && open != box && open->isActiveWindow() &&
           open->windowTitle() == QStringLiteral("Save the drawing as");
  }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST(Saving, UnderTheNameOfTheExampleGivesItsBytes) {
  ProgramWindow program;
  program.enter("saveas " + (program.folder / "copy.xml").string());
  ASSERT_TRUE(program.waitUntilSaid("copy.xml is saved"));
  EXPECT_TRUE(fileBytes(program.folder / "copy.xml") == fileBytes(kExample.toStdString()));
}

// ---------------------------------------------------------------- reports

/// Fills the points dialog and presses OK.
void writePoints(ReportUser& user, const std::filesystem::path& stem) {
  user.start("lvx_Report_Points", host::kPointsDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Valley road");
  user.choose(host::kIdPointGroups, "Control points");
  user.typeStem(stem);
  user.press(host::kIdOk);
}

TEST(Report, ThatCantWriteAFileSaysWhichAndWhyAndWhatToDo) {
  ReportUser user;
  // A folder stands where the text form belongs; the command asks whether to replace it.
  std::filesystem::create_directory(user.stem("points.txt"));
  writePoints(user, user.stem("points"));
  user.answer(user.expectBox("messageBox", -1, "points.txt"), "Yes");
  QWidget* const box = user.expectBox("notWritten", -1, "points.txt: " + systemWords(EISDIR));
  const std::string words = onGui([&] { return qobject_cast<QMessageBox*>(box)->informativeText().toStdString(); });
  EXPECT_NE(words.find("choose a folder"), std::string::npos) << words;
  user.program.user.key(Qt::Key_Return);
  EXPECT_TRUE(user.program.waitUntilSaid("points.html"));
  EXPECT_TRUE(std::filesystem::is_regular_file(user.stem("points.html")));
}

TEST(Report, IntoAFolderThatIsntThereBringsTheDialogBackWithItsText) {
  ReportUser user;
  const std::filesystem::path stem = user.stem("missing") / "points";
  writePoints(user, stem);
  ASSERT_TRUE(user.program.waitUntilSaid("There is no folder"));
  user.expectDialog();
  EXPECT_EQ(user.textOf(host::kIdOutputStem), stem.string());
  EXPECT_FALSE(std::filesystem::exists(user.stem("missing")));
  user.program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.program.waitUntilSaid("Points ended and wrote nothing"));
}

}  // namespace
}  // namespace lvx::test
