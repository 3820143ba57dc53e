#include "faulty_run.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::faults {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const char* what) { throw std::runtime_error(std::string(what) + ": " + std::strerror(errno)); }

/// The plan of a run, in a file without a name.
class SharedPlan {
 public:
  SharedPlan() : file_(::memfd_create("plan", MFD_CLOEXEC)) {
    if (file_ < 0 || ::ftruncate(file_, sizeof(Plan)) != 0) fail("no memory file");
    void* const memory = ::mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (memory == MAP_FAILED) fail("no shared memory");
    plan_ = new (memory) Plan;
  }
  SharedPlan(const SharedPlan&) = delete;
  SharedPlan& operator=(const SharedPlan&) = delete;
  ~SharedPlan() {
    ::munmap(plan_, sizeof(Plan));
    ::close(file_);
  }
  [[nodiscard]] Plan& plan() { return *plan_; }
  /// Also for another process, as long as this one lives.
  [[nodiscard]] std::string path() const {
    return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file_);
  }

 private:
  int file_;
  Plan* plan_ = nullptr;
};

struct Pipe {
  Pipe() {
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail("no pipe");
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    for (const int end : ends)
      if (end >= 0) ::close(end);
  }
  void closeEnd(std::size_t which) { ::close(std::exchange(ends[which], -1)); }
  std::array<int, 2> ends{-1, -1};
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

void limit(__rlimit_resource_t what, std::uint64_t most) {
  const rlimit both{most, most};
  if (most > 0) (void)::setrlimit(what, &both);
}

/// Reads both pipes to their ends, or as long as a run may take.
bool gather(Pipe& output, Pipe& errors, FaultyResult& result) {
  constexpr auto kLongest = std::chrono::seconds(90);
  const auto end = std::chrono::steady_clock::now() + kLongest;
  std::array<pollfd, 2> waiting{pollfd{output.ends[0], POLLIN, 0}, pollfd{errors.ends[0], POLLIN, 0}};
  const std::array<std::string*, 2> texts{&result.output, &result.errors};
  std::array<char, 65536> part;
  while (waiting[0].fd >= 0 || waiting[1].fd >= 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    if (::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) < 0 && errno != EINTR) fail("poll");
    for (std::size_t i = 0; i < waiting.size(); ++i) {
      if (waiting[i].fd < 0 || waiting[i].revents == 0) continue;
      const ssize_t count = ::read(waiting[i].fd, part.data(), part.size());
      if (count > 0)
        texts[i]->append(part.data(), static_cast<std::size_t>(count));
      else if (count == 0 || errno != EINTR)
        waiting[i].fd = -1;
    }
  }
  return true;
}

/// Ends what a run left behind: the children of a killed process are gone with its group.
void endGroup(pid_t leader) { (void)::kill(-leader, SIGKILL); }

}  // namespace

