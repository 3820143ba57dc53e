#include "desktop/shell/object_maker.h"

#include <QAction>
#include <QMenu>
#include <optional>
#include <utility>

#include "civil/reversible_change.h"
#include "desktop/common/qt_text.h"
#include "desktop/panels/drawing_tree.h"
#include "desktop/shell/desktop_front_end.h"
#include "desktop/shell/document.h"
#include "desktop/shell/edits.h"
#include "desktop/shell/ground_profile_dialog.h"
#include "desktop/shell/point_group_dialog.h"
#include "desktop/shell/selection.h"
#include "desktop/shell/session.h"

namespace lvx::desktop {

bool ObjectMaker::isPossible() const {
  return at_.document.isOpen() && !at_.document.isBusy() && !at_.frontEnd.isPicking();
}

const civil::Drawing& ObjectMaker::drawing() const { return at_.session.drawing()->drawing(); }

void ObjectMaker::askProfile() {
  if (!isPossible()) return;
  std::vector<civil::Handle> chosen{at_.selection.handle()};
  if (const civil::AlignmentObject* const alignment = at_.selection.alignment()) chosen.push_back(alignment->handle);
  GroundProfileDialog dialog(drawing(), chosen, &at_.window);
  if (dialog.exec() != QDialog::Accepted) return;
  at_.edits.make(tr("New profile “%1”").arg(dialog.name()),
                 civil::addingProfile(dialog.alignment(), toUtf8(dialog.name()), dialog.takeProfile()));
}

void ObjectMaker::askPointGroup() {
  if (!isPossible()) return;
  PointGroupDialog dialog(drawing(), at_.session.drawing()->index(), &at_.window);
  if (dialog.exec() == QDialog::Accepted) addGroup(dialog.name(), dialog.numbers());
}

void ObjectMaker::askPointGroupOfSelection() {
  if (!isPossible()) return;
  const auto selected = at_.frontEnd.selectPoints(tr("Select points for the group; Enter ends:"),
                                                  tr("Select points to take away; Enter ends:"), at_.selection.shown());
  if (!selected || selected->empty() || !isPossible()) return;
  const civil::DrawingIndex& index = at_.session.drawing()->index();
  civil::FilteredPoints chosen;
  for (const civil::Handle handle : *selected) {
    const auto entry = index.byHandle(handle);
    const auto* const point = entry ? entry->as<civil::Point>() : nullptr;
    if (point == nullptr) continue;
    // A group knows points by their numbers, and of two with one number it finds the first.
    if (index.pointByNumber(point->number) == point)
      chosen.numbers.push_back(point->number);
    else
      ++chosen.hidden;
  }
  PointGroupDialog dialog(drawing(), index, std::move(chosen), &at_.window);
  if (dialog.exec() == QDialog::Accepted) addGroup(dialog.name(), dialog.numbers());
}

void ObjectMaker::addGroup(const QString& name, std::vector<std::int32_t> numbers) {
  at_.edits.make(tr("New point group “%1”").arg(name), civil::addingPointGroup(toUtf8(name), std::move(numbers)));
}

void ObjectMaker::offer(QMenu& menu, const char* name, const QString& text, void (ObjectMaker::*work)()) {
  QAction* const action = menu.addAction(text);
  action->setObjectName(QLatin1String(name));
  action->setEnabled(isPossible());
  connect(action, &QAction::triggered, this, work, Qt::QueuedConnection);
}

void ObjectMaker::offerIn(QMenu& menu, const TreeRow& row) {
  if (!at_.document.isOpen()) return;
  std::optional<civil::ObjectKind> kind;
  if (const auto entry = at_.session.drawing()->index().byHandle(row.handle)) kind = entry->kind();
  if (kind == civil::ObjectKind::Alignment || kind == civil::ObjectKind::Surface)
    offer(menu, "treeNewProfile", tr("&Profile from surface…"), &ObjectMaker::askProfile);
  if (kind == civil::ObjectKind::PointGroup || row.kind == TreeRow::Kind::PointGroupsHeading) {
    offer(menu, "treeNewPointGroup", tr("Point group from &filter…"), &ObjectMaker::askPointGroup);
    offer(menu, "treeNewPointGroupOfSelection", tr("Point group from &selection…"),
          &ObjectMaker::askPointGroupOfSelection);
  }
}

void ObjectMaker::offerInPlan(QMenu& menu, civil::Handle handle) {
  if (!at_.document.isOpen()) return;
  const civil::DrawingIndex& index = at_.session.drawing()->index();
  const auto isPoint = [&index](civil::Handle object) {
    const auto entry = index.byHandle(object);
    return entry && entry->kind() == civil::ObjectKind::Point;
  };
  const std::vector<civil::Handle> selected = at_.selection.shown();
  if (isPoint(handle) || (!selected.empty() && isPoint(selected.front())))
    offer(menu, "planNewPointGroupOfSelection", tr("Point group from &selection…"),
          &ObjectMaker::askPointGroupOfSelection);
}

}  // namespace lvx::desktop
