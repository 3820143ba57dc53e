#include <algorithm>
#include <array>
#include <charconv>

#include "drawing_text.h"

namespace lvx::landxml::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const civil::Alignment& geometryOf(const civil::Drawing& drawing) {
  return drawing.siteless.alignments.at(0)->geometry;
}

std::string elements(const std::string& content) { return metric(alignment("<CoordGeom>" + content + "</CoordGeom>")); }

std::string numberText(double value) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

TEST(Elements, EachFormGivesItsLength) {
  struct Row {
    const char* what;
    const char* element;
    double length;
    const char* diagnostic;
  };
  const double quarter = 50.0 * civil::kPi / 2.0;
  const Row rows[] = {
      {"line", "<Line dir=\"12\"><Start>0 0</Start><End>30 40</End></Line>", 50.0, ""},
      {"line of no length", "<Line><Start>0 0</Start><End>0 0</End></Line>", 0.0, "Line 1: has no length"},
      {"curve, points in any order",
       "<Curve rot=\"cw\" radius=\"-50\"><End>-50 50</End><Start>0 0</Start><Center>-50 0</Center></Curve>", quarter,
       ""},
      {"curve the other way round",
       "<Curve rot=\"ccw\"><Start>0 0</Start><Center>-50 0</Center><End>-50 50</End></Curve>", 3.0 * quarter, ""},
      {"curve by radius", "<Curve rot=\"cw\" radius=\"50\"><Start>0 0</Start><End>-50 50</End></Curve>", quarter,
       "has no Center; it is computed"},
      {"large curve by radius",
       "<Curve rot=\"ccw\" radius=\"50\" length=\"235\"><Start>0 0</Start><End>-50 50</End></Curve>", 3.0 * quarter,
       ""},
      {"closed circle",
       "<Curve rot=\"cw\" length=\"314\"><Start>0 0</Start><Center>-50 0</Center><End>0 0</End></Curve>", 4.0 * quarter,
       ""},
      {"curve of no length",
       "<Curve rot=\"cw\" length=\"0\"><Start>0 0</Start><Center>-50 0</Center><End>0 0</End></Curve>", 0.0,
       "Curve 1: has no length"},
      {"spiral",
       "<Spiral length=\"40\" radiusStart=\"INF\" radiusEnd=\"120\" rot=\"cw\" spiType=\"clothoid\"><Start>0 0</Start>"
       "<PI>26.7 0</PI><End>39.89 2.2</End></Spiral>",
       40.0, ""},
      {"spiral without radii",
       "<Spiral length=\"30\" radiusStart=\"0\" radiusEnd=\"-INF\" rot=\"cw\" spiType=\"clothoid\">"
       "<Start>0 0</Start><PI>15 0</PI><End>30 0</End></Spiral>",
       30.0, ""},
      {"spiral of one radius",
       "<Spiral length=\"30\" radiusStart=\"50\" radiusEnd=\"50\" rot=\"cw\" spiType=\"clothoid\">"
       "<Start>0 0</Start><PI>15 0</PI><End>28 8.7</End></Spiral>",
       30.0, ""},
      {"spiral by parameter",
       "<Spiral constant=\"60\" radiusStart=\"Infinity\" radiusEnd=\"90\" rot=\"cw\" spiType=\"Clothoid\">"
       "<Start>0 0</Start><PI>26.7 0</PI><End>39.8 2.9</End></Spiral>",
       40.0, ""},
      {"irregular line",
       "<IrregularLine><Start>0 0</Start><End>30 40</End><PntList2D>0 0 30 0 30 40</PntList2D></IrregularLine>", 70.0,
       ""},
      {"irregular line in space",
       "<IrregularLine><Start>0 0</Start><End>30 40</End><PntList3D>0 0 1 30 0 2 30 40 3</PntList3D></IrregularLine>",
       70.0, ""},
      {"irregular line without its ends",
       "<IrregularLine><Start>0 0</Start><End>30 40</End><PntList2D>30 0</PntList2D></IrregularLine>", 70.0, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const auto drawing = read(elements(row.element));
    ASSERT_EQ(drawing.siteless.alignments.size(), 1U) << diagnosticsOf(drawing);
    EXPECT_NEAR(geometryOf(drawing).length(), row.length, 1e-9);
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr(row.diagnostic));
  }
}

