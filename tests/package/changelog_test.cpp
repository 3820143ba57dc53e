#include "package_texts/changelog.h"

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::test {
namespace {

using package_texts::debianChangelog;

std::string changelogOf(const std::string& markdown) {
  return debianChangelog(markdown, "lvxhost", "A <a@b>", "2026-11-22");
}

TEST(DebianChangelog, HasEachReleaseWithItsDayAndTodayForTheComingOne) {
  EXPECT_EQ(changelogOf("# Changes\n\nWords.\n\n## 1.1.0, not released yet\n\n- One.\n- Two\n  lines.\n\n"
                        "## 1.0.0, 2026-02-28\n\n- First.\n"),
            "lvxhost (1.1.0) UNRELEASED; urgency=medium\n\n  * One.\n  * Two lines.\n\n"
            " -- A <a@b>  Sun, 22 Nov 2026 00:00:00 +0000\n\n"
            "lvxhost (1.0.0) unstable; urgency=medium\n\n  * First.\n\n"
            " -- A <a@b>  Sat, 28 Feb 2026 00:00:00 +0000\n");
}

TEST(DebianChangelog, BreaksLinesBefore80Letters) {
  const std::string long_ = "- " + std::string(74, 'a') + " bb\n";
  EXPECT_THAT(changelogOf("## 1.0.0, 2026-02-28\n\n" + long_),
              testing::HasSubstr("  * " + std::string(74, 'a') + "\n    bb\n"));
}

TEST(DebianChangelog, RefusesWhatItWouldLose) {
  EXPECT_THROW((void)changelogOf("# Changes\n"), std::runtime_error) << "no release";
  EXPECT_THROW((void)changelogOf("## 1.0.0\n\n- One.\n"), std::runtime_error) << "no day";
  EXPECT_THROW((void)changelogOf("## 1.0.0, 2026-02-30\n\n- One.\n"), std::runtime_error) << "no such day";
  EXPECT_THROW((void)changelogOf("## 1.0.0, 2026-02-28\n\nWords.\n"), std::runtime_error) << "no list item";
}

}  // namespace
}  // namespace lvx::test
