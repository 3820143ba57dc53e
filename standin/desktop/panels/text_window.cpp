#include "desktop/panels/text_window.h"

#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "desktop/common/qt_text.h"
#include "desktop/panels/find_bar.h"
#include "desktop/panels/property_words.h"
#include "desktop/panels/report_printing.h"
#include "desktop/panels/value_table.h"
#include "properties/report_table.h"

namespace lvx::desktop {

namespace {
constexpr int kLinesShown = 2000;
constexpr QSize kUsualSize(900, 640);
}  // namespace

TextWindow::TextWindow(const QString& path, std::uint64_t line, Decode decode, QWidget* parent)
    : QWidget(parent, Qt::Window),
      path_(path),
      marked_(line),
      decode_(std::move(decode)),
      place_(new QLabel),
      text_(new QPlainTextEdit),
      earlier_(new QPushButton(tr("&Earlier lines"))),
      later_(new QPushButton(tr("&Later lines"))),
      pages_(new QTabWidget),
      find_(new FindBar(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName(QStringLiteral("textWindow"));
  setWindowTitle(QFileInfo(path).fileName());
  text_->setObjectName(QStringLiteral("text"));
  text_->setReadOnly(true);
  text_->setAccessibleName(windowTitle());
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setFrameShape(QFrame::NoFrame);
  place_->setObjectName(QStringLiteral("place"));
  place_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  earlier_->setObjectName(QStringLiteral("earlier"));
  later_->setObjectName(QStringLiteral("later"));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  auto* const bar = new QHBoxLayout;
  constexpr int kGap = 8;
  bar->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  bar->addWidget(place_, 1);
  bar->addWidget(earlier_);
  bar->addWidget(later_);
  const auto addButton = [&](const char* name, const QString& text, auto work) {
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    connect(button, &QPushButton::clicked, this, work);
    bar->addWidget(button);
  };
  addButton("find", tr("&Find…"), [this] { find_->open(); });
  addButton("print", tr("&Print…"), [this] { print(false); });
  addButton("savePdf", tr("Save as P&DF…"), [this] { print(true); });
  connect(new QShortcut(QKeySequence::Print, this), &QShortcut::activated, this, [this] { print(false); });
  layout->addLayout(bar);
  pages_->setObjectName(QStringLiteral("textPages"));
  pages_->setDocumentMode(true);
  pages_->setTabBarAutoHide(true);
  pages_->setAccessibleName(windowTitle());
  pages_->addTab(text_, tr("&Text"));
  layout->addWidget(pages_, 1);
  layout->addWidget(find_);
  connect(find_, &FindBar::closed, this, [this] { pages_->currentWidget()->setFocus(); });
  offerTable();
  connect(pages_, &QTabWidget::currentChanged, this, [this] {
    if (pages_->currentWidget() == tablePage_) fillTable();
    searchWhatShows();
  });
  searchWhatShows();
  connect(earlier_, &QPushButton::clicked, this, [this] { showFrom(first_ > kLinesShown ? first_ - kLinesShown : 1); });
  connect(later_, &QPushButton::clicked, this, [this] { showFrom(first_ + shown_); });
  resize(kUsualSize);
  constexpr std::uint64_t kBefore = kLinesShown / 2;
  showFrom(line > kBefore ? line - kBefore : 1);
}

void TextWindow::showFrom(std::uint64_t first) {
  const FileLines found = readLines(path_, first, kLinesShown, decode_);
  if (!found.problem.isEmpty()) {
    text_->clear();
    place_->setText(tr("%1 can't be read: %2").arg(path_, found.problem));
    earlier_->hide();
    later_->hide();
    return;
  }
  first_ = found.first;
  shown_ = static_cast<std::uint64_t>(found.lines.size());
  text_->setPlainText(found.lines.join(QLatin1Char('\n')));
  const bool whole = first_ == 1 && !found.more;
  place_->setText(whole ? path_ : tr("%1, lines %2 to %3").arg(path_).arg(first_).arg(first_ + shown_ - 1));
  earlier_->setVisible(!whole);
  later_->setVisible(!whole);
  earlier_->setEnabled(first_ > 1);
  later_->setEnabled(found.more);
  if (marked_ < first_ || marked_ >= first_ + shown_) return;

  QTextCursor cursor(text_->document()->findBlockByNumber(static_cast<int>(marked_ - first_)));
  QTextEdit::ExtraSelection mark;
  mark.cursor = cursor;
  mark.format.setBackground(palette().color(QPalette::Highlight));
  mark.format.setForeground(palette().color(QPalette::HighlightedText));
  mark.format.setProperty(QTextFormat::FullWidthSelection, true);
  text_->setExtraSelections({mark});
  text_->setTextCursor(cursor);
  text_->centerCursor();
  setWindowTitle(tr("%1, line %2").arg(QFileInfo(path_).fileName()).arg(marked_));
}

void TextWindow::offerTable() {
  // The frame of stars over every report.
  constexpr int kStars = 10;
  const FileLines first = readLines(path_, 1, 1, decode_);
  if (first.lines.isEmpty() || !first.lines.front().startsWith(QString(kStars, QLatin1Char('*')))) return;
  tablePage_ = new QWidget;
  pages_->addTab(tablePage_, tr("T&able"));
}

void TextWindow::fillTable() {
  if (table_ != nullptr) return;
  QFile file(path_);
  std::optional<properties::ReportTable> report;
  if (file.open(QIODevice::ReadOnly)) report = properties::reportTableOf(toUtf8(decode_(file.readAll())));
  auto* const layout = new QVBoxLayout(tablePage_);
  layout->setContentsMargins(0, 0, 0, 0);
  table_ = new ValueTable;
  table_->setObjectName(QStringLiteral("reportTable"));
  table_->setAccessibleName(windowTitle());
  table_->setFrameShape(QFrame::NoFrame);
  if (!report) {
    auto* const words = new QLabel(tr("This report's columns can't be told apart. Its text is on the other page."));
    words->setObjectName(QStringLiteral("noTable"));
    words->setWordWrap(true);
    constexpr int kMargin = 8;
    words->setMargin(kMargin);
    layout->addWidget(words);
    layout->addWidget(table_, 1);
    table_->hide();
    layout->addStretch(1);
    return;
  }
  QStringList headings;
  for (const std::string& heading : report->headings) headings << toQt(heading);
  if (headings.isEmpty())
    for (const properties::Column& column : report->table.columns) headings << PropertyWords::term(column.term);
  table_->setTable(std::move(report->table), headings);
  // What was found is known by its rows, which are others now.
  connect(table_->model(), &QAbstractItemModel::layoutChanged, find_, &FindBar::searchAgain);
  layout->addWidget(table_, 1);
}

void TextWindow::searchWhatShows() {
  if (table_ != nullptr && pages_->currentWidget() == tablePage_) {
    const auto rows = std::make_shared<QList<int>>();
    find_->setSearched({[this, rows](const QString& text) {
                          *rows = table_->values().rowsWith(text);
                          return rows->size();
                        },
                        [this, rows](qsizetype number) {
                          const QModelIndex row = table_->model()->index(rows->at(number), 0);
                          table_->selectRow(row.row());
                          table_->scrollTo(row, QAbstractItemView::PositionAtCenter);
                        },
                        [this, rows] { return rows->indexOf(table_->currentIndex().row()); }});
    return;
  }
  find_->setSearched({[this](const QString& text) {
                        found_ = findInFile(path_, text, decode_);
                        foundLetters_ = text.size();
                        return static_cast<qsizetype>(found_.size());
                      },
                      [this](qsizetype number) { showFound(found_[static_cast<std::size_t>(number)]); }});
}

void TextWindow::showFound(const FoundText& place) {
  if (place.line < first_ || place.line >= first_ + shown_) {
    constexpr std::uint64_t kBefore = kLinesShown / 2;
    showFrom(place.line > kBefore ? place.line - kBefore : 1);
  }
  QTextCursor cursor(text_->document()->findBlockByNumber(static_cast<int>(place.line - first_)));
  if (cursor.isNull()) return;  // the file has changed since
  const int most = cursor.block().length() - 1;
  cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, std::min(place.column, most));
  cursor.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor,
                      std::min(static_cast<int>(foundLetters_), most - std::min(place.column, most)));
  text_->setTextCursor(cursor);
  text_->centerCursor();
}

void TextWindow::print(bool asPdf) {
  // As wide as the lines that a reader saw.
  qsizetype letters = 1;
  for (const QString& line : readLines(path_, 1, kLinesShown, decode_).lines) letters = std::max(letters, line.size());
  constexpr qsizetype kUpright = 110;
  const QString title = QFileInfo(path_).fileName();
  const PaintPages paint = [this, letters, title](QPagedPaintDevice& paper) {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) return false;
    return paintLines(paper, title, letters, [&](QString& line) {
      if (file.atEnd()) return false;
      QByteArray bytes = file.readLine();
      while (bytes.endsWith('\n') || bytes.endsWith('\r')) bytes.chop(1);
      line = decode_(bytes);
      return true;
    });
  };
  if (asPdf)
    askAndSavePdf(this, title, QFileInfo(path_).completeBaseName(), letters > kUpright, paint);
  else
    askAndPrint(this, title, letters > kUpright, paint);
}

void TextWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace lvx::desktop
