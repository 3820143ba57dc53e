// The program's window: a drawing and its parts, commands by menu and by name, a whole report.
#include <QAccessible>
#include <QAccessibleInterface>
#include <QComboBox>
#include <QDialog>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTableView>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>
#include <cstdlib>
#include <fstream>
#include <map>

#include "desktop/charts/profile_view.h"
#include "desktop/charts/section_view.h"
#include "desktop/plan/plan_view.h"
#include "host/dialog_controls.h"
#include "program_window.h"
#include "runtime/standin_host.h"
#include "support/places.h"

namespace lvx::test {
namespace {

/// Finds a row of the tree by the beginning of its text, opening what it stands in.
QModelIndex treeRow(const QTreeView& view, const char* text, const QModelIndex& parent = {}) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    if (index.data().toString().startsWith(QString::fromUtf8(text))) return index;
    if (const QModelIndex below = treeRow(view, text, index); below.isValid()) return below;
  }
  return {};
}

void clickTree(ProgramWindow& program, const char* text, bool twice = false) {
  auto* const view = program.part<QTreeView>("treeView");
  const QPoint place = onGui([&] {
    const QModelIndex index = treeRow(*view, text);
    view->scrollTo(index);
    return view->visualRect(index).center();
  });
  QWidget* const rows = onGui([&] { return view->viewport(); });
  if (twice)
    program.user.doubleClick(rows, place);
  else
    program.user.click(rows, place);
}

std::string statusOf(const ProgramWindow& program, const char* label) {
  return onGui([&] { return program.window->findChild<QLabel*>(QLatin1String(label))->text().toStdString(); });
}

/// Chooses a row of a drop-down list as its user: opens it and clicks the row.
void choose(ProgramWindow& program, QWidget* dialog, int control, const char* text) {
  auto* const list = onGui([&] { return dialog->findChild<QComboBox*>(QStringLiteral("control%1").arg(control)); });
  ASSERT_NE(list, nullptr);
  program.user.click(list);
  ASSERT_TRUE(program.user.waitFor([&] { return list->view()->isVisible(); }));
  const QPoint place = onGui([&] {
    const int row = list->findText(QString::fromUtf8(text));
    return row < 0 ? QPoint(-1, -1) : list->view()->visualRect(list->model()->index(row, 0)).center();
  });
  ASSERT_NE(place, QPoint(-1, -1)) << text;
  program.user.click(onGui([&] { return list->view()->viewport(); }), place);
  ASSERT_TRUE(program.user.waitFor([&] { return list->currentText() == QString::fromUtf8(text); }));
}

TEST(MainWindow, ShowsADrawingWithItsNameItsObjectsAndItsAxis) {
  const ProgramWindow program;
  EXPECT_TRUE(onGui([&] { return program.window->windowTitle(); }).startsWith(QStringLiteral("valley-road.xml")));
  auto* const tree = program.part<QTreeView>("treeView");
  EXPECT_TRUE(onGui([&] { return treeRow(*tree, "Cross sections 20 m (55)").isValid(); }));
  EXPECT_EQ(statusOf(program, "station"), "Valley road");
  EXPECT_NE(program.said().find("valley-road.xml is open"), std::string::npos);
  EXPECT_NE(onGui([&] { return program.window->findChild<desktop::ProfileView*>()->alignment(); }), 0U);
  EXPECT_TRUE(program.isEnabled("lvx_Report_Que"));
  EXPECT_FALSE(program.isEnabled("save")) << "nothing has changed";
}

TEST(MainWindow, WithoutADrawingOffersOnlyWhatNeedsNone) {
  ProgramWindow program{QString()};
  EXPECT_FALSE(program.isEnabled("lvx_Report_Que"));
  EXPECT_FALSE(program.isEnabled("saveAs"));
  EXPECT_TRUE(program.isEnabled("open"));
  program.enter("lvx_report_que");
  EXPECT_TRUE(program.waitUntilSaid("No drawing is open"));
}

