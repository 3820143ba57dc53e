#include "version/version.h"

#include "version/detail/stamp.h"

namespace lvx::version {

std::string number() { return LVX_VERSION; }

std::string day() { return detail::kCommitDate; }

std::string text() {
  const std::string commit = detail::kCommit;
  return commit.empty() ? number() : number() + " (commit " + commit + ", " + detail::kCommitDate + ")";
}

}  // namespace lvx::version
