// Files, time, texts and the registry as the module meets them on Windows.
#include "platform/system_platform.h"

#include <array>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// clang-format off
#include <windows.h>
// clang-format on

namespace lvx::platform {
namespace {

/// What Windows itself answers, without anything in its place.
PlatformSettings systemsOwn() { return {.release = std::nullopt, .messageCodePage = "", .reportCodePage = ""}; }

/// A folder of the test's own, gone at its end with all that the tests put there.
class Folder {
 public:
  Folder() {
    std::array<wchar_t, MAX_PATH> temporary{};
    GetTempPathW(static_cast<DWORD>(temporary.size()), temporary.data());
    path_ = CString(temporary.data()) + L"lvx-platform-" + std::to_wstring(GetCurrentProcessId());
    if (CreateDirectoryW(path_.c_str(), nullptr) == FALSE) throw std::runtime_error("no folder for the test");
  }
  ~Folder() {
    for (auto file = files_.rbegin(); file != files_.rend(); ++file) {
      SetFileAttributesW(file->c_str(), FILE_ATTRIBUTE_NORMAL);
      if (DeleteFileW(file->c_str()) == FALSE) RemoveDirectoryW(file->c_str());
    }
    RemoveDirectoryW(path_.c_str());
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  CString file(const CString& name) {
    files_.push_back(L"\\\\?\\" + path_ + L"\\" + name);
    return path_ + L"\\" + name;
  }
  [[nodiscard]] const CString& path() const { return path_; }

 private:
  CString path_;
  std::vector<CString> files_;
};

void write(Platform& platform, const CString& path, const char* bytes) {
  const FileHandle stream = platform.openFile(path, "wb");
  ASSERT_TRUE(stream);
  std::fputs(bytes, stream.get());
}

std::string read(Platform& platform, const CString& path) {
  const FileHandle stream = platform.openFile(path, "rb");
  std::string bytes;
  if (!stream) return "(no file)";
  for (int byte = std::fgetc(stream.get()); byte != EOF; byte = std::fgetc(stream.get()))
    bytes += static_cast<char>(static_cast<unsigned char>(byte));
  return bytes;
}

// ---------------------------------------------------------------- files

TEST(WindowsFiles, AreWrittenReadSeenAndRemovedByWideNames) {
  Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"Stra\u00DFe \u0416 \U0001F6E3 50%.txt");
  EXPECT_FALSE(platform.exists(path));
  EXPECT_FALSE(platform.openFile(path, "rb"));
  EXPECT_FALSE(platform.removeFile(path));
  write(platform, path, "a\r\nb\nc");
  EXPECT_TRUE(platform.exists(path));
  EXPECT_EQ(read(platform, path), "a\r\nb\nc") << "bytes as they were written";
  EXPECT_TRUE(platform.removeFile(path));
  EXPECT_FALSE(platform.exists(path));
}

TEST(WindowsFiles, AFolderIsThereButIsNoFile) {
  const Folder folder;
  SystemPlatform platform;
  for (const CString& path : {folder.path(), folder.path() + L"\\"}) {
    EXPECT_TRUE(platform.exists(path));
    EXPECT_FALSE(platform.openFile(path, "rb"));
    EXPECT_FALSE(platform.openFile(path, "wb"));
    EXPECT_FALSE(platform.removeFile(path));
    EXPECT_TRUE(platform.exists(path));
  }
}

TEST(WindowsFiles, ANameWithAZeroMeansNoOtherFile) {
  Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"a");
  write(platform, path, "x");
  const CString withZero = path + CString(L"\0b", 2);
  EXPECT_FALSE(platform.openFile(withZero, "wb"));
  EXPECT_FALSE(platform.exists(withZero));
  EXPECT_FALSE(platform.removeFile(withZero));
  EXPECT_EQ(read(platform, path), "x");
}

TEST(WindowsFiles, NothingStandsUnderTheEmptyName) {
  SystemPlatform platform;
  EXPECT_FALSE(platform.exists(L""));
  EXPECT_FALSE(platform.openFile(L"", "wb"));
  EXPECT_FALSE(platform.removeFile(L""));
}

TEST(WindowsFiles, AFileThatMayOnlyBeReadIsNotRemoved) {
  Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"kept.txt");
  write(platform, path, "x");
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(platform.removeFile(path));
  EXPECT_TRUE(platform.exists(path));
}

