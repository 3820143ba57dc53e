#include "landxml/detail/source.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <system_error>
#include <utility>

#include "landxml/detail/numbers.h"
#include "standin_platform/input_file.h"
#include "standin_platform/text_converter.h"

namespace lvx::landxml::detail {

using standin_platform::InputFile;
using standin_platform::TextConverter;

void fail(const std::string& what, const std::string& file, std::size_t line) { throw ReadError(what, file, line); }

namespace {

class FileSource : public ByteSource {
 public:
  FileSource(const std::string& path, const std::string& name, civil::FileMark* mark) : name_(name), mark_(mark) {
    try {
      file_.emplace(path);
    } catch (const std::system_error& error) {
      fail("can't open the file: " + error.code().message(), name);
    }
    if (file_->kind() == InputFile::Kind::Folder) fail("can't read the file: it is a folder", name);
  }
  std::size_t read(char* to, std::size_t size) override {
    std::size_t count = 0;
    try {
      count = file_->read(to, size);
    } catch (const std::system_error& error) {
      fail("can't read the file: " + error.code().message(), name_);
    }
    if (mark_ != nullptr) {
      hash_.add({to, count});
      *mark_ = hash_.mark();
    }
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return file_->stamp().size; }

 private:
  std::string name_;
  std::optional<InputFile> file_;
  civil::FileMark* mark_;
  ContentHash hash_;
};

class TextSource : public ByteSource {
 public:
  explicit TextSource(std::string_view text) : rest_(text), total_(text.size()) {}
  std::size_t read(char* to, std::size_t size) override {
    const std::size_t count = rest_.copy(to, size);
    rest_.remove_prefix(count);
    return count;
  }
  [[nodiscard]] std::uint64_t totalBytes() const override { return total_; }

