#include "support/places.h"

namespace lvx::test {

std::string inSource(const std::string& path) { return LVX_SOURCE_DIR + path; }
std::string inBuild(const std::string& path) { return LVX_BINARY_DIR + path; }

}  // namespace lvx::test
