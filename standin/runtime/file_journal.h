#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace lvx::runtime {

enum class FileFate : std::uint8_t {
  Written,  ///< closed without an error and in place under its name
  Failed,   ///< couldn't be opened, written, closed or put in place; `reason` says why
  Removed,
};

/// What became of a file that a module wrote or removed. Paths are as the module named them, in UTF-8.
struct FileEvent {
  FileFate fate = FileFate::Written;
  std::string path;
  std::uint64_t bytes = 0;
  std::string reason;
};

/// The writers of a module don't look at write errors, so the host does: every file that passes through it leaves an
/// event here, in the order of things.
class FileJournal {
 public:
  void add(FileEvent event);
  /// Keeps room for one event, which addPrepared then takes however short memory is.
  void prepare();
  /// The event of a prepare(). A listener that throws isn't heard; wasCutOff() tells.
  void addPrepared(FileEvent event) noexcept;
  /// Gives up the room of a prepare().
  void dropPrepared() noexcept { --prepared_; }
  /// True where a listener couldn't take an event.
  [[nodiscard]] bool wasCutOff() const { return wasCutOff_; }
  [[nodiscard]] const std::vector<FileEvent>& events() const { return events_; }
  /// The last event of that path, or null.
  [[nodiscard]] const FileEvent* last(const std::string& path) const;

  /// Modules look whether the folder of their output is there, and do nothing, without a word, where it isn't. Who wants
  /// to tell their user asks for the path that was looked for last, and not found, since the last event; empty where
  /// there is none.
  [[nodiscard]] const std::string& missing() const { return missing_; }
  void lookedFor(const std::string& path, bool found);
  void forgetMissing() { missing_.clear(); }

  /// A module goes on without what it can't read, or not to its end, with numbers in the place of words: no report that
  /// is worth what it would replace. Why none is to be written then; empty where all was read.
  [[nodiscard]] std::string whyNoReport() const;
  void addUnread(std::string path) noexcept { unread_ = std::move(path); }

  /// Told of every event as it happens.
  std::function<void(const FileEvent&)> listener;

 private:
  std::vector<FileEvent> events_;
  std::string missing_;
  std::string unread_;
  std::size_t prepared_ = 0;
  bool wasCutOff_ = false;
};

}  // namespace lvx::runtime
