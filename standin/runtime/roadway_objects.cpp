#include "runtime/roadway_objects.h"

#include <span>
#include <utility>
#include <vector>

#include "platform/utf8.h"
#include "runtime/detail/model_object.h"
#include "runtime/model_objects.h"

namespace lvx::runtime {

using detail::countOf;
using detail::ListObject;
using detail::ModelObject;
using detail::RecordObject;
using host::CString;
using host::HostArray;
using host::Ref;
using platform::fromUtf8;

namespace {

// ---------------------------------------------------------------- sections
//
// They look at the parts where these lie, which a rebuild doesn't move; not at the section, which it does.

class Codes final : public RecordObject<host::QmtCodes, ModelKind::Codes, const std::vector<std::string>> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] std::int32_t count() override { return countOf(record()); }
  [[nodiscard]] CString item(std::int32_t index) override {
    if (index < 0 || index >= count()) return {};
    return fromUtf8(record()[static_cast<std::size_t>(index)]);
  }
};

/// A model object over a part or point of the section at a station.
template <class Interface, ModelKind kind, class Record>
class SectionObject : public RecordObject<Interface, kind, const Record> {
 public:
  SectionObject(const OpenDrawingRef& drawing, const Record& record, double station)
      : RecordObject<Interface, kind, const Record>(drawing, record), station_(station) {}

 protected:
  [[nodiscard]] double station() const { return station_; }

 private:
  double station_;
};

/// A collection of such objects.
template <class Base, ModelKind kind, class Record, class Wrapper>
class SectionList final : public ModelObject<Base, kind> {
 public:
  SectionList(const OpenDrawingRef& drawing, std::span<const Record> records, double station)
      : ModelObject<Base, kind>(drawing), records_(records), station_(station) {}
  [[nodiscard]] std::int32_t count() override { return countOf(records_); }
  [[nodiscard]] auto item(std::int32_t index) -> decltype(std::declval<Base&>().item(index)) override {
    if (index < 0 || index >= count()) return nullptr;
    return std::make_shared<Wrapper>(this->drawing(), records_[static_cast<std::size_t>(index)], station_);
  }

 private:
  std::span<const Record> records_;
  double station_;
};

class SectionPoint final : public SectionObject<host::QmtSectionPoint, ModelKind::SectionPoint, civil::SectionPoint> {
 public:
  using SectionObject::SectionObject;
  [[nodiscard]] Ref<host::QmtCodes> codes() override { return std::make_shared<Codes>(drawing(), record().codes); }
  [[nodiscard]] HostArray<double> stationOffsetElevation() override {
    return HostArray<double>::of({station(), record().offset, record().elevation});
  }
};

using SectionPoints = SectionList<host::QmtSectionPoints, ModelKind::SectionPoints, civil::SectionPoint, SectionPoint>;

class SectionPart final : public SectionObject<host::QmtSectionPart, ModelKind::SectionPart, civil::SectionPart> {
 public:
  using SectionObject::SectionObject;
  [[nodiscard]] Ref<host::QmtCodes> codes() override { return std::make_shared<Codes>(drawing(), record().codes); }
  [[nodiscard]] Ref<host::QmtSectionPoints> points() override {
    return std::make_shared<SectionPoints>(drawing(), record().points, station());
  }
};

using SectionParts = SectionList<host::QmtSectionParts, ModelKind::SectionParts, civil::SectionPart, SectionPart>;

class Section final : public ModelObject<host::QmtSection, ModelKind::Section> {
 public:
  Section(const OpenDrawingRef& drawing, const civil::CorridorSection& section)
      : ModelObject(drawing), parts_(section.parts), station_(section.station) {}
  [[nodiscard]] Ref<host::QmtSectionParts> parts() override {
    return std::make_shared<SectionParts>(drawing(), parts_, station_);
  }

 private:
  std::span<const civil::SectionPart> parts_;
  double station_;
};

// ---------------------------------------------------------------- corridors

class StationSet final : public RecordObject<host::QmtStationSet, ModelKind::StationSet, const civil::Region> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] HostArray<double> stations() override {
    return HostArray<double>::of({record().stations.begin(), record().stations.end()});
  }
};

class BaselineRegion final : public RecordObject<host::QmtBaselineRegion, ModelKind::BaselineRegion, civil::Region> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] Ref<host::QmtStationSet> stationSet() override {
    return std::make_shared<StationSet>(drawing(), record());
  }
  void addStation(double station, const CString& label) override {
    drawing()->addStation(record(), station, platform::toUtf8(label));
  }
};

