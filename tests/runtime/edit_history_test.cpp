// What a person changes in an open drawing, undone and redone.
#include "runtime/edit_history.h"

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "civil/drawing_edit.h"
#include "small_drawing.h"

namespace lvx::runtime {
namespace {

using civil::Drawing;
using civil::Handle;
using civil::SampleLine;

const civil::AlignmentObject& a1(const Drawing& drawing) { return *drawing.sites.front().alignments.front(); }

/// Everything that edits change, with handles.
std::string textOf(const Drawing& drawing) {
  std::ostringstream text;
  for (const auto& profile : a1(drawing).profiles) text << "profile " << profile.name << ' ' << profile.handle << '\n';
  for (const auto& group : a1(drawing).sampleLineGroups) {
    text << "group " << group.name << ' ' << group.handle << '\n';
    for (const SampleLine& line : group.lines) {
      text << "  " << line.name << ' ' << line.handle << " at " << line.station << ':';
      for (const auto& vertex : line.vertices) text << ' ' << vertex.x << ' ' << vertex.y;
      text << '\n';
    }
  }
  for (const auto& group : drawing.pointGroups) {
    text << "points " << group.name << ' ' << group.handle << ':';
    for (const auto number : group.numbers) text << ' ' << number;
    text << '\n';
  }
  return text.str();
}

SampleLine lineAt(double station, const char* name) {
  return {0, name, station, {{station - 100.0, 8.0}, {station - 100.0, 0.0}, {station - 100.0, -8.0}}};
}

class EditHistoryTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string text() const { return textOf(open_.drawing()); }
  [[nodiscard]] Handle alignment() const { return a1(open_.drawing()).handle; }
  [[nodiscard]] Handle group() const { return a1(open_.drawing()).sampleLineGroups.front().handle; }
  [[nodiscard]] Handle line() const { return a1(open_.drawing()).sampleLineGroups.front().lines.front().handle; }