TEST(Elements, WhatCantBeEvaluatedLeavesTheAlignmentOutByName) {
  struct Row {
    const char* element;
    const char* diagnostic;
  };
  const Row rows[] = {
      {"<Spiral constant=\"40\" radiusStart=\"INF\" radiusEnd=\"120\" rot=\"cw\" spiType=\"bloss\"><Start>0 "
       "0</Start><End>40 1</End></Spiral>",
       "1: alignment 'A': Spiral 2: has no length"},
      {"<Line><Start>0 0</Start></Line>", "alignment 'A': Line 2: End is missing"},
      {"<Line><Start>0 0</Start><End>1,5 2</End></Line>", "alignment 'A': Line 2: End '1,5' is not a number"},
      {"<Line><Start pntRef=\"x\"/><End>1 2</End></Line>", "Start refers to the point 'x', which isn't in the file"},
      {"<Curve><Start>0 0</Start><Center>-50 0</Center><End>-50 50</End></Curve>",
       "alignment 'A': Curve 2: rot is missing"},
      {"<Curve rot=\"cw\"><Start>0 0</Start><End>-50 50</End></Curve>", "neither a Center nor a radius"},
      {"<Curve rot=\"cw\" radius=\"3\"><Start>0 0</Start><End>-50 50</End></Curve>", "neither a Center nor a radius"},
      {"<Spiral radiusStart=\"INF\" rot=\"cw\" spiType=\"clothoid\"><Start>0 0</Start><End>1 1</End></Spiral>",
       "Spiral 2: has no length"},
      {"<Spiral length=\"3\" radiusStart=\"abc\" rot=\"cw\" spiType=\"clothoid\"><Start>0 0</Start><End>1 "
       "1</End></Spiral>",
       "radiusStart 'abc' is not a number"},
      {"<Chain>1 2</Chain>", "Chain 2: the point '1' isn't in the file"},
      {"<Ellipse/>", "Ellipse 2: isn't an element"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.element);
    const auto drawing = read(elements("<Line><Start>-10 0</Start><End>0 0</End></Line>" + std::string(row.element)));
    EXPECT_TRUE(drawing.siteless.alignments.empty());
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr(row.diagnostic));
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("; the alignment is left out"));
  }
}

TEST(Elements, TransitionsFollowTheLawOfTheirName) {
  struct Row {
    const char* spiType;
    civil::ElementKind kind;
    // Published end of a transition of 100 to the left, from the straight into a radius of 300.
    double x, y;
  };
  const Row rows[] = {
      {"clothoid", civil::ElementKind::Clothoid, 99.7225792178274, 5.5445423656288},
      {"bloss", civil::ElementKind::Bloss, 99.7468064174602, 4.98981104238495},
      {"Cosine", civil::ElementKind::Cosine, 99.7484553577365, 4.94582068772272},
      {"biquadratic", civil::ElementKind::Biquadratic, 99.7517634462451, 4.85106052287364},
      {"biquadraticParabola", civil::ElementKind::Biquadratic, 99.7517634462451, 4.85106052287364},
      {"sinusoid", civil::ElementKind::Sinusoid, 99.7569805097155, 4.70132070248442},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.spiType);
    // The corner of the tangents at the ends, which turn by 1/6.
    const double pi = row.x - row.y / std::tan(1.0 / 6.0);
    for (const double side : {1.0, -1.0}) {
      for (const bool isEntry : {true, false}) {
        // Eastward, so x is the easting and y, mirrored for a turn to the right, the northing.
        const auto point = [&](const char* name, double x, double y) {
          return "<" + std::string(name) + ">" + numberText(side * y) + " " + numberText(x) + "</" + name + ">";
        };
        const bool isLeft = (side > 0.0) == isEntry;  // driven backwards it turns to the other side
        const std::string spiral = "<Spiral length=\"100\" radiusStart=\"" + std::string(isEntry ? "INF" : "300") +
                                   "\" radiusEnd=\"" + (isEntry ? "300" : "INF") + "\" rot=\"" +
                                   (isLeft ? "ccw" : "cw") + "\" spiType=\"" + row.spiType + "\">" +
                                   point("Start", isEntry ? 0.0 : row.x, isEntry ? 0.0 : row.y) + point("PI", pi, 0.0) +
                                   point("End", isEntry ? row.x : 0.0, isEntry ? row.y : 0.0) + "</Spiral>";
        const auto drawing = read(elements(spiral));
        ASSERT_EQ(drawing.siteless.alignments.size(), 1U) << diagnosticsOf(drawing);
        const civil::Alignment& axis = geometryOf(drawing);
        ASSERT_EQ(axis.elements().size(), 1U);
        const civil::Element& element = axis.elements()[0];
        EXPECT_EQ(element.kind, row.kind);
        EXPECT_LT(civil::length(element.endPose().point - element.givenEnd), 1e-7);
        const double sign = isLeft ? 1.0 : -1.0;
        EXPECT_EQ(element.startCurvature, isEntry ? 0.0 : sign / 300.0);
        EXPECT_EQ(element.endCurvature, isEntry ? sign / 300.0 : 0.0);
        EXPECT_THAT(diagnosticsOf(drawing), Not(HasSubstr("misses")));
        const bool isTold = diagnosticsOf(drawing).find("no clothoids") != std::string::npos;
        EXPECT_EQ(isTold, row.kind != civil::ElementKind::Clothoid) << diagnosticsOf(drawing);
      }
    }
  }
}

