// Reading takes no more than n log n steps in any kind of thing that a drawing holds: each kind is doubled in turn, and what
// the reader does for it is counted, not timed.
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "landxml/reader.h"
#include "step_counter.h"

namespace lvx::landxml {
namespace {

// ---------------------------------------------------------------- drawings of any size

/// `make(i)` for each i below `count`, joined.
template <class Make>
std::string each(std::size_t count, Make make) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += make(std::to_string(i));
  return all;
}

std::string metric(const std::string& content) {
  return "<LandXML version=\"1.2\"><Units><Metric linearUnit=\"meter\"/></Units>" + content + "</LandXML>";
}

std::string ours(const std::string& content) {
  return metric("<FeatureDictionary name=\"lvx\" version=\"1\"/>" + content);
}

std::string alignments(const std::string& content) { return "<Alignments name=\"S\">" + content + "</Alignments>"; }

std::string alignment(const std::string& name, const std::string& content) {
  return "<Alignment name=\"" + name +
         "\" length=\"1000000\" staStart=\"0\"><CoordGeom><Line><Start>0 0</Start><End>1000000 "
         "0</End></Line></CoordGeom>" +
         content + "</Alignment>";
}

std::string road(const std::string& content) { return alignments(alignment("A", content)); }

std::string points(const std::string& content) { return "<CgPoints name=\"All\">" + content + "</CgPoints>"; }

std::string point(const std::string& name) { return "<CgPoint name=\"" + name + "\">1 2 3</CgPoint>"; }

std::string property(const std::string& label, const std::string& value) {
  return "<Property label=\"" + label + "\" value=\"" + value + "\"/>";
}

std::string feature(const std::string& code, const std::string& content, const std::string& name = {}) {
  return "<Feature" + (name.empty() ? std::string() : " name=\"" + name + "\"") + " code=\"" + code +
         "\" source=\"lvx\">" + content + "</Feature>";
}

const std::string kPart =
    "<DesignCrossSectSurf name=\"Pave\"><CrossSectPnt code=\"L\">-1 5</CrossSectPnt><CrossSectPnt "
    "code=\"R\">1 5</CrossSectPnt></DesignCrossSectSurf>";

std::string section(const std::string& station, const std::string& content) {
  return "<CrossSect sta=\"" + station + "\">" + content + "</CrossSect>";
}

std::string sections(const std::string& name, const std::string& content) {
  return "<CrossSects name=\"" + name + "\">" + content + "</CrossSects>";
}

std::string ownSections(const std::string& name, const std::string& content, const std::string& handle = {}) {
  return sections(
      name, content + feature("lvx_corridorSections",
                              property("elevation", "relative") + (handle.empty() ? "" : property("handle", handle))));
}

std::string region(const std::string& name, const std::string& content) {
  return feature("lvx_region", property("staStart", "0") + property("staEnd", "100") + content, name);
}

std::string baseline(const std::string& alignmentName, const std::string& profile, const std::string& content) {
  return feature("lvx_baseline", property("alignment", alignmentName) + property("profile", profile) + content, "B");
}

std::string roadway(const std::string& name, const std::string& refs, const std::string& content) {
  return "<Roadway name=\"" + name + "\" alignmentRefs=\"" + refs + "\">" + content + "</Roadway>";
}

std::string roadways(const std::string& content) { return "<Roadways>" + content + "</Roadways>"; }

std::string corridor(const std::string& content) {
  return roadways(roadway("R", "A", feature("lvx_corridor", content)));
}

std::string surface(const std::string& name, const std::string& pnts, const std::string& faces) {
  return "<Surface name=\"" + name + "\"><Definition surfType=\"TIN\"><Pnts>" + pnts + "</Pnts><Faces>" + faces +
         "</Faces></Definition></Surface>";
}

std::string surfaces(const std::string& content) { return "<Surfaces>" + content + "</Surfaces>"; }

/// A strip of triangles over `count` points in two rows.
std::string strip(const std::string& name, std::size_t count) {
  std::string faces;
  for (std::size_t i = 3; i <= count; ++i)
    faces += "<F>" + std::to_string(i - 2) + " " + std::to_string(i - 1) + " " + std::to_string(i) + "</F>";
  std::string pnts;
  for (std::size_t i = 1; i <= count; ++i)
    pnts += "<P id=\"" + std::to_string(i) + "\">" + std::to_string(i) + " " + std::to_string(i % 2) + " 5</P>";
  return surface(name, pnts, faces);
}

struct Kind {
  const char* name;
  /// A drawing with that many of it.
  std::function<std::string(std::size_t)> drawing;
  /// The count that is doubled twice.
  std::size_t count = 1500;
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

std::vector<Kind> kinds() {
  using S = const std::string&;
  const auto n = [](auto make) { return [make](std::size_t count) { return make(count); }; };
  return {
      // Sites and alignments
      {"Sites",
       n([](auto c) { return metric(each(c, [](S i) { return "<Alignments name=\"S" + i + "\"></Alignments>"; })); })},
      {"SitesListed", n([](auto c) {
         return ours("<Project name=\"P\">" +
                     feature("lvx_sites", each(c, [](S i) { return feature("lvx_site", "", "S" + i); })) +
                     "</Project>");
       })},
      {"SitesOfOneName",
       n([](auto c) { return metric(each(c, [](S i) { return alignments(alignment("A" + i, "")); })); })},
      {"Alignments", n([](auto c) { return metric(alignments(each(c, [](S i) { return alignment("A" + i, ""); }))); })},
      {"AlignmentsOfOneName",
       n([](auto c) { return metric(alignments(each(c, [](S) { return alignment("A", ""); }))); })},
      {"Elements", n([](auto c) {
         return metric(
             alignments("<Alignment name=\"A\" length=\"1\" staStart=\"0\"><CoordGeom>" +
                        each(c, [](S i) { return "<Line><Start>" + i + " 0</Start><End>" + i + ".9 0</End></Line>"; }) +
                        "</CoordGeom></Alignment>"));
       })},
      {"ElementsOfOnePolyline", n([](auto c) {
         return metric(alignments(
             "<Alignment name=\"A\" length=\"1\" staStart=\"0\"><CoordGeom><IrregularLine><PntList2D>" +
             each(c, [](S i) { return i + " 0 "; }) + "</PntList2D></IrregularLine></CoordGeom></Alignment>"));
       })},
      {"ElementsOfAChain", n([](auto c) {
         return metric(points(each(c, [](S i) { return "<CgPoint name=\"p" + i + "\">" + i + " 0</CgPoint>"; })) +
                       alignments("<Alignment name=\"A\" length=\"1\" staStart=\"0\"><CoordGeom><Chain>" +
                                  each(c, [](S i) { return "p" + i + " "; }) + "</Chain></CoordGeom></Alignment>"));
       })},
      {"IntersectionPoints", n([](auto c) {
         return metric(alignments("<Alignment name=\"A\" length=\"1\" staStart=\"0\"><AlignPIs>" +
                                  each(c,
                                       [](S i) {
                                         return "<AlignPI><PI>" + i + "00 " + (i.back() % 2 == 0 ? "0" : "7") +
                                                "</PI></AlignPI>";
                                       }) +
                                  "</AlignPIs></Alignment>"));
       })},
      {"CoordGeoms", n([](auto c) { return metric(road(each(c, [](S) { return "<CoordGeom></CoordGeom>"; }))); })},
      {"Equations", n([](auto c) {
         return metric(road(each(c, [](S i) { return "<StaEquation staInternal=\"" + i + "\" staAhead=\"5\"/>"; })));
       })},
      // Profiles
      {"Profiles", n([](auto c) {
         return metric(road(
             "<Profile>" +
             each(c, [](S i) { return "<ProfAlign name=\"P" + i + "\"><PVI>0 1</PVI><PVI>9 1</PVI></ProfAlign>"; }) +
             "</Profile>"));
       })},
      {"ProfilesOfOneName", n([](auto c) {
         return metric(road(each(c, [](S) {
           return "<Profile><ProfSurf name=\"P\"><PntList2D>0 1 9 1</PntList2D></ProfSurf></Profile>";
         })));
       })},
      {"PointsOfAProfile", n([](auto c) {
         return metric(
             road("<Profile><ProfAlign name=\"P\">" +
                  each(c, [](S i) { return "<ParaCurve length=\"900\">" + i + "0 1" + i.back() + "</ParaCurve>"; }) +
                  "</ProfAlign></Profile>"));
       })},
      {"UnsymmetricCurves", n([](auto c) {
         return metric(road("<Profile><ProfAlign name=\"P\">" +
                            each(c,
                                 [](S i) {
                                   return "<UnsymParaCurve lengthIn=\"9\" lengthOut=\"8\">" + i + "0 1" + i.back() +
                                          "</UnsymParaCurve>";
                                 }) +
                            "</ProfAlign></Profile>"));
       })},
      {"PointsAtOneStation", n([](auto c) {
         return metric(road("<Profile><ProfAlign name=\"P\">" + each(c, [](S i) { return "<PVI>5 " + i + "</PVI>"; }) +
                            "</ProfAlign></Profile>"));
       })},
      {"PiecesOfAGroundProfile", n([](auto c) {
         return metric(road("<Profile><ProfSurf name=\"P\">" +
                            each(c, [](S i) { return "<PntList2D>" + i + " 1 " + i + ".5 1</PntList2D>"; }) +
                            "</ProfSurf></Profile>"));
       })},
      // Groups and lines
      {"Groups",
       n([](auto c) { return metric(road(each(c, [](S i) { return sections("G" + i, section("5", "")); }))); })},
      {"GroupsOfOneName",
       n([](auto c) { return metric(road(each(c, [](S) { return sections("G", section("5", "")); }))); })},
      {"GroupsWithoutName",
       n([](auto c) { return metric(road(each(c, [](S) { return "<CrossSects></CrossSects>"; }))); })},
      {"Lines", n([](auto c) { return metric(road(sections("G", each(c, [](S i) { return section(i, ""); })))); })},
      {"LinesAtOneStation",
       n([](auto c) { return metric(road(sections("G", each(c, [](S) { return section("5", ""); })))); })},
      {"VerticesOfALine", n([](auto c) {
         return ours(road(
             sections("G", section("5", feature("lvx_sampleLine",
                                                property("vertices", each(c, [](S i) { return "0 " + i + " "; })))) +
                               feature("lvx_sampleLineGroup", ""))));
       })},
      {"ListsOfALine", n([](auto c) {
         return metric(road(sections("G", section("5", each(c, [](S i) {
                                                    return "<CrossSectSurf name=\"G\"><PntList2D>" + i +
                                                           " 1</PntList2D></CrossSectSurf>";
                                                  })))));
       })},
      // Corridors
      {"Sections",
       n([](auto c) { return metric(road(sections("G", each(c, [](S i) { return section(i, kPart); })))); })},
      {"SectionsAtOneStation",
       n([](auto c) { return metric(road(sections("G", each(c, [](S) { return section("5", kPart); })))); })},
      {"Parts", n([](auto c) { return metric(road(sections("G", section("5", each(c, [](S) { return kPart; }))))); })},
      {"PointsOfAPart", n([](auto c) {
         return metric(road(sections("G", section("5", "<DesignCrossSectSurf name=\"P\">" + each(c, [](S i) {
                                                         return "<CrossSectPnt code=\"c\">" + i + " 1</CrossSectPnt>";
                                                       }) + "</DesignCrossSectSurf>"))));
       })},
      {"Codes", n([](auto c) {
         return ours(road(ownSections("G", section("5", "<DesignCrossSectSurf name=\"" +
                                                            each(c, [](S i) { return "c" + i + ","; }) + "\"/>"))) +
                     corridor(baseline("A", "", region("R", property("crossSects", "G")))));
       })},
      {"CodesOfAllKinds", n([](auto c) {
         return metric(road(sections("G", each(c, [](S i) {
                                       return section(i,
                                                      "<DesignCrossSectSurf name=\"c" + i +
                                                          "\"><CrossSectPnt>1 1</CrossSectPnt></DesignCrossSectSurf>");
                                     }))));
       })},
      {"AlignmentsWithDesign", n([](auto c) {
         return metric(alignments(each(c, [](S i) { return alignment("A" + i, sections("G", section("5", kPart))); })));
       })},
      {"CollectionsWithDesign",
       n([](auto c) { return metric(road(each(c, [](S i) { return sections("G" + i, section(i, kPart)); }))); })},
      {"RoadwaysOfOneAlignment", n([](auto c) {
         return metric(road(sections("G", section("5", kPart))) +
                       roadways(each(c, [](S i) { return roadway("R" + i, "B C D", ""); })));
       })},
      {"RoadwaysAndTheirAlignments", n([](auto c) {
         return metric(alignments(each(c, [](S i) { return alignment("A" + i, sections("G", section("5", kPart))); })) +
                       roadways(each(c, [](S i) { return roadway("R" + i, "A" + i, ""); })));
       })},
      {"ReferencesOfARoadway", n([](auto c) {
         return metric(alignments(each(c, [](S i) { return alignment("A" + i, sections("G", section("5", kPart))); })) +
                       roadways(roadway("R", each(c, [](S i) { return "A" + i + " "; }), "")));
       })},
      {"ProfilesReferredTo", n([](auto c) {
         return metric(road("<Profile>" +
                            each(c, [](S i) { return "<ProfAlign name=\"P" + i + "\"><PVI>0 1</PVI></ProfAlign>"; }) +
                            "</Profile>" + each(c, [](S i) {
                              return sections("G" + i, section(i, kPart) + "<Feature>" +
                                                           property("profAlignRefs", "Q" + i) + "</Feature>");
                            })));
       })},
      {"Corridors", n([](auto c) {
         return ours(
             alignments(each(c, [](S i) { return alignment("A" + i, ownSections("G", section("5", kPart))); })) +
             roadways(each(c, [](S i) {
               return roadway(
                   "R" + i, "A" + i,
                   feature("lvx_corridor", property("handle", i + "00") +
                                               baseline("A" + i, "", region("R", property("crossSects", "G")))));
             })));
       })},
      {"CorridorsByHandle", n([](auto c) {
         return ours(alignments(each(
                         c, [](S i) { return alignment("A", feature("lvx_object", property("handle", "A" + i))); })) +
                     roadways(each(c, [](S i) {
                       return roadway(
                           "R" + i, "A",
                           feature("lvx_corridor", feature("lvx_baseline", property("alignmentHandle", "A" + i))));
                     })));
       })},
      {"Baselines", n([](auto c) {
         return ours(road("<Profile>" +
                          each(c,
                               [](S i) {
                                 return "<ProfAlign name=\"P" + i + "\"><PVI>0 1</PVI>" +
                                        feature("lvx_object", property("handle", "B" + i)) + "</ProfAlign>";
                               }) +
                          "</Profile>") +
                     corridor(each(c, [](S i) { return baseline("A", "P" + i, ""); }) + each(c, [](S i) {
                                return feature("lvx_baseline",
                                               property("alignment", "A") + property("profileHandle", "B" + i));
                              })));
       })},
      {"Regions", n([](auto c) {
         return ours(
             road(each(c, [](S i) { return ownSections("G" + i, section("5", kPart)); })) +
             corridor(baseline("A", "", each(c, [](S i) { return region("R", property("crossSects", "G" + i)); }))));
       })},
      {"RegionsByHandle", n([](auto c) {
         return ours(road(each(c, [](S i) { return ownSections("G", section("5", kPart), "C" + i); })) +
                     corridor(baseline(
                         "A", "", each(c, [](S i) { return region("R", property("crossSectsHandle", "C" + i)); }))));
       })},
      {"RegionsWithoutSections", n([](auto c) {
         return ours(
             road(each(c, [](S i) { return sections("G" + i, section("5", kPart)); })) +
             corridor(baseline("A", "", each(c, [](S i) { return region("R", property("crossSects", "H" + i)); }))));
       })},
      {"Stations", n([](auto c) {
         return ours(road(ownSections("G", section("5", kPart))) +
                     corridor(baseline("A", "",
                                       region("R", property("crossSects", "G") +
                                                       property("stations", each(c, [](S i) { return i + " "; }))))));
       })},
      {"StationsAdded", n([](auto c) {
         return ours(road(ownSections("G", each(c, [](S i) { return section(i, kPart); }))) +
                     corridor(baseline("A", "", region("R", property("crossSects", "G") + each(c, [](S i) {
                                                              return feature("lvx_addedStation",
                                                                             property("sta", i + ".5"), "L");
                                                            })))));
       })},
      // Points
      {"Points", n([](auto c) { return metric(points(each(c, [](S i) { return point(i); }))); })},
      {"PointsWithoutNumbers", n([](auto c) { return metric(points(each(c, [](S i) { return point("P" + i); }))); })},
      {"PointsOfOneNumber", n([](auto c) { return metric(points(each(c, [](S) { return point("7"); }))); })},
      {"PointsWithTheLastNumber", n([](auto c) {
         return metric(points(point("2147483647") + each(c, [](S i) { return point(i) + point("x"); })));
       })},
      {"CollectionsOfPoints", n([](auto c) {
         return metric(each(c, [](S i) { return "<CgPoints name=\"C" + i + "\">" + point(i) + "</CgPoints>"; }));
       })},
      {"NestedCollectionsOfPoints", n([](auto c) {
         return metric("<CgPoints>" + each(c, [](S i) { return "<CgPoints name=\"C\">" + point(i) + "</CgPoints>"; }) +
                       "</CgPoints>");
       })},
      {"FeaturesOfPoints", n([](auto c) {
         return ours(points(each(c, [](S i) {
           return "<CgPoint name=\"" + i + "\" featureRef=\"f" + i + "\">1 2</CgPoint>" +
                  feature("lvx_point", property("name", "n" + i), "f" + i);
         })));
       })},
      {"PointsOfOneFeature", n([](auto c) {
         return ours(points(each(c, [](S i) { return "<CgPoint name=\"" + i + "\" featureRef=\"f\">1 2</CgPoint>"; }) +
                            feature("lvx_point", each(c, [](S i) { return property("p" + i, "1"); }), "f")));
       })},
      {"GroupsOfPoints", n([](auto c) {
         return ours(points(each(c, [](S i) { return point(i); })) + each(c, [](S i) {
                       return "<CgPoints name=\"G" + i + "\"><CgPoint pntRef=\"" + i + "\"/></CgPoints>";
                     }));
       })},
      {"GroupsOfNumbers", n([](auto c) {
         return ours(points(each(c, [](S i) { return point(i); })) + each(c, [](S i) {
                       return "<CgPoints name=\"G" + i + "\">" + feature("lvx_pointGroup", property("numbers", i)) +
                              "</CgPoints>";
                     }));
       })},
      {"NumbersOfAGroup", n([](auto c) {
         return ours(points(each(c, [](S i) { return point(i); })) + "<CgPoints name=\"G\">" +
                     feature("lvx_pointGroup", property("numbers", each(c, [](S i) { return i + " "; }))) +
                     "</CgPoints>");
       })},
      {"References", n([](auto c) {
         return ours(points(each(c, [](S i) { return point(i); })) + "<CgPoints name=\"G\">" +
                     each(c, [](S i) { return "<CgPoint pntRef=\"" + i + "\"/>"; }) + "</CgPoints>");
       })},
      {"ReferencesToOtherPoints", n([](auto c) {
         return metric(alignments("<Alignment name=\"A\" length=\"1\" staStart=\"0\"><CoordGeom>" +
                                  each(c,
                                       [](S i) {
                                         return "<Line><Start name=\"s" + i + "\">" + i + " 0</Start><End pntRef=\"s" +
                                                i + "\"/></Line>";
                                       }) +
                                  "</CoordGeom></Alignment>"));
       })},
      {"ReferencesInAChain", n([](auto c) {
         return metric(points(point("p0") + each(c, [](S i) {
                                return "<CgPoint name=\"p" + std::to_string(std::stoul(i) + 1) + "\" pntRef=\"p" + i +
                                       "\"/>";
                              })));
       })},
      {"ReferencesToNothing", n([](auto c) {
         return metric(points(each(c, [](S i) { return "<CgPoint name=\"p" + i + "\" pntRef=\"q" + i + "\"/>"; })));
       })},
      // Surfaces
      {"Surfaces", n([](auto c) { return metric(surfaces(each(c, [](S i) { return strip("T" + i, 3); }))); })},
      {"SurfacesOfOneName", n([](auto c) { return metric(surfaces(each(c, [](S) { return strip("T", 3); }))); })},
      {"PointsAndFaces", n([](auto c) { return metric(surfaces(strip("T", c))); })},
      {"PointsAndFacesOutOfOrder", n([](auto c) {
         return metric(surfaces(surface("T",
                                        each(c,
                                             [](S i) {
                                               return "<P id=\"" + std::to_string(7919 * std::stoul(i) % 1000003 + 1) +
                                                      "\">" + i + " " + (i.back() % 2 == 0 ? "0" : "1") + " 5</P>";
                                             }),
                                        each(c, [](S i) {
                                          const std::size_t k = std::stoul(i);
                                          const auto id = [](std::size_t at) {
                                            return std::to_string(7919 * at % 1000003 + 1);
                                          };
                                          return "<F>" + id(k) + " " + id(k + 1) + " " + id(k + 2) + "</F>";
                                        }))));
       })},
      {"FacesAtOnePoint", n([](auto c) {
         return metric(surfaces(surface(
             "T",
             "<P id=\"1\">0 0 0</P>" +
                 each(c,
                      [](S i) { return "<P id=\"" + std::to_string(std::stoul(i) + 2) + "\">" + i + " 1000 5</P>"; }),
             each(c - 1, [](S i) {
               return "<F>1 " + std::to_string(std::stoul(i) + 2) + " " + std::to_string(std::stoul(i) + 3) + "</F>";
             }))));
       })},
      {"FacesOverOneAnother", n([](auto c) {
         return metric(surfaces(surface("T", "<P id=\"1\">0 0 0</P><P id=\"2\">0 9 0</P><P id=\"3\">9 0 0</P>",
                                        each(c, [](S) { return "<F>1 2 3</F>"; }))));
       })},
      {"FacesWithoutPoints", n([](auto c) {
         return metric(
             surfaces(surface("T", "<P id=\"1\">0 0 0</P>", each(c, [](S i) { return "<F>1 2 " + i + "3</F>"; }))));
       })},
      {"PointsOfASurfaceByReference", n([](auto c) {
         return metric(
             points(each(c, [](S i) { return point("p" + i); })) +
             surfaces(surface("T", each(c, [](S i) { return "<P id=\"" + i + "1\" pntRef=\"p" + i + "\"/>"; }), "")));
       })},
      {"Definitions", n([](auto c) {
         return metric(
             surfaces("<Surface name=\"T\">" +
                      each(c,
                           [](S) {
                             return "<Definition surfType=\"TIN\"><Pnts><P id=\"1\">0 0 0</P></Pnts></Definition>"
                                    "<SourceData><Breaklines><Breakline/></Breaklines></SourceData>";
                           }) +
                      "</Surface>"));
       })},
      // What any part of a file may hold
      {"Features",
       n([](auto c) { return ours(road(each(c, [](S i) { return feature("other", property("a", i)); }))); })},
      {"FeaturesOfAGroup", n([](auto c) {
         return ours(
             road(sections("G", each(c, [](S i) { return feature("other", property("a", i)); }) + section("5", ""))));
       })},
      {"PropertiesOfAFeature", n([](auto c) {
         return ours(road(feature("lvx_object", each(c, [](S i) { return property("p" + i, "1"); }))));
       })},
      {"HandlesOfOneNumber", n([](auto c) {
         return ours(alignments(
             each(c, [](S i) { return alignment("A" + i, feature("lvx_object", property("handle", "7"))); })));
       })},
      {"Handles", n([](auto c) {
         return ours(alignments(each(c, [](S i) {
           return alignment("A" + i, feature("lvx_object", property("handle", "1" + i))) + alignment("B" + i, "");
         })));
       })},
      {"Diagnostics",
       n([](auto c) { return metric(road(sections("G", each(c, [](S i) { return section("x" + i, ""); })))); })},
      {"DiagnosticsWithinOneTag", n([](auto c) {
         return metric(road("<Profile><ProfAlign name=\"P\"" + each(c, [](S i) { return " a" + i + "=\"1\""; }) + ">" +
                            each(c, [](S) { return "<PVI>x</PVI>"; }) + "</ProfAlign></Profile>"));
       })},
      {"DiagnosticsBeyondTheList",
       n([](auto c) { return metric(road(sections("G", each(c, [](S i) { return section("x" + i, ""); })))); }), 12000},
      {"UnknownElements", n([](auto c) { return metric(each(c, [](S) { return "<Other><Inner/></Other>"; })); })},
      {"UnknownElementsOfManyNames",
       n([](auto c) { return metric(each(c, [](S i) { return "<Other" + i + "/>"; })); })},
      {"UnknownElementsOfAnAlignment",
       n([](auto c) { return metric(road(each(c, [](S i) { return "<Other" + i + "/>"; }))); })},
      {"CollectionsPassedOver",
       n([](auto c) { return metric(each(c, [](S) { return "<Parcels><Parcel/></Parcels>"; })); })},
      {"Entities", n([](auto c) { return metric("<Project name=\"" + each(c, [](S) { return "&amp;"; }) + "\"/>"); })},
      {"EntitiesInText",
       n([](auto c) { return metric("<Project name=\"P\">" + each(c, [](S) { return "&#65;"; }) + "</Project>"); })},
      {"Attributes",
       n([](auto c) { return metric("<Project" + each(c, [](S i) { return " a" + i + "=\"" + i + "\""; }) + "/>"); })},
      {"AttributesOnLinesOfTheirOwn", n([](auto c) {
         return metric("<Project" + each(c, [](S i) { return "\n a" + i + "=\"" + i + "\""; }) + "/>");
       })},
      {"AttributesOfAPoint", n([](auto c) {
         return metric(points("<CgPoint" + each(c, [](S i) { return " a" + i + "=\"" + i + "\""; }) +
                              " name=\"1\">1 2</CgPoint>"));
       })},
      {"Units",
       n([](auto c) { return metric(each(c, [](S) { return "<Units><Metric linearUnit=\"meter\"/></Units>"; })); })},
      {"Depth", n([](auto c) {
         std::string text;
         for (std::size_t i = 0; i < c; ++i) text += "<CgPoints name=\"N" + std::to_string(i) + "\">" + point("1");
         for (std::size_t i = 0; i < c; ++i) text += "</CgPoints>";
         return metric(text);
       }),
       48},
      {"DepthOfUnknownElements", n([](auto c) {
         std::string text;
         for (std::size_t i = 0; i < c; ++i) text += "<Other>";
         for (std::size_t i = 0; i < c; ++i) text += "</Other>";
         return metric(text);
       }),
       48},
      {"Text", n([](auto c) { return metric("<Project name=\"P\">" + std::string(100 * c, 'x') + "</Project>"); })},
      {"TextInPieces", n([](auto c) {
         return metric("<Project name=\"P\">" + each(c, [](S) { return "x<!-- c --><![CDATA[y]]>"; }) + "</Project>");
       })},
      {"Blanks", n([](auto c) { return metric("<Project name=\"P\">" + std::string(100 * c, ' ') + "</Project>"); })},
      {"Comments", n([](auto c) { return metric(each(c, [](S) { return "<!-- c -->"; })); })},
      {"OneLongTag", n([](auto c) { return metric("<Project name=\"" + std::string(10000 * c, 'x') + "\"/>"); })},
      {"BadBytes", n([](auto c) { return metric("<Project name=\"" + std::string(c, '\xE4') + "\"/>"); })},
  };
}

// ---------------------------------------------------------------- counting

std::uint64_t stepsFor(const std::string& text) {
  const std::uint64_t before = stepsSoFar();
  const civil::Drawing drawing = readDrawingText(text, "road.xml");
  const civil::DrawingIndex index(drawing);
  return stepsSoFar() - before;
}

class ReadingWork : public testing::TestWithParam<Kind> {};

TEST_P(ReadingWork, GrowsNoFasterThanNLogN) {
  const Kind& kind = GetParam();
  (void)stepsFor(kind.drawing(1));  // what is made once in a process
  std::array<std::uint64_t, 3> counted{};
  for (std::size_t i = 0; i < counted.size(); ++i) counted[i] = stepsFor(kind.drawing(kind.count << i));
  // From n to 2 n things, and from 2 n to 4 n: twice as many more, for n log n 2.2 times, for n squared four times.
  const std::uint64_t first = counted[1] - counted[0];
  const std::uint64_t second = counted[2] - counted[1];
  EXPECT_GT(counted[1], counted[0]) << "nothing is counted";
  EXPECT_LE(static_cast<double>(second), 2.5 * static_cast<double>(first))
      << counted[0] << ", " << counted[1] << ", " << counted[2] << " steps for " << kind.count << ", " << 2 * kind.count
      << ", " << 4 * kind.count;
}

INSTANTIATE_TEST_SUITE_P(Of, ReadingWork, testing::ValuesIn(kinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace lvx::landxml
