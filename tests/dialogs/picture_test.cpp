#include "dialogs/picture.h"

#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::dialogs {
namespace {

TEST(Pictures, AreAllThereAndAllDifferent) {
  const std::string_view names[] = {kPictureSite,       kPictureAlignment, kPictureSampleLineGroup, kPictureSurface,
                                    kPicturePointGroup, kPicturePoint,     kPictureProfile,         kPictureCorridor,
                                    kPicturePick,       kPictureSave};
  std::set<std::vector<std::uint8_t>> contents;
  for (const std::string_view name : names) {
    const PictureBits* picture = findPicture(name);
    ASSERT_NE(picture, nullptr) << name;
    contents.emplace(picture->bytes.begin(), picture->bytes.end());
  }
  EXPECT_EQ(contents.size(), std::size(names));
  EXPECT_EQ(allPictures().size(), std::size(names));
  EXPECT_EQ(findPicture("IDB_NOBODY"), nullptr);
}

TEST(Pictures, HaveWhiteBehindAndAShapeInFront) {
  for (const PictureBits& picture : allPictures()) {
    int white = 0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4)
      white += picture.bytes[i] == 255 && picture.bytes[i + 1] == 255 && picture.bytes[i + 2] == 255;
    EXPECT_GT(white, 40) << picture.name;
    EXPECT_LT(white, 236) << picture.name;
  }
}

TEST(FaceColour, ReplacesEveryWhitePixelAndNothingElse) {
  std::vector<std::uint8_t> bits{255, 255, 255, 7, 255, 255, 254, 0, 0, 0, 0, 0};
  replaceWhite(bits, {.red = 1, .green = 2, .blue = 3});
  EXPECT_EQ(bits, (std::vector<std::uint8_t>{3, 2, 1, 7, 255, 255, 254, 0, 0, 0, 0, 0}));
}

TEST(FaceColour, TreatsAtMost2048Bytes) {
  std::vector<std::uint8_t> bits(2056, 255);
  replaceWhite(bits, {.red = 0, .green = 0, .blue = 0});
  EXPECT_EQ(bits[2044], 0);
  EXPECT_EQ(bits[2048], 255);
}

TEST(FaceColour, LeavesAnUnfinishedLastPixelAlone) {
  std::vector<std::uint8_t> bits(6, 255);
  replaceWhite(bits, {});
  EXPECT_EQ(bits[4], 255);
}

}  // namespace
}  // namespace lvx::dialogs
