#include "services/report_files.h"

#include "host/host.h"
#include "platform/platform.h"
#include "services/message_catalogue.h"

namespace lvx::services {

using host::BoxAnswer;
using host::BoxButtons;
using host::BoxIcon;

bool fileExists(host::Host& host, const CString& path) { return host.platform().exists(path); }

bool pathExists(host::Host& host, const CString& path) { return host.platform().exists(path); }

bool mayWriteReport(host::Host& host, const CString& name) {
  if (!fileExists(host, name)) return true;
  return host.userInterface().messageBox(name + L" " + getMessage(Message::OverwriteFile), BoxButtons::YesNo,
                                         BoxIcon::Question) == BoxAnswer::Yes;
}

bool mayWriteWorkbook(host::Host& host, const CString& name) {
  if (!fileExists(host, name)) return true;
  if (!mayWriteReport(host, name)) return false;
  while (!host.platform().openFile(name, "w")) {
    if (host.userInterface().messageBox(name + L" " + getMessage(Message::RetryWriting), BoxButtons::RetryCancel,
                                        BoxIcon::Question) == BoxAnswer::Cancel)
      return false;
  }
  host.platform().removeFile(name);
  return true;
}

StemFolder folderOfStem(host::Host& host, const CString& stem) {
  const std::size_t mark = host.platform().lastFolderMark(stem);
  if (mark == CString::npos) return StemFolder::None;
  // A stem right below the root has the root itself as its folder.
  const CString folder = stem.substr(0, mark == 0 ? 1 : mark);
  return pathExists(host, folder) ? StemFolder::Exists : StemFolder::Missing;
}

bool mayWriteUnderStem(host::Host& host, const CString& stem) {
  const StemFolder folder = folderOfStem(host, stem);
  if (folder == StemFolder::None)
    host.userInterface().messageBox(getMessage(Message::OutputWithoutFolder), BoxButtons::Ok, BoxIcon::Warning);
  return folder == StemFolder::Exists;
}

}  // namespace lvx::services