TEST(Elements, TransitionsThatAreNoClothoidsAreToldOncePerAlignment) {
  const std::string law =
      "<Spiral length=\"40\" radiusStart=\"INF\" radiusEnd=\"1e6\" rot=\"cw\" spiType=\"LAW\"><Start>0 "
      "0</Start><End>0 40</End></Spiral>";
  const auto of = [&](const char* name) { return std::string(law).replace(law.find("LAW"), 3, name); };
  const auto drawing = read(elements(of("bloss") + of("cosine") + of("bloss") + of("clothoid")));
  EXPECT_THAT(
      diagnosticsOf(drawing),
      HasSubstr("alignment 'A': has transitions that are no clothoids (2 bloss, 1 cosine); the GLS report shows "
                "them as clothoids of the same radii and lengths"));
}

TEST(Elements, AnUnknownTransitionEndsTheAlignmentBeforeIt) {
  const std::string unknown =
      "<Spiral length=\"40\" radiusStart=\"INF\" radiusEnd=\"120\" rot=\"cw\" spiType=\"cubic\"><Start>0 "
      "12.5</Start><PI>0 40</PI><End>-2 52</End></Spiral>";
  const auto drawing = read(elements("<Line><Start>0 0</Start><End>0 12.5</End></Line>" + unknown +
                                     "<Line><Start>-2 52</Start><End>-9 80</End></Line>"));
  ASSERT_EQ(drawing.siteless.alignments.size(), 1U);
  EXPECT_NEAR(geometryOf(drawing).length(), 12.5, 1e-12);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("1: alignment 'A': Spiral 2: spiType cubic can't be evaluated; the "
                                                "alignment ends there, at station 12.5"));
  EXPECT_EQ(drawing.diagnostics.front().severity, civil::Severity::Error);
  EXPECT_THAT(diagnosticsOf(drawing), Not(HasSubstr("stated")));

  const auto first = read(elements(unknown));
  ASSERT_EQ(first.siteless.alignments.size(), 1U);
  EXPECT_TRUE(geometryOf(first).isEmpty());
  EXPECT_THAT(diagnosticsOf(first), HasSubstr("Spiral 1: spiType cubic can't be evaluated; nothing of the alignment "
                                              "stands before it"));
}

TEST(Elements, GapsAndCornersAreToldAndKept) {
  const auto drawing = read(elements(
      "<Line><Start>0 0</Start><End>10 0</End></Line>\n<Line><Start>10.002 0</Start><End>20 0</End></Line>\n"
      "<Line><Start>20 0</Start><End>20 10</End></Line>\n<Line><Start>20.0009 10</Start><End>20.0009 30</End></Line>"));
  EXPECT_EQ(geometryOf(drawing).elements().size(), 4U);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("2: alignment 'A': Line 2: starts 0.002 off the end of Line 1"));
  EXPECT_THAT(diagnosticsOf(drawing),
              HasSubstr("3: alignment 'A': Line 3: turns by 90 degrees against the end of Line 2"));
  EXPECT_EQ(diagnosticsOf(drawing).find("Line 4"), std::string::npos);
}

TEST(Elements, ChainTakesTheLongestNames) {
  const auto drawing =
      read(metric("<CgPoints><CgPoint name=\"a\">0 0</CgPoint><CgPoint name=\"a b\">30 40</CgPoint></CgPoints>" +
                  alignment("<CoordGeom><Chain>a a b</Chain></CoordGeom>")));
  EXPECT_NEAR(geometryOf(drawing).length(), 50.0, 1e-12);
}

TEST(Elements, ReferenceInACircleIsTold) {
  const auto drawing =
      read(metric("<CgPoints><CgPoint name=\"a\" pntRef=\"b\"/><CgPoint name=\"b\" pntRef=\"a\"/></CgPoints>"));
  EXPECT_TRUE(drawing.points.empty());
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("in a circle"));
}

TEST(Alignments, WithoutGeometryAreKept) {
  const auto drawing = read(metric(alignment("")));
  ASSERT_EQ(drawing.siteless.alignments.size(), 1U);
  EXPECT_TRUE(geometryOf(drawing).isEmpty());
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("alignment 'A': has no geometry"));
}

/// The tangents' corner at 90 degrees to the right: spirals of 60 and an arc of radius 200 on tangents of 500.
TEST(IntersectionPoints, SpiralsAndArcTouchBothTangents) {
  const auto drawing =
      read(metric(alignment("<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>500 0</PI>"
                            "<InSpiral><Spiral length=\"60\" radiusStart=\"0\" radiusEnd=\"200\" rot=\"cw\" "
                            "spiType=\"clothoid\"><Start/><PI/><End/></Spiral></InSpiral>"
                            "<Curve1><Curve rot=\"cw\" radius=\"200\"><Start/><Center/><End/></Curve></Curve1>"
                            "<OutSpiral><Spiral length=\"90\" radiusStart=\"200\" radiusEnd=\"0\" rot=\"cw\" "
                            "spiType=\"clothoid\"><Start/><PI/><End/></Spiral></OutSpiral>"
                            "</AlignPI><AlignPI><PI>500 500</PI></AlignPI></AlignPIs>")));
  const auto& axis = geometryOf(drawing);
  ASSERT_EQ(axis.elements().size(), 5U) << diagnosticsOf(drawing);
  // Arc: the quarter turn without what the spirals turn, L / 2R each.
  EXPECT_NEAR(axis.elements()[2].length, 200.0 * (civil::kPi / 2.0 - 60.0 / 400.0 - 90.0 / 400.0), 1e-9);
  const auto end = axis.poseAt(axis.endStation());
  ASSERT_TRUE(end);
  EXPECT_NEAR(end->point.x, 500.0, 1e-9);
  EXPECT_NEAR(end->point.y, 500.0, 1e-9);
  EXPECT_EQ(drawing.diagnostics.size(), 2U) << diagnosticsOf(drawing);  // the stated length
}

