// Narrow names of files are UTF-8: what the compiler's library makes of them by the C locale would be other names.
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace lvx {
namespace {

namespace fs = std::filesystem;

const std::string kNarrow =
    "Stra\xC3\x9F"
    "e \xD0\x96 \xF0\x9F\x9B\xA3.xml";
const std::wstring kWide = L"Stra\u00DFe \u0416 \U0001F6E3.xml";

TEST(PathNames, AreUtf8InBothDirections) {
  EXPECT_EQ(fs::path(kNarrow).native(), kWide);
  EXPECT_EQ(fs::path(kNarrow.c_str()).native(), kWide);
  EXPECT_EQ((fs::path("a") / kNarrow).native(), L"a\\" + kWide);
  EXPECT_EQ(fs::path(kWide).string(), kNarrow);
  fs::path assigned;
  assigned = kNarrow;
  assigned += kNarrow;
  EXPECT_EQ(assigned.native(), kWide + kWide);
}

TEST(PathNames, NameTheSameFileNarrowAndWide) {
  const fs::path folder = fs::temp_directory_path();
  std::ofstream(folder / kNarrow) << "here";
  std::string text;
  std::ifstream(folder / kWide) >> text;
  EXPECT_EQ(text, "here");
  EXPECT_TRUE(fs::remove(folder / kWide));
  EXPECT_FALSE(fs::exists(folder / kNarrow));
}

}  // namespace
}  // namespace lvx
