// The README's pictures, made as a user would see them: ./lvx pictures names the folder of the README in LVX_PICTURES.
// Without it the pictures go into a folder of the moment, so that every test run shows that they can be made.
#include <QImage>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <cstdlib>

#include "desktop/charts/section_view.h"
#include "host/dialog_controls.h"
#include "program_window.h"

namespace lvx::test {
namespace {

class Pictures : public testing::Test {
 protected:
  Pictures() {
    const char* const named = std::getenv("LVX_PICTURES");
    folder_ = named == nullptr ? (moment_ / "pictures") : std::filesystem::path(named);
    std::filesystem::create_directories(folder_);
    // The heads of the reports show the path, which is the same on every machine.
    stem_ = std::filesystem::temp_directory_path() / "road-reports";
    std::filesystem::remove_all(stem_);
    std::filesystem::create_directories(stem_);
  }
  ~Pictures() override { std::filesystem::remove_all(stem_); }

  /// A window as it stands on the screen, inside its frame. Something must be drawn in it.
  void take(QWidget* window, const std::string& name) {
    ASSERT_NE(window, nullptr) << name;
    const QString file = QString::fromStdString((folder_ / (name + ".png")).string());
    const QImage picture = onGui([&] { return window->grab().toImage(); });
    ASSERT_TRUE(picture.save(file)) << file.toStdString();
    EXPECT_GT(picture.width(), 300) << name;
    int colours = 0;
    QRgb last = 0;
    for (int y = 0; y < picture.height(); y += 7)
      for (int x = 0; x < picture.width(); x += 7)
        if (picture.pixel(x, y) != last) {
          last = picture.pixel(x, y);
          ++colours;
        }
    EXPECT_GT(colours, 100) << name << " is as good as empty";
  }

  /// Clicks the link `what` behind the line of `file` in the console.
  void clickLink(ProgramWindow& program, const QString& file, const QString& what) {
    auto* const history = program.part<QTextBrowser>("consoleHistory");
    const QPoint place = onGui([&] {
      const QTextCursor line = history->document()->find(file);
      const QTextCursor link = history->document()->find(what, line);
      history->setTextCursor(QTextCursor(link.block()));
      history->ensureCursorVisible();
      QTextCursor middle(history->document());
      middle.setPosition((link.selectionStart() + link.selectionEnd()) / 2);
      return history->cursorRect(middle).center();
    });
    program.user.click(onGui([&] { return history->viewport(); }), place);
  }

  /// Runs a command, chooses the next row in some lists of its dialog, and takes the page that it wrote.
  void report(ProgramWindow& program, const char* command, const char* dialogName, const std::vector<int>& nextRows,
              const std::string& name, QSize pageSize, const std::string& dialogPicture = {}) {
    program.enter(command);
    QWidget* const dialog = program.waitForNamed(dialogName);
    ASSERT_NE(dialog, nullptr) << command;
    for (const int list : nextRows) {
      program.user.click(onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(list)); }));
      program.user.key(Qt::Key_Down);
      program.user.key(Qt::Key_Return);
    }
    QWidget* const stem =
        onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOutputStem)); });
    program.user.click(stem);
    program.user.type((stem_ / name).string());
    auto* const ok = onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOk)); });
    ASSERT_TRUE(program.user.waitFor([&] { return ok->isEnabled(); }));
    if (!dialogPicture.empty()) take(dialog, dialogPicture);
    program.user.key(Qt::Key_Return);
    answerQuestion(program, name);
    ASSERT_TRUE(program.waitUntilSaid((name + ".html").c_str())) << program.said();
    clickLink(program, QString::fromStdString(name + ".html"), QStringLiteral("Open"));
    QWidget* const page = program.waitForNamed("pageWindow");
    onGui([&] { page->resize(pageSize); });
    ASSERT_TRUE(program.user.waitFor([&] { return page->size() == pageSize; }));
    take(page, name);
    onGui([&] { page->close(); });
    ASSERT_TRUE(program.user.waitFor([&] {
      for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isVisible() && top->objectName() == QStringLiteral("pageWindow")) return false;
      return true;
    }));
  }

  /// The GLS report asks whether it may add sections; these pictures are of the drawing as it is.
  static void answerQuestion(ProgramWindow& program, const std::string& name) {
    QWidget* question = nullptr;
    program.user.waitFor([&] {
      for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isVisible() && top->objectName() == QLatin1String(host::kAddSectionsDialog)) question = top;
      return question != nullptr || program.window->findChild<QTextBrowser*>(QStringLiteral("consoleHistory"))
                                        ->toPlainText()
                                        .contains(QString::fromStdString(name + ".html"));
    });
    if (question != nullptr)
      program.user.click(
          onGui([&] { return question->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdCancel)); }));
  }

  TemporaryFolder moment_;
  std::filesystem::path folder_;
  std::filesystem::path stem_;
};

TEST_F(Pictures, ShowTheDesktopItsDialogAndEachReport) {
  ProgramWindow program;
  onGui([&] { program.window->resize(1400, 880); });
  report(program, "lvx_Report_Points", host::kPointsDialog, {host::kIdSites}, "points", {760, 380});
  report(program, "lvx_Report_GLS", host::kGlsDialog, {host::kIdSites, host::kIdProfiles}, "gls", {1280, 620});
  report(program, "lvx_Report_Que", host::kProjectionDialog, {host::kIdSites}, "projection", {420, 480}, "dialog");
  // The plan with the section of a sample line beside it.
  auto* const find = program.part<QLineEdit>("treeFind");
  program.user.click(find);
  program.user.type("1+300");
  auto* const section = program.part<desktop::SectionView>("section");
  const auto isShown = [&] { return section->sampleLine() != 0 && section->isVisible(); };
  constexpr int kMostRows = 12;
  for (int row = 0; row < kMostRows && !onGui(isShown); ++row) program.user.key(Qt::Key_Down);
  EXPECT_TRUE(program.user.waitFor(isShown));
  program.user.click(find);
  program.user.key(Qt::Key_A, Qt::ControlModifier);
  program.user.key(Qt::Key_Delete);
  program.enter("zoom");
  take(program.window, "desktop");
}

}  // namespace
}  // namespace lvx::test
