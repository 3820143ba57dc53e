#include <array>
#include <variant>
#include <vector>

#include "drawing_text.h"

namespace lvx::landxml::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A drawing with every kind of object that we save.
const std::string kDrawing = ours(R"(
<Project name="p"><Feature code="lvx_sites" source="lvx">
  <Feature name="Empty" code="lvx_site"><Property label="handle" value="11"/><Property label="desc" value="none"/></Feature>
  <Feature code="lvx_site"><Property label="name" value="East"/><Property label="handle" value="10"/></Feature></Feature></Project>
<CgPoints name="_All"><CgPoint name="1" code="TR" desc="Oak" featureRef="f">10 20 5</CgPoint><CgPoint name="2">30 40</CgPoint>
  <Feature name="f" code="lvx_point"><Property label="name" value="Oak-A"/><Property label="handle" value="2A"/></Feature></CgPoints>
<CgPoints name="Trees"><CgPoint pntRef="1"/><Feature code="lvx_pointGroup"><Property label="handle" value="25"/>
  <Property label="desc" value="All trees"/></Feature></CgPoints>
<Alignments name="East"><Alignment name="CL 1" length="100" staStart="100" desc="Main">
  <StaEquation staInternal="150" staBack="150" staAhead="1150"/><StaEquation staInternal="160" staAhead="20" staIncrement="decreasing"/>
  <CoordGeom><Line><Start>0 0</Start><End pntRef="e"/></Line></CoordGeom>
  <Profile><ProfAlign name="FG"><PVI>100 50</PVI><PVI>200 60</PVI><Feature code="lvx_object"><Property label="handle" value="32"/></Feature></ProfAlign></Profile>
  <CrossSects name="SL"><CrossSect sta="150" name="bent"><Feature code="lvx_sampleLine"><Property label="handle" value="41"/>
    <Property label="vertices" value="60 -9 50 0 40 9"/></Feature></CrossSect><CrossSect sta="160"/>
    <Feature code="lvx_sampleLineGroup"><Property label="handle" value="40"/><Property label="halfWidth" value="4"/></Feature></CrossSects>
  <CrossSects name="S"><CrossSect sta="150" name="Culvert"><DesignCrossSectSurf name="Pave,Top%2C1"><CrossSectPnt code="ETW">-3 54.9</CrossSectPnt>
    <CrossSectPnt code="Crown,C%25">0 55</CrossSectPnt></DesignCrossSectSurf><Feature code="lvx_section"><Property label="origin" value="computed"/></Feature></CrossSect>
    <CrossSect sta="100"/><Feature code="lvx_corridorSections"><Property label="elevation" value="absolute"/></Feature></CrossSects>
  <Feature code="lvx_object"><Property label="handle" value="30"/></Feature></Alignment></Alignments>
<Alignments><Alignment name="Access" staStart="0" length="1"><CoordGeom><Line><Start name="e">100 0</Start><End>100 1</End></Line></CoordGeom>
  <Feature code="lvx_object"><Property label="handle" value="30"/></Feature></Alignment></Alignments>
<Surfaces><Surface name="EG" desc="ground"><Definition surfType="TIN"><Pnts><P id="1">0 0 1</P><P id="2">0 10 1</P><P id="3">10 0 1</P></Pnts>
  <Faces><F>1 2 3</F></Faces></Definition><Feature code="lvx_object"><Property label="handle" value="60"/></Feature></Surface></Surfaces>
<Roadways><Roadway name="Main" alignmentRefs="CL 1" desc="d"><Feature code="lvx_corridor"><Property label="handle" value="70"/>
  <Feature name="B" code="lvx_baseline"><Property label="alignment" value="gone"/><Property label="alignmentHandle" value="30"/><Property label="profile" value="FG"/>
    <Feature name="R1" code="lvx_region"><Property label="staStart" value="100"/><Property label="staEnd" value="200"/><Property label="crossSects" value="S"/>
      <Property label="stations" value="100 150 200"/><Feature name="Culvert" code="lvx_addedStation"><Property label="sta" value="150"/></Feature>
      <Feature name="Later" code="lvx_addedStation"><Property label="sta" value="175.5"/></Feature></Feature></Feature>
  <Feature name="Lost" code="lvx_baseline"><Property label="alignment" value="gone"/></Feature></Feature></Roadway></Roadways>)");

