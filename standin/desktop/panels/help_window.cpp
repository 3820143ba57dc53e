#include "desktop/panels/help_window.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolBar>
#include <QVBoxLayout>
#include <utility>

#include "desktop/common/qt_text.h"
#include "runtime/help_topics.h"

namespace lvx::desktop {

namespace fs = std::filesystem;

namespace {

constexpr int kPageRole = Qt::UserRole;

QUrl urlOf(const fs::path& file) { return QUrl::fromLocalFile(QString::fromStdString(file.string())); }

QString readText(const fs::path& file) {
  QFile source(QString::fromStdString(file.string()));
  return source.open(QIODevice::ReadOnly) ? QString::fromUtf8(source.readAll()) : QString();
}

/// Looks of the pages by the colours of the window.
QString pageStyle(const QPalette& palette) {
  const bool dark = palette.color(QPalette::Base).lightness() < 128;
  return QStringLiteral(
             "h1, h2, h3 { color: %1; } h2 { margin-top: 18px; }"
             "a { color: %2; }"
             "p, li { line-height: 130%; }"
             "table { border-collapse: collapse; border: 1px solid %3; margin-top: 6px; margin-bottom: 6px; }"
             "th { background-color: %4; text-align: left; vertical-align: top; padding: 4px; border: 1px solid %3; }"
             "td { vertical-align: top; padding: 4px; border: 1px solid %3; }"
             "pre { font-family: monospace; font-size: x-small; background-color: %5; white-space: pre; }"
             "code { font-family: monospace; }"
             ".navigation { color: %6; }"
             ".mind { background-color: %7; }")
      .arg(dark ? QStringLiteral("#8ab8e6") : QStringLiteral("#1f4e79"),
           dark ? QStringLiteral("#7db4f0") : QStringLiteral("#0a58b0"),
           dark ? QStringLiteral("#5a5f66") : QStringLiteral("#b4bcc4"),
           dark ? QStringLiteral("#33414f") : QStringLiteral("#e4ecf4"),
           dark ? QStringLiteral("#2b2e32") : QStringLiteral("#f4f4f4"),
           dark ? QStringLiteral("#a8adb3") : QStringLiteral("#666666"),
           dark ? QStringLiteral("#4a3f1c") : QStringLiteral("#fff4d6"));
}

}  // namespace

/// Shows pages of one folder tree and reads nothing else.
class HelpBrowser final : public QTextBrowser {
 public:
  HelpBrowser(QString root, QWidget* parent) : QTextBrowser(parent), root_(std::move(root)) {
    document()->setDefaultStyleSheet(pageStyle(palette()));
  }

  QVariant loadResource(int type, const QUrl& name) override {
    const QUrl whole = source().resolved(name);
    if (type == QTextDocument::StyleSheetResource) return {};  // the pages' own is for paper
    if (!isInside(whole)) return {};
    return QTextBrowser::loadResource(type, whole);
  }

  [[nodiscard]] bool isInside(const QUrl& url) const {
    if (!url.isLocalFile()) return false;
    const QString file = QFileInfo(url.toLocalFile()).canonicalFilePath();
    return !root_.isEmpty() && file.startsWith(root_ + u'/');
  }

 protected:
  void changeEvent(QEvent* event) override {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    document()->setDefaultStyleSheet(pageStyle(palette()));
    if (source().isEmpty()) return;
    // The page takes its colours when it is read.
    const int place = verticalScrollBar()->value();
    reload();
    verticalScrollBar()->setValue(place);
  }

 private:
  QString root_;
};

HelpWindow::HelpWindow(fs::path helpFolder) : folder_(std::move(helpFolder)) {
  setObjectName(QStringLiteral("helpWindow"));
  setWindowTitle(tr("Help"));
  setAttribute(Qt::WA_QuitOnClose, false);

  contents_ = new QListWidget;
  contents_->setObjectName(QStringLiteral("helpContents"));
  contents_->setAccessibleName(tr("Contents"));
  contents_->setSpacing(2);
  notice_ = new QLabel;
  notice_->setObjectName(QStringLiteral("helpNotice"));
  notice_->setTextFormat(Qt::PlainText);
  notice_->setWordWrap(true);
  notice_->setMargin(8);
  notice_->setAutoFillBackground(true);
  notice_->setBackgroundRole(QPalette::ToolTipBase);
  notice_->setForegroundRole(QPalette::ToolTipText);
  notice_->hide();
  // Pictures lie beside the languages, hence the folder above; of a folder that isn't there nothing is.
  const QString root = QFileInfo(QString::fromStdString((folder_ / "..").string())).canonicalFilePath();
  browser_ = new HelpBrowser(root, this);
  browser_->setObjectName(QStringLiteral("helpPage"));
  browser_->setOpenLinks(false);
  browser_->document()->setDocumentMargin(14);

  auto* page = new QWidget;
  auto* pageLayout = new QVBoxLayout(page);
  pageLayout->setContentsMargins(0, 0, 0, 0);
  pageLayout->setSpacing(0);
  pageLayout->addWidget(notice_);
  pageLayout->addWidget(browser_, 1);
  auto* split = new QSplitter;
  split->addWidget(contents_);
  split->addWidget(page);
  split->setStretchFactor(0, 0);
  split->setStretchFactor(1, 1);
  split->setSizes({220, 780});
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  makeTools();
  layout->addWidget(split, 1);
  resize(1000, 740);

  connect(browser_, &QTextBrowser::anchorClicked, this, &HelpWindow::followLink);
  connect(browser_, &QTextBrowser::sourceChanged, this, &HelpWindow::pageChanged);
  connect(contents_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    if (item != nullptr) open(item->data(kPageRole).toUrl());
  });
  fillContents();
}

