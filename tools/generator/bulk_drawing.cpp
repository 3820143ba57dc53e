#include "generator/bulk_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

#include "generator/deterministic.h"
#include "generator/drawing_text.h"

namespace lvx::generator {
namespace {

constexpr std::uint64_t kSeed = 7;

/// Lengths of an alignment's parts, in metres.
constexpr double kLength = 100'000.0;
/// Points of a profile or polyline among many.
constexpr std::uint64_t kPoints = 4'000;

void beginAlignment(TextOutput& out, std::uint64_t number) {
  out << "    <Alignment name=\"Road ";
  out.integer(static_cast<std::int64_t>(number + 1)) << "\" length=\"";
  out.fixed(kLength, 3) << "\" staStart=\"0\">\n";
}

void writeStraight(TextOutput& out) {
  out << "      <CoordGeom>\n        <Line length=\"";
  out.fixed(kLength, 3) << "\"><Start>5000.000 2000.000</Start><End>5000.000 ";
  out.fixed(2000.0 + kLength, 3) << "</End></Line>\n      </CoordGeom>\n";
}

double height(std::uint64_t index) { return 400.0 + 20.0 * noise(kSeed, index); }

void writeSurface(TextOutput& out, std::uint64_t bytes) {
  // A point and its two faces take some 97 bytes.
  const auto side = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(bytes) / 97.0)) + 2;
  out << "  <Surfaces>\n    <Surface name=\"Ground\">\n      <Definition surfType=\"TIN\">\n        <Pnts>\n";
  for (std::uint64_t i = 0; i < side * side; ++i) {
    out << "          <P id=\"";
    out.integer(static_cast<std::int64_t>(i + 1)) << "\">";
    (out.fixed(5000.0 + 2.0 * static_cast<double>(i / side) + noise(kSeed + 1, i), 4) << ' ')
            .fixed(2000.0 + 2.0 * static_cast<double>(i % side) + noise(kSeed + 2, i), 4)
        << ' ';
    out.fixed(height(i), 4) << "</P>\n";
  }
  out << "        </Pnts>\n        <Faces>\n";
  for (std::uint64_t row = 0; row + 1 < side; ++row) {
    for (std::uint64_t column = 0; column + 1 < side; ++column) {
      const auto corner = static_cast<std::int64_t>(row * side + column + 1);
      const auto above = corner + static_cast<std::int64_t>(side);
      for (const auto& face : {std::array{corner, corner + 1, above + 1}, std::array{corner, above + 1, above}}) {
        out << "          <F>";
        (out.integer(face[0]) << ' ').integer(face[1]) << ' ';
        out.integer(face[2]) << "</F>\n";
      }
    }
  }
  out << "        </Faces>\n      </Definition>\n    </Surface>\n  </Surfaces>\n";
}

void beginSection(TextOutput& out, std::uint64_t index, std::uint64_t count) {
  const double station = kLength * static_cast<double>(index) / static_cast<double>(count);
  out << "        <CrossSect sta=\"";
  out.fixed(station, 3) << "\" name=\"";
  writeStationName(out, station);
  out << "\">\n";
}

void writeSections(TextOutput& out, std::uint64_t bytes, bool isDesign) {
  constexpr std::array<std::string_view, 6> kParts{"Pave", "Shoulder", "Ditch", "Slope", "Base", "Subbase"};
  constexpr std::array<std::string_view, 8> kCodes{"ETW",      "Crown",    "ES",        "Hinge",
                                                   "Daylight", "Ditch_In", "Ditch_Out", "EPS"};
  const std::uint64_t count = bytes / (isDesign ? 3'600U : 1'750U);
  out << "  <Alignments name=\"Site\">\n";
  beginAlignment(out, 0);
  writeStraight(out);
  out << "      <CrossSects name=\"Sections\">\n";
  for (std::uint64_t i = 0; i < count; ++i) {
    beginSection(out, i, count);
    if (!isDesign) {
      out << "          <CrossSectSurf name=\"Existing ground\"><PntList2D>";
      for (int point = -50; point < 50; ++point) {
        (out.fixed(point, 3) << ' ').fixed(height(100 * i + static_cast<std::uint64_t>(point + 50)), 3) << ' ';
      }
      out << "</PntList2D></CrossSectSurf>\n";
    } else {
      for (std::size_t part = 0; part < kParts.size(); ++part) {
        out << "          <DesignCrossSectSurf name=\"" << kParts.at(part) << "\" side=\"both\">\n";
        for (std::uint64_t point = 0; point < 8; ++point) {
          out << "            <CrossSectPnt code=\"" << kCodes.at((point + part + i) % kCodes.size()) << "\">";
          (out.fixed(2.5 * static_cast<double>(point) - 10.0, 3) << ' ').fixed(height(50 * i + 8 * part + point), 3)
              << "</CrossSectPnt>\n";
        }
        out << "          </DesignCrossSectSurf>\n";
      }
    }
    out << "        </CrossSect>\n";
  }
  out << "      </CrossSects>\n    </Alignment>\n  </Alignments>\n";
}

