#include "package_texts/man_pages.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/commands.h"
#include "options/option_table.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using package_texts::inRoff;
using package_texts::ManPage;
using testing::HasSubstr;

std::vector<ManPage> pages() { return package_texts::manPages({"1.0.0", "2026-11-22"}); }

std::string pageOf(const std::string& name) {
  for (const ManPage& page : pages())
    if (page.name == name) return page.text;
  ADD_FAILURE() << "no page " << name;
  return {};
}

TEST(ManPages, HaveEveryCommandWithEveryOption) {
  for (const options::CommandDescription& command : options::commands()) {
    const std::string page = pageOf("lvxhost-" + std::string(command.name));
    EXPECT_THAT(pageOf("lvxhost"), HasSubstr("\\fB" + std::string(command.name) + "\\fR\n"));
    for (const options::OptionDescription* option : options::optionsOf(command.command)) {
      const std::string name = option->isArgument ? std::string(option->name) : "--" + std::string(option->name);
      EXPECT_THAT(page, HasSubstr(inRoff(name) + "\\fR")) << page;
      EXPECT_THAT(page, HasSubstr(inRoff(std::string(option->help)))) << page;
    }
  }
  const std::string desktop = pageOf("lvxhost-desktop");
  for (const options::OptionDescription* option : options::optionsOf(options::Command::Desktop))
    EXPECT_THAT(desktop, HasSubstr(inRoff(std::string(option->name)))) << desktop;
}

TEST(ManPages, KeepTheExamplesLineByLine) {
  const std::string page = pageOf("lvxhost-info");
  EXPECT_THAT(page, HasSubstr(".SH EXAMPLES\n.nf\n  lvxhost info examples/valley\\-road.xml\n"));
  EXPECT_THAT(page, HasSubstr("jq \\(aq.surfaces[].name\\(aq\n.fi\n"));
}

TEST(ManPages, AreWellFormed) {
  const TemporaryFolder folder;
  RunRequest lint;
  lint.program = "/usr/bin/mandoc";
  lint.arguments = {"-T", "lint", "-W", "warning"};
  if (!std::filesystem::exists(lint.program)) GTEST_SKIP() << "mandoc isn't installed";
  for (const ManPage& page : pages()) {
    const auto path = folder / (page.name + ".1");
    std::ofstream(path, std::ios::binary) << page.text;
    lint.arguments.push_back(path.string());
  }
  const RunResult result = runProgram(lint);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output + result.errors, "");
}

TEST(ManPages, AreAllInTheListOfWhatIsInstalled) {
  const std::string list = fileBytes(inSource("/packaging/CMakeLists.txt"));
  const auto from = list.find("set(pages ");
  std::string names = list.substr(from + 10, list.find(')', from) - from - 10);
  std::istringstream words(names);
  std::set<std::string> listed;
  for (std::string word; words >> word;) listed.insert(word);
  std::set<std::string> made;
  for (const ManPage& page : pages()) made.insert(page.name);
  EXPECT_EQ(listed, made);
}

TEST(TextInAManPage, IsNeverARequestOrAnEscape) {
  EXPECT_EQ(inRoff("a\\b --c 'd' \"e\" ^~`"), "a\\eb \\-\\-c \\(aqd\\(aq \\(dqe\\(dq \\(ha\\(ti\\(ga");
}

}  // namespace
}  // namespace lvx::test
