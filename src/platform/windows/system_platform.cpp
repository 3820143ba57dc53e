#include "platform/system_platform.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <utility>
#include <vector>

// clang-format off
#include <windows.h>
#include <io.h>
// clang-format on

#include "platform/detail/code_page.h"

namespace lvx::platform {

namespace {

using detail::CodePage;
using detail::isSystemName;

/// From this length on the system takes a path only in its long form. It is the limit of folders, which is the lower one.
constexpr std::size_t kLongPath = 248;

/// The path as every call of the system takes it, however long it is.
CString systemPath(const CString& path) {
  if (path.size() < kLongPath || path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\")) return path;
  const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  CString whole(room, L'\0');
  const DWORD length = GetFullPathNameW(path.c_str(), room, whole.data(), nullptr);
  if (length == 0 || length >= room) return path;
  whole.resize(length);
  return whole.starts_with(L"\\\\") ? L"\\\\?\\UNC" + whole.substr(1) : L"\\\\?\\" + whole;
}

/// "WINDOWS-1252", "CP437", "ISO-8859-15" and their like by the system's numbers; 0 for a name that is none of these.
UINT codePageNumber(std::string_view name) {
  std::string upper(name);
  for (char& letter : upper)
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  const std::string_view text(upper);
  struct Named {
    std::string_view name;
    UINT number;
  };
  static constexpr std::array<Named, 5> kNamed{
      {{"KOI8-R", 20866}, {"KOI8-U", 21866}, {"US-ASCII", 20127}, {"ASCII", 20127}, {"LATIN1", 28591}}};
  for (const Named& row : kNamed)
    if (text == row.name) return row.number;
  struct Prefix {
    std::string_view text;
    UINT before;  // what is added to the number behind it
  };
  static constexpr std::array<Prefix, 6> kPrefixes{
      {{"WINDOWS-", 0}, {"CP", 0}, {"IBM", 0}, {"ISO-8859-", 28590}, {"ISO8859-", 28590}, {"ISO_8859-", 28590}}};
  for (const Prefix& prefix : kPrefixes) {
    if (!text.starts_with(prefix.text)) continue;
    const std::string_view digits = text.substr(prefix.text.size());
    UINT number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc() && end == digits.data() + digits.size() && number > 0) return prefix.before + number;
  }
  return 0;
}

CodePage readCodePage(const std::string& name) {
  const UINT number = codePageNumber(name);
  CPINFO information{};
  if (number == 0 || GetCPInfo(number, &information) == FALSE)
    throw std::invalid_argument("code page '" + name + "' is unknown");
  if (information.MaxCharSize != 1)
    throw std::invalid_argument("code page '" + name + "' doesn't hold one character a byte");
  CodePage page;
  for (unsigned value = 0; value < page.characters.size(); ++value) {
    const char byte = static_cast<char>(static_cast<unsigned char>(value));
    std::array<wchar_t, 2> character{};
    const bool converted = MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, &byte, 1, character.data(),
                                               static_cast<int>(character.size())) == 1;
    // The system has private characters for bytes that some pages leave open.
    const bool isPrivate = character[0] >= 0xF8C1 && character[0] <= 0xF8C4;
    page.isDefined[value] = converted && !isPrivate;
    page.characters[value] = page.isDefined[value] ? character[0] : static_cast<wchar_t>(value);
  }
  return page;
}

/// An open key of the registry.
class Key {
 public:
  explicit Key(const CString& subKey)
      : isOpen_(RegOpenKeyExW(HKEY_CURRENT_USER, subKey.c_str(), 0, KEY_READ, &key_) == 0) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (isOpen_) RegCloseKey(key_);
  }
  explicit operator bool() const { return isOpen_; }
  [[nodiscard]] HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
  bool isOpen_;
};

std::optional<CalendarTime> calendarOf(const std::tm& fields) {
  return CalendarTime{fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900,
                      fields.tm_hour, fields.tm_min,     fields.tm_sec};
}

}  // namespace

