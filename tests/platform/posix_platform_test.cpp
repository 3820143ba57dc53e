#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system_platform.h"
#include "platform/utf8.h"

namespace lvx::platform {
namespace {

/// A folder of the test's own, gone at its end.
class Folder {
 public:
  Folder() : path_((std::filesystem::temp_directory_path() / "lvx-platform-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the test");
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  [[nodiscard]] CString file(const CString& name) const { return fromUtf8(path_) + L"/" + name; }

 private:
  std::string path_;
};

/// Sets the time zone for a scope.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* before = std::getenv("TZ")) before_ = before;
    setenv("TZ", zone, 1);
  }
  ~TimeZone() {
    if (before_)
      setenv("TZ", before_->c_str(), 1);
    else
      unsetenv("TZ");
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> before_;
};

void write(SystemPlatform& platform, const CString& path, const char* bytes) {
  const FileHandle stream = platform.openFile(path, "wb");
  ASSERT_TRUE(stream);
  std::fputs(bytes, stream.get());
}

std::string read(SystemPlatform& platform, const CString& path) {
  const FileHandle stream = platform.openFile(path, "rb");
  std::string bytes;
  if (!stream) return "(no file)";
  for (int byte = std::fgetc(stream.get()); byte != EOF; byte = std::fgetc(stream.get()))
    bytes += static_cast<char>(static_cast<unsigned char>(byte));
  return bytes;
}

// ---------------------------------------------------------------- files

TEST(PosixFiles, AreWrittenReadSeenAndRemoved) {
  const Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"Stra\u00DFe \u0416 \U0001F6E3 50%.txt");
  EXPECT_FALSE(platform.exists(path));
  EXPECT_FALSE(platform.openFile(path, "rb"));
  EXPECT_FALSE(platform.removeFile(path));
  write(platform, path, "a\r\nb");
  EXPECT_TRUE(platform.exists(path));
  EXPECT_EQ(read(platform, path), "a\r\nb");
  EXPECT_TRUE(platform.removeFile(path));
  EXPECT_FALSE(platform.exists(path));
}

TEST(PosixFiles, KeepsANameThatIsNotUtf8) {
  const Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(
      L"Stra\xDC\xDF"
      L"e.txt");
  const CString odd =
      folder.file(fromUtf8("Stra\xDF"
                           "e.txt"));
  write(platform, odd, "x");
  EXPECT_FALSE(platform.exists(path));
  EXPECT_TRUE(std::filesystem::exists(toUtf8(odd)));
  EXPECT_EQ(read(platform, odd), "x");
}

TEST(PosixFiles, AFolderIsThereButIsNoFile) {
  const Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"");
  EXPECT_TRUE(platform.exists(path));
  EXPECT_FALSE(platform.openFile(path, "rb"));
  EXPECT_FALSE(platform.openFile(path, "wb"));
  EXPECT_FALSE(platform.removeFile(path));
  EXPECT_TRUE(platform.exists(path));
}

TEST(PosixFiles, ANameWithAZeroMeansNoOtherFile) {
  const Folder folder;
  SystemPlatform platform;
  write(platform, folder.file(L"a"), "x");
  const CString path = folder.file(CString(L"a\0b", 3));
  EXPECT_FALSE(platform.openFile(path, "wb"));
  EXPECT_FALSE(platform.exists(path));
  EXPECT_FALSE(platform.removeFile(path));
  EXPECT_EQ(read(platform, folder.file(L"a")), "x");
}

TEST(PosixFiles, NothingStandsUnderTheEmptyName) {
  SystemPlatform platform;
  EXPECT_FALSE(platform.exists(L""));
  EXPECT_FALSE(platform.openFile(L"", "wb"));
  EXPECT_FALSE(platform.removeFile(L""));
}

TEST(PosixFiles, TheLastFolderMarkIsASlashAndABackslashALetter) {
  const SystemPlatform platform;
  EXPECT_EQ(platform.lastFolderMark(L"road"), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L""), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L"/road"), 0U);
  EXPECT_EQ(platform.lastFolderMark(L"out/road"), 3U);
  EXPECT_EQ(platform.lastFolderMark(L"out\\road"), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L"a/b\\c"), 1U);
  EXPECT_EQ(platform.lastFolderMark(L"a\\b/"), 3U);
}

// ---------------------------------------------------------------- time

void expectTime(const std::optional<CalendarTime>& time, const std::array<int, 6>& yearToSecond) {
  ASSERT_TRUE(time.has_value());
  EXPECT_THAT((std::array{time->year, time->month, time->day, time->hour, time->minute, time->second}),
              testing::ElementsAreArray(yearToSecond));
}

TEST(PosixTime, AFixedMomentStandsForNowAndIsShownInUtc) {
  const TimeZone zone("TST-5:30");
  SystemPlatform platform({.fixedMoment = 1772323199});
  EXPECT_EQ(platform.now(), 1772323199);
  expectTime(platform.calendarTime(platform.now()), {2026, 2, 28, 23, 59, 59});
}

