#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "doubles/fake_host.h"
#include "doubles/fake_model.h"
#include "host/roadway_connection.h"
#include "host/roadway_model.h"
#include "services/formatted_text.h"

/// Fakes of the corridor side of the model: plain fields behind the host's operations, as in fake_model.h.
///
///     FakeRoadway roadway(host);                          // connected for the length of the scope
///     auto baseline = roadway.addCorridor(L"Road")->addBaseline();
///     baseline->addRegion({100.0, 120.0});
///     baseline->addRoad(100.0, {{-4.0, 9.9}, {0.0, 10.0}, {4.0, 9.9}});
namespace lvx::test {

class FakeCodes : public host::QmtCodes {
 public:
  [[nodiscard]] std::int32_t count() override { return static_cast<std::int32_t>(texts.size()); }
  [[nodiscard]] CString item(std::int32_t index) override {
    return index >= 0 && index < count() ? texts[static_cast<std::size_t>(index)] : CString();
  }

  std::vector<CString> texts;
};

inline Ref<FakeCodes> codesOf(std::initializer_list<CString> texts) {
  auto codes = std::make_shared<FakeCodes>();
  codes->texts = texts;
  return codes;
}

class FakeSectionPoint : public host::QmtSectionPoint {
 public:
  [[nodiscard]] Ref<host::QmtCodes> codes() override { return codeList; }
  [[nodiscard]] HostArray<double> stationOffsetElevation() override { return where; }

  Ref<FakeCodes> codeList;
  HostArray<double> where;
};

class FakeSectionPart : public host::QmtSectionPart {
 public:
  using Points = FakeCollection<host::QmtSectionPoints, FakeSectionPoint>;

  [[nodiscard]] Ref<host::QmtCodes> codes() override { return codeList; }
  [[nodiscard]] Ref<host::QmtSectionPoints> points() override { return pointList; }

  FakeSectionPart& addPoint(HostArray<double> where, std::initializer_list<CString> codes = {}) {
    auto point = std::make_shared<FakeSectionPoint>();
    point->where = std::move(where);
    point->codeList = codesOf(codes);
    pointList->items.push_back(point);
    return *this;
  }
  FakeSectionPart& addPoint(double station, double offset, double elevation,
                            std::initializer_list<CString> codes = {}) {
    return addPoint(HostArray<double>::of({station, offset, elevation}), codes);
  }

  Ref<FakeCodes> codeList;
  Ref<Points> pointList = std::make_shared<Points>();
};

class FakeSection : public host::QmtSection {
 public:
  using Parts = FakeCollection<host::QmtSectionParts, FakeSectionPart>;

  [[nodiscard]] Ref<host::QmtSectionParts> parts() override { return partList; }

  FakeSectionPart& addPart(std::initializer_list<CString> codes) {
    auto part = std::make_shared<FakeSectionPart>();
    part->codeList = codesOf(codes);
    partList->items.push_back(part);
    return *part;
  }

  Ref<Parts> partList = std::make_shared<Parts>();
};

/// What the corridor stage did to a drawing, in order: "add <station> <label>", "rebuild <corridor>".
using RoadwayLog = std::vector<CString>;

/// A region whose added stations join its set at the corridor's next rebuild, behind the others.
class FakeRegion : public host::QmtBaselineRegion {
 public:
  explicit FakeRegion(RoadwayLog& log) : log_(log) {}

  [[nodiscard]] Ref<host::QmtStationSet> stationSet() override {
    if (!hasSet) return nullptr;
    return std::make_shared<Set>(stations);
  }
  void addStation(double station, const CString& label) override {
    log_.push_back(L"add " + services::fixedText(station, 6) + L" " + label);
    asked.push_back(station);
  }
  void rebuild() {
    if (stations.isOneDimensional()) stations.values.insert(stations.values.end(), asked.begin(), asked.end());
    asked.clear();
  }

  HostArray<double> stations = HostArray<double>::of({});
  std::vector<double> asked;
  bool hasSet = true;

 private:
  class Set : public host::QmtStationSet {
   public:
    explicit Set(HostArray<double> values) : values_(std::move(values)) {}
    [[nodiscard]] HostArray<double> stations() override { return values_; }

   private:
    HostArray<double> values_;
  };

  RoadwayLog& log_;
};

class FakeProfile : public host::QmtProfile {
 public:
  [[nodiscard]] double elevationAt(double station) override { return elevation ? elevation(station) : 0.0; }

  std::function<double(double station)> elevation;
};

/// Its sections stand in a map by station; where none stands, `compute` may give one, else there is none.
class FakeBaseline : public host::QmtBaseline {
 public:
  using Regions = FakeCollection<host::QmtBaselineRegions, FakeRegion>;

