#pragma once

#include <QObject>
#include <filesystem>

#include "desktop/shell/drawing_sources.h"

class QWidget;

namespace lvx::desktop {

class RecentDrawings;
class StartPage;

/// What can be opened while no drawing is: the recent drawings and the example, over the plan.
class StartDrawings : public QObject {
  Q_OBJECT
 public:
  /// `over` and `recent` outlive it; `bin` is the programs' folder, by which the example is found.
  StartDrawings(QWidget& over, const RecentDrawings& recent, const std::filesystem::path& bin);

  void setShown(bool isShown);

 Q_SIGNALS:
  void chosen(const lvx::desktop::DrawingSources& drawing);
  void openWanted();

 private:
  void fill();

  const RecentDrawings& recent_;
  QString example_;
  StartPage* page_;
  QList<DrawingSources> drawings_;
};

}  // namespace lvx::desktop
