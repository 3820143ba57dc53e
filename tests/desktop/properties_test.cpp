// What is told of objects: the panel, its tables, the menus that lead there.
#include <QClipboard>
#include <QHeaderView>
#include <QLocale>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QToolButton>
#include <QTreeView>

#include "desktop/panels/properties_view.h"
#include "desktop/panels/value_table.h"
#include "desktop/plan/plan_view.h"
#include "program_window.h"

namespace lvx::test {
namespace {

QModelIndex treeRow(const QTreeView& view, const char* text, const QModelIndex& parent = {}) {
  for (int row = 0; row < view.model()->rowCount(parent); ++row) {
    const QModelIndex index = view.model()->index(row, 0, parent);
    if (index.data().toString().startsWith(QString::fromUtf8(text))) return index;
    if (const QModelIndex below = treeRow(view, text, index); below.isValid()) return below;
  }
  return {};
}

QPoint placeInTree(ProgramWindow& program, const char* text) {
  auto* const view = program.part<QTreeView>("treeView");
  return onGui([&] {
    const QModelIndex index = treeRow(*view, text);
    view->scrollTo(index);
    return view->visualRect(index).center();
  });
}

void clickTree(ProgramWindow& program, const char* text) {
  const QPoint place = placeInTree(program, text);
  program.user.click(
      onGui([&] { return program.window->findChild<QTreeView*>(QStringLiteral("treeView"))->viewport(); }), place);
}

std::string titleOf(const ProgramWindow& program) {
  return onGui(
      [&] { return program.window->findChild<QLabel*>(QStringLiteral("propertiesTitle"))->text().toStdString(); });
}

bool waitForTitle(ProgramWindow& program, const char* text) {
  return program.user.waitFor([&] {
    return program.window->findChild<QLabel*>(QStringLiteral("propertiesTitle"))->text() == QString::fromUtf8(text);
  });
}

QTabWidget* pages(const ProgramWindow& program) { return program.part<QTabWidget>("propertyPages"); }

desktop::ValueTable* openPage(ProgramWindow& program, int number) {
  QTabWidget* const tabs = pages(program);
  onGui([&] { tabs->setCurrentIndex(number); });
  return onGui([&] { return static_cast<desktop::ValueTable*>(tabs->widget(number)); });
}

std::string cell(const desktop::ValueTable* table, int row, const char* heading) {
  return onGui([&] {
    const QAbstractItemModel* const model = table->model();
    for (int column = 0; column < model->columnCount(); ++column)
      if (model->headerData(column, Qt::Horizontal).toString() == QString::fromUtf8(heading))
        return model->index(row, column).data().toString().toStdString();
    return std::string("no such column");
  });
}

std::string valueOf(ProgramWindow& program, const char* property) {
  return onGui([&] {
    const QAbstractItemModel* const model =
        static_cast<QTableView*>(program.window->findChild<QTabWidget*>(QStringLiteral("propertyPages"))->widget(0))
            ->model();
    for (int row = 0; row < model->rowCount(); ++row)
      if (model->index(row, 0).data().toString() == QString::fromUtf8(property))
        return model->index(row, 1).data().toString().toStdString();
    return std::string("no such row");
  });
}

void clickHeading(ProgramWindow& program, const desktop::ValueTable* table, int column) {
  const QPoint place = onGui([&] {
    const QHeaderView* const header = table->horizontalHeader();
    return QPoint(header->sectionViewportPosition(column) + 12, header->height() / 2);
  });
  program.user.click(onGui([&] { return table->horizontalHeader()->viewport(); }), place);
}

std::string clipboard() {
  return onGui([] { return QGuiApplication::clipboard()->text().toStdString(); });
}

TEST(Properties, TellOfTheDrawingUntilSomethingIsChosen) {
  ProgramWindow program;
  EXPECT_TRUE(waitForTitle(program, "Drawing")) << titleOf(program);
  EXPECT_EQ(valueOf(program, "Alignments"), "3");
  QTabWidget* const tabs = pages(program);
  EXPECT_EQ(onGui([&] { return tabs->tabText(1).toStdString(); }), "Points");
}

TEST(Properties, FollowWhatIsChosenInTheTree) {
  ProgramWindow program;
  clickTree(program, "Valley road");
  clickTree(program, "Mill lane");
  ASSERT_TRUE(waitForTitle(program, "Alignment  Mill lane")) << titleOf(program);
  clickTree(program, "Existing ground");
  ASSERT_TRUE(waitForTitle(program, "Surface  Existing ground")) << titleOf(program);
  EXPECT_NE(valueOf(program, "Mean elevation"), "no such row");
  EXPECT_GT(std::stoi(valueOf(program, "Area in plan")), 1000);
  clickTree(program, "Control points");
  ASSERT_TRUE(waitForTitle(program, "Point group  Control points")) << titleOf(program);
  const desktop::ValueTable* const points = openPage(program, 1);
  EXPECT_NE(cell(points, 0, "Offset [m]"), "");
}

TEST(Properties, SortATableByAClickOnItsHeadingAndBack) {
  ProgramWindow program;
  clickTree(program, "Control points");
  ASSERT_TRUE(waitForTitle(program, "Point group  Control points"));
  desktop::ValueTable* const points = openPage(program, 1);
  onGui([&] { points->scrollTo(points->model()->index(0, 4)); });
  const auto column = [&] {
    return onGui([&] {
      std::vector<double> values;
      for (int row = 0; row < points->model()->rowCount(); ++row)
        values.push_back(QLocale::c().toDouble(points->model()->index(row, 4).data().toString()));
      return values;
    });
  };
  const std::vector<double> given = column();
  ASSERT_GT(given.size(), 3U);
  ASSERT_FALSE(std::is_sorted(given.begin(), given.end()));
  clickHeading(program, points, 4);
  EXPECT_TRUE(program.user.waitFor([&] { return points->horizontalHeader()->isSortIndicatorShown(); }));
  std::vector<double> shown = column();
  EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end()));
  clickHeading(program, points, 4);
  EXPECT_TRUE(
      program.user.waitFor([&] { return points->horizontalHeader()->sortIndicatorOrder() == Qt::DescendingOrder; }));
  shown = column();
  EXPECT_TRUE(std::is_sorted(shown.rbegin(), shown.rend()));
  clickHeading(program, points, 4);
  EXPECT_TRUE(program.user.waitFor([&] { return !points->horizontalHeader()->isSortIndicatorShown(); }));
  EXPECT_EQ(column(), given);
}