TEST(IntersectionPoints, SpiralsOfAllLawsTouchBothTangents) {
  for (const char* law : {"bloss", "cosine", "biquadratic", "sinusoid"}) {
    const std::string type = law;
    const auto drawing =
        read(metric(alignment("<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>500 0</PI><InSpiral><Spiral "
                              "length=\"60\" radiusEnd=\"200\" rot=\"cw\" spiType=\"" +
                              type +
                              "\"/></InSpiral><Curve1><Curve rot=\"cw\" radius=\"200\"/></Curve1><OutSpiral><Spiral "
                              "length=\"90\" radiusStart=\"200\" rot=\"cw\" spiType=\"" +
                              type + "\"/></OutSpiral></AlignPI><AlignPI><PI>500 500</PI></AlignPI></AlignPIs>")));
    const auto& axis = geometryOf(drawing);
    ASSERT_EQ(axis.elements().size(), 5U) << diagnosticsOf(drawing);
    EXPECT_STREQ(civil::kindName(axis.elements()[1].kind), law);
    const auto end = axis.poseAt(axis.endStation());
    EXPECT_NEAR(end->point.x, 500.0, 1e-9);
    EXPECT_NEAR(end->point.y, 500.0, 1e-9);
    EXPECT_THAT(diagnosticsOf(drawing), Not(HasSubstr("off the end of")));
  }
}

TEST(IntersectionPoints, AnUnknownTransitionEndsTheAlignmentBehindTheCurveBeforeIt) {
  const auto drawing = read(metric(
      alignment("<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>500 0</PI><Curve1><Curve rot=\"cw\" "
                "radius=\"200\"/></Curve1></AlignPI><AlignPI><PI>500 900</PI><InSpiral><Spiral length=\"60\" "
                "radiusEnd=\"200\" spiType=\"cubicParabola\"/></InSpiral></AlignPI><AlignPI><PI>0 900</PI></AlignPI>"
                "<AlignPI><PI/></AlignPI></AlignPIs>")));
  const auto& axis = geometryOf(drawing);
  ASSERT_EQ(axis.elements().size(), 2U) << diagnosticsOf(drawing);
  EXPECT_NEAR(axis.endStation(), 300.0 + 100.0 * civil::kPi, 1e-9);
  EXPECT_THAT(diagnosticsOf(drawing),
              HasSubstr("AlignPI 3: spiType cubicParabola can't be evaluated; the alignment ends "
                        "there, at station 614.1593"));
}

TEST(IntersectionPoints, WithoutCurveAreCorners) {
  const auto drawing = read(
      metric(alignment("<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>30 0</PI><Curve1><Curve "
                       "rot=\"cw\" radius=\"0\"/></Curve1></AlignPI><AlignPI><PI>30 40</PI></AlignPI></AlignPIs>")));
  EXPECT_NEAR(geometryOf(drawing).length(), 70.0, 1e-12);
}

TEST(IntersectionPoints, SpiralsTooLongForTheTurnAreRefused) {
  const auto drawing = read(
      metric(alignment("<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>500 0</PI><InSpiral><Spiral "
                       "length=\"900\" radiusEnd=\"200\" "
                       "spiType=\"clothoid\"/></InSpiral></AlignPI><AlignPI><PI>500 500</PI></AlignPI></AlignPIs>")));
  EXPECT_TRUE(drawing.siteless.alignments.empty());
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("AlignPI 2: its spirals turn farther than its tangents do"));
}

TEST(Units, AnglesFollowTheirUnit) {
  struct Row {
    const char* unit;
    const char* skew;
  };
  const Row rows[] = {{"decimal degrees", "30"},          {"grads", "33.333333333333336"},
                      {"radians", "0.52359877559829882"}, {"decimal dd.mm.ss", "29.5960000"},
                      {"decimal  dd.mm.ss", "30.0000"},   {"decimal dd.mm.ss", "30"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.unit) + " " + row.skew);
    const auto drawing = read(metric(
        northward("<CrossSects><CrossSect sta=\"50\" angleSkew=\"" + std::string(row.skew) + "\"/></CrossSects>"),
        row.unit));
    const auto& line = drawing.siteless.alignments.at(0)->sampleLineGroups.at(0).lines.at(0);
    if (std::string(row.skew).find("60000") != std::string::npos) {
      EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("is not an angle"));  // 60 seconds
      continue;
    }
    // Turned clockwise from the right: half of the way back to the south.
    EXPECT_NEAR(line.vertices.back().x, 10.0 * std::cos(civil::kPi / 6.0), 1e-9);
    EXPECT_NEAR(line.vertices.back().y, 50.0 - 5.0, 1e-9);
  }
}

