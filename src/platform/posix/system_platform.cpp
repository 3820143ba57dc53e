#include "platform/system_platform.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <ctime>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/utf8.h"

namespace lvx::platform {

namespace {

/// Last second of the year 3000: where the host's own calendar ends.
constexpr std::int64_t kLastMoment = 32535215999;

/// The character of each byte, and which bytes the page really defines.
struct CodePage {
  std::array<wchar_t, 256> characters{};
  std::array<bool, 256> isDefined{};
};

struct IconvCloser {
  void operator()(void* converter) const noexcept { iconv_close(converter); }
};

/// Asks iconv byte by byte. A byte that the page leaves open stands for the code point of the same value.
CodePage readCodePage(const std::string& name) {
  // A suffix would change what iconv does with characters that it can't convert; an empty name is the locale's page.
  if (name.empty() || name.find('/') != std::string::npos)
    throw std::invalid_argument("code page '" + name + "' is unknown");
  const char* unicode = std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";
  iconv_t opened = iconv_open(unicode, name.c_str());
  if (opened == reinterpret_cast<iconv_t>(-1)) throw std::invalid_argument("code page '" + name + "' is unknown");
  const std::unique_ptr<void, IconvCloser> converter(opened);

  CodePage page;
  for (unsigned value = 0; value < 256; ++value) {
    std::array<char, 1> in{static_cast<char>(static_cast<unsigned char>(value))};
    std::array<char32_t, 4> out{};
    char* inAt = in.data();
    char* outAt = reinterpret_cast<char*>(out.data());
    std::size_t inLeft = in.size();
    std::size_t outLeft = sizeof(out);
    iconv(converter.get(), nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(converter.get(), &inAt, &inLeft, &outAt, &outLeft) != static_cast<std::size_t>(-1);
    if (!converted && errno == EILSEQ) {
      page.characters[value] = static_cast<wchar_t>(value);
      continue;
    }
    if (!converted || sizeof(out) - outLeft != sizeof(char32_t))
      throw std::invalid_argument("code page '" + name + "' doesn't hold one character a byte");
    page.characters[value] = static_cast<wchar_t>(out[0]);
    page.isDefined[value] = true;
  }
  return page;
}

bool equalIgnoringCase(std::wstring_view left, std::wstring_view right) {
  const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; };
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    if (lower(left[i]) != lower(right[i])) return false;
  return true;
}

/// A name that holds a zero would reach the system cut short and mean another file.
bool isSystemName(const CString& path) { return path.find(L'\0') == CString::npos; }

}  // namespace

struct SystemPlatform::Tables {
  CodePage message;
  /// Empty: the rule of equal values holds.
  std::unordered_map<wchar_t, char> report;
};

SystemPlatform::SystemPlatform(PlatformSettings settings)
    : settings_(std::move(settings)), tables_(std::make_unique<Tables>()) {
  tables_->message = readCodePage(settings_.messageCodePage);
  if (!settings_.reportCodePage.empty()) {
    const CodePage page = readCodePage(settings_.reportCodePage);
    // A byte that the page defines goes before one that only stands in for its own value.
    // But in a page of seven bits no byte stands in for itself above them.
    constexpr std::size_t kSevenBits = 128;
    const bool isSevenBit = std::none_of(page.isDefined.begin() + kSevenBits, page.isDefined.end(),
                                         [](bool isDefined) { return isDefined; });
    const std::size_t end = isSevenBit ? kSevenBits : page.characters.size();
    for (const bool wanted : {true, false})
      for (std::size_t value = 1; value < end; ++value)
        if (page.isDefined[value] == wanted)
          tables_->report.try_emplace(page.characters[value], static_cast<char>(static_cast<unsigned char>(value)));
    tables_->report.erase(L'\0');
  }
}

SystemPlatform::~SystemPlatform() = default;

FileHandle SystemPlatform::openFile(const CString& path, const char* mode) {
  if (!isSystemName(path)) return nullptr;
  FileHandle stream(std::fopen(toUtf8(path).c_str(), mode));
  // POSIX opens folders for reading; to the module a folder is no file.
  struct stat status {};
  if (stream && fstat(fileno(stream.get()), &status) == 0 && S_ISDIR(status.st_mode)) stream.reset();
  return stream;
}

bool SystemPlatform::exists(const CString& path) {
  struct stat status {};
  return isSystemName(path) && stat(toUtf8(path).c_str(), &status) == 0;
}

bool SystemPlatform::removeFile(const CString& path) { return isSystemName(path) && unlink(toUtf8(path).c_str()) == 0; }

std::size_t SystemPlatform::lastFolderMark(const CString& path) const { return path.rfind(L'/'); }

std::int64_t SystemPlatform::now() { return settings_.fixedMoment.value_or(std::time(nullptr)); }

std::optional<CalendarTime> SystemPlatform::calendarTime(std::int64_t moment) {
  if (moment < 0 || moment > kLastMoment) return std::nullopt;
  const std::time_t seconds = moment;
  std::tm fields{};
  if (settings_.fixedMoment) {
    if (gmtime_r(&seconds, &fields) == nullptr) return std::nullopt;
  } else {
    tzset();
    if (localtime_r(&seconds, &fields) == nullptr) return std::nullopt;
  }
  return CalendarTime{fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900,
                      fields.tm_hour, fields.tm_min,     fields.tm_sec};
}

CString SystemPlatform::widenAnsi(std::string_view bytes) {
  CString text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += tables_->message.characters[static_cast<unsigned char>(byte)];
  return text;
}

std::string SystemPlatform::narrow(const CString& text) {
  std::string bytes;
  bytes.reserve(text.size());
  if (tables_->report.empty()) {
    for (const wchar_t character : text) {
      if (character < 0x01 || character > 0xFF) break;
      bytes += static_cast<char>(static_cast<unsigned char>(character));
    }
    return bytes;
  }
  for (const wchar_t character : text) {
    const auto found = tables_->report.find(character);
    if (found == tables_->report.end()) break;
    bytes += found->second;
  }
  return bytes;
}

RegistryAnswer SystemPlatform::registryText(const CString& subKey, const CString& valueName, CString& text) {
  if (!equalIgnoringCase(subKey, L"Software\\Kelbrin\\Vantor")) return RegistryAnswer::NoKey;
  if (!equalIgnoringCase(valueName, L"CurVer") || settings_.release.empty()) return RegistryAnswer::NoValue;
  text = settings_.release;
  return RegistryAnswer::Found;
}

}  // namespace lvx::platform
