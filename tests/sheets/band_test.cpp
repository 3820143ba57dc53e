// What is thinned out under a drawing, and the small rules that sheets are made by.
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording_canvas.h"
#include "sheets/book.h"
#include "sheets/paper.h"
#include "sheets/settings.h"
#include "sheets/sheet_frame.h"
#include "sheets/value_band.h"

namespace lvx::sheets {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Thinned, KeepsTheWeightierOfTwoThatAreTooClose) {
  const std::vector<BandPlace> places{{0.0, 1.0}, {1.0, 5.0}, {2.0, 1.0}, {6.0, 0.0}, {6.5, 0.0}};
  EXPECT_THAT(thinned(places, 2.0), ElementsAre(1, 3));
}

TEST(Thinned, LeavesNoTwoCloserAndNoGapThatAPlaceWouldFit) {
  std::mt19937 random(20);
  std::uniform_real_distribution<double> at(0.0, 300.0);
  std::vector<BandPlace> places;
  for (int i = 0; i < 2000; ++i) places.push_back({at(random), at(random)});
  const std::vector<std::size_t> left = thinned(places, kTextSpacing);
  ASSERT_GT(left.size(), 50U);
  for (std::size_t i = 1; i < left.size(); ++i) EXPECT_GE(places[left[i]].x - places[left[i - 1]].x, kTextSpacing);
  for (const BandPlace& place : places) {
    double nearest = std::numeric_limits<double>::max();
    for (const std::size_t i : left) nearest = std::min(nearest, std::abs(places[i].x - place.x));
    EXPECT_LT(nearest, kTextSpacing);
  }
}

TEST(ShapeWeights, GiveTheEndsMostAndACornerMoreThanAPointOnALine) {
  const std::vector<civil::Vec2> line{{0, 0}, {5, 0}, {10, 4}, {15, 2.001}, {20, 0}};
  const std::vector<double> weights = shapeWeights(line);
  EXPECT_GT(weights[0], weights[2]);
  EXPECT_GT(weights[4], weights[2]);
  EXPECT_GT(weights[2], weights[1]);
  EXPECT_GT(weights[1], weights[3]);
  EXPECT_NEAR(weights[3], 0.001, 1e-9);
  EXPECT_TRUE(shapeWeights({}).empty());
}

TEST(Paper, IsReadByNameAndByMillimetres) {
  struct Row {
    const char* text;
    bool isUpright;
    double width, height;
  };
  for (const Row& row : {Row{"A4", false, 297, 210}, Row{"A3", true, 297, 420}, Row{"A0", false, 1189, 841},
                         Row{"900x600", true, 900, 600}, Row{"300.5x210", false, 300.5, 210}}) {
    const auto paper = paperOf(row.text, row.isUpright);
    ASSERT_TRUE(paper) << row.text;
    EXPECT_EQ(paper->width, row.width) << row.text;
    EXPECT_EQ(paper->height, row.height) << row.text;
  }
  for (const char* const text :
       {"", "A5", "a4", "100x100", "x", "300x", "300x200x1", "6000x300", "nanx300", "300,5x210"})
    EXPECT_FALSE(paperOf(text, false)) << text;
  EXPECT_EQ(paperText({420, 297}), "A3");
  EXPECT_EQ(paperText({900, 600}), "900 x 600 mm");
}

TEST(RoundPlaces, AreTheMultiplesBetweenTwoPlaces) {
  EXPECT_THAT(roundPlaces(-0.3, 0.4, 0.2), ElementsAre(-0.2, 0.0, 0.2, 0.4));
  EXPECT_THAT(roundPlaces(7.0, 9.0, 10.0), ElementsAre());
  EXPECT_THAT(roundPlaces(0.0, 1.0, 1e-6), ElementsAre());
}

TEST(RoundPlaces, ComeToAnEndWhereAPlaceAndTheNextOneAreTheSameNumber) {
  EXPECT_LE(roundPlaces(1e12, 1e12, 1e-6).size(), 1U);
  EXPECT_LE(roundPlaces(1e12, 1e12 + 0.0005, 1e-6).size(), 2000U);
}

TEST(Datum, IsRoundAndLeavesRoom) {
  for (const double low : {487.31, -3.2, 0.0, 12345.6}) {
    const double datum = datumBelow(low, 5.0, 6.0);
    EXPECT_GE((low - datum) * 5.0, 6.0 - 1e-9) << low;
    EXPECT_LE((low - datum) * 5.0, 11.0 + 1e-9) << low;
    EXPECT_NEAR(std::remainder(datum, 1.0), 0.0, 1e-9) << low;
  }
}

TEST(Fitted, EndsWithAnEllipsisWithinCharacters) {
  EvenMeasure measure;
  const canvas::TextStyle style{.height = 2.0};
  const std::string name = "Höhenänderung der Straße";
  EXPECT_EQ(fitted(measure, name, style, 1000.0), name);
  for (double width = 0.0; width < 40.0; width += 0.7) {
    const std::string text = fitted(measure, name, style, width);
    EXPECT_LE(measure.widthOf(text, style), width);
    // Each begin is UTF-8: a byte that goes on with a character has its first one before it.
    if (!text.empty()) {
      EXPECT_THAT(text, HasSubstr("…")) << width;
    }
    const std::string begin = text.empty() ? text : text.substr(0, text.size() - std::string("…").size());
    EXPECT_EQ(name.compare(0, begin.size(), begin), 0);
    if (begin.size() < name.size()) {
      EXPECT_NE(static_cast<unsigned char>(name[begin.size()]) & 0xC0U, 0x80U) << text;
    }
  }
}

TEST(BookFiles, AreOneForAPdfAndOneForEachSheetOfAnSvg) {
  EXPECT_THAT(bookFiles("out/a.pdf", 12), ElementsAre("out/a.pdf"));
  EXPECT_THAT(bookFiles("out/a.svg", 1), ElementsAre("out/a.svg"));
  EXPECT_THAT(bookFiles("out/a.b.SVG", 3), ElementsAre("out/a.b-01.SVG", "out/a.b-02.SVG", "out/a.b-03.SVG"));
  EXPECT_EQ(bookFiles("a.svg", 120).back(), "a-120.svg");
  EXPECT_TRUE(isBookName("x.PDF"));
  EXPECT_FALSE(isBookName("x.png"));
  EXPECT_FALSE(isBookName("pdf"));
}

TEST(MomentText, IsTheDayAndTimeInUtc) {
  EXPECT_EQ(momentText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(momentText(1'700'000'000), "2023-11-14T22:13:20Z");
  EXPECT_EQ(dayText(1'709'164'800), "2024-02-29");
}

}  // namespace
}  // namespace lvx::sheets