  OpenDrawing open_{test::smallDrawing()};
  EditHistory history_{open_};
};

struct Kind {
  const char* name;
  std::function<civil::ReversibleChangePtr(const Drawing&)> change;
};

std::vector<Kind> kinds() {
  const auto group = [](const Drawing& drawing) -> const civil::SampleLineGroup& {
    return a1(drawing).sampleLineGroups.front();
  };
  return {
      {"profile",
       [](const Drawing& d) {
         return civil::addingProfile(a1(d).handle, "New", civil::Profile::ground({{{100.0, 1.0}, {200.0, 2.0}}}));
       }},
      {"point group",
       [](const Drawing&) {
         return civil::addingPointGroup("Trees", {8, 7});
       }},
      {"no point group", [](const Drawing& d) { return civil::removingPointGroup(d.pointGroups.front().handle); }},
      {"group",
       [](const Drawing& d) {
         return civil::addingSampleLineGroup(a1(d).handle, "Every 20", {lineAt(120, "a"), lineAt(140, "b")});
       }},
      {"no group", [=](const Drawing& d) { return civil::removingSampleLineGroup(group(d).handle); }},
      {"name", [=](const Drawing& d) { return civil::changingSampleLineGroup(group(d).handle, "Other", {}); }},
      {"lines",
       [=](const Drawing& d) {
         return civil::changingSampleLineGroup(group(d).handle, {}, std::vector{lineAt(105, "x"), lineAt(150, "y")});
       }},
      {"line", [=](const Drawing& d) { return civil::addingSampleLine(group(d).handle, lineAt(105, "first")); }},
      {"line behind", [=](const Drawing& d) { return civil::addingSampleLine(group(d).handle, lineAt(110, "last")); }},
      {"no line", [=](const Drawing& d) { return civil::removingSampleLine(group(d).lines.front().handle); }},
      {"width",
       [=](const Drawing& d) {
         return civil::changingSampleLine(group(d).lines.front().handle, {{10.0, 9.0}, {10.0, -9.0}});
       }},
  };
}

TEST_F(EditHistoryTest, UndoesAndRedoesEveryKindOfChangeToTheSameHandles) {
  std::size_t count = 0;
  for (const Kind& kind : kinds()) {
    SCOPED_TRACE(kind.name);
    const std::string before = text();
    const Handle made = history_.make(kind.name, kind.change(open_.drawing()));
    const std::string after = text();
    EXPECT_NE(after, before);
    EXPECT_NE(made, 0U);
    EXPECT_EQ(history_.undoName(), kind.name);
    for (int turn = 0; turn < 2; ++turn) {
      EXPECT_EQ(history_.undo(), made);
      EXPECT_EQ(text(), before);
      EXPECT_EQ(history_.redoName(), kind.name);
      EXPECT_EQ(history_.redo(), made);
      EXPECT_EQ(text(), after);
    }
    EXPECT_EQ(history_.undo(), made);
    ++count;
  }
  EXPECT_EQ(count, 11U);
}

TEST_F(EditHistoryTest, UndoesManyStepsInTheOppositeOrderAndRedoesThem) {
  std::vector<std::string> states{text()};
  for (int turn = 0; turn < 2; ++turn) {
    history_.make("group", civil::addingSampleLineGroup(alignment(), "G" + std::to_string(turn), {lineAt(120, "a")}));
    states.push_back(text());
    history_.make("line", civil::addingSampleLine(group(), lineAt(130.0 + turn, "b")));
    states.push_back(text());
    history_.make("width", civil::changingSampleLine(line(), {{0.0, turn + 3.0}, {0.0, -1.0}}));
    states.push_back(text());
    history_.make("no line", civil::removingSampleLine(line()));
    states.push_back(text());
  }
  for (std::size_t step = states.size() - 1; step-- > 0;) {
    history_.undo();
    EXPECT_EQ(text(), states[step]) << step;
  }
  EXPECT_FALSE(history_.canUndo());
  EXPECT_EQ(history_.undo(), 0U);
  for (std::size_t step = 1; step < states.size(); ++step) {
    history_.redo();
    EXPECT_EQ(text(), states[step]) << step;
  }
  EXPECT_FALSE(history_.canRedo());
  EXPECT_EQ(history_.redo(), 0U);
}

TEST_F(EditHistoryTest, FindsWhatChangesMadeByTheIndex) {
  const Handle made = history_.make("group", civil::addingSampleLineGroup(alignment(), "G", {lineAt(120, "a")}));
  ASSERT_TRUE(open_.index().byHandle(made).has_value());
  EXPECT_EQ(open_.index().byHandle(made)->as<civil::SampleLineGroup>()->name, "G");
  history_.undo();
  EXPECT_FALSE(open_.index().byHandle(made).has_value());
}

TEST_F(EditHistoryTest, ForgetsUndoneStepsOnceAnotherIsMade) {
  history_.make("one", civil::addingPointGroup("One", {7}));
  history_.undo();
  history_.make("two", civil::addingPointGroup("Two", {7}));
  EXPECT_FALSE(history_.canRedo());
  EXPECT_EQ(history_.undoName(), "two");
}

TEST_F(EditHistoryTest, LeavesTheDrawingUnchangedWhereAChangeCannotBeMade) {
  const std::string before = text();
  const auto rejects = [&](civil::ReversibleChangePtr change) {
    EXPECT_THROW(history_.make("wrong", std::move(change)), civil::EditError);
    EXPECT_EQ(text(), before);
  };
  rejects(civil::addingSampleLineGroup(alignment(), "SL", {}));
  rejects(civil::addingSampleLineGroup(alignment(), "", {}));
  rejects(civil::addingSampleLineGroup(group(), "G", {}));
  rejects(civil::addingProfile(alignment(), "Ground", civil::Profile::ground({{{100.0, 1.0}, {200.0, 2.0}}})));
  rejects(civil::addingPointGroup("P", {}));
  rejects(civil::addingPointGroup("New", {4711}));
  rejects(civil::removingSampleLineGroup(line()));
  rejects(civil::removingPointGroup(0));
  rejects(civil::removingSampleLine(group()));
  rejects(civil::changingSampleLineGroup(group(), "", {}));
  rejects(civil::changingSampleLine(line(), {{0.0, 0.0}}));
  EXPECT_FALSE(open_.isChanged());
  EXPECT_FALSE(history_.canUndo());
}

TEST_F(EditHistoryTest, RefusesANameThatAnotherGroupHasButNotItsOwn) {
  const Handle made = history_.make("group", civil::addingSampleLineGroup(alignment(), "G", {lineAt(120, "a")}));
  EXPECT_THROW(history_.make("name", civil::changingSampleLineGroup(made, "SL", {})), civil::EditError);
  EXPECT_NO_THROW(history_.make("name", civil::changingSampleLineGroup(made, "G", {})));
}

TEST_F(EditHistoryTest, LeadsBackToUnchangedAndToWhatWasSaved) {
  EXPECT_FALSE(open_.isChanged());
  history_.make("one", civil::addingPointGroup("One", {7}));
  EXPECT_TRUE(open_.isChanged());
  history_.undo();
  EXPECT_FALSE(open_.isChanged());
  history_.redo();
  open_.setSaved();
  EXPECT_FALSE(open_.isChanged());
  history_.undo();
  EXPECT_TRUE(open_.isChanged()) << "it was saved with the group";
  history_.make("two", civil::addingPointGroup("Two", {7}));
  EXPECT_TRUE(open_.isChanged()) << "another step isn't the one that was saved";
  history_.undo();
  EXPECT_TRUE(open_.isChanged());
}

TEST_F(EditHistoryTest, GoesNotBehindAChangePastIt) {
  history_.make("one", civil::addingPointGroup("One", {7}));
  open_.edit([](Drawing& drawing) { drawing.pointGroups.pop_back(); });
  EXPECT_FALSE(history_.canUndo());
  EXPECT_EQ(history_.undo(), 0U);
  history_.make("two", civil::addingPointGroup("Two", {7}));
  EXPECT_EQ(history_.undoName(), "two");
  history_.undo();
  EXPECT_FALSE(history_.canUndo());
}

TEST_F(EditHistoryTest, LetsCorridorsKeepTheirProfiles) {
  const auto designOf = [&] { return open_.drawing().corridors.front().baselines.front().profile; };
  open_.edit([](Drawing& drawing) {
    const civil::AlignmentObject& alignment = a1(drawing);
    civil::Corridor corridor;
    corridor.handle = civil::largestHandle(drawing) + 1;
    corridor.baselines.push_back({"B", &alignment, &alignment.profiles.at(1), {}});
    drawing.corridors.push_back(std::move(corridor));
  });
  const std::string design = designOf()->name;
  for (int i = 0; i < 20; ++i) {
    history_.make("profile", civil::addingProfile(alignment(), "New " + std::to_string(i),
                                                  civil::Profile::ground({{{100.0, 1.0}, {200.0, 2.0}}})));
    ASSERT_EQ(designOf(), &a1(open_.drawing()).profiles.at(1)) << i;
  }
  while (history_.canUndo()) history_.undo();
  while (history_.canRedo()) history_.redo();
  EXPECT_EQ(designOf(), &a1(open_.drawing()).profiles.at(1));
  EXPECT_EQ(designOf()->name, design);
}

}  // namespace
}  // namespace lvx::runtime
