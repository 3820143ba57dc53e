#pragma once

#include <cstdint>

#include "dialogs/dialog_window.h"
#include "host/site_tree.h"
#include "points/point_groups.h"

namespace lvx::dialogs {

/// The selection dialog of the points report: site, alignment, point group or points picked by hand, output stem and the
/// three forms. One object serves one run of the command and is opened again after every pick.
///
/// Its own ways, which users know: it tries to reach the model once, whatever comes of it. A chosen point group doesn't
/// survive an opening: each starts at the first row, or at the row of the points picked by hand where there are any.
/// Between openings it keeps the selected site and alignment as texts, the stem, and the count of picked points.
class CExportPointsDlg final : public DialogBehaviour {
 public:
  explicit CExportPointsDlg(host::Host& host) : host_(host) {}
  ~CExportPointsDlg() override;

  [[nodiscard]] const DialogTemplate& dialogTemplate() const override;
  /// Raises framework::InvalidArgumentException where the model is out of reach: not even the row of the points picked by
  /// hand stands in the list then.
  void onOpening(DialogWindow& window) override;
  void onClick(DialogWindow& window, int id) override;
  void onSelectionChanged(DialogWindow& window, int id) override;
  void onTextChanged(DialogWindow& window, int id) override;

  // What the command reads, and what its picks change.
  bool loaded = false;
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  host::SiteTree sites;
  /// The last row stands for the points picked by hand; the command sets its count.
  points::PointGroupList pointGroups;
  host::AlignmentList alignments;
  CString siteText;
  CString alignmentText;
  CString groupText;
  std::int32_t siteIndex = -1;
  std::int32_t alignmentIndex = -1;
  std::int32_t groupIndex = -1;
  /// Full path without extension; kept across openings.
  CString outputStem;
  /// 1 is ticked.
  std::int16_t checkAscii = 0;
  std::int16_t checkExcel = 0;
  std::int16_t checkThird = 0;

  static constexpr int kIdPointGroups = 102;
  static constexpr int kIdPointCount = 105;

 private:
  void attach();
  void fillSites(DialogWindow& window);
  void fillAlignments(DialogWindow& window);
  void fillPointGroups(DialogWindow& window);
  /// Tells how many points the selected row of the group list stands for, with the words of message `words`.
  void showCount(DialogWindow& window, std::uint32_t words) const;
  [[nodiscard]] std::int32_t selectedCount(const DialogWindow& window) const;

  void siteChanged(DialogWindow& window);
  void stemChanged(DialogWindow& window);
  void takeOver(DialogWindow& window);
  [[nodiscard]] bool isComplete() const { return groupIndex >= 0 && !outputStem.empty(); }

  host::Host& host_;
};

}  // namespace lvx::dialogs
