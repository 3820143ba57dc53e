#include "services/report_files.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "platform/utf8.h"

namespace lvx::services {
namespace {

using host::BoxAnswer;
using host::BoxButtons;
using host::BoxIcon;

class ReportFilesTest : public testing::Test {
 protected:
  ReportFilesTest() {
    host_.useMessageBytes("227 exists, overwrite?\r\n228 is in use\r\n229 no folder\r\n");
    name_ = host_.folder() + L"report.xls";
  }

  void makeFile() {
    std::ofstream file(platform::toUtf8(name_));
    file << "old";
  }
  [[nodiscard]] bool fileStands() const { return std::filesystem::exists(platform::toUtf8(name_)); }

  test::FakeHost host_;
  CString name_;
};

TEST_F(ReportFilesTest, ItsQuestionsAnswerForFilesAndFoldersAlike) {
  for (const auto exists : {fileExists, pathExists}) {
    EXPECT_FALSE(exists(host_, name_));
    EXPECT_TRUE(exists(host_, host_.folder()));
  }
  makeFile();
  for (const auto exists : {fileExists, pathExists}) EXPECT_TRUE(exists(host_, name_));
}

TEST_F(ReportFilesTest, AsksNothingForANewFile) {
  EXPECT_TRUE(mayWriteReport(host_, name_));
  EXPECT_TRUE(mayWriteWorkbook(host_, name_));
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_FALSE(fileStands());
}

TEST_F(ReportFilesTest, AsksBeforeItOverwritesAndTakesOnlyYesForYes) {
  makeFile();
  host_.users().answers = {BoxAnswer::Yes, BoxAnswer::No};
  EXPECT_TRUE(mayWriteReport(host_, name_));
  EXPECT_FALSE(mayWriteReport(host_, name_));
  EXPECT_EQ(host_.users().boxes[0],
            (test::FakeUserInterface::Box{name_ + L" exists, overwrite?", BoxButtons::YesNo, BoxIcon::Question}));
  EXPECT_TRUE(fileStands());
}

TEST_F(ReportFilesTest, AsksForAFolderOfThatNameToo) {
  host_.users().answers = {BoxAnswer::No};
  EXPECT_FALSE(mayWriteReport(host_, host_.folder()));
}

TEST_F(ReportFilesTest, RemovesAFormerWorkbookOnceTheUserAgreed) {
  makeFile();
  host_.users().answers = {BoxAnswer::Yes};
  EXPECT_TRUE(mayWriteWorkbook(host_, name_));
  EXPECT_FALSE(fileStands());
}

TEST_F(ReportFilesTest, KeepsAFormerWorkbookThatTheUserWantsToKeep) {
  makeFile();
  host_.users().answers = {BoxAnswer::No};
  EXPECT_FALSE(mayWriteWorkbook(host_, name_));
  EXPECT_EQ(std::filesystem::file_size(platform::toUtf8(name_)), 3U);
}

TEST_F(ReportFilesTest, TriesAWorkbookThatCannotBeOpenedAgainUntilTheUserCancels) {
  std::filesystem::create_directory(platform::toUtf8(name_));  // stands there, and can't be written
  host_.users().answers = {BoxAnswer::Yes, BoxAnswer::Retry, BoxAnswer::Retry, BoxAnswer::Cancel};
  EXPECT_FALSE(mayWriteWorkbook(host_, name_));
  ASSERT_EQ(host_.users().boxes.size(), 4U);
  EXPECT_EQ(host_.users().boxes[1],
            (test::FakeUserInterface::Box{name_ + L" is in use", BoxButtons::RetryCancel, BoxIcon::Question}));
  EXPECT_TRUE(fileStands());
}

TEST_F(ReportFilesTest, FindsTheFolderOfAStemAtItsLastMark) {
  struct Row {
    CString stem;
    StemFolder expected;
  };
  const wchar_t mark = host_.folder().back();
  const wchar_t letter = mark == L'/' ? L'\\' : L'/';  // the other system's mark is a letter of the name on this one
  const Row rows[] = {
      {L"road", StemFolder::None},
      {L"", StemFolder::None},
      {host_.folder() + L"road", StemFolder::Exists},
      {host_.folder(), StemFolder::Exists},
      {host_.folder() + L"nothing" + mark + L"road", StemFolder::Missing},
      {host_.folder() + L"nothing" + letter + L"road", StemFolder::Exists},
      {mark + CString(L"road"), StemFolder::Exists},
  };
  for (const Row& row : rows) EXPECT_EQ(folderOfStem(host_, row.stem), row.expected) << platform::toUtf8(row.stem);
}

TEST_F(ReportFilesTest, TellsOnlyThatAStemHasNoFolderNotThatItsFolderIsMissing) {
  EXPECT_TRUE(mayWriteUnderStem(host_, host_.folder() + L"road"));
  EXPECT_FALSE(mayWriteUnderStem(host_, host_.folder() + L"nothing" + host_.folder().back() + L"road"));
  EXPECT_TRUE(host_.users().boxes.empty());
  EXPECT_FALSE(mayWriteUnderStem(host_, L"road"));
  EXPECT_EQ(host_.users().boxes,
            (std::vector<test::FakeUserInterface::Box>{{L"no folder", BoxButtons::Ok, BoxIcon::Warning}}));
}

}  // namespace
}  // namespace lvx::services
