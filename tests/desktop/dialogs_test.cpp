#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleOption>
#include <QTextBrowser>
#include <QToolTip>
#include <QWindow>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/dialogs/template_dialog.h"
#include "dialogs/dialog_services.h"
#include "dialogs/picture.h"
#include "gls/add_sections_dialog.h"
#include "gls/gls_dialog.h"
#include "host/dialog_controls.h"
#include "points/points_dialog.h"
#include "projection/projection_dialog.h"
#include "report_dialogs.h"
#include "running_dialog.h"
#include "scheme_palettes.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

/// The four dialogs over one drawing.
struct Dialogs {
  explicit Dialogs(const std::string& language) {
    host.fake.useMessages(language);
    host.user.language = language;
  }
  [[nodiscard]] std::vector<host::DialogBehaviour*> all() { return {&projection, &points, &gls, &question}; }

  WindowedHost host;
  ReportDrawing drawing{host};
  projection::CMyDialog1 projection{host};
  points::CExportPointsDlg points{host};
  gls::CMyDialog3 gls{host};
  gls::CMyDialog4 question{host};
};

// ---------------------------------------------------------------- as a person sees them

/// Where LVX_SCREENSHOTS names a folder, people find pictures of all dialogs there.
void keepPicture(QWidget* window, const std::string& name) {
  const char* folder = std::getenv("LVX_SCREENSHOTS");
  if (folder == nullptr) return;
  const QString ratio = QString::number(onGui([&] { return window->devicePixelRatioF(); }));
  onGui([&] { window->grab().save(QString::fromStdString(std::string(folder) + '/' + name + '-') + ratio + ".png"); });
}

/// What a control has room for, and what its caption takes.
struct Room {
  QSize given;
  QSize taken;
};

Room roomOf(const QWidget* widget, host::ControlKind kind, const CString& text) {
  const QFontMetrics metrics(widget->font());
  const QString caption = desktop::toQt(text);
  const QSize taken = metrics.size(Qt::TextShowMnemonic, caption);
  QStyleOptionButton option;
  option.initFrom(widget);
  switch (kind) {
    case host::ControlKind::CheckBox:
      return {widget->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, widget).size(), taken};
    case host::ControlKind::PushButton:
    case host::ControlKind::DefaultButton:
      return {widget->style()->subElementRect(QStyle::SE_PushButtonContents, &option, widget).size(), taken};
    case host::ControlKind::Label:
      if (widget->height() < 2 * metrics.height()) return {widget->size(), taken};
      return {widget->size(),
              metrics.boundingRect(widget->rect(), Qt::TextWordWrap | Qt::TextShowMnemonic, caption).size()};
    default:
      return {widget->size(), taken};
  }
}

TEST(ReportDialogs, StandAtTheirDialogUnitsWithNoTextCutInAnyLanguageAndScheme) {
  DesktopUser user;
  desktop::QtDialogRunner runner;
  int seen = 0;
  for (const bool dark : {false, true}) {
    useScheme(dark);
    for (const std::string language : {"en", "de"}) {
      Dialogs dialogs(language);
      for (host::DialogBehaviour* dialog : dialogs.all()) {
        const host::DialogTemplate& made = dialog->dialogTemplate();
        SCOPED_TRACE(std::string(made.name) + ' ' + language);
        RunningDialog running(runner, *dialog);
        QWidget* const window = running.window(user);
        ASSERT_NE(window, nullptr) << running.code(user);
        keepPicture(window, std::string(made.name) + '-' + language + (dark ? "-dark" : "-light"));
        onGui([&] {
          const QFontMetricsF metrics(window->font());
          EXPECT_EQ(window->font().pointSize(), 8);
          const double across =
              metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) / 52 /
              4;
          const double down = std::ceil(metrics.height()) / 8;
          EXPECT_EQ(window->size(), QSize(qRound(made.width * across), qRound(made.height * down)));
          EXPECT_EQ(window->minimumSize(), window->maximumSize());
          for (const host::ControlTemplate& control : made.controls) {
            SCOPED_TRACE(control.id);
            const auto* widget = window->findChild<QWidget*>(QStringLiteral("control%1").arg(control.id));
            ASSERT_NE(widget, nullptr);
            const int height =
                control.kind == host::ControlKind::DropDownList ? 13 : control.rectangle.height;  // closed
            QRect expected(QPoint(qRound(control.rectangle.x * across), qRound(control.rectangle.y * down)),
                           QPoint(qRound((control.rectangle.x + control.rectangle.width) * across) - 1,
                                  qRound((control.rectangle.y + height) * down) - 1));
            if (const auto* const label = qobject_cast<const QLabel*>(widget);
                label != nullptr && label->buddy() != nullptr)
              // At the height of the text that it stands before.
              expected.moveCenter({expected.center().x(), label->buddy()->geometry().center().y()});
            EXPECT_EQ(widget->geometry(), expected);
            if (control.kind == host::ControlKind::Picture || control.kind == host::ControlKind::PictureButton ||
                control.kind == host::ControlKind::DropDownList || control.kind == host::ControlKind::EditBox)
              continue;
            const auto* as = dynamic_cast<const host::DialogWindow*>(window);
            const Room room = roomOf(widget, control.kind, as->text(control.id));
            EXPECT_LE(room.taken.width(), room.given.width());
            EXPECT_LE(room.taken.height(), widget->height());
            ++seen;
          }
        });
        user.key(Qt::Key_Escape);
        EXPECT_EQ(running.code(user), host::kIdCancel);
      }
    }
  }
  EXPECT_EQ(seen, 4 * (12 + 13 + 13 + 4));
  useScheme(false);
}

