#pragma once

#include <functional>
#include <memory>

#include "host/sheet.h"
#include "runtime/file_journal.h"

namespace lvx::runtime {

/// A sheet whose outcome goes into the journal. A failure reaches the module all the same, as that of a spreadsheet program
/// does: it ends the command.
class ObservedSheet final : public host::Sheet {
 public:
  /// `journal` must outlive the sheet; `isInterrupted` is asked now and then and makes the sheet throw Interrupted.
  ObservedSheet(std::unique_ptr<host::Sheet> inner, FileJournal& journal, std::function<bool()> isInterrupted = {});

  [[nodiscard]] bool start() override;
  void writeCell(const host::CString& cellName, const host::CString& text) override;
  void writeNumberCell(const host::CString& cellName, const host::CString& text) override;
  void finish(const host::CString& path) override;

 private:
  void checkInterrupted() const;

  std::unique_ptr<host::Sheet> inner_;
  FileJournal& journal_;
  std::function<bool()> isInterrupted_;
};

}  // namespace lvx::runtime
