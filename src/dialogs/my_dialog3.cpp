#include "dialogs/my_dialog3.h"

#include <array>
#include <memory>

#include "dialogs/dialog_services.h"
#include "host/companion.h"
#include "host/host.h"
#include "host/roadway_connection.h"
#include "host/roadway_model.h"
#include "services/message_catalogue.h"

namespace lvx::dialogs {

using services::getMessage;
using services::kMessageSet;

namespace {

using enum ControlKind;

// In tab order.
constexpr std::array<ControlTemplate, 27> kControls{{
    {1, DefaultButton, L"OK", {114, 217, 50, 14}, false},
    {2, PushButton, L"Cancel", {170, 217, 50, 14}},
    {9, PushButton, L"Help", {226, 217, 50, 14}},
    {228, GroupBox, L"*Selection (Site && Axis && Profiles)", {7, 7, 269, 107}},
    {264, Label, L"*Site:", {14, 20, 108, 8}},
    {265, Label, L"*Alignment:", {14, 39, 108, 8}},
    {118, Label, L"*Profile:", {14, 59, 108, 8}},
    {119, Label, L"*Corridor:", {14, 78, 108, 8}},
    {266, Label, L"*Sample line group:", {14, 97, 108, 11}},
    {270, Picture, L"", {126, 21, 15, 13}},
    {271, Picture, L"", {126, 39, 15, 13}},
    {108, Picture, L"", {126, 59, 15, 13}},
    {109, Picture, L"", {126, 78, 15, 13}},
    {101, Picture, L"", {126, 97, 15, 13}},
    {261, DropDownList, L"", {144, 20, 108, 78}},
    {263, DropDownList, L"", {144, 39, 108, 78}},
    {112, DropDownList, L"", {144, 59, 108, 78}},
    {113, DropDownList, L"", {144, 78, 108, 78}},
    {262, DropDownList, L"", {144, 97, 108, 78}},
    {126, PictureButton, L"*", {258, 38, 15, 14}},
    {125, PictureButton, L"*", {258, 58, 15, 14}},
    {230, GroupBox, L"*Output file", {7, 118, 269, 91}},
    {274, CheckBox, L"*Export to ASCII", {36, 135, 108, 10}},
    {275, CheckBox, L"*Export to Excel", {36, 149, 108, 10}},
    {276, CheckBox, L"*Export to Xml", {36, 163, 108, 10}},
    {233, PictureButton, L"*", {14, 182, 15, 14}},
    {100, EditBox, L"", {35, 183, 217, 13}},
}};

constexpr DialogTemplate kTemplate{"CMyDialog3", L"*GLS", 283, 238, kControls};

constexpr std::array<Caption, 9> kCaptions{{{kIdCancel, 4},
                                            {kIdHelp, 5},
                                            {kIdGroupSelection, 102},
                                            {kIdLabelSite, 103},
                                            {kIdLabelAlignment, 104},
                                            {266, 105},
                                            {kIdGroupOutput, 108},
                                            {CMyDialog3::kIdLabelProfile, 302},
                                            {CMyDialog3::kIdLabelCorridor, 341}}};

constexpr std::array<PictureOn, 4> kSmallPictures{
    {{270, kPictureSite}, {271, kPictureAlignment}, {101, kPictureSampleLineGroup}, {108, kPictureProfile}}};

// The corridor's picture keeps its white, whatever the colour of the dialog's face.
constexpr std::array<PictureOn, 4> kOtherPictures{{{109, kPictureCorridor},
                                                   {kIdPickAlignment, kPicturePick},
                                                   {CMyDialog3::kIdPickProfile, kPicturePick},
                                                   {kIdOutputFileBox, kPictureSave}}};

/// Adds the names of `records` to a list and gives the row of `wanted`, or 0; -1 without any record.
template <class Records>
std::int32_t insertNames(DialogWindow& window, int list, const Records& records, const CString& wanted) {
  std::int32_t chosen = records.isEmpty() ? -1 : 0;
  std::int32_t row = 0;
  for (const auto* record : records) {
    if (record->name == wanted) chosen = row;
    window.insertRow(list, row++, record->name);
  }
  return chosen;
}

}  // namespace

CMyDialog3::~CMyDialog3() {
  if (loaded == 0) return;
  host::releaseAllAlignments(alignments);
  pvsa_lvx_relsites(sites);
  gls::releaseCorridors(corridorList);
  database.reset();
  document.reset();
  pvsa_lvx_releaseQmtObject();
}

const DialogTemplate& CMyDialog3::dialogTemplate() const { return kTemplate; }

void CMyDialog3::attach() {
  host::Ref<host::QmtDocument> newDocument;
  host::Ref<host::QmtDatabase> newDatabase;
  if (pvsa_lvx_getQmtObject(newDocument, newDatabase) < 1) return;
  if (host::connectRoadway(host_, getMessage(kMessageSet, 3)) < 1) return;
  document = std::move(newDocument);
  database = std::move(newDatabase);
  loaded = 1;  // from here on the destructor gives everything back
  pvsa_lvx_getsites(sites);
  host::loadAllAlignments(host_, document, database, alignments);
  gls::releaseCorridors(corridorList);
  host::removeSitesWithoutAlignments(sites);
  loadCorridors();
}

void CMyDialog3::loadCorridors() {
  const host::Ref<host::QmtRoadwayDocument> roadway = host::roadwayDocument();
  const host::Ref<host::QmtCorridors> corridors = roadway ? roadway->corridors() : nullptr;
  if (!corridors) return;
  const std::int32_t count = corridors->count();
  for (std::int32_t i = 0; i < count; ++i) {
    const host::Ref<host::QmtCorridor> corridor = corridors->item(i);
    if (!corridor) continue;
    auto record = std::make_unique<gls::tcorridor>();
    record->name = corridor->name();
    gls::tcorridor& listed = *record;
    corridorList.add(record.release());
    const host::Ref<host::QmtBaselines> baselines = corridor->baselines();
    if (!baselines) continue;
    // As many baselines are looked at as the drawing has corridors: in a drawing with few corridors the later baselines
    // of one don't count for the list, which users know that way.
    for (std::int32_t k = 0; k < count; ++k) {
      const host::Ref<host::QmtBaseline> baseline = baselines->item(k);
      const host::Ref<host::QmtAlignment> alignment = baseline ? baseline->alignment() : nullptr;
      if (!alignment) continue;
      auto line = std::make_unique<gls::tbaseline>();
      line->alignmentHandle = alignment->handle();
      listed.baselines.add(line.release());
    }
  }
}

void CMyDialog3::onOpening(DialogWindow& window) {
  if (loaded == 0) attach();

  window.setTitle(getMessage(kMessageSet, 301));
  setCaptions(window, kCaptions);
  window.setText(kIdOutputStem, outputStem);
  window.setTip(kIdOutputStem, outputStem);
  setPictures(host_, window, kSmallPictures, kOtherPictures);
  for (const int list : {kIdSites, kIdAlignments, kIdGroups, kIdProfiles, kIdCorridors}) window.emptyList(list);

  fillSites(window);
  fillAlignments(window);
  fillGroups(window);
  fillProfiles(window);
  fillCorridors(window);

  // A selection whose name has gone falls back to the first row here, and its text changes with it. The row of the
  // alignments outside any site always does: it shows a message's text, which is no site's name.
  choose(window, kIdSites, siteIndex, siteText);
  choose(window, kIdAlignments, alignmentIndex, alignmentText);
  choose(window, kIdGroups, groupIndex, groupText);
  choose(window, kIdProfiles, profileIndex, profileText);
  choose(window, kIdCorridors, corridorIndex, corridorText);

  enableOkIfComplete(window);
  setFormChecks(window);
}

// ---------------------------------------------------------------- the lists at an opening

void CMyDialog3::fillSites(DialogWindow& window) {
  siteIndex = 0;
  for (framework::ArrayIndex i = 0; i < sites.size(); ++i) {
    const host::tsite& site = *sites[i];
    const auto row = static_cast<std::int32_t>(i);
    window.insertRow(kIdSites, row, site.name.empty() ? getMessage(kMessageSet, 109) : site.name);
    if (site.name == siteText) siteIndex = row;
  }
  if (sites.isEmpty()) siteIndex = -1;
}

void CMyDialog3::fillAlignments(DialogWindow& window) {
  alignmentIndex = siteIndex < 0 ? -1 : insertNames(window, kIdAlignments, sites[siteIndex]->alignments, alignmentText);
}

void CMyDialog3::fillGroups(DialogWindow& window) {
  groupIndex = -1;
  if (siteIndex < 0 || alignmentIndex < 0) return;
  const host::talignment2* alignment = selectedInOverallList();
  groupIndex = alignment == nullptr ? 0 : insertNames(window, kIdGroups, alignment->children, groupText);
}

void CMyDialog3::fillProfiles(DialogWindow& window) {
  profileIndex = -1;
  if (siteIndex < 0 || alignmentIndex < 0) return;
  profileIndex = insertNames(window, kIdProfiles, selectedInTree().children, profileText);
}

void CMyDialog3::fillCorridors(DialogWindow& window) {
  corridorIndex = -1;
  if (alignmentIndex < 0) return;
  insertCorridors(window);
  if (window.rowCount(kIdCorridors) == 0) return;
  corridorIndex = 0;
  // The position among all corridors, also where corridors before it aren't listed: then it names another row of the
  // list, or none, which ends the command.
  for (framework::ArrayIndex i = 0; i < corridorList.size(); ++i)
    if (corridorList[i]->name == corridorText && isListed(*corridorList[i]))
      corridorIndex = static_cast<std::int32_t>(i);
}

bool CMyDialog3::isListed(const gls::tcorridor& corridor) const {
  for (const gls::tbaseline* baseline : corridor.baselines)
    for (const host::talignment2* alignment : alignments)
      if (alignment->handle == baseline->alignmentHandle) return true;
  return false;
}

void CMyDialog3::insertCorridors(DialogWindow& window) const {
  for (const gls::tcorridor* corridor : corridorList)
    if (isListed(*corridor)) window.insertRow(kIdCorridors, window.rowCount(kIdCorridors), corridor->name);
}

const host::tsiteAlignment& CMyDialog3::selectedInTree() const { return *sites[siteIndex]->alignments[alignmentIndex]; }

const host::talignment2* CMyDialog3::selectedInOverallList() const {
  const CString& handle = selectedInTree().handle;
  for (const host::talignment2* alignment : alignments)
    if (alignment->handle == handle) return alignment;
  return nullptr;
}

void CMyDialog3::choose(DialogWindow& window, int list, std::int32_t index, CString& text) {
  if (index < 0) return;
  text = window.rowText(list, index);
  window.select(list, index);
}

// ---------------------------------------------------------------- what the user does

void CMyDialog3::onClick(DialogWindow& window, int id) {
  switch (id) {
    case kIdPickAlignment:
    case kIdPickProfile:
    case kIdCancel:
      window.end(id);
      break;
    case kIdOutputFileBox:
      if (runOutputFileBox(host_, window)) outputStem = window.text(kIdOutputStem);
      break;
    case kIdHelp:
      showHelp(host_, CString(kHelpGls));
      break;
    case kIdOk:
      takeOver(window);
      break;
    default:
      break;
  }
}

void CMyDialog3::onSelectionChanged(DialogWindow& window, int id) {
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
    case kIdProfiles:
      profileChanged(window);
      break;
    case kIdCorridors:
      corridorChanged(window);
      break;
    default:
      break;
  }
}