struct SystemPlatform::Tables {
  /// Of the first locale of a C program, whatever another part of the process sets later.
  struct LocaleCloser {
    void operator()(_locale_t locale) const noexcept { _free_locale(locale); }
  };
  std::unique_ptr<std::remove_pointer_t<_locale_t>, LocaleCloser> firstLocale{_create_locale(LC_ALL, "C")};
  std::optional<CodePage> message;
  std::optional<detail::ReportBytes> report;
};

SystemPlatform::SystemPlatform(PlatformSettings settings)
    : settings_(std::move(settings)), tables_(std::make_unique<Tables>()) {
  if (!tables_->firstLocale) throw std::bad_alloc();
  if (!settings_.messageCodePage.empty()) tables_->message = readCodePage(settings_.messageCodePage);
  if (!settings_.reportCodePage.empty()) tables_->report = detail::ReportBytes(readCodePage(settings_.reportCodePage));
}

SystemPlatform::~SystemPlatform() = default;

FileHandle SystemPlatform::openFile(const CString& path, const char* mode) {
  if (!isSystemName(path)) return nullptr;
  CString wideMode;
  for (; *mode != '\0'; ++mode) wideMode += static_cast<wchar_t>(*mode);
  return FileHandle(_wfopen(systemPath(path).c_str(), wideMode.c_str()));
}

bool SystemPlatform::exists(const CString& path) {
  return isSystemName(path) && GetFileAttributesW(systemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool SystemPlatform::removeFile(const CString& path) {
  return isSystemName(path) && _wremove(systemPath(path).c_str()) == 0;
}

std::size_t SystemPlatform::lastFolderMark(const CString& path) const { return path.rfind(L'\\'); }

std::int64_t SystemPlatform::now() { return settings_.fixedMoment.value_or(_time64(nullptr)); }

std::optional<CalendarTime> SystemPlatform::calendarTime(std::int64_t moment) {
  if (moment < 0 || moment > detail::kLastMoment) return std::nullopt;
  const __time64_t seconds = moment;
  std::tm fields{};
  const errno_t error = settings_.fixedMoment ? _gmtime64_s(&fields, &seconds) : _localtime64_s(&fields, &seconds);
  if (error != 0) return std::nullopt;
  return calendarOf(fields);
}

CString SystemPlatform::widenAnsi(std::string_view bytes) {
  if (tables_->message) return detail::widen(*tables_->message, bytes);
  if (bytes.empty()) return {};
  // Of any page, those with two bytes a character included; without flags nothing is invalid to the system.
  const int size = static_cast<int>(bytes.size());
  CString text(static_cast<std::size_t>(std::max(0, MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0))),
               L'\0');
  MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), static_cast<int>(text.size()));
  return text;
}

std::string SystemPlatform::narrow(const CString& text) {
  if (tables_->report) return tables_->report->of(text);
  // The run time stops at the first character that the locale can't express and fills no further: what it wrote is kept.
  std::string bytes(text.size() + 1, '\0');
  _wcstombs_l(bytes.data(), text.c_str(), text.size(), tables_->firstLocale.get());
  bytes.resize(std::char_traits<char>::length(bytes.c_str()));
  return bytes;
}

RegistryAnswer SystemPlatform::registryText(const CString& subKey, const CString& valueName, CString& text) {
  if (settings_.release) return detail::registryOfRelease(*settings_.release, subKey, valueName, text);
  const Key key(subKey);
  if (!key) return RegistryAnswer::NoKey;
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExW(key.get(), valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
    return RegistryAnswer::NoValue;
  // Another program may change the value between the two questions.
  std::vector<wchar_t> data;
  LSTATUS status = ERROR_MORE_DATA;
  while (status == ERROR_MORE_DATA) {
    data.assign((size + sizeof(wchar_t) - 1) / sizeof(wchar_t), L'\0');
    size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
    status =
        RegQueryValueExW(key.get(), valueName.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
  }
  if (status != ERROR_SUCCESS) return RegistryAnswer::NoValue;
  if (type == REG_SZ) {
    // The end mark is the writer's own affair: it may be missing, and a text behind it is no part of this one.
    const CString whole(data.data(), size / sizeof(wchar_t));
    text = whole.substr(0, whole.find(L'\0'));
  }
  return RegistryAnswer::Found;
}

}  // namespace lvx::platform