TEST(MainWindow, TellsStationAndOffsetUnderTheMouse) {
  ProgramWindow program;
  QWidget* const plan = program.part("plan");
  program.user.moveTo(plan, QPoint(200, 200));
  ASSERT_TRUE(program.user.waitFor([&] {
    return program.window->findChild<QLabel*>(QStringLiteral("station"))->text().contains(QStringLiteral("station"));
  }));
  const std::string place = statusOf(program, "coordinates");
  EXPECT_TRUE(place.starts_with("E 48") && place.find("   N 12") != std::string::npos) << place;
  const std::string station = statusOf(program, "station");
  EXPECT_EQ(station.rfind("Valley road:  station ", 0), 0U) << station;
  EXPECT_TRUE(station.ends_with("left") || station.ends_with("right")) << station;
  EXPECT_EQ(station.find('-'), std::string::npos) << station << ": a word tells the side, and no sign beside it";
}

TEST(MainWindow, ReadsADrawingAgainAndStaysWhereTheUserWas) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  auto* const plan = onGui([&] { return &program.window->plan(); });
  auto* const tree = program.part<QTreeView>("treeView");
  auto* const section = onGui([&] { return program.window->findChild<desktop::SectionView*>(); });
  clickTree(program, "1+020", true);
  ASSERT_TRUE(program.user.waitFor([&] { return section->sampleLine() != 0; }));
  const auto centre = onGui([&] { return plan->viewport().centre(); });
  const double scale = onGui([&] { return plan->viewport().scale(); });
  const auto current = [&] { return tree->currentIndex().data().toString().toStdString(); };
  const std::string chosen = onGui(current);
  // Before the alignments, so that handles are others behind it.
  std::string text = fileBytes(drawing.toStdString());
  const auto* const former = onGui([&] { return program.window->session().drawing().get(); });
  std::ofstream(drawing.toStdString(), std::ios::binary) << text + "\n";
  program.user.key(Qt::Key_F5);
  ASSERT_TRUE(program.user.waitFor(
      [&] { return program.window->session().drawing() && program.window->session().drawing().get() != former; }));
  EXPECT_TRUE(program.user.waitFor([&] { return current() == chosen; })) << onGui(current);
  EXPECT_TRUE(program.user.waitFor([&] { return section->sampleLine() != 0; }));
  EXPECT_EQ(onGui([&] { return plan->viewport().scale(); }), scale);
  EXPECT_EQ(onGui([&] { return plan->viewport().centre().x; }), centre.x);
  EXPECT_EQ(onGui([&] { return plan->viewport().centre().y; }), centre.y);
}

TEST(MainWindow, APanelThatIsOpenedComesToTheFront) {
  ProgramWindow program;
  auto* const dock = program.part<QDockWidget>("diagnosticsDock");
  onGui([&] { dock->hide(); });
  onGui([&] { dock->toggleViewAction()->trigger(); });
  EXPECT_TRUE(program.user.waitFor([&] { return !dock->visibleRegion().isEmpty(); }));
}

