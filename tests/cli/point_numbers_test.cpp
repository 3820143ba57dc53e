#include "cli/point_numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/failure.h"

namespace lvx::cli {
namespace {

using Ranges = std::vector<NumberRange>;
using testing::HasSubstr;

/// The exit code and words with which `action` fails.
template <class Action>
std::pair<int, std::string> failureOf(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    return {failure.code(), failure.what()};
  }
  return {0, ""};
}

TEST(PointNumbers, ReadsNumbersAndAscendingRanges) {
  EXPECT_EQ(parsePointNumbers("1"), (Ranges{{1, 1}}));
  EXPECT_EQ(parsePointNumbers("1,5,7-9"), (Ranges{{1, 1}, {5, 5}, {7, 9}}));
  EXPECT_EQ(parsePointNumbers("3-3,0,2147483647"), (Ranges{{3, 3}, {0, 0}, {2147483647, 2147483647}}));
}

TEST(PointNumbers, RefusesWhatIsNeither) {
  for (const char* text : {"", ",", "1,", ",1", "a", "1a", "-1", "1-", "9-7", "1-2-3", "1 ,2", " 1", "2147483648",
                           "1.5", "+1", "1-2147483648"}) {
    const auto [code, words] = failureOf([text] { static_cast<void>(parsePointNumbers(text)); });
    EXPECT_EQ(code, kUsage) << text;
    EXPECT_THAT(words, HasSubstr("1,5,7-9")) << text;
  }
}

class PointHandles : public testing::Test {
 protected:
  PointHandles() {
    for (const std::int32_t number : {1, 2, 3, 10}) {
      civil::Point point;
      point.number = number;
      point.handle = 0x100U + static_cast<civil::Handle>(number);
      drawing_.points.push_back(point);
    }
  }
  [[nodiscard]] std::vector<civil::Handle> handles(std::string_view numbers) const {
    return handlesOfPoints(civil::DrawingIndex(drawing_), parsePointNumbers(numbers));
  }

  civil::Drawing drawing_;
};

TEST_F(PointHandles, KeepTheOrderThatWasGivenAndEachPointOnce) {
  EXPECT_EQ(handles("10,2-3,1"), (std::vector<civil::Handle>{0x10A, 0x102, 0x103, 0x101}));
  EXPECT_EQ(handles("2,1-3,2"), (std::vector<civil::Handle>{0x102, 0x101, 0x103}));
}

TEST_F(PointHandles, NameTheNumbersThatTheDrawingDoesNotHold) {
  const auto [code, words] = failureOf([this] { static_cast<void>(handles("1,4,10-11")); });
  EXPECT_EQ(code, kUnknownName);
  EXPECT_EQ(words, "the drawing holds no point 4, 11");
}

TEST_F(PointHandles, StopAtTheFirstMissingNumbersOfAWideRange) {
  const auto [code, words] = failureOf([this] { static_cast<void>(handles("1-2147483647")); });
  EXPECT_EQ(code, kUnknownName);
  EXPECT_THAT(words, HasSubstr("no point 4, 5, 6"));
  EXPECT_THAT(words, HasSubstr(" and more"));
  EXPECT_LT(words.size(), 200U);
}

}  // namespace
}  // namespace lvx::cli
