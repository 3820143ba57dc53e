// The projection report made by a user from its start to its files, and what the program offers afterwards.
#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QToolBar>
#include <QUrl>
#include <algorithm>
#include <cerrno>

#include "desktop/dialogs/boxes.h"
#include "desktop/plan/plan_view.h"
#include "report_user.h"

namespace lvx::test {

/// Takes what would go to other programs of the system.
class UrlKeeper final : public QObject {
  Q_OBJECT

 public:
  UrlKeeper() {
    onGui([this] { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); });
  }
  ~UrlKeeper() override {
    onGui([] { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); });
  }
  QUrl opened;
  Q_INVOKABLE void open(const QUrl& url) { opened = url; }
};

namespace {

constexpr const char* kCommand = "lvx_Report_Que";

std::vector<std::string> projection(const std::string& alignment = "Valley road",
                                    const std::string& group = "Cross sections 20 m") {
  return {"projection", kExample.toStdString(), "--alignment", alignment, "--group", group,
          "--surface",  "Existing ground"};
}

/// Fills the dialog in for the road's cross sections.
void chooseRoad(ReportUser& user) {
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Valley road");
  user.choose(host::kIdSampleLineGroups, "Cross sections 20 m");
  user.choose(host::kIdSurfaces, "Existing ground");
}

// ---------------------------------------------------------------- start to files

TEST(ProjectionWindows, WriteWhatTheCommandLineWrites) {
  ReportUser user;
  // From the tool bar this time.
  auto* const button = onGui([&] {
    return user.program.window->findChild<QToolBar*>(QStringLiteral("tools"))
        ->widgetForAction(user.program.window->findChild<QAction*>(QLatin1String(kCommand)));
  });
  user.program.user.click(button);
  user.expectDialog(host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_EQ(ReportUser::formsOf(user.stem()).size(), 3U);
  ReportUser::expectAsTheLineWrites(user.stem(), projection());
}

TEST(ProjectionWindows, ByKeyboardAloneWriteTheSame) {
  ReportUser user;
  user.program.user.key(Qt::Key_R, Qt::AltModifier);
  ASSERT_TRUE(user.program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  user.program.user.key(Qt::Key_P);
  user.expectDialog(host::kProjectionDialog);
  const auto tabTo = [&](int id) {
    QWidget* const wanted = user.control(id);
    for (int presses = 0; presses < 40 && !onGui([&] { return wanted->hasFocus(); }); ++presses)
      user.program.user.key(Qt::Key_Tab);
    EXPECT_TRUE(onGui([&] { return wanted->hasFocus(); })) << id;
  };
  tabTo(host::kIdSites);
  EXPECT_EQ(user.rows(host::kIdSites), "[*No site*]|Valley road upgrade");
  user.program.user.type("v");
  EXPECT_EQ(user.rows(host::kIdSites), "*No site*|[Valley road upgrade]");
  tabTo(host::kIdAlignments);
  user.program.user.key(Qt::Key_Down);
  tabTo(host::kIdSampleLineGroups);
  user.program.user.key(Qt::Key_Down);
  EXPECT_EQ(user.rows(host::kIdAlignments), "Valley road|[Mill lane]");
  EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "[Mill lane 25 m]");
  tabTo(host::kIdOutputStem);
  user.program.user.type(user.stem().string());
  user.program.user.key(Qt::Key_Return);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), projection("Mill lane", "Mill lane 25 m"));
}

TEST(ProjectionWindows, WriteTheTickedFormsAlone) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.toggle(host::kIdCheckExcel);
  user.toggle(host::kIdCheckHtml);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  const Forms forms = ReportUser::formsOf(user.stem());
  ASSERT_EQ(forms.size(), 1U);
  EXPECT_TRUE(forms.contains(".txt"));
  ReportUser::expectAsTheLineWrites(user.stem(), projection());
}

