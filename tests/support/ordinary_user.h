#pragma once

#include <filesystem>

namespace lvx::test {

/// For a scope this process has the rights of an ordinary user, also where the administrator runs the tests: to him nothing
/// is forbidden. `own` and what lies in it belong to that user from here on. Throws std::runtime_error where the rights can't
/// be given up.
///
///     const test::OrdinaryUser user(folder_.path());
///     fs::permissions(folder_.path(), fs::perms{0500});  // takes no new file
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const std::filesystem::path& own);
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser();

 private:
  bool wasAdministrator_;
  unsigned formerGroup_ = 0;
};

}  // namespace lvx::test
