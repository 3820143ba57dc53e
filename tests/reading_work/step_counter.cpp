#include "step_counter.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::uint64_t steps = 0;
/// Memory counts by the cache line.
void countMemory(std::size_t bytes) { steps += bytes / 64; }

}  // namespace

// NOLINTBEGIN: names that the compiler and the linker ask for.
extern "C" {
/// Called where a piece of straight code begins.
void __sanitizer_cov_trace_pc() { ++steps; }

void* __real_memcpy(void*, const void*, std::size_t);
void* __real_memmove(void*, const void*, std::size_t);
int __real_memcmp(const void*, const void*, std::size_t);
void* __real_memchr(const void*, int, std::size_t);
void* __real_memset(void*, int, std::size_t);
void* __wrap_memcpy(void* to, const void* from, std::size_t size) {
  countMemory(size);
  return __real_memcpy(to, from, size);
}
void* __wrap_memmove(void* to, const void* from, std::size_t size) {
  countMemory(size);
  return __real_memmove(to, from, size);
}
int __wrap_memcmp(const void* a, const void* b, std::size_t size) {
  countMemory(size);
  return __real_memcmp(a, b, size);
}
void* __wrap_memchr(const void* in, int wanted, std::size_t size) {
  void* const found = __real_memchr(in, wanted, size);
  countMemory(found == nullptr ? size
                               : static_cast<std::size_t>(static_cast<char*>(found) - static_cast<const char*>(in)));
  return found;
}
void* __wrap_memset(void* to, int value, std::size_t size) {
  countMemory(size);
  return __real_memset(to, value, size);
}
}
// NOLINTEND

// Strings are copied within the standard library, where nothing counts: by what they ask for.
void* operator new(std::size_t size) {
  countMemory(size);
  if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

std::uint64_t stepsSoFar() { return steps; }