TEST(ProjectionWindows, InGermanShowGermanWordsAndWriteTheGermanReport) {
  desktop::DesktopOptions options;
  options.choices.language = "de";
  ReportUser user(kExample, options);
  user.start(kCommand, host::kProjectionDialog);
  EXPECT_EQ(onGui([&] { return user.dialog()->windowTitle().toStdString(); }), "Querprofilprojektion");
  EXPECT_EQ(user.textOf(host::kIdLabelSite), "Gebiet:");
  EXPECT_EQ(user.textOf(host::kIdLabelSampleLineGroup), "Querprofilgruppe:");
  EXPECT_EQ(user.textOf(host::kIdCancel), "Abbrechen");
  EXPECT_EQ(user.textOf(host::kIdCheckAscii), "&ASCII-Text (.txt)");
  EXPECT_NE(user.rows(host::kIdSites).find("*Ohne Gebiet*"), std::string::npos);
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Achse w\u00e4hlen:");
  user.program.user.key(Qt::Key_Escape);
  user.expectDialog();
  user.press(host::kIdHelp);
  QWidget* const help = user.program.waitForNamed("helpWindow");
  ASSERT_NE(help, nullptr);
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == help; }));
  EXPECT_NE(onGui([&] {
              return help->findChild<QTextBrowser*>(QStringLiteral("helpPage"))->toPlainText().toStdString();
            }).find("Querprofil"),
            std::string::npos);
  user.program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.program.user.waitFor([&] { return !help->isVisible(); }));
  chooseRoad(user);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  std::vector<std::string> arguments = projection();
  arguments.insert(arguments.end(), {"--lang", "de"});
  ReportUser::expectAsTheLineWrites(user.stem(), arguments);
}

// ---------------------------------------------------------------- picks

TEST(ProjectionWindows, TakeAnAlignmentThatIsClickedInThePlan) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  user.clickAt(user.alignment("Forest track").handle);
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdSites), "[*No site*]|Valley road upgrade");
  EXPECT_EQ(user.rows(host::kIdAlignments), "[Forest track]");
  EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "[Track 15 m]");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), projection("Forest track", "Track 15 m"));
}

TEST(ProjectionWindows, GoToTheSiteOfAPickedAlignment) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  user.clickAt(user.alignment("Mill lane").handle);
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdSites), "*No site*|[Valley road upgrade]");
  // The dialogs name the alignment at the picked one's place in the list of all, which begins with those without a site.
  EXPECT_EQ(user.rows(host::kIdAlignments), "[Valley road]|Mill lane");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), projection());
}

TEST(ProjectionWindows, TakeASurfaceWhoseGroundIsClicked) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.press(host::kIdPickSurface);
  user.expectPrompt("Pick the surface or profile:");
  user.clickAt(user.drawing().surfaces.front().handle);
  user.expectDialog();
  EXPECT_EQ(user.rows(host::kIdSurfaces), "[Existing ground]");
  EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "[Cross sections 20 m]|Bridge 5 m");
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), projection());
}

TEST(ProjectionWindows, ComeBackFromAPickThatEscapeEndedAsTheyWere) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Valley road");
  user.choose(host::kIdSampleLineGroups, "Bridge 5 m");
  user.typeStem(user.stem());
  for (const auto& [button, prompt] : {std::pair(host::kIdPickAlignment, "Pick an alignment:"),
                                       std::pair(host::kIdPickSurface, "Pick the surface or profile:")}) {
    user.press(button);
    user.expectPrompt(prompt);
    user.program.user.key(Qt::Key_Escape);
    user.expectDialog();
    EXPECT_EQ(user.rows(host::kIdSites), "*No site*|[Valley road upgrade]");
    EXPECT_EQ(user.rows(host::kIdAlignments), "[Valley road]|Mill lane");
    EXPECT_EQ(user.rows(host::kIdSampleLineGroups), "Cross sections 20 m|[Bridge 5 m]");
    EXPECT_EQ(user.rows(host::kIdSurfaces), "[Existing ground]");
    EXPECT_EQ(user.textOf(host::kIdOutputStem), user.stem().string());
  }
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem(), projection("Valley road", "Bridge 5 m"));
}

TEST(ProjectionWindows, AnswerAPickOfSomethingElseWithABoxAndAskAgain) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.press(host::kIdPickAlignment);
  user.expectPrompt("Pick an alignment:");
  const civil::SampleLine& line = user.alignment("Valley road").sampleLineGroups.front().lines[3];
  user.clickAt(line.handle);
  user.answer(user.expectBox("messageBox", QMessageBox::Critical, "That is not an alignment."), "OK");
  user.expectPrompt("Pick an alignment:");
  user.program.user.key(Qt::Key_Escape);
  user.expectDialog();

  // The same with the surface; the right one afterwards.
  user.press(host::kIdPickSurface);
  user.expectPrompt("Pick the surface or profile:");
  user.clickAt(user.alignment("Mill lane").handle);
  user.answer(user.expectBox("messageBox", QMessageBox::Critical, "That is not a surface."), "OK");
  user.expectPrompt("Pick the surface or profile:");
  user.clickAt(user.drawing().surfaces.front().handle);
  user.expectDialog();
  user.press(host::kIdCancel);
  EXPECT_TRUE(user.program.waitUntilSaid("Profile projection ended and wrote nothing"));
}

