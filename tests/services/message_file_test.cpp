#include "doubles/message_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "services/message_catalogue.h"

namespace lvx::test {
namespace {

using testing::HasSubstr;

std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string messageFile(const std::string& language) {
  return fileBytes(std::filesystem::path(LVX_SOURCE_DIR) / "messages" / language / "LVX_MIRELREPORT.txt");
}

/// The English file with the text of one message changed.
std::string changed(std::uint32_t id, const std::string& text) {
  std::string bytes = messageFile("en");
  const std::size_t at = bytes.find("\n" + std::to_string(id) + " ") + 1;
  const std::size_t end = bytes.find('\r', at);
  return bytes.replace(at, end - at, std::to_string(id) + " " + text);
}

TEST(MessageFiles, OfEveryLanguageCanBeShipped) {
  std::size_t languages = 0;
  for (const auto& folder : std::filesystem::directory_iterator(std::filesystem::path(LVX_SOURCE_DIR) / "messages")) {
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
    for (const MessageInUse& message : messagesInUse())
      EXPECT_NE(services::getMessage(services::kMessageSet, message.id), L"*" + std::to_wstring(message.id) + L"*");
    EXPECT_EQ(host.run().consoleText(), L"");
  }
  EXPECT_EQ(messagesInUse().size(), 96U);
}

TEST(MessageFiles, HoldTheLettersOfTheirLanguage) {
  FakeHost host;
  host.useMessages("de");
  EXPECT_EQ(services::getMessage(services::kMessageSet, 125), L"H\u00F6he");
  EXPECT_EQ(services::getMessage(services::kMessageSet, 329), L"\u00DCA");
}

TEST(MessageFiles, TheirTwoPartQuestionIsOneText) {
  FakeHost host;
  host.useMessages("en");
  const CString question =
      services::getMessage(services::kMessageSet, 345) + services::getMessage(services::kMessageSet, 348);
  EXPECT_THAT(question, HasSubstr(L"rebuild them?\n\nOK changes the drawing.\nCancel leaves it"));
}

TEST(MessageFiles, AreExplainedNumberByNumber) {
  const std::string page = fileBytes(std::filesystem::path(LVX_SOURCE_DIR) / "docs" / "messages.md");
  for (const MessageInUse& message : messagesInUse())
    EXPECT_THAT(page, HasSubstr("\n| " + std::to_string(message.id) + " |"));
}

// ---------------------------------------------------------------- the checker finds what is wrong

TEST(MessageFileChecker, NamesTheFaultOfAMessage) {
  struct Row {
    std::uint32_t id;
    const char* text;
    const char* complaint;
  };
  const std::vector<Row> rows = {
      {1, "Text (*.txt)|*.txt|", "message 1 is no complete filter"},
      {1, "Text (*.txt)|*.txt", "message 1 is no complete filter"},
      {1, "Text (*.txt)||", "message 1 is no complete filter"},
      {1, "*.txt|Text (*.txt)||", "message 1 is no complete filter"},
      {1, "|", "message 1 is no complete filter"},
      {4, "Leave this dialog", "message 4 is longer than 11 characters"},
      {101, "50% projection", "message 101 holds a percent sign"},
      {118, "100%%", "message 118 holds a percent sign"},
      {119, "Dat", "message 120 doesn't put the colons of 118 to 120 under each other"},
      {201, "\x93Points\x94", "message 201 holds a character that a text file can't"},
      {301, "G\\tLS", "message 301 holds a character that a text file can't"},
      {122, "<b>Line</b>", "message 122 holds markup"},
      {109, "No site", "message 109 doesn't begin with a star"},
      {114, "&ASCII te&xt", "message 114 has more than one access key"},
      {115, "&ASCII workbook", "message 115 has the access key of message 114"},
      {116, "&HTML page", "message 116 has the access key of message 5"},
      {124, "Offset [m]", "message 124 is no name of an XML attribute"},
      {124, "1st", "message 124 is no name of an XML attribute"},
      {125, "Offset", "message 125 is the same as message 124"},
      {210, "Number of point", "message 210 is longer than 12 characters"},
      {316, "Cross-fall [1]", "message 316 is longer than 13 characters"},
      {328, "Transition", "message 328 is longer than 8 characters"},
      {333, "PVC", "message 333 begins like message 334"},
      {334, "P", "message 334 has less than two characters"},
      {334, "BCI", "message 331 begins like message 334"},
      {334, "IL", "message 334 begins like the rows between two lines"},
      {346, "no corridor", "message 346 is longer than 6 characters"},
      {347, "", "message 347 is missing"},
  };
  for (const Row& row : rows)
    EXPECT_THAT(messageFileComplaints(changed(row.id, row.text)), testing::ElementsAre(HasSubstr(row.complaint)))
        << row.text;
}

TEST(MessageFileChecker, AOneLetterNameAndItsNumberMayBeginLikeThePointOfIntersection) {
  std::string bytes = changed(334, "P1");
  const std::size_t at = bytes.find("\n333 BVC") + 5;
  EXPECT_THAT(messageFileComplaints(bytes.replace(at, 3, "P")),
              testing::ElementsAre(HasSubstr("message 333 begins like message 334")));
}

TEST(MessageFileChecker, AcceptsDoubledAmpersandsInCaptions) {
  EXPECT_THAT(messageFileComplaints(changed(102, "Site && alignment")), testing::IsEmpty());
  EXPECT_THAT(messageFileComplaints(changed(5, "&Help")), testing::IsEmpty());
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