TEST(Reader, SitesStandAsListedWithTheEmptyOnes) {
  const auto drawing = read(kDrawing);
  ASSERT_EQ(drawing.sites.size(), 2U);
  EXPECT_EQ(drawing.sites[0].name, "Empty");
  EXPECT_EQ(drawing.sites[0].description, "none");
  EXPECT_THAT(drawing.sites[0].alignments, IsEmpty());
  EXPECT_EQ(drawing.sites[1].handle, 0x10U);
  EXPECT_EQ(drawing.sites[1].alignments.at(0)->name, "CL 1");
  EXPECT_EQ(drawing.siteless.alignments.at(0)->name, "Access");
  EXPECT_EQ(drawing.linearUnit, "meter");
}

TEST(Reader, AlignmentHoldsStationsEquationsAndProfile) {
  const auto drawing = read(kDrawing);
  const auto& alignment = *drawing.sites.at(1).alignments.at(0);
  EXPECT_EQ(alignment.description, "Main");
  EXPECT_EQ(alignment.geometry.startStation(), 100.0);
  EXPECT_EQ(alignment.geometry.endStation(), 200.0);
  ASSERT_EQ(alignment.stationEquations.orNone().size(), 2U);
  EXPECT_EQ((*alignment.stationEquations)[0].backStation, 150.0);
  EXPECT_FALSE((*alignment.stationEquations)[1].backStation);
  EXPECT_FALSE((*alignment.stationEquations)[1].increasing);
  EXPECT_EQ(alignment.profiles.at(0).handle, 0x32U);
  EXPECT_EQ(alignment.profiles[0].profile.elevationAt(150.0), 55.0);
}

TEST(Reader, SampleLinesKeepTheirVertices) {
  const auto drawing = read(kDrawing);
  const auto& groups = drawing.sites.at(1).alignments.at(0)->sampleLineGroups;
  ASSERT_EQ(groups.size(), 1U);  // the corridor's sections are none
  EXPECT_EQ(groups[0].handle, 0x40U);
  EXPECT_THAT(groups[0].lines.at(0).vertices, ElementsAre(civil::Vec2{-9, 60}, civil::Vec2{0, 50}, civil::Vec2{9, 40}));
  EXPECT_EQ(groups[0].lines.at(1).name, "0+160.000");
  EXPECT_NEAR(groups[0].lines[1].vertices.at(0).x, -4.0, 1e-12);
}

TEST(Reader, SampleLinesEndOnTheDecimalsThatRoundingAloneWouldMiss) {
  const auto drawing =
      read(metric(alignment("<CoordGeom><Line><Start>-800 -580</Start><End>800 620</End></Line></CoordGeom>"
                            "<CrossSects name=\"G\"><CrossSect sta=\"1000\"><CrossSectSurf name=\"EG\"><PntList2D>"
                            "-35 1 70 2</PntList2D></CrossSectSurf></CrossSect></CrossSects>")));
  EXPECT_THAT(drawing.siteless.alignments.at(0)->sampleLineGroups.at(0).lines.at(0).vertices,
              ElementsAre(civil::Vec2{-8, 21}, civil::Vec2{20, 0}, civil::Vec2{76, -42}));
}

TEST(Reader, PointsTakeNameAndHandleFromTheirFeature) {
  const auto drawing = read(kDrawing);
  ASSERT_EQ(drawing.points.size(), 2U);
  EXPECT_EQ(drawing.points[0].texts.name(), "Oak-A");
  EXPECT_EQ(drawing.points[0].handle, 0x2AU);
  EXPECT_EQ(drawing.points[0].texts.description(), "TR");
  EXPECT_EQ(drawing.points[0].texts.fullDescription(), "Oak");
  EXPECT_EQ(drawing.points[0].position, (civil::Vec3{20, 10, 5}));
  EXPECT_FALSE(drawing.points[1].hasElevation);
  ASSERT_EQ(drawing.pointGroups.size(), 1U);  // _All is our store, not a group
  EXPECT_EQ(drawing.pointGroups[0].description, "All trees");
  EXPECT_THAT(drawing.pointGroups[0].numbers, ElementsAre(1));
}

