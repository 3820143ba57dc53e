#include "dialogs/my_dialog1.h"

#include <array>

#include "dialogs/dialog_services.h"
#include "host/companion.h"
#include "host/host.h"
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
    {228, GroupBox, L"*Selection (Site && Axis && Profiles)", {6, 3, 270, 87}},
    {264, Label, L"*Site:", {12, 16, 108, 8}},
    {265, Label, L"*Alignment:", {12, 34, 108, 8}},
    {267, Label, L"*Surface:", {12, 54, 108, 8}},
    {266, Label, L"*Sample line group:", {12, 73, 108, 8}},
    {270, Picture, L"", {126, 16, 15, 13}},
    {271, Picture, L"", {126, 34, 15, 13}},
    {273, Picture, L"", {126, 54, 15, 13}},
    {101, Picture, L"", {126, 73, 15, 13}},
    {261, DropDownList, L"", {144, 15, 108, 78}},
    {263, DropDownList, L"", {144, 33, 108, 78}},
    {268, DropDownList, L"", {144, 53, 108, 78}},
    {262, DropDownList, L"", {144, 72, 108, 78}},
    {126, PictureButton, L"*", {257, 32, 15, 14}},
    {232, PictureButton, L"*", {257, 52, 15, 14}},
    {230, GroupBox, L"*Output file", {7, 95, 269, 91}},
    {274, CheckBox, L"*Export to ASCII", {36, 112, 108, 10}},
    {275, CheckBox, L"*Export to Excel", {36, 126, 108, 10}},
    {276, CheckBox, L"*Export to Xml", {36, 140, 108, 10}},
    {233, PictureButton, L"*", {14, 159, 15, 14}},
    {100, EditBox, L"", {35, 160, 217, 13}},
}};

constexpr DialogTemplate kTemplate{"CMyDialog1", L"*Profiles projection", 283, 214, kControls};

constexpr std::array<Caption, 8> kCaptions{{{kIdCancel, 4},
                                            {kIdHelp, 5},
                                            {kIdGroupSelection, 102},
                                            {kIdLabelSite, 103},
                                            {kIdLabelAlignment, 104},
                                            {266, 105},
                                            {267, 107},
                                            {kIdGroupOutput, 108}}};

constexpr std::array<PictureOn, 4> kSmallPictures{
    {{270, kPictureSite}, {271, kPictureAlignment}, {101, kPictureSampleLineGroup}, {273, kPictureSurface}}};

constexpr std::array<PictureOn, 3> kButtonPictures{
    {{kIdPickAlignment, kPicturePick}, {kIdPickSecond, kPicturePick}, {kIdOutputFileBox, kPictureSave}}};

}  // namespace

CMyDialog1::~CMyDialog1() {
  if (loaded == 0) return;
  surfaces.reset();
  host::releaseAllAlignments(alignments);
  pvsa_lvx_relsites(sites);
  database.reset();
  document.reset();
  pvsa_lvx_releaseQmtObject();
}

const DialogTemplate& CMyDialog1::dialogTemplate() const { return kTemplate; }

void CMyDialog1::attach() {
  host::Ref<host::QmtDocument> newDocument;
  host::Ref<host::QmtDatabase> newDatabase;
  if (pvsa_lvx_getQmtObject(newDocument, newDatabase) < 1) return;
  document = std::move(newDocument);
  database = std::move(newDatabase);
  loaded = 1;  // from here on the destructor gives everything back
  pvsa_lvx_getsites(sites);
  host::loadAllAlignments(host_, document, database, alignments);
  surfaces = document->surfaces();
  host::removeSitesWithoutAlignments(sites);
}

void CMyDialog1::onOpening(DialogWindow& window) {
  if (loaded == 0) attach();

  window.setTitle(getMessage(kMessageSet, 101));
  setCaptions(window, kCaptions);
  window.setText(kIdOutputStem, outputStem);
  window.setTip(kIdOutputStem, outputStem);
  setPictures(host_, window, kSmallPictures, kButtonPictures);
  for (const int list : {kIdSites, kIdAlignments, kIdGroups, kIdSurfaces}) window.emptyList(list);

  fillSites(window);
  fillAlignments(window);

  groupIndex = siteIndex < 0 || alignmentIndex < 0 ? -1 : 0;
  if (groupIndex == 0) {
    if (const host::talignment2* alignment = selectedInOverallList()) {
      insertGroups(window, *alignment);
      if (alignment->children.isEmpty()) groupIndex = -1;
      for (framework::ArrayIndex i = 0; i < alignment->children.size(); ++i)
        if (alignment->children[i]->name == groupText) groupIndex = static_cast<std::int32_t>(i);
    }
  }
  if (surfaces) fillSurfaces(window);

  // A selection whose name has gone falls back to the first row here, and its text changes with it. The row of the
  // alignments outside any site always does: it shows a message's text, which is no site's name.
  struct Choice {
    int list;
    std::int32_t index;
    CString& text;
  };
  for (const Choice& choice :
       {Choice{kIdSites, siteIndex, siteText}, Choice{kIdAlignments, alignmentIndex, alignmentText},
        Choice{kIdGroups, groupIndex, groupText}, Choice{kIdSurfaces, surfaceIndex, surfaceText}}) {
    if (choice.index < 0) continue;
    choice.text = window.rowText(choice.list, choice.index);
    window.select(choice.list, choice.index);
  }

  enableOkIfComplete(window);
  setFormChecks(window);
}

