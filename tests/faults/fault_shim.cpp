// Loaded into a program by LD_PRELOAD, this lets one of its system calls or allocations go wrong, by a plan that a test wrote
// (fault_plan.h).
//
// System calls are caught by the kernel: a filter turns those that come from the C library, whether a program asked for them
// or the library did within fopen or fclose, into a signal, and the handler here does the call, or not. Calls of this file go
// past the filter, since it looks at the place that a call comes from. So do those of other programs, which find their C
// library at other places. Allocations are caught by name.
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>

#include "fault_plan.h"

#if !defined(__x86_64__)
#error "the places of a call's arguments are known for x86-64 alone"
#endif

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace lvx::faults {

namespace {

Plan* plan = nullptr;

/// A system call from here, which the filter lets pass.
long call(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0, long f = 0) {
  long result = number;
  register long fourth asm("r10") = d;
  register long fifth asm("r8") = e;
  register long sixth asm("r9") = f;
  asm volatile("syscall"
               : "+a"(result)
               : "D"(a), "S"(b), "d"(c), "r"(fourth), "r"(fifth), "r"(sixth)
               : "rcx", "r11", "memory");
  return result;
}

/// A file is worked on by its number, by a path as the first argument, or by one as the second, behind a folder's number.
enum class By { Number, Path, FolderAndPath, Nothing };

struct Kind {
  int number;
  By by;
};

constexpr Kind kKinds[] = {
    {SYS_open, By::Path},
    {SYS_openat, By::FolderAndPath},
    {SYS_creat, By::Path},
    {SYS_read, By::Number},
    {SYS_pread64, By::Number},
    {SYS_readv, By::Number},
    {SYS_write, By::Number},
    {SYS_pwrite64, By::Number},
    {SYS_writev, By::Number},
    {SYS_fsync, By::Number},
    {SYS_fdatasync, By::Number},
    {SYS_close, By::Number},
    {SYS_rename, By::Path},
    {SYS_renameat, By::FolderAndPath},
    {SYS_renameat2, By::FolderAndPath},
    {SYS_unlink, By::Path},
    {SYS_unlinkat, By::FolderAndPath},
    {SYS_mkdir, By::Path},
    {SYS_mkdirat, By::FolderAndPath},
    {SYS_rmdir, By::Path},
    {SYS_ftruncate, By::Number},
    {SYS_fallocate, By::Number},
    {SYS_mmap, By::Nothing},
    {SYS_stat, By::Path},
    {SYS_lstat, By::Path},
    {SYS_fstat, By::Number},
    {SYS_newfstatat, By::FolderAndPath},
    {SYS_statx, By::FolderAndPath},
    {SYS_access, By::Path},
    {SYS_faccessat, By::FolderAndPath},
    {SYS_faccessat2, By::FolderAndPath},
    {SYS_readlink, By::Path},
    {SYS_readlinkat, By::FolderAndPath},
    {SYS_getdents64, By::Number},
    {SYS_lseek, By::Number},
    {SYS_chmod, By::Path},
    {SYS_fchmod, By::Number},
    {SYS_fchown, By::Number},
    {SYS_link, By::Path},
    {SYS_linkat, By::FolderAndPath},
    {SYS_symlink, By::Path},
    {SYS_copy_file_range, By::Number},
    {SYS_sendfile, By::Number},
    {SYS_flock, By::Number},
    {SYS_pipe2, By::Nothing},
    {SYS_dup, By::Number},
    {SYS_getcwd, By::Nothing},
    {SYS_waitid, By::Nothing},
};

bool isWrite(long number) { return number == SYS_write || number == SYS_pwrite64 || number == SYS_writev; }
bool isRead(long number) { return number == SYS_read || number == SYS_pread64 || number == SYS_readv; }
bool isVector(long number) { return number == SYS_writev || number == SYS_readv; }

struct Arguments {
  long number;
  long of[6];

  [[nodiscard]] long execute() const { return call(number, of[0], of[1], of[2], of[3], of[4], of[5]); }
  /// The same call over no more than `most` bytes; only for reads and writes.
  [[nodiscard]] long executeUpTo(std::uint64_t most) const {
    if (!isVector(number)) return call(number, of[0], of[1], static_cast<long>(most), of[3], of[4], of[5]);
    const auto* parts = reinterpret_cast<const iovec*>(of[1]);
    std::uint64_t done = 0;
    for (long i = 0; i < of[2] && done < most; ++i) {
      const std::uint64_t part = parts[i].iov_len < most - done ? parts[i].iov_len : most - done;
      const long result = call(number == SYS_writev ? SYS_write : SYS_read, of[0],
                               reinterpret_cast<long>(parts[i].iov_base), static_cast<long>(part));
      if (result < 0) return done > 0 ? static_cast<long>(done) : result;
      done += static_cast<std::uint64_t>(result);
      if (static_cast<std::uint64_t>(result) < part) break;
    }
    return static_cast<long>(done);
  }
};

std::uint64_t sizeOf(const Arguments& arguments) {
  if (!isWrite(arguments.number) && !isRead(arguments.number)) return 0;
  if (!isVector(arguments.number)) return static_cast<std::uint64_t>(arguments.of[2]);
  const auto* parts = reinterpret_cast<const iovec*>(arguments.of[1]);
  std::uint64_t size = 0;
  for (long i = 0; i < arguments.of[2]; ++i) size += parts[i].iov_len;
  return size;
}

By byOf(long number) {
  for (const Kind& kind : kKinds)
    if (kind.number == number) return kind.by;
  return By::Nothing;
}

bool isOnDisk(long descriptor) {
  struct stat status {};
  return call(SYS_fstat, descriptor, reinterpret_cast<long>(&status)) == 0 && S_ISREG(status.st_mode);
}

[[noreturn]] void killAll() {
  call(SYS_kill, 0, SIGKILL);
  for (;;) call(SYS_pause);
}

void noteDone(const Call& where, const Arguments& arguments) {
  plan->done = where;
  const By by = byOf(arguments.number);
  const char* name = nullptr;
  if (by == By::Path) name = reinterpret_cast<const char*>(arguments.of[0]);
  if (by == By::FolderAndPath) name = reinterpret_cast<const char*>(arguments.of[1]);
  if (name != nullptr) {
    std::size_t i = 0;
    for (; i + 1 < sizeof plan->path && name[i] != 0; ++i) plan->path[i] = name[i];
    plan->path[i] = 0;
  }
  plan->isDone = 1;
}

long writeToDisk(const Arguments& arguments, const Call& where) {
  const std::uint64_t before = plan->bytes.fetch_add(where.size);
  if (plan->fault != Fault::DiskFills || before + where.size <= plan->at) return arguments.execute();
  if (plan->isDone == 0) noteDone(where, arguments);
  const std::uint64_t room = before < plan->at ? plan->at - before : 0;
  return room == 0 ? -ENOSPC : arguments.executeUpTo(room);
}

long answer(const Arguments& arguments) {
  const std::uint64_t ordinal = plan->calls.fetch_add(1) + 1;
  const By by = byOf(arguments.number);
  const Call where{static_cast<std::int32_t>(arguments.number),
                   by == By::Number ? static_cast<std::int32_t>(arguments.of[0]) : -1, sizeOf(arguments)};
  if (ordinal <= Plan::kMostCalls) plan->record[ordinal - 1] = where;

  if (ordinal == plan->at) {
    switch (plan->fault) {
      case Fault::CallFails:
        noteDone(where, arguments);
        if (arguments.number == SYS_close) (void)arguments.execute();
        return -plan->error;
      case Fault::CallComesShort:
        if (where.size < 2) break;
        noteDone(where, arguments);
        return arguments.executeUpTo(where.size / 2);
      case Fault::CallKilledBefore:
        noteDone(where, arguments);
        killAll();
      case Fault::CallKilledWithin:
        if (!isWrite(arguments.number) || where.size < 2) break;
        noteDone(where, arguments);
        (void)arguments.executeUpTo(where.size / 2);
        killAll();
      default:
        break;
    }
  }
  if (isWrite(arguments.number) && isOnDisk(arguments.of[0])) return writeToDisk(arguments, where);
  return arguments.execute();
}

void onCall(int, siginfo_t*, void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  const int error = errno;
  const Arguments arguments{registers[REG_RAX],
                            {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX], registers[REG_R10],
                             registers[REG_R8], registers[REG_R9]}};
  registers[REG_RAX] = answer(arguments);
  errno = error;
}

/// Instructions that the filter looks at: those of the C library and of what loads others.
struct Range {
  std::uint64_t begin;
  std::uint64_t end;
};

struct Ranges {
  Range of[8];
  std::size_t count = 0;
};

int addRanges(dl_phdr_info* info, std::size_t, void* data) {
  auto& ranges = *static_cast<Ranges*>(data);
  const char* slash = std::strrchr(info->dlpi_name, '/');
  const char* name = slash != nullptr ? slash + 1 : info->dlpi_name;
  if (std::strncmp(name, "libc.so", 7) != 0 && std::strncmp(name, "ld-linux", 8) != 0) return 0;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& part = info->dlpi_phdr[i];
    if (part.p_type != PT_LOAD || (part.p_flags & PF_X) == 0) continue;
    const std::uint64_t begin = info->dlpi_addr + part.p_vaddr;
    const std::uint64_t end = begin + part.p_memsz;
    constexpr std::uint64_t kHalf = 32;
    // The filter compares halves of addresses: a range is cut where the upper half changes.
    if (begin >> kHalf == end >> kHalf) {
      ranges.of[ranges.count++] = {begin, end};
    } else {
      ranges.of[ranges.count++] = {begin, (end >> kHalf << kHalf) - 1};
      ranges.of[ranges.count++] = {end >> kHalf << kHalf, end};
    }
  }
  return 0;
}