TEST(Units, MissingAreAssumedAndSaid) {
  EXPECT_THAT(diagnosticsOf(read("<LandXML/>")), HasSubstr("names no units; metres and radians are assumed"));
}

TEST(Encodings, NamesComeOutAsUtf8) {
  const std::string name =
      "Stra\xC3\x9F"
      "e \xE2\x82\xAC";
  const auto nameIn = [](const std::string& text) {
    const auto drawing = read(text);
    return drawing.surfaces.empty() ? std::string() : drawing.surfaces[0].name;
  };
  const auto file = [](const std::string& declaration, const std::string& n) {
    return declaration + "<LandXML><Surfaces><Surface name=\"" + n + "\"/></Surfaces></LandXML>";
  };
  EXPECT_EQ(nameIn(file("", name)), name);
  EXPECT_EQ(nameIn(file("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>", name)), name);
  EXPECT_EQ(nameIn(file("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\r\n",
                        "Stra\xDF"
                        "e \x80")),
            name);
  EXPECT_EQ(nameIn(file("<?xml version='1.0' encoding='windows-1252'?>",
                        "Stra\xDF"
                        "e \x80")),
            name);
  EXPECT_EQ(nameIn(file("<?xml version='1.0' encoding='iso-8859-15'?>",
                        "Stra\xDF"
                        "e \xA4")),
            name);
  EXPECT_EQ(nameIn(file("<?xml version='1.0' encoding='Shift_JIS'?>", "\x93\xB9\x98\x48")), "\xE9\x81\x93\xE8\xB7\xAF");
  EXPECT_EQ(nameIn(file("",
                        "Stra\xDF"
                        "e")),
            "Stra\xC3\x9F"
            "e");
  const auto wide = [&](bool mark, bool bigEndian) {
    std::string result = mark ? (bigEndian ? "\xFE\xFF" : "\xFF\xFE") : "";
    for (const char c : file("<?xml version=\"1.0\" encoding=\"UTF-16\"?>", "Road 1")) {
      result += bigEndian ? '\0' : c;
      result += bigEndian ? c : '\0';
    }
    return result;
  };
  for (const bool mark : {true, false}) {
    for (const bool bigEndian : {true, false}) EXPECT_EQ(nameIn(wide(mark, bigEndian)), "Road 1");
  }
  EXPECT_THAT(errorOf(wide(true, false).substr(0, 101)), HasSubstr("cut off"));
}

TEST(Profiles, GapsSignsAndDoubledCurves) {
  const auto drawing = read(metric(northward(
      "<Profile><ProfSurf name=\"G\"><PntList2D>0 1 10 2</PntList2D><PntList2D>20 -\n2 30 "
      "4</PntList2D></ProfSurf></Profile>"
      "<Profile><ProfAlign name=\"D\"><PVI>0 0</PVI><UnsymParaCurve lengthIn=\"30\" lengthOut=\"40\">30 "
      "1</UnsymParaCurve>"
      "<UnsymParaCurve lengthIn=\"40\" lengthOut=\"30\">70 1</UnsymParaCurve><PVI>100 0</PVI></ProfAlign></Profile>")));
  const auto& profiles = drawing.siteless.alignments.at(0)->profiles;
  ASSERT_EQ(profiles.size(), 2U);
  EXPECT_EQ(profiles[0].profile.gapCount(), 1U);
  EXPECT_EQ(profiles[0].profile.elevationAt(20.0), -2.0);
  EXPECT_EQ(profiles[1].profile.points()[1].length, 15.0);
  EXPECT_EQ(profiles[1].profile.points()[2].lengthOut, 15.0);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("profile 'D': unsymmetric curve at 30: its lengths overlap"));
}

