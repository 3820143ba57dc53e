#include "completion/completion.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/commands.h"
#include "options/option_table.h"
#include "support/places.h"

namespace lvx::test {
namespace {

using completion::complete;
using completion::Completion;
using completion::Shell;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> valuesOf(const Completion& completion) {
  std::vector<std::string> values;
  for (const completion::Candidate& candidate : completion.candidates) values.push_back(candidate.value);
  return values;
}

/// What zsh, whose words come without quotes, is told behind "lvxhost".
std::vector<std::string> after(std::vector<std::string> words) {
  words.insert(words.begin(), "lvxhost");
  return valuesOf(complete(Shell::Zsh, words));
}

std::string example() { return inSource("/examples/valley-road.xml"); }

TEST(Completion, OffersEveryCommandWithItsSummary) {
  const Completion completion = complete(Shell::Bash, {"lvxhost", ""});
  ASSERT_EQ(completion.candidates.size(), options::commands().size());
  EXPECT_EQ(completion.candidates.front().help, options::commands().front().summary);
  EXPECT_THAT(after({"po"}), ElementsAre("points"));
  EXPECT_THAT(after({"--quiet", "--lang", "de", "po"}), ElementsAre("points"));
}

TEST(Completion, OffersEveryOptionOfEveryCommand) {
  for (const options::CommandDescription& command : options::commands()) {
    const auto values = after({std::string(command.name), "--"});
    for (const options::OptionDescription* option : options::optionsOf(command.command)) {
      if (option->isArgument || !option->needs.empty()) continue;
      EXPECT_THAT(values, Contains("--" + std::string(option->name))) << command.name;
    }
  }
  const auto values = valuesOf(complete(Shell::Zsh, {"/usr/bin/lvxhost-desktop", "--"}));
  EXPECT_THAT(values, Contains("--scheme"));
  EXPECT_THAT(values, Not(Contains("--forms")));
}

TEST(Completion, LeavesOutWhatCantBeGivenAnyMore) {
  EXPECT_THAT(after({"points", "--overwrite", "--"}), Not(Contains("--keep")));
  EXPECT_THAT(after({"points", "--points", "all", "--"}), Not(Contains("--point-group"))) << "one of a choice";
  EXPECT_THAT(after({"points", "--out", "a", "--"}), Not(Contains("--out")));
  EXPECT_THAT(after({"points", "--with", "a", "--"}), Contains("--with")) << "may be given many times";
  EXPECT_THAT(after({"gls", "--"}), Not(Contains("--ground-tolerance")));
  EXPECT_THAT(after({"gls", "--ground-profile", "a", "--"}), Contains("--ground-tolerance"));
}

TEST(Completion, OffersTheValuesThatThereAre) {
  EXPECT_THAT(after({"points", "--lang", ""}), ElementsAre("en", "de"));
  EXPECT_THAT(after({"points", "--forms", "txt,"}), ElementsAre("txt,xls", "txt,html"));
  EXPECT_THAT(after({"points", "--progress", "n"}), ElementsAre("never"));
}

TEST(Completion, LeavesFilesToTheShell) {
  EXPECT_TRUE(complete(Shell::Bash, {"lvxhost", "points", ""}).files);
  EXPECT_TRUE(complete(Shell::Bash, {"lvxhost", "points", "a.xml", "--out", ""}).files);
  EXPECT_FALSE(complete(Shell::Bash, {"lvxhost", "points", "a.xml", "--alignment", ""}).files);
}

struct NameRow {
  std::vector<std::string> words;
  std::vector<std::string> names;
};

TEST(CompletionOfNames, AsksTheDrawing) {
  const std::vector<NameRow> rows{
      {{"points", example(), "--alignment", "V"}, {"Valley road"}},
      {{"points", example(), "--site", ""}, {"Valley road upgrade"}},
      {{"points", example(), "--alignment", "", "--point-group", "Co"}, {"Control points"}},
      {{"points", example(), "--surface-points", ""}, {"Existing ground"}},
      {{"projection", example(), "--surface", ""}, {"Existing ground"}},
      {{"gls", example(), "--ground-profile", ""}, {"Existing ground"}},
      {{"lines", example(), "--border", ""}, {"Existing ground"}},
      {{"gls", example(), "--alignment", "Mill lane", "--group", ""}, {"Mill lane 25 m"}},
      {{"gls", example(), "--alignment", "Mill lane", "--profile", ""}, {"Mill lane ground", "Mill lane design"}},
      {{"gls", example(), "--alignment", "No such", "--group", ""}, {}},
      {{"gls", example(), "--site", "", "--alignment", "V"}, {}},
      {{"gls", inSource("/examples/valley-road/road.xml"), "--ground-profile", ""}, {}},
      {{"gls", inSource("/examples/valley-road/road.xml"), "--with", inSource("/examples/valley-road/ground.xml"),
        "--ground-profile", ""},
       {"Existing ground"}},
      {{"points", "--alignment", ""}, {}},
      {{"points", "/no/such/file.xml", "--alignment", ""}, {}},
      {{"points", "/dev/null", "--alignment", ""}, {}},
  };
  for (const NameRow& row : rows) EXPECT_EQ(after(row.words), row.names) << testing::PrintToString(row.words);
}

TEST(CompletionOfNames, TellsWhereTheyBelong) {
  const Completion completion = complete(Shell::Zsh, {"lvxhost", "gls", example(), "--group", "Mill"});
  ASSERT_EQ(completion.candidates.size(), 1U);
  EXPECT_EQ(completion.candidates.front().help, "sample lines of Mill lane");
}

TEST(CompletionOfWords, TakesThemAsEachShellHasThem) {
  const std::vector<std::string> lane{"Mill lane 25 m"};
  EXPECT_EQ(
      valuesOf(complete(Shell::Bash, {"lvxhost", "gls", example(), "--alignment", "Mill\\ lane", "--group", "'Mi"})),
      lane);
  EXPECT_EQ(valuesOf(complete(Shell::Bash,
                              {"lvxhost", "gls", example(), "--alignment", "=", "\"Mill lane\"", "--group", "="})),
            lane);
  EXPECT_EQ(valuesOf(complete(Shell::Zsh, {"lvxhost", "gls", example(), "--alignment=Mill lane", "--group=Mi"})), lane);
  EXPECT_THAT(valuesOf(complete(Shell::Fish, {"lvxhost", "gls", example(), "--alignment=Mill lane", "--group=Mi"})),
              ElementsAre("--group=Mill lane 25 m"));
}

TEST(CompletionOfWords, HasNothingForWhatIsNoLine) {
  EXPECT_THAT(valuesOf(complete(Shell::Bash, {})), IsEmpty());
  EXPECT_THAT(valuesOf(complete(Shell::Bash, {"lvxhost"})), IsEmpty());
  EXPECT_THAT(after({"no-such-command", "x"}), IsEmpty());
  EXPECT_THAT(after({"batch", "jobs", "more"}), IsEmpty());
}

TEST(AnswerText, HasALineForEachCandidate) {
  Completion completion;
  completion.files = true;
  completion.candidates = {{"a b", "of\nc"}, {"d\te", ""}};
  EXPECT_EQ(answerText(completion), "files\na b\tof c\nd e\t\n");
}

}  // namespace
}  // namespace lvx::test
