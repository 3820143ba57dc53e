#include "desktop/panels/help_window.h"

#include <QAction>
#include <QDesktopServices>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "desktop_user/desktop_user.h"
#include "scheme_palettes.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {

/// Takes what would go to the user's browser.
class UrlKeeper final : public QObject {
  Q_OBJECT

 public:
  QUrl opened;
  Q_INVOKABLE void open(const QUrl& url) { opened = url; }
};

namespace {

using desktop::HelpWindow;

constexpr wchar_t kTopic[] = L"Vantor Lorvix Extension.chm::/project-resources/LVX_015_002.html";

class HelpWindowTest : public testing::Test {
 protected:
  ~HelpWindowTest() override {
    onGui([this] { help_.reset(); });
  }
  void make(const std::string& folder = test::inSource("/help/en")) {
    onGui([&] { help_ = std::make_unique<HelpWindow>(folder); });
  }
  bool showTopic(const framework::CString& topic) {
    const bool found = onGui([&] { return help_->showTopic(topic); });
    user_.waitFor([&] { return help_->isActiveWindow(); });
    return found;
  }
  template <class Widget>
  [[nodiscard]] Widget* part(const char* name) const {
    return onGui([&] { return help_->findChild<Widget*>(QLatin1String(name)); });
  }
  [[nodiscard]] std::string page() const {
    return onGui(
        [&] { return help_->findChild<QTextBrowser*>(QStringLiteral("helpPage"))->source().fileName().toStdString(); });
  }
  bool waitForPage(const std::string& name) {
    return user_.waitFor([&] {
      return help_->findChild<QTextBrowser*>(QStringLiteral("helpPage"))->source().fileName().toStdString() == name;
    });
  }
  /// Shows the notice's text; empty while there is none.
  [[nodiscard]] std::string notice() const {
    return onGui([&] {
      const auto* label = help_->findChild<QLabel*>(QStringLiteral("helpNotice"));
      return label->isVisible() ? label->text().toStdString() : std::string();
    });
  }
  void press(const char* action) {
    auto* const button = onGui([&]() -> QWidget* {
      auto* const wanted = help_->findChild<QAction*>(QLatin1String(action));
      return help_->findChild<QToolBar*>()->widgetForAction(wanted);
    });
    user_.click(button);
  }
  /// Clicks on the first link of the page whose text holds `text`.
  void clickLink(const QString& text) {
    auto* const browser = part<QTextBrowser>("helpPage");
    const QPoint place = onGui([&] {
      QTextCursor cursor = browser->document()->find(text);
      browser->setTextCursor(cursor);
      browser->ensureCursorVisible();
      cursor.setPosition(cursor.selectionStart() + 1);
      return browser->cursorRect(cursor).center();
    });
    user_.click(onGui([&] { return browser->viewport(); }), place);
  }

