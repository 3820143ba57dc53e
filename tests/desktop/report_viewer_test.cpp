#include "desktop/panels/report_viewer.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPrinterInfo>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/panels/file_lines.h"
#include "desktop/panels/report_printing.h"
#include "desktop_user/desktop_user.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

TEST(ReportViewer, ShowsAPageAsABrowserDoes) {
  const DesktopUser user;
  const TemporaryFolder folder;
  std::ofstream(folder / "page.html") << "<html><body>Rise 0.90&#37<br />R&#38;D<table border=\"1\"><tr>" << [] {
    std::string cells;
    for (int column = 0; column < 40; ++column) cells += "<td>2+000.000</td>";
    return cells;
  }() << "</tr></table></body></html>";
  const QString failure =
      onGui([&] { return desktop::openReport(QString::fromStdString((folder / "page.html").string()), {}, nullptr); });
  EXPECT_EQ(failure.toStdString(), "");
  QWidget* const window = user.waitForActiveWindow(QStringLiteral("page.html"));
  ASSERT_NE(window, nullptr);
  auto* const page = onGui([&] { return window->findChild<QTextBrowser*>(QStringLiteral("page")); });
  const std::string text = onGui([&] { return page->toPlainText().toStdString(); });
  EXPECT_NE(text.find("Rise 0.90%\nR&D\n"), std::string::npos) << text;
  EXPECT_GT(onGui([&] { return page->horizontalScrollBar()->maximum(); }), 0) << "numbers are broken to fit";
  onGui([&] { window->close(); });
}

/// A text report that is open, by its golden file.
class OpenReport {
 public:
  explicit OpenReport(const std::string& golden) {
    const std::string file = (folder / "report.txt").string();
    std::filesystem::copy_file(test::inSource("/tests/golden/" + golden + "/expected.txt"), file);
    EXPECT_EQ(onGui([&] { return desktop::openReport(QString::fromStdString(file), {}, nullptr); }).toStdString(), "");
    window = user.waitForActiveWindow(QStringLiteral("report.txt"));
  }
  OpenReport(const OpenReport&) = delete;
  OpenReport& operator=(const OpenReport&) = delete;
  ~OpenReport() {
    onGui([this] { window->close(); });
  }
  template <class Widget>
  Widget* part(const char* name) {
    return onGui([&] { return window->findChild<Widget*>(QLatin1String(name)); });
  }
  std::string found() {
    return onGui([&] { return window->findChild<QLabel*>(QStringLiteral("findTold"))->text().toStdString(); });
  }

  DesktopUser user;
  TemporaryFolder folder;
  QWidget* window = nullptr;
};

TEST(ReportViewer, ShowsEachTextReportAsATableToo) {
  struct Case {
    const char* golden;
    int columns;
    const char* heading;
    const char* first;
  };
  const Case cases[] = {{"points/two-points", 10, "Easting", "1000.500"},
                        {"gls/compound-clothoids", 20, "Station", "0+025.000"},
                        {"projection/sl1", 4, "Station", "0+120.000"}};
  for (const Case& row : cases) {
    OpenReport report(row.golden);
    SCOPED_TRACE(row.golden);
    auto* const pages = report.part<QTabWidget>("textPages");
    EXPECT_EQ(onGui([&] { return pages->currentIndex(); }), 0) << "the text comes first";
    onGui([&] { pages->setCurrentIndex(1); });
    auto* const table = report.part<QTableView>("reportTable");
    EXPECT_EQ(onGui([&] { return table->model()->columnCount(); }), row.columns);
    EXPECT_EQ(onGui([&] { return table->model()->headerData(1, Qt::Horizontal).toString().toStdString(); }),
              row.heading);
    EXPECT_EQ(onGui([&] { return table->model()->index(0, 1).data().toString().toStdString(); }), row.first);
  }
}