// ---------------------------------------------------------------- the dialog's other buttons

TEST(ProjectionWindows, TakeTheOutputFromTheFileBox) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.press(host::kIdOutputFileBox);
  QWidget* const box = user.program.waitForNamed("saveBox");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(onGui([&] { return qobject_cast<QFileDialog*>(box)->nameFilters().size(); }), 4);
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == box; }));
  user.program.user.type((user.stem("boxed").string() + ".html"));
  user.program.user.key(Qt::Key_Return);
  user.answer(user.expectBox("messageBox", QMessageBox::Question, "doesn't exist"), "Yes");
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == user.dialog(); }));
  EXPECT_EQ(user.textOf(host::kIdOutputStem), user.stem("boxed").string()) << "without its ending";
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ReportUser::expectAsTheLineWrites(user.stem("boxed"), projection());
}

TEST(ProjectionWindows, OpenTheHelpOfTheReport) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.press(host::kIdHelp);
  QWidget* const help = user.program.waitForNamed("helpWindow");
  ASSERT_NE(help, nullptr);
  EXPECT_EQ(onGui([&] {
              return help->findChild<QTextBrowser*>(QStringLiteral("helpPage"))->source().fileName().toStdString();
            }),
            "LVX_015_001.html");
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == help; }));
  user.program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.program.user.waitFor([&] { return !help->isVisible(); }));
  user.press(host::kIdCancel);
  EXPECT_TRUE(user.waitForEnd());
}

TEST(ProjectionWindows, AskBeforeTheyOverwriteAndKeepWhatTheyAreToldToKeep) {
  ReportUser user;
  const std::filesystem::path stem = user.stem();
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(stem);
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  const Forms first = ReportUser::formsOf(stem);

  user.start(kCommand, host::kProjectionDialog);
  user.choose(host::kIdSites, "Valley road upgrade");
  user.choose(host::kIdAlignments, "Mill lane");
  user.choose(host::kIdSampleLineGroups, "Mill lane 25 m");
  user.typeStem(stem);
  user.press(host::kIdOk);
  const std::pair<const char*, const char*> answers[] = {{".txt", "No"}, {".xls", "Yes"}, {".html", "No"}};
  for (const auto& [ending, button] : answers)
    user.answer(
        user.expectBox("messageBox", QMessageBox::Question, stem.string() + ending + " already exists. Overwrite it?"),
        button);
  ASSERT_TRUE(user.waitForEnd());
  Forms second = ReportUser::formsOf(stem);
  EXPECT_TRUE(second.at(".txt") == first.at(".txt"));
  EXPECT_TRUE(second.at(".html") == first.at(".html"));
  EXPECT_FALSE(second.at(".xls") == first.at(".xls"));

  // Yes to all, against the command line.
  std::filesystem::remove(stem.string() + ".txt");
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(stem);
  user.press(host::kIdOk);
  for (const char* ending : {".xls", ".html"})
    user.answer(user.expectBox("messageBox", QMessageBox::Question, stem.string() + ending + " already exists"), "Yes");
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(ReportUser::formsOf(stem) == first);
  ReportUser::expectAsTheLineWrites(stem, projection());
}

// ---------------------------------------------------------------- after a report

/// Clicks a link of the console in the line that names a file.
void clickLink(ReportUser& user, const std::filesystem::path& path, const char* words) {
  auto* const history = user.program.part<QTextBrowser>("consoleHistory");
  const QPoint place = onGui([&] {
    QTextCursor cursor = history->document()->find(QString::fromStdString(path.string()));
    cursor = history->document()->find(QString::fromUtf8(words), cursor);
    if (cursor.isNull()) return QPoint(-1, -1);
    cursor.setPosition(cursor.selectionStart() + 2);
    history->setTextCursor(cursor);
    history->ensureCursorVisible();
    return history->cursorRect(cursor).center();
  });
  ASSERT_NE(place, QPoint(-1, -1)) << path;
  user.program.user.click(onGui([&] { return history->viewport(); }), place);
}