  DesktopUser user_;
  std::unique_ptr<HelpWindow> help_;
};

TEST_F(HelpWindowTest, OpensAtTheTopicAndListsAllPagesInTheOrderOfTheContents) {
  make();
  EXPECT_TRUE(showTopic(kTopic));
  EXPECT_EQ(page(), "LVX_015_002.html");
  EXPECT_EQ(notice(), "");
  auto* const contents = part<QListWidget>("helpContents");
  onGui([&] {
    QStringList titles;
    for (int row = 0; row < contents->count(); ++row) titles += contents->item(row)->text();
    EXPECT_EQ(titles.join(u'|').toStdString(),
              "Reports for road designers|Profile projection|Points|GLS report|The window");
    EXPECT_EQ(contents->currentRow(), 2);
    EXPECT_TRUE(help_->windowTitle().contains(QStringLiteral("Points")));
  });
  EXPECT_TRUE(showTopic(L"C:\\Somewhere\\Vantor Lorvix Extension.chm::/project-resources/LVX_015_001.html"))
      << "whatever folder the help file was found in";
  EXPECT_EQ(page(), "LVX_015_001.html");
}

TEST_F(HelpWindowTest, GoesBackForwardAndHomeByItsTools) {
  make();
  showTopic(kTopic);
  auto* const contents = part<QListWidget>("helpContents");
  user_.click(onGui([&] { return contents->viewport(); }),
              onGui([&] { return contents->visualItemRect(contents->item(3)).center(); }));
  EXPECT_TRUE(waitForPage("LVX_015_003.html"));
  press("helpBack");
  EXPECT_TRUE(waitForPage("LVX_015_002.html"));
  EXPECT_EQ(onGui([&] { return contents->currentRow(); }), 2);
  press("helpForward");
  EXPECT_TRUE(waitForPage("LVX_015_003.html"));
  press("helpHome");
  EXPECT_TRUE(waitForPage("index.html"));
  clickLink(QStringLiteral("Profile projection"));
  EXPECT_TRUE(waitForPage("LVX_015_001.html"));
  clickLink(QStringLiteral("All reports"));
  EXPECT_TRUE(waitForPage("index.html"));
  user_.key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_TRUE(waitForPage("LVX_015_001.html"));
}

TEST_F(HelpWindowTest, ShowsThePicturesOfThePages) {
  make();
  showTopic(kTopic);
  auto* const browser = part<QTextBrowser>("helpPage");
  onGui([&] {
    int pictures = 0;
    for (QTextBlock block = browser->document()->begin(); block.isValid(); block = block.next())
      for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
        if (!piece.fragment().charFormat().isImageFormat()) continue;
        ++pictures;
        const QString name = piece.fragment().charFormat().toImageFormat().name();
        const QVariant found = browser->document()->resource(QTextDocument::ImageResource, QUrl(name));
        EXPECT_TRUE(!QImage::fromData(found.toByteArray()).isNull() || !found.value<QImage>().isNull())
            << name.toStdString();
      }
    EXPECT_GE(pictures, 4);
  });
}

TEST_F(HelpWindowTest, FindsInThePageAndRoundItsEnd) {
  make();
  showTopic(kTopic);
  auto* const browser = part<QTextBrowser>("helpPage");
  user_.key(Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(user_.waitFor([&] { return help_->findChild<QLineEdit*>(QStringLiteral("helpFind"))->hasFocus(); }));
  user_.type("alignment");
  user_.key(Qt::Key_Return);
  const auto found = [&] { return onGui([&] { return browser->textCursor().selectionStart(); }); };
  const auto text = [&] { return browser->textCursor().selectedText().toLower().toStdString(); };
  EXPECT_TRUE(user_.waitFor([&] { return text() == "alignment"; }));
  const int first = found();
  user_.key(Qt::Key_F3);
  EXPECT_GT(found(), first);
  user_.key(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(found(), first);
  user_.key(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_GT(found(), first) << "before the first comes the last";
  user_.key(Qt::Key_Return);
  EXPECT_EQ(found(), first);
  user_.key(Qt::Key_A, Qt::ControlModifier);
  user_.type("nowhere");
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] {
    return help_->findChild<QLabel*>(QStringLiteral("helpFindResult"))->text() == QStringLiteral("Not found");
  }));
}

TEST_F(HelpWindowTest, MakesItsTextLargerAndSmaller) {
  make();
  showTopic(kTopic);
  auto* const browser = part<QTextBrowser>("helpPage");
  const auto height = [&] { return onGui([&] { return browser->document()->size().height(); }); };
  const double before = height();
  user_.key(Qt::Key_Equal, Qt::ControlModifier);
  press("helpLarger");
  const double larger = height();
  EXPECT_GT(larger, before);
  user_.key(Qt::Key_Minus, Qt::ControlModifier);
  press("helpSmaller");
  EXPECT_NEAR(height(), before, 1.0);
}

TEST_F(HelpWindowTest, SaysSoOverItsContentsWhereTheTopicHasNoPage) {
  make();
  for (const wchar_t* topic : {L"Vantor Lorvix Extension.chm::/project-resources/LVX_099.html",
                               L"Vantor Lorvix Extension.chm::/../../README.html", L"", L"other.chm::/a.html"}) {
    EXPECT_FALSE(showTopic(topic));
    EXPECT_EQ(page(), "index.html");
    EXPECT_NE(notice(), "");
  }
  clickLink(QStringLiteral("GLS report"));
  EXPECT_TRUE(waitForPage("LVX_015_003.html"));
  EXPECT_EQ(notice(), "") << "the next page needs no notice";
}

