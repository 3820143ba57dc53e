#include "doubles/message_file.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "services/message_catalogue.h"
#include "support/places.h"

namespace lvx::test {
namespace {

using services::getMessage;
using services::Message;
using testing::HasSubstr;

std::uint32_t numberOf(Message message) { return static_cast<std::uint32_t>(message); }

std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string messageFile(const std::string& language) {
  return fileBytes(std::filesystem::path(test::inSource("")) / "messages" / language / "LVX_MIRELREPORT.txt");
}

/// The English file with the text of one message changed.
std::string changed(Message message, const std::string& text) {
  const std::string number = std::to_string(numberOf(message));
  std::string bytes = messageFile("en");
  const std::size_t at = bytes.find("\n" + number + " ") + 1;
  const std::size_t end = bytes.find('\r', at);
  return bytes.replace(at, end - at, number + " " + text);
}

TEST(MessageFiles, OfEveryLanguageCanBeShipped) {
  std::size_t languages = 0;
  for (const auto& folder :
       std::filesystem::directory_iterator(std::filesystem::path(test::inSource("")) / "messages")) {
    const std::string language = folder.path().filename().string();
    EXPECT_THAT(messageFileComplaints(messageFile(language)), testing::IsEmpty()) << language;
    ++languages;
  }
  EXPECT_GE(languages, 2U);
}

TEST(MessageFiles, GiveTheCatalogueEveryNumberInUse) {
  for (const char* language : {"en", "de"}) {
    FakeHost host;
    host.useMessages(language);
    for (const MessageInUse& known : messagesInUse())
      EXPECT_NE(getMessage(known.message), L"*" + std::to_wstring(numberOf(known.message)) + L"*");
    EXPECT_EQ(host.run().consoleText(), L"");
  }
  EXPECT_EQ(messagesInUse().size(), 96U);
}

TEST(MessageFiles, HoldTheLettersOfTheirLanguage) {
  FakeHost host;
  host.useMessages("de");
  EXPECT_EQ(getMessage(Message::ProjectionElevation), L"H\u00F6he");
  EXPECT_EQ(getMessage(Message::ClothoidStart), L"\u00DCA");
}

TEST(MessageFiles, TheirTwoPartQuestionIsOneText) {
  FakeHost host;
  host.useMessages("en");
  const CString question = getMessage(Message::AddSectionsQuestion) + getMessage(Message::AddSectionsAnswers);
  EXPECT_THAT(question, HasSubstr(L"rebuild them?\n\nOK changes the drawing.\nCancel leaves it"));
}

// ---------------------------------------------------------------- one list of numbers

/// True where the list names `message`: compilers write such a value as a name, and any other as a cast number.
template <Message message>
constexpr bool isNamed() {
  const std::string_view signature = __PRETTY_FUNCTION__;
  return signature.find("Message::", signature.rfind('=')) != std::string_view::npos;
}
static_assert(isNamed<Message::NoCorridor>() && !isNamed<Message{2}>());

template <std::uint32_t... numbers>
std::set<std::uint32_t> namedAmong(std::integer_sequence<std::uint32_t, numbers...>) {
  std::set<std::uint32_t> named;
  ((isNamed<Message{numbers}>() ? named.insert(numbers) : std::pair(named.end(), false)), ...);
  return named;
}

/// The numbers of services::Message.
std::set<std::uint32_t> listed() { return namedAmong(std::make_integer_sequence<std::uint32_t, 1000>()); }

/// The numbers with which the lines of a text begin that begin with `mark` and a digit.
std::vector<std::uint32_t> numbersOfLines(const std::string& text, std::string_view mark) {
  std::vector<std::uint32_t> numbers;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::uint32_t number = 0;
    if (!line.starts_with(mark)) continue;
    if (std::from_chars(line.data() + mark.size(), line.data() + line.size(), number).ec == std::errc())
      numbers.push_back(number);
  }
  return numbers;
}

TEST(MessageNumbers, StandInEveryMessageFileAndNoOthersDo) {
  for (const char* language : {"en", "de"})
    EXPECT_THAT(numbersOfLines(messageFile(language), ""), testing::UnorderedElementsAreArray(listed())) << language;
}

TEST(MessageNumbers, AreExplainedToTranslatorsEachInItsRow) {
  const std::string page = fileBytes(test::inSource("/docs/messages.md"));
  EXPECT_THAT(numbersOfLines(page, "| "), testing::ElementsAreArray(listed()));
}

TEST(MessageNumbers, AreCheckedEachByTheRulesForItsPlace) {
  std::vector<std::uint32_t> checked;
  for (const MessageInUse& known : messagesInUse()) checked.push_back(numberOf(known.message));
  EXPECT_THAT(checked, testing::ElementsAreArray(listed()));
}

// ---------------------------------------------------------------- the checker finds what is wrong

TEST(MessageFileChecker, NamesTheFaultOfAMessage) {
  struct Row {
    Message message;
    const char* text;
    const char* complaint;
  };
  const std::vector<Row> rows = {
      {Message::FileFilter, "Text (*.txt)|*.txt|", "message 1 is no complete filter"},
      {Message::FileFilter, "Text (*.txt)|*.txt", "message 1 is no complete filter"},
      {Message::FileFilter, "Text (*.txt)||", "message 1 is no complete filter"},
      {Message::FileFilter, "*.txt|Text (*.txt)||", "message 1 is no complete filter"},
      {Message::FileFilter, "|", "message 1 is no complete filter"},
      {Message::CancelButton, "Leave this dialog", "message 4 is longer than 11 characters"},
      {Message::ProjectionTitle, "50% projection", "message 101 holds a percent sign"},
      {Message::OutputPath, "100%%", "message 118 holds a percent sign"},
      {Message::Date, "Dat", "message 120 doesn't put the colons of 118 to 120 under each other"},
      {Message::PointsTitle, "\x93Points\x94", "message 201 holds a character that a text file can't"},
      {Message::GlsTitle, "G\\tLS", "message 301 holds a character that a text file can't"},
      {Message::SampleLineName, "<b>Line</b>", "message 122 holds markup"},
      {Message::NoSite, "No site", "message 109 doesn't begin with a star"},
      {Message::AsciiForm, "&ASCII te&xt", "message 114 has more than one access key"},
      {Message::ExcelForm, "&ASCII workbook", "message 115 has the access key of message 114"},
      {Message::HtmlForm, "&HTML page", "message 116 has the access key of message 5"},
      {Message::ProjectionOffset, "Offset [m]", "message 124 is no name of an XML attribute"},
      {Message::ProjectionOffset, "1st", "message 124 is no name of an XML attribute"},
      {Message::ProjectionElevation, "Offset", "message 125 is the same as message 124"},
      {Message::PointNumber, "Number of point", "message 210 is longer than 12 characters"},
      {Message::GlsCrossFalls, "Cross-fall [1]", "message 316 is longer than 13 characters"},
      {Message::ClothoidElement, "Transition", "message 328 is longer than 8 characters"},
      {Message::VerticalCurveStart, "PVC", "message 333 begins like message 334"},
      {Message::VerticalIntersection, "P", "message 334 has less than two characters"},
      {Message::VerticalIntersection, "BCI", "message 331 begins like message 334"},
      {Message::VerticalIntersection, "IL", "message 334 begins like the rows between two lines"},
      {Message::NoCorridor, "no corridor", "message 346 is longer than 6 characters"},
      {Message::AddSectionsTitle, "", "message 347 is missing"},
  };
  for (const Row& row : rows)
    EXPECT_THAT(messageFileComplaints(changed(row.message, row.text)), testing::ElementsAre(HasSubstr(row.complaint)))
        << row.text;
}

TEST(MessageFileChecker, AOneLetterNameAndItsNumberMayBeginLikeThePointOfIntersection) {
  std::string bytes = changed(Message::VerticalIntersection, "P1");
  const std::size_t at = bytes.find("\n333 BVC") + 5;
  EXPECT_THAT(messageFileComplaints(bytes.replace(at, 3, "P")),
              testing::ElementsAre(HasSubstr("message 333 begins like message 334")));
}

TEST(MessageFileChecker, AcceptsDoubledAmpersandsInCaptions) {
  EXPECT_THAT(messageFileComplaints(changed(Message::SelectionFrame, "Site && alignment")), testing::IsEmpty());
  EXPECT_THAT(messageFileComplaints(changed(Message::HelpButton, "&Help")), testing::IsEmpty());
}

TEST(MessageFileChecker, NamesTheFaultOfALine) {
  const std::string good = messageFile("en");
  struct Row {
    std::string tail;
    const char* complaint;
  };
  const std::vector<Row> rows = {
      {"; a comment\n", "doesn't end in CR LF"},
      {"; a comment", "doesn't end in CR LF"},
      {"; a\rcomment\r\n", "holds a CR"},
      {"; \x81\r\n", "holds a byte that is no character"},
      {std::string("; \0\r\n", 5), "holds a byte that is no character"},
      {";" + std::string(2044, 'x') + "\r\n", "is longer than 2045 bytes"},
      {"a comment\r\n", "is neither a message nor a comment"},
      {"-7 x\r\n", "is neither a message nor a comment"},
      {"0 x\r\n", "is neither a message nor a comment"},
      {"7x\r\n", "is neither a message nor a comment"},
      {"2 x\r\n", "holds the number 2, which nothing asks for"},
      {"317 x\r\n", "holds the number 317, which nothing asks for"},
      {"5 x\r\n", "holds the number 5 again"},
  };
  for (const Row& row : rows)
    EXPECT_THAT(messageFileComplaints(good + row.tail), testing::ElementsAre(HasSubstr(row.complaint))) << row.tail;
}

TEST(MessageFileChecker, AnEmptyFileLacksEverything) {
  EXPECT_GE(messageFileComplaints("").size(), messagesInUse().size());
}

}  // namespace
}  // namespace lvx::test
