// The stand-in's questions to the system, as Windows answers them.
#include <array>
#include <filesystem>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <windows.h>

#include "standin_platform/append_file.h"
#include "standin_platform/atomic_file.h"
#include "standin_platform/child_process.h"
#include "standin_platform/dynamic_library.h"
#include "standin_platform/file_stamp.h"
#include "standin_platform/folder_mark.h"
#include "standin_platform/input_file.h"
#include "standin_platform/interruption.h"
#include "standin_platform/isolated_work.h"
#include "standin_platform/program_arguments.h"
#include "standin_platform/program_file.h"
#include "standin_platform/scratch_folder.h"
#include "standin_platform/sink_stream.h"
#include "standin_platform/temporary_stream.h"
#include "standin_platform/text_converter.h"
#include "support/run_program.h"
#include "support/test_record.h"

namespace lvx::standin_platform {
namespace {

namespace fs = std::filesystem;

using Problem = AtomicFileError::Problem;

class WindowsFiles : public testing::Test {
 protected:
  void put(const fs::path& name, const std::string& bytes) const {
    std::ofstream(folder_.path() / name, std::ios::binary) << bytes;
  }
  [[nodiscard]] std::string get(const fs::path& name) const { return test::fileBytes(folder_.path() / name); }
  [[nodiscard]] std::size_t fileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  test::TemporaryFolder folder_;
};

/// What keeps `path` from being written; empty where it was.
std::string whyNotWritten(const fs::path& path, AtomicFilePolicy policy = {}) {
  try {
    AtomicFile file(path, policy);
    file.write("new");
    file.commit();
    return {};
  } catch (const AtomicFileError& error) {
    return error.what();
  }
}

TEST_F(WindowsFiles, AFileAppearsWholeOrNotAtAll) {
  put("road.txt", "old");
  {
    AtomicFile file(folder_ / "road.txt", {.flushesToDisk = true});
    file.write("new");
    EXPECT_EQ(get("road.txt"), "old");
    file.settle();
    EXPECT_EQ(get("road.txt"), "old");
    file.commit();
  }
  EXPECT_EQ(get("road.txt"), "new");
  {
    AtomicFile file(folder_ / "road.txt");
    file.write("given up");
  }
  EXPECT_EQ(get("road.txt"), "new");
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(WindowsFiles, NarrowNamesAreUtf8) {
  struct Row {
    std::string narrow;
    std::wstring wide;
    std::string back;
  };
  const std::vector<Row> table{{"Stra\xC3\x9F"
                                "e",
                                L"Stra\u00DFe",
                                "Stra\xC3\x9F"
                                "e"},
                               {"\xD0\x96\xE2\x82\xAC", L"\u0416\u20AC", "\xD0\x96\xE2\x82\xAC"},
                               {"\xF0\x9F\x9B\xA3", L"\xD83D\xDEE3", "\xF0\x9F\x9B\xA3"},
                               {"a\xFF"
                                "b\xC3",
                                L"a\uFFFD"
                                L"b\uFFFD",
                                "a\xEF\xBF\xBD"
                                "b\xEF\xBF\xBD"},
                               {"\xC0\xAF", L"\uFFFD\uFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},
                               {"\xED\xB3\xBF", L"\uFFFD\uFFFD\uFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"}};
  for (const Row& row : table) {
    EXPECT_TRUE(fs::path(row.narrow).native() == row.wide) << row.narrow;
    EXPECT_EQ(fs::path(row.narrow).string(), row.back);
  }
  const std::string whole = (folder_.path() / L"Stra\u00DFe \u0416.txt").string();
  EXPECT_EQ(whyNotWritten(fs::path(whole)), "");
  EXPECT_NE(GetFileAttributesW((folder_.path() / L"Stra\u00DFe \u0416.txt").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(WindowsFiles, NamesThatWindowsKeepsForItselfAreRefused) {
  struct Row {
    const wchar_t* name;
    const char* words;
  };
  const Row table[] = {
      {L"CON", "means a device"},         {L"nul.txt", "means a device"},       {L"Com1.xls", "means a device"},
      {L"LPT\u00B9", "means a device"},   {L"aux ", "means a device"},          {L"road.", "end with a dot"},
      {L"road ", "end with a dot"},       {L"CON\\road.txt", "means a device"}, {L"a:b.txt", "may hold none of"},
      {L"what?.txt", "may hold none of"}, {L"ro\"ad.txt", "may hold none of"},  {L"road\t.txt", "may hold none of"}};
  for (const Row& row : table) {
    // Put together as text: what looks like a drive stays a part of the path.
    const fs::path path = folder_.path().native() + L"\\" + row.name;
    EXPECT_NE(whyNotWritten(path).find(row.words), std::string::npos) << path;
    EXPECT_NE(whyNotWritten(path, {.writesInPlace = true}).find(row.words), std::string::npos) << path;
    EXPECT_THROW(InputFile{path}, std::system_error) << path;
    EXPECT_THROW(AppendFile(path, false), std::system_error) << path;
  }
  for (const wchar_t* name : {L"CONTOUR.txt", L"COM10.txt", L"com.txt", L".road", L"road..txt", L"Straße Ж 道.txt"})
    EXPECT_EQ(whyNotWritten(folder_.path() / name), "") << fs::path(name);
  EXPECT_EQ(fileCount(), 6U);
}

TEST_F(WindowsFiles, PathsMayBeLongAndHaveEitherMark) {
  fs::path deep = folder_.path();
  for (int i = 0; i < 6; ++i) {
    deep /= std::string(60, 'x');
    ASSERT_NE(CreateDirectoryW((L"\\\\?\\" + deep.native()).c_str(), nullptr), 0) << deep;
  }
  const fs::path file = deep / "road.txt";
  ASSERT_GT(file.native().size(), 300U);
  EXPECT_EQ(whyNotWritten(file), "");
  EXPECT_EQ(InputFile(file).readAll(), "new");
  EXPECT_EQ(stampOf(file)->size, 3U);
  std::string slashes = file.string();
  for (char& c : slashes)
    if (c == '\\') c = '/';
  EXPECT_EQ(InputFile(slashes).readAll(), "new");
  EXPECT_TRUE(leadToOneFile(slashes, file));
  EXPECT_EQ(lastFolderMark(std::string_view("a/b\\c")), 3U);
  EXPECT_EQ(lastFolderMark(std::wstring_view(L"a\\b/c")), 3U);
  EXPECT_EQ(lastFolderMark(std::string_view("road")), std::string_view::npos);
  EXPECT_NE(DeleteFileW((L"\\\\?\\" + file.native()).c_str()), 0);
  for (; deep != folder_.path(); deep = deep.parent_path())
    EXPECT_NE(RemoveDirectoryW((L"\\\\?\\" + deep.native()).c_str()), 0) << deep;
}

TEST_F(WindowsFiles, WhatOthersHoldOrMarkedReadOnlyStaysAsItWas) {
  put("held.txt", "old");
  put("marked.txt", "old");
  SetFileAttributesW((folder_ / "marked.txt").c_str(), FILE_ATTRIBUTE_READONLY);
  const HANDLE held =
      CreateFileW((folder_ / "held.txt").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_NE(whyNotWritten(folder_ / "held.txt").find("the file can't be written: "), std::string::npos);
  EXPECT_EQ(whyNotWritten(folder_ / "marked.txt"), "the file can't be written: Permission denied");
  CloseHandle(held);
  EXPECT_EQ(get("held.txt"), "old");
  EXPECT_EQ(get("marked.txt"), "old");
  EXPECT_EQ(fileCount(), 2U);
  EXPECT_EQ(whyNotWritten(folder_ / "held.txt"), "");
  SetFileAttributesW((folder_ / "marked.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(whyNotWritten(folder_ / "nowhere" / "road.txt"), "the folder takes no new file: No such file or directory");
  EXPECT_EQ(whyNotWritten(folder_.path()), "the target is not a regular file");
  EXPECT_EQ(whyNotWritten(folder_.path(), {.writesInPlace = true}), "the file can't be written: Is a directory");
}

TEST_F(WindowsFiles, AFileThatThisProgramReadsIsReplacedAllTheSame) {
  put("road.xml", "old");
  {
    InputFile reading(folder_ / "road.xml");
    EXPECT_EQ(whyNotWritten(folder_ / "road.xml", {.refusesChangedTarget = true, .flushesToDisk = true}), "");
    EXPECT_EQ(get("road.xml"), "new");
    EXPECT_EQ(reading.readAll(), "old");
  }
  // The old one leaves with its last reader.
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(WindowsFiles, ATargetThatChangedMeanwhileIsTold) {
  put("road.txt", "old");
  AtomicFile file(folder_ / "road.txt", {.refusesChangedTarget = true});
  file.write("new");
  put("road.txt", "somebody else's");
  try {
    file.commit();
    FAIL() << "it was written";
  } catch (const AtomicFileError& error) {
    EXPECT_EQ(error.problem(), Problem::TargetChanged);
  }
  EXPECT_EQ(get("road.txt"), "somebody else's");
}

TEST_F(WindowsFiles, LeftOversOfDeadRunsGoAndOpenOnesStay) {
  put(".lvx-save-1-1", "dead");
  fs::create_directory(folder_ / ".lvx-save-1-2");
  put(".lvx-save-1-2/part", "dead");
  put(".lvx-save-1-3", "alive");
  put(".lvx-save-notes", "a user's");
  const HANDLE alive =
      CreateFileW((folder_ / ".lvx-save-1-3").c_str(), GENERIC_WRITE,
                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(alive, INVALID_HANDLE_VALUE);
  fs::path scratch;
  {
    const ScratchFolder folder(folder_.path());
    scratch = folder.path();
    std::ofstream(scratch / "part") << "x";
    EXPECT_TRUE(fs::exists(scratch / "part"));
  }
  EXPECT_FALSE(fs::exists(scratch));
  CloseHandle(alive);
  EXPECT_FALSE(fs::exists(folder_ / ".lvx-save-1-1"));
  EXPECT_FALSE(fs::exists(folder_ / ".lvx-save-1-2"));
  EXPECT_TRUE(fs::exists(folder_ / ".lvx-save-1-3"));
  EXPECT_TRUE(fs::exists(folder_ / ".lvx-save-notes"));
}

TEST_F(WindowsFiles, APlaceReadLeavesTheOtherAlone) {
  put("road.txt", "0123456789");
  InputFile file(folder_ / "road.txt");
  EXPECT_EQ(file.kind(), InputFile::Kind::Regular);
  std::array<char, 4> bytes{};
  EXPECT_EQ(file.read(bytes.data(), 2), 2U);
  EXPECT_EQ(file.readAt(8, bytes.data(), 4), 2U);
  EXPECT_EQ(std::string(bytes.data(), 2), "89");
  EXPECT_EQ(file.readAll(), "23456789");
  EXPECT_EQ(InputFile(folder_.path()).kind(), InputFile::Kind::Folder);
  EXPECT_THROW((void)InputFile(folder_.path()).readAll(), std::system_error);
}

TEST_F(WindowsFiles, AFileGrowsAtItsEnd) {
  const fs::path path = folder_ / "journal.jsonl";
  {
    AppendFile first(path, false);
    AppendFile second(path, false);
    EXPECT_TRUE(first.endsWithLine());
    first.append("one\n");
    second.append("two");
    first.append(" three");
    EXPECT_FALSE(second.endsWithLine());
  }
  EXPECT_EQ(get("journal.jsonl"), "one\ntwo three");
  AppendFile(path, true).append("\n");
  EXPECT_EQ(get("journal.jsonl"), "\n");
}

class CountingSink final : public ByteSink {
 public:
  explicit CountingSink(std::string& bytes) : bytes_(bytes) {}
  [[nodiscard]] bool write(std::string_view bytes) noexcept override {
    bytes_ += bytes;
    return true;
  }
  [[nodiscard]] bool close() noexcept override {
    bytes_ += "|closed";
    return true;
  }

 private:
  std::string& bytes_;
};

TEST(WindowsStreams, AnObjectGetsTheBytesWhenItsStreamIsClosed) {
  std::string bytes;
  std::FILE* const stream = openSinkStream(std::make_unique<CountingSink>(bytes));
  ASSERT_NE(stream, nullptr);
  std::fputs("a\nb", stream);
  EXPECT_EQ(closeSinkStream(stream), 0);
  EXPECT_EQ(bytes, "a\nb|closed");

  const Stream temporary = openTemporaryStream();
  ASSERT_NE(temporary, nullptr);
  std::fputs("line\n", temporary.get());
  EXPECT_EQ(placeIn(temporary.get()), 5U);
}

TEST(WindowsWork, IsCaughtInWhateverWayItEnds) {
  using End = IsolatedOutcome::End;
  EXPECT_EQ(runIsolated([] {}).end, End::Done);
  EXPECT_EQ(runIsolated([] { throw std::bad_alloc(); }).end, End::ShortMemory);
  const IsolatedOutcome failed = runIsolated([] { throw std::runtime_error("no place"); });
  EXPECT_EQ(failed.end, End::Failed);
  EXPECT_EQ(failed.words, "no place");
  int asked = 0;
  EXPECT_THROW((void)runIsolated([] { Sleep(300); },
                                 [&asked] {
                                   if (++asked == 2) throw std::runtime_error("given up");
                                 }),
               std::runtime_error);
}

TEST(WindowsLibraries, WhatIsNoLibraryAndWhatLacksOneAreTold) {
  const test::TemporaryFolder folder;
  const auto problemOf = [](const fs::path& file) {
    try {
      const DynamicLibrary library(file);
    } catch (const DynamicLibraryError& error) {
      return error;
    }
    throw std::logic_error("it was loaded");
  };
  std::ofstream(folder / "none.vmx", std::ios::binary) << std::string(4096, 'x');
  EXPECT_EQ(problemOf(folder / "none.vmx").problem(), DynamicLibraryError::Problem::WrongFormat);
  EXPECT_EQ(problemOf(folder / "missing.vmx").problem(), DynamicLibraryError::Problem::Other);
  // The module without its companion beside it.
  fs::copy_file(LVX_MODULE, folder / "module.vmx");
  const DynamicLibraryError lonely = problemOf(folder / "module.vmx");
  EXPECT_EQ(lonely.problem(), DynamicLibraryError::Problem::MissingLibrary) << lonely.what();
  EXPECT_EQ(lonely.missing(), "LVX_MIRELLIB.vmx");
  const DynamicLibrary whole(LVX_MODULE);
  EXPECT_NE(whole.find("vnrxEntryPoint"), nullptr);
  EXPECT_EQ(whole.find("vnrxNothing"), nullptr);
}

/// This program once more, as one of its helpers below.
ChildResult runHelper(const std::string& name, std::vector<std::string> arguments = {}) {
  ChildProcess child;
  arguments.insert(arguments.begin(), {"--helper", name});
  return child.run(programFile().value(), arguments);
}

TEST(WindowsProcesses, ArgumentsAndStreamsArriveAsTheyAre) {
  const std::vector<std::string> arguments{"two words", "\"quoted\"",  "",      "\\", "a\\\\\"b",
                                           "end\\ ",    "Straße Ж 道", "%PATH%"};
  std::string expected;
  for (const std::string& argument : arguments) expected += argument + "|\n";
  const ChildResult result = runHelper("arguments", arguments);
  EXPECT_EQ(result.exitCode, 7) << result.errors;
  EXPECT_EQ(result.output, expected);
  EXPECT_EQ(result.errors, "nothing to read\n");
  ChildProcess child;
  EXPECT_EQ(child.run("nowhere\\program.exe", {}).exitCode, 127);
}

TEST(WindowsProcesses, AreInterruptedOnceAsAFlagThenEnded) {
  EXPECT_EQ(runHelper("interrupted").output, "flag\n");
  EXPECT_EQ(runHelper("interrupted").exitCode, 143);
}

TEST(WindowsTexts, AreConvertedAsTheInternetNamesThem) {
  using namespace std::string_view_literals;
  struct Row {
    const char* encoding;
    std::string_view bytes;
    const char* text;
  };
  const Row table[] = {{"ISO-8859-2", "\xF8"sv, "ř"},     {"windows-1252", "\x80"sv, "€"},
                       {"UTF-16LE", "a\0\xE4\0"sv, "aä"}, {"UTF-16BE", "\xD8\x3D\xDE\x00"sv, "😀"},
                       {"SHIFT_JIS", "\x93\xB9"sv, "道"}, {"KOI8-R", "\xD6"sv, "ж"},
                       {"UTF-32LE", "\xE4\0\0\0"sv, "ä"}, {"GBK", "\xB5\xC0"sv, "道"}};
  for (const Row& row : table) {
    TextConverter reading(row.encoding);
    TextConverter writing("UTF-8", row.encoding);
    ASSERT_TRUE(reading.isKnown() && writing.isKnown()) << row.encoding;
    std::string text;
    std::string bytes;
    std::size_t done = 0;
    EXPECT_EQ(reading.convert(row.bytes, text, done), TextConverter::End::Complete) << row.encoding;
    EXPECT_EQ(text, row.text) << row.encoding;
    EXPECT_EQ(writing.convert(row.text, bytes, done), TextConverter::End::Complete) << row.encoding;
    EXPECT_EQ(bytes, row.bytes) << row.encoding;
  }
  TextConverter latin("UTF-8", "ISO-8859-1");
  std::string bytes;
  std::size_t done = 0;
  EXPECT_EQ(latin.convert("aЖ", bytes, done), TextConverter::End::Invalid);
  EXPECT_EQ(done, 1U);
}

}  // namespace

/// What this program does in the place of its tests, when one of them starts it.
int runAsHelper(const std::vector<std::string>& words) {
  if (words[2] == "arguments") {
    for (std::size_t i = 3; i < words.size(); ++i) std::printf("%s|\n", words[i].c_str());
    if (std::getchar() == EOF) std::fputs("nothing to read\n", stderr);
    return 7;
  }
  watchInterruption();
  const auto interrupt = [] {
    const std::wstring name = L"Local\\lvx-interruption-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE wish = OpenEventW(EVENT_MODIFY_STATE, FALSE, name.c_str());
    SetEvent(wish);
  };
  interrupt();
  for (int i = 0; i < 200 && !isInterrupted(); ++i) Sleep(10);
  if (isInterrupted()) std::puts("flag");
  std::fflush(stdout);
  interrupt();
  Sleep(5000);
  return 0;
}

}  // namespace lvx::standin_platform

int main(int argc, char** argv) {
  const std::vector<std::string> words = lvx::standin_platform::programArguments(argc, argv);
  if (words.size() > 2 && words[1] == "--helper") {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    return lvx::standin_platform::runAsHelper(words);
  }
  testing::InitGoogleTest(&argc, argv);
  lvx::test::TestRecord::keepIfWanted();
  return RUN_ALL_TESTS();
}