void CMyDialog1::fillSites(DialogWindow& window) {
  siteIndex = 0;
  for (framework::ArrayIndex i = 0; i < sites.size(); ++i) {
    const host::tsite& site = *sites[i];
    const auto row = static_cast<std::int32_t>(i);
    window.insertRow(kIdSites, row, site.name.empty() ? getMessage(kMessageSet, 109) : site.name);
    if (site.name == siteText) siteIndex = row;
  }
  if (sites.isEmpty()) siteIndex = alignmentIndex = -1;
}

void CMyDialog1::fillAlignments(DialogWindow& window) {
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

void CMyDialog1::fillSurfaces(DialogWindow& window) {
  surfaceIndex = 0;
  const std::int32_t count = surfaces->count();
  for (std::int32_t i = 0; i < count; ++i) {
    const host::Ref<host::QmtSurface> surface = surfaces->item(i);
    const CString name = surface ? surface->name() : CString();
    window.insertRow(kIdSurfaces, i, name);
    if (name == surfaceText) surfaceIndex = i;
  }
  if (count == 0) surfaceIndex = -1;
}

host::talignment2* CMyDialog1::selectedInOverallList() const {
  const CString& handle = sites[siteIndex]->alignments[alignmentIndex]->handle;
  for (host::talignment2* alignment : alignments)
    if (alignment->handle == handle) return alignment;
  return nullptr;
}

void CMyDialog1::insertGroups(DialogWindow& window, const host::talignment2& alignment) {
  int row = 0;
  for (const host::tslgroup* group : alignment.children) window.insertRow(kIdGroups, row++, group->name);
}

void CMyDialog1::onClick(DialogWindow& window, int id) {
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
      showHelp(host_, CString(kHelpProjection));
      break;
    case kIdOk:
      takeOver(window);
      break;
    default:
      break;
  }
}

void CMyDialog1::onSelectionChanged(DialogWindow& window, int id) {
  if (window.selection(id) == DialogWindow::kNone) return;
  switch (id) {
    case kIdSites:
      siteChanged(window);
      break;
    case kIdAlignments:
      alignmentChanged(window);
      break;
    case kIdGroups:
      groupChanged(window);
      break;
    case kIdSurfaces:
      surfaceChanged(window);
      break;
    default:
      break;
  }
}

void CMyDialog1::onTextChanged(DialogWindow& window, int id) {
  if (id == kIdOutputStem) stemChanged(window);
}

void CMyDialog1::siteChanged(DialogWindow& window) {
  siteIndex = window.selection(kIdSites);
  window.emptyList(kIdAlignments);
  alignmentIndex = 0;
  alignmentText.clear();
  window.emptyList(kIdGroups);
  groupIndex = 0;
  groupText.clear();

  int row = 0;
  for (const host::tsiteAlignment* alignment : sites[siteIndex]->alignments)
    window.insertRow(kIdAlignments, row++, alignment->name);
  if (row == 0) alignmentIndex = -1;
  if (alignmentIndex >= 0)
    if (const host::talignment2* alignment = selectedInOverallList()) insertGroups(window, *alignment);
  if (window.rowCount(kIdGroups) == 0) groupIndex = -1;

  siteText = window.rowText(kIdSites, siteIndex);
  if (alignmentIndex >= 0) {
    alignmentText = window.rowText(kIdAlignments, alignmentIndex);
    window.select(kIdAlignments, alignmentIndex);
  }
  if (groupIndex >= 0) {
    groupText = window.rowText(kIdGroups, groupIndex);
    window.select(kIdGroups, groupIndex);
    enableOkIfComplete(window);
  }
}

void CMyDialog1::alignmentChanged(DialogWindow& window) {
  alignmentIndex = window.selection(kIdAlignments);
  window.emptyList(kIdGroups);
  // Unlike a change of site this selects no group: the user has to choose one. OK stays as it was.
  groupIndex = -1;
  groupText.clear();
  if (const host::talignment2* alignment = selectedInOverallList()) insertGroups(window, *alignment);
  alignmentText = window.rowText(kIdAlignments, alignmentIndex);
}

void CMyDialog1::groupChanged(DialogWindow& window) {
  groupIndex = window.selection(kIdGroups);
  groupText = window.rowText(kIdGroups, groupIndex);
  enableOkIfComplete(window);
}

void CMyDialog1::surfaceChanged(DialogWindow& window) {
  surfaceIndex = window.selection(kIdSurfaces);
  surfaceText = window.rowText(kIdSurfaces, surfaceIndex);
  enableOkIfComplete(window);
}

void CMyDialog1::stemChanged(DialogWindow& window) {
  outputStem = window.text(kIdOutputStem);
  window.enable(kIdOk, isComplete());
}

void CMyDialog1::takeOver(DialogWindow& window) {
  const int row = window.selection(kIdAlignments);
  reportAlignmentText = row == DialogWindow::kNone ? CString() : window.rowText(kIdAlignments, row);
  checkAscii = window.isTicked(kIdCheckAscii) ? 1 : 0;
  checkExcel = window.isTicked(kIdCheckExcel) ? 1 : 0;
  checkThird = window.isTicked(kIdCheckThird) ? 1 : 0;
  window.end(kIdOk);
}

bool CMyDialog1::isComplete() const { return groupIndex >= 0 && surfaceIndex >= 0 && !outputStem.empty(); }

void CMyDialog1::enableOkIfComplete(DialogWindow& window) const {
  if (isComplete()) window.enable(kIdOk, true);
}

}  // namespace lvx::dialogs
