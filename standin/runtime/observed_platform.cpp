#include "runtime/observed_platform.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/posix/posix_platform.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/sink_stream.h"

namespace lvx::runtime {

using platform::CString;
using platform::FileHandle;
using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;

namespace {

/// A file on its way, behind the stream that the module writes to.
class Writing final : public standin_platform::ByteSink {
 public:
  /// Throws AtomicFileError.
  Writing(FileJournal& journal, const std::function<bool()>& isInterrupted, std::string path)
      : journal_(journal),
        isInterrupted_(isInterrupted),
        path_(std::move(path)),
        file_(path_, {.writesInPlace = true}),
        exceptionsAtOpening_(std::uncaught_exceptions()) {}

  [[nodiscard]] bool write(std::string_view bytes) noexcept override {
    try {
      file_.write(bytes);
    } catch (const AtomicFileError& error) {
      if (!error_) error_ = error.reason();
      return false;
    }
    bytes_ += bytes.size();
    return true;
  }

  [[nodiscard]] bool close() noexcept override {
    const std::string reason = finish();
    const bool written = reason.empty();
    journal_.add({written ? FileFate::Written : FileFate::Failed, path_, bytes_, reason});
    return written;
  }

 private:
  /// Puts the file into place; gives why it doesn't get there.
  [[nodiscard]] std::string finish() {
    if (error_) return error_.message();
    if (std::uncaught_exceptions() > exceptionsAtOpening_) return "its writer ended by an exception";
    if (isInterrupted_ && isInterrupted_()) return "interrupted";
    try {
      file_.commit();
    } catch (const AtomicFileError& error) {
      return error.reason().message();
    }
    return {};
  }

  FileJournal& journal_;
  const std::function<bool()>& isInterrupted_;
  std::string path_;  ///< as the module named it
  AtomicFile file_;
  int exceptionsAtOpening_;
  std::error_code error_;
  std::uint64_t bytes_ = 0;
};

}  // namespace

ObservedPlatform::ObservedPlatform(platform::Platform& inner, FileJournal& journal, std::function<bool()> isInterrupted)
    : inner_(inner), journal_(journal), isInterrupted_(std::move(isInterrupted)) {}

FileHandle ObservedPlatform::openFile(const CString& path, const char* mode) {
  if (mode == nullptr || mode[0] != 'w') return inner_.openFile(path, mode);
  const std::string name = platform::toUtf8(path);
  std::unique_ptr<Writing> writing;
  try {
    writing = std::make_unique<Writing>(journal_, isInterrupted_, name);
  } catch (const AtomicFileError& error) {
    journal_.add({FileFate::Failed, name, 0, error.reason() ? error.reason().message() : error.what()});
    errno = error.reason().value();
    return nullptr;
  }
  FileHandle stream(standin_platform::openSinkStream(std::move(writing)));
  if (!stream) journal_.add({FileFate::Failed, name, 0, "out of memory"});
  return stream;
}

bool ObservedPlatform::exists(const CString& path) {
  const bool found = inner_.exists(path);
  journal_.lookedFor(platform::toUtf8(path), found);
  return found;
}

bool ObservedPlatform::removeFile(const CString& path) {
  const bool removed = inner_.removeFile(path);
  const int error = errno;
  if (removed)
    journal_.add({FileFate::Removed, platform::toUtf8(path), 0, {}});
  else
    journal_.add({FileFate::Failed, platform::toUtf8(path), 0, std::strerror(error)});
  return removed;
}

}  // namespace lvx::runtime