TEST(SampleLines, DefaultsComeFromTheSections) {
  const auto drawing = read(metric(northward(
      "<CrossSects><CrossSect sta=\"10\"><CrossSectSurf name=\"G\"><PntList2D>-5 9</PntList2D></CrossSectSurf>"
      "<CrossSectSurf name=\"G\"><PntList2D>7 9</PntList2D></CrossSectSurf></CrossSect>"
      "<CrossSect sta=\"20\" name=\"one side\"><CrossSectSurf name=\"G\"><PntList2D>2 9 6 "
      "9</PntList2D></CrossSectSurf></CrossSect>"
      "<CrossSect sta=\"30\" name=\"none\"/><CrossSect sta=\"200\" name=\"beyond\"/></CrossSects><CrossSects "
      "name=\"G2\"/>"
      "<CrossSects/>")));
  const auto& groups = drawing.siteless.alignments.at(0)->sampleLineGroups;
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[0].name, "SL - A (1)");
  EXPECT_EQ(groups[1].name, "G2");
  EXPECT_EQ(groups[2].name, "SL - A (3)");
  ASSERT_EQ(groups[0].lines.size(), 3U);
  EXPECT_EQ(groups[0].lines[0].name, "0+010.000");
  ASSERT_EQ(groups[0].lines[0].vertices.size(), 3U);
  EXPECT_NEAR(groups[0].lines[0].vertices[0].x, -5.0, 1e-12);
  EXPECT_NEAR(groups[0].lines[0].vertices[2].x, 7.0, 1e-12);
  ASSERT_EQ(groups[0].lines[1].vertices.size(), 2U);
  EXPECT_NEAR(groups[0].lines[1].vertices[0].x, 2.0, 1e-12);
  ASSERT_EQ(groups[0].lines[2].vertices.size(), 3U);
  EXPECT_NEAR(groups[0].lines[2].vertices[0].x, -7.0, 1e-12);
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("sample line 'beyond': the alignment has no station 200; left out"));
}

TEST(SampleLines, WithoutAPlaceOnTheAlignmentAreLeftOut) {
  const std::string own =
      "<Feature code=\"lvx_sampleLine\"><Property label=\"vertices\" value=\"5 -9 5 9\"/></Feature>";
  const auto drawing = read(metric(northward("<CrossSects name=\"G\"><CrossSect name=\"in\" sta=\"100\">" + own +
                                             "</CrossSect>\n<CrossSect name=\"behind\" sta=\"100.5\">" + own +
                                             "</CrossSect><CrossSect name=\"before\" sta=\"-1\"><CrossSectSurf>"
                                             "<PntList2D>-30 1 20 1</PntList2D></CrossSectSurf></CrossSect>"
                                             "<CrossSect name=\"wide\" sta=\"50\"/></CrossSects>")));
  const auto& group = drawing.siteless.alignments.at(0)->sampleLineGroups.at(0);
  ASSERT_EQ(group.lines.size(), 2U);
  EXPECT_EQ(group.lines[0].name, "in");
  EXPECT_EQ(group.lines[1].name, "wide");
  EXPECT_NEAR(group.lines[1].vertices.back().x, 30.0, 1e-9) << "as wide as the widest of the file";
  const std::string who = "alignment 'A': group 'G': sample line '";
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("2: " + who + "behind': the alignment has no station 100.5; left out"));
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr(who + "before': the alignment has no station -1; left out"));
  for (const auto& diagnostic : drawing.diagnostics) {
    if (diagnostic.text.find("no station") == std::string::npos) continue;
    EXPECT_EQ(diagnostic.severity, civil::Severity::Warning);
    EXPECT_EQ(diagnostic.object, group.handle) << "the lines themselves aren't there";
  }
}

TEST(SampleLines, OfAnAlignmentWithoutGeometryAreToldOnce) {
  const auto drawing =
      read(metric(alignment("<CrossSects name=\"G\"><CrossSect sta=\"1\"/><CrossSect sta=\"2\"/></CrossSects>")));
  EXPECT_THAT(drawing.siteless.alignments.at(0)->sampleLineGroups.at(0).lines, IsEmpty());
  EXPECT_THAT(diagnosticsOf(drawing),
              HasSubstr("alignment 'A': group 'G': the alignment has no geometry; 2 sample lines are left out"));
}

TEST(Notes, SayWhatIsntReadHowOftenAndWhere) {
  struct Row {
    std::string content;
    const char* note;  ///< with its line
    const char* about;
  };
  const Row rows[] = {
      {"\n<Parcels><Parcel/><Parcel/></Parcels><Parcels/><Parcels><Parcel/></Parcels>",
       "2: 2 'Parcels' aren't read (3 elements in them)", ""},
      {"<Survey>text</Survey>", "1: 'Survey' isn't read", ""},
      {"\n\n<Drainage><Ditch/></Drainage>", "3: 'Drainage' isn't read (1 element in it)", ""},
      {northward("\n<Cant name=\"c\"><CantStation/><CantStation/></Cant>"),
       "2: alignment 'A': 'Cant' isn't read (2 elements in it)", "A"},
      {northward("<Superelevation/>\n<Superelevation/>"), "1: alignment 'A': 2 'Superelevation' aren't read", "A"},
      {"<Surfaces><Surface name=\"T\">\n<SourceData><Breaklines><Breakline/><Breakline/></Breaklines><Contours>"
       "<Contour/></Contours><Boundaries><Boundary/></Boundaries></SourceData></Surface></Surfaces>",
       "2: surface 'T': 2 breaklines, 1 contour, 1 boundary aren't read; only triangles count", "T"},
      {"<Surfaces><Surface "
       "name=\"T\"><SourceData><Breaklines><Breakline/></Breaklines></SourceData></Surface></Surfaces>",
       "1: surface 'T': 1 breakline isn't read; only triangles count", "T"},
      {alignment("\n<AlignPIs><AlignPI><PI>0 0</PI></AlignPI><AlignPI><PI>9 0</PI></AlignPI></AlignPIs>"),
       "2: alignment 'A': its geometry is computed from intersection points (AlignPIs), since it has no elements in a "
       "CoordGeom",
       "A"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.note);
    const auto drawing = read(metric(row.content));
    std::vector<std::string> found;
    for (const auto& diagnostic : drawing.diagnostics) {
      if (std::to_string(diagnostic.line) + ": " + diagnostic.text != row.note) continue;
      EXPECT_EQ(diagnostic.severity, civil::Severity::Note);
      const auto entry = civil::DrawingIndex(drawing).byHandle(diagnostic.object);
      const auto* const axis = entry ? entry->as<civil::AlignmentObject>() : nullptr;
      const auto* const surface = entry ? entry->as<civil::SurfaceObject>() : nullptr;
      found.push_back(axis != nullptr ? axis->name : surface != nullptr ? surface->name : "");
    }
    EXPECT_THAT(found, ElementsAre(row.about)) << diagnosticsOf(drawing);
  }
}

