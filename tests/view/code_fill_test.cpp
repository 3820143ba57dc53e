#include "view/code_fill.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lvx::view {
namespace {

using testing::ElementsAre;

struct CodeRow {
  const char* code;
  SectionUse use;
};

TEST(CodeFill, KnowsWhatACodeIsForByTheWordInIt) {
  const std::vector<CodeRow> rows{{"Pave", SectionUse::Pavement},
                                  {"Pave_1", SectionUse::Pavement},
                                  {"ASPHALT binder", SectionUse::Pavement},
                                  {"Belag", SectionUse::Pavement},
                                  {"Base", SectionUse::Base},
                                  {"SubBase", SectionUse::Subbase},
                                  {"Sub_Base_2", SectionUse::Subbase},
                                  {"Datum", SectionUse::Subbase},
                                  {"Curb", SectionUse::Curb},
                                  {"Kerb", SectionUse::Curb},
                                  {"Back_Curb", SectionUse::Curb},
                                  {"Sidewalk", SectionUse::Sidewalk},
                                  {"Gehweg", SectionUse::Sidewalk},
                                  {"Shoulder", SectionUse::Shoulder},
                                  {"ES_Unpaved", SectionUse::Shoulder},
                                  {"Cut_Slope", SectionUse::CutSlope},
                                  {"Fill slope", SectionUse::FillSlope},
                                  {"Slope", SectionUse::Slope},
                                  {"B\xc3\xb6schung", SectionUse::Slope},
                                  {"B\xc3\x96SCHUNG", SectionUse::Slope},
                                  {"GEL\xc3\x84NDE", SectionUse::Ground},
                                  {"BR\xc3\x9c"
                                   "CKE",
                                   SectionUse::Structure},
                                  {"Deck", SectionUse::Structure},
                                  {"Asphaltdeckschicht", SectionUse::Pavement},
                                  {"Fahrbahndecke", SectionUse::Pavement},
                                  {"Betondecke", SectionUse::Pavement},
                                  {"Topsoil", SectionUse::Topsoil},
                                  {"Top", SectionUse::Pavement},
                                  {"", SectionUse::Other},
                                  {"Quartz", SectionUse::Other}};
  for (const CodeRow& row : rows) EXPECT_EQ(useOf(std::string_view(row.code)), row.use) << row.code;
  const std::vector<std::string> codes{"Quartz", "Base"};
  EXPECT_EQ(useOf(codes), SectionUse::Base);
}

double brightness(Colour colour) { return 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue; }

TEST(CodeFill, IsLightOnPaperAndDarkOnDarkGroundWithStrokesThatStandOut) {
  std::vector<FillLook> looks{cutFillLook(false), cutFillLook(true)};
  for (std::size_t use = 0; use + 1 < kSectionUses; ++use) looks.push_back(lookOf(static_cast<SectionUse>(use), "x"));
  for (const char* code : {"Quartz", "A", "B", "Layer 7", ""}) looks.push_back(lookOf(SectionUse::Other, code));
  for (std::size_t i = 0; i < looks.size(); ++i) {
    EXPECT_GT(brightness(looks[i].light), 150) << i;
    EXPECT_LT(brightness(looks[i].dark), 105) << i;
    EXPECT_GT(brightness(looks[i].light) - brightness(looks[i].strokes), 60) << i;
    EXPECT_GT(brightness(looks[i].darkStrokes) - brightness(looks[i].dark), 50) << i;
  }
}

TEST(CodeFill, TellsAllUsesOfTheTableApart) {
  for (std::size_t a = 0; a + 1 < kSectionUses; ++a)
    for (std::size_t b = 0; b < a; ++b)
      EXPECT_FALSE(lookOf(static_cast<SectionUse>(a), "") == lookOf(static_cast<SectionUse>(b), "")) << a << " " << b;
  EXPECT_NE(cutFillLook(true).hatch, cutFillLook(false).hatch);
}

TEST(CodeFill, GivesAnUnknownCodeTheSameLookEachTimeAndOthersOftenAnother) {
  EXPECT_EQ(lookOf(SectionUse::Other, "Quartz"), lookOf(SectionUse::Other, "Quartz"));
  std::vector<FillLook> seen;
  for (int i = 0; i < 60; ++i) {
    const FillLook look = lookOf(SectionUse::Other, "Layer " + std::string(1, static_cast<char>('0' + i)));
    if (std::find(seen.begin(), seen.end(), look) == seen.end()) seen.push_back(look);
  }
  EXPECT_GE(seen.size(), 8U);
}

TEST(CodeFill, GathersThePartsOfACodeAndFillsOnlyClosedOnes) {
  SectionCorridor corridor;
  corridor.parts.push_back({{"Pave", "Top"}, {{{-3, 1}, {}}, {{3, 1}, {}}}, false});
  corridor.parts.push_back({{"Base"}, {{{-3, 1}, {}}, {{3, 1}, {}}, {{3, 0}, {}}, {{-3, 0}, {}}}, true});
  corridor.parts.push_back({{"Base"}, {{{4, 1}, {}}, {{5, 1}, {}}, {{5, 0}, {}}, {{4, 1}, {}}}, true});
  corridor.parts.push_back({{"Curb"}, {{{4, 1}, {}}}, true});
  corridor.parts.push_back({{}, {{{6, 1}, {}}, {{7, 1}, {}}}, true});
  const std::vector<SectionCorridor> corridors{corridor};
  const std::vector<CodeFill> fills = fillsOf(corridors);
  ASSERT_EQ(fills.size(), 3U);
  EXPECT_EQ(fills[0].code, "Pave");
  EXPECT_EQ(fills[0].bands.size(), 1U);
  EXPECT_TRUE(fills[0].areas.empty());
  EXPECT_EQ(fills[1].code, "Base");
  ASSERT_EQ(fills[1].areas.size(), 2U);
  EXPECT_EQ(fills[1].areas[1].size(), 3U) << "the first point stands once";
  EXPECT_EQ(fills[2].code, "");
  EXPECT_EQ(fills[2].bands.size(), 1U) << "two points enclose nothing";
}

}  // namespace
}  // namespace lvx::view
