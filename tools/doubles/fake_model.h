#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/model.h"

/// Small fakes of the civil model: plain fields behind the host's operations. A fake answers what its fields hold, and
/// an empty reference where they hold none, as a host does whose call failed.
///
///     FakeDrawing drawing;
///     auto axis = drawing.addAlignment(nullptr, L"Axis 1");   // outside any site; runs east along y = 0
///     auto group = axis->addGroup(L"Lines");
///     group->addLine(L"SL1", 120.0, {{120, 5}, {120, -5}});   // left end, right end
namespace lvx::test {

using framework::CString;
using host::HostArray;
using host::Ref;

/// A collection of fakes. `items` may hold empty references.
template <class Interface, class Fake>
class FakeCollection : public Interface {
 public:
  using Interface::item;

  [[nodiscard]] std::int32_t count() override { return static_cast<std::int32_t>(items.size()); }
  [[nodiscard]] auto item(std::int32_t index) -> decltype(std::declval<Interface>().item(0)) override {
    if (index < 0 || index >= count()) return nullptr;
    return items[static_cast<std::size_t>(index)];
  }

  std::vector<Ref<Fake>> items;
};

/// The same, also asked by name.
template <class Interface, class Fake>
class FakeNamedCollection : public FakeCollection<Interface, Fake> {
 public:
  using FakeCollection<Interface, Fake>::item;
  [[nodiscard]] auto item(const CString& name) -> decltype(std::declval<Interface>().item(0)) override {
    ++namesAsked;
    for (const auto& object : this->items)
      if (object && object->name() == name) return object;
    return nullptr;
  }

  int namesAsked = 0;
};

struct PlanPoint {
  double x = 0.0;
  double y = 0.0;
};

class FakeVertex : public host::QmtSampleLineVertex {
 public:
  explicit FakeVertex(HostArray<double> where) : value(std::move(where)) {}
  [[nodiscard]] HostArray<double> location() override { return value; }

  HostArray<double> value;
};

class FakeSampleLine : public host::QmtSampleLine {
 public:
  using Vertices = FakeCollection<host::QmtSampleLineVertexList, FakeVertex>;

  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] double station() override { return stationValue; }
  [[nodiscard]] std::int64_t sampleLineId() override { return id; }
  [[nodiscard]] Ref<host::QmtSampleLineVertexList> vertices() override { return vertexList; }

  /// Adds a vertex whose location is this array, whatever its shape.
  FakeSampleLine& addVertex(HostArray<double> location);

  CString nameText;
  double stationValue = 0.0;
  std::int64_t id = 0;
  Ref<Vertices> vertexList = std::make_shared<Vertices>();
};

class FakeSampleLineGroup : public host::QmtSampleLineGroup {
 public:
  using Lines = FakeCollection<host::QmtSampleLineList, FakeSampleLine>;

  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] CString description() override { return descriptionText; }
  [[nodiscard]] host::VnDbObjectId objectId() override { return id; }
  [[nodiscard]] Ref<host::QmtSampleLineList> sampleLines() override { return lines; }

  /// Adds a line whose vertices are these points, each at elevation 999, which nothing may show.
  Ref<FakeSampleLine> addLine(const CString& name, double station, std::initializer_list<PlanPoint> vertices = {});

  CString nameText;
  CString descriptionText;
  host::VnDbObjectId id;
  Ref<Lines> lines = std::make_shared<Lines>();
};

/// Runs east along y = 0 with station = x and offset = -y, until the test sets other functions.
class FakeAlignment : public host::QmtAlignment {
 public:
  using Groups = FakeCollection<host::QmtSampleLineGroupList, FakeSampleLineGroup>;

  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] CString description() override { return descriptionText; }
  [[nodiscard]] host::VnDbObjectId objectId() override { return id; }
  [[nodiscard]] CString handle() override { return handleText; }
  [[nodiscard]] Ref<host::QmtSampleLineGroupList> sampleLineGroups() override { return groups; }
  [[nodiscard]] host::PointLocation pointLocation(double station, double offset, double tolerance) override;
  [[nodiscard]] host::StationOffset stationOffset(double x, double y) override;

  Ref<FakeSampleLineGroup> addGroup(const CString& name);

  CString nameText;
  CString descriptionText;
  CString handleText;
  host::VnDbObjectId id;
  /// The model has no operation for them: they reach the module in the companion library's site tree.
  struct Profile {
    CString name;
    CString handle;
  };
  std::vector<Profile> profiles;
  Ref<Groups> groups = std::make_shared<Groups>();
  std::function<host::PointLocation(double station, double offset, double tolerance)> locate;
  std::function<host::StationOffset(double x, double y)> project;
};

