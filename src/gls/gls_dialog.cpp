#include "gls/gls_dialog.h"

#include <array>
#include <memory>
#include <utility>

#include "host/companion.h"
#include "host/roadway_connection.h"
#include "host/roadway_model.h"
#include "services/message_catalogue.h"

namespace lvx::gls {

using dialogs::Caption;
using dialogs::kHelpGls;
using dialogs::kIdAlignments;
using dialogs::kIdGroupSelection;
using dialogs::kIdSampleLineGroups;
using dialogs::kIdSites;
using dialogs::kPictureCorridor;
using dialogs::kPictureProfile;
using dialogs::kPictureSampleLineGroup;
using dialogs::PictureOn;
using dialogs::ReportDialog;
using dialogs::ReportDialogParts;
using dialogs::setFormChecks;
using host::ControlKind;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;
using services::getMessage;
using services::Message;

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

constexpr std::array<Caption, 4> kCaptions{{{kIdGroupSelection, Message::SelectionFrame},
                                            {266, Message::SampleLineGroupLabel},
                                            {CMyDialog3::kIdLabelProfile, Message::ProfileLabel},
                                            {CMyDialog3::kIdLabelCorridor, Message::CorridorLabel}}};

constexpr std::array<PictureOn, 2> kSmallPictures{{{101, kPictureSampleLineGroup}, {108, kPictureProfile}}};

// The corridor's picture keeps its white, whatever the colour of the dialog's face.
constexpr std::array<PictureOn, 1> kPlainPictures{{{109, kPictureCorridor}}};

constexpr ReportDialogParts kParts{.dialogTemplate = &kTemplate,
                                   .title = Message::GlsTitle,
                                   .captions = kCaptions,
                                   .smallPictures = kSmallPictures,
                                   .plainPictures = kPlainPictures,
                                   .secondPick = CMyDialog3::kIdPickProfile,
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
  showLook(window);

  fillSites(window);
  fillAlignments(window);
  fillSampleLineGroups(window);
  fillProfiles(window);
  fillCorridors(window);

  choose(window, kIdSites, siteIndex, siteText);
  choose(window, kIdAlignments, alignmentIndex, alignmentText);
  choose(window, kIdSampleLineGroups, groupIndex, groupText);
  choose(window, kIdProfiles, profileIndex, profileText);
  choose(window, kIdCorridors, corridorIndex, corridorText);

  enableOkIfComplete(window);
  setFormChecks(window);
}

// ---------------------------------------------------------------- the lists at an opening

void CMyDialog3::fillProfiles(DialogWindow& window) {
  profileIndex = alignmentIndex < 0 ? -1 : insertNames(window, kIdProfiles, selectedInTree().children, profileText);
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

// ---------------------------------------------------------------- what the user does

void CMyDialog3::onSelectionChanged(DialogWindow& window, int id) {
  if (window.selection(id) == DialogWindow::kNone) return;
  switch (id) {
    case kIdSites:
      siteChanged(window);
      break;
    case kIdAlignments:
      alignmentChanged(window);
      break;
    case kIdSampleLineGroups:
      takeRow(window, id, groupIndex, groupText);
      enableOkIfComplete(window);
      break;
    case kIdProfiles:
      takeRow(window, id, profileIndex, profileText);
      enableOkIfComplete(window);
      break;
    case kIdCorridors:
      corridorChanged(window);
      break;
    default:
      break;
  }
}

void CMyDialog3::changeGroupAndProfile(DialogWindow& window) {
  if (listSampleLineGroups(window)) groupIndex = 0;
  choose(window, kIdSampleLineGroups, groupIndex, groupText);

  window.emptyList(kIdProfiles);
  profileText.clear();
  profileIndex = alignmentIndex < 0 ? -1 : insertNames(window, kIdProfiles, selectedInTree().children);
  choose(window, kIdProfiles, profileIndex, profileText);
}

void CMyDialog3::siteChanged(DialogWindow& window) {
  changeSite(window);
  changeGroupAndProfile(window);  // the corridors belong to the whole drawing and stay
  enableOkIfComplete(window);
}

void CMyDialog3::alignmentChanged(DialogWindow& window) {
  takeRow(window, kIdAlignments, alignmentIndex, alignmentText);
  changeGroupAndProfile(window);
  window.emptyList(kIdCorridors);
  corridorText.clear();
  insertCorridors(window);
  corridorIndex = window.rowCount(kIdCorridors) > 0 ? 0 : -1;
  if (corridorIndex >= 0) {
    // In a drawing with a corridor the profile has to be chosen again after a change of alignment: until then the report
    // asks for a profile of the corridor's name. Scripts for this dialog are written for that.
    profileText = window.rowText(kIdCorridors, profileIndex);
    window.select(kIdCorridors, profileIndex);
  }
  enableOkIfComplete(window);
}

void CMyDialog3::corridorChanged(DialogWindow& window) {
  corridorIndex = window.selection(kIdCorridors);
  // The text of the profile list at that row; a row beyond its end ends the command.
  corridorText = window.rowText(kIdProfiles, corridorIndex);
}

void CMyDialog3::stemChanged(DialogWindow& window) { enableOkIfComplete(window); }

void CMyDialog3::takeTextsOver(const DialogWindow& window) {
  reportAlignmentText = selectedText(window, kIdAlignments);
}

bool CMyDialog3::isComplete() const { return groupIndex >= 0 && profileIndex >= 0 && !outputStem.empty(); }

}  // namespace lvx::gls
