#pragma once

#include <string>
#include <vector>

/// Small drawings with a corridor in all the forms in which files come.
namespace lvx::landxml::testing {

struct CorridorForm {
  const char* name;
  std::string bytes;
};

inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

/// A drawing of ours: a baseline with a profile and two regions, one without a profile, an added and a computed station.
inline std::string ownCorridor() {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The road along the brook -->
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" date="2026-01-15" version="1.2">
  <Units><Metric linearUnit="meter" angularUnit="decimal degrees"/></Units>
  <Project name="Brook"/>
  <FeatureDictionary name="lvx" version="1"/>
  <CgPoints><CgPoint name="1" code="TR" desc="Oak">10 20 30</CgPoint><CgPoint name="A,B">11 21</CgPoint></CgPoints>
  <Alignments name="North">
    <Alignment name="CL" length="300" staStart="100">
      <CoordGeom><Line><Start>0 0</Start><End>300 0</End></Line></CoordGeom>
      <Profile><ProfAlign name="FG"><PVI>100 50</PVI><ParaCurve length="40">200 51.7</ParaCurve><PVI>400 49</PVI></ProfAlign></Profile>
      <CrossSects name="SL"><CrossSect sta="150" name="1+50"/></CrossSects>
      <CrossSects name="Main | BL | R1">
        <CrossSect sta="100">
          <DesignCrossSectSurf name="Pave,Top" side="both" closedArea="false"><CrossSectPnt code="ETW">-3.5 49.93</CrossSectPnt><CrossSectPnt code="Crown,Top">0 50</CrossSectPnt></DesignCrossSectSurf>
          <DesignCrossSectSurf name="Slope" side="right" material="soil"><CrossSectPnt code="ETW">3.5 49.93</CrossSectPnt><CrossSectPnt code="Day%2Clight">6.5 48.93</CrossSectPnt></DesignCrossSectSurf>
        </CrossSect>
        <CrossSect sta="150.00" name="Culvert">
          <DesignCrossSectSurf name="Pave,Top" side="both"><CrossSectPnt code="ETW">-3.5 50.93</CrossSectPnt><CrossSectPnt code="Crown,Top">0 51</CrossSectPnt></DesignCrossSectSurf>
          <Feature code="lvx_section" source="lvx"><Property label="origin" value="computed"/></Feature>
        </CrossSect> <!-- flow 1.2 m3/s -->
        <CrossSect sta="200">
          <DesignCrossSectSurf name="Pave,Top" side="both"><CrossSectPnt code="ETW">-4 51.6</CrossSectPnt><CrossSectPnt code="Crown,Top">0 51.7</CrossSectPnt></DesignCrossSectSurf>
        </CrossSect>
        <Feature code="lvx_corridorSections" source="lvx"><Property label="elevation" value="absolute"/></Feature>
      </CrossSects>
      <CrossSects name="Bare">
        <CrossSect sta="210"><DesignCrossSectSurf name="Deck"><CrossSectPnt>-5 0.5</CrossSectPnt><CrossSectPnt>5 0.5</CrossSectPnt></DesignCrossSectSurf></CrossSect>
        <Feature code="lvx_corridorSections" source="lvx"><Property label="elevation" value="relative"/></Feature>
      </CrossSects>
      <Feature code="lvx_object" source="lvx"><Property label="handle" value="30"/></Feature>
    </Alignment>
  </Alignments>
  <Surfaces><Surface name="EG"><Definition surfType="TIN"><Pnts><P id="1">0 0 1</P><P id="2">9 0 1</P><P id="3">0 9 1</P></Pnts><Faces><F>1 2 3</F></Faces></Definition></Surface></Surfaces>
  <Roadways>
    <Roadway name="Main" alignmentRefs="CL">
      <Feature code="lvx_corridor" source="lvx"><Property label="handle" value="70"/>
        <Feature name="BL" code="lvx_baseline" source="lvx"><Property label="alignment" value="CL"/><Property label="profile" value="FG"/>
          <Feature name="R1" code="lvx_region" source="lvx"><Property label="staStart" value="100"/><Property label="staEnd" value="200"/><Property label="crossSects" value="Main | BL | R1"/><Property label="stations" value="100.000 150 175.5 200"/>
            <Feature name="Culvert" code="lvx_addedStation" source="lvx"><Property label="sta" value="150"/></Feature>
            <Feature name="Pending" code="lvx_addedStation" source="lvx"><Property label="sta" value="175.5"/></Feature>
          </Feature>
        </Feature>
        <Feature name="BL 2" code="lvx_baseline" source="lvx"><Property label="alignment" value="CL"/>
          <Feature name="R2" code="lvx_region" source="lvx"><Property label="staStart" value="200"/><Property label="staEnd" value="300"/><Property label="crossSects" value="Bare"/></Feature>
        </Feature>
      </Feature>
    </Roadway>
  </Roadways>
</LandXML>
)";
}