TEST(ReportViewer, FindsForwardsAndBackwardsAndCounts) {
  OpenReport report("points/two-points");
  report.user.key(Qt::Key_F, Qt::ControlModifier);
  auto* const edit = report.part<QLineEdit>("findEdit");
  ASSERT_TRUE(report.user.waitFor([&] { return edit->hasFocus(); }));
  report.user.type("axis");
  report.user.key(Qt::Key_Return);
  auto* const text = report.part<QPlainTextEdit>("text");
  ASSERT_TRUE(report.user.waitFor([&] { return text->textCursor().selectedText() == QStringLiteral("Axis"); }));
  EXPECT_EQ(report.found(), "1 of 2");
  const int first = onGui([&] { return text->textCursor().blockNumber(); });
  report.user.key(Qt::Key_F3);
  ASSERT_TRUE(report.user.waitFor([&] { return text->textCursor().blockNumber() == first + 1; }));
  EXPECT_EQ(report.found(), "2 of 2");
  report.user.key(Qt::Key_F3, Qt::ShiftModifier);
  ASSERT_TRUE(report.user.waitFor([&] { return text->textCursor().blockNumber() == first; }));
  onGui([&] { edit->setText(QStringLiteral("nowhere")); });
  report.user.key(Qt::Key_Return);
  EXPECT_TRUE(report.user.waitFor([&] {
    return report.window->findChild<QLabel*>(QStringLiteral("findTold"))->text() == QStringLiteral("Not found");
  }));
  report.user.key(Qt::Key_Escape);
  EXPECT_TRUE(report.user.waitFor([&] { return !edit->isVisible(); }));
  EXPECT_TRUE(onGui([&] { return report.window->isVisible(); })) << "the first Escape closes the line alone";
}

/// Turns to the table, which is made then, and looks for a text in it. Null where the line to type in doesn't come.
QTableView* findInTable(OpenReport& report, const std::string& text) {
  auto* const pages = report.part<QTabWidget>("textPages");
  onGui([&] { pages->setCurrentIndex(1); });
  auto* const table = report.part<QTableView>("reportTable");
  report.user.key(Qt::Key_F, Qt::ControlModifier);
  auto* const edit = report.part<QLineEdit>("findEdit");
  if (!report.user.waitFor([&] { return edit->hasFocus(); })) return nullptr;
  report.user.type(text);
  report.user.key(Qt::Key_Return);
  return table;
}

TEST(ReportViewer, FindsInATableByItsRows) {
  OpenReport report("projection/sl1");
  QTableView* const table = findInTable(report, "SL2");
  ASSERT_NE(table, nullptr);
  EXPECT_TRUE(report.user.waitFor([&] { return table->currentIndex().row() == 5; }));
  EXPECT_EQ(report.found(), "1 of 5");
}

