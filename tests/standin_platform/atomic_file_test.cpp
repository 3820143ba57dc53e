#include "standin_platform/atomic_file.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin_platform/scratch_folder.h"
#include "support/ordinary_user.h"
#include "support/run_program.h"

namespace lvx::standin_platform {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using Problem = AtomicFileError::Problem;

constexpr AtomicFilePolicy kDocument{.refusesChangedTarget = true, .flushesToDisk = true};
constexpr AtomicFilePolicy kReport{.writesInPlace = true};
constexpr AtomicFilePolicy kName{.keepsTarget = false};

struct NamedPolicy {
  const char* name;
  AtomicFilePolicy policy;
};
constexpr NamedPolicy kPolicies[] = {{"plain", {}},
                                     {"document", kDocument},
                                     {"report", kReport},
                                     {"name", kName},
                                     {"name on disk", {.keepsTarget = false, .flushesToDisk = true}}};

template <class Work>
std::optional<AtomicFileError> failureOf(Work work) {
  try {
    work();
  } catch (const AtomicFileError& error) {
    return error;
  }
  return std::nullopt;
}

unsigned permissionsOf(const fs::path& path) { return static_cast<unsigned>(fs::status(path).permissions()); }

class AtomicFileTest : public testing::Test {
 protected:
  fs::path put(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
    return folder_ / name;
  }
  [[nodiscard]] std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
  }
  static void write(const fs::path& target, AtomicFilePolicy policy, std::string_view text = "new") {
    AtomicFile file(target, policy);
    file.write(text);
    file.commit();
  }
  test::TemporaryFolder folder_;
};

TEST_F(AtomicFileTest, ShowsNothingBeforeItsCommitAndAllAfterIt) {
  for (const auto& [name, policy] : kPolicies) {
    const fs::path target = put("road.xml", "former");
    AtomicFile file(target, policy);
    file.write("half ");
    EXPECT_EQ(fileBytes(target), "former") << name;
    EXPECT_EQ(fileCount(), 2U) << name;
    file.write("and half");
    file.commit();
    EXPECT_EQ(fileBytes(target), "half and half") << name;
    EXPECT_EQ(fileCount(), 1U) << name;
  }
}

TEST_F(AtomicFileTest, SettledStillShowsNothingBeforeItsCommit) {
  for (const auto& [name, policy] : kPolicies) {
    const fs::path target = put("road.xml", "former");
    {
      AtomicFile left(target, policy);
      left.write("new");
      left.settle();
    }
    EXPECT_EQ(fileBytes(target), "former") << name;
    EXPECT_EQ(fileCount(), 1U) << name;
    AtomicFile file(target, policy);
    file.write("new");
    file.settle();
    EXPECT_EQ(fileBytes(target), "former") << name;
    file.commit();
    EXPECT_EQ(fileBytes(target), "new") << name;
    EXPECT_EQ(fileCount(), 1U) << name;
  }
}

TEST_F(AtomicFileTest, LeavesNothingWithoutItsCommit) {
  for (const auto& [name, policy] : kPolicies) {
    const fs::path target = put("road.xml", "former");
    { AtomicFile(target, policy).write("new"); }
    EXPECT_EQ(fileBytes(target), "former") << name;
    EXPECT_EQ(fileCount(), 1U) << name;
    fs::remove(target);
    { AtomicFile(target, policy).write("new"); }
    EXPECT_EQ(fileCount(), 0U) << name;
  }
}

