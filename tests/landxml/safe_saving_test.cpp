#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "civil/corridor.h"
#include "corridor_drawings.h"
#include "drawing_compare.h"
#include "saved_file.h"
#include "support/random_numbers.h"

namespace lvx::landxml {
namespace {

/// The system's own words for an error, in the language of the run.
std::string words(int error) { return std::strerror(error); }

using namespace testing;
using ::testing::HasSubstr;

/// Saving over a file must leave the old one or the new one, whatever goes wrong.
class SafeSaving : public ::testing::Test {
 protected:
  SafeSaving() { writeBytes(source_, ownCorridor()); }

  civil::Drawing changed() {
    civil::Drawing drawing = readDrawing(source_);
    civil::addStation(drawing.corridors.at(0).baselines.at(0).regions.at(0), 125.5, "Gate");
    return drawing;
  }
  /// Text of the error of a saving in a process of its own, which `prepare` puts into trouble.
  template <class Prepare>
  static std::string errorInTrouble(civil::Drawing& drawing, const std::string& source, const std::string& target,
                                    Prepare prepare) {
    int pipe[2];
    if (::pipe(pipe) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
      prepare();
      const std::string error = saveError(drawing, source, target);
      const ssize_t written = write(pipe[1], error.data(), error.size());
      _exit(written == static_cast<ssize_t>(error.size()) ? 0 : 1);
    }
    close(pipe[1]);
    std::string error;
    char block[512];
    for (ssize_t count = read(pipe[0], block, sizeof block); count > 0; count = read(pipe[0], block, sizeof block)) {
      error.append(block, static_cast<std::size_t>(count));
    }
    close(pipe[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return error;
  }

  ScratchFolder folder_;
  const std::string source_ = folder_.file("road.xml");
};

TEST_F(SafeSaving, RefusesWhenAnotherProgramChangedTheFile) {
  const struct {
    const char* name;
    std::string bytes;
  } rows[] = {{"longer", ownCorridor() + "\n"},
              {"of the same length", replaced(ownCorridor(), "Brook", "Creek")},
              {"cut off", ownCorridor().substr(0, 500)},
              {"empty", ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    writeBytes(source_, ownCorridor());
    civil::Drawing drawing = changed();
    const auto time = std::filesystem::last_write_time(source_);
    writeBytes(source_, row.bytes);
    std::filesystem::last_write_time(source_, time);  // a clock may not tell
    const std::string expected =
        "landxml: the drawing's file was changed by another program since it was opened; open it again and repeat the "
        "work, or the other changes would be lost (" +
        source_ + ")";
    EXPECT_EQ(saveError(drawing, source_, source_), expected);
    EXPECT_EQ(saveError(drawing, source_, folder_.file("other.xml")), expected);
    EXPECT_EQ(bytesOf(source_), row.bytes);
    EXPECT_FALSE(std::filesystem::exists(folder_.file("other.xml")));
  }
}

TEST_F(SafeSaving, DoesNotMindAFileThatWasOnlyTouchedOrExchangedForItsLike) {
  civil::Drawing drawing = changed();
  std::filesystem::remove(source_);
  writeBytes(source_, ownCorridor());
  std::filesystem::last_write_time(source_, std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
  EXPECT_EQ(saveError(drawing, source_, source_), "");
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(source_)), "");
}

TEST_F(SafeSaving, RefusesWhenTheFileIsGone) {
  civil::Drawing drawing = changed();
  std::filesystem::remove(source_);
  EXPECT_EQ(saveError(drawing, source_, source_),
            "landxml: can't read the drawing's file: " + words(ENOENT) + " (" + source_ + ")");
  EXPECT_FALSE(std::filesystem::exists(source_));
}

TEST_F(SafeSaving, RefusesAFileThatWasWrittenWhileItWasSaved) {
  civil::Drawing drawing = changed();
  bool interfered = false;
  SaveOptions options;
  options.progress = [&](const Progress& progress) {
    if (!interfered && progress.bytesDone == progress.bytesTotal) {
      interfered = true;
      writeBytes(source_, "theirs");
    }
    return true;
  };
  EXPECT_THAT(saveError(drawing, source_, source_, options), HasSubstr("another program wrote the file while"));
  EXPECT_TRUE(interfered);
  EXPECT_EQ(bytesOf(source_), "theirs");
  EXPECT_EQ(folder_.temporaryFiles(), 0U);
}

TEST_F(SafeSaving, GoesOnFromItsOwnFile) {
  civil::Drawing drawing = changed();
  saveDrawing(drawing, source_, source_);
  civil::addStation(drawing.corridors[0].baselines[0].regions[0], 130.0, "Next");
  EXPECT_EQ(saveError(drawing, source_, source_), "");
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(source_)), "");
}

TEST_F(SafeSaving, KeepsPermissionsAndFollowsLinks) {
  civil::Drawing drawing = changed();
  std::filesystem::create_directory(folder_.path() / "deep");
  std::filesystem::rename(source_, folder_.file("deep/real.xml"));
  std::filesystem::create_symlink("deep/real.xml", source_);
  ASSERT_EQ(chmod(source_.c_str(), 0640), 0);
  saveDrawing(drawing, source_, source_);
  EXPECT_TRUE(std::filesystem::is_symlink(source_));
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(folder_.file("deep/real.xml"))), "");
  struct stat info {};
  ASSERT_EQ(stat(source_.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0640U);

  // A link to a file that isn't there yet.
  std::filesystem::create_symlink("deep/new.xml", folder_.file("link.xml"));
  saveDrawing(drawing, source_, folder_.file("link.xml"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder_.file("link.xml")));
  EXPECT_EQ(bytesOf(folder_.file("deep/new.xml")), bytesOf(source_));

  std::filesystem::create_symlink("circle.xml", folder_.file("circle.xml"));
  EXPECT_NE(saveError(drawing, source_, folder_.file("circle.xml")), "");
}

TEST_F(SafeSaving, GivesANewFileTheUsualPermissions) {
  civil::Drawing drawing = changed();
  const mode_t mask = umask(027);
  saveDrawing(drawing, source_, folder_.file("new.xml"));
  umask(mask);
  struct stat info {};
  ASSERT_EQ(stat(folder_.file("new.xml").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0640U);
}

TEST_F(SafeSaving, WritesANameAsLongAsNamesCanBe) {
  civil::Drawing drawing = changed();
  const std::string target = folder_.file(std::string(251, 'n') + ".xml");
  EXPECT_EQ(saveError(drawing, source_, target), "");
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(target)), "");
}