  explicit FakeBaseline(RoadwayLog& log) : log_(log) {}

  [[nodiscard]] Ref<host::QmtAlignment> alignment() override { return alignmentObject; }
  [[nodiscard]] Ref<host::QmtProfile> profile() override { return profileObject; }
  [[nodiscard]] Ref<host::QmtBaselineRegions> regions() override { return regionList; }
  [[nodiscard]] Ref<host::QmtSection> sectionAt(double station) override {
    const auto found = sections.find(station);
    if (found != sections.end()) return found->second;
    return compute ? compute(station) : nullptr;
  }

  Ref<FakeRegion> addRegion(std::vector<double> stations) {
    auto region = std::make_shared<FakeRegion>(log_);
    region->stations = HostArray<double>::of(std::move(stations));
    regionList->items.push_back(region);
    return region;
  }

  struct RoadPoint {
    double offset = 0.0;
    double elevation = 0.0;
  };
  /// A section of one surface part through these points, whose last one carries the edge's code. All of them report
  /// `station`.
  Ref<FakeSection> addRoad(double station, const std::vector<RoadPoint>& points) {
    auto section = std::make_shared<FakeSection>();
    FakeSectionPart& part = section->addPart({L"Pave"});
    for (const RoadPoint& point : points) part.addPoint(station, point.offset, point.elevation);
    if (!points.empty()) part.pointList->items.back()->codeList = codesOf({L"ETW"});
    sections[station] = section;
    return section;
  }

  Ref<FakeAlignment> alignmentObject;
  Ref<FakeProfile> profileObject = std::make_shared<FakeProfile>();
  Ref<Regions> regionList = std::make_shared<Regions>();
  std::map<double, Ref<FakeSection>> sections;
  std::function<Ref<FakeSection>(double station)> compute;

 private:
  RoadwayLog& log_;
};

class FakeCorridor : public host::QmtCorridor {
 public:
  using Baselines = FakeCollection<host::QmtBaselines, FakeBaseline>;

  explicit FakeCorridor(RoadwayLog& log) : log_(log) {}

  [[nodiscard]] CString name() override { return nameText; }
  [[nodiscard]] CString description() override { return descriptionText; }
  [[nodiscard]] CString handle() override { return handleText; }
  [[nodiscard]] Ref<host::QmtBaselines> baselines() override { return baselineList; }
  void rebuild() override {
    log_.push_back(L"rebuild " + nameText);
    for (const auto& baseline : baselineList->items)
      for (const auto& region : baseline->regionList->items) region->rebuild();
  }

  Ref<FakeBaseline> addBaseline() {
    auto baseline = std::make_shared<FakeBaseline>(log_);
    baselineList->items.push_back(baseline);
    return baseline;
  }

  CString nameText;
  CString descriptionText;
  CString handleText;
  Ref<Baselines> baselineList = std::make_shared<Baselines>();

 private:
  RoadwayLog& log_;
};

class FakeRoadwayDocument : public host::QmtRoadwayDocument {
 public:
  using Corridors = FakeCollection<host::QmtCorridors, FakeCorridor>;

  [[nodiscard]] Ref<host::QmtCorridors> corridors() override { return corridorList; }

  Ref<Corridors> corridorList = std::make_shared<Corridors>();
};

/// Corridors behind the host's application, connected for the length of a scope.
class FakeRoadway {
 public:
  explicit FakeRoadway(FakeHost& host) {
    auto application = std::make_shared<Application>();
    application->roadway->document = document;
    host.setApplication(L"Vantor.Application.24", application);
    host::connectRoadway(host, L"");
  }
  FakeRoadway(const FakeRoadway&) = delete;
  FakeRoadway& operator=(const FakeRoadway&) = delete;
  ~FakeRoadway() { host::disconnectRoadway(); }

  Ref<FakeCorridor> addCorridor(const CString& name) {
    auto corridor = std::make_shared<FakeCorridor>(log);
    corridor->nameText = name;
    document->corridorList->items.push_back(corridor);
    return corridor;
  }

  RoadwayLog log;
  Ref<FakeRoadwayDocument> document = std::make_shared<FakeRoadwayDocument>();

 private:
  struct Roadway : host::QmtRoadwayApplication {
    [[nodiscard]] Ref<host::QmtRoadwayDocument> activeDocument() override { return document; }

    Ref<host::QmtRoadwayDocument> document;
  };
  struct Application : host::VantorApplication {
    void setFlag(std::int16_t) override {}
    [[nodiscard]] Ref<host::QmtObject> interfaceObject(const CString&) override { return roadway; }

    Ref<Roadway> roadway = std::make_shared<Roadway>();
  };
};

}  // namespace lvx::test
