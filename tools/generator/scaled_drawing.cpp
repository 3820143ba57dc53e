#include "generator/scaled_drawing.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "generator/deterministic.h"
#include "generator/drawing_text.h"
#include "generator/road_geometry.h"

namespace lvx::generator {
namespace {

constexpr double kStartStation = 1000.0;
constexpr double kHalfWidth = 50.0;  ///< of sample lines
constexpr double kMargin = 70.0;     ///< of the surface around the alignment; more than half a sample line
constexpr std::uint64_t kAlignmentHandle = 0x20;
constexpr std::uint64_t kProfileHandle = 0x21;

/// Lines, and bends to the right and left by turns, so that a road of any length goes east.
RoadPlan makeRoad(std::uint32_t elements) {
  constexpr double kRadius = 150.0;
  RoadPlan road(kStartStation, {48'200.0, 12'300.0}, 17.0);
  for (std::uint32_t i = 0; i < elements; ++i) {
    const double radius = i / 4 % 2 == 0 ? -kRadius : kRadius;
    switch (i % 4) {
      case 0:
        road.line(60.0);
        break;
      case 1:
        road.clothoid(40.0, 0.0, radius);
        break;
      case 2:
        road.arc(50.0, radius);
        break;
      default:
        road.clothoid(40.0, radius, 0.0);
        break;
    }
  }
  return road;
}

DesignProfile makeProfile(const RoadPlan& road, std::uint32_t curves) {
  DesignProfile profile;
  // Ends a little after the road, so that the last station stands on a tangent.
  const double end = std::ceil(road.endStation()) + 1.0;
  const double spacing = (end - road.startStation()) / (curves + 1);
  for (std::uint32_t i = 0; i <= curves + 1; ++i) {
    const double length = i == 0 || i == curves + 1 ? 0.0 : roundedTo(0.3 * spacing, 3);
    const double rise = i % 2 == 0 ? 0.0 : std::min(0.03 * spacing, 6.0);
    profile.add(roundedTo(road.startStation() + spacing * i, 3), roundedTo(412.0 + rise, 3), length, length);
  }
  return profile;
}

/// The surface: a grid whose inner vertices are moved a little, cells cut into two triangles each, row by row.
class Grid {
 public:
  Grid(const RoadPlan& road, std::uint64_t triangles, std::uint64_t seed) : triangles_(triangles), seed_(seed) {
    double minX = 1e300;
    double minY = 1e300;
    double maxX = -1e300;
    double maxY = -1e300;
    for (std::size_t i = 0; i < road.elementCount(); ++i) {
      for (int part = 0; part <= 4; ++part) {
        const double from = road.stationOfElement(i);
        const Place p = road.poseAt(from + (road.stationOfElement(i + 1) - from) * part / 4.0).place;
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
      }
    }
    west_ = std::floor(minX - kMargin);
    south_ = std::floor(minY - kMargin);
    const double width = std::ceil(maxX + kMargin) - west_;
    const double height = std::ceil(maxY + kMargin) - south_;
    const std::uint64_t cells = (triangles + 1) / 2;
    columns_ =
        std::max<std::uint64_t>(1, static_cast<std::uint64_t>(std::sqrt(static_cast<double>(cells) * width / height)));
    const std::uint64_t rows = (cells + columns_ - 1) / columns_;
    rows_ = rows;
    stepX_ = width / static_cast<double>(columns_);
    stepY_ = height / static_cast<double>(rows_);
  }

  [[nodiscard]] std::uint64_t vertexCount() const { return (columns_ + 1) * (rows_ + 1); }

  struct Vertex {
    double x;
    double y;
    double z;
  };
  [[nodiscard]] Vertex vertex(std::uint64_t index) const {
    const std::uint64_t row = index / (columns_ + 1);
    const std::uint64_t column = index % (columns_ + 1);
    const bool rimX = column == 0 || column == columns_;
    const bool rimY = row == 0 || row == rows_;
    const double shiftX = rimX ? 0.0 : 0.46 * (noise(seed_, 2 * index) - 0.5);
    const double shiftY = rimY ? 0.0 : 0.46 * (noise(seed_, 2 * index + 1) - 0.5);
    const double x = west_ + stepX_ * (static_cast<double>(column) + shiftX);
    const double y = south_ + stepY_ * (static_cast<double>(row) + shiftY);
    const double z = 413.0 + 6.0 * sinCos(x / 170.0).sine * sinCos(y / 110.0).cosine +
                     1.5 * sinCos(x / 37.0 - y / 29.0).sine + 0.1 * noise(seed_ + 1, index);
    return {x, y, z};
  }

  struct Corners {
    std::uint64_t a;
    std::uint64_t b;
    std::uint64_t c;
  };
  [[nodiscard]] Corners triangle(std::uint64_t index) const {
    const std::uint64_t row = index / 2 / columns_;
    const std::uint64_t a = row * (columns_ + 1) + index / 2 % columns_;
    const std::uint64_t above = a + columns_ + 1;
    if (index % 2 == 0) return {a, a + 1, above + 1};
    return {a, above + 1, above};
  }

