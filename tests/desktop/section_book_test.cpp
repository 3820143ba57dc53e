// The dialog of section books, and that the window writes what the command line does.
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QSpinBox>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "desktop_user/foreign_windows.h"
#include "program_window.h"

namespace lvx::test {
namespace {

class SectionBook : public testing::Test {
 protected:
  SectionBook() { setenv("SOURCE_DATE_EPOCH", "86400", 1); }
  ~SectionBook() override { unsetenv("SOURCE_DATE_EPOCH"); }

  static QWidget* open(ProgramWindow& program) {
    onGui([&] { program.window->findChild<QAction*>(QStringLiteral("sectionBook"))->trigger(); });
    return program.waitForNamed("bookDialog");
  }
  template <class Widget>
  static Widget* part(QWidget* dialog, const char* name) {
    return onGui([&] { return dialog->findChild<Widget*>(QLatin1String(name)); });
  }
  /// Chooses in a list as a user does, by its first letters.
  static void choose(ProgramWindow& program, QWidget* dialog, const char* list, const QString& text) {
    auto* const box = part<QComboBox>(dialog, list);
    onGui([&] { box->setFocus(); });
    program.user.key(Qt::Key_Home);
    for (int row = 0; row < 20 && onGui([&] { return !box->currentText().startsWith(text); }); ++row)
      program.user.key(Qt::Key_Down);
    EXPECT_TRUE(onGui([&] { return box->currentText().startsWith(text); })) << list;
  }
  static void retype(ProgramWindow& program, QWidget* field, const std::string& text) {
    program.user.click(field);
    program.user.key(Qt::Key_A, Qt::ControlModifier);
    program.user.type(text);
  }
  static bool waitForOutcome(ProgramWindow& program, QWidget* dialog, const QString& text) {
    auto* const label = part<QLabel>(dialog, "bookOutcome");
    const bool isThere = program.user.waitFor([&] { return label->text().contains(text); });
    EXPECT_TRUE(isThere) << onGui([&] { return label->text().toStdString(); });
    return isThere;
  }
  static bool isOkEnabled(QWidget* dialog) {
    return onGui([&] { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled(); });
  }
  /// Accepts the dialog and types the file's path into the box.
  static void saveAs(ProgramWindow& program, QWidget* dialog, const std::string& path) {
    onGui([&] { dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click(); });
    QWidget* const box = program.waitForNamed("targetBox");
    ASSERT_NE(box, nullptr);
    program.user.key(Qt::Key_A, Qt::ControlModifier);
    program.user.type(path);
    program.user.key(Qt::Key_Return);
  }
  static bool waitForBar(ProgramWindow& program, const QString& text) {
    auto* const bar = program.part<QLabel>("outcomeText");
    return program.user.waitFor([&] { return bar->isVisible() && bar->text().contains(text); },
                                std::chrono::seconds(30));
  }
  std::string commandLine(const std::vector<std::string>& arguments) {
    RunRequest request;
    request.program = std::filesystem::path(inBuild("/bin/lvxhost"));
    request.folder = folder.path();
    request.arguments = arguments;
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    const RunResult result = runProgram(request);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
  }

  TemporaryFolder folder;
};

TEST_F(SectionBook, OfAGroupIsTheCommandLinesToTheByte) {
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookAlignment", QStringLiteral("Valley road"));
  choose(program, dialog, "bookGroup", QStringLiteral("Cross sections 20 m"));
  retype(program, part<QLineEdit>(dialog, "bookFrom"), "1+100");
  retype(program, part<QLineEdit>(dialog, "bookTo"), "1+200");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("2 sheets, A3, 1:500")));
  const std::string made = (folder / "window.pdf").string();
  saveAs(program, dialog, made);
  ASSERT_TRUE(waitForBar(program, QStringLiteral("window.pdf")));
  commandLine({"sections", kExample.toStdString(), "--alignment", "Valley road", "--group", "Cross sections 20 m",
               "--from", "1+100", "--to", "1+200", "--out", "line.pdf"});
  EXPECT_FALSE(fileBytes(made).empty());
  EXPECT_EQ(fileBytes(made), fileBytes(folder / "line.pdf"));
}

TEST_F(SectionBook, OfTheLongSectionIsTheCommandLinesToo) {
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookKind", QStringLiteral("Long section"));
  choose(program, dialog, "bookAlignment", QStringLiteral("Valley road"));
  EXPECT_FALSE(onGui([&] { return dialog->findChild<QComboBox*>(QStringLiteral("bookGroup"))->isVisible(); }));
  EXPECT_EQ(onGui([&] { return dialog->findChild<QDoubleSpinBox*>(QStringLiteral("bookExaggeration"))->value(); }),
            10.0);
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("4 sheets, A3, 1:1000")));
  const std::string made = (folder / "window.pdf").string();
  saveAs(program, dialog, made);
  ASSERT_TRUE(waitForBar(program, QStringLiteral("window.pdf")));
  commandLine({"profile", kExample.toStdString(), "--alignment", "Valley road", "--out", "line.pdf"});
  EXPECT_EQ(fileBytes(made), fileBytes(folder / "line.pdf"));
}