TEST(Properties, CopyATableForASpreadsheetWholeOrItsSelectedRows) {
  ProgramWindow program;
  clickTree(program, "Mill lane");
  ASSERT_TRUE(waitForTitle(program, "Alignment  Mill lane"));
  auto* const elements = openPage(program, 1);
  const int rows = onGui([&] { return elements->model()->rowCount(); });
  program.user.click(program.part<QToolButton>("copyTable"));
  ASSERT_TRUE(program.user.waitFor([] { return QGuiApplication::clipboard()->text().contains(QLatin1Char('\t')); }));
  const QStringList lines = QString::fromStdString(clipboard()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), rows + 1);
  EXPECT_EQ(lines[0].section(QLatin1Char('\t'), 0, 3).toStdString(), "Number\tType\tStart station\tLength [m]");
  const QString point = QLocale::system().decimalPoint();
  EXPECT_EQ(lines[1].section(QLatin1Char('\t'), 0, 2).toStdString(),
            (QStringLiteral("1\tLine\t0") + point + QStringLiteral("000")).toStdString())
      << "a station is a number there";

  onGui([&] {
    elements->selectRow(1);
    elements->setFocus();
  });
  program.user.key(Qt::Key_C, Qt::ControlModifier);
  ASSERT_TRUE(program.user.waitFor(
      [] { return QGuiApplication::clipboard()->text().split(QLatin1Char('\n'), Qt::SkipEmptyParts).size() == 2; }));
  EXPECT_TRUE(clipboard().find("\n2\t") != std::string::npos) << clipboard();

  program.user.click(program.part<QToolButton>("copyText"));
  ASSERT_TRUE(program.user.waitFor([] { return !QGuiApplication::clipboard()->text().contains(QLatin1Char('\t')); }));
  EXPECT_NE(clipboard().find("0+"), std::string::npos) << clipboard();
}

TEST(Properties, ZoomToTheRowThatIsDoubleClicked) {
  ProgramWindow program;
  clickTree(program, "Control points");
  ASSERT_TRUE(waitForTitle(program, "Point group  Control points"));
  auto* const points = openPage(program, 1);
  const double east = QLocale::c().toDouble(QString::fromStdString(cell(points, 1, "Easting [m]")));
  const double north = QLocale::c().toDouble(QString::fromStdString(cell(points, 1, "Northing [m]")));
  const QPoint place = onGui([&] { return points->visualRect(points->model()->index(1, 0)).center(); });
  program.user.doubleClick(onGui([&] { return points->viewport(); }), place);
  EXPECT_TRUE(program.user.waitFor([&] {
    const civil::Vec2 centre = program.window->plan().viewport().centre();
    return std::abs(centre.x - east) < 0.01 && std::abs(centre.y - north) < 0.01;
  }));
}

