#include "civil/rare.h"

#include <gtest/gtest.h>

#include "civil/rare_text.h"

namespace lvx::civil {
namespace {

TEST(Rare, HoldsNothingOrAValueOfItsOwn) {
  Rare<std::string> name;
  EXPECT_FALSE(name);
  EXPECT_EQ(name.orNone(), "");
  name = std::string("Bridge");
  const Rare<std::string> copy = name;
  *name += " (2)";
  EXPECT_EQ(name, "Bridge (2)");
  EXPECT_EQ(copy, "Bridge") << "a copy shares nothing";
  EXPECT_NE(name, copy);
  const Rare<std::string> moved = std::move(name);
  EXPECT_EQ(moved->size(), 10U);
  name = std::nullopt;
  EXPECT_EQ(name, Rare<std::string>());
  EXPECT_NE(name, moved);
  EXPECT_EQ(name.made(), "") << "is made";
  EXPECT_TRUE(name);
}

TEST(RareText, IsATextToItsReaders) {
  const RareText none;
  const RareText empty = "";
  const RareText main = std::string("main road");
  EXPECT_EQ(none, empty);
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(none, "");
  EXPECT_FALSE(main.empty());
  EXPECT_EQ(main, "main road");
  EXPECT_NE(main, none);
  const std::string& text = main;
  const std::string_view view = main;
  EXPECT_EQ(text, view);
}

TEST(Rare, TakesAPointer) {
  EXPECT_EQ(sizeof(Rare<std::string>), sizeof(void*));
  EXPECT_EQ(sizeof(RareText), sizeof(void*));
}

}  // namespace
}  // namespace lvx::civil