void HelpWindow::makeTools() {
  auto* tools = new QToolBar;
  tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  static_cast<QVBoxLayout*>(layout())->addWidget(tools);
  const auto add = [&](const char* name, const QString& text, QStyle::StandardPixmap icon, const QKeySequence& key) {
    auto* action = new QAction(style()->standardIcon(icon), text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    tools->addAction(action);
    return action;
  };
  QAction* back = add("helpBack", tr("&Back"), QStyle::SP_ArrowBack, QKeySequence::Back);
  QAction* forward = add("helpForward", tr("&Forward"), QStyle::SP_ArrowForward, QKeySequence::Forward);
  QAction* home = add("helpHome", tr("&Contents"), QStyle::SP_DirHomeIcon, Qt::ALT | Qt::Key_Home);
  back->setEnabled(false);
  forward->setEnabled(false);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
  connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
  connect(forward, &QAction::triggered, browser_, &QTextBrowser::forward);
  connect(home, &QAction::triggered, this, &HelpWindow::showContents);
  tools->addSeparator();
  addZooms(*tools);
  addFind(*tools);
  addFindKeys();
}

void HelpWindow::addZooms(QToolBar& tools) {
  const auto addZoom = [&](const char* name, const QString& text, const QString& tip, const QList<QKeySequence>& keys) {
    auto* action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    action->setToolTip(tip);
    action->setShortcuts(keys);
    tools.addAction(action);
    return action;
  };
  const QAction* smaller =
      addZoom("helpSmaller", QStringLiteral("A\u2212"), tr("Smaller text"), {QKeySequence::ZoomOut});
  const QAction* larger = addZoom("helpLarger", QStringLiteral("A+"), tr("Larger text"),
                                  {QKeySequence::ZoomIn, QKeySequence(Qt::CTRL | Qt::Key_Equal)});
  connect(smaller, &QAction::triggered, browser_, [this] {
    if (browser_->font().pointSizeF() > 6) browser_->zoomOut();
  });
  connect(larger, &QAction::triggered, browser_, [this] {
    if (browser_->font().pointSizeF() < 32) browser_->zoomIn();
  });
}

void HelpWindow::addFind(QToolBar& tools) {
  auto* space = new QWidget;
  space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  tools.addWidget(space);
  findResult_ = new QLabel;
  findResult_->setObjectName(QStringLiteral("helpFindResult"));
  findResult_->setMargin(4);
  tools.addWidget(findResult_);
  findBox_ = new QLineEdit;
  findBox_->setObjectName(QStringLiteral("helpFind"));
  findBox_->setPlaceholderText(tr("Find in page"));
  findBox_->setClearButtonEnabled(true);
  findBox_->setMaximumWidth(220);
  tools.addWidget(findBox_);
  connect(findBox_, &QLineEdit::textEdited, this, [this] { findResult_->clear(); });
}

void HelpWindow::addFindKeys() {
  const auto addKey = [&](const QList<QKeySequence>& keys, auto&& what) {
    auto* action = new QAction(this);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, what);
    addAction(action);
  };
  addKey({QKeySequence::Find}, [this] {
    findBox_->setFocus(Qt::ShortcutFocusReason);
    findBox_->selectAll();
  });
  addKey(QKeySequence::keyBindings(QKeySequence::FindNext), [this] { find(false); });
  addKey(QKeySequence::keyBindings(QKeySequence::FindPrevious), [this] { find(true); });
}

QUrl HelpWindow::contentsPage() const { return urlOf(folder_ / "index.html"); }