// ---------------------------------------------------------------- worked by mouse and keyboard

using gls::CMyDialog3;
using gls::CMyDialog4;
using points::CExportPointsDlg;
using projection::CMyDialog1;

class ReportDialogTest : public testing::Test {
 protected:
  ReportDialogTest() {
    onGui([this] {
      main_ = new QWidget;
      main_->setWindowTitle(QStringLiteral("Main"));
      main_->setGeometry(100, 80, 500, 400);
      main_->show();
    });
  }
  ~ReportDialogTest() override {
    running_.reset();
    onGui([this] {
      dialogs_.host.user.closeHelp();
      delete main_;
    });
  }

  void open(host::DialogBehaviour& dialog) {
    running_.reset();
    running_ = std::make_unique<RunningDialog>(runner_, dialog, main_);
    window_ = running_->window(user_);
    ASSERT_NE(window_, nullptr) << running_->code(user_);
  }
  [[nodiscard]] QWidget* control(int id) const { return running_->control(id); }
  [[nodiscard]] int code() { return running_->code(user_); }

  /// Rows of a list as a person sees them, the selected one in brackets.
  [[nodiscard]] std::string rows(int id) const {
    return onGui([&] {
      const auto* list = running_->control<QComboBox>(id);
      QString text;
      for (int row = 0; row < list->count(); ++row) {
        if (row > 0) text += u'|';
        text += row == list->currentIndex() ? u'[' + list->itemText(row) + u']' : list->itemText(row);
      }
      return text.toStdString();
    });
  }
  /// Opens a list by the mouse and clicks on a row.
  void choose(int id, const QString& text) {
    auto* const list = running_->control<QComboBox>(id);
    user_.click(list);
    ASSERT_TRUE(user_.waitFor([&] { return list->view()->isVisible(); }));
    const QPoint place =
        onGui([&] { return list->view()->visualRect(list->model()->index(list->findText(text), 0)).center(); });
    user_.click(onGui([&] { return list->view()->viewport(); }), place);
    ASSERT_TRUE(user_.waitFor([&] { return !list->view()->isVisible() && list->currentText() == text; }));
  }
  [[nodiscard]] bool isTicked(int id) const {
    return look([&] { return running_->control<QCheckBox>(id)->isChecked(); });
  }
  [[nodiscard]] bool isOkEnabled() const {
    return onGui([&] { return running_->control(host::kIdOk)->isEnabled(); });
  }
  /// Presses Tab until the control has the focus.
  void tabTo(int id) {
    for (int presses = 0; presses < 40; ++presses) {
      if (onGui([&] { return running_->control(id)->hasFocus(); })) return;
      user_.key(Qt::Key_Tab);
    }
    ADD_FAILURE() << "no tab leads to " << id;
  }
  /// The numbers through which the focus goes, once round.
  [[nodiscard]] std::vector<int> tabOrder() {
    const auto focused = [] {
      const QWidget* const widget = QApplication::focusWidget();
      return widget == nullptr ? 0 : widget->objectName().mid(7).toInt();
    };
    std::vector<int> order;
    user_.waitFor([&] { return focused() != 0; });
    const int first = onGui(focused);
    int now = first;
    do {
      order.push_back(now);
      user_.key(Qt::Key_Tab);
      now = onGui(focused);
    } while (now != first && order.size() < 40);
    return order;
  }
  /// The controls of a template that take the focus, but for a disabled OK.
  [[nodiscard]] static std::vector<int> focusOrder(const host::DialogTemplate& made) {
    std::vector<int> order;
    for (const host::ControlTemplate& each : made.controls)
      if (each.startsEnabled && each.kind != host::ControlKind::Label && each.kind != host::ControlKind::Picture &&
          each.kind != host::ControlKind::GroupBox)
        order.push_back(each.id);
    return order;
  }
  void typeStem(const std::string& stem) {
    user_.click(control(host::kIdOutputStem));
    user_.key(Qt::Key_A, Qt::ControlModifier);
    user_.type(stem);
  }
  [[nodiscard]] std::string stem() const {
    return look([&] { return running_->control<QLineEdit>(host::kIdOutputStem)->text().toStdString(); });
  }
  /// What every report dialog does alike.
  void expectCommonHabits(host::DialogBehaviour& dialog, const char* page);

