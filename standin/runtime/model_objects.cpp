#include "runtime/model_objects.h"

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/run_time.h"
#include "platform/utf8.h"
#include "runtime/detail/model_object.h"
#include "text/handle_text.h"

namespace lvx::runtime {

using detail::ListObject;
using detail::ModelObject;
using detail::NamedListObject;
using detail::RecordObject;
using host::CString;
using host::HostArray;
using host::Ref;
using host::VnDbObjectId;
using platform::fromUtf8;

namespace {

// ---------------------------------------------------------------- sample lines

class SampleLineVertex final
    : public RecordObject<host::QmtSampleLineVertex, ModelKind::SampleLineVertex, const civil::Vec2> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] HostArray<double> location() override { return HostArray<double>::of({record().x, record().y, 0.0}); }
};

using SampleLineVertexList = ListObject<host::QmtSampleLineVertexList, ModelKind::SampleLineVertexList,
                                        const std::vector<civil::Vec2>, SampleLineVertex>;

class SampleLine final : public RecordObject<host::QmtSampleLine, ModelKind::SampleLine, const civil::SampleLine> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] double station() override { return record().station; }
  [[nodiscard]] std::int64_t sampleLineId() override { return static_cast<std::int64_t>(record().handle); }
  [[nodiscard]] Ref<host::QmtSampleLineVertexList> vertices() override {
    return std::make_shared<SampleLineVertexList>(drawing(), record().vertices);
  }
};

using SampleLineList =
    ListObject<host::QmtSampleLineList, ModelKind::SampleLineList, const std::vector<civil::SampleLine>, SampleLine>;

class SampleLineGroup final
    : public RecordObject<host::QmtSampleLineGroup, ModelKind::SampleLineGroup, const civil::SampleLineGroup> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] CString description() override { return fromUtf8(record().description); }
  [[nodiscard]] VnDbObjectId objectId() override { return {record().handle}; }
  [[nodiscard]] Ref<host::QmtSampleLineList> sampleLines() override {
    return std::make_shared<SampleLineList>(drawing(), record().lines);
  }
};

using SampleLineGroupList = ListObject<host::QmtSampleLineGroupList, ModelKind::SampleLineGroupList,
                                       const std::vector<civil::SampleLineGroup>, SampleLineGroup>;

// ---------------------------------------------------------------- alignments and sites

class Alignment final : public RecordObject<host::QmtAlignment, ModelKind::Alignment, const civil::AlignmentObject> {
 public:
  using RecordObject::record;
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] CString description() override { return fromUtf8(record().description); }
  [[nodiscard]] VnDbObjectId objectId() override { return {record().handle}; }
  [[nodiscard]] CString handle() override { return handleTextOf(record().handle); }
  [[nodiscard]] Ref<host::QmtSampleLineGroupList> sampleLineGroups() override {
    return std::make_shared<SampleLineGroupList>(drawing(), record().sampleLineGroups);
  }
  [[nodiscard]] host::PointLocation pointLocation(double station, double offset, double tolerance) override {
    const auto pose = record().geometry.pointLocation(station, offset, tolerance);
    if (!pose) return {};
    return {pose->point.x, pose->point.y, civil::azimuthOf(pose->direction)};
  }
  [[nodiscard]] host::StationOffset stationOffset(double x, double y) override {
    drawing()->checkInterrupted();
    const auto found = record().geometry.stationOffset({x, y});
    if (!found) return {};
    return {found->station, found->offset};
  }
};

using AlignmentList = ListObject<host::QmtAlignmentList, ModelKind::AlignmentList,
                                 const std::vector<std::unique_ptr<civil::AlignmentObject>>, Alignment>;

class Site final : public RecordObject<host::QmtSite, ModelKind::Site, const civil::Site> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] Ref<host::QmtAlignmentList> alignments() override {
    return std::make_shared<AlignmentList>(drawing(), record().alignments);
  }
};

using SiteList = ListObject<host::QmtSiteList, ModelKind::SiteList, const std::vector<civil::Site>, Site>;

class Profile final : public RecordObject<host::QmtProfile, ModelKind::Profile, const civil::ProfileObject> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] double elevationAt(double station) override {
    return record().profile.elevationAt(station).value_or(0.0);
  }
};

class NoProfile final : public ModelObject<host::QmtProfile, ModelKind::Profile> {
 public:
  using ModelObject::ModelObject;
  [[nodiscard]] double elevationAt(double) override { return 0.0; }
};

// ---------------------------------------------------------------- surfaces

class Surface final : public RecordObject<host::QmtSurface, ModelKind::Surface, const civil::SurfaceObject> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] CString handle() override { return handleTextOf(record().handle); }
  [[nodiscard]] HostArray<double> sampleElevations(double x1, double y1, double x2, double y2) override {
    drawing()->checkInterrupted();
    std::vector<civil::Vec3> samples;
    record().surface.sample({x1, y1}, {x2, y2}, samples);
    std::vector<double> flat;
    flat.reserve(3 * samples.size());
    for (const civil::Vec3& sample : samples) flat.insert(flat.end(), {sample.x, sample.y, sample.z});
    return HostArray<double>::of(std::move(flat));
  }
};

using SurfaceList =
    NamedListObject<host::QmtSurfaceList, ModelKind::SurfaceList, const std::deque<civil::SurfaceObject>, Surface>;