TEST(Reader, FeaturesNameTheirPointsWhereVersionsHaveNoReferences) {
  const civil::Drawing drawing = read(ours(R"(
<CgPoints><CgPoint name="1">10 20 5</CgPoint><CgPoint name="2">30 40 5</CgPoint><CgPoint name="T7">50 60 5</CgPoint>
<Feature code="lvx_point"><Property label="point" value="1"/><Property label="name" value="Oak-A"/><Property label="handle" value="2A"/></Feature>
<Feature code="lvx_point"><Property label="point" value="T7"/><Property label="name" value=""/></Feature>
<Feature code="lvx_point"><Property label="point" value="9"/><Property label="name" value="nobody's"/></Feature></CgPoints>)"));
  ASSERT_EQ(drawing.points.size(), 3U);
  EXPECT_EQ(drawing.points[0].texts.name(), "Oak-A");
  EXPECT_EQ(drawing.points[0].handle, 0x2AU);
  EXPECT_EQ(drawing.points[1].texts.name(), "");
  EXPECT_EQ(drawing.points[2].texts.name(), "");
}

TEST(Reader, CorridorHoldsSectionsAgainstTheProfile) {
  const auto drawing = read(kDrawing);
  ASSERT_EQ(drawing.corridors.size(), 1U);
  const auto& corridor = drawing.corridors[0];
  EXPECT_EQ(corridor.handle, 0x70U);
  ASSERT_EQ(corridor.baselines.size(), 1U);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("baseline 'Lost': its alignment 'gone' isn't in the drawing"));
  EXPECT_EQ(corridor.baselines[0].alignment, drawing.sites[1].alignments[0].get());
  EXPECT_EQ(corridor.baselines[0].profile, &drawing.sites[1].alignments[0]->profiles[0]);
  const auto& region = corridor.baselines[0].regions.at(0);
  EXPECT_THAT(region.stations, ElementsAre(100.0, 150.0, 175.5, 200.0));
  EXPECT_EQ(region.pendingLabels, (std::map<double, std::string>{{175.5, "Later"}}));
  ASSERT_EQ(region.sections.size(), 2U);
  EXPECT_EQ(region.sections[0].station, 100.0);
  const auto& section = region.sections[1];
  EXPECT_EQ(section.origin, civil::SectionOrigin::Computed);
  EXPECT_EQ(section.label, "Culvert");
  EXPECT_THAT(section.parts[0].codes, ElementsAre("Pave", "Top,1"));
  EXPECT_THAT(section.parts[0].points[1].codes, ElementsAre("Crown", "C%"));
  EXPECT_NEAR(section.parts[0].points[0].elevation, -0.1, 1e-12);
}

TEST(Reader, RepeatedHandleStaysWithTheFirstAndOthersCountFrom100) {
  const auto drawing = read(kDrawing);
  EXPECT_EQ(drawing.sites.at(1).alignments.at(0)->handle, 0x30U);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("handle 30 stands twice; the first object keeps it"));
  EXPECT_EQ(drawing.points.at(1).handle, 0x100U);
  EXPECT_EQ(drawing.sites[1].alignments[0]->sampleLineGroups.at(0).lines.at(1).handle, 0x101U);
  EXPECT_EQ(drawing.siteless.alignments.at(0)->handle, 0x102U);
}

TEST(Reader, PrefixesChangeNothing) {
  std::string prefixed;
  for (std::size_t i = 0; i < kDrawing.size(); ++i) {
    prefixed += kDrawing[i];
    if (kDrawing[i] != '<') continue;
    if (kDrawing[i + 1] == '/') prefixed += kDrawing[++i];
    prefixed += "lx:";
  }
  prefixed.replace(0, 11, "<lx:LandXML xmlns:lx=\"http://www.landxml.org/schema/LandXML-1.2\"");
  const auto plain = read(kDrawing);
  const auto drawing = read(prefixed);
  EXPECT_EQ(diagnosticsOf(drawing), diagnosticsOf(plain));
  EXPECT_EQ(drawing.points.size(), plain.points.size());
  EXPECT_EQ(drawing.surfaces.at(0).surface.counts().triangles, 1U);
  EXPECT_EQ(drawing.corridors.at(0).baselines.size(), 1U);
}

TEST(Reader, DiagnosticsGiveTheFilesOwnLines) {
  const auto drawing =
      read("<?xml version=\"1.0\"?>\n<!-- a\nb -->\n<LandXML>\n<Units><Metric linearUnit=\"meter\"/></Units>\n" +
           std::string(
               "<Surfaces><Surface name=\"T\"><SourceData>\n\n</SourceData><Definition><Pnts>\n<P id=\"1\">1 2 3</P>\n"
               "</Pnts><Faces>\n</Faces></Definition></Surface></Surfaces>\n<Alignments>\n<Alignment name=\"A\" "
               "staStart=\"x\"/>"
               "</Alignments></LandXML>"));
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("13: alignment 'A': staStart 'x' is not a number"));
}