TEST(ProjectionWindows, ListTheFilesAndOpenThemFromTheList) {
  UrlKeeper urls;
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  ASSERT_TRUE(user.program.waitUntilSaid(".html"));
  const auto path = [&](const char* ending) { return std::filesystem::path(user.stem().string() + ending); };
  for (const char* ending : {".txt", ".xls", ".html"})
    EXPECT_NE(user.program.said().find(path(ending).string() + "  " +
                                       std::to_string(std::filesystem::file_size(path(ending))) + " bytes"),
              std::string::npos)
        << user.program.said();

  clickLink(user, path(".txt"), "Open");
  QWidget* const text = user.program.waitForNamed("textWindow");
  ASSERT_NE(text, nullptr);
  QString expected = QString::fromLatin1(QByteArray::fromStdString(fileBytes(path(".txt"))));
  expected.remove(QLatin1Char('\r'));
  while (expected.endsWith(QLatin1Char('\n'))) expected.chop(1);
  QString shown = onGui([&] { return text->findChild<QPlainTextEdit*>(QStringLiteral("text"))->toPlainText(); });
  while (shown.endsWith(QLatin1Char('\n'))) shown.chop(1);
  EXPECT_EQ(shown.left(2000), expected.left(2000));
  EXPECT_TRUE(expected.startsWith(shown));
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == text; }));
  user.program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == user.program.window; }));

  clickLink(user, path(".html"), "Open");
  QWidget* const page = user.program.waitForNamed("pageWindow");
  ASSERT_NE(page, nullptr);
  const std::string words =
      onGui([&] { return page->findChild<QTextBrowser*>(QStringLiteral("page"))->toPlainText().toStdString(); });
  EXPECT_NE(words.find("Profile projection"), std::string::npos);
  EXPECT_NE(words.find("1+020"), std::string::npos);
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == page; }));
  user.program.user.key(Qt::Key_Escape);
  ASSERT_TRUE(user.program.user.waitFor([&] { return QApplication::activeWindow() == user.program.window; }));

  EXPECT_TRUE(urls.opened.isEmpty());
  clickLink(user, path(".xls"), "Open");
  EXPECT_TRUE(user.program.user.waitFor([&] { return urls.opened.toLocalFile().toStdString() == path(".xls"); }));
  clickLink(user, path(".txt"), "Show in folder");
  EXPECT_TRUE(user.program.user.waitFor([&] {
    return urls.opened.toLocalFile().toStdString() == user.program.folder.path().string();
  })) << urls.opened.toString().toStdString();

  // A file that went meanwhile.
  std::filesystem::remove(path(".txt"));
  clickLink(user, path(".txt"), "Open");
  EXPECT_TRUE(user.program.waitUntilSaid("isn't there any more"));
}

// ---------------------------------------------------------------- places that take no report

/// Names in a folder, but the program's settings.
std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (!entry.path().filename().string().starts_with("settings")) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(ProjectionWindows, TellWhyNothingIsWrittenIntoAFolderThatIsntThere) {
  ReportUser user;
  const std::filesystem::path folder = user.program.folder / "no-such-folder";
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(folder / "road");
  user.press(host::kIdOk);
  user.answer(user.expectBox("notWritten", QMessageBox::Warning, folder.string()), "OK");
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(user.program.waitUntilSaid(("There is no folder " + folder.string()).c_str()));
  EXPECT_TRUE(namesIn(user.program.folder.path()).empty());

  // Without any folder the report itself asks for one.
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem("road");
  user.press(host::kIdOk);
  user.answer(user.expectBox("messageBox", QMessageBox::Warning, "Name a folder for the output file."), "OK");
  EXPECT_TRUE(user.waitForEnd());
}

TEST(ProjectionWindows, TellWhyAReadOnlyPlaceTakesNoReport) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem("/proc/lvx-report");  // nobody may create a file there
  user.press(host::kIdOk);
  QWidget* const box = user.expectBox("notWritten", QMessageBox::Warning, "/proc/lvx-report.txt");
  const std::string words = onGui([&] { return qobject_cast<QMessageBox*>(box)->informativeText().toStdString(); });
  EXPECT_NE(words.find("/proc/lvx-report.xls: "), std::string::npos) << words;
  EXPECT_NE(words.find("choose a folder"), std::string::npos);
  user.answer(box, "OK");
  EXPECT_TRUE(user.waitForEnd());
  EXPECT_NE(user.program.said().find("/proc/lvx-report.txt was not written"), std::string::npos);
}

