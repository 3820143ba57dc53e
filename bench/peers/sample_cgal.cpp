// CGAL: a triangulation built face by face from the surface, walked along each segment with exact predicates.
//
//   peer_sample_cgal data=FOLDER [runs=3 pick=all|scattered]
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_2.h>
#include <CGAL/Triangulation_face_base_with_info_2.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>

#include "peer.h"

namespace lvx::peers {
namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
/// A vertex knows its elevation, a face whether it has ground.
using Structure = CGAL::Triangulation_data_structure_2<CGAL::Triangulation_vertex_base_with_info_2<double, Kernel>,
                                                       CGAL::Triangulation_face_base_with_info_2<bool, Kernel>>;
using Triangulation = CGAL::Triangulation_2<Kernel, Structure>;
using Point = Kernel::Point_2;
using FaceHandle = Triangulation::Face_handle;
using VertexHandle = Triangulation::Vertex_handle;

/// From the given faces, not triangulated anew. The surface's rim must be convex.
void build(Triangulation& triangulation, const Tin& tin) {
  const std::vector<Face> next = neighboursOf(tin);
  Structure& structure = triangulation.tds();
  structure.clear();
  structure.set_dimension(2);
  const VertexHandle infinite = structure.create_vertex();
  triangulation.set_infinite_vertex(infinite);
  std::vector<VertexHandle> vertices(tin.points.size());
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    vertices[i] = structure.create_vertex();
    vertices[i]->set_point(Point(tin.points[i].x, tin.points[i].y));
    vertices[i]->info() = tin.points[i].z;
  }
  const auto vertex = [&vertices](std::int32_t number) { return vertices[static_cast<std::size_t>(number)]; };
  std::vector<FaceHandle> faces(tin.faces.size());
  for (std::size_t i = 0; i < faces.size(); ++i) {
    const auto& [a, b, c] = tin.faces[i];
    faces[i] = structure.create_face(vertex(a), vertex(b), vertex(c));
    faces[i]->info() = tin.hidden[i] == 0;
    for (const std::int32_t corner : tin.faces[i]) vertex(corner)->set_face(faces[i]);
  }
  std::map<std::int32_t, FaceHandle> outsideFrom;  // infinite faces by the first corner of their edge of the rim
  std::vector<std::pair<std::int32_t, FaceHandle>> outsideTo;
  for (std::size_t i = 0; i < faces.size(); ++i)
    for (int k = 0; k < 3; ++k) {
      const auto at = static_cast<std::size_t>(k);
      if (next[i][at] >= 0) {
        faces[i]->set_neighbor(k, faces[static_cast<std::size_t>(next[i][at])]);
        continue;
      }
      const std::int32_t a = tin.faces[i][(at + 1) % 3], b = tin.faces[i][(at + 2) % 3];
      const FaceHandle outside = structure.create_face(infinite, vertex(b), vertex(a));
      outside->info() = false;
      outside->set_neighbor(0, faces[i]);
      faces[i]->set_neighbor(k, outside);
      outsideFrom[a] = outside;
      outsideTo.emplace_back(b, outside);
      infinite->set_face(outside);
    }
  for (const auto& [b, outside] : outsideTo) {  // the next edge of the rim starts at b
    const FaceHandle after = outsideFrom.at(b);
    outside->set_neighbor(2, after);
    after->set_neighbor(1, outside);
  }
}

Xyz placeOf(VertexHandle vertex) { return {vertex->point().x(), vertex->point().y(), vertex->info()}; }

class Walker {
 public:
  explicit Walker(const Triangulation& triangulation) : triangulation_(triangulation) {}

  const std::vector<Sample>& walk(const Segment& segment) {
    samples_.clear();
    const Point p(segment.a.x, segment.a.y);
    const Point q(segment.b.x, segment.b.y);
    const FaceHandle start = triangulation_.locate(p, hint_);
    const bool isInside = start != nullptr && !triangulation_.is_infinite(start);
    auto circulator = isInside ? triangulation_.line_walk(p, q, start) : triangulation_.line_walk(p, q);
    if (circulator == nullptr) return samples_;
    FaceHandle face = circulator;
    if (isInside) {
      hint_ = start;
      addEnd(face, segment, segment.a, 0.0);
    } else {
      for (int i = 0; i < 3; ++i)  // the edge of the rim by which the line comes in
        if (triangulation_.is_infinite(face->neighbor(i)) &&
            side(segment, placeOf(face->vertex(Structure::ccw(i)))) > 0 &&
            side(segment, placeOf(face->vertex(Structure::cw(i)))) < 0 && !addCrossing(face, i, segment))
          return samples_;
    }
    while (!triangulation_.is_infinite(face)) {
      const FaceHandle after = ++circulator;
      int i = 0;
      while (i < 3 && face->neighbor(i) != after) ++i;
      if (i == 3) throw std::runtime_error("the walk goes through a corner, which this peer leaves out");
      if (!addCrossing(face, i, segment)) {
        addEnd(face, segment, segment.b, 1.0);
        break;
      }
      face = after;
    }
    return samples_;
  }

 private:
  void addEnd(FaceHandle face, const Segment&, Xy place, double t) {
    if (face->info())
      samples_.push_back(
          {t, planeZ(placeOf(face->vertex(0)), placeOf(face->vertex(1)), placeOf(face->vertex(2)), place)});
  }
  /// The crossing of the edge opposite to corner i; false past the segment's end.
  bool addCrossing(FaceHandle face, int i, const Segment& segment) {
    const Xyz u = placeOf(face->vertex(Structure::ccw(i)));
    const Xyz v = placeOf(face->vertex(Structure::cw(i)));
    const Sample sample = crossing(segment, u, v, side(segment, u), side(segment, v));
    if (sample.t >= 1) return false;
    if (sample.t > 0 && (face->info() || face->neighbor(i)->info())) samples_.push_back(sample);
    return true;
  }

  const Triangulation& triangulation_;
  FaceHandle hint_;
  std::vector<Sample> samples_;
};

void sample(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const std::vector<Segment> segments = readSegments(folder, arguments);
  const Tin tin = readTin(folder);
  Triangulation triangulation;
  const Stopwatch watch;
  build(triangulation, tin);
  Line line("CGAL walk", "sample");
  line.add("build_s", watch.seconds());
  Walker walker(triangulation);
  measureSampling(line, arguments, tin, segments, [&](SampleSum& sum) {
    for (const Segment& segment : segments) sum.add(segment, walker.walk(segment));
  });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::sample); }
