#include "gls/gls_command.h"

#include "dialogs/report_command.h"
#include "gls/gls_ascii.h"
#include "gls/gls_assembly.h"
#include "gls/gls_dialog.h"
#include "gls/gls_excel.h"
#include "gls/gls_html.h"
#include "host/host.h"
#include "host/picking.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::gls {

using gls::CMyDialog3;
using services::getMessage;
using services::Message;

namespace {

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
  host::pickEntity(host,
                   {host::kClassProfile, getMessage(Message::PickSurfaceOrProfile), getMessage(Message::NotAProfile)},
                   [&dialog](const CString& handle) { takePickedProfile(dialog, handle); });
}

}  // namespace

void runGlsReport(host::Host& host) {
  CMyDialog3 dialog(host);
  const auto pick = [&] {
    pickProfile(host, dialog);
    return true;
  };
  if (!dialogs::runUntilOk(host, dialog, pick)) return;
  if (!services::mayWriteUnderStem(host, dialog.outputStem)) return;

  collectGlsRows(host, dialog.document, dialog.database, dialog.siteText, dialog.alignmentText, dialog.groupText,
                 dialog.profileText, dialog.report);

  const CString& alignment = dialog.reportAlignmentText;
  dialogs::writeTickedForms(host, dialog,
                            {.ascii = [&](const CString& name) { writeGlsAscii(name, alignment, dialog.report); },
                             .excel = [&](const CString& name) { writeGlsExcel(name, alignment, dialog.report); },
                             .html = [&](const CString& name) { writeGlsHtml(name, alignment, dialog.report); }});
}

}  // namespace lvx::gls
