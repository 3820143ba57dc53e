#include "doubles/message_file.h"

#include <algorithm>
#include <array>
#include <map>

#include "platform/system_platform.h"
#include "services/message_catalogue.h"

namespace lvx::test {

namespace {

using framework::CString;
using services::Message;

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
    {Message::FileFilter, Plain, 0},
    {Message::CorridorsOutOfReach, Plain, 0},
    {Message::CancelButton, Caption, kButtonRoom},
    {Message::HelpButton, Caption, kButtonRoom},
    {Message::OkButton, Caption, kButtonRoom},
    {Message::ProjectionTitle, ReportText, kGroupRoom},
    {Message::SelectionFrame, Caption, kGroupRoom},
    {Message::SiteLabel, Caption, kLabelRoom},
    {Message::AlignmentLabel, Caption, kLabelRoom},
    {Message::SampleLineGroupLabel, Caption, kLabelRoom},
    {Message::SurfaceLabel, Caption, kLabelRoom},
    {Message::OutputFrame, Caption, kGroupRoom},
    {Message::NoSite, Plain, kListRoom},
    {Message::PickAlignment, Plain, 0},
    {Message::NotAnAlignment, Plain, 0},
    {Message::PickSurfaceOrProfile, Plain, 0},
    {Message::NotASurface, Plain, 0},
    {Message::AsciiForm, Caption, kCheckRoom},
    {Message::ExcelForm, Caption, kCheckRoom},
    {Message::HtmlForm, Caption, kCheckRoom},
    {Message::OutputPath, ReportText, 0},
    {Message::Date, ReportText, 0},
    {Message::Time, ReportText, 0},
    {Message::SampleLineName, ReportText, 0},
    {Message::SampleLineStation, ReportText, 0},
    {Message::ProjectionOffset, ReportText, 0},
    {Message::ProjectionElevation, ReportText, 0},
    {Message::PointsTitle, ReportText, kGroupRoom},
    {Message::PointsSelectionFrame, Caption, kGroupRoom},
    {Message::PointGroupLabel, Caption, kLabelRoom},
    {Message::PointNumber, ReportText, kPointColumn},
    {Message::PointEasting, ReportText, kPointColumn},
    {Message::PointNorthing, ReportText, kPointColumn},
    {Message::PointElevation, ReportText, kPointColumn},
    {Message::PointName, ReportText, kPointColumn},
    {Message::PointRawDescription, ReportText, kPointColumn},
    {Message::PointFullDescription, ReportText, kPointColumn},
    {Message::PointAlignment, ReportText, kPointColumn},
    {Message::PointStation, ReportText, kPointColumn},
    {Message::PointOffset, ReportText, kPointColumn},
    {Message::PointCountLabel, Caption, kLabelRoom},
    {Message::SelectPointsToAdd, Plain, 0},
    {Message::SelectPointsToRemove, Plain, 0},
    {Message::OnePointSelected, Plain, kLabelRoom - 7},
    {Message::PointsSelected, Plain, kLabelRoom - 7},
    {Message::PickedPoints, Plain, kListRoom},
    {Message::OverwriteFile, Plain, 0},
    {Message::RetryWriting, Plain, 0},
    {Message::OutputWithoutFolder, Plain, 0},
    {Message::GlsTitle, ReportText, kGroupRoom},
    {Message::ProfileLabel, Caption, kLabelRoom},
    // Heads over pairs of columns, then single ones.
    {Message::GlsCurveOrdinates, ReportText, 15},
    {Message::GlsElevations, ReportText, 21},
    {Message::GlsWidths, ReportText, 13},
    {Message::GlsHeights, ReportText, 17},
    {Message::GlsEdgeElevations, ReportText, 17},
    {Message::GlsRadius, ReportText, 6},
    {Message::GlsAngle, ReportText, 7},
    {Message::GlsName, ReportText, 6},
    {Message::GlsStation, ReportText, 11},
    {Message::GlsDistance, ReportText, 9},
    {Message::GlsNotes, ReportText, 10},
    {Message::GlsTangentElevation, ReportText, 10},
    {Message::GlsProfileElevation, ReportText, 10},
    {Message::GlsCrossFalls, ReportText, 13},
    {Message::GlsLeft, ReportText, 6},
    {Message::GlsRight, ReportText, 6},
    {Message::GlsElement, ReportText, 8},
    {Message::GlsParameter, ReportText, 6},
    {Message::GlsElementLength, ReportText, 7},
    {Message::GlsAngleUnit, ReportText, 7},
    {Message::Rise, ReportText, 0},
    {Message::Fall, ReportText, 0},
    {Message::LineElement, ReportText, 8},
    {Message::ArcElement, ReportText, 8},
    {Message::ClothoidElement, ReportText, 8},
    {Message::ClothoidStart, ReportText, 0},
    {Message::ClothoidEnd, ReportText, 0},
    {Message::ArcStart, ReportText, 0},
    {Message::ArcEnd, ReportText, 0},
    {Message::VerticalCurveStart, ReportText, 0},
    {Message::VerticalIntersection, ReportText, 0},
    {Message::VerticalCurveEnd, ReportText, 0},
    {Message::GradeChange, ReportText, 0},
    {Message::TangentLength, ReportText, 0},
    {Message::CrestRadius, ReportText, 0},
    {Message::SagRadius, ReportText, 0},
    {Message::VerticalCurveTangent, ReportText, 0},
    {Message::CorridorLabel, Caption, kLabelRoom},
    {Message::NotAProfile, Plain, 0},
    {Message::GlsCurveX, ReportText, 7},
    {Message::GlsCurveY, ReportText, 7},
    {Message::AddSectionsQuestion, Plain, 0},
    {Message::NoCorridor, ReportText, 6},
    {Message::AddSectionsTitle, Plain, kGroupRoom},
    {Message::AddSectionsAnswers, Plain, 0},
})};

