#pragma once

#include <cstdint>

#include "dialogs/report_dialog.h"

namespace lvx::projection {

using framework::CString;

/// The selection dialog of the profile projection report: site, alignment, surface, sample line group, output stem and
/// the three forms.
///
/// Its own ways, which users know: only a change of the stem ever disables OK, everything else can but enable it. A
/// change of alignment leaves the group for the user to choose.
class CMyDialog1 final : public dialogs::ReportDialog {
 public:
  explicit CMyDialog1(host::Host& host);
  ~CMyDialog1() override;

  void onOpening(host::DialogWindow& window) override;
  void onSelectionChanged(host::DialogWindow& window, int id) override;

  // What the command reads, and what its picks change.
  std::int32_t loaded = 0;
  CString surfaceText;
  std::int32_t surfaceIndex = -1;
  host::Ref<host::QmtSurfaceList> surfaces;
  /// The alignment list's text at OK; handed to the writers.
  CString reportAlignmentText;

 private:
  /// Where the model is out of reach nothing changes, and the next opening tries again.
  void attach();
  void fillSurfaces(host::DialogWindow& window);

  void siteChanged(host::DialogWindow& window);
  void alignmentChanged(host::DialogWindow& window);
  void stemChanged(host::DialogWindow& window) override;
  void takeTextsOver(const host::DialogWindow& window) override;
  [[nodiscard]] bool isComplete() const override;
};

}  // namespace lvx::projection