void CMyDialog3::onTextChanged(DialogWindow& window, int id) {
  if (id == kIdOutputStem) stemChanged(window);
}

void CMyDialog3::forgetGroupAndProfile(DialogWindow& window) {
  window.emptyList(kIdGroups);
  groupIndex = -1;
  groupText.clear();
  window.emptyList(kIdProfiles);
  profileIndex = -1;
  profileText.clear();
}

void CMyDialog3::offerGroupsAndProfiles(DialogWindow& window) {
  if (const host::talignment2* alignment = selectedInOverallList())
    if (insertNames(window, kIdGroups, alignment->children, {}) >= 0) groupIndex = 0;
  if (insertNames(window, kIdProfiles, selectedInTree().children, {}) >= 0) profileIndex = 0;
}

void CMyDialog3::siteChanged(DialogWindow& window) {
  siteIndex = window.selection(kIdSites);
  window.emptyList(kIdAlignments);
  alignmentIndex = -1;
  alignmentText.clear();
  forgetGroupAndProfile(window);  // the corridors belong to the whole drawing and stay

  if (insertNames(window, kIdAlignments, sites[siteIndex]->alignments, {}) >= 0) {
    alignmentIndex = 0;
    offerGroupsAndProfiles(window);
  }

  siteText = window.rowText(kIdSites, siteIndex);
  choose(window, kIdAlignments, alignmentIndex, alignmentText);
  choose(window, kIdGroups, groupIndex, groupText);
  choose(window, kIdProfiles, profileIndex, profileText);
  enableOkIfComplete(window);
}

