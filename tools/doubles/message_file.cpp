#include "doubles/message_file.h"

#include <algorithm>
#include <array>
#include <map>

#include "platform/posix/posix_platform.h"
#include "services/message_catalogue.h"

namespace lvx::test {

namespace {

using framework::CString;

constexpr std::size_t kLongestLine = 2045;
// Room in characters: dialog units by four a character, less the box of a check box.
constexpr std::size_t kLabelRoom = 27;
constexpr std::size_t kCheckRoom = 24;
constexpr std::size_t kButtonRoom = 11;
constexpr std::size_t kGroupRoom = 60;
constexpr std::size_t kListRoom = 26;
constexpr std::size_t kPointColumn = 12;

using enum MessageUse;
constexpr std::array kMessages{std::to_array<MessageInUse>({
    {1, Plain, 0},
    {3, Plain, 0},
    {4, Caption, kButtonRoom},
    {5, Caption, kButtonRoom},
    {8, Caption, kButtonRoom},
    {101, ReportText, kGroupRoom},
    {102, Caption, kGroupRoom},
    {103, Caption, kLabelRoom},
    {104, Caption, kLabelRoom},
    {105, Caption, kLabelRoom},
    {107, Caption, kLabelRoom},
    {108, Caption, kGroupRoom},
    {109, Plain, kListRoom},
    {110, Plain, 0},
    {111, Plain, 0},
    {112, Plain, 0},
    {113, Plain, 0},
    {114, Caption, kCheckRoom},
    {115, Caption, kCheckRoom},
    {116, Caption, kCheckRoom},
    {118, ReportText, 0},
    {119, ReportText, 0},
    {120, ReportText, 0},
    {122, ReportText, 0},
    {123, ReportText, 0},
    {124, ReportText, 0},
    {125, ReportText, 0},
    {201, ReportText, kGroupRoom},
    {202, Caption, kGroupRoom},
    {203, Caption, kLabelRoom},
    {210, ReportText, kPointColumn},
    {211, ReportText, kPointColumn},
    {212, ReportText, kPointColumn},
    {213, ReportText, kPointColumn},
    {214, ReportText, kPointColumn},
    {215, ReportText, kPointColumn},
    {216, ReportText, kPointColumn},
    {217, ReportText, kPointColumn},
    {218, ReportText, kPointColumn},
    {219, ReportText, kPointColumn},
    {221, Caption, kLabelRoom},
    {222, Plain, 0},
    {223, Plain, 0},
    {224, Plain, kLabelRoom - 7},
    {225, Plain, kLabelRoom - 7},
    {226, Plain, kListRoom},
    {227, Plain, 0},
    {228, Plain, 0},
    {229, Plain, 0},
    {301, ReportText, kGroupRoom},
    {302, Caption, kLabelRoom},
    // Heads over pairs of columns, then single ones.
    {303, ReportText, 15},
    {304, ReportText, 21},
    {305, ReportText, 13},
    {306, ReportText, 17},
    {307, ReportText, 17},
    {308, ReportText, 6},
    {309, ReportText, 7},
    {310, ReportText, 6},
    {311, ReportText, 11},
    {312, ReportText, 9},
    {313, ReportText, 10},
    {314, ReportText, 10},
    {315, ReportText, 10},
    {316, ReportText, 13},
    {318, ReportText, 6},
    {319, ReportText, 6},
    {320, ReportText, 8},
    {321, ReportText, 6},
    {322, ReportText, 7},
    {323, ReportText, 7},
    {324, ReportText, 0},
    {325, ReportText, 0},
    {326, ReportText, 8},
    {327, ReportText, 8},
    {328, ReportText, 8},
    {329, ReportText, 0},
    {330, ReportText, 0},
    {331, ReportText, 0},
    {332, ReportText, 0},
    {333, ReportText, 0},
    {334, ReportText, 0},
    {335, ReportText, 0},
    {336, ReportText, 0},
    {337, ReportText, 0},
    {338, ReportText, 0},
    {339, ReportText, 0},
    {340, ReportText, 0},
    {341, Caption, kLabelRoom},
    {342, Plain, 0},
    {343, ReportText, 7},
    {344, ReportText, 7},
    {345, Plain, 0},
    {346, ReportText, 6},
    {347, Plain, kGroupRoom},
    {348, Plain, 0},
})};

constexpr std::array<std::uint32_t, 6> kRowNames{329, 330, 331, 332, 333, 335};
constexpr std::array<std::uint32_t, 4> kAccessKeyed{5, 114, 115, 116};

using Texts = std::map<std::uint32_t, CString>;
using Complaints = std::vector<std::string>;

std::string about(std::uint32_t id, const std::string& what) { return "message " + std::to_string(id) + " " + what; }

/// Reads the lines, says what is wrong with their bytes, and gives the messages.
Texts readLines(std::string_view bytes, Complaints& complaints) {
  platform::PosixPlatform platform;
  Texts texts;
  for (std::size_t number = 1; !bytes.empty(); ++number) {
    const auto complain = [&](const std::string& what) {
      complaints.push_back("line " + std::to_string(number) + " " + what);
    };
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.size() + 1 > kLongestLine) complain("is longer than 2045 bytes");
    if (!line.ends_with('\r'))
      complain("doesn't end in CR LF");
    else
      line.remove_suffix(1);
    if (line.find('\r') != std::string_view::npos) complain("holds a CR");
    if (line.find_first_of(std::string_view("\0\x81\x8D\x8F\x90\x9D", 6)) != std::string_view::npos)
      complain("holds a byte that is no character of Windows-1252");
    if (line.empty() || line.front() == ';') continue;
    std::uint32_t id = 0;
    std::size_t at = 0;
    for (; at < line.size() && line[at] >= '0' && line[at] <= '9' && id < 100'000; ++at)
      id = id * 10 + static_cast<std::uint32_t>(line[at] - '0');
    if (id == 0 || at == line.size() || line[at] != ' ') {
      complain("is neither a message nor a comment");
      continue;
    }
    while (at < line.size() && line[at] == ' ') ++at;
    const bool isKnown =
        std::any_of(kMessages.begin(), kMessages.end(), [&](const auto& known) { return known.id == id; });
    if (!isKnown) complain("holds the number " + std::to_string(id) + ", which nothing asks for");
    if (texts.contains(id)) complain("holds the number " + std::to_string(id) + " again");
    texts.try_emplace(id, services::replaceEscapes(platform.widenAnsi(line.substr(at))));
  }
  return texts;
}

/// Characters that show: an ampersand underlines, two are one.
std::size_t shownLength(const CString& text, MessageUse use) {
  if (use != Caption) return text.size();
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i, ++count)
    if (text[i] == L'&') ++i;
  return count;
}

/// Letters behind single ampersands, in lower case; an ampersand at the end counts as a blank.
CString accessKeys(const CString& text) {
  CString keys;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != L'&') continue;
    ++i;
    const wchar_t key = i < text.size() ? text[i] : L' ';
    if (key != L'&') keys += key >= L'A' && key <= L'Z' ? static_cast<wchar_t>(key - L'A' + L'a') : key;
  }
  return keys;
}