 private:
  std::string_view rest_;
  std::uint64_t total_;
};

std::string utf8OfLatin1(unsigned char byte) {
  return {static_cast<char>(0xC0U | (byte >> 6U)), static_cast<char>(0x80U | (byte & 0x3FU))};
}

/// The upper half of a one-byte encoding; null for an encoding of more bytes.
std::shared_ptr<const std::array<std::string, 128>> upperHalfOf(TextConverter& converter) {
  auto table = std::make_shared<std::array<std::string, 128>>();
  std::size_t done = 0;
  for (int i = 0; i < 256; ++i) {
    const char byte = static_cast<char>(i);
    std::string text;
    const TextConverter::End end = converter.convert({&byte, 1}, text, done);
    if (end == TextConverter::End::Incomplete || (i < 128 && text != std::string(1, byte))) return nullptr;
    if (i >= 128)
      (*table)[static_cast<std::size_t>(i - 128)] =
          end == TextConverter::End::Invalid ? utf8OfLatin1(static_cast<unsigned char>(i)) : text;
  }
  return table;
}

/// The encoding that the XML declaration names; empty for none.
std::string declaredEncoding(std::string_view head) {
  if (!head.starts_with("<?xml")) return {};
  head = head.substr(0, head.find("?>"));
  auto at = head.find("encoding");
  if (at == std::string_view::npos) return {};
  at = head.find_first_of("'\"", at);
  if (at == std::string_view::npos) return {};
  const auto end = head.find(head[at], at + 1);
  if (end == std::string_view::npos) return {};
  std::string name(head.substr(at + 1, end - at - 1));
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return name;
}

}  // namespace

std::string readAll(ByteSource& bytes, std::string head) {
  std::string all = std::move(head);
  constexpr std::size_t kBlock = 1 << 20;
  for (;;) {
    const std::size_t size = all.size();
    all.resize(size + kBlock);
    const std::size_t count = bytes.read(all.data() + size, kBlock);
    all.resize(size + count);
    if (count == 0) return all;
  }
}

std::unique_ptr<ByteSource> openFile(const std::string& path, const std::string& name, civil::FileMark* mark) {
  return std::make_unique<FileSource>(path, name, mark);
}
std::unique_ptr<ByteSource> openText(std::string_view text) { return std::make_unique<TextSource>(text); }

const std::array<std::string, 128>& windows1252() {
  static const auto table = [] {
    TextConverter converter("CP1252");
    auto upperHalf = converter.isKnown() ? upperHalfOf(converter) : nullptr;
    std::array<std::string, 128> result;
    for (std::size_t i = 0; i < 128; ++i) {
      result[i] = upperHalf ? (*upperHalf)[i] : utf8OfLatin1(static_cast<unsigned char>(i + 128));
    }
    return result;
  }();
  return table;
}

DecodedSource decode(std::unique_ptr<ByteSource> bytes, const std::string& file) {
  DecodedSource source;
  constexpr std::size_t kHead = 4096;
  source.head.resize(kHead);
  std::size_t size = 0;
  while (size < kHead) {
    const std::size_t count = bytes->read(source.head.data() + size, kHead - size);
    if (count == 0) break;
    size += count;
  }
  source.head.resize(size);
  source.bytes = std::move(bytes);

  const std::string_view head = source.head;
  using namespace std::string_view_literals;
  std::string wide;
  if (head.starts_with("\xEF\xBB\xBF"sv)) {
    source.head.erase(0, 3);
    source.headStart = 3;
    return source;
  }
  struct Wide {
    std::string_view start;
    const char* shown;
    const char* exact;
    bool isMark;
  };
  // The longer marks first: one begins like another.
  static constexpr std::array<Wide, 6> kWides{{{"\xFF\xFE\0\0"sv, "UTF-32", "UTF-32LE", true},
                                               {"\0\0\xFE\xFF"sv, "UTF-32", "UTF-32BE", true},
                                               {"\xFF\xFE"sv, "UTF-16", "UTF-16LE", true},
                                               {"\xFE\xFF"sv, "UTF-16", "UTF-16BE", true},
                                               {"<\0"sv, "UTF-16LE", "UTF-16LE", false},
                                               {"\0<"sv, "UTF-16BE", "UTF-16BE", false}}};
  for (const Wide& form : kWides) {
    if (!wide.empty() || !head.starts_with(form.start)) continue;
    wide = form.shown;
    source.converted.encoding = form.exact;
    if (form.isMark) source.converted.byteOrderMark = form.start;
  }

  if (wide.empty()) {
    const std::string name = declaredEncoding(head);
    if (name.empty() || name == "UTF-8" || name == "UTF8" || name == "US-ASCII" || name == "ASCII") return source;
    if (name.starts_with("UTF-16") || name.starts_with("UTF-32") || name.starts_with("UCS-")) {
      source.warning = "the file says that its encoding is " + shown(name) + " but its bytes aren't; read as UTF-8";
      return source;
    }
    if (name == "ISO-8859-1" || name == "WINDOWS-1252" || name == "CP1252" || name == "LATIN1") {
      // Programs that say Latin-1 write Windows-1252; what differs are control characters that no text holds.
      source.upperHalf = std::make_shared<std::array<std::string, 128>>(windows1252());
      return source;
    }
    wide = name;
  }

  if (source.converted.encoding.empty()) source.converted.encoding = wide;
  TextConverter converter(source.converted.encoding);
  if (!converter.isKnown()) fail("the encoding '" + shown(wide) + "' isn't known", file, 1);
  if (!wide.starts_with("UTF-")) {
    source.upperHalf = upperHalfOf(converter);
    if (source.upperHalf) {
      source.converted = {};
      return source;
    }
  }
  const std::string all = readAll(*source.bytes, std::move(source.head));
  auto text = std::make_shared<std::string>();
  text->reserve(all.size());
  std::size_t done = 0;
  if (converter.convert(all, *text, done) != TextConverter::End::Complete) {
    const auto line = 1 + static_cast<std::size_t>(std::count(text->begin(), text->end(), '\n'));
    fail("the text isn't " + shown(wide) + " (or is cut off) at byte " + std::to_string(done), file, line);
  }
  if (text->starts_with("\xEF\xBB\xBF")) text->erase(0, 3);
  source.converted.text = text;
  source.bytes = openText(*text);
  source.head.clear();
  return source;
}

}  // namespace lvx::landxml::detail
