#include "projection/projection_command.h"

#include "dialogs/dialog_services.h"
#include "dialogs/my_dialog1.h"
#include "host/host.h"
#include "host/picking.h"
#include "projection/projection_ascii.h"
#include "projection/projection_computation.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/sample_line_collector.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::projection {

using dialogs::CMyDialog1;
using framework::CString;
using services::getMessage;
using services::kMessageSet;

namespace {

constexpr int kClosedByMark = 3;
constexpr std::int16_t kTicked = 1;

void takePickedSurface(CMyDialog1& dialog, const CString& handle) {
  if (!dialog.surfaces) return;
  const std::int32_t count = dialog.surfaces->count();
  for (std::int32_t i = 0; i < count; ++i) {
    const host::Ref<host::QmtSurface> surface = dialog.surfaces->item(i);
    if (surface && surface->handle() == handle) {
      dialog.surfaceText = surface->name();
      return;
    }
  }
}

void pickAlignment(host::Host& host, CMyDialog1& dialog) {
  host::pickEntity(host, {host::kClassAlignment, getMessage(kMessageSet, 110), getMessage(kMessageSet, 111)},
                   [&dialog](const CString& handle) {
                     host::namePickedAlignment(dialog.sites, dialog.alignments, handle, dialog.siteText,
                                               dialog.alignmentText);
                   });
}

void pickSurface(host::Host& host, CMyDialog1& dialog) {
  host::pickEntity(host, {host::kClassSurface, getMessage(kMessageSet, 112), getMessage(kMessageSet, 113)},
                   [&dialog](const CString& handle) { takePickedSurface(dialog, handle); });
}

/// False where the user gave up.
bool runDialog(host::Host& host, CMyDialog1& dialog) {
  for (;;) {
    switch (host.dialogs().runModal(dialog, host.runTime().vnsw_mainWnd())) {
      case dialogs::kIdOk:
        return true;
      case dialogs::kIdCancel:
      case kClosedByMark:
        return false;
      case dialogs::kIdPickAlignment:
        pickAlignment(host, dialog);
        break;
      case dialogs::kIdPickSecond:
        pickSurface(host, dialog);
        break;
      default:
        break;
    }
  }
}

void writeReports(host::Host& host, const CMyDialog1& dialog, const SampleLineList& records) {
  const CString& alignment = dialog.reportAlignmentText;
  if (dialog.checkAscii == kTicked) {
    const CString name = dialog.outputStem + L".txt";
    if (services::mayWriteReport(host, name)) writeProjectionAscii(name, alignment, records);
  }
  if (dialog.checkExcel == kTicked) {
    const CString name = dialog.outputStem + L".xls";
    if (services::mayWriteWorkbook(host, name)) writeProjectionExcel(name, alignment, records);
  }
  if (dialog.checkThird == kTicked) {
    const CString name = dialog.outputStem + L".html";
    if (services::mayWriteReport(host, name)) writeProjectionHtml(name, alignment, records);
  }
}

}  // namespace

void runProjectionReport(host::Host& host) {
  CMyDialog1 dialog(host);
  if (!runDialog(host, dialog)) return;

  switch (services::folderOfStem(host, dialog.outputStem)) {
    case services::StemFolder::None:
      host.userInterface().messageBox(getMessage(kMessageSet, 229), host::BoxButtons::Ok, host::BoxIcon::Warning);
      return;
    case services::StemFolder::Missing:
      return;  // without a word: users' scripts rely on the command never stopping here
    case services::StemFolder::Exists:
      break;
  }

  framework::OwnedList<tsl> records;
  collectSampleLines(dialog.document, dialog.database, dialog.siteText, dialog.alignmentText,
                     GroupFilter::named(dialog.groupText), records.get());
  projectSampleLines(dialog.document, dialog.surfaceText, records.get());
  writeReports(host, dialog, records.get());
}

}  // namespace lvx::projection