using BaselineRegions =
    ListObject<host::QmtBaselineRegions, ModelKind::BaselineRegions, std::vector<civil::Region>, BaselineRegion>;

class Baseline final : public RecordObject<host::QmtBaseline, ModelKind::Baseline, civil::Baseline> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] Ref<host::QmtAlignment> alignment() override {
    return record().alignment == nullptr ? nullptr : makeAlignment(drawing(), *record().alignment);
  }
  [[nodiscard]] Ref<host::QmtProfile> profile() override { return makeProfile(drawing(), record().profile); }
  [[nodiscard]] Ref<host::QmtBaselineRegions> regions() override {
    return std::make_shared<BaselineRegions>(drawing(), record().regions);
  }
  [[nodiscard]] Ref<host::QmtSection> sectionAt(double station) override {
    drawing()->checkInterrupted();
    const civil::CorridorSection* section = civil::sectionAt(record(), station);
    return section == nullptr ? nullptr : std::make_shared<Section>(drawing(), *section);
  }
};

using Baselines = ListObject<host::QmtBaselines, ModelKind::Baselines, std::vector<civil::Baseline>, Baseline>;

class Corridor final : public RecordObject<host::QmtCorridor, ModelKind::Corridor, civil::Corridor> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] CString description() override { return fromUtf8(record().description); }
  [[nodiscard]] CString handle() override { return handleTextOf(record().handle); }
  [[nodiscard]] Ref<host::QmtBaselines> baselines() override {
    return std::make_shared<Baselines>(drawing(), record().baselines);
  }
  void rebuild() override { drawing()->rebuild(record()); }
};

using Corridors = ListObject<host::QmtCorridors, ModelKind::Corridors, std::vector<civil::Corridor>, Corridor>;

// ---------------------------------------------------------------- application and document

/// A model object that doesn't hold the drawing in whose count it stands.
template <class Interface, ModelKind kind>
class DetachedObject : public Interface {
 public:
  explicit DetachedObject(std::weak_ptr<OpenDrawing> drawing) : drawing_(std::move(drawing)) {
    if (const OpenDrawingRef open = drawing_.lock()) open->liveObjects().add(kind);
  }
  ~DetachedObject() override {
    if (const OpenDrawingRef open = drawing_.lock()) open->liveObjects().remove(kind);
  }

 protected:
  /// Empty once the drawing was closed.
  [[nodiscard]] OpenDrawingRef drawing() const { return drawing_.lock(); }

 private:
  std::weak_ptr<OpenDrawing> drawing_;
};

class RoadwayDocument final : public DetachedObject<host::QmtRoadwayDocument, ModelKind::RoadwayDocument> {
 public:
  using DetachedObject::DetachedObject;
  [[nodiscard]] Ref<host::QmtCorridors> corridors() override {
    const OpenDrawingRef open = drawing();
    return open == nullptr ? nullptr : std::make_shared<Corridors>(open, open->corridors());
  }
};

class RoadwayApplication final : public DetachedObject<host::QmtRoadwayApplication, ModelKind::RoadwayApplication> {
 public:
  explicit RoadwayApplication(std::shared_ptr<const ActiveDrawing> active)
      : DetachedObject(active->drawing), active_(std::move(active)) {}
  [[nodiscard]] Ref<host::QmtRoadwayDocument> activeDocument() override {
    if (active_->drawing.expired()) return nullptr;
    return std::make_shared<RoadwayDocument>(active_->drawing);
  }

 private:
  std::shared_ptr<const ActiveDrawing> active_;
};

class Application final : public DetachedObject<host::VantorApplication, ModelKind::Application> {
 public:
  explicit Application(std::shared_ptr<const ActiveDrawing> active)
      : DetachedObject(active->drawing), active_(std::move(active)) {}
  void setFlag(std::int16_t) override {}  // nothing that this host offers depends on it
  [[nodiscard]] Ref<host::QmtObject> interfaceObject(const CString& programId) override {
    if (programId != host::kRoadwayProgramId) return nullptr;
    return std::make_shared<RoadwayApplication>(active_);
  }

 private:
  std::shared_ptr<const ActiveDrawing> active_;
};

}  // namespace

Ref<host::VantorApplication> makeApplication(std::shared_ptr<const ActiveDrawing> active) {
  return std::make_shared<Application>(std::move(active));
}

}  // namespace lvx::runtime
