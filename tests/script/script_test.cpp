#include "script/script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::script {
namespace {

using Kind = ScriptAction::Kind;
using testing::HasSubstr;

ScriptAction single(const std::string& json) {
  const std::vector<ScriptAction> actions = parseScript("[" + json + "]", "s.json");
  EXPECT_EQ(actions.size(), 1U);
  return actions.at(0);
}

TEST(Script, ReadsEveryKindOfAction) {
  EXPECT_EQ(single(R"({"command": "lvx_Report_Que"})").text, "lvx_Report_Que");
  EXPECT_EQ(single(R"({"select": 261, "row": 2})").row, 2);
  EXPECT_EQ(single(R"({"select": 263, "text": "Axis 1"})").text, "Axis 1");
  EXPECT_EQ(single(R"({"select": 263, "text": "Axis 1"})").row, std::nullopt);
  EXPECT_EQ(single(R"({"type": 100, "text": "out/road"})").id, 100);
  EXPECT_FALSE(single(R"({"tick": 275, "on": false})").on);
  EXPECT_TRUE(single(R"({"tick": 275})").on);
  EXPECT_EQ(single(R"({"click": 1})").kind, Kind::Click);
  EXPECT_EQ(single(R"({"close": true})").kind, Kind::Close);
  EXPECT_EQ(single(R"({"pick": "1F4"})").text, "1F4");
  EXPECT_EQ(single(R"({"pick": {"name": "A", "class": "QMT_ALIGNMENT"}})").pickClass, "QMT_ALIGNMENT");
  EXPECT_EQ(single(R"({"pickPoints": [3, 1, 2]})").points, (std::vector<std::int32_t>{3, 1, 2}));
  EXPECT_EQ(single(R"({"escape": true})").kind, Kind::Escape);
  EXPECT_EQ(single(R"({"file": "out/road.html"})").text, "out/road.html");
  EXPECT_TRUE(single(R"({"file": null})").cancelled);
  EXPECT_EQ(single(R"({"answer": "retry"})").answer, host::BoxAnswer::Retry);
  EXPECT_EQ(single(R"({"snapshot": true})").kind, Kind::Snapshot);
}

TEST(Script, NumbersItsActionsFromOne) {
  const auto actions = parseScript(R"([{"click": 1}, {"click": 2}])", "s.json");
  EXPECT_EQ(actions[1].number, 2U);
  EXPECT_EQ(describe(actions[1]), "action 2 (click)");
}

TEST(Script, SaysWhatIsWrongAndWhere) {
  struct Row {
    const char* json;
    const char* words;
  };
  const Row rows[] = {
      {"", "script: s.json: it isn't JSON"},
      {"[{\"click\": 1}", "script: s.json: it isn't JSON"},
      {"[{\"click\": 1e999}]", "script: s.json: it isn't JSON"},
      {"{\"click\": 1}", "it isn't a JSON array of actions"},
      {"[{\"click\": 1}, 5]", "action 2 isn't an object"},
      {"[{}]", "action 1 is none of command, select"},
      {"[{\"clik\": 1}]", "action 1 is none of command, select"},
      {"[{\"click\": 1, \"type\": 2, \"text\": \"x\"}]", "has both 'type' and 'click'"},
      {"[{\"click\": \"OK\"}]", "action 1 ('click'): 'click' isn't a whole number"},
      {"[{\"click\": 1.5}]", "isn't a whole number"},
      {"[{\"click\": 99999999999}]", "isn't a whole number"},
      {"[{\"select\": 261}]", "needs either 'row' or 'text'"},
      {"[{\"select\": 261, \"row\": 1, \"text\": \"x\"}]", "needs either 'row' or 'text'"},
      {"[{\"type\": 100}]", "needs 'text'"},
      {"[{\"type\": 100, \"text\": 5}]", "'text' isn't a text"},
      {"[{\"tick\": 275, \"on\": 1}]", "'on' isn't true or false"},
      {"[{\"pick\": {\"name\": \"A\"}}]", "needs a handle or"},
      {"[{\"pickPoints\": 5}]", "isn't a list of point numbers"},
      {"[{\"answer\": \"maybe\"}]", "'maybe' is none of ok, cancel, yes, no, retry"},
      {"[{\"click\": 1, \"row\": 3}]", "has a key that doesn't belong to it"},
  };
  for (const Row& row : rows) {
    try {
      (void)parseScript(row.json, "s.json");
      ADD_FAILURE() << row.json << " was read";
    } catch (const ScriptError& error) {
      EXPECT_THAT(error.what(), HasSubstr(row.words)) << row.json;
    }
  }
}

TEST(Script, MayBeEmpty) { EXPECT_TRUE(parseScript("[]", "s.json").empty()); }

}  // namespace
}  // namespace lvx::script
