// The console: history, the line in which commands are typed, its completion, its links.
#include <QAbstractItemView>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QTextBrowser>
#include <QUrl>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/panels/console_view.h"
#include "desktop_user/desktop_user.h"

namespace lvx::test {
namespace {

using desktop::ConsoleView;

class Console : public testing::Test {
 protected:
  Console() {
    onGui([this] {
      view = new ConsoleView;
      view->setWindowTitle(QStringLiteral("Console"));
      view->resize(600, 300);
      view->setCommands(
          {QStringLiteral("lvx_Report_Points"), QStringLiteral("lvx_Report_Que"), QStringLiteral("ZOOM")});
      QObject::connect(view, &ConsoleView::entered, view, [this](const QString& text) { entered << text; });
      QObject::connect(view, &ConsoleView::enteredNothing, view, [this] { ++empty; });
      QObject::connect(view, &ConsoleView::escaped, view, [this] { ++escapes; });
      QObject::connect(view, &ConsoleView::linkActivated, view, [this](const QUrl& url) { link = url; });
      edit = view->findChild<QLineEdit*>(QStringLiteral("consoleEdit"));
      view->show();
    });
    EXPECT_NE(user.waitForActiveWindow(QStringLiteral("Console")), nullptr);
    user.click(edit);
  }
  ~Console() override {
    onGui([this] { delete view; });
  }
  [[nodiscard]] std::string line() const {
    return onGui([this] { return edit->text().toStdString(); });
  }

  DesktopUser user;
  ConsoleView* view = nullptr;
  QLineEdit* edit = nullptr;
  QStringList entered;
  QUrl link;
  int empty = 0;
  int escapes = 0;
};

TEST_F(Console, TakesACommandWithEnterAndEmptiesItsLine) {
  user.type("zoom");
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return entered == QStringList{QStringLiteral("zoom")}; }));
  EXPECT_EQ(line(), "");
}

TEST_F(Console, OffersCommandsWhateverTheCaseAndWhereverTheWordStands) {
  user.type("points");
  ASSERT_TRUE(user.waitFor([&] { return edit->completer()->popup()->isVisible(); }));
  user.key(Qt::Key_Down);
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return edit->text() == QStringLiteral("lvx_Report_Points"); })) << line();
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return entered.value(0) == QStringLiteral("lvx_Report_Points"); }));
}

TEST_F(Console, BringsBackWhatWasTypedBeforeAndTheUnfinishedLine) {
  for (const char* text : {"first", "second"}) {
    user.type(text);
    user.key(Qt::Key_Return);
  }
  user.type("thi");
  user.key(Qt::Key_Up);
  EXPECT_EQ(line(), "second");
  user.key(Qt::Key_Up);
  EXPECT_EQ(line(), "first");
  user.key(Qt::Key_Up);
  EXPECT_EQ(line(), "first");
  user.key(Qt::Key_Down);
  user.key(Qt::Key_Down);
  EXPECT_EQ(line(), "thi");
}

TEST_F(Console, EscapeEmptiesTheLineFirstAndTellsThen) {
  user.type("xyz");
  user.key(Qt::Key_Escape);
  EXPECT_EQ(line(), "");
  EXPECT_EQ(onGui([&] { return escapes; }), 0);
  user.key(Qt::Key_Escape);
  EXPECT_TRUE(user.waitFor([&] { return escapes == 1; }));
}

TEST_F(Console, TellsAnEnterOnAnEmptyLine) {
  user.key(Qt::Key_Return);
  EXPECT_TRUE(user.waitFor([&] { return empty == 1 && entered.isEmpty(); }));
}

TEST_F(Console, ShowsThePromptOfAPickInFrontOfItsLine) {
  const auto prompt = [&] {
    return onGui([&] { return view->findChild<QLabel*>(QStringLiteral("consolePrompt"))->text().toStdString(); });
  };
  EXPECT_EQ(prompt(), "Command:");
  onGui([&] { view->setPrompt(QStringLiteral("Pick an alignment: ")); });
  EXPECT_EQ(prompt(), "Pick an alignment:");
  onGui([&] { view->setPrompt({}); });
  EXPECT_EQ(prompt(), "Command:");
}

TEST_F(Console, PrintsTextAsItIsAndNoLineForABareLineFeed) {
  onGui([&] {
    view->print(QStringLiteral("\n"));
    view->print(QStringLiteral("a <b>name</b> & more\n"));
    view->print(QStringLiteral("two\nlines"));
  });
  EXPECT_EQ(onGui([&] { return view->history().toStdString(); }), "a <b>name</b> & more\ntwo\nlines");
}

TEST_F(Console, TellsAClickOnALink) {
  onGui([&] { view->printHtml(QStringLiteral("<a href=\"lvx:open?file=x\">Open the file that was written</a>")); });
  auto* const history = onGui([&] { return view->findChild<QTextBrowser*>(QStringLiteral("consoleHistory")); });
  const QPoint place = onGui([&] {
    QTextCursor cursor(history->document());
    cursor.setPosition(8);
    return history->cursorRect(cursor).center();
  });
  user.click(onGui([&] { return history->viewport(); }), place);
  EXPECT_TRUE(user.waitFor([&] { return link.toString() == QStringLiteral("lvx:open?file=x"); }));
}

}  // namespace
}  // namespace lvx::test
