#include "support/places.h"

#include <cstdlib>

namespace lvx::test {

std::string inSource(const std::string& path) { return LVX_SOURCE_DIR + path; }

std::string inBuild(const std::string& path) {
  const char* const other = std::getenv("LVX_TEST_BUILD");
  return (other == nullptr ? LVX_BINARY_DIR : other) + path;
}

}  // namespace lvx::test