TEST(WindowsFiles, AFileThatAnotherProgramKeepsToItselfIsNeitherOpenedNorRemoved) {
  Folder folder;
  SystemPlatform platform;
  const CString path = folder.file(L"held.xls");
  write(platform, path, "x");
  const HANDLE held =
      CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(platform.exists(path));
  EXPECT_FALSE(platform.openFile(path, "wb"));
  EXPECT_FALSE(platform.removeFile(path));
  CloseHandle(held);
  EXPECT_EQ(read(platform, path), "x");
}

TEST(WindowsFiles, APathMayBeLongerThanTheSystemsOldLimit) {
  Folder folder;
  SystemPlatform platform;
  CString inside;
  for (int depth = 0; depth < 3; ++depth) {
    inside += (depth == 0 ? L"" : L"\\") + CString(100, static_cast<wchar_t>(L'a' + depth));
    const CString made = folder.file(inside);
    ASSERT_NE(CreateDirectoryW((L"\\\\?\\" + made).c_str(), nullptr), FALSE);
  }
  const CString path = folder.file(inside + L"\\road.txt");
  ASSERT_GT(path.size(), 260U);
  EXPECT_FALSE(platform.exists(path));
  write(platform, path, "far away");
  EXPECT_TRUE(platform.exists(path));
  EXPECT_EQ(read(platform, path), "far away");
  EXPECT_TRUE(platform.removeFile(path));
  EXPECT_FALSE(platform.exists(path));
  // One whose folder isn't there, and one that no system takes.
  EXPECT_FALSE(platform.openFile(folder.path() + L"\\" + CString(300, L'x') + L"\\road.txt", "wb"));
  EXPECT_FALSE(platform.openFile(folder.path() + L"\\" + CString(40000, L'x'), "wb"));
}

TEST(WindowsFiles, TheLastFolderMarkIsABackslash) {
  const SystemPlatform platform;
  EXPECT_EQ(platform.lastFolderMark(L"road"), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L""), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L"C:road"), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L"out/road"), CString::npos);
  EXPECT_EQ(platform.lastFolderMark(L"C:\\road"), 2U);
  EXPECT_EQ(platform.lastFolderMark(L"\\\\server\\share\\road"), 14U);
}

// ---------------------------------------------------------------- time

using Fields = std::array<int, 6>;
Fields fieldsOf(const std::optional<CalendarTime>& time) {
  if (!time) return {};
  return {time->year, time->month, time->day, time->hour, time->minute, time->second};
}

TEST(WindowsTime, AFixedMomentStandsForNowAndIsShownInUtc) {
  SystemPlatform platform({.fixedMoment = 1772323199});
  EXPECT_EQ(platform.now(), 1772323199);
  EXPECT_EQ(fieldsOf(platform.calendarTime(platform.now())), (Fields{2026, 2, 28, 23, 59, 59}));
}

TEST(WindowsTime, TheSystemsClockIsShownInLocalTime) {
  SystemPlatform platform(systemsOwn());
  const std::int64_t before = std::time(nullptr);
  EXPECT_GE(platform.now(), before);
  EXPECT_LE(platform.now(), std::time(nullptr) + 1);

  _putenv("TZ=TST-5:30");
  _tzset();
  const Fields shown = fieldsOf(platform.calendarTime(1772323199));
  _putenv("TZ=");
  _tzset();
  EXPECT_EQ(shown, (Fields{2026, 3, 1, 5, 29, 59}));
}

