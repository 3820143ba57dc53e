#include "desktop/panels/report_viewer.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextOption>
#include <QUrl>
#include <QVBoxLayout>
#include <memory>
#include <vector>

#include "desktop/common/qt_text.h"
#include "desktop/panels/find_bar.h"
#include "desktop/panels/report_printing.h"
#include "desktop/panels/text_window.h"
#include "platform/system_platform.h"

namespace lvx::desktop {

namespace {

struct ReportViewer {
  Q_DECLARE_TR_FUNCTIONS(lvx::desktop::ReportViewer)
};

/// Report bytes as characters.
Decode decoderFor(const std::string& codePage) {
  if (codePage.empty()) return [](const QByteArray& bytes) { return QString::fromLatin1(bytes); };
  platform::PlatformSettings settings;
  settings.messageCodePage = codePage;
  auto platform = std::make_shared<platform::SystemPlatform>(settings);
  return [platform](const QByteArray& bytes) {
    return toQt(platform->widenAnsi({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
  };
}

/// Larger pages take a rich-text view minutes.
constexpr qint64 kLargestPage = 4'000'000;

QString openElsewhere(const QString& path) {
  if (QDesktopServices::openUrl(QUrl::fromLocalFile(path))) return {};
  return ReportViewer::tr(
             "This system has no program for %1. Install one (LibreOffice Calc for workbooks, a browser for pages), or "
             "take the file elsewhere.")
      .arg(path);
}

/// Reports write characters by their numbers without the semicolon behind them. Browsers take that; the rich-text view
/// shows it as it stands.
QString withClosedCharacters(QString page) {
  static const QRegularExpression open(QStringLiteral("&#(\\d+)(?![\\d;])"));
  return page.replace(open, QStringLiteral("&#\\1;"));
}

/// All places of a text in a page, one after the other.
std::vector<QTextCursor> findInPage(const QTextDocument& page, const QString& text) {
  std::vector<QTextCursor> found;
  for (QTextCursor at = page.find(text); !at.isNull() && found.size() < kMostFound; at = page.find(text, at))
    found.push_back(at);
  return found;
}

/// The row over a page: find, print.
QHBoxLayout* pageBar(QWidget& window, const QTextBrowser& page, FindBar& find, const QString& path) {
  auto* const bar = new QHBoxLayout;
  constexpr int kGap = 8;
  bar->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  bar->addStretch(1);
  const auto addButton = [&](const char* name, const QString& text, auto work) {
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    QObject::connect(button, &QPushButton::clicked, &window, work);
    bar->addWidget(button);
  };
  const QString title = QFileInfo(path).fileName();
  const auto print = [&window, &page, title, path](bool asPdf) {
    const PaintPages paint = [&page](QPagedPaintDevice& paper) {
      // The colours of the screen are not those of paper.
      const std::unique_ptr<QTextDocument> copy(page.document()->clone());
      copy->setDefaultStyleSheet({});
      copy->print(&paper);
      return true;
    };
    if (asPdf)
      askAndSavePdf(&window, title, QFileInfo(path).completeBaseName(), true, paint);
    else
      askAndPrint(&window, title, true, paint);
  };
  addButton("find", ReportViewer::tr("&Find…"), [&find] { find.open(); });
  addButton("print", ReportViewer::tr("&Print…"), [print] { print(false); });
  addButton("savePdf", ReportViewer::tr("Save as P&DF…"), [print] { print(true); });
  QObject::connect(new QShortcut(QKeySequence::Print, &window), &QShortcut::activated, &window,
                   [print] { print(false); });
  return bar;
}

QString openPage(const QString& path, const Decode& decode, QWidget* over) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return ReportViewer::tr("%1 can't be read: %2").arg(path, file.errorString());
  if (file.size() > kLargestPage) return openElsewhere(path);
  auto* const window = new QWidget(over, Qt::Window);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->setObjectName(QStringLiteral("pageWindow"));
  window->setWindowTitle(QFileInfo(path).fileName());
  auto* const page = new QTextBrowser;
  page->setObjectName(QStringLiteral("page"));
  page->setAccessibleName(window->windowTitle());
  page->setOpenLinks(false);
  page->setFrameShape(QFrame::NoFrame);
  // A table that is wider than the window scrolls; broken numbers can't be read.
  page->setWordWrapMode(QTextOption::WordWrap);
  page->setHtml(withClosedCharacters(decode(file.readAll())));
  auto* const find = new FindBar(window);
  const auto found = std::make_shared<std::vector<QTextCursor>>();
  find->setSearched({[page, found](const QString& text) {
                       *found = findInPage(*page->document(), text);
                       return static_cast<qsizetype>(found->size());
                     },
                     [page, found](qsizetype number) {
                       page->setTextCursor((*found)[static_cast<std::size_t>(number)]);
                       page->ensureCursorVisible();
                     }});
  QObject::connect(find, &FindBar::closed, page, [page] { page->setFocus(); });
  auto* const layout = new QVBoxLayout(window);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(pageBar(*window, *page, *find, path));
  layout->addWidget(page, 1);
  layout->addWidget(find);
  QObject::connect(new QShortcut(QKeySequence(Qt::Key_Escape), window), &QShortcut::activated, window, &QWidget::close);
  constexpr QSize kUsualSize(1280, 760);
  window->resize(kUsualSize);
  window->show();
  page->setFocus();
  return {};
}

}  // namespace

QString openReport(const QString& path, const std::string& codePage, QWidget* over) {
  const QFileInfo file(path);
  if (!file.exists()) return ReportViewer::tr("%1 isn't there any more. Run the report again.").arg(path);
  const QString suffix = file.suffix().toLower();
  if (suffix == QStringLiteral("html")) return openPage(path, decoderFor(codePage), over);
  if (suffix == QStringLiteral("xls")) return openElsewhere(path);
  (new TextWindow(path, 0, decoderFor(codePage), over))->show();
  return {};
}

QString showInFolder(const QString& path) {
  const QString folder = QFileInfo(path).absolutePath();
  if (!QFileInfo(folder).isDir()) return ReportViewer::tr("The folder %1 isn't there any more.").arg(folder);
  if (QDesktopServices::openUrl(QUrl::fromLocalFile(folder))) return {};
  return ReportViewer::tr("This system has no file manager. The file is in %1.").arg(folder);
}

}  // namespace lvx::desktop