// ---------------------------------------------------------------- points

class Point final : public RecordObject<host::QmtPoint, ModelKind::Point, const civil::Point> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().texts.name()); }
  [[nodiscard]] std::int32_t number() override { return record().number; }
  [[nodiscard]] double easting() override { return record().position.x; }
  [[nodiscard]] double northing() override { return record().position.y; }
  [[nodiscard]] double elevation() override { return record().hasElevation ? record().position.z : 0.0; }
  [[nodiscard]] CString description() override { return fromUtf8(record().texts.description()); }
  [[nodiscard]] CString fullDescription() override { return fromUtf8(record().texts.fullDescription()); }
};

class PointList final : public ModelObject<host::QmtPointList, ModelKind::PointList> {
 public:
  using ModelObject::ModelObject;
  [[nodiscard]] Ref<host::QmtPoint> itemByNumber(std::int32_t number) override {
    const civil::Point* point = drawing()->index().pointByNumber(number);
    if (point == nullptr) return nullptr;
    return std::make_shared<Point>(drawing(), *point);
  }
};

class PointGroup final : public RecordObject<host::QmtPointGroup, ModelKind::PointGroup, const civil::PointGroup> {
 public:
  using RecordObject::RecordObject;
  [[nodiscard]] CString name() override { return fromUtf8(record().name); }
  [[nodiscard]] HostArray<std::int32_t> pointNumbers() override {
    return HostArray<std::int32_t>::of(record().numbers);
  }
  [[nodiscard]] std::int32_t pointCount() override { return static_cast<std::int32_t>(record().numbers.size()); }
};

using PointGroupList = NamedListObject<host::QmtPointGroupList, ModelKind::PointGroupList,
                                       const std::vector<civil::PointGroup>, PointGroup>;

// ---------------------------------------------------------------- the drawing

class Document final : public ModelObject<host::QmtDocument, ModelKind::Document> {
 public:
  using ModelObject::ModelObject;
  [[nodiscard]] Ref<host::QmtSurfaceList> surfaces() override {
    return std::make_shared<SurfaceList>(drawing(), drawing()->drawing().surfaces);
  }
  [[nodiscard]] Ref<host::QmtAlignmentList> sitelessAlignments() override {
    return std::make_shared<AlignmentList>(drawing(), drawing()->drawing().siteless.alignments);
  }
  [[nodiscard]] Ref<host::QmtPointGroupList> pointGroups() override {
    return std::make_shared<PointGroupList>(drawing(), drawing()->drawing().pointGroups);
  }
  [[nodiscard]] Ref<host::QmtPointList> points() override { return std::make_shared<PointList>(drawing()); }

  [[nodiscard]] Ref<host::QmtObject> objectFromId(VnDbObjectId id) override {
    const auto entry = drawing()->index().byHandle(id.value);
    if (!entry) return nullptr;
    return std::visit([this](const auto* record) { return wrap(*record); }, entry->object);
  }

 private:
  template <class Wrapper, class Record>
  [[nodiscard]] Ref<host::QmtObject> make(const Record& record) const {
    return std::make_shared<Wrapper>(drawing(), record);
  }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::Site& record) const { return make<Site>(record); }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::AlignmentObject& record) const {
    return make<Alignment>(record);
  }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::ProfileObject& record) const { return make<Profile>(record); }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::SampleLineGroup& record) const {
    return make<SampleLineGroup>(record);
  }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::SampleLine& record) const { return make<SampleLine>(record); }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::SurfaceObject& record) const { return make<Surface>(record); }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::Point& record) const { return make<Point>(record); }
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::PointGroup& record) const { return make<PointGroup>(record); }
  /// Corridors belong to the roadway side of the model, which has no look-up by identifier.
  [[nodiscard]] Ref<host::QmtObject> wrap(const civil::Corridor& /*record*/) const { return nullptr; }
};

class Database final : public ModelObject<host::QmtDatabase, ModelKind::Database> {
 public:
  using ModelObject::ModelObject;
  [[nodiscard]] Ref<host::QmtSiteList> sites() override {
    return std::make_shared<SiteList>(drawing(), drawing()->drawing().sites);
  }
};

}  // namespace

Ref<host::QmtDocument> makeDocument(const OpenDrawingRef& drawing) { return std::make_shared<Document>(drawing); }

Ref<host::QmtDatabase> makeDatabase(const OpenDrawingRef& drawing) { return std::make_shared<Database>(drawing); }

Ref<host::QmtAlignment> makeAlignment(const OpenDrawingRef& drawing, const civil::AlignmentObject& alignment) {
  return std::make_shared<Alignment>(drawing, alignment);
}

Ref<host::QmtProfile> makeProfile(const OpenDrawingRef& drawing, const civil::ProfileObject* profile) {
  if (profile == nullptr) return std::make_shared<NoProfile>(drawing);
  return std::make_shared<Profile>(drawing, *profile);
}

const civil::AlignmentObject* alignmentBehind(const host::QmtAlignment* alignment) {
  const auto* ours = dynamic_cast<const Alignment*>(alignment);
  return ours == nullptr ? nullptr : &ours->record();
}

CString handleTextOf(civil::Handle handle) {
  const std::string text = text::handleText(handle);
  return {text.begin(), text.end()};
}

}  // namespace lvx::runtime