void checkReportText(std::uint32_t id, const CString& text, Complaints& complaints) {
  if (text.find(L'%') != CString::npos)
    complaints.push_back(about(id, "holds a percent sign, which a report reads as a conversion"));
  if (text.find_first_of(L"<>&") != CString::npos) complaints.push_back(about(id, "holds markup of a page"));
  if (std::any_of(text.begin(), text.end(), [](wchar_t c) { return c < L' ' || c > 0xFF || (c >= 0x7F && c < 0xA0); }))
    complaints.push_back(about(id, "holds a character that a text file can't"));
}

bool isXmlName(const CString& text) {
  const auto isLetter = [](wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_' ||
           (c >= 0xC0 && c <= 0xFF && c != 0xD7 && c != 0xF7);
  };
  return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [&](wchar_t c) {
    return isLetter(c) || (c >= L'0' && c <= L'9') || c == L'-' || c == L'.';
  });
}

/// Pairs of label and pattern, each part closed by "|", and one more at the end.
bool isFilter(const CString& text) {
  std::size_t parts = 0;
  std::size_t at = 0;
  while (at < text.size() && text[at] != L'|') {
    const std::size_t end = text.find(L'|', at);
    if (end == CString::npos) return false;
    if (parts % 2 == 1 && !text.substr(at, end - at).starts_with(L"*.")) return false;
    ++parts;
    at = end + 1;
  }
  return parts > 0 && parts % 2 == 0 && at + 1 == text.size();
}

void checkRowNames(const Texts& texts, Complaints& complaints) {
  const CString& mark = texts.at(334);
  if (mark.size() < 2) {
    complaints.push_back(about(334, "has less than two characters"));
    return;
  }
  const auto beginsLikeIt = [&](const CString& name) { return name.starts_with(mark.substr(0, 2)); };
  for (const std::uint32_t id : kRowNames)
    for (const wchar_t digit : CString(L"123456789"))
      if (beginsLikeIt(texts.at(id) + digit)) {
        complaints.push_back(about(id, "begins like message 334"));
        break;
      }
  // Rows between two lines are named so in every language.
  if (beginsLikeIt(L"ILL")) complaints.push_back(about(334, "begins like the rows between two lines"));
}

void checkAccessKeys(const Texts& texts, Complaints& complaints) {
  std::map<wchar_t, std::uint32_t> owners;
  for (const std::uint32_t id : kAccessKeyed)
    for (const wchar_t key : accessKeys(texts.at(id)))
      if (const auto [owner, isNew] = owners.try_emplace(key, id); !isNew)
        complaints.push_back(about(id, "has the access key of message " + std::to_string(owner->second)));
}

}  // namespace

std::span<const MessageInUse> messagesInUse() { return kMessages; }

std::vector<std::string> messageFileComplaints(std::string_view bytes) {
  Complaints complaints;
  Texts texts = readLines(bytes, complaints);
  for (const MessageInUse& message : kMessages) {
    const CString& text = texts[message.id];
    if (text.empty()) complaints.push_back(about(message.id, "is missing"));
    if (message.room > 0 && shownLength(text, message.use) > message.room)
      complaints.push_back(about(message.id, "is longer than " + std::to_string(message.room) + " characters"));
    if (message.use == ReportText) checkReportText(message.id, text, complaints);
    if (message.use == Caption && accessKeys(text).size() > 1)
      complaints.push_back(about(message.id, "has more than one access key"));
  }
  if (!isFilter(texts[1])) complaints.push_back(about(1, "is no complete filter"));
  if (!texts[109].starts_with(L'*')) complaints.push_back(about(109, "doesn't begin with a star"));
  for (const std::uint32_t id : {124U, 125U})
    if (!isXmlName(texts[id])) complaints.push_back(about(id, "is no name of an XML attribute"));
  if (texts[124] == texts[125]) complaints.push_back(about(125, "is the same as message 124"));
  if (texts[118].size() != texts[119].size() || texts[119].size() != texts[120].size() + 1)
    complaints.push_back(about(120, "doesn't put the colons of 118 to 120 under each other"));
  checkRowNames(texts, complaints);
  checkAccessKeys(texts, complaints);
  return complaints;
}

}  // namespace lvx::test