TEST(PosixTime, TheSystemsClockIsShownInTheUsersZone) {
  const TimeZone zone("TST-5:30");
  SystemPlatform platform;
  const std::int64_t before = std::time(nullptr);
  const std::int64_t now = platform.now();
  EXPECT_GE(now, before);
  EXPECT_LE(now, std::time(nullptr));
  expectTime(platform.calendarTime(1772323199), {2026, 3, 1, 5, 29, 59});
}

TEST(PosixTime, TheCalendarReachesFrom1970To3000) {
  SystemPlatform platform({.fixedMoment = 0});
  expectTime(platform.calendarTime(0), {1970, 1, 1, 0, 0, 0});
  expectTime(platform.calendarTime(951782400), {2000, 2, 29, 0, 0, 0});
  expectTime(platform.calendarTime(32535215999), {3000, 12, 31, 23, 59, 59});
  EXPECT_FALSE(platform.calendarTime(-1));
  EXPECT_FALSE(platform.calendarTime(32535216000));
  EXPECT_FALSE(platform.calendarTime(std::numeric_limits<std::int64_t>::max()));
  EXPECT_FALSE(platform.calendarTime(std::numeric_limits<std::int64_t>::min()));
}

// ---------------------------------------------------------------- registry

TEST(PosixRegistry, HoldsTheReleaseAndNothingElse) {
  SystemPlatform platform({.release = L"R24.1"});
  CString text = L"before";
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin", L"CurVer", text), RegistryAnswer::NoKey);
  EXPECT_EQ(platform.registryText(L"", L"", text), RegistryAnswer::NoKey);
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin\\Vantor", L"Other", text), RegistryAnswer::NoValue);
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin\\Vantor", L"", text), RegistryAnswer::NoValue);
  EXPECT_EQ(text, L"before");
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin\\Vantor", L"CurVer", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24.1");
}

