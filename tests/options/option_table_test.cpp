#include "options/option_table.h"

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lvx::options {
namespace {

const OptionDescription& optionOf(Command command, std::string_view name) {
  for (const OptionDescription* option : optionsOf(command))
    if (option->name == name) return *option;
  throw std::logic_error("no option " + std::string(name));
}

std::vector<Command> everyCommand() {
  std::vector<Command> all{Command::Desktop};
  for (const CommandDescription& command : commands()) all.push_back(command.command);
  return all;
}

TEST(OptionTable, HasEachNameOnceInACommand) {
  for (const Command command : everyCommand()) {
    std::set<std::string_view> names;
    for (const OptionDescription* option : optionsOf(command))
      EXPECT_TRUE(names.insert(option->name).second) << option->name;
    EXPECT_FALSE(names.empty());
  }
}

TEST(OptionTable, RefersOnlyToOptionsOfTheSameCommand) {
  std::size_t references = 0;
  for (const Command command : everyCommand())
    for (const OptionDescription* option : optionsOf(command))
      for (const std::string_view other : {option->excludes, option->needs}) {
        if (other.empty()) continue;
        EXPECT_NO_THROW(static_cast<void>(optionOf(command, other))) << option->name;
        ++references;
      }
  EXPECT_GT(references, 0U);
}

TEST(OptionTable, ExcludesBothWays) {
  for (const Command command : everyCommand())
    for (const OptionDescription* option : optionsOf(command))
      if (!option->excludes.empty()) {
        EXPECT_EQ(optionOf(command, option->excludes).excludes, option->name);
      }
}

TEST(OptionTable, TellsTheDefaultsThatHold) {
  struct Row {
    std::string_view name;
    std::string_view value;
  };
  std::size_t rows = 0;
  for (const Row& row : {Row{"lang", "en"}, Row{"release", "R24.3"}, Row{"message-code-page", "WINDOWS-1252"},
                         Row{"progress", "auto"}}) {
    const OptionDescription& option = optionOf(Command::Info, row.name);
    EXPECT_EQ(valueOf(option, {}), row.value);
    EXPECT_NE(option.help.find("(default: " + std::string(row.value) + ")"), std::string_view::npos) << option.help;
    ++rows;
  }
  EXPECT_EQ(rows, 4U);
  EXPECT_EQ(valueOf(optionOf(Command::Info, "forms"), {}), "txt,xls,html");
}

TEST(OptionTable, GivesBackWhatItTook) {
  std::size_t taken = 0;
  for (const Command command : everyCommand())
    for (const OptionDescription* option : optionsOf(command)) {
      std::string value = "7";
      if (option->isFlag()) value = "true";
      if (!option->choices.empty()) value = option->choices.back();
      if (option->check.name == "FORMS") value = "html,txt";
      if (option->check.name == "RULES") value = "every=20,left=30";
      if (option->check.name == "K/N") value = "2/7";
      if (option->check.name == "SIZE") value = "900x600";
      if (option->check.name == "CONDITIONS") value = "description=TREE*";
      Options options;
      apply(*option, options, value);
      EXPECT_EQ(valueOf(*option, options), value) << option->name;
      ++taken;
    }
  EXPECT_GT(taken, optionTable().size());
}

TEST(OptionTable, TakesAShareAsANumberOfACount) {
  struct Row {
    const char* text;
    std::size_t number;
    std::size_t count;
  };
  for (const Row& row : {Row{"1/1", 1, 1}, Row{"3/8", 3, 8}, Row{"1000000/1000000", 1000000, 1000000}}) {
    const auto share = shareOf(row.text);
    ASSERT_TRUE(share) << row.text;
    EXPECT_EQ(share->number, row.number);
    EXPECT_EQ(share->count, row.count);
  }
  for (const char* text : {"", "1", "/", "1/", "/2", "0/2", "3/2", "-1/2", "+1/2", " 1/2", "1/2 ", "1/2/3", "a/b",
                           "1/0", "1/1000001", "99999999999999999999/99999999999999999999"})
    EXPECT_FALSE(shareOf(text)) << text;
}

TEST(OptionTable, HasAnOptionForEveryKeyOfSampleLineRules) {
  std::size_t found = 0;
  for (const civil::SampleLineKey& key : civil::sampleLineKeys()) {
    // --name is that of the group.
    const OptionDescription& option = optionOf(Command::Lines, key.key == "name" ? "names" : key.key);
    EXPECT_EQ(option.isFlag(), key.value == "yes") << key.key;
    EXPECT_EQ(option.help.substr(1), key.meaning.substr(1));
    Options options;
    apply(option, options, "7");
    const RuleValue& value = options.lines.keys.at(found++);
    EXPECT_TRUE(option.isFlag() ? value.isSet : value.text == "7") << key.key;
  }
  EXPECT_EQ(found, civil::kSampleLineKeyCount);
}

TEST(OptionTable, CollectsWhatIsGivenManyTimes) {
  Options options;
  const OptionDescription& with = optionOf(Command::Gls, "with");
  EXPECT_TRUE(with.isList());
  EXPECT_FALSE(optionOf(Command::Gls, "out").isList());
  EXPECT_EQ(valueOf(with, options), std::nullopt);
  for (const char* file : {"b.xml", "", "b.xml"}) apply(with, options, file);
  EXPECT_EQ(options.files.with, (std::vector<std::string>{"b.xml", "", "b.xml"}));
  EXPECT_EQ(valueOf(with, options), "b.xml");
}

// A batch hands each of them on to its jobs as one value.
TEST(OptionTable, HasNoListAmongTheCommonOptions) {
  for (const OptionDescription* option : commonOptions()) EXPECT_FALSE(option->isList()) << option->name;
}

TEST(OptionTable, OpensEveryDrawingByTheSameOptions) {
  std::size_t commandsWithDrawing = 0;
  for (const CommandDescription& command : commands()) {
    if (!kDrawingCommands.contains(command.command)) continue;
    for (const char* name : {"with", "convert-units", "swap-axes"})
      EXPECT_NO_THROW(static_cast<void>(optionOf(command.command, name))) << command.name;
    ++commandsWithDrawing;
  }
  EXPECT_EQ(commandsWithDrawing, commands().size() - 1) << "all but batch";
}

TEST(OptionTable, KnowsWhereAnEmptyTextIsNone) {
  struct Row {
    Command command;
    std::string_view name;
    bool isNone;
  };
  const std::vector<Row> table{
      {Command::Gls, "save", true},
      {Command::Info, "messages", true},
      {Command::Info, "module", true},
      {Command::Info, "release", true},
      {Command::Desktop, "release", true},
      {Command::Info, "report-code-page", true},
      {Command::Points, "site", false},
      {Command::Points, "points", false},
      {Command::Points, "point-group", false},
      {Command::Info, "message-code-page", false},
  };
  for (const Row& row : table) {
    Options options;
    const OptionDescription& option = optionOf(row.command, row.name);
    apply(option, options, "");
    EXPECT_EQ(valueOf(option, options), row.isNone ? std::nullopt : std::optional<std::string>("")) << row.name;
  }
}

TEST(OptionTable, RefusesWhatIsNoneOfTheValues) {
  struct Row {
    Command command;
    std::string_view name;
    std::string_view value;
    std::string_view words;
  };
  const std::vector<Row> table{
      {Command::Desktop, "lang", "fr", "--lang is 'fr'; there is en and de"},
      {Command::Desktop, "scheme", "", "--scheme is ''; there is system, light and dark"},
      {Command::Gls, "lines", "every=-1", "--lines: sample lines: every '-1': a length above 0 is wanted"},
      {Command::Gls, "ground-tolerance", "-0.5", "--ground-tolerance: '-0.5' is no length of at least 0"},
      {Command::Points, "points-where", "size=1",
       "--points-where: points: there is no key 'size', only description, name, elevation, number"},
      {Command::Info, "forms", "txt,pdf", "--forms: 'pdf' is no form of a report; there is txt, xls, html"},
      {Command::Batch, "jobs", "0", "--jobs is '0', which is no number from 1 to 1024"},
      {Command::Batch, "jobs", "1x", "--jobs is '1x', which is no number from 1 to 1024"},
      {Command::Batch, "jobs", "1025", "--jobs is '1025', which is no number from 1 to 1024"},
      {Command::Info, "threads", "0", "--threads is '0', which is no number from 1 to 1024"},
  };
  for (const Row& row : table) {
    Options options;
    const OptionDescription& option = optionOf(row.command, row.name);
    const auto before = valueOf(option, options);
    try {
      apply(option, options, std::string(row.value));
      ADD_FAILURE() << row.name << " took " << row.value;
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(error.what(), row.words);
    }
    EXPECT_EQ(valueOf(option, options), before);
  }
}

TEST(Commands, AreFoundByTheirNames) {
  for (const CommandDescription& command : commands()) EXPECT_EQ(findCommand(command.name), &command);
  EXPECT_EQ(findCommand("desktop"), nullptr);
  EXPECT_EQ(findCommand(""), nullptr);
}

}  // namespace
}  // namespace lvx::options
