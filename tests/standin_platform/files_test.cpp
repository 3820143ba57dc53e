#include <filesystem>
#include <fstream>
#include <system_error>

#include <gtest/gtest.h>

#include "standin_platform/dynamic_library.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/held_file.h"
#include "standin_platform/input_file.h"
#include "standin_platform/program_file.h"
#include "standin_platform/sink_stream.h"
#include "standin_platform/temporary_stream.h"
#include "support/run_program.h"

namespace lvx::standin_platform {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;

class Files : public testing::Test {
 protected:
  fs::path put(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
    return folder_ / name;
  }
  test::TemporaryFolder folder_;
};

std::error_code openingError(const fs::path& path) {
  try {
    const InputFile file(path);
  } catch (const std::system_error& error) {
    return error.code();
  }
  return {};
}

TEST_F(Files, AStampTellsFilesAndTheirStatesApart) {
  const fs::path road = put("road.xml", "former");
  const auto former = stampOf(road);
  ASSERT_TRUE(former);
  EXPECT_EQ(former->size, 6U);
  EXPECT_EQ(stampOf(road), former);
  fs::create_hard_link(road, folder_ / "other name.xml");
  EXPECT_TRUE(stampOf(folder_ / "other name.xml")->isSameFile(*former));

  fs::last_write_time(road, fs::last_write_time(road) + std::chrono::nanoseconds(1'000'000));
  EXPECT_NE(stampOf(road), former);
  EXPECT_TRUE(stampOf(road)->isSameFile(*former));
  EXPECT_FALSE(stampOf(put("third.xml", "former"))->isSameFile(*former));
  EXPECT_FALSE(stampOf(folder_ / "none.xml"));
}

TEST_F(Files, TwoNamesLeadToOneFileThroughLinksAndWhereNothingIsThere) {
  const fs::path road = put("road.xml", "road");
  const fs::path copy = put("copy.xml", "road");
  fs::create_hard_link(road, folder_ / "hard.xml");
  fs::create_symlink(road, folder_ / "soft.xml");
  fs::create_directory_symlink(folder_.path(), folder_ / "here");
  struct Row {
    fs::path a;
    fs::path b;
    bool areOne;
  };
  const std::vector<Row> table{
      {road, road, true},
      {road, folder_ / "hard.xml", true},
      {folder_ / "soft.xml", folder_ / "." / "hard.xml", true},
      {road, copy, false},
      {road, folder_ / "none.xml", false},
      {folder_ / "none.xml", folder_ / "." / "none.xml", true},
      {folder_ / "none.xml", folder_ / "neither.xml", false},
      {folder_ / "none.xml", folder_ / "here" / "none.xml", true},
      {fs::path("none.xml"), fs::absolute("none.xml"), true},
  };
  for (const Row& row : table) {
    EXPECT_EQ(leadToOneFile(row.a, row.b), row.areOne) << row.a << " and " << row.b;
    EXPECT_EQ(leadToOneFile(row.b, row.a), row.areOne) << row.b << " and " << row.a;
  }
}

TEST_F(Files, InputIsReadInOrderAndAtAnyPlace) {
  InputFile file(put("road.xml", "0123456789"));
  EXPECT_EQ(file.kind(), InputFile::Kind::Regular);
  EXPECT_EQ(file.stamp(), stampOf(folder_ / "road.xml"));
  char part[8] = {};
  EXPECT_EQ(file.read(part, 4), 4U);
  EXPECT_EQ(std::string(part, 4), "0123");
  EXPECT_EQ(file.readAt(8, part, 8), 2U);
  EXPECT_EQ(std::string(part, 2), "89");
  EXPECT_EQ(file.readAt(1, part, 3), 3U);
  EXPECT_EQ(std::string(part, 3), "123");
  EXPECT_EQ(file.read(part, 8), 6U);
  EXPECT_EQ(std::string(part, 6), "456789");
  EXPECT_EQ(file.read(part, 8), 0U);
  EXPECT_EQ(file.readAt(100, part, 8), 0U);
}

TEST_F(Files, InputSaysWhatItIsAndWhyItCantBeOpened) {
  EXPECT_EQ(InputFile(folder_.path()).kind(), InputFile::Kind::Folder);
  EXPECT_EQ(InputFile("/dev/null").kind(), InputFile::Kind::Other);
  EXPECT_EQ(openingError(folder_ / "none.xml"), std::errc::no_such_file_or_directory);
  EXPECT_EQ(openingError(put("road.xml", "") / "below.xml"), std::errc::not_a_directory);
}

TEST_F(Files, AHeldFileIsReachedAfterItsNameLeadsElsewhere) {
  const fs::path road = put("road.xml", "held");
  const HeldFile held(road);
  put("new.xml", "another");
  fs::rename(folder_ / "new.xml", road);
  EXPECT_EQ(fileBytes(road), "another");
  ASSERT_TRUE(held.path());
  EXPECT_EQ(fileBytes(*held.path()), "held");
  EXPECT_FALSE(HeldFile(folder_ / "none.xml").path());
}

TEST_F(Files, ATemporaryStreamGivesBackWhatItTook) {
  const Stream stream = openTemporaryStream();
  ASSERT_TRUE(stream);
  std::fputs("0+110.000", stream.get());
  EXPECT_EQ(placeIn(stream.get()), 9U);
  std::rewind(stream.get());
  char part[16] = {};
  EXPECT_EQ(std::fread(part, 1, sizeof part, stream.get()), 9U);
  EXPECT_STREQ(part, "0+110.000");
}

struct Record {
  std::string bytes{};
  int closed = 0;
  int destroyed = 0;
  bool takes = true;
  bool ends = true;
};

class RecordingSink final : public ByteSink {
 public:
  explicit RecordingSink(Record& record) : record_(record) {}
  ~RecordingSink() override { ++record_.destroyed; }
  [[nodiscard]] bool write(std::string_view bytes) noexcept override {
    if (record_.takes) record_.bytes += bytes;
    return record_.takes;
  }
  [[nodiscard]] bool close() noexcept override {
    ++record_.closed;
    return record_.ends;
  }

