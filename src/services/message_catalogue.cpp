#include "services/message_catalogue.h"

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "host/host.h"
#include "platform/platform.h"

namespace lvx::services {

namespace {

/// Room for a found path, its closing zero included.
constexpr std::size_t kLargestPath = 2048;
/// A line is read in pieces of this size less one; a longer one goes on as a line of its own.
constexpr int kLineBuffer = 2046;

bool isWhiteSpace(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }
bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

std::string_view skipWhiteSpace(std::string_view line) {
  while (!line.empty() && isWhiteSpace(line.front())) line.remove_prefix(1);
  return line;
}

/// The character that a backslash and `letter` stand for; 0 where they stand for themselves.
wchar_t escaped(wchar_t letter) {
  switch (letter) {
    case L'a':
      return L'\a';
    case L'b':
      return L'\b';
    case L'f':
      return L'\f';
    case L'n':
      return L'\n';
    case L'r':
      return L'\r';
    case L't':
      return L'\t';
    case L'v':
      return L'\v';
    case L'\'':
    case L'"':
    case L'?':
      return letter;
    default:
      return L'\0';
  }
}

/// One thread uses the module, the host's main thread: no lock guards the one instance.
std::unique_ptr<CxMsg>& catalogue() {
  static std::unique_ptr<CxMsg> instance;
  return instance;
}

}  // namespace

// Built from the empty catalogue, so that its entries are freed if memory runs out half-way.
CxMsg::CxMsg(host::Host& host, const CString& fileName) : CxMsg() {
  CString path = fileName;
  CString found;
  if (host.runTime().vnedFindFile(fileName, found, kLargestPath) == host::kNormal) path = found;
  const platform::FileHandle stream = host.platform().openFile(path, "rb");
  if (!stream) {
    host.runTime().vnutPrintf(L"Error opening text file: " + path + L"\n");
    return;
  }
  fileName_ = fileName;
  std::array<char, kLineBuffer> buffer{};
  // As a C string: a zero byte ends what the line can say.
  while (std::fgets(buffer.data(), kLineBuffer, stream.get()) != nullptr) addLine(host, buffer.data());
  // What was read stays; the rest shows as numbers in the report, so the user is told why.
  if (std::ferror(stream.get()) != 0) host.runTime().vnutPrintf(L"Error reading text file: " + path + L"\n");
}

CxMsg::~CxMsg() { framework::destroyAll(messages_); }

void CxMsg::addLine(host::Host& host, std::string_view line) {
  line = skipWhiteSpace(line);
  std::uint32_t id = 0;
  std::size_t digits = 0;
  for (; digits < line.size() && isDigit(line[digits]); ++digits)
    id = id * 10 + static_cast<std::uint32_t>(line[digits] - '0');
  if (id == 0) return;
  line = skipWhiteSpace(line.substr(digits));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);

  auto message = std::make_unique<msgstr>();
  message->id = id;
  message->text = replaceEscapes(host.platform().widenAnsi(line));
  messages_.append(std::move(message));
}

CString CxMsg::lookup(std::uint32_t id) const {
  for (const msgstr* message : messages_)
    if (message->id == id) return message->text;
  return L"*" + std::to_wstring(static_cast<std::int32_t>(id)) + L"*";
}

// The rescanning comes down to one pass, since backslashes only ever meet the character behind their own run:
// - before a letter of the list the last one makes the control character, of the rest one remains;
// - before a quotation mark each one falls in turn, since the mark that it leaves is behind the next one;
// - before anything else the run shrinks to one, which a question mark then takes.
CString replaceEscapes(CString text) {
  std::size_t to = 0;
  std::size_t from = 0;
  while (from < text.size()) {
    if (text[from] != L'\\') {
      text[to++] = text[from++];
      continue;
    }
    std::size_t run = 0;
    while (from < text.size() && text[from] == L'\\') {
      ++from;
      ++run;
    }
    const wchar_t letter = from < text.size() ? text[from] : L'\0';
    const wchar_t replacement = escaped(letter);
    if (replacement == L'\0') {
      text[to++] = L'\\';
      continue;
    }
    ++from;
    if (replacement != letter && run > 1) text[to++] = L'\\';
    text[to++] = replacement;
  }
  text.resize(to);
  return text;
}

CString getMessage(Message message) {
  std::unique_ptr<CxMsg>& instance = catalogue();
  if (!instance) instance = std::make_unique<CxMsg>(*vnrxHost(), kMessageFile);
  return instance->lookup(static_cast<std::uint32_t>(message));
}

void releaseMessages() noexcept { catalogue().reset(); }

}  // namespace lvx::services