struct Program {
  sock_filter lines[256];
  std::size_t size = 0;

  void add(std::uint16_t code, std::uint32_t value, unsigned ifTrue = 0, unsigned ifFalse = 0) {
    lines[size++] = {code, static_cast<std::uint8_t>(ifTrue), static_cast<std::uint8_t>(ifFalse), value};
  }
  void load(std::size_t offset) { add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)); }
  void give(std::uint32_t answer) { add(BPF_RET | BPF_K, answer); }
};

constexpr std::size_t argument(int number) { return offsetof(seccomp_data, args) + 8U * static_cast<unsigned>(number); }

/// A process that starts another one opens and closes that one's standard files with all signals shut out, so that the
/// filter's signal would end it.
void passStandardFiles(Program& program) {
  program.load(offsetof(seccomp_data, nr));
  program.add(BPF_JMP | BPF_JEQ | BPF_K, SYS_close, 0, 4);
  program.load(argument(0));
  program.add(BPF_JMP | BPF_JGT | BPF_K, 2, 1, 0);
  program.give(SECCOMP_RET_ALLOW);
  program.load(offsetof(seccomp_data, nr));
  program.add(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 5);
  program.load(argument(2));
  program.add(BPF_JMP | BPF_JEQ | BPF_K, O_RDONLY, 0, 3);
  program.load(argument(3));
  program.add(BPF_JMP | BPF_JEQ | BPF_K, 0, 0, 1);
  program.give(SECCOMP_RET_ALLOW);
}

