#include "services/message_catalogue.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "doubles/rescanned_escapes.h"

namespace lvx::services {
namespace {

using test::FakeHost;

/// The catalogue of a file that holds `bytes`.
class Catalogue {
 public:
  explicit Catalogue(const std::string& bytes) {
    host_.useMessageBytes(bytes);
    messages_ = std::make_unique<CxMsg>(host_, test::kMessageFileName);
  }
  [[nodiscard]] CString lookup(std::uint32_t id) const { return messages_->lookup(id); }
  [[nodiscard]] const CxMsg& operator*() const { return *messages_; }
  [[nodiscard]] FakeHost& host() { return host_; }

 private:
  FakeHost host_;
  std::unique_ptr<CxMsg> messages_;
};

TEST(MessageLines, TheNumberRule) {
  struct Row {
    const char* line;
    std::uint32_t id;
    const wchar_t* text;
  };
  const std::vector<Row> rows = {
      {"110 Pick", 110, L"Pick"},
      {" 110 Pick", 110, L"Pick"},
      {"\t\v\f\r 110 Pick", 110, L"Pick"},
      {"007 x", 7, L"x"},
      {"123abc", 123, L"abc"},
      {"12.5", 12, L".5"},
      {"12 34", 12, L"34"},
      {"12\t\v\f x", 12, L"x"},
      {"8 ends in blanks  \t", 8, L"ends in blanks  \t"},
      {"5 \"quoted\" 'too'", 5, L"\"quoted\" 'too'"},
      {"5 50% of %d", 5, L"50% of %d"},
      {"4294967295 largest", 4294967295U, L"largest"},
      {"4294967301 wraps", 5, L"wraps"},
      {"99999999999999999999999999 wraps often", 3825205247U, L"wraps often"},
      {"1 \xE4\x80\x81", 1, L"\u00E4\u20AC\u0081"},
      {"1 \xA0", 1, L"\u00A0"},
  };
  for (const Row& row : rows)
    for (const char* end : {"", "\n", "\r\n", "\r", "\n\r", "\r\r\n"}) {
      const Catalogue catalogue(row.line + std::string(end));
      EXPECT_EQ(catalogue.lookup(row.id), row.text) << row.line;
      EXPECT_EQ((*catalogue).messages().size(), 1) << row.line;
    }
}

TEST(MessageLines, WhateverDoesNotBeginWithANumberIsAComment) {
  for (const char* line :
       {"", " ", "\r\n", "; 1 x", "-1 x", "+1 x", "# 1", "x1", "0 x", "000 x", "4294967296 x", "\"1 x\"",
        "\xA0"
        "1 x",
        "\xB9 x",
        "\xEF\xBB\xBF"
        "1 x"}) {
    const Catalogue catalogue(line);
    EXPECT_TRUE((*catalogue).messages().isEmpty()) << line;
    EXPECT_EQ((*catalogue).fileName(), test::kMessageFileName);
  }
}

TEST(MessageLines, AByteOrderMarkCostsTheFirstLineOnly) {
  const Catalogue catalogue(
      "\xEF\xBB\xBF"
      "1 a\r\n2 b\r\n");
  EXPECT_EQ(catalogue.lookup(1), L"*1*");
  EXPECT_EQ(catalogue.lookup(2), L"b");
}

TEST(MessageLines, ANumberAloneHasTheEmptyText) {
  for (const char* line : {"5", "5   ", "5 \r\n", "5\r\n", "5   \n", "5\t \r\n6 next"}) {
    const Catalogue catalogue(line);
    EXPECT_EQ(catalogue.lookup(5), L"") << line;
  }
}

TEST(MessageLines, OfTwoWithOneNumberTheEarlierWinsAndBothAreKept) {
  const Catalogue catalogue("110 Pick\n 110 Other\n111 x\n");
  EXPECT_EQ(catalogue.lookup(110), L"Pick");
  ASSERT_EQ((*catalogue).messages().size(), 3);
  EXPECT_EQ((*catalogue).messages()[1]->id, 110U);
  EXPECT_EQ((*catalogue).messages()[1]->text, L"Other");
  EXPECT_EQ((*catalogue).messages()[2]->text, L"x");
}

TEST(MessageLines, ALineGoesOnAsALineOfItsOwnAfter2045Bytes) {
  const Catalogue catalogue("7 " + std::string(2998, 'a') + "\n8 b\n");
  EXPECT_EQ(catalogue.lookup(7), CString(2043, L'a'));
  EXPECT_EQ(catalogue.lookup(8), L"b");
  EXPECT_EQ((*catalogue).messages().size(), 2);
}

TEST(MessageLines, TheRestOfALongLineMayBeAMessageByItself) {
  const Catalogue catalogue("7 " + std::string(2043, 'a') + "9 b\n");
  EXPECT_EQ(catalogue.lookup(7), CString(2043, L'a'));
  EXPECT_EQ(catalogue.lookup(9), L"b");
}

TEST(MessageLines, ALineOfExactly2045BytesLeavesItsLineEndBehind) {
  const Catalogue catalogue("7 " + std::string(2043, 'a') + "\r\n8 b\r\n");
  EXPECT_EQ(catalogue.lookup(7), CString(2043, L'a'));
  EXPECT_EQ(catalogue.lookup(8), L"b");
  EXPECT_EQ((*catalogue).messages().size(), 2);
}

TEST(MessageLines, AnEscapeCutByThePieceStaysABackslash) {
  const Catalogue catalogue("7 " + std::string(2042, 'a') + "\\n8\n");
  EXPECT_EQ(catalogue.lookup(7), CString(2042, L'a') + L"\\");
}

TEST(MessageLines, AZeroByteEndsWhatTheLineSays) {
  using namespace std::string_literals;
  const Catalogue catalogue("7 ab\0cd\n8 x\n\0009 y\n10\0 z\n"s);
  EXPECT_EQ(catalogue.lookup(7), L"ab");
  EXPECT_EQ(catalogue.lookup(8), L"x");
  EXPECT_EQ(catalogue.lookup(9), L"*9*");
  EXPECT_EQ(catalogue.lookup(10), L"");
}

TEST(MessageLines, FollowTheCodePageOfTheHost) {
  FakeHost host({.messageCodePage = "WINDOWS-1251"});
  host.useMessageBytes("103 \xCE\xF1\xFC");
  EXPECT_EQ(getMessage(Message::SiteLabel), L"\u041E\u0441\u044C");
}

// ---------------------------------------------------------------- escapes

TEST(MessageEscapes, EveryOneOfTheList) {
  struct Row {
    const wchar_t* text;
    const wchar_t* expected;
  };
  const std::vector<Row> rows = {
      {L"\\a", L"\a"},
      {L"\\b", L"\b"},
      {L"\\f", L"\f"},
      {L"\\n", L"\n"},
      {L"\\r", L"\r"},
      {L"\\t", L"\t"},
      {L"\\v", L"\v"},
      {L"\\'", L"'"},
      {L"\\\"", L"\""},
      {L"\\\\", L"\\"},
      {L"\\?", L"?"},
      // Anything else keeps its backslash.
      {L"\\", L"\\"},
      {L"a\\", L"a\\"},
      {L"\\c\\0\\x41\\N", L"\\c\\0\\x41\\N"},
      {L"", L""},
      {L"plain", L"plain"},
      // A doubled backslash protects nothing.
      {L"\\\\n", L"\\\n"},
      {L"\\\\\\n", L"\\\n"},
      {L"C:\\\\new\\\\road", L"C:\\\new\\\road"},
      {L"\\\\c", L"\\c"},
      // A run collapses to one.
      {L"\\\\\\\\\\\\\\", L"\\"},
      {L"a\\\\\\\\c\\\\\\\\", L"a\\c\\"},
      // What remains joins the next character.
      {L"\\\\?", L"?"},
      {L"\\\\\\\\\\?", L"?"},
      {L"\\\\'", L"'"},
      {L"\\\\\\\"", L"\""},
      {L"\\?\\?\\'", L"?\?'"},
  };
  for (const Row& row : rows) EXPECT_EQ(replaceEscapes(row.text), row.expected) << testing::PrintToString(row.text);
}

TEST(MessageEscapes, AgreeWithTheRescanningSearchOnEveryShortText) {
  constexpr std::wstring_view kLetters = L"\\na'\"?x";
  std::size_t count = 0;
  std::vector<CString> texts{L""};
  for (int length = 0; length < 7; ++length) {
    std::vector<CString> longer;
    for (const CString& text : texts) {
      ASSERT_EQ(replaceEscapes(text), test::replaceEscapesByRescanning(text)) << testing::PrintToString(text);
      ++count;
      for (const wchar_t letter : kLetters) longer.push_back(text + letter);
    }
    texts = std::move(longer);
  }
  EXPECT_EQ(count, 137257U);
}

TEST(MessageEscapes, ALongRunTakesNoTime) { EXPECT_EQ(replaceEscapes(CString(5'000'000, L'\\') + L"?"), L"?"); }

// ---------------------------------------------------------------- the one catalogue

TEST(MessageCatalogue, WithoutAFileEveryTextIsItsNumberAndTheConsoleHearsOnce) {
  FakeHost host;
  host.run().files[test::kMessageFileName] = L"/no/such/folder/LVX_MIRELREPORT.txt";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(getMessage(Message::HelpButton), L"*5*");
  EXPECT_EQ(getMessage(Message::PickAlignment), L"*110*");
  EXPECT_EQ(getMessage(Message{0}), L"*0*");
  EXPECT_EQ(getMessage(Message{4294967295}), L"*-1*");
  ASSERT_EQ(host.run().console.size(), 1U);
  EXPECT_EQ(host.run().console[0], L"Error opening text file: /no/such/folder/LVX_MIRELREPORT.txt\n");
}

TEST(MessageCatalogue, AFileThatCantBeReadToItsEndIsTold) {
  FakeHost host;
  // Opens, and no page of it can be read.
  const CxMsg messages(host, L"/proc/self/mem");
  EXPECT_EQ(host.run().consoleText(), L"Error reading text file: /proc/self/mem\n");
}

TEST(MessageCatalogue, AFileThatTheHostDoesNotFindIsTriedByItsBareName) {
  FakeHost host;
  const CxMsg messages(host, L"no-such-file.txt");
  EXPECT_EQ(host.run().searchedFiles, std::vector<CString>{L"no-such-file.txt"});
  EXPECT_EQ(host.run().consoleText(), L"Error opening text file: no-such-file.txt\n");
  EXPECT_EQ(messages.fileName(), L"");
  EXPECT_EQ(messages.lookup(7), L"*7*");
}

TEST(MessageCatalogue, KeepsTheNameItWasAskedForNotThePathThatWasFound) {
  const Catalogue catalogue("1 x");
  EXPECT_EQ((*catalogue).fileName(), test::kMessageFileName);
}

TEST(MessageCatalogue, APathOf2048CharactersIsNotFound) {
  FakeHost host;
  host.run().files[L"a"] = CString(2048, L'x');
  const CxMsg messages(host, L"a");
  EXPECT_EQ(host.run().consoleText(), L"Error opening text file: a\n");
}

TEST(MessageCatalogue, IsReadAtTheFirstLookupAndNeverAgain) {
  FakeHost host;
  EXPECT_TRUE(host.run().searchedFiles.empty());
  host.useMessageBytes("5 first");
  EXPECT_EQ(getMessage(Message::HelpButton), L"first");
  const CString path = host.run().files[test::kMessageFileName];
  { std::fputs("5 second", host.platform().openFile(path, "wb").get()); }
  EXPECT_EQ(getMessage(Message::HelpButton), L"first");
  EXPECT_EQ(host.run().searchedFiles.size(), 1U);
  // Unloading the module forgets it.
  releaseMessages();
  EXPECT_EQ(getMessage(Message::HelpButton), L"second");
}

TEST(MessageCatalogue, AFileThatComesTooLateIsNotRead) {
  FakeHost host;
  host.run().files[test::kMessageFileName] = host.folder() + L"later.txt";
  EXPECT_EQ(getMessage(Message::HelpButton), L"*5*");
  { std::fputs("5 late", host.platform().openFile(host.folder() + L"later.txt", "wb").get()); }
  EXPECT_EQ(getMessage(Message::HelpButton), L"*5*");
}

TEST(MessageCatalogue, PercentSignsAndConsoleFormatsAreLeftAlone) {
  FakeHost host;
  host.run().files[test::kMessageFileName] = L"/no/100%s";
  EXPECT_EQ(getMessage(Message::HelpButton), L"*5*");
  EXPECT_EQ(host.run().consoleText(), L"Error opening text file: /no/100%s\n");
}

}  // namespace
}  // namespace lvx::services
