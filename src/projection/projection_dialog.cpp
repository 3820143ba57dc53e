#include "projection/projection_dialog.h"

#include <array>
#include <utility>

#include "host/companion.h"
#include "host/dialog_controls.h"
#include "host/model.h"

namespace lvx::projection {

using dialogs::Caption;
using dialogs::kHelpProjection;
using dialogs::kPictureSampleLineGroup;
using dialogs::kPictureSurface;
using dialogs::PictureOn;
using dialogs::ReportDialogParts;
using dialogs::setFormChecks;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;
using services::Message;

namespace {

using enum host::ControlKind;

// In tab order.
constexpr std::array<ControlTemplate, 24> kControls{{
    {host::kIdOk, DefaultButton, L"OK", {114, 193, 50, 14}, false},
    {host::kIdCancel, PushButton, L"Cancel", {170, 193, 50, 14}},
    {host::kIdHelp, PushButton, L"Help", {226, 193, 50, 14}},
    {host::kIdFrameSelection, GroupBox, L"*Selection (Site && Axis && Profiles)", {6, 3, 270, 87}},
    {host::kIdLabelSite, Label, L"*Site:", {12, 16, 108, 8}},
    {host::kIdLabelAlignment, Label, L"*Alignment:", {12, 34, 108, 8}},
    {host::kIdLabelSurface, Label, L"*Surface:", {12, 54, 108, 8}},
    {host::kIdLabelSampleLineGroup, Label, L"*Sample line group:", {12, 73, 108, 8}},
    {host::kIdPictureSite, Picture, L"", {126, 16, 15, 13}},
    {host::kIdPictureAlignment, Picture, L"", {126, 34, 15, 13}},
    {host::kIdPictureSurface, Picture, L"", {126, 54, 15, 13}},
    {host::kIdPictureSampleLineGroup, Picture, L"", {126, 73, 15, 13}},
    {host::kIdSites, DropDownList, L"", {144, 15, 108, 78}},
    {host::kIdAlignments, DropDownList, L"", {144, 33, 108, 78}},
    {host::kIdSurfaces, DropDownList, L"", {144, 53, 108, 78}},
    {host::kIdSampleLineGroups, DropDownList, L"", {144, 72, 108, 78}},
    {host::kIdPickAlignment, PictureButton, L"*", {257, 32, 15, 14}},
    {host::kIdPickSurface, PictureButton, L"*", {257, 52, 15, 14}},
    {host::kIdFrameOutput, GroupBox, L"*Output file", {7, 95, 269, 91}},
    {host::kIdCheckAscii, CheckBox, L"*Export to ASCII", {36, 112, 108, 10}},
    {host::kIdCheckExcel, CheckBox, L"*Export to Excel", {36, 126, 108, 10}},
    {host::kIdCheckHtml, CheckBox, L"*Export to Xml", {36, 140, 108, 10}},
    {host::kIdOutputFileBox, PictureButton, L"*", {14, 159, 15, 14}},
    {host::kIdOutputStem, EditBox, L"", {35, 160, 217, 13}},
}};

constexpr DialogTemplate kTemplate{host::kProjectionDialog, L"*Profiles projection", 283, 214, kControls};

constexpr std::array<Caption, 3> kCaptions{{{host::kIdFrameSelection, Message::SelectionFrame},
                                            {host::kIdLabelSampleLineGroup, Message::SampleLineGroupLabel},
                                            {host::kIdLabelSurface, Message::SurfaceLabel}}};

constexpr std::array<PictureOn, 2> kSmallPictures{
    {{host::kIdPictureSampleLineGroup, kPictureSampleLineGroup}, {host::kIdPictureSurface, kPictureSurface}}};

constexpr ReportDialogParts kParts{.dialogTemplate = &kTemplate,
                                   .title = Message::ProjectionTitle,
                                   .captions = kCaptions,
                                   .smallPictures = kSmallPictures,
                                   .secondPick = host::kIdPickSurface,
                                   .helpPage = kHelpProjection};

}  // namespace

CMyDialog1::CMyDialog1(host::Host& host) : ReportDialog(host, kParts) {}

CMyDialog1::~CMyDialog1() {
  if (loaded == 0) return;
  surfaces.reset();
  host::releaseAllAlignments(alignments);
  pvsa_lvx_relsites(sites);
  releaseModel();
}

void CMyDialog1::attach() {
  std::optional<Model> model = reachModel();
  if (!model) return;
  loaded = 1;  // from here on the destructor gives everything back
  take(std::move(*model));
  surfaces = document->surfaces();
}

void CMyDialog1::onOpening(DialogWindow& window) {
  if (loaded == 0) attach();
  showLook(window);

  fillSites(window);
  fillAlignments(window);
  fillSampleLineGroups(window);
  if (surfaces) fillSurfaces(window);

  choose(window, host::kIdSites, siteIndex, siteText);
  choose(window, host::kIdAlignments, alignmentIndex, alignmentText);
  choose(window, host::kIdSampleLineGroups, groupIndex, groupText);
  choose(window, host::kIdSurfaces, surfaceIndex, surfaceText);

  enableOkIfComplete(window);
  setFormChecks(window);
}

void CMyDialog1::fillSurfaces(DialogWindow& window) {
  surfaceIndex = 0;
  const std::int32_t count = surfaces->count();
  for (std::int32_t i = 0; i < count; ++i) {
    const host::Ref<host::QmtSurface> surface = surfaces->item(i);
    const CString name = surface ? surface->name() : CString();
    window.insertRow(host::kIdSurfaces, i, name);
    if (name == surfaceText) surfaceIndex = i;
  }
  if (count == 0) surfaceIndex = -1;
}

void CMyDialog1::onSelectionChanged(DialogWindow& window, int id) {
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
    case host::kIdSurfaces:
      takeRow(window, id, surfaceIndex, surfaceText);
      enableOkIfComplete(window);
      break;
    default:
      break;
  }
}

void CMyDialog1::siteChanged(DialogWindow& window) {
  changeSite(window);
  if (listSampleLineGroups(window)) groupIndex = 0;
  choose(window, host::kIdSampleLineGroups, groupIndex, groupText);
  enableOkIfComplete(window);
}

void CMyDialog1::alignmentChanged(DialogWindow& window) {
  takeRow(window, host::kIdAlignments, alignmentIndex, alignmentText);
  // Unlike a change of site this selects no group: the user has to choose one. OK stays as it was.
  listSampleLineGroups(window);
}

void CMyDialog1::stemChanged(DialogWindow& window) { window.enable(host::kIdOk, isComplete()); }

void CMyDialog1::takeTextsOver(const DialogWindow& window) {
  reportAlignmentText = selectedText(window, host::kIdAlignments);
}

bool CMyDialog1::isComplete() const { return groupIndex >= 0 && surfaceIndex >= 0 && !outputStem.empty(); }

}  // namespace lvx::projection
