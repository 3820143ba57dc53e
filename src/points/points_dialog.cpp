#include "points/points_dialog.h"

#include <array>
#include <utility>

#include "host/companion.h"
#include "host/dialog_controls.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"

namespace lvx::points {

using dialogs::Caption;
using dialogs::kHelpPoints;
using dialogs::kPicturePoint;
using dialogs::kPicturePointGroup;
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
constexpr std::array<ControlTemplate, 24> kControls{{
    {host::kIdOk, DefaultButton, L"OK", {114, 193, 50, 14}, false},
    {host::kIdCancel, PushButton, L"Cancel", {170, 193, 50, 14}},
    {host::kIdHelp, PushButton, L"Help", {226, 193, 50, 14}},
    {host::kIdFrameSelection, GroupBox, L"*Selection (Site && Axis && Profiles)", {6, 3, 270, 88}},
    {host::kIdLabelSite, Label, L"*Site:", {12, 16, 108, 8}},
    {host::kIdLabelAlignment, Label, L"*Alignment:", {12, 34, 108, 8}},
    {host::kIdLabelPointGroup, Label, L"*Point groups:", {12, 52, 108, 8}},
    {host::kIdLabelPointCount, Label, L"*Selected points:", {12, 71, 108, 8}},
    {host::kIdPictureSite, Picture, L"", {126, 16, 15, 13}},
    {host::kIdPictureAlignment, Picture, L"", {126, 34, 15, 13}},
    {host::kIdPicturePointGroup, Picture, L"", {126, 52, 15, 13}},
    {host::kIdPicturePointCount, Picture, L"", {126, 70, 15, 13}},
    {host::kIdSites, DropDownList, L"", {144, 15, 108, 78}},
    {host::kIdAlignments, DropDownList, L"", {144, 33, 108, 78}},
    {host::kIdPointGroups, DropDownList, L"", {144, 51, 108, 78}},
    {host::kIdPointCount, Label, L"* Points selected", {144, 71, 108, 8}},
    {host::kIdPickAlignment, PictureButton, L"*", {257, 32, 15, 14}},
    {host::kIdPickPoints, PictureButton, L"*", {257, 50, 15, 14}},
    {host::kIdFrameOutput, GroupBox, L"*Output file", {7, 95, 269, 91}},
    {host::kIdCheckAscii, CheckBox, L"*Export to ASCII", {36, 112, 108, 10}},
    {host::kIdCheckExcel, CheckBox, L"*Export to Excel", {36, 126, 108, 10}},
    {host::kIdCheckHtml, CheckBox, L"*Export to Xml", {36, 140, 108, 10}},
    {host::kIdOutputFileBox, PictureButton, L"*", {14, 159, 15, 14}},
    {host::kIdOutputStem, EditBox, L"", {35, 160, 217, 13}},
}};

constexpr DialogTemplate kTemplate{host::kPointsDialog, L"*Export Points", 283, 214, kControls};

constexpr std::array<Caption, 3> kCaptions{{{host::kIdFrameSelection, Message::PointsSelectionFrame},
                                            {host::kIdLabelPointGroup, Message::PointGroupLabel},
                                            {host::kIdLabelPointCount, Message::PointCountLabel}}};

constexpr std::array<PictureOn, 2> kSmallPictures{
    {{host::kIdPicturePointGroup, kPicturePointGroup}, {host::kIdPicturePointCount, kPicturePoint}}};

constexpr ReportDialogParts kParts{.dialogTemplate = &kTemplate,
                                   .title = Message::PointsTitle,
                                   .captions = kCaptions,
                                   .smallPictures = kSmallPictures,
                                   .secondPick = host::kIdPickPoints,
                                   .helpPage = kHelpPoints};

}  // namespace

CExportPointsDlg::CExportPointsDlg(host::Host& host) : ReportDialog(host, kParts) {}

CExportPointsDlg::~CExportPointsDlg() {
  if (!loaded) return;
  pvsa_lvx_relsites(sites);
  host::releaseAllAlignments(alignments);
  points::releasePointGroups(pointGroups);
  releaseModel();
}

void CExportPointsDlg::attach() {
  std::optional<Model> model = reachModel();
  loaded = true;  // also where it failed: this dialog doesn't try again. From here on the destructor gives all back.
  if (!model) return;
  take(std::move(*model));
  points::loadPointGroups(document, database, pointGroups);
}

void CExportPointsDlg::onOpening(DialogWindow& window) {
  if (!loaded) attach();
  showLook(window);

  fillSites(window);
  fillAlignments(window);
  fillPointGroups(window);

  choose(window, host::kIdSites, siteIndex, siteText);
  choose(window, host::kIdAlignments, alignmentIndex, alignmentText);
  choose(window, host::kIdPointGroups, groupIndex, groupText);

  // Points picked by hand win at each opening. What was selected before them is read anew on OK.
  const framework::ArrayIndex pickedRow = pointGroups.size() - 1;
  if (pointGroups[pickedRow]->count > 0) window.select(host::kIdPointGroups, static_cast<int>(pickedRow));
  showCount(window, selectedCount(window) == 1 ? Message::OnePointSelected : Message::PointsSelected);

  enableOkIfComplete(window);
  setFormChecks(window);
}

void CExportPointsDlg::fillPointGroups(DialogWindow& window) {
  // The former choice is forgotten, so only a group without a name moves the start away from the first row.
  groupText.clear();
  groupIndex = insertNames(window, host::kIdPointGroups, pointGroups, groupText);
}

std::int32_t CExportPointsDlg::selectedCount(const DialogWindow& window) const {
  return pointGroups[window.selection(host::kIdPointGroups)]->count;
}

void CExportPointsDlg::showCount(DialogWindow& window, Message words) const {
  window.setText(host::kIdPointCount,
                 services::formatText(L"%ld %s", {std::int64_t{selectedCount(window)}, getMessage(words)}));
}

void CExportPointsDlg::onSelectionChanged(DialogWindow& window, int id) {
  if (id == host::kIdSites) {
    if (window.selection(host::kIdSites) != DialogWindow::kNone) changeSite(window);
  } else if (id == host::kIdPointGroups) {
    showCount(
        window,
        Message::PointsSelected);  // in the plural even for one point, unlike at the opening: users know the text so
  }
}

void CExportPointsDlg::stemChanged(DialogWindow& window) { window.enable(host::kIdOk, isComplete()); }

void CExportPointsDlg::takeTextsOver(const DialogWindow& window) {
  siteText = selectedText(window, host::kIdSites);
  alignmentText = selectedText(window, host::kIdAlignments);
  groupText = selectedText(window, host::kIdPointGroups);
}

bool CExportPointsDlg::isComplete() const { return groupIndex >= 0 && !outputStem.empty(); }

}  // namespace lvx::points
