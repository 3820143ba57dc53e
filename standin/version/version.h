#pragma once

#include <string>

/// What a build is: the one version of CMakeLists.txt, and the commit that it was made of. Whoever reports a fault tells it.
namespace lvx::version {

/// "1.0.0".
[[nodiscard]] std::string number();

/// "1.0.0 (commit 0123456789ab, 2026-11-22)"; the date is the commit's own, so that the same sources show the same text
/// whenever they are built. "1.0.0" alone where the sources came without their history.
[[nodiscard]] std::string text();

/// The day that the commit was made, "2026-11-22"; empty where the sources came without their history.
[[nodiscard]] std::string day();

}  // namespace lvx::version
