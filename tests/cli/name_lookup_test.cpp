#include "cli/name_lookup.h"

#include <gtest/gtest.h>

#include "cli/failure.h"
#include "cli/report_run.h"

namespace lvx::cli {
namespace {

TEST(EditDistance, CountsInsertedRemovedAndReplacedLetters) {
  EXPECT_EQ(editDistance("", ""), 0U);
  EXPECT_EQ(editDistance("abc", ""), 3U);
  EXPECT_EQ(editDistance("Axis 1", "Axis 2"), 1U);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
  EXPECT_EQ(editDistance("MAIN road", "Main Road"), 0U);
}

TEST(Offered, PutsTheClosestFirstAndEachNameOnce) {
  EXPECT_EQ(offered({"Ground", "Design", "Ground", "Grade"}, "Groud"), "'Ground', 'Grade', 'Design'");
}

TEST(Offered, CutsLongListsAndSaysHowMuch) {
  std::vector<std::string> names;
  for (int i = 0; i < 25; ++i) names.push_back("Axis " + std::to_string(i));
  EXPECT_TRUE(offered(names, "Axis 3").starts_with("'Axis 3', "));
  EXPECT_TRUE(offered(names, "Axis 3").ends_with(" and 5 more"));
}

TEST(DialogStem, HasAFolderInIt) {
  EXPECT_EQ(dialogStem("road"), "./road");
  EXPECT_EQ(dialogStem("out/road"), "out/road");
  EXPECT_EQ(dialogStem("/road"), "/road");
  EXPECT_EQ(dialogStem("out\\road"), "./out\\road") << "a letter of the name";
  EXPECT_EQ(dialogStem("road.txt"), "./road.txt");
}

TEST(DialogStem, NeedsAFileName) {
  for (const char* stem : {"", "/", "out/"}) EXPECT_THROW(static_cast<void>(dialogStem(stem)), Failure) << stem;
}

}  // namespace
}  // namespace lvx::cli