TEST_F(HelpWindowTest, SaysThatTheHelpIsNotThereWhereItsFolderIsMissing) {
  make("/nowhere/help/en");
  EXPECT_FALSE(showTopic(kTopic));
  EXPECT_TRUE(onGui([&] { return help_->isVisible(); }));
  EXPECT_NE(notice().find("/nowhere/help/en"), std::string::npos) << notice();
}

TEST_F(HelpWindowTest, ReadsNothingOutsideTheHelpAndOpensAddressesOfTheWebOutside) {
  TemporaryFolder folder;
  const std::filesystem::path pages = folder / "help" / "en";
  std::filesystem::create_directories(pages / "project-resources");
  std::ofstream(folder / "secret.html") << "<p>secret</p>";
  std::ofstream(pages / "index.html") << "<title>Contents</title><p><a href=\"../../secret.html\">outwards</a></p>"
                                         "<p><a href=\"https://example.invalid/\">web</a></p>"
                                         "<p><a href=\"file:///etc/passwd\">file</a></p>"
                                         "<p><a href=\"project-resources/gone.html\">gone</a></p>";
  make(pages.string());
  onGui([&] { help_->showContents(); });
  ASSERT_TRUE(waitForPage("index.html"));
  user_.waitFor([&] { return help_->isActiveWindow(); });
  for (const char* link : {"outwards", "file", "gone"}) {
    clickLink(QString::fromUtf8(link));
    EXPECT_EQ(page(), "index.html") << link;
    EXPECT_NE(notice(), "") << link;
  }

  auto* const handler = onGui([] {
    auto* made = new UrlKeeper;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), made, "open");
    return made;
  });
  clickLink(QStringLiteral("web"));
  EXPECT_TRUE(user_.waitFor([&] { return handler->opened == QUrl(QStringLiteral("https://example.invalid/")); }));
  onGui([&] {
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    delete handler;
  });
}

TEST_F(HelpWindowTest, IsRaisedWhereItIsOpenAndComesBackWhereItWasClosed) {
  make();
  showTopic(kTopic);
  QWidget* const other = onGui([] {
    auto* widget = new QWidget;
    widget->setWindowTitle(QStringLiteral("Other"));
    widget->resize(1200, 800);
    widget->show();
    widget->activateWindow();
    return widget;
  });
  ASSERT_NE(user_.waitForActiveWindow(QStringLiteral("Other")), nullptr);
  showTopic(kTopic);
  EXPECT_TRUE(user_.waitFor([&] { return help_->isActiveWindow(); }));
  user_.key(Qt::Key_Escape);
  EXPECT_TRUE(user_.waitFor([&] { return !help_->isVisible(); }));
  showTopic(kTopic);
  EXPECT_TRUE(user_.waitFor([&] { return help_->isVisible() && help_->isActiveWindow(); }));
  onGui([&] { delete other; });
}

TEST_F(HelpWindowTest, ReadsWellInALightAndADarkScheme) {
  make();
  showTopic(kTopic);
  auto* const browser = part<QTextBrowser>("helpPage");
  for (const bool dark : {true, false}) {
    useScheme(dark);
    onGui([&] {
      EXPECT_EQ(browser->source().fileName(), QStringLiteral("LVX_015_002.html"));
      const QColor paper = browser->palette().color(QPalette::Base);
      int checked = 0;
      for (QTextBlock block = browser->document()->begin(); block.isValid(); block = block.next()) {
        const QBrush behind = block.blockFormat().background();
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
          const QBrush own = piece.fragment().charFormat().foreground();
          const QBrush ink = own.style() == Qt::NoBrush ? browser->palette().text() : own;
          const QColor under = behind.style() == Qt::NoBrush ? paper : behind.color();
          EXPECT_GT(std::abs(ink.color().lightness() - under.lightness()), 80)
              << piece.fragment().text().toStdString() << ' ' << dark;
          ++checked;
        }
      }
      EXPECT_GT(checked, 10);
    });
    if (const char* folder = std::getenv("LVX_SCREENSHOTS"))
      onGui([&] { help_->grab().save(QString::fromUtf8(folder) + (dark ? "/help-dark.png" : "/help-light.png")); });
  }
}

}  // namespace
}  // namespace lvx::test

#include "help_window_test.moc"
