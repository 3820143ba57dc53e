#include "runtime/observed_sheet.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "framework/exceptions.h"
#include "platform/posix/posix_platform.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

ObservedSheet::ObservedSheet(std::unique_ptr<host::Sheet> inner, FileJournal& journal, SheetFailure onFailure,
                             std::function<bool()> isInterrupted)
    : inner_(std::move(inner)), journal_(journal), onFailure_(onFailure), isInterrupted_(std::move(isInterrupted)) {}

bool ObservedSheet::start() { return inner_->start(); }

template <class Operation>
void ObservedSheet::attempt(Operation operation) {
  if (isInterrupted_ && isInterrupted_()) throw Interrupted();
  if (failed_) return;
  try {
    operation();
  } catch (const framework::AutomationException& failure) {
    failed_ = true;
    reason_ = failure.what();
    if (onFailure_ == SheetFailure::Raise) throw;
  }
}

void ObservedSheet::writeCell(const host::CString& cellName, const host::CString& text) {
  attempt([&] { inner_->writeCell(cellName, text); });
}

void ObservedSheet::writeNumberCell(const host::CString& cellName, const host::CString& text) {
  attempt([&] { inner_->writeNumberCell(cellName, text); });
}

void ObservedSheet::finish(const host::CString& path) {
  const std::string name = platform::toUtf8(path);
  const auto recordFailure = [&] { journal_.add({FileFate::Failed, name, 0, reason_}); };
  try {
    attempt([&] { inner_->finish(path); });
  } catch (const framework::AutomationException&) {
    recordFailure();
    throw;
  }
  if (failed_) {
    recordFailure();
    return;
  }
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(name, error);
  if (error)
    journal_.add({FileFate::Failed, name, 0, error.message()});
  else
    journal_.add({FileFate::Written, name, bytes, {}});
}

}  // namespace lvx::runtime