constexpr std::array<Message, 6> kRowNames{Message::ClothoidStart,      Message::ClothoidEnd,
                                           Message::ArcStart,           Message::ArcEnd,
                                           Message::VerticalCurveStart, Message::VerticalCurveEnd};
constexpr std::array<Message, 4> kAccessKeyed{Message::HelpButton, Message::AsciiForm, Message::ExcelForm,
                                              Message::HtmlForm};

using Texts = std::map<Message, CString>;
using Complaints = std::vector<std::string>;

std::string numberOf(Message message) { return std::to_string(static_cast<std::uint32_t>(message)); }

std::string about(Message message, const std::string& what) { return "message " + numberOf(message) + " " + what; }

/// Reads the lines, says what is wrong with their bytes, and gives the messages.
Texts readLines(std::string_view bytes, Complaints& complaints) {
  platform::SystemPlatform platform;
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
    const Message message{id};
    const bool isKnown =
        std::any_of(kMessages.begin(), kMessages.end(), [&](const auto& known) { return known.message == message; });
    if (!isKnown) complain("holds the number " + std::to_string(id) + ", which nothing asks for");
    if (texts.contains(message)) complain("holds the number " + std::to_string(id) + " again");
    texts.try_emplace(message, services::replaceEscapes(platform.widenAnsi(line.substr(at))));
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

void checkReportText(Message message, const CString& text, Complaints& complaints) {
  if (text.find(L'%') != CString::npos)
    complaints.push_back(about(message, "holds a percent sign, which a report reads as a conversion"));
  if (text.find_first_of(L"<>&") != CString::npos) complaints.push_back(about(message, "holds markup of a page"));
  if (std::any_of(text.begin(), text.end(), [](wchar_t c) { return c < L' ' || c > 0xFF || (c >= 0x7F && c < 0xA0); }))
    complaints.push_back(about(message, "holds a character that a text file can't"));
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
  const CString& mark = texts.at(Message::VerticalIntersection);
  if (mark.size() < 2) {
    complaints.push_back(about(Message::VerticalIntersection, "has less than two characters"));
    return;
  }
  const auto beginsLikeIt = [&](const CString& name) { return name.starts_with(mark.substr(0, 2)); };
  for (const Message message : kRowNames)
    for (const wchar_t digit : CString(L"123456789"))
      if (beginsLikeIt(texts.at(message) + digit)) {
        complaints.push_back(about(message, "begins like message 334"));
        break;
      }
  // Rows between two lines are named so in every language.
  if (beginsLikeIt(L"ILL"))
    complaints.push_back(about(Message::VerticalIntersection, "begins like the rows between two lines"));
}

void checkAccessKeys(const Texts& texts, Complaints& complaints) {
  std::map<wchar_t, Message> owners;
  for (const Message message : kAccessKeyed)
    for (const wchar_t key : accessKeys(texts.at(message)))
      if (const auto [owner, isNew] = owners.try_emplace(key, message); !isNew)
        complaints.push_back(about(message, "has the access key of message " + numberOf(owner->second)));
}

}  // namespace

std::span<const MessageInUse> messagesInUse() { return kMessages; }

std::vector<std::string> messageFileComplaints(std::string_view bytes) {
  Complaints complaints;
  Texts texts = readLines(bytes, complaints);
  for (const MessageInUse& known : kMessages) {
    const CString& text = texts[known.message];
    if (text.empty()) complaints.push_back(about(known.message, "is missing"));
    if (known.room > 0 && shownLength(text, known.use) > known.room)
      complaints.push_back(about(known.message, "is longer than " + std::to_string(known.room) + " characters"));
    if (known.use == ReportText) checkReportText(known.message, text, complaints);
    if (known.use == Caption && accessKeys(text).size() > 1)
      complaints.push_back(about(known.message, "has more than one access key"));
  }
  if (!isFilter(texts[Message::FileFilter])) complaints.push_back(about(Message::FileFilter, "is no complete filter"));
  if (!texts[Message::NoSite].starts_with(L'*'))
    complaints.push_back(about(Message::NoSite, "doesn't begin with a star"));
  for (const Message message : {Message::ProjectionOffset, Message::ProjectionElevation})
    if (!isXmlName(texts[message])) complaints.push_back(about(message, "is no name of an XML attribute"));
  if (texts[Message::ProjectionOffset] == texts[Message::ProjectionElevation])
    complaints.push_back(about(Message::ProjectionElevation, "is the same as message 124"));
  if (texts[Message::OutputPath].size() != texts[Message::Date].size() ||
      texts[Message::Date].size() != texts[Message::Time].size() + 1)
    complaints.push_back(about(Message::Time, "doesn't put the colons of 118 to 120 under each other"));
  checkRowNames(texts, complaints);
  checkAccessKeys(texts, complaints);
  return complaints;
}

}  // namespace lvx::test
