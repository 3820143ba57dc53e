// Whatever the program is doing, closing its window ends it cleanly.
#include <QLineEdit>
#include <QProcess>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <vector>

#include "desktop_user/foreign_windows.h"
#include "host/dialog_controls.h"
#include "large_drawing.h"
#include "program_window.h"
#include "runtime/standin_host.h"

namespace lvx::test {
namespace {

/// The window asks nothing, ends what runs and goes.
bool closes(ProgramWindow& program) {
  return program.user.waitFor([&] { return !program.window->isVisible() && !program.window->session().isRunning(); },
                              std::chrono::seconds(30));
}

void startPointsDialog(ProgramWindow& program) {
  program.enter("lvx_Report_Points");
  ASSERT_NE(program.waitForNamed(host::kPointsDialog), nullptr);
}

/// Presses a control of the dialog that is open.
void press(ProgramWindow& program, int control) {
  QWidget* const dialog = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(dialog, nullptr);
  program.user.click(onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(control)); }));
}

void waitForPrompt(ProgramWindow& program, const char* prompt) {
  auto* const label = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return label->text() == QString::fromUtf8(prompt); }));
}

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
  ProgramWindow program;
  startPointsDialog(program);
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, DuringAPick) {
  ProgramWindow program;
  startPointsDialog(program);
  press(program, host::kIdPickAlignment);
  waitForPrompt(program, "Pick an alignment:");
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, DuringASelection) {
  ProgramWindow program;
  startPointsDialog(program);
  press(program, host::kIdPickPoints);
  auto* const label = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return label->text() != QStringLiteral("Command:"); }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, WithAMessageBoxOverTheDialogsPick) {
  ProgramWindow program;
  startPointsDialog(program);
  press(program, host::kIdPickAlignment);
  waitForPrompt(program, "Pick an alignment:");
  // A surface is no alignment: the box says so.
  QWidget* const tree = program.part("treeFind");
  program.user.click(tree);
  program.user.type("existing");
  program.user.key(Qt::Key_Down);
  program.user.key(Qt::Key_End);
  program.user.key(Qt::Key_Return);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() != nullptr; }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
}

TEST(Closing, WithTheFileBoxOverTheDialog) {
  ProgramWindow program;
  startPointsDialog(program);
  QWidget* const dialog = program.waitForNamed(host::kPointsDialog);
  press(program, host::kIdOutputFileBox);
  ASSERT_TRUE(program.user.waitFor(
      [&] { return QApplication::activeModalWidget() != nullptr && QApplication::activeModalWidget() != dialog; }));
  closeByManager(program.window);
  EXPECT_TRUE(closes(program));
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

/// Runs the GLS report up to its end, with added sections.
void addSections(ProgramWindow& program, const std::string& stem) {
  program.enter("lvx_Report_GLS");
  QWidget* const dialog = program.waitForNamed(host::kGlsDialog);
  ASSERT_NE(dialog, nullptr);
  const auto pick = [&](int control, int downs) {
    program.user.click(onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(control)); }));
    ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
    program.user.key(Qt::Key_Home);
    for (int step = 0; step < downs; ++step) program.user.key(Qt::Key_Down);
    program.user.key(Qt::Key_Return);
    ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() == nullptr; }));
  };
  pick(host::kIdSites, 1);
  pick(host::kIdAlignments, 0);
  pick(host::kIdProfiles, 0);
  pick(host::kIdSampleLineGroups, 1);  // the lines every 5 m, where the corridor has sections every 10 m elsewhere
  program.user.click(
      onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOutputStem)); }));
  program.user.type(stem);
  program.user.click(onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOk)); }));
  QWidget* const question = program.waitForNamed(host::kAddSectionsDialog);
  ASSERT_NE(question, nullptr);
  program.user.click(
      onGui([&] { return question->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOk)); }));
  ASSERT_TRUE(program.waitUntilSaid(".html"));
  ASSERT_TRUE(onGui([&] { return program.window->session().drawing()->isChanged(); }));
}

TEST(Closing, AsksWhetherAddedSectionsAreSavedAndGoesBackOnCancel) {
  const TemporaryFolder folder;
  ProgramWindow program(copyOfExample(folder));
  addSections(program, (folder / "gls").string());
  EXPECT_TRUE(onGui([&] { return program.window->isWindowModified(); }));
  closeByManager(program.window);
  QWidget* const box = program.waitForNamed("saveChanges");
  ASSERT_NE(box, nullptr);
  program.user.click(program.button(box, "Cancel"));
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
  EXPECT_TRUE(onGui([&] { return program.window->isVisible(); }));
  // Everything works as before.
  startPointsDialog(program);
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("Points ended and wrote nothing"));
}

TEST(Closing, SavesAddedSectionsOnSave) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  const std::string before = fileBytes(drawing.toStdString());
  ProgramWindow program(drawing);
  addSections(program, (folder / "gls").string());
  closeByManager(program.window);
  QWidget* const box = program.waitForNamed("saveChanges");
  ASSERT_NE(box, nullptr);
  program.user.click(program.button(box, "Save"));
  EXPECT_TRUE(closes(program));
  EXPECT_NE(fileBytes(drawing.toStdString()), before);
}

TEST(Closing, LeavesTheFileAsItWasOnDontSave) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  const std::string before = fileBytes(drawing.toStdString());
  ProgramWindow program(drawing);
  addSections(program, (folder / "gls").string());
  closeByManager(program.window);
  QWidget* const box = program.waitForNamed("saveChanges");
  ASSERT_NE(box, nullptr);
  program.user.click(program.button(box, "Don't save"));
  EXPECT_TRUE(closes(program));
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
    process_.start(QStringLiteral(LVX_BIN_DIR "/lvxhost-desktop"), arguments);
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
  request.program = LVX_BIN_DIR "/lvxhost-desktop";
  request.environment = {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}};
  const RunResult result = runProgram(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("no display"), std::string::npos) << result.errors;
}

TEST(StartingTheProgram, OnADisplayThatDoesntAnswerSaysSo) {
  RunRequest request;
  request.program = LVX_BIN_DIR "/lvxhost-desktop";
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
                                    {{"--lang", "fr"}, "en and de"},
                                    {{"--scheme", "pink"}, "light and dark"},
                                    {{"--messages", "/nowhere.txt"}, "/nowhere.txt"},
                                    {{"--report-code-page", "no-such"}, "no-such"}};
  for (const BadUsage& bad : cases) {
    RunRequest request;
    request.program = LVX_BIN_DIR "/lvxhost-desktop";
    request.arguments = bad.arguments;
    const RunResult result = runProgram(request);
    EXPECT_EQ(result.exitCode, 2) << bad.words;
    EXPECT_NE(result.errors.find(bad.words), std::string::npos) << result.errors;
  }
}

TEST(StartingTheProgram, HelpsWithAnExampleWhereverItStands) {
  RunRequest request;
  request.program = LVX_BIN_DIR "/lvxhost-desktop";
  request.environment = {{"DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}};
  request.arguments = {"--help"};
  const RunResult help = runProgram(request);
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.output.find("lvxhost-desktop examples/valley-road.xml"), std::string::npos) << help.output;
  for (const char* option : {"--lang", "--scheme", "--messages", "--module", "--release", "--report-code-page",
                             "--message-code-page", "--version"})
    EXPECT_NE(help.output.find(option), std::string::npos) << option;
  request.arguments = {"--version"};
  EXPECT_EQ(runProgram(request).output, "lvxhost-desktop 1.0.0\n");
}

}  // namespace
}  // namespace lvx::test
