#include "journal/journal.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/run_program.h"

namespace lvx::journal {
namespace {

using test::fileBytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

JobRecord someRecord() {
  JobRecord record;
  record.line = 12;
  record.command = "gls";
  record.drawing = "a road.xml";
  record.out = "out/\"edge\"";
  record.exitCode = 1;
  record.seconds = 0.0414;
  record.files = {{"out/edge.txt", 2310, "9f0c"}, {"a road.xml", 77, ""}};
  record.kept = {"out/edge.xls"};
  record.diagnostics = {"one\ttwo", "Straße"};
  record.key = {"41b8", "c2d0", "77aa", {"e3b0", "11aa"}};
  record.savedDrawing = {"e3b1", "11aa"};
  record.isSaving = true;
  return record;
}

std::vector<JobRecord> recordsIn(const std::filesystem::path& path, JournalReading* reading = nullptr) {
  std::vector<JobRecord> records;
  const JournalReading how = readJournal(path, [&](JobRecord record) { records.push_back(std::move(record)); });
  if (reading != nullptr) *reading = how;
  return records;
}

class JournalTest : public testing::Test {
 protected:
  void write(const std::string& bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }
  void add(JournalWriter::Begin begin, std::size_t line) const {
    JobRecord record = someRecord();
    record.line = line;
    JournalWriter(path_, begin).add(record);
  }
  [[nodiscard]] std::vector<std::size_t> lines(JournalReading* reading = nullptr) const {
    std::vector<std::size_t> numbers;
    for (const JobRecord& record : recordsIn(path_, reading)) numbers.push_back(record.line);
    return numbers;
  }

  [[nodiscard]] bool isRefused() const {
    try {
      requireJournal(path_);
      return false;
    } catch (const NotAJournal&) {
      return true;
    }
  }

