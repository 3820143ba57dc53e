#include "advice/dialog_choices.h"

#include <map>
#include <memory>
#include <set>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/dialog_controls.h"

namespace lvx::advice {
namespace {

using host::CString;
using testing::IsEmpty;

/// Controls that stand as a test says.
class Controls final : public host::DialogWindow {
 public:
  std::map<int, int> rows;
  std::map<int, CString> texts;
  std::set<int> ticks;

  void setTitle(const CString& /*title*/) override {}
  void setText(int id, const CString& text) override { texts[id] = text; }
  [[nodiscard]] CString text(int id) const override { return texts.count(id) == 0 ? CString() : texts.at(id); }
  void enable(int /*id*/, bool /*enabled*/) override {}
  [[nodiscard]] bool isEnabled(int /*id*/) const override { return true; }
  void emptyList(int /*id*/) override {}
  void insertRow(int /*id*/, int /*position*/, const CString& /*text*/) override {}
  [[nodiscard]] int rowCount(int /*id*/) const override { return 0; }
  [[nodiscard]] CString rowText(int /*id*/, int /*row*/) const override { return {}; }
  void select(int id, int row) override { rows[id] = row; }
  [[nodiscard]] int selection(int id) const override { return rows.count(id) == 0 ? kNone : rows.at(id); }
  void tick(int id, bool ticked) override {
    if (ticked) ticks.insert(id);
  }
  [[nodiscard]] bool isTicked(int id) const override { return ticks.count(id) > 0; }
  void setPicture(int /*id*/, const host::PictureBits& /*picture*/) override {}
  void setTip(int /*id*/, const CString& /*text*/) override {}
  void end(int /*code*/) override {}
};

/// Two sites, the first without alignments, two alignments in the second; a surface, a point group and two points.
class DialogChoicesTest : public testing::Test {
 protected:
  DialogChoicesTest() {
    drawing.sites.resize(2);
    drawing.sites[0].name = "Empty";
    drawing.sites[1].name = "North";
    for (const char* name : {"Road", "Track"}) {
      auto alignment = std::make_unique<civil::AlignmentObject>();
      alignment->handle = next++;
      alignment->name = name;
      alignment->profiles.emplace_back().name = std::string(name) + " profile";
      alignment->sampleLineGroups.emplace_back().name = std::string(name) + " lines";
      drawing.sites[1].alignments.push_back(std::move(alignment));
    }
    drawing.surfaces.emplace_back().name = "Ground";
    for (const int number : {7, 8}) {
      civil::Point& point = drawing.points.emplace_back();
      point.handle = next++;
      point.number = number;
    }
    drawing.pointGroups.emplace_back().name = "Trees";
    drawing.pointGroups.back().numbers = {8};
    controls.rows = {{host::kIdSites, 0},    {host::kIdAlignments, 1}, {host::kIdSampleLineGroups, 0},
                     {host::kIdSurfaces, 0}, {host::kIdProfiles, 0},   {host::kIdPointGroups, 0}};
    controls.texts[host::kIdOutputStem] = L"out/road";
    controls.ticks = {host::kIdCheckExcel};
  }
  std::optional<DialogChoices> read(const char* dialog, const std::vector<civil::Handle>& picked = {}) {
    const civil::DrawingIndex index(drawing);
    return choicesIn(dialog, controls, drawing, index, picked);
  }

  civil::Handle next = 1;
  civil::Drawing drawing;
  Controls controls;
};

TEST_F(DialogChoicesTest, AreTheObjectsOfTheChosenRows) {
  const auto choices = read(host::kProjectionDialog);
  ASSERT_TRUE(choices);
  const civil::AlignmentObject& track = *drawing.sites[1].alignments[1];
  EXPECT_EQ(choices->objects.report, Report::Projection);
  EXPECT_EQ(choices->objects.site, &drawing.sites[1]) << "a site without alignments has no row";
  EXPECT_EQ(choices->objects.alignment, &track);
  EXPECT_EQ(choices->objects.group, &track.sampleLineGroups[0]);
  EXPECT_EQ(choices->objects.surface, &drawing.surfaces[0]);
  EXPECT_EQ(choices->objects.profile, nullptr);
  EXPECT_EQ(choices->stem, "out/road");
  EXPECT_FALSE(choices->forms.text);
  EXPECT_TRUE(choices->forms.workbook);
  EXPECT_FALSE(choices->forms.page);

  const auto gls = read(host::kGlsDialog);
  ASSERT_TRUE(gls);
  EXPECT_EQ(gls->objects.report, Report::Gls);
  EXPECT_EQ(gls->objects.profile, &track.profiles[0]);
  EXPECT_EQ(gls->objects.surface, nullptr);
}

TEST_F(DialogChoicesTest, OfPointsAreThoseOfTheGroupOrThePickedOnes) {
  auto choices = read(host::kPointsDialog, {drawing.points[0].handle});
  ASSERT_TRUE(choices);
  EXPECT_EQ(choices->objects.pointGroup, &drawing.pointGroups[0]);
  EXPECT_THAT(choices->objects.points, testing::ElementsAre(&drawing.points[1]));
  controls.rows[host::kIdPointGroups] = 1;  // the row behind all groups
  choices = read(host::kPointsDialog, {drawing.points[0].handle});
  EXPECT_EQ(choices->objects.pointGroup, nullptr);
  EXPECT_THAT(choices->objects.points, testing::ElementsAre(&drawing.points[0]));
}

TEST_F(DialogChoicesTest, AreNullWhereNoRowIsChosenOrTheDrawingHasNoSuchRow) {
  controls.rows = {{host::kIdSites, 0}, {host::kIdAlignments, 5}, {host::kIdPointGroups, 9}};
  const auto choices = read(host::kPointsDialog);
  ASSERT_TRUE(choices);
  EXPECT_EQ(choices->objects.alignment, nullptr);
  EXPECT_EQ(choices->objects.pointGroup, nullptr);
  EXPECT_THAT(choices->objects.points, IsEmpty());
}

TEST_F(DialogChoicesTest, AreOfReportDialogsAlone) { EXPECT_FALSE(read(host::kAddSectionsDialog)); }

}  // namespace
}  // namespace lvx::advice