TEST_F(SafeSaving, RefusesATargetThatIsNoFile) {
  civil::Drawing drawing = changed();
  const std::string sub = folder_.file("sub");
  std::filesystem::create_directory(sub);
  EXPECT_EQ(saveError(drawing, source_, sub),
            "landxml: can't write the drawing: its target is not a regular file (" + sub + ")");
  EXPECT_THAT(saveError(drawing, source_, "/dev/null"), HasSubstr("not a regular file (/dev/null)"));
  const std::string nowhere = folder_.file("no/road.xml");
  EXPECT_EQ(saveError(drawing, source_, nowhere),
            "landxml: can't write the drawing: its folder takes no new file: " + words(ENOENT) + " (" + nowhere + ")");
  const std::string under = source_ + "/road.xml";
  EXPECT_EQ(saveError(drawing, source_, under),
            "landxml: can't write the drawing: " + words(ENOTDIR) + " (" + under + ")");
  EXPECT_EQ(saveError(drawing, sub, source_), "landxml: the drawing's file is not a regular file (" + sub + ")");
}

TEST_F(SafeSaving, KeepsTheOldFileWhereThereIsNoSpace) {
  // Past what the buffer holds and within it: the system refuses at the write or not before the flush.
  for (const std::size_t padding : {std::size_t{0}, std::size_t{3} << 20}) {
    std::string text = ownCorridor();
    text.insert(text.find("<LandXML"), "<!--" + std::string(padding, 'x') + "-->\n");
    writeBytes(source_, text);
    civil::Drawing drawing = changed();
    const std::string error = errorInTrouble(drawing, source_, source_, [&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{text.size() / 2, text.size() / 2};
      setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(error, "landxml: can't write the drawing: " + words(EFBIG) + " (" + source_ + ")");
    EXPECT_EQ(bytesOf(source_), text);
    EXPECT_EQ(folder_.temporaryFiles(), 0U);
  }
}

TEST_F(SafeSaving, KeepsTheOldFileInAFolderThatTakesNone) {
  civil::Drawing drawing = changed();
  const bool isRoot = geteuid() == 0;
  ASSERT_EQ(chmod(source_.c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder_.path().c_str(), 0555), 0);
  // The privileged user may write anywhere: another one tries.
  const auto asOther = [&] {
    if (isRoot && setuid(65534) != 0) _exit(2);
  };
  EXPECT_EQ(errorInTrouble(drawing, source_, source_, asOther),
            "landxml: can't write the drawing: its folder takes no new file: " + words(EACCES) + " (" + source_ + ")");
  ASSERT_EQ(chmod(folder_.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(source_.c_str(), 0444), 0);
  EXPECT_EQ(errorInTrouble(drawing, source_, source_, asOther),
            "landxml: can't write the drawing: " + words(EACCES) + " (" + source_ + ")");
  EXPECT_EQ(bytesOf(source_), ownCorridor());
}

TEST_F(SafeSaving, LeavesAWholeFileWhereverItIsKilled) {
  // Large enough that a good part of the time goes into writing.
  std::string text = ownCorridor();
  text.insert(text.find("<LandXML"), "<!--" + std::string(std::size_t{2} << 20, 'x') + "-->\n");
  writeBytes(source_, text);
  const std::string target = folder_.file("target.xml");
  civil::Drawing plain = readDrawing(source_);
  civil::Drawing more = changed();
  saveDrawing(more, source_, target);
  const std::string saved = bytesOf(target);
  ASSERT_NE(saved, text);

  auto random = test::seededByTestName();
  const auto start = std::chrono::steady_clock::now();
  saveDrawing(plain, source_, target);
  saveDrawing(more, source_, target);
  const auto both = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
  std::uniform_int_distribution<std::int64_t> delay(0, 2 * both.count());
  int interrupted = 0;
  int plainOnes = 0;
  constexpr int kKills = 100;
  for (int kill = 0; kill < kKills; ++kill) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
      for (char first = 1;; first = 0) {
        if (first != 0 && write(ready[1], &first, 1) != 1) _exit(1);
        saveDrawing(plain, source_, target);
        saveDrawing(more, source_, target);
      }
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    close(ready[0]);
    close(ready[1]);
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the saving ended by itself";

    const std::string left = bytesOf(target);
    ASSERT_TRUE(left == text || left == saved) << "kill " << kill << " left " << left.size() << " bytes";
    plainOnes += left == text ? 1 : 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      if (entry.path().filename().string().rfind(".lvx-save-", 0) != 0) continue;
      ++interrupted;
      std::filesystem::remove(entry.path());
    }
  }
  std::cout << "killed " << kKills << " times, " << interrupted << " of them within the writing; " << plainOnes
            << " times the one drawing stood there, " << kKills - plainOnes << " times the other\n";
  EXPECT_GT(interrupted, 0);
}

}  // namespace
}  // namespace lvx::landxml
