#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "dialogs/dialog_services.h"
#include "host/dialog_window.h"
#include "host/site_tree.h"

namespace lvx::dialogs {

/// A report dialog as data: its controls, and what stands on them beside what all report dialogs show alike.
struct ReportDialogParts {
  const DialogTemplate* dialogTemplate = nullptr;
  /// The window's title.
  services::Message title{};
  std::span<const Caption> captions{};
  /// Pictures whose white takes the colour of the dialog's face, and one that keeps it.
  std::span<const PictureOn> smallPictures{};
  std::span<const PictureOn> plainPictures{};
  /// The pick button below that of the alignments; also the code with which it closes the dialog.
  int secondPick = 0;
  std::wstring_view helpPage{};
};

/// What the three report dialogs have in common: site and alignment, output stem, the three forms, and the steps of
/// which each dialog makes its openings and its answers. When it counts as attached, what a change of a list brings with
/// it, when OK is enabled and in which order things are given back is each dialog's own and stands in its own file.
///
/// One object serves one run of a command and is opened again after every pick; what survives between openings are the
/// selections as texts, so each opening fills the lists anew and finds its rows by name.
class ReportDialog : public DialogBehaviour {
 public:
  [[nodiscard]] const DialogTemplate& dialogTemplate() const final { return *parts_.dialogTemplate; }
  void onClick(DialogWindow& window, int id) final;
  void onTextChanged(DialogWindow& window, int id) final;

  [[nodiscard]] int secondPick() const { return parts_.secondPick; }

  // What the command reads, and what its picks change.
  host::Ref<host::QmtDocument> document;
  host::Ref<host::QmtDatabase> database;
  host::SiteTree sites;
  host::AlignmentList alignments;
  CString siteText;
  CString alignmentText;
  /// Of sample lines or of points.
  CString groupText;
  std::int32_t siteIndex = -1;
  std::int32_t alignmentIndex = -1;
  std::int32_t groupIndex = -1;
  /// Full path without extension.
  CString outputStem;
  /// 1 is ticked.
  std::int16_t checkAscii = 0;
  std::int16_t checkExcel = 0;
  std::int16_t checkThird = 0;

 protected:
  /// `parts` outlives the dialog.
  ReportDialog(host::Host& host, const ReportDialogParts& parts) : host_(host), parts_(parts) {}

  // ---------------------------------------------------------------- what each dialog decides

  /// `outputStem` holds the new text: whether OK follows.
  virtual void stemChanged(DialogWindow& window) = 0;
  /// OK was pressed: reads what the report takes from the lists.
  virtual void takeTextsOver(const DialogWindow& window) = 0;
  /// True where nothing is missing that OK asks for.
  [[nodiscard]] virtual bool isComplete() const = 0;

  // ---------------------------------------------------------------- attaching and going

  /// What the companion library hands out.
  struct Model {
    host::Ref<host::QmtDocument> document;
    host::Ref<host::QmtDatabase> database;
  };
  /// Empty where the model is out of reach. Nothing is taken yet: a Model that goes out of scope leaves no trace.
  [[nodiscard]] static std::optional<Model> reachModel();
  /// Keeps the model and fills `sites`, without those that have no alignment, and `alignments`.
  void take(Model model);
  /// Forgets document and database and lets the companion library give them up: the last step of going.
  void releaseModel();

  // ---------------------------------------------------------------- steps of an opening

  /// Title, captions, stem with its tip, pictures; all drop-down lists are emptied.
  void showLook(DialogWindow& window);
  /// Fills the list of sites and finds the selected one; then the same with the alignments of that site.
  void fillSites(DialogWindow& window);
  void fillAlignments(DialogWindow& window);
  /// Fills the list of sample line groups and finds the selected one. An alignment that the overall list doesn't hold
  /// leaves the index at 0 with no row there, which ends the command.
  void fillSampleLineGroups(DialogWindow& window);
  /// Takes the text of a valid row over and selects it. At an opening a selection whose name has gone so falls back to
  /// the first row, and its text changes with it. The row of the alignments outside any site always does: it shows a
  /// message's text, which is no site's name.
  static void choose(DialogWindow& window, int list, std::int32_t index, CString& text);
  /// Never disables OK.
  void enableOkIfComplete(DialogWindow& window) const;

  // ---------------------------------------------------------------- steps of an answer

  /// Takes the selected row of a list over.
  static void takeRow(const DialogWindow& window, int list, std::int32_t& index, CString& text);
  /// Text of a list's selected row; empty where none is.
  [[nodiscard]] static CString selectedText(const DialogWindow& window, int list);
  /// Takes the selected site over, lists its alignments in place of the former ones and chooses the first.
  void changeSite(DialogWindow& window);
  /// Lists the sample line groups of the selected alignment in place of the former ones: true where there are any. None
  /// of them is chosen.
  bool listSampleLineGroups(DialogWindow& window);
  /// The site tree's record of the selected alignment, which holds its profiles.
  [[nodiscard]] const host::tsiteAlignment& selectedInTree() const;
  /// The overall list's record of it, by handle text, which holds its sample line groups; null where there is none.
  [[nodiscard]] const host::talignment2* selectedInOverallList() const;

  /// Adds the names of `records` to an empty list: the first row, or -1 without any.
  template <class Records>
  static std::int32_t insertNames(DialogWindow& window, int list, const Records& records) {
    std::int32_t row = 0;
    for (const auto* record : records) window.insertRow(list, row++, record->name);
    return row == 0 ? -1 : 0;
  }
  /// The same, but the row of `wanted` where there is one: the last, should there be several.
  template <class Records>
  static std::int32_t insertNames(DialogWindow& window, int list, const Records& records, const CString& wanted) {
    std::int32_t found = insertNames(window, list, records);
    std::int32_t row = 0;
    for (const auto* record : records) {
      if (record->name == wanted) found = row;
      ++row;
    }
    return found;
  }

  host::Host& host_;

 private:
  const ReportDialogParts& parts_;
};

}  // namespace lvx::dialogs