TEST(ReportViewer, GoesOnInTheOrderThatShowsOnceATableIsSorted) {
  OpenReport report("projection/sl1");
  QTableView* const table = findInTable(report, "SL2");
  ASSERT_NE(table, nullptr);
  ASSERT_TRUE(report.user.waitFor([&] { return table->currentIndex().row() == 5; }));
  const auto rowText = [&] {
    QString text;
    for (int column = 0; column < table->model()->columnCount(); ++column)
      text += table->currentIndex().siblingAtColumn(column).data().toString() + QLatin1Char('|');
    return text;
  };
  const QString first = onGui(rowText);
  // By station, the largest first: what was found lies elsewhere.
  onGui([&] {
    Q_EMIT table->horizontalHeader()->sectionClicked(1);
    Q_EMIT table->horizontalHeader()->sectionClicked(1);
  });
  ASSERT_EQ(onGui(rowText), first) << "the row that was found stays the present one";
  EXPECT_EQ(report.found(), "") << "which of them it is isn't known any more";
  const int from = onGui([&] { return table->currentIndex().row(); });
  const auto hits = onGui([&] {
    std::vector<int> rows;
    for (int row = 0; row < table->model()->rowCount(); ++row)
      for (int column = 0; column < table->model()->columnCount(); ++column)
        if (table->model()->index(row, column).data().toString().contains(QStringLiteral("SL2"))) rows.push_back(row);
    return rows;
  });
  ASSERT_EQ(hits.size(), 5U);
  auto at = static_cast<std::size_t>(std::find(hits.begin(), hits.end(), from) - hits.begin());
  ASSERT_LT(at, hits.size());
  for (int press = 0; press < 5; ++press) {
    at = (at + 1) % hits.size();
    report.user.key(Qt::Key_F3);
    EXPECT_TRUE(report.user.waitFor([&] { return table->currentIndex().row() == hits[at]; }))
        << onGui([&] { return table->currentIndex().row(); }) << " in place of " << hits[at];
    EXPECT_EQ(report.found(), std::to_string(at + 1) + " of 5");
  }
  report.user.key(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_TRUE(report.user.waitFor([&] { return table->currentIndex().row() == hits[(at + 4) % 5]; }));
}

TEST(ReportViewer, FindsTextBehindWhatShows) {
  const TemporaryFolder folder;
  const QString file = QString::fromStdString((folder / "long.txt").string());
  {
    std::ofstream out(file.toStdString(), std::ios::binary);
    for (int i = 1; i <= 30'000; ++i) out << (i % 10'000 == 0 ? "a place here\r\n" : "line\r\n");
  }
  const auto found = desktop::findInFile(file, QStringLiteral("PLACE"));
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].line, 10'000U);
  EXPECT_EQ(found[2].line, 30'000U);
  EXPECT_EQ(found[2].column, 2);
  EXPECT_EQ(desktop::findInFile(file, QStringLiteral("line"), desktop::decodeUtf8OrLatin1, 100).size(), 100U);
  EXPECT_TRUE(desktop::findInFile(file, QString()).empty());
  EXPECT_TRUE(desktop::findInFile(QStringLiteral("/nowhere"), QStringLiteral("line")).empty());
}

TEST(ReportViewer, PrintsAPdfDocumentWholeOrNotAtAll) {
  const DesktopUser user;
  const TemporaryFolder folder;
  const std::string file = (folder / "report.pdf").string();
  int left = 200;
  const desktop::PaintPages paint = [&](QPagedPaintDevice& paper) {
    return desktop::paintLines(paper, QStringLiteral("report.txt"), 190, [&](QString& line) {
      line = QStringLiteral("|  SL1   |  0+025.000|");
      return left-- > 0;
    });
  };
  EXPECT_EQ(onGui([&] {
              return desktop::savePdf(QString::fromStdString(file), QStringLiteral("report.txt"), true, paint);
            }).toStdString(),
            "");
  const std::string bytes = fileBytes(file);
  EXPECT_TRUE(bytes.starts_with("%PDF-")) << bytes.substr(0, 8);
  EXPECT_NE(bytes.find("%%EOF"), std::string::npos);
  EXPECT_EQ(left, -1);
  const QString nowhere = QStringLiteral("/nowhere/report.pdf");
  left = 10;
  const std::string trouble =
      onGui([&] { return desktop::savePdf(nowhere, QStringLiteral("report.txt"), true, paint).toStdString(); });
  EXPECT_NE(trouble.find("/nowhere/report.pdf can't be written"), std::string::npos) << trouble;
}

TEST(ReportViewer, TellsWhatToDoWithoutAPrinter) {
  if (onGui([] { return !QPrinterInfo::availablePrinterNames().isEmpty(); })) GTEST_SKIP() << "there is a printer here";
  OpenReport report("points/two-points");
  report.user.key(Qt::Key_P, Qt::ControlModifier);
  ASSERT_TRUE(report.user.waitFor([] {
    const QWidget* const box = QApplication::activeModalWidget();
    return box != nullptr && box->objectName() == QStringLiteral("noPrinter");
  }));
  const std::string words =
      onGui([] { return static_cast<QMessageBox*>(QApplication::activeModalWidget())->text().toStdString(); });
  EXPECT_NE(words.find("has no printer"), std::string::npos) << words;
  report.user.key(Qt::Key_Escape);
  EXPECT_TRUE(report.user.waitFor([] { return QApplication::activeModalWidget() == nullptr; }));
}

TEST(ReportViewer, TellsOfAFileThatIsGone) {
  const std::string failure =
      onGui([] { return desktop::openReport(QStringLiteral("/nowhere/road.html"), {}, nullptr).toStdString(); });
  EXPECT_NE(failure.find("/nowhere/road.html isn't there any more"), std::string::npos) << failure;
}

}  // namespace
}  // namespace lvx::test
