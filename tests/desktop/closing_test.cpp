// Whatever the program is doing, closing its window ends it cleanly.
#include <QLineEdit>
#include <QProcess>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "desktop_user/foreign_windows.h"
#include "host/dialog_controls.h"
#include "large_drawing.h"
#include "program_window.h"
#include "report_user.h"
#include "runtime/standin_host.h"
#include "support/places.h"

namespace lvx::test {
namespace {

/// The window asks nothing, ends what runs and goes.
bool closes(ProgramWindow& program) {
  return program.user.waitFor([&] { return !program.window->isVisible() && !program.window->session().isRunning(); },
                              std::chrono::seconds(30));
}

void startPointsDialog(ReportUser& user) { user.start("lvx_Report_Points", host::kPointsDialog); }

TEST(Closing, AnIdleWindow) {
  ProgramWindow program;
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, DuringALoad) {
  const TemporaryFolder folder;
  writeLargeDrawing(folder / "large.xml");
  ProgramWindow program;
  program.enter("open " + (folder / "large.xml").string());
  auto* const strip = program.part("progressStrip");
  ASSERT_TRUE(program.user.waitFor([&] { return strip->isVisible(); }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, WithADialogOpen) {
  ReportUser user;
  startPointsDialog(user);
  closeByManager(user.program.window);
  EXPECT_TRUE(closes(user.program));
}

TEST(Closing, DuringAPick) {
  ReportUser user;
  startPointsDialog(user);
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  closeByManager(user.program.window);
  EXPECT_TRUE(closes(user.program));
}

TEST(Closing, DuringASelection) {
  ReportUser user;
  startPointsDialog(user);
  user.press(host::kIdPickPoints);
  auto* const label = user.program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(user.program.user.waitFor([&] { return label->text() != QStringLiteral("Command:"); }));
  closeByManager(user.program.window);
  EXPECT_TRUE(closes(user.program));
}

TEST(Closing, WithAMessageBoxOverTheDialogsPick) {
  ReportUser user;
  startPointsDialog(user);
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  user.clickTree("Existing ground");
  user.expectBox("messageBox", -1, "not an alignment");
  closeByManager(user.program.window);
  EXPECT_TRUE(closes(user.program));
}

TEST(Closing, WithTheFileBoxOverTheDialog) {
  ReportUser user;
  startPointsDialog(user);
  user.press(host::kIdOutputFileBox);
  ASSERT_TRUE(user.program.user.waitFor([&] {
    return QApplication::activeModalWidget() != nullptr && QApplication::activeModalWidget() != user.dialog();
  }));
  closeByManager(user.program.window);
  EXPECT_TRUE(closes(user.program));
}

TEST(Closing, WithTheBoxInWhichADrawingIsChosen) {
  ProgramWindow program;
  program.user.key(Qt::Key_O, Qt::ControlModifier);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() != nullptr; }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, WithHelpAndAReportOpenTakesTheirWindowsAlong) {
  const TemporaryFolder folder;
  ProgramWindow program;
  program.enter("help");
  ASSERT_TRUE(program.user.waitFor([&] {
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->isVisible() && top != program.window && top->windowType() == Qt::Window) return true;
    return false;
  }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
  EXPECT_TRUE(program.user.waitFor([] {
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->isVisible()) return false;
    return true;
  }));
}

/// Runs the GLS report up to its end, with added sections, and asks the window to close; the box that then asks.
QWidget* closeWithAddedSections(ReportUser& user) {
  user.start("lvx_Report_GLS", host::kGlsDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Valley road");
  user.choose(host::kIdProfiles, "Valley road ground");
  user.choose(host::kIdSampleLineGroups,
              "Bridge 5 m");  // lines every 5 m, where the corridor has sections every 10 m elsewhere
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  user.expectDialog(host::kAddSectionsDialog);
  user.press(host::kIdOk);
  EXPECT_TRUE(user.program.waitUntilSaid(".html"));
  EXPECT_TRUE(onGui([&] { return user.program.window->session().drawing()->isChanged(); }));
  EXPECT_TRUE(onGui([&] { return user.program.window->isWindowModified(); }));
  closeByManager(user.program.window);
  return user.expectBox("saveChanges", -1, "aren't saved");
}

TEST(Closing, AsksWhetherAddedSectionsAreSavedAndGoesBackOnCancel) {
  const TemporaryFolder folder;
  ReportUser user(copyOfExample(folder));
  user.answer(closeWithAddedSections(user), "Cancel");
  ASSERT_TRUE(user.program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_TRUE(onGui([&] { return user.program.window->isVisible(); }));
  // Everything works as before.
  startPointsDialog(user);
  user.program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.program.waitUntilSaid("Points ended and wrote nothing"));
}

TEST(Closing, SavesAddedSectionsOnSave) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  const std::string before = fileBytes(drawing.toStdString());
  ReportUser user(drawing);
  user.answer(closeWithAddedSections(user), "Save");
  EXPECT_TRUE(closes(user.program));
  EXPECT_NE(fileBytes(drawing.toStdString()), before);
}

TEST(Closing, LeavesTheFileAsItWasOnDontSave) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  const std::string before = fileBytes(drawing.toStdString());
  ReportUser user(drawing);
  user.answer(closeWithAddedSections(user), "Don't save");
  EXPECT_TRUE(closes(user.program));
  EXPECT_EQ(fileBytes(drawing.toStdString()), before);
}

// ---------------------------------------------------------------- the program itself

/// The real program in a process of its own, with settings of its own. Killed where it doesn't end.
class Process {
 public:
  explicit Process(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QString::fromStdString(settings_.path().string()));
    process_.setProcessEnvironment(environment);
    process_.start(QString::fromStdString(test::inBuild("/bin/lvxhost-desktop")), arguments);
    if (!process_.waitForStarted()) throw std::runtime_error(process_.errorString().toStdString());
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.kill();
    process_.waitForFinished();
  }
  [[nodiscard]] pid_t id() const { return static_cast<pid_t>(process_.processId()); }
  /// Its exit code, once it ended by itself within a minute; -1 otherwise.
  int end() {
    constexpr int kMinute = 60'000;
    const bool ended = process_.waitForFinished(kMinute) && process_.exitStatus() == QProcess::NormalExit;
    return ended ? process_.exitCode() : -1;
  }
  /// What it said on standard error.
  std::string errors() { return process_.readAllStandardError().toStdString(); }