TEST(Properties, OfAMillionPointsShowAndSortAtOnce) {
  ProgramWindow program;
  civil::Drawing drawing;
  constexpr int kPoints = 1'000'000;
  drawing.points.resize(kPoints);
  civil::PointGroup group;
  group.handle = 1;
  for (int i = 0; i < kPoints; ++i) {
    civil::Point& point = drawing.points[static_cast<std::size_t>(i)];
    point.handle = static_cast<civil::Handle>(i) + 10;
    point.number = i + 1;
    point.position = {static_cast<double>((i * 7919LL) % kPoints), 1.0, 2.0};
    group.numbers.push_back(i + 1);
  }
  drawing.pointGroups.push_back(std::move(group));
  const civil::DrawingIndex index(drawing);
  onGui([&] {
    desktop::PropertiesView view;
    view.resize(800, 400);
    view.QWidget::show();
    view.show(drawing, index, nullptr, 1);
    auto* const tabs = view.findChild<QTabWidget*>();
    tabs->setCurrentIndex(1);
    auto* const table = static_cast<desktop::ValueTable*>(tabs->widget(1));
    EXPECT_EQ(table->model()->rowCount(), kPoints);
    table->model()->sort(2);
    EXPECT_EQ(table->model()->index(0, 2).data().toString().toStdString(), "0.000");
    EXPECT_EQ(table->model()->index(kPoints - 1, 2).data().toString().toStdString(), "999999.000");
    view.clear();
  });
}

TEST(Properties, ComeByTheMenuOfTheTreeWhichZoomsToo) {
  ProgramWindow program;
  onGui([&] { program.window->findChild<QDockWidget*>(QStringLiteral("propertiesDock"))->hide(); });
  auto* const tree = program.part<QTreeView>("treeView");
  const QPoint place = placeInTree(program, "Mill lane");
  program.user.click(onGui([&] { return tree->viewport(); }), place, Qt::RightButton);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  const QStringList names = onGui([] {
    QStringList found;
    for (const QAction* const action : QApplication::activePopupWidget()->actions()) found << action->objectName();
    return found;
  });
  EXPECT_EQ(names.value(0).toStdString(), "menuProperties") << names.join(QLatin1Char(' ')).toStdString();
  EXPECT_EQ(names.value(1).toStdString(), "menuZoom");
  onGui([] { QApplication::activePopupWidget()->actions().at(0)->trigger(); });
  program.user.key(Qt::Key_Escape);
  EXPECT_TRUE(program.user.waitFor([&] {
    return !program.window->findChild<QDockWidget*>(QStringLiteral("propertiesDock"))->visibleRegion().isEmpty();
  }));
  EXPECT_TRUE(waitForTitle(program, "Alignment  Mill lane")) << titleOf(program);
}

TEST(Properties, CoordinatesAreCopiedByTheMenuOfThePlan) {
  ProgramWindow program;
  auto* const plan = onGui([&] { return &program.window->plan(); });
  const QPoint pixel(5, 5);
  const civil::Vec2 there = onGui([&] { return plan->viewport().toDrawing({5.5, 5.5}); });
  program.user.click(plan, pixel, Qt::RightButton);
  ASSERT_TRUE(program.user.waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  onGui([] {
    QWidget* const menu = QApplication::activePopupWidget();
    for (QAction* const action : menu->actions())
      if (action->objectName() == QLatin1String("menuCopyCoordinates")) action->trigger();
    menu->close();
  });
  ASSERT_TRUE(program.user.waitFor([] { return QGuiApplication::clipboard()->text().contains(QLatin1Char('\t')); }));
  const QString text =
      QString::fromStdString(clipboard()).replace(QLocale::system().decimalPoint(), QStringLiteral("."));
  EXPECT_NEAR(QLocale::c().toDouble(text.section(QLatin1Char('\t'), 0, 0)), there.x, 5.0);
  EXPECT_NEAR(QLocale::c().toDouble(text.section(QLatin1Char('\t'), 1, 1)), there.y, 5.0);
}

TEST(Properties, ForgetTheDrawingThatWasClosedAndFollowEdits) {
  const TemporaryFolder folder;
  const QString drawing = copyOfExample(folder);
  ProgramWindow program(drawing);
  clickTree(program, "Mill lane");
  ASSERT_TRUE(waitForTitle(program, "Alignment  Mill lane"));
  program.user.key(Qt::Key_F5);
  // The same object again, of the drawing that was read anew.
  EXPECT_TRUE(program.user.waitFor([&] {
    auto* const view = program.window->findChild<desktop::PropertiesView*>();
    const auto& open = program.window->session().drawing();
    return open && view->handle() != 0 && open->index().byHandle(view->handle()).has_value();
  }));
  EXPECT_TRUE(waitForTitle(program, "Alignment  Mill lane")) << titleOf(program);
}

}  // namespace
}  // namespace lvx::test
