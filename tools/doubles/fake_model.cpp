#include "doubles/fake_model.h"

namespace lvx::test {

namespace {
constexpr double kAzimuthEast = 1.5707963267948966;
}

FakeSampleLine& FakeSampleLine::addVertex(HostArray<double> location) {
  vertexList->items.push_back(std::make_shared<FakeVertex>(std::move(location)));
  return *this;
}

Ref<FakeSampleLine> FakeSampleLineGroup::addLine(const CString& name, double station,
                                                 std::initializer_list<PlanPoint> vertices) {
  auto line = std::make_shared<FakeSampleLine>();
  line->nameText = name;
  line->stationValue = station;
  for (const PlanPoint& point : vertices) line->addVertex(HostArray<double>::of({point.x, point.y, 999.0}));
  lines->items.push_back(line);
  return line;
}

host::PointLocation FakeAlignment::pointLocation(double station, double offset, double tolerance) {
  if (locate) return locate(station, offset, tolerance);
  return {station, 0.0 - offset, kAzimuthEast};
}

host::StationOffset FakeAlignment::stationOffset(double x, double y) {
  if (project) return project(x, y);
  return {x, 0.0 - y};
}

Ref<FakeSampleLineGroup> FakeAlignment::addGroup(const CString& name) {
  auto group = std::make_shared<FakeSampleLineGroup>();
  group->nameText = name;
  groups->items.push_back(group);
  return group;
}

HostArray<double> FakeSurface::sampleElevations(double x1, double y1, double x2, double y2) {
  asked.push_back({x1, y1, x2, y2});
  return sample ? sample(asked.back()) : HostArray<double>::of({});
}

void FakeSurface::sampleEnds(std::function<double(double x, double y)> elevation) {
  sample = [elevation = std::move(elevation)](const Segment& s) {
    return HostArray<double>::of({s.x1, s.y1, elevation(s.x1, s.y1), s.x2, s.y2, elevation(s.x2, s.y2)});
  };
}

Ref<FakeSite> FakeDrawing::addSite(const CString& name) {
  auto site = std::make_shared<FakeSite>();
  site->nameText = name;
  database->siteList->items.push_back(site);
  return site;
}

Ref<FakeAlignment> FakeDrawing::addAlignment(const Ref<FakeSite>& site, const CString& name) {
  auto alignment = std::make_shared<FakeAlignment>();
  alignment->nameText = name;
  alignment->id.value = nextId_++;
  (site ? site->alignmentList : document->alignments)->items.push_back(alignment);
  return alignment;
}

Ref<FakeSurface> FakeDrawing::addSurface(const CString& name) {
  auto surface = std::make_shared<FakeSurface>();
  surface->nameText = name;
  document->surfaceList->items.push_back(surface);
  return surface;
}

Ref<host::QmtObject> FakeDocument::objectFromId(host::VnDbObjectId id) {
  for (const auto& [number, point] : pointList->byNumber)
    if (point->id == id) return point;
  for (const auto& alignment : alignments->items)
    if (alignment && alignment->id == id) return alignment;
  return nullptr;
}

Ref<FakePoint> FakeDrawing::addPoint(std::int32_t number, double x, double y, double z) {
  auto point = std::make_shared<FakePoint>();
  point->numberValue = number;
  point->x = x;
  point->y = y;
  point->z = z;
  point->id.value = nextId_++;
  document->pointList->byNumber[number] = point;
  return point;
}

Ref<FakePointGroup> FakeDrawing::addPointGroup(const CString& name, std::vector<std::int32_t> numbers) {
  auto group = std::make_shared<FakePointGroup>();
  group->nameText = name;
  group->numbers = HostArray<std::int32_t>::of(std::move(numbers));
  document->groups->items.push_back(group);
  return group;
}

}  // namespace lvx::test