  test::TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "night.journal";
};

TEST_F(JournalTest, TellsAFileThatIsntThere) {
  EXPECT_THROW(static_cast<void>(lines()), std::system_error);
  EXPECT_THROW(JournalWriter(folder_ / "none/night.journal", JournalWriter::Begin::GoOn), std::system_error);
  EXPECT_THROW(JournalWriter(folder_.path(), JournalWriter::Begin::GoOn), std::system_error);
}

TEST_F(JournalTest, TellsAFileThatIsNoJournal) {
  for (const char* text : {"<LandXML>\n", "{\"command\": \"points\"}\n", "\n7", "{\"lines\":"}) {
    write(text);
    EXPECT_THROW(static_cast<void>(lines()), NotAJournal) << text;
    EXPECT_TRUE(isRefused()) << text;
  }
}

TEST_F(JournalTest, IsEmptyBeforeTheFirstJob) {
  for (const char* text : {"", "\n", " \r\n"}) {
    write(text);
    EXPECT_THAT(lines(), IsEmpty()) << text;
    EXPECT_FALSE(isRefused()) << text;
  }
}

TEST_F(JournalTest, GivesBackWhatWasWritten) {
  const JobRecord record = someRecord();
  JournalWriter(path_, JournalWriter::Begin::Anew).add(record);
  const std::vector<JobRecord> records = recordsIn(path_);
  ASSERT_EQ(records.size(), 1U);
  const JobRecord& read = records.front();
  EXPECT_EQ(read.line, record.line);
  EXPECT_EQ(read.command, record.command);
  EXPECT_EQ(read.drawing, record.drawing);
  EXPECT_EQ(read.out, record.out);
  EXPECT_EQ(read.exitCode, record.exitCode);
  EXPECT_DOUBLE_EQ(read.seconds, 0.041);
  EXPECT_EQ(read.files, record.files);
  EXPECT_EQ(read.kept, record.kept);
  EXPECT_EQ(read.diagnostics, record.diagnostics);
  EXPECT_EQ(read.key, record.key);
  EXPECT_EQ(read.savedDrawing, record.savedDrawing);
  EXPECT_TRUE(read.isSaving);
}

TEST_F(JournalTest, HasTheFormThatItsReadersKnow) {
  JobRecord record = someRecord();
  record.files.pop_back();
  record.kept.clear();
  record.savedDrawing.clear();
  record.isSaving = false;
  record.diagnostics = {"no \xFF letter"};
  EXPECT_EQ(lineOf(record),
            "{\"line\":12,\"command\":\"gls\",\"drawing\":\"a road.xml\",\"out\":\"out/\\\"edge\\\"\",\"exit\":1,"
            "\"seconds\":0.041,\"files\":[{\"path\":\"out/edge.txt\",\"bytes\":2310,\"sha256\":\"9f0c\"}],"
            "\"diagnostics\":[\"no \xEF\xBF\xBD letter\"],\"key\":{\"options\":\"41b8\",\"program\":\"c2d0\","
            "\"messages\":\"77aa\",\"drawing\":[\"e3b0\",\"11aa\"]}}\n");
}

TEST_F(JournalTest, PassesOverMembersThatItDoesntKnow) {
  std::string line = lineOf(someRecord());
  line.insert(1, "\"line\":12,\"host\":\"node7\",");
  EXPECT_TRUE(recordOf(line).has_value());
}

TEST_F(JournalTest, IsReadWhereverItIsCut) {
  add(JournalWriter::Begin::Anew, 1);
  add(JournalWriter::Begin::GoOn, 2);
  const std::string whole = fileBytes(path_);
  const std::size_t first = whole.find('\n') + 1;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    write(whole.substr(0, size));
    JournalReading reading;
    const std::vector<std::size_t> read = lines(&reading);
    // A line that lacks nothing but its end is whole.
    const std::size_t expected = (size + 1 >= first ? 1U : 0U) + (size + 1 >= whole.size() ? 1U : 0U);
    ASSERT_EQ(read.size(), expected) << size;
    EXPECT_EQ(reading.isCut, size != 0 && size != first) << size;
  }
}

TEST_F(JournalTest, GoesOnBehindACutLine) {
  add(JournalWriter::Begin::Anew, 1);
  add(JournalWriter::Begin::GoOn, 2);
  const std::string whole = fileBytes(path_);
  write(whole.substr(0, whole.size() - 20));
  add(JournalWriter::Begin::GoOn, 3);
  add(JournalWriter::Begin::GoOn, 4);
  JournalReading reading;
  EXPECT_THAT(lines(&reading), ElementsAre(1, 3, 4));
  EXPECT_EQ(reading.lines, 4U);
  EXPECT_THAT(reading.unreadable, ElementsAre(UnreadableLine{2, 2}));
  EXPECT_FALSE(reading.isCut);
}

TEST_F(JournalTest, KnowsTheJobOfACutLineWhereItsNumberIsWhole) {
  struct Row {
    const char* cut;
    std::optional<std::size_t> jobLine;
  };
  const std::vector<Row> table{
      {"{", std::nullopt}, {"{\"line\":1", std::nullopt}, {"{\"line\":12,", 12}, {"{\"line\":12,\"comm", 12}};
  for (const Row& row : table) {
    add(JournalWriter::Begin::Anew, 1);
    std::ofstream(path_, std::ios::app) << row.cut;
    JournalReading reading;
    EXPECT_THAT(lines(&reading), ElementsAre(1));
    EXPECT_THAT(reading.unreadable, ElementsAre(UnreadableLine{2, row.jobLine})) << row.cut;
  }
}

TEST_F(JournalTest, GoesOnBehindACutThatTookNothingButTheEnd) {
  add(JournalWriter::Begin::Anew, 1);
  const std::string whole = fileBytes(path_);
  write(whole.substr(0, whole.size() - 1));
  add(JournalWriter::Begin::GoOn, 2);
  EXPECT_THAT(lines(), ElementsAre(1, 2));
}

TEST_F(JournalTest, BeginsAnew) {
  add(JournalWriter::Begin::Anew, 1);
  add(JournalWriter::Begin::Anew, 2);
  EXPECT_THAT(lines(), ElementsAre(2));
}

TEST_F(JournalTest, ReadsLinesOfAnyLength) {
  JobRecord record = someRecord();
  record.diagnostics.assign(20'000, std::string(60, 'x'));
  JournalWriter writer(path_, JournalWriter::Begin::Anew);
  for (std::size_t line = 1; line <= 3; ++line) {
    record.line = line;
    writer.add(record);
  }
  const std::vector<JobRecord> records = recordsIn(path_);
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(records.back().line, 3U);
  EXPECT_EQ(records.back().diagnostics, record.diagnostics);
}

}  // namespace
}  // namespace lvx::journal
