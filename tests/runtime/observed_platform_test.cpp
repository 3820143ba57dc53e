#include "runtime/observed_platform.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system_platform.h"
#include "platform/utf8.h"
#include "runtime/open_drawing.h"
#include "support/ordinary_user.h"
#include "support/run_program.h"

namespace lvx::runtime {
namespace {

using platform::fromUtf8;
using test::fileBytes;

class ObservedPlatformTest : public testing::Test {
 protected:
  [[nodiscard]] std::wstring wide(const std::string& name) const { return fromUtf8((folder_ / name).string()); }
  void put(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }
  [[nodiscard]] std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_.path()), {}));
  }

  test::TemporaryFolder folder_;
  platform::SystemPlatform posix_;
  FileJournal journal_;
  bool interrupted_ = false;
  ObservedPlatform platform_{posix_, journal_, [this] { return interrupted_; }};
};

TEST_F(ObservedPlatformTest, PutsAFileInPlaceWhenItIsClosed) {
  auto file = platform_.openFile(wide("road.txt"), "wb");
  ASSERT_TRUE(file);
  std::fputs("0+110.000\r\n", file.get());
  EXPECT_FALSE(std::filesystem::exists(folder_ / "road.txt"));
  file.reset();
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "0+110.000\r\n");
  ASSERT_EQ(journal_.events().size(), 1U);
  EXPECT_EQ(journal_.events()[0].fate, FileFate::Written);
  EXPECT_EQ(journal_.events()[0].bytes, 11U);
  EXPECT_EQ(journal_.events()[0].path, (folder_ / "road.txt").string());
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(ObservedPlatformTest, WritesNothingOnceWordsCouldNotBeRead) {
  const auto readAll = [&](const std::wstring& path) {
    const auto file = platform_.openFile(path, "rb");
    while (file && std::fgetc(file.get()) != EOF) {
    }
  };
  put("words.txt", "101 Title");
  put("road.txt", "as it was");
  readAll(wide("words.txt"));
  EXPECT_EQ(journal_.whyNoReport(), "");
  for (const std::string& unread : {(folder_ / "no-words.txt").string(), std::string("/proc/self/mem")}) {
    SCOPED_TRACE(unread);
    readAll(fromUtf8(unread));
    EXPECT_EQ(journal_.whyNoReport(), "the words of reports couldn't be read from '" + unread + "'");
    EXPECT_FALSE(platform_.openFile(wide("road.txt"), "wb"));
    ASSERT_FALSE(journal_.events().empty());
    EXPECT_EQ(journal_.events().back().fate, FileFate::Failed);
    EXPECT_EQ(journal_.events().back().reason, journal_.whyNoReport());
    EXPECT_EQ(fileBytes(folder_ / "road.txt"), "as it was");
  }
}

TEST_F(ObservedPlatformTest, RemembersWhatWasLookedForInVainUntilSomethingElseHappens) {
  EXPECT_EQ(journal_.missing(), "");
  EXPECT_FALSE(platform_.exists(wide("nowhere")));
  EXPECT_EQ(journal_.missing(), (folder_ / "nowhere").string());
  EXPECT_TRUE(platform_.exists(folder_.path().wstring()));
  EXPECT_EQ(journal_.missing(), "");
  EXPECT_FALSE(platform_.exists(wide("road.txt")));
  platform_.openFile(wide("road.txt"), "wb").reset();
  EXPECT_EQ(journal_.missing(), "") << "it was made";
}

