// The list of what the reader found odd, and the window that shows a line of a file.
#include <QAbstractItemModel>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTextBlock>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/panels/diagnostics_view.h"
#include "desktop/panels/file_lines.h"
#include "desktop/panels/text_window.h"
#include "desktop_user/desktop_user.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using desktop::DiagnosticsView;
using desktop::FileLines;
using desktop::readLines;

void write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}
QString toPath(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

// ---------------------------------------------------------------- the table

class Diagnostics : public testing::Test {
 protected:
  Diagnostics() {
    drawing.path = "/somewhere/road.xml";
    drawing.diagnostics = {{civil::Severity::Warning, "alignment 'A': a gap", 118},
                           {civil::Severity::Note, "alignment 'B': a note", 7},
                           {civil::Severity::Error, "surface 'G': a hole", 0}};
    onGui([this] {
      view = new DiagnosticsView;
      view->setWindowTitle(QStringLiteral("Diagnostics window"));
      view->resize(700, 300);
      QObject::connect(view, &DiagnosticsView::titleChanged, view, [this](const QString& text) { title = text; });
      QObject::connect(view, &DiagnosticsView::lineWanted, view, [this](quint32, quint64 wanted) { line = wanted; });
      view->setDrawing(&drawing);
      table = view->findChild<QTableView*>(QStringLiteral("diagnosticsTable"));
      view->show();
    });
    EXPECT_NE(user.waitForActiveWindow(QStringLiteral("Diagnostics window")), nullptr);
  }
  ~Diagnostics() override {
    onGui([this] { delete view; });
  }
  [[nodiscard]] std::vector<std::string> rows() const {
    return onGui([this] {
      std::vector<std::string> found;
      for (int row = 0; row < table->model()->rowCount(); ++row) {
        std::string text;
        for (int column = 0; column < table->model()->columnCount(); ++column)
          text += (column > 0 ? "|" : "") + table->model()->index(row, column).data().toString().toStdString();
        found.push_back(text);
      }
      return found;
    });
  }

  civil::Drawing drawing;
  DesktopUser user;
  DiagnosticsView* view = nullptr;
  QTableView* table = nullptr;
  QString title;
  quint64 line = 0;
};

TEST_F(Diagnostics, StandInTheOrderOfTheFileWithTheirPlace) {
  EXPECT_EQ(rows(),
            (std::vector<std::string>{"Error|road.xml|surface 'G': a hole", "Note|road.xml:7|alignment 'B': a note",
                                      "Warning|road.xml:118|alignment 'A': a gap"}));
  EXPECT_EQ(title, QStringLiteral("Diagnostics (2)"));
}

TEST_F(Diagnostics, AreFilteredBySeverityAndByWords) {
  auto* const severity = onGui([&] { return view->findChild<QComboBox*>(QStringLiteral("diagnosticsSeverity")); });
  user.click(severity);
  user.key(Qt::Key_Down);
  user.key(Qt::Key_Return);
  ASSERT_TRUE(user.waitFor([&] { return table->model()->rowCount() == 2; }));
  user.click(onGui([&] { return view->findChild<QLineEdit*>(QStringLiteral("diagnosticsFilter")); }));
  user.type("HOLE");
  ASSERT_TRUE(user.waitFor([&] { return table->model()->rowCount() == 1; }));
  EXPECT_EQ(rows().front(), "Error|road.xml|surface 'G': a hole");
}

TEST_F(Diagnostics, AreCopiedAsTheyShow) {
  user.click(onGui([&] { return view->findChild<QWidget*>(QStringLiteral("diagnosticsCopy")); }));
  EXPECT_TRUE(user.waitFor([] { return QApplication::clipboard()->text().count(QLatin1Char('\n')) == 3; }));
  EXPECT_TRUE(onGui([] {
                return QApplication::clipboard()->text();
              }).contains(QStringLiteral("Warning\troad.xml:118\talignment 'A': a gap\n")));
}

TEST_F(Diagnostics, ADoubleClickAsksForTheLine) {
  const QPoint place = onGui([&] { return table->visualRect(table->model()->index(2, 2)).center(); });
  user.doubleClick(onGui([&] { return table->viewport(); }), place);
  EXPECT_TRUE(user.waitFor([&] { return line == 118; }));
}

TEST_F(Diagnostics, SayThatThereIsNothing) {
  onGui([&] { view->setDrawing(nullptr); });
  EXPECT_EQ(title, QStringLiteral("Diagnostics"));
  EXPECT_TRUE(onGui([&] { return view->findChild<QLabel*>(QStringLiteral("diagnosticsNothing"))->isVisible(); }));
}

// ---------------------------------------------------------------- lines of files

TEST(FileLines, AreReadFromTheLineOn) {
  const TemporaryFolder folder;
  write(folder / "a.txt", "one\r\ntwo\nthree\n\nfive");
  const FileLines all = readLines(toPath(folder / "a.txt"), 1, 100);
  EXPECT_EQ(all.lines, (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"), QString(),
                                    QStringLiteral("five")}));
  EXPECT_FALSE(all.more);
  const FileLines some = readLines(toPath(folder / "a.txt"), 2, 2);
  EXPECT_EQ(some.first, 2U);
  EXPECT_EQ(some.lines, (QStringList{QStringLiteral("two"), QStringLiteral("three")}));
  EXPECT_TRUE(some.more);
}

