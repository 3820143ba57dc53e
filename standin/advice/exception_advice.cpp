#include "advice/exception_advice.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "host/host.h"
#include "platform/utf8.h"
#include "services/message_catalogue.h"
#include "services/messages.h"

namespace lvx::advice {

using framework::CString;
using platform::fromUtf8;
using platform::toUtf8;
using services::Message;

namespace {

/// What the report takes for one station, in drawing units.
constexpr double kSameRow = 0.0001;

/// The words of the table's rows; an intersection point is found by the first two letters of its own.
constexpr std::array<Message, 7> kRowWords{
    Message::ClothoidStart,      Message::ClothoidEnd,          Message::ArcStart,        Message::ArcEnd,
    Message::VerticalCurveStart, Message::VerticalIntersection, Message::VerticalCurveEnd};

std::uint32_t numberOf(Message message) { return static_cast<std::uint32_t>(message); }

/// How a row is told from an intersection point's.
class IntersectionWord {
 public:
  explicit IntersectionWord(CString word) : word_(std::move(word)) {}
  [[nodiscard]] bool begins(const CString& name) const {
    return word_.size() >= 2 && name.size() >= 2 && name[0] == word_[0] && name[1] == word_[1];
  }
  [[nodiscard]] std::string text() const { return toUtf8(word_); }
  [[nodiscard]] std::string letters() const { return toUtf8(word_.substr(0, 2)); }

 private:
  CString word_;
};

void adviseOnWords(std::vector<std::string>& list, const IntersectionWord& word, const MessageText& message) {
  std::string missing;
  std::string alike;
  for (const Message row : kRowWords) {
    const std::string number = std::to_string(numberOf(row));
    const CString text = message(numberOf(row));
    if (toUtf8(text) == "*" + number + "*")
      missing.append(missing.empty() ? "" : ", ").append(number);
    else if (row != Message::VerticalIntersection && word.begins(text))
      alike.append(alike.empty() ? "" : ", ").append(number).append(" '").append(toUtf8(text)).append("'");
  }
  if (!missing.empty())
    list.push_back(
        "the message file lacks words of the table's rows, and without them rows are taken for intersection "
        "points; add messages " +
        missing);
  if (!alike.empty())
    list.push_back("the message file has words of rows that begin like the one for intersection points, '" +
                   word.text() + "', which is found by its first two letters; change message " + alike);
}

void adviseOnSampleLines(std::vector<std::string>& list, const IntersectionWord& word,
                         const civil::SampleLineGroup& group) {
  std::size_t count = 0;
  const civil::SampleLine* first = nullptr;
  for (const civil::SampleLine& line : group.lines) {
    if (!word.begins(fromUtf8(line.name))) continue;
    if (count++ == 0) first = &line;
  }
  if (first == nullptr) return;
  list.push_back("sample line '" + first->name + "'" +
                 (count == 1 ? std::string() : " and " + std::to_string(count - 1) + " more") + " of group '" +
                 group.name + "' " + (count == 1 ? "is" : "are") +
                 " taken for an intersection point of the profile, whose word is '" + word.text() + "'; give " +
                 (count == 1 ? "it a name that doesn't" : "them names that don't") + " begin with '" + word.letters() +
                 "'");
}

/// True where the table has just the row that closes the alignment.
bool hasOneRow(const ReportObjects& objects) {
  const civil::Alignment& geometry = objects.alignment->geometry;
  if (geometry.elements().size() != 1 || geometry.elements()[0].kind != civil::ElementKind::Line) return false;
  if (objects.profile != nullptr && objects.profile->profile.points().size() > 2) return false;
  const double end = geometry.endStation();
  return objects.group == nullptr ||
         std::all_of(objects.group->lines.begin(), objects.group->lines.end(),
                     [end](const civil::SampleLine& line) { return line.station > end - kSameRow; });
}

std::vector<std::string> ofGls(const ReportObjects& objects, const MessageText& message) {
  std::vector<std::string> list;
  if (objects.alignment != nullptr && objects.alignment->geometry.isEmpty())
    list.push_back("alignment '" + objects.alignment->name + "' has no elements; choose one that has");
  else if (objects.alignment != nullptr && hasOneRow(objects))
    list.push_back("the table would have a single row, the end of alignment '" + objects.alignment->name +
                   "', and the report needs two; choose a group with a sample line before the end");
  if (objects.profile != nullptr && objects.profile->profile.points().size() < 2)
    list.push_back("profile '" + objects.profile->name + "' has fewer than two points; choose one that has them");
  const IntersectionWord word(message(numberOf(Message::VerticalIntersection)));
  adviseOnWords(list, word, message);
  if (objects.group != nullptr) adviseOnSampleLines(list, word, *objects.group);
  return list;
}

}  // namespace

MessageText messagesOf(host::Host& host) {
  const auto catalogue = std::make_shared<services::CxMsg>(host, services::kMessageFile);
  return [catalogue](std::uint32_t number) { return catalogue->lookup(number); };
}

std::vector<std::string> whatToChange(const ReportObjects& objects, const MessageText& message) {
  if (objects.report == Report::Gls) return ofGls(objects, message);
  return {};
}

}  // namespace lvx::advice
