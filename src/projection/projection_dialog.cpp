#include "projection/projection_dialog.h"

#include <array>
#include <utility>

#include "host/companion.h"
#include "host/model.h"

namespace lvx::projection {

using dialogs::Caption;
using dialogs::kHelpProjection;
using dialogs::kIdAlignments;
using dialogs::kIdGroupSelection;
using dialogs::kIdSampleLineGroups;
using dialogs::kIdSites;
using dialogs::kPictureSampleLineGroup;
using dialogs::kPictureSurface;
using dialogs::PictureOn;
using dialogs::ReportDialog;
using dialogs::ReportDialogParts;
using dialogs::setFormChecks;
using host::ControlKind;
using host::ControlTemplate;
using host::DialogTemplate;
using host::DialogWindow;
using host::kIdOk;
using services::Message;

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

constexpr std::array<Caption, 3> kCaptions{
    {{kIdGroupSelection, Message::SelectionFrame}, {266, Message::SampleLineGroupLabel}, {267, Message::SurfaceLabel}}};

constexpr std::array<PictureOn, 2> kSmallPictures{{{101, kPictureSampleLineGroup}, {273, kPictureSurface}}};

constexpr ReportDialogParts kParts{.dialogTemplate = &kTemplate,
                                   .title = Message::ProjectionTitle,
                                   .captions = kCaptions,
                                   .smallPictures = kSmallPictures,
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

  choose(window, kIdSites, siteIndex, siteText);
  choose(window, kIdAlignments, alignmentIndex, alignmentText);
  choose(window, kIdSampleLineGroups, groupIndex, groupText);
  choose(window, kIdSurfaces, surfaceIndex, surfaceText);

  enableOkIfComplete(window);
  setFormChecks(window);
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

void CMyDialog1::onSelectionChanged(DialogWindow& window, int id) {
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
    case kIdSurfaces:
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
  choose(window, kIdSampleLineGroups, groupIndex, groupText);
  enableOkIfComplete(window);
}

void CMyDialog1::alignmentChanged(DialogWindow& window) {
  takeRow(window, kIdAlignments, alignmentIndex, alignmentText);
  // Unlike a change of site this selects no group: the user has to choose one. OK stays as it was.
  listSampleLineGroups(window);
}

void CMyDialog1::stemChanged(DialogWindow& window) { window.enable(kIdOk, isComplete()); }

void CMyDialog1::takeTextsOver(const DialogWindow& window) {
  reportAlignmentText = selectedText(window, kIdAlignments);
}

bool CMyDialog1::isComplete() const { return groupIndex >= 0 && surfaceIndex >= 0 && !outputStem.empty(); }

}  // namespace lvx::projection
