// Where things stand on the sheets of books.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "recording_canvas.h"
#include "sheets/pens.h"
#include "sheets/profile_book.h"
#include "sheets/section_book.h"
#include "sheets/sheet_error.h"
#include "support/places.h"
#include "view/section_model.h"

namespace lvx::sheets {
namespace {

using testing::HasSubstr;

const civil::Drawing& road() {
  static const civil::Drawing drawing = landxml::readDrawing(test::inSource("/examples/valley-road.xml"));
  return drawing;
}

const civil::AlignmentObject& alignmentNamed(const civil::Drawing& drawing, const std::string& name) {
  for (const auto& alignment : drawing.siteless.alignments)
    if (alignment->name == name) return *alignment;
  for (const civil::Site& site : drawing.sites)
    for (const auto& alignment : site.alignments)
      if (alignment->name == name) return *alignment;
  throw std::runtime_error("no alignment " + name);
}

SectionChoice valley() {
  const civil::AlignmentObject& alignment = alignmentNamed(road(), "Valley road");
  return {.alignment = &alignment, .group = &alignment.sampleLineGroups.front()};
}

std::vector<RecordingCanvas> drawn(Book& book) {
  std::vector<RecordingCanvas> sheets(book.sheetCount());
  for (std::size_t i = 0; i < sheets.size(); ++i) book.draw(i, sheets[i]);
  return sheets;
}

/// Texts keep off each other and stay on the paper.
void expectNoOverlap(const RecordingCanvas& sheet, canvas::Size paper) {
  constexpr double kTouch = 0.05;
  const std::vector<RecordedText>& texts = sheet.texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const RecordedText& a = texts[i];
    EXPECT_GE(a.left, 10.0) << a.text;
    EXPECT_GE(a.top, 10.0) << a.text;
    EXPECT_LE(a.right, paper.width - 10.0) << a.text;
    EXPECT_LE(a.bottom, paper.height - 10.0) << a.text;
    for (std::size_t j = i + 1; j < texts.size(); ++j) {
      const RecordedText& b = texts[j];
      const bool isOver = a.left < b.right - kTouch && b.left < a.right - kTouch && a.top < b.bottom - kTouch &&
                          b.top < a.bottom - kTouch;
      EXPECT_FALSE(isOver) << "'" << a.text << "' lies on '" << b.text << "'";
    }
  }
}

std::vector<std::string> textsOf(const RecordingCanvas& sheet) {
  std::vector<std::string> texts;
  for (const RecordedText& text : sheet.texts) texts.push_back(text.text);
  return texts;
}

struct Look {
  const char* name;
  canvas::Size paper;
  std::optional<double> scale;
  double exaggeration;
  std::size_t perSheet;
  bool hasGrid;
  const char* language;
};

class Looks : public testing::TestWithParam<Look> {
 protected:
  [[nodiscard]] static SheetSettings settings() {
    const Look& look = GetParam();
    return {look.paper, look.scale, look.exaggeration, look.perSheet, look.hasGrid, look.language, "2026-11-22"};
  }
  EvenMeasure measure_;
};

INSTANTIATE_TEST_SUITE_P(All, Looks,
                         testing::Values(Look{"A3", {420, 297}, {}, 1.0, 0, false, "en"},
                                         Look{"A4", {297, 210}, {}, 1.0, 0, true, "de"},
                                         Look{"A4Portrait", {210, 297}, {}, 2.0, 0, true, "en"},
                                         Look{"A1", {841, 594}, 200.0, 2.0, 0, true, "de"},
                                         Look{"A0", {1189, 841}, {}, 1.0, 4, false, "en"},
                                         Look{"Own", {700, 300}, 250.0, 1.0, 3, true, "en"}),
                         [](const auto& look) { return std::string(look.param.name); });

TEST_P(Looks, SectionsHaveTextsThatNeverOverlap) {
  SectionBook book(road(), valley(), settings(), measure_);
  for (const RecordingCanvas& sheet : drawn(book)) expectNoOverlap(sheet, GetParam().paper);
}

TEST_P(Looks, ProfilesHaveTextsThatNeverOverlap) {
  SheetSettings wanted = settings();
  wanted.exaggeration = 10.0;
  wanted.scale.reset();
  ProfileBook book(road(), {.alignment = &alignmentNamed(road(), "Valley road")}, wanted, measure_);
  for (const RecordingCanvas& sheet : drawn(book)) expectNoOverlap(sheet, GetParam().paper);
}

TEST_P(Looks, EverySectionStandsOnceInOrder) {
  SectionBook book(road(), valley(), settings(), measure_);
  std::vector<std::string> titles;
  for (const RecordingCanvas& sheet : drawn(book)) {
    std::size_t onSheet = 0;
    for (const std::string& text : textsOf(sheet))
      if (text.starts_with("Station ") && text.find('+') != std::string::npos) {
        titles.push_back(text);
        ++onSheet;
      }
    EXPECT_GE(onSheet, 1U);
    if (GetParam().perSheet > 0) {
      EXPECT_LE(onSheet, GetParam().perSheet);
    }
  }
  ASSERT_EQ(titles.size(), valley().group->lines.size());
  EXPECT_TRUE(std::is_sorted(titles.begin(), titles.end()));
}

TEST(SectionBook, IsTrueToScaleToAHundredthOfAMillimetre) {
  EvenMeasure measure;
  const SheetSettings settings{.paper = {841, 594}, .scale = 200.0, .exaggeration = 2.0, .perSheet = 1};
  SectionChoice choice = valley();
  SectionBook book(road(), choice, settings, measure);
  std::vector<const civil::SampleLine*> lines;
  for (const civil::SampleLine& line : choice.group->lines) lines.push_back(&line);
  std::stable_sort(lines.begin(), lines.end(), [](auto* a, auto* b) { return a->station < b->station; });
  ASSERT_EQ(book.sheetCount(), lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    RecordingCanvas sheet;
    book.draw(i, sheet);
    const auto model = view::sectionOf(road(), lines[i]->handle);
    const view::Line& ground = model->grounds.front().lines.front();
    const auto drawnGround = std::find_if(sheet.lines.begin(), sheet.lines.end(), [&](const RecordedLine& line) {
      return line.places.size() == ground.size() && line.pen.width == groundPen(0).width &&
             line.pen.colour.green == groundPen(0).colour.green;
    });
    ASSERT_NE(drawnGround, sheet.lines.end());
    for (std::size_t p = 1; p < ground.size(); ++p) {
      const canvas::Place a = drawnGround->places[0];
      const canvas::Place b = drawnGround->places[p];
      EXPECT_NEAR(b.x - a.x, (ground[p].x - ground[0].x) * 5.0, 0.01);
      EXPECT_NEAR(a.y - b.y, (ground[p].y - ground[0].y) * 10.0, 0.01);
    }
  }
}

TEST(SectionBook, TellsWhatFitsWhereAScaleDoesNot) {
  EvenMeasure measure;
  try {
    SectionBook book(road(), valley(), {.paper = {297, 210}, .scale = 50.0}, measure);
    FAIL() << "it fits";
  } catch (const SheetError& error) {
    EXPECT_EQ(error.problem(), SheetError::Problem::TooLarge);
    EXPECT_THAT(error.what(), HasSubstr("larger than the paper (A4) at 1:50; 1:"));
    ASSERT_GT(error.fittingScale(), 50.0);
    SectionBook fitting(road(), valley(), {.paper = {297, 210}, .scale = error.fittingScale()}, measure);
    EXPECT_GE(fitting.sheetCount(), 1U);
    if (!error.fittingPaper().empty()) {
      EXPECT_THAT(error.what(), HasSubstr(error.fittingPaper() + " across"));
    }
  }
}

TEST(SectionBook, TakesARangeAndSurfaces) {
  EvenMeasure measure;
  SectionChoice choice = valley();
  const double middle = choice.group->lines[choice.group->lines.size() / 2].station;
  choice.from = choice.to = middle;
  SectionBook one(road(), choice, {}, measure);
  EXPECT_EQ(one.sectionCount(), 1U);
  choice.from = 1e9;
  choice.to = 2e9;
  EXPECT_THROW(SectionBook(road(), choice, {}, measure), SheetError);
}

TEST(SectionBook, StopsWhereItIsToldTo) {
  EvenMeasure measure;
  try {
    SectionBook book(road(), valley(), {}, measure, [](std::size_t done, std::size_t) { return done < 3; });
    FAIL() << "it went on";
  } catch (const SheetError& error) {
    EXPECT_EQ(error.problem(), SheetError::Problem::Stopped);
  }
}

TEST(DesignTop, LeavesOutWhatLiesBelowAnotherPart) {
  view::SectionModel section;
  view::SectionCorridor corridor;
  corridor.parts.push_back({{"Pave"}, {{{-4, 10}, {}}, {{4, 10}, {}}, {{4, 9.5}, {}}, {{-4, 9.5}, {}}}, true});
  corridor.parts.push_back({{"Slope"}, {{{4, 10}, {}}, {{8, 12}, {}}}, false});
  section.corridors.push_back(corridor);
  EXPECT_THAT(designTop(section), testing::ElementsAre(civil::Vec2{-4, 10}, civil::Vec2{4, 10}, civil::Vec2{8, 12}));
}

TEST(ProfileBook, SheetsFollowEachOtherAndAreTrueToScale) {
  EvenMeasure measure;
  const civil::AlignmentObject& alignment = alignmentNamed(road(), "Valley road");
  ProfileBook book(road(), {.alignment = &alignment}, {.paper = {297, 210}, .scale = 500.0, .exaggeration = 5.0},
                   measure);
  ASSERT_GT(book.sheetCount(), 1U);
  EXPECT_DOUBLE_EQ(book.strips().front().start, alignment.geometry.startStation());
  EXPECT_DOUBLE_EQ(book.strips().back().end, alignment.geometry.endStation());
  for (std::size_t i = 1; i < book.strips().size(); ++i)
    EXPECT_DOUBLE_EQ(book.strips()[i].start, book.strips()[i - 1].end);
  for (std::size_t i = 0; i < book.sheetCount(); ++i) {
    RecordingCanvas sheet;
    book.draw(i, sheet);
    const ProfileStrip& strip = book.strips()[i];
    // The curvature's middle line runs over the whole strip.
    const auto middle = std::find_if(sheet.lines.begin(), sheet.lines.end(), [&](const RecordedLine& line) {
      return line.places.size() == 2 && line.places[0].y == line.places[1].y &&
             std::abs(line.places[1].x - line.places[0].x - (strip.end - strip.start) * 2.0) < 0.01;
    });
    EXPECT_NE(middle, sheet.lines.end()) << i;
    EXPECT_THAT(textsOf(sheet), testing::Contains(std::to_string(i + 1) + " of " + std::to_string(book.sheetCount())));
  }
}

TEST(ProfileBook, TellsThatTheRangeLiesBesideTheAlignment) {
  EvenMeasure measure;
  ProfileChoice choice{.alignment = &alignmentNamed(road(), "Valley road"), .from = 1e6};
  try {
    ProfileBook book(road(), choice, {}, measure);
    FAIL() << "there is nothing";
  } catch (const SheetError& error) {
    EXPECT_EQ(error.problem(), SheetError::Problem::NothingToDraw);
    EXPECT_THAT(error.what(), HasSubstr("lies beside the wanted range"));
  }
}

TEST(ProfileBook, TellsWhatFitsWhereHeightsDoNot) {
  EvenMeasure measure;
  ProfileChoice choice{.alignment = &alignmentNamed(road(), "Valley road")};
  try {
    ProfileBook book(road(), choice, {.paper = {297, 210}, .scale = 10.0, .exaggeration = 1000.0}, measure);
    FAIL() << "it fits";
  } catch (const SheetError& error) {
    EXPECT_EQ(error.problem(), SheetError::Problem::TooLarge);
    EXPECT_THAT(error.what(), HasSubstr("or less exaggeration"));
  }
}

}  // namespace
}  // namespace lvx::sheets
