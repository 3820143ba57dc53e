#pragma once

#include <string>

namespace lvx::package_texts {

/// The project's change log as the packages of Debian have theirs. In it a release is a line "## 1.0.0, 2026-12-01", newest
/// first, and a change a list item; one that isn't released yet gets `today` ("2026-11-22").
/// Throws std::runtime_error for a heading of another form, and where there is no release.
[[nodiscard]] std::string debianChangelog(const std::string& markdown, const std::string& package,
                                          const std::string& maintainer, const std::string& today);

}  // namespace lvx::package_texts
