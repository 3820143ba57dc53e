#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::test {
namespace {

using testing::HasSubstr;

// A person types a line in the shell and presses the key that completes it; `show` tells the words that came of it.

RunRequest shell(const std::string& program, std::vector<std::string> arguments) {
  RunRequest request;
  request.program = program;
  request.arguments = std::move(arguments);
  request.folder = inSource("");
  request.environment = {{"PATH", inBuild("/bin") + ":/usr/bin:/bin"},
                         {"TERM", "dumb"},
                         {"HOME", "/nonexistent"},
                         {"INPUTRC", "/dev/null"},
                         {"HISTFILE", ""},
                         {"PS1", "ready:"}};
  return request;
}

TEST(Shells, BashCompletesANameWithABlank) {
  const RunResult result = runOnTerminal(
      shell("/bin/bash", {"--norc", "--noprofile", "-i"}), "ready:",
      {"source packaging/completions/lvxhost.bash", "complete -F _lvxhost show; show() { printf '<%s>\\n' \"$@\"; }",
       "show gls examples/valley-road.xml --alignment Mil\t --profile \"Mill lane d\t --group=Mi\t",
       "show poi\texampl\t", "exit"});
  EXPECT_THAT(result.output, HasSubstr("<Mill lane>"));
  EXPECT_THAT(result.output, HasSubstr("<Mill lane design>"));
  EXPECT_THAT(result.output, HasSubstr("<--group=Mill lane 25 m>"));
  EXPECT_THAT(result.output, HasSubstr("<points>"));
  EXPECT_THAT(result.output, HasSubstr("<examples/>"));
}

TEST(Shells, FishOffersNamesWithWhereTheyBelong) {
  if (!std::filesystem::exists("/usr/bin/fish")) GTEST_SKIP() << "fish isn't installed";
  RunRequest request =
      shell("/usr/bin/fish", {"--no-config", "-c",
                              "source packaging/completions/lvxhost.fish\n"
                              "complete -C 'lvxhost gls examples/valley-road.xml --alignment \"Mill lane\" --group '\n"
                              "complete -C 'lvxhost points exampl'\n"
                              "complete -C 'lvxhost points examples/valley-road.xml --surface-points=E'"});
  const TemporaryFolder home;
  request.environment["HOME"] = home.path().string();
  const RunResult result = runProgram(request);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output,
            "Mill lane 25 m\tsample lines of Mill lane\nexamples/\n--surface-points=Existing ground\tsurface\n");
}

TEST(Shells, ZshCompletesANameWithABlank) {
  if (!std::filesystem::exists("/usr/bin/zsh")) GTEST_SKIP() << "zsh isn't installed";
  const RunResult result =
      runOnTerminal(shell("/usr/bin/zsh", {"-f", "-i"}), "ready:",
                    {"fpath=($PWD/packaging/completions $fpath); autoload -U "
                     "compinit; compinit -u -D",
                     "compdef _lvxhost show; show() { printf '<%s>\\n' \"$@\" }",
                     "show gls examples/valley-road.xml --alignment Mil\t --profile Mill\\ lane\\ d\t --group=Mi\t",
                     "show poi\texampl\t", "exit"});
  EXPECT_THAT(result.output, HasSubstr("<Mill lane>"));
  EXPECT_THAT(result.output, HasSubstr("<Mill lane design>"));
  EXPECT_THAT(result.output, HasSubstr("<--group=Mill lane 25 m>"));
  EXPECT_THAT(result.output, HasSubstr("<points>"));
  EXPECT_THAT(result.output, HasSubstr("<examples>"));
}

}  // namespace
}  // namespace lvx::test