  [[nodiscard]] std::uint64_t triangleCount() const { return triangles_; }

 private:
  std::uint64_t triangles_;
  std::uint64_t seed_;
  std::uint64_t columns_ = 1;
  std::uint64_t rows_ = 1;
  double west_ = 0.0;
  double south_ = 0.0;
  double stepX_ = 0.0;
  double stepY_ = 0.0;
};

void writeSurface(TextOutput& out, const Grid& grid, const DrawingSize& size) {
  const Permutation vertexOrder(grid.vertexCount(), size.seed + 11);
  const Permutation faceOrder(grid.triangleCount(), size.seed + 12);
  out << "  <Surfaces>\n    <Surface name=\"Ground\">\n      <Definition surfType=\"TIN\">\n        <Pnts>\n";
  for (std::uint64_t i = 0; i < grid.vertexCount(); ++i) {
    const Grid::Vertex v = grid.vertex(size.shuffled ? vertexOrder(i) : i);
    out << "<P id=\"";
    out.integer(static_cast<std::int64_t>(i + 1)) << "\">";
    (out.fixed(v.y, 4) << ' ').fixed(v.x, 4) << ' ';
    out.fixed(v.z, 4) << "</P>\n";
  }
  out << "        </Pnts>\n        <Faces>\n";
  const auto id = [&](std::uint64_t vertex) {
    return static_cast<std::int64_t>((size.shuffled ? vertexOrder.inverse(vertex) : vertex) + 1);
  };
  for (std::uint64_t i = 0; i < grid.triangleCount(); ++i) {
    const Grid::Corners t = grid.triangle(size.shuffled ? faceOrder(i) : i);
    out << "<F>";
    (out.integer(id(t.a)) << ' ').integer(id(t.b)) << ' ';
    out.integer(id(t.c)) << "</F>\n";
  }
  out << "        </Faces>\n      </Definition>\n";
  writeHandleFeature(out, "      ", "lvx_object", 0x30);
  out << "    </Surface>\n  </Surfaces>\n";
}

void writePoints(TextOutput& out, const RoadPlan& road, const DrawingSize& size) {
  if (size.points == 0) return;
  Random random(size.seed + 21);
  out << "  <CgPoints name=\"_All\">\n";
  for (std::uint32_t i = 0; i < size.points; ++i) {
    const double station = random.between(road.startStation(), road.endStation());
    const Place p = road.poseAt(station).at(random.between(-45.0, 45.0));
    out << "    <CgPoint name=\"";
    out.integer(i + 1) << "\" code=\"GS\" desc=\"Ground shot\">";
    (out.fixed(p.y, 4) << ' ').fixed(p.x, 4) << ' ';
    out.fixed(random.between(405.0, 420.0), 4) << "</CgPoint>\n";
  }
  out << "  </CgPoints>\n  <CgPoints name=\"All points\">\n";
  for (std::uint32_t i = 0; i < size.points; ++i) {
    out << "    <CgPoint pntRef=\"";
    out.integer(i + 1) << "\"/>\n";
  }
  writeHandleFeature(out, "    ", "lvx_pointGroup", 0x31);
  out << "  </CgPoints>\n";
}

/// The i-th of `count` stations from the start to the end, both included.
double spread(const RoadPlan& road, std::uint32_t i, std::uint32_t count) {
  if (count == 1) return road.startStation();
  return roundedTo(road.startStation() + (road.endStation() - road.startStation()) * i / (count - 1), 6);
}

void writeSampleLines(TextOutput& out, const RoadPlan& road, const DrawingSize& size) {
  if (size.sampleLines == 0) return;
  out << "      <CrossSects name=\"Sections\">\n";
  for (std::uint32_t i = 0; i < size.sampleLines; ++i) {
    const double station = spread(road, i, size.sampleLines);
    const RoadPose pose = road.poseAt(station);
    out << "        <CrossSect sta=\"";
    out.number(station, 6) << "\" name=\"SL-";
    out.integer(i + 1) << R"("><Feature code="lvx_sampleLine" source="lvx"><Property label="vertices" value=")";
    for (const double offset : {-kHalfWidth, 0.0, kHalfWidth}) {
      const Place p = pose.at(offset);
      if (offset > -kHalfWidth) out << ' ';
      (out.fixed(p.y, 4) << ' ').fixed(p.x, 4);
    }
    out << "\"/>";
    writeHandleProperty(out, 0x100ULL + i);
    out << "</Feature></CrossSect>\n";
  }
  writeHandleFeature(out, "        ", "lvx_sampleLineGroup", 0x22);
  out << "      </CrossSects>\n";
}

struct CorridorNames {
  std::string corridor;
  std::string baseline;
  std::string sections;
};

CorridorNames namesOf(std::uint32_t corridor, std::uint32_t baseline) {
  CorridorNames names{"Corridor " + std::to_string(corridor + 1), "BL-" + std::to_string(baseline + 1), {}};
  names.sections = names.corridor + " | " + names.baseline + " | R1";
  return names;
}

void writeSections(TextOutput& out, const RoadPlan& road, const DesignProfile& profile, const DrawingSize& size,
                   std::string_view name) {
  out << "      <CrossSects name=\"" << name << "\">\n";
  for (std::uint32_t i = 0; i < size.corridorSections; ++i) {
    const double station = spread(road, i, size.corridorSections);
    const double crown = profile.elevationAt(station);
    const auto point = [&](std::string_view code, double offset, double rise) {
      out << "<CrossSectPnt code=\"" << code << "\">";
      (out.number(offset, 4) << ' ').number(crown + rise, 4) << "</CrossSectPnt>";
    };
    out << "        <CrossSect sta=\"";
    out.number(station, 6) << "\"><DesignCrossSectSurf name=\"Pave,Top\" side=\"both\">";
    point("ETW", -3.5, -0.0875);
    point("Crown", 0.0, 0.0);
    point("ETW", 3.5, -0.0875);
    out << "</DesignCrossSectSurf><DesignCrossSectSurf name=\"Shoulder\" side=\"right\">";
    point("ETW", 3.5, -0.0875);
    point("ES", 5.0, -0.1475);
    out << "</DesignCrossSectSurf></CrossSect>\n";
  }
  out << R"(        <Feature code="lvx_corridorSections" source="lvx"><Property label="elevation" value="absolute"/></Feature>
      </CrossSects>
)";
}

void writeRoadways(TextOutput& out, const RoadPlan& road, const DrawingSize& size) {
  if (size.corridors == 0) return;
  out << "  <Roadways>\n";
  for (std::uint32_t c = 0; c < size.corridors; ++c) {
    out << "    <Roadway name=\"" << namesOf(c, 0).corridor << "\" alignmentRefs=\"Road\">\n"
        << "      <Feature code=\"lvx_corridor\" source=\"lvx\">";
    writeHandleProperty(out, 0x40ULL + c);
    out << '\n';
    for (std::uint32_t b = 0; b < size.baselines; ++b) {
      const CorridorNames names = namesOf(c, b);
      out << "        <Feature name=\"" << names.baseline << "\" code=\"lvx_baseline\" source=\"lvx\">"
          << R"(<Property label="alignment" value="Road"/><Property label="alignmentHandle" value=")";
      out.hexadecimal(kAlignmentHandle) << R"("/><Property label="profile" value="Design"/>)"
                                        << R"(<Property label="profileHandle" value=")";
      out.hexadecimal(kProfileHandle) << "\"/>\n          <Feature name=\"R1\" code=\"lvx_region\" source=\"lvx\">";
      out << R"(<Property label="staStart" value=")";
      out.number(road.startStation(), 6) << R"("/><Property label="staEnd" value=")";
      out.number(road.endStation(), 6) << "\"/>";
      writeProperty(out, "crossSects", names.sections);
      out << R"(<Property label="stations" value=")";
      for (std::uint32_t i = 0; i < size.corridorSections; ++i) {
        if (i > 0) out << ' ';
        out.number(spread(road, i, size.corridorSections), 6);
      }
      out << "\"/></Feature></Feature>\n";
    }
    out << "      </Feature>\n    </Roadway>\n";
  }
  out << "  </Roadways>\n";
}

}  // namespace