TEST_F(SectionBook, TellsWhatFitsWhereAScaleDoesNot) {
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookAlignment", QStringLiteral("Valley road"));
  choose(program, dialog, "bookGroup", QStringLiteral("Cross sections 20 m"));
  retype(program, part<QComboBox>(dialog, "bookScale"), "1:200");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("1:500 fits.")));
  EXPECT_FALSE(isOkEnabled(dialog));
  retype(program, part<QComboBox>(dialog, "bookScale"), "nonsense");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("is no scale")));
  retype(program, part<QComboBox>(dialog, "bookScale"), "1:500");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("sheets, A3, 1:500")));
  EXPECT_TRUE(isOkEnabled(dialog));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST_F(SectionBook, TellsThatItCannotBeWritten) {
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookKind", QStringLiteral("Long section"));
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("A3")));
  saveAs(program, dialog, "/proc/book.pdf");
  QWidget* const box = program.waitForNamed("bookProblem");
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(onGui(
      [&] { return qobject_cast<QMessageBox*>(box)->text().contains(QStringLiteral("The book can't be written")); }));
  program.user.key(Qt::Key_Return);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST_F(SectionBook, AsksBeforeItReplacesANumberedSheet) {
  const std::filesystem::path standing = folder / "book-02.svg";
  std::ofstream(standing) << "mine";
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookKind", QStringLiteral("Long section"));
  choose(program, dialog, "bookAlignment", QStringLiteral("Valley road"));
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("4 sheets")));
  saveAs(program, dialog, (folder / "book.svg").string());
  ASSERT_TRUE(
      program.user.waitFor([] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()) != nullptr; }));
  EXPECT_TRUE(onGui([] {
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget())
        ->text()
        .contains(QStringLiteral("book-02.svg"));
  }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(fileBytes(standing), "mine");
  EXPECT_FALSE(std::filesystem::exists(folder / "book-01.svg"));
}

/// A road of ten kilometres at one level, which fits any paper by its heights.
QString flatRoad(const TemporaryFolder& folder) {
  const std::string path = (folder / "flat.xml").string();
  std::ofstream(path)
      << R"(<?xml version="1.0"?><LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">)"
      << R"(<Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" )"
      << R"(pressureUnit="HPA"/></Units><Alignments><Alignment name="Flat" length="10000" staStart="0"><CoordGeom><Line>)"
      << "<Start>0 0</Start><End>0 10000</End></Line></CoordGeom><Profile><ProfAlign name=\"Level\"><PVI>0 100</PVI>"
      << "<PVI>10000 100</PVI></ProfAlign></Profile></Alignment></Alignments></LandXML>";
  return QString::fromStdString(path);
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

TEST_F(SectionBook, OfTooManySheetsIsRefusedBeforeAnythingIsWritten) {
  ProgramWindow program(flatRoad(folder));
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookKind", QStringLiteral("Long section"));
  retype(program, part<QComboBox>(dialog, "bookScale"), "1:1");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("more than 5000 sheets")));
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("1:10 fits.")));
  EXPECT_FALSE(isOkEnabled(dialog));
  retype(program, part<QComboBox>(dialog, "bookScale"), "1:10");
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("sheets, A3, 1:10")));
  saveAs(program, dialog, (folder / "book.svg").string());
  QWidget* const box = program.waitForNamed("bookProblem");
  ASSERT_NE(box, nullptr);
  const std::string words = onGui([&] { return qobject_cast<QMessageBox*>(box)->text().toStdString(); });
  EXPECT_NE(words.find("at most 900 SVG pictures are written. Save it as PDF"), std::string::npos) << words;
  program.user.key(Qt::Key_Return);
  EXPECT_TRUE(program.user.waitFor([&] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"flat.xml"});
}

TEST_F(SectionBook, LeavesNothingWhereItIsCancelledInTheMiddle) {
  ProgramWindow program(flatRoad(folder));
  auto* const strip = program.part("progressStrip");
  auto* const text = program.part<QLabel>("progressText");
  const auto begin = [&](const char* scale) {
    QWidget* const dialog = open(program);
    ASSERT_NE(dialog, nullptr);
    choose(program, dialog, "bookKind", QStringLiteral("Long section"));
    retype(program, part<QComboBox>(dialog, "bookScale"), scale);
    ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("sheets, A3, ") + QLatin1String(scale)));
    saveAs(program, dialog, (folder / "book.pdf").string());
  };
  begin("1:10");
  ASSERT_TRUE(program.user.waitFor([&] { return strip->isVisible() && text->text().contains(u"Drawing sheets"); }))
      << onGui([&] { return text->text().toStdString(); });
  program.user.click(program.part("progressCancel"));
  ASSERT_TRUE(program.user.waitFor([&] { return !strip->isVisible(); }));
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"flat.xml"});
  EXPECT_EQ(onGui([] { return QApplication::activeModalWidget(); }), nullptr) << "who cancels needn't be told";
  EXPECT_FALSE(onGui([&] { return program.window->findChild<QLabel*>(QStringLiteral("outcomeText"))->isVisible(); }));
  EXPECT_TRUE(program.isEnabled("sectionBook"));
  // The window goes on working, up to a whole book under the same name.
  begin("1:1000");
  ASSERT_TRUE(waitForBar(program, QStringLiteral("book.pdf")));
  EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"book.pdf", "flat.xml"}));
}

TEST_F(SectionBook, GoesWithTheWindowThatIsClosedOverItsQuestion) {
  std::ofstream(folder / "book-02.svg") << "mine";
  ProgramWindow program;
  QWidget* const dialog = open(program);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, "bookKind", QStringLiteral("Long section"));
  choose(program, dialog, "bookAlignment", QStringLiteral("Valley road"));
  ASSERT_TRUE(waitForOutcome(program, dialog, QStringLiteral("4 sheets")));
  saveAs(program, dialog, (folder / "book.svg").string());
  ASSERT_TRUE(
      program.user.waitFor([] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()) != nullptr; }));
  closeByManager(program.window);
  EXPECT_TRUE(program.user.waitFor([&] { return !program.window->isVisible(); }));
  EXPECT_EQ(fileBytes(folder / "book-02.svg"), "mine");
}

}  // namespace
}  // namespace lvx::test