  Dialogs dialogs_{"en"};
  desktop::QtDialogRunner runner_;
  DesktopUser user_;
  std::unique_ptr<RunningDialog> running_;
  QWidget* main_ = nullptr;
  QWidget* window_ = nullptr;
};

void ReportDialogTest::expectCommonHabits(host::DialogBehaviour& dialog, const char* page) {
  // Tab order, forms by access key and by mouse.
  open(dialog);
  EXPECT_EQ(tabOrder(), focusOrder(dialog.dialogTemplate()));
  const std::pair<int, Qt::Key> forms[] = {
      {host::kIdCheckAscii, Qt::Key_A}, {host::kIdCheckExcel, Qt::Key_E}, {host::kIdCheckHtml, Qt::Key_T}};
  for (const auto& [id, key] : forms) {
    EXPECT_TRUE(isTicked(id));
    user_.key(key, Qt::AltModifier);
    EXPECT_TRUE(user_.waitFor([&] { return !isTicked(id); }));  // the button is seen to go down first
    user_.click(control(id), QPoint(8, 8));
    EXPECT_TRUE(isTicked(id));
    user_.key(Qt::Key_Space);
    EXPECT_FALSE(isTicked(id));
  }

  // The tip shows the stem as the dialog opened with it.
  user_.moveTo(control(host::kIdOutputStem), QPoint(20, 8));
  EXPECT_FALSE(user_.waitFor([] { return QToolTip::isVisible(); }, std::chrono::milliseconds(1200)))
      << "an empty stem has no tip";

  // The file box, by keyboard alone: the stem loses the extension, the tip has all of it.
  TemporaryFolder folder;
  const std::string path = (folder / "road.html.txt").string();
  const std::string chosenStem = (folder / "road").string();
  tabTo(host::kIdOutputFileBox);
  user_.key(Qt::Key_Space);
  QWidget* box = nullptr;
  ASSERT_TRUE(user_.waitFor([&] {
    box = QApplication::activeWindow();
    return box != nullptr && box->objectName() == QStringLiteral("saveBox");
  }));
  const auto filters = onGui([&] { return static_cast<QFileDialog*>(box)->nameFilters(); });
  EXPECT_EQ(filters.size(), 4);
  EXPECT_EQ(filters.front(), QStringLiteral("ASCII text (*.txt)"));
  user_.type(path);
  user_.key(Qt::Key_Return);
  ASSERT_TRUE(user_.waitFor([&] {
    const QWidget* const active = QApplication::activeWindow();
    return active != nullptr && active->objectName() == QStringLiteral("messageBox");
  })) << "the file isn't there yet";
  user_.key(Qt::Key_Return);
  EXPECT_TRUE(user_.waitFor([&] { return stem() == chosenStem; })) << stem();
  EXPECT_TRUE(user_.waitFor([&] { return QApplication::activeWindow() == window_; }));
  user_.moveTo(control(host::kIdOutputStem), QPoint(30, 9));
  user_.moveTo(control(host::kIdOutputStem), QPoint(32, 10));
  EXPECT_TRUE(user_.waitFor([&] { return QToolTip::isVisible() && QToolTip::text().toStdString() == path; }));
  user_.moveTo(window_, QPoint(3, 3));

  // Escape leaves the file box without a change; by the mouse this time.
  user_.click(control(host::kIdOutputFileBox));
  ASSERT_TRUE(user_.waitFor([&] {
    box = QApplication::activeWindow();
    return box != nullptr && box->objectName() == QStringLiteral("saveBox");
  }));
  EXPECT_EQ(onGui([&] { return static_cast<QFileDialog*>(box)->directory().absolutePath().toStdString(); }),
            QFileInfo(QString::fromStdString(folder.path().string())).absoluteFilePath().toStdString())
      << "it starts where the last choice was";
  user_.key(Qt::Key_Escape);
  EXPECT_TRUE(user_.waitFor([&] { return QApplication::activeWindow() == window_; }));
  EXPECT_EQ(stem(), chosenStem);

  // Help opens at the dialog's page and can be scrolled and closed while the dialog waits.
  user_.key(Qt::Key_H, Qt::AltModifier);
  QWidget* help = nullptr;
  ASSERT_TRUE(user_.waitFor([&] {
    help = QApplication::activeWindow();
    return help != nullptr && help->objectName() == QStringLiteral("helpWindow");
  }));
  auto* const text = onGui([&] { return help->findChild<QTextBrowser*>(QStringLiteral("helpPage")); });
  EXPECT_TRUE(onGui([&] { return text->source().fileName().toStdString(); }) == page);
  user_.moveTo(onGui([&] { return text->viewport(); }), QPoint(100, 100));
  user_.wheel(-3);
  EXPECT_TRUE(user_.waitFor([&] { return text->verticalScrollBar()->value() > 0; }));
  user_.key(Qt::Key_Escape);
  EXPECT_TRUE(user_.waitFor([&] { return !help->isVisible(); }));
  EXPECT_FALSE(running_->isOver()) << "that Escape was the help's";

  // The pick of an alignment, by keyboard; after it everything is ticked again and the stem stands.
  user_.click(window_, QPoint(3, 3));
  tabTo(host::kIdPickAlignment);
  user_.key(Qt::Key_Return);
  EXPECT_EQ(code(), host::kIdPickAlignment);
  open(dialog);
  for (const auto& form : forms) EXPECT_TRUE(isTicked(form.first));
  EXPECT_EQ(stem(), chosenStem);
  user_.moveTo(control(host::kIdOutputStem), QPoint(30, 9));
  user_.moveTo(control(host::kIdOutputStem), QPoint(33, 10));
  EXPECT_TRUE(user_.waitFor([&] { return QToolTip::isVisible() && QToolTip::text().toStdString() == chosenStem; }));

  // Three ways out.
  user_.key(Qt::Key_Escape);
  EXPECT_EQ(code(), host::kIdCancel);
  open(dialog);
  user_.click(control(host::kIdCancel));
  EXPECT_EQ(code(), host::kIdCancel);
  open(dialog);
  const int bar = onGui([&] { return window_->windowHandle()->frameMargins().top(); });
  user_.click(window_, QPoint(onGui([&] { return window_->width(); }) - bar / 2, -bar / 2));
  EXPECT_EQ(code(), host::kIdCancel);
}

