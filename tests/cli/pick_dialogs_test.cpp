// What a person picks from where there is no plan to pick in.
#include "cli/pick_dialogs.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/dialog_controls.h"
#include "landxml/reader.h"
#include "support/places.h"
#include "windowless/dialog_state.h"

namespace lvx::cli {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;
using windowless::DialogState;
using windowless::Refusal;

std::vector<std::string> textsOf(const std::vector<PickRow>& rows) {
  std::vector<std::string> texts;
  for (const PickRow& row : rows) texts.push_back(row.text);
  return texts;
}

TEST(PickRows, NameObjectsByTheirKindAndTheirOwner) {
  const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  EXPECT_THAT(textsOf(pickRows(drawing, "en")),
              IsSupersetOf({"Alignment: Forest track", "Alignment: Valley road (Valley road upgrade)",
                            "Surface: Existing ground", "Sample line group: Cross sections 20 m (Valley road)",
                            "Profile: Valley road design (Valley road)", "Point group: Control points"}));
  EXPECT_THAT(textsOf(pickRows(drawing, "de")), IsSupersetOf({"Achse: Forest track", "DGM: Existing ground"}));
  for (const PickRow& row : pickRows(drawing, "en")) EXPECT_NE(row.handle, 0U) << row.text;
}

TEST(PickObjectDialog, GivesTheSelectedObjectOnceOneIsSelected) {
  const std::vector<PickRow> rows{{7, "Alignment: A"}, {9, "Surface: \xC3\x84"}};
  PickObjectDialog dialog(L"\nSelect an alignment: ", rows, "en");
  DialogState window(dialog);
  EXPECT_EQ(window.text(kIdPickPrompt), L"Select an alignment:");
  EXPECT_EQ(window.rowCount(kIdPickObjects), 2);
  EXPECT_EQ(window.userClicks(host::kIdOk), Refusal::Disabled);
  EXPECT_EQ(window.userSelects(kIdPickObjects, L"Surface: \u00C4"), Refusal::None);
  EXPECT_EQ(window.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(window.closedWith(), host::kIdOk);
  EXPECT_EQ(dialog.picked(), 9U);
}

TEST(PickObjectDialog, GivesNothingWhenItIsGivenUp) {
  const std::vector<PickRow> rows{{7, "Alignment: A"}};
  PickObjectDialog dialog(L"Pick", rows, "de");
  DialogState window(dialog);
  EXPECT_EQ(window.title(), L"Ein Objekt w\u00E4hlen");
  EXPECT_EQ(window.userSelects(kIdPickObjects, 0), Refusal::None);
  window.userCloses();
  EXPECT_EQ(window.closedWith(), host::kIdCancel);
  EXPECT_EQ(dialog.picked(), std::nullopt);
}

TEST(PickPointsDialog, TellsWhatItDoesNotUnderstandAndTakesAnotherText) {
  PickPointsDialog dialog(
      L"Select points: ",
      [](const std::string& text) -> std::vector<civil::Handle> {
        if (text != "1,5") throw std::runtime_error("no points: " + text);
        return {11, 15};
      },
      "en");
  DialogState window(dialog);
  EXPECT_EQ(window.userClicks(host::kIdOk), Refusal::Disabled);
  EXPECT_EQ(window.userTypes(kIdPickNumbers, L"x"), Refusal::None);
  EXPECT_EQ(window.userClicks(host::kIdOk), Refusal::None);
  EXPECT_EQ(window.closedWith(), std::nullopt);
  EXPECT_EQ(window.text(kIdPickHint), L"no points: x");
  EXPECT_EQ(window.userTypes(kIdPickNumbers, L"1,5"), Refusal::None);
  EXPECT_EQ(window.text(kIdPickHint), L"Numbers of points, such as 1,5,7-9, or all");
  EXPECT_EQ(window.userClicks(host::kIdOk), Refusal::None);
  ASSERT_TRUE(dialog.picked());
  EXPECT_THAT(*dialog.picked(), ElementsAre(11U, 15U));
}

}  // namespace
}  // namespace lvx::cli
