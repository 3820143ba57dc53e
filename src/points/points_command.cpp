#include "points/points_command.h"

#include <memory>

#include "dialogs/report_command.h"
#include "host/host.h"
#include "host/picking.h"
#include "points/point_collector.h"
#include "points/point_sort.h"
#include "points/points_ascii.h"
#include "points/points_dialog.h"
#include "points/points_excel.h"
#include "points/points_html.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::points {

using points::CExportPointsDlg;
using services::getMessage;
using services::Message;

namespace {

/// The command's selection set: made empty, filled and freed by every pick, freed for good at the end.
class SelectionSet {
 public:
  explicit SelectionSet(host::RunTime& runTime) : runTime_(runTime) { runTime_.vnedSSAdd(name_); }
  SelectionSet(const SelectionSet&) = delete;
  SelectionSet& operator=(const SelectionSet&) = delete;
  ~SelectionSet() { free(); }

  [[nodiscard]] host::EntityName& name() { return name_; }
  /// A set that is freed already is nothing to the host.
  void free() { runTime_.vnedSSFree(name_); }

 private:
  host::RunTime& runTime_;
  host::EntityName name_;
};

/// A filter for one class, given back at the end of the scope.
class ClassFilter {
 public:
  ClassFilter(host::RunTime& runTime, const wchar_t* classTag)
      : runTime_(runTime), list_(runTime.vnutBuildList(static_cast<std::int16_t>(host::kEntityStart), classTag)) {}
  ClassFilter(const ClassFilter&) = delete;
  ClassFilter& operator=(const ClassFilter&) = delete;
  ~ClassFilter() { runTime_.vnutRelRb(list_); }

  [[nodiscard]] const host::FilterList& list() const { return *list_; }

 private:
  host::RunTime& runTime_;
  host::FilterList* list_;
};

/// Replaces `pickedNumbers` by the numbers of the points that the user selects, and tells the dialog's last row how many
/// they are. Giving the selection up leaves none. False where the host can't identify something that it delivered: the
/// command ends then, and filter and selection are freed all the same.
bool pickPoints(host::Host& host, CExportPointsDlg& dialog, SelectionSet& selection, PickedNumbers& pickedNumbers) {
  host::RunTime& runTime = host.runTime();
  pickedNumbers.removeAll();
  {
    const ClassFilter filter(runTime, host::kClassPoint);
    // Whatever its status, the set holds what was selected.
    runTime.vnedSSGet(L":$", {getMessage(Message::SelectPointsToAdd), getMessage(Message::SelectPointsToRemove)},
                      filter.list(), selection.name());
    std::int64_t length = 0;
    runTime.vnedSSLength(selection.name(), length);
    for (std::int64_t i = 0; i < length; ++i) {
      host::EntityName entity;
      runTime.vnedSSName(selection.name(), i, entity);
      host::VnDbObjectId id;
      if (runTime.vndbGetObjectId(id, entity) != host::kSuccess) return false;
      if (const auto point = std::dynamic_pointer_cast<host::QmtPoint>(dialog.document->objectFromId(id)))
        pickedNumbers.add(point->number());
    }
    PointGroupList& groups = dialog.pointGroups;
    groups[groups.size() - 1]->count = static_cast<std::int32_t>(pickedNumbers.size());
  }
  selection.free();
  return true;
}

}  // namespace

void runPointsReport(host::Host& host) {
  CExportPointsDlg dialog(host);
  SelectionSet selection(host.runTime());
  PickedNumbers pickedNumbers;
  const auto pick = [&] { return pickPoints(host, dialog, selection, pickedNumbers); };
  // An output path without its folder brings the dialog back.
  do {
    if (!dialogs::runUntilOk(host, dialog, pick)) return;
  } while (!services::mayWriteUnderStem(host, dialog.outputStem));

  PointList rows;
  collectPoints(dialog.document, dialog.database, dialog.siteText, dialog.alignmentText, dialog.groupText,
                pickedNumbers, rows);
  sortPointsByStation(rows);
  if (rows.isEmpty()) return;  // no file at all, and no question about those that stand
  dialogs::writeTickedForms(host, dialog,
                            {.ascii = [&](const CString& name) { writePointsAscii(name, rows); },
                             .excel = [&](const CString& name) { writePointsExcel(name, rows); },
                             .html = [&](const CString& name) { writePointsHtml(name, rows); }});
}

}  // namespace lvx::points
