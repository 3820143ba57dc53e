#include <algorithm>
#include <cmath>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/roadway_connection.h"
#include "landxml/reader.h"
#include "platform/utf8.h"
#include "runtime/command_runner.h"
#include "runtime/roadway_objects.h"
#include "small_drawing.h"
#include "support/corridor_makers.h"
#include "support/places.h"

namespace lvx::runtime {
namespace {

using civil::test::baselineFrom;
using civil::test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// The small drawing with two corridors: 'Road' along A1 with its design profile in two regions and once more without a
/// profile or regions, and 'Empty' without baselines.
civil::Drawing drawingWithCorridors() {
  civil::Drawing drawing = test::smallDrawing();
  const civil::AlignmentObject& axis = *drawing.sites[0].alignments[0];
  civil::Corridor road;
  road.handle = 0x2A0;
  road.name =
      "Stra\xC3\x9F"
      "e";
  road.description = "the main one";
  civil::Baseline main =
      baselineFrom({"100..200 | 100 Pave+Top(ETW:-4/-0.1 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12) | 150? Culvert | "
                    "200 Pave+Top(ETW:-6/-0.3 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)",
                    "200..400 | 200 Pave(-4 4) | 300 () | 400 (1/2)"});
  main.name = "BL";
  main.alignment = &axis;
  main.profile = &axis.profiles[1];
  road.baselines.push_back(std::move(main));
  civil::Baseline bare;
  bare.name = "bare";
  bare.alignment = &axis;
  road.baselines.push_back(std::move(bare));
  drawing.corridors.push_back(std::move(road));
  civil::Corridor empty;
  empty.handle = 0x2A1;
  empty.name = "Empty";
  drawing.corridors.push_back(std::move(empty));
  return drawing;
}

std::string codesOf(const host::Ref<host::QmtCodes>& codes) {
  std::string text;
  for (std::int32_t i = 0; i < codes->count(); ++i) text += (i == 0 ? "" : "+") + platform::toUtf8(codes->item(i));
  return text;
}

/// What the model's operations say of a section: "150 Pave(ETW:-4/-0.1 0)"; "none" for an empty reference.
std::string told(const host::Ref<host::QmtSection>& section) {
  if (section == nullptr) return "none";
  civil::CorridorSection seen;
  const auto parts = section->parts();
  for (std::int32_t i = 0; i < parts->count(); ++i) {
    civil::SectionPart part;
    part.codes = civil::test::splitAt(codesOf(parts->item(i)->codes()), '+');
    const auto points = parts->item(i)->points();
    for (std::int32_t k = 0; k < points->count(); ++k) {
      const auto place = points->item(k)->stationOffsetElevation();
      EXPECT_TRUE(place.isOneDimensional());
      EXPECT_EQ(place.lowerBound, 0);
      EXPECT_EQ(place.upperBound(), 2);
      seen.station = place.values.at(0);
      part.points.push_back(
          {place.values.at(1), place.values.at(2), civil::test::splitAt(codesOf(points->item(k)->codes()), '+')});
    }
    seen.parts.push_back(std::move(part));
  }
  return textOf(seen);
}

class RoadwayTest : public testing::Test {
 protected:
  RoadwayTest() { host_.open(drawingWithCorridors()); }
  ~RoadwayTest() override { host::disconnectRoadway(); }

  host::Ref<host::QmtCorridors> corridors() {
    EXPECT_EQ(host::connectRoadway(host_, L"No model"), 1);
    return host::roadwayDocument()->corridors();
  }
  host::Ref<host::QmtBaseline> baseline(std::int32_t index = 0) {
    return corridors()->item(0)->baselines()->item(index);
  }
  [[nodiscard]] const LiveObjects& live() const { return host_.openDrawing()->liveObjects(); }

  test::TestFrontEnd frontEnd_;
  bool stop_ = false;
  std::vector<std::string> progress_;
  StandinHost host_{frontEnd_, options()};

