#include "standin_platform/large_pages.h"

namespace lvx::standin_platform {

// Large pages ask for a right that ordinary users don't have.
void preferLargePages(const void* /*begin*/, std::size_t /*bytes*/) noexcept {}
// They stay with the process until the array is freed.
void giveBackPages(void* /*begin*/, std::size_t /*bytes*/) noexcept {}

}  // namespace lvx::standin_platform