TEST(WindowsTime, TheCalendarReachesFrom1970To3000) {
  SystemPlatform platform({.fixedMoment = 0});
  EXPECT_EQ(fieldsOf(platform.calendarTime(0)), (Fields{1970, 1, 1, 0, 0, 0}));
  EXPECT_EQ(fieldsOf(platform.calendarTime(951782400)), (Fields{2000, 2, 29, 0, 0, 0}));
  EXPECT_EQ(fieldsOf(platform.calendarTime(32535215999)), (Fields{3000, 12, 31, 23, 59, 59}));
  for (const std::int64_t beyond : {std::int64_t{-1}, std::int64_t{32535216000},
                                    std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()})
    EXPECT_FALSE(platform.calendarTime(beyond)) << beyond;
}

// ---------------------------------------------------------------- registry

/// A key of the test's own below the current user's, gone at its end.
class RegistryKey {
 public:
  RegistryKey() {
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr) != 0)
      throw std::runtime_error("no key for the test");
  }
  ~RegistryKey() {
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path().c_str());
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  static CString path() { return L"Software\\LvxPlatformTest-" + std::to_wstring(GetCurrentProcessId()); }
  /// Exactly these bytes; a REG_SZ needs no end mark to be stored.
  void set(const CString& name, DWORD type, const void* data, std::size_t size) {
    ASSERT_EQ(RegSetValueExW(key_, name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size)), 0);
  }
  void setText(const CString& name, DWORD type, const CString& text, bool endMark = true) {
    set(name, type, text.c_str(), (text.size() + (endMark ? 1 : 0)) * sizeof(wchar_t));
  }

 private:
  HKEY key_ = nullptr;
};

TEST(WindowsRegistry, ReadsAPlainString) {
  RegistryKey key;
  SystemPlatform platform(systemsOwn());
  key.setText(L"CurVer", REG_SZ, L"R24.3");
  key.setText(L"Empty", REG_SZ, L"");
  key.setText(L"\u0416", REG_SZ, L"\u00DF\U0001F6E3");
  CString text;
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"CurVer", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24.3");
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"curver", text), RegistryAnswer::Found) << "in any case";
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"\u0416", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"\u00DF\U0001F6E3");
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"Empty", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"");
}

TEST(WindowsRegistry, TellsAMissingKeyFromAMissingValue) {
  const RegistryKey key;
  SystemPlatform platform(systemsOwn());
  CString text = L"before";
  EXPECT_EQ(platform.registryText(RegistryKey::path() + L"\\None", L"CurVer", text), RegistryAnswer::NoKey);
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"CurVer", text), RegistryAnswer::NoValue);
  EXPECT_EQ(text, L"before");
}

TEST(WindowsRegistry, AValueOfAnotherTypeIsThereButGivesNoText) {
  RegistryKey key;
  SystemPlatform platform(systemsOwn());
  const DWORD number = 24;
  key.set(L"Number", REG_DWORD, &number, sizeof number);
  key.setText(L"Expand", REG_EXPAND_SZ, L"%TEMP%");
  key.setText(L"Multi", REG_MULTI_SZ, CString(L"a\0b\0", 4));
  key.set(L"Bytes", REG_BINARY, "R24", 3);
  CString text = L"before";
  for (const wchar_t* name : {L"Number", L"Expand", L"Multi", L"Bytes"}) {
    EXPECT_EQ(platform.registryText(RegistryKey::path(), name, text), RegistryAnswer::Found);
    EXPECT_EQ(text, L"before");
  }
}

