#include "landxml/writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "civil/corridor.h"
#include "corridor_drawings.h"
#include "drawing_compare.h"
#include "landxml/detail/markup.h"
#include "saved_file.h"
#include "standin_platform/text_converter.h"
#include "support/places.h"
#include "support/random_numbers.h"

namespace lvx::landxml {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

civil::Region& regionOf(civil::Drawing& drawing, std::size_t corridor, std::size_t baseline = 0,
                        std::size_t region = 0) {
  return drawing.corridors.at(corridor).baselines.at(baseline).regions.at(region);
}

void rebuildAll(civil::Drawing& drawing) {
  civil::Rebuilt done;
  for (auto& corridor : drawing.corridors) civil::rebuild(corridor, done);
}

/// Saves to another file, reads that, and tells what differs from the drawing in memory.
std::string differenceAfterSaving(civil::Drawing& drawing, const std::string& source, const std::string& target) {
  saveDrawing(drawing, source, target);
  return DrawingComparison::difference(drawing, readDrawing(target));
}

/// The lines of `text` that `from` doesn't have, and behind them, after "- ", those that it lost.
std::string changedLines(const std::string& from, const std::string& text) {
  const auto lines = [](const std::string& t) {
    std::vector<std::string> result;
    std::size_t start = 0;
    for (auto end = t.find('\n'); end != std::string::npos; start = end + 1, end = t.find('\n', start)) {
      result.push_back(t.substr(start, end - start));
    }
    result.push_back(t.substr(start));
    return result;
  };
  const auto before = lines(from);
  std::string result;
  std::size_t at = 0;
  for (const std::string& line : lines(text)) {
    const auto found = std::find(before.begin() + static_cast<std::ptrdiff_t>(at), before.end(), line);
    if (found == before.end()) {
      result += line + '\n';
      continue;
    }
    for (; before.begin() + static_cast<std::ptrdiff_t>(at) != found; ++at) result += "- " + before[at] + '\n';
    ++at;
  }
  for (; at < before.size(); ++at) result += "- " + before[at] + '\n';
  return result;
}

// ---------------------------------------------------------------- numbers

TEST(SavedNumbers, AreTheShortestThatReadBackWithoutExponentInTheUsualRange) {
  struct Row {
    double value;
    const char* text;
  };
  constexpr Row kRows[] = {{0.0, "0"},
                           {-0.0, "0"},
                           {0.1, "0.1"},
                           {-3.5, "-3.5"},
                           {100000.0, "100000"},
                           {1e14, "100000000000000"},
                           {1e15, "1e+15"},
                           {1e-4, "0.0001"},
                           {0.00012, "0.00012"},
                           {9.9e-5, "9.9e-05"},
                           {0.1 + 0.2, "0.30000000000000004"},
                           {123456.789, "123456.789"}};
  for (const Row& row : kRows) EXPECT_EQ(detail::numberText(row.value), row.text);
}

TEST(SavedNumbers, ReadBackAsTheSameNumber) {
  auto random = test::seededByTestName();
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-12, 11);
  for (int i = 0; i < 20'000; ++i) {
    const double value = mantissa(random) * std::pow(10.0, exponent(random));
    const std::string text = detail::numberText(value);
    double back = 0.0;
    EXPECT_EQ(std::from_chars(text.data(), text.data() + text.size(), back).ptr, text.data() + text.size());
    EXPECT_EQ(back, value);
    EXPECT_TRUE(std::abs(value) < 1e-4 || text.find('e') == std::string::npos) << text;
  }
}

// ---------------------------------------------------------------- every form

class EveryForm : public ::testing::TestWithParam<CorridorForm> {
 protected:
  EveryForm() { writeBytes(source_, GetParam().bytes); }
  ScratchFolder folder_;
  const std::string source_ = folder_.file("road.xml");
  const std::string target_ = folder_.file("saved.xml");
};