TEST_F(ReportDialogTest, TheProjectionDialogHasTheHabitsOfAllReportDialogs) {
  expectCommonHabits(dialogs_.projection, "LVX_015_001.html");
}
TEST_F(ReportDialogTest, ThePointsDialogHasTheHabitsOfAllReportDialogs) {
  expectCommonHabits(dialogs_.points, "LVX_015_002.html");
}
TEST_F(ReportDialogTest, TheGlsDialogHasTheHabitsOfAllReportDialogs) {
  expectCommonHabits(dialogs_.gls, "LVX_015_003.html");
}

TEST_F(ReportDialogTest, TheProjectionDialogIsFilledInByTheMouse) {
  CMyDialog1& dialog = dialogs_.projection;
  open(dialog);
  EXPECT_EQ(onGui([&] { return window_->windowTitle().toStdString(); }), "Profile projection");
  EXPECT_EQ(rows(host::kIdSites), "North|South|[*No site*]");
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "");
  typeStem("/r/x");
  EXPECT_FALSE(isOkEnabled()) << "the axis outside any site has no lines";
  choose(host::kIdSites, QStringLiteral("South"));
  EXPECT_EQ(rows(host::kIdAlignments), "[B1]");
  EXPECT_TRUE(isOkEnabled());
  choose(host::kIdSites, QStringLiteral("North"));
  EXPECT_EQ(rows(host::kIdAlignments), "[A1]|A2");
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "[A1 lines]|A1 fine");
  choose(host::kIdAlignments, QStringLiteral("A2"));
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "A2 lines") << "a change of alignment selects no group";
  EXPECT_TRUE(isOkEnabled()) << "only the stem takes OK away";
  choose(host::kIdSampleLineGroups, QStringLiteral("A2 lines"));
  choose(host::kIdSurfaces, QStringLiteral("Rock & gravel"));
  typeStem("");
  user_.key(Qt::Key_Delete);
  EXPECT_FALSE(isOkEnabled());
  user_.click(control(host::kIdOk));
  EXPECT_FALSE(running_->isOver());
  typeStem("/r/y");
  user_.click(control(host::kIdPickSurface));
  EXPECT_EQ(code(), host::kIdPickSurface);

  open(dialog);
  EXPECT_EQ(rows(host::kIdAlignments), "A1|[A2]");
  EXPECT_EQ(rows(host::kIdSurfaces), "Ground|[Rock & gravel]");
  EXPECT_TRUE(isOkEnabled());
  user_.click(control(host::kIdPickAlignment));
  EXPECT_EQ(code(), host::kIdPickAlignment);

  open(dialog);
  user_.click(control(host::kIdCheckExcel), QPoint(8, 8));
  user_.click(control(host::kIdOk));
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.groupText, L"A2 lines");
  EXPECT_EQ(dialog.surfaceText, L"Rock & gravel");
  EXPECT_EQ(dialog.reportAlignmentText, L"A2");
  EXPECT_EQ(dialog.outputStem, L"/r/y");
  EXPECT_EQ(dialog.checkAscii, 1);
  EXPECT_EQ(dialog.checkExcel, 0);
  EXPECT_EQ(dialog.checkThird, 1);
}