TEST(ProjectionWindows, OpenTheirHelpByItsKeyToo) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  user.program.user.key(Qt::Key_F1);
  EXPECT_NE(user.program.waitForNamed("helpWindow"), nullptr);
}

TEST(ProjectionWindows, TellInABarOverThePlanWhatWasWritten) {
  ReportUser user;
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(user.stem());
  user.press(host::kIdOk);
  ASSERT_TRUE(user.waitForEnd());
  auto* const bar = user.program.part("outcomeBar");
  auto* const text = user.program.part<QLabel>("outcomeText");
  ASSERT_TRUE(user.program.user.waitFor([&] { return bar->isVisible(); }));
  EXPECT_EQ(onGui([&] { return text->text().toStdString(); }),
            "Profile projection wrote report.txt, report.xls, report.html.");
  user.program.user.click(user.program.part<QPushButton>("outcomeFirst"));
  ASSERT_TRUE(user.program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  user.program.user.key(Qt::Key_Down);
  user.program.user.key(Qt::Key_Return);
  EXPECT_NE(user.program.waitForNamed("textWindow"), nullptr);
  user.program.user.key(Qt::Key_Escape);
  // The next command begins without it.
  user.start(kCommand, host::kProjectionDialog);
  EXPECT_FALSE(onGui([&] { return bar->isVisible(); }));
  user.press(host::kIdCancel);
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_FALSE(onGui([&] { return bar->isVisible(); })) << "nothing came of it";
}

TEST(ProjectionWindows, TellInABarOverThePlanWhatWasNotWritten) {
  ReportUser user;
  const std::filesystem::path stem = user.stem();
  std::filesystem::create_directory(stem.string() + ".txt");
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(stem);
  user.press(host::kIdOk);
  user.answer(user.expectBox("messageBox", QMessageBox::Question, "report.txt already exists"), "Yes");
  user.answer(user.expectBox("notWritten", QMessageBox::Warning, systemWords(EISDIR)), "OK");
  ASSERT_TRUE(user.waitForEnd());
  auto* const bar = user.program.part("outcomeBar");
  auto* const label = user.program.part<QLabel>("outcomeText");
  const std::string text = onGui([&] { return label->text().toStdString(); });
  EXPECT_TRUE(onGui([&] { return bar->isVisible(); }));
  EXPECT_NE(text.find("Not written: " + stem.string() + ".txt: " + systemWords(EISDIR)), std::string::npos) << text;
  EXPECT_NE(text.find("Profile projection wrote report.xls, report.html."), std::string::npos) << text;
}

TEST(ProjectionWindows, TellThatAPlaceIsFullAndLeaveNothingHalfWritten) {
  ReportUser user;
  const std::filesystem::path stem = user.stem();
  std::filesystem::create_symlink("/dev/full", stem.string() + ".txt");
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(stem);
  user.press(host::kIdOk);
  user.answer(user.expectBox("messageBox", QMessageBox::Question, "already exists"), "Yes");
  user.answer(user.expectBox("notWritten", QMessageBox::Warning, systemWords(ENOSPC)), "OK");
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_EQ(namesIn(user.program.folder.path()), (std::vector<std::string>{"report.html", "report.txt", "report.xls"}));
  EXPECT_TRUE(std::filesystem::is_symlink(stem.string() + ".txt"));
  EXPECT_NE(user.program.said().find("report.xls"), std::string::npos);
}

TEST(ProjectionWindows, KeepTheFileThatANewOneCouldNotReplace) {
  ReportUser user;
  const std::filesystem::path stem = user.stem();
  std::filesystem::create_directory(stem.string() + ".html");  // a folder of that name can't become a page
  user.start(kCommand, host::kProjectionDialog);
  chooseRoad(user);
  user.typeStem(stem);
  user.press(host::kIdOk);
  user.answer(user.expectBox("messageBox", QMessageBox::Question, "report.html already exists"), "Yes");
  user.answer(user.expectBox("notWritten", QMessageBox::Warning, systemWords(EISDIR)), "OK");
  ASSERT_TRUE(user.waitForEnd());
  EXPECT_TRUE(std::filesystem::is_directory(stem.string() + ".html"));
  std::filesystem::remove(stem.string() + ".html");
  ReportUser::expectAsTheLineWrites(stem, projection());
}

}  // namespace
}  // namespace lvx::test

#include "host/dialog_controls.h"
#include "report_windows_test.moc"