TEST_F(AtomicFileTest, TwoAtOnceDontMeet) {
  const fs::path target = folder_ / "road.xml";
  AtomicFile first(target);
  AtomicFile second(target);
  first.write("first");
  second.write("second");
  second.commit();
  EXPECT_EQ(fileBytes(target), "second");
  first.commit();
  EXPECT_EQ(fileBytes(target), "first");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(AtomicFileTest, LendsItsNameToAnotherWriter) {
  for (const auto& [name, policy] : kPolicies) {
    if (policy.writesInPlace) continue;
    const fs::path target = put("road.xls", "former");
    AtomicFile file(target, policy);
    std::ofstream(file.lend()) << "from a library";
    EXPECT_EQ(fileBytes(target), "former") << name;
    file.commit();
    EXPECT_EQ(fileBytes(target), "from a library") << name;
    EXPECT_EQ(fileCount(), 1U) << name;
  }
}

TEST_F(AtomicFileTest, KeepsThePermissionsOfTheFormerFileOrGivesTheUsualOnes) {
  const ::mode_t mask = ::umask(027);
  for (const auto& [name, policy] : kPolicies) {
    const fs::path target = put("road.xml", "former");
    fs::permissions(target, fs::perms{0604});
    write(target, policy);
    EXPECT_EQ(permissionsOf(target), policy.keepsTarget ? 0604U : 0640U) << name;
    write(folder_ / "new.xml", policy);
    EXPECT_EQ(permissionsOf(folder_ / "new.xml"), 0640U) << name;
    fs::remove(folder_ / "new.xml");
    fs::remove(target);
  }
  ::umask(mask);
}

TEST_F(AtomicFileTest, FollowsLinksUnlessTheNameAloneCounts) {
  for (const auto& [name, policy] : kPolicies) {
    fs::create_directory(folder_ / "far");
    fs::create_symlink("far/second", folder_ / "first");
    fs::create_symlink("road.xml", folder_ / "far/second");
    for (const char* text : {"into nothing", "over a file"}) {
      write(folder_ / "first", policy, text);
      EXPECT_EQ(fs::is_symlink(folder_ / "first"), policy.keepsTarget) << name;
      EXPECT_EQ(fileBytes(folder_ / (policy.keepsTarget ? "far/road.xml" : "first")), text) << name;
    }
    fs::remove_all(folder_ / "far");
    fs::remove(folder_ / "first");
  }
}

TEST_F(AtomicFileTest, RefusesLinksThatLeadInACircle) {
  fs::create_symlink("second", folder_ / "first");
  fs::create_symlink("first", folder_ / "second");
  for (const auto policy : {kDocument, kReport})
    EXPECT_EQ(failureOf([&] { AtomicFile(folder_ / "first", policy); }).value().problem(), Problem::LinkLoop);
  EXPECT_EQ(fileCount(), 2U);
}

TEST_F(AtomicFileTest, TellsWhyItCantBegin) {
  fs::create_directory(folder_ / "folder");
  const fs::path file = put("file", "former");
  struct Row {
    const char* name;
    fs::path target;
    AtomicFilePolicy policy;
    Problem problem;
    std::error_code reason;
  };
  const auto code = [](std::errc value) { return std::make_error_code(value); };
  const Row table[] = {
      {"no folder", folder_ / "none/road.xml", kDocument, Problem::NoNewFile,
       code(std::errc::no_such_file_or_directory)},
      {"no folder", folder_ / "none/road.txt", kReport, Problem::NoNewFile, code(std::errc::no_such_file_or_directory)},
      {"no folder", folder_ / "none/road.xls", kName, Problem::NoNewFile, code(std::errc::no_such_file_or_directory)},
      {"below a file", file / "road.xml", kDocument, Problem::Writing, code(std::errc::not_a_directory)},
      {"below a file", file / "road.xls", kName, Problem::NoNewFile, code(std::errc::not_a_directory)},
      {"a folder", folder_ / "folder", kDocument, Problem::NotRegular, {}},
      {"a folder", folder_ / "folder", kReport, Problem::Writing, code(std::errc::is_a_directory)},
      {"a device", "/dev/null", kDocument, Problem::NotRegular, {}},
  };
  for (const Row& row : table) {
    const auto failure = failureOf([&] { AtomicFile(row.target, row.policy); });
    ASSERT_TRUE(failure) << row.name;
    EXPECT_EQ(failure->problem(), row.problem) << row.name;
    EXPECT_EQ(failure->reason().default_error_condition(), row.reason.default_error_condition()) << row.name;
  }
  EXPECT_EQ(fileCount(), 2U);
}

TEST_F(AtomicFileTest, DoesNotReplaceAFolderByItsName) {
  fs::create_directory(folder_ / "folder");
  AtomicFile file(folder_ / "folder", kName);
  EXPECT_EQ(failureOf([&] { file.commit(); }).value().reason(), std::errc::is_a_directory);
}

TEST_F(AtomicFileTest, WritesADeviceInPlaceAndTellsThatItIsFull) {
  AtomicFile file("/dev/full", kReport);
  const auto failure = failureOf([&] { file.write("text"); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->problem(), Problem::Writing);
  EXPECT_EQ(failure->reason(), std::errc::no_space_on_device);
}

TEST_F(AtomicFileTest, RefusesATargetThatChangedMeanwhileWhereItIsAskedTo) {
  const fs::path target = folder_ / "road.xml";
  const auto changes = {
      std::pair{"written", +[](const fs::path& path) { std::ofstream(path) << "by another program"; }},
      std::pair{"removed", +[](const fs::path& path) { fs::remove(path); }},
      std::pair{"replaced",
                +[](const fs::path& path) {
                  std::ofstream(path.string() + "2") << "former";
                  fs::rename(path.string() + "2", path);
                }},
  };
  for (const auto& [name, change] : changes) {
    put("road.xml", "former");
    AtomicFile file(target, kDocument);
    file.write("new");
    change(target);
    EXPECT_EQ(failureOf([&] { file.commit(); }).value().problem(), Problem::TargetChanged) << name;
    EXPECT_NE(fs::exists(target) ? fileBytes(target) : "", "new") << name;

    for (const bool isBefore : {false, true}) {
      put("road.xml", "former");
      AtomicFile settled(target, kDocument);
      settled.write("new");
      if (isBefore) change(target);
      const auto atSettling = failureOf([&] { settled.settle(); });
      EXPECT_EQ(atSettling.has_value(), isBefore) << name;
      if (isBefore) continue;
      change(target);
      EXPECT_EQ(failureOf([&] { settled.commit(); }).value().problem(), Problem::TargetChanged) << name;
      EXPECT_NE(fs::exists(target) ? fileBytes(target) : "", "new") << name;
    }
  }
  fs::remove(target);
  AtomicFile file(target, kDocument);
  put("road.xml", "made meanwhile");
  EXPECT_EQ(failureOf([&] { file.commit(); }).value().problem(), Problem::TargetChanged);
  EXPECT_EQ(fileBytes(target), "made meanwhile");

  AtomicFile careless(target, kReport);
  careless.write("new");
  put("road.xml", "written meanwhile");
  careless.commit();
  EXPECT_EQ(fileBytes(target), "new");
}

TEST_F(AtomicFileTest, LeavesAFormerFileWholeWhereTheFileIsTooLarge) {
  const fs::path target = put("road.xml", "former");
  EXPECT_EXIT(
      {
        std::signal(SIGXFSZ, SIG_IGN);
        ::rlimit limit{};
        limit.rlim_cur = limit.rlim_max = 1000;
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto failure = failureOf([&] { write(target, kDocument, std::string(4000, 'x')); });
        std::_Exit(failure && failure->problem() == Problem::Writing && failure->reason() == std::errc::file_too_large
                       ? 0
                       : 1);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EQ(fileBytes(target), "former");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(AtomicFileTest, RespectsTheProtectionOfAFileUnlessTheNameAloneCounts) {
  const fs::path target = put("road.xml", "former");
  const test::OrdinaryUser user(folder_.path());
  fs::permissions(target, fs::perms{0440});
  for (const auto policy : {kDocument, kReport})
    EXPECT_EQ(failureOf([&] { AtomicFile(target, policy); }).value().reason(), std::errc::permission_denied);
  EXPECT_EQ(fileBytes(target), "former");
  write(target, kName);
  EXPECT_EQ(fileBytes(target), "new");
}

TEST_F(AtomicFileTest, NeverRewritesAFileInAFolderThatTakesNoNewOne) {
  const fs::path target = put("road.txt", "former, and longer");
  const test::OrdinaryUser user(folder_.path());
  fs::permissions(folder_.path(), fs::perms{0555});
  for (const auto policy : {kDocument, kReport, kName}) {
    const auto failure = failureOf([&] { AtomicFile(target, policy); });
    EXPECT_EQ(failure.value().problem(), Problem::NoNewFile);
    EXPECT_EQ(failure->reason(), std::errc::permission_denied);
  }
  EXPECT_EQ(fileBytes(target), "former, and longer");
  fs::permissions(folder_.path(), fs::perms{0700});
}

TEST_F(AtomicFileTest, WritesThroughANamedPipeAndNeverWaitsForAReader) {
  const fs::path pipe = folder_ / "road.txt";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(failureOf([&] { AtomicFile(pipe, kReport); }).value().problem(), Problem::NoReader);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  write(pipe, {.writesInPlace = true, .flushesToDisk = true}, "through");
  char text[8]{};
  EXPECT_EQ(::read(reader, text, sizeof text), 7);
  EXPECT_STREQ(text, "through");
  ::close(reader);
  EXPECT_EQ(fileCount(), 1U);
}

/// A process that has ended.
pid_t deadProcess() {
  const pid_t child = ::fork();
  if (child == 0) std::_Exit(0);
  ::waitpid(child, nullptr, 0);
  return child;
}

TEST_F(AtomicFileTest, IsNoLeftOverForOthersUntilItHasItsName) {
  AtomicFile file(folder_ / "road.xml");
  file.write("new");
  file.settle();
  // Another name of the folder is cleared as by another run.
  const test::TemporaryFolder elsewhere;
  fs::create_directory_symlink(folder_.path(), elsewhere / "alias");
  write(elsewhere / "alias" / "other.xml", kDocument);
  file.commit();
  EXPECT_EQ(fileBytes(folder_ / "road.xml"), "new");
  EXPECT_EQ(fileCount(), 2U);
}

TEST_F(AtomicFileTest, ClearsWhatDeadRunsLeftAndNothingElse) {
  const std::string dead = ".lvx-save-" + std::to_string(deadProcess()) + "-";
  for (int i = 0; i < 1100; ++i) put(dead + std::to_string(i), "left");
  fs::create_directory(folder_ / (dead + "1200"));
  put(dead + "1200/part", "left");
  // One that somebody holds a lock on, and names that only look like it.
  const std::vector<fs::path> kept{put(dead + "held", ""), put(".lvx-save-", ""), put(".lvx-save-x-1", ""),
                                   put("x.lvx-save-1-1", "")};
  const int held = ::open(kept[0].c_str(), O_RDONLY);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  put(".lvx-save-" + std::to_string(::getpid()) + "-5", "left");
  write(folder_ / "road.xml", kDocument);
  for (const fs::path& file : kept) EXPECT_TRUE(fs::exists(file)) << file;
  EXPECT_EQ(fileCount(), kept.size() + 1);
  ::close(held);
}

TEST_F(AtomicFileTest, KeepsUnfinishedFilesOfRunsThatGoOn) {
  AtomicFile mine(folder_ / "road.xml");
  mine.write("half");
  AtomicFile lent(folder_ / "road.xls", kName);
  std::ofstream(lent.lend()) << "lent";
  // Another run clears the folder.
  const pid_t other = ::fork();
  if (other == 0) {
    write(folder_ / "other.xml", kDocument);
    std::_Exit(0);
  }
  ::waitpid(other, nullptr, 0);
  mine.commit();
  lent.commit();
  EXPECT_EQ(fileBytes(folder_ / "road.xml"), "half");
  EXPECT_EQ(fileBytes(folder_ / "road.xls"), "lent");
  EXPECT_EQ(fileCount(), 3U);
}

TEST(ScratchFolder, GoesWithAllThatItHolds) {
  test::TemporaryFolder above;
  fs::path path;
  {
    const ScratchFolder scratch(above.path());
    path = scratch.path();
    EXPECT_EQ(path.parent_path(), above.path());
    std::ofstream(path / "part") << "half";
    const ScratchFolder other(above.path());
    EXPECT_NE(other.path(), path);
  }
  EXPECT_TRUE(fs::is_empty(above.path()));
  EXPECT_THROW(ScratchFolder(above / "none"), std::system_error);
}

}  // namespace
}  // namespace lvx::standin_platform
