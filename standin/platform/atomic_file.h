#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace lvx::standin_platform {

/// A file can't be written or can't take its place. What stood under its name stands there as before, unless it was
/// written in place.
class AtomicFileError : public std::runtime_error {
 public:
  enum class Problem {
    Link,           ///< a symbolic link on the way can't be read
    LinkLoop,       ///< the links lead round in a circle
    NotRegular,     ///< a folder, a device or a pipe stands under the name
    NoNewFile,      ///< the folder takes no new file
    NoReader,       ///< a pipe from which no program reads
    Permissions,    ///< the new file can't get those of the file that it replaces
    Writing,        ///< any other failure; `reason` says which
    TargetChanged,  ///< somebody wrote, made or removed the target in the meantime
  };
  AtomicFileError(Problem problem, std::error_code reason);

  [[nodiscard]] Problem problem() const { return problem_; }
  /// The system's reason; none for LinkLoop, NotRegular, NoReader and TargetChanged.
  [[nodiscard]] std::error_code reason() const { return reason_; }

 private:
  Problem problem_;
  std::error_code reason_;
};

/// What an AtomicFile does about what stands under its name, and what its new content has to survive.
struct AtomicFilePolicy {
  /// True: symbolic links are followed; the new file has the permissions of the one that it replaces, and its owner where
  /// the system lets us give it away; a file that may not be written isn't replaced, though its folder would allow it.
  /// False: the name alone counts, and whatever stands under it gives way to a file with the usual permissions.
  bool keepsTarget = true;
  /// A device or a pipe is written in place, and so not atomically; a file never is. Permissions that can't be kept leave
  /// the new file to its owner alone. Only with `keepsTarget`.
  bool writesInPlace = false;
  /// `commit` fails where the target isn't any more what it was at the construction. Only with `keepsTarget`.
  bool refusesChangedTarget = false;
  /// The content is on the disk before the name leads to it, and the name before `commit` ends: either of both states is
  /// whole after a power cut too. Costs a wait for the disk. Without it a file survives the end of its process only.
  bool flushesToDisk = false;
};

/// Why `folder` takes no new file; nothing where it takes one, which is tried.
[[nodiscard]] std::error_code whyNoNewFile(const std::filesystem::path& folder);

/// Why no file can have this name whatever stands there: a name that the system keeps for itself. Nothing where one can.
[[nodiscard]] std::error_code whyNoNameOfFile(const std::filesystem::path& path);

/// A file of which never a part is seen: it grows under a name of its own beside its target and takes the target's place in
/// `commit`. Without that it vanishes and the target stays what it was.
///
///     AtomicFile file("road.xml", {.flushesToDisk = true});
///     file.write("<LandXML/>");
///     file.commit();
///
/// A killed process may leave the unfinished file behind, as ".lvx-save-…" in the target's folder; the next run that writes
/// there takes it away. Other hard links of the target keep the old content. All failures are AtomicFileError.
class AtomicFile {
 public:
  explicit AtomicFile(const std::filesystem::path& target, AtomicFilePolicy policy = {});
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  ~AtomicFile();

  /// Goes to the system at once: callers gather small pieces.
  void write(std::string_view bytes);
  /// For a library that writes to a file by its name: the unfinished file. `write` may not follow. Not for policies that write in place.
  [[nodiscard]] const std::filesystem::path& lend();
  /// All that `commit` does but taking the name, so that of several files none takes its name before all could. Nothing is
  /// written any more then.
  void settle();
  /// Once, at the end. In this order: content to the disk, close, look at the target, take its name, folder to the disk.
  void commit();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
