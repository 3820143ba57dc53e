#include "desktop/shell/drawing_composer.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <functional>
#include <utility>

#include "desktop/common/file_boxes.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/panels/report_viewer.h"
#include "desktop/shell/document.h"
#include "desktop/shell/recent_drawings.h"

namespace lvx::desktop {

DrawingComposer::DrawingComposer(QWidget& window, Document& document, const RecentDrawings& recent)
    : window_(window), document_(document), recent_(recent) {}

bool DrawingComposer::has(civil::FileNumber file) const {
  return file < static_cast<civil::FileNumber>(document_.sources().files.size());
}

void DrawingComposer::askAdd() {
  if (document_.isBusy()) return;
  add(askDrawings(&window_, tr("Add to the drawing"), recent_.folder()));
}

void DrawingComposer::add(const QStringList& paths) {
  if (paths.isEmpty() || document_.isBusy()) return;
  if (!document_.isOpen()) {
    document_.open(DrawingSources(paths), FileOrder::AlignmentFirst);
    return;
  }
  DrawingSources drawing = document_.sources();
  QStringList known;
  for (const SourceFile& file : DrawingSources(paths).files)
    if (drawing.has(file.path))
      known << QFileInfo(file.path).fileName();
    else
      drawing.files.append(file);
  if (!known.isEmpty()) {
    QMessageBox box(QMessageBox::Information, tr("In the drawing already"),
                    tr("The drawing has %1 already.").arg(known.join(QStringLiteral(", "))), QMessageBox::Ok, &window_);
    box.setObjectName(QStringLiteral("fileTwice"));
    box.exec();
  }
  if (drawing.files != document_.sources().files) document_.change(drawing);
}

void DrawingComposer::drop(const QStringList& paths, bool isAddition) {
  if (isAddition)
    add(paths);
  else
    document_.open(DrawingSources(paths), FileOrder::AlignmentFirst);
}

void DrawingComposer::remove(civil::FileNumber file) {
  DrawingSources drawing = document_.sources();
  if (!has(file) || drawing.files.size() == 1) return;
  drawing.files.removeAt(static_cast<qsizetype>(file));
  document_.change(drawing);
}

void DrawingComposer::makeFirst(civil::FileNumber file) {
  DrawingSources drawing = document_.sources();
  if (!has(file)) return;
  drawing.files.move(static_cast<qsizetype>(file), 0);
  document_.change(drawing);
}

void DrawingComposer::swapAxes(civil::FileNumber file) {
  DrawingSources drawing = document_.sources();
  if (!has(file)) return;
  SourceFile& swapped = drawing.files[static_cast<qsizetype>(file)];
  swapped.swapAxes = !swapped.swapAxes;
  document_.change(drawing);
}

void DrawingComposer::offerIn(QMenu& menu, const TreeRow& row) {
  const bool isFile = row.kind == TreeRow::Kind::File && has(row.file);
  if (!isFile && row.kind != TreeRow::Kind::FilesHeading) return;
  const bool isIdle = !document_.isBusy();
  const auto offer = [&](const char* name, const QString& text, bool isPossible, std::function<void()> work) {
    QAction* const action = menu.addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setEnabled(isIdle && isPossible);
    connect(action, &QAction::triggered, this, std::move(work), Qt::QueuedConnection);
    return action;
  };
  offer("addFile", tr("&Add drawing…"), true, [this] { askAdd(); });
  if (!isFile) return;
  const QList<SourceFile>& files = document_.sources().files;
  const civil::FileNumber file = row.file;
  menu.addSeparator();
  QAction* const swap = offer("swapAxes", tr("&Swap northing and easting"), true, [this, file] { swapAxes(file); });
  swap->setCheckable(true);
  swap->setChecked(files[static_cast<qsizetype>(file)].swapAxes);
  offer("makeFirst", tr("&Make it the first file"), file != 0, [this, file] { makeFirst(file); });
  offer("removeFile", tr("&Remove from the drawing"), files.size() > 1, [this, file] { remove(file); });
  menu.addSeparator();
  const QString path = files[static_cast<qsizetype>(file)].path;
  offer("showInFolder", tr("Show in &folder"), true, [this, path] {
    if (const QString problem = showInFolder(path); !problem.isEmpty())
      QMessageBox::warning(&window_, tr("Show in folder"), problem);
  });
}

}  // namespace lvx::desktop