void writeScaledDrawing(TextOutput& out, const DrawingSize& size) {
  if (size.elements == 0) throw std::invalid_argument("generator: a road needs at least one element");
  if (size.triangles == 0) throw std::invalid_argument("generator: a surface needs at least one triangle");
  const RoadPlan road = makeRoad(size.elements);
  const DesignProfile profile = makeProfile(road, size.verticalCurves);

  writeHead(out, "Generated drawing", "Local grid");
  out << R"(    <Feature code="lvx_sites" source="lvx"><Feature name="Site" code="lvx_site" source="lvx">)";
  writeHandleProperty(out, 0x10);
  out << "</Feature></Feature>\n  </Project>\n";
  writeApplicationAndDictionary(out);
  writePoints(out, road, size);
  out << "  <Alignments name=\"Site\">\n    <Alignment name=\"Road\" length=\"";
  out.fixed(road.endStation() - road.startStation(), 6) << "\" staStart=\"";
  out.number(road.startStation(), 6) << "\">\n";
  road.writeCoordGeom(out, "      ");
  out << "      <Profile>\n        <ProfAlign name=\"Design\">\n";
  profile.writePoints(out, "          ");
  writeHandleFeature(out, "          ", "lvx_object", kProfileHandle);
  out << "        </ProfAlign>\n      </Profile>\n";
  writeSampleLines(out, road, size);
  if (size.corridorSections > 0) {
    for (std::uint32_t c = 0; c < size.corridors; ++c) {
      for (std::uint32_t b = 0; b < size.baselines; ++b) {
        writeSections(out, road, profile, size, namesOf(c, b).sections);
      }
    }
  }
  writeHandleFeature(out, "      ", "lvx_object", kAlignmentHandle);
  out << "    </Alignment>\n  </Alignments>\n";
  writeSurface(out, Grid(road, size.triangles, size.seed), size);
  writeRoadways(out, road, size);
  out << "</LandXML>\n";
}

}  // namespace lvx::generator
