#include "civil/sibling_names.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil/drawing_files.h"
#include "civil/reversible_change.h"
#include "civil_makers.h"

namespace lvx::civil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

template <class List>
Names namesOf(const List& list) {
  Names names;
  for (const auto& object : list) {
    if constexpr (requires { object->name; })
      names.push_back(object->name);
    else
      names.push_back(object.name);
  }
  return names;
}

template <class List>
Names savedNamesOf(const List& list) {
  Names names;
  for (const auto& object : list) names.push_back(savedName(object));
  return names;
}

/// Gives each object of a list a name and a handle from `first` on.
template <class List>
void name(List& list, const Names& names, Handle first) {
  for (const std::string& each : names) {
    auto& object = list.emplace_back();
    if constexpr (requires { object->name; }) {
      object = std::make_unique<AlignmentObject>();
      object->name = each;
      object->handle = first++;
    } else {
      object.name = each;
      object.handle = first++;
    }
  }
}

Names tellApart(Drawing& drawing) {
  Names told;
  tellSiblingsApart(drawing, [&](const std::string& text, Handle, FileNumber) { told.push_back(text); });
  return told;
}

TEST(SiblingNames, TheSecondAndLaterGetNumbersThatNoOtherHas) {
  struct Row {
    Names given;
    Names here;
  };
  const Row rows[] = {
      {{"A", "B"}, {"A", "B"}},
      {{"A", "A"}, {"A", "A (2)"}},
      {{"A", "A", "B", "A"}, {"A", "A (2)", "B", "A (3)"}},
      {{"A", "A", "A (2)"}, {"A", "A (3)", "A (2)"}},
      {{"A (2)", "A (2)", "A", "A"}, {"A (2)", "A (2) (2)", "A", "A (3)"}},
      {{"", ""}, {"", "(2)"}},
      {{"a", "A"}, {"a", "A"}},
  };
  for (const Row& row : rows) {
    Drawing drawing;
    name(drawing.surfaces, row.given, 0x10);
    tellApart(drawing);
    EXPECT_EQ(namesOf(drawing.surfaces), row.here);
    EXPECT_EQ(savedNamesOf(drawing.surfaces), row.given);
    EXPECT_THAT(tellApart(drawing), IsEmpty()) << "they are told apart already";
  }
}

TEST(SiblingNames, OnlySiblingsAreToldApart) {
  Drawing drawing;
  drawing.sites.resize(2);
  drawing.sites[0].name = "S";
  drawing.sites[1].name = "T";
  name(drawing.siteless.alignments, {"A", "A"}, 0x10);
  name(drawing.sites[0].alignments, {"A", "B", "B"}, 0x20);
  name(drawing.sites[1].alignments, {"A"}, 0x30);
  AlignmentObject& axis = *drawing.sites[1].alignments[0];
  name(axis.profiles, {"P", "P"}, 0x40);
  axis.profiles[0].profile = Profile::ground({{{.station = 0, .elevation = 1}, {.station = 9, .elevation = 1}}});
  name(axis.sampleLineGroups, {"P", "G", "G"}, 0x50);
  name(drawing.surfaces, {"A", "G"}, 0x60);
  name(drawing.pointGroups, {"A", "P", "P"}, 0x70);
  name(drawing.corridors, {"C", "C"}, 0x80);

  std::vector<Handle> handles;
  Names told;
  tellSiblingsApart(drawing, [&](const std::string& text, Handle object, FileNumber) {
    told.push_back(text);
    handles.push_back(object);
  });
  const std::string keeps = " here and keeps its name in the file";
  EXPECT_THAT(
      told,
      ElementsAre(
          "alignment 'A': another alignment before it has that name; it is called 'A (2)'" + keeps,
          "site 'S': alignment 'B': another alignment before it has that name; it is called 'B (2)'" + keeps,
          "alignment 'A': design profile 'P': another profile before it has that name; it is called 'P (2)'" + keeps,
          "alignment 'A': sample line group 'G': another sample line group before it has that name; it is "
          "called 'G (2)'" +
              keeps,
          "point group 'P': another point group before it has that name; it is called 'P (2)'" + keeps));
  EXPECT_THAT(handles, ElementsAre(0x11, 0x22, 0x41, 0x52, 0x72));
  EXPECT_THAT(namesOf(drawing.corridors), ElementsAre("C", "C")) << "several may come from one Roadway";
}

TEST(SiblingNames, HoldOverSeveralFiles) {
  Drawing whole;
  whole.sites.resize(1);
  whole.sites[0].name = "S";
  name(whole.sites[0].alignments, {"A"}, 0x10);
  name(whole.surfaces, {"EG", "EG"}, 0x20);
  tellApart(whole);
  Drawing added;
  added.sites.resize(1);
  added.sites[0].name = "S";
  name(added.sites[0].alignments, {"A"}, 0x10);
  name(added.surfaces, {"EG", "EG", "FG"}, 0x20);
  tellApart(added);
  AddedFile file;
  file.path = "b.xml";
  addDrawing(whole, std::move(added), std::move(file));

  EXPECT_THAT(namesOf(whole.sites[0].alignments), ElementsAre("A", "A (2)"));
  EXPECT_THAT(namesOf(whole.surfaces), ElementsAre("EG", "EG (2)", "EG (3)", "EG (4)", "FG"));
  EXPECT_THAT(savedNamesOf(whole.surfaces), ElementsAre("EG", "EG", "EG", "EG", "FG"));
  ASSERT_EQ(whole.diagnostics.size(), 3U);
  EXPECT_EQ(whole.diagnostics[2].text,
            "surface 'EG': another surface before it has that name; it is called 'EG (4)' here, no more 'EG (2)', and "
            "keeps its name in the file");
  EXPECT_EQ(whole.diagnostics[2].file, 1U);
  EXPECT_EQ(whole.diagnostics[2].object, whole.surfaces[3].handle);
}

TEST(SiblingNames, ANameThatAPersonGivesIsTheOneThatIsSaved) {
  Drawing drawing;
  name(drawing.siteless.alignments, {"A"}, 0x10);
  auto& groups = drawing.siteless.alignments[0]->sampleLineGroups;
  name(groups, {"G", "G"}, 0x20);
  tellApart(drawing);
  const auto rename = changingSampleLineGroup(groups[1].handle, "Bridge", std::nullopt);
  rename->make(drawing);
  EXPECT_EQ(savedName(groups[1]), "Bridge");
  rename->undo(drawing);
  EXPECT_EQ(groups[1].name, "G (2)");
  EXPECT_EQ(savedName(groups[1]), "G");
  rename->make(drawing);
  EXPECT_EQ(savedName(groups[1]), "Bridge");
}

TEST(SiblingNames, AHundredThousandOfOneNameTakeNoSquareOfTheirNumber) {
  Drawing drawing;
  constexpr std::size_t kMany = 100'000;
  name(drawing.pointGroups, Names(kMany, "Trees"), 0x10);
  EXPECT_EQ(tellApart(drawing).size(), kMany - 1);
  EXPECT_EQ(drawing.pointGroups.back().name, "Trees (100000)");
}

}  // namespace
}  // namespace lvx::civil