FaultyResult runWithFault(const FaultyRun& run) {
  if (::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0) fail("no care for orphans");
  SharedPlan shared;
  Plan& plan = shared.plan();
  plan.fault = run.fault;
  plan.at = run.at;
  plan.lasting = run.lasting;
  plan.error = run.error;

  std::vector<std::string> words{run.program.string()};
  words.insert(words.end(), run.arguments.begin(), run.arguments.end());
  // Nothing of the tester's own surroundings: the same run on every machine.
  std::vector<std::string> environment{"PATH=/usr/bin:/bin",
                                       "TZ=UTC0",
                                       "LC_ALL=C",
                                       "SOURCE_DATE_EPOCH=86400",
                                       "HOME=" + run.folder.string(),
                                       "TMPDIR=" + run.temporaryFolder.string()};
  if (run.isWatched) {
    environment.push_back("LD_PRELOAD=" + test::inBuild("/tests/faults/liblvx_fault_shim.so"));
    environment.push_back(std::string(kPlanVariable) + "=" + shared.path());
  }
  const std::vector<char*> argv = pointersTo(words);
  const std::vector<char*> envp = pointersTo(environment);

  Pipe output;
  Pipe errors;
  const pid_t child = ::fork();
  if (child < 0) fail("fork");
  if (child == 0) {
    // Other threads of the test may hold any lock: nothing here but calls of the system.
    ::setpgid(0, 0);
    const int nothing = ::open("/dev/null", O_RDONLY);
    if (::dup2(nothing, 0) < 0 || ::dup2(output.ends[1], 1) < 0 || ::dup2(errors.ends[1], 2) < 0) ::_exit(127);
    if (nothing > 2) ::close(nothing);
    if (::chdir(run.folder.c_str()) != 0) ::_exit(127);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, run.largestFile);
    limit(RLIMIT_AS, run.memory);
    ::execve(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  (void)::setpgid(child, child);  // whoever comes first
  output.closeEnd(1);
  errors.closeEnd(1);
  FaultyResult result;
  result.isHung = !gather(output, errors, result);
  if (result.isHung) endGroup(child);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  endGroup(child);
  // Its own children came to this process, which buries them: a name of theirs is free only then.
  while (::waitpid(-child, nullptr, 0) > 0 || errno == EINTR) {
  }
  if (WIFSIGNALED(status))
    result.signal = WTERMSIG(status);
  else
    result.exitCode = WEXITSTATUS(status);

  if (!run.isWatched) return result;
  if (plan.processes == 0)
    throw std::runtime_error("the shim isn't in force: this system lets no filter of calls be installed");
  result.calls = plan.calls;
  result.allocations = plan.allocations;
  result.bytes = plan.bytes;
  result.isDone = plan.isDone != 0;
  result.done = plan.done;
  result.path = plan.path;
  if (run.fault == Fault::None)
    result.record.assign(plan.record, plan.record + std::min<std::size_t>(result.calls, Plan::kMostCalls));
  return result;
}

std::string nameOfCall(int number) {
  static const std::map<int, std::string> names{
      {SYS_open, "open"},
      {SYS_openat, "openat"},
      {SYS_creat, "creat"},
      {SYS_read, "read"},
      {SYS_pread64, "pread64"},
      {SYS_readv, "readv"},
      {SYS_write, "write"},
      {SYS_pwrite64, "pwrite64"},
      {SYS_writev, "writev"},
      {SYS_fsync, "fsync"},
      {SYS_fdatasync, "fdatasync"},
      {SYS_close, "close"},
      {SYS_rename, "rename"},
      {SYS_renameat, "renameat"},
      {SYS_renameat2, "renameat2"},
      {SYS_unlink, "unlink"},
      {SYS_unlinkat, "unlinkat"},
      {SYS_mkdir, "mkdir"},
      {SYS_mkdirat, "mkdirat"},
      {SYS_rmdir, "rmdir"},
      {SYS_ftruncate, "ftruncate"},
      {SYS_fallocate, "fallocate"},
      {SYS_mmap, "mmap"},
      {SYS_stat, "stat"},
      {SYS_lstat, "lstat"},
      {SYS_fstat, "fstat"},
      {SYS_newfstatat, "newfstatat"},
      {SYS_statx, "statx"},
      {SYS_access, "access"},
      {SYS_faccessat, "faccessat"},
      {SYS_readlink, "readlink"},
      {SYS_readlinkat, "readlinkat"},
      {SYS_getdents64, "getdents64"},
      {SYS_lseek, "lseek"},
      {SYS_chmod, "chmod"},
      {SYS_fchmod, "fchmod"},
      {SYS_fchown, "fchown"},
      {SYS_link, "link"},
      {SYS_linkat, "linkat"},
      {SYS_symlink, "symlink"},
      {SYS_flock, "flock"},
      {SYS_pipe2, "pipe2"},
      {SYS_dup, "dup"},
      {SYS_getcwd, "getcwd"},
      {SYS_wait4, "wait4"},
      {SYS_waitid, "waitid"},
      {SYS_sendfile, "sendfile"},
      {SYS_copy_file_range, "copy_file_range"},
  };
  const auto found = names.find(number);
  return found != names.end() ? found->second : "call " + std::to_string(number);
}

std::map<std::string, std::string> contentOf(const fs::path& folder) {
  std::map<std::string, std::string> content;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = fs::relative(entry.path(), folder).string();
    if (entry.is_directory())
      content[name + "/"];
    else
      content[name] = test::fileBytes(entry.path());
  }
  return content;
}

}  // namespace lvx::faults
