#include "projection/projection_command.h"

#include "dialogs/report_command.h"
#include "host/host.h"
#include "host/picking.h"
#include "projection/projection_ascii.h"
#include "projection/projection_computation.h"
#include "projection/projection_dialog.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/sample_line_collector.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::projection {

using framework::CString;
using projection::CMyDialog1;
using services::getMessage;
using services::Message;

namespace {

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

void pickSurface(host::Host& host, CMyDialog1& dialog) {
  host::pickEntity(host,
                   {host::kClassSurface, getMessage(Message::PickSurfaceOrProfile), getMessage(Message::NotASurface)},
                   [&dialog](const CString& handle) { takePickedSurface(dialog, handle); });
}

}  // namespace

void runProjectionReport(host::Host& host) {
  CMyDialog1 dialog(host);
  const auto pick = [&] {
    pickSurface(host, dialog);
    return true;
  };
  if (!dialogs::runUntilOk(host, dialog, pick)) return;
  if (!services::mayWriteUnderStem(host, dialog.outputStem)) return;

  framework::OwnedList<tsl> records;
  collectSampleLines(dialog.document, dialog.database, dialog.siteText, dialog.alignmentText,
                     GroupFilter::named(dialog.groupText), records.get());
  projectSampleLines(dialog.document, dialog.surfaceText, records.get());

  const CString& alignment = dialog.reportAlignmentText;
  dialogs::writeTickedForms(
      host, dialog,
      {.ascii = [&](const CString& name) { writeProjectionAscii(name, alignment, records.get()); },
       .excel = [&](const CString& name) { writeProjectionExcel(name, alignment, records.get()); },
       .html = [&](const CString& name) { writeProjectionHtml(name, alignment, records.get()); }});
}

}  // namespace lvx::projection
