#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace lvx::standin_platform {

/// A small file that one program has at a time, together with all copies of its process: another one gets it when the last
/// of them has ended, in whatever way. Where the system knows no such locks, as on some network folders, everybody gets it.
/// Failures are std::system_error.
class LockedFile {
 public:
  /// Makes the file where there is none. Waits while another program has it, for as long as `waits` says true, which is
  /// asked about ten times a second; std::errc::resource_unavailable_try_again where it is still held then.
  LockedFile(const std::filesystem::path& path, const std::function<bool()>& waits);
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  ~LockedFile();

  /// All that the file holds.
  [[nodiscard]] std::string content() const;
  /// Puts `content` in place of what the file holds, by one call of the system: after a kill it holds the one or the other.
  /// A shorter one gets blanks behind it.
  void put(std::string content);
  /// Takes the file away; it is held on.
  void remove();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace lvx::standin_platform