TEST_F(ObservedPlatformTest, KeepsTheFormerFileUntilThen) {
  put("road.txt", "former");
  ::chmod((folder_ / "road.txt").c_str(), 0640);
  auto file = platform_.openFile(wide("road.txt"), "wb");
  std::fputs("new", file.get());
  std::fflush(file.get());
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "former");
  file.reset();
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "new");
  struct stat status {};
  ASSERT_EQ(::stat((folder_ / "road.txt").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(ObservedPlatformTest, AFullDiskIsAFailureWithItsReason) {
  auto file = platform_.openFile(L"/dev/full", "wb");
  ASSERT_TRUE(file);
  std::fputs("text", file.get());
  file.reset();
  ASSERT_EQ(journal_.events().size(), 1U);
  EXPECT_EQ(journal_.events()[0].fate, FileFate::Failed);
  EXPECT_EQ(journal_.events()[0].reason, std::make_error_code(std::errc::no_space_on_device).message());
}

TEST_F(ObservedPlatformTest, AMissingFolderIsAFailureWithItsReason) {
  EXPECT_FALSE(platform_.openFile(wide("nowhere/road.txt"), "wb"));
  ASSERT_EQ(journal_.events().size(), 1U);
  EXPECT_EQ(journal_.events()[0].fate, FileFate::Failed);
  EXPECT_EQ(journal_.events()[0].reason, std::make_error_code(std::errc::no_such_file_or_directory).message());
}

TEST_F(ObservedPlatformTest, AFolderUnderTheNameIsAFailure) {
  std::filesystem::create_directory(folder_ / "road.txt");
  EXPECT_FALSE(platform_.openFile(wide("road.txt"), "wb"));
  EXPECT_EQ(journal_.events().at(0).reason, std::make_error_code(std::errc::is_a_directory).message());
}

TEST_F(ObservedPlatformTest, AFileThatMayNotBeWrittenIsntReplaced) {
  put("road.txt", "former");
  const test::OrdinaryUser user(folder_.path());
  ::chmod((folder_ / "road.txt").c_str(), 0440);
  EXPECT_FALSE(platform_.openFile(wide("road.txt"), "wb"));
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "former");
  EXPECT_EQ(journal_.events().at(0).reason, std::make_error_code(std::errc::permission_denied).message());
}

TEST_F(ObservedPlatformTest, AnExceptionInTheWriterLeavesTheFormerFile) {
  put("road.txt", "former");
  try {
    const auto file = platform_.openFile(wide("road.txt"), "wb");
    std::fputs("half of it", file.get());
    throw std::runtime_error("the writer breaks off");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(fileBytes(folder_ / "road.txt"), "former");
  }
  ASSERT_EQ(journal_.events().size(), 1U);
  EXPECT_EQ(journal_.events()[0].fate, FileFate::Failed);
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(ObservedPlatformTest, AnInterruptionLeavesNothing) {
  auto file = platform_.openFile(wide("road.txt"), "wb");
  std::fputs("half of it", file.get());
  interrupted_ = true;
  file.reset();
  EXPECT_EQ(fileCount(), 0U);
  EXPECT_EQ(journal_.events().at(0).fate, FileFate::Failed);
}

TEST_F(ObservedPlatformTest, AnInterruptionEndsALongReportAtItsNextText) {
  put("road.txt", "old");
  EXPECT_EQ(platform_.narrow(L"0+110.000"), "0+110.000");
  auto file = platform_.openFile(wide("road.txt"), "wb");
  interrupted_ = true;
  EXPECT_THROW((void)platform_.narrow(L"0+120.000"), Interrupted);
  file.reset();
  EXPECT_EQ(fileBytes(folder_ / "road.txt"), "old");
}

TEST_F(ObservedPlatformTest, AnInterruptionLeavesAWorkbookThatWasToMakeWay) {
  // As the module does: it tries to open the older one, and removes it.
  put("road.xls", "former");
  interrupted_ = true;
  static_cast<void>(platform_.openFile(wide("road.xls"), "w"));
  EXPECT_FALSE(platform_.removeFile(wide("road.xls")));
  EXPECT_EQ(fileBytes(folder_ / "road.xls"), "former");
  EXPECT_EQ(journal_.events().back().fate, FileFate::Failed);
  EXPECT_EQ(journal_.events().back().reason, "interrupted");
}

TEST_F(ObservedPlatformTest, ALinkStaysALink) {
  put("target.txt", "former");
  std::filesystem::create_symlink("target.txt", folder_ / "road.txt");
  auto file = platform_.openFile(wide("road.txt"), "wb");
  std::fputs("new", file.get());
  file.reset();
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "road.txt"));
  EXPECT_EQ(fileBytes(folder_ / "target.txt"), "new");
}

TEST_F(ObservedPlatformTest, ReadingPassesThroughWithoutAnEvent) {
  put("messages.txt", "1 x");
  EXPECT_TRUE(platform_.openFile(wide("messages.txt"), "rb"));
  EXPECT_FALSE(platform_.openFile(wide("missing.txt"), "rb"));
  EXPECT_TRUE(journal_.events().empty());
}

TEST_F(ObservedPlatformTest, RemovingLeavesAnEvent) {
  put("road.xls", "former");
  EXPECT_TRUE(platform_.removeFile(wide("road.xls")));
  EXPECT_FALSE(platform_.removeFile(wide("road.xls")));
  ASSERT_EQ(journal_.events().size(), 2U);
  EXPECT_EQ(journal_.events()[0].fate, FileFate::Removed);
  EXPECT_EQ(journal_.last((folder_ / "road.xls").string())->fate, FileFate::Failed);
}

}  // namespace
}  // namespace lvx::runtime
