// Boost.Geometry: an R*-tree over the segments of a polyline with the alignment's stations at its vertices, asked for the
// nearest one.
//
//   peer_station_boost data=FOLDER [runs=3]
//
// Its chords stay within a thousandth of the alignment. It answers another question all the same: what lies in the wedge
// beyond a vertex falls on it, so that stations are up to 0.2 off at 80 from the alignment.
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include "station.h"

namespace lvx::peers {
namespace {

namespace geometry = boost::geometry;
using Point = geometry::model::point<double, 2, geometry::cs::cartesian>;
using Value = std::pair<geometry::model::segment<Point>, std::uint32_t>;
using Tree = geometry::index::rtree<Value, geometry::index::rstar<16>>;

constexpr double kChordError = 0.001;

struct Vertex {
  Xy at;
  double station = 0.0;
};

std::vector<Vertex> polylineOf(const std::vector<CurveElement>& elements) {
  std::vector<Vertex> vertices;
  const auto add = [&vertices](const CurveElement& element, double d) {
    const CurvePose pose = poseAt(element, d);
    vertices.push_back({{pose.x, pose.y}, kStartStation + element.distance + d});
  };
  for (const CurveElement& element : elements) {
    const double sharpest = std::max(std::abs(element.startCurvature), std::abs(element.endCurvature));
    const double chord = sharpest > 0 ? std::sqrt(8 * kChordError / sharpest) : element.length;
    const double count = std::max(1.0, std::ceil(element.length / chord));
    for (double i = 0; i < count; ++i) add(element, element.length * i / count);
  }
  add(elements.back(), elements.back().length);
  return vertices;
}

StationOffset onSegment(const Vertex& a, const Vertex& b, Xy p) {
  const double dx = b.at.x - a.at.x, dy = b.at.y - a.at.y, x = p.x - a.at.x, y = p.y - a.at.y;
  const double t = std::clamp((x * dx + y * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return {a.station + t * (b.station - a.station),
          std::copysign(std::hypot(x - t * dx, y - t * dy), -(dx * y - dy * x))};
}

void answerAll(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const auto probes = readItems<Xy>(folder + "/probes.f64");
  const Stopwatch watch;
  const std::vector<Vertex> vertices = polylineOf(readItems<CurveElement>(folder + "/alignment.f64"));
  std::vector<Value> values;
  for (std::uint32_t i = 0; i + 1 < vertices.size(); ++i)
    values.push_back(
        {{Point(vertices[i].at.x, vertices[i].at.y), Point(vertices[i + 1].at.x, vertices[i + 1].at.y)}, i});
  const Tree tree(values);
  Line line("Boost R*-tree", "station_offset");
  line.add("vertices", vertices.size()).add("build_s", watch.seconds());
  measureStations(line, arguments, probes.size(), [&](std::size_t i) {
    const auto nearest = tree.qbegin(geometry::index::nearest(Point(probes[i].x, probes[i].y), 1));
    const std::uint32_t segment = nearest->second;
    return onSegment(vertices[segment], vertices[segment + 1], probes[i]);
  });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::answerAll); }
