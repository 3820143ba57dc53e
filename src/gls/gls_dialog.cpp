#include "gls/gls_dialog.h"

#include <array>
#include <memory>
#include <utility>

#include "host/companion.h"
#include "host/dialog_controls.h"
#include "host/roadway_connection.h"
#include "host/roadway_model.h"
#include "services/message_catalogue.h"

namespace lvx::gls {

using dialogs::Caption;
using dialogs::kHelpGls;
using dialogs::kPictureCorridor;
using dialogs::kPictureProfile;
using dialogs::kPictureSampleLineGroup;
using dialogs::PictureOn;
using dialogs::ReportDialogParts;
using dialogs::setFormChecks;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;
using services::getMessage;
using services::Message;

namespace {

using enum host::ControlKind;

// In tab order.
constexpr std::array<ControlTemplate, 27> kControls{{
    {host::kIdOk, DefaultButton, L"OK", {114, 217, 50, 14}, false},
    {host::kIdCancel, PushButton, L"Cancel", {170, 217, 50, 14}},
    {host::kIdHelp, PushButton, L"Help", {226, 217, 50, 14}},
    {host::kIdFrameSelection, GroupBox, L"*Selection (Site && Axis && Profiles)", {7, 7, 269, 107}},
    {host::kIdLabelSite, Label, L"*Site:", {14, 20, 108, 8}},
    {host::kIdLabelAlignment, Label, L"*Alignment:", {14, 39, 108, 8}},
    {host::kIdLabelProfile, Label, L"*Profile:", {14, 59, 108, 8}},
    {host::kIdLabelCorridor, Label, L"*Corridor:", {14, 78, 108, 8}},
    {host::kIdLabelSampleLineGroup, Label, L"*Sample line group:", {14, 97, 108, 11}},
    {host::kIdPictureSite, Picture, L"", {126, 21, 15, 13}},
    {host::kIdPictureAlignment, Picture, L"", {126, 39, 15, 13}},
    {host::kIdPictureProfile, Picture, L"", {126, 59, 15, 13}},
    {host::kIdPictureCorridor, Picture, L"", {126, 78, 15, 13}},
    {host::kIdPictureSampleLineGroup, Picture, L"", {126, 97, 15, 13}},
    {host::kIdSites, DropDownList, L"", {144, 20, 108, 78}},
    {host::kIdAlignments, DropDownList, L"", {144, 39, 108, 78}},
    {host::kIdProfiles, DropDownList, L"", {144, 59, 108, 78}},
    {host::kIdCorridors, DropDownList, L"", {144, 78, 108, 78}},
    {host::kIdSampleLineGroups, DropDownList, L"", {144, 97, 108, 78}},
    {host::kIdPickAlignment, PictureButton, L"*", {258, 38, 15, 14}},
    {host::kIdPickProfile, PictureButton, L"*", {258, 58, 15, 14}},
    {host::kIdFrameOutput, GroupBox, L"*Output file", {7, 118, 269, 91}},
    {host::kIdCheckAscii, CheckBox, L"*Export to ASCII", {36, 135, 108, 10}},
    {host::kIdCheckExcel, CheckBox, L"*Export to Excel", {36, 149, 108, 10}},
    {host::kIdCheckHtml, CheckBox, L"*Export to Xml", {36, 163, 108, 10}},
    {host::kIdOutputFileBox, PictureButton, L"*", {14, 182, 15, 14}},
    {host::kIdOutputStem, EditBox, L"", {35, 183, 217, 13}},
}};

constexpr DialogTemplate kTemplate{host::kGlsDialog, L"*GLS", 283, 238, kControls};

constexpr std::array<Caption, 4> kCaptions{{{host::kIdFrameSelection, Message::SelectionFrame},
                                            {host::kIdLabelSampleLineGroup, Message::SampleLineGroupLabel},
                                            {host::kIdLabelProfile, Message::ProfileLabel},
                                            {host::kIdLabelCorridor, Message::CorridorLabel}}};

constexpr std::array<PictureOn, 2> kSmallPictures{
    {{host::kIdPictureSampleLineGroup, kPictureSampleLineGroup}, {host::kIdPictureProfile, kPictureProfile}}};

// The corridor's picture keeps its white, whatever the colour of the dialog's face.
constexpr std::array<PictureOn, 1> kPlainPictures{{{host::kIdPictureCorridor, kPictureCorridor}}};

constexpr ReportDialogParts kParts{.dialogTemplate = &kTemplate,
                                   .title = Message::GlsTitle,
                                   .captions = kCaptions,
                                   .smallPictures = kSmallPictures,
                                   .plainPictures = kPlainPictures,
                                   .secondPick = host::kIdPickProfile,
                                   .helpPage = kHelpGls};

}  // namespace

CMyDialog3::CMyDialog3(host::Host& host) : ReportDialog(host, kParts) {}

CMyDialog3::~CMyDialog3() {
  if (loaded == 0) return;
  host::releaseAllAlignments(alignments);
  pvsa_lvx_relsites(sites);
  gls::releaseCorridors(corridorList);
  releaseModel();
}

void CMyDialog3::attach() {
  std::optional<Model> model = reachModel();
  if (!model) return;
  // Without corridors `model` is given back, and the next opening asks anew.
  if (host::connectRoadway(host_, getMessage(Message::CorridorsOutOfReach)) < 1) return;
  loaded = 1;  // from here on the destructor gives everything back
  take(std::move(*model));
  gls::releaseCorridors(corridorList);
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
    gls::tcorridor& listed = *corridorList.append(std::move(record));
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
      listed.baselines.append(std::move(line));
    }
  }
}

