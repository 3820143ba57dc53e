#include "dialogs/export_points_dlg.h"

#include <array>

#include "dialogs/dialog_services.h"
#include "host/companion.h"
#include "host/host.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"

namespace lvx::dialogs {

using services::getMessage;
using services::kMessageSet;

namespace {

using enum ControlKind;

// In tab order.
constexpr std::array<ControlTemplate, 24> kControls{{
    {1, DefaultButton, L"OK", {114, 193, 50, 14}, false},
    {2, PushButton, L"Cancel", {170, 193, 50, 14}},
    {9, PushButton, L"Help", {226, 193, 50, 14}},
    {228, GroupBox, L"*Selection (Site && Axis && Profiles)", {6, 3, 270, 88}},
    {264, Label, L"*Site:", {12, 16, 108, 8}},
    {265, Label, L"*Alignment:", {12, 34, 108, 8}},
    {103, Label, L"*Point groups:", {12, 52, 108, 8}},
    {104, Label, L"*Selected points:", {12, 71, 108, 8}},
    {270, Picture, L"", {126, 16, 15, 13}},
    {271, Picture, L"", {126, 34, 15, 13}},
    {273, Picture, L"", {126, 52, 15, 13}},
    {278, Picture, L"", {126, 70, 15, 13}},
    {261, DropDownList, L"", {144, 15, 108, 78}},
    {263, DropDownList, L"", {144, 33, 108, 78}},
    {102, DropDownList, L"", {144, 51, 108, 78}},
    {105, Label, L"* Points selected", {144, 71, 108, 8}},
    {126, PictureButton, L"*", {257, 32, 15, 14}},
    {232, PictureButton, L"*", {257, 50, 15, 14}},
    {230, GroupBox, L"*Output file", {7, 95, 269, 91}},
    {274, CheckBox, L"*Export to ASCII", {36, 112, 108, 10}},
    {275, CheckBox, L"*Export to Excel", {36, 126, 108, 10}},
    {276, CheckBox, L"*Export to Xml", {36, 140, 108, 10}},
    {233, PictureButton, L"*", {14, 159, 15, 14}},
    {100, EditBox, L"", {35, 160, 217, 13}},
}};

constexpr DialogTemplate kTemplate{"CExportPointsDlg", L"*Export Points", 283, 214, kControls};

constexpr std::array<Caption, 8> kCaptions{{{kIdCancel, 4},
                                            {kIdHelp, 5},
                                            {kIdGroupSelection, 202},
                                            {kIdLabelSite, 103},
                                            {kIdLabelAlignment, 104},
                                            {103, 203},
                                            {104, 221},
                                            {kIdGroupOutput, 108}}};

constexpr std::array<PictureOn, 4> kSmallPictures{
    {{270, kPictureSite}, {271, kPictureAlignment}, {273, kPicturePointGroup}, {278, kPicturePoint}}};

constexpr std::array<PictureOn, 3> kButtonPictures{
    {{kIdPickAlignment, kPicturePick}, {kIdPickSecond, kPicturePick}, {kIdOutputFileBox, kPictureSave}}};

constexpr std::uint32_t kOnePoint = 224;
constexpr std::uint32_t kPoints = 225;

/// Text of a list's selected row; empty where none is.
CString selectedText(const DialogWindow& window, int list) {
  const int row = window.selection(list);
  return row == DialogWindow::kNone ? CString() : window.rowText(list, row);
}

}  // namespace

CExportPointsDlg::~CExportPointsDlg() {
  if (!loaded) return;
  pvsa_lvx_relsites(sites);
  host::releaseAllAlignments(alignments);
  points::releasePointGroups(pointGroups);
  database.reset();
  document.reset();
  pvsa_lvx_releaseQmtObject();
}

const DialogTemplate& CExportPointsDlg::dialogTemplate() const { return kTemplate; }

void CExportPointsDlg::attach() {
  host::Ref<host::QmtDocument> newDocument;
  host::Ref<host::QmtDatabase> newDatabase;
  const bool reached = pvsa_lvx_getQmtObject(newDocument, newDatabase) > 0;
  loaded = true;  // also where it failed: this dialog doesn't try again. From here on the destructor gives all back.
  if (reached) {
    document = std::move(newDocument);
    database = std::move(newDatabase);
    pvsa_lvx_getsites(sites);
    host::loadAllAlignments(host_, document, database, alignments);
    points::loadPointGroups(document, database, pointGroups);
  }
  host::removeSitesWithoutAlignments(sites);
}

void CExportPointsDlg::onOpening(DialogWindow& window) {
  if (!loaded) attach();

  window.setTitle(getMessage(kMessageSet, 201));
  setCaptions(window, kCaptions);
  window.setText(kIdOutputStem, outputStem);
  window.setTip(kIdOutputStem, outputStem);
  setPictures(host_, window, kSmallPictures, kButtonPictures);
  for (const int list : {kIdSites, kIdAlignments, kIdPointGroups}) window.emptyList(list);

  fillSites(window);
  fillAlignments(window);
  fillPointGroups(window);

  // A selection whose name has gone falls back to the first row here, and its text changes with it. The row of the
  // alignments outside any site always does: it shows a message's text, which is no site's name.
  struct Choice {
    int list;
    std::int32_t index;
    CString& text;
  };
  for (const Choice& choice :
       {Choice{kIdSites, siteIndex, siteText}, Choice{kIdAlignments, alignmentIndex, alignmentText},
        Choice{kIdPointGroups, groupIndex, groupText}}) {
    if (choice.index < 0) continue;
    choice.text = window.rowText(choice.list, choice.index);
    window.select(choice.list, choice.index);
  }

  // Points picked by hand win at each opening. What was selected before them is read anew on OK.
  const framework::ArrayIndex pickedRow = pointGroups.size() - 1;
  if (pointGroups[pickedRow]->count > 0) window.select(kIdPointGroups, static_cast<int>(pickedRow));
  showCount(window, selectedCount(window) == 1 ? kOnePoint : kPoints);

  if (isComplete()) window.enable(kIdOk, true);
  setFormChecks(window);
}

void CExportPointsDlg::fillSites(DialogWindow& window) {
  siteIndex = 0;
  for (framework::ArrayIndex i = 0; i < sites.size(); ++i) {
    const host::tsite& site = *sites[i];
    const auto row = static_cast<std::int32_t>(i);
    window.insertRow(kIdSites, row, site.name.empty() ? getMessage(kMessageSet, 109) : site.name);
    if (site.name == siteText) siteIndex = row;
  }
  if (sites.isEmpty()) siteIndex = -1;
}

void CExportPointsDlg::fillAlignments(DialogWindow& window) {
  alignmentIndex = 0;
  if (siteIndex >= 0) {
    const auto& children = sites[siteIndex]->alignments;
    for (framework::ArrayIndex i = 0; i < children.size(); ++i) {
      const auto row = static_cast<std::int32_t>(i);
      window.insertRow(kIdAlignments, row, children[i]->name);
      if (children[i]->name == alignmentText) alignmentIndex = row;
    }
  }
  if (window.rowCount(kIdAlignments) == 0) alignmentIndex = -1;
}

void CExportPointsDlg::fillPointGroups(DialogWindow& window) {
  // The former choice is forgotten, so only a group without a name moves the start away from the first row.
  groupText.clear();
  groupIndex = 0;
  for (framework::ArrayIndex i = 0; i < pointGroups.size(); ++i) {
    const auto row = static_cast<std::int32_t>(i);
    window.insertRow(kIdPointGroups, row, pointGroups[i]->name);
    if (pointGroups[i]->name == groupText) groupIndex = row;
  }
  if (pointGroups.isEmpty()) groupIndex = -1;
}

std::int32_t CExportPointsDlg::selectedCount(const DialogWindow& window) const {
  return pointGroups[window.selection(kIdPointGroups)]->count;
}

void CExportPointsDlg::showCount(DialogWindow& window, std::uint32_t words) const {
  window.setText(kIdPointCount, services::formatText(
                                    L"%ld %s", {std::int64_t{selectedCount(window)}, getMessage(kMessageSet, words)}));
}

void CExportPointsDlg::onClick(DialogWindow& window, int id) {
  switch (id) {
    case kIdPickAlignment:
    case kIdPickSecond:
    case kIdCancel:
      window.end(id);
      break;
    case kIdOutputFileBox:
      if (runOutputFileBox(host_, window)) outputStem = window.text(kIdOutputStem);
      break;
    case kIdHelp:
      showHelp(host_, CString(kHelpPoints));
      break;
    case kIdOk:
      takeOver(window);
      break;
    default:
      break;
  }
}

void CExportPointsDlg::onSelectionChanged(DialogWindow& window, int id) {
  // The list of alignments is read on OK alone.
  if (id == kIdSites)
    siteChanged(window);
  else if (id == kIdPointGroups)
    showCount(window, kPoints);  // in the plural even for one point, unlike at the opening: users know the text so
}

void CExportPointsDlg::onTextChanged(DialogWindow& window, int id) {
  if (id == kIdOutputStem) stemChanged(window);
}

void CExportPointsDlg::siteChanged(DialogWindow& window) {
  const int row = window.selection(kIdSites);
  if (row == DialogWindow::kNone) return;
  siteIndex = row;
  window.emptyList(kIdAlignments);
  alignmentText.clear();
  int rows = 0;
  for (const host::tsiteAlignment* alignment : sites[siteIndex]->alignments)
    window.insertRow(kIdAlignments, rows++, alignment->name);
  alignmentIndex = rows == 0 ? -1 : 0;

  siteText = window.rowText(kIdSites, siteIndex);
  if (alignmentIndex >= 0) {
    alignmentText = window.rowText(kIdAlignments, alignmentIndex);
    window.select(kIdAlignments, alignmentIndex);
  }
}

void CExportPointsDlg::stemChanged(DialogWindow& window) {
  outputStem = window.text(kIdOutputStem);
  window.enable(kIdOk, isComplete());
}

void CExportPointsDlg::takeOver(DialogWindow& window) {
  siteText = selectedText(window, kIdSites);
  alignmentText = selectedText(window, kIdAlignments);
  groupText = selectedText(window, kIdPointGroups);
  checkAscii = window.isTicked(kIdCheckAscii) ? 1 : 0;
  checkExcel = window.isTicked(kIdCheckExcel) ? 1 : 0;
  checkThird = window.isTicked(kIdCheckThird) ? 1 : 0;
  window.end(kIdOk);
}

}  // namespace lvx::dialogs
