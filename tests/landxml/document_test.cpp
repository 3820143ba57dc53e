#include "landxml/detail/document.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::landxml::detail {
namespace {

using testing::ElementsAre;

Node onlyChild(Node node) {
  Node only;
  for (const Node inner : node.children()) only = inner;
  return only;
}

std::vector<std::string> namesOf(Node parent) {
  std::vector<std::string> names;
  for (const Node inner : parent.children()) names.push_back(inner.name());
  return names;
}

/// A document of one element with a text in pieces.
std::string textOf(const std::vector<std::string>& pieces) {
  Document document;
  document.open("P", 1);
  for (const std::string& piece : pieces) document.text(piece);
  document.close();
  return document.root().text();
}

TEST(Document, GivesElementsAttributesAndTextAsTheyStood) {
  Document document;
  document.open("lx:LandXML", 1);
  document.attribute("version", "1.2");
  document.text("\n  ");
  document.open("Line", 2);
  document.attribute("name", "");
  document.text("1234.5 -6");
  document.close();
  document.open("Feature", 3);
  document.close();
  document.close();

  const Node root = document.root();
  EXPECT_EQ(root.name(), "lx:LandXML");
  EXPECT_EQ(root.localName(), "LandXML");
  EXPECT_STREQ(root.attribute("version").value(), "1.2");
  EXPECT_FALSE(root.attribute("date"));
  EXPECT_STREQ(root.attribute("date").value(), "");
  EXPECT_EQ(root.text(), "");
  EXPECT_THAT(namesOf(root), ElementsAre("Line", "Feature"));
  const Node line = *root.children().begin();
  EXPECT_TRUE(line.attribute("name"));
  EXPECT_EQ(line.text(), "1234.5 -6");
}

TEST(Document, AnEmptyNodeAnswersAsIfItHadNothing) {
  const Node none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.name(), "");
  EXPECT_EQ(none.text(), "");
  EXPECT_EQ(none.place(), -1);
  EXPECT_FALSE(none.attribute("name"));
  EXPECT_FALSE(none.parent());
  EXPECT_THAT(namesOf(none), ElementsAre());
  EXPECT_FALSE(Document().root());
}

TEST(Document, JoinsTextAndDropsWhatIsBlankBetweenTags) {
  Document document;
  document.open("A", 1);
  document.text(" 1");
  document.open("B", 1);
  document.text(" \r\n ");
  document.close();
  document.text("\t\n");
  document.open("C", 2);
  document.rawText("<&amp;>");
  document.close();
  document.text("2 ");
  document.close();
  EXPECT_EQ(document.root().text(), " 12 ");
  std::vector<std::string> inner;
  for (const Node node : document.root().children()) inner.push_back(node.text());
  EXPECT_THAT(inner, ElementsAre("", "<&amp;>"));
}

TEST(Document, ReadsEntitiesAndLineEndsAsXmlDoes) {
  EXPECT_EQ(textOf({"a\r\nb\rc\nd"}), "a\nb\nc\nd");
  EXPECT_EQ(textOf({"a\r", "\nb"}), "a\nb");
  EXPECT_EQ(textOf({"&lt;&#x41;&#13;&amp;"}), "<A\r&");
  EXPECT_EQ(textOf({"&#32;"}), " ");
  Document document;
  document.open("A", 1);
  document.attribute("name", "a\r\nb\tc\nd&quot;&#10;");
  document.close();
  EXPECT_STREQ(document.root().attribute("name").value(), "a b c d\"\n");
  EXPECT_FALSE(document.badEntity());
}

TEST(Document, TellsTheFirstTextThatIsNoEntity) {
  Document document;
  document.open("A", 1);
  document.text("\n&nbsp; &nothing;");
  document.close();
  ASSERT_TRUE(document.badEntity());
  EXPECT_EQ(document.badEntity()->shown, "&nbsp;");
  EXPECT_EQ(document.badEntity()->at, 1U);
}

