#pragma once

#include <cstdint>

#include "dialogs/report_dialog.h"
#include "gls/corridor_records.h"
#include "gls/gls_records.h"

namespace lvx::gls {

/// The selection dialog of the GLS report: site, alignment, profile, corridor, sample line group, output stem and the
/// three forms; it also holds the report.
///
/// Its own ways, which users know: the corridor list is for information, the report reads all corridors, whatever is
/// chosen there. Once OK is enabled nothing disables it again, not even an emptied stem, which the command then answers.
/// It needs the corridor side of the model too, and tells at each opening where that is out of reach.
class CMyDialog3 final : public dialogs::ReportDialog {
 public:
  explicit CMyDialog3(host::Host& host);
  ~CMyDialog3() override;

  void onOpening(host::DialogWindow& window) override;
  void onSelectionChanged(host::DialogWindow& window, int id) override;

  // What the command reads, and what its picks change.
  std::int32_t loaded = 0;
  /// Names and baselines alone.
  gls::CorridorList corridorList;
  gls::tglsReport report;
  CString profileText;
  CString corridorText;
  std::int32_t profileIndex = -1;
  std::int32_t corridorIndex = -1;
  /// The alignment list's text at OK; handed to the writers.
  CString reportAlignmentText;

 private:
  /// Where either side of the model is out of reach nothing changes, and the next opening tries again.
  void attach();
  void loadCorridors();

  void fillProfiles(host::DialogWindow& window);
  void fillCorridors(host::DialogWindow& window);
  /// True where one of the corridor's baselines lies on any alignment of the drawing, not just on the selected one.
  [[nodiscard]] bool isListed(const gls::tcorridor& corridor) const;
  /// Adds the names of the listed corridors.
  void insertCorridors(host::DialogWindow& window) const;
  /// Lists what belongs to the selected alignment in place of the former, and chooses the first of each.
  void changeGroupAndProfile(host::DialogWindow& window);

  void siteChanged(host::DialogWindow& window);
  void alignmentChanged(host::DialogWindow& window);
  void corridorChanged(host::DialogWindow& window);
  void stemChanged(host::DialogWindow& window) override;
  void takeTextsOver(const host::DialogWindow& window) override;
  [[nodiscard]] bool isComplete() const override;
};

}  // namespace lvx::gls