void writePoints(TextOutput& out, std::uint64_t bytes, bool hasGroups) {
  constexpr std::array<std::string_view, 5> kWords{"Edge of pavement", "Manhole, storm water", "Oak", "Ground shot",
                                                   "Pole, timber"};
  const std::uint64_t count = bytes / (hasGroups ? 124U : 96U);
  out << "  <CgPoints name=\"_All\">\n";
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto kind = static_cast<std::size_t>(5.0 * noise(kSeed, i));
    out << "    <CgPoint name=\"";
    out.integer(static_cast<std::int64_t>(i + 1)) << "\" code=\"C";
    out.integer(static_cast<std::int64_t>(kind)) << "\" desc=\"" << kWords.at(kind) << "\">";
    (out.fixed(650'000.0 + 90'000.0 * noise(kSeed + 1, i), 4) << ' ').fixed(20'000.0 * noise(kSeed + 2, i), 4) << ' ';
    out.fixed(height(i), 4) << "</CgPoint>\n";
  }
  out << "  </CgPoints>\n";
  if (!hasGroups) return;
  out << "  <CgPoints name=\"All points\">\n";
  for (std::uint64_t i = 0; i < count; ++i) {
    out << "    <CgPoint pntRef=\"";
    out.integer(static_cast<std::int64_t>(i + 1)) << "\"/>\n";
  }
  out << "  </CgPoints>\n";
}

void writeElements(TextOutput& out, std::uint64_t bytes) {
  out << "  <Alignments name=\"Site\">\n";
  beginAlignment(out, 0);
  out << "      <CoordGeom>\n";
  for (std::uint64_t i = 0; i < bytes / 245; ++i) {
    const double from = 100.0 * static_cast<double>(i);
    const auto point = [&](std::string_view name, double north, double east) {
      out << '<' << name << '>';
      (out.fixed(north, 3) << ' ').fixed(east, 3) << "</" << name << '>';
    };
    out << "        <Line dir=\"0.000000\" length=\"60.000\">";
    point("Start", 0.0, from);
    point("End", 0.0, from + 60.0);
    out << "</Line>\n        <Curve rot=\"cw\" radius=\"1000000.000\" length=\"40.000\">";
    point("Start", 0.0, from + 60.0);
    point("Center", -1e6, from + 80.0);
    point("End", 0.0, from + 100.0);
    out << "</Curve>\n";
  }
  out << "      </CoordGeom>\n    </Alignment>\n  </Alignments>\n";
}

void writeAlignments(TextOutput& out, std::uint64_t bytes) {
  out << "  <Alignments name=\"Site\">\n";
  for (std::uint64_t i = 0; i < bytes / 540; ++i) {
    beginAlignment(out, i);
    writeStraight(out);
    out << "      <Profile>\n        <ProfAlign name=\"Design\">\n          <PVI>0.000 400.000</PVI>\n"
           "          <ParaCurve length=\"2000.000\">50000.000 500.000</ParaCurve>\n"
           "          <PVI>100000.000 450.000</PVI>\n        </ProfAlign>\n      </Profile>\n    </Alignment>\n";
  }
  out << "  </Alignments>\n";
}

