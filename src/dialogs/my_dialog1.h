#pragma once

#include <cstdint>

#include "dialogs/dialog_window.h"
#include "host/site_tree.h"

namespace lvx::dialogs {

/// The selection dialog of the profile projection report: site, alignment, surface, sample line group, output stem and
/// the three forms. One object serves one run of the command and is opened again after every pick; what survives
/// between openings are the selections as texts, so each opening fills the lists anew and finds its rows by name.
class CMyDialog1 final : public DialogBehaviour {
 public:
  explicit CMyDialog1(host::Host& host) : host_(host) {}
  ~CMyDialog1() override;

  [[nodiscard]] const DialogTemplate& dialogTemplate() const override;
  void onOpening(DialogWindow& window) override;
  void onClick(DialogWindow& window, int id) override;
  void onSelectionChanged(DialogWindow& window, int id) override;
  void onTextChanged(DialogWindow& window, int id) override;

  // What the command reads, and what its picks change.
  std::int32_t loaded = 0;
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  host::SiteTree sites;
  host::AlignmentList alignments;
  CString siteText;
  CString alignmentText;
  CString groupText;
  CString surfaceText;
  std::int32_t siteIndex = -1;
  std::int32_t alignmentIndex = -1;
  std::int32_t groupIndex = -1;
  std::int32_t surfaceIndex = -1;
  host::Ref<host::QmtSurfaceList> surfaces;
  CString outputStem;
  /// The alignment list's text at OK; handed to the writers.
  CString reportAlignmentText;
  /// 1 is ticked.
  std::int16_t checkAscii = 0;
  std::int16_t checkExcel = 0;
  std::int16_t checkThird = 0;

  static constexpr int kIdGroups = 262;
  static constexpr int kIdSurfaces = 268;

 private:
  void attach();
  void fillSites(DialogWindow& window);
  void fillAlignments(DialogWindow& window);
  void fillSurfaces(DialogWindow& window);
  /// The overall list's record of the selected alignment, by handle text; null where it has none. Only that list holds
  /// the sample line groups.
  [[nodiscard]] host::talignment2* selectedInOverallList() const;
  /// Inserts the record's groups in their order.
  static void insertGroups(DialogWindow& window, const host::talignment2& alignment);

  void siteChanged(DialogWindow& window);
  void alignmentChanged(DialogWindow& window);
  void groupChanged(DialogWindow& window);
  void surfaceChanged(DialogWindow& window);
  void stemChanged(DialogWindow& window);
  void takeOver(DialogWindow& window);
  [[nodiscard]] bool isComplete() const;
  /// Only a change of the stem ever disables OK; everything else can but enable it.
  void enableOkIfComplete(DialogWindow& window) const;

  host::Host& host_;
};

}  // namespace lvx::dialogs
