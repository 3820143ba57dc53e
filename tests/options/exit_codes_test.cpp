#include "options/exit_codes.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/places.h"

namespace lvx::options {
namespace {

/// The rows of the README's table of exit codes, as they stand there.
std::vector<std::string> readmeRows() {
  std::ifstream readme(test::inSource("/README.md"));
  std::vector<std::string> rows;
  bool inside = false;
  for (std::string line; std::getline(readme, line);) {
    if (line == "| Exit code | Means |")
      inside = true;
    else if (inside && !line.starts_with('|'))
      break;
    else if (inside && !line.starts_with("|---"))
      rows.push_back(line);
  }
  return rows;
}

TEST(ExitCodes, AreThoseOfTheReadme) {
  std::vector<std::string> rows;
  for (const ExitCodeDescription& row : exitCodes())
    rows.push_back("| " + std::to_string(row.code) + " | " + std::string(row.meaning) + " |");
  EXPECT_EQ(rows, readmeRows());
}

TEST(ExitCodes, AscendAndHaveWords) {
  EXPECT_EQ(exitCodes().size(), 8U);
  int last = -1;
  for (const ExitCodeDescription& row : exitCodes()) {
    EXPECT_GT(row.code, last);
    EXPECT_FALSE(row.inHelp.empty()) << row.code;
    last = row.code;
  }
}

TEST(ExitCodes, StandInOneLineOfTheHelp) {
  const std::string line = exitCodesLine();
  EXPECT_TRUE(line.starts_with("Exit codes: 0 everything asked for was written; 1 ")) << line;
  EXPECT_TRUE(line.ends_with("; 130 interrupted.")) << line;
}

TEST(ExitCodes, StandInTheHelpOfTheCommandsThatEndWithThem) {
  struct Row {
    Command command;
    std::vector<int> codes;
  };
  const std::vector<Row> table{
      {Command::Info, {0, 1, 2, 3, 70, 130}},        {Command::Projection, {0, 1, 2, 3, 4, 70, 130}},
      {Command::Points, {0, 1, 2, 3, 4, 70, 130}},   {Command::Gls, {0, 1, 2, 3, 4, 70, 130}},
      {Command::Lines, {0, 1, 2, 3, 4, 70, 130}},    {Command::Group, {0, 1, 2, 3, 4, 70, 130}},
      {Command::Sections, {0, 1, 2, 3, 4, 70, 130}}, {Command::Profile, {0, 1, 2, 3, 4, 70, 130}},
      {Command::Volumes, {0, 1, 2, 3, 4, 70, 130}},  {Command::Batch, {0, 1, 2, 70, 130}},
      {Command::Play, {0, 1, 2, 3, 5, 70, 130}},     {Command::Dialog, {0, 1, 2, 3, 70, 130}}};
  for (const Row& row : table) {
    std::string expected = "Exit codes:\n";
    for (const ExitCodeDescription& code : exitCodes())
      if (std::find(row.codes.begin(), row.codes.end(), code.code) != row.codes.end()) {
        const std::string number = std::to_string(code.code);
        expected += "  " + number + std::string(5 - number.size(), ' ') + std::string(code.meaning) + "\n";
      }
    EXPECT_EQ(exitCodesOf(row.command), expected);
  }
}

}  // namespace
}  // namespace lvx::options
