#include "text/handle_text.h"

#include <array>
#include <limits>

#include <gtest/gtest.h>

#include "host/run_time.h"
#include "platform/utf8.h"

namespace lvx::text {
namespace {

TEST(HandleText, IsHexadecimalInCapitals) {
  EXPECT_EQ(handleText(0x1F4), "1F4");
  EXPECT_EQ(handleText(0xABCDEF), "ABCDEF");
  EXPECT_EQ(handleText(9), "9");
}

TEST(HandleText, IsEmptyForNoHandle) { EXPECT_EQ(handleText(0), ""); }

TEST(HandleText, IsThatOfTheHostsHandles) {
  std::size_t rows = 0;
  for (const std::uint64_t handle :
       {std::uint64_t{1}, std::uint64_t{0xA}, std::uint64_t{0x100}, std::uint64_t{0xFFFFFFFF},
        std::uint64_t{0x123456789A}, std::numeric_limits<std::uint64_t>::max()}) {
    std::array<wchar_t, 32> theirs{};
    host::VnDbHandle(handle).getIntoAsciiBuffer(theirs.data(), theirs.size());
    EXPECT_EQ(handleText(handle), platform::toUtf8(theirs.data()));
    ++rows;
  }
  EXPECT_EQ(rows, 6U);
}

}  // namespace
}  // namespace lvx::text
