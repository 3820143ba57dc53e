#include "desktop/dialogs/boxes.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeView>
#include <atomic>
#include <fstream>
#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "desktop/common/file_boxes.h"
#include "desktop/dialogs/dialog_runner.h"
#include "desktop_user/desktop_user.h"
#include "running_dialog.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using host::BoxAnswer;
using host::BoxButtons;
using host::BoxIcon;

/// Something that asks on the windows' thread, as a command does.
template <class Answer>
class Asking {
 public:
  explicit Asking(std::function<Answer()> ask) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [this, ask = std::move(ask)] {
          answer_ = ask();
          isOver_ = true;
        },
        Qt::QueuedConnection);
  }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;
  ~Asking() {
    if (isOver_) return;
    onGui([] { desktop::QtDialogRunner::closeAll(); });
    while (!isOver_) onGui([] {});
    onGui([] { desktop::QtDialogRunner::reopen(); });
  }
  [[nodiscard]] bool isOver() const { return isOver_; }
  /// Throws std::bad_optional_access while nobody has answered.
  Answer answer(const DesktopUser& user) {
    user.waitFor([this] { return isOver_.load(); });
    return isOver_ ? answer_.value() : std::optional<Answer>().value();
  }

 private:
  std::optional<Answer> answer_;
  std::atomic<bool> isOver_ = false;
};

class BoxesTest : public testing::Test {
 protected:
  BoxesTest() {
    onGui([this] {
      QGuiApplication::setApplicationDisplayName(QStringLiteral("Vantor Lorvix"));
      main_ = new QWidget;
      main_->setWindowTitle(QStringLiteral("Main"));
      main_->setGeometry(100, 80, 500, 400);
      main_->show();
    });
  }
  ~BoxesTest() override {
    onGui([this] { delete main_; });
  }

  std::unique_ptr<Asking<BoxAnswer>> ask(BoxButtons buttons, BoxIcon icon,
                                         const QString& text = QStringLiteral("Is <b>this</b> & that plain?")) {
    return std::make_unique<Asking<BoxAnswer>>(
        [this, buttons, icon, text] { return desktop::showMessageBox(main_, text, buttons, icon); });
  }
  std::unique_ptr<Asking<std::optional<QString>>> askPath(std::uint32_t flags = host::kHideReadOnly) {
    return std::make_unique<Asking<std::optional<QString>>>([this, flags] {
      return desktop::askSavePath(main_, QStringLiteral("Text (*.txt)|*.txt|Pages|*.html;*.htm|All files (*.*)|*.*||"),
                                  flags);
    });
  }
  /// The window of that object name, once it has the keyboard.
  template <class Widget>
  Widget* active(const char* name) {
    QWidget* found = nullptr;
    user_.waitFor([&] {
      QWidget* const window = QApplication::activeWindow();
      if (window != nullptr && window->isVisible() && window->objectName() == QLatin1String(name)) found = window;
      return found != nullptr;
    });
    return static_cast<Widget*>(found);
  }

  DesktopUser user_;
  QWidget* main_ = nullptr;
};

// ---------------------------------------------------------------- message boxes