void CMyDialog3::onOpening(DialogWindow& window) {
  if (loaded == 0) attach();
  showLook(window);

  fillSites(window);
  fillAlignments(window);
  fillSampleLineGroups(window);
  fillProfiles(window);
  fillCorridors(window);

  choose(window, host::kIdSites, siteIndex, siteText);
  choose(window, host::kIdAlignments, alignmentIndex, alignmentText);
  choose(window, host::kIdSampleLineGroups, groupIndex, groupText);
  choose(window, host::kIdProfiles, profileIndex, profileText);
  choose(window, host::kIdCorridors, corridorIndex, corridorText);

  enableOkIfComplete(window);
  setFormChecks(window);
}

// ---------------------------------------------------------------- the lists at an opening

void CMyDialog3::fillProfiles(DialogWindow& window) {
  profileIndex =
      alignmentIndex < 0 ? -1 : insertNames(window, host::kIdProfiles, selectedInTree().children, profileText);
}

void CMyDialog3::fillCorridors(DialogWindow& window) {
  corridorIndex = -1;
  if (alignmentIndex < 0) return;
  insertCorridors(window);
  if (window.rowCount(host::kIdCorridors) == 0) return;
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
    if (isListed(*corridor)) window.insertRow(host::kIdCorridors, window.rowCount(host::kIdCorridors), corridor->name);
}

// ---------------------------------------------------------------- what the user does

void CMyDialog3::onSelectionChanged(DialogWindow& window, int id) {
  if (window.selection(id) == DialogWindow::kNone) return;
  switch (id) {
    case host::kIdSites:
      siteChanged(window);
      break;
    case host::kIdAlignments:
      alignmentChanged(window);
      break;
    case host::kIdSampleLineGroups:
      takeRow(window, id, groupIndex, groupText);
      enableOkIfComplete(window);
      break;
    case host::kIdProfiles:
      takeRow(window, id, profileIndex, profileText);
      enableOkIfComplete(window);
      break;
    case host::kIdCorridors:
      corridorChanged(window);
      break;
    default:
      break;
  }
}

void CMyDialog3::changeGroupAndProfile(DialogWindow& window) {
  if (listSampleLineGroups(window)) groupIndex = 0;
  choose(window, host::kIdSampleLineGroups, groupIndex, groupText);

  window.emptyList(host::kIdProfiles);
  profileText.clear();
  profileIndex = alignmentIndex < 0 ? -1 : insertNames(window, host::kIdProfiles, selectedInTree().children);
  choose(window, host::kIdProfiles, profileIndex, profileText);
}

void CMyDialog3::siteChanged(DialogWindow& window) {
  changeSite(window);
  changeGroupAndProfile(window);  // the corridors belong to the whole drawing and stay
  enableOkIfComplete(window);
}

void CMyDialog3::alignmentChanged(DialogWindow& window) {
  takeRow(window, host::kIdAlignments, alignmentIndex, alignmentText);
  changeGroupAndProfile(window);
  window.emptyList(host::kIdCorridors);
  corridorText.clear();
  insertCorridors(window);
  corridorIndex = window.rowCount(host::kIdCorridors) > 0 ? 0 : -1;
  if (corridorIndex >= 0) {
    // In a drawing with a corridor the profile has to be chosen again after a change of alignment: until then the report
    // asks for a profile of the corridor's name. Scripts for this dialog are written for that.
    profileText = window.rowText(host::kIdCorridors, profileIndex);
    window.select(host::kIdCorridors, profileIndex);
  }
  enableOkIfComplete(window);
}

void CMyDialog3::corridorChanged(DialogWindow& window) {
  corridorIndex = window.selection(host::kIdCorridors);
  // The text of the profile list at that row; a row beyond its end ends the command.
  corridorText = window.rowText(host::kIdProfiles, corridorIndex);
}

void CMyDialog3::stemChanged(DialogWindow& window) { enableOkIfComplete(window); }

void CMyDialog3::takeTextsOver(const DialogWindow& window) {
  reportAlignmentText = selectedText(window, host::kIdAlignments);
}

bool CMyDialog3::isComplete() const { return groupIndex >= 0 && profileIndex >= 0 && !outputStem.empty(); }

}  // namespace lvx::gls
