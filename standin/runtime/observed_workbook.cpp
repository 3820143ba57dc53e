#include "runtime/observed_workbook.h"

#include <new>
#include <utility>

#include "framework/exceptions.h"
#include "platform/utf8.h"
#include "runtime/open_drawing.h"

namespace lvx::runtime {

namespace {

class NoOutput final : public framework::AutomationException {
 public:
  explicit NoOutput(std::string words) : words_(std::move(words)) {}
  [[nodiscard]] const char* what() const noexcept override { return words_.c_str(); }

 private:
  std::string words_;
};

}  // namespace

ObservedWorkbook::ObservedWorkbook(FileJournal& journal, std::function<bool()> isInterrupted,
                                   std::function<std::string(const std::string&)> whyNoOutput)
    : journal_(journal), isInterrupted_(std::move(isInterrupted)), whyNoOutput_(std::move(whyNoOutput)) {}

ObservedWorkbook::~ObservedWorkbook() {
  if (isPrepared_) journal_.dropPrepared();
}

void ObservedWorkbook::beforeWriting() {
  if (isInterrupted_ && isInterrupted_()) throw Interrupted();
}

void ObservedWorkbook::beforeSaving(const framework::CString& path) {
  path_ = platform::toUtf8(path);
  if (!isPrepared_) journal_.prepare();
  isPrepared_ = true;
  if (std::string reason = journal_.whyNoReport(); !reason.empty()) throw NoOutput("workbook: " + reason);
  if (!whyNoOutput_) return;
  if (std::string reason = whyNoOutput_(path_); !reason.empty()) throw NoOutput("workbook: " + reason);
}

void ObservedWorkbook::saved(const framework::CString& /*path*/, std::uint64_t bytes) noexcept {
  tell({FileFate::Written, std::move(path_), bytes, {}});
}

void ObservedWorkbook::notSaved(const framework::CString& /*path*/, const char* reason) noexcept {
  FileEvent event{FileFate::Failed, std::move(path_), 0, {}};
  try {
    event.reason = reason;
  } catch (const std::bad_alloc&) {
    event.reason = "no more memory";  // short enough to need none
  }
  tell(std::move(event));
}

void ObservedWorkbook::tell(FileEvent event) noexcept {
  // Without room beforeSaving() failed for lack of memory, and the exception on its way says so.
  if (!isPrepared_) return;
  isPrepared_ = false;
  journal_.addPrepared(std::move(event));
}

}  // namespace lvx::runtime