TEST(MainWindow, OpensTheHelpByItsKeyWhileAQuestionWaits) {
  ProgramWindow program;
  program.enter("open /no/such/drawing.xml");
  QWidget* const box = program.waitForNamed("openFailed");
  ASSERT_NE(box, nullptr);
  program.user.key(Qt::Key_F1);
  QWidget* const help = program.waitForNamed("helpWindow");
  ASSERT_NE(help, nullptr);
  EXPECT_TRUE(onGui([&] { return box->isVisible(); }));
  program.user.key(Qt::Key_Escape);
  onGui([&] {
    help->hide();
    static_cast<QDialog*>(box)->reject();
  });
  EXPECT_TRUE(program.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST(MainWindow, NamesEverythingForAScreenReader) {
  ProgramWindow program;
  clickTree(program, "1+020");
  const QStringList unnamed = onGui([&] {
    QStringList found;
    for (const QWidget* const widget : program.window->findChildren<QWidget*>()) {
      const QString kind = QLatin1String(widget->metaObject()->className());
      const bool isPartOfQt = widget->objectName().startsWith(QLatin1String("qt_")) ||
                              kind == QLatin1String("QComboBoxListView") || kind == QLatin1String("QTabBar");
      if ((widget->focusPolicy() & Qt::TabFocus) == 0 || isPartOfQt) continue;
      QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
      const QString name = face == nullptr ? QString() : face->text(QAccessible::Name);
      if (name.isEmpty() || name.contains(QLatin1Char('<')))
        found << QStringLiteral("%1 '%2': '%3'")
                     .arg(QLatin1String(widget->metaObject()->className()), widget->objectName(), name);
    }
    for (const QToolButton* const button : program.window->findChildren<QToolButton*>()) {
      QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(const_cast<QToolButton*>(button));
      const QString name = face->text(QAccessible::Name);
      // The marks in an edit's frame are part of the edit, and those of a tab bar of that.
      if (qobject_cast<QLineEdit*>(button->parent()) != nullptr || button->parent()->inherits("QTabBar")) continue;
      if (!button->objectName().startsWith(QLatin1String("qt_")) && (name.isEmpty() || name.contains(QLatin1Char('<'))))
        found << QStringLiteral("button '%1' in %2: '%3'")
                     .arg(button->objectName(), QLatin1String(button->parent()->metaObject()->className()), name);
    }
    return found;
  });
  EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(QLatin1Char('\n')).toStdString();
}

TEST(MainWindow, MeasuresAgainstTheAlignmentThatWasSelected) {
  ProgramWindow program;
  clickTree(program, "Mill lane");
  EXPECT_TRUE(program.user.waitFor([&] {
    return program.window->findChild<QLabel*>(QStringLiteral("station"))->text() == QStringLiteral("Mill lane");
  }));
}

TEST(MainWindow, ShowsTheSectionOfASelectedSampleLine) {
  ProgramWindow program;
  clickTree(program, "1+020");
  auto* const section = onGui([&] { return program.window->findChild<desktop::SectionView*>(); });
  ASSERT_TRUE(program.user.waitFor([&] { return section->sampleLine() != 0; }));
  EXPECT_TRUE(program.user.waitFor([&] { return section->isVisible(); }));
}

TEST(MainWindow, ADoubleClickInTheTreeZoomsThere) {
  ProgramWindow program;
  auto* const plan = onGui([&] { return &program.window->plan(); });
  const double before = onGui([&] { return plan->viewport().scale(); });
  clickTree(program, "Mill lane", true);
  EXPECT_TRUE(program.user.waitFor([&] { return plan->viewport().scale() > before; }));
}

TEST(MainWindow, AnswersAnUnknownCommandWithWhatThereIs) {
  ProgramWindow program;
  program.enter("frobnicate");
  ASSERT_TRUE(program.waitUntilSaid("There is no command 'frobnicate'"));
  for (const char* name : {"lvx_Report_Que", "lvx_Report_Points", "lvx_Report_GLS", "OPEN", "ZOOM", "QUIT"})
    EXPECT_NE(program.said().find(name), std::string::npos) << name;
}

TEST(MainWindow, SavesUnderNoOtherNameBySave) {
  ProgramWindow program;
  program.enter("SAVE other.xml");
  ASSERT_TRUE(program.waitUntilSaid("There is no command 'SAVE other.xml'"));
  EXPECT_EQ(program.said().find("No drawing is open"), std::string::npos);
}

TEST(MainWindow, RunsACommandThatWasTypedInAnyCase) {
  ProgramWindow program;
  program.enter("LVX_REPORT_POINTS");
  QWidget* const dialog = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(dialog, nullptr);
  EXPECT_TRUE(onGui([&] { return program.window->session().isRunning(); }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("Points ended and wrote nothing"));
  EXPECT_FALSE(onGui([&] { return program.window->session().isRunning(); }));
}

TEST(MainWindow, OpensADrawingByItsCommand) {
  ProgramWindow program{QString()};
  program.enter("open " + kExample.toStdString());
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }));
}

