#include "platform/posix/posix_platform.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lvx::platform {

namespace {

constexpr wchar_t kReplacement = L'\uFFFD';
constexpr wchar_t kFirstByteSurrogate = 0xDC80;
constexpr wchar_t kLastByteSurrogate = 0xDCFF;
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

/// Length of the well-formed UTF-8 sequence at the head of `bytes` (no overlong forms, no surrogates); 0 for none.
std::size_t sequenceLength(std::string_view bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || length > bytes.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0U) != 0x80) return 0;
  if (length >= 3) {
    const unsigned second = byte(1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
      return 0;
  }
  return length;
}

}  // namespace

struct PosixPlatform::Tables {
  CodePage message;
  /// Empty: the rule of equal values holds.
  std::unordered_map<wchar_t, char> report;
};

PosixPlatform::PosixPlatform(PosixSettings settings)
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

PosixPlatform::~PosixPlatform() = default;

FileHandle PosixPlatform::openFile(const CString& path, const char* mode) {
  if (!isSystemName(path)) return nullptr;
  FileHandle stream(std::fopen(toUtf8(path).c_str(), mode));
  // POSIX opens folders for reading; to the module a folder is no file.
  struct stat status {};
  if (stream && fstat(fileno(stream.get()), &status) == 0 && S_ISDIR(status.st_mode)) stream.reset();
  return stream;
}

bool PosixPlatform::exists(const CString& path) {
  struct stat status {};
  return isSystemName(path) && stat(toUtf8(path).c_str(), &status) == 0;
}

bool PosixPlatform::removeFile(const CString& path) { return isSystemName(path) && unlink(toUtf8(path).c_str()) == 0; }

std::size_t PosixPlatform::lastFolderMark(const CString& path) const { return path.rfind(L'/'); }

std::int64_t PosixPlatform::now() { return settings_.fixedMoment.value_or(std::time(nullptr)); }

std::optional<CalendarTime> PosixPlatform::calendarTime(std::int64_t moment) {
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

CString PosixPlatform::widenAnsi(std::string_view bytes) {
  CString text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += tables_->message.characters[static_cast<unsigned char>(byte)];
  return text;
}

std::string PosixPlatform::narrow(const CString& text) {
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

RegistryAnswer PosixPlatform::registryText(const CString& subKey, const CString& valueName, CString& text) {
  if (!equalIgnoringCase(subKey, L"Software\\Kelbrin\\Vantor")) return RegistryAnswer::NoKey;
  if (!equalIgnoringCase(valueName, L"CurVer") || settings_.release.empty()) return RegistryAnswer::NoValue;
  text = settings_.release;
  return RegistryAnswer::Found;
}

std::string toUtf8(const CString& text) {
  std::string bytes;
  bytes.reserve(text.size());
  const auto put = [&](std::uint32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
  for (wchar_t character : text) {
    if (character >= kFirstByteSurrogate && character <= kLastByteSurrogate) {
      put(static_cast<std::uint32_t>(character - 0xDC00));
      continue;
    }
    if (character < 0 || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) character = kReplacement;
    const auto point = static_cast<std::uint32_t>(std::int64_t{character});
    if (point < 0x80) {
      put(point);
    } else if (point < 0x800) {
      put(0xC0 | (point >> 6));
      put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
      put(0xE0 | (point >> 12));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    } else {
      put(0xF0 | (point >> 18));
      put(0x80 | ((point >> 12) & 0x3F));
      put(0x80 | ((point >> 6) & 0x3F));
      put(0x80 | (point & 0x3F));
    }
  }
  return bytes;
}

CString fromUtf8(std::string_view bytes) {
  CString text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = sequenceLength(bytes);
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])); };
    if (length == 0) {
      text += static_cast<wchar_t>(0xDC00 + byte(0));
      bytes.remove_prefix(1);
      continue;
    }
    std::uint32_t point = length == 1 ? byte(0) : byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) point = (point << 6) | (byte(i) & 0x3F);
    text += static_cast<wchar_t>(point);
    bytes.remove_prefix(length);
  }
  return text;
}

}  // namespace lvx::platform
