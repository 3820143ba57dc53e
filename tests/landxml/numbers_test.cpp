#include "landxml/detail/numbers.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "support/random_numbers.h"

namespace lvx::landxml::detail {
namespace {

struct Found {
  std::vector<double> values;
  NumberList rest;
};

Found inPieces(const std::string& text, const std::vector<std::size_t>& cuts) {
  Found found;
  NumberReader reader([&](double value) { found.values.push_back(value); });
  std::size_t from = 0;
  for (const std::size_t cut : cuts) {
    reader.add(std::string_view(text).substr(from, cut - from));
    from = cut;
  }
  reader.add(std::string_view(text).substr(from));
  found.rest = reader.finish();
  return found;
}

void expectSame(const std::string& text, const std::vector<std::size_t>& cuts) {
  const NumberList whole = readNumbers(text);
  const Found parts = inPieces(text, cuts);
  EXPECT_EQ(parts.values, whole.values) << text;
  EXPECT_EQ(parts.rest.problem, whole.problem) << text;
  EXPECT_EQ(parts.rest.repairedSigns, whole.repairedSigns) << text;
  EXPECT_EQ(parts.rest.firstRepaired, whole.firstRepaired) << text;
}

TEST(NumberReader, ReadsTheSameWhereverThePiecesPart) {
  for (const std::string text : {"", " ", "1", "12.5 -3 4e2", "\n 1.25\t2\n", "- 1.2 - 3", "-", "1 -", "1 - ", "- - 2",
                                 "- -2", "1 2,5 3", "7 -\n\n 8 -9", "1 nan 2", "+4 +-5", "1 2 - x 3"}) {
    for (std::size_t a = 0; a <= text.size(); ++a) {
      expectSame(text, {a});
      for (std::size_t b = a; b <= text.size(); ++b) expectSame(text, {a, b});
    }
  }
}

TEST(NumberReader, ReadsRandomTextsLikeReadNumbers) {
  auto random = lvx::test::seededByTestName();
  constexpr std::string_view kLetters = "0123456789.-+ \n  e";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::size_t i = random() % 30; i > 0; --i) text += kLetters[random() % kLetters.size()];
    std::vector<std::size_t> cuts;
    for (std::size_t at = random() % 5; at < text.size(); at += 1 + random() % 6) cuts.push_back(at);
    expectSame(text, cuts);
  }
}

// Longer than the pieces in which a document keeps a text.
TEST(LongLists, ComeThroughWhole) {
  std::string ground;
  std::string line;
  constexpr int kCount = 30'000;
  for (int i = 0; i < kCount; ++i) {
    ground += std::to_string(i) + (i % 1000 == 7 ? " - 4" : " 4") + std::to_string(i % 10) + ".25 ";
    line += std::to_string(i % 2) + ".5 " + std::to_string(10 * i) + "\n";
  }
  const auto drawing = readDrawingText(
      "<LandXML xmlns=\"http://www.landxml.org/schema/LandXML-1.2\" version=\"1.2\"><Units><Metric "
      "linearUnit=\"meter\"/></Units><Alignments><Alignment name=\"A\" staStart=\"0\"><CoordGeom><IrregularLine>"
      "<PntList2D>" +
          line + "</PntList2D></IrregularLine></CoordGeom><Profile><ProfSurf name=\"G\"><PntList2D>" + ground +
          "</PntList2D></ProfSurf></Profile></Alignment></Alignments></LandXML>",
      "long.xml");
  ASSERT_EQ(drawing.siteless.alignments.size(), 1U);
  const civil::AlignmentObject& alignment = *drawing.siteless.alignments[0];
  ASSERT_EQ(alignment.geometry.elements().size(), std::size_t{kCount} - 1);
  ASSERT_EQ(alignment.profiles.size(), 1U);
  const auto points = alignment.profiles[0].profile.points();
  ASSERT_EQ(points.size(), std::size_t{kCount});
  for (std::size_t i = 0; i < points.size(); ++i) {
    ASSERT_EQ(points[i].station, static_cast<double>(i));
    ASSERT_EQ(points[i].elevation, (i % 1000 == 7 ? -1 : 1) * (40.25 + static_cast<double>(i % 10))) << i;
  }
  const civil::Element last = alignment.geometry.elements().back();
  EXPECT_EQ(last.start, (civil::Vec2{10.0 * (kCount - 2), 0.5}));
  EXPECT_EQ(last.givenEnd, (civil::Vec2{10.0 * (kCount - 1), 1.5}));
}

}  // namespace
}  // namespace lvx::landxml::detail