using FakeAlignments = FakeCollection<host::QmtAlignmentList, FakeAlignment>;

class FakeSite : public host::QmtSite {
 public:
  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] Ref<host::QmtAlignmentList> alignments() override { return alignmentList; }

  CString nameText;
  Ref<FakeAlignments> alignmentList = std::make_shared<FakeAlignments>();
};

class FakeSurface : public host::QmtSurface {
 public:
  /// One call of sampleElevations.
  struct Segment {
    double x1 = 0.0;
    double y1 = 0.0;
    double x2 = 0.0;
    double y2 = 0.0;
    bool operator==(const Segment&) const = default;
  };

  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] CString handle() override { return handleText; }
  /// Without a sample function: an empty array, as off the surface.
  [[nodiscard]] HostArray<double> sampleElevations(double x1, double y1, double x2, double y2) override;

  /// Samples both ends of each segment at `elevation(x, y)`.
  void sampleEnds(std::function<double(double x, double y)> elevation);

  CString nameText;
  CString handleText;
  std::function<HostArray<double>(const Segment&)> sample;
  std::vector<Segment> asked;
};

class FakePoint : public host::QmtPoint {
 public:
  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] std::int32_t number() override { return numberValue; }
  [[nodiscard]] double easting() override { return x; }
  [[nodiscard]] double northing() override { return y; }
  [[nodiscard]] double elevation() override { return z; }
  [[nodiscard]] CString description() override { return descriptionText; }
  [[nodiscard]] CString fullDescription() override { return fullText; }

  std::int32_t numberValue = 0;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  CString nameText;
  CString descriptionText;
  CString fullText;
  host::VnDbObjectId id;
};

class FakePointList : public host::QmtPointList {
 public:
  [[nodiscard]] Ref<host::QmtPoint> itemByNumber(std::int32_t number) override {
    const auto found = byNumber.find(number);
    return found == byNumber.end() ? nullptr : found->second;
  }

  std::unordered_map<std::int32_t, Ref<FakePoint>> byNumber;
};

class FakePointGroup : public host::QmtPointGroup {
 public:
  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] HostArray<std::int32_t> pointNumbers() override { return numbers; }
  [[nodiscard]] std::int32_t pointCount() override { return static_cast<std::int32_t>(numbers.values.size()); }

  CString nameText;
  HostArray<std::int32_t> numbers;
};

class FakeDocument : public host::QmtDocument {
 public:
  using Surfaces = FakeNamedCollection<host::QmtSurfaceList, FakeSurface>;
  using PointGroups = FakeNamedCollection<host::QmtPointGroupList, FakePointGroup>;

  [[nodiscard]] Ref<host::QmtSurfaceList> surfaces() override { return surfaceList; }
  [[nodiscard]] Ref<host::QmtAlignmentList> sitelessAlignments() override { return alignments; }
  [[nodiscard]] Ref<host::QmtPointGroupList> pointGroups() override { return groups; }
  [[nodiscard]] Ref<host::QmtPointList> points() override { return pointList; }
  [[nodiscard]] Ref<host::QmtObject> objectFromId(host::VnDbObjectId id) override;

  Ref<Surfaces> surfaceList = std::make_shared<Surfaces>();
  Ref<FakeAlignments> alignments = std::make_shared<FakeAlignments>();
  Ref<PointGroups> groups = std::make_shared<PointGroups>();
  Ref<FakePointList> pointList = std::make_shared<FakePointList>();
};

class FakeDatabase : public host::QmtDatabase {
 public:
  using Sites = FakeCollection<host::QmtSiteList, FakeSite>;

  [[nodiscard]] Ref<host::QmtSiteList> sites() override { return siteList; }

  Ref<Sites> siteList = std::make_shared<Sites>();
};

/// An open drawing in one piece. Identifiers count from 1 in the order of the calls.
class FakeDrawing {
 public:
  Ref<FakeDocument> document = std::make_shared<FakeDocument>();
  Ref<FakeDatabase> database = std::make_shared<FakeDatabase>();

  /// Always a new site, also where the name stands already.
  Ref<FakeSite> addSite(const CString& name);
  /// To the site given; null: outside any site.
  Ref<FakeAlignment> addAlignment(const Ref<FakeSite>& site, const CString& name);
  Ref<FakeSurface> addSurface(const CString& name);
  /// Of several points with one number the last is the one that the number finds.
  Ref<FakePoint> addPoint(std::int32_t number, double x, double y, double z = 0.0);
  Ref<FakePointGroup> addPointGroup(const CString& name, std::vector<std::int32_t> numbers);

 private:
  std::uint64_t nextId_ = 1;
};

}  // namespace lvx::test
