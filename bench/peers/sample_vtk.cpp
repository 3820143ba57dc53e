// VTK: a static cell locator over the faces laid flat, asked along each segment; what it returns is cut by plain doubles.
//
//   peer_sample_vtk data=FOLDER [runs=3 pick=all|scattered]
//
// Its cutters aren't run: they cut the whole surface by an endless plane, thousands of times slower.
#include <vtkCellArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkStaticCellLocator.h>

#include "clipper.h"
#include "peer.h"

namespace lvx::peers {
namespace {

/// The faces that count, flat, with coordinates against `origin`; `faces` tells which face a cell is.
vtkNew<vtkPolyData> flatSurface(const Tin& tin, const Xyz& origin, std::vector<std::uint32_t>& faces) {
  vtkNew<vtkPoints> points;
  points->SetDataTypeToDouble();
  points->SetNumberOfPoints(static_cast<vtkIdType>(tin.points.size()));
  for (std::size_t i = 0; i < tin.points.size(); ++i)
    points->SetPoint(static_cast<vtkIdType>(i), tin.points[i].x - origin.x, tin.points[i].y - origin.y, 0.0);
  vtkNew<vtkCellArray> cells;
  for (std::uint32_t face = 0; face < tin.faces.size(); ++face) {
    if (tin.hidden[face] != 0) continue;
    cells->InsertNextCell({tin.faces[face][0], tin.faces[face][1], tin.faces[face][2]});
    faces.push_back(face);
  }
  vtkNew<vtkPolyData> surface;
  surface->SetPoints(points);
  surface->SetPolys(cells);
  surface->BuildCells();
  return surface;
}

void sample(const Arguments& arguments) {
  const std::string folder = arguments.text("data");
  const std::vector<Segment> segments = readSegments(folder, arguments);
  const Tin tin = readTin(folder);
  const Xyz origin = tin.points.front();
  const Stopwatch watch;
  std::vector<std::uint32_t> faces;
  const vtkNew<vtkPolyData> surface = flatSurface(tin, origin, faces);
  vtkNew<vtkStaticCellLocator> locator;
  locator->SetDataSet(surface);
  locator->BuildLocator();
  Line line("VTK locator", "sample");
  line.add("build_s", watch.seconds());
  Clipper clipper(tin);
  vtkNew<vtkIdList> cells;
  std::vector<std::uint32_t> found;
  measureSampling(line, arguments, tin, segments, [&](SampleSum& sum) {
    for (const Segment& segment : segments) {
      const std::array<double, 3> from{segment.a.x - origin.x, segment.a.y - origin.y, 0.0};
      const std::array<double, 3> to{segment.b.x - origin.x, segment.b.y - origin.y, 0.0};
      locator->FindCellsAlongLine(from.data(), to.data(), 0.0, cells);
      found.clear();
      for (vtkIdType i = 0; i < cells->GetNumberOfIds(); ++i)
        found.push_back(faces[static_cast<std::size_t>(cells->GetId(i))]);
      sum.add(segment, clipper.clip(segment, found));
    }
  });
}

}  // namespace
}  // namespace lvx::peers

int main(int argc, char** argv) { return lvx::peers::run(argc, argv, lvx::peers::sample); }