TEST_F(ReportDialogTest, TheProjectionDialogIsFilledInByTheKeyboard) {
  CMyDialog1& dialog = dialogs_.projection;
  open(dialog);
  tabTo(host::kIdSites);
  user_.type("n");  // the row that begins so
  EXPECT_EQ(rows(host::kIdSites), "[North]|South|*No site*");
  tabTo(host::kIdAlignments);
  user_.key(Qt::Key_Down);
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "A2 lines");
  tabTo(host::kIdSurfaces);
  user_.key(Qt::Key_End);
  tabTo(host::kIdSampleLineGroups);
  user_.key(Qt::Key_Down);
  tabTo(host::kIdOutputStem);
  user_.type("/r/x");
  EXPECT_TRUE(isOkEnabled());
  user_.key(Qt::Key_Return);
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.siteText, L"North");
  EXPECT_EQ(dialog.reportAlignmentText, L"A2");
  EXPECT_EQ(dialog.groupText, L"A2 lines");
  EXPECT_EQ(dialog.surfaceText, L"Rock & gravel");
}

TEST_F(ReportDialogTest, ThePointsDialogIsFilledInByTheMouse) {
  CExportPointsDlg& dialog = dialogs_.points;
  open(dialog);
  const auto count = [&] {
    return onGui([&] { return running_->control<QLabel>(host::kIdPointCount)->text().toStdString(); });
  };
  EXPECT_EQ(rows(host::kIdPointGroups), "[Survey]|Benchmark|*Picked points*");
  EXPECT_EQ(count(), "2 points selected");
  choose(host::kIdPointGroups, QStringLiteral("Benchmark"));
  EXPECT_EQ(count(), "1 points selected");
  choose(host::kIdSites, QStringLiteral("North"));
  EXPECT_EQ(rows(host::kIdAlignments), "[A1]|A2");
  choose(host::kIdAlignments, QStringLiteral("A2"));
  EXPECT_FALSE(isOkEnabled());
  typeStem("/");
  EXPECT_TRUE(isOkEnabled());
  user_.key(Qt::Key_Backspace);
  EXPECT_FALSE(isOkEnabled());
  user_.click(control(host::kIdPickPoints));
  EXPECT_EQ(code(), host::kIdPickPoints);

  dialog.pointGroups[dialog.pointGroups.size() - 1]->count = 1;  // as the pick leaves it
  open(dialog);
  EXPECT_EQ(rows(host::kIdPointGroups), "Survey|Benchmark|[*Picked points*]");
  EXPECT_EQ(count(), "1 point selected");
  EXPECT_EQ(rows(host::kIdAlignments), "[A1]|A2") << "the site stands, a row chosen without a handler doesn't";
  typeStem("/r/x");
  user_.click(control(host::kIdCheckAscii), QPoint(8, 8));
  user_.click(control(host::kIdOk));
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.siteText, L"North");
  EXPECT_EQ(dialog.alignmentText, L"A1");
  EXPECT_EQ(dialog.groupText, L"*Picked points*");
  EXPECT_EQ(dialog.checkAscii, 0);
  EXPECT_EQ(dialog.checkExcel, 1);
}

