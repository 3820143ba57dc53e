// Commands of the module over an open drawing, without the window around them.
#include "desktop/shell/session.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "cli/command_line_front_end.h"
#include "desktop/panels/progress_strip.h"
#include "desktop/shell/long_work.h"
#include "desktop_user/desktop_user.h"
#include "host/dialog_controls.h"
#include "landxml/reader.h"
#include "platform/utf8.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using cli::DialogStep;
using desktop::CommandReport;
using desktop::Session;

/// A session whose dialogs are answered by steps.
struct Host {
  explicit Host(runtime::HostChoices choices = {}) {
    choices.bin = test::inBuild("/bin");
    onGui([&] {
      strip = std::make_unique<desktop::ProgressStrip>();
      work = std::make_unique<desktop::LongWork>(*strip);
      session = std::make_unique<Session>(choices, frontEnd, *work);
    });
  }
  ~Host() {
    onGui([&] {
      session.reset();
      work.reset();
      strip.reset();
    });
  }
  void openExample() {
    auto drawing =
        std::make_shared<runtime::OpenDrawing>(landxml::readDrawing(test::inSource("/examples/valley-road.xml")));
    onGui([&] { session->open(std::move(drawing)); });
  }
  void expectPoints(const std::string& stem) {
    using Kind = DialogStep::Kind;
    frontEnd.steps().expect(host::kPointsDialog, {{{Kind::SelectRow, host::kIdSites, 1, {}},
                                                   {Kind::SelectRow, host::kIdAlignments, 0, {}},
                                                   {Kind::SelectRow, host::kIdPointGroups, 0, {}},
                                                   {Kind::Type, host::kIdOutputStem, 0, platform::fromUtf8(stem)},
                                                   {Kind::Tick, host::kIdCheckAscii, 0, {}},
                                                   {Kind::Untick, host::kIdCheckExcel, 0, {}},
                                                   {Kind::Tick, host::kIdCheckHtml, 0, {}},
                                                   {Kind::Click, host::kIdOk, 0, {}}}});
  }
  CommandReport run(const char* name) {
    return onGui([&] { return session->run(QString::fromLatin1(name)); });
  }

  cli::CommandLineFrontEnd frontEnd{cli::Overwrite::Always, {}};
  std::unique_ptr<desktop::ProgressStrip> strip;
  std::unique_ptr<desktop::LongWork> work;
  std::unique_ptr<Session> session;
};

TEST(Session, KnowsTheCommandsOfItsModuleInAnyCase) {
  const Host host;
  EXPECT_EQ(host.session->commands(),
            (QStringList{QStringLiteral("lvx_Report_Que"), QStringLiteral("lvx_Report_Points"),
                         QStringLiteral("lvx_Report_GLS")}));
  EXPECT_EQ(host.session->commandOf(QStringLiteral("LVX_REPORT_POINTS")), QStringLiteral("lvx_Report_Points"));
  EXPECT_TRUE(host.session->commandOf(QStringLiteral("lvx_Report")).isEmpty());
}

TEST(Session, TellsWhatACommandWroteWithTheBytesOfTheFiles) {
  const TemporaryFolder folder;
  Host host;
  host.openExample();
  host.expectPoints((folder / "points").string());
  const CommandReport report = host.run("lvx_Report_Points");
  EXPECT_TRUE(report.found);
  EXPECT_FALSE(report.interrupted);
  EXPECT_TRUE(report.exception.isEmpty()) << report.exception.toStdString();
  ASSERT_EQ(report.files.size(), 2U);
  for (const runtime::FileEvent& file : report.files) {
    EXPECT_EQ(file.fate, runtime::FileFate::Written);
    EXPECT_EQ(file.bytes, std::filesystem::file_size(file.path));
  }
  EXPECT_EQ(report.files[0].path, (folder / "points.txt").string());
  EXPECT_FALSE(host.session->isRunning());
}

