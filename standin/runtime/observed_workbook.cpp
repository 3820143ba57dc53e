#include "runtime/observed_workbook.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/posix/posix_platform.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

ObservedWorkbook::ObservedWorkbook(FileJournal& journal, std::function<bool()> isInterrupted)
    : journal_(journal), isInterrupted_(std::move(isInterrupted)) {}

void ObservedWorkbook::beforeWriting() {
  if (isInterrupted_ && isInterrupted_()) throw Interrupted();
}

void ObservedWorkbook::saved(const framework::CString& path) {
  const std::string name = platform::toUtf8(path);
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(name, error);
  if (error)
    journal_.add({FileFate::Failed, name, 0, error.message()});
  else
    journal_.add({FileFate::Written, name, bytes, {}});
}

void ObservedWorkbook::notSaved(const framework::CString& path, const char* reason) {
  journal_.add({FileFate::Failed, platform::toUtf8(path), 0, reason});
}

}  // namespace lvx::runtime