TEST_F(ReportDialogTest, ThePointsDialogIsFilledInByTheKeyboard) {
  CExportPointsDlg& dialog = dialogs_.points;
  open(dialog);
  tabTo(host::kIdSites);
  user_.key(Qt::Key_Home);
  tabTo(host::kIdAlignments);
  user_.key(Qt::Key_Down);
  tabTo(host::kIdPointGroups);
  user_.key(Qt::Key_Down);
  tabTo(host::kIdPickPoints);
  tabTo(host::kIdOutputStem);
  user_.type("/r/x");
  user_.key(Qt::Key_Return);
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.alignmentText, L"A2");
  EXPECT_EQ(dialog.groupText, L"Benchmark");
}

TEST_F(ReportDialogTest, TheGlsDialogIsFilledInByTheMouse) {
  CMyDialog3& dialog = dialogs_.gls;
  open(dialog);
  choose(host::kIdSites, QStringLiteral("North"));
  EXPECT_EQ(rows(host::kIdAlignments), "[A1]|A2");
  EXPECT_EQ(rows(host::kIdProfiles), "[Design]|Ground");
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "[A1 lines]|A1 fine");
  EXPECT_EQ(rows(host::kIdCorridors), "[Main road]");
  EXPECT_FALSE(isOkEnabled());
  typeStem("/r/x");
  EXPECT_TRUE(isOkEnabled());
  user_.key(Qt::Key_A, Qt::ControlModifier);
  user_.key(Qt::Key_Delete);
  EXPECT_TRUE(isOkEnabled()) << "nothing takes OK away again here";
  choose(host::kIdAlignments, QStringLiteral("A2"));
  EXPECT_EQ(rows(host::kIdSampleLineGroups), "[A2 lines]");
  EXPECT_EQ(dialog.profileText, L"Main road") << "until the profile is chosen again";
  choose(host::kIdProfiles, QStringLiteral("Ground A2"));
  EXPECT_EQ(dialog.profileText, L"Ground A2");
  choose(host::kIdCorridors, QStringLiteral("Main road"));
  choose(host::kIdSampleLineGroups, QStringLiteral("A2 lines"));
  typeStem("/r/x");
  user_.click(control(host::kIdPickProfile));
  EXPECT_EQ(code(), host::kIdPickProfile);

  open(dialog);
  EXPECT_EQ(rows(host::kIdProfiles), "Design A2|[Ground A2]");
  user_.click(control(host::kIdCheckHtml), QPoint(8, 8));
  user_.click(control(host::kIdOk));
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.reportAlignmentText, L"A2");
  EXPECT_EQ(dialog.groupText, L"A2 lines");
  EXPECT_EQ(dialog.checkThird, 0);
}

