// GEOS: an STR tree over the faces, asked by each segment's envelope; what it returns is cut by plain doubles.
//
//   peer_sample_geos data=FOLDER [runs=3 pick=all|scattered]
//
// Corners on the segment are told by a side of exactly 0, which holds on a lattice whose lines the segments follow.
#include <geos/geom/Envelope.h>
#include <geos/index/strtree/TemplateSTRtree.h>

#include "clipper.h"
#include "peer.h"

namespace lvx::peers {
namespace {

using geos::geom::Envelope;
using Tree = geos::index::strtree::TemplateSTRtree<std::uint32_t>;

void sample(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const std::vector<Segment> segments = readSegments(folder, arguments);
  const Tin tin = readTin(folder);
  const Stopwatch watch;
  Tree tree(10, tin.faces.size());
  for (std::uint32_t face = 0; face < tin.faces.size(); ++face) {
    if (tin.hidden[face] != 0) continue;
    Envelope around;
    for (std::size_t i = 0; i < 3; ++i) around.expandToInclude(tin.corner(face, i).x, tin.corner(face, i).y);
    tree.insert(around, face);
  }
  tree.query(Envelope(0, 0, 0, 0), [](std::uint32_t) {});  // builds it
  Line line("GEOS tree", "sample");
  line.add("build_s", watch.seconds());
  Clipper clipper(tin);
  std::vector<std::uint32_t> found;
  measureSampling(line, arguments, tin, segments, [&](SampleSum& sum) {
    for (const Segment& segment : segments) {
      found.clear();
      tree.query(Envelope(segment.a.x, segment.b.x, segment.a.y, segment.b.y), found);
      sum.add(segment, clipper.clip(segment, found));
    }
  });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::sample); }
