#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/platform.h"
#include "runtime/file_journal.h"

namespace lvx::runtime {

/// A platform whose files are watched: each file opened for writing grows under a name of its own beside the target and
/// takes the target's place when it is closed without an error, so a full disk, an interruption or an exception leaves
/// what stood there before. Every outcome goes into the journal, since the module's writers look at none.
///
/// A target that isn't a regular file (a device, a pipe) is written in place. A file that may not be written isn't replaced,
/// though its folder would allow it, and one in a folder where nothing may be created isn't either.
///
/// A module tries an older workbook by opening it for writing, and removes it before the spreadsheet program writes the new
/// one. So that nothing is lost on that way, a file that is closed without a byte stays what it was, and its removal only
/// counts as done: the new workbook takes its place in one step.
class ObservedPlatform final : public platform::Platform {
 public:
  /// `inner` and `journal` must outlive this object and every file it opened. `isInterrupted` is asked for each text and
  /// when a file is closed or removed; a file that an interruption cut off is given up, and none is removed any more then.
  /// `whyNoOutput` says why a path may not be written, or nothing where it may. Once a file couldn't be read, none is
  /// written (FileJournal::whyNoReport).
  ObservedPlatform(platform::Platform& inner, FileJournal& journal, std::function<bool()> isInterrupted = {},
                   std::function<std::string(const std::string&)> whyNoOutput = {});

  [[nodiscard]] platform::FileHandle openFile(const platform::CString& path, const char* mode) override;
  [[nodiscard]] bool exists(const platform::CString& path) override;
  bool removeFile(const platform::CString& path) override;
  [[nodiscard]] std::size_t lastFolderMark(const platform::CString& path) const override;
  [[nodiscard]] std::int64_t now() override { return inner_.now(); }
  [[nodiscard]] std::optional<platform::CalendarTime> calendarTime(std::int64_t moment) override {
    return inner_.calendarTime(moment);
  }
  [[nodiscard]] platform::CString widenAnsi(std::string_view bytes) override { return inner_.widenAnsi(bytes); }
  /// Each text of a report goes through here, so the writing of a long one ends here once the user wants to stop: throws
  /// Interrupted.
  [[nodiscard]] std::string narrow(const platform::CString& text) override;
  platform::RegistryAnswer registryText(const platform::CString& subKey, const platform::CString& valueName,
                                        platform::CString& text) override {
    return inner_.registryText(subKey, valueName, text);
  }

 private:
  platform::Platform& inner_;
  FileJournal& journal_;
  std::function<bool()> isInterrupted_;
  std::function<std::string(const std::string&)> whyNoOutput_;
  std::string tried_;  ///< the file that was opened last and stood there before
};

}  // namespace lvx::runtime
