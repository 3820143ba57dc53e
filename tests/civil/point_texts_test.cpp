#include "civil/point_texts.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace lvx::civil {
namespace {

TEST(PointTexts, HoldsThreeTextsOfAnyLength) {
  const std::string long_(100'000, 'x');
  const PointTexts texts("P1", "", long_);
  EXPECT_EQ(texts.name(), "P1");
  EXPECT_EQ(texts.description(), "");
  EXPECT_EQ(texts.fullDescription(), long_);
}

TEST(PointTexts, WithoutAnyTextAreEmptyAndEqual) {
  EXPECT_EQ(PointTexts(), PointTexts("", "", ""));
  EXPECT_EQ(PointTexts().name(), "");
  EXPECT_EQ(PointTexts().fullDescription(), "");
}

TEST(PointTexts, AChangeLeavesCopiesAsTheyWere) {
  PointTexts one("1", "TR", "Oak");
  const PointTexts copy = one;
  EXPECT_EQ(copy.description().data(), one.description().data()) << "the memory is shared";
  one.setName("2");
  one.setFullDescription(one.description());
  one.setDescription({});
  EXPECT_EQ(one, PointTexts("2", "", "TR"));
  EXPECT_EQ(copy, PointTexts("1", "TR", "Oak"));
}

TEST(PointTexts, OutliveTheTextsThatTheyWereCopiedFrom) {
  PointTexts kept;
  {
    PointTexts first("1", "TR", "Oak");
    kept = first;
    PointTexts moved = std::move(first);
    moved = {};
  }
  EXPECT_EQ(kept, PointTexts("1", "TR", "Oak"));
  EXPECT_NE(kept, PointTexts("1", "TRO", "ak"));
  const PointTexts& same = kept;
  kept = same;
  EXPECT_EQ(kept.name(), "1");
}

}  // namespace
}  // namespace lvx::civil