TEST(Session, TellsOfASecondRunItsOwnFilesAlone) {
  const TemporaryFolder folder;
  Host host;
  host.openExample();
  host.expectPoints((folder / "a").string());
  EXPECT_EQ(host.run("lvx_Report_Points").files.size(), 2U);
  host.expectPoints((folder / "b").string());
  const CommandReport second = host.run("lvx_Report_Points");
  ASSERT_EQ(second.files.size(), 2U);
  EXPECT_EQ(second.files[0].path, (folder / "b.txt").string());
}

TEST(Session, TellsWhyAFileWasNotWritten) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "points.txt");
  Host host;
  host.openExample();
  host.expectPoints((folder / "points").string());
  const CommandReport report = host.run("lvx_Report_Points");
  ASSERT_EQ(report.files.size(), 2U);
  EXPECT_EQ(report.files[0].fate, runtime::FileFate::Failed);
  EXPECT_EQ(report.files[0].reason, std::generic_category().message(EISDIR));
  EXPECT_EQ(report.files[1].fate, runtime::FileFate::Written);
}

TEST(Session, RunsNothingUnderAnUnknownName) {
  Host host;
  EXPECT_FALSE(host.run("lvx_Report_Nothing").found);
}

TEST(Session, OpensOneDrawingAfterTheOtherAndLetsTheFormerGo) {
  const TemporaryFolder folder;
  Host host;
  host.openExample();
  const std::weak_ptr<runtime::OpenDrawing> first = host.session->drawing();
  using Kind = DialogStep::Kind;
  // The GLS report keeps references of the drawing's corridors in the module.
  host.frontEnd.steps().expect(host::kGlsDialog,
                               {{{Kind::SelectRow, host::kIdSites, 1, {}},
                                 {Kind::SelectRow, host::kIdAlignments, 0, {}},
                                 {Kind::SelectRow, host::kIdProfiles, 0, {}},
                                 {Kind::SelectRow, host::kIdSampleLineGroups, 0, {}},
                                 {Kind::Type, host::kIdOutputStem, 0, platform::fromUtf8((folder / "gls").string())},
                                 {Kind::Click, host::kIdOk, 0, {}}}});
  host.frontEnd.steps().expect(host::kAddSectionsDialog, {{{Kind::Click, host::kIdCancel, 0, {}}}});
  EXPECT_FALSE(host.run("lvx_Report_GLS").files.empty());
  host.openExample();
  EXPECT_TRUE(first.expired());
  host.expectPoints((folder / "points").string());
  EXPECT_EQ(host.run("lvx_Report_Points").files.size(), 2U);
}

TEST(Session, WithoutItsModuleSaysWhyAndHasNoCommands) {
  runtime::HostChoices choices;
  choices.module = "/nowhere/module.vmx";
  const Host host(choices);
  EXPECT_TRUE(host.session->moduleProblem().contains(QStringLiteral("/nowhere/module.vmx")));
  EXPECT_TRUE(host.session->commands().isEmpty());
}

