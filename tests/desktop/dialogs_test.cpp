#include <QStyleOption>
#include <cmath>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/template_dialog.h"
#include "dialogs/dialog_services.h"
#include "dialogs/export_points_dlg.h"
#include "dialogs/my_dialog1.h"
#include "dialogs/my_dialog3.h"
#include "dialogs/my_dialog4.h"
#include "report_dialogs.h"
#include "running_dialog.h"

namespace lvx::test {
namespace {

QPalette darkPalette() {
  QPalette palette;
  const QColor window(0x35, 0x37, 0x3a), base(0x25, 0x27, 0x2a), text(0xe6, 0xe6, 0xe6);
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::Button, QColor(0x43, 0x46, 0x4a));
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(0x85, 0x87, 0x8a));
  return palette;
}

void useScheme(bool dark) {
  onGui([&] {
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication::setPalette(dark ? darkPalette() : QPalette());
  });
}

/// The four dialogs over one drawing.
struct Dialogs {
  explicit Dialogs(const std::string& language) {
    host.fake.useMessages(language);
    host.user.language = language;
  }
  [[nodiscard]] std::vector<dialogs::DialogBehaviour*> all() { return {&projection, &points, &gls, &question}; }

  WindowedHost host;
  ReportDrawing drawing{host};
  dialogs::CMyDialog1 projection{host};
  dialogs::CExportPointsDlg points{host};
  dialogs::CMyDialog3 gls{host};
  dialogs::CMyDialog4 question{host};
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

Room roomOf(const QWidget* widget, dialogs::ControlKind kind, const CString& text) {
  const QFontMetrics metrics(widget->font());
  const QString caption = desktop::toQt(text);
  const QSize taken = metrics.size(Qt::TextShowMnemonic, caption);
  QStyleOptionButton option;
  option.initFrom(widget);
  switch (kind) {
    case dialogs::ControlKind::CheckBox:
      return {widget->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, widget).size(), taken};
    case dialogs::ControlKind::PushButton:
    case dialogs::ControlKind::DefaultButton:
      return {widget->style()->subElementRect(QStyle::SE_PushButtonContents, &option, widget).size(), taken};
    case dialogs::ControlKind::Label:
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
      for (dialogs::DialogBehaviour* dialog : dialogs.all()) {
        const dialogs::DialogTemplate& made = dialog->dialogTemplate();
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
          for (const dialogs::ControlTemplate& control : made.controls) {
            SCOPED_TRACE(control.id);
            const auto* widget = window->findChild<QWidget*>(QStringLiteral("control%1").arg(control.id));
            ASSERT_NE(widget, nullptr);
            const int height =
                control.kind == dialogs::ControlKind::DropDownList ? 13 : control.rectangle.height;  // closed
            const QRect expected(QPoint(qRound(control.rectangle.x * across), qRound(control.rectangle.y * down)),
                                 QPoint(qRound((control.rectangle.x + control.rectangle.width) * across) - 1,
                                        qRound((control.rectangle.y + height) * down) - 1));
            EXPECT_EQ(widget->geometry(), expected);
            if (control.kind == dialogs::ControlKind::Picture || control.kind == dialogs::ControlKind::PictureButton ||
                control.kind == dialogs::ControlKind::DropDownList || control.kind == dialogs::ControlKind::EditBox)
              continue;
            const auto* as = dynamic_cast<const dialogs::DialogWindow*>(window);
            const Room room = roomOf(widget, control.kind, as->text(control.id));
            EXPECT_LE(room.taken.width(), room.given.width());
            EXPECT_LE(room.taken.height(), widget->height());
            ++seen;
          }
        });
        user.key(Qt::Key_Escape);
        EXPECT_EQ(running.code(user), dialogs::kIdCancel);
      }
    }
  }
  EXPECT_EQ(seen, 4 * (12 + 13 + 13 + 4));
  useScheme(false);
}

}  // namespace
}  // namespace lvx::test