/// Another program's drawing: two alignments with design sections, one named by a Roadway, collections without a name
/// and with names that repeat, codes with commas.
inline std::string otherCorridor() {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
	<Units><Metric linearUnit="meter" angularUnit="radians"/></Units>
	<Project name="Other"><Feature code="their" source="them"/></Project>
	<CgPoints name="Trees" code="TR"><CgPoint name="1" desc="Oak">10 20 30</CgPoint><CgPoint name="2" code="ASH">11 21</CgPoint></CgPoints>
	<Alignments name="Site">
		<Alignment name="A" length="200" staStart="0">
			<CoordGeom><Line><Start>0 0</Start><End>200 0</End></Line></CoordGeom>
			<Profile><ProfAlign name="FG"><PVI>0 10</PVI><PVI>200 20</PVI></ProfAlign><ProfSurf name="EG"><PntList2D>0 9 200 19</PntList2D></ProfSurf></Profile>
			<CrossSects>
				<CrossSect sta="0"><DesignCrossSectSurf name="Road, top" side="left"><CrossSectPnt code="E,1">-4 9.9</CrossSectPnt><CrossSectPnt>0 10</CrossSectPnt></DesignCrossSectSurf></CrossSect>
				<CrossSect sta="100"><DesignCrossSectSurf name="Road, top" side="left"><CrossSectPnt code="E,1">-4 14.9</CrossSectPnt><CrossSectPnt>0 15</CrossSectPnt></DesignCrossSectSurf></CrossSect>
			</CrossSects>
			<CrossSects name="X"><CrossSect sta="120"><DesignCrossSectSurf name="Left"><CrossSectPnt>-2 16</CrossSectPnt><CrossSectPnt>0 16</CrossSectPnt></DesignCrossSectSurf></CrossSect></CrossSects>
			<CrossSects name="X"><CrossSect sta="140"><DesignCrossSectSurf name="Right"><CrossSectPnt>0 17</CrossSectPnt><CrossSectPnt>3 17</CrossSectPnt></DesignCrossSectSurf></CrossSect><CrossSect sta="199"/></CrossSects>
		</Alignment>
		<Alignment name="B" length="50" staStart="0"><CoordGeom><Line><Start>0 50</Start><End>50 50</End></Line></CoordGeom><CrossSects name="Y"><CrossSect sta="0"><DesignCrossSectSurf name="Road"><CrossSectPnt>-4 1</CrossSectPnt><CrossSectPnt>0 1</CrossSectPnt></DesignCrossSectSurf></CrossSect></CrossSects></Alignment>
	</Alignments>
	<Surfaces><Surface name="EG"><Definition surfType="TIN"><Pnts><P id="1">0 0 1</P><P id="2">9 0 1</P><P id="3">0 9 1</P></Pnts><Faces><F>1 2 3</F></Faces></Definition></Surface></Surfaces>
	<Roadways><Roadway name="Ring" alignmentRefs="B"/></Roadways>
</LandXML>
)";
}

inline std::string withPrefix(std::string text) {
  text = replaced(text, "</", "\x01");
  text = replaced(text, "<!--", "\x02");
  text = replaced(text, "<?", "\x03");
  text = replaced(text, "<", "<lx:");
  text = replaced(text, "\x01", "</lx:");
  text = replaced(text, "\x02", "<!--");
  text = replaced(text, "\x03", "<?");
  return replaced(text, "xmlns=", "xmlns:lx=");
}

/// As a version that knows no names of Features.
inline std::string withoutFeatureNames(std::string text, const std::string& version) {
  for (const std::string name : {"BL 2", "BL", "R1", "R2", "Culvert", "Pending"}) {
    const std::string tail = "source=\"lvx\">";
    for (const std::string code : {"lvx_baseline", "lvx_region", "lvx_addedStation"}) {
      text = replaced(text, "<Feature name=\"" + name + "\" code=\"" + code + "\" " + tail,
                      "<Feature code=\"" + code + "\" " + tail + "<Property label=\"name\" value=\"" + name + "\"/>");
    }
  }
  return replaced(replaced(text, "LandXML-1.2", "LandXML-" + version), "version=\"1.2\"",
                  "version=\"" + version + "\"");
}

/// All on one line.
inline std::string flat(const std::string& text) {
  std::string result;
  bool atLineStart = true;
  for (const char c : text) {
    if (c == '\n') {
      atLineStart = true;
    } else if (!atLineStart || (c != ' ' && c != '\t')) {
      result += c;
      atLineStart = false;
    }
  }
  return result;
}

inline std::vector<CorridorForm> corridorForms() {
  const std::string own = ownCorridor();
  const std::string other = otherCorridor();
  const std::string latin = replaced(own, "UTF-8", "ISO-8859-1");
  return {
      {"Own", own},
      {"Other", other},
      {"OwnPrefixed", withPrefix(own)},
      {"OtherPrefixed", withPrefix(other)},
      {"Own11", withoutFeatureNames(own, "1.1")},
      {"Own10", withoutFeatureNames(own, "1.0")},
      {"Other11", withoutFeatureNames(other, "1.1")},
      {"OwnWindowsLines", replaced(own, "\n", "\r\n")},
      {"OtherDoubledReturns", replaced(other, "\n", "\r\r\n")},
      {"OwnFlat", flat(own)},
      {"OtherFlat", flat(other)},
      {"OwnMarked", "\xEF\xBB\xBF" + own},
      {"OwnUndeclared", own.substr(own.find("<LandXML"))},
      {"OwnLatin", replaced(latin, "Brook", "B\xF6scher\x80")},
      {"OwnBrokenUtf8", replaced(own, "Brook", "B\xF6scher \xC3\xB6")},
      {"OtherLatin", replaced(replaced(other, "UTF-8", "ISO-8859-1"), "Ring",
                              "Stra\xDF"
                              "e")},
      {"OwnSpread", replaced(replaced(own, "<CrossSectPnt", "\n            <CrossSectPnt"), "</DesignCross",
                             "\n          </DesignCross")},
  };
}

}  // namespace lvx::landxml::testing