/// What a session says against choices; empty where it takes them.
std::string refusal(const runtime::HostChoices& choices) {
  return onGui([&]() -> std::string {
    cli::CommandLineFrontEnd frontEnd(cli::Overwrite::Never, {});
    desktop::ProgressStrip strip;
    desktop::LongWork work(strip);
    try {
      const Session session(choices, frontEnd, work);
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return {};
  });
}

TEST(Session, RefusesAMessageFileThatIsntThereAndACodePageThatNobodyKnows) {
  runtime::HostChoices choices;
  choices.bin = test::inBuild("/bin");
  EXPECT_EQ(refusal(choices), "");
  choices.messages = "/nowhere.txt";
  EXPECT_NE(refusal(choices).find("/nowhere.txt"), std::string::npos);
  choices.messages.reset();
  choices.reportCodePage = "no-such-page";
  EXPECT_NE(refusal(choices).find("no-such-page"), std::string::npos);
}

// ---------------------------------------------------------------- long work

/// Runs `steps` of work, each as long as a moment, and tells after how many it ended.
int workFor(desktop::LongWork& work, int steps) {
  return onGui([&] {
    const desktop::LongWork::Run run(work, QStringLiteral("Counting"));
    for (int step = 0; step < steps; ++step) {
      if (work.check()) return step;
      QThread::msleep(5);
    }
    return steps;
  });
}

struct Worker {
  Worker() {
    onGui([&] {
      window = new QWidget;
      window->setWindowTitle(QStringLiteral("Worker"));
      auto* const layout = new QVBoxLayout(window);
      strip = new desktop::ProgressStrip;
      edit = new QLineEdit;
      layout->addWidget(strip);
      layout->addWidget(edit);
      layout->addStretch();
      work = std::make_unique<desktop::LongWork>(*strip);
      window->resize(600, 200);
      window->show();
    });
  }
  ~Worker() {
    onGui([&] {
      work.reset();
      delete window;
    });
  }
  QWidget* window = nullptr;
  desktop::ProgressStrip* strip = nullptr;
  QLineEdit* edit = nullptr;
  std::unique_ptr<desktop::LongWork> work;
};

TEST(LongWork, ShortWorkShowsNoBarAndTakesNothingAway) {
  Worker worker;
  EXPECT_EQ(workFor(*worker.work, 10), 10);
  EXPECT_FALSE(onGui([&] { return worker.strip->isVisible(); }));
}

/// Work on the windows' thread while the test's thread acts as the user.
class RunningWork {
 public:
  explicit RunningWork(Worker& worker, int steps = 4000) {
    QMetaObject::invokeMethod(
        qApp,
        [this, &worker, steps] {
          const desktop::LongWork::Run run(*worker.work, QStringLiteral("Counting"));
          for (done = 0; done < steps && !worker.work->check(); ++done) QThread::msleep(5);
          ended = true;
        },
        Qt::QueuedConnection);
  }
  std::atomic<int> done = 0;
  std::atomic<bool> ended = false;
};

TEST(LongWork, EscapeEndsItAndNoOtherKeyReachesAWindow) {
  Worker worker;
  DesktopUser user;
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Worker")), nullptr);
  user.click(worker.edit);
  RunningWork running(worker);
  ASSERT_TRUE(user.waitFor([&] { return worker.strip->isVisible(); }));
  user.type("abc");
  EXPECT_FALSE(running.ended);
  user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.waitFor([&] { return running.ended.load(); }));
  EXPECT_EQ(onGui([&] { return worker.edit->text(); }), QString());
  EXPECT_FALSE(onGui([&] { return worker.strip->isVisible(); }));
  user.type("abc");
  EXPECT_TRUE(user.waitFor([&] { return worker.edit->text() == QStringLiteral("abc"); }));
}

TEST(LongWork, ItsButtonEndsItWhileOthersTakeNoClick) {
  Worker worker;
  int clicks = 0;
  auto* const other = onGui([&] {
    auto* const made = new QPushButton(QStringLiteral("Other"), worker.window);
    QObject::connect(made, &QPushButton::clicked, made, [&clicks] { ++clicks; });
    made->move(10, 100);
    made->show();
    return made;
  });
  DesktopUser user;
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("Worker")), nullptr);
  RunningWork running(worker);
  ASSERT_TRUE(user.waitFor([&] { return worker.strip->isVisible(); }));
  user.click(other);
  EXPECT_EQ(clicks, 0);
  EXPECT_FALSE(running.ended);
  user.click(onGui([&] { return static_cast<QWidget*>(worker.strip->cancelButton()); }));
  EXPECT_TRUE(user.waitFor([&] { return running.ended.load(); }));
  user.click(other);
  EXPECT_TRUE(user.waitFor([&] { return clicks == 1; }));
}

}  // namespace
}  // namespace lvx::test
