#pragma once

#include <cstdint>

#include "dialogs/report_dialog.h"
#include "points/point_groups.h"

namespace lvx::points {

/// The selection dialog of the points report: site, alignment, point group or points picked by hand, output stem and the
/// three forms.
///
/// Its own ways, which users know: it tries to reach the model once, whatever comes of it. A chosen point group doesn't
/// survive an opening: each starts at the first row, or at the row of the points picked by hand where there are any. The
/// list of alignments is read on OK alone.
class CExportPointsDlg final : public dialogs::ReportDialog {
 public:
  explicit CExportPointsDlg(host::Host& host);
  ~CExportPointsDlg() override;

  /// Raises framework::InvalidArgumentException where the model is out of reach: not even the row of the points picked by
  /// hand stands in the list then.
  void onOpening(host::DialogWindow& window) override;
  void onSelectionChanged(host::DialogWindow& window, int id) override;

  // What the command reads, and what its picks change.
  bool loaded = false;
  /// The last row stands for the points picked by hand; the command sets its count.
  points::PointGroupList pointGroups;

 private:
  void attach();
  void fillPointGroups(host::DialogWindow& window);
  /// Tells how many points the selected row of the group list stands for, with `words` behind it.
  void showCount(host::DialogWindow& window, services::Message words) const;
  [[nodiscard]] std::int32_t selectedCount(const host::DialogWindow& window) const;

  void stemChanged(host::DialogWindow& window) override;
  void takeTextsOver(const host::DialogWindow& window) override;
  [[nodiscard]] bool isComplete() const override;
};

}  // namespace lvx::points