bool installFilter() {
  Ranges ranges;
  dl_iterate_phdr(addRanges, &ranges);
  if (ranges.count == 0) return false;
  Program program;
  program.load(offsetof(seccomp_data, arch));
  program.add(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0);
  program.give(SECCOMP_RET_ALLOW);
  passStandardFiles(program);
  program.load(offsetof(seccomp_data, nr));
  constexpr std::size_t kCount = sizeof kKinds / sizeof kKinds[0];
  for (std::size_t i = 0; i < kCount; ++i)
    program.add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(kKinds[i].number),
                static_cast<unsigned>(kCount - i), 0);
  program.give(SECCOMP_RET_ALLOW);
  for (std::size_t i = 0; i < ranges.count; ++i) {
    const Range& range = ranges.of[i];
    program.load(offsetof(seccomp_data, instruction_pointer) + 4);
    program.add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(range.begin >> 32U), 0, 4);
    program.load(offsetof(seccomp_data, instruction_pointer));
    program.add(BPF_JMP | BPF_JGE | BPF_K, static_cast<std::uint32_t>(range.begin), 0, 2);
    program.add(BPF_JMP | BPF_JGT | BPF_K, static_cast<std::uint32_t>(range.end), 1, 0);
    program.give(SECCOMP_RET_TRAP);
  }
  program.give(SECCOMP_RET_ALLOW);
  const sock_fprog whole{static_cast<unsigned short>(program.size), program.lines};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &whole) == 0;
}

/// Every process of a run passes here once. A plan that can't be put in force is seen by the test: nobody counted himself in
/// it.
void begin() {
  const char* path = std::getenv(kPlanVariable);
  if (path == nullptr) return;
  const int file = open(path, O_RDWR | O_CLOEXEC);
  if (file < 0) return;
  void* memory = mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (memory == MAP_FAILED) return;
  struct sigaction action {};
  action.sa_sigaction = onCall;
  action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
  if (sigaction(SIGSYS, &action, nullptr) != 0) return;
  auto* shared = static_cast<Plan*>(memory);
  // In force from here: also the first call that the filter sees needs the plan.
  plan = shared;
  if (!installFilter()) {
    plan = nullptr;
    return;
  }
  ++shared->processes;
}

}  // namespace

/// True where the allocation that is asked for now finds no memory.
bool failsAllocation() {
  if (plan == nullptr) return false;
  const std::uint64_t ordinal = plan->allocations.fetch_add(1) + 1;
  if (plan->fault != Fault::AllocationFails && plan->fault != Fault::AllocationsFail) return false;
  if (ordinal < plan->at || ordinal - plan->at >= plan->lasting) return false;
  plan->isDone = 1;
  errno = ENOMEM;
  return true;
}

}  // namespace lvx::faults

extern "C" {

using Main = int (*)(int, char**, char**);

// What starts the main program. Until then libraries and tables are laid out, and no program can answer if that fails.
int __libc_start_main(Main main, int count, char** words, void (*initialise)(), void (*finish)(), void (*leave)(),
                      void* end) {
  static Main itsMain = nullptr;
  itsMain = main;
  const auto start = reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
  const Main ours = [](int argc, char** argv, char** environment) {
    lvx::faults::begin();
    return itsMain(argc, argv, environment);
  };
  return start(ours, count, words, initialise, finish, leave, end);
}

// The names that all allocations pass, operator new included.

void* malloc(std::size_t size) { return lvx::faults::failsAllocation() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) {
  return lvx::faults::failsAllocation() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* old, std::size_t size) {
  return lvx::faults::failsAllocation() ? nullptr : __libc_realloc(old, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
  return lvx::faults::failsAllocation() ? nullptr : __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return lvx::faults::failsAllocation() ? nullptr : __libc_memalign(alignment, size);
}
int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
  void* const memory = lvx::faults::failsAllocation() ? nullptr : __libc_memalign(alignment, size);
  if (memory == nullptr) return ENOMEM;
  *result = memory;
  return 0;
}
}