void HelpWindow::fillContents() {
  const auto add = [this](const fs::path& file) {
    const QUrl page = urlOf(file);
    for (int row = 0; row < contents_->count(); ++row)
      if (contents_->item(row)->data(kPageRole).toUrl() == page) return;
    QTextDocument document;
    document.setHtml(readText(file));
    const QString title = document.metaInformation(QTextDocument::DocumentTitle);
    auto* item = new QListWidgetItem(title.isEmpty() ? toQt(file.stem().string()) : title, contents_);
    item->setData(kPageRole, page);
  };
  std::error_code error;
  const fs::path index = folder_ / "index.html";
  if (fs::is_regular_file(index, error)) {
    add(index);
    // The order of the contents page, then whatever it leaves out.
    QTextDocument document;
    document.setHtml(readText(index));
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
      for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QString link = part.fragment().charFormat().anchorHref();
        const QUrl page = contentsPage().resolved(QUrl(link));
        if (!link.isEmpty() && browser_->isInside(page)) add(fs::path(page.toLocalFile().toStdString()));
      }
  }
  const QDir pages(QString::fromStdString((folder_ / "project-resources").string()));
  for (const QString& name : pages.entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name))
    add(fs::path(pages.filePath(name).toStdString()));
}

bool HelpWindow::showTopic(const framework::CString& topic) {
  const fs::path page = runtime::helpPage(topic, folder_);
  if (page.empty()) {
    showContents();
    if (contents_->count() > 0)
      setNotice(tr("The help has no page for “%1”. These are the pages that it has.").arg(toQt(topic)));
    return false;
  }
  open(urlOf(page));
  comeToFront();
  return true;
}

void HelpWindow::showContents() {
  open(contentsPage());
  comeToFront();
}

void HelpWindow::showWindowPage() {
  open(urlOf(folder_ / "project-resources" / "window.html"));
  comeToFront();
}

void HelpWindow::comeToFront() {
  if (!isVisible() && !testAttribute(Qt::WA_Moved)) {
    // Beside the window that asks, where the screen has the room.
    if (const QWidget* asking = QApplication::activeWindow()) {
      const QRect room = asking->screen()->availableGeometry();
      const QRect taken = asking->frameGeometry();
      if (room.right() - taken.right() >= width())
        move(taken.right() + 1, std::max(taken.top(), room.top()));
      else if (taken.left() - room.left() >= width())
        move(taken.left() - width() - 1, std::max(taken.top(), room.top()));
    }
  }
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
  browser_->setFocus(Qt::OtherFocusReason);  // keys scroll the page
}

void HelpWindow::open(const QUrl& page) {
  setNotice({});
  if (page == browser_->source()) return;
  const QString file = page.toLocalFile();
  if (!QFileInfo::exists(file)) {
    if (contents_->count() == 0)
      setNotice(tr("The help pages aren't there: “%1” holds none.").arg(toQt(folder_.string())));
    else
      setNotice(tr("The page “%1” isn't there.").arg(file));
    return;
  }
  browser_->setSource(page);
}

void HelpWindow::followLink(const QUrl& link) {
  const QUrl page = browser_->source().resolved(link);
  if (page.scheme() == QStringLiteral("http") || page.scheme() == QStringLiteral("https"))
    QDesktopServices::openUrl(page);
  else if (browser_->isInside(page))
    browser_->setSource(page);
  else
    setNotice(tr("The page “%1” isn't there.").arg(page.toDisplayString(QUrl::PreferLocalFile)));
}

void HelpWindow::pageChanged(const QUrl& page) {
  setNotice({});
  findResult_->clear();
  const QString title = browser_->documentTitle();
  setWindowTitle(title.isEmpty() ? tr("Help") : tr("Help: %1").arg(title));
  const QSignalBlocker quiet(contents_);
  contents_->setCurrentRow(-1);
  for (int row = 0; row < contents_->count(); ++row)
    if (contents_->item(row)->data(kPageRole).toUrl() == page.adjusted(QUrl::RemoveFragment))
      contents_->setCurrentRow(row);
}

void HelpWindow::setNotice(const QString& text) {
  notice_->setText(text);
  notice_->setVisible(!text.isEmpty());
}

void HelpWindow::find(bool backwards) {
  const QString wanted = findBox_->text();
  findResult_->clear();
  if (wanted.isEmpty()) return;
  const QTextDocument::FindFlags flags = backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (browser_->find(wanted, flags)) return;
  // Round to the other end, once.
  const QTextCursor before = browser_->textCursor();
  browser_->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
  if (browser_->find(wanted, flags)) return;
  browser_->setTextCursor(before);
  findResult_->setText(tr("Not found"));
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter && findBox_->hasFocus())
    find(event->modifiers().testFlag(Qt::ShiftModifier));
  else if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace lvx::desktop
