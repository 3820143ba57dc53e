#include "dialogs/report_command.h"

#include "host/dialog_controls.h"
#include "host/host.h"
#include "host/picking.h"
#include "services/message_catalogue.h"
#include "services/report_files.h"

namespace lvx::dialogs {

using services::getMessage;
using services::Message;

namespace {

constexpr int kClosedByMark = 3;
constexpr std::int16_t kTicked = 1;

void pickAlignment(host::Host& host, ReportDialog& dialog) {
  host::pickEntity(
      host, {host::kClassAlignment, getMessage(Message::PickAlignment), getMessage(Message::NotAnAlignment)},
      [&dialog](const CString& handle) {
        host::namePickedAlignment(dialog.sites, dialog.alignments, handle, dialog.siteText, dialog.alignmentText);
      });
}

}  // namespace

bool runUntilOk(host::Host& host, ReportDialog& dialog, const std::function<bool()>& pickSecond) {
  for (;;) {
    const int code = host.dialogs().runModal(dialog, host.runTime().vnsw_mainWnd());
    if (code == host::kIdOk) return true;
    if (code == host::kIdCancel || code == kClosedByMark) return false;
    if (code == host::kIdPickAlignment)
      pickAlignment(host, dialog);
    else if (code == dialog.secondPick() && !pickSecond())
      return false;
  }
}

void writeTickedForms(host::Host& host, const ReportDialog& dialog, const FormWriters& writers) {
  if (dialog.checkAscii == kTicked) {
    const CString name = dialog.outputStem + L".txt";
    if (services::mayWriteReport(host, name)) writers.ascii(name);
  }
  if (dialog.checkExcel == kTicked) {
    const CString name = dialog.outputStem + L".xls";
    if (services::mayWriteWorkbook(host, name)) writers.excel(name);
  }
  if (dialog.checkThird == kTicked) {
    const CString name = dialog.outputStem + L".html";
    if (services::mayWriteReport(host, name)) writers.html(name);
  }
}

}  // namespace lvx::dialogs