TEST_P(EveryForm, WithoutChangesGivesTheSameBytes) {
  civil::Drawing drawing = readDrawing(source_);
  ASSERT_FALSE(drawing.corridors.empty());
  saveDrawing(drawing, source_, target_);
  EXPECT_EQ(bytesOf(target_), GetParam().bytes);
  const auto time = std::filesystem::last_write_time(source_);
  saveDrawing(drawing, source_, source_);
  EXPECT_EQ(bytesOf(source_), GetParam().bytes);
  EXPECT_EQ(std::filesystem::last_write_time(source_), time);
  EXPECT_EQ(folder_.temporaryFiles(), 0U);
}

TEST_P(EveryForm, ReadsBackAsItWasInMemoryAfterAddedStationsAndARebuild) {
  civil::Drawing drawing = readDrawing(source_);
  auto& region = regionOf(drawing, 0);
  ASSERT_TRUE(civil::addStation(region, region.startStation + 12.25, "Bridge \"<&>\" \xE2\x82\xAC \xC3\xB6"));
  ASSERT_TRUE(civil::addStation(region, region.startStation - 3.0, ""));
  rebuildAll(drawing);
  ASSERT_TRUE(civil::addStation(region, region.startStation + 1.0 / 3.0, "waits"));
  ASSERT_EQ(differenceAfterSaving(drawing, source_, target_), "");
  // And so does what is saved on top of that.
  civil::Drawing again = readDrawing(target_);
  const std::string once = bytesOf(target_);
  saveDrawing(again, target_, target_);
  EXPECT_EQ(bytesOf(target_), once);
  rebuildAll(again);
  EXPECT_EQ(differenceAfterSaving(again, target_, target_), "");
  EXPECT_TRUE(regionOf(again, 0).pendingLabels.empty());
}