/// "kind name", of the object that a diagnostic is about; "file" for the file as a whole, "gone" for a handle of nothing.
std::string subjectOf(const civil::Drawing& drawing, const civil::Diagnostic& diagnostic) {
  if (diagnostic.object == 0) return "file";
  const auto entry = civil::DrawingIndex(drawing).byHandle(diagnostic.object);
  if (!entry) return "gone";
  constexpr std::array kKinds{"site",    "alignment", "profile", "group",   "line",
                              "surface", "point",     "points",  "corridor"};
  const std::string name = std::visit(
      [](const auto* object) {
        if constexpr (requires { object->number; })
          return std::to_string(object->number);
        else
          return object->name;
      },
      entry->object);
  return std::string(kKinds.at(static_cast<std::size_t>(entry->kind()))) + " " + name;
}

TEST(Reader, EachDiagnosticKnowsTheObjectThatItIsAbout) {
  struct Row {
    const char* content;
    const char* text;
    const char* about;
  };
  const std::string line = "<CoordGeom><Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>";
  const std::string inAlignment = "<Alignments name=\"S\"><Alignment name=\"A\" staStart=\"0\">" + line;
  const std::string behind = "</Alignment></Alignments>";
  const std::string design = inAlignment +
                             "<CrossSects name=\"G\"><CrossSect name=\"L\" sta=\"10\"><DesignCrossSectSurf>" +
                             "<CrossSectPnt>1</CrossSectPnt></DesignCrossSectSurf></CrossSect></CrossSects>" + behind;
  const std::string equation = inAlignment + "<StaEquation staInternal=\"1\"/>" + behind;
  const std::string profile =
      inAlignment + "<Profile><ProfAlign name=\"P\"><PVI>1</PVI></ProfAlign></Profile>" + behind;
  const std::string noStation = inAlignment + "<CrossSects name=\"G\"><CrossSect name=\"L\"/></CrossSects>" + behind;
  const std::string oddSkew =
      inAlignment + "<CrossSects name=\"G\"><CrossSect name=\"L\" sta=\"1\" angleSkew=\"x\"/></CrossSects>" + behind;
  const std::string twice =
      inAlignment + "<CrossSects name=\"G\"><Feature code=\"lvx_sampleLineGroup\"><Property label=\"handle\" " +
      "value=\"7\"/></Feature></CrossSects><CrossSects name=\"H\"><Feature code=\"lvx_sampleLineGroup\"><Property " +
      "label=\"handle\" value=\"7\"/></Feature></CrossSects>" + behind;
  const Row rows[] = {
      {"", "names no units", "file"},
      {"<Surfaces><Surface name=\"T\"/></Surfaces>", "has no Definition", "surface T"},
      {"<Alignments><Alignment name=\"A\" staStart=\"0\"/></Alignments>", "has no geometry", "alignment A"},
      {"<Alignments><Alignment name=\"A\" staStart=\"0\"><CoordGeom><Line/></CoordGeom></Alignment></Alignments>",
       "the alignment is left out", "file"},
      {equation.c_str(), "lacks staInternal or staAhead", "alignment A"},
      {profile.c_str(), "doesn't hold a station and an elevation", "profile P"},
      {noStation.c_str(), "has no station; left out", "group G"},
      {oddSkew.c_str(), "angleSkew 'x' is not an angle", "line L"},
      {twice.c_str(), "handle 7 stands twice", "group H"},
      {design.c_str(), "section at 10: a CrossSectPnt holds no offset and elevation", "corridor A"},
      {design.c_str(), "sample line 'L': a CrossSectPnt holds no offset and elevation", "line L"},
      {"<CgPoints><CgPoint name=\"5\">0 0 0</CgPoint><CgPoint name=\"5\">0 1 0</CgPoint></CgPoints>",
       "its number stands twice", "point 6"},
      {"<CgPoints><CgPoint name=\"5\">0</CgPoint></CgPoints>", "point '5': holds 1 numbers", "file"},
      {"<CgPoints><CgPoint name=\"5\">- 1 0 0</CgPoint></CgPoints>", "a sign stood apart", "point 5"},
      {"<CgPoints name=\"Trees\"><CgPoint name=\"5\">1 0 0</CgPoint><CgPoint pntRef=\"6\"/></CgPoints>",
       "there is no point '6'", "points Trees"},
      {"<Survey><X/></Survey>", "'Survey' isn't read", "file"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const auto drawing = read(std::string("<LandXML>") + row.content + "</LandXML>");
    std::vector<std::string> subjects;
    for (const auto& diagnostic : drawing.diagnostics)
      if (diagnostic.text.find(row.text) != std::string::npos) subjects.push_back(subjectOf(drawing, diagnostic));
    EXPECT_THAT(subjects, ElementsAre(row.about)) << diagnosticsOf(drawing);
  }
}

TEST(Reader, TellsSiblingsOfOneNameApartAndSaysWhere) {
  const std::string line = "<CoordGeom><Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>";
  const auto drawing = read(metric(
      "<Alignments name=\"S\"><Alignment name=\"Bridge\" staStart=\"0\">" + line +
      "<Profile>\n<ProfSurf name=\"Bridge\"><PntList2D>0 120 100 121</PntList2D></ProfSurf>\n<ProfAlign "
      "name=\"Bridge\"><PVI>0 123</PVI><PVI>100 124</PVI></ProfAlign></Profile><CrossSects><CrossSect sta=\"50\">"
      "<DesignCrossSectSurf name=\"Deck\"><Feature><Property label=\"profAlignRefs\" value=\"Bridge\"/></Feature>"
      "<CrossSectPnt>0 123.5</CrossSectPnt></DesignCrossSectSurf></CrossSect><Feature><Property "
      "label=\"profAlignRefs\" value=\"Bridge\"/></Feature></CrossSects></Alignment></Alignments>"
      "<Alignments name=\"S\"><Alignment name=\"Bridge\" staStart=\"0\">" +
      line + "</Alignment></Alignments><Roadways><Roadway name=\"R\" alignmentRefs=\"Bridge\"/></Roadways>"));
  ASSERT_EQ(drawing.sites.size(), 1U);
  const auto& alignments = drawing.sites[0].alignments;
  ASSERT_EQ(alignments.size(), 2U);
  EXPECT_EQ(alignments[1]->name, "Bridge (2)");
  EXPECT_EQ(alignments[1]->nameInFile, "Bridge");
  ASSERT_EQ(alignments[0]->profiles.size(), 2U);
  EXPECT_EQ(alignments[0]->profiles[0].name, "Bridge");
  EXPECT_TRUE(alignments[0]->profiles[0].profile.isGround());
  EXPECT_EQ(alignments[0]->profiles[1].name, "Bridge (2)");
  EXPECT_THAT(diagnosticsOf(drawing),
              HasSubstr("3: alignment 'Bridge': design profile 'Bridge': another profile before "
                        "it has that name; it is called 'Bridge (2)' here"));
  ASSERT_EQ(drawing.diagnostics.size(), 2U) << diagnosticsOf(drawing);
  EXPECT_EQ(drawing.diagnostics[0].object, alignments[1]->handle);
  EXPECT_EQ(drawing.diagnostics[1].object, alignments[0]->profiles[1].handle);
  // What the file refers to by that name is the first alignment and the design profile, as ever.
  ASSERT_EQ(drawing.corridors.size(), 1U);
  EXPECT_EQ(drawing.corridors[0].name, "R");
  EXPECT_EQ(drawing.corridors[0].baselines.at(0).alignment, alignments[0].get());
  EXPECT_EQ(drawing.corridors[0].baselines[0].profile, &alignments[0]->profiles[1]);
}

TEST(Reader, SaysHowManyDiagnosticsItDoesntList) {
  std::string points = "<CgPoints>";
  for (int i = 0; i < 10'004; ++i) points += "<CgPoint name=\"1\">0 0 0</CgPoint>";
  const auto drawing = read(metric(points + "</CgPoints>"));
  ASSERT_EQ(drawing.diagnostics.size(), 10'000U);
  EXPECT_EQ(subjectOf(drawing, drawing.diagnostics[9'998]), "point 10000");
  EXPECT_EQ(drawing.diagnostics.back().text, "4 more diagnostics aren't listed");
  EXPECT_EQ(drawing.diagnostics.back().object, 0U);
}

}  // namespace
}  // namespace lvx::landxml::testing