void CMyDialog3::alignmentChanged(DialogWindow& window) {
  alignmentIndex = window.selection(kIdAlignments);
  forgetGroupAndProfile(window);
  window.emptyList(kIdCorridors);
  corridorIndex = -1;
  corridorText.clear();

  offerGroupsAndProfiles(window);
  insertCorridors(window);
  if (window.rowCount(kIdCorridors) > 0) corridorIndex = 0;

  alignmentText = window.rowText(kIdAlignments, alignmentIndex);
  choose(window, kIdGroups, groupIndex, groupText);
  choose(window, kIdProfiles, profileIndex, profileText);
  if (corridorIndex >= 0) {
    // In a drawing with a corridor the profile has to be chosen again after a change of alignment: until then the report
    // asks for a profile of the corridor's name. Scripts for this dialog are written for that.
    profileText = window.rowText(kIdCorridors, profileIndex);
    window.select(kIdCorridors, profileIndex);
  }
  enableOkIfComplete(window);
}

void CMyDialog3::groupChanged(DialogWindow& window) {
  groupIndex = window.selection(kIdGroups);
  groupText = window.rowText(kIdGroups, groupIndex);
  enableOkIfComplete(window);
}

void CMyDialog3::profileChanged(DialogWindow& window) {
  profileIndex = window.selection(kIdProfiles);
  profileText = window.rowText(kIdProfiles, profileIndex);
  enableOkIfComplete(window);
}

void CMyDialog3::corridorChanged(DialogWindow& window) {
  corridorIndex = window.selection(kIdCorridors);
  // The text of the profile list at that row; a row beyond its end ends the command.
  corridorText = window.rowText(kIdProfiles, corridorIndex);
}

void CMyDialog3::stemChanged(DialogWindow& window) {
  outputStem = window.text(kIdOutputStem);
  enableOkIfComplete(window);
}

void CMyDialog3::takeOver(DialogWindow& window) {
  const int row = window.selection(kIdAlignments);
  reportAlignmentText = row == DialogWindow::kNone ? CString() : window.rowText(kIdAlignments, row);
  checkAscii = window.isTicked(kIdCheckAscii) ? 1 : 0;
  checkExcel = window.isTicked(kIdCheckExcel) ? 1 : 0;
  checkThird = window.isTicked(kIdCheckThird) ? 1 : 0;
  window.end(kIdOk);
}

void CMyDialog3::enableOkIfComplete(DialogWindow& window) const {
  if (groupIndex >= 0 && profileIndex >= 0 && !outputStem.empty()) window.enable(kIdOk, true);
}

}  // namespace lvx::dialogs