TEST_F(BoxesTest, AnswerWhatTheButtonsSayByMouseAndByKeyboard) {
  struct Row {
    BoxButtons buttons;
    std::optional<QMessageBox::StandardButton> clicked;
    std::optional<Qt::Key> key;
    BoxAnswer expected;
  };
  const Row rows[] = {
      {BoxButtons::Ok, QMessageBox::Ok, {}, BoxAnswer::Ok},
      {BoxButtons::Ok, {}, Qt::Key_Return, BoxAnswer::Ok},
      {BoxButtons::Ok, {}, Qt::Key_Escape, BoxAnswer::Ok},
      {BoxButtons::YesNo, QMessageBox::Yes, {}, BoxAnswer::Yes},
      {BoxButtons::YesNo, QMessageBox::No, {}, BoxAnswer::No},
      {BoxButtons::YesNo, {}, Qt::Key_Return, BoxAnswer::Yes},
      {BoxButtons::YesNo, {}, Qt::Key_Escape, BoxAnswer::No},
      {BoxButtons::RetryCancel, QMessageBox::Retry, {}, BoxAnswer::Retry},
      {BoxButtons::RetryCancel, QMessageBox::Cancel, {}, BoxAnswer::Cancel},
      {BoxButtons::RetryCancel, {}, Qt::Key_Return, BoxAnswer::Retry},
      {BoxButtons::RetryCancel, {}, Qt::Key_Escape, BoxAnswer::Cancel},
  };
  int number = 0;
  for (const Row& row : rows) {
    SCOPED_TRACE(number++);
    const auto asking = ask(row.buttons, BoxIcon::Question);
    auto* const box = active<QMessageBox>("messageBox");
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(onGui([&] { return box->windowTitle().startsWith(QStringLiteral("Vantor Lorvix")); }));
    if (row.clicked) user_.click(onGui([&] { return box->button(*row.clicked); }));
    if (row.key) user_.key(*row.key);
    EXPECT_EQ(asking->answer(user_), row.expected);
  }
}

