#pragma once

#include <string>

namespace lvx::test {

// Asked at run time, so that the same test compiles to the same object in every clone.

/// A path in the source tree: inSource("/examples/valley-road.xml").
[[nodiscard]] std::string inSource(const std::string& path);
/// A path in the build folder: inBuild("/bin/lvxhost"). The variable LVX_TEST_BUILD names another one: that of a build for
/// another system, whose programs tests of this one run then.
[[nodiscard]] std::string inBuild(const std::string& path);

}  // namespace lvx::test