TEST(Notes, KnownElementsAreNotTold) {
  const auto drawing = read(metric("<Project name=\"p\"/><Application name=\"a\"/><CoordinateSystem/>" +
                                   northward("<Feature code=\"x\"/><Profile/>")));
  for (const auto& diagnostic : drawing.diagnostics) EXPECT_THAT(diagnostic.text, Not(HasSubstr("read")));
}

TEST(Diagnostics, SayWhatWasDoneAndWeighWhatCounts) {
  using civil::Severity;
  struct Row {
    std::string content;
    Severity severity;
    const char* text;
  };
  const auto curve = [](const std::string& attributes, const std::string& end) {
    return alignment("<CoordGeom><Curve rot=\"cw\" " + attributes + "><Start>0 0</Start><Center>0 100</Center><End>" +
                     end + "</End></Curve></CoordGeom>");
  };
  const auto profile = [](const std::string& points) {
    return northward("<Profile><ProfAlign name=\"P\"><PVI>0 1</PVI>" + points +
                     "<PVI>100 1</PVI></ProfAlign></Profile>");
  };
  const Row rows[] = {
      {northward("<StaEquation staInternal=\"5\" staAhead=\"10\" staBack=\"NaN\"/>"), Severity::Note,
       "StaEquation 1: staBack 'NaN' is not a number that can be used; the equation is kept without it"},
      {northward("<StaEquation staInternal=\"x\" staAhead=\"10\"/>"), Severity::Note,
       "StaEquation 1: staInternal 'x' is not a number that can be used; the equation is left out"},
      {northward("<StaEquation staInternal=\"5\"/>"), Severity::Note,
       "StaEquation 1: lacks staInternal or staAhead; left out"},
      {"<Alignments><Alignment name=\"A\" staStart=\"x\"/></Alignments>", Severity::Error,
       "staStart 'x' is not a number that can be used; 0 is assumed"},
      {"<Alignments><Alignment name=\"A\"/></Alignments>", Severity::Warning, "has no start station; 0 is assumed"},
      {"<Alignments><Alignment name=\"A\" staStart=\"0\" length=\"x\"><CoordGeom><Line><Start>0 0</Start><End>9 0</End>"
       "</Line></CoordGeom></Alignment></Alignments>",
       Severity::Note, "length 'x' is not a number that can be used; its elements count"},
      {curve("length=\"x\"", "100 100"), Severity::Warning, "the curve is kept without it"},
      {curve("", "101 100"), Severity::Warning, "from the Center; the curve is kept, with the radius of its Start"},
      {profile("<CircCurve length=\"x\" radius=\"50\">50 2</CircCurve>"), Severity::Note, "the radius counts"},
      {profile("<ParaCurve length=\"x\">50 2</ParaCurve>"), Severity::Error, "can be used; taken as 0"},
      {profile("<ParaCurve length=\"0\">50 2</ParaCurve>"), Severity::Warning,
       "length 0; its curve is left out, the point is kept"},
      {northward("<CrossSects name=\"G\"><CrossSect name=\"L\" sta=\"x\"/></CrossSects>"), Severity::Error,
       "sample line 'L': sta 'x' is not a number that can be used; left out"},
      {alignment("<CoordGeom><Line><Start>0 0</Start><End>9 - 1</End></Line></CoordGeom>"), Severity::Warning,
       "End: a sign stood apart from its number; they were put together to -1"},
      {northward("<Profile><ProfSurf name=\"P\"><PntList2D>0 - 1 5 - 2.5 9 1</PntList2D></ProfSurf></Profile>"),
       Severity::Warning, "2 signs stood apart from their numbers; they were put together, the first one to -1"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const auto drawing = read(metric(row.content));
    std::vector<Severity> severities;
    for (const auto& diagnostic : drawing.diagnostics)
      if (diagnostic.text.find(row.text) != std::string::npos) severities.push_back(diagnostic.severity);
    EXPECT_THAT(severities, ElementsAre(row.severity)) << diagnosticsOf(drawing);
    const auto isAboutIt = [](const auto& d) { return d.text.find("start station") != std::string::npos; };
    if (row.severity == Severity::Error) {
      EXPECT_TRUE(std::none_of(drawing.diagnostics.begin(), drawing.diagnostics.end(), isAboutIt)) << "told twice";
    }
  }
}

TEST(Points, ThatStandTwiceInAGroupStandThereTwice) {
  const auto drawing =
      read(metric("<CgPoints><CgPoint name=\"1\">0 0</CgPoint></CgPoints><CgPoints name=\"G\">"
                  "<CgPoint pntRef=\"1\"/><CgPoint name=\"2\">1 1</CgPoint><CgPoint pntRef=\"1\"/>"
                  "</CgPoints>"));
  EXPECT_THAT(drawing.pointGroups.at(0).numbers, ElementsAre(1, 2, 1));
}

TEST(Points, NumbersNamesAndDescriptionsOfOtherPrograms) {
  const auto drawing =
      read(metric("<CgPoints name=\"Shots\" code=\"GR\"><CgPoint name=\"7\">1 2 3</CgPoint><CgPoint name=\"BP "
                  "(NO.-4)\" code=\"K\">1 2</CgPoint>"
                  "<CgPoint name=\"007\" code=\"C\" desc=\"D\">1 2 3</CgPoint><CgPoint desc=\"only\">1 2 3</CgPoint>"
                  "<CgPoints name=\"Inner\"><CgPoint name=\"9\" pntRef=\"7\"/></CgPoints></CgPoints>"
                  "<CgPoints name=\"Refs\"><CgPoint pntRef=\"9\"/><CgPoint pntRef=\"BP (NO.-4)\"/><CgPoint "
                  "pntRef=\"gone\"/></CgPoints>"));
  ASSERT_EQ(drawing.points.size(), 5U);
  struct Row {
    int number;
    const char* name;
    const char* description;
    const char* full;
    bool hasElevation;
  };
  const Row rows[] = {{7, "", "GR", "GR", true},
                      {10, "BP (NO.-4)", "K", "K", false},
                      {11, "007", "C", "D", true},
                      {12, "", "GR", "only", true},
                      {9, "", "GR", "GR", true}};
  for (std::size_t i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(drawing.points[i].number, rows[i].number);
    EXPECT_EQ(drawing.points[i].texts.name(), rows[i].name);
    EXPECT_EQ(drawing.points[i].texts.description(), rows[i].description);
    EXPECT_EQ(drawing.points[i].texts.fullDescription(), rows[i].full);
    EXPECT_EQ(drawing.points[i].hasElevation, rows[i].hasElevation);
  }
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("point 7: its number stands twice; the later point gets 11"));
  EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("point group 'Refs': there is no point 'gone'"));
  ASSERT_EQ(drawing.pointGroups.size(), 3U);
  EXPECT_THAT(drawing.pointGroups[0].numbers, ElementsAre(7, 10, 11, 12));
  EXPECT_THAT(drawing.pointGroups[1].numbers, ElementsAre(9));
  EXPECT_THAT(drawing.pointGroups[2].numbers, ElementsAre(9, 10));
}