/// Profiles of `points` each.
void writeProfiles(TextOutput& out, std::uint64_t bytes, bool isDesign, std::uint64_t points) {
  const std::uint64_t count = bytes / (points * (isDesign ? 55U : 18U)) + 1;
  out << "  <Alignments name=\"Site\">\n";
  for (std::uint64_t a = 0; a < count; ++a) {
    beginAlignment(out, a);
    writeStraight(out);
    out << "      <Profile>\n        <" << (isDesign ? "ProfAlign" : "ProfSurf") << " name=\"P\">\n";
    if (!isDesign) out << "          <PntList2D>";
    for (std::uint64_t i = 0; i < points; ++i) {
      const double station = kLength * static_cast<double>(i) / static_cast<double>(points);
      if (isDesign) out << (i % 2 == 0 ? "          <PVI>" : "          <ParaCurve length=\"10.000\">");
      (out.fixed(station, 3) << ' ').fixed(height(points * a + i), 3);
      if (isDesign)
        out << (i % 2 == 0 ? "</PVI>\n" : "</ParaCurve>\n");
      else
        out << ' ';
    }
    if (!isDesign) out << "</PntList2D>\n";
    out << "        </" << (isDesign ? "ProfAlign" : "ProfSurf") << ">\n      </Profile>\n    </Alignment>\n";
  }
  out << "  </Alignments>\n";
}

/// Polylines of `points` each.
void writePolylines(TextOutput& out, std::uint64_t bytes, std::uint64_t points) {
  out << "  <Alignments name=\"Site\">\n";
  for (std::uint64_t a = 0; a < std::max(bytes / (points * 19), std::uint64_t{1}); ++a) {
    beginAlignment(out, a);
    out << "      <CoordGeom>\n        <IrregularLine><PntList2D>";
    for (std::uint64_t i = 0; i < points; ++i) {
      (out.fixed(5000.0 + noise(kSeed, i), 3) << ' ').fixed(2000.0 + 25.0 * static_cast<double>(i), 3) << ' ';
    }
    out << "</PntList2D></IrregularLine>\n      </CoordGeom>\n    </Alignment>\n";
  }
  out << "  </Alignments>\n";
}

}  // namespace

const std::vector<BulkKind>& bulkKinds() {
  static const std::vector<BulkKind> kKinds{
      {"surface", "points and faces of a surface"},
      {"sections", "ground sections"},
      {"design-sections", "design sections, each point with a code"},
      {"points", "points with codes and descriptions"},
      {"point-groups", "the same, all in a group"},
      {"elements", "lines and arcs of an alignment"},
      {"alignments", "short alignments with profiles"},
      {"ground-profiles", "ground profiles"},
      {"design-profiles", "design profiles, each other point with a curve"},
      {"polylines", "alignments that are polylines"},
      {"long-profile", "the ground profile of one alignment"},
      {"long-polyline", "an alignment that is one polyline"},
  };
  return kKinds;
}

void writeBulkDrawing(TextOutput& out, std::string_view kind, std::uint64_t bytes) {
  const auto& kinds = bulkKinds();
  if (std::none_of(kinds.begin(), kinds.end(), [&](const BulkKind& known) { return known.name == kind; })) {
    throw std::invalid_argument("generator: there is no kind '" + std::string(kind) + "'");
  }
  writeHead(out, "Generated drawing", "Local grid");
  out << "  </Project>\n";
  if (bytes == 0) {
    // The frame alone.
  } else if (kind == "surface") {
    writeSurface(out, bytes);
  } else if (kind == "sections" || kind == "design-sections") {
    writeSections(out, bytes, kind == "design-sections");
  } else if (kind == "points" || kind == "point-groups") {
    writePoints(out, bytes, kind == "point-groups");
  } else if (kind == "elements") {
    writeElements(out, bytes);
  } else if (kind == "alignments") {
    writeAlignments(out, bytes);
  } else if (kind == "polylines") {
    writePolylines(out, bytes, kPoints);
  } else if (kind == "long-polyline") {
    writePolylines(out, bytes, bytes / 19 + 2);
  } else if (kind == "long-profile") {
    writeProfiles(out, bytes, false, bytes / 18 + 1);
  } else {
    writeProfiles(out, bytes, kind == "design-profiles", kPoints);
  }
  out << "</LandXML>\n";
}

}  // namespace lvx::generator
