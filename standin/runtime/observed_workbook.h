#pragma once

#include <functional>
#include <string>

#include "runtime/file_journal.h"
#include "workbook/workbook_server.h"

namespace lvx::runtime {

/// Puts the outcome of each workbook into the journal. A failure reaches the module all the same, as that of a
/// spreadsheet program does: it ends the command.
class ObservedWorkbook final : public workbook::WorkbookObserver {
 public:
  /// `journal` must outlive the observer; `isInterrupted` may be empty. Once it answers true, the next cell or the saving
  /// throws Interrupted. `whyNoOutput` says why a path may not be written, or nothing where it may.
  ObservedWorkbook(FileJournal& journal, std::function<bool()> isInterrupted,
                   std::function<std::string(const std::string&)> whyNoOutput = {});
  ~ObservedWorkbook() override;

  void beforeWriting() override;
  void beforeSaving(const framework::CString& path) override;
  void whileSaving() override { beforeWriting(); }
  void saved(const framework::CString& path, std::uint64_t bytes) noexcept override;
  void notSaved(const framework::CString& path, const char* reason) noexcept override;

 private:
  void tell(FileEvent event) noexcept;

  FileJournal& journal_;
  std::function<bool()> isInterrupted_;
  std::function<std::string(const std::string&)> whyNoOutput_;
  bool isPrepared_ = false;
  std::string path_;  ///< of the saving under way
};

}  // namespace lvx::runtime