TEST_F(BoxesTest, ShowTheirIconAndTheirTextAsPlainTextThatCanBeCopied) {
  const std::pair<BoxIcon, QMessageBox::Icon> icons[] = {{BoxIcon::None, QMessageBox::NoIcon},
                                                         {BoxIcon::Stop, QMessageBox::Critical},
                                                         {BoxIcon::Question, QMessageBox::Question},
                                                         {BoxIcon::Warning, QMessageBox::Warning}};
  for (const auto& [icon, shown] : icons) {
    const auto asking = ask(BoxButtons::Ok, icon, QStringLiteral("<b>word</b>"));
    auto* const box = active<QMessageBox>("messageBox");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(onGui([&] { return box->icon(); }), shown);
    auto* const label = onGui([&] { return box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label")); });
    ASSERT_NE(label, nullptr);
    user_.doubleClick(
        label, onGui([&] { return QPoint(label->fontMetrics().horizontalAdvance(u'<') + 30, label->height() / 2); }));
    EXPECT_TRUE(user_.waitFor([&] { return label->hasSelectedText(); }));
    user_.key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(user_.waitFor([] {
      return QStringLiteral("<b>word</b>").contains(QApplication::clipboard()->text()) &&
             !QApplication::clipboard()->text().isEmpty();
    }));
    user_.key(Qt::Key_Escape);
    asking->answer(user_);
  }
}

TEST_F(BoxesTest, KeepALongPathOnTheScreen) {
  const QString path = QStringLiteral("/a-folder-with-a-name").repeated(30) + QStringLiteral("/road.txt");
  const auto asking =
      ask(BoxButtons::YesNo, BoxIcon::Warning, path + QStringLiteral("\nalready exists. Overwrite it?"));
  auto* const box = active<QMessageBox>("messageBox");
  ASSERT_NE(box, nullptr);
  if (const char* folder = std::getenv("LVX_SCREENSHOTS"))
    onGui([&] { box->grab().save(QString::fromUtf8(folder) + QStringLiteral("/longbox.png")); });
  onGui([&] {
    EXPECT_LE(box->width(), 1000);
    const auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    EXPECT_LE(label->heightForWidth(label->width()), label->height()) << "no line is cut";
    EXPECT_EQ(label->text(), path + QStringLiteral("\nalready exists. Overwrite it?"));
  });
  user_.key(Qt::Key_Escape);
  EXPECT_EQ(asking->answer(user_), BoxAnswer::No);
}

TEST_F(BoxesTest, GiveUpWhenTheProgramEnds) {
  const std::pair<BoxButtons, BoxAnswer> kinds[] = {{BoxButtons::Ok, BoxAnswer::Ok},
                                                    {BoxButtons::YesNo, BoxAnswer::No},
                                                    {BoxButtons::RetryCancel, BoxAnswer::Cancel}};
  for (const auto& [buttons, answer] : kinds) {
    const auto asking = ask(buttons, BoxIcon::Stop);
    ASSERT_NE(active<QMessageBox>("messageBox"), nullptr);
    onGui([] { desktop::QtDialogRunner::closeAll(); });
    EXPECT_EQ(asking->answer(user_), answer);
    // Those that come now aren't even shown.
    EXPECT_EQ(onGui([&, kind = buttons] { return desktop::showMessageBox(main_, {}, kind, BoxIcon::Stop); }), answer);
    EXPECT_FALSE(onGui([&] { return desktop::askSavePath(main_, {}, 0).has_value(); }));
    onGui([] { desktop::QtDialogRunner::reopen(); });
  }
  const auto path = askPath();
  ASSERT_NE(active<QFileDialog>("saveBox"), nullptr);
  onGui([] { desktop::QtDialogRunner::closeAll(); });
  EXPECT_FALSE(path->answer(user_).has_value());
  onGui([] { desktop::QtDialogRunner::reopen(); });
}

// ---------------------------------------------------------------- file box

TEST(NameFilters, TakeTheFrameworksPairs) {
  struct Row {
    const char* filter;
    QStringList expected;
  };
  const Row rows[] = {
      {"", {}},
      {"||", {}},
      {"Text (*.txt)|*.txt||", {QStringLiteral("Text (*.txt)")}},
      {"Text|*.txt||", {QStringLiteral("Text (*.txt)")}},
      {"All (*.*)|*.*||", {QStringLiteral("All (*)")}},
      {"Two|*.a; *.b|All|*.*||", {QStringLiteral("Two (*.a *.b)"), QStringLiteral("All (*)")}},
      {"Cut short|*.a|No pattern", {QStringLiteral("Cut short (*.a)")}},
      {"Maps (old)|*.map|", {QStringLiteral("Maps (old) (*.map)")}},
  };
  for (const Row& row : rows)
    EXPECT_EQ(desktop::nameFilters(QString::fromUtf8(row.filter)), row.expected) << row.filter;
}

class SaveBoxTest : public BoxesTest {
 protected:
  SaveBoxTest() {
    for (const char* name : {"old.txt", "page.html", "page2.htm", "bare"}) std::ofstream(folder_ / name) << name;
    onGui([this] { desktop::setDrawingFolder(folder()); });
  }
  ~SaveBoxTest() override {
    onGui([] { desktop::setDrawingFolder({}); });
  }
  [[nodiscard]] QString folder() const {
    return QFileInfo(QString::fromStdString(folder_.path().string())).canonicalFilePath();
  }
  [[nodiscard]] QString at(const char* name) const { return folder() + u'/' + QString::fromUtf8(name); }

  TemporaryFolder folder_;
};

TEST_F(SaveBoxTest, GivesTheTypedPathWithoutAddingAnExtensionOrAskingAboutAFileThatIsThere) {
  for (const char* name : {"new name", "road.xyz", "old.txt"}) {
    SCOPED_TRACE(name);
    const auto asking = askPath();
    ASSERT_NE(active<QFileDialog>("saveBox"), nullptr);
    user_.type(name);
    user_.key(Qt::Key_Return);
    EXPECT_EQ(asking->answer(user_), at(name));
  }
  EXPECT_FALSE(QFileInfo::exists(at("road.xyz"))) << "nothing is made";
}

TEST_F(SaveBoxTest, ShowsTheFilesOfTheChosenFilter) {
  const auto asking = askPath();
  auto* const box = active<QFileDialog>("saveBox");
  ASSERT_NE(box, nullptr);
  const auto names = [&] {
    // What stands in the list, whatever its view.
    QStringList found;
    const auto* view = box->findChild<QAbstractItemView*>(QStringLiteral("listView"));
    const QModelIndex root = view->rootIndex();
    for (int row = 0; row < view->model()->rowCount(root); ++row)
      found += view->model()->index(row, 0, root).data().toString();
    found.sort();
    return found.join(u' ').toStdString();
  };
  EXPECT_TRUE(user_.waitFor([&] { return names() == "old.txt"; })) << onGui(names);
  auto* const filters = onGui([&] { return box->findChild<QComboBox*>(QStringLiteral("fileTypeCombo")); });
  ASSERT_NE(filters, nullptr);
  user_.click(filters);
  user_.key(Qt::Key_Down);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return names() == "page.html page2.htm"; })) << onGui(names);
  user_.click(filters);
  user_.key(Qt::Key_Down);
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return names() == "bare old.txt page.html page2.htm"; })) << onGui(names);
  user_.key(Qt::Key_Escape);
  EXPECT_FALSE(asking->answer(user_).has_value());
}

