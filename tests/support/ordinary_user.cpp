#include "support/ordinary_user.h"

#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

namespace lvx::test {

namespace {

/// Nobody's number on every system that we know.
constexpr unsigned kNobody = 65534;

}  // namespace

OrdinaryUser::OrdinaryUser(const std::filesystem::path& own)
    : wasAdministrator_(::geteuid() == 0), formerGroup_(::getegid()) {
  if (!wasAdministrator_) return;
  const auto give = [](const std::filesystem::path& path) {
    if (::lchown(path.c_str(), kNobody, kNobody) != 0) throw std::runtime_error("can't give away " + path.string());
  };
  give(own);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(own)) give(entry.path());
  if (::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0) throw std::runtime_error("can't be an ordinary user");
}

OrdinaryUser::~OrdinaryUser() {
  // Nothing after this test could be trusted otherwise.
  if (wasAdministrator_ && (::seteuid(0) != 0 || ::setegid(formerGroup_) != 0)) std::abort();
}

}  // namespace lvx::test
