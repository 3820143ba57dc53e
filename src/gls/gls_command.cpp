#include "gls/gls_command.h"

#include "dialogs/dialog_services.h"
#include "dialogs/my_dialog3.h"
#include "gls/gls_ascii.h"
#include "gls/gls_assembly.h"
#include "gls/gls_excel.h"
#include "gls/gls_html.h"
#include "host/host.h"
#include "host/picking.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::gls {

using dialogs::CMyDialog3;
using services::getMessage;
using services::kMessageSet;

namespace {

constexpr int kClosedByMark = 3;
constexpr std::int16_t kTicked = 1;

void pickAlignment(host::Host& host, CMyDialog3& dialog) {
  host::pickEntity(host, {host::kClassAlignment, getMessage(kMessageSet, 110), getMessage(kMessageSet, 111)},
                   [&dialog](const CString& handle) {
                     host::namePickedAlignment(dialog.sites, dialog.alignments, handle, dialog.siteText,
                                               dialog.alignmentText);
                   });
}

/// Names the picked profile to the dialog, with the site and the alignment that it belongs to.
void takePickedProfile(CMyDialog3& dialog, const CString& handle) {
  for (const host::tsite* site : dialog.sites)
    for (const host::tsiteAlignment* alignment : site->alignments)
      for (const host::tprofile* profile : alignment->children)
        if (profile->handle == handle) {
          dialog.siteText = site->name;
          dialog.alignmentText = alignment->name;
          dialog.profileText = profile->name;
          return;
        }
}

void pickProfile(host::Host& host, CMyDialog3& dialog) {
  host::pickEntity(host, {host::kClassProfile, getMessage(kMessageSet, 112), getMessage(kMessageSet, 342)},
                   [&dialog](const CString& handle) { takePickedProfile(dialog, handle); });
}

/// False where the user gave up.
bool runDialog(host::Host& host, CMyDialog3& dialog) {
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
      case CMyDialog3::kIdPickProfile:
        pickProfile(host, dialog);
        break;
      default:
        break;
    }
  }
}

void writeReports(host::Host& host, const CMyDialog3& dialog) {
  const CString& alignment = dialog.reportAlignmentText;
  if (dialog.checkAscii == kTicked) {
    const CString name = dialog.outputStem + L".txt";
    if (services::mayWriteReport(host, name)) writeGlsAscii(name, alignment, dialog.report);
  }
  if (dialog.checkExcel == kTicked) {
    const CString name = dialog.outputStem + L".xls";
    if (services::mayWriteWorkbook(host, name)) writeGlsExcel(name, alignment, dialog.report);
  }
  if (dialog.checkThird == kTicked) {
    const CString name = dialog.outputStem + L".html";
    if (services::mayWriteReport(host, name)) writeGlsHtml(name, alignment, dialog.report);
  }
}

}  // namespace

void runGlsReport(host::Host& host) {
  CMyDialog3 dialog(host);
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

  collectGlsRows(host, dialog.document, dialog.database, dialog.siteText, dialog.alignmentText, dialog.groupText,
                 dialog.profileText, dialog.report);
  writeReports(host, dialog);
}

}  // namespace lvx::gls
