// Loaded into a program before all others, it counts what the program and its copies ask of memory and read from files. At
// each end of a process two numbers go to the file that LVX_WORK_COUNT names: allocations, bytes read.
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<unsigned long long> allocations{0};

unsigned long long bytesRead() {
  char text[512] = {};
  const int file = open("/proc/self/io", O_RDONLY | O_CLOEXEC);
  if (file < 0) return 0;
  const ssize_t size = read(file, text, sizeof text - 1);
  close(file);
  const char* const found = size > 0 ? std::strstr(text, "rchar: ") : nullptr;
  return found == nullptr ? 0 : std::strtoull(found + std::strlen("rchar: "), nullptr, 10);
}

void tell() {
  const char* const path = std::getenv("LVX_WORK_COUNT");
  if (path == nullptr) return;
  char line[64];
  const int size = std::snprintf(line, sizeof line, "%llu %llu\n", allocations.load(), bytesRead());
  const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) return;
  if (write(file, line, static_cast<std::size_t>(size)) != size) std::abort();
  close(file);
}

[[gnu::constructor]] void begin() {
  // A copy of the process counts from its own begin; what it reads the system counts so by itself.
  std::atexit(tell);
}

}  // namespace

// NOLINTBEGIN: names that the C library asks for.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);

void* malloc(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_realloc(memory, size);
}
/// The end of a copy of the process, which runs nothing of what its parent prepared for its own.
[[noreturn]] void _exit(int code) {
  tell();
  syscall(SYS_exit_group, code);
  __builtin_unreachable();
}
}
// NOLINTEND