TEST(WindowsRegistry, AStringWithoutItsEndMarkEndsWhereItsBytesEnd) {
  RegistryKey key;
  SystemPlatform platform(systemsOwn());
  key.setText(L"CurVer", REG_SZ, L"R24.3", false);
  key.setText(L"Longer", REG_SZ, CString(L"R24\0rest", 8));
  key.set(L"Odd", REG_SZ, L"R2", 5);  // half a character behind two
  key.set(L"None", REG_SZ, L"", 0);
  CString text;
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"CurVer", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24.3");
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"Longer", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24");
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"Odd", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R2");
  EXPECT_EQ(platform.registryText(RegistryKey::path(), L"None", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"");
}

TEST(WindowsRegistry, ASettingStandsInItsPlace) {
  SystemPlatform platform({.release = L"R24.1"});
  CString text;
  EXPECT_EQ(platform.registryText(L"Software\\Kelbrin\\Vantor", L"CurVer", text), RegistryAnswer::Found);
  EXPECT_EQ(text, L"R24.1");
  EXPECT_EQ(platform.registryText(L"Software", L"CurVer", text), RegistryAnswer::NoKey);
}

// ---------------------------------------------------------------- texts

std::string everyByte(int from) {
  std::string bytes;
  for (int value = from; value < 256; ++value) bytes += static_cast<char>(static_cast<unsigned char>(value));
  return bytes;
}

TEST(WindowsCodePages, TheMessageFilesIsTheAnsiPageOfTheSystem) {
  if (GetACP() != 1252) GTEST_SKIP() << "the ANSI code page is " << GetACP() << ", not 1252";
  SystemPlatform platform(systemsOwn());
  EXPECT_EQ(platform.widenAnsi("Stra\xDF"
                               "e \x80 \x93"),
            L"Stra\u00DFe \u20AC \u201C");
  EXPECT_EQ(platform.widenAnsi(""), L"");
  EXPECT_EQ(platform.widenAnsi(std::string("a\0b", 3)), CString(L"a\0b", 3));
  EXPECT_EQ(platform.widenAnsi(everyByte(0)).size(), 256U);
  SystemPlatform named({.messageCodePage = "WINDOWS-1252"});
  EXPECT_EQ(platform.widenAnsi(everyByte(0)), named.widenAnsi(everyByte(0)));
}

TEST(WindowsCodePages, HaveTheNamesThatTheyHaveElsewhere) {
  struct Row {
    const char* name;
    char byte;
    wchar_t character;
  };
  for (const Row& row :
       {Row{"WINDOWS-1251", '\xCE', L'\u041E'}, Row{"windows-1250", '\xE8', L'\u010D'}, Row{"CP437", '\x84', L'\u00E4'},
        Row{"IBM850", '\x84', L'\u00E4'}, Row{"ISO-8859-15", '\xA4', L'\u20AC'}, Row{"ISO-8859-1", '\x80', L'\x80'},
        Row{"KOI8-R", '\xC1', L'\u0430'}, Row{"WINDOWS-1252", '\x81', L'\x81'}}) {
    SystemPlatform platform({.messageCodePage = row.name, .reportCodePage = row.name});
    EXPECT_EQ(platform.widenAnsi(std::string(1, row.byte)), CString(1, row.character)) << row.name;
    const std::string bytes = everyByte(1);
    for (const char byte : bytes)
      EXPECT_EQ(platform.narrow(platform.widenAnsi(std::string(1, byte))), std::string(1, byte)) << row.name;
  }
}

TEST(WindowsCodePages, MustBeKnownAndOfSingleBytes) {
  for (const char* name : {"UTF-8", "UTF-16", "SHIFT_JIS", "CP932", "CP65001", "no such page", "WINDOWS-",
                           "WINDOWS-1252x", "WINDOWS-99999", "CP0", "WINDOWS-1252//IGNORE"}) {
    try {
      const SystemPlatform platform({.messageCodePage = name});
      ADD_FAILURE() << name << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(name));
    }
  }
}

TEST(WindowsNarrowText, IsThatOfTheFirstLocaleWhateverIsSetLater) {
  SystemPlatform platform(systemsOwn());
  for (const char* locale : {"C", "German_Germany.1252"}) {
    std::setlocale(LC_ALL, locale);
    CString text;
    for (int value = 1; value < 256; ++value) text += static_cast<wchar_t>(value);
    EXPECT_EQ(platform.narrow(text), everyByte(1)) << locale;
    EXPECT_EQ(platform.narrow(L"100 \u20AC incl."), "100 ") << locale;
    EXPECT_EQ(platform.narrow(L"\u0100"
                              L"a"),
              "")
        << locale;
    EXPECT_EQ(platform.narrow(L"a\U0001F6E3"), "a") << locale;
    EXPECT_EQ(platform.narrow(CString(L"a\0b", 3)), "a") << locale;
    EXPECT_EQ(platform.narrow(L""), "") << locale;
  }
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace lvx::platform
