#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx::cli {

/// Without sample lines and point groups: Axis runs north from (500 100) at station 1000 for 100. Its ground is the plane
/// 10 + 0.05 (easting - 60) + 0.1 (northing - 500), from northing 500 to 580 and easting 60 to 140.
constexpr const char* kBareDrawing = R"(<?xml version="1.0" encoding="UTF-8"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2" date="2026-03-01" time="08:00:00">
  <Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" pressureUnit="HPA"/></Units>
  <Alignments name="North"><Alignment name="Axis" length="100" staStart="1000">
    <CoordGeom><Line><Start>500 100</Start><End>600 100</End></Line></CoordGeom>
    <Profile name="p">
      <ProfSurf name="Old ground"><PntList2D>1000 11 1100 12</PntList2D></ProfSurf>
      <ProfAlign name="Design"><PVI>1000 13</PVI><ParaCurve length="20">1050 15</ParaCurve><PVI>1100 14</PVI></ProfAlign>
      <ProfAlign name="Variant"><PVI>1000 13</PVI><PVI>1030 15</PVI><PVI>1100 14</PVI></ProfAlign>
    </Profile></Alignment>
    <Alignment name="Far" length="100" staStart="0">
    <CoordGeom><Line><Start>5000 100</Start><End>5100 100</End></Line></CoordGeom></Alignment></Alignments>
  <CgPoints>
    <CgPoint name="1" code="TREE" desc="TREE OAK">550 102.5 50.5</CgPoint>
    <CgPoint name="2" code="TREE">510 97</CgPoint>
    <CgPoint name="3" code="EDGE, OLD">450 100 47.25</CgPoint>
    <CgPoint name="4" code="BUSH">700 100 60</CgPoint>
    <CgPoint name="5" code="EDGE">550 90 50.5</CgPoint>
  </CgPoints>
  <Surfaces><Surface name="Ground"><Definition surfType="TIN"><Pnts>
    <P id="1">500 60 10</P><P id="2">500 140 14</P><P id="3">580 140 22</P><P id="4">580 60 18</P>
  </Pnts><Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface></Surfaces>
</LandXML>
)";

/// Runs lvxhost beside that drawing, which is "small.xml".
class BareDrawingTest : public testing::Test {
 protected:
  BareDrawingTest() { std::ofstream(folder_ / "small.xml") << kBareDrawing; }

  [[nodiscard]] test::RunResult run(std::vector<std::string> arguments) const {
    test::RunRequest request;
    request.program = std::filesystem::path(test::inBuild("/bin/lvxhost"));
    request.folder = folder_.path();
    request.arguments = std::move(arguments);
    request.environment = {{"SOURCE_DATE_EPOCH", "86400"}};
    return test::runProgram(request);
  }
  /// `command` over the drawing, against Axis, into "road" as text, with `more` behind it.
  [[nodiscard]] test::RunResult report(const std::string& command, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments{command, "small.xml", "--alignment", "Axis",       "--out",
                                       "road",  "--forms",   "txt",         "--overwrite"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(std::move(arguments));
  }
  [[nodiscard]] std::string text() const { return test::fileBytes(folder_ / "road.txt"); }
  [[nodiscard]] bool isWritten() const { return std::filesystem::exists(folder_ / "road.txt"); }

  test::TemporaryFolder folder_;
};

}  // namespace lvx::cli
