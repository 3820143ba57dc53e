#pragma once

#include <cstdint>

#include "dialogs/dialog_window.h"
#include "gls/corridor_records.h"
#include "gls/gls_records.h"
#include "host/site_tree.h"

namespace lvx::dialogs {

/// The selection dialog of the GLS report: site, alignment, profile, corridor, sample line group, output stem and the
/// three forms; it also holds the report. One object serves one run of the command and is opened again after every pick;
/// what survives between openings are the selections as texts, so each opening fills the lists anew and finds its rows
/// by name.
///
/// The corridor list is for information: the report reads all corridors, whatever is chosen there. Once OK is enabled
/// nothing disables it again, not even an emptied stem, which the command then answers.
class CMyDialog3 final : public DialogBehaviour {
 public:
  explicit CMyDialog3(host::Host& host) : host_(host) {}
  ~CMyDialog3() override;

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
  /// Names and baselines alone.
  gls::CorridorList corridorList;
  gls::tglsReport report;
  CString siteText;
  CString alignmentText;
  CString groupText;
  CString profileText;
  CString corridorText;
  std::int32_t siteIndex = -1;
  std::int32_t alignmentIndex = -1;
  std::int32_t groupIndex = -1;
  std::int32_t profileIndex = -1;
  std::int32_t corridorIndex = -1;
  CString outputStem;
  /// The alignment list's text at OK; handed to the writers.
  CString reportAlignmentText;
  /// 1 is ticked.
  std::int16_t checkAscii = 0;
  std::int16_t checkExcel = 0;
  std::int16_t checkThird = 0;

  static constexpr int kIdProfiles = 112;
  static constexpr int kIdCorridors = 113;
  static constexpr int kIdLabelProfile = 118;
  static constexpr int kIdLabelCorridor = 119;
  static constexpr int kIdPickProfile = 125;
  static constexpr int kIdGroups = 262;

 private:
  void attach();
  void loadCorridors();

  void fillSites(DialogWindow& window);
  void fillAlignments(DialogWindow& window);
  void fillGroups(DialogWindow& window);
  void fillProfiles(DialogWindow& window);
  void fillCorridors(DialogWindow& window);
  /// True where one of the corridor's baselines lies on any alignment of the drawing, not just on the selected one.
  [[nodiscard]] bool isListed(const gls::tcorridor& corridor) const;
  /// Adds the names of the listed corridors.
  void insertCorridors(DialogWindow& window) const;
  /// The site tree's record of the selected alignment, which holds its profiles.
  [[nodiscard]] const host::tsiteAlignment& selectedInTree() const;
  /// The overall list's record of it, by handle text, which holds its sample line groups; null where there is none.
  [[nodiscard]] const host::talignment2* selectedInOverallList() const;

  /// Empties the lists of what belongs to an alignment, and forgets its choices.
  void forgetGroupAndProfile(DialogWindow& window);
  /// Fills both lists for the selected alignment and chooses the first row of each.
  void offerGroupsAndProfiles(DialogWindow& window);
  /// Takes the text of a valid row over and selects it.
  static void choose(DialogWindow& window, int list, std::int32_t index, CString& text);

  void siteChanged(DialogWindow& window);
  void alignmentChanged(DialogWindow& window);
  void groupChanged(DialogWindow& window);
  void profileChanged(DialogWindow& window);
  void corridorChanged(DialogWindow& window);
  void stemChanged(DialogWindow& window);
  void takeOver(DialogWindow& window);
  void enableOkIfComplete(DialogWindow& window) const;

  host::Host& host_;
};

}  // namespace lvx::dialogs
