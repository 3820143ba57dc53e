#include "desktop/shell/start_drawings.h"

#include <QDir>
#include <QFileInfo>
#include <QWidget>

#include "desktop/common/qt_text.h"
#include "desktop/panels/start_page.h"
#include "desktop/shell/recent_drawings.h"
#include "runtime/installation.h"

namespace lvx::desktop {

StartDrawings::StartDrawings(QWidget& over, const RecentDrawings& recent, const std::filesystem::path& bin)
    : recent_(recent), page_(new StartPage(&over)) {
  const std::filesystem::path folder = bin.empty() ? runtime::examplesFolder() : runtime::examplesFolder(bin);
  const QString example = toQt((folder / "valley-road.xml").string());
  if (QFileInfo(example).isFile()) example_ = QFileInfo(example).canonicalFilePath();
  page_->hide();
  connect(page_, &StartPage::openWanted, this, &StartDrawings::openWanted);
  connect(page_, &StartPage::exampleWanted, this, [this] { Q_EMIT chosen(DrawingSources(example_)); });
  connect(page_, &StartPage::recentWanted, this, [this](int number) {
    if (number < drawings_.size()) Q_EMIT chosen(drawings_[number]);
  });
}

void StartDrawings::setShown(bool isShown) {
  if (isShown == !page_->isHidden()) return;
  if (isShown) fill();
  page_->setVisible(isShown);
  if (isShown) page_->raise();
}

void StartDrawings::fill() {
  drawings_ = recent_.drawings();
  QList<StartPage::Entry> entries;
  for (const DrawingSources& drawing : drawings_) {
    const QString gone = RecentDrawings::missingFile(drawing);
    const QString folder = QDir::toNativeSeparators(QFileInfo(drawing.files.front().path).absolutePath());
    entries << StartPage::Entry{drawing.title(), gone.isEmpty() ? folder : tr("%1 isn't there any more").arg(gone),
                                gone.isEmpty()};
  }
  page_->setEntries(entries, example_);
}

}  // namespace lvx::desktop
