#include "runtime/observed_platform.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/utf8.h"
#include "runtime/open_drawing.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/folder_mark.h"
#include "standin_platform/sink_stream.h"

namespace lvx::runtime {

using platform::CString;
using platform::FileHandle;
using standin_platform::AtomicFile;
using standin_platform::AtomicFileError;

namespace {

constexpr const char* kOutOfMemory = "no more memory";

std::string reasonOf(const AtomicFileError& error) { return error.reason() ? error.reason().message() : error.what(); }

/// A file on its way, behind the stream that the module writes to.
class Writing final : public standin_platform::ByteSink {
 public:
  /// Throws AtomicFileError.
  Writing(FileJournal& journal, const std::function<bool()>& isInterrupted, const std::string& path)
      : journal_(journal),
        isInterrupted_(isInterrupted),
        event_{FileFate::Failed, path, 0, {}},
        stood_(standin_platform::stampOf(path).has_value()),
        file_(path, {.writesInPlace = true, .flushesToDisk = true}),
        exceptionsAtOpening_(std::uncaught_exceptions()) {
    journal_.prepare();
  }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;
  ~Writing() override {
    if (!isTold_) journal_.dropPrepared();
  }

  [[nodiscard]] bool write(std::string_view bytes) noexcept override {
    try {
      file_.write(bytes);
    } catch (const AtomicFileError& error) {
      if (!error_) error_ = error.reason();
      return false;
    } catch (const std::bad_alloc&) {
      if (!error_) error_ = std::make_error_code(std::errc::not_enough_memory);
      return false;
    }
    event_.bytes += bytes.size();
    return true;
  }

  // The words fit into the text without more memory where there is none.
  [[nodiscard]] bool close() noexcept override {
    try {
      event_.reason = finish();
    } catch (const std::bad_alloc&) {
      event_.reason = kOutOfMemory;
    }
    const bool written = event_.reason.empty();
    if (written) event_.fate = FileFate::Written;
    isTold_ = true;
    journal_.addPrepared(std::move(event_));
    return written;
  }

 private:
  /// Puts the file into place; gives why it doesn't get there.
  [[nodiscard]] std::string finish() {
    if (error_) return error_.message();
    if (std::uncaught_exceptions() > exceptionsAtOpening_) return "its writer ended by an exception";
    if (isInterrupted_ && isInterrupted_()) return "interrupted";
    // Only tried, so that what stood there goes on standing there.
    if (event_.bytes == 0 && stood_) return {};
    try {
      file_.commit();
    } catch (const AtomicFileError& error) {
      return reasonOf(error);
    }
    return {};
  }

  FileJournal& journal_;
  const std::function<bool()>& isInterrupted_;
  FileEvent event_;
  bool stood_;
  AtomicFile file_;
  int exceptionsAtOpening_;
  std::error_code error_;
  bool isTold_ = false;
};

/// A file that is read.
struct Reading {
  FileJournal& journal;
  std::string path;
};

void endReading(std::FILE* stream, void* opener) noexcept {
  const std::unique_ptr<Reading> reading(static_cast<Reading*>(opener));
  if (std::ferror(stream) != 0) reading->journal.addUnread(std::move(reading->path));
  std::fclose(stream);
}

FileHandle openToRead(platform::Platform& platform, FileJournal& journal, const CString& path, const char* mode) {
  auto reading = std::make_unique<Reading>(Reading{journal, platform::toUtf8(path)});
  FileHandle file = platform.openFile(path, mode);
  if (!file) {
    journal.addUnread(std::move(reading->path));
    return file;
  }
  return {file.release(), platform::FileCloser(endReading, reading.release())};
}

}  // namespace

ObservedPlatform::ObservedPlatform(platform::Platform& inner, FileJournal& journal, std::function<bool()> isInterrupted,
                                   std::function<std::string(const std::string&)> whyNoOutput)
    : inner_(inner),
      journal_(journal),
      isInterrupted_(std::move(isInterrupted)),
      whyNoOutput_(std::move(whyNoOutput)) {}

FileHandle ObservedPlatform::openFile(const CString& path, const char* mode) {
  if (mode == nullptr || mode[0] != 'w') return openToRead(inner_, journal_, path, mode);
  tried_.clear();
  const std::string name = platform::toUtf8(path);
  const auto fail = [&](std::string reason) {
    journal_.add({FileFate::Failed, name, 0, std::move(reason)});
    return FileHandle();
  };
  errno = EINVAL;
  if (std::string reason = journal_.whyNoReport(); !reason.empty()) return fail(std::move(reason));
  if (whyNoOutput_)
    if (std::string reason = whyNoOutput_(name); !reason.empty()) return fail(std::move(reason));
  const bool stood = inner_.exists(path);
  std::unique_ptr<Writing> writing;
  try {
    writing = std::make_unique<Writing>(journal_, isInterrupted_, name);
  } catch (const AtomicFileError& error) {
    (void)fail(reasonOf(error));
    errno = error.reason().value();
    return nullptr;
  }
  FileHandle stream(standin_platform::openSinkStream(std::move(writing)),
                    platform::FileCloser([](std::FILE* opened, void* /*opener*/) noexcept {
                      standin_platform::closeSinkStream(opened);
                    }));
  if (!stream) return fail(kOutOfMemory);
  if (stood) tried_ = name;
  return stream;
}

// People and scripts of the stand-in write either mark where the system takes both.
std::size_t ObservedPlatform::lastFolderMark(const CString& path) const {
  return standin_platform::lastFolderMark(std::wstring_view(path));
}

std::string ObservedPlatform::narrow(const CString& text) {
  if (isInterrupted_ && isInterrupted_()) throw Interrupted();
  return inner_.narrow(text);
}

bool ObservedPlatform::exists(const CString& path) {
  const bool found = inner_.exists(path);
  journal_.lookedFor(platform::toUtf8(path), found);
  return found;
}

bool ObservedPlatform::removeFile(const CString& path) {
  std::string name = platform::toUtf8(path);
  const FileEvent* const last = journal_.last(name);
  if (name == tried_ && last != nullptr && last->fate == FileFate::Written && last->bytes == 0) {
    // It makes way for a workbook, which replaces it in one step: until then, and where that fails, it is still there.
    tried_.clear();
    journal_.add({FileFate::Removed, std::move(name), 0, {}});
    return true;
  }
  if (isInterrupted_ && isInterrupted_()) {
    // What was to come in its place won't: nothing is begun any more.
    journal_.add({FileFate::Failed, std::move(name), 0, "interrupted"});
    errno = EINTR;
    return false;
  }
  const bool removed = inner_.removeFile(path);
  const int error = errno;
  if (removed)
    journal_.add({FileFate::Removed, std::move(name), 0, {}});
  else
    journal_.add({FileFate::Failed, std::move(name), 0, std::strerror(error)});
  return removed;
}

}  // namespace lvx::runtime