TEST(Document, KeepsLongTextsWholeWhateverTheyHold) {
  std::string numbers;
  for (int i = 0; i < 40'000; ++i) numbers += std::to_string(i) + (i % 7 == 0 ? "\n" : " ");
  EXPECT_EQ(textOf({numbers, "x", numbers}), numbers + "x" + numbers);
  EXPECT_EQ(textOf({std::string(4096, ' '), "7"}), std::string(4096, ' ') + "7");
  for (const std::string text : {"1", "12", "1 2", "-1.5 +3", "1e5", "\x31\xC3\xA4"}) EXPECT_EQ(textOf({text}), text);
}

TEST(Document, KeepsOfManyBlanksInARowThatNumbersStandApart) {
  const std::string blanks = std::string(50'000, ' ') + "\n\t" + std::string(50'000, ' ');
  EXPECT_EQ(textOf({blanks, "7", blanks, blanks, "8"}), std::string(4096, ' ') + "7" + std::string(4096, ' ') + "8");
  Document document;
  document.open("A", 1);
  for (int i = 0; i < 100; ++i) document.text(blanks);
  document.text("7");
  for (int i = 0; i < 100; ++i) document.text(blanks);
  document.close();
  EXPECT_LT(document.byteCount(), 10'000U);
}

TEST(Document, GivesAValueThatComesAgainOnceAndEverywhere) {
  const std::vector<std::string> values{"Daylight", "Crown", "Daylight", std::string(300, 'x'), "ab", "ab", "Crown"};
  Document document;
  document.open("A", 1);
  for (int round = 0; round < 1000; ++round) {
    for (const std::string& value : values) {
      document.open("P", 1);
      document.attribute("code", value);
      document.attribute("again", value);
      document.close();
    }
  }
  document.close();
  std::size_t i = 0;
  for (const Node node : document.root().children()) {
    ASSERT_EQ(node.attribute("code").value(), values[i % values.size()]) << i;
    ASSERT_EQ(node.attribute("again").value(), values[i % values.size()]) << i;
    ++i;
  }
  EXPECT_EQ(i, 1000 * values.size());
}

TEST(Document, KnowsLinePlaceAndParentOfEveryElement) {
  Document document;
  document.keepParents();
  std::vector<std::size_t> places;
  std::vector<std::size_t> lines;
  const auto open = [&](std::size_t line) {
    places.push_back(document.open("E", line));
    lines.push_back(line);
  };
  std::size_t line = 1;
  open(line);
  for (int group = 0; group < 50; ++group) {
    open(line += 2);
    for (int i = 0; i < 100; ++i) {
      open(line += i % 3);
      document.attribute("name", std::to_string(i));
      document.text("1 2 3");
      document.close();
    }
    document.close();
  }
  document.close();

  ASSERT_EQ(document.root().place(), static_cast<std::ptrdiff_t>(places[0]));
  for (std::size_t i = 0; i < places.size(); ++i) {
    ASSERT_EQ(document.lineAt(places[i]), lines[i]) << i;
    const Node node = document.at(places[i]);
    const std::size_t parent = i % 101 == 1 ? 0 : (i - 1) / 101 * 101 + 1;
    if (i == 0)
      EXPECT_FALSE(node.parent());
    else
      ASSERT_EQ(node.parent().place(), static_cast<std::ptrdiff_t>(places[parent])) << i;
  }
  std::vector<std::size_t> walked;
  document.eachElement([&](Node node) { walked.push_back(static_cast<std::size_t>(node.place())); });
  EXPECT_EQ(walked, places);
  EXPECT_EQ(document.lineAt(document.byteCount()), 0U);
}

TEST(Document, NeedsAThirdOfTheMarkupOfSections) {
  Document document;
  std::size_t markup = 0;
  document.open("CrossSects", 1);
  for (int i = 0; i < 10'000; ++i) {
    const std::string text = std::to_string(i % 40) + ".250 412.125";
    document.open("CrossSectPnt", static_cast<std::size_t>(i + 2));
    document.attribute("code", "Daylight");
    document.text(text);
    document.close();
    markup += std::string("<CrossSectPnt code=\"Daylight\"></CrossSectPnt>\n").size() + text.size();
  }
  document.close();
  EXPECT_LT(document.byteCount() * 3, markup);
  EXPECT_EQ(onlyChild(document.root()).text(), "39.250 412.125");
}

}  // namespace
}  // namespace lvx::landxml::detail
