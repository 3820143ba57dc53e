#include "dialogs/report_dialog.h"

#include <array>
#include <utility>

#include "host/companion.h"
#include "host/dialog_controls.h"
#include "host/host.h"
#include "services/message_catalogue.h"

namespace lvx::dialogs {

using services::getMessage;
using services::Message;

namespace {

constexpr std::array<Caption, 5> kCaptions{{{host::kIdCancel, Message::CancelButton},
                                            {host::kIdHelp, Message::HelpButton},
                                            {host::kIdLabelSite, Message::SiteLabel},
                                            {host::kIdLabelAlignment, Message::AlignmentLabel},
                                            {host::kIdFrameOutput, Message::OutputFrame}}};

constexpr std::array<PictureOn, 2> kSmallPictures{
    {{host::kIdPictureSite, kPictureSite}, {host::kIdPictureAlignment, kPictureAlignment}}};

}  // namespace

// ---------------------------------------------------------------- attaching and going

std::optional<ReportDialog::Model> ReportDialog::reachModel() {
  Model model;
  if (pvsa_lvx_getQmtObject(model.document, model.database) < 1) return std::nullopt;
  return model;
}

void ReportDialog::take(Model model) {
  document = std::move(model.document);
  database = std::move(model.database);
  pvsa_lvx_getsites(sites);
  host::loadAllAlignments(host_, document, database, alignments);
  host::removeSitesWithoutAlignments(sites);
}

void ReportDialog::releaseModel() {
  database.reset();
  document.reset();
  pvsa_lvx_releaseQmtObject();
}

// ---------------------------------------------------------------- steps of an opening

void ReportDialog::showLook(DialogWindow& window) {
  window.setTitle(getMessage(parts_.title));
  setCaptions(window, kCaptions);
  setCaptions(window, parts_.captions);
  window.setText(host::kIdOutputStem, outputStem);
  window.setTip(host::kIdOutputStem, outputStem);
  const std::array<PictureOn, 3> buttons{{{host::kIdPickAlignment, kPicturePick},
                                          {parts_.secondPick, kPicturePick},
                                          {host::kIdOutputFileBox, kPictureSave}}};
  setPictures(host_, window, kSmallPictures, buttons);
  setPictures(host_, window, parts_.smallPictures, parts_.plainPictures);
  for (const ControlTemplate& control : dialogTemplate().controls)
    if (control.kind == ControlKind::DropDownList) window.emptyList(control.id);
}

void ReportDialog::fillSites(DialogWindow& window) {
  siteIndex = sites.isEmpty() ? -1 : 0;
  for (framework::ArrayIndex i = 0; i < sites.size(); ++i) {
    const host::tsite& site = *sites[i];
    const auto row = static_cast<std::int32_t>(i);
    window.insertRow(host::kIdSites, row, site.name.empty() ? getMessage(Message::NoSite) : site.name);
    if (site.name == siteText) siteIndex = row;
  }
}

void ReportDialog::fillAlignments(DialogWindow& window) {
  alignmentIndex =
      siteIndex < 0 ? -1 : insertNames(window, host::kIdAlignments, sites[siteIndex]->alignments, alignmentText);
}

void ReportDialog::fillSampleLineGroups(DialogWindow& window) {
  groupIndex = -1;
  if (alignmentIndex < 0) return;
  const host::talignment2* alignment = selectedInOverallList();
  groupIndex =
      alignment == nullptr ? 0 : insertNames(window, host::kIdSampleLineGroups, alignment->children, groupText);
}

void ReportDialog::choose(DialogWindow& window, int list, std::int32_t index, CString& text) {
  if (index < 0) return;
  text = window.rowText(list, index);
  window.select(list, index);
}

void ReportDialog::enableOkIfComplete(DialogWindow& window) const {
  if (isComplete()) window.enable(host::kIdOk, true);
}

// ---------------------------------------------------------------- what the user does

void ReportDialog::onClick(DialogWindow& window, int id) {
  if (id == host::kIdPickAlignment || id == parts_.secondPick || id == host::kIdCancel) {
    window.end(id);
  } else if (id == host::kIdOutputFileBox) {
    if (runOutputFileBox(host_, window)) outputStem = window.text(host::kIdOutputStem);
  } else if (id == host::kIdHelp) {
    showHelp(host_, CString(parts_.helpPage));
  } else if (id == host::kIdOk) {
    takeTextsOver(window);
    checkAscii = window.isTicked(host::kIdCheckAscii) ? 1 : 0;
    checkExcel = window.isTicked(host::kIdCheckExcel) ? 1 : 0;
    checkThird = window.isTicked(host::kIdCheckHtml) ? 1 : 0;
    window.end(host::kIdOk);
  }
}

void ReportDialog::onTextChanged(DialogWindow& window, int id) {
  if (id != host::kIdOutputStem) return;
  outputStem = window.text(host::kIdOutputStem);
  stemChanged(window);
}

void ReportDialog::takeRow(const DialogWindow& window, int list, std::int32_t& index, CString& text) {
  index = window.selection(list);
  text = window.rowText(list, index);
}

CString ReportDialog::selectedText(const DialogWindow& window, int list) {
  const int row = window.selection(list);
  return row == DialogWindow::kNone ? CString() : window.rowText(list, row);
}

void ReportDialog::changeSite(DialogWindow& window) {
  takeRow(window, host::kIdSites, siteIndex, siteText);
  window.emptyList(host::kIdAlignments);
  alignmentText.clear();
  alignmentIndex = insertNames(window, host::kIdAlignments, sites[siteIndex]->alignments);
  choose(window, host::kIdAlignments, alignmentIndex, alignmentText);
}

bool ReportDialog::listSampleLineGroups(DialogWindow& window) {
  window.emptyList(host::kIdSampleLineGroups);
  groupIndex = -1;
  groupText.clear();
  if (alignmentIndex < 0) return false;
  const host::talignment2* alignment = selectedInOverallList();
  return alignment != nullptr && insertNames(window, host::kIdSampleLineGroups, alignment->children) >= 0;
}

const host::tsiteAlignment& ReportDialog::selectedInTree() const {
  return *sites[siteIndex]->alignments[alignmentIndex];
}

const host::talignment2* ReportDialog::selectedInOverallList() const {
  const CString& handle = selectedInTree().handle;
  for (const host::talignment2* alignment : alignments)
    if (alignment->handle == handle) return alignment;
  return nullptr;
}

}  // namespace lvx::dialogs