TEST(PosixRegistry, NamesIgnoreTheirCase) {
  SystemPlatform platform;
  CString text;
  EXPECT_EQ(platform.registryText(L"SOFTWARE\\kelbrin\\VANTOR", L"curver", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24.3");
}

TEST(PosixRegistry, AnEmptyReleaseIsAValueThatIsNotThere) {
  SystemPlatform platform({.release = L""});
  CString text = L"before";
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin\\Vantor", L"CurVer", text), RegistryAnswer::NoValue);
  EXPECT_EQ(text, L"before");
}

// ---------------------------------------------------------------- message code page

TEST(MessageCodePage, Windows1252ReadsEveryByteAndItsHolesAsThemselves) {
  SystemPlatform platform;
  std::string bytes;
  for (int value = 0; value < 256; ++value) bytes += static_cast<char>(static_cast<unsigned char>(value));
  const CString text = platform.widenAnsi(bytes);
  ASSERT_EQ(text.size(), 256U);
  constexpr std::wstring_view kUpperControls =
      L"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D\u017D\x8F"
      L"\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x9D\u017E\u0178";
  for (std::size_t value = 0; value < 256; ++value) {
    const wchar_t expected = value >= 0x80 && value < 0xA0 ? kUpperControls[value - 0x80] : static_cast<wchar_t>(value);
    EXPECT_EQ(text[value], expected) << value;
  }
}

TEST(MessageCodePage, MayBeAnother) {
  SystemPlatform platform({.messageCodePage = "WINDOWS-1251"});
  EXPECT_EQ(platform.widenAnsi("\xCE\xF1\xFC 1"), L"\u041E\u0441\u044C 1");
}

TEST(MessageCodePage, MustBeKnownAndOfSingleBytes) {
  struct Row {
    const char* name;
  };
  for (const Row& row :
       {Row{"UTF-8"}, Row{"UTF-16"}, Row{"UTF-7"}, Row{"SHIFT_JIS"}, Row{"GB18030"}, Row{"ISO-2022-JP"},
        Row{"no such page"}, Row{""}, Row{"WINDOWS-1252//IGNORE"}, Row{"WINDOWS-1252//TRANSLIT"}}) {
    try {
      const SystemPlatform platform({.messageCodePage = row.name});
      ADD_FAILURE() << row.name << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(row.name));
    }
  }
}

// ---------------------------------------------------------------- narrow text

TEST(NarrowText, ByDefaultEachLatinOneCharacterIsItsByte) {
  SystemPlatform platform;
  CString text;
  std::string expected;
  for (int value = 1; value < 256; ++value) {
    text += static_cast<wchar_t>(value);
    expected += static_cast<char>(static_cast<unsigned char>(value));
  }
  EXPECT_EQ(platform.narrow(text), expected);
  EXPECT_EQ(platform.narrow(L""), "");
}

TEST(NarrowText, EndsAtTheFirstCharacterBeyond) {
  SystemPlatform platform;
  EXPECT_EQ(platform.narrow(L"100 \u20AC incl."), "100 ");
  EXPECT_EQ(platform.narrow(L"\u0100"
                            L"a"),
            "");
  EXPECT_EQ(platform.narrow(L"a\U0001F6E3"), "a");
  EXPECT_EQ(platform.narrow(CString(L"a\0b", 3)), "a");
  EXPECT_EQ(platform.narrow(CString(1, static_cast<wchar_t>(-1))), "");
}

TEST(NarrowText, OfSevenBitsHasNoByteAboveThem) {
  for (const char* name : {"ASCII", "US-ASCII"}) {
    SystemPlatform platform({.reportCodePage = name});
    for (wchar_t character = 1; character <= 0x17F; ++character)
      for (const char byte : platform.narrow(CString(1, character)))
        ASSERT_LT(static_cast<unsigned char>(byte), 128U) << name << " " << static_cast<int>(character);
    EXPECT_EQ(platform.narrow(L"Road 1\xE9"), "Road 1");
  }
}

TEST(NarrowText, FollowsAnotherCodePageByItsTable) {
  SystemPlatform platform({.reportCodePage = "WINDOWS-1252"});
  EXPECT_EQ(platform.narrow(L"100 \u20AC \u00FC"), "100 \x80 \xFC");
  // The holes stand for themselves, both ways.
  EXPECT_EQ(platform.narrow(L"\u0081"), "\x81");
  // U+0080 isn't the euro sign's byte.
  EXPECT_EQ(platform.narrow(L"a\u0080"), "a");
  EXPECT_EQ(platform.narrow(L"a\u0416"), "a");
  EXPECT_EQ(platform.narrow(CString(L"a\0b", 3)), "a");
  SystemPlatform cyrillic({.reportCodePage = "WINDOWS-1251"});
  EXPECT_EQ(cyrillic.narrow(L"\u041E\u0441\u044C \u00FC"), "\xCE\xF1\xFC ");
}

TEST(NarrowText, RefusesAReportPageOfSeveralBytes) {
  EXPECT_THROW(SystemPlatform({.reportCodePage = "UTF-8"}), std::invalid_argument);
}

TEST(NarrowText, UndoesTheMessagePageByteByByte) {
  for (const char* name : {"WINDOWS-1252", "WINDOWS-1251", "WINDOWS-1250", "ISO-8859-15", "IBM850", "KOI8-R"}) {
    SystemPlatform platform({.messageCodePage = name, .reportCodePage = name});
    for (int value = 1; value < 256; ++value) {
      const std::string byte(1, static_cast<char>(static_cast<unsigned char>(value)));
      EXPECT_EQ(platform.narrow(platform.widenAnsi(byte)), byte) << name << " " << value;
    }
  }
}

// ---------------------------------------------------------------- file names as UTF-8

TEST(Utf8, EncodesEveryLength) {
  EXPECT_EQ(toUtf8(L"a\u00E4\u20AC\U0001F6E3"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9B\xA3");
  EXPECT_EQ(fromUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9B\xA3"), L"a\u00E4\u20AC\U0001F6E3");
  EXPECT_EQ(toUtf8(L"\x7F\x80\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
            "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8, WhatIsNoCharacterBecomesTheReplacement) {
  const std::string replacement = "\xEF\xBF\xBD";
  for (const wchar_t odd : {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDC7F), static_cast<wchar_t>(0xDFFF),
                            static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)})
    EXPECT_EQ(toUtf8(CString(1, odd)), replacement) << static_cast<long>(odd);
}

TEST(Utf8, BrokenBytesBecomeLoneSurrogates) {
  struct Row {
    const char* bytes;
    std::size_t characters;
  };
  // A stray tail, a lone head, cut sequences, overlong forms, surrogates, beyond the last character.
  for (const Row& row : {Row{"\x80", 1}, Row{"\xC3", 1}, Row{"\xE2\x82", 2}, Row{"\xF0\x9F\x9B", 3}, Row{"\xC0\xAF", 2},
                         Row{"\xE0\x80\xAF", 3}, Row{"\xF0\x80\x80\xAF", 4}, Row{"\xED\xA0\x80", 3},
                         Row{"\xED\xB2\x80", 3}, Row{"\xF4\x90\x80\x80", 4}, Row{"\xFF\xFE", 2}}) {
    const CString text = fromUtf8(row.bytes);
    EXPECT_EQ(text.size(), row.characters) << testing::PrintToString(row.bytes);
    for (const wchar_t character : text) EXPECT_TRUE(character >= 0xDC80 && character <= 0xDCFF);
    EXPECT_EQ(toUtf8(text), row.bytes);
  }
}

TEST(Utf8, EveryByteSequenceSurvivesTheWayThereAndBack) {
  constexpr unsigned kSeed = 20260311;
  std::mt19937 random(kSeed);
  // Heads and tails of sequences come often, so that broken and whole ones meet.
  constexpr std::array<unsigned char, 12> kCommon{0x00, 'a',  0x80, 0xBF, 0xC3, 0xE2,
                                                  0x82, 0xAC, 0xF0, 0x9F, 0xED, 0xB2};
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    for (unsigned length = random() % 12; length > 0; --length)
      bytes += static_cast<char>(random() % 4 == 0 ? static_cast<unsigned char>(random() % 256)
                                                   : kCommon[random() % kCommon.size()]);
    ASSERT_EQ(toUtf8(fromUtf8(bytes)), bytes) << "seed " << kSeed << ", round " << round;
  }
}

}  // namespace
}  // namespace lvx::platform