TEST(MainWindow, WritesTheProjectionReportThatTheCommandLineWrites) {
  ProgramWindow program;
  program.user.key(Qt::Key_R, Qt::AltModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activePopupWidget() != nullptr; }));
  program.user.key(Qt::Key_P);
  QWidget* const dialog = program.waitForNamed(host::kProjectionDialog);
  ASSERT_NE(dialog, nullptr);
  choose(program, dialog, host::kIdSites, "Valley road upgrade");
  choose(program, dialog, host::kIdAlignments, "Valley road");
  choose(program, dialog, host::kIdSampleLineGroups, "Cross sections 20 m");
  choose(program, dialog, host::kIdSurfaces, "Existing ground");
  const std::filesystem::path stem = program.folder / "road";
  program.user.click(
      onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOutputStem)); }));
  program.user.type(stem.string());
  program.user.click(onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdOk)); }));
  ASSERT_TRUE(program.waitUntilSaid("road.html"));

  // Under the same names, since the head of a report shows its own.
  std::map<std::string, std::string> written;
  for (const char* form : {"road.txt", "road.xls", "road.html"}) written[form] = fileBytes(program.folder / form);
  RunRequest request;
  request.program = test::inBuild("/bin/lvxhost");
  request.arguments = {"projection", kExample.toStdString(), "--alignment", "Valley road",
                       "--group",    "Cross sections 20 m",  "--surface",   "Existing ground",
                       "--out",      stem.string(),          "--overwrite"};
  const RunResult line = runProgram(request);
  ASSERT_EQ(line.exitCode, 0) << line.errors;
  for (const auto& [form, bytes] : written) EXPECT_TRUE(fileBytes(program.folder / form) == bytes) << form;

  // Each file stands in the console with its size and opens from there.
  const std::string said = program.said();
  for (const char* form : {"road.txt", "road.xls", "road.html"}) {
    const std::filesystem::path path = program.folder / form;
    EXPECT_NE(said.find(path.string()), std::string::npos);
    EXPECT_NE(said.find(std::to_string(std::filesystem::file_size(path)) + " bytes"), std::string::npos);
  }
  auto* const history = program.part<QTextBrowser>("consoleHistory");
  const QPoint link = onGui([&] {
    QTextCursor cursor = history->document()->find(QStringLiteral("road.txt"));
    cursor = history->document()->find(QStringLiteral("Open"), cursor);
    cursor.setPosition(cursor.anchor() + 2);
    history->setTextCursor(cursor);
    history->ensureCursorVisible();
    return history->cursorRect(cursor).center();
  });
  program.user.click(onGui([&] { return history->viewport(); }), link);
  QWidget* const viewer = program.waitForNamed("textWindow");
  ASSERT_NE(viewer, nullptr);
  EXPECT_TRUE(onGui([&] {
                return viewer->findChild<QPlainTextEdit*>(QStringLiteral("text"))->toPlainText();
              }).contains(QStringLiteral("Profile projection")));
}

TEST(MainWindow, KeepsItsSchemeAndItsLayersForTheNextStart) {
  const TemporaryFolder settings;
  desktop::DesktopOptions options;
  options.settingsFile = QString::fromStdString((settings / "kept.ini").string());
  options.scheme = desktop::Scheme::Light;
  {
    const ProgramWindow program(kExample, options);
    onGui([&] {
      program.window->findChild<QAction*>(QStringLiteral("scheme-dark"))->trigger();
      program.window->findChild<QAction*>(QStringLiteral("layer-points"))->trigger();
    });
    EXPECT_TRUE(onGui([] { return desktop::isDark(); }));
    EXPECT_FALSE(onGui([&] { return program.window->plan().look().points; }));
  }
  onGui([&] {
    desktop::DesktopOptions again;
    again.choices.bin = test::inBuild("/bin");
    again.settingsFile = options.settingsFile;
    const desktop::MainWindow window(again);
    EXPECT_TRUE(desktop::isDark());
    EXPECT_TRUE(window.findChild<QAction*>(QStringLiteral("scheme-dark"))->isChecked());
    EXPECT_FALSE(window.findChild<QAction*>(QStringLiteral("layer-points"))->isChecked());
    desktop::applyScheme(desktop::Scheme::Light);
  });
}