TEST_F(SaveBoxTest, AsksAboutAFileThatIsNotThereWhereTheCommandWantsThat) {
  const auto asking = askPath(host::kHideReadOnly | host::kPromptCreate);
  ASSERT_NE(active<QFileDialog>("saveBox"), nullptr);
  user_.type("new.txt");
  user_.key(Qt::Key_Return);
  auto* const question = active<QMessageBox>("messageBox");
  ASSERT_NE(question, nullptr);
  EXPECT_TRUE(onGui([&] { return question->text().startsWith(at("new.txt")); }));
  user_.key(Qt::Key_Escape);
  ASSERT_NE(active<QFileDialog>("saveBox"), nullptr) << "No returns to the box";
  EXPECT_FALSE(asking->isOver());
  user_.key(Qt::Key_Return);
  ASSERT_NE(active<QMessageBox>("messageBox"), nullptr);
  user_.key(Qt::Key_Return);
  EXPECT_EQ(asking->answer(user_), at("new.txt"));

  const auto again = askPath(host::kHideReadOnly | host::kPromptCreate);
  ASSERT_NE(active<QFileDialog>("saveBox"), nullptr);
  user_.type("old.txt");
  user_.key(Qt::Key_Return);
  EXPECT_EQ(again->answer(user_), at("old.txt")) << "a file that is there is nobody's question here";
}

TEST_F(SaveBoxTest, StartsInTheFolderOfTheLastChoiceElseOfTheDrawingElseInTheUsersOwn) {
  QDir(folder()).mkdir(QStringLiteral("below"));
  {
    const auto asking = askPath();
    ASSERT_NE(active<QFileDialog>("saveBox"), nullptr);
    user_.type("below/x.txt");
    user_.key(Qt::Key_Return);
    EXPECT_EQ(asking->answer(user_), at("below/x.txt"));
  }
  EXPECT_EQ(onGui([] { return desktop::startFolder(desktop::FilePurpose::Report); }), at("below"));
  {
    const auto asking = askPath();
    auto* const box = active<QFileDialog>("saveBox");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(onGui([&] { return box->directory().absolutePath(); }), at("below"));
    user_.key(Qt::Key_Escape);
    EXPECT_FALSE(asking->answer(user_).has_value());
  }
  QDir(folder()).rmdir(QStringLiteral("below"));
  const auto expectStartIn = [&](const QString& start) {
    const auto asking = askPath();
    auto* const box = active<QFileDialog>("saveBox");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(onGui([&] { return box->directory().absolutePath(); }), start);
    user_.key(Qt::Key_Escape);
    EXPECT_FALSE(asking->answer(user_).has_value());
  };
  expectStartIn(folder());
  onGui([] { desktop::setDrawingFolder({}); });
  expectStartIn(QDir::homePath());
}

TEST_F(SaveBoxTest, TakesAFolderInItsWayAsAStep) {
  QDir(folder()).mkdir(QStringLiteral("below"));
  const auto asking = askPath();
  auto* const box = active<QFileDialog>("saveBox");
  ASSERT_NE(box, nullptr);
  user_.type("below");
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return box->directory().absolutePath() == at("below"); }));
  EXPECT_FALSE(asking->isOver());
  // The first may be the completion's, which offers what lies in the folder.
  for (int presses = 0; presses < 3 && !asking->isOver(); ++presses) {
    user_.key(Qt::Key_Escape);
    user_.waitFor([&] { return asking->isOver(); }, std::chrono::seconds(1));
  }
  EXPECT_FALSE(asking->answer(user_).has_value());
}

}  // namespace
}  // namespace lvx::test
