#include "platform/system_platform.h"

#include <array>
#include <bit>
#include <cerrno>
#include <ctime>
#include <stdexcept>
#include <utility>

#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/detail/code_page.h"
#include "platform/utf8.h"

namespace lvx::platform {

namespace {

using detail::CodePage;
using detail::isSystemName;

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

}  // namespace

struct SystemPlatform::Tables {
  CodePage message;
  detail::ReportBytes report;
};

SystemPlatform::SystemPlatform(PlatformSettings settings)
    : settings_(std::move(settings)), tables_(std::make_unique<Tables>()) {
  tables_->message = readCodePage(settings_.messageCodePage);
  if (!settings_.reportCodePage.empty()) tables_->report = detail::ReportBytes(readCodePage(settings_.reportCodePage));
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
  if (moment < 0 || moment > detail::kLastMoment) return std::nullopt;
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

CString SystemPlatform::widenAnsi(std::string_view bytes) { return detail::widen(tables_->message, bytes); }

std::string SystemPlatform::narrow(const CString& text) { return tables_->report.of(text); }

RegistryAnswer SystemPlatform::registryText(const CString& subKey, const CString& valueName, CString& text) {
  if (!settings_.release) return RegistryAnswer::NoKey;
  return detail::registryOfRelease(*settings_.release, subKey, valueName, text);
}

}  // namespace lvx::platform