 private:
  Record& record_;
};

TEST(SinkStream, PassesOnBytesAndItsEnd) {
  Record record;
  std::FILE* const stream = openSinkStream(std::make_unique<RecordingSink>(record));
  ASSERT_NE(stream, nullptr);
  std::fprintf(stream, "%d;", 42);
  std::fputs(std::string(200'000, 'x').c_str(), stream);
  EXPECT_EQ(record.closed, 0);
  EXPECT_EQ(closeSinkStream(stream), 0);
  EXPECT_EQ(record.bytes, "42;" + std::string(200'000, 'x'));
  EXPECT_EQ(record.closed, 1);
  EXPECT_EQ(record.destroyed, 1);
}

TEST(SinkStream, ReportsWhatTheSinkRefuses) {
  Record refusing{.takes = false};
  std::FILE* stream = openSinkStream(std::make_unique<RecordingSink>(refusing));
  std::fputs("text", stream);
  EXPECT_NE(std::fflush(stream), 0);
  EXPECT_NE(std::ferror(stream), 0);
  closeSinkStream(stream);
  EXPECT_EQ(refusing.destroyed, 1);

  Record failing{.ends = false};
  stream = openSinkStream(std::make_unique<RecordingSink>(failing));
  EXPECT_NE(closeSinkStream(stream), 0);
}

TEST_F(Files, ALibraryThatIsNoneIsTold) {
  try {
    const DynamicLibrary library(put("none.vmx", std::string(4096, 'x')));
    FAIL() << "it was loaded";
  } catch (const DynamicLibraryError& error) {
    EXPECT_EQ(error.problem(), DynamicLibraryError::Problem::WrongFormat);
  }
  try {
    const DynamicLibrary library(folder_ / "missing.vmx");
    FAIL() << "it was loaded";
  } catch (const DynamicLibraryError& error) {
    EXPECT_EQ(error.problem(), DynamicLibraryError::Problem::Other);
  }
}

TEST(ProgramFile, IsTheRunningOne) {
  ASSERT_TRUE(programFile());
  EXPECT_EQ(programFile()->filename(), "standin_platform_test");
  EXPECT_TRUE(fs::exists(*programFile()));
}

}  // namespace
}  // namespace lvx::standin_platform