TEST(MainWindow, OffersRecentDrawingsAndNotThoseThatAreGone) {
  const TemporaryFolder folder;
  const QString kept = copyOfExample(folder, "kept.xml");
  const QString gone = copyOfExample(folder, "gone.xml");
  ProgramWindow program(gone);
  program.enter("open " + kept.toStdString());
  ASSERT_TRUE(program.waitUntilSaid("kept.xml is open"));
  std::filesystem::remove(gone.toStdString());
  program.user.key(Qt::Key_F, Qt::AltModifier);
  ASSERT_TRUE(program.user.waitFor([&] { return QApplication::activePopupWidget() != nullptr; }));
  program.user.key(Qt::Key_C);
  auto* const recent = program.part<QMenu>("recentMenu");
  ASSERT_TRUE(program.user.waitFor([&] { return recent->isVisible(); }));
  const QList<QAction*> actions = onGui([&] { return recent->actions(); });
  ASSERT_GE(actions.size(), 2);
  EXPECT_TRUE(
      onGui([&] { return actions[0]->text().contains(QStringLiteral("kept.xml")) && actions[0]->isEnabled(); }));
  EXPECT_TRUE(
      onGui([&] { return actions[1]->text().contains(QStringLiteral("gone.xml")) && !actions[1]->isEnabled(); }));
  program.user.key(Qt::Key_Escape);
  program.user.key(Qt::Key_Escape);
  program.user.key(Qt::Key_Escape);
}

/// A window from which a file can be dragged.
class FileSource final : public QWidget {
 public:
  explicit FileSource(QUrl url) : url_(std::move(url)) { setWindowFlag(Qt::WindowStaysOnTopHint); }

 protected:
  void mouseMoveEvent(QMouseEvent*) override {
    auto* const files = new QMimeData;
    files->setUrls({url_});
    auto* const drag = new QDrag(this);
    drag->setMimeData(files);
    drag->exec(Qt::CopyAction);
  }

 private:
  QUrl url_;
};

TEST(MainWindow, OpensADrawingThatIsDroppedOnIt) {
  ProgramWindow program{QString()};
  auto* const source = onGui([&] {
    auto* const made = new FileSource(QUrl::fromLocalFile(kExample));
    made->setGeometry(700, 400, 120, 80);
    made->show();
    return made;
  });
  ASSERT_TRUE(program.user.waitFor([&] { return source->isVisible(); }));
  program.user.drag(source, QPoint(60, 40), QPoint(60, 250));
  EXPECT_TRUE(program.user.waitFor([&] { return program.isOpen(); }));
  onGui([&] { delete source; });
}

TEST(MainWindow, OffersAnObjectOfTheTreeAsThePick) {
  ProgramWindow program;
  program.enter("lvx_Report_Points");
  QWidget* const dialog = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(dialog, nullptr);
  program.user.click(
      onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdPickAlignment)); }));
  auto* const prompt = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text() == QStringLiteral("Pick an alignment:"); }));
  clickTree(program, "Mill lane");
  QWidget* const again = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(program.user.waitFor([&] {
    const auto* const list = again->findChild<QComboBox*>(QStringLiteral("control%1").arg(host::kIdAlignments));
    return list != nullptr && list->count() > 0;
  }));
  EXPECT_TRUE(program.user.waitFor([&] { return prompt->text() == QStringLiteral("Command:"); }));
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("Points ended and wrote nothing"));
}

TEST(MainWindow, EscapeInTheConsoleGivesAPickUp) {
  ProgramWindow program;
  program.enter("lvx_Report_Points");
  QWidget* const dialog = program.waitForNamed(host::kPointsDialog);
  ASSERT_NE(dialog, nullptr);
  program.user.click(
      onGui([&] { return dialog->findChild<QWidget*>(QStringLiteral("control%1").arg(host::kIdPickAlignment)); }));
  auto* const prompt = program.part<QLabel>("consolePrompt");
  ASSERT_TRUE(program.user.waitFor([&] { return prompt->text() == QStringLiteral("Pick an alignment:"); }));
  program.enter("zoom");
  EXPECT_TRUE(program.waitUntilSaid("waits for a pick"));
  program.user.key(Qt::Key_Escape);
  EXPECT_NE(program.waitForNamed(host::kPointsDialog), nullptr);
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.waitUntilSaid("Points ended and wrote nothing"));
}

}  // namespace
}  // namespace lvx::test