TEST_F(ReportDialogTest, TheGlsDialogIsFilledInByTheKeyboard) {
  CMyDialog3& dialog = dialogs_.gls;
  open(dialog);
  tabTo(host::kIdSites);
  user_.type("n");
  tabTo(host::kIdProfiles);
  user_.key(Qt::Key_Down);
  tabTo(host::kIdCorridors);
  tabTo(host::kIdSampleLineGroups);
  user_.key(Qt::Key_Down);
  tabTo(host::kIdPickProfile);
  tabTo(host::kIdOutputStem);
  user_.type("/r/x");
  user_.key(Qt::Key_Enter);
  EXPECT_EQ(code(), host::kIdOk);
  EXPECT_EQ(dialog.profileText, L"Ground");
  EXPECT_EQ(dialog.groupText, L"A1 fine");
}

TEST_F(ReportDialogTest, TheQuestionIsAnsweredByMouseAndKeyboardAndOpensTheHelpOfItsReport) {
  open(dialogs_.question);
  EXPECT_EQ(tabOrder(), (std::vector<int>{1, 2, 9}));
  EXPECT_EQ(onGui([&] { return window_->windowTitle().toStdString(); }), "Corridor sections");
  user_.click(control(host::kIdHelp));
  QWidget* help = nullptr;
  ASSERT_TRUE(user_.waitFor([&] {
    help = QApplication::activeWindow();
    return help != nullptr && help->objectName() == QStringLiteral("helpWindow");
  }));
  EXPECT_EQ(onGui([&] {
              return help->findChild<QTextBrowser*>(QStringLiteral("helpPage"))->source().fileName().toStdString();
            }),
            "LVX_015_003.html");
  user_.key(Qt::Key_Escape);
  user_.click(control(host::kIdOk));
  EXPECT_EQ(code(), host::kIdOk);
  open(dialogs_.question);
  user_.key(Qt::Key_Return);
  EXPECT_EQ(code(), host::kIdOk) << "the first button is the default";
  open(dialogs_.question);
  user_.click(control(host::kIdCancel));
  EXPECT_EQ(code(), host::kIdCancel);
  open(dialogs_.question);
  user_.key(Qt::Key_Escape);
  EXPECT_EQ(code(), host::kIdCancel);
}

TEST_F(ReportDialogTest, ShowsTheSmallPicturesOnTheDialogsColourInALightAndADarkScheme) {
  for (const bool dark : {false, true}) {
    useScheme(dark);
    open(dialogs_.gls);
    onGui([&] {
      const QColor face = QApplication::palette().color(QPalette::Window);
      // The colour that a control shows where its picture is white.
      const auto shown = [&](int id, std::string_view name) {
        const std::span<const std::uint8_t> bytes = dialogs::findPicture(name)->bytes;
        std::size_t pixel = 0;
        while (bytes[4 * pixel] != 255 || bytes[4 * pixel + 1] != 255 || bytes[4 * pixel + 2] != 255) ++pixel;
        const QPoint place(static_cast<int>(pixel) % 16, static_cast<int>(pixel) / 16);
        const QImage image = window_->grab(QRect(control(id)->pos(), QSize(16, 16))).toImage();
        const double ratio = image.devicePixelRatio();
        return image.pixelColor(qRound((place.x() + 0.25) * ratio), qRound((place.y() + 0.25) * ratio));
      };
      EXPECT_EQ(shown(host::kIdPictureSite, dialogs::kPictureSite), face);
      EXPECT_EQ(shown(host::kIdPictureAlignment, dialogs::kPictureAlignment), face);
      EXPECT_EQ(shown(host::kIdPictureProfile, dialogs::kPictureProfile), face);
      EXPECT_EQ(shown(host::kIdPictureSampleLineGroup, dialogs::kPictureSampleLineGroup), face);
      EXPECT_EQ(shown(host::kIdPictureCorridor, dialogs::kPictureCorridor), QColor(Qt::white))
          << "the corridor's picture keeps its white";
    });
    user_.key(Qt::Key_Escape);
    EXPECT_EQ(code(), host::kIdCancel);
  }
  useScheme(false);
}

}  // namespace
}  // namespace lvx::test