TEST(FileLines, AreTheLastOnesWhereTheFileIsShorter) {
  const TemporaryFolder folder;
  write(folder / "a.txt", "1\n2\n3\n4\n5\n");
  const FileLines found = readLines(toPath(folder / "a.txt"), 99, 2);
  EXPECT_EQ(found.first, 4U);
  EXPECT_EQ(found.lines, (QStringList{QStringLiteral("4"), QStringLiteral("5")}));
  EXPECT_FALSE(found.more);
}

TEST(FileLines, OfAnEmptyFileAreNone) {
  const TemporaryFolder folder;
  write(folder / "a.txt", "");
  const FileLines found = readLines(toPath(folder / "a.txt"), 3, 2);
  EXPECT_TRUE(found.lines.isEmpty());
  EXPECT_TRUE(found.problem.isEmpty());
}

TEST(FileLines, AreCutWhereTheyAreTooLongToShow) {
  const TemporaryFolder folder;
  write(folder / "a.txt", std::string(3'000'000, 'x') + "\nnext\n");
  const FileLines found = readLines(toPath(folder / "a.txt"), 1, 10);
  ASSERT_EQ(found.lines.size(), 2);
  EXPECT_EQ(found.lines[0].size(), desktop::kLongestShown + 1);
  EXPECT_EQ(found.lines[1], QStringLiteral("next"));
}

TEST(FileLines, TakeBytesThatAreNoUtf8AsLatin1) {
  const TemporaryFolder folder;
  write(folder / "a.txt", "H\xf6he\nH\xc3\xb6he\n");
  EXPECT_EQ(readLines(toPath(folder / "a.txt"), 1, 10).lines,
            (QStringList{QStringLiteral("Höhe"), QStringLiteral("Höhe")}));
}

TEST(FileLines, TellWhyAFileCantBeRead) {
  EXPECT_FALSE(readLines(QStringLiteral("/nowhere/a.txt"), 1, 10).problem.isEmpty());
}

TEST(TextWindow, ShowsALineOfALargeFileMarkedAndGoesOnFromThere) {
  const TemporaryFolder folder;
  std::string text;
  for (int line = 1; line <= 100'000; ++line) text += "line " + std::to_string(line) + "\n";
  write(folder / "large.xml", text);
  const DesktopUser user;
  auto* const window = onGui([&] {
    auto* const made = new desktop::TextWindow(toPath(folder / "large.xml"), 50'000);
    made->show();
    return made;
  });
  auto* const view = onGui([&] { return window->findChild<QPlainTextEdit*>(QStringLiteral("text")); });
  EXPECT_EQ(onGui([&] { return view->textCursor().block().text(); }), QStringLiteral("line 50000"));
  EXPECT_LT(onGui([&] { return view->blockCount(); }), 5000);
  ASSERT_NE(user.waitForActiveWindow(QStringLiteral("line 50000")), nullptr);
  DesktopUser hand;
  hand.click(onGui([&] { return window->findChild<QPushButton*>(QStringLiteral("later")); }));
  EXPECT_TRUE(hand.waitFor([&] { return view->document()->firstBlock().text() == QStringLiteral("line 51000"); }));
  hand.click(onGui([&] { return window->findChild<QPushButton*>(QStringLiteral("earlier")); }));
  EXPECT_TRUE(hand.waitFor([&] { return view->document()->firstBlock().text() == QStringLiteral("line 49000"); }));
  hand.key(Qt::Key_Escape);
  EXPECT_TRUE(hand.waitFor([] {
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->objectName() == QStringLiteral("textWindow") && top->isVisible()) return false;
    return true;
  }));
}

}  // namespace
}  // namespace lvx::test
