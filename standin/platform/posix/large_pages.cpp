#include "standin_platform/large_pages.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace lvx::standin_platform {

void preferLargePages([[maybe_unused]] const void* begin, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kPage = std::uintptr_t{2} << 20;
  constexpr std::size_t kFewPages = 4;
  // Whole pages alone, so that neighbours in memory don't get more than they use.
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + kPage - 1) / kPage * kPage;
  const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / kPage * kPage;
  if (end < first + kFewPages * kPage) return;
  // A system without them says so, which changes nothing.
  (void)::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

void giveBackPages(void* begin, std::size_t bytes) noexcept {
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + page - 1) / page * page;
  const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / page * page;
  // What fails here costs memory and nothing else.
  if (end > first) (void)::madvise(reinterpret_cast<void*>(first), end - first, MADV_DONTNEED);
}

}  // namespace lvx::standin_platform
