#pragma once

#include <functional>

#include "runtime/file_journal.h"
#include "workbook/workbook_server.h"

namespace lvx::runtime {

/// Puts the outcome of each workbook into the journal. A failure reaches the module all the same, as that of a
/// spreadsheet program does: it ends the command.
class ObservedWorkbook final : public workbook::WorkbookObserver {
 public:
  /// `journal` must outlive the observer; `isInterrupted` may be empty. Once it answers true, the next cell or the saving
  /// throws Interrupted.
  ObservedWorkbook(FileJournal& journal, std::function<bool()> isInterrupted);

  void beforeWriting() override;
  void saved(const framework::CString& path) override;
  void notSaved(const framework::CString& path, const char* reason) override;

 private:
  FileJournal& journal_;
  std::function<bool()> isInterrupted_;
};

}  // namespace lvx::runtime