 private:
  HostOptions options() {
    HostOptions options;
    options.isInterrupted = [this] { return stop_; };
    options.startProgress = [this](const std::string& work) {
      return [this, work](std::uint64_t done, std::uint64_t total) {
        progress_.push_back(work + " " + std::to_string(done) + "/" + std::to_string(total));
      };
    };
    return options;
  }
};

// ---------------------------------------------------------------- the way to it

TEST_F(RoadwayTest, IsReachedThroughTheRunningApplication) {
  EXPECT_EQ(corridors()->count(), 2);
  EXPECT_EQ(live().description(), "QmtRoadwayApplication 1, QmtRoadwayDocument 1");
  EXPECT_EQ(host::disconnectRoadway(), 1);
  EXPECT_EQ(live().total(), 0U);
}

TEST_F(RoadwayTest, UnknownProgramIdentifiersAreNotFound) {
  for (const wchar_t* unknown : {L"", L"Vantor.Application", L"Vantor.Application.25", L"vantor.application.24"})
    EXPECT_FALSE(host_.activeApplication(unknown).found);
  const host::ActiveApplication active = host_.activeApplication(L"Vantor.Application.24");
  ASSERT_TRUE(active.found);
  active.application->setFlag(-1);
  EXPECT_EQ(active.application->interfaceObject(L"QmtXUiRoadway.QmtRoadwayApplication.13.5"), nullptr);
  EXPECT_EQ(active.application->interfaceObject(L""), nullptr);
  EXPECT_NE(active.application->interfaceObject(L"QmtXUiRoadway.QmtRoadwayApplication.13.6"), nullptr);
}

TEST_F(RoadwayTest, HasNoDocumentWhileNoDrawingIsOpen) {
  host_.close();
  EXPECT_EQ(host::connectRoadway(host_, L"No model"), 1);
  EXPECT_EQ(host::roadwayDocument(), nullptr);
}

TEST_F(RoadwayTest, AKeptDocumentLetsAClosedDrawingGo) {
  corridors();
  const std::weak_ptr<OpenDrawing> closed = host_.openDrawing();
  host_.open(test::smallDrawing());
  EXPECT_TRUE(closed.expired());
  EXPECT_EQ(host::roadwayDocument()->corridors(), nullptr);
  EXPECT_EQ(corridors()->count(), 0) << "a new connection reaches the drawing that is open now";
}

TEST_F(RoadwayTest, AnObjectThatIsKeptTooLongStillAnswers) {
  const auto kept = baseline();
  host_.close();
  EXPECT_EQ(told(kept->sectionAt(200)), "200 Pave+Top(ETW:-6/-0.3 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
}

// ---------------------------------------------------------------- what it tells

TEST_F(RoadwayTest, TellsNamesHandlesAndWhatEachBaselineRunsAlong) {
  const auto road = corridors()->item(0);
  EXPECT_EQ(road->name(), L"Stra\u00dfe");
  EXPECT_EQ(road->description(), L"the main one");
  EXPECT_EQ(road->handle(), L"2A0");
  EXPECT_EQ(road->baselines()->count(), 2);
  EXPECT_EQ(baseline()->alignment()->handle(), L"1F2");
  EXPECT_EQ(baseline()->regions()->count(), 2);
  EXPECT_EQ(corridors()->item(1)->name(), L"Empty");
  EXPECT_EQ(corridors()->item(1)->baselines()->count(), 0);
}

TEST_F(RoadwayTest, GivesAnEmptyReferenceForAnIndexOutside) {
  const auto list = corridors();
  EXPECT_EQ(list->item(-1), nullptr);
  EXPECT_EQ(list->item(2), nullptr);
  EXPECT_EQ(list->item(0)->baselines()->item(2), nullptr);
  EXPECT_EQ(baseline()->regions()->item(2), nullptr);
  const auto parts = baseline()->sectionAt(100)->parts();
  EXPECT_EQ(parts->item(-1), nullptr);
  EXPECT_EQ(parts->item(2), nullptr);
  EXPECT_EQ(parts->item(0)->points()->item(3), nullptr);
  EXPECT_EQ(parts->item(0)->codes()->item(2), L"");
}

TEST_F(RoadwayTest, AProfileGivesElevationsAndAMissingOneZero) {
  EXPECT_NEAR(baseline()->profile()->elevationAt(150), 11.0, 1e-12);
  EXPECT_NEAR(baseline()->profile()->elevationAt(50), 9.0, 1e-12) << "by the tangent drawn on";
  ASSERT_NE(baseline(1)->profile(), nullptr);
  EXPECT_EQ(baseline(1)->profile()->elevationAt(150), 0.0);
}

TEST_F(RoadwayTest, TellsSectionsOfAnyShape) {
  EXPECT_EQ(told(baseline()->sectionAt(100)), "100 Pave+Top(ETW:-4/-0.1 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
  EXPECT_EQ(told(baseline()->sectionAt(200)), "200 Pave+Top(ETW:-6/-0.3 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)")
      << "the first region at the shared bound";
  EXPECT_EQ(baseline()->sectionAt(300)->parts()->item(0)->points()->count(), 0);
  EXPECT_EQ(told(baseline()->sectionAt(400)), "400 (1/2)");
  EXPECT_EQ(told(baseline()->sectionAt(150)), "none") << "asked for, not computed yet";
  EXPECT_EQ(told(baseline(1)->sectionAt(100)), "none") << "a baseline without regions";
}

// ---------------------------------------------------------------- what it changes

TEST_F(RoadwayTest, AddedStationsStandInTheSetAtOnceAndHaveSectionsAfterTheRebuild) {
  const auto region = baseline()->regions()->item(0);
  EXPECT_THAT(region->stationSet()->stations().values, ElementsAre(100, 150, 200));
  region->addStation(125, L"\u00dcbergang");
  region->addStation(125.0000005, L"again");
  EXPECT_THAT(region->stationSet()->stations().values, ElementsAre(100, 125, 150, 200));
  EXPECT_EQ(told(baseline()->sectionAt(125)), "none");
  corridors()->item(0)->rebuild();
  EXPECT_EQ(told(baseline()->sectionAt(125)), "125 Pave+Top(ETW:-4.5/-0.15 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
  EXPECT_EQ(told(baseline()->sectionAt(150)), "150 Pave+Top(ETW:-5/-0.2 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
  const auto& sections = host_.openDrawing()->drawing().corridors[0].baselines[0].regions[0].sections;
  ASSERT_EQ(sections.size(), 4U);
  EXPECT_EQ(sections[1].label,
            "\xC3\x9C"
            "bergang");
  EXPECT_EQ(sections[2].label, "Culvert");
  EXPECT_EQ(sections[1].origin, civil::SectionOrigin::Computed);
}

TEST_F(RoadwayTest, TheDrawingKnowsWhetherItChanged) {
  const auto& drawing = *host_.openDrawing();
  corridors()->item(1)->rebuild();
  baseline(0)->regions()->item(0)->addStation(100, L"there already");
  EXPECT_FALSE(drawing.isChanged());
  corridors()->item(0)->rebuild();
  EXPECT_TRUE(drawing.isChanged()) << "it computed what was asked for";
  host_.openDrawing()->setSaved();
  corridors()->item(0)->rebuild();
  EXPECT_FALSE(drawing.isChanged()) << "nothing was left to do";
  baseline(0)->regions()->item(1)->addStation(250, L"");
  EXPECT_TRUE(drawing.isChanged());
}

TEST_F(RoadwayTest, ARebuildWithNothingToDoTellsNoProgress) {
  corridors()->item(0)->rebuild();
  EXPECT_THAT(progress_, ElementsAre("rebuilding corridor 'Stra\xC3\x9F"
                                     "e' 0/6",
                                     "rebuilding corridor 'Stra\xC3\x9F"
                                     "e' 6/6"));
  progress_.clear();
  corridors()->item(0)->rebuild();
  corridors()->item(1)->rebuild();
  EXPECT_THAT(progress_, IsEmpty());
}

TEST_F(RoadwayTest, AUserWhoStopsARebuildLeavesTheCorridorWhole) {
  const civil::Region& region = host_.openDrawing()->drawing().corridors[0].baselines[0].regions[0];
  const std::string before = textOf(region);
  const auto corridor = corridors()->item(0);
  stop_ = true;
  EXPECT_THROW(corridor->rebuild(), Interrupted);
  EXPECT_EQ(textOf(region), before);
  EXPECT_FALSE(host_.openDrawing()->isChanged());
  stop_ = false;
  corridor->rebuild();
  EXPECT_EQ(region.sections.size(), 3U);
}

TEST_F(RoadwayTest, SectionsThatSomebodyStillLooksAtSurviveARebuild) {
  auto& region = host_.openDrawing()->corridors()[0].baselines[0].regions[0];
  region.sections.insert(region.sections.begin() + 1, civil::test::regionFrom("0..0 | 150* Pave(9)").sections[0]);
  const auto given = baseline()->sectionAt(100);
  const auto replaced = baseline()->sectionAt(150);
  const auto point = replaced->parts()->item(0)->points()->item(0);
  baseline()->regions()->item(0)->addStation(110, L"");
  corridors()->item(0)->rebuild();
  EXPECT_EQ(told(given), "100 Pave+Top(ETW:-4/-0.1 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
  EXPECT_EQ(told(replaced), "150 Pave(9)") << "as it was when it was asked for";
  EXPECT_EQ(point->stationOffsetElevation().values[1], 9.0);
  EXPECT_EQ(told(baseline()->sectionAt(150)), "150 Pave+Top(ETW:-5/-0.2 Crown:0 ETW:4/-0.1) Kerb(4 4/0.12)");
}

// ---------------------------------------------------------------- under the checks

/// What a command forgot to give back.
std::vector<host::Ref<host::QmtObject>> kept;

class RoadwayChecksTest : public RoadwayTest {
 protected:
  ~RoadwayChecksTest() override { kept.clear(); }

  std::vector<std::string> misuseOf(host::CommandFunction function) {
    host_.commands().addCommand(L"t", L"T", L"T", 0, function, nullptr, -1, nullptr);
    const std::vector<std::string> misuse = CommandRunner(host_, true).run(L"T").misuse;
    host_.commands().removeCmd(L"t", L"T");
    return misuse;
  }
};

TEST_F(RoadwayChecksTest, LetAModuleKeepItsTwoRoadwayReferences) {
  const auto connect = [] { EXPECT_EQ(host::connectRoadway(*vnrxHost(), L""), 1); };
  EXPECT_THAT(misuseOf(connect), IsEmpty());
  EXPECT_THAT(misuseOf(connect), IsEmpty()) << "others in their place";
  EXPECT_THAT(misuseOf([] { host::disconnectRoadway(); }), IsEmpty());
}

TEST_F(RoadwayChecksTest, NameEveryFurtherReference) {
  EXPECT_THAT(misuseOf([] {
                host::connectRoadway(*vnrxHost(), L"");
                kept.push_back(host::roadwayDocument());
                host::connectRoadway(*vnrxHost(), L"");
                kept.push_back(host::roadwayDocument()->corridors());
                kept.push_back(vnrxHost()->activeApplication(L"Vantor.Application.24").application);
              }),
              ElementsAre("references of VantorApplication: 1 left over",
                          "references of QmtRoadwayDocument: 1 left over", "references of QmtCorridors: 1 left over"));
}

// ---------------------------------------------------------------- the example drawing

class ExampleRoadTest : public RoadwayTest {
 protected:
  ExampleRoadTest() { host_.open(landxml::readDrawing(test::inSource("/examples/valley-road.xml"))); }

  static bool hasCode(const host::Ref<host::QmtCodes>& codes, const host::CString& wanted) {
    for (std::int32_t i = 0; i < codes->count(); ++i)
      if (codes->item(i) == wanted) return true;
    return false;
  }

  /// Offsets and elevations of the part with the road surface; none where it hasn't just three points from edge to edge.
  static std::vector<civil::SectionPoint> pavementAt(const host::Ref<host::QmtBaseline>& baseline, double station) {
    const auto section = baseline->sectionAt(station);
    if (section == nullptr) return {};
    const auto parts = section->parts();
    for (std::int32_t i = 0; i < parts->count(); ++i) {
      if (!hasCode(parts->item(i)->codes(), L"Pave")) continue;
      const auto points = parts->item(i)->points();
      if (points->count() != 3 || !hasCode(points->item(2)->codes(), L"ETW")) return {};
      std::vector<civil::SectionPoint> pavement;
      for (std::int32_t k = 0; k < 3; ++k) {
        const auto place = points->item(k)->stationOffsetElevation().values;
        EXPECT_NEAR(place.at(0), station, civil::kSameStation);
        pavement.push_back({place.at(1), place.at(2), {}});
      }
      return pavement;
    }
    return {};
  }
};

TEST_F(ExampleRoadTest, HasAPavementOfThreePointsAtEveryStation) {
  const auto main = baseline();
  int sections = 0;
  for (std::int32_t r = 0; r < main->regions()->count(); ++r) {
    for (const double station : main->regions()->item(r)->stationSet()->stations().values) {
      SCOPED_TRACE(station);
      const auto pavement = pavementAt(main, station);
      ASSERT_EQ(pavement.size(), 3U);
      EXPECT_LT(pavement[0].offset, -3.0);
      EXPECT_EQ(pavement[1].offset, 0.0);
      EXPECT_GT(pavement[2].offset, 3.0);
      EXPECT_NEAR(pavement[1].elevation, 0.0, 0.3) << "the crown follows the profile";
      ++sections;
    }
  }
  EXPECT_GT(sections, 100);
}

TEST_F(ExampleRoadTest, GivesWithTheProfileTheElevationsThatTheFileHolds) {
  const auto main = baseline();
  const auto pavement = pavementAt(main, 1550.0);
  ASSERT_EQ(pavement.size(), 3U);
  const double design = main->profile()->elevationAt(1550.0);
  EXPECT_EQ(pavement[0].offset, -3.5444);
  EXPECT_NEAR(pavement[0].elevation + design, 412.5342, 1e-9);
  EXPECT_NEAR(pavement[1].elevation + design, 412.6229, 1e-9);
  EXPECT_EQ(pavement[2].offset, 3.5);
  EXPECT_NEAR(pavement[2].elevation + design, 412.5647, 1e-9);
  const auto parts = main->sectionAt(1550.0)->parts();
  EXPECT_TRUE(hasCode(parts->item(0)->codes(), L"Belag"));
  EXPECT_TRUE(hasCode(parts->item(0)->points()->item(2)->codes(), L"Fahrspurrand_Au\u00dfen"));
}

TEST_F(ExampleRoadTest, GetsSectionsAtTheStationsOfAReport) {
  const auto main = baseline();
  std::size_t added = 0;
  for (std::int32_t r = 0; r < main->regions()->count(); ++r) {
    const auto region = main->regions()->item(r);
    for (double station = 1003.3; station < 2090.0; station += 21.7) {
      const auto stations = region->stationSet()->stations().values;
      region->addStation(station, L"R");
      added += region->stationSet()->stations().values.size() - stations.size();
    }
    corridors()->item(0)->rebuild();
  }
  EXPECT_GT(added, 90U) << "each region takes them all, also those beyond its bounds";
  for (double station = 1003.3; station < 2090.0; station += 21.7) {
    SCOPED_TRACE(station);
    const auto here = pavementAt(main, station);
    ASSERT_EQ(here.size(), 3U);
    // Computed points lie on the straight lines between their neighbours.
    const auto stations = main->regions()->item(station <= 1540.0 ? 0 : 1)->stationSet()->stations().values;
    const auto next = std::upper_bound(stations.begin(), stations.end(), station + civil::kSameStation);
    ASSERT_NE(next, stations.end());
    const auto before = pavementAt(main, *(next - 2));
    const auto after = pavementAt(main, *next);
    ASSERT_EQ(before.size(), 3U);
    ASSERT_EQ(after.size(), 3U);
    const double ratio = (station - *(next - 2)) / (*next - *(next - 2));
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(here[k].offset, std::lerp(before[k].offset, after[k].offset, ratio), 1e-9);
      EXPECT_NEAR(here[k].elevation, std::lerp(before[k].elevation, after[k].elevation, ratio), 1e-9);
    }
  }
}

}  // namespace
}  // namespace lvx::runtime
