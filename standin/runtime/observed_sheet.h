#pragma once

#include <functional>
#include <memory>

#include "host/sheet.h"
#include "runtime/file_journal.h"

namespace lvx::runtime {

/// What a workbook that can't be saved does to the command that wrote it.
enum class SheetFailure : std::uint8_t {
  Raise,   ///< the automation exception reaches the module, which ends the command
  Record,  ///< the journal holds the failure and the command goes on, so that its other files are still written
};

/// A sheet whose outcome goes into the journal.
class ObservedSheet final : public host::Sheet {
 public:
  /// `journal` must outlive the sheet; `isInterrupted` is asked now and then and makes the sheet throw Interrupted.
  ObservedSheet(std::unique_ptr<host::Sheet> inner, FileJournal& journal, SheetFailure onFailure,
                std::function<bool()> isInterrupted = {});

  [[nodiscard]] bool start() override;
  void writeCell(const host::CString& cellName, const host::CString& text) override;
  void writeNumberCell(const host::CString& cellName, const host::CString& text) override;
  void finish(const host::CString& path) override;

 private:
  template <class Operation>
  void attempt(Operation operation);

  std::unique_ptr<host::Sheet> inner_;
  FileJournal& journal_;
  SheetFailure onFailure_;
  std::function<bool()> isInterrupted_;
  bool failed_ = false;
  std::string reason_;
};

}  // namespace lvx::runtime