 private:
  TemporaryFolder settings_;
  QProcess process_;
};

TEST(ClosingTheProgram, EndsItWithCode0) {
  Process process({QStringLiteral("--lang"), QStringLiteral("en"), kExample});
  const unsigned long window = waitForForeignWindow("valley-road.xml");
  ASSERT_NE(window, 0U);
  closeByManager(window);
  EXPECT_EQ(process.end(), 0);
  EXPECT_EQ(process.errors(), "");
}

TEST(StartingTheProgram, OpensAllFilesOfItsDrawing) {
  const TemporaryFolder folder;
  std::ofstream(folder / "points.xml") << "<LandXML version=\"1.2\"><Units><Imperial linearUnit=\"foot\"/></Units>"
                                          "<CgPoints><CgPoint name=\"1\">1 2 3</CgPoint></CgPoints></LandXML>";
  const QString points = QString::fromStdString((folder / "points.xml").string());
  Process process({QStringLiteral("--lang"), QStringLiteral("en"), kExample, QStringLiteral("--with"), points,
                   QStringLiteral("--convert-units"), QStringLiteral("--swap-axes"), points});
  const unsigned long window = waitForForeignWindow("valley-road.xml + 1 file");
  ASSERT_NE(window, 0U);
  closeByManager(window);
  EXPECT_EQ(process.end(), 0) << process.errors();
}

TEST(ClosingTheProgram, DuringALoadToo) {
  const TemporaryFolder folder;
  writeLargeDrawing(folder / "large.xml");
  Process process(
      {QStringLiteral("--lang"), QStringLiteral("en"), QString::fromStdString((folder / "large.xml").string())});
  const unsigned long window = waitForForeignWindow("lvxhost-desktop");
  ASSERT_NE(window, 0U);
  closeByManager(window);
  EXPECT_EQ(process.end(), 0) << process.errors();
}

TEST(ClosingTheProgram, WithADialogOpenToo) {
  DesktopUser user;
  Process process({QStringLiteral("--lang"), QStringLiteral("en"), kExample});
  const unsigned long window = waitForForeignWindow("valley-road.xml");
  ASSERT_NE(window, 0U);
  for (int tries = 0; tries < 50 && findWindow("Profile projection") == 0; ++tries) {
    user.key(Qt::Key_1, Qt::ControlModifier);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
  ASSERT_NE(findWindow("Profile projection"), 0U);
  closeByManager(window);
  EXPECT_EQ(process.end(), 0) << process.errors();
}

TEST(ClosingTheProgram, ByASignalFromOutside) {
  Process process({QStringLiteral("--lang"), QStringLiteral("en"), kExample});
  ASSERT_NE(waitForForeignWindow("valley-road.xml"), 0U);
  ASSERT_EQ(kill(process.id(), SIGTERM), 0);
  EXPECT_EQ(process.end(), 0) << process.errors();
}

TEST(StartingTheProgram, WithoutADisplaySaysSo) {
  RunRequest request;
  request.program = test::inBuild("/bin/lvxhost-desktop");
  request.environment = {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}};
  const RunResult result = runProgram(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("no display"), std::string::npos) << result.errors;
}

TEST(StartingTheProgram, OnADisplayThatDoesntAnswerSaysSo) {
  RunRequest request;
  request.program = test::inBuild("/bin/lvxhost-desktop");
  request.environment = {{"DISPLAY", ":4711"}};
  const RunResult result = runProgram(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("no display"), std::string::npos) << result.errors;
}

struct BadUsage {
  std::vector<std::string> arguments;
  const char* words;
};

TEST(StartingTheProgram, TellsWhatIsWrongWithItsArguments) {
  const std::vector<BadUsage> cases{{{"--frobnicate"}, "frobnicate"},
                                    {{"a.xml", "b.xml"}, "one drawing"},
                                    {{"--with", "b.xml"}, "--with and --swap-axes belong to a drawing"},
                                    {{"a.xml", "--with", "b.xml", "--swap-axes", "c.xml"}, "names 'c.xml'"},
                                    {{"--lang", "fr"}, "en and de"},
                                    {{"--scheme", "pink"}, "light and dark"},
                                    {{"--messages", "/nowhere.txt"}, "/nowhere.txt"},
                                    {{"--report-code-page", "no-such"}, "no-such"}};
  for (const BadUsage& bad : cases) {
    RunRequest request;
    request.program = test::inBuild("/bin/lvxhost-desktop");
    request.arguments = bad.arguments;
    const RunResult result = runProgram(request);
    EXPECT_EQ(result.exitCode, 2) << bad.words;
    EXPECT_NE(result.errors.find(bad.words), std::string::npos) << result.errors;
  }
}

TEST(StartingTheProgram, HelpsWithAnExampleWhereverItStands) {
  RunRequest request;
  request.program = test::inBuild("/bin/lvxhost-desktop");
  request.environment = {{"DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}};
  request.arguments = {"--help"};
  const RunResult help = runProgram(request);
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.output.find("lvxhost-desktop examples/valley-road.xml"), std::string::npos) << help.output;
  for (const char* option : {"--with", "--convert-units", "--swap-axes", "--lang", "--scheme", "--messages", "--module",
                             "--release", "--report-code-page", "--message-code-page", "--version"})
    EXPECT_NE(help.output.find(option), std::string::npos) << option;
  request.arguments = {"--version"};
  EXPECT_EQ(runProgram(request).output.find("lvxhost-desktop 1.0.0"), 0U);
}

}  // namespace
}  // namespace lvx::test
