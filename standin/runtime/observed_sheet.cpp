#include "runtime/observed_sheet.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "framework/exceptions.h"
#include "platform/posix/posix_platform.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

ObservedSheet::ObservedSheet(std::unique_ptr<host::Sheet> inner, FileJournal& journal,
                             std::function<bool()> isInterrupted)
    : inner_(std::move(inner)), journal_(journal), isInterrupted_(std::move(isInterrupted)) {}

void ObservedSheet::checkInterrupted() const {
  if (isInterrupted_ && isInterrupted_()) throw Interrupted();
}

bool ObservedSheet::start() { return inner_->start(); }

void ObservedSheet::writeCell(const host::CString& cellName, const host::CString& text) {
  checkInterrupted();
  inner_->writeCell(cellName, text);
}

void ObservedSheet::writeNumberCell(const host::CString& cellName, const host::CString& text) {
  checkInterrupted();
  inner_->writeNumberCell(cellName, text);
}

void ObservedSheet::finish(const host::CString& path) {
  checkInterrupted();
  const std::string name = platform::toUtf8(path);
  try {
    inner_->finish(path);
  } catch (const framework::AutomationException& failure) {
    journal_.add({FileFate::Failed, name, 0, failure.what()});
    throw;
  }
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(name, error);
  if (error)
    journal_.add({FileFate::Failed, name, 0, error.message()});
  else
    journal_.add({FileFate::Written, name, bytes, {}});
}

}  // namespace lvx::runtime