TEST_P(EveryForm, ReadsBackAsItWasInMemoryWhateverChanged) {
  auto random = test::seededByTestName();
  const auto upTo = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  for (int round = 0; round < 12; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    writeBytes(source_, GetParam().bytes);
    civil::Drawing drawing = readDrawing(source_);
    // Three savings into one file, each with a few changes.
    for (int saving = 0; saving < 3; ++saving) {
      for (std::size_t change = 0; change < 1 + upTo(5); ++change) {
        auto& corridor = drawing.corridors[upTo(drawing.corridors.size())];
        auto& baseline = corridor.baselines[upTo(corridor.baselines.size())];
        auto& region = baseline.regions[upTo(baseline.regions.size())];
        std::vector<civil::CorridorSection*> computed;
        for (auto& section : region.sections) {
          if (section.origin == civil::SectionOrigin::Computed) computed.push_back(&section);
        }
        switch (upTo(6)) {
          case 0:
          case 1:
            civil::addStation(region, static_cast<double>(upTo(40'000)) / 128.0 - 20.0,
                              upTo(2) == 0 ? "" : "at " + std::to_string(upTo(100)));
            break;
          case 2: {
            civil::Rebuilt done;
            civil::rebuild(corridor, done);
            break;
          }
          case 3:
            if (!computed.empty()) {
              for (auto& part : computed[upTo(computed.size())]->parts) {
                for (auto& point : part.points) point.elevation += 0.125;
              }
            }
            break;
          case 4:  // another shape
            if (!computed.empty()) {
              auto& parts = computed[upTo(computed.size())]->parts;
              if (upTo(2) == 0 && !parts.empty()) {
                civil::SectionParts fewer;
                for (std::size_t i = 0; i + 1 < parts.size(); ++i) fewer.push_back(parts[i]);
                parts = std::move(fewer);
              } else {
                parts.push_back({{"New"}, {{-1.5, 0.25, {"a"}}, {1.5, 0.5, {}}}});
              }
            }
            break;
          default:
            if (!computed.empty()) {
              const auto at = region.sections.begin() + (computed[upTo(computed.size())] - region.sections.data());
              region.stations.erase(at->station);
              region.sections.erase(at);
            }
        }
      }
      saveDrawing(drawing, source_, source_);
      const civil::Drawing back = readDrawing(source_);
      ASSERT_EQ(DrawingComparison::difference(drawing, back), "") << bytesOf(source_);
      ASSERT_EQ(drawing.file, back.file);
    }
  }
}

TEST_P(EveryForm, KeepsEveryByteThatDoesNotBelongToTheChange) {
  civil::Drawing drawing = readDrawing(source_);
  auto& region = regionOf(drawing, 0);
  ASSERT_TRUE(civil::addStation(region, region.startStation + 20.5, "Bridge"));
  saveDrawing(drawing, source_, target_);
  // The old bytes stand in the new file in their order; only the list of stations and closing marks were rewritten.
  const std::string before = GetParam().bytes;
  const std::string after = bytesOf(target_);
  std::size_t i = 0;
  for (const char c : after) i += i < before.size() && before[i] == c ? 1 : 0;
  if (i < before.size()) {
    // An empty element got children: "/>" became "></...>".
    EXPECT_THAT(before.substr(i, 2), "/>");
  }
  EXPECT_GT(after.size(), before.size());
}

INSTANTIATE_TEST_SUITE_P(Saving, EveryForm, ::testing::ValuesIn(corridorForms()),
                         [](const auto& form) { return std::string(form.param.name); });

// ---------------------------------------------------------------- what stands in the file

class Saving : public ::testing::Test {
 protected:
  civil::Drawing open(const std::string& bytes) {
    writeBytes(source_, bytes);
    return readDrawing(source_);
  }
  std::string save(civil::Drawing& drawing) {
    saveDrawing(drawing, source_, target_);
    return bytesOf(target_);
  }
  ScratchFolder folder_;
  const std::string source_ = folder_.file("road.xml");
  const std::string target_ = folder_.file("saved.xml");
};

TEST_F(Saving, WritesAnAddedStationIntoItsRegionAndNothingElse) {
  civil::Drawing drawing = open(ownCorridor());
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  const std::string region =
      R"(          <Feature name="R1" code="lvx_region" source="lvx"><Property label="staStart" value="100"/><Property label="staEnd" value="200"/><Property label="crossSects" value="Main | BL | R1"/><Property label="stations" value=)";
  EXPECT_EQ(
      changedLines(ownCorridor(), save(drawing)),
      region + "\"100.000 125.5 150 175.5 200\"/>\n" + "- " + region + "\"100.000 150 175.5 200\"/>\n" +
          R"(            <Feature name="Gate" code="lvx_addedStation" source="lvx"><Property label="sta" value="125.5"/></Feature>
)");
}

TEST_F(Saving, LeavesTheBoundsOfARegionThatDoesNotSayThemWhereTheyWere) {
  const std::string start = R"(<Property label="staStart" value="100"/>)";
  const std::string end = R"(<Property label="staEnd" value="200"/>)";
  const std::string early = R"(<Property label="staEnd" value="90"/>)";  // in front of its first station
  for (const std::string& bounds :
       {std::string(), start, end, start + R"(<Property label="staEnd" value="x"/>)", early}) {
    civil::Drawing drawing = open(replaced(ownCorridor(), start + end, bounds));
    civil::Region& region = regionOf(drawing, 0);
    const double from = region.startStation;
    const double to = region.endStation;
    civil::addStation(region, from - 40.0, "Before");
    civil::addStation(region, to + 50.0, "Behind");
    (void)save(drawing);
    civil::Drawing saved = readDrawing(target_);
    EXPECT_EQ(regionOf(saved, 0).startStation, from) << bounds;
    EXPECT_EQ(regionOf(saved, 0).endStation, to) << bounds;
    EXPECT_THAT(DrawingComparison::difference(drawing, saved), IsEmpty()) << bounds;
  }
}

TEST_F(Saving, WritesAComputedSectionInStationOrderWithAbsoluteElevations) {
  civil::Drawing drawing = open(ownCorridor());
  auto& region = regionOf(drawing, 0, 0, 0);
  civil::CorridorSection section = region.sections.at(2);
  section.station = 160.0;
  section.label = "Mid";
  section.origin = civil::SectionOrigin::Computed;
  region.sections.insert(region.sections.begin() + 2, section);
  region.stations.insert(160.0);
  const std::string text = save(drawing);
  // The profile rises by 1.7 in 100: at 160 it lies 0.68 below the elevation at 200.
  EXPECT_THAT(text, HasSubstr(
                        R"(        </CrossSect> <!-- flow 1.2 m3/s -->
        <CrossSect sta="160" name="Mid">
          <DesignCrossSectSurf name="Pave,Top" side="both"><CrossSectPnt code="ETW">-4 )"));
  EXPECT_THAT(
      text,
      HasSubstr(
          R"(          <Feature code="lvx_section" source="lvx"><Property label="origin" value="computed"/></Feature>
        </CrossSect>
        <CrossSect sta="200">)"));
  const civil::Drawing back = readDrawing(target_);
  EXPECT_EQ(DrawingComparison::difference(drawing, back), "");
}

TEST_F(Saving, TakesSideMaterialAndClosureOverFromTheSectionBefore) {
  civil::Drawing drawing = open(ownCorridor());
  auto& region = regionOf(drawing, 0);
  civil::addStation(region, 101.0, "");
  civil::CorridorSection section = region.sections.front();
  section.station = 101.0;
  section.origin = civil::SectionOrigin::Computed;
  region.pendingLabels.erase(101.0);
  region.sections.insert(region.sections.begin() + 1, section);
  const std::string text = save(drawing);
  const auto at = text.find("<CrossSect sta=\"101\">");
  ASSERT_NE(at, std::string::npos);
  const std::string written = text.substr(at, text.find("</CrossSect>", at) - at);
  EXPECT_THAT(written, HasSubstr(R"(<DesignCrossSectSurf name="Pave,Top" side="both" closedArea="false">)"));
  EXPECT_THAT(written, HasSubstr(R"(<DesignCrossSectSurf name="Slope" side="right" material="soil">)"));
  EXPECT_THAT(written, HasSubstr(R"(code="Day%2Clight")"));
}

TEST_F(Saving, RewritesOnlyThePointsThatMoved) {
  civil::Drawing drawing = open(ownCorridor());
  auto& section = regionOf(drawing, 0).sections.at(1);
  section.parts[0].points[0].offset = -3.625;
  EXPECT_EQ(
      changedLines(ownCorridor(), save(drawing)),
      R"(          <DesignCrossSectSurf name="Pave,Top" side="both"><CrossSectPnt code="ETW">-3.625 50.93</CrossSectPnt><CrossSectPnt code="Crown,Top">0 51</CrossSectPnt></DesignCrossSectSurf>
- )"
      R"(          <DesignCrossSectSurf name="Pave,Top" side="both"><CrossSectPnt code="ETW">-3.5 50.93</CrossSectPnt><CrossSectPnt code="Crown,Top">0 51</CrossSectPnt></DesignCrossSectSurf>
)");
}

TEST_F(Saving, WritesElevationsAsTheyAreWhereTheBaselineHasNoProfile) {
  civil::Drawing drawing = open(ownCorridor());
  auto& region = regionOf(drawing, 0, 1);
  civil::addStation(region, 220.0, "");
  rebuildAll(drawing);
  const std::string text = save(drawing);
  EXPECT_THAT(text,
              HasSubstr(R"(<Property label="crossSects" value="Bare"/><Property label="stations" value="210 220"/>)"));
  EXPECT_THAT(
      text, HasSubstr(R"(<CrossSect sta="220"><DesignCrossSectSurf name="Deck"><CrossSectPnt>-5 0.5</CrossSectPnt>)"));
}

TEST_F(Saving, WritesNamesOfFeaturesAsPropertiesInOldVersions) {
  const std::string old = withoutFeatureNames(ownCorridor(), "1.1");
  civil::Drawing drawing = open(old);
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  EXPECT_THAT(
      save(drawing),
      HasSubstr(
          R"(<Feature code="lvx_addedStation" source="lvx"><Property label="name" value="Gate"/><Property label="sta" value="125.5"/></Feature>)"));
}

TEST_F(Saving, FollowsTheNamespaceWhereTheVersionSaysOtherwise) {
  const std::string mixed = replaced(withoutFeatureNames(ownCorridor(), "1.1"), " version=\"1.1\"", " version=\"1.2\"");
  civil::Drawing drawing = open(mixed);
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  EXPECT_THAT(save(drawing), HasSubstr(R"(<Property label="name" value="Gate"/>)"));
}

TEST_F(Saving, KeepsThePrefix) {
  civil::Drawing drawing = open(withPrefix(ownCorridor()));
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  rebuildAll(drawing);
  const std::string text = save(drawing);
  EXPECT_THAT(text,
              HasSubstr(R"(<lx:Feature name="Gate" code="lvx_addedStation" source="lvx"><lx:Property label="sta")"));
  EXPECT_THAT(text, HasSubstr("<lx:CrossSect sta=\"125.5\" name=\"Gate\">"));
  EXPECT_EQ(text.find("<Feature"), std::string::npos);
}

TEST_F(Saving, WritesTheBytesOfTheFilesEncodingAndReferencesForTheRest) {
  const std::string latin = replaced(replaced(ownCorridor(), "UTF-8", "ISO-8859-1"), "Brook", "B\xF6scher");
  civil::Drawing drawing = open(latin);
  civil::addStation(regionOf(drawing, 0), 125.5,
                    "Stra\xC3\x9F"
                    "e \xE2\x82\xAC \xCE\xA9");
  const std::string text = save(drawing);
  EXPECT_THAT(text, HasSubstr("name=\"Stra\xDF"
                              "e \x80 &#937;\""));
  EXPECT_EQ(regionOf(drawing, 0).pendingLabels,
            readDrawing(target_).corridors[0].baselines[0].regions[0].pendingLabels);
}

TEST_F(Saving, KeepsTheControlCharactersThatTheFileHoldsInNames) {
  civil::Drawing drawing = open(replaced(ownCorridor(), "name=\"Slope\"", "name=\"S\x1elope\""));
  civil::addStation(regionOf(drawing, 0), 125.5, "Pend\x02ing");
  civil::Rebuilt done;
  civil::rebuild(drawing.corridors[0], done);
  EXPECT_THAT(save(drawing), HasSubstr("name=\"S&#30;lope\""));
  EXPECT_EQ(DrawingComparison::difference(drawing, readDrawing(target_)), "");
}

/// UTF-8 in another encoding.
std::string inEncoding(const std::string& text, const std::string& encoding) {
  standin_platform::TextConverter converter("UTF-8", encoding);
  std::string bytes;
  std::size_t done = 0;
  EXPECT_EQ(converter.convert(text, bytes, done), standin_platform::TextConverter::End::Complete) << encoding;
  return bytes;
}

TEST_F(Saving, WritesFilesOfSeveralBytesALetterAsTheyCame) {
  struct Row {
    const char* declared;
    const char* encoding;
    std::string mark;
  };
  using namespace std::string_literals;
  const std::vector<Row> table{{"UTF-16", "UTF-16LE", "\xFF\xFE"s},
                               {"UTF-16", "UTF-16BE", "\xFE\xFF"s},
                               {"UTF-16", "UTF-16LE", ""s},
                               {"UTF-16", "UTF-16BE", ""s},
                               {"UTF-32", "UTF-32LE", "\xFF\xFE\0\0"s},
                               {"UTF-32", "UTF-32BE", "\0\0\xFE\xFF"s},
                               {"Shift_JIS", "SHIFT_JIS", ""s},
                               {"EUC-JP", "EUC-JP", ""s}};
  for (const Row& row : table) {
    SCOPED_TRACE(row.encoding + (" mark of " + std::to_string(row.mark.size())));
    // Letters in the file, some that are added, and one that not every encoding has.
    const std::string text = replaced(replaced(ownCorridor(), "UTF-8", row.declared), "</LandXML>",
                                      "<!-- \xE9\x81\x93\xE8\xB7\xAF --></LandXML>");
    const std::string wide = row.mark + inEncoding(text, row.encoding);
    civil::Drawing drawing = open(wide);
    EXPECT_EQ(save(drawing), wide);
    civil::addStation(regionOf(drawing, 0), 125.5, "\xE6\xA9\x8B \xF0\x9F\x9A\xA7");
    const std::string saved = save(drawing);
    ASSERT_TRUE(saved.starts_with(row.mark));
    const bool hasAllLetters = row.encoding[0] == 'U';

    civil::Drawing plain = open(replaced(text, row.declared, "UTF-8"));
    civil::addStation(regionOf(plain, 0), 125.5, "\xE6\xA9\x8B \xF0\x9F\x9A\xA7");
    std::string expected = replaced(save(plain), "UTF-8", row.declared);
    if (!hasAllLetters) expected = replaced(expected, "\xF0\x9F\x9A\xA7", "&#128679;");
    EXPECT_EQ(saved, row.mark + inEncoding(expected, row.encoding));
    std::ofstream(target_, std::ios::binary) << saved;
    EXPECT_EQ(readDrawing(target_).corridors[0].baselines[0].regions[0].pendingLabels,
              regionOf(drawing, 0).pendingLabels);
  }
}

TEST_F(Saving, RefusesToChangeAFileWhoseTextHasOtherBytesInItsEncoding) {
  // Two escapes in a row, where one says as much.
  const std::string text = replaced(replaced(ownCorridor(), "UTF-8", "ISO-2022-JP"), "</LandXML>",
                                    "<!-- \x1B$B\x1B$BF;O)\x1B(B --></LandXML>");
  civil::Drawing drawing = open(text);
  EXPECT_EQ(save(drawing), text);
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  std::filesystem::remove(target_);
  EXPECT_THAT(saveError(drawing, source_, target_),
              HasSubstr("the file's bytes aren't those that its text has in the encoding ISO-2022-JP"));
  EXPECT_FALSE(std::filesystem::exists(target_));
}

TEST_F(Saving, GivesAnotherProgramsDrawingItsCorridorsAndHandlesAtTheFirstChange) {
  civil::Drawing drawing = open(otherCorridor());
  ASSERT_EQ(drawing.corridors.size(), 2U);
  civil::addStation(regionOf(drawing, 0), 50.0, "Mid");
  rebuildAll(drawing);
  const std::string text = save(drawing);
  EXPECT_THAT(text, HasSubstr("\n\t<FeatureDictionary name=\"lvx\" version=\"1 guest\"/>\n</LandXML>"));
  // The list of sites behind the project's own Feature.
  EXPECT_THAT(
      text,
      HasSubstr(
          R"(<Feature code="their" source="them"/><Feature code="lvx_sites" source="lvx"><Feature name="Site" code="lvx_site" source="lvx"><Property label="handle" value="103"/></Feature></Feature></Project>)"));
  EXPECT_THAT(text, HasSubstr(R"(</Definition><Feature code="lvx_object" source="lvx"><Property label="handle")"));
  // The corridor without a Roadway of its own stands behind its alignment, the other one in its Roadway.
  EXPECT_THAT(text,
              HasSubstr("\t</Alignments>\n\t<Roadways>\n\t\t<Roadway name=\"A\" alignmentRefs=\"A\">\n\t\t\t<Feature "
                        "code=\"lvx_corridor\" source=\"lvx\">"));
  EXPECT_THAT(text, HasSubstr("<Roadway name=\"Ring\" alignmentRefs=\"B\"><Feature code=\"lvx_corridor\""));
  EXPECT_THAT(
      text,
      HasSubstr(
          R"(<CrossSect sta="50" name="Mid"><DesignCrossSectSurf name="Road, top" side="left"><CrossSectPnt code="E,1">-4 12.4</CrossSectPnt><CrossSectPnt>0 12.5</CrossSectPnt></DesignCrossSectSurf><Feature code="lvx_section" source="lvx"><Property label="origin" value="computed"/></Feature></CrossSect>)"));
  const civil::Drawing back = readDrawing(target_);
  EXPECT_EQ(DrawingComparison::difference(drawing, back), "");
  // One handle for each object.
  std::multiset<std::string> handles;
  const std::string label = "label=\"handle\" value=\"";
  for (auto at = text.find(label); at != std::string::npos; at = text.find(label, at + 1)) {
    handles.insert(text.substr(at + label.size(), text.find('"', at + label.size()) - at - label.size()));
  }
  EXPECT_EQ(handles.size(), 19U);
  EXPECT_EQ(std::set<std::string>(handles.begin(), handles.end()).size(), handles.size());
  // What is computed among the other program's sections is none of its sample lines.
  EXPECT_EQ(back.sites.at(0).alignments.at(0)->sampleLineGroups.at(0).lines.size(), 2U);
}

TEST_F(Saving, FindsTheCorridorsOfAnotherProgramInTheirOldOrder) {
  std::string text = otherCorridor();
  const std::string roadways = "<Roadways><Roadway name=\"Ring\" alignmentRefs=\"B\"/></Roadways>";
  text = replaced(text, roadways, "");
  text = replaced(text, "<Project", roadways + "<Project");
  civil::Drawing drawing = open(text);
  ASSERT_EQ(drawing.corridors.at(0).name, "Ring");
  civil::addStation(regionOf(drawing, 1), 50.0, "Mid");
  EXPECT_EQ(differenceAfterSaving(drawing, source_, target_), "");
}

TEST_F(Saving, KeepsTwoCorridorsThatOneRoadwayNames) {
  civil::Drawing drawing = open(replaced(otherCorridor(), "alignmentRefs=\"B\"", "alignmentRefs=\"A B\""));
  ASSERT_EQ(drawing.corridors.size(), 2U);
  civil::addStation(regionOf(drawing, 0), 50.0, "Mid");
  civil::addStation(regionOf(drawing, 1), 10.0, "End");
  rebuildAll(drawing);
  EXPECT_EQ(differenceAfterSaving(drawing, source_, target_), "");
}

TEST_F(Saving, LeavesObjectsOfOneNameTheirsInTheFile) {
  std::string bytes = replaced(otherCorridor(), "name=\"B\"", "name=\"A\"");
  bytes = replaced(bytes, "<ProfAlign name=\"FG\">", "<ProfAlign name=\"EG\">");
  bytes = replaced(bytes, "<ProfSurf name=\"EG\"><PntList2D>0 9 200 19</PntList2D></ProfSurf></Profile>", "</Profile>");
  bytes = replaced(bytes, "<Profile>", "<Profile><ProfSurf name=\"EG\"><PntList2D>0 9 200 19</PntList2D></ProfSurf>");
  civil::Drawing drawing = open(bytes);
  ASSERT_EQ(drawing.corridors.size(), 2U);
  ASSERT_EQ(drawing.corridors[1].baselines.at(0).alignment->name, "A (2)");
  ASSERT_EQ(drawing.corridors[0].baselines.at(0).profile->name, "EG (2)");
  civil::addStation(regionOf(drawing, 0), 50.0, "Mid");
  civil::addStation(regionOf(drawing, 1), 10.0, "End");
  rebuildAll(drawing);
  EXPECT_EQ(differenceAfterSaving(drawing, source_, target_), "");
  EXPECT_THAT(bytesOf(target_), ::testing::Not(HasSubstr("(2)")));
}

TEST_F(Saving, GivesARegionItsOwnSectionsWhereTwoRegionsShareThem) {
  const std::string shared =
      replaced(ownCorridor(), "label=\"crossSects\" value=\"Bare\"", "label=\"crossSects\" value=\"Main | BL | R1\"");
  civil::Drawing drawing = open(shared);
  auto& region = regionOf(drawing, 0);
  civil::addStation(region, 125.0, "Gate");
  civil::Rebuilt done;
  auto other = regionOf(drawing, 0, 1);
  civil::rebuild(drawing.corridors[0], done);
  regionOf(drawing, 0, 1) = other;  // only the first of the two changes
  EXPECT_EQ(differenceAfterSaving(drawing, source_, target_), "");
  EXPECT_THAT(bytesOf(target_), HasSubstr("<CrossSects name=\"Main | BL | R1 (2)\">"));
}

TEST_F(Saving, MakesSectionsForARegionThatHasNone) {
  civil::Drawing drawing = open(replaced(ownCorridor(), "<Property label=\"crossSects\" value=\"Bare\"/>", ""));
  auto& region = regionOf(drawing, 0, 1);
  ASSERT_THAT(region.sections, IsEmpty());
  region.sections.push_back(
      {220.0, "", civil::SectionOrigin::Computed, {{{"P"}, {{-1.0, 2.0, {}}, {1.0, 2.0, {"q"}}}}}});
  region.stations.insert(220.0);
  EXPECT_EQ(differenceAfterSaving(drawing, source_, target_), "");
}

TEST_F(Saving, RefusesADrawingWithOtherCorridorsThanItsFile) {
  civil::Drawing drawing = open(ownCorridor());
  drawing.corridors.pop_back();
  EXPECT_THAT(saveError(drawing, source_, target_), HasSubstr("corridors aren't those of the file"));
}

TEST_F(Saving, GivesBackTheExampleWithItsNewSections) {
  const std::string example = test::inSource("/examples/valley-road.xml");
  civil::Drawing drawing = readDrawing(example);
  saveDrawing(drawing, example, target_);
  const std::string before = bytesOf(example);
  ASSERT_EQ(bytesOf(target_), before);
  std::size_t added = 0;
  for (auto& corridor : drawing.corridors) {
    for (auto& baseline : corridor.baselines) {
      for (auto& region : baseline.regions) {
        for (double station = region.startStation + 3.7; station < region.endStation; station += 17.3) {
          added += civil::addStation(region, station, "S " + std::to_string(added)) ? 1 : 0;
        }
      }
    }
  }
  ASSERT_GT(added, 50U);
  rebuildAll(drawing);
  saveDrawing(drawing, example, target_);
  civil::Drawing back = readDrawing(target_);
  EXPECT_EQ(DrawingComparison::difference(drawing, back), "");
  EXPECT_EQ(back.diagnostics.size(), drawing.diagnostics.size());
  const std::string once = bytesOf(target_);
  rebuildAll(back);
  saveDrawing(back, target_, target_);
  EXPECT_EQ(bytesOf(target_), once);
}

TEST_F(Saving, TellsItsProgressAndEndsWhenAsked) {
  civil::Drawing drawing = open(ownCorridor());
  civil::addStation(regionOf(drawing, 0), 125.5, "Gate");
  std::uint64_t last = 0;
  SaveOptions options;
  options.progress = [&](const Progress& progress) {
    EXPECT_GE(progress.bytesDone, last);
    EXPECT_LE(progress.bytesDone, progress.bytesTotal);
    last = progress.bytesDone;
    return true;
  };
  saveDrawing(drawing, source_, target_, options);
  EXPECT_EQ(last, 2 * ownCorridor().size());
  options.progress = [](const Progress& progress) { return progress.bytesDone < ownCorridor().size() + 1; };
  writeBytes(target_, "old");
  EXPECT_EQ(saveError(drawing, source_, target_, options), "landxml: cancelled (" + target_ + ")");
  EXPECT_EQ(bytesOf(target_), "old");
  EXPECT_EQ(folder_.temporaryFiles(), 0U);
}

}  // namespace
}  // namespace lvx::landxml