TEST(Corridors, OfOtherProgramsComeFromDesignSections) {
  const auto file = [](const std::string& elevation) {
    return metric(
        northward("<Profile><ProfAlign name=\"D\"><PVI>0 50</PVI><PVI>100 60</PVI></ProfAlign></Profile><CrossSects>"
                  "<CrossSect sta=\"10\"><DesignCrossSectSurf name=\"a,b\"><CrossSectPnt code=\"C,1\">0 " +
                  elevation +
                  "</CrossSectPnt><CrossSectPnt dataFormat=\"Slope Distance\">1 1</CrossSectPnt></DesignCrossSectSurf>"
                  "</CrossSect></CrossSects>") +
        "<Roadways><Roadway name=\"R\" alignmentRefs=\"x A\"/><Roadway name=\"Main\" alignmentRefs=\"A\"/></Roadways>");
  };
  for (const char* const elevation : {"50.75", "-0.25"}) {
    SCOPED_TRACE(elevation);
    const auto drawing = read(file(elevation));
    ASSERT_EQ(drawing.corridors.size(), 1U);
    EXPECT_EQ(drawing.corridors[0].name, "Main");
    const auto& region = drawing.corridors[0].baselines.at(0).regions.at(0);
    EXPECT_EQ(region.startStation, 10.0);
    EXPECT_THAT(region.sections.at(0).parts[0].codes, ElementsAre("a,b"));
    ASSERT_EQ(region.sections[0].parts[0].points.size(), 1U);
    EXPECT_NEAR(region.sections[0].parts[0].points[0].elevation, -0.25, 1e-12);
    EXPECT_THAT(diagnosticsOf(drawing), HasSubstr("Slope Distance"));
    EXPECT_EQ(drawing.siteless.alignments.at(0)->sampleLineGroups.size(), 1U);
  }
}

}  // namespace
}  // namespace lvx::landxml::testing
